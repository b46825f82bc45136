// Making a character of what has none.
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_character.h"
#include "tavo/objects/scene.h"
#include "tavo/physics/physics_character.h"
#include "tavo/physics/physics_joint.h"

namespace Tavo {

// The new character stands at the origin. What stood there as well keeps its attributes to the bit, whatever the order
// of its angles.
XCharacter XTransform::Characterize() {
    if (XCharacter const character = Character(); character.IsValid()) return character;
    if (!IsValid() || !SupportsReparenting()) return {};
    XCharacter character(Scene().CreateObject(XCharacter::TypeID));
    if (!character.IsValid()) return {};
    XTransform const kinematics(Scene().CreateObject(XKinematicsCharacter::TypeID, character));
    XTransform const physics(Scene().CreateObject(XPhysicsCharacter::TypeID, character));
    XTransform const& part = SupportsType(XPhysicsJoint::TypeID) ? physics : kinematics;
    bool const moves = !ParentWorldMatrix().Matrix().IsEqual(part.WorldMatrix().Matrix(), 0);
    SetParent(part, false, moves);
    return character;
}

}  // namespace Tavo
