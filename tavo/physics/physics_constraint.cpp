#include "tavo/physics/physics_constraint.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/kinematics/wiring.h"
#include "tavo/objects/database.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

using Node = sg::TransformNode;

XTransform XPhysicsConstraint::PhysicsConstraintTarget() const { return XTransform(TargetInputMatrix().InputObject()); }

XTransform XPhysicsConstraint::ConnectTarget(XTransform const& source) {
    XTransform const target = PhysicsConstraintTarget();
    if (!target.IsValid() || !source.IsValid()) return *this;
    DisconnectTarget();
    XMatrixConversion conversion(Database().CreateObject(XMatrixConversion::TypeID));
    conversion.SetParent(target);
    bool const isPath = source.IsType(XTrajectory::TypeID);
    conversion.InputMatrix().ConnectInputTo(isPath ? XTrajectory(source).WorldCurveMatrix() : source.WorldMatrix());
    feedThree(target, Node::Translation, conversion, sg::MatrixConversionNode::Translation);
    feedThree(target, Node::Rotation, conversion, sg::MatrixConversionNode::Rotation);
    return *this;
}

// The six channels usually share one conversion: it is gone when the second asks for it.
XTransform XPhysicsConstraint::DisconnectTarget() {
    XTransform const target = PhysicsConstraintTarget();
    for (int first : {Node::Translation, Node::Rotation})
        for (int axis = 0; axis < 3 && target.IsValid(); ++axis) {
            XAttribute channel = target.Attribute(first + axis);
            if (XMatrixConversion conversion(channel.InputObject()); conversion.IsValid()) conversion.Delete();
            channel.DisconnectInput();
        }
    return *this;
}

void XPhysicsConstraint::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    ConstraintEnabled().SetBoolean(true);
    ConstraintMode().SetEnumeration(DefaultMode);
    MaximumRange().SetFloat(DefaultRange);
    TranslationStiffness().SetFloat(DefaultTranslationStiffness);
    RotationStiffness().SetFloat(DefaultRotationStiffness);
    TranslationDamping().SetFloat(DefaultTranslationDamping);
    RotationDamping().SetFloat(DefaultRotationDamping);
    ForceLimit().SetFloat(DefaultForceLimit);
    TorqueLimit().SetFloat(DefaultTorqueLimit);
}

}  // namespace Tavo
