// The nearest point of an ellipse, against a dense search, and the border that resists before it is reached.
#include "qel/solvers/ellipse.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>

namespace sg {
namespace {

constexpr double pi = std::numbers::pi, infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double distance(PlanePoint const& a, PlanePoint const& b) { return std::hypot(a.x - b.x, a.y - b.y); }
double gauge(Ellipse const& e, PlanePoint const& p) { return std::hypot(p.x / e.x, p.y / e.y); }
PlanePoint at(Ellipse const& e, double angle) { return {e.x * std::cos(angle), e.y * std::sin(angle)}; }

class Random {
public:
    double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
    PlanePoint point(double limit) { return {real(-limit, limit), real(-limit, limit)}; }
    // From round to a thousand times as long as wide.
    Ellipse ellipse() { return {std::pow(10, real(-3, 0.5)), std::pow(10, real(-3, 0.5))}; }

private:
    std::mt19937 engine_{7};
};

// The border's distance by brute force: a dense walk, refined about its best place.
double searchedDistance(Ellipse const& e, PlanePoint const& p) {
    double best = 0, width = pi;
    for (int round = 0; round < 12; ++round) {
        double const from = best - width, step = 2 * width / 400;
        double least = infinity;
        for (int i = 0; i <= 400; ++i)
            if (double const d = distance(p, at(e, from + i * step)); d < least) least = d, best = from + i * step;
        width = 4 * step;
    }
    return distance(p, at(e, best));
}

TEST(Ellipse, OfPointsOnItsAxesTheVerticesAreNearest) {
    struct {
        Ellipse e;
        PlanePoint from, to;
    } const cases[] = {
        {{2, 1}, {5, 0}, {2, 0}},     {{2, 1}, {-5, 0}, {-2, 0}},   {{2, 1}, {0, 3}, {0, 1}},
        {{2, 1}, {0, -3}, {0, -1}},   {{1, 2}, {0, 5}, {0, 2}},     {{1, 2}, {3, 0}, {1, 0}},
        {{1, 1}, {3, 4}, {0.6, 0.8}}, {{2, 1}, {1, 0.5}, {1, 0.5}}, {{2, 1}, {0, 0}, {0, 0}},
        {{2, 1}, {2, 0}, {2, 0}},     {{1e-3, 1}, {0, 2}, {0, 1}},  {{1, 1e-3}, {0, 2}, {0, 1e-3}},
    };
    for (auto const& c : cases) {
        PlanePoint const got = clampToEllipse(c.e, c.from);
        EXPECT_NEAR(distance(got, c.to), 0, 1e-15)
            << c.from.x << ", " << c.from.y << " gave " << got.x << ", " << got.y;
    }
}

TEST(Ellipse, OfPointsBesideAnAxisTheNearestLiesBesideTheVertex) {
    EXPECT_NEAR(clampToEllipse({2, 1}, {3, 1e-10}).y / (1e-10 / 3), 1, 1e-9);
    EXPECT_NEAR(clampToEllipse({1, 2}, {-1e-200, 3}).x / (-1e-200 / 3), 1, 1e-9);
}

TEST(Ellipse, AnAxisOfNoLengthLeavesASegmentAndOneWithoutEndAStrip) {
    struct {
        Ellipse e;
        PlanePoint from, to;
    } const cases[] = {
        {{2, 0}, {1, 1}, {1, 0}},
        {{2, 0}, {3, 1}, {2, 0}},
        {{0, 2}, {1, -3}, {0, -2}},
        {{0, 0}, {1, 1}, {0, 0}},
        {{1, infinity}, {3, 100}, {1, 100}},
        {{infinity, 1}, {3, -2}, {3, -1}},
        {{0, infinity}, {3, -2}, {0, -2}},
        {{infinity, infinity}, {3, -2}, {3, -2}},
        {{-1, 2}, {3, 1}, {0, 1}},
        {{nan, 2}, {3, 1}, {0, 1}},
        {{1e-300, 2}, {3, 1}, {0, 1}},
        {{1, 1e300}, {3, 1}, {1, 1}},
    };
    for (auto const& c : cases) EXPECT_EQ(clampToEllipse(c.e, c.from), c.to) << c.e.x << ", " << c.e.y;
}

TEST(Ellipse, TheNearestPointIsAsNearAsADenseSearchFinds) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        Ellipse const e = random.ellipse();
        PlanePoint const p = random.point(4), near = clampToEllipse(e, p);
        if (gauge(e, p) <= 1) {
            EXPECT_EQ(near, p);
            continue;
        }
        EXPECT_NEAR(gauge(e, near), 1, 1e-14);
        EXPECT_LE(distance(p, near), searchedDistance(e, p) + 1e-12) << e.x << ", " << e.y;
    }
}

