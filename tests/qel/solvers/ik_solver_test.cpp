#include "tests/qel/solvers/ik_bodies.h"
#include <gtest/gtest.h>

namespace sg::ik {
namespace {

using Qelp::Matrix34;

struct Rig {
    Body body;
    std::vector<IKHandle> handles;
    IKSolver solver;

    explicit Rig(Body b) : body(std::move(b)) {
        for (int e : body.effectors) handles.emplace_back().joint = e;
        solver.hierarchy = body.parents;
        solver.joints = body.joints;
        solver.geometry = body.rest;
        aim(body.rest);
    }
    void aim(std::vector<Matrix34> const& pose) {
        std::vector<Matrix34> const world = worldOf(pose, body.parents);
        for (IKHandle& h : handles) h.target = world[std::size_t(h.joint)];
        solver.handles = handles;
    }
    void expectAtTargets(double metres = 1e-3, double degrees = 0.5) const {
        std::vector<Matrix34> const world = worldOf(solver.result, body.parents);
        for (IKHandle const& h : handles) {
            EXPECT_LE(distanceBetween(world[std::size_t(h.joint)], h.target), metres);
            EXPECT_LE(angleBetween(world[std::size_t(h.joint)], h.target), degrees * 3.14159265 / 180);
        }
    }
};

void expectAllReachedWithoutLimits(Rig rig, double roam) {
    std::mt19937 random(1);
    rig.solver.disableAllLimits = true;
    rig.solver.rootLocked = roam == 0;
    for (int i = 0; i < 100; ++i) {
        rig.aim(randomPose(rig.body, random, roam));
        ASSERT_TRUE(rig.solver.Run());
        EXPECT_TRUE(rig.solver.isReached) << i;
        rig.expectAtTargets();
    }
}

TEST(IKSolver, BringsAChainToAnyReachableTarget) { expectAllReachedWithoutLimits(Rig(makeChain(20)), 0); }
TEST(IKSolver, BringsFiveEffectorsOfABodyToTheirTargetsTogether) {
    expectAllReachedWithoutLimits(Rig(makeHumanoid()), 0.3);
}

}  // namespace
}  // namespace sg::ik
