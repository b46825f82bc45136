#include "tavo/animation/curve_fit_global.h"
#include "tests/animation/fitting_fixture.h"
#include <climits>
#include <limits>
#include <numbers>

namespace Tavo {
namespace {

constexpr double pivot = 0.001, knotEps = 1e-12;

struct Fitter : SamplesFitter_multiFit {
    using SamplesFitter_multiFit::evaluate;
};

// ---- the same fit, dense and word for word ----

// Nothing where the rule asks for a parameter before the first.
Numbers referenceKnots(Samples const& s, Numbers const& parameters, int segments, int window) {
    int const angles = s.rows() - 2;
    std::vector<Numbers> d;
    for (int i = 0; i + 1 < s.rows(); ++i) {
        Numbers v{s(i + 1, 0) - s(i, 0), s(i + 1, 1) - s(i, 1), s(i + 1, 2) - s(i, 2)};
        double const length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        d.push_back({v[0] / length, v[1] / length, v[2] / length});
    }
    Numbers a, smooth;
    for (std::size_t i = 0; int(i) < angles; ++i) {
        Numbers const &p = d[i], &q = d[i + 1];
        double const x = p[1] * q[2] - p[2] * q[1], y = p[2] * q[0] - p[0] * q[2], z = p[0] * q[1] - p[1] * q[0];
        a.push_back(std::atan(std::sqrt(x * x + y * y + z * z) / (p[0] * q[0] + p[1] * q[1] + p[2] * q[2])));
    }
    int const start = -int(std::floor((window - 1) * 0.5));
    double sum = 0;
    for (int i = 0; i < angles; ++i) {
        double mean = 0;
        int terms = 0;
        for (int j = i + start; j <= i + window + start - 1; ++j)
            if (j >= 0 && j < angles) mean += a[std::size_t(j)], ++terms;
        smooth.push_back(mean / terms);
        sum += smooth.back();
    }
    double const budget = (sum + 2 * smooth.back() - smooth[smooth.size() - 2]) / segments;
    Numbers knots{0};
    double acc = 0;
    for (std::size_t i = 0; i < smooth.size(); ++i) {
        double const previous = acc;
        acc += smooth[i];
        if (!(budget <= acc)) continue;
        if (i == 0) return {};
        knots.push_back(parameters[i - 1] +
                        (budget - previous) / (acc - previous) * (parameters[i] - parameters[i - 1]));
        acc -= budget;
    }
    knots.push_back(parameters.back());
    return knots;
}

Samples basisOf(Numbers const& knots, Numbers const& parameters, double eps) {
    Samples b(int(parameters.size()), 2 * int(knots.size()));
    for (int row = 0; row < b.rows(); ++row) {
        double const t = parameters[std::size_t(row)];
        std::size_t k = 0;
        while (t != 0 && !(knots[k + 1] + eps >= t)) ++k;
        double const s = (t - knots[k]) / (knots[k + 1] - knots[k]), w = 1 - s;
        int const column = 2 * int(k);
        b(row, column) = k == 0 ? w * w * w : -3 * s * w * w;
        b(row, column + 1) = k == 0 ? 3 * s * w * w : 6 * s * w * w + w * w * w;
        b(row, column + 2) = 3 * s * s * w;
        b(row, column + 3) = s * s * s;
    }
    return b;
}

// Gauss and Jordan without pivoting, beside an identity.
bool invert(Samples a, double tolerance, Samples& out) {
    int const n = a.rows();
    out = Samples(n, n);
    for (int i = 0; i < n; ++i) out(i, i) = 1;
    for (int i = 0; i < n; ++i) {
        double const diagonal = a(i, i);
        if (std::abs(diagonal) < tolerance) return false;
        for (int c = 0; c < n; ++c) a(i, c) /= diagonal, out(i, c) /= diagonal;
        for (int r = 0; r < n; ++r) {
            double const factor = a(r, i);
            if (r == i) continue;
            for (int c = 0; c < n; ++c) a(r, c) -= factor * a(i, c), out(r, c) -= factor * out(i, c);
        }
    }
    return true;
}

Samples product(Samples const& a, Samples const& b) {
    Samples out(a.rows(), b.columns());
    for (int r = 0; r < a.rows(); ++r)
        for (int k = 0; k < a.columns(); ++k)
            for (int c = 0; c < b.columns(); ++c) out(r, c) += a(r, k) * b(k, c);
    return out;
}

Samples transposed(Samples const& a) {
    Samples out(a.columns(), a.rows());
    for (int r = 0; r < a.rows(); ++r)
        for (int c = 0; c < a.columns(); ++c) out(c, r) = a(r, c);
    return out;
}

bool referenceFit(Samples const& samples, Numbers const& parameters, Numbers const& knots, double tolerance,
                  Samples& controls) {
    Samples const b = basisOf(knots, parameters, knotEps), bt = transposed(b);
    Samples inverse;
    if (!invert(product(bt, b), tolerance, inverse)) return false;
    controls = product(product(inverse, bt), samples);
    return true;
}

// The control points along the curve of the free rows.
std::vector<Numbers> chainOf(Samples const& controls) {
    std::vector<Numbers> out{rowOf(controls, 0), rowOf(controls, 1)};
    for (int k = 1; 2 * k < controls.rows(); ++k) {
        Numbers const handle = rowOf(controls, 2 * k), knot = rowOf(controls, 2 * k + 1);
        Numbers reflected;
        for (std::size_t c = 0; c < knot.size(); ++c) reflected.push_back(2 * knot[c] - handle[c]);
        out.insert(out.end(), {handle, knot, reflected});
    }
    out.pop_back();
    return out;
}

double largestDifference(std::vector<Numbers> const& a, std::vector<Numbers> const& b) {
    EXPECT_EQ(a.size(), b.size());
    double largest = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) largest = std::max(largest, distance(a[i], b[i]));
    return largest;
}

// A space curve that turns everywhere, more here and less there.
Samples winding(int count, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> pick(0.5, 1.5);
    double const a = pick(random), b = pick(random), c = pick(random);
    return sampled(count, 3, [=](double i) {
        double const t = 6 * i / (count - 1);
        return Numbers{4 * std::cos(a * t), 3 * std::sin(b * t), t + std::sin(c * t)};
    });
}

// Steps of length 1 in a plane; at sample i the path turns by `angle(i)`.
Samples turningBy(int count, auto const& angle) {
    Samples out(count, 3);
    double heading = 0;
    for (int i = 1; i < count; ++i) {
        if (i > 1) heading += angle(i - 1);
        out(i, 0) = out(i - 1, 0) + std::cos(heading);
        out(i, 1) = out(i - 1, 1) + std::sin(heading);
    }
    return out;
}

// At each knot's parameter the curve meets the joint.
void expectKnots(Fitter const& fitter, Numbers const& knots) {
    ASSERT_EQ(fitter.getBreakPointsNum(), knots.size());
    Numbers at, joint;
    for (std::size_t k = 0; k < knots.size(); ++k) {
        ASSERT_TRUE(fitter.evaluate(knots[k], at, knotEps));
        ASSERT_TRUE(fitter.getControlPoint(unsigned(3 * k), joint));
        EXPECT_LT(distance(at, joint), 1e-9) << "knot " << k << " at " << knots[k];
    }
}

Numbers evenKnots(int segments, double last) {
    Numbers out;
    for (int k = 0; k <= segments; ++k) out.push_back(last * k / segments);
    return out;
}

// ---- the stated results ----

TEST(CurveFitGlobal, TheBandGivesWhatTheStatedInversionGives) {
    for (unsigned seed = 0; seed < 30; ++seed)
        for (int segments : {1, 2, 5, 9}) {
            Samples const samples = winding(120, seed);
            Numbers const parameters = counting(120);
            Numbers const knots = referenceKnots(samples, parameters, segments, 5);
            if (int(knots.size()) != segments + 1) continue;  // a crossing too few or too many
            Samples controls;
            ASSERT_TRUE(referenceFit(samples, parameters, knots, pivot, controls));
            Fitter fitter;
            ASSERT_TRUE(fitter.superSegmentFit(samples, parameters, segments, 5, pivot, knotEps));
            EXPECT_LT(largestDifference(controlsOf(fitter), chainOf(controls)), 1e-9);
            expectKnots(fitter, knots);
        }
}

TEST(CurveFitGlobal, EveryWindowOfSmoothingIsTheStatedOne) {
    int compared = 0;
    for (int window = 1; window < 12; ++window) {
        Samples const samples = winding(90, 7);
        Numbers const knots = referenceKnots(samples, counting(90), 4, window);
        if (knots.size() != 5) continue;
        Fitter fitter;
        ASSERT_TRUE(fitter.superSegmentFit(samples, counting(90), 4, window, pivot, knotEps));
        expectKnots(fitter, knots);
        ++compared;
    }
    EXPECT_GE(compared, 8);
}

TEST(CurveFitGlobal, TheSameSystemsFailAsByTheStatedInversion) {
    std::mt19937 random(5);
    int failed = 0, done = 0;
    for (int round = 0; round < 400; ++round) {
        int const count = 12 + int(random() % 30), segments = 2 + int(random() % 6);
        Samples const samples = winding(count, unsigned(round));
        Numbers parameters{0};
        for (int i = 1; i < count; ++i) parameters.push_back(parameters.back() + 0.01 + double(random() % 1000) / 100);
        Numbers const knots = referenceKnots(samples, parameters, segments, 3);
        if (int(knots.size()) != segments + 1 || 2 * segments + 2 > count) continue;
        Samples controls;
        bool const expected = referenceFit(samples, parameters, knots, pivot, controls);
        Fitter fitter;
        EXPECT_EQ(fitter.superSegmentFit(samples, parameters, segments, 3, pivot, knotEps), expected) << round;
        ++(expected ? done : failed);
    }
    EXPECT_GT(failed, 5);
    EXPECT_GT(done, 50);
}

TEST(CurveFitGlobal, TheGrowingFitTakesTheFewestEvenSegmentsThatStayWithinTheTolerance) {
    Samples const samples = winding(100, 4);
    Numbers const parameters = counting(100);
    for (double tolerance : {1.0, 0.1, 0.01, 0.001}) {
        Fitter fitter;
        ASSERT_TRUE(fitter.superSegmentFit(samples, parameters, tolerance, pivot, knotEps));
        int segments = 0;
        double error = 0;
        Samples controls;
        do {
            Numbers const knots = evenKnots(++segments, 99);
            ASSERT_TRUE(referenceFit(samples, parameters, knots, pivot, controls));
            Samples const curve = product(basisOf(knots, parameters, knotEps), controls);
            error = 0;
            for (int i = 0; i < 100; ++i) error = std::max(error, distance(rowOf(curve, i), rowOf(samples, i)));
        } while (error > tolerance);
        EXPECT_EQ(int(fitter.getBreakPointsNum()), segments + 1);
        EXPECT_LT(largestDifference(controlsOf(fitter), chainOf(controls)), 1e-9);
    }
}

TEST(CurveFitGlobal, AGrowingFitThatCannotReachTheToleranceEndsWithFalse) {
    Fitter fitter;
    EXPECT_FALSE(fitter.superSegmentFit(winding(30), counting(30), 0, pivot, knotEps));
    EXPECT_FALSE(fitter.superSegmentFit(winding(30), counting(30), std::nan(""), pivot, knotEps));
    EXPECT_EQ(fitter.getBreakPointsNum(), 0u);
}

TEST(CurveFitGlobal, SamplesOfSuchACurveGiveTheCurve) {
    Samples const truth = rowsOf({{0, 0, 0}, {1, 2, 0}, {3, 3, 1}, {4, 2, 2}, {5, 0, 3}, {7, 1, 1}});
    Numbers const knots = evenKnots(2, 40), parameters = counting(41);
    Samples const samples = product(basisOf(knots, parameters, knotEps), truth);
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, parameters, 1e-6, pivot, knotEps));
    EXPECT_LT(largestDifference(controlsOf(fitter), chainOf(truth)), 1e-9);
}

