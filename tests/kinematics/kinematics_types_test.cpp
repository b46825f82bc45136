// The typed handles of this floor: what they are, and the numbers of their attributes.
#include "tests/objects/typed_object.h"

namespace Tavo {
namespace {

using KinematicsTypes = StartedApplication;

TEST_F(KinematicsTypes, AreValidOnTheirOwnNodesAlone) {
    expectType<XCharacter>(scene(), L"Character", L"Character");
    expectType<XIKHandle>(scene(), L"IKHandle", L"IKHandle");
    expectType<XIKSolver>(scene(), L"IKSolver", L"IKSolver");
    expectType<XJointIKParams>(scene(), L"JointIKParams", L"JointIKParams");
    expectType<XJointLimit>(scene(), L"JointLimit", L"JointLimit");
    expectType<XJointRetargetParams>(scene(), L"JointRetargetParams", L"JointRetargetParams");
    expectType<XMeshInstance>(scene(), L"MeshInstance", L"MeshInstance");
    expectType<XPoleVector>(scene(), L"PoleVector", L"PoleVector");
    expectType<XPrimitive>(scene(), L"Shape", L"Primitive");
    expectType<XRetarget>(scene(), L"Retarget", L"Retarget");
}

// clang-format off
TEST_F(KinematicsTypes, XCharacterHasItsAttributesAtTheirNumbers) {
    XCharacter const o = makeObject<XCharacter>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, IsEditable),
    });
}

TEST_F(KinematicsTypes, XIKHandleHasItsAttributesAtTheirNumbers) {
    XIKHandle const o = makeObject<XIKHandle>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, IKSolverReference), TAVO_NUMBER(o, 52, IKRootReference),
        TAVO_NUMBER(o, 53, IKEffectorReference), TAVO_NUMBER(o, 54, IKRootWorldMatrix),
        TAVO_NUMBER(o, 55, IKEndEffectorWorldMatrix), TAVO_NUMBER(o, 56, IKHandleEnabled),
        TAVO_NUMBER(o, 57, SolverParameters), TAVO_NUMBER(o, 58, IsPrimary),
    });
}

TEST_F(KinematicsTypes, XIKSolverHasItsAttributesAtTheirNumbers) {
    XIKSolver const o = makeObject<XIKSolver>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 1, AllowCompute), TAVO_NUMBER(o, 8, IKHandleReferences),
        TAVO_NUMBER(o, 9, EndEffectorTransforms), TAVO_NUMBER(o, 10, RootJoints), TAVO_NUMBER(o, 11, JointHierarchy),
        TAVO_NUMBER(o, 12, EndEffectorIndexList), TAVO_NUMBER(o, 13, RootIndexList), TAVO_NUMBER(o, 14, InputTargets),
        TAVO_NUMBER(o, 15, BindPoses), TAVO_NUMBER(o, 16, InputGeometry), TAVO_NUMBER(o, 17, OutputGeometry),
        TAVO_NUMBER(o, 18, IKHandleEnabled), TAVO_NUMBER(o, 19, IKSolverEnabled), TAVO_NUMBER(o, 20, DrawDebugLines),
        TAVO_NUMBER(o, 21, RootLocked), TAVO_NUMBER(o, 22, LockRootX), TAVO_NUMBER(o, 23, LockRootY),
        TAVO_NUMBER(o, 24, LockRootZ), TAVO_NUMBER(o, 25, ContinuousMode), TAVO_NUMBER(o, 26, MaxIterations),
        TAVO_NUMBER(o, 27, MoreBias), TAVO_NUMBER(o, 28, ReverseBias), TAVO_NUMBER(o, 29, PositionAccuracy),
        TAVO_NUMBER(o, 30, OrientationAccuracy), TAVO_NUMBER(o, 31, DisableAllLimits),
        TAVO_NUMBER(o, 32, IKHandleParams), TAVO_NUMBER(o, 33, JointIKParams), TAVO_NUMBER(o, 34, AssociatedObjects),
    });
}

TEST_F(KinematicsTypes, XJointIKParamsHasItsAttributesAtTheirNumbers) {
    XJointIKParams const o = makeObject<XJointIKParams>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 8, Parameters),
    });
}

TEST_F(KinematicsTypes, XJointRetargetParamsHasItsAttributesAtTheirNumbers) {
    XJointRetargetParams const o = makeObject<XJointRetargetParams>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, Parameters),
    });
}

TEST_F(KinematicsTypes, XRetargetHasItsAttributesAtTheirNumbers) {
    XRetarget const o = makeObject<XRetarget>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 1, AllowCompute), TAVO_NUMBER(o, 8, SourceJoints), TAVO_NUMBER(o, 9, TargetJoints),
        TAVO_NUMBER(o, 10, InputSourceGeometry), TAVO_NUMBER(o, 11, OutputTargetGeometry),
        TAVO_NUMBER(o, 12, SourceHierarchy), TAVO_NUMBER(o, 13, TargetHierarchy), TAVO_NUMBER(o, 14, Enabled),
        TAVO_NUMBER(o, 15, DrawDebugLines), TAVO_NUMBER(o, 16, SourceJointParams),
        TAVO_NUMBER(o, 17, TargetJointParams), TAVO_NUMBER(o, 18, DisableAllLimits),
        TAVO_NUMBER(o, 19, AssociatedObjects),
    });
}

