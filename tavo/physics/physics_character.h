// XPhysicsCharacter: the part of a character that holds its physics joints.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XPhysicsCharacter : public XTyped<XPhysicsCharacter, XTransform, sg::PhysicsCharacterNode> {
public:
    static constexpr XWord TypeID = L"PhysicsCharacter", DefaultName = L"physics";
    using XTyped::XTyped;

    void onInitialize() override;  // in the colour of physics joints
};
using XPhysicsCharacterDef = XTypedDef<XPhysicsCharacter>;

}  // namespace Tavo
