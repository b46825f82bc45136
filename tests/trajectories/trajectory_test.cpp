// What the handle is, and what it asks the node for.
#include "tests/objects/typed_object.h"
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

TEST_F(TrajectoryTest, IsValidOnItsOwnNodeAlone) { expectType<XTrajectory>(scene(), L"Trajectory", L"Trajectory"); }

// clang-format off
TEST_F(TrajectoryTest, HasItsAttributesAtTheirNumbers) {
    XTrajectory const o = makeObject<XTrajectory>(scene());
    expectNumbers(o, {
        TAVO_NUMBER(o, 51, InputValue), TAVO_NUMBER(o, 52, InputUnits), TAVO_NUMBER(o, 53, OutputUnits),
        TAVO_NUMBER(o, 54, PreInfinity), TAVO_NUMBER(o, 55, PostInfinity),
        TAVO_NUMBER(o, 56, IsTranslationCurveSampled), TAVO_NUMBER(o, 57, InterpolationTangentsCoeff),
        TAVO_NUMBER(o, 58, TranslationKeyframesArray), TAVO_NUMBER(o, 59, IsRotationCurveSampled),
        TAVO_NUMBER(o, 60, RotationKeyframesArray), TAVO_NUMBER(o, 61, MaxArcLength),
        TAVO_NUMBER(o, 62, UseSafeGuards), TAVO_NUMBER(o, 63, SafeGuardsArray),
        TAVO_NUMBER(o, 64, TimingCurveFirstKeyTime), TAVO_NUMBER(o, 65, TimingCurveLastKeyTime),
        TAVO_NUMBER(o, 66, TimingHandlesNum), TAVO_NUMBER(o, 67, TimingEnforceMonotonic),
        TAVO_NUMBER(o, 68, TimingPreserveTips), TAVO_NUMBER(o, 69, TimingTipsDropoffRange),
        TAVO_NUMBER(o, 70, TimingTipsDropoffPinch), TAVO_NUMBER(o, 71, TimingTipsDropoffBubble),
        TAVO_NUMBER(o, 72, TimingHandlesTimesArray), TAVO_NUMBER(o, 73, TimingHandlesArcLengthsArray),
        TAVO_NUMBER(o, 74, TimingHandlesPositionsArray), TAVO_NUMBER(o, 75, SmartEditing),
        TAVO_NUMBER(o, 76, PaintOnCurve), TAVO_NUMBER(o, 77, PaintThicknessVerticesNum),
        TAVO_NUMBER(o, 78, PaintCurveRadius), TAVO_NUMBER(o, 79, PaintAnimationName),
        TAVO_NUMBER(o, 80, LocalCurveMatrix), TAVO_NUMBER(o, 81, WorldCurveMatrix),
        TAVO_NUMBER(o, 82, ShowCurrentFrame), TAVO_NUMBER(o, 83, ShowTranslationHandles),
        TAVO_NUMBER(o, 84, ShowRotationCurves), TAVO_NUMBER(o, 85, ShowRotationKeys),
        TAVO_NUMBER(o, 86, ShowRotationHandles), TAVO_NUMBER(o, 87, ShowTiming), TAVO_NUMBER(o, 88, ShowSafeGuards),
    });
}
// clang-format on

TEST_F(TrajectoryTest, ANewOneIsNamedColouredAndShown) {
    EXPECT_EQ(path.Name(), L"trajectory");
    EXPECT_TRUE(path.Visible().Boolean());
    EXPECT_EQ(path.ShowCurrentFrame().Boolean() || path.ShowRotationCurves().Boolean() || path.ShowTiming().Boolean(),
              false);
    float const colour[] = {0, 0.75F, 1, 1};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(path.Colour().Attribute(i).Float(), colour[i]);
}

TEST_F(TrajectoryTest, AParameterIsTruncatedToFindItsKey) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    path.DeleteTranslationKeyframe(0);
    EXPECT_EQ(path.ParameterIndex(0.99F), 0);
    EXPECT_EQ(path.ParameterIndex(1.99F), 1);
    for (float parameter : {2.F, -1.F, 1e30F, -1e30F, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(path.ParameterIndex(parameter), -1) << parameter;
}

TEST_F(TrajectoryTest, ControlPointsOfKeysWithoutHandlesAreAutomatic) {
    append({{0, 0, 0}, {3, 0, 0}, {6, 0, 0}});
    XVector3 point(7, 7, 7);
    EXPECT_TRUE(path.GetInputTangentControlPoint(1, point));
    EXPECT_POINT(point, 2, 0, 0);
    EXPECT_TRUE(path.GetOutputTangentControlPoint(1, point));
    EXPECT_POINT(point, 4, 0, 0);
}

TEST_F(TrajectoryTest, AnEndHasNoControlPointOutside) {
    append({{0, 0, 0}, {3, 0, 0}});
    XVector3 point(7, 7, 7);
    EXPECT_FALSE(path.GetInputTangentControlPoint(0, point));
    EXPECT_FALSE(path.GetOutputTangentControlPoint(1, point));
    EXPECT_FALSE(path.GetOutputTangentControlPoint(5, point));
    EXPECT_POINT(point, 7, 7, 7);
}

TEST_F(TrajectoryTest, MapsBetweenParameterAndFraction) {
    append({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}});
    EXPECT_EQ(path.ArcLengthMap(1), 0.25F);
    EXPECT_EQ(path.InverseArcLengthMap(0.25F), 1);
    EXPECT_EQ(path.InverseArcLengthMap(0.625F), 1.5F);
    EXPECT_EQ(path.MaxArcLength().Float(), 4);
}