TEST_F(KinematicsTypes, XJointLimitHasItsAttributesAtTheirNumbers) {
    XJointLimit const o = makeObject<XJointLimit>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, JointReference), TAVO_NUMBER(o, 52, JointWorldMatrix),
        TAVO_NUMBER(o, 53, JointLocalMatrix), TAVO_NUMBER(o, 54, MovingOffsetX), TAVO_NUMBER(o, 55, MovingOffsetY),
        TAVO_NUMBER(o, 56, MovingOffsetZ), TAVO_NUMBER(o, 57, MovingOffsetMatrix), TAVO_NUMBER(o, 58, LimitType),
        TAVO_NUMBER(o, 59, Swing1Active), TAVO_NUMBER(o, 60, Swing1Angle), TAVO_NUMBER(o, 61, Swing2Active),
        TAVO_NUMBER(o, 62, Swing2Angle), TAVO_NUMBER(o, 63, TwistActive), TAVO_NUMBER(o, 64, TwistAngle),
        TAVO_NUMBER(o, 65, TwistOffset), TAVO_NUMBER(o, 66, SoftSwingActive), TAVO_NUMBER(o, 67, SoftSwing1Ratio),
        TAVO_NUMBER(o, 68, SoftSwing2Ratio), TAVO_NUMBER(o, 69, SoftTwistActive), TAVO_NUMBER(o, 70, SoftTwistRatio),
        TAVO_NUMBER(o, 71, DisplayScale), TAVO_NUMBER(o, 72, ShowFixedAxes), TAVO_NUMBER(o, 73, ShowMovingAxes),
    });
}

TEST_F(KinematicsTypes, XMeshInstanceHasItsAttributesAtTheirNumbers) {
    XMeshInstance const o = makeObject<XMeshInstance>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 18, Mesh), TAVO_NUMBER(o, 19, Material), TAVO_NUMBER(o, 20, InheritColour),
        TAVO_NUMBER(o, 21, InheritScale), TAVO_NUMBER(o, 22, DisplayStyle), TAVO_NUMBER(o, 23, HighlightStyle),
        TAVO_NUMBER(o, 24, DoubleSided),
    });
}

TEST_F(KinematicsTypes, XPoleVectorHasItsAttributesAtTheirNumbers) {
    XPoleVector const o = makeObject<XPoleVector>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, ControlJoint), TAVO_NUMBER(o, 52, EndEffector), TAVO_NUMBER(o, 53, Enabled),
        TAVO_NUMBER(o, 54, Weight), TAVO_NUMBER(o, 55, PoleVector),
    });
}

TEST_F(KinematicsTypes, XPrimitiveHasItsAttributesAtTheirNumbers) {
    XPrimitive const o = makeObject<XPrimitive>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 18, Shape), TAVO_NUMBER(o, 19, Width), TAVO_NUMBER(o, 20, Height), TAVO_NUMBER(o, 21, Length),
        TAVO_NUMBER(o, 22, Radius), TAVO_NUMBER(o, 23, Volume), TAVO_NUMBER(o, 24, InheritColour),
        TAVO_NUMBER(o, 25, InheritScale), TAVO_NUMBER(o, 26, DisplayStyle), TAVO_NUMBER(o, 27, HighlightStyle),
        TAVO_NUMBER(o, 29, RadialSegments), TAVO_NUMBER(o, 30, ArcSegments),
    });
}
// clang-format on

TEST_F(KinematicsTypes, ASolverIsNotDeletedByTheUser) {
    XIKSolver solver = makeObject<XIKSolver>(scene());
    EXPECT_FALSE(solver.SupportsDeletion());
    solver.Delete();
    EXPECT_TRUE(solver.IsValid());
    EXPECT_EQ(log.errors().size(), 1u);
}

TEST_F(KinematicsTypes, ASolverIsLeftAsItsNodeGivesIt) {
    XIKSolver solver = makeObject<XIKSolver>(scene());
    solver.MaxIterations().SetInteger(7);
    solver.Initialize();
    EXPECT_EQ(solver.MaxIterations().Integer(), 7);
}

TEST_F(KinematicsTypes, ARetargeterMayBeDeletedByTheUser) {
    XRetarget node = makeObject<XRetarget>(scene());
    EXPECT_TRUE(node.SupportsDeletion());
    node.Delete();
    EXPECT_FALSE(node.IsValid());
}

TEST_F(KinematicsTypes, ACharacterStaysWhereItIs) {
    EXPECT_FALSE(makeObject<XCharacter>(scene()).SupportsReparenting());
    EXPECT_TRUE(makeObject<XIKHandle>(scene()).SupportsReparenting());
}

}  // namespace
}  // namespace Tavo
