// New keys at places along a path.
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

class PathSampling : public TrajectoryTest {
protected:
    // A quarter of a circle of radius 1 as one segment with handles, which is some 1.5708 long.
    void bend() {
        constexpr float k = 0.5522847F;
        path.AppendTranslationKeyframe({1, -k, 0}, {1, 0, 0}, {1, k, 0});
        path.AppendTranslationKeyframe({k, 1, 0}, {0, 1, 0}, {-k, 1, 0});
    }
    void expectSampled() const {
        EXPECT_TRUE(path.IsTranslationCurveSampled().Boolean());
        for (int i = 0; i < count(); ++i) {
            EXPECT_EQ(slot(i).Attribute(0).Integer(), i);
            EXPECT_EQ(interpolation(i), LinearInterpolation);
        }
    }
    // Of the middle of each chord from the circle.
    float largestSag() const {
        float worst = 0;
        for (int i = 1; i < count(); ++i) {
            float const x = (at(i - 1).X() + at(i).X()) / 2, y = (at(i - 1).Y() + at(i).Y()) / 2;
            worst = std::max(worst, 1 - std::hypot(x, y));
        }
        return worst;
    }
};

// ---- even segments ----

TEST_F(PathSampling, TwoSegmentsAreThreeKeysAtTheEndsAndTheMiddleOfTheLength) {
    append({{0, 0, 0}, {1, 0, 0}, {10, 0, 0}});
    EXPECT_TRUE(path.UniformSampling(2));
    EXPECT_THAT(xs(), ElementsAre(0, 5, 10));
    expectSampled();
}

TEST_F(PathSampling, EvenSegmentsOfABendFollowIt) {
    bend();
    EXPECT_TRUE(path.UniformSampling(64));
    EXPECT_EQ(count(), 65);
    expectSampled();
    for (int i = 0; i <= 64; ++i) {
        float const angle = 1.5707963F * float(i) / 64;
        EXPECT_TRUE(isAt(at(i), std::cos(angle), std::sin(angle), 0, 5e-4F)) << i;
    }
}

TEST_F(PathSampling, EvenSegmentsOfAnEvenSampledPathLeaveIt) {
    append({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}, {2, 1, 1}});
    sample();
    EXPECT_TRUE(path.UniformSampling(4));
    EXPECT_POINT(at(0), 0, 0, 0);
    EXPECT_POINT(at(1), 1, 0, 0);
    EXPECT_POINT(at(2), 1, 1, 0);
    EXPECT_POINT(at(3), 1, 1, 1);
    EXPECT_POINT(at(4), 2, 1, 1);
}

TEST_F(PathSampling, FewerThanTwoEvenSegmentsOrFarTooManyChangeNothing) {
    append({{0, 0, 0}, {1, 0, 0}});
    State const before = state();
    int const steps = undoCount();
    for (int segments : {1, 0, -1, XTrajectory::MostSegments + 1, std::numeric_limits<int>::max()})
        EXPECT_FALSE(path.UniformSampling(segments));
    EXPECT_EQ(state(), before);
    EXPECT_EQ(undoCount(), steps);
}

TEST_F(PathSampling, APathWithoutKeysAndAnInvalidOneCannotBeSampled) {
    EXPECT_FALSE(path.UniformSampling(4));
    EXPECT_FALSE(path.AdaptiveSampling(0.1F, 4, 3, 5));
    EXPECT_EQ(count(), 0);
    EXPECT_FALSE(path.IsTranslationCurveSampled().Boolean());
    EXPECT_FALSE(XTrajectory().UniformSampling(4));
    EXPECT_FALSE(XTrajectory().AdaptiveSampling(0.1F, 4, 3, 5));
}

TEST_F(PathSampling, APathOfOneKeyStaysWhereItIs) {
    append({{1, 2, 3}});
    EXPECT_TRUE(path.UniformSampling(2));
    EXPECT_EQ(count(), 3);
    EXPECT_TRUE(path.AdaptiveSampling(0.1F, 2, 3, 5));
    for (int i = 0; i < count(); ++i) EXPECT_POINT(at(i), 1, 2, 3);
}

TEST_F(PathSampling, RotationKeysKeepTheirNumbers) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    path.AttachRotationKeyframe(1.5F, XQuaternion());
    path.UniformSampling(10);
    EXPECT_EQ(rotationCount(), 1);
    EXPECT_EQ(attach(0), 1.5F);
}

TEST_F(PathSampling, IsOneStepThatUndoTakesBack) {
    bend();
    State const before = state();
    int const steps = undoCount();
    path.UniformSampling(20);
    EXPECT_EQ(undoCount(), steps + 1);
    scene().Undo();
    EXPECT_EQ(state(), before);
    path.AdaptiveSampling(0.001F, 3, 5, 8);
    EXPECT_EQ(undoCount(), steps + 1);
    scene().Undo();
    EXPECT_EQ(state(), before);
}

