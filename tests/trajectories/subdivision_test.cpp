#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

struct Subdivision : TrajectoryTest {
    // Places evenly spaced in the parameter of the original segments, before and after a split of all of them.
    std::vector<XVector3> shape(int segments, int pieces) {
        auto const* node = static_cast<sg::TrajectoryNode*>(path.getNode());
        std::vector<XVector3> points;
        for (int i = 0; i <= segments * 16; ++i) {
            Qelp::Vector3 p;
            const_cast<sg::TrajectoryNode*>(node)->computePosition_parameter(i / 16.0 * pieces, p);
            points.emplace_back(p);
        }
        return points;
    }
    static float distance(std::vector<XVector3> const& a, std::vector<XVector3> const& b) {
        float largest = 0;
        for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, a[i].DistanceTo(b[i]));
        return largest;
    }
};

TEST_F(Subdivision, OfASampledPathGivesMiddles) {
    append({{0, 0, 0}, {2, 2, 0}, {6, 2, 4}});
    sample();
    path.InsertInBetweenTranslationKeyframe(0, 2);
    EXPECT_THAT(numbers(), ElementsAre(0, 2, 4, 1, 3));
    EXPECT_POINT(at(1), 1, 1, 0);
    EXPECT_POINT(at(3), 4, 2, 2);
    EXPECT_EQ(interpolation(1), 1);
    EXPECT_EQ(continuity(1), 1) << "as a new element has it";
}

TEST_F(Subdivision, RenumbersTheKeysBehindTheFirst) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}});
    sample();
    path.InsertInBetweenTranslationKeyframe(1, 3);
    EXPECT_THAT(numbers(), ElementsAre(0, 1, 3, 5, 6, 7, 2, 4));
    EXPECT_THAT(xs(), ElementsAre(0, 1, 1.5F, 2, 2.5F, 3, 4, 5));
}

TEST_F(Subdivision, TakesItsTwoKeysInAnyOrder) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    sample();
    path.InsertInBetweenTranslationKeyframe(2, 1);
    EXPECT_THAT(xs(), ElementsAre(0, 1, 1.5F, 2));
}

TEST_F(Subdivision, WithoutBothKeysOrWithOneNothingHappens) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    State const before = state();
    path.InsertInBetweenTranslationKeyframe(0, 3).InsertInBetweenTranslationKeyframe(-1, 1);
    path.InsertInBetweenTranslationKeyframe(1, 1);
    EXPECT_EQ(state(), before);
}

