#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

struct RotationKeys : TrajectoryTest {
    RotationKeys() { append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}); }
    XVector3 inTangent(int i) const { return rotation(i).Attribute(1).Vector(); }
    XVector3 outTangent(int i) const { return rotation(i).Attribute(3).Vector(); }
    int interpolation(int i) const { return rotation(i).Attribute(4).Enumeration(); }
    int continuity(int i) const { return rotation(i).Attribute(5).Enumeration(); }
    void setContinuity(int value) { rotation(0).Attribute(5).SetEnumeration(value); }

    XQuaternion const turned{XVector3(0.5F, 0, 0)}, other{XVector3(0, 0.3F, 0.2F)};
};

TEST_F(RotationKeys, AnOrientationAloneMakesALinearKey) {
    path.AttachRotationKeyframe(1.5F, turned);
    EXPECT_EQ(attach(0), 1.5F);
    EXPECT_TRUE(orientation(0).IsEqual(turned));
    EXPECT_EQ(interpolation(0), 1);
    EXPECT_EQ(continuity(0), 1);
}

TEST_F(RotationKeys, OneTangentStandsOnBothSides) {
    path.AttachRotationKeyframe(0, turned, {1, 2, 3});
    EXPECT_POINT(inTangent(0), 1, 2, 3);
    EXPECT_POINT(outTangent(0), 1, 2, 3);
    EXPECT_EQ(interpolation(0), 2);
    EXPECT_EQ(continuity(0), 2);
}

TEST_F(RotationKeys, TwoTangentsMakeABrokenKey) {
    path.AttachRotationKeyframe(0, {1, 0, 0}, turned, {0, 2, 0});
    EXPECT_POINT(inTangent(0), 1, 0, 0);
    EXPECT_POINT(outTangent(0), 0, 2, 0);
    EXPECT_EQ(interpolation(0), 2);
    EXPECT_EQ(continuity(0), 0);
}

TEST_F(RotationKeys, AnOccupiedPlaceIsAnErrorInTwoSpellingsAndChangesNothing) {
    path.AttachRotationKeyframe(1, turned);
    State const before = state();
    path.AttachRotationKeyframe(1.0000005F, other);
    path.AttachRotationKeyframe(1, other, {1, 0, 0}).AttachRotationKeyframe(1, {1, 0, 0}, other, {1, 0, 0});
    EXPECT_EQ(state(), before);
    EXPECT_THAT(log.errors(), ElementsAre(L"A rotation keyframe already exists at that attachPoint.",
                                          L"A rotation keyframe already exists at that attach point.",
                                          L"A rotation keyframe already exists at that attach point."));
}

