#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

// Ten metres in ten seconds, eleven timing keys; handles at 0, 5 and 10 seconds.
struct TimingSlide : TrajectoryTest {
    TimingSlide() {
        append({{0, 0, 0}, {10, 0, 0}});
        sample();
        std::vector<float> at, fractions;
        for (int i = 0; i <= 10; ++i) at.push_back(float(i)), fractions.push_back(float(i) / 10);
        connectTiming(at, fractions);
        path.TimingHandlesNum().SetInteger(3);
    }
    // A smooth step from one handle to the next.
    static float step(float t) { return t * t * (3 - 2 * t); }
    static constexpr wchar_t const* needsSampling = L"The time curve needs to be sampled for this function to work.";
};

TEST_F(TimingSlide, ShiftsFractionsByTheWeightsOfTheHandlesAndLeavesTimes) {
    Floats const before = times();
    path.SlideTimingOnTrajectory(3, {1}, XDropOff(2), 0.2F);
    Floats const now = fractions();
    for (int i = 0; i <= 10; ++i) {
        float const weight = step(1 - std::abs(float(i) - 5) / 5);
        EXPECT_NEAR(now[std::size_t(i)], float(i) / 10 + 0.2F * weight, 1e-6F) << i;
    }
    EXPECT_EQ(times(), before);
}

TEST_F(TimingSlide, SetsTheNumberOfHandles) {
    path.SlideTimingOnTrajectory(5, {0}, XDropOff(2), 0);
    EXPECT_EQ(path.TimingHandlesNum().Integer(), 5);
}

TEST_F(TimingSlide, DoesNotAskWhetherTheFractionsRise) {
    path.TimingEnforceMonotonic().SetBoolean(true);
    path.SlideTimingOnTrajectory(3, {1}, XDropOff(2), 3);
    EXPECT_NEAR(fractions()[5], 3.5F, 1e-6F);
}

TEST_F(TimingSlide, WithoutATimingCurveDoesNothingAndSaysNothing) {
    path.InputValue().DisconnectInput();
    State const before = state();
    path.SlideTimingOnTrajectory(7, {0}, XDropOff(2), 0.5F);
    path.SlideTimingOnTrajectory_interactive(fractions(), {1, 1, 1}, 0.5F);
    path.ScaleTimingOnTrajectory_interactive(fractions(), {1, 1, 1}, 0, 0.5F);
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(TimingSlide, OfACurveThatIsNotSampledWarnsAndWritesNoKey) {
    curve.IsCurveSampled().SetBoolean(false);
    Floats const before = fractions();
    path.SlideTimingOnTrajectory(3, {0}, XDropOff(2), 0.5F);
    path.SlideTimingOnTrajectory_interactive(before, {1, 1, 1}, 0.5F);
    path.ScaleTimingOnTrajectory_interactive(before, {1, 1, 1}, 0, 0.5F);
    EXPECT_EQ(fractions(), before);
    EXPECT_THAT(log.texts(RecordingLog::Warning), ElementsAre(needsSampling, needsSampling, needsSampling));
}

TEST_F(TimingSlide, ADragSlidesFromTheOriginals) {
    Floats const originals = fractions();
    path.SlideTimingOnTrajectory_interactive(originals, {0, 1, 0}, 0.1F);
    path.SlideTimingOnTrajectory_interactive(originals, {0, 1, 0}, 0.05F);
    EXPECT_NEAR(fractions()[5], 0.55F, 1e-6F);
    EXPECT_EQ(path.TimingHandlesNum().Integer(), 3);
}

TEST_F(TimingSlide, ADragThatWouldInvertTheCurveStaysAtTheLastGoodEvent) {
    path.TimingEnforceMonotonic().SetBoolean(true);
    Floats const originals = fractions();
    path.SlideTimingOnTrajectory_interactive(originals, {0, 1, 0}, 0.1F);
    Floats const good = fractions();
    path.SlideTimingOnTrajectory_interactive(originals, {0, 1, 0}, 2);
    EXPECT_EQ(fractions(), good);
    path.TimingEnforceMonotonic().SetBoolean(false);
    path.SlideTimingOnTrajectory_interactive(originals, {0, 1, 0}, 2);
    EXPECT_NE(fractions(), good);
}

TEST_F(TimingSlide, EqualNeighboursAreMonotonic) {
    path.TimingEnforceMonotonic().SetBoolean(true);
    Floats const flat(11, 0.5F);
    path.SlideTimingOnTrajectory_interactive(flat, {0, 0, 0}, 1);
    EXPECT_EQ(fractions(), flat);
}

TEST_F(TimingSlide, MonotonicIsByTheSlotsAndNotByTheTimes) {
    path.TimingEnforceMonotonic().SetBoolean(true);
    curve.SetKeyframe(-1, -0.1F);  // the earliest key in the last slot
    Floats const before = fractions();
    path.SlideTimingOnTrajectory_interactive(before, {1, 1, 1}, 0.1F);
    EXPECT_EQ(fractions(), before);
}

TEST_F(TimingSlide, AKeyOutsideTheHandlesTakesTheEndHandlesWeight) {
    path.TimingCurveFirstKeyTime().SetFloat(2);
    path.TimingCurveLastKeyTime().SetFloat(8);
    Floats const originals = fractions();
    path.SlideTimingOnTrajectory_interactive(originals, {1, 0, 0.5F}, 0.1F);
    EXPECT_FLOAT_EQ(fractions()[0], originals[0] + 0.1F);
    EXPECT_FLOAT_EQ(fractions()[10], originals[10] + 0.05F);
}

TEST_F(TimingSlide, OriginalsOfAnotherCountOrTooFewWeightsAreNoHarm) {
    Floats const before = fractions();
    path.SlideTimingOnTrajectory_interactive({0.5F}, {1, 1, 1}, 0.1F);
    EXPECT_EQ(fractions(), before);
    path.SlideTimingOnTrajectory_interactive(before, {1}, 0.1F);
    EXPECT_FLOAT_EQ(fractions()[0], before[0] + 0.1F);
    EXPECT_EQ(fractions()[10], before[10]);
}

TEST_F(TimingSlide, AScaleMovesFractionsFromThePivotAndCompounds) {
    Floats const unread;
    path.ScaleTimingOnTrajectory_interactive(unread, {1, 1, 1}, 0.5F, 0.5F);
    EXPECT_FLOAT_EQ(fractions()[10], 1.25F);
    path.ScaleTimingOnTrajectory_interactive(unread, {1, 1, 1}, 0.5F, 0.5F);
    EXPECT_FLOAT_EQ(fractions()[10], 1.625F);
    EXPECT_FLOAT_EQ(fractions()[5], 0.5F);
}

TEST_F(TimingSlide, AScaleThatWouldInvertTheCurveChangesNothing) {
    path.TimingEnforceMonotonic().SetBoolean(true);
    Floats const before = fractions();
    path.ScaleTimingOnTrajectory_interactive(before, {1, 1, 1}, 0.5F, -3);
    EXPECT_EQ(fractions(), before);
}

TEST_F(TimingSlide, EachIsOneStepThatUndoTakesBack) {
    scene().CommitTransient();  // what the test set up is a step of its own
    State const before = state();
    int const steps = undoCount();
    path.SlideTimingOnTrajectory(4, {1}, XDropOff(2), 0.2F);
    path.ScaleTimingOnTrajectory_interactive({}, {1, 1, 1, 1}, 0.5F, 0.5F);
    EXPECT_EQ(undoCount(), steps + 2);
    scene().Undo();
    scene().Undo();
    EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace Tavo