TEST(CurveFitGlobal, ASampleAtAKnotBelongsToTheSegmentBeforeItByTheEpsilon) {
    Samples const samples = winding(41);
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(41), 0.5, pivot, knotEps));
    ASSERT_GT(fitter.getBreakPointsNum(), 2u);
    double const knot = 40.0 / (fitter.getBreakPointsNum() - 1);
    Numbers before, after;
    fitter.evaluate(knot + 0.5, before, 1);
    fitter.evaluate(knot + 0.5, after, 0);
    EXPECT_GT(distance(before, after), 1e-6);
}

TEST(CurveFitGlobal, HandlesOfAJointAreReflectedInIt) {
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(winding(100), counting(100), 6, 5, pivot, knotEps));
    std::vector<Numbers> const c = controlsOf(fitter);
    ASSERT_EQ(c.size(), 19u);
    for (std::size_t j = 3; j + 3 < c.size(); j += 3)
        for (std::size_t d = 0; d < 3; ++d) EXPECT_NEAR(c[j + 1][d] + c[j - 1][d], 2 * c[j][d], 1e-12);
}

TEST(CurveFitGlobal, TheControlPointsAreThoseOfTheCurve) {
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(winding(80), counting(80), 1, 5, pivot, knotEps));
    ASSERT_EQ(controlsOf(fitter).size(), 4u);
    ASSERT_TRUE(fitter.superSegmentFit(winding(80), counting(80), 1.0, pivot, knotEps));
    std::vector<Numbers> const c = controlsOf(fitter);
    std::size_t const segments = fitter.getBreakPointsNum() - 1;
    Numbers point;
    for (int i = 0; i <= 200; ++i) {
        double const place = double(i) / 200 * double(segments);
        std::size_t const segment = std::min(std::size_t(place), segments - 1);
        ASSERT_TRUE(fitter.evaluate(79.0 * i / 200, point, knotEps));
        EXPECT_LT(distance(point, pointOf(c, segment, place - double(segment))), 1e-9);
    }
    EXPECT_FALSE(fitter.getControlPoint(unsigned(c.size()), point));
    EXPECT_FALSE(fitter.getControlPoint(UINT_MAX, point));
}

