// The side of the database that loading uses: nothing of it is recorded or told before the content is taken over.
#include "qel/db/database.h"
#include <unordered_set>
#include <utility>

namespace db {

// ---- taking over ----

// History and nodes go; what is listed as removed stays readable until the telling ends.
void Database::retireContent() {
    dropRedo();
    while (!items_.empty()) {
        dropItem(items_.front(), false);
        items_.pop_front();
    }
    done_ = 0;
    checkpoint_ = ~0ull;
    ++telling_;
    for (Record const& r : journal_)
        if (r.subject) r.subject->clear(Attribute::recorded);
    dropRecords(journal_.data(), journal_.size(), false);
    journal_.clear();
    blockStart_ = 0;
    std::vector<Node*> all;
    listNodes(all);
    for (Node* n : all) {
        set_->addRemoved(*n);
        retire(*n);
        graveyard_.push_back(n);
        n->removed_ = true;
    }
    --telling_;
    retired_.push_back(
        {std::exchange(graveyard_, {}), std::exchange(elementGraveyard_, {}), std::exchange(pools_, {}), false});
    pages_.clear();
    nodeCount_ = 0;
}

void Database::adopt(Database& other) {
    retireContent();
    pages_ = std::exchange(other.pages_, {});
    pools_ = std::exchange(other.pools_, {});
    names_ = std::exchange(other.names_, {});
    stems_ = {};
    nodeCount_ = std::exchange(other.nodeCount_, 0);
    preserved_ = std::exchange(other.preserved_, {});
    name_ = other.name_;
    firstChild_ = std::exchange(other.firstChild_, nullptr);
    lastChild_ = std::exchange(other.lastChild_, nullptr);
    childCount_ = std::exchange(other.childCount_, 0);
    childIndex_.reset();
    other.set_->close(Attribute::listed);  // nobody is told of what was done there
    other.set_->reset();
    std::vector<Node*> all;
    listNodes(all);
    for (Node* n : all) {
        n->database_ = this;
        set_->addAdded(*n);
    }
    for (ChildLink* l = firstChild_; l; l = l->next) {  // those at the top are told by their parent's id
        l->parent = this;
        names_.erase(l->nameHash, l->child->firstID_);
        l->nameHash = NameTable::hash(firstID_, l->child->getNodeName());
        if (!l->child->getNodeName().empty()) names_.insert(l->nameHash, l->child->firstID_);
    }
    onAdopted(other);
}

// ---- nodes ----

Node* Database::createForLoading(NodeDef const& def, int id, std::wstring const& name, Node* parent, bool detached) {
    if (!hasRoomFor(def)) return nullptr;
    Node* n = construct(def);
    n->firstID_ = takeIDs(def.layout().rows.size() + 1, n, false, id);
    set_->addAdded(*n);
    if (detached) return n;
    n->nameAttribute().raw() = makeUniqueName(parent, name);
    link(n->place_, parent ? *parent : *this, nullptr);
    return n;
}

// In time that grows with the number of parents alone; whether the hierarchy closes on itself is asked once, for all.
bool Database::addParentsForLoading(Node& child, std::vector<Node*> const& parents) {
    std::unordered_set<Node const*> all{child.place_.parent};
    ChildLink* last = &child.place_;
    while (last->nextParent) all.insert((last = last->nextParent)->parent);
    for (Node* p : parents) {
        if (p == &child || !p->supportsChildren() || !all.insert(p).second) return false;
        last = last->nextParent = new ChildLink{&child, p, nullptr, nullptr, nullptr, 0};
        link(*last, *p, nullptr);
    }
    return true;
}

void Database::orderChildrenForLoading(Node& parent, std::vector<Node*> const& children) {
    std::unordered_map<Node const*, ChildLink*> links;
    for (ChildLink* l = parent.firstChild_; l; l = l->next) links.emplace(l->child, l);
    for (Node const* child : children) {
        auto const it = links.find(child);
        if (it == links.end()) continue;
        ChildLink* l = it->second;
        (l->previous ? l->previous->next : parent.firstChild_) = l->next;
        (l->next ? l->next->previous : parent.lastChild_) = l->previous;
        l->previous = parent.lastChild_;
        l->next = nullptr;
        (l->previous ? l->previous->next : parent.firstChild_) = l;
        parent.lastChild_ = l;
        links.erase(it);
    }
    parent.childIndex_.reset();
}

// Takes away what has no parent left, again and again (Kahn 1962, "Topological sorting of large networks").
Node* Database::findCycle() const {
    std::vector<Node*> all, free;
    listNodes(all);
    std::unordered_map<Node*, std::size_t> left;  // parents that are not taken away yet
    for (Node* n : all) {
        for (ChildLink const* l = &n->place_; l && l->parent; l = l->nextParent) left[n] += l->parent != this;
        if (auto const it = left.find(n); it != left.end() && it->second == 0) free.push_back(n);
    }
    while (!free.empty()) {
        Node* n = free.back();
        free.pop_back();
        left.erase(n);
        for (ChildLink* l = n->firstChild_; l; l = l->next)
            if (--left[l->child] == 0) free.push_back(l->child);
    }
    return left.empty() ? nullptr : left.begin()->first;
}

void Database::listByPrimaryParent(std::vector<Node*>& out) const {
    std::vector<ChildLink const*> stack;
    if (firstChild_) stack.push_back(firstChild_);
    while (!stack.empty()) {
        ChildLink const* l = stack.back();
        stack.pop_back();
        if (l->next) stack.push_back(l->next);
        if (l != &l->child->place_) continue;
        out.push_back(l->child);
        if (l->child->firstChild_) stack.push_back(l->child->firstChild_);
    }
}

// ---- ids ----

// Beyond this no id of a file is believed: a broken one must not make the table of ids grow without bound.
constexpr int mostIDs = 1 << 27;

bool Database::areIDsFree(int id, std::size_t pages) const {
    if (id < 0 || (id & ((1 << pageBits) - 1)) || id > mostIDs) return false;
    std::size_t const first = std::size_t(id) >> pageBits;
    for (std::size_t p = first; p < std::min(first + pages, pages_.size()); ++p)
        if (pages_[p]) return false;
    return true;
}

void Database::keepIDsBelow(int end) {
    if (end > 0 && end <= mostIDs)
        pages_.resize(std::max(pages_.size(), (std::size_t(end) + (1u << pageBits) - 1) >> pageBits));
}

int Database::endOfIDs() const {
    std::size_t p = pages_.size();
    for (; p > 0; --p) {
        std::uintptr_t const page = pages_[p - 1];
        if (!page) continue;
        if (page & 1 ? !reinterpret_cast<ElementBlock*>(page & ~std::uintptr_t(1))->attribute().isRemoved()
                     : !reinterpret_cast<Node*>(page)->removed_)
            break;
    }
    return int(p << pageBits);
}

}  // namespace db
