// The structure of the database: nodes, their places and names, and the table of ids.
#include "qel/db/database.h"
#include "qel/db/edits.h"
#include <utility>

namespace db {

// ---- ids ----

int Database::takeIDs(std::size_t count, void* owner, bool isElement, int wanted) {
    std::size_t const pages = (count + (1u << pageBits) - 1) >> pageBits;
    std::size_t const first = areIDsFree(wanted, pages) ? std::size_t(wanted) >> pageBits : pages_.size();
    if (pages_.size() < first + pages) pages_.resize(first + pages);
    std::fill_n(pages_.begin() + long(first), pages, reinterpret_cast<std::uintptr_t>(owner) | (isElement ? 1u : 0u));
    return int(first << pageBits);
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

bool Database::hasRoomFor(NodeDef const& def) const {
    std::size_t const most = std::size_t(firstDatabaseID) >> pageBits;
    return !def.isAbstract() && pages_.size() + (def.layout().rows.size() >> pageBits) + 1 < most;
}

Node* Database::createDetached(NodeDef const& def) {
    if (!hasRoomFor(def)) return nullptr;
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
    freeRetired();
}

// What an observer replaced while it was told is listed in the next set, and waits for the end of that one's telling.
void Database::freeRetired() {
    for (Retired const& r : retired_) {
        if (!r.told) continue;
        for (ElementBlock* e : r.elements) ElementBlock::destroy(e);
        for (Node* n : r.nodes) free(*n);
    }
    std::erase_if(retired_, [](Retired const& r) { return r.told; });
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
    block.node->onRemovePart(block);
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
    n.nameAttribute().noteWrite();
    reindexName(n, name);
    if (n.nameAttribute().has(Attribute::feeds)) n.valueChanged(n.nameAttribute());
}

}  // namespace db
