// The two states of a character's physics skeleton: following the kinematic one, or free for a simulation.
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_constraint.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/objects/scene.h"
#include "tavo/physics/physics_character.h"
#include "tavo/physics/physics_joint.h"

namespace Tavo {
namespace {

Qelutils::Vector<XObject> physicsJointsOf(XCharacter const& character) {
    Qelutils::Vector<XObject> joints;
    character.PhysicsCharacter().DescendantObjects(joints, XPhysicsJoint::TypeID, SupportsObjectType);
    return joints;
}

// Calls edit(physics joint, kinematic joint) for each pair.
template<class Edit> void forEachPair(XCharacter const& character, Edit const& edit) {
    for (XObject const& object : physicsJointsOf(character)) {
        XPhysicsJoint joint(object);
        if (XJoint const twin = character.EquivalentKinematicsJoint(joint); twin.IsValid()) edit(joint, twin);
    }
}

bool isTarget(XKinematicsConstraint const& constraint, XTransform const& transform) {
    for (int i = 0, count = constraint.InputMatrices().ArraySize(); i < count; ++i)
        if (constraint.InputMatrices().Attribute(i).Attribute(0).InputObject() == transform) return true;
    return false;
}

// The constraint that ties the joint to its twin; it still knows the joint when it does not drive it.
XKinematicsConstraint constraintBetween(XPhysicsJoint const& joint, XJoint const& twin) {
    Qelutils::Vector<XObject> followers;
    twin.WorldMatrix().OutputObjects(followers);
    for (XObject const& follower : followers)
        if (XKinematicsConstraint const constraint(follower); constraint.ParentWorldIn().InputObject() == joint)
            return constraint;
    return {};
}

void disconnectFrom(XJoint const& twin, XPhysicsJoint const& joint) {
    for (int first : {sg::TransformNode::Translation, sg::TransformNode::Rotation})
        for (int axis = 0; axis < 3; ++axis) {
            XAttribute channel = joint.Attribute(first + axis);
            XMatrixConversion const conversion(channel.InputObject());
            XKinematicsConstraint const constraint(conversion.InputMatrix().InputObject());
            if (isTarget(constraint, twin)) channel.DisconnectInput();
        }
}

void tie(XKinematicsConstraint constraint, XPhysicsJoint const& joint, XJoint const& twin) {
    if (!constraint.IsValid()) return;
    Qelutils::Vector<XObject> conversions;
    constraint.ChildObjects(conversions, XMatrixConversion::TypeID);
    for (XObject& conversion : conversions) conversion.Delete();
    constraint.Constrain(joint, twin);
}

}  // namespace

XCharacter& XCharacter::SetInteractiveMode() {
    if (!IsValid()) return *this;
    Database().BeginChangeBlock();
    forEachPair(*this, [](XPhysicsJoint& joint, XJoint const& twin) {
        joint.ClearAnimation();
        joint.SetWorldMatrix(twin.WorldMatrix().Matrix());
        tie(constraintBetween(joint, twin), joint, twin);
    });
    Database().EndChangeBlock();
    return *this;
}

XCharacter& XCharacter::SetSimulationMode() {
    if (!IsValid()) return *this;
    Database().BeginChangeBlock();
    disconnectInternalConstraints();
    initializeSimulatedAnimation();
    Database().EndChangeBlock();
    return *this;
}

void XCharacter::disconnectInternalConstraints() {
    forEachPair(*this, [](XPhysicsJoint& joint, XJoint const& twin) { disconnectFrom(twin, joint); });
}

void XCharacter::initializeSimulatedAnimation() {
    float const rate = Scene().SceneSettings().SimulationRate().Float();
    for (XObject const& object : physicsJointsOf(*this))
        XPhysicsJoint(object).ClearAnimation().InitializeAnimation(rate);
}

}  // namespace Tavo
