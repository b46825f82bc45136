// Skeletons, their trees, what the names of their joints say, and the arithmetic beneath.
#include "qel/solvers/body_parts.h"
#include "qel/solvers/joint_names.h"
#include "tests/qel/solvers/humanoid.h"
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace sg {
namespace {

using retargeting::isIdentity;
using retargeting::Quaternion;
using retargeting::slerp;
using retargeting::Vec3;

// ---- arithmetic ----

void expectNear(Vec3 const& a, Vec3 const& b, double tolerance = 1e-12) { EXPECT_LT(length(a - b), tolerance); }

TEST(RetargetAlgebra, AQuarterTurnAboutXTakesYToZ) {
    Quaternion const q = Qelutils::rotation::fromAxisAngle({1, 0, 0}, std::numbers::pi / 2);
    expectNear(turned(Vec3{0, 1, 0}, q), {0, 0, 1});
    expectNear(turned(Vec3{0, 1, 0}, conjugate(q)), {0, 0, -1});
}

TEST(RetargetAlgebra, InAProductTheLeftFactorActsFirst) {
    std::mt19937 random(2);
    std::normal_distribution<double> normal;
    auto const any = [&] {
        return Qelutils::rotation::normalized({normal(random), normal(random), normal(random), normal(random)});
    };
    for (int round = 0; round < 100; ++round) {
        Quaternion const a = any(), b = any();
        Vec3 const v{normal(random), normal(random), normal(random)};
        expectNear(turned(v, multiply(a, b)), turned(turned(v, a), b));
    }
}

TEST(RetargetAlgebra, TheShortestArcTakesOneDirectionToTheOther) {
    Vec3 const axes[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}, retargeting::direction({1, 2, 3})};
    for (Vec3 const& from : axes)
        for (Vec3 const& to : axes) {
            Quaternion const q = retargeting::shortestArc(from, to);
            expectNear(turned(from, q), to, 1e-6);
            EXPECT_NEAR(2 * std::acos(std::min(1.0, q.w)), std::acos(std::clamp(dot(from, to), -1.0, 1.0)), 1e-6);
        }
    EXPECT_TRUE(isIdentity(retargeting::shortestArc({}, {1, 0, 0}))) << "no direction, no turn";
}

TEST(RetargetAlgebra, SlerpTakesTheShortWayAndItsEnds) {
    Quaternion const a, b = Qelutils::rotation::fromAxisAngle({0, 0, 1}, 1);
    Quaternion const other{-b.x, -b.y, -b.z, -b.w};
    for (Quaternion const& end : {b, other}) {
        EXPECT_NEAR(slerp(a, end, 0).w, 1, 1e-12);
        EXPECT_NEAR(std::abs(slerp(a, end, 1).z), std::sin(0.5), 1e-12);
        EXPECT_NEAR(std::abs(slerp(a, end, 0.25).z), std::sin(0.125), 1e-12);
    }
    EXPECT_NEAR(slerp(a, a, 0.3).w, 1, 1e-12);
}

// ---- skeletons ----

Skeleton branched() {  // 0 - 1 - 2, 1 - 3, and 4 beside
    Skeleton s;
    s.parents = {-1, 0, 1, 1, -1};
    s.names = {L"a", L"b", L"c", L"d", L"e"};
    s.origins.resize(5);
    for (auto& m : s.origins) m.m[3][0] = 1;
    return s;
}

TEST(Skeletons, RestPositionsAddUpAlongTheTree) {
    Skeleton s = branched();
    Qelutils::eulerToMatrix({0, 0, std::numbers::pi_v<float> / 2}, 0, s.origins[0]);
    auto const at = s.restPositions();
    expectNear(at[0], {0, 0, 0}, 1e-6);
    expectNear(at[2], {0, 2, 0}, 1e-6);
    expectNear(at[4], {1, 0, 0}, 1e-6);
    EXPECT_NEAR(s.restRotations()[3].z, std::sqrt(0.5), 1e-6);
}

TEST(Skeletons, TreesAreWalked) {
    Skeleton const s = branched();
    EXPECT_TRUE(isAncestor(s, 0, 3));
    EXPECT_TRUE(isAncestor(s, 3, 3)) << "itself counts";
    EXPECT_FALSE(isAncestor(s, 3, 0));
    EXPECT_FALSE(isAncestor(s, 2, 3));
    EXPECT_FALSE(isAncestor(s, -1, 3));
    EXPECT_EQ(commonAncestor(s, 2, 3), 1);
    EXPECT_EQ(commonAncestor(s, 2, 1), 1);
    EXPECT_EQ(commonAncestor(s, 2, 4), -1);
    EXPECT_EQ(commonAncestor(s, -1, 4), -1);
    EXPECT_EQ(pathBelow(s, 0, 3), (std::vector<int>{1, 3}));
    EXPECT_TRUE(pathBelow(s, 2, 3).empty());
    EXPECT_TRUE(pathBelow(s, 3, 3).empty());
    EXPECT_EQ(s.children()[1], (std::vector<int>{2, 3}));
}

TEST(Skeletons, MatricesBeyondReasonAreNotUsable) {
    for (float bad : {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(), 1e20F, -1e20F})
        for (int place = 0; place < 12; ++place) {
            Skeleton s = branched();
            s.origins[3].m[place / 3][place % 3] = bad;
            EXPECT_FALSE(isUsable(s.origins[3]));
            EXPECT_FALSE(s.Validate());
        }
    EXPECT_TRUE(branched().Validate());
    EXPECT_TRUE(Skeleton().Validate());
}

TEST(Skeletons, MadeToOrderHaveTheCountsTheySay) {
    EXPECT_EQ(humanoid(small()).size(), 31u);
    EXPECT_EQ(humanoid(large()).size(), 60u);
}

// ---- names ----

TEST(JointNames, CaseSeparatorsAndPrefixesDoNotCount) {
    std::vector<JointName> const names = readJointNames(
        {L"LeftUpLeg", L"left_up_leg", L"group:LEFT-UP-LEG", L"a|b|Left.Up.Leg", L"leftupleg", L"LeftUpLeg_jnt"});
    for (JointName const& name : names) {
        EXPECT_EQ(name.key, names[0].key);
        EXPECT_EQ(int(name.side), int(BodySide::Left));
        EXPECT_EQ(int(name.part), int(BodyPart::Thigh));
    }
}

TEST(JointNames, NumbersCountWithoutLeadingZeros) {
    std::vector<JointName> const names = readJointNames({L"Spine1", L"spine_01", L"Spine", L"spine2"});
    EXPECT_EQ(names[0].key, names[1].key);
    EXPECT_NE(names[0].key, names[2].key);
    EXPECT_NE(names[0].key, names[3].key);
    EXPECT_EQ(names[1].numbers, (std::vector<int>{1}));
    EXPECT_EQ(readJointNames({L"x99999999999999999999"})[0].numbers.size(), 1u) << "no number is too long";
}

TEST(JointNames, WhatMostBeginWithIsDroppedUnlessItMeansSomething) {
    std::vector<JointName> const names = readJointNames({L"hero_hand_l", L"hero_hand_r", L"hero_head", L"prop"});
    EXPECT_EQ(names[2].key, readJointNames({L"head"})[0].key);
    std::vector<JointName> const left = readJointNames({L"LeftArm", L"LeftHand", L"LeftFoot"});
    for (JointName const& name : left) EXPECT_EQ(int(name.side), int(BodySide::Left));
}

TEST(JointNames, WordsAreNotFoundInsideOtherWords) {
    for (wchar_t const* name : {L"handle", L"earring", L"legend", L"lid", L"backpack", L"L", L"", L"123", L"_-_"})
        EXPECT_EQ(int(readJointNames({name})[0].part), int(BodyPart::None))
            << testing::PrintToString(std::wstring(name));
}

TEST(JointNames, FingersAreToldByTheirWordsOrTheirCount) {
    struct Case {
        wchar_t const* name;
        BodyPart part;
    };
    for (Case const& c : {Case{L"LeftHandThumb1", BodyPart::Thumb},
                          {L"finger1-2.L", BodyPart::Thumb},
                          {L"finger5-1.R", BodyPart::Little},
                          {L"r_index_02", BodyPart::Index},
                          {L"RightHandPinky3", BodyPart::Little},
                          {L"ring", BodyPart::None}})
        EXPECT_EQ(int(readJointNames({c.name})[0].part), int(c.part)) << testing::PrintToString(std::wstring(c.name));
}

TEST(BodyParts, HaveNames) {
    EXPECT_EQ(std::wstring(nameOf(BodyPart::UpperArm)), L"UpperArm");
    EXPECT_EQ(std::wstring(nameOf(BodyPart::Little)), L"Little");
    EXPECT_EQ(std::wstring(nameOf(BodyPart::None)), L"");
}

}  // namespace
}  // namespace sg
