// The typed handles of this floor: what they are, and the numbers of their attributes.
#include "tests/objects/typed_object.h"

namespace Tavo {
namespace {

using PhysicsTypes = StartedApplication;

TEST_F(PhysicsTypes, AreValidOnTheirOwnNodesAlone) {
    expectType<XPhysicsBody>(scene(), L"PhysicsBody", L"PhysicsBody");
    expectType<XPhysicsCharacter>(scene(), L"PhysicsCharacter", L"PhysicsCharacter");
    expectType<XPhysicsConstraint>(scene(), L"PhysicsConstraint", L"PhysicsConstraint");
    expectType<XPhysicsJoint>(scene(), L"PhysicsJoint", L"PhysicsJoint");
    expectType<XPhysicsJointLimit>(scene(), L"PhysicsJointLimit", L"PhysicsJointLimit");
    expectType<XPhysicsMeshInstance>(scene(), L"PhysicsMeshInstance", L"PhysicsMeshInstance");
}

// clang-format off
TEST_F(PhysicsTypes, XPhysicsBodyHasItsAttributesAtTheirNumbers) {
    XPhysicsBody const o = makeObject<XPhysicsBody>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 31, Density), TAVO_NUMBER(o, 32, Restitution), TAVO_NUMBER(o, 33, StaticFriction),
        TAVO_NUMBER(o, 34, DynamicFriction), TAVO_NUMBER(o, 35, SkinWidth),
    });
}

TEST_F(PhysicsTypes, XPhysicsConstraintHasItsAttributesAtTheirNumbers) {
    XPhysicsConstraint const o = makeObject<XPhysicsConstraint>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, TargetInputMatrix), TAVO_NUMBER(o, 52, TargetOutputMatrix),
        TAVO_NUMBER(o, 53, ConstraintEnabled), TAVO_NUMBER(o, 54, ConstraintMode),
        TAVO_NUMBER(o, 55, TargetBlendWeight), TAVO_NUMBER(o, 56, ShowCurrentFrame),
        TAVO_NUMBER(o, 57, ShowTargetFrame), TAVO_NUMBER(o, 58, WorkingRotationX),
        TAVO_NUMBER(o, 59, WorkingRotationY), TAVO_NUMBER(o, 60, WorkingRotationZ),
        TAVO_NUMBER(o, 61, TranslationXActive), TAVO_NUMBER(o, 62, TranslationYActive),
        TAVO_NUMBER(o, 63, TranslationZActive), TAVO_NUMBER(o, 64, RotationXActive),
        TAVO_NUMBER(o, 65, RotationYActive), TAVO_NUMBER(o, 66, RotationZActive), TAVO_NUMBER(o, 67, MaximumRange),
        TAVO_NUMBER(o, 68, TranslationStiffness), TAVO_NUMBER(o, 69, RotationStiffness),
        TAVO_NUMBER(o, 70, TranslationDamping), TAVO_NUMBER(o, 71, RotationDamping), TAVO_NUMBER(o, 72, ForceLimit),
        TAVO_NUMBER(o, 73, TorqueLimit), TAVO_NUMBER(o, 74, SpeedMultiplier), TAVO_NUMBER(o, 75, SpeedLimit),
        TAVO_NUMBER(o, 76, RelativeSpeedLimit),
    });
}

TEST_F(PhysicsTypes, XPhysicsJointHasItsAttributesAtTheirNumbers) {
    XPhysicsJoint const o = makeObject<XPhysicsJoint>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 58, MotionEnabled), TAVO_NUMBER(o, 59, LinearDamping), TAVO_NUMBER(o, 60, AngularDamping),
        TAVO_NUMBER(o, 61, MaxAngularVelocity), TAVO_NUMBER(o, 62, SwingStiffness),
        TAVO_NUMBER(o, 63, TwistStiffness), TAVO_NUMBER(o, 64, SwingDamping), TAVO_NUMBER(o, 65, TwistDamping),
        TAVO_NUMBER(o, 66, LinearVelocityX), TAVO_NUMBER(o, 67, LinearVelocityY), TAVO_NUMBER(o, 68, LinearVelocityZ),
        TAVO_NUMBER(o, 69, AngularVelocityX), TAVO_NUMBER(o, 70, AngularVelocityY),
        TAVO_NUMBER(o, 71, AngularVelocityZ), TAVO_NUMBER(o, 72, DriveEnabled), TAVO_NUMBER(o, 73, DriveBlendWeight),
        TAVO_NUMBER(o, 74, DriveType), TAVO_NUMBER(o, 75, DriveSlerpStiffness),
        TAVO_NUMBER(o, 76, DriveSwingStiffness), TAVO_NUMBER(o, 77, DriveTwistStiffness),
        TAVO_NUMBER(o, 78, DriveSlerpDamping), TAVO_NUMBER(o, 79, DriveSwingDamping),
        TAVO_NUMBER(o, 80, DriveTwistDamping), TAVO_NUMBER(o, 81, DriveInputMatrix),
        TAVO_NUMBER(o, 82, DriveOutputMatrix), TAVO_NUMBER(o, 83, ShowActiveDrive),
    });
}

