// Which object an edit of a character's part acts on, and who the twin of a joint is.
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_character.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/objects/database.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/physics/physics_character.h"
#include "tavo/physics/physics_constraint.h"
#include "tavo/physics/physics_joint.h"
#include "tavo/physics/physics_joint_limit.h"

namespace Tavo {
namespace {

// What stands at the path in which the first `from` is `to`.
XObject twinOf(XObject const& object, XWord const& from, XWord const& to) {
    std::wstring path = object.Path();
    std::size_t const at = path.find(from);
    if (at == std::wstring::npos) return {};
    return object.Database().SceneGraph()->Node(path.replace(at, from.size(), to));
}

// The physics joint that the part is, limits, or hangs below.
XPhysicsJoint physicsJointOf(XTransform const& part) {
    if (XPhysicsJoint const joint(part); joint.IsValid()) return joint;
    if (XPhysicsJointLimit const limit(part); limit.IsValid()) return XPhysicsJoint(limit.Joint());
    return XPhysicsJoint(part.Parent());
}

}  // namespace

XPhysicsCharacter XCharacter::PhysicsCharacter() const {
    return XPhysicsCharacter(FindChildObject(XPhysicsCharacter::TypeID, IsObjectType));
}

// ---- twins ----

XPhysicsJoint XCharacter::EquivalentPhysicsJoint(XJoint const& joint) const {
    if (!IsValid() || !joint.IsValid()) return {};
    return XPhysicsJoint(twinOf(joint, XKinematicsCharacter::DefaultName, XPhysicsCharacter::DefaultName));
}

XJoint XCharacter::EquivalentKinematicsJoint(XPhysicsJoint const& joint) const {
    if (!IsValid() || !joint.IsValid()) return {};
    XTransform const target = joint.PhysicsConstraint().PhysicsConstraintTarget();
    XMatrixConversion const conversion(target.TranslationX().InputObject());
    XJoint const driver(conversion.InputMatrix().InputObject());
    if (driver.IsValid()) return driver;
    return XJoint(twinOf(joint, XPhysicsCharacter::DefaultName, XKinematicsCharacter::DefaultName));
}

// ---- edits ----

XTransform XCharacter::root() const { return KinematicsCharacter().CharacterRoot(); }

bool XCharacter::isWhole(XTransform const& part) const {
    return part.IsValid() && (part == *this || part == KinematicsCharacter() || part == PhysicsCharacter());
}

// A part of either skeleton, which is not to be edited by itself.
bool XCharacter::isLocked(XTransform const& part) const {
    bool const isSkeleton = XJoint(part).IsValid() || XJointLimit(part).IsValid() || physicsJointOf(part).IsValid();
    return IsValid() && isSkeleton && !IsEditable().Boolean();
}

void XCharacter::OnBeginMove(XTransform& part) {
    if (isWhole(part) || isLocked(part)) part = root();
}

void XCharacter::OnBeginRotate(XTransform& part) {
    if (isWhole(part))
        part = root();
    else if (XPhysicsJoint const joint = physicsJointOf(part); joint.IsValid() && isLocked(part))
        part = EquivalentKinematicsJoint(joint);
}

void XCharacter::OnBeginScale(XTransform& part) {
    SetInteractiveMode();
    if (isWhole(part))
        part = root();
    else if (isLocked(part))
        part = XSceneObject::Undefined;
}

}  // namespace Tavo
