#include "tavo/animation/timing_edits.h"
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <numeric>
#include <random>

namespace Tavo {
namespace {

using Floats = Qelutils::Vector<float>;
using Doubles = Qelutils::Vector<double>;
using Order = Qelutils::Vector<int>;
using testing::ElementsAre;
using testing::FloatEq;

constexpr double eps = 0.0001;

Order inOrder(std::size_t count) {
    Order out(count);
    std::iota(out.begin(), out.end(), 0);
    return out;
}

// ---- keeping constraints ----

TEST(TimingEdits, ConstraintsKeepEveryTimeAndTakeTheNewFractions) {
    XTimingKeys keys{{0.1F, 0.7F, 0.3F}, {0, 1, 0.5F}};
    ASSERT_TRUE(RetainConstraints({0, 1, 0.25}, keys));
    EXPECT_THAT(keys.inputs, ElementsAre(0.1F, 0.7F, 0.3F));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 1, 0.25F));
}

// ---- keeping feel ----

TEST(TimingEdits, FeelKeepsTheSpeedAndMovesTheTimes) {
    // Two halves of 1 metre in 1 second each; the first becomes 2 metres of then 3.
    XTimingKeys keys{{0, 1, 2}, {0, 0.5F, 1}};
    ASSERT_TRUE(RetainFeel({0, 2.0 / 3, 1}, inOrder(3), 2, 3, eps, keys));
    EXPECT_THAT(keys.inputs, ElementsAre(0, FloatEq(2), FloatEq(3)));
    EXPECT_THAT(keys.outputs, ElementsAre(0, FloatEq(2.0F / 3), 1));
}

TEST(TimingEdits, FeelShiftsTheLastTimeByTheChangeOfLengthOverTheSpeed) {
    XTimingKeys keys{{0, 0.5F, 1.5F}, {0, 0.2F, 1}};
    ASSERT_TRUE(RetainFeel({0, 2.0 / 12, 1}, inOrder(3), 10, 12, eps, keys));
    EXPECT_FLOAT_EQ(keys.inputs[2], 1.5F + 2 / (8 / 1.0F));
}

TEST(TimingEdits, FeelStartsAtTheOutputOfTheFirstKeyInTime) {
    XTimingKeys keys{{7, 5, 6}, {0.9F, 0.25F, 0.5F}};
    ASSERT_TRUE(RetainFeel({0.9, 0.25, 0.5}, {1, 2, 0}, 4, 4, eps, keys));
    EXPECT_THAT(keys.inputs, ElementsAre(FloatEq(2.25F), 0.25F, FloatEq(1.25F)));
}

TEST(TimingEdits, FeelKeepsTheTimeBetweenKeysAtOnePlace) {
    XTimingKeys keys{{0, 1, 3}, {0, 0.5F, 0.5F}};
    ASSERT_TRUE(RetainFeel({0, 0.5, 0.75}, inOrder(3), 1, 2, eps, keys));
    EXPECT_THAT(keys.inputs, ElementsAre(0, FloatEq(2), FloatEq(4)));
    // A distance of exactly eps still is none.
    XTimingKeys near{{0, 1}, {0, 0.5F}};
    ASSERT_TRUE(RetainFeel({0, 1}, inOrder(2), 1, 1, 0.5, near));
    EXPECT_THAT(near.inputs, ElementsAre(0, 1));
}

TEST(TimingEdits, FeelOfOneKeyMovesItToItsOutput) {
    XTimingKeys keys{{4}, {0.5F}};
    ASSERT_TRUE(RetainFeel({0.75}, {0}, 1, 1, eps, keys));
    EXPECT_THAT(keys.inputs, ElementsAre(0.5F));
    EXPECT_THAT(keys.outputs, ElementsAre(0.75F));
    XTimingKeys none;
    EXPECT_TRUE(RetainFeel({}, {}, 1, 1, eps, none));
}

