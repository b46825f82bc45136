// Weights as the interface gives them, and as edits apply them.
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

// The protected steps, for a look at what they give.
struct Weighing : XTrajectory {
    using XTrajectory::computeDropoffWeights_rotations;
    using XTrajectory::computeDropoffWeights_time;
    using XTrajectory::computeDropoffWeights_translations;
    using XTrajectory::computeSafeGuardWeights_translations;
    using XTrajectory::XTrajectory;
};

struct DropoffWeights : TrajectoryTest {
    // A hairpin of the width 0.5: keys 1 and 4 lie close in space and far along the path.
    void hairpin() { append({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}, {4, 0.5F, 0}, {1, 0.5F, 0}, {0, 0.5F, 0}}); }
    Floats listed(IDs const& keys, XDropOff const& dropoff) const {
        Floats weights{7, 7, 7};
        path.ComputeTranslationWeights(keys, dropoff, weights);
        return weights;
    }
    Floats inBall(XVector3 const& centre, float radius, XDropOff const& dropoff) const {
        Floats weights;
        Weighing(path).computeDropoffWeights_translations(centre, radius, dropoff, weights);
        return weights;
    }
    // Ten metres in ten seconds, at an even speed.
    void timedLine() {
        append({{0, 0, 0}, {10, 0, 0}});
        sample();
        connectTiming({0, 10}, {0, 1});
    }
    Floats timed(IDs const& handles, XDropOff const& dropoff) const {
        Floats weights;
        path.ComputeTimeWeights(path.TimingHandlesNum().Integer(), handles, dropoff, weights);
        return weights;
    }
};

TEST_F(DropoffWeights, AcrossAHairpinAreLowAlongThePathAndHighInSpace) {
    hairpin();
    EXPECT_EQ(listed({1}, XDropOff(2, XDropOff::CurveDropoff))[4], 0);
    EXPECT_GT(listed({1}, XDropOff(2, XDropOff::RadialDropoff))[4], 0.8F);
}

TEST_F(DropoffWeights, OfAListAreTheLargestThatAnyOfItsKeysGives) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {9, 0, 0}});
    for (unsigned mode : {0U, 1U}) {
        XDropOff const dropoff(2, mode);
        Floats const weights = listed({0, 3}, dropoff);
        EXPECT_EQ(weights, (Floats{1, dropoff.ComputeWeight(1), dropoff.ComputeWeight(1), 1, 0})) << mode;
    }
}

TEST_F(DropoffWeights, AreByTheSlotAndNotByTheParameter) {
    append({{0, 0, 0}, {1, 0, 0}});
    path.InsertTranslationKeyframe(0, {-5, 0, 0});
    EXPECT_EQ(listed({0}, XDropOff(2)), (Floats{0, 0, 1}));
}

TEST_F(DropoffWeights, OfKeysThatAreNotThereOrOfAnUnknownModeAreZero) {
    append({{0, 0, 0}, {1, 0, 0}});
    EXPECT_EQ(listed({5, -1}, XDropOff(2)), (Floats{0, 0}));
    EXPECT_EQ(listed({0}, XDropOff(2, 2)), (Floats{0, 0}));
}

TEST_F(DropoffWeights, InABallAreOneAndFallFromItsSurface) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3.5F, 0, 0}, {9, 0, 0}});
    XDropOff const dropoff(3);
    EXPECT_EQ(inBall({0, 0, 0}, 1, dropoff), (Floats{1, 1, dropoff.ComputeWeight(1), dropoff.ComputeWeight(2.5F), 0}));
}

TEST_F(DropoffWeights, OfABallWithoutRadiusAndRangeHoldTheCentreAlone) {
    append({{0, 0, 0}, {1e-6F, 0, 0}, {1, 0, 0}});
    EXPECT_EQ(inBall({0, 0, 0}, 0, XDropOff(0)), (Floats{1, 0, 0}));
    path.EditTranslationKeyframePositionBallOfInfluence({1, 0, 0}, 0, XDropOff(0), {0, 5, 0});
    EXPECT_POINT(at(2), 1, 5, 0);
    EXPECT_POINT(at(0), 0, 0, 0);
}

