// The range of a joint: how twist and swing are measured, and what a pose outside becomes.
#include "qel/solvers/joint_limit.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace sg {
namespace {

using namespace Qelutils::rotation;

constexpr double pi = std::numbers::pi, infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double dot(Quaternion const& a, Quaternion const& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }
bool same(Quaternion const& a, Quaternion const& b) { return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w; }
// The angle between two rotations; small ones from the sine, which is exact there.
double angleBetween(Quaternion const& a, Quaternion const& b) {
    return toAxisAngle(multiply(normalized(a), conjugate(normalized(b)))).angle;
}
bool isFinite(Quaternion const& q) { return std::isfinite(q.x + q.y + q.z + q.w); }

class Random {
public:
    double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
    bool flip() { return real(0, 1) < 0.5; }
    Quaternion rotation() {
        std::normal_distribution<double> normal;
        return normalized({normal(engine_), normal(engine_), normal(engine_), normal(engine_)});
    }
    JointLimit limit(int type) {
        JointLimit l;
        l.type = type;
        l.fixedFrame = rotation();
        l.movingOffset = rotation();
        l.swing1Active = real(0, 1) < 0.8, l.swing1Angle = real(0, 2.5);
        l.swing2Active = real(0, 1) < 0.8, l.swing2Angle = real(0, 2.5);
        l.twistActive = real(0, 1) < 0.8, l.twistAngle = real(0, 3), l.twistOffset = real(-4, 4);
        return l;
    }

private:
    std::mt19937 engine_{11};
};

JointLimit soft(JointLimit limit, double swing = 0.7, double twist = 0.7) {
    limit.softSwingActive = limit.softTwistActive = true;
    limit.softSwing1Ratio = limit.softSwing2Ratio = swing;
    limit.softTwistRatio = twist;
    return limit;
}

void expectNear(JointLimitAngles const& a, JointLimitAngles const& b, double tolerance) {
    EXPECT_NEAR(std::remainder(a.twist - b.twist, 2 * pi), 0, tolerance);
    EXPECT_NEAR(a.swing1, b.swing1, tolerance);
    EXPECT_NEAR(a.swing2, b.swing2, tolerance);
}

// ---- measuring ----

TEST(JointLimitMeasure, ATwistIsATurnAboutXAndTheSwingsTurnsAboutYAndZ) {
    expectNear(measureJointRotation({}, {}), {0, 0, 0}, 0);
    expectNear(measureJointRotation({}, fromAxisAngle({1, 0, 0}, 0.5)), {0.5, 0, 0}, 1e-15);
    expectNear(measureJointRotation({}, fromAxisAngle({0, 1, 0}, 0.5)), {0, 0.5, 0}, 1e-15);
    expectNear(measureJointRotation({}, fromAxisAngle({0, 0, -1}, 3)), {0, 0, -3}, 1e-15);
    expectNear(measureJointRotation({}, fromAxisAngle({0, 3, 4}, 1)), {0, 0.6, 0.8}, 1e-15);
}

TEST(JointLimitMeasure, TheTwistComesFirst) {
    Quaternion const q = multiply(fromAxisAngle({1, 0, 0}, 0.5), fromAxisAngle({0, 0, 1}, 0.7));
    expectNear(measureJointRotation({}, q), {0.5, 0, 0.7}, 1e-15);
}

TEST(JointLimitMeasure, AJointWhoseMovingFrameStandsInTheFixedOneIsAtRest) {
    Random random;
    for (int round = 0; round < 100; ++round) {
        JointLimit const limit = random.limit(BallSocketLimit);
        Quaternion const rest = jointRotationAt(limit, {});
        expectNear(measureJointRotation(limit, rest), {}, 1e-14);
        EXPECT_NEAR(angleBetween(multiply(limit.movingOffset, rest), limit.fixedFrame), 0, 1e-14);
    }
}

// offset * jointLocal = R * fixed, as products of the matrices of the scene.
TEST(JointLimitMeasure, TheFramesAreThoseOfTheMatrices) {
    Random random;
    for (int round = 0; round < 100; ++round) {
        JointLimitAngles const angles{random.real(-3, 3), random.real(-1, 1), random.real(-1, 1)};
        Qelp::Matrix34 turn, fixed, offset, back;
        Qelutils::twistSwingToMatrix({float(angles.twist), float(angles.swing1), float(angles.swing2)}, turn);
        Qelutils::eulerToMatrix({float(random.real(-3, 3)), float(random.real(-1, 1)), 1}, 0, fixed);
        Qelutils::eulerToMatrix({float(random.real(-3, 3)), float(random.real(-1, 1)), 2}, 0, offset);
        ASSERT_TRUE(Qelutils::invert(offset, back));
        JointLimit limit;
        limit.fixedFrame = rotationOfFrame(fixed);
        limit.movingOffset = rotationOfFrame(offset);
        Quaternion const joint = rotationOfFrame(Qelutils::multiply(back, Qelutils::multiply(turn, fixed)));
        expectNear(measureJointRotation(limit, joint), angles, 2e-6);
    }
}

TEST(JointLimitMeasure, AnglesComeBackFromTheRotationTheyMake) {
    Random random;
    for (int round = 0; round < 1000; ++round) {
        JointLimit const limit = random.limit(BallSocketLimit);
        double const swing = random.real(0, 3), axis = random.real(-pi, pi);
        JointLimitAngles const angles{random.real(-pi, pi), swing * std::cos(axis), swing * std::sin(axis)};
        expectNear(measureJointRotation(limit, jointRotationAt(limit, angles)), angles, 1e-12);
    }
}

TEST(JointLimitMeasure, AScaledFrameIsItsRotation) {
    Qelp::Matrix34 m;
    Qelutils::eulerToMatrix({0.3F, 0.2F, 0.1F}, 0, m);
    Quaternion const plain = rotationOfFrame(m);
    for (auto& row : m.m)
        for (float& value : row) value *= 4;
    EXPECT_NEAR(angleBetween(rotationOfFrame(m), plain), 0, 1e-7);
}

// ---- the hard limit ----

TEST(JointLimit, AnglesOutsideStopAtTheirEnds) {
    JointLimit limit;
    limit.swing1Angle = 0.5, limit.swing2Angle = 1, limit.twistAngle = 0.25, limit.twistOffset = 0.5;
    struct {
        JointLimitAngles from, to;
    } const cases[] = {
        {{0.5, 0, 0}, {0.5, 0, 0}},
        {{0.75, 0.5, 0}, {0.75, 0.5, 0}},
        {{1, 0, 0}, {0.75, 0, 0}},
        {{0, 0, 0}, {0.25, 0, 0}},
        {{0.5, 2, 0}, {0.5, 0.5, 0}},
        {{0.5, -2, 0}, {0.5, -0.5, 0}},
        {{0.5, 0, 2}, {0.5, 0, 1}},
        {{0.5, 0, -2}, {0.5, 0, -1}},
        {{-2.6, 0, 0}, {0.25, 0, 0}},
        {{-2.7, 0, 0}, {0.75, 0, 0}},
        {{0.5 + 2 * pi, 0, 0}, {0.5 + 2 * pi, 0, 0}},
    };
    for (auto const& c : cases) expectNear(clampJointAngles(limit, c.from), c.to, 1e-15);
}

TEST(JointLimit, ASwingThatIsNotActiveLeavesAStrip) {
    JointLimit limit;
    limit.swing2Active = false;
    EXPECT_EQ(clampJointAngles(limit, {0, 2, 2}), (JointLimitAngles{0, pi / 4, 2}));
    limit.swing1Active = false;
    EXPECT_EQ(clampJointAngles(limit, {0, 2, 2}), (JointLimitAngles{0, 2, 2}));
}

TEST(JointLimit, ATwistThatIsNotActiveIsFree) {
    JointLimit limit;
    limit.twistActive = false;
    EXPECT_EQ(clampJointAngles(limit, {3, 0, 0}), (JointLimitAngles{3, 0, 0}));
}

TEST(JointLimit, AnglesOfPiAndMoreBoundNothing) {
    Random random;
    JointLimit limit;
    for (double angle : {pi, 5.0, 1e30, infinity}) {
        limit.swing1Angle = limit.swing2Angle = limit.twistAngle = angle;
        for (int round = 0; round < 50; ++round) {
            Quaternion const q = random.rotation();
            EXPECT_TRUE(same(clampJointRotation(limit, q), q));
        }
    }
}

TEST(JointLimit, AnglesOfZeroNegativeOnesAndNoNumbersAllowNothing) {
    JointLimit limit;
    for (double angle : {0.0, -1.0, -infinity, nan}) {
        limit.swing1Angle = limit.swing2Angle = limit.twistAngle = angle;
        EXPECT_EQ(clampJointAngles(limit, {1, 1, 1}), JointLimitAngles());
    }
    limit.twistOffset = nan;
    EXPECT_EQ(clampJointAngles(limit, {1, 1, 1}), JointLimitAngles());
}

TEST(JointLimit, AHingeKeepsTheTwistAloneWhateverIsSaidOfSwings) {
    JointLimit limit;
    limit.type = HingeLimit;
    limit.swing1Active = limit.swing2Active = false;
    EXPECT_EQ(clampJointAngles(limit, {1, 0.5, -0.5}), (JointLimitAngles{1, 0, 0}));
    EXPECT_EQ(clampJointAngles(limit, {2, 0.5, -0.5}), (JointLimitAngles{pi / 2, 0, 0}));
}

TEST(JointLimit, AHingeTakesTheNearestOfAllRotationsItAllows) {
    Random random;
    for (int round = 0; round < 50; ++round) {
        JointLimit const limit = random.limit(HingeLimit);
        Quaternion const q = random.rotation();
        double const got = angleBetween(clampJointRotation(limit, q), q);
        double const range = limit.twistActive ? limit.twistAngle : pi;
        for (int i = -500; i <= 500; ++i) {
            double const twist = limit.twistOffset + range * i / 500;
            EXPECT_LE(got, angleBetween(jointRotationAt(limit, {twist, 0, 0}), q) + 1e-7);
        }
    }
}

TEST(JointLimit, ASwingGoesToTheNearestThatIsAllowed) {
    Random random;
    for (int round = 0; round < 100; ++round) {
        JointLimit limit = random.limit(BallSocketLimit);
        limit.swing1Active = limit.swing2Active = true;
        JointLimitAngles const at = measureJointRotation(limit, random.rotation()), got = clampJointAngles(limit, at);
        double const distance = std::hypot(got.swing1 - at.swing1, got.swing2 - at.swing2);
        for (int i = 0; i < 1000; ++i) {
            double const angle = 2 * pi * i / 1000;
            double const s1 = limit.swing1Angle * std::cos(angle), s2 = limit.swing2Angle * std::sin(angle);
            EXPECT_LE(distance, std::hypot(s1 - at.swing1, s2 - at.swing2) + 1e-12);
        }
    }
}

TEST(JointLimit, WhatIsAllowedComesBackBitByBit) {
    Random random;
    for (int round = 0; round < 1000; ++round) {
        JointLimit const limit = random.limit(random.flip() ? BallSocketLimit : HingeLimit);
        Quaternion const q = random.rotation();
        JointLimitAngles const at = measureJointRotation(limit, q);
        EXPECT_TRUE(!(clampJointAngles(limit, at) == at) || same(clampJointRotation(limit, q), q));
        Quaternion const inside = clampJointRotation(limit, q);
        Quaternion const other{-3 * inside.x, -3 * inside.y, -3 * inside.z, -3 * inside.w};
        EXPECT_TRUE(same(clampJointRotation(limit, other), other)) << "another quaternion of the same rotation";
    }
}

TEST(JointLimit, ClampedTwiceIsClampedOnce) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        JointLimit const limit = random.limit(random.flip() ? BallSocketLimit : HingeLimit);
        Quaternion const once = clampJointRotation(limit, random.rotation());
        Quaternion const twice = clampJointRotation(limit, once);
        EXPECT_TRUE(same(once, twice)) << angleBetween(once, twice);
        EXPECT_NEAR(dot(once, once), 1, 1e-14);
    }
}