TEST(CurveFitGlobal, BehindTheEndsTheCurveFollowsItsSegmentsOn) {
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(winding(80), counting(80), 3, 5, pivot, knotEps));
    Numbers at, behind;
    fitter.evaluate(79, at, knotEps);
    ASSERT_TRUE(fitter.evaluate(79.001, behind, knotEps));
    EXPECT_LT(distance(at, behind), 0.01);
    ASSERT_TRUE(fitter.evaluate(-0.001, behind, knotEps));
    EXPECT_LT(distance(rowOf(winding(80), 0), behind), 0.2);
}

// ---- where the turning places no knot ----

TEST(CurveFitGlobal, AStraightRunHasNoTurningAndEvenKnots) {
    Samples const samples = sampled(50, 3, [](double i) { return Numbers{i, 0, 0}; });
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(50), 5, 5, pivot, knotEps));
    expectKnots(fitter, evenKnots(5, 49));
    for (Numbers const& point : controlsOf(fitter)) EXPECT_NEAR(point[1], 0, 1e-12);
}

TEST(CurveFitGlobal, OneAndTwoDimensionsAreFittedToo) {
    Samples const one = sampled(60, 1, [](double i) { return Numbers{std::sin(i * 0.1)}; });
    Samples const two = sampled(60, 2, [](double i) { return Numbers{std::cos(i * 0.1), std::sin(i * 0.1)}; });
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(one, counting(60), 4, 3, pivot, knotEps));
    expectKnots(fitter, evenKnots(4, 59));  // one dimension has no turning
    ASSERT_TRUE(fitter.superSegmentFit(two, counting(60), 4, 3, pivot, knotEps));
    EXPECT_EQ(controlsOf(fitter).size(), 13u);
}

