// The report on a retargeted motion: what it finds in walks that are made to have it.
#include "qel/solvers/retarget_report.h"
#include "tests/qel/solvers/humanoid.h"
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace sg {
namespace {

using Qelp::Vector3;

// A skeleton of five joints that walks: hips, and for each side a knee and a toe. Feet stand for half of a second and
// swing for the other half.
constexpr int joints = 5, leftToe = 2, rightToe = 4;
constexpr double frameTime = 0.02;

struct Walk {
    double size = 1, slide = 0, sink = 0;  // metres: how far a foot drifts in a contact, and how deep it goes
    int frames = 200;

    double footAt(double time, double& height) const {
        double const step = std::floor(time), phase = time - step;
        if (phase < 0.5) return height = 0, step + 2 * phase * slide / size;
        double const swing = 2 * phase - 1;
        height = 0.15 * std::sin(swing * std::numbers::pi);
        return step + slide / size + (1 - slide / size) * (swing - std::sin(2 * std::numbers::pi * swing) / 6.4);
    }
    std::vector<Vector3> positions() const {
        std::vector<Vector3> out;
        for (int f = 0; f < frames; ++f) {
            double const time = f * frameTime;
            auto const add = [&](double x, double y, double z) {
                out.push_back({float(size * x), float(size * y - sink * (y < 0.01 && f % 2)), float(size * z)});
            };
            add(0, 0.9, time);
            for (int side = 0; side < 2; ++side) {
                double height = 0, at = footAt(time + 0.5 * side, height);
                add(side ? -0.1 : 0.1, 0.45, time);
                add(side ? -0.1 : 0.1, height, at - 0.5 * side);
            }
        }
        return out;
    }
};

Skeleton walker(double size) {
    Skeleton s;
    s.names = {L"Hips", L"LeftLeg", L"LeftToe", L"RightLeg", L"RightToe"};
    s.parents = {-1, 0, 1, 0, 3};
    double const places[joints][3] = {{0, 0.9, 0}, {0.1, -0.45, 0}, {0, -0.45, 0}, {-0.1, -0.45, 0}, {0, -0.45, 0}};
    for (auto const& p : places) {
        Qelp::Matrix34 m;
        for (int axis = 0; axis < 3; ++axis) m.m[3][axis] = float(size * p[axis]);
        s.origins.push_back(m);
    }
    return s;
}

struct RetargetReportTest : ::testing::Test {
    RetargetReportTest() {
        match.source = &source, match.target = &target;
        std::vector<JointPair> given;
        for (int i = 0; i < joints; ++i) given.emplace_back(i, i);
        match.given = given;
        EXPECT_TRUE(match.Run());
        match.given = {};
    }
    RetargetReport report(std::vector<Vector3> const& from, std::vector<Vector3> const& to) {
        RetargetReport r = given(from, to);
        EXPECT_TRUE(r.Run());
        return r;
    }
    RetargetReport given(std::vector<Vector3> const& from, std::vector<Vector3> const& to) {
        RetargetReport r;
        r.source = {joints, from}, r.target = {joints, to};
        r.frameTime = frameTime, r.feet = feet, r.match = &match, r.scale = 2;
        return r;
    }
    static int verdict(RetargetReport const& r) { return int(r.verdict); }

    Skeleton const source = walker(1), target = walker(2);
    std::vector<RetargetFoot> const feet = {{leftToe, leftToe, 0, 0}, {rightToe, rightToe, 0, 0}};
    SkeletonMatch match;
    std::vector<Vector3> const from = Walk().positions(), to = Walk{2}.positions();
};

TEST_F(RetargetReportTest, AWalkInAnotherSizeIsGood) {
    RetargetReport const r = report(from, to);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Good));
    EXPECT_TRUE(r.reasons.empty());
    EXPECT_LT(r.slide.largest, 30);
    EXPECT_NEAR(r.slide.largest, r.sourceSlide.largest, 0.1);
    EXPECT_LT(r.depth, 0.1);
    EXPECT_EQ(r.frames, 200u);
    EXPECT_EQ(r.matched, 5u);
    EXPECT_EQ(r.meanConfidence, 1);
    EXPECT_EQ(r.leastConfidence, 1);
}