TEST(TimingEdits, FeelKeepsTheSpeedOfEveryStretchOnRandomEdits) {
    std::mt19937 random(4);
    std::uniform_real_distribution<double> pick(0.2, 1);
    for (int round = 0; round < 1000; ++round) {
        std::size_t const count = 2 + random() % 100;
        Doubles before{0}, after{0};
        Floats times{0};
        for (std::size_t i = 1; i < count; ++i) {
            before.push_back(before.back() + pick(random));
            after.push_back(after.back() + pick(random));
            times.push_back(times.back() + float(pick(random) * 0.1));
        }
        double const oldLength = before.back(), newLength = after.back();
        XTimingKeys keys{times, Floats(count)};
        for (std::size_t i = 0; i < count; ++i) keys.outputs[i] = float(before[i] / oldLength);
        for (double& f : after) f /= newLength;
        XTimingKeys const old = keys;
        ASSERT_TRUE(RetainFeel(after, inOrder(count), oldLength, newLength, eps, keys));
        for (std::size_t i = 1; i < count; ++i) {
            auto const speed = [i](XTimingKeys const& k, double length) {
                return length * double(k.outputs[i] - k.outputs[i - 1]) / double(k.inputs[i] - k.inputs[i - 1]);
            };
            ASSERT_NEAR(speed(keys, newLength) / speed(old, oldLength), 1, 1e-3);
        }
    }
}

TEST(TimingEdits, RepairOfArraysThatDoNotMatchChangesNothing) {
    XTimingKeys const before{{0, 1}, {0, 0.5F}};
    XTimingKeys keys = before, uneven{{0, 1}, {0}};
    EXPECT_FALSE(RetainConstraints({0}, keys));
    EXPECT_FALSE(RetainConstraints({0, 1}, uneven));
    EXPECT_FALSE(RetainFeel({0}, {0}, 1, 1, eps, keys));
    EXPECT_FALSE(RetainFeel({0, 1}, {0}, 1, 1, eps, keys));
    EXPECT_FALSE(RetainFeel({0, 1}, {0, 2}, 1, 1, eps, keys));
    EXPECT_FALSE(RetainFeel({0, 1}, {-1, 0}, 1, 1, eps, keys));
    EXPECT_EQ(keys.inputs, before.inputs);
    EXPECT_EQ(keys.outputs, before.outputs);
}

// ---- handles ----

TEST(TimingEdits, AtAHandlesTimeItsWeightHolds) {
    XTimingWeights const handles{1, 5, {0, 1, 0.25F, 0.5F, 0.75F}};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(handles.At(float(1 + i)), handles.weights[std::size_t(i)]);
}

TEST(TimingEdits, BetweenHandlesTheWeightIsASmoothStep) {
    XTimingWeights const handles{0, 2, {0.5F, 1, 0}};
    for (float s = 0; s <= 1; s += 1.0F / 32) {
        float const smooth = s * s * (3 - 2 * s);
        EXPECT_NEAR(handles.At(s), 0.5F + 0.5F * smooth, 1e-6F);
        EXPECT_NEAR(handles.At(1 + s), 1 - smooth, 1e-6F);
    }
}

TEST(TimingEdits, OutsideTheHandlesRangeTheEndHandlesWeightHolds) {
    XTimingWeights const handles{1, 3, {0.25F, 1, 0.75F}};
    for (float x : {0.999F, -1e30F, -std::numeric_limits<float>::max()}) EXPECT_EQ(handles.At(x), 0.25F);
    for (float x : {3.001F, 1e30F, std::numeric_limits<float>::max()}) EXPECT_EQ(handles.At(x), 0.75F);
}

TEST(TimingEdits, FewHandlesAndNoRangeStillWeigh) {
    EXPECT_EQ((XTimingWeights{0, 1, {}}.At(0.5F)), 0);
    for (float x : {-1.F, 0.F, 0.5F, 2.F}) EXPECT_EQ((XTimingWeights{0, 1, {0.5F}}.At(x)), 0.5F);
    XTimingWeights const instant{2, 2, {0.25F, 0.75F}};
    EXPECT_EQ(instant.At(1), 0.25F);
    EXPECT_EQ(instant.At(2), 0.25F);
    EXPECT_EQ(instant.At(3), 0.75F);
}

