// Lengths along Bezier curves, against polylines so fine that they stand for the curve.
#include "qel/sg/arc_length.h"
#include "tests/qel/sg/random_path.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

using test::RandomPath;

// The length of the polyline of `count` chords up to each of `checks` evenly spaced places. A chord falls short of its
// arc by a share of 1 / count^2, a cusp between two places by one step.
std::vector<double> polyline(PathBezier const& curve, int count, int checks) {
    std::vector<double> lengths;
    double length = 0;
    PathPoint before = curve.at(0);
    for (int i = 1; i <= count; ++i) {
        PathPoint const p = curve.at(double(i) / count);
        length += (p - before).length();
        before = p;
        if (i % (count / checks) == 0) lengths.push_back(length);
    }
    return lengths;
}

TEST(ArcLength, IsThatOfAFinePolylineToAMillionth) {
    RandomPath random(1);
    for (int shape = 0; shape < RandomPath::shapes; ++shape)
        for (int round = 0; round < 6; ++round) {
            SCOPED_TRACE(testing::Message() << "shape " << shape << " round " << round);
            PathBezier const curve = random.curve(shape);
            ArcLength const arc(curve);
            constexpr int checks = 40;
            auto const reference = polyline(curve, 1'000'000, checks);
            double const whole = reference.back(), near = 1e-6 * whole + 1e-8;  // less than a million roundings
            EXPECT_NEAR(arc.length(), whole, near);
            for (int i = 0; i < checks; ++i)
                EXPECT_NEAR(arc.at(curve, (i + 1.0) / checks), reference[std::size_t(i)], near);
        }
}

TEST(ArcLength, AgreesWithTheClosedFormOfAQuadraticCurve) {
    // The parabola y = x^2 from 0 to 1, raised to a cubic.
    PathBezier const curve{{{0, 0, 0}, {1.0 / 3, 0, 0}, {2.0 / 3, 1.0 / 3, 0}, {1, 1, 0}}};
    auto const exact = [](double x) { return 0.5 * x * std::sqrt(1 + 4 * x * x) + 0.25 * std::asinh(2 * x); };
    ArcLength const arc(curve);
    for (int i = 0; i <= 100; ++i) EXPECT_NEAR(arc.at(curve, i / 100.0), exact(i / 100.0), 1e-9);
}

TEST(ArcLength, OfACurveThatTurnsBackOnALineIsTheWayTravelled) {
    PathBezier const curve{{{0, 0, 0}, {3, 0, 0}, {-2, 0, 0}, {1, 0, 0}}};
    auto const x = [&](double u) { return curve.at(u).x; };
    // x' = 9 (1-u)^2 - 30 u (1-u) + 9 u^2 = 48 u^2 - 48 u + 9.
    double const first = (48 - std::sqrt(48.0 * 48 - 4 * 48 * 9)) / 96, second = 1 - first;
    ArcLength const arc(curve);
    EXPECT_NEAR(arc.at(curve, first), x(first), 1e-14);
    EXPECT_NEAR(arc.length(), x(first) + (x(first) - x(second)) + (1 - x(second)), 1e-14);
}

TEST(ArcLength, NeverFallsAndEndsInTheWhole) {
    RandomPath random(2);
    for (int round = 0; round < 20 * RandomPath::shapes; ++round) {
        SCOPED_TRACE(round);
        PathBezier const curve = random.curve(round % RandomPath::shapes);
        ArcLength const arc(curve);
        double before = arc.at(curve, 0);
        EXPECT_EQ(before, 0);
        for (int i = 1; i <= 20'000; ++i) {
            double const now = arc.at(curve, i / 20'000.0);
            ASSERT_GE(now, before) << i;
            before = now;
        }
        EXPECT_EQ(before, arc.length());
    }
}

TEST(ArcLength, IsUndoneByItsInverse) {
    RandomPath random(3);
    for (int round = 0; round < 100 * RandomPath::shapes; ++round) {
        SCOPED_TRACE(round);
        PathBezier const curve = random.curve(round % RandomPath::shapes);
        ArcLength const arc(curve);
        double before = 0;
        for (int i = 0; i <= 50; ++i) {
            double const distance = arc.length() * i / 50, u = arc.parameter(curve, distance);
            ASSERT_GE(u, before);
            ASSERT_LE(u, 1);
            EXPECT_NEAR(arc.at(curve, u), distance, 1e-10 * arc.length());
            before = u;
        }
    }
}

TEST(ArcLength, TakesWhatLiesOutsideForTheNearerEnd) {
    PathBezier const curve{{{0, 0, 0}, {1, 2, 0}, {2, 2, 0}, {3, 0, 0}}};
    ArcLength const arc(curve);
    double const nan = std::nan("");
    EXPECT_EQ(arc.at(curve, -1), 0);
    EXPECT_EQ(arc.at(curve, nan), 0);
    EXPECT_EQ(arc.at(curve, 7), arc.length());
    EXPECT_EQ(arc.parameter(curve, -1), 0);
    EXPECT_EQ(arc.parameter(curve, nan), 0);
    EXPECT_EQ(arc.parameter(curve, 1e9), 1);
    ArcLength const none;
    EXPECT_EQ(none.length(), 0);
    EXPECT_EQ(none.at(curve, 0.5), 0);
    EXPECT_EQ(none.parameter(curve, 0.5), 0);
}

TEST(ArcLength, StandsFiguresOfAnySize) {
    RandomPath random(4);
    for (double size : {1e-30, 1e-6, 1e6, 1e37}) {
        PathBezier curve = random.curve(0);
        double const length = ArcLength(curve).length();
        for (PathPoint& p : curve.p) p = p * size;
        EXPECT_NEAR(ArcLength(curve).length() / size, length, 1e-9 * length);
    }
}

}  // namespace
}  // namespace sg