// Within reach of no place where nearest changes sides.
bool isFarFromOpposite(JointLimit const& limit, Quaternion const& q) {
    JointLimitAngles const at = measureJointRotation(limit, q);
    double const twist = std::abs(std::remainder(at.twist - limit.twistOffset, 2 * pi));
    return std::hypot(at.swing1, at.swing2) < 2.8 && twist < 3;
}

TEST(JointLimit, SmallMovesMakeSmallChangesAcrossTheBorderToo) {
    Random random;
    for (int round = 0; round < 3000; ++round) {
        JointLimit limit = random.limit(random.flip() ? BallSocketLimit : HingeLimit);
        if (random.flip()) limit = soft(limit, random.real(0.2, 1), random.real(0.2, 1));
        Quaternion q = random.rotation();
        if (random.flip()) q = clampJointRotation(limit, q);  // begin on the border
        if (!isFarFromOpposite(limit, q)) continue;
        Quaternion const moved = multiply(q, fromAxisAngle({random.real(-1, 1), random.real(-1, 1), 1}, 1e-7));
        Quaternion const a = clampJointRotation(limit, q), b = clampJointRotation(limit, moved);
        EXPECT_LT(angleBetween(a, b), 1e-4);
        EXPECT_GT(dot(a, b), 0) << "of the two quaternions the closer one";
    }
}

