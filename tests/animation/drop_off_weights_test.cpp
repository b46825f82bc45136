#include "tavo/animation/drop_off_weights.h"
#include <cmath>
#include <gmock/gmock.h>
#include <random>

namespace Tavo {
namespace {

using Weights = Qelutils::Vector<float>;
using testing::Each;
using testing::ElementsAre;
using testing::FloatEq;

// Places 1 apart along x.
XPathPlaces line(int count) {
    XPathPlaces out;
    for (int i = 0; i < count; ++i) {
        out.positions.push_back({float(i), 0, 0});
        out.fractions.push_back(double(i) / (count - 1));
    }
    out.length = count - 1;
    return out;
}

// Out along x and back again, 0.5 beside: slots 0 and 9 are neighbours in space and far apart along the path.
XPathPlaces hairpin() {
    XPathPlaces out;
    for (int i = 0; i < 10; ++i) out.positions.push_back({float(i < 5 ? i : 9 - i), i < 5 ? 0 : 0.5F, 0});
    out.length = 8.5;
    for (int i = 0; i < 10; ++i) out.fractions.push_back((i < 5 ? i : i - 0.5) / out.length);
    return out;
}

// ---- the ball ----

TEST(DropOffWeights, InsideTheBallTheWeightIsOneAndTheRangeStartsAtItsSurface) {
    XDropOff const dropoff(2);
    EXPECT_THAT(BallWeights(line(6), {1, 0, 0}, 1, dropoff), ElementsAre(1, 1, 1, dropoff.ComputeWeight(1), 0, 0));
}

TEST(DropOffWeights, TheSurfaceBelongsToTheBall) {
    EXPECT_THAT(BallWeights(line(4), {1, 0, 0}, 1, XDropOff(-1)), ElementsAre(1, 1, 1, 0));
}

TEST(DropOffWeights, ABallOfNothingHoldsWhatIsExactlyAtItsCentre) {
    EXPECT_THAT(BallWeights(line(4), {2, 0, 0}, 0, 0), ElementsAre(0, 0, 1, 0));
    EXPECT_THAT(BallWeights(line(4), {2, 1e-6F, 0}, 0, 0), Each(0));
}

TEST(DropOffWeights, TheBallDoesNotAskForTheMode) {
    XDropOff const strange(2, 9);
    EXPECT_EQ(BallWeights(line(6), {1, 0, 0}, 1, strange), BallWeights(line(6), {1, 0, 0}, 1, XDropOff(2)));
}

TEST(DropOffWeights, FromAPointTheDistanceGoesToTheDropoffAsItIs) {
    XDropOff const dropoff(3, 0, 0.5F);
    Weights const weights = PointWeights(line(5), {0, 1, 0}, dropoff);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(weights[std::size_t(i)], dropoff.ComputeWeight(float(std::sqrt(double(i * i + 1)))));
}

// ---- the list ----

TEST(DropOffWeights, ASelectedSlotHasTheWeightOneForAnyRangeAboveZero) {
    for (unsigned mode : {0u, 1u})
        EXPECT_THAT(ListWeights(line(5), {1, 3}, XDropOff(1e-6F, mode)), ElementsAre(0, 1, 0, 1, 0));
}

TEST(DropOffWeights, TheLargestCandidateCounts) {
    for (unsigned mode : {0u, 1u}) {
        XDropOff const dropoff(4, mode);
        float const one = dropoff.ComputeWeight(1), two = dropoff.ComputeWeight(2);
        EXPECT_THAT(ListWeights(line(6), {0, 5}, dropoff),
                    ElementsAre(1, FloatEq(one), FloatEq(two), FloatEq(two), FloatEq(one), 1));
    }
}

TEST(DropOffWeights, AcrossAHairpinThePathIsFarAndSpaceIsNear) {
    XPathPlaces const path = hairpin();
    EXPECT_EQ(ListWeights(path, {0}, XDropOff(4, XDropOff::CurveDropoff))[9], 0);
    EXPECT_GT(ListWeights(path, {0}, XDropOff(4, XDropOff::RadialDropoff))[9], 0.9F);
}

TEST(DropOffWeights, AnUnknownModeWeighsNothing) {
    EXPECT_THAT(ListWeights(line(5), {2}, XDropOff(4, 2)), testing::AllOf(testing::SizeIs(5), Each(0)));
}

TEST(DropOffWeights, SlotsThatDoNotExistArePassedOver) {
    EXPECT_THAT(ListWeights(line(3), {-1, 7, 1}, XDropOff(0.5F)), ElementsAre(0, 1, 0));
    EXPECT_THAT(ListWeights(line(3), {}, XDropOff(9)), Each(0));
    EXPECT_TRUE(ListWeights({}, {0}, XDropOff(9)).empty());
}

// ---- what is held ----

TEST(DropOffWeights, InsideAGuardNothingMovesWhateverTheDropoffSays) {
    XPathPlaces const path = line(7);
    Weights weights(7, 1.F);
    MultiplySafeGuardWeights(path.positions, {{{3, 0, 0}, 1, XDropOff(2)}}, weights);
    float const part = 1 - XDropOff(2).ComputeWeight(1);
    EXPECT_THAT(weights, ElementsAre(1, part, 0, 0, 0, part, 1));
}

TEST(DropOffWeights, GuardsMultiply) {
    XSafeGuard const guard{{0, 0, 0}, 0, XDropOff(4)};
    XPathPlaces const path = line(4);
    Weights once(4, 1.F), twice(4, 0.5F);
    MultiplySafeGuardWeights(path.positions, {guard}, once);
    MultiplySafeGuardWeights(path.positions, {guard, guard}, twice);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(twice[i], 0.5F * once[i] * once[i]);
    Weights untouched(4, 0.5F);
    MultiplySafeGuardWeights(path.positions, {}, untouched);
    EXPECT_THAT(untouched, Each(0.5F));
}

TEST(DropOffWeights, ThePathsTipsAreHeldAndReturnOverTheRange) {
    XPathPlaces const path = line(9);
    XDropOff const tips(2, 0, 0.5F, 0.25F);
    Weights weights(9, 0.5F);
    MultiplyTipsWeights(path, tips, weights);
    float const part = 0.5F * (1 - tips.ComputeWeight(1));
    EXPECT_THAT(weights, ElementsAre(0, part, 0.5F, 0.5F, 0.5F, 0.5F, 0.5F, FloatEq(part), 0));
}

TEST(DropOffWeights, TipsOfNoRangeHoldNothing) {
    Weights weights(5, 1.F);
    MultiplyTipsWeights(line(5), XDropOff(0), weights);
    EXPECT_THAT(weights, Each(1));
}

TEST(DropOffWeights, AreWithinZeroAndOneForPinchAndBubbleInZeroToOne) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> unit(0, 1);
    for (int round = 0; round < 2000; ++round) {
        XPathPlaces path = line(20);
        for (Qelp::Vector3& p : path.positions) p = {unit(random), unit(random), unit(random), 0};
        path.length = double(unit(random));
        auto const dropoff = [&] { return XDropOff(unit(random), random() % 2, unit(random), unit(random)); };
        Qelp::Vector3 const centre{unit(random), unit(random), unit(random)};
        Weights weights = round % 2 ? BallWeights(path, centre, unit(random) / 2, dropoff())
                                    : ListWeights(path, {int(random() % 20), int(random() % 20)}, dropoff());
        MultiplySafeGuardWeights(path.positions, {{path.positions[3], unit(random) / 3, dropoff()}}, weights);
        MultiplyTipsWeights(path, dropoff(), weights);
        ASSERT_EQ(weights[3], 0);
        ASSERT_THAT(weights, Each(testing::AllOf(testing::Ge(0), testing::Le(1))));
    }
}

}  // namespace
}  // namespace Tavo
