// Retargeting, frame by frame: what comes through whole, what is changed on purpose, and what holds for any input.
#include "qel/solvers/retarget.h"
#include "tests/qel/solvers/humanoid.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace sg {
namespace {

using Qelp::Matrix34;
using retargeting::Vec3;
using Pose = std::vector<Matrix34>;

constexpr double degree = std::numbers::pi / 180;
constexpr float nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();

std::vector<JointMatch> matchesOf(Skeleton const& source, Skeleton const& target) {
    SkeletonMatch match;
    match.source = &source, match.target = &target;
    EXPECT_TRUE(match.Run());
    return match.matches;
}

RetargetRig rigOf(Skeleton const& source, Skeleton const& target, std::vector<RetargetJoint> const& targetOptions = {},
                  std::vector<RetargetJoint> const& sourceOptions = {}) {
    std::vector<JointMatch> const matches = matchesOf(source, target);
    RetargetRig rig;
    rig.source = &source, rig.target = &target;
    rig.matches = matches;
    rig.sourceOptions = sourceOptions, rig.targetOptions = targetOptions;
    EXPECT_TRUE(rig.Run());
    return rig;
}

Pose retargeted(RetargetRig const& rig, Pose const& source, bool disableLimits = false, int* hits = nullptr) {
    Pose out(rig.targets.size());
    Retarget frame;
    frame.rig = &rig, frame.source = source, frame.target = out, frame.disableLimits = disableLimits;
    EXPECT_TRUE(frame.Run());
    if (hits) *hits = frame.limitHits;
    return out;
}

Pose world(Skeleton const& s, Pose const& local) {
    Pose out = local;
    for (std::size_t i = 0; i < s.size(); ++i)
        if (s.parents[i] >= 0) out[i] = Qelutils::multiply(local[i], out[std::size_t(s.parents[i])]);
    return out;
}

Vec3 place(Matrix34 const& m) { return retargeting::translationOf(m); }

int jointNamed(Skeleton const& s, std::wstring const& name) {
    auto const it = std::find(s.names.begin(), s.names.end(), name);
    EXPECT_NE(it, s.names.end());
    return int(it - s.names.begin());
}

// From one named joint to another, in the world.
Vec3 bone(Skeleton const& s, Pose const& pose, std::wstring const& from, std::wstring const& to) {
    Pose const w = world(s, pose);
    return retargeting::direction(place(w[std::size_t(jointNamed(s, to))]) -
                                  place(w[std::size_t(jointNamed(s, from))]));
}

double angleBetween(Matrix34 const& a, Matrix34 const& b) {
    double square = 0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) square += std::pow(double(a.m[i][j]) - b.m[i][j], 2);
    return 2 * std::asin(std::min(1.0, std::sqrt(square / 8)));
}

void expectNear(Pose const& a, Pose const& b, double tolerance = 1e-4) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        for (int row = 0; row < 4; ++row)
            for (int j = 0; j < 3; ++j) ASSERT_NEAR(a[i].m[row][j], b[i].m[row][j], tolerance) << i << ": " << row;
}

std::vector<RetargetJoint> all(Skeleton const& s, RetargetMode mode) {
    RetargetJoint o;
    o.mode = mode;
    return std::vector<RetargetJoint>(s.size(), o);
}

constexpr RetargetMode modes[] = {RetargetMode::Fixed, RetargetMode::Auto, RetargetMode::Free};

// ---- onto itself, and there and back ----

TEST(Retarget, ASkeletonOntoItselfKeepsItsMotion) {
    for (auto o : {HumanoidOptions(), small(), large()})
        for (bool turned : {false, true})
            for (RetargetMode mode : modes) {
                o.turnsAxes = turned, o.armsDown = 0.5, o.kneesBent = 0.2;
                Skeleton const s = humanoid(o);
                RetargetRig const rig = rigOf(s, s, all(s, mode));
                EXPECT_NEAR(rig.scale, 1, 1e-12);
                for (double time = 0; time < 10; time += 0.7) {
                    Pose const pose = moved(s, time, 1.2);
                    expectNear(retargeted(rig, pose), pose);
                    if (testing::Test::HasFatalFailure()) return;
                }
            }
}

