#include "qel/db/change_set.h"
#include "qel/db/database.h"
#include <unordered_set>

namespace db {

bool ChangeSet::hasChanged(Attribute const* attribute, bool children, bool) const {
    if (!attribute) return false;
    std::vector<Node*> const& nodes = ChangedNodes();
    if (sortedCount_ != attributes_.size() + nodes.size()) {
        sorted_.assign(attributes_.begin(), attributes_.end());
        sorted_.insert(sorted_.end(), nodes.begin(), nodes.end());
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

std::vector<Node*> const& ChangeSet::ChangedNodes() const {
    if (nodesCount_ == touched_.size() + attributes_.size()) return nodes_;
    nodesCount_ = touched_.size() + attributes_.size();
    nodes_ = touched_;
    if (nodesCount_ <= 16) {
        for (Attribute const* a : attributes_)
            if (std::find(nodes_.begin(), nodes_.end(), &a->node()) == nodes_.end()) nodes_.push_back(&a->node());
        return nodes_;
    }
    std::unordered_set<Node const*> known(touched_.begin(), touched_.end());
    for (Attribute const* a : attributes_)
        if (known.insert(&a->node()).second) nodes_.push_back(&a->node());
    return nodes_;
}

std::vector<Node*> const& ChangeSet::ChangedNodes(int typeID) const {
    static std::vector<Node*> const none;
    ChangedNodes();
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

bool ChangeSet::empty() const { return attributes_.empty() && touched_.empty() && removedAttributes_.empty(); }

void ChangeSet::enter(std::vector<Node*>& list, Node& n, std::uint8_t bit) {
    addNode(n);
    if (n.listedAs_ & bit) return;
    n.listedAs_ |= bit;
    list.push_back(&n);
}

void ChangeSet::close(std::uint32_t flags) {
    for (Attribute* a : attributes_) a->clear(flags);
    for (Node* n : touched_) n->clear(Attribute::listed), n->listedAs_ = 0;
}

void ChangeSet::reset() {
    for (auto* list : {&touched_, &nodes_, &added_, &removed_, &renamed_, &reparented_}) list->clear();
    attributes_.clear();
    removedAttributes_.clear();
    if (groupedCount_ > 0) byType_.clear();
    nodesCount_ = sortedCount_ = groupedCount_ = 0;
}

}  // namespace db
