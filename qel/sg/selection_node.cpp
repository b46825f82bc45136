#include "qel/sg/selection_node.h"
#include <algorithm>
#include <unordered_map>

namespace sg {
namespace {

// A reference to a part that comes and goes by itself says nothing for sure about its node: those are looked through.
constexpr db::Slot partOfANode{};

db::Node const* nodeOf(db::AttributeHandle const& entity) {
    db::Attribute const* const target = entity.getRef();
    return target ? &target->node() : nullptr;
}

}  // namespace

db::Slot const* SelectionNode::EntityKey::operator()(db::AttributeHandle const& entity) const {
    db::Attribute const* const target = entity.getRefOrRemoved();
    if (!target) return nullptr;
    return target->has(db::Attribute::outside) ? &partOfANode : target->node().getAnchor();
}

std::size_t SelectionNode::findEntity(db::Node const* node) const {
    auto const& values = entities().getValue();
    auto const found = std::find_if(values.begin(), values.end(), [&](auto const& e) { return nodeOf(e) == node; });
    return std::size_t(found - values.begin());
}

bool SelectionNode::hasEntity(db::Node const* node) const {
    if (node && node->isRemovedNode()) return false;
    if (node && entityIndex_.contains(entities(), node->getAnchor())) return true;
    if (node && !entityIndex_.contains(entities(), &partOfANode)) return false;
    return findEntity(node) < entities().size();
}

void SelectionNode::removeEntity(db::Node const* node) {
    if (!hasEntity(node)) return;
    std::size_t const at = findEntity(node);
    node ? entityIndex_.removeAt(entities(), at) : void(entities().removeAt(at));
}

void SelectionNode::removeEntities(std::vector<db::Node const*> const& nodes) {
    std::unordered_map<db::Node const*, std::size_t> pending;
    for (db::Node const* node : nodes) ++pending[node];
    std::vector<db::AttributeHandle> kept;
    for (db::AttributeHandle const& entity : entities().getValue()) {
        auto const found = pending.find(nodeOf(entity));
        if (found == pending.end() || found->second == 0)
            kept.push_back(entity);
        else
            --found->second;
    }
    if (kept.size() < entities().size()) entities().setValue(std::move(kept));
}

bool SelectionNode::hasSubEntity(int index) const { return subEntityIndex_.contains(subEntities(), index); }

void SelectionNode::removeSubEntity(int index) {
    if (!hasSubEntity(index)) return;
    auto const& values = subEntities().getValue();
    auto const found = std::find(values.begin(), values.end(), index);
    subEntityIndex_.removeAt(subEntities(), std::size_t(found - values.begin()));
}

}  // namespace sg