TEST(Retarget, AnimatedTranslationsAndScalesOfAnyJointComeThrough) {
    HumanoidOptions o = small();
    o.turnsAxes = true;
    Skeleton s = humanoid(o);
    s.origins[5].m[0][0] *= 1.5F, s.origins[5].m[0][1] *= 1.5F, s.origins[5].m[0][2] *= 1.5F;
    RetargetRig const rig = rigOf(s, s);
    for (double time = 0; time < 10; time += 0.7) {
        Pose pose = moved(s, time, 1);
        for (std::size_t i = 0; i < pose.size(); ++i) {
            Matrix34 scale;
            for (int axis = 0; axis < 3; ++axis) {
                pose[i].m[3][axis] += float(0.05 * std::sin(time + double(i) + axis));
                scale.m[axis][axis] = float(1 + 0.3 * std::sin(2 * time + double(i) - axis));
            }
            if (i % 3 == 0) pose[i] = Qelutils::multiply(scale, pose[i]);
        }
        expectNear(retargeted(rig, pose), pose);
    }
}

TEST(Retarget, ToAnotherSkeletonAndBackLosesNothingThatHasACounterpart) {
    HumanoidOptions a = small(), b = small();
    b.naming = Naming::Anatomy, b.size = 2.3, b.armsDown = 0.8, b.legsApart = 0.2, b.turnsAxes = true, b.isZUp = true;
    Skeleton const source = humanoid(a), target = humanoid(b);
    RetargetRig const there = rigOf(source, target), back = rigOf(target, source);
    for (double time = 0; time < 10; time += 0.7) {
        Pose const pose = moved(source, time);
        Pose const returned = retargeted(back, retargeted(there, pose));
        Pose const was = world(source, pose), is = world(source, returned);
        for (std::size_t i = 0; i < source.size(); ++i) EXPECT_LT(angleBetween(was[i], is[i]), 0.01 * degree) << i;
    }
}

TEST(Retarget, ASpineOfThreeThereAndBackOverFiveLosesLessThanTwoDegrees) {
    HumanoidOptions a, b;
    b.spines = 5, b.turnsAxes = true;
    Skeleton const three = humanoid(a), five = humanoid(b);
    for (bool up : {true, false}) {
        Skeleton const &source = up ? three : five, &middle = up ? five : three;
        RetargetRig const there = rigOf(source, middle), back = rigOf(middle, source);
        double square = 0, count = 0;
        for (double time = 0; time < 10; time += 0.3) {
            Pose const pose = moved(source, time, 0.12);
            Pose const was = world(source, pose), is = world(source, retargeted(back, retargeted(there, pose)));
            for (std::size_t i = 0; i < source.size(); ++i) square += std::pow(angleBetween(was[i], is[i]), 2), ++count;
        }
        EXPECT_LT(std::sqrt(square / count), 2 * degree);
    }
}

// ---- chains ----

TEST(Retarget, TheEndOfASpineOfAnotherCountTurnsByTheWhole) {
    HumanoidOptions a, b;
    b.spines = 5, b.necks = 3, b.turnsAxes = true;
    Skeleton const three = humanoid(a), five = humanoid(b);
    for (bool up : {true, false}) {
        Skeleton const &source = up ? three : five, &target = up ? five : three;
        RetargetRig const rig = rigOf(source, target);
        Pose const sourceRest = source.restMatrices(), targetRest = target.restMatrices();
        for (double time = 0; time < 5; time += 0.7) {
            Pose const pose = moved(source, time, 0.3);
            Pose const from = world(source, pose), to = world(target, retargeted(rig, pose));
            for (auto const& [s, t] : {std::pair(up ? L"Spine2" : L"Spine4", up ? L"Spine4" : L"Spine2"),
                                       std::pair(L"Head", L"Head"), std::pair(L"LeftHand", L"LeftHand")}) {
                auto const i = std::size_t(jointNamed(source, s)), j = std::size_t(jointNamed(target, t));
                Matrix34 before, after;
                Qelutils::invert(sourceRest[i], before), Qelutils::invert(targetRest[j], after);
                EXPECT_LT(angleBetween(Qelutils::multiply(before, from[i]), Qelutils::multiply(after, to[j])),
                          0.01 * degree);
            }
        }
    }
}