TEST(JointLimit, OfTheTwoQuaternionsOfTheResultTheCloserOneIsGiven) {
    Random random;
    for (int round = 0; round < 200; ++round) {
        JointLimit const limit = random.limit(random.flip() ? BallSocketLimit : HingeLimit);
        Quaternion const q = random.rotation(), negated{-q.x, -q.y, -q.z, -q.w};
        EXPECT_GE(dot(clampJointRotation(limit, q), q), 0);
        EXPECT_GE(dot(clampJointRotation(limit, negated), negated), 0);
    }
}

TEST(JointLimit, BrokenRotationsCountAsNone) {
    JointLimit limit;
    Quaternion const broken[] = {{0, 0, 0, 0}, {nan, 0, 0, 1}, {0, infinity, 0, 1}, {1e200, 0, 0, 1}};
    for (Quaternion const& q : broken) {
        EXPECT_TRUE(same(clampJointRotation(limit, q), {}));
        JointLimit framed = limit;
        framed.fixedFrame = framed.movingOffset = q;
        EXPECT_TRUE(same(clampJointRotation(framed, {}), {}));
    }
}

TEST(JointLimit, NoNumberMakesAnythingThatIsNotFinite) {
    double const odd[] = {0, -0.0, 1e-300, 1e-12, pi, -pi, 4, 1e30, -1e30, infinity, -infinity, nan};
    Random random;
    for (int round = 0; round < 3000; ++round) {
        auto const pick = [&] { return odd[std::size_t(random.real(0, 11.999))]; };
        JointLimit limit = soft({}, pick(), pick());
        limit.type = int(random.real(-1, 3));
        limit.swing1Angle = pick(), limit.swing2Angle = pick(), limit.twistAngle = pick(), limit.twistOffset = pick();
        limit.fixedFrame = {pick(), pick(), pick(), pick()};
        Quaternion const got =
            clampJointRotation(limit, random.flip() ? random.rotation() : Quaternion{pick(), 0, 0, 1});
        EXPECT_TRUE(isFinite(got));
    }
}