TEST(Ellipse, TheDistanceIsThatOfADenseSearchInsideToo) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        Ellipse const e = random.ellipse();
        double const share = random.real(0, 2);
        PlanePoint const p = at({e.x * share, e.y * share}, random.real(-pi, pi));
        double const expected = searchedDistance(e, p);
        EXPECT_NEAR(signedDistance(e, p), share < 1 ? -expected : expected, 1e-9) << e.x << ", " << e.y;
    }
}

TEST(Ellipse, TheCentreIsAsFarFromTheBorderAsTheShorterAxis) {
    EXPECT_DOUBLE_EQ(signedDistance({2, 1}, {0, 0}), -1);
    EXPECT_DOUBLE_EQ(signedDistance({1, 3}, {0, 0}), -1);
    EXPECT_DOUBLE_EQ(signedDistance({2, 2}, {0, 0}), -2);
}

TEST(Ellipse, DistancesOfStripsSegmentsAndThePlane) {
    EXPECT_DOUBLE_EQ(signedDistance({1, infinity}, {3, 7}), 2);
    EXPECT_DOUBLE_EQ(signedDistance({1, infinity}, {0.25, 7}), -0.75);
    EXPECT_DOUBLE_EQ(signedDistance({2, 0}, {5, 4}), 5);
    EXPECT_DOUBLE_EQ(signedDistance({2, 0}, {1, 0}), 0);
    EXPECT_EQ(signedDistance({infinity, infinity}, {1, 1}), -infinity);
}

TEST(Ellipse, WhatWasClampedStaysBitByBit) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        Ellipse const e = random.ellipse();
        PlanePoint const once = clampToEllipse(e, random.point(10));
        EXPECT_EQ(clampToEllipse(e, once), once);
        EXPECT_TRUE(isInside(e, once));
    }
}

// The projection on what is convex brings no two points farther apart, wherever they lie.
TEST(Ellipse, TwoPointsAreNeverFartherApartAfterwards) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        Ellipse const e = random.ellipse();
        PlanePoint const a = random.point(4);
        double const step = std::pow(10, random.real(-9, 0.5));
        PlanePoint const b{a.x + random.real(-step, step), a.y + random.real(-step, step)};
        EXPECT_LE(distance(clampToEllipse(e, a), clampToEllipse(e, b)), distance(a, b) + 3e-12);
    }
}

// ---- soft ----

TEST(SoftEllipse, AlongAnAxisTheRoomThatIsLeftFallsByTheSameShareForEachStep) {
    for (double x : {0.5, 0.7, 0.8, 1.0, 1.5, 3.0}) {
        double const expected = x <= 0.7 ? x : 0.7 + 0.3 * (1 - std::exp(-(x - 0.7) / 0.3));
        EXPECT_NEAR(softClampToEllipse({0.7, infinity}, {1, infinity}, {x, 2}).x, expected, 1e-15);
        EXPECT_NEAR(softClampToEllipse({0.7, 1.4}, {1, 2}, {x, 0}).x, expected, 1e-15);
        EXPECT_NEAR(softClampToEllipse({1.4, 0.7}, {2, 1}, {0, -x}).y, -expected, 1e-15);
    }
}

TEST(SoftEllipse, WithoutRoomItIsTheHardBorder) {
    Random random;
    for (int round = 0; round < 200; ++round) {
        Ellipse const e = random.ellipse();
        PlanePoint const p = random.point(4);
        EXPECT_EQ(softClampToEllipse(e, e, p), clampToEllipse(e, p));
        Ellipse const almost{e.x * (1 - 1e-9), e.y * (1 - 1e-9)};
        EXPECT_NEAR(distance(softClampToEllipse(almost, e, p), clampToEllipse(e, p)), 0, 1e-7);
    }
}