TEST(Retarget, ABendOfOneSpineIsSharedByFive) {
    HumanoidOptions a, b;
    a.spines = 1, b.spines = 5;
    Skeleton const source = humanoid(a), target = humanoid(b);
    RetargetRig const rig = rigOf(source, target);
    Pose pose = source.origins;
    Matrix34 bend;
    Qelutils::eulerToMatrix({1, 0, 0}, 0, bend);
    auto& spine = pose[std::size_t(jointNamed(source, L"Spine"))];
    spine = Qelutils::multiply(bend, spine);
    Pose const out = retargeted(rig, pose);
    for (wchar_t const* name : {L"Spine", L"Spine1", L"Spine2", L"Spine3", L"Spine4"})
        EXPECT_NEAR(angleBetween(out[std::size_t(jointNamed(target, name))], Matrix34()), 0.2, 1e-5);
}

TEST(Retarget, JointsWithoutAMatchKeepTheirOrigin) {
    HumanoidOptions a, b;
    b.hasFace = true, b.turnsAxes = true;
    Skeleton const source = humanoid(a), target = humanoid(b);
    Pose const out = retargeted(rigOf(source, target), moved(source, 1));
    for (wchar_t const* name : {L"Jaw", L"LeftEye"}) {
        auto const i = std::size_t(jointNamed(target, name));
        EXPECT_EQ(out[i], target.origins[i]);
    }
}

// ---- rest poses and axes ----

TEST(Retarget, TheOriginOfTheSourceGivesTheOriginOfTheTargetWherePosesAreFixed) {
    HumanoidOptions a, b;
    b.armsDown = 0.8, b.turnsAxes = true, b.size = 1.6;
    Skeleton const source = humanoid(a), target = humanoid(b);
    expectNear(retargeted(rigOf(source, target, all(target, RetargetMode::Fixed)), source.origins), target.origins,
               2e-6);
}

TEST(Retarget, LimbsPointWhereTheSourcesDoWhateverTheRestPose) {
    HumanoidOptions a = small(), b = small();
    b.armsDown = 0.9, b.legsApart = 0.3, b.kneesBent = 0.2, b.turnsAxes = true, b.legs = 1.3, b.naming = Naming::Words;
    Skeleton const source = humanoid(a), target = humanoid(b);
    for (auto const& [from, to] : {std::pair(&source, &target), std::pair(&target, &source)}) {
        RetargetRig const rig = rigOf(*from, *to);
        for (double time = 0; time < 5; time += 0.9) {
            Pose const pose = moved(*from, time, 0.6), out = retargeted(rig, pose);
            for (auto const& [start, end] :
                 {std::pair(L"LeftArm", L"LeftForeArm"), std::pair(L"RightForeArm", L"RightHand"),
                  std::pair(L"LeftUpLeg", L"LeftLeg"), std::pair(L"RightLeg", L"RightFoot")})
                EXPECT_LT(length(bone(*from, pose, start, end) - bone(*to, out, start, end)), 1e-5);
        }
    }
}

TEST(Retarget, FreeTurnsTheOtherBonesToo) {
    HumanoidOptions a = small();
    Skeleton const source = humanoid(a);
    Skeleton target = source;  // the fingers stand up
    int const finger = jointNamed(target, L"LeftHandIndex1");
    Matrix34 up;
    Qelutils::eulerToMatrix({0, 0, 1}, 0, up);
    target.origins[std::size_t(finger)] = Qelutils::multiply(up, target.origins[std::size_t(finger)]);
    auto const direction = [&](RetargetMode mode) {
        Pose const out = retargeted(rigOf(source, target, all(target, mode)), source.origins);
        return bone(target, out, L"LeftHandIndex1", L"LeftHandIndex2");
    };
    EXPECT_LT(length(direction(RetargetMode::Free) - Vec3{1, 0, 0}), 1e-5);
    EXPECT_GT(length(direction(RetargetMode::Auto) - Vec3{1, 0, 0}), 0.5);
}

