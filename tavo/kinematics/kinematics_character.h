// XKinematicsCharacter: the part of a character that holds its skeleton.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XKinematicsCharacter : public XTyped<XKinematicsCharacter, XTransform, sg::KinematicsCharacterNode> {
public:
    static constexpr XWord TypeID = L"KinematicsCharacter", DefaultName = L"kinematics";
    using XTyped::XTyped;

    // The first child that is a joint and of no derived type; without one, the first that is a plain transform.
    XTransform CharacterRoot() const;

    void onInitialize() override;  // in the colour of joints
};
using XKinematicsCharacterDef = XTypedDef<XKinematicsCharacter>;

}  // namespace Tavo
