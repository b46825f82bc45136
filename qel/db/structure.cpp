// The structure of the database: nodes, their places and names, and the table of ids.
#include "qel/db/database.h"
#include "qel/db/edits.h"
#include <utility>

namespace db {

// ---- ids ----

int Database::takeIDs(std::size_t count, void* owner, bool isElement) {
    std::size_t const pages = (count + (1u << pageBits) - 1) >> pageBits;
    int const first = int(pages_.size() << pageBits);
    pages_.insert(pages_.end(), pages, reinterpret_cast<std::uintptr_t>(owner) | (isElement ? 1u : 0u));
    return first;
}

void Database::releaseIDs(int firstID, void const* owner) {
    auto const word = reinterpret_cast<std::uintptr_t>(owner);
    for (std::size_t p = std::size_t(firstID) >> pageBits;
         p < pages_.size() && (pages_[p] & ~std::uintptr_t(1)) == word; ++p)
        pages_[p] = 0;
}

Node* Database::lookupNode(int id) const {
    if (id == firstID_) return const_cast<Database*>(this);
    std::size_t const p = std::size_t(id) >> pageBits;
    if (id < 0 || p >= pages_.size() || !pages_[p] || (pages_[p] & 1)) return nullptr;
    Node* n = reinterpret_cast<Node*>(pages_[p]);
    return n->firstID_ == id && !n->removed_ ? n : nullptr;
}

Attribute* Database::lookupAttribute(int id) const {
    if (id == firstID_) return const_cast<Database*>(this);
    std::size_t const p = std::size_t(id) >> pageBits;
    if (id < 0 || p >= pages_.size() || !pages_[p]) return nullptr;
    if (pages_[p] & 1) {
        auto* e = reinterpret_cast<ElementBlock*>(pages_[p] & ~std::uintptr_t(1));
        std::size_t const row = std::size_t(id - e->firstID);
        if (row >= e->layout->rows.size() || e->attribute().isRemoved()) return nullptr;
        return reinterpret_cast<Attribute*>(reinterpret_cast<char*>(e) + e->layout->rows[row].offset);
    }
    Node* n = reinterpret_cast<Node*>(pages_[p]);
    if (n->removed_) return nullptr;
    if (id == n->firstID_) return n;
    std::size_t const row = std::size_t(id - n->firstID_ - 1);
    return row < n->layout().rows.size() ? &n->at<Attribute>(int(row)) : nullptr;
}

void Database::listNodes(std::vector<Node*>& out) const {
    Node* last = nullptr;
    for (std::uintptr_t page : pages_) {
        if (!page || (page & 1)) continue;
        Node* n = reinterpret_cast<Node*>(page);
        if (n == last || n->removed_) continue;
        out.push_back(last = n);
    }
}

Node* Database::findNodeByPath(std::wstring_view path) const {
    Node const* at = this;
    while (!path.empty()) {
        std::size_t const bar = std::min(path.find(L'|'), path.size());
        at = findChildOf(*at, path.substr(0, bar));
        if (!at) return nullptr;
        if (bar + 1 == path.size()) return nullptr;  // nothing behind the bar
        path.remove_prefix(std::min(bar + 1, path.size()));
    }
    return at == this ? nullptr : const_cast<Node*>(at);
}

// ---- making and freeing ----

Node* Database::construct(NodeDef const& def) {
    std::size_t const type = std::size_t(def.getTypeID());
    if (pools_.size() <= type) pools_.resize(type + 1);
    if (!pools_[type]) pools_[type] = std::make_unique<NodePool>(def.layout().size);
    void* block = pools_[type]->take();
    Node* n = def.construct(block);
    n->database_ = this;
    def.layout().construct(static_cast<char*>(block), false);
    ++nodeCount_;
    return n;
}

Node* Database::createDetached(NodeDef const& def) {
    std::size_t const most = std::size_t(firstDatabaseID) >> pageBits;
    if (def.isAbstract() || pages_.size() + (def.layout().rows.size() >> pageBits) + 1 >= most) return nullptr;
    Node* n = construct(def);
    n->firstID_ = takeIDs(def.layout().rows.size() + 1, n, false);
    set_->addAdded(*n);
    record(std::make_unique<StructureEdits::Life>(*n, true));
    return n;
}

Node* Database::createNode(NodeDef const& def, std::wstring const& name) {
    Node* n = createDetached(def);
    if (!n) return nullptr;
    n->nameAttribute().raw() = makeUniqueName(nullptr, name);
    link(n->place_, *this, nullptr);
    return n;
}

// The slot dies and the ids are free at once; the memory waits while someone may be told of the node.
void Database::destroy(Node& n) {
    retire(n);
    if (telling_ > 0) return graveyard_.push_back(&n);
    NodePool& pool = *pools_[std::size_t(n.def_->getTypeID())];
    free(n);
    pool.give(&n);
}

void Database::free(Node& n) {
    n.def_->layout().destruct(reinterpret_cast<char*>(&n));
    n.~Node();
}

void Database::retire(Node& n) {
    if (n.firstID_ >= 0 && std::size_t(n.firstID_) >> pageBits < pages_.size() &&
        pages_[std::size_t(n.firstID_) >> pageBits] == reinterpret_cast<std::uintptr_t>(&n)) {
        releaseIDs(n.firstID_, &n);
        if (!n.removed_) --nodeCount_;
    }
    if (n.slot_) n.slot_->die(), n.slot_ = nullptr;
}

void Database::destroyElements(std::vector<ElementBlock*> const& elements) {
    for (ElementBlock* e : elements) {
        if (telling_ > 0)
            elementGraveyard_.push_back(e);
        else
            ElementBlock::destroy(e);
    }
}

void Database::emptyGraveyard() {
    for (ElementBlock* e : std::exchange(elementGraveyard_, {})) ElementBlock::destroy(e);
    for (Node* n : std::exchange(graveyard_, {})) destroy(*n);
    for (Retired const& r : std::exchange(retired_, {}))
        for (Node* n : r.nodes) free(*n);
}

// ---- places ----

void Database::link(ChildLink& l, Node& parent, ChildLink* before) {
    l.parent = &parent;
    l.next = before;
    l.previous = before ? before->previous : parent.lastChild_;
    (l.previous ? l.previous->next : parent.firstChild_) = &l;
    (before ? before->previous : parent.lastChild_) = &l;
    ++parent.childCount_;
    parent.childIndex_.reset();
    std::wstring const& name = l.child->getNodeName();
    l.nameHash = NameTable::hash(parent.firstID_, name);
    if (!name.empty()) names_.insert(l.nameHash, l.child->firstID_);
    if (&l == &l.child->place_) l.child->onPlaceChanged(true);
}

void Database::unlink(ChildLink& l) {  // keeps its own neighbours: the place to come back to
    Node& parent = *l.parent;
    if (&l == &l.child->place_) l.child->onPlaceChanged(false);
    (l.previous ? l.previous->next : parent.firstChild_) = l.next;
    (l.next ? l.next->previous : parent.lastChild_) = l.previous;
    --parent.childCount_;
    parent.childIndex_.reset();
    std::wstring const& name = l.child->getNodeName();
    if (name.empty()) return;
    names_.erase(l.nameHash, l.child->firstID_);
    stems_.release(parent.firstID_, name);
}

void Database::setRemoved(Node& n, bool removed) {
    std::vector<ChildLink*> links;
    for (ChildLink* l = &n.place_; l && l->parent; l = l->nextParent) links.push_back(l);
    if (removed)
        for (ChildLink* l : links) unlink(*l);
    else
        for (std::size_t i = links.size(); i-- > 0;) link(*links[i], *links[i]->parent, links[i]->next);
    n.removed_ = removed;
    if (n.slot_) n.slot_->generation ^= 1;
    removed ? set_->addRemoved(n) : set_->addAdded(n);
    removed ? --nodeCount_ : ++nodeCount_;
    n.onLife(removed);
}

void Database::moveNode(Node& n, Node& parent, ChildLink* before) {
    record(std::make_unique<StructureEdits::Place>(n));
    unlink(n.place_);
    link(n.place_, parent, before);
    set_->addReparented(n);
    giveName(n, makeUniqueName(&parent, n.getNodeName(), &n));
}

// ---- removal ----

// From the leaves up, without recursion. A child that has another parent only loses this one.
void Database::removeNode(Node& top) {
    for (Node* n = &top;;) {
        if (n->lastChild_) {
            Node* child = n->lastChild_->child;
            if (child->place_.nextParent)
                n->removeChild(*child);
            else
                n = child;
            continue;
        }
        Node* const parent = n->place_.parent;
        bool const last = n == &top;
        removeSingle(*n);
        if (last) return;
        n = parent;
    }
}

void Database::removeSingle(Node& n) {
    n.preRemove(true);
    n.onRemove();
    setRemoved(n, true);
    record(std::make_unique<StructureEdits::Life>(n, false));
    n.postRemove(true);
}

void Database::removeDynamic(ElementBlock& block) {
    auto edit = std::make_unique<StructureEdits::Dynamic>(*block.node, block, true);
    edit->toggle(*this);
    record(std::move(edit));
}

void Database::clear() {
    while (lastChild_) removeNode(*lastChild_->child);
}

// ---- names ----

Node* Database::findChildOf(Node const& parent, std::wstring_view name, Node const* except) const {
    if (name.empty()) return nullptr;
    Node* further = nullptr;  // the first that has this one as a further parent
    auto isChild = [&](int id) {
        Node* n = reinterpret_cast<Node*>(pages_[std::size_t(id) >> pageBits]);
        if (n == except || n->getNodeName() != name) return false;
        if (n->place_.parent == &parent) return true;
        for (ChildLink const* l = n->place_.nextParent; l; l = l->nextParent)
            if (l->parent == &parent && (!further || id < further->firstID_)) further = n;
        return false;
    };
    int const id = names_.find(NameTable::hash(parent.firstID_, name), isChild);
    return id < 0 ? further : reinterpret_cast<Node*>(pages_[std::size_t(id) >> pageBits]);
}

std::wstring Database::makeUniqueName(Node const* parent, std::wstring const& wanted, Node const* except) {
    Node const& p = parent ? *parent : *this;
    auto taken = [&](std::wstring const& name) { return findChildOf(p, name, except) != nullptr; };
    if (!taken(wanted)) return wanted;
    if (except) stems_.release(p.firstID_, except->getNodeName());  // does not stand in its own way
    return wanted +
           std::to_wstring(stems_.take(p.firstID_, wanted, [&](int k) { return taken(wanted + std::to_wstring(k)); }));
}

void Database::reindexName(Node& n, std::wstring& name) {
    for (ChildLink* l = &n.place_; l && l->parent; l = l->nextParent)
        if (!n.getNodeName().empty())
            names_.erase(l->nameHash, n.firstID_), stems_.release(l->parent->firstID_, n.getNodeName());
    n.nameAttribute().raw().swap(name);
    for (ChildLink* l = &n.place_; l && l->parent; l = l->nextParent) {
        l->nameHash = NameTable::hash(l->parent->firstID_, n.getNodeName());
        if (!n.getNodeName().empty()) names_.insert(l->nameHash, n.firstID_);
    }
    set_->addRenamed(n);
}

void Database::renameNode(Node& n, std::wstring const& wanted) {
    if (!n.removed_ && n.getNodeName() != wanted) giveName(n, makeUniqueName(n.place_.parent, wanted, &n));
}

void Database::giveName(Node& n, std::wstring name) {
    if (name == n.getNodeName()) return;
    noteWrite(n.nameAttribute());
    reindexName(n, name);
    if (n.nameAttribute().has(Attribute::feeds)) n.valueChanged(n.nameAttribute());
}

// ---- loading ----

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
    retired_.push_back({std::exchange(graveyard_, {}), std::exchange(pools_, {})});
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
    other.set_ = std::make_unique<ChangeSet>();
    std::vector<Node*> all;
    listNodes(all);
    for (Node* n : all) {
        n->database_ = this;
        n->clear(listed);
        set_->addAdded(*n);
    }
    for (ChildLink* l = firstChild_; l; l = l->next) {  // those at the top are told by their parent's id
        l->parent = this;
        names_.erase(l->nameHash, l->child->firstID_);
        l->nameHash = NameTable::hash(firstID_, l->child->getNodeName());
        if (!l->child->getNodeName().empty()) names_.insert(l->nameHash, l->child->firstID_);
    }
    onAdopted();
}