TEST(SoftEllipse, WhatIsInsideTheSoftBorderStaysAndTheRestEndsBetweenTheTwo) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        Ellipse const hard = random.ellipse(), soft{hard.x * random.real(0, 1), hard.y * random.real(0, 1)};
        PlanePoint const p = random.point(4), got = softClampToEllipse(soft, hard, p);
        if (isInside(soft, p)) {
            EXPECT_EQ(got, p);
            continue;
        }
        EXPECT_LE(gauge(hard, got), 1 + 1e-14);
        EXPECT_GE(gauge(soft, got), 1 - 1e-12);
    }
}

TEST(SoftEllipse, ThereIsNoKinkWhereResistanceBegins) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        Ellipse const hard{random.real(0.3, 2), random.real(0.3, 2)};
        Ellipse const soft{hard.x * random.real(0.3, 0.9), hard.y * random.real(0.3, 0.9)};
        PlanePoint const p = at(soft, random.real(-pi, pi));
        double const step = 1e-5;
        PlanePoint const q{p.x * (1 + step), p.y * (1 + step)};
        // A kink would leave a difference as large as the step.
        EXPECT_LE(distance(softClampToEllipse(soft, hard, q), q), 100 * step * step);
    }
}

TEST(SoftEllipse, SmallMovesMakeSmallChanges) {
    Random random;
    for (int round = 0; round < 2000; ++round) {
        Ellipse const hard{random.real(0.3, 2), random.real(0.3, 2)};
        Ellipse const soft{hard.x * random.real(0.2, 0.9), hard.y * random.real(0.2, 0.9)};
        PlanePoint const a = random.point(4), b{a.x + random.real(-1e-7, 1e-7), a.y + random.real(-1e-7, 1e-7)};
        EXPECT_LE(distance(softClampToEllipse(soft, hard, a), softClampToEllipse(soft, hard, b)), 1e-5);
    }
}

TEST(SoftEllipse, FartherOutNeverComesBackAndNeverReachesTheBorder) {
    Ellipse const hard{1, 0.5}, soft{0.6, 0.4};
    for (double angle : {0.0, 0.3, 1.0, pi / 2}) {
        double last = 0;
        for (double r = 0.1; r < 3; r += 0.1) {
            double const now = gauge(hard, softClampToEllipse(soft, hard, {r * std::cos(angle), r * std::sin(angle)}));
            EXPECT_GT(now, last);
            EXPECT_LT(now, 1);
            last = now;
        }
    }
}

TEST(SoftEllipse, OffASegmentThePointCountsAsItsFoot) {
    PlanePoint const on = softClampToEllipse({0, 0.5}, {0, 1}, {0, 0.8});
    EXPECT_EQ(softClampToEllipse({0, 0.5}, {0, 1}, {0.3, 0.8}), on);
    EXPECT_EQ(softClampToEllipse({0, 0.5}, {0, 1}, {0.3, 0.2}), (PlanePoint{0, 0.2}));
    EXPECT_EQ(softClampToEllipse({0, 0}, {0, 0}, {0.3, 0.2}), (PlanePoint{0, 0}));
}

TEST(SoftEllipse, ASoftBorderOutsideTheHardOneOrWithoutRoomAlongOneAxisHolds) {
    EXPECT_EQ(softClampToEllipse({3, 3}, {1, 1}, {2, 0}), (PlanePoint{1, 0}));
    PlanePoint const got = softClampToEllipse({1, 0.5}, {1, 1}, {2, 0.9});
    EXPECT_LE(gauge({1, 1}, got), 1 + 1e-14);
    PlanePoint const near = softClampToEllipse({1, 0.5}, {1, 1}, {0.999, 0.2});
    EXPECT_LE(gauge({1, 1}, near), 1 + 1e-14);
    EXPECT_FALSE(std::isnan(near.x + near.y));
    EXPECT_EQ(softClampToEllipse({nan, nan}, {1, 1}, {0, 0}), (PlanePoint{0, 0}));
}

}  // namespace
}  // namespace sg