// One corner of nearly all the turning: it fills four shares, and the second knot would stand far before the first.
TEST(CurveFitGlobal, KnotsThatWouldNotComeInOrderAreSpreadEvenlyBehindThoseThatDo) {
    Samples const samples = turningBy(41, [](int i) { return i == 10 ? std::numbers::pi / 3 : 1e-10; });
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(41), 4, 1, pivot, knotEps));
    expectKnots(fitter, {0, 8.25, 8.25 + 31.75 / 3, 8.25 + 63.5 / 3, 40});
}

// After the same corner the path runs straight back: the arc tangent is a little below 0, and what is left of the
// corner's turning would place a knot far behind the end.
TEST(CurveFitGlobal, KnotsThatWouldComeBehindTheEndAreSpreadEvenlyToo) {
    Samples const samples = turningBy(41, [](int i) {
        return i == 10 ? std::numbers::pi / 3 : i == 11 ? std::numbers::pi - 1e-3 : 1e-10;
    });
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(41), 3, 1, pivot, knotEps));
    double const first = referenceKnots(samples, counting(41), 3, 1)[1];
    expectKnots(fitter, {0, first, (first + 40) / 2, 40});
}

TEST(CurveFitGlobal, AFullShareAtTheFirstSampleReadsNothingBeforeIt) {
    Samples const samples = sampled(40, 3, [](double i) {
        return Numbers{i, std::max(i - 1, 0.0), 0};
    });  // one corner, exact
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(40), 3, 1, pivot, knotEps));
    expectKnots(fitter, evenKnots(3, 39));
    // Smoothed, the turning places a knot before the second sample, and the segment has too few.
    EXPECT_FALSE(fitter.superSegmentFit(samples, counting(40), 3, 3, pivot, knotEps));
}