TEST_F(DropoffWeights, OfPinchAndBubbleBetweenZeroAndOneStayBetweenThem) {
    for (int i = 0; i < 60; ++i) path.AppendTranslationKeyframe(point(5));
    for (int run = 0; run < 100; ++run) {
        XDropOff const dropoff(number(0, 6), unsigned(run % 2), number(0, 1), number(0, 1));
        for (Floats const& weights : {listed({run % 60, 7}, dropoff), inBall(point(5), number(0, 3), dropoff)})
            for (float weight : weights) EXPECT_TRUE(weight >= 0 && weight <= 1) << weight;
    }
}

// ---- safe guards ----

TEST_F(DropoffWeights, WithinAGuardAreZeroWhateverTheDropoffSays) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    path.AddSafeGuard({1, 0, 0}, 0.5F, XDropOff(0)).UseSafeGuards(true);
    EXPECT_EQ(listed({0, 1, 2}, XDropOff(100)), (Floats{1, 0, 1}));
    EXPECT_EQ(inBall({1, 0, 0}, 100, XDropOff(100)), (Floats{1, 0, 1}));
}

TEST_F(DropoffWeights, CountGuardsOnlyWhileTheyAreInUse) {
    append({{0, 0, 0}, {1, 0, 0}});
    path.AddSafeGuard({1, 0, 0}, 0.5F, XDropOff(0));
    EXPECT_EQ(inBall({1, 0, 0}, 5, XDropOff(1)), (Floats{1, 1}));
}

TEST_F(DropoffWeights, OfGuardsMultiply) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    XDropOff const soft(4, XDropOff::RadialDropoff, 0.5F, 0.25F), curve(4, XDropOff::CurveDropoff, 0.5F, 0.25F);
    path.AddSafeGuard({0, 0, 0}, 0.5F, soft).AddSafeGuard({0, 1, 0}, 0, soft);
    Floats weights;
    Weighing(path).computeSafeGuardWeights_translations(weights);
    float const second = 1 - curve.ComputeWeight(std::sqrt(2.F));
    EXPECT_EQ(weights[0], 0);
    EXPECT_FLOAT_EQ(weights[1], (1 - curve.ComputeWeight(0.5F)) * second);
}

TEST_F(DropoffWeights, AKeyInAGuardNeverMovesByAWeighedEdit) {
    for (int i = 0; i < 80; ++i) path.AppendTranslationKeyframe(point(3), point(3), point(3));
    path.UseSafeGuards(true);
    for (int i = 0; i < 4; ++i) path.AddSafeGuard(point(2), number(1, 2), XDropOff(number(0, 2)));
    Floats free;
    Weighing(path).computeSafeGuardWeights_translations(free);
    std::vector<int> held;
    for (int i = 0; i < count(); ++i)
        if (free[std::size_t(i)] == 0) held.push_back(i);
    ASSERT_GT(held.size(), 3U);
    std::vector<State> before;
    for (int i : held) before.push_back(stateOf(slot(i)));
    for (int run = 0; run < 40; ++run) {
        XDropOff const dropoff(number(0.1F, 5), unsigned(run % 2));
        IDs const keys{run, 79 - run};
        path.EditTranslationKeyframePosition(keys, dropoff, point(1));
        path.EditTranslationKeyframePositionBallOfInfluence(point(3), 1, dropoff, point(1));
        path.ScaleTranslationKeyframePosition(keys, dropoff, XMatrix(), {1.1F, 0.9F, 1});
        path.RotateTranslationKeyframePositionBallOfInfluence(point(3), 1, dropoff, XMatrix(), point(0.3F));
    }
    for (std::size_t i = 0; i < held.size(); ++i) EXPECT_EQ(stateOf(slot(held[i])), before[i]) << held[i];
}