// ---- by a tolerance ----

TEST_F(PathSampling, AStraightPathGetsAKeyMoreThanItHasToHaveSegments) {
    scene().SceneGraph()->setMaxUndoItems(0);
    append({{1, 2, 3}, {4, -5, 6}});
    for (int segments = 1; segments <= 1000; ++segments) {
        EXPECT_TRUE(path.AdaptiveSampling(0.001F, segments, 3, 5));
        ASSERT_EQ(count(), segments + 1);
    }
}

TEST_F(PathSampling, KeysLieWithinTheToleranceAndNoFartherApartThanAsked) {
    for (float tolerance : {0.1F, 0.01F, 0.001F, 0.0001F}) {
        scene().New();
        path = scene().CreateObject(XTrajectory::TypeID);
        bend();
        EXPECT_TRUE(path.AdaptiveSampling(tolerance, 3, 5, 10));
        expectSampled();
        EXPECT_GE(count(), 4);
        EXPECT_LE(largestSag(), tolerance * 1.1F + 3e-4F);  // the segment is as far from a circle
        EXPECT_POINT(at(0), 1, 0, 0);
        EXPECT_POINT(at(count() - 1), 0, 1, 0);
        // As few as there can be: a chord over the angle a lies a * a / 8 off.
        EXPECT_LE(count(), 2 + std::max(3, int(1.5708 / std::sqrt(8 * double(tolerance)) * 1.3 + 1)));
    }
}

TEST_F(PathSampling, KeysLieCloserWhereThePathBends) {
    path.AppendTranslationKeyframe({0, 0, 0}).AppendTranslationKeyframe({5, 0, 0});
    path.AppendTranslationKeyframe({5, 0, 0}, {10, 0, 0}, {10.5522847F, 0, 0});
    path.AppendTranslationKeyframe({11, 0.4477153F, 0}, {11, 1, 0}, {11, 5, 0});
    EXPECT_TRUE(path.AdaptiveSampling(0.002F, 2, 7, 12));
    int straight = 0, bent = 0;
    for (int i = 0; i < count(); ++i) ++(at(i).X() < 9.9F ? straight : bent);
    EXPECT_LE(straight, 6);
    EXPECT_GE(bent, 7);
}

TEST_F(PathSampling, NumbersThatAreNotAboveZeroChangeNothing) {
    append({{0, 0, 0}, {1, 0, 0}});
    State const before = state();
    float const nan = std::numeric_limits<float>::quiet_NaN();
    for (float tolerance : {0.F, -1.F, nan}) EXPECT_FALSE(path.AdaptiveSampling(tolerance, 4, 3, 5));
    for (int none : {0, -1}) {
        EXPECT_FALSE(path.AdaptiveSampling(0.1F, none, 3, 5));
        EXPECT_FALSE(path.AdaptiveSampling(0.1F, 4, none, 5));
        EXPECT_FALSE(path.AdaptiveSampling(0.1F, 4, 3, none));
    }
    EXPECT_FALSE(path.AdaptiveSampling(0.1F, XTrajectory::MostSegments + 1, 3, 5));
    EXPECT_EQ(state(), before);
}

// No rounded place is near enough to the chord.
TEST_F(PathSampling, AToleranceBelowRoundingIsTakenAsThat) {
    append({{1000, 0, 0}, {1000.1F, 0.3F, 0}});
    EXPECT_TRUE(path.AdaptiveSampling(1e-30F, 4, 7, 1));
    EXPECT_EQ(count(), 5);
}

TEST_F(PathSampling, ACornerIsReachedInShortSegments) {
    append({{1, 0, 0}, {0, 0, 0}, {0, 1, 0}});
    EXPECT_TRUE(path.AdaptiveSampling(1e-30F, 3, 3, 4));
    EXPECT_LT(count(), 1000);
    float nearest = 1;
    for (int i = 0; i < count(); ++i) nearest = std::min(nearest, std::hypot(at(i).X(), at(i).Y()));
    EXPECT_LT(nearest, 1e-4F);
}

TEST_F(PathSampling, MoreIterationsFindLongerSegments) {
    std::vector<int> counts;
    for (int iterations : {1, 2, 4, 12}) {
        scene().New();
        path = scene().CreateObject(XTrajectory::TypeID);
        bend();
        path.AdaptiveSampling(0.0001F, 1, 5, iterations);
        counts.push_back(count());
    }
    EXPECT_TRUE(std::is_sorted(counts.rbegin(), counts.rend()));
    EXPECT_LT(counts.back(), counts.front());
}

}  // namespace
}  // namespace Tavo