TEST(CurveFitGlobal, ARightAngleIsAQuarterTurn) {
    auto const corner = [](double second) {
        return sampled(41, 3, [=](double i) {
            return i <= 20 ? Numbers{i, 0, 0}
                           : Numbers{20 + (i - 20) * std::cos(second), (i - 20) * std::sin(second), 0};
        });
    };
    Samples square = corner(0);
    for (int i = 21; i < 41; ++i) square(i, 0) = 20, square(i, 1) = i - 20;
    Fitter exact, nearly;
    ASSERT_TRUE(exact.superSegmentFit(square, counting(41), 2, 3, pivot, knotEps));
    ASSERT_TRUE(nearly.superSegmentFit(corner(std::numbers::pi / 2 - 1e-9), counting(41), 2, 3, pivot, knotEps));
    EXPECT_LT(largestDifference(controlsOf(exact), controlsOf(nearly)), 1e-6);
}

// A gentle bend with one corner of 120 degrees, which takes from the sum what lies beyond the right angle.
TEST(CurveFitGlobal, ATurnSharperThanARightAngleCountsAsNegative) {
    Samples const samples = turningBy(81, [](int i) { return i == 40 ? std::numbers::pi * 2 / 3 : 0.05; });
    Numbers const knots = referenceKnots(samples, counting(81), 2, 1);
    ASSERT_EQ(knots.size(), 3u);
    EXPECT_LT(knots[1], 35);  // half of 78 * 0.05 - pi / 3
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(81), 2, 1, pivot, knotEps));
    expectKnots(fitter, knots);
}

TEST(CurveFitGlobal, AZigzagGivesAFiniteCurveOrFalse) {
    Samples const zigzag = sampled(40, 3, [](double i) { return Numbers{i, int(i) % 2 * 5.0, 0}; });
    for (int segments = 1; segments < 15; ++segments)
        for (int window = 1; window < 9; ++window) {
            Fitter fitter;
            bool const isFitted = fitter.superSegmentFit(zigzag, counting(40), segments, window, pivot, knotEps);
            EXPECT_EQ(controlsOf(fitter).size(), isFitted ? 3 * std::size_t(segments) + 1 : 0);
            EXPECT_TRUE(areFinite(controlsOf(fitter)));
        }
}

TEST(CurveFitGlobal, AWindowOfNothingOrOfAllGivesEvenlyPlacedKnots) {
    for (int window : {INT_MIN, -3, 0}) {
        Fitter fitter;
        ASSERT_TRUE(fitter.superSegmentFit(winding(60), counting(60), 4, window, pivot, knotEps));
        expectKnots(fitter, evenKnots(4, 59));
    }
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(winding(60), counting(60), 4, INT_MAX, pivot, knotEps));
    EXPECT_TRUE(areFinite(controlsOf(fitter)));
}

TEST(CurveFitGlobal, CoincidentSamplesDoNotTurn) {
    Samples samples = winding(60);
    for (int i = 20; i < 40; ++i) std::copy_n(samples[20], 3, samples[i]);
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(samples, counting(60), 4, 5, pivot, knotEps));
    EXPECT_TRUE(areFinite(controlsOf(fitter)));
}

// ---- what fails ----

TEST(CurveFitGlobal, FewerSamplesThanUnknownsFail) {
    Fitter fitter;
    EXPECT_FALSE(fitter.superSegmentFit(winding(2), counting(2), 1, 3, pivot, knotEps));
    EXPECT_FALSE(fitter.superSegmentFit(winding(3), counting(3), 1, 3, pivot, knotEps));
    EXPECT_TRUE(fitter.superSegmentFit(winding(4), counting(4), 1, 3, pivot, knotEps));
    for (int count = 3; count < 60; ++count)  // however small a pivot may be
        EXPECT_FALSE(fitter.superSegmentFit(winding(count), counting(count), count / 2, 3, 0, knotEps));
    EXPECT_FALSE(fitter.superSegmentFit(winding(41), counting(41), INT_MAX, 3, 0, knotEps));
}

