#include "tavo/animation/drop_off.h"
#include <cmath>
#include <gmock/gmock.h>
#include <random>

namespace Tavo {
namespace {

constexpr float step = 1.0F / 64;

// ---- the value ----

TEST(DropOff, TheDefaultsAreRangeOneAlongThePathWithPinchOneAndBubbleZero) {
    XDropOff const dropoff;
    EXPECT_EQ(dropoff.m_range, 1);
    EXPECT_EQ(dropoff.m_mode, XDropOff::CurveDropoff);
    EXPECT_EQ(dropoff.m_innerTangent, 1);
    EXPECT_EQ(dropoff.m_outerTangent, 0);
}

TEST(DropOff, TheModeStandsBeforePinchAndBubble) {
    EXPECT_EQ(XDropOff(3), XDropOff(3, 0, 1, 0));
    EXPECT_EQ(XDropOff(3, 1), XDropOff(3, 1, 1, 0));
    XDropOff const pinched(3, 1, 0.25F), full(3, XDropOff::RadialDropoff, 0.25F, 0.5F);
    EXPECT_EQ(pinched.m_innerTangent, 0.25F);
    EXPECT_EQ(pinched.m_outerTangent, 0);
    EXPECT_EQ(full.m_mode, 1u);
    EXPECT_EQ(full.m_innerTangent, 0.25F);
    EXPECT_EQ(full.m_outerTangent, 0.5F);
}

TEST(DropOff, TheModesHaveNames) {
    EXPECT_EQ(XDropOff::ModeNames[XDropOff::CurveDropoff], L"CurveDropoff");
    EXPECT_EQ(XDropOff::ModeNames[XDropOff::RadialDropoff], L"RadialDropoff");
}

// ---- the weight ----

TEST(DropOff, TheWeightIsOneAtNoDistanceAndZeroAtTheRange) {
    for (float range : {1e-30F, 0.5F, 1.F, 7.F, 1e30F}) {
        EXPECT_EQ(XDropOff(range).ComputeWeight(0), 1);
        EXPECT_EQ(XDropOff(range, 0, 1, 1).ComputeWeight(range), 0);
        EXPECT_EQ(XDropOff(range).ComputeWeight(range * 1.001F), 0);
        EXPECT_EQ(XDropOff(range).ComputeWeight(-range), 0);
    }
}

TEST(DropOff, ARangeOfZeroHoldsNoDistanceAlone) {
    EXPECT_EQ(XDropOff(0).ComputeWeight(0), 1);
    EXPECT_EQ(XDropOff(0).ComputeWeight(1e-30F), 0);
    EXPECT_EQ(XDropOff(0).ComputeWeight(-1e-30F), 0);
}

TEST(DropOff, ARangeBelowZeroHoldsNothing) {
    for (float distance : {-2.F, -1.F, -0.5F, 0.F, 1.F}) EXPECT_EQ(XDropOff(-1).ComputeWeight(distance), 0);
}

TEST(DropOff, TheModeDoesNotCountInAWeight) {
    for (unsigned mode : {0u, 1u, 7u})
        EXPECT_EQ(XDropOff(1, mode).ComputeWeight(0.25F), XDropOff().ComputeWeight(0.25F));
}

TEST(DropOff, TheDefaultsAreASoftShoulder) {
    for (float t = 0; t <= 1; t += step)
        EXPECT_FLOAT_EQ(XDropOff(4).ComputeWeight(4 * t), (1 - t) * (1 - t) * (1 + 2 * t));
}

TEST(DropOff, WithoutPinchAndBubbleTheWeightDropsAtOnce) {
    for (float t = 0; t <= 1; t += step) EXPECT_FLOAT_EQ(XDropOff(1, 0, 0, 0).ComputeWeight(t), std::pow(1 - t, 3.F));
}

TEST(DropOff, PinchAndBubbleAreTheInnerControlValuesOfACubic) {
    for (float pinch : {-1.F, 0.F, 0.3F, 1.F, 2.F})
        for (float bubble : {-1.F, 0.F, 0.6F, 1.F, 3.F})
            for (float t = 0; t <= 1; t += step) {
                float const u = 1 - t, weight = u * u * u + 3 * t * u * u * pinch + 3 * t * t * u * bubble;
                EXPECT_NEAR(XDropOff(2, 0, pinch, bubble).ComputeWeight(2 * t), weight, 1e-6F);
            }
}

TEST(DropOff, EachProductIsRoundedBeforeTheSum) {
    float const t = 1.0F / 3, u = 1 - t, pinch = 0.7F, bubble = 0.9F;
    float const first = float(double(u) * u * u), second = float(3 * double(t) * u * u * pinch);
    float const third = float(3 * double(t) * t * u * bubble);
    EXPECT_EQ(XDropOff(1, 0, pinch, bubble).ComputeWeight(t), first + second + third);
}

TEST(DropOff, ABubbleAboveOneCanGiveAWeightAboveOne) { EXPECT_GT(XDropOff(1, 0, 1, 4).ComputeWeight(0.5F), 1); }

// The three rounded products of a distance this small sum to more than 1.
TEST(DropOff, RoundingNeverTakesAWeightAboveOne) {
    EXPECT_EQ(XDropOff(1, 0, 1, 1).ComputeWeight(2.5e-8F), 1);
    EXPECT_EQ(XDropOff(1, 0, 1, 0).ComputeWeight(2.5e-8F), 1);
}

TEST(DropOff, WeightsLieWithinZeroAndOneForPinchAndBubbleInZeroToOne) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> unit(0, 1), exponent(-12, 0);
    for (int i = 0; i < 200000; ++i) {
        float const range = std::pow(10.F, 3 * exponent(random) + 18);
        float const pinch = i % 3 ? unit(random) : 1, bubble = i % 5 ? unit(random) : 1;
        float const distance = range * (i % 2 ? unit(random) : std::pow(10.F, exponent(random)));
        float const weight = XDropOff(range, 0, pinch, bubble).ComputeWeight(distance);
        ASSERT_GE(weight, 0);
        ASSERT_LE(weight, 1);
    }
}

}  // namespace
}  // namespace Tavo
