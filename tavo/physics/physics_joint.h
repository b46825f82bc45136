// XPhysicsJoint: the twin of a kinematic joint that a simulation moves. Its bodies, its limit and the constraints that
// pull it are objects of their own.
#pragma once
#include "tavo/kinematics/joint.h"

namespace Tavo {

class XPhysicsConstraint;

class XPhysicsJoint : public XTyped<XPhysicsJoint, XJoint, sg::PhysicsJointNode> {
public:
    static constexpr XWord TypeID = L"PhysicsJoint", DefaultName = L"physicsJoint",
                           DefaultConstraintSuffix = L"physicsConstraint",
                           DefaultTargetTransformSuffix = L"physicsConstraintTarget",
                           DefaultTargetHandleSuffix = L"physicsConstraintHandle",
                           DefaultTargetHandleFolder = L"physicsConstraintTargets", DefaultDriveType = L"SlerpDrive";
    static constexpr float DefaultWorldDamping = 0, DefaultStiffness = 0, DefaultDamping = 0,
                           DefaultMaximumAngularVelocity = 0;
    static constexpr float DefaultHandleSize = 0.1f, DefaultBoneRadius = 0.01f, DefaultLocatorRadius = 0.02f;  // metres
    static constexpr int DefaultBoneDisplayStyle = 0, DefaultAxesDisplayStyle = 0, DefaultLocatorDisplayStyle = 2;
    static constexpr float DefaultDriveStiffness = 1e6f, DefaultDriveDamping = 0, DefaultDriveBlendWeight = 1;
    static constexpr XColour DefaultColour{0.2f, 0.7843f, 0.2f, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(MotionEnabled, 58)
    TAVO_ATTRIBUTE(LinearDamping, 59)
    TAVO_ATTRIBUTE(AngularDamping, 60)
    TAVO_ATTRIBUTE(MaxAngularVelocity, 61)  // radians per second
    TAVO_ATTRIBUTE(SwingStiffness, 62)
    TAVO_ATTRIBUTE(TwistStiffness, 63)
    TAVO_ATTRIBUTE(SwingDamping, 64)
    TAVO_ATTRIBUTE(SlerpDamping, 64)  // the swing's damping as well, and not the drive's: meant so
    TAVO_ATTRIBUTE(TwistDamping, 65)
    TAVO_ATTRIBUTE_XYZ(LinearVelocity, 66)   // metres per second
    TAVO_ATTRIBUTE_XYZ(AngularVelocity, 69)  // radians per second
    TAVO_ATTRIBUTE(DriveEnabled, 72)
    TAVO_ATTRIBUTE(DriveBlendWeight, 73)
    TAVO_ATTRIBUTE(DriveType, 74)  // "SlerpDrive" or "TwistSwingDrive"
    TAVO_ATTRIBUTE(DriveSlerpStiffness, 75)
    TAVO_ATTRIBUTE(DriveSwingStiffness, 76)
    TAVO_ATTRIBUTE(DriveTwistStiffness, 77)
    TAVO_ATTRIBUTE(DriveSlerpDamping, 78)
    TAVO_ATTRIBUTE(DriveSwingDamping, 79)
    TAVO_ATTRIBUTE(DriveTwistDamping, 80)
    TAVO_ATTRIBUTE(DriveInputMatrix, 81)
    TAVO_ATTRIBUTE(DriveOutputMatrix, 82)
    TAVO_ATTRIBUTE(ShowActiveDrive, 83)

    XPhysicsConstraint PhysicsConstraint() const;  // the first; invalid without one

    void onInitialize() override;

private:
    void initializeDrawing();
    void initializeMotion();
    void initializeDrive();
};
using XPhysicsJointDef = XTypedDef<XPhysicsJoint>;

}  // namespace Tavo