TEST(JointLimit, ValidityFindsEachBrokenNumber) {
    EXPECT_TRUE(JointLimit().Validate());
    double JointLimit::*const angles[] = {&JointLimit::swing1Angle, &JointLimit::swing2Angle, &JointLimit::twistAngle};
    double JointLimit::*const ratios[] = {&JointLimit::softSwing1Ratio, &JointLimit::softSwing2Ratio,
                                          &JointLimit::softTwistRatio};
    auto const refused = [](double JointLimit::*member, double value) {
        JointLimit limit;
        limit.*member = value;
        return !limit.Validate();
    };
    for (auto angle : angles)
        for (double bad : {-1.0, nan, infinity}) EXPECT_TRUE(refused(angle, bad));
    for (auto ratio : ratios)
        for (double bad : {-0.1, 1.1, nan}) EXPECT_TRUE(refused(ratio, bad));
    EXPECT_TRUE(refused(&JointLimit::twistOffset, nan));
    EXPECT_FALSE(refused(&JointLimit::twistOffset, -4));
    JointLimit limit;
    limit.type = 2;
    EXPECT_FALSE(limit.Validate());
    limit = {};
    limit.fixedFrame.x = nan;
    EXPECT_FALSE(limit.Validate());
}

// ---- by how much ----

TEST(JointLimitExcess, IsWhatTheClampTakesAway) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        JointLimit const limit = random.limit(random.flip() ? BallSocketLimit : HingeLimit);
        JointLimitAngles const at = measureJointRotation(limit, random.rotation());
        JointLimitAngles const over = jointLimitExcess(limit, at), inside = clampJointAngles(limit, at);
        expectNear({at.twist - over.twist, at.swing1 - over.swing1, at.swing2 - over.swing2}, inside, 1e-14);
        EXPECT_LE(std::abs(over.twist), pi);
        EXPECT_EQ(inside == at, over == JointLimitAngles());
    }
}

TEST(JointLimitExcess, DoesNotKnowOfSoftness) {
    EXPECT_EQ(jointLimitExcess(soft({}), {1.5, 0.7, 0}), JointLimitAngles());
}

TEST(JointLimitDistance, IsNegativeInsideAndWithoutEndWhereThereIsNoBorder) {
    JointLimit limit;
    JointLimitDistance const rest = jointLimitDistance(limit, {});
    EXPECT_DOUBLE_EQ(rest.twist, -pi / 2);
    EXPECT_DOUBLE_EQ(rest.swing, -pi / 4);
    EXPECT_DOUBLE_EQ(jointLimitDistance(limit, {0, 1, 0}).swing, 1 - pi / 4);
    EXPECT_DOUBLE_EQ(jointLimitDistance(limit, {-3, 0, 0}).twist, 3 - pi / 2);
    limit.twistActive = limit.swing1Active = limit.swing2Active = false;
    EXPECT_EQ(jointLimitDistance(limit, {}).twist, -infinity);
    EXPECT_EQ(jointLimitDistance(limit, {}).swing, -infinity);
    limit.type = HingeLimit;
    EXPECT_DOUBLE_EQ(jointLimitDistance(limit, {0, 0.3, 0.4}).swing, 0.5);
}