TEST(Retarget, FeetThatStandFlatStayFlatWhereLegsAreTurned) {
    HumanoidOptions a, b;
    b.legsApart = 0.3;
    Skeleton const source = humanoid(a), target = humanoid(b);
    Pose const out = world(target, retargeted(rigOf(source, target), source.origins));
    Pose const rest = target.restMatrices();
    auto const foot = std::size_t(jointNamed(target, L"LeftFoot"));
    EXPECT_LT(angleBetween(out[foot], rest[foot]), 1e-4);
}

TEST(Retarget, AWorldWithAnotherUpOrAnotherFacingIsTurnedIntoTheTargets) {
    struct Case {
        bool isZUp;
        double facing;
    };
    for (Case const& c : {Case{true, 0}, {false, std::numbers::pi / 2}, {true, std::numbers::pi}, {false, 0.6}}) {
        HumanoidOptions a, b;
        b.isZUp = c.isZUp, b.facing = c.facing, b.turnsAxes = true;
        Skeleton const source = humanoid(a), target = humanoid(b), straight = humanoid(a);
        RetargetRig const rig = rigOf(source, target);
        for (double time = 0; time < 5; time += 0.9) {
            Pose const pose = moved(source, time), to = world(target, retargeted(rig, pose)),
                       from = world(source, pose);
            for (std::size_t i = 0; i < source.size(); ++i) {
                Vec3 const p =
                    retargeting::turned(place(from[i]), Qelutils::rotation::fromAxisAngle({0, 1, 0}, c.facing));
                Vec3 const expected = c.isZUp ? Vec3{p.x, -p.z, p.y} : p;
                EXPECT_LT(length(place(to[i]) - expected), 1e-4) << i;
            }
        }
    }
}

TEST(Retarget, AFacingThatIsOffByLittleIsTakenForTheAxis) {
    HumanoidOptions a, b;
    b.facing = 0.1;
    Skeleton const source = humanoid(a), target = humanoid(b);
    EXPECT_TRUE(retargeting::isIdentity(rigOf(source, target).alignment));
}

// ---- travel ----

TEST(Retarget, TravelIsScaledByTheLegs) {
    HumanoidOptions a, b;
    b.legs = 2, b.arms = 0.5;
    Skeleton const source = humanoid(a), target = humanoid(b);
    RetargetRig const rig = rigOf(source, target);
    EXPECT_NEAR(rig.scale, 2, 1e-5);
    Pose pose = source.origins;
    pose[0].m[3][0] += 3, pose[0].m[3][1] -= 0.2F;
    Pose const out = retargeted(rig, pose);
    EXPECT_NEAR(out[0].m[3][0] - target.origins[0].m[3][0], 6, 1e-4);
    EXPECT_NEAR(out[0].m[3][1] - target.origins[0].m[3][1], -0.4, 1e-4);
}

TEST(Retarget, WithoutLegsTheHeightAndThenTheBonesGiveTheScale) {
    auto const chain = [](double bone, bool upright) {
        Skeleton s;
        for (int i = 0; i < 4; ++i) {
            Matrix34 m;
            if (i) m.m[3][upright ? 1 : 0] = float(bone);
            s.names.push_back(L"part" + std::to_wstring(i)), s.parents.push_back(i - 1), s.origins.push_back(m);
        }
        return s;
    };
    EXPECT_NEAR(rigOf(chain(1, true), chain(3, true)).scale, 3, 1e-6);
    EXPECT_NEAR(rigOf(chain(1, false), chain(0.5, false)).scale, 0.5, 1e-6);
    EXPECT_EQ(rigOf(chain(0, false), chain(1, false)).scale, 1);
}