Node* Database::createForLoading(NodeDef const& def, int id, std::wstring const& name, Node* parent, bool detached) {
    if (def.isAbstract() || !areIDsFree(id, def.layout().rows.size() + 1)) return nullptr;
    Node* n = construct(def);
    n->firstID_ = id;
    claimIDs(id, def.layout().rows.size() + 1, reinterpret_cast<std::uintptr_t>(n));
    set_->addAdded(*n);
    if (detached) return n;
    n->nameAttribute().raw() = makeUniqueName(parent, name);
    link(n->place_, parent ? *parent : *this, nullptr);
    return n;
}

bool Database::addParentForLoading(Node& child, Node& parent) {
    if (!parent.canBeParentOf(child)) return false;
    auto* l = new ChildLink{&child, &parent, nullptr, nullptr, nullptr, 0};
    ChildLink* last = &child.place_;
    while (last->nextParent) last = last->nextParent;
    last->nextParent = l;
    link(*l, parent, nullptr);
    return true;
}

bool Database::setElementIDForLoading(ElementBlock& block, int id) {
    if (block.firstID == id) return true;
    if (!areIDsFree(id, block.layout->rows.size())) return false;
    releaseIDs(block.firstID, &block);
    block.firstID = id;
    claimIDs(id, block.layout->rows.size(), reinterpret_cast<std::uintptr_t>(&block) | 1);
    return true;
}

// Ids beyond this are refused: a broken file must not make the table of ids grow without bound.
constexpr int mostIDsAhead = 1 << 27;

bool Database::areIDsFree(int id, std::size_t count) const {
    if (id < 0 || (id & ((1 << pageBits) - 1)) || id > mostIDsAhead) return false;
    std::size_t const first = std::size_t(id) >> pageBits, end = (std::size_t(id) + count + 15) >> pageBits;
    for (std::size_t p = first; p < std::min(end, pages_.size()); ++p)
        if (pages_[p]) return false;
    return true;
}

void Database::claimIDs(int id, std::size_t count, std::uintptr_t owner) {
    std::size_t const first = std::size_t(id) >> pageBits, end = (std::size_t(id) + count + 15) >> pageBits;
    if (pages_.size() < end) pages_.resize(end);
    for (std::size_t p = first; p < end; ++p) pages_[p] = owner;
}

}  // namespace db
