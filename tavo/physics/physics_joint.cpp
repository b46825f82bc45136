#include "tavo/physics/physics_joint.h"
#include "tavo/physics/physics_constraint.h"

namespace Tavo {

XPhysicsConstraint XPhysicsJoint::PhysicsConstraint() const {
    return XPhysicsConstraint(FindChildObject(XPhysicsConstraint::TypeID, IsObjectType));
}

void XPhysicsJoint::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    initializeDrawing();
    initializeMotion();
    initializeDrive();
}

void XPhysicsJoint::initializeDrawing() {
    BoneRadius().SetFloat(DefaultBoneRadius);
    LocatorRadius().SetFloat(DefaultLocatorRadius);
    AxesStyle().SetEnumeration(DefaultAxesDisplayStyle);
    BoneStyle().SetEnumeration(DefaultBoneDisplayStyle);
    LocatorStyle().SetEnumeration(DefaultLocatorDisplayStyle);
}

void XPhysicsJoint::initializeMotion() {
    MotionEnabled().SetBoolean(true);
    for (XAttribute damping : {LinearDamping(), AngularDamping()}) damping.SetFloat(DefaultWorldDamping);
    MaxAngularVelocity().SetFloat(DefaultMaximumAngularVelocity);
    for (XAttribute stiffness : {SwingStiffness(), TwistStiffness()}) stiffness.SetFloat(DefaultStiffness);
    for (XAttribute damping : {SwingDamping(), TwistDamping()}) damping.SetFloat(DefaultDamping);
}

void XPhysicsJoint::initializeDrive() {
    DriveEnabled().SetBoolean(false);
    DriveBlendWeight().SetFloat(DefaultDriveBlendWeight);
    DriveType().SetString(DefaultDriveType);
    for (XAttribute stiffness : {DriveSlerpStiffness(), DriveSwingStiffness(), DriveTwistStiffness()})
        stiffness.SetFloat(DefaultDriveStiffness);
    for (XAttribute damping : {DriveSlerpDamping(), DriveSwingDamping(), DriveTwistDamping()})
        damping.SetFloat(DefaultDriveDamping);
    ShowActiveDrive().SetBoolean(false);
}

}  // namespace Tavo