TEST_F(Subdivision, PairsThatAGapInTheNumbersKeepsApartGetNoKey) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    slot(2).Attribute(0).SetInteger(2'000'000'000);
    sample();
    path.InsertInBetweenTranslationKeyframe(0, 2'000'000'000);
    EXPECT_THAT(numbers(), ElementsAre(0, 2, 2'000'000'002, 1));
}

TEST_F(Subdivision, OfASplineIsTheSplitByDeCasteljau) {
    path.AppendTranslationKeyframe({-1, 0, 0}, {0, 0, 0}, {0, 4, 0});
    path.AppendTranslationKeyframe({8, 4, 0}, {8, 0, 0}, {9, 0, 0});
    path.InsertInBetweenTranslationKeyframe(0, 1);
    EXPECT_POINT(at(1), 4, 3, 0);
    EXPECT_POINT(in(1), 2, 3, 0);
    EXPECT_POINT(out(1), 6, 3, 0);
    EXPECT_EQ(interpolation(1), 2);
    EXPECT_EQ(continuity(1), 2);
    EXPECT_POINT(out(0), 0, 2, 0);
    EXPECT_POINT(in(2), 8, 2, 0);
    EXPECT_POINT(in(0), -1, 0, 0);
    EXPECT_POINT(out(2), 9, 0, 0);
    EXPECT_EQ(continuity(0), 0);
}

TEST_F(Subdivision, LinearCoupledNeighboursBecomeLinear) {
    path.AppendTranslationKeyframe({0, 0, 0}, {0, 4, 0});
    path.AppendTranslationKeyframe({8, 0, 0}, {9, 0, 0});
    path.InsertInBetweenTranslationKeyframe(0, 1);
    EXPECT_EQ(continuity(0), 1);
    EXPECT_EQ(continuity(2), 1);
}

TEST_F(Subdivision, BetweenTwoLinearKeysIsLinearAndLeavesTheirHandles) {
    append({{0, 0, 0}, {3, 0, 0}, {3, 3, 0}});
    path.InsertInBetweenTranslationKeyframe(0, 1);
    EXPECT_EQ(interpolation(1), 1);
    EXPECT_POINT(out(0), 0, 0, 0);
    EXPECT_EQ(continuity(0), 1);
    // The automatic control points count, whether the path uses them or not: a decision of this system.
    EXPECT_POINT(at(1), 0.375F * (1 + 2.5F) + 0.125F * 3, 0.375F * -0.5F, 0);
}

TEST_F(Subdivision, BetweenALinearAndASplineKeyIsSplineAndTouchesTheSplineKeyAlone) {
    append({{0, 0, 0}});
    path.AppendTranslationKeyframe({8, 4, 0}, {8, 0, 0}, {9, 0, 0});
    path.InsertInBetweenTranslationKeyframe(0, 1);
    EXPECT_EQ(interpolation(1), 2);
    EXPECT_POINT(out(0), 0, 0, 0);
    EXPECT_POINT(in(2), 8, 2, 0);
}

TEST_F(Subdivision, LeavesTheShapeOfASpline) {
    for (int run = 0; run < 50; ++run) {
        path = scene().CreateObject(XTrajectory::TypeID);
        int const segments = 1 + run % 7;
        for (int i = 0; i <= segments; ++i) path.AppendTranslationKeyframe(point(1), point(1), point(1));
        std::vector<XVector3> const before = shape(segments, 1);
        path.InsertInBetweenTranslationKeyframe(0, segments);
        ASSERT_EQ(count(), 2 * segments + 1);
        EXPECT_LE(distance(before, shape(segments, 2)), 1e-6F) << "run " << run << " of seed " << seed;
    }
}

TEST_F(Subdivision, LeavesTheShapeOfASplineWithAutomaticTangents) {
    for (int i = 0; i <= 5; ++i) path.AppendTranslationKeyframe(point(1));
    path.EditTranslationKeyframeInterpolationType({0, 1, 2, 3, 4, 5}, L"spline");
    std::vector<XVector3> const before = shape(5, 1);
    path.InsertInBetweenTranslationKeyframe(0, 5);
    EXPECT_LE(distance(before, shape(5, 2)), 1e-6F);
}

TEST_F(Subdivision, OfAPartLeavesTheRestOfASplineWithAutomaticTangents) {
    for (int i = 0; i <= 5; ++i) path.AppendTranslationKeyframe(point(1));
    path.EditTranslationKeyframeInterpolationType({0, 1, 2, 3, 4, 5}, L"spline");
    float const length = path.MaxArcLength().Float();
    path.InsertInBetweenTranslationKeyframe(2, 3);
    EXPECT_NEAR(path.MaxArcLength().Float(), length, 1e-6F * length);
}

TEST_F(Subdivision, IsOneStepThatUndoTakesBack) {
    for (int i = 0; i < 4; ++i) path.AppendTranslationKeyframe(point(1), point(1));
    State const before = state();
    int const steps = undoCount();
    path.InsertInBetweenTranslationKeyframe(0, 3);
    EXPECT_EQ(undoCount(), steps + 1);
    scene().Undo();
    EXPECT_EQ(state(), before);
}

// ---- to a spline ----

TEST_F(Subdivision, ToSplineTurnsAutomaticTangentsIntoHandles) {
    append({{0, 0, 0}, {3, 0, 0}, {3, 3, 0}});
    sample();
    EXPECT_TRUE(path.ToSpline());
    EXPECT_FALSE(path.IsTranslationCurveSampled().Boolean());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(interpolation(i), 2);
        EXPECT_EQ(continuity(i), 2);
    }
    EXPECT_POINT(out(0), 1, 0, 0);
    EXPECT_POINT(in(1), 2.5F, -0.5F, 0);
    EXPECT_POINT(out(1), 3.5F, 0.5F, 0);
    EXPECT_POINT(in(2), 3, 2, 0);
}

TEST_F(Subdivision, ToSplineKeepsTheShapeOfTheAutomaticTangents) {
    for (int i = 0; i <= 6; ++i) path.AppendTranslationKeyframe(point(1));
    path.EditTranslationKeyframeInterpolationType({0, 1, 2, 3, 4, 5, 6}, L"spline");
    sample();
    std::vector<XVector3> const before = shape(6, 1);
    EXPECT_TRUE(path.ToSpline());
    EXPECT_LE(distance(before, shape(6, 1)), 1e-6F);
}

TEST_F(Subdivision, ToSplineOnASplineIsFalseAndChangesNothing) {
    append({{0, 0, 0}, {3, 0, 0}});
    State const before = state();
    EXPECT_FALSE(path.ToSpline());
    EXPECT_EQ(state(), before);
}

TEST_F(Subdivision, ToSplineWithOneKeyOrNoneHasNothingToTakeOver) {
    sample();
    EXPECT_TRUE(path.ToSpline());
    append({{5, 0, 0}});
    sample();
    EXPECT_TRUE(path.ToSpline());
    EXPECT_POINT(in(0), 0, 0, 0);
    EXPECT_POINT(out(0), 0, 0, 0);
}

}  // namespace
}  // namespace Tavo