TEST(Retarget, AnOriginWithoutAFloorIsLiftedOntoIt) {
    HumanoidOptions const o;
    Skeleton source = humanoid(o);
    Skeleton const target = source;
    float const height = source.origins[0].m[3][1];
    source.origins[0].m[3][1] = 0;  // as motion files have it
    Pose const standing = target.origins;
    EXPECT_NEAR(retargeted(rigOf(source, target), standing)[0].m[3][1], height, 1e-4);
    Skeleton const both = source;
    EXPECT_NEAR(retargeted(rigOf(source, both), standing)[0].m[3][1], height, 1e-4);
    EXPECT_NEAR(retargeted(rigOf(target, source), standing)[0].m[3][1], height, 1e-4);
}

TEST(Retarget, WhereLegsAreTurnedTheFeetStillStandOnTheFloor) {
    HumanoidOptions a, b;
    b.legsApart = 0.5;
    Skeleton const source = humanoid(a), target = humanoid(b);
    for (auto const& [from, to] : {std::pair(&source, &target), std::pair(&target, &source)}) {
        Pose const out = world(*to, retargeted(rigOf(*from, *to), from->origins)), rest = to->restMatrices();
        auto const toe = std::size_t(jointNamed(*to, L"LeftToeBase"));
        EXPECT_NEAR(place(out[toe]).y, place(rest[toe]).y, 1e-4);
    }
}

TEST(Retarget, ARootAboveTheHipsNeedNotHaveACounterpart) {
    HumanoidOptions a, b;
    b.hasRoot = true, b.turnsAxes = true;
    Skeleton const source = humanoid(a), target = humanoid(b);
    for (auto const& [from, to] : {std::pair(&source, &target), std::pair(&target, &source)}) {
        RetargetRig const rig = rigOf(*from, *to);
        Pose const pose = moved(*from, 2, 0.4), out = retargeted(rig, pose);
        Pose const was = world(*from, pose), is = world(*to, out);
        for (wchar_t const* name : {L"Hips", L"Head", L"LeftToeBase"})
            EXPECT_LT(length(place(was[std::size_t(jointNamed(*from, name))]) -
                             place(is[std::size_t(jointNamed(*to, name))])),
                      1e-4);
    }
}

TEST(Retarget, BonesKeepTheirLengths) {
    HumanoidOptions a, b;
    b.legs = 1.4, b.arms = 0.7, b.spines = 5, b.turnsAxes = true;
    Skeleton const source = humanoid(a), target = humanoid(b);
    Pose const out = retargeted(rigOf(source, target), moved(source, 3, 1));
    for (std::size_t i = 1; i < target.size(); ++i) EXPECT_EQ(place(out[i]), place(target.origins[i])) << i;
}

TEST(Retarget, WhatASourceAddsToATranslationIsAddedInProportionToTheBone) {
    HumanoidOptions a, b;
    b.arms = 2, b.turnsAxes = true;
    Skeleton const source = humanoid(a), target = humanoid(b);
    Pose pose = source.origins;
    pose[std::size_t(jointNamed(source, L"LeftForeArm"))].m[3][0] += 0.1F;
    auto const hand = std::size_t(jointNamed(target, L"LeftForeArm"));
    Pose const out = world(target, retargeted(rigOf(source, target), pose)), rest = target.restMatrices();
    EXPECT_LT(length(place(out[hand]) - place(rest[hand]) - Vec3{0.2, 0, 0}), 1e-5);
}

// ---- what the user says of joints ----

TEST(Retarget, AWeightOfZeroLeavesAJointToItsParentAndHalfGoesHalfWay) {
    Skeleton const s = humanoid();
    auto const arm = std::size_t(jointNamed(s, L"LeftArm"));
    Pose pose = s.origins;
    Matrix34 turn;
    Qelutils::eulerToMatrix({0, 0, 1}, 0, turn);
    pose[arm] = Qelutils::multiply(turn, pose[arm]);
    for (double weight : {0.0, 0.5, 1.0}) {
        std::vector<RetargetJoint> options(s.size());
        options[arm].rotationWeight = weight;
        Pose const out = retargeted(rigOf(s, s, options), pose);
        EXPECT_NEAR(angleBetween(out[arm], s.origins[arm]), weight, 1e-5);
        auto const fore = std::size_t(jointNamed(s, L"LeftForeArm"));
        EXPECT_LT(angleBetween(out[fore], pose[fore]), 1e-5) << "its child goes along";
    }
}