// ---- rotations ----

TEST_F(DropoffWeights, OfRotationsAreByTheirPlacesOnThePath) {
    append({{0, 0, 0}, {2, 0, 0}, {4, 0, 0}});
    for (float attach : {0.F, 0.5F, 2.F}) path.AttachRotationKeyframe(attach, XQuaternion());
    XDropOff const radial(2, XDropOff::RadialDropoff), curve(2, XDropOff::CurveDropoff);
    Floats weights;
    for (XDropOff const& dropoff : {radial, curve}) {
        Weighing(path).computeDropoffWeights_rotations(Floats{0.5F}, dropoff, weights);
        EXPECT_EQ(weights, (Floats{dropoff.ComputeWeight(1), 1, 0}));
    }
    Weighing(path).computeDropoffWeights_rotations(XVector3(1, 0, 0), 0.5F, radial, weights);
    EXPECT_EQ(weights, (Floats{radial.ComputeWeight(0.5F), 1, 0}));
}

// ---- timing handles, at 0, 2.5, 5, 7.5 and 10 metres ----

TEST_F(DropoffWeights, OfHandlesAreAlongThePathOrInSpace) {
    timedLine();
    path.TimingHandlesNum().SetInteger(5);
    for (unsigned mode : {0U, 1U}) {
        XDropOff const dropoff(5, mode);
        float const next = dropoff.ComputeWeight(2.5F);
        EXPECT_THAT(timed({2}, dropoff), testing::Pointwise(testing::FloatEq(), {0.F, next, 1.F, next, 0.F})) << mode;
    }
    EXPECT_EQ(timed({2}, XDropOff(5, 7)), (Floats{0, 0, 0, 0, 0}));
}

TEST_F(DropoffWeights, OfHandlesHaveTheSizeThatIsAskedFor) {
    timedLine();
    path.TimingHandlesNum().SetInteger(3);
    Floats weights;
    for (int count : {0, 2, 3, 7, -4}) {
        path.ComputeTimeWeights(count, {0}, XDropOff(100), weights);
        EXPECT_EQ(int(weights.size()), std::max(count, 0));
    }
}

TEST_F(DropoffWeights, OfHandlesWithoutATimingCurveAreZero) {
    append({{0, 0, 0}, {10, 0, 0}});
    path.TimingHandlesNum().SetInteger(3);
    EXPECT_EQ(timed({0, 1}, XDropOff(100)), (Floats{0, 0, 0}));
}

TEST_F(DropoffWeights, OfHandlesAreHeldAtTheTipsOfThePath) {
    timedLine();
    path.TimingHandlesNum().SetInteger(5);
    path.TimingPreserveTips().SetBoolean(true);
    path.TimingTipsDropoffRange().SetFloat(5);
    path.TimingTipsDropoffPinch().SetFloat(1);
    path.TimingTipsDropoffBubble().SetFloat(0.5F);
    XDropOff const tips(5, XDropOff::CurveDropoff, 1, 0.5F);
    float const inner = 1 - tips.ComputeWeight(2.5F);
    EXPECT_THAT(timed({0, 1, 2, 3, 4}, XDropOff(1)),
                testing::Pointwise(testing::FloatNear(1e-6F), {0.F, inner, 1.F, inner, 0.F}));
}

TEST_F(DropoffWeights, FromAPointToHandlesIgnoreTheRadius) {
    timedLine();
    path.TimingHandlesNum().SetInteger(5);
    XDropOff const dropoff(5);
    Floats near, far;
    Weighing(path).computeDropoffWeights_time(XVector3(5, 0, 0), 0, dropoff, near);
    Weighing(path).computeDropoffWeights_time(XVector3(5, 0, 0), 100, dropoff, far);
    EXPECT_EQ(near, far);
    EXPECT_FLOAT_EQ(near[1], dropoff.ComputeWeight(2.5F));
}

}  // namespace
}  // namespace Tavo