TEST_F(RetargetReportTest, ContactsAreFoundWhereTheSourceStands) {
    RetargetReport const r = report(from, to);
    ASSERT_EQ(r.footing.size(), 2u);
    for (RetargetReport::Foot const& foot : r.footing) {
        EXPECT_NEAR(foot.contacts, 4, 1);
        EXPECT_NEAR(foot.contactFrames, 100, 20);
    }
}

TEST_F(RetargetReportTest, ASlideIsMeasuredInMillimetres) {
    RetargetReport const r = report(from, Walk{2, 0.1}.positions());
    EXPECT_NEAR(r.slide.largest, 100, 15);
    EXPECT_NEAR(r.slide.mean, 50, 10);
    EXPECT_LT(r.sourceSlide.largest, 30);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Fair));
    EXPECT_EQ(r.reasons.size(), 1u);
    EXPECT_EQ(verdict(report(from, Walk{2, 0.3}.positions())), int(RetargetVerdict::Poor));
}

TEST_F(RetargetReportTest, WhatTheSourceItselfSlidesIsNotHeldAgainstTheTarget) {
    RetargetReport const r = report(Walk{1, 0.05}.positions(), Walk{2, 0.1}.positions());
    EXPECT_NEAR(r.sourceSlide.largest, r.slide.largest, 1);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Good));
}

TEST_F(RetargetReportTest, DepthBelowTheFloorIsMeasured) {
    RetargetReport const r = report(from, Walk{2, 0, 0.2}.positions());
    EXPECT_NEAR(r.depth, 200, 5);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Poor));
}

TEST_F(RetargetReportTest, AFootThatStandsHigherAtRestIsDeepSooner) {
    RetargetReport r = given(from, to);
    std::vector<RetargetFoot> higher = feet;
    higher[0].targetHeight = 0.1;
    r.feet = higher;
    ASSERT_TRUE(r.Run());
    EXPECT_NEAR(r.footing[0].depth, 100, 5);
    EXPECT_NEAR(r.footing[1].depth, 0, 0.1);
}

TEST_F(RetargetReportTest, AFrozenTargetFails) {
    std::vector<Vector3> still;
    for (int f = 0; f < 200; ++f) still.insert(still.end(), to.begin(), to.begin() + joints);
    RetargetReport const r = report(from, still);
    EXPECT_TRUE(r.isFrozen);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Failed));
    std::vector<Vector3> stillSource;
    for (int f = 0; f < 200; ++f) stillSource.insert(stillSource.end(), from.begin(), from.begin() + joints);
    EXPECT_FALSE(report(stillSource, still).isFrozen) << "a source that stands still is no fault";
}

TEST_F(RetargetReportTest, ACollapsedTargetFails) {
    std::vector<Vector3> point(to.size());
    RetargetReport const r = report(from, point);
    EXPECT_TRUE(r.isCollapsed);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Failed));
}

TEST_F(RetargetReportTest, WhatIsNotFiniteFails) {
    std::vector<Vector3> broken = to;
    broken[77].y = std::numeric_limits<float>::quiet_NaN();
    RetargetReport const r = report(from, broken);
    EXPECT_TRUE(r.isBroken);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Failed));
    EXPECT_EQ(r.slide.largest, 0);
}

TEST_F(RetargetReportTest, NothingToSeeFails) {
    RetargetReport const none = report({}, {});
    EXPECT_TRUE(none.isEmpty);
    EXPECT_EQ(verdict(none), int(RetargetVerdict::Failed));
    match.matches.clear();
    EXPECT_TRUE(report(from, to).isEmpty);
}

