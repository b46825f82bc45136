// Rotations along a path.
#include "qel/sg/path_rotations.h"
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace sg {
namespace {

using Keys = std::vector<PathRotationKey>;

Qelp::Quat aboutZ(double angle) { return {0, 0, float(std::sin(angle / 2)), float(std::cos(angle / 2))}; }
double angleZ(Qelp::Quat const& q) { return 2 * std::atan2(double(q.z), double(q.w)); }
double lengthOf(Qelp::Quat const& q) { return std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w); }

PathRotationKey key(double attach, double angle, int kind = 1, float in = 0, float out = 0) {
    return {attach, kind, aboutZ(angle), {0, 0, in, 0}, {0, 0, out, 0}};
}

PathRotations path(Keys const& keys) {
    PathRotations r;
    r.update(keys);
    return r;
}

TEST(PathRotations, WithoutKeysThereIsNone) {
    PathRotations const none;
    EXPECT_EQ(none.at(0.5), Qelp::Quat());
    EXPECT_EQ(none.findKey(0, 1), -1);
    EXPECT_EQ(none.keyCount(), 0);
}

TEST(PathRotations, LinearKeysTurnEvenlyTheShorterWay) {
    PathRotations const r = path({key(1, 0), key(3, 1)});
    EXPECT_NEAR(angleZ(r.at(1.5)), 0.25, 1e-6);
    EXPECT_NEAR(angleZ(r.at(2)), 0.5, 1e-6);
    PathRotations const far = path({key(0, -3), key(1, 3)});
    EXPECT_NEAR(std::abs(angleZ(far.at(0.5))), 3.14159265, 1e-5) << "over half a turn, not back over none";
}

TEST(PathRotations, TheEndKeysHoldBeyondThem) {
    PathRotations const r = path({key(1, 0.25), key(3, 1)});
    EXPECT_NEAR(angleZ(r.at(-5)), 0.25, 1e-6);
    EXPECT_NEAR(angleZ(r.at(9)), 1, 1e-6);
    EXPECT_NEAR(angleZ(path({key(7, 0.5)}).at(0)), 0.5, 1e-6) << "one key alone";
}

TEST(PathRotations, AConstantKeyHoldsUntilTheNext) {
    PathRotations const r = path({key(0, 0.5, 0), key(1, 1)});
    EXPECT_NEAR(angleZ(r.at(0.999)), 0.5, 1e-6);
    EXPECT_NEAR(angleZ(r.at(1)), 1, 1e-6);
}

TEST(PathRotations, AnyOtherKindIsLinear) {
    for (int kind : {1, 3, -1, 77}) EXPECT_NEAR(angleZ(path({key(0, 0, kind), key(1, 1)}).at(0.25)), 0.25, 1e-6);
}

// About one axis the construction is an ordinary Bezier curve of angles.
TEST(PathRotations, SplineKeysFollowTheirTangents) {
    PathRotations const r = path({key(0, 0, 2, 0, 0.9f), key(2, 1, 2, 0.3f, 0)});
    for (double u : {0.0, 0.1, 0.5, 0.77, 1.0}) {
        double const v = 1 - u, b1 = 0.9 * 2 / 3, b2 = 1 - 0.3 * 2 / 3;
        EXPECT_NEAR(angleZ(r.at(2 * u)), 3 * v * v * u * b1 + 3 * v * u * u * b2 + u * u * u, 1e-6);
    }
}

TEST(PathRotations, EqualTangentsAreSmoothHoweverLongTheSpans) {
    PathRotations const r = path({key(0, 0, 2, 0.4f, 0.4f), key(1, 0.5, 2, 0.7f, 0.7f), key(6, 2, 2, 0.1f, 0.1f)});
    double const step = 1e-2;
    double const before = (angleZ(r.at(1)) - angleZ(r.at(1 - step))) / step;
    double const after = (angleZ(r.at(1 + step)) - angleZ(r.at(1))) / step;
    EXPECT_NEAR(before, 0.7, 0.02);
    EXPECT_NEAR(after, 0.7, 0.02);
}

TEST(PathRotations, SplineKeysWithoutTangentsTakeTheMeanSpeedBesideThem) {
    PathRotations const even = path({key(0, 0, 2), key(1, 0.5, 2), key(3, 1.5, 2)});
    for (double at : {0.2, 0.9, 1.4, 2.8}) EXPECT_NEAR(angleZ(even.at(at)), at / 2, 1e-6) << "even turning stays even";
    PathRotations const r = path({key(0, 0, 2), key(1, 1, 2), key(3, 1.5, 2)});
    double const step = 1e-2;
    EXPECT_NEAR((angleZ(r.at(1 + step)) - angleZ(r.at(1 - step))) / (2 * step), 0.5, 0.02);
}

TEST(PathRotations, KeysStandInTheOrderOfTheirPlaces) {
    PathRotations const r = path({key(3, 3), key(1, 1), key(2, 2)});
    EXPECT_EQ(r.order(), std::vector<int>({1, 2, 0}));
    EXPECT_NEAR(angleZ(r.at(1.5)), 1.5, 1e-6);
    EXPECT_EQ(r.keyCount(), 3);
}

TEST(PathRotations, OfKeysAtOnePlaceTheFirstSlotStandsForAll) {
    PathRotations const r = path({key(1, 1), key(1, 2), key(0, 0), key(2, 2)});
    EXPECT_NEAR(angleZ(r.at(1)), 1, 1e-6);
    EXPECT_NEAR(angleZ(r.at(0.5)), 0.5, 1e-6);
    EXPECT_NEAR(angleZ(r.at(1.5)), 1.5, 1e-6);
    EXPECT_EQ(r.findKey(1, 1e-6), 0);
    PathRotations const end = path({key(0, 0), key(1, 1), key(1, 2)});
    EXPECT_NEAR(angleZ(end.at(5)), 1, 1e-6);
}

TEST(PathRotations, AKeyIsFoundWithinATolerance) {
    PathRotations const r = path({key(2.5, 0), key(0, 0), key(2.5000005, 0)});
    EXPECT_EQ(r.findKey(2.5, 1e-6), 0);
    EXPECT_EQ(r.findKey(2.5000004, 1e-6), 2) << "the nearest";
    EXPECT_EQ(r.findKey(2.4999995, 1e-6), 0);
    EXPECT_EQ(r.findKey(0, 0), 1);
    EXPECT_EQ(r.findKey(-1e-7, 1e-6), 1);
    for (double none : {2.49, 1.0, 99.0, -1.0, std::nan("")}) EXPECT_EQ(r.findKey(none, 1e-6), -1);
}

TEST(PathRotations, AreOfUnitLengthWhateverComesIn) {
    float const inf = INFINITY;
    Keys const keys = {{0, 2, {0, 0, 0, 0}, {}, {}},
                       {1, 2, {0, 2, 0, 5}, {1, 2, 3, 0}, {inf, 0, 0, 0}},
                       {2, 1, {inf, 0, 0, 0}, {}, {}},
                       {std::nan(""), 2, {1e-20f, 0, 0, 0}, {1e30f, 0, 0, 0}, {-1e30f, 5, 0, 0}},
                       {3, 2, {0, 0, 1e30f, 1e30f}, {}, {}}};
    PathRotations const r = path(keys);
    for (double at = -1; at < 5; at += 0.01) ASSERT_NEAR(lengthOf(r.at(at)), 1, 1e-6) << at;
    EXPECT_NEAR(lengthOf(r.at(std::nan(""))), 1, 1e-6);
    EXPECT_NEAR(lengthOf(r.at(INFINITY)), 1, 1e-6);
}

}  // namespace
}  // namespace sg
