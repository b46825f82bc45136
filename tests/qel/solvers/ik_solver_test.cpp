// What the inverse kinematics promises over many targets: that it gets there, inside the limits, in time, without
// jumps.
#include "tests/qel/solvers/ik_rig.h"
#include <algorithm>

namespace sg::ik {
namespace {

constexpr unsigned seed = 1;
#if defined(__SANITIZE_ADDRESS__)
constexpr int thinned = 20;  // the same cases, fewer of them
#else
constexpr int thinned = 1;
#endif

// ---- reachable targets ----

struct Figures {
    std::vector<int> iterations;
    double excess = 0;

    int at(double part) {
        auto const place = iterations.begin() + long(part * double(iterations.size() - 1));
        std::nth_element(iterations.begin(), place, iterations.end());
        return *place;
    }
};

Figures reachAll(Rig rig, double roam) {
    std::mt19937 random(seed);
    rig.solver.rootLocked = roam == 0;
    Figures figures;
    for (int i = 0; i < 1000 / thinned; ++i) {
        rig.aim(randomPose(rig.body, random, roam));
        EXPECT_TRUE(rig.run());
        EXPECT_TRUE(rig.solver.isReached) << i;
        rig.expectAtTargets();
        figures.iterations.push_back(rig.solver.iterations);
        figures.excess = std::max(figures.excess, rig.largestExcess());
    }
    return figures;
}

TEST(IKSolver, BringsAChainOfTwentyToAThousandRandomTargets) {
    Figures figures = reachAll(Rig(makeChain(20)), 0);
    EXPECT_LE(figures.excess, 1e-4);
    EXPECT_LE(figures.at(0.95), 2 * figures.at(0.5));
}

TEST(IKSolver, BringsFiveEffectorsOfAHumanoidToAThousandRandomPoses) {
    Figures figures = reachAll(Rig(makeHumanoid()), 0.3);
    EXPECT_LE(figures.excess, 1e-4);
    EXPECT_LE(figures.at(0.95), 2 * figures.at(0.5));
}

TEST(IKSolver, ReachesEverythingAtOnceWithoutLimits) {
    for (double roam : {0.0, 0.3}) {
        Rig rig(roam > 0 ? makeHumanoid() : makeChain(20));
        rig.solver.disableAllLimits = true;
        rig.solver.rootLocked = roam == 0;
        std::mt19937 random(seed);
        for (int i = 0; i < 200 / thinned; ++i) {
            rig.aim(randomPose(rig.body, random, roam));
            rig.run();
            EXPECT_TRUE(rig.solver.isReached) << i;
            EXPECT_LE(rig.solver.iterations, 20) << i;
        }
    }
}

TEST(IKSolver, LeavesAPoseAloneThatIsAtItsTargets) {
    Rig rig(makeHumanoid());
    rig.run();
    EXPECT_EQ(rig.solver.iterations, 0);
    EXPECT_TRUE(sameBits(rig.solver.result, rig.body.rest));
}

// ---- smooth paths ----

// A pose that wanders through the limits: each angle swings at a frequency of its own.
std::vector<Matrix34> wander(Body const& b, double time, double wide) {
    std::vector<Matrix34> pose = b.rest;
    for (std::size_t i = 0; i < pose.size(); ++i) {
        JointLimit const& l = b.joints[i].limit;
        auto const swing = [&](double frequency) { return wide * std::sin(frequency * time + double(i)); };
        JointLimitAngles at{l.twistOffset + swing(1) * l.twistAngle, swing(0.7) * l.swing1Angle,
                            swing(1.3) * l.swing2Angle};
        Mat3 const turn = fromRotation(Qelutils::rotation::fromQuaternion(jointRotationAt(l, clampJointAngles(l, at))));
        for (int r = 0; r < 3; ++r)
            for (int k = 0; k < 3; ++k) pose[i].m[r][k] = float(turn.row[r][k]);
    }
    return pose;
}

struct Motion {
    double largestStep = 0;  // radians of a joint, from frame to frame
    double wantedStep = 0;   // radians of an effector, or its way in lengths of a bone
    int missed = 0;
};

Motion follow(Rig& rig, int frames, bool goesOn, double wide) {
    Motion motion;
    std::vector<Matrix34> last;
    for (int f = 0; f < frames; ++f) {
        std::vector<IKHandle> const before = rig.handles;
        rig.aim(wander(rig.body, 0.002 * f, wide));
        for (std::size_t h = 0; h < before.size() && f > 0; ++h)
            motion.wantedStep = std::max({motion.wantedStep, angleBetween(before[h].target, rig.handles[h].target),
                                          distanceBetween(before[h].target, rig.handles[h].target) / 0.1});
        if (goesOn) rig.solver.previous = last;
        rig.run();
        motion.missed += !rig.solver.isReached;
        if (f > 0) motion.largestStep = std::max(motion.largestStep, rig.largestTurnFrom(last));
        last = rig.solver.result;
        rig.solver.previous = {};
    }
    return motion;
}

void expectSmooth(Motion const& motion) {
    EXPECT_EQ(motion.missed, 0);
    EXPECT_LE(motion.largestStep, motion.wantedStep);
}

TEST(IKSolver, FollowsASmoothPathWithoutAJumpWhenEachFrameGoesOnFromTheLast) {
    Rig chain(makeChain(20)), humanoid(makeHumanoid());
    expectSmooth(follow(chain, 10000 / thinned, true, 0.5));
    expectSmooth(follow(humanoid, 2000 / thinned, true, 0.5));
}

// Nearer paths: no map from all orientations to poses is continuous, and half a turn from rest is where this one
// breaks.
TEST(IKSolver, FollowsASmoothPathWithoutAJumpWhenEachFrameStartsAtRest) {
    Rig chain(makeChain(20)), humanoid(makeHumanoid());
    chain.solver.rootLocked = true;
    expectSmooth(follow(chain, 10000 / thinned, false, 0.2));
    expectSmooth(follow(humanoid, 2000 / thinned, false, 0.5));
}

}  // namespace
}  // namespace sg::ik