TEST(Retarget, TheReferentSaysWhichFrameAJointsMotionIsCopiedIn) {
    Skeleton const s = humanoid();
    auto const arm = std::size_t(jointNamed(s, L"LeftArm")), hand = std::size_t(jointNamed(s, L"LeftHand"));
    int const chest = jointNamed(s, L"Spine2");
    Pose const pose = moved(s, 1.5, 0.6), was = world(s, pose);
    auto const run = [&](auto const& change, bool onSource) {
        std::vector<RetargetJoint> targets(s.size()), sources(s.size());
        targets[arm].isActive = false;
        change((onSource ? sources : targets)[hand]);
        return retargeted(rigOf(s, s, targets, sources), pose);
    };
    Pose const own = run([](RetargetJoint&) {}, false);
    EXPECT_LT(angleBetween(own[hand], pose[hand]), 1e-4) << "by itself it moves as on its parent";
    for (int referent : {RetargetJoint::world, chest, 0})
        for (bool onSource : {false, true}) {
            Pose const out = run([&](RetargetJoint& o) { o.referent = referent; }, onSource);
            EXPECT_LT(angleBetween(world(s, out)[hand], was[hand]), 1e-4) << referent;
            EXPECT_GT(angleBetween(out[hand], pose[hand]), 0.1);
        }
    Pose const below = run([&](RetargetJoint& o) { o.referent = int(hand) + 1; }, false);
    EXPECT_EQ(below[hand], own[hand]) << "what is no ancestor is no referent";
}

TEST(Retarget, AnInactiveJointKeepsItsOrigin) {
    Skeleton const s = humanoid();
    std::vector<RetargetJoint> options(s.size());
    options[0].isActive = options[6].isActive = false;
    Pose const out = retargeted(rigOf(s, s, options), moved(s, 1));
    EXPECT_EQ(out[0], s.origins[0]);
    EXPECT_EQ(out[6], s.origins[6]);
}

TEST(Retarget, AnOffsetTurnsAJointAboutItsOwnAxes) {
    HumanoidOptions o;
    o.turnsAxes = true;
    Skeleton const s = humanoid(o);
    std::vector<RetargetJoint> options(s.size());
    options[6].offset = {0, 0.3, 0};
    Pose const pose = moved(s, 1), out = retargeted(rigOf(s, s, options), pose);
    Matrix34 turn;
    Qelutils::eulerToMatrix({0, 0.3F, 0}, 0, turn);
    Pose expected = pose;
    expected[6] = Qelutils::multiply(turn, pose[6]);
    expectNear(out, expected);
}

TEST(Retarget, TravelHasAWeightAndAScaleOfItsOwn) {
    Skeleton const s = humanoid();
    std::vector<RetargetJoint> options(s.size());
    options[0].translationWeight = 0.5, options[0].scale = 3;
    Pose pose = s.origins;
    pose[0].m[3][2] += 1;
    EXPECT_NEAR(retargeted(rigOf(s, s, options), pose)[0].m[3][2], 1.5, 1e-5);
}

TEST(Retarget, AxesOfMeasurementTurnTheMotion) {
    Skeleton const s = humanoid();
    std::vector<RetargetJoint> options(s.size());
    Qelutils::eulerToMatrix({0, std::numbers::pi_v<float> / 2, 0}, 0, options[6].axes);
    Pose pose = s.origins;
    Matrix34 aboutX, aboutTurned;
    Qelutils::eulerToMatrix({0.4F, 0, 0}, 0, aboutX);
    Qelutils::eulerToMatrix({0, 0, -0.4F}, 0, aboutTurned);  // where X goes in a quarter turn about Y
    pose[6] = Qelutils::multiply(aboutX, pose[6]);
    Pose expected = s.origins;
    expected[6] = Qelutils::multiply(aboutTurned, s.origins[6]);
    EXPECT_LT(angleBetween(retargeted(rigOf(s, s, options), pose)[6], expected[6]), 1e-4);
}