TEST(CurveFitGlobal, Validity) {
    Fitter fitter;
    ASSERT_TRUE(fitter.superSegmentFit(winding(60), counting(60), 4, 5, pivot, knotEps));
    auto const before = controlsOf(fitter);
    Samples notANumber = winding(60);
    notANumber(5, 2) = std::nan("");
    Samples huge = winding(60);
    huge(5, 2) = 1e200;
    Numbers infinite = counting(60), backward = counting(60);
    infinite[3] = std::numeric_limits<double>::infinity();
    backward.back() = -1;
    struct {
        Samples samples;
        Numbers parameters;
    } const bad[] = {{Samples(), {}},
                     {winding(1 + 1), {0}},
                     {Samples(60, 0), counting(60)},
                     {winding(60), counting(59)},
                     {winding(60), Numbers(60)},
                     {notANumber, counting(60)},
                     {huge, counting(60)},
                     {winding(60), infinite},
                     {winding(60), backward}};
    for (auto const& b : bad) {
        EXPECT_FALSE(fitter.superSegmentFit(b.samples, b.parameters, 4, 5, pivot, knotEps));
        EXPECT_FALSE(fitter.superSegmentFit(b.samples, b.parameters, 0.1, pivot, knotEps));
    }
    for (int segments : {INT_MIN, -1, 0})
        EXPECT_FALSE(fitter.superSegmentFit(winding(60), counting(60), segments, 5, pivot, knotEps));
    EXPECT_FALSE(fitter.superSegmentFit(winding(60), counting(60), 4, 5, 1e9, knotEps));
    EXPECT_FALSE(fitter.superSegmentFit(winding(60), counting(60), 4, 5, std::nan(""), knotEps));
    EXPECT_EQ(controlsOf(fitter), before);
}

TEST(CurveFitGlobal, AFitterWithoutAFitHasNothing) {
    Fitter const fitter;
    Numbers point;
    EXPECT_EQ(fitter.getBreakPointsNum(), 0u);
    EXPECT_FALSE(fitter.getControlPoint(0, point));
    EXPECT_FALSE(fitter.evaluate(0, point, 0));
}

// ---- properties ----

TEST(CurveFitGlobal, HostileInputGivesAFiniteCurveOrFalse) {
    std::mt19937 random(9);
    int done = 0;
    for (int round = 0; round < 10000; ++round) {
        Samples const samples = hostileSamples(random);
        Numbers parameters{0};
        int const kind = int(random() % 4);
        double const steps[] = {1, 1e-20, 1e20, 0};
        while (int(parameters.size()) < samples.rows())
            parameters.push_back(parameters.back() + steps[kind] * double(random() % 3));
        if (round % 7 == 0) std::shuffle(parameters.begin(), parameters.end(), random);
        double const pivots[] = {0, 1e-300, 1e-9, pivot, -1};
        double const eps[] = {0, knotEps, 1, -1, 1e300};
        Fitter fitter;
        double const p = pivots[random() % 5], e = eps[random() % 5];
        bool const isFitted = round % 2 ? fitter.superSegmentFit(samples, parameters, int(random() % 12) - 1,
                                                                 int(random() % 12) - 2, p, e)
                                        : fitter.superSegmentFit(samples, parameters, 0.1, p, e);
        auto const controls = controlsOf(fitter);
        ASSERT_EQ(controls.empty(), !isFitted);
        ASSERT_TRUE(areFinite(controls)) << round;
        done += isFitted;
    }
    EXPECT_GT(done, 1000);
}

TEST(CurveFitGlobal, TheGrowingFitStaysWithinTheToleranceAtEverySample) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Samples const samples = winding(150, seed);
        Fitter fitter;
        ASSERT_TRUE(fitter.superSegmentFit(samples, counting(150), 0.01, pivot, knotEps));
        auto const controls = controlsOf(fitter);
        for (int i = 0; i < 150; ++i) ASSERT_LE(distanceFrom(controls, rowOf(samples, i)), 0.01 + 1e-9);
    }
}

}  // namespace
}  // namespace Tavo