TEST_F(PhysicsTypes, XPhysicsJointLimitHasItsAttributesAtTheirNumbers) {
    XPhysicsJointLimit const o = makeObject<XPhysicsJointLimit>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 74, Swing1Stiffness), TAVO_NUMBER(o, 75, Swing1Damping), TAVO_NUMBER(o, 76, Swing1Restitution),
        TAVO_NUMBER(o, 77, Swing2Stiffness), TAVO_NUMBER(o, 78, Swing2Damping), TAVO_NUMBER(o, 79, Swing2Restitution),
        TAVO_NUMBER(o, 80, LowerTwistStiffness), TAVO_NUMBER(o, 81, LowerTwistDamping),
        TAVO_NUMBER(o, 82, LowerTwistRestitution), TAVO_NUMBER(o, 83, UpperTwistStiffness),
        TAVO_NUMBER(o, 84, UpperTwistDamping), TAVO_NUMBER(o, 85, UpperTwistRestitution),
        TAVO_NUMBER(o, 86, SoftSwing1Stiffness), TAVO_NUMBER(o, 87, SoftSwing2Stiffness),
        TAVO_NUMBER(o, 88, SoftTwistStiffness),
    });
}

TEST_F(PhysicsTypes, XPhysicsMeshInstanceHasItsAttributesAtTheirNumbers) {
    XPhysicsMeshInstance const o = makeObject<XPhysicsMeshInstance>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 25, MotionEnabled), TAVO_NUMBER(o, 26, Density), TAVO_NUMBER(o, 27, Restitution),
        TAVO_NUMBER(o, 28, StaticFriction), TAVO_NUMBER(o, 29, DynamicFriction), TAVO_NUMBER(o, 30, SkinWidth),
    });
}
// clang-format on

// Of the two words the shorter one is that of the swing, not of the drive: meant so.
TEST_F(PhysicsTypes, SlerpDampingIsTheDampingOfTheSwing) {
    XPhysicsJoint const joint = makeObject<XPhysicsJoint>(scene());
    EXPECT_EQ(joint.SlerpDamping(), joint.SwingDamping());
    EXPECT_NE(joint.SlerpDamping(), joint.DriveSlerpDamping());
}

TEST_F(PhysicsTypes, APhysicsJointIsDrawnThickerThanTheJointThatItShadows) {
    XPhysicsJoint const joint = makeObject<XPhysicsJoint>(scene());
    EXPECT_GT(joint.BoneRadius().Float(), XJoint::DefaultBoneRadius);
    EXPECT_GT(joint.LocatorRadius().Float(), XJoint::DefaultLocatorRadius);
}

TEST_F(PhysicsTypes, ABodyIsAShapeOfItsOwnKind) {
    XPhysicsBody const body = makeObject<XPhysicsBody>(scene());
    EXPECT_TRUE(body.SupportsType(XPrimitive::TypeID) && body.SupportsType(XShape::TypeID));
    EXPECT_FALSE(body.IsType(XPrimitive::TypeID));
    EXPECT_TRUE(body.Transform().IsValid());
}

TEST_F(PhysicsTypes, AJointLimitIsAJointLimit) {
    EXPECT_TRUE(makeObject<XPhysicsJointLimit>(scene()).SupportsType(XJointLimit::TypeID));
}

}  // namespace
}  // namespace Tavo
