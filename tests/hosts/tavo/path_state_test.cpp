// What is read of a trajectory: in the world, in the order of the keys, with its motion.
#include "hosts/tavo/path_state.h"
#include "hosts/tavo/session.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using namespace Tavo;

class PathStates : public testing::Test {
protected:
    PathStates() {
        session.scene().New();
        path = session.scene().CreateObject(XTrajectory::TypeID);
        path.SetName(L"way");
    }
    // Sampled timing: key times, and the fractions there.
    void time(std::vector<std::pair<float, float>> const& keys) {
        curve = session.scene().CreateNode(XAnimation::TypeID);
        for (auto const& [t, fraction] : keys) curve.SetKeyframe(t, fraction, LinearInterpolation);
        curve.IsCurveSampled().SetBoolean(true);
        session.settings().Time().ConnectOutputTo(curve.InputValue());
        curve.OutputValue().ConnectOutputTo(path.InputValue());
    }
    void straight(float length) {
        path.AppendTranslationKeyframe(XVector3(0, 0, 0));
        path.AppendTranslationKeyframe(XVector3(length, 0, 0));
    }
    static void expectAt(PathPoint const& p, double x, double y, double z) {
        EXPECT_NEAR(p.x, x, 1e-5);
        EXPECT_NEAR(p.y, y, 1e-5);
        EXPECT_NEAR(p.z, z, 1e-5);
    }
    Session session;
    XTrajectory path;
    XAnimation curve;
};

TEST_F(PathStates, KeysAreInTheirOrderAndInTheWorld) {
    path.SetTranslation(0, 10, 0);
    path.AppendTranslationKeyframe(XVector3(2, 0, 0));
    path.InsertTranslationKeyframe(0, XVector3(1, 0, 0));
    PathState const state = readPath(path);
    ASSERT_EQ(state.keys.size(), 2u);
    expectAt(state.keys[0].position, 1, 10, 0);
    expectAt(state.keys[1].position, 2, 10, 0);
    EXPECT_EQ(state.name, "way");
    EXPECT_NEAR(state.length, 1, 1e-6);
}

TEST_F(PathStates, HandlesAreThoseThatShapeTheLine) {
    path.AppendTranslationKeyframe(XVector3(0, 0, 0), XVector3(0, 1, 0));
    path.AppendTranslationKeyframe(XVector3(3, 0, 0), XVector3(3, -1, 0));
    path.AppendTranslationKeyframe(XVector3(6, 0, 0));
    PathState const state = readPath(path);
    EXPECT_FALSE(state.keys[0].in);
    expectAt(state.keys[0].out.value(), 0, 1, 0);
    expectAt(state.keys[1].in.value(), 3, 1, 0);
    expectAt(state.keys[1].out.value(), 3, -1, 0);
    EXPECT_FALSE(state.keys[2].out);
    EXPECT_GT(state.line.size(), 40u);
}

TEST_F(PathStates, StraightKeysHaveNoHandles) {
    straight(1);
    PathState const state = readPath(path);
    for (PathState::Key const& key : state.keys) EXPECT_FALSE(key.in || key.out);
    EXPECT_EQ(state.line.size(), 2u);
}

TEST_F(PathStates, MotionFollowsTheTiming) {
    straight(6);
    time({{1, 0}, {2, 0.5F}, {4, 1}});
    PathState const state = readPath(path);
    EXPECT_NEAR(state.start(), 1, 1e-6);
    EXPECT_NEAR(state.end(), 4, 1e-6);
    expectAt(state.at(0), 0, 0, 0);
    expectAt(state.at(2), 3, 0, 0);
    expectAt(state.at(3), 4.5, 0, 0);
    expectAt(state.at(9), 6, 0, 0);
}

TEST_F(PathStates, SpeedIsThatBetweenTheTimingKeysAround) {
    straight(6);
    time({{0, 0}, {1, 0.5F}, {3, 1}});
    std::vector<PathState::Moment> const motion = readPath(path).motion;
    EXPECT_NEAR(motion.front().speed, 3, 1e-4);
    EXPECT_NEAR(motion.back().speed, 1.5, 1e-4);
    auto const speedAt = [&](double time) {
        return std::find_if(motion.begin(), motion.end(), [=](auto const& m) { return m.time >= time - 1e-6; })->speed;
    };
    EXPECT_NEAR(speedAt(1), 2, 1e-4);
    EXPECT_NEAR(speedAt(0.5), 2.5, 1e-4);
}

TEST_F(PathStates, SpeedBackwardsIsNoLess) {
    straight(2);
    time({{0, 1}, {1, 0}});
    for (PathState::Moment const& m : readPath(path).motion) EXPECT_NEAR(m.speed, 2, 1e-4);
}

TEST_F(PathStates, SpeedCountsInTheWorld) {
    path.ScaleX().SetFloat(10);
    straight(2);
    time({{0, 0}, {1, 1}});
    EXPECT_NEAR(readPath(path).motion.front().speed, 20, 1e-3);
}

TEST_F(PathStates, WithoutTimingThereIsNoMotion) {
    straight(1);
    EXPECT_TRUE(readPath(path).motion.empty());
    time({{1, 0}});
    EXPECT_TRUE(readPath(path).motion.empty());
}

TEST_F(PathStates, AnEmptyTrajectoryIsEmpty) {
    time({{0, 0}, {1, 1}});
    PathState const state = readPath(path);
    EXPECT_TRUE(state.keys.empty() && state.line.empty() && state.motion.empty());
}

TEST_F(PathStates, SafeGuardsSayWhetherTheyAreUsed) {
    path.SetTranslation(0, 1, 0);
    path.AddSafeGuard(XVector3(1, 0, 0), 0.5F, XDropOff(0.25F));
    path.UseSafeGuards(false);
    PathState const state = readPath(path);
    ASSERT_EQ(state.guards.size(), 1u);
    expectAt(state.guards[0].centre, 1, 1, 0);
    EXPECT_FLOAT_EQ(float(state.guards[0].radius), 0.5F);
    EXPECT_FLOAT_EQ(float(state.guards[0].range), 0.25F);
    EXPECT_FALSE(state.guards[0].isUsed);
    path.UseSafeGuards(true);
    EXPECT_TRUE(readPath(path).guards[0].isUsed);
}

}  // namespace
}  // namespace host