// ---- limits ----

JointLimit hinge(double twist) {
    JointLimit limit;
    limit.type = HingeLimit, limit.twistAngle = twist;
    return limit;
}

TEST(Retarget, LimitsAreHonouredUnlessAllAreDisabled) {
    Skeleton const s = humanoid();
    std::vector<RetargetJoint> options(s.size());
    options[6].limit = hinge(0.25);
    RetargetRig const rig = rigOf(s, s, options);
    Pose pose = s.origins;
    Matrix34 turn;
    Qelutils::eulerToMatrix({1, 0, 0}, 0, turn);
    pose[6] = Qelutils::multiply(turn, pose[6]);
    int hits = 0;
    Pose const limited = retargeted(rig, pose, false, &hits);
    EXPECT_NEAR(angleBetween(limited[6], s.origins[6]), 0.25, 1e-5);
    EXPECT_EQ(hits, 1);
    expectNear(retargeted(rig, pose, true, &hits), pose);
    EXPECT_EQ(hits, 0);
    expectNear(retargeted(rig, s.origins, false, &hits), s.origins);
    EXPECT_EQ(hits, 0) << "what is allowed is not held back";
}

TEST(Retarget, BelowALimitedJointMotionGoesOnFromWhereItStands) {
    Skeleton const s = humanoid();
    auto const arm = std::size_t(jointNamed(s, L"LeftArm")), fore = std::size_t(jointNamed(s, L"LeftForeArm"));
    std::vector<RetargetJoint> options(s.size());
    options[arm].limit = hinge(0.1);
    Pose const pose = moved(s, 1, 0.8), out = retargeted(rigOf(s, s, options), pose);
    EXPECT_GT(angleBetween(out[arm], pose[arm]), 0.1);
    EXPECT_LT(angleBetween(out[fore], pose[fore]), 1e-4);
}

// ---- any input ----

TEST(Retarget, EveryInvalidRigIsRefusedAndNothingChanges) {
    Skeleton const s = humanoid();
    std::vector<JointMatch> const good = matchesOf(s, s);
    auto const expectRefused = [&](auto const& change, char const* what) {
        SCOPED_TRACE(what);
        std::vector<JointMatch> matches = good;
        std::vector<RetargetJoint> options(s.size());
        RetargetRig rig;
        rig.source = rig.target = &s, rig.scale = 7;
        change(rig, matches, options);
        rig.matches = matches, rig.targetOptions = options;
        EXPECT_FALSE(rig.Validate());
        EXPECT_FALSE(rig.Run());
        EXPECT_EQ(rig.scale, 7);
        EXPECT_TRUE(rig.targets.empty());
    };
    expectRefused([](auto& rig, auto&, auto&) { rig.source = nullptr; }, "no source");
    expectRefused([](auto& rig, auto&, auto&) { rig.target = nullptr; }, "no target");
    expectRefused([](auto&, auto& m, auto&) { m[0].source = 999; }, "no such source");
    expectRefused([](auto&, auto& m, auto&) { m[0].target = -1; }, "no such target");
    expectRefused([](auto&, auto& m, auto&) { m[0].target = m[1].target; }, "a target twice");
    expectRefused([](auto&, auto& m, auto&) { m[0].blendSource = 999; }, "no such second source");
    expectRefused([](auto&, auto& m, auto&) { m[0].blendSource = 1, m[0].blend = 2; }, "a share above 1");
    expectRefused([](auto&, auto&, auto& o) { o.pop_back(); }, "an option is missing");
    expectRefused([](auto&, auto&, auto& o) { o[0].scale = std::nan(""); }, "a scale that is no number");
    expectRefused([](auto&, auto&, auto& o) { o[0].offset.x = 1e300; }, "an offset beyond reason");
    expectRefused([](auto&, auto&, auto& o) { o[0].referent = 999; }, "a referent that is no joint");
    expectRefused([](auto&, auto&, auto& o) { o[0].referent = -3; }, "a referent that means nothing");
    expectRefused([](auto&, auto&, auto& o) { o[0].axes.m[0][0] = infinity; }, "axes that are not finite");
}