TEST(TimingEdits, AHandlesWeightLiesBetweenThoseOfItsNeighbours) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> unit(0, 1);
    for (int round = 0; round < 10000; ++round) {
        XTimingWeights const handles{-1, unit(random), {unit(random), unit(random)}};
        auto const [low, high] = std::minmax(handles.weights[0], handles.weights[1]);
        float const weight = handles.At(3 * unit(random) - 1.5F);
        ASSERT_GE(weight, low);
        ASSERT_LE(weight, high);
    }
}

TEST(TimingEdits, EqualNeighboursAreMonotonicAndTheOrderOfSlotsCounts) {
    EXPECT_TRUE(IsTimingMonotonic({0, 0.5F, 0.5F, 1}));
    EXPECT_FALSE(IsTimingMonotonic({0, 0.5F, 0.4F, 1}));
    EXPECT_TRUE(IsTimingMonotonic({}));
}

// ---- sliding ----

TEST(TimingEdits, ASlideAddsTheWeightTimesTheAmountToTheOriginals) {
    XTimingKeys keys{{0, 1, 2}, {9, 9, 9}};
    ASSERT_TRUE(SlideTiming({0, 0.25F, 1}, {0, 2, {0, 1, 0.5F}}, 0.5F, false, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 0.75F, 1.25F));
    EXPECT_THAT(keys.inputs, ElementsAre(0, 1, 2));
}

TEST(TimingEdits, ASlideThatWouldInvertTheCurveLeavesTheLastGoodState) {
    Floats const originals{0, 0.5F, 1};
    XTimingWeights const middle{0, 2, {0, 1, 0}};
    XTimingKeys keys{{0, 1, 2}, originals};
    ASSERT_TRUE(SlideTiming(originals, middle, 0.5F, true, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 1, 1));
    EXPECT_FALSE(SlideTiming(originals, middle, 0.6F, true, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 1, 1));
    EXPECT_TRUE(SlideTiming(originals, middle, 0.6F, false, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, FloatEq(1.1F), 1));
}

TEST(TimingEdits, MonotonicityIsTestedOverSlotsAndNotOverTime) {
    XTimingKeys reversed{{2, 1, 0}, {1, 0.5F, 0}};
    EXPECT_FALSE(SlideTiming(reversed.outputs, {0, 2, {1, 1}}, 0.1F, true, reversed));
    XTimingKeys folded{{2, 1, 0}, {0, 0.5F, 1}};
    EXPECT_TRUE(SlideTiming(folded.outputs, {0, 2, {1, 1}}, 0.25F, true, folded));
}

TEST(TimingEdits, ASlideOfOtherOriginalsThanKeysChangesNothing) {
    XTimingKeys keys{{0, 1}, {0, 1}};
    EXPECT_FALSE(SlideTiming({0, 0.5F, 1}, {0, 1, {1, 1}}, 0.5F, false, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 1));
}

// ---- scaling ----

TEST(TimingEdits, AScaleMovesOutputsAwayFromThePivotAndCompounds) {
    XTimingKeys keys{{0, 1, 2}, {0, 0.5F, 1}};
    XTimingWeights const handles{0, 2, {0, 1, 0.5F}};
    ASSERT_TRUE(ScaleTiming(handles, 0.25F, 1, true, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 0.75F, FloatEq(1.375F)));
    ASSERT_TRUE(ScaleTiming(handles, 0.25F, 1, true, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 1.25F, FloatEq(1.9375F)));
}

TEST(TimingEdits, AScaleThatWouldInvertTheCurveChangesNothing) {
    XTimingKeys keys{{0, 1, 2}, {0, 0.5F, 1}};
    XTimingWeights const handles{0, 2, {0, 1, 0}};
    EXPECT_FALSE(ScaleTiming(handles, 0, 4, true, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 0.5F, 1));
    EXPECT_TRUE(ScaleTiming(handles, 0, 4, false, keys));
    EXPECT_THAT(keys.outputs, ElementsAre(0, 2.5F, 1));
}

}  // namespace
}  // namespace Tavo
