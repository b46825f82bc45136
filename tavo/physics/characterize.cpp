// Making a character of what has none.
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_character.h"
#include "tavo/objects/scene.h"
#include "tavo/physics/physics_character.h"
#include "tavo/physics/physics_joint.h"

namespace Tavo {

// The new character stands at the origin. What stood there too keeps its attributes to the bit, whatever the order of
// its angles.
XCharacter XTransform::Characterize() {
    if (XCharacter const character = Character(); character.IsValid()) return character;
    if (!IsValid() || !SupportsReparenting()) return {};
    XCharacter character(Scene().CreateObject(XCharacter::TypeID));
    if (!character.IsValid()) return {};
    XObject const kinematics = Scene().CreateObject(XKinematicsCharacter::TypeID, character);
    XObject const physics = Scene().CreateObject(XPhysicsCharacter::TypeID, character);
    bool const moves = !ParentWorldMatrix().Matrix().IsIdentity(0);
    SetParent(SupportsType(XPhysicsJoint::TypeID) ? physics : kinematics, false, moves);
    return character;
}

}  // namespace Tavo
