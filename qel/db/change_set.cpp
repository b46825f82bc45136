#include "qel/db/change_set.h"
#include "qel/db/database.h"

namespace db {

bool ChangeSet::hasChanged(Attribute const* attribute, bool children, bool) const {
    if (!attribute) return false;
    if (sortedCount_ != attributes_.size() + nodes_.size()) {
        sorted_.assign(attributes_.begin(), attributes_.end());
        sorted_.insert(sorted_.end(), nodes_.begin(), nodes_.end());
        std::sort(sorted_.begin(), sorted_.end());
        sortedCount_ = sorted_.size();
    }
    if (std::binary_search(sorted_.begin(), sorted_.end(), attribute)) return true;
    if (!children) return false;
    auto inside = [&](Attribute const* a) {
        for (; a; a = a->getParentAttribute())
            if (a == attribute) return true;
        return false;
    };
    return std::any_of(attributes_.begin(), attributes_.end(), inside);
}

std::vector<Node*> const& ChangeSet::ChangedNodes(int typeID) const {
    static std::vector<Node*> const none;
    if (groupedCount_ != nodes_.size()) {
        byType_.clear();
        for (Node* n : nodes_) byType_[n->getNodeDef().getTypeID()].push_back(n);
        for (auto& [id, nodes] : byType_)
            std::sort(nodes.begin(), nodes.end(), [](Node const* a, Node const* b) { return a->getID() < b->getID(); });
        groupedCount_ = nodes_.size();
    }
    auto const it = byType_.find(typeID);
    return it == byType_.end() ? none : it->second;
}

bool ChangeSet::empty() const { return nodes_.empty() && removedAttributes_.empty(); }

void ChangeSet::enter(std::vector<Node*>& list, Node& n, std::uint8_t bit) {
    addNode(n);
    if (n.listedAs_ & bit) return;
    n.listedAs_ |= bit;
    list.push_back(&n);
}

void ChangeSet::close() {
    for (Attribute* a : attributes_) a->clear(Attribute::listed);
    for (Node* n : nodes_) n->clear(Attribute::listed), n->listedAs_ = 0;
}

void ChangeSet::reset() {
    for (auto* list : {&nodes_, &added_, &removed_, &renamed_, &reparented_}) list->clear();
    attributes_.clear();
    removedAttributes_.clear();
    if (groupedCount_ > 0) byType_.clear();
    sortedCount_ = groupedCount_ = 0;
}

}  // namespace db