TEST_F(RotationKeys, TwoPlacesFurtherApartThanTheToleranceAreTwo) {
    path.AttachRotationKeyframe(1, turned).AttachRotationKeyframe(1.00001F, other);
    EXPECT_EQ(rotationCount(), 2);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(RotationKeys, AnOrientationIsMultipliedFromTheLeft) {
    path.AttachRotationKeyframe(0, turned);
    path.EditRotationKeyframeOrientation(0, other);
    EXPECT_TRUE(orientation(0).IsEqual(XQuaternion().Multiply(other, turned)));
    EXPECT_FALSE(orientation(0).IsEqual(XQuaternion().Multiply(turned, other)));
}

TEST_F(RotationKeys, AListOfOrientationsTakesEachKeyOnce) {
    path.AttachRotationKeyframe(0, turned).AttachRotationKeyframe(1, turned).AttachRotationKeyframe(2, turned);
    path.EditRotationKeyframeOrientation(Floats{0, 2, 0, 7}, other);
    XQuaternion const product = XQuaternion().Multiply(other, turned);
    EXPECT_TRUE(orientation(0).IsEqual(product));
    EXPECT_TRUE(orientation(1).IsEqual(turned));
    EXPECT_TRUE(orientation(2).IsEqual(product));
}

TEST_F(RotationKeys, AnAttachPointStaysOnThePath) {
    path.AttachRotationKeyframe(1, turned);
    path.EditRotationKeyframeAttachPoint(1, 0.75F);
    EXPECT_EQ(attach(0), 1.75F);
    path.EditRotationKeyframeAttachPoint(1.75F, 100);
    EXPECT_EQ(attach(0), 3);
    path.EditRotationKeyframeAttachPoint(3, -100);
    EXPECT_EQ(attach(0), 0);
}

TEST_F(RotationKeys, AnAttachPointMayComeToLieOnAnother) {
    path.AttachRotationKeyframe(1, turned).AttachRotationKeyframe(2, other);
    path.EditRotationKeyframeAttachPoint(1, 1);
    EXPECT_EQ(attach(0), 2);
    EXPECT_EQ(attach(1), 2);
}

TEST_F(RotationKeys, AttachPointsOfAListAreFoundBeforeAnyMoves) {
    path.AttachRotationKeyframe(0, turned).AttachRotationKeyframe(1, turned);
    path.EditRotationKeyframeAttachPoint(Floats{0, 1}, 1);
    EXPECT_EQ(attach(0), 1);
    EXPECT_EQ(attach(1), 2);
}

TEST_F(RotationKeys, WithoutTranslationKeysAnAttachPointGoesToTheStart) {
    path.DeleteTranslationKeyframe({0, 1, 2, 3});
    path.AttachRotationKeyframe(1, turned);
    path.EditRotationKeyframeAttachPoint(1, 1);
    EXPECT_EQ(attach(0), 0);
}

TEST_F(RotationKeys, TangentsOfABrokenKeyAreSetAlone) {
    path.AttachRotationKeyframe(0, {1, 0, 0}, turned, {0, 2, 0});
    path.EditRotationKeyframeInTangent(0, {0, 0, 4});
    EXPECT_POINT(inTangent(0), 0, 0, 4);
    EXPECT_POINT(outTangent(0), 0, 2, 0);
    path.EditRotationKeyframeOutTangent(0, {5, 0, 0});
    EXPECT_POINT(inTangent(0), 0, 0, 4);
    EXPECT_POINT(outTangent(0), 5, 0, 0);
}

TEST_F(RotationKeys, TangentsOfALinearKeyPointTheSameWayAndKeepTheirRatio) {
    path.AttachRotationKeyframe(0, {1, 0, 0}, turned, {0, 2, 0});
    setContinuity(1);
    path.EditRotationKeyframeInTangent(0, {0, 0, 4});
    EXPECT_POINT(outTangent(0), 0, 0, 8);
    path.EditRotationKeyframeOutTangent(0, {2, 0, 0});
    EXPECT_POINT(inTangent(0), 1, 0, 0);
}

TEST_F(RotationKeys, TangentsOfALinearCoupledKeyAreEqual) {
    path.AttachRotationKeyframe(0, turned, {1, 0, 0});
    path.EditRotationKeyframeInTangent(0, {0, 0, 4});
    EXPECT_POINT(outTangent(0), 0, 0, 4);
    path.EditRotationKeyframeOutTangent(0, {0, 3, 0});
    EXPECT_POINT(inTangent(0), 0, 3, 0);
}

TEST_F(RotationKeys, ALinearKeyWithAZeroTangentDividesByZeroUnguarded) {
    path.AttachRotationKeyframe(0, {0, 0, 0}, turned, {0, 2, 0});
    setContinuity(1);
    path.EditRotationKeyframeInTangent(0, {0, 0, 4});
    EXPECT_TRUE(std::isinf(outTangent(0).Z()));
    EXPECT_TRUE(std::isnan(outTangent(0).X()));
}

TEST_F(RotationKeys, ContinuityBrokenSetsTheKindAlone) {
    path.AttachRotationKeyframe(0, turned, {1, 0, 0});
    path.EditRotationKeyframeContinuityType(0, L"broken");
    EXPECT_EQ(continuity(0), 0);
    EXPECT_POINT(inTangent(0), 1, 0, 0);
}

TEST_F(RotationKeys, ContinuityLinearTurnsBothTheSameWay) {
    path.AttachRotationKeyframe(0, {1, 0, 0}, turned, {0, 2, 0});
    path.EditRotationKeyframeContinuityType(0, L"linear");
    float const r = std::sqrt(5.F);
    EXPECT_EQ(continuity(0), 1);
    EXPECT_POINT(inTangent(0), 1 / r, 2 / r, 0);
    EXPECT_POINT(outTangent(0), 2 / r, 4 / r, 0);
}

TEST_F(RotationKeys, ContinuityLinearCoupledGivesBothTheMean) {
    path.AttachRotationKeyframe(0, {1, 0, 0}, turned, {0, 2, 0});
    path.EditRotationKeyframeContinuityType(Floats{0}, L"linearCoupled");
    EXPECT_EQ(continuity(0), 2);
    EXPECT_POINT(inTangent(0), 0.5F, 1, 0);
    EXPECT_POINT(outTangent(0), 0.5F, 1, 0);
}

TEST_F(RotationKeys, KindsAreSetByTheirWordsAndNoOthers) {
    path.AttachRotationKeyframe(0, turned).AttachRotationKeyframe(1, turned);
    path.EditRotationKeyframeInterpolationType(0, L"constant");
    EXPECT_EQ(interpolation(0), 0);
    path.EditRotationKeyframeInterpolationType(Floats{0, 1}, L"spline");
    EXPECT_EQ(interpolation(0) + interpolation(1), 4);
    State const before = state();
    path.EditRotationKeyframeInterpolationType(0, L"Linear").EditRotationKeyframeContinuityType(0, L"Coupled");
    EXPECT_EQ(state(), before);
}

TEST_F(RotationKeys, AreDeletedAloneOrInALIst) {
    for (float a : {0.F, 1.F, 2.F, 3.F}) path.AttachRotationKeyframe(a, turned);
    path.DeleteRotationKeyframe(1);
    path.DeleteRotationKeyframe(Floats{3, 0, 3, 9});
    EXPECT_EQ(rotationCount(), 1);
    EXPECT_EQ(attach(0), 2);
}

TEST_F(RotationKeys, WhereNoneIsNothingHappensAndNothingIsSaid) {
    path.AttachRotationKeyframe(0, turned);
    State const before = state();
    path.EditRotationKeyframeOrientation(2, other).EditRotationKeyframeAttachPoint(2, 1).DeleteRotationKeyframe(2);
    path.EditRotationKeyframeInTangent(2, {1, 1, 1}).EditRotationKeyframeOutTangent(2, {1, 1, 1});
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(RotationKeys, FollowThePathWhenTranslationKeysMove) {
    path.AttachRotationKeyframe(1.5F, turned);
    path.EditTranslationKeyframePosition(1, {0, 5, 0});
    EXPECT_EQ(attach(0), 1.5F);
}

// ---- with weights; keys at x = 0, 1, 2, 3 ----

TEST_F(RotationKeys, ADropoffTurnsPartOfTheWay) {
    for (float a : {0.F, 1.F, 2.F, 3.F}) path.AttachRotationKeyframe(a, turned);
    XDropOff const dropoff(2, XDropOff::RadialDropoff);
    path.EditRotationKeyframeOrientation(Floats{0}, dropoff, other);
    XQuaternion const half = XQuaternion().SphericalInterpolate(XQuaternion(), other, dropoff.ComputeWeight(1));
    XQuaternion const whole = XQuaternion().SphericalInterpolate(XQuaternion(), other, 1);
    EXPECT_TRUE(orientation(0).IsEqual(XQuaternion().Multiply(whole, turned)));
    EXPECT_TRUE(orientation(1).IsEqual(XQuaternion().Multiply(half, turned)));
    EXPECT_TRUE(orientation(2).IsEqual(turned)) << "a weight of exactly 0 leaves the key";
}

TEST_F(RotationKeys, ABallTurnsWhatItHolds) {
    for (float a : {0.F, 1.5F, 3.F}) path.AttachRotationKeyframe(a, turned);
    path.EditRotationKeyframeOrientationBallOfInfluence({1.5F, 0.1F, 0}, 0.2F, XDropOff(0.5F), other);
    EXPECT_TRUE(orientation(0).IsEqual(turned));
    EXPECT_FALSE(orientation(1).IsEqual(turned));
    EXPECT_TRUE(orientation(2).IsEqual(turned));
}

TEST_F(RotationKeys, ADropoffMovesAttachPointsByTheirWeightsAndKeepsThemOnThePath) {
    for (float a : {0.F, 1.F, 2.F, 3.F}) path.AttachRotationKeyframe(a, turned);
    XDropOff const dropoff(2, XDropOff::CurveDropoff);
    path.EditRotationKeyframeAttachPoint(Floats{3}, dropoff, 0.5F);
    EXPECT_EQ(attach(3), 3);
    EXPECT_FLOAT_EQ(attach(2), 2 + dropoff.ComputeWeight(1) * 0.5F);
    EXPECT_EQ(attach(1), 1);
}

TEST_F(RotationKeys, ABallMovesAttachPoints) {
    for (float a : {0.F, 1.F, 2.F}) path.AttachRotationKeyframe(a, turned);
    path.EditRotationKeyframeAttachPointBallOfInfluence({1, 0, 0}, 0.5F, XDropOff(1), 0.25F);
    EXPECT_FLOAT_EQ(attach(0), XDropOff(1).ComputeWeight(0.5F) * 0.25F);
    EXPECT_EQ(attach(1), 1.25F);
}

TEST_F(RotationKeys, SafeGuardsDoNotHoldRotations) {
    path.AttachRotationKeyframe(1, turned);
    path.UseSafeGuards(true).AddSafeGuard({1, 0, 0}, 10, XDropOff());
    path.EditRotationKeyframeAttachPoint(Floats{1}, XDropOff(), 0.25F);
    EXPECT_EQ(attach(0), 1.25F);
}

TEST_F(RotationKeys, WeightedEditsNeverTouchTheTiming) {
    sample();
    connectTiming({0, 1, 2}, {0, 0.5F, 1});
    path.AttachRotationKeyframe(1, turned);
    Floats const before = times();
    path.EditRotationKeyframeOrientation(Floats{1}, XDropOff(), other);
    EXPECT_EQ(times(), before);
    EXPECT_TRUE(log.entries.empty());
}

}  // namespace
}  // namespace Tavo