// ---- soft ----

TEST(SoftJointLimit, ResistsFromTheRatioOnAndNeverReachesTheEnd) {
    JointLimit const limit = soft({});
    for (double twist : {0.5, 0.35 * pi, 1.3, 1.5, 2.0, 3.0}) {
        double const start = 0.35 * pi, room = 0.15 * pi;
        double const expected = twist <= start ? twist : start + room * (1 - std::exp(-(twist - start) / room));
        EXPECT_NEAR(clampJointAngles(limit, {twist, 0, 0}).twist, expected, 1e-15);
        EXPECT_NEAR(clampJointAngles(limit, {-twist, 0, 0}).twist, -expected, 1e-15);
        EXPECT_LT(expected, pi / 2);
    }
    for (double swing : {0.5, 0.6, 0.7, 1.0, 3.0}) {
        double const start = 0.175 * pi, room = 0.075 * pi;
        double const expected = swing <= start ? swing : start + room * (1 - std::exp(-(swing - start) / room));
        EXPECT_NEAR(clampJointAngles(limit, {0, swing, 0}).swing1, expected, 1e-15);
        EXPECT_NEAR(clampJointAngles(limit, {0, 0, -swing}).swing2, -expected, 1e-15);
    }
}

TEST(SoftJointLimit, TheTwistResistsAboutItsOffset) {
    JointLimit limit = soft({});
    limit.twistOffset = 1;
    EXPECT_EQ(clampJointAngles(limit, {2, 0, 0}).twist, 2);
    EXPECT_LT(clampJointAngles(limit, {2.4, 0, 0}).twist, 2.4);
    EXPECT_GT(clampJointAngles(limit, {-0.4, 0, 0}).twist, -0.4);
}

TEST(SoftJointLimit, RatiosOfOneAreTheHardLimit) {
    Random random;
    for (int round = 0; round < 200; ++round) {
        JointLimit const limit = random.limit(BallSocketLimit);
        JointLimitAngles const at = measureJointRotation(limit, random.rotation());
        EXPECT_EQ(clampJointAngles(soft(limit, 1, 1), at), clampJointAngles(limit, at));
        EXPECT_EQ(clampJointAngles(soft(limit, 7, 7), at), clampJointAngles(limit, at));
    }
}

TEST(SoftJointLimit, RatiosOfZeroNegativeOnesAndNoNumbersResistFromTheMiddleOn) {
    for (double ratio : {0.0, -1.0, nan}) {
        JointLimitAngles const got = clampJointAngles(soft({}, ratio, ratio), {0.1, 0.1, 0});
        EXPECT_NEAR(got.twist, pi / 2 * (1 - std::exp(-0.2 / pi)), 1e-15);
        EXPECT_NEAR(got.swing1, pi / 4 * (1 - std::exp(-0.4 / pi)), 1e-15);
    }
}

TEST(SoftJointLimit, AHingeHasNoSoftSwing) {
    JointLimit limit = soft({});
    limit.type = HingeLimit;
    EXPECT_EQ(clampJointAngles(limit, {0, 1, 1}), JointLimitAngles());
}

TEST(SoftJointLimit, SwingsAndTwistAreSoftenedEachForItself) {
    JointLimit limit = soft({});
    limit.softSwing1Ratio = 1;
    limit.softSwing2Ratio = 0.5;
    limit.softTwistActive = false;
    EXPECT_EQ(clampJointAngles(limit, {1.5, 0.7, 0}), (JointLimitAngles{1.5, 0.7, 0}));
    EXPECT_LT(clampJointAngles(limit, {1.5, 0, 0.7}).swing2, 0.7);
    limit.softSwingActive = false;
    limit.softTwistActive = true;
    JointLimitAngles const got = clampJointAngles(limit, {1.5, 0, 0.7});
    EXPECT_LT(got.twist, 1.5);
    EXPECT_EQ(got.swing2, 0.7);
}

TEST(SoftJointLimit, SofteningIsOffUnlessItIsActive) {
    JointLimit limit = soft({});
    limit.softSwingActive = limit.softTwistActive = false;
    EXPECT_EQ(clampJointAngles(limit, {1.5, 0.7, 0}), (JointLimitAngles{1.5, 0.7, 0}));
}

}  // namespace
}  // namespace sg
