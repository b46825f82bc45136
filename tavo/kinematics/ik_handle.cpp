#include "tavo/kinematics/ik_handle.h"

namespace Tavo {

// The handle hears of its pin through what negates the pin's state.
sg::PinNode* XIKHandle::pin() const {
    XObject const negation = SolverParameters().Attribute(sg::IKSolverNode::Free).InputObject();
    if (!negation.IsValid()) return nullptr;
    sg::Node* const node = negation.Attribute(sg::NotNode::Input).InputObject().getNode();
    return node && node->isOfType(sg::PinNode::Def) ? static_cast<sg::PinNode*>(node) : nullptr;
}

bool XIKHandle::IsPinned() const {
    sg::PinNode* const found = IsValid() ? pin() : nullptr;
    return found && XObject(found).Attribute(sg::PinNode::Pinned).Boolean();
}

XIKHandle& XIKHandle::SetPinned(bool pinned) {
    sg::PinNode* const found = IsValid() && IsEditable() ? pin() : nullptr;
    if (!found || IsPinned() == pinned) return *this;
    if (pinned && !IsPrimary().Boolean()) SetWorldMatrix(EndEffectorTransform().WorldMatrix().Matrix());
    found->setPinned(pinned);
    return *this;
}

void XIKHandle::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
}

}  // namespace Tavo