TEST_F(RetargetReportTest, UnsureMatchesAndHitLimitsLowerTheVerdict) {
    for (JointMatch& m : match.matches) m.confidence = 0.6;
    RetargetReport const unsure = report(from, to);
    EXPECT_EQ(verdict(unsure), int(RetargetVerdict::Fair));
    for (JointMatch& m : match.matches) m.confidence = 1;
    RetargetReport r = given(from, to);
    r.limitHits = 100;
    ASSERT_TRUE(r.Run());
    EXPECT_NEAR(r.limitShare, 0.1, 1e-12);
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Fair));
    r.limitHits = 900;
    ASSERT_TRUE(r.Run());
    EXPECT_EQ(verdict(r), int(RetargetVerdict::Poor));
    EXPECT_EQ(r.reasons.size(), 1u) << "a second run forgets the first";
}

TEST_F(RetargetReportTest, ListsTheUnmatched) {
    match.unmatchedSource = {1}, match.unmatchedTarget = {1, 2};
    RetargetReport const r = report(from, to);
    EXPECT_EQ(r.unmatchedSource, 1u);
    EXPECT_EQ(r.unmatchedTarget, 2u);
}

TEST_F(RetargetReportTest, EveryInvalidInputIsRefusedAndNothingChanges) {
    auto const expectRefused = [&](auto const& change, char const* what) {
        SCOPED_TRACE(what);
        RetargetReport r = given(from, to);
        r.frames = 77;
        change(r);
        EXPECT_FALSE(r.Validate());
        EXPECT_FALSE(r.Run());
        EXPECT_EQ(r.frames, 77u);
    };
    std::vector<RetargetFoot> const outside = {{9, 0, 0, 0}};
    expectRefused([](auto& r) { r.match = nullptr; }, "no match");
    expectRefused([](auto& r) { r.source.positions = r.source.positions.first(7); }, "part of a frame");
    expectRefused([](auto& r) { r.source.positions = r.source.positions.first(10); }, "fewer frames");
    expectRefused([](auto& r) { r.target.joints = 4; }, "other joints than matched");
    expectRefused([&](auto& r) { r.feet = outside; }, "a foot that is no joint");
    expectRefused([](auto& r) { r.frameTime = 0; }, "no time");
    expectRefused([](auto& r) { r.scale = std::nan(""); }, "no scale");
    expectRefused([](auto& r) { r.contactHeight = -1; }, "a negative height");
    expectRefused([](auto& r) { r.targetUp = {0, 0, 0}; }, "no up");
}

TEST(RetargetFeet, AreTheToesAtTheirHeightsOrElseTheAnkles) {
    HumanoidOptions o;
    Skeleton const s = humanoid(o);
    SkeletonMatch match;
    match.source = match.target = &s;
    ASSERT_TRUE(match.Run());
    std::vector<RetargetFoot> const feet = findFeet(match, {0, 1, 0}, {0, 1, 0});
    ASSERT_EQ(feet.size(), 2u);
    EXPECT_EQ(s.names[std::size_t(feet[0].source)], L"LeftToeBase");
    EXPECT_EQ(s.names[std::size_t(feet[1].target)], L"RightToeBase");
    EXPECT_NEAR(feet[0].sourceHeight, 0, 1e-6);
    std::erase_if(match.matches, [](JointMatch const& m) { return m.label.part == BodyPart::Toe; });
    std::vector<RetargetFoot> const ankles = findFeet(match, {0, 1, 0}, {0, 1, 0});
    ASSERT_EQ(ankles.size(), 2u);
    EXPECT_EQ(s.names[std::size_t(ankles[0].source)], L"LeftFoot");
    EXPECT_NEAR(ankles[0].targetHeight, 0.06, 1e-6);
    EXPECT_TRUE(findFeet({}, {0, 1, 0}, {0, 1, 0}).empty());
}

}  // namespace
}  // namespace sg
