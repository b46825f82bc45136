// Targets out of reach, and targets that contradict each other: the nearest pose, and no jump from one to the next.
#include "qel/solvers/ik_skeleton.h"
#include "tests/qel/solvers/ik_rig.h"
#include <algorithm>

namespace sg::ik {
namespace {

// Both feet of a humanoid are held where they stand, turn and all; a hand is pulled.
struct Pulled : Rig {
    Pulled() : Rig(makeHumanoid()) {
        handles = {handles[1], handles[3], handles[4]};
        aimAt(0, {0.1, 1.3, 1});
    }
    void pullTo(double z) { handles[0].target.m[3][2] = float(z); }
    void pull(double z) {
        pullTo(z);
        run();
    }
    // Half the sum of squared errors, an error of half the body's length like a radian.
    double cost() const {
        Skeleton skeleton;
        skeleton.setUp(solver.geometry, solver.hierarchy);
        skeleton.place();
        double const size = skeleton.reach() / 2;
        double sum = 0;
        std::vector<Matrix34> const at = world();
        for (IKHandle const& h : handles) {
            Matrix34 const& is = at[std::size_t(h.joint)];
            double const angle = h.mode == PositionHandle ? 0 : angleBetween(is, h.target);
            sum += h.positionWeight * std::pow(distanceBetween(is, h.target) / size, 2) + angle * angle;
        }
        return sum / 2;
    }
    // The least cost that patient solves come to, from rest and from random poses.
    double leastOfStarts() {
        Pulled patient;
        patient.handles = handles;
        patient.solver.maxIterations = 1000;
        std::mt19937 random(4);
        double least = 1e30;
        for (int i = 0; i < 8; ++i) {
            std::vector<Matrix34> const start = i ? randomPose(body, random, 0.3) : body.rest;
            patient.solver.previous = start;
            patient.run();
            least = std::min(least, patient.cost());
        }
        return least;
    }
};

TEST(FarTargets, CostMoreTheFartherTheyAreWithoutASingleDip) {
    Pulled body;
    double before = 0, grew = 0;
    for (int i = 0; i <= 50; ++i) {
        body.pull(1 + 0.1 * i);
        double const cost = body.cost(), grows = cost - before;
        EXPECT_GE(grows, grew - 1e-3 * cost - 1e-6) << i;  // ever faster
        EXPECT_LE(body.largestExcess(), 1e-4) << i;
        EXPECT_LE(body.solver.iterations, body.solver.maxIterations) << i;
        before = cost, grew = grows;
    }
    EXPECT_FALSE(body.solver.isReached);
}

TEST(FarTargets, MoveEveryJointByLittleFromOneToTheNext) {
    Pulled body;
    body.pull(0.9);
    std::vector<Matrix34> last = body.solver.result;
    for (int i = 0; i <= 50; ++i) {
        body.pull(1 + 0.1 * i);
        EXPECT_LE(body.largestTurnFrom(last), 0.5) << i;
        last = body.solver.result;
    }
}

TEST(FarTargets, MoveJointsByLessWhenEachFrameGoesOnFromTheLast) {
    Pulled body;
    body.pull(0.99);
    std::vector<Matrix34> last = body.solver.result;
    for (int i = 0; i <= 500; ++i) {
        body.solver.previous = last;
        body.pull(1 + 0.01 * i);
        EXPECT_LE(body.largestTurnFrom(last), 0.1) << i;
        last = body.solver.result;
    }
    EXPECT_LE(body.cost(), 1.001 * body.leastOfStarts());
}

TEST(FarTargets, GiveAPoseAsGoodAsTheBestOfManyPatientStarts) {
    Pulled body;
    for (double z : {1.7, 2.0, 2.5, 2.8, 2.9, 3.5, 5.0, 9.0}) {
        body.pull(z);
        EXPECT_LE(body.cost(), 1.001 * body.leastOfStarts()) << z;
    }
}

TEST(FarTargets, WithATurnToKeepAreNearlyAsGood) {
    Pulled body;
    body.handles[0].mode = PositionAndOrientationHandle;
    for (double z : {1.8, 2.4, 3.0, 4.0, 6.0}) {
        body.pull(z);
        EXPECT_LE(body.cost(), 1.01 * body.leastOfStarts()) << z;
    }
}

// What is drawn both ways stays between, by the weights.
TEST(FarTargets, ThatContradictEachOtherAreShared) {
    Pulled body;
    body.handles.push_back(body.handles[0]);
    body.handles.back().joint = body.body.effectors[2];
    body.aimAt(0, {-1.5, 1.3, 1.5});
    body.aimAt(3, {1.5, 1.3, 1.5});
    body.run();
    EXPECT_FALSE(body.solver.isReached);
    EXPECT_NEAR(body.missOf(0), body.missOf(3), 0.01);
    EXPECT_LE(body.cost(), 1.001 * body.leastOfStarts());
    body.handles[0].positionWeight = 9;
    double const shared = body.missOf(0);
    body.run();
    EXPECT_LT(body.missOf(0), 0.7 * shared);
    EXPECT_LE(body.cost(), 1.001 * body.leastOfStarts());
}

TEST(FarTargets, GiveTheSameBitsAgain) {
    Pulled once, again;
    again.pull(2.3);
    for (double z : {2.9, 5.0}) {
        once.pull(z), again.pull(z);
        EXPECT_TRUE(sameBits(once.solver.result, again.solver.result));
    }
}

TEST(FarTargets, StraightenALongChainWithoutLimits) {
    Rig rig(makeChain(110));  // more unknowns than the curvature is worked out for
    rig.free();
    rig.solver.rootLocked = true;
    rig.aimAt(0, {9, 12, 0});
    rig.run();
    EXPECT_TRUE(rig.isFinite());
    EXPECT_LE(rig.missOf(0), 15 - 10.9 + 0.05);
}

}  // namespace
}  // namespace sg::ik
