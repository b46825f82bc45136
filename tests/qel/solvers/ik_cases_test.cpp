// What each input of the inverse kinematics does, and what happens at its ends.
#include "tests/qel/solvers/ik_rig.h"

namespace sg::ik {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();

// Bones of 0.1 m along X, without limits; only the position of the last joint counts.
struct Limb : Rig {
    explicit Limb(int joints) : Rig(makeChain(joints)) {
        free();
        solver.rootLocked = true;
        aimAt(0, rowOf(handles[0].target, 3));
    }
};

void bendBy(std::vector<Matrix34>& pose, std::size_t joint, Vec3 const& rotation) {
    Mat3 const turn = exponential(rotation);
    for (int r = 0; r < 3; ++r)
        for (int k = 0; k < 3; ++k) pose[joint].m[r][k] = float(turn.row[r][k]);
}

// ---- bad input ----

void expectRefused(Rig& rig, std::wstring const& why) {
    EXPECT_FALSE(rig.run());
    EXPECT_EQ(rig.solver.Validate(), why);
    EXPECT_TRUE(sameBits(rig.solver.result, {rig.solver.geometry.begin(), rig.solver.geometry.end()}));
}

TEST(IKSolver, SaysWhatIsWrongWithTheHierarchyAndChangesNothing) {
    Limb limb(3);
    for (auto const& [parents, why] :
         {std::pair{std::vector<int>{-1, 0}, L"The hierarchy is shorter than the geometry"},
          {std::vector<int>{-1, 3, 0}, L"Joint 1 has no joint 3 for a parent"},
          {std::vector<int>{-2, 0, 1}, L"Joint 0 has no joint -2 for a parent"},
          {std::vector<int>{-1, 2, 1}, L"Joint 1 is below itself"},
          {std::vector<int>{-1, 0, 2}, L"Joint 2 is below itself"}}) {
        limb.solver.hierarchy = parents;
        expectRefused(limb, why);
    }
    limb.solver.hierarchy = limb.body.parents;
    int const roots[] = {0, 3};
    limb.solver.roots = roots;
    expectRefused(limb, L"There is no joint 3 for a root");
}

TEST(IKSolver, SaysWhatIsWrongWithAHandle) {
    Limb limb(3);
    auto const check = [&](IKHandle const& broken, std::wstring const& why) {
        IKHandle const sound = limb.handles[0];
        limb.handles[0] = broken;
        expectRefused(limb, why);
        limb.handles[0] = sound;
    };
    IKHandle h = limb.handles[0];
    h.joint = 3;
    check(h, L"Handle 0 has no joint 3 for an effector");
    h = limb.handles[0];
    h.target.m[3][1] = nan;
    check(h, L"The target of handle 0 is not finite");
    h = limb.handles[0];
    h.mode = 3;
    check(h, L"Handle 0 has the mode 3, which there is not");
    h = limb.handles[0];
    h.orientationWeight = -1;
    check(h, L"A weight of handle 0 is negative or not a number");
}

TEST(IKSolver, SaysWhatIsWrongWithAJointOrASetting) {
    Limb limb(3);
    std::vector<Matrix34> broken = limb.body.rest;
    broken[1].m[0][0] = infinity;
    limb.solver.geometry = broken;
    limb.run();
    EXPECT_EQ(limb.solver.Validate(), L"The matrix of joint 1 is not finite");
    limb.solver.geometry = limb.body.rest;
    limb.body.joints[2].stiffness = double(nan);
    expectRefused(limb, L"A weight of joint 2 is negative or not a number");
    limb.body.joints[2].stiffness = 0;
    limb.body.joints[1].hasPoles = true;
    limb.body.joints[1].controlPole.m[3][0] = infinity;
    expectRefused(limb, L"A pole of joint 1 is not finite");
    limb.body.joints[1].hasPoles = false;
    std::vector<std::vector<Matrix34>> const poses = {broken};
    limb.solver.bindPoses = poses;
    expectRefused(limb, L"A bind pose is not finite");
    limb.solver.bindPoses = {};
    limb.solver.maxIterations = -1;
    expectRefused(limb, L"The number of iterations is negative");
    limb.solver.maxIterations = 1;
    limb.solver.positionAccuracy = double(nan);
    expectRefused(limb, L"An accuracy is negative or not a number");
    limb.solver.positionAccuracy = 0;
    limb.solver.moreBias = double(infinity);
    expectRefused(limb, L"A bias is not a number");
    limb.solver.moreBias = 0;
    EXPECT_EQ(limb.solver.Validate(), L"");
}

TEST(IKSolver, TakesAHierarchyThatIsLongerThanTheJoints) {
    Limb limb(3);
    std::vector<int> const longer = {-1, 0, 1, -1};
    limb.solver.hierarchy = longer;
    limb.aimAt(0, {0.1, 0.1, 0});
    EXPECT_TRUE(limb.run());
    EXPECT_TRUE(limb.solver.isReached);
}

TEST(IKSolver, TakesParentsThatComeAfterTheirChildren) {
    Limb limb(4);  // the root, then from leaf to root
    std::vector<int> const parents = {-1, 2, 3, 0};
    limb.solver.hierarchy = limb.body.parents = parents;
    limb.handles[0].joint = 1;
    limb.aimAt(0, {0.1, 0.15, 0.05});
    EXPECT_TRUE(limb.run());
    EXPECT_LE(limb.missOf(0), 1e-4);
}

TEST(IKSolver, GivesNothingForNothing) {
    IKSolver solver;
    EXPECT_TRUE(solver.Run());
    EXPECT_TRUE(solver.result.empty());
    Limb limb(3);
    limb.handles.clear();
    EXPECT_TRUE(limb.run());
    EXPECT_TRUE(sameBits(limb.solver.result, limb.body.rest));
    EXPECT_TRUE(limb.solver.isReached);
}

// ---- bits ----

TEST(IKSolver, GivesTheSameBitsWhateverItSolvedBefore) {
    std::mt19937 random(3);
    Rig used(makeHumanoid());
    for (int i = 0; i < 20; ++i) {
        Rig fresh(makeHumanoid());
        fresh.aim(randomPose(fresh.body, random, 0.2));
        used.handles = fresh.handles;
        fresh.run(), used.run();
        EXPECT_TRUE(sameBits(fresh.solver.result, used.solver.result));
        Rig other(makeChain(5));
        other.solver = std::move(used.solver);
        other.solver.geometry = other.body.rest;
        other.solver.hierarchy = other.body.parents;
        other.run();
        used.solver = std::move(other.solver);
        used.solver.geometry = used.body.rest;
        used.solver.hierarchy = used.body.parents;
    }
}

TEST(IKSolver, KeepsTranslationAndScaleOfAllButTheRoot) {
    std::mt19937 random(5);
    Rig rig(makeHumanoid());
    for (std::size_t i = 0; i < rig.body.rest.size(); i += 3)
        for (int k = 0; k < 3; ++k) rig.body.rest[i].m[1][k] *= 1.5F;
    rig.solver.geometry = rig.body.rest;
    rig.aim(rig.body.rest);
    for (IKHandle& h : rig.handles) h.target.m[3][0] += 0.2F;
    EXPECT_TRUE(rig.run());
    for (std::size_t i = 0; i < rig.body.rest.size(); ++i) {
        Matrix34 const &was = rig.body.rest[i], &is = rig.solver.result[i];
        for (int r = 0; r < 3; ++r) EXPECT_NEAR(length(rowOf(is, r)), length(rowOf(was, r)), 1e-6) << i;
        EXPECT_TRUE(i == 0 || rowOf(is, 3) == rowOf(was, 3)) << i;
    }
}

TEST(IKSolver, LeavesJointsAloneThatLeadToNoHandle) {
    Rig rig(makeHumanoid());
    rig.aimAt(1, {-0.3, 1.2, 0.3});
    rig.handles.resize(2);
    rig.handles.erase(rig.handles.begin());
    EXPECT_TRUE(rig.run());
    EXPECT_EQ(rig.solver.result[20], rig.body.rest[20]);  // a finger
    EXPECT_EQ(rig.solver.result[6], rig.body.rest[6]);    // the head
}

// ---- iterations and limits ----

TEST(IKSolver, OnlyBringsJointsInsideTheirLimitsInZeroIterations) {
    Rig rig(makeChain(3));
    bendBy(rig.body.rest, 1, {0, 0, 2});
    rig.solver.geometry = rig.body.rest;
    rig.solver.maxIterations = 0;
    rig.aimAt(0, {0, 0.2, 0});
    EXPECT_TRUE(rig.run());
    EXPECT_EQ(rig.solver.iterations, 0);
    EXPECT_EQ(rig.solver.result[0], rig.body.rest[0]);
    EXPECT_NEAR(angleBetween(rig.solver.result[1], Matrix34()), 0.785, 1e-5);
    EXPECT_LE(rig.largestExcess(), 1e-6);
}

TEST(IKSolver, HonoursTheMostIterations) {
    std::mt19937 random(9);
    Rig rig(makeHumanoid());
    for (int most : {1, 2, 5, 17}) {
        rig.solver.maxIterations = most;
        rig.aim(randomPose(rig.body, random, 2));
        for (IKHandle& h : rig.handles) h.target.m[3][2] += 3;  // and out of reach
        rig.run();
        EXPECT_LE(rig.solver.iterations, most);
        EXPECT_LE(rig.largestExcess(), 1e-4);
    }
}

TEST(IKSolver, TurnsBeyondLimitsOnlyWhereTheyAreDisabled) {
    Rig rig(makeChain(2));
    rig.solver.rootLocked = true;
    rig.aimAt(0, {0, 0.1, 0});
    rig.run();
    EXPECT_FALSE(rig.solver.isReached);
    EXPECT_NEAR(angleBetween(rig.solver.result[0], Matrix34()), 0.785, 1e-3);
    rig.solver.disableAllLimits = true;
    rig.run();
    EXPECT_TRUE(rig.solver.isReached);
    EXPECT_NEAR(angleBetween(rig.solver.result[0], Matrix34()), pi / 2, 1e-2);
}

TEST(IKSolver, BendsAHingeOnlyTheWayItGoes) {
    for (double sign : {1.0, -1.0}) {
        Limb limb(3);
        limb.body.joints[1].isLimited = true;
        limb.body.joints[1].limit = hinge(sign > 0 ? 0 : -2.4, sign > 0 ? 2.4 : 0);
        limb.body.joints[1].limit.fixedFrame = limb.body.joints[1].limit.movingOffset = Body::frameAlong({0, 0, 1});
        limb.aimAt(0, {0.12, 0, 0});
        limb.run();
        EXPECT_TRUE(limb.solver.isReached);
        EXPECT_GT(sign * double(limb.solver.result[1].m[0][1]), 0.5);  // the X axis turns to that side
    }
}

// ---- the root ----

TEST(IKSolver, MovesTheRootWhereTheLimbIsTooShort) {
    Limb limb(3);
    limb.solver.rootLocked = false;
    limb.aimAt(0, {1, 0.5, 0});
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_GT(length(limb.placeOf(0)), 0.5);
}

TEST(IKSolver, KeepsTheRootWhereItIsLocked) {
    Limb limb(3);
    limb.aimAt(0, {1, 0.5, 0.5});
    limb.run();
    EXPECT_EQ(limb.placeOf(0), (Vec3{0, 0, 0}));
    limb.solver.rootLocked = false;
    for (int axis = 0; axis < 3; ++axis) {
        for (int k = 0; k < 3; ++k) limb.solver.lockRoot[k] = k == axis;
        limb.run();
        for (int k = 0; k < 3; ++k) EXPECT_EQ(limb.placeOf(0)[k] == 0, k == axis) << axis << k;
    }
}

// ---- handles and joints ----

TEST(IKSolver, LetsASecondaryHandlePullOnlyWhileItIsPinned) {
    Limb limb(6);
    limb.aimAt(0, {0.3, 0.15, 0});
    limb.run();
    std::vector<Matrix34> const alone = limb.solver.result;
    IKHandle second = limb.handles[0];
    second.joint = 2;
    second.mode = SecondaryHandle;
    second.orientationWeight = 0;
    second.target.m[3][0] = 0.15F, second.target.m[3][1] = -0.05F;
    limb.handles.push_back(second);
    limb.run();
    EXPECT_TRUE(sameBits(limb.solver.result, alone));
    limb.handles[1].isPinned = true;
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_LE(limb.missOf(1), 1e-4);
    limb.handles[1].isPinned = false;
    limb.handles[1].secondaryWeight = 0.5;
    limb.run();
    EXPECT_LE(limb.missOf(1), 1e-2);
    EXPECT_LE(limb.missOf(0), 1e-4);
}

TEST(IKSolver, LetsASoftHandleGiveWayToAnother) {
    Limb limb(3);
    limb.aimAt(0, {0.1, 0.1, 0});
    IKHandle soft = limb.handles[0];
    soft.mode = SecondaryHandle;
    soft.secondaryWeight = 1;
    soft.orientationWeight = 0;
    soft.target.m[3][0] = -0.1F;
    limb.handles.push_back(soft);
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_LE(limb.missOf(0), 1e-4);
}

TEST(IKSolver, WeighsHandlesThatContradictEachOther) {
    Limb limb(2);
    limb.solver.rootLocked = false;
    limb.handles.push_back(limb.handles[0]);
    limb.aimAt(0, {1, 0, 0});
    limb.aimAt(1, {2, 0, 0});
    limb.handles[1].positionWeight = 3;
    limb.run();
    EXPECT_FALSE(limb.solver.isReached);
    EXPECT_NEAR(limb.placeOf(1).x, 1.75, 1e-3);
}

TEST(IKSolver, TurnsStiffJointsLessAndLockedAxesNotAtAll) {
    Limb limb(4);
    limb.aimAt(0, {0.28, 0.08, 0});
    limb.body.joints[0].stiffness = 20;
    for (double& r : limb.body.joints[1].readiness) r = 0;
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_EQ(limb.solver.result[1], limb.body.rest[1]);
    EXPECT_LT(angleBetween(limb.solver.result[0], Matrix34()), 0.5 * angleBetween(limb.solver.result[2], Matrix34()));
}

TEST(IKSolver, LeavesATransformThatIsNoJoint) {
    Limb limb(4);
    limb.body.joints[1].isJoint = false;
    limb.aimAt(0, {0.2, 0.1, 0.05});
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_EQ(limb.solver.result[1], limb.body.rest[1]);
    limb.body.joints[0].isJoint = false;
    limb.solver.rootLocked = false;
    limb.run();
    EXPECT_EQ(limb.solver.result[0], limb.body.rest[0]);
}

TEST(IKSolver, SpreadsTheTurnByTheBiases) {
    auto const shareOfRoot = [](double more, double reverse) {
        Limb limb(9);
        limb.solver.moreBias = more;
        limb.solver.reverseBias = reverse;
        limb.aimAt(0, {0.6, 0.3, 0});
        limb.run();
        EXPECT_TRUE(limb.solver.isReached);
        double upper = 0, lower = 0;
        for (std::size_t i = 0; i < 4; ++i) upper += angleBetween(limb.solver.result[i], Matrix34());
        for (std::size_t i = 4; i < 8; ++i) lower += angleBetween(limb.solver.result[i], Matrix34());
        return upper / (upper + lower);
    };
    double const even = shareOfRoot(0, 0);
    EXPECT_GT(shareOfRoot(2, 0), even + 0.05);
    EXPECT_LT(shareOfRoot(0, 2), even - 0.05);
}

// ---- poles and bind poses ----

struct PoledLimb : Limb {
    PoledLimb() : Limb(3) {
        bendBy(body.rest, 0, {0, 0, 0.5});
        bendBy(body.rest, 1, {0, 0, -1});
        solver.geometry = body.rest;
        aimAt(0, rowOf(worldOf(body.rest, body.parents)[2], 3));
        body.joints[0].hasPoles = true;
        for (Matrix34* pole : {&body.joints[0].controlPole, &body.joints[0].referencePole}) pole->m[3][1] = 1;
    }
    void turnControl(double angle) {
        body.joints[0].controlPole.m[3][1] = float(std::cos(angle));
        body.joints[0].controlPole.m[3][2] = float(std::sin(angle));
    }
};

TEST(IKSolver, LeavesALimbWhosePolesAgree) {
    PoledLimb limb;
    limb.run();
    EXPECT_TRUE(sameBits(limb.solver.result, limb.body.rest));
}

TEST(IKSolver, TurnsTheLimbByTheAngleBetweenItsPoles) {
    for (double angle : {0.3, -1.0, 2.5}) {
        PoledLimb limb;
        limb.turnControl(angle);
        limb.run();
        EXPECT_TRUE(limb.solver.isReached);
        Vec3 const knee = limb.placeOf(1);
        EXPECT_NEAR(std::atan2(knee.z, knee.y), angle, 5e-3);
        EXPECT_LE(limb.missOf(0), 1e-4);
    }
}

TEST(IKSolver, LetsPolesGiveWayToTheHandle) {
    PoledLimb limb;
    limb.body.joints[0].isLimited = true;  // may swing up and down, not out of the plane
    limb.body.joints[0].limit = ball(0.01, 2, 0.01);
    limb.turnControl(1.5);
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_LE(limb.missOf(0), 1e-4);
    EXPECT_LE(limb.largestExcess(), 1e-4);
}

// Each joint bent alike; by the angle, out of the plane where it is negative.
std::vector<Matrix34> curled(Body const& b, double angle) {
    std::vector<Matrix34> pose = b.rest;
    for (std::size_t i = 0; i + 1 < pose.size(); ++i)
        bendBy(pose, i, angle < 0 ? Vec3{0, angle, 0} : Vec3{0, 0, angle});
    return pose;
}

std::vector<Matrix34> solvedFrom(double angle, std::vector<double> const& bindAngles) {
    Limb limb(8);
    std::vector<Matrix34> const start = curled(limb.body, angle);
    std::vector<std::vector<Matrix34>> poses;
    for (double a : bindAngles) poses.push_back(curled(limb.body, a));
    limb.solver.geometry = start;
    limb.solver.bindPoses = poses;
    limb.aimAt(0, {0.5, 0.1, 0.1});
    limb.run();
    EXPECT_TRUE(limb.solver.isReached);
    EXPECT_LE(limb.missOf(0), 1e-4);
    return limb.solver.result;
}

TEST(IKSolver, PrefersTheBindPoseWhereTheTargetsLeaveAChoice) {
    auto const distance = [](std::vector<Matrix34> const& pose) {
        std::vector<Matrix34> const bind = curled(makeChain(8), -0.3);
        double sum = 0;
        for (std::size_t i = 0; i < pose.size(); ++i) sum += std::pow(angleBetween(pose[i], bind[i]), 2);
        return sum;
    };
    EXPECT_LT(distance(solvedFrom(0.2, {-0.3})), 0.8 * distance(solvedFrom(0.2, {})));
}

TEST(IKSolver, TakesTheBindPoseThatIsClosestToTheGeometry) {
    EXPECT_TRUE(sameBits(solvedFrom(0.2, {-0.4, 0.3}), solvedFrom(0.2, {0.3})));
    EXPECT_FALSE(sameBits(solvedFrom(0.2, {-0.4, 0.3}), solvedFrom(0.2, {-0.4})));
}

// ---- out of reach, and without any slope ----

TEST(IKSolver, StretchesALimbTowardsATargetOutOfReach) {
    Limb limb(4);
    limb.aimAt(0, {0, 3, 4});
    limb.run();
    EXPECT_FALSE(limb.solver.isReached);
    EXPECT_NEAR(length(limb.placeOf(3) - Vec3{0, 0.18, 0.24}), 0, 2e-3);
}

TEST(IKSolver, MovesJointsByLittleWhenATargetOutOfReachMovesByLittle) {
    Limb limb(6);
    std::vector<Matrix34> last;
    double largest = 0;
    for (int i = 0; i < 400; ++i) {
        double const angle = -1 + 0.005 * i;
        limb.aimAt(0, {0.9 * std::cos(angle), 0.9 * std::sin(angle), 0.2});
        limb.run();
        if (i > 0) largest = std::max(largest, limb.largestTurnFrom(last));
        last = limb.solver.result;
    }
    EXPECT_LE(largest, 0.05);
}

TEST(IKSolver, ShortensAStraightLimbWhoseTargetLiesAlongIt) {
    for (bool goesOn : {false, true}) {
        Limb limb(3);
        if (goesOn) limb.solver.previous = limb.body.rest;
        limb.aimAt(0, {0.12, 0, 0});
        limb.run();
        EXPECT_TRUE(limb.solver.isReached) << goesOn;
    }
}

TEST(IKSolver, NeverGivesNaNOrMoreThanTheLimits) {
    Rig rig(makeHumanoid());
    for (std::size_t i = 0; i < rig.body.rest.size(); i += 2)  // bones without length, axes without scale
        for (int k = 0; k < 3; ++k) rig.body.rest[i].m[3][k] = 0, rig.body.rest[i / 2].m[k][1] *= float(i % 4);
    rig.solver.geometry = rig.body.rest;
    for (float far : {0.0F, 1e-30F, 1.0F, 1e6F, 1e18F, 3e38F})
        for (int same : {0, 1}) {
            for (std::size_t h = 0; h < rig.handles.size(); ++h) {
                rig.handles[h].target = {};
                for (int k = 0; k < 3; ++k)
                    rig.handles[h].target.m[3][k] = same ? far : far * 0.25F * float(k) - float(h);
                for (int r = 0; r < 3; ++r) rig.handles[h].target.m[r][r] = same ? 0 : -1;
            }
            EXPECT_TRUE(rig.run());
            EXPECT_TRUE(rig.isFinite()) << far;
        }
}

TEST(IKSolver, GoesOnFromThePreviousPose) {
    Limb limb(5);
    limb.aimAt(0, {0.2, 0.2, 0.1});
    limb.run();
    std::vector<Matrix34> const last = limb.solver.result;
    limb.solver.previous = last;
    limb.run();
    EXPECT_EQ(limb.solver.iterations, 0);
    limb.aimAt(0, {0.2, 0.2, 0.102});
    limb.run();
    EXPECT_LE(limb.solver.iterations, 3);
    EXPECT_LE(limb.largestTurnFrom(last), 0.1);
}

}  // namespace
}  // namespace sg::ik