TEST(Retarget, AFrameOfAnotherSizeIsRefused) {
    Skeleton const s = humanoid();
    RetargetRig const rig = rigOf(s, s);
    Pose pose = s.origins, out = s.origins;
    Retarget frame;
    EXPECT_FALSE(frame.Run()) << "no rig";
    frame.rig = &rig, frame.source = std::span(pose).first(3), frame.target = out;
    EXPECT_FALSE(frame.Run());
    frame.source = pose, frame.target = std::span(out).first(3);
    EXPECT_FALSE(frame.Run());
    frame.target = out;
    EXPECT_TRUE(frame.Run());
}

TEST(Retarget, WhatIsNotFiniteCountsAsTheOrigin) {
    HumanoidOptions o = small();
    o.turnsAxes = true;
    Skeleton const s = humanoid(o);
    RetargetRig const rig = rigOf(s, s);
    for (float bad : {nan, infinity, -infinity, 1e20F})
        for (std::size_t joint : {0, 4, 9}) {
            Pose pose = moved(s, 1), expected = pose;
            pose[joint].m[joint % 4][1] = bad;
            expected[joint] = s.origins[joint];
            expectNear(retargeted(rig, pose), expected);
        }
}

TEST(Retarget, NeverGivesWhatIsNotFinite) {
    std::mt19937 random(5);
    auto const any = [&] {
        float const special[] = {0, -0.F, 1, -1, 1e-38F, 1e-20F, 1e14F, -1e14F, 0.5F, nan, infinity, 3e38F};
        return special[random() % std::size(special)];
    };
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        HumanoidOptions o;
        o.turnsAxes = true, o.seed = unsigned(round);
        Skeleton source = humanoid(o), target = humanoid(o);
        for (Skeleton* s : {&source, &target})
            for (auto& m : s->origins)
                if (random() % 4 == 0)
                    for (auto& row : m.m)
                        for (int j = 0; j < 3; ++j)
                            if (float const v = any(); std::abs(v) < 1e15F) row[j] = v;
        std::vector<RetargetJoint> options(target.size());
        for (auto& option : options) {
            option.mode = modes[random() % 3];
            if (random() % 3 == 0) option.limit = JointLimit();
            if (random() % 5 == 0) option.rotationWeight = any();
            if (!std::isfinite(option.rotationWeight) || std::abs(option.rotationWeight) > 1e14)
                option.rotationWeight = 0.3;
        }
        RetargetRig const rig = rigOf(source, target, options);
        Pose pose = moved(source, round);
        for (auto& m : pose)
            if (random() % 3 == 0) m.m[random() % 4][random() % 3] = any();
        for (Matrix34 const& m : retargeted(rig, pose))
            for (auto const& row : m.m)
                for (float v : row) ASSERT_TRUE(std::isfinite(v));
    }
}

TEST(Retarget, IsTheSameWhateverFrameCameBefore) {
    HumanoidOptions a = small(), b = large();
    b.turnsAxes = true;
    Skeleton const source = humanoid(a), target = humanoid(b);
    RetargetRig const rig = rigOf(source, target);
    Retarget reused;
    Pose out(target.size());
    reused.rig = &rig, reused.target = out;
    for (double time : {5.0, 1.0, 3.0, 1.0}) {
        Pose const pose = moved(source, time);
        reused.source = pose;
        ASSERT_TRUE(reused.Run());
        EXPECT_EQ(out, retargeted(rig, pose));
    }
}

TEST(Retarget, EmptySkeletonsAreFine) {
    Skeleton const none, s = humanoid();
    EXPECT_TRUE(retargeted(rigOf(none, none), {}).empty());
    EXPECT_TRUE(retargeted(rigOf(s, none), s.origins).empty());
    expectNear(retargeted(rigOf(none, s), {}), s.origins);
}

}  // namespace
}  // namespace sg