TEST_F(TrajectoryTest, ComputesThePositionAtAFraction) {
    append({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}});
    XVector3 position;
    EXPECT_TRUE(path.ComputePosition(0.5F, position));
    EXPECT_POINT(position, 2, 0, 0);
}

TEST_F(TrajectoryTest, FindsThePlaceNearestToARay) {
    append({{0, 0, 0}, {4, 0, 0}});
    float fraction = -1;
    EXPECT_TRUE(path.FindRayClosestPointOnCurveParallelProjection({1, 5, 0}, {0, -1, 0}, fraction));
    EXPECT_NEAR(fraction, 0.25F, 1e-5F);
    EXPECT_TRUE(path.FindRayClosestPointOnCurvePerspectiveProjection({3, 5, 0}, {3, 5, 0}, {0, -1, 0}, fraction));
    EXPECT_NEAR(fraction, 0.75F, 1e-5F);
}

TEST_F(TrajectoryTest, APathWithoutKeysHasNoPlaces) {
    XVector3 position(7, 7, 7);
    float fraction = 0.5F;
    EXPECT_FALSE(path.ComputePosition(0.5F, position));
    EXPECT_FALSE(path.FindRayClosestPointOnCurveParallelProjection({1, 5, 0}, {0, -1, 0}, fraction));
    EXPECT_POINT(position, 7, 7, 7);
    EXPECT_EQ(fraction, 0.5F);
}

TEST_F(TrajectoryTest, AQuaternionGoesInAndOutOfACompound) {
    path.AttachRotationKeyframe(0, XQuaternion());
    XAttribute key = path.RotationKeyframesArray().Attribute(0);
    XQuaternion const turned(XVector3(0.3F, 0, 0));
    EXPECT_TRUE(XTrajectory::SetQuaternionFromAttribute(key, 2, turned));
    XQuaternion read;
    EXPECT_TRUE(XTrajectory::QuaternionFromAttribute(key, 2, read));
    EXPECT_TRUE(read.IsEqual(turned));
}

TEST_F(TrajectoryTest, WhatIsNoQuaternionIsLeftAlone) {
    path.AttachRotationKeyframe(0, XQuaternion());
    XAttribute key = path.RotationKeyframesArray().Attribute(0);
    XQuaternion const turned(XVector3(0.3F, 0, 0));
    XQuaternion read = turned;
    XAttribute none;
    for (int sub : {-1, 0, 1, 6}) {
        EXPECT_FALSE(XTrajectory::QuaternionFromAttribute(key, sub, read)) << sub;
        EXPECT_FALSE(XTrajectory::SetQuaternionFromAttribute(key, sub, turned)) << sub;
    }
    EXPECT_FALSE(XTrajectory::SetQuaternionFromAttribute(none, 2, turned));
    EXPECT_TRUE(read.IsEqual(turned));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(TrajectoryTest, KnowsTheCurveThatFeedsIt) {
    EXPECT_FALSE(path.TimingCurve().IsValid());
    XAnimation const curve = connectTiming({0, 1}, {0, 1});
    EXPECT_TRUE(path.TimingCurve() == curve);
}

TEST_F(TrajectoryTest, AnInvalidOneDoesNothingAndSaysNothing) {
    XTrajectory none;
    Floats weights{1};
    XVector3 const v(1, 2, 3);
    XQuaternion const q;
    none.AppendTranslationKeyframe(v).InsertTranslationKeyframe(0, v, v).DeleteTranslationKeyframe(0);
    none.AttachRotationKeyframe(0, q).EditRotationKeyframeOrientation(0, q).EditRotationKeyframeAttachPoint(0, 1);
    none.UseSafeGuards(true).AddSafeGuard(v, 1, XDropOff()).DeleteSafeGuard(0);
    none.EditTranslationKeyframePosition(0, v).BendTranslationKeyframePosition_interactive(weights, v, true);
    none.SlideTimingOnTrajectory(3, {0}, XDropOff(), 1).InsertInBetweenTranslationKeyframe(0, 1);
    none.ComputeTranslationWeights({0}, XDropOff(), weights);
    EXPECT_TRUE(weights.empty());
    EXPECT_FALSE(none.ToSpline());
    EXPECT_EQ(none.ArcLengthMap(1), 0);
    EXPECT_EQ(none.ParameterIndex(0), -1);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(TrajectoryTest, OneThatMayNotBeEditedStaysAsItIs) {
    append({{0, 0, 0}, {1, 0, 0}});
    sample();
    connectTiming({0, 1}, {0, 1});
    scene().SetSceneMode(ReadOnlyMode);
    ASSERT_FALSE(path.IsEditable());
    State const before = state();
    path.AppendTranslationKeyframe({1, 2, 3}).EditTranslationKeyframePosition(0, {1, 1, 1});
    path.AttachRotationKeyframe(0, XQuaternion()).AddSafeGuard({}, 1, XDropOff()).UseSafeGuards(true);
    path.SlideTimingOnTrajectory(3, {0, 1, 2}, XDropOff(), 1);
    EXPECT_FALSE(path.ToSpline());
    EXPECT_EQ(state(), before);
    EXPECT_FALSE(path.UseSafeGuards().Boolean());
    EXPECT_TRUE(log.entries.empty());
}

}  // namespace
}  // namespace Tavo
