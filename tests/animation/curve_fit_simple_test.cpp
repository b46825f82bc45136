#include "tavo/animation/curve_fit_simple.h"
#include "tests/animation/fitting_fixture.h"
#include <climits>
#include <limits>

namespace Tavo {
namespace {

constexpr int all = 1000000;

// The steps of the fit, open to the tests.
struct Fitter : SamplesFitter_simpleFit {
    using SamplesFitter_simpleFit::evaluateBezierSegment_noCheck;
    using SamplesFitter_simpleFit::evaluateBezierSegmentFirstDerivative_noCheck;
    using SamplesFitter_simpleFit::evaluateBezierSegmentSecondDerivative_noCheck;
    using SamplesFitter_simpleFit::samplesReparameterization_noCheck;
    using SamplesFitter_simpleFit::singleSegmentFit;
    using SamplesFitter_simpleFit::tangentsLength_noCheck;
};

struct Segment {
    Numbers u;
    Samples control;
    double error = -1;
    int split = -1;
};

Segment segmentOf(Samples const& samples, int first, int last, int refinementSteps) {
    Segment out{Numbers(std::size_t(samples.rows())), Samples(4, samples.columns())};
    Fitter().singleSegmentFit(samples, first, last, 0, samples.rows() - 1, refinementSteps, out.u, out.control,
                              out.error, out.split);
    return out;
}

// The samples at which the fit has its joints; every joint is a sample.
std::vector<int> jointsOf(SamplesFitter_simpleFit const& fitter, Samples const& samples) {
    std::vector<int> out;
    std::vector<Numbers> const controls = controlsOf(fitter);
    int sample = 0;
    for (std::size_t j = 0; j < controls.size(); j += 3) {
        while (sample < samples.rows() && rowOf(samples, sample) != controls[j]) ++sample;
        out.push_back(sample);
    }
    return out;
}

std::vector<int> joints(Samples const& samples, double tolerance, int budget, int maxSamples, int refinementSteps) {
    SamplesFitter_simpleFit fitter;
    EXPECT_TRUE(fitter.fit(samples, tolerance, budget, maxSamples, refinementSteps));
    return jointsOf(fitter, samples);
}

// The walk, step by step as it is defined, over the fit of one segment.
std::vector<int> walk(Samples const& samples, double tolerance, int budget, int maxSamples, int refinementSteps) {
    int const last = samples.rows() - 1;
    int start = 0, end = std::min(last, maxSamples - 1), low = 0, high = end + 1, steps = 0;
    std::vector<int> out{0};
    for (;;) {
        if (segmentOf(samples, start, end, refinementSteps).error > tolerance)
            high = end;
        else
            low = end;
        if (low > start + 1) ++steps;
        if (low == last) break;
        if (low + 1 != high && steps != budget) {
            end = int(std::floor((high - low) * 0.5 + low));
            continue;
        }
        out.push_back(low);
        start = low;
        end = std::min(last, low + maxSamples - 1);
        high = end + 1;
        steps = 0;
    }
    out.push_back(last);
    return out;
}

Samples wave(int count) {
    return sampled(count, 2, [](double i) { return Numbers{i, 10 * std::sin(i * i * 0.002)}; });
}

Samples bezier(int count) {
    std::vector<Numbers> const controls{{0, 0, 0}, {1, 2, 0}, {3, 2, 1}, {4, 0, 2}};
    return sampled(count, 3, [&](double i) { return pointOf(controls, 0, i / (count - 1)); });
}

// ---- the smallest ----

TEST(CurveFitSimple, OneSampleIsOneSegmentOfFourEqualPoints) {
    Samples const samples = rowsOf({{3, 4, 5}});
    SamplesFitter_simpleFit fitter;
    ASSERT_TRUE(fitter.fit(samples, 0.1, 10, 10, 2));
    EXPECT_EQ(fitter.getBreakPointsNum(), 2u);
    EXPECT_EQ(controlsOf(fitter), std::vector<Numbers>(4, Numbers{3, 4, 5}));
    Segment const segment = segmentOf(samples, 0, 0, 2);
    EXPECT_EQ(segment.error, 0);
    EXPECT_EQ(segment.split, 0);
}

TEST(CurveFitSimple, TwoSamplesHaveTheirHandlesAtTheThirdsOfTheChord) {
    SamplesFitter_simpleFit fitter;
    ASSERT_TRUE(fitter.fit(rowsOf({{0, 3}, {3, 9}}), 0, 0, 2, 0));
    EXPECT_EQ(controlsOf(fitter), (std::vector<Numbers>{{0, 3}, {1, 5}, {2, 7}, {3, 9}}));
    EXPECT_EQ(fitter.getBreakPointsNum(), 2u);
}

TEST(CurveFitSimple, EvenSamplesOnALineAreTheStraightSegmentWithHandlesAtThirds) {
    Samples const samples = sampled(31, 3, [](double i) { return Numbers{i, 2 * i, -i}; });
    SamplesFitter_simpleFit fitter;
    ASSERT_TRUE(fitter.fit(samples, 1e-6, 10, all, 3));
    std::vector<Numbers> const controls = controlsOf(fitter);
    ASSERT_EQ(controls.size(), 4u);
    for (int j = 0; j < 4; ++j)
        EXPECT_THAT(controls[std::size_t(j)], Pointwise(DoubleNear(1e-9), Numbers{10.0 * j, 20.0 * j, -10.0 * j}));
}

TEST(CurveFitSimple, SamplesOfOneCubicAreOneSegment) {
    SamplesFitter_simpleFit fitter;
    ASSERT_TRUE(fitter.fit(bezier(50), 0.05, 20, 50, 8));
    EXPECT_EQ(fitter.getBreakPointsNum(), 2u);
    EXPECT_EQ(controlsOf(fitter).size(), 4u);
}

TEST(CurveFitSimple, FewerSamplesASegmentThanThereAreGiveAJointAtOrBeforeThatMany) {
    Samples const samples = bezier(50);
    EXPECT_EQ(joints(samples, 1, 20, 10, 4), (std::vector<int>{0, 9, 18, 27, 36, 45, 49}));
    std::vector<int> const hard = joints(wave(200), 0.05, 20, 16, 2);
    for (std::size_t j = 1; j < hard.size(); ++j) EXPECT_LE(hard[j] - hard[j - 1], 15);
}

TEST(CurveFitSimple, ToleranceZeroShrinksSegmentsToChordsOfTwoSamples) {
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    Samples const samples = sampled(40, 3, [&](double) {
        return Numbers{normal(random), normal(random), normal(random)};
    });
    std::vector<int> const found = joints(samples, 0, 20, all, 2);
    ASSERT_EQ(found.size(), 40u);
    for (int i = 0; i < 40; ++i) EXPECT_EQ(found[std::size_t(i)], i);
}

// ---- the walk ----

TEST(CurveFitSimple, TheWalkIsTheStatedBinarySearch) {
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        std::normal_distribution<double> noise(0, 0.02);
        Samples samples = wave(20 + int(random() % 80));
        for (int i = 0; i < samples.rows(); ++i) samples(i, 1) += noise(random);
        double const tolerance = 0.03 * double(1 + random() % 30);
        int const budget = int(random() % 8) - 1, most = 3 + int(random() % 60), steps = int(random() % 3);
        if (budget == 0) continue;  // below
        EXPECT_EQ(joints(samples, tolerance, budget, most, steps), walk(samples, tolerance, budget, most, steps));
    }
}

TEST(CurveFitSimple, ABudgetBelowZeroSearchesToTheFarthestEnd) {
    Samples const samples = wave(120);
    EXPECT_EQ(joints(samples, 0.2, -1, all, 1), joints(samples, 0.2, 1000, all, 1));
}

TEST(CurveFitSimple, ASmallBudgetTakesWhatFitsFirst) {
    Samples const samples = wave(120);
    EXPECT_GT(joints(samples, 0.2, 1, all, 1).size(), joints(samples, 0.2, -1, all, 1).size());
}

TEST(CurveFitSimple, TheWalkEndsWhateverTheBudgetAndTheSamplesOfASegment) {
    Samples const samples = wave(60);
    for (int budget : {INT_MIN, -1, 0, 1, INT_MAX})
        for (int most : {INT_MIN, -1, 0, 1, 2, 3, INT_MAX}) {
            std::vector<int> const found = joints(samples, 0.01, budget, most, 1);
            EXPECT_EQ(found.front(), 0);
            EXPECT_EQ(found.back(), 59);
            EXPECT_TRUE(std::adjacent_find(found.begin(), found.end(), std::greater_equal<int>()) == found.end());
        }
}

TEST(CurveFitSimple, ASegmentOfFewerThanTwoSamplesBecomesAChord) {
    EXPECT_EQ(joints(wave(20), 1, 5, 0, 1), joints(wave(20), 1, 5, 2, 1));
    EXPECT_EQ(joints(wave(20), 1, 5, 2, 1).size(), 20u);
}

TEST(CurveFitSimple, ToleranceBelowZeroOrNoNumberGivesChords) {
    EXPECT_EQ(joints(wave(20), -1, 5, all, 1).size(), 20u);
    EXPECT_EQ(joints(wave(20), std::nan(""), 5, all, 1).size(), 20u);
}

// ---- one segment ----

TEST(CurveFitSimple, WithoutRefinementStepsTheParametersAreThoseByChordLength) {
    Samples const samples = rowsOf({{0, 0}, {3, 0}, {3, 4}, {3, 5}, {1, 5}});
    EXPECT_THAT(segmentOf(samples, 0, 4, 0).u, Pointwise(DoubleEq(), Numbers{0, 0.3, 0.7, 0.8, 1}));
    EXPECT_NE(segmentOf(samples, 0, 4, 1).u[1], 0.3);
}

TEST(CurveFitSimple, TheTangentsAtTheEndsOfTheCurveAreTheFirstAndLastChord) {
    Samples const control = segmentOf(wave(12), 0, 11, 0).control;
    Samples const samples = wave(12);
    Numbers const handle{control(1, 0) - control(0, 0), control(1, 1) - control(0, 1)};
    EXPECT_NEAR(handle[0] * (samples(1, 1) - samples(0, 1)), handle[1] * (samples(1, 0) - samples(0, 0)), 1e-12);
    EXPECT_GT(handle[0], 0);
    Numbers const other{control(2, 0) - control(3, 0), control(2, 1) - control(3, 1)};
    EXPECT_NEAR(other[0] * (samples(10, 1) - samples(11, 1)), other[1] * (samples(10, 0) - samples(11, 0)), 1e-9);
    EXPECT_LT(other[0], 0);
}

TEST(CurveFitSimple, TheTangentAtAJointGivesTheShorterChordTheLargerSay) {
    // The chord before the joint at (2, 0) runs along x and is 2 long, the one after it along y and is 1 long: twice
    // the weight for y.
    Samples const samples = rowsOf({{0, 0}, {2, 0}, {2, 1}, {1.5, 2}, {0.5, 2.5}, {-1, 2.5}});
    Samples const after = segmentOf(samples, 1, 5, 0).control;
    EXPECT_NEAR((after(1, 1) - after(0, 1)) / (after(1, 0) - after(0, 0)), 2, 1e-9);
    EXPECT_GT(after(1, 1), after(0, 1));
}

TEST(CurveFitSimple, NeighbouringSegmentsShareTheLineOfTheirHandles) {
    SamplesFitter_simpleFit fitter;
    ASSERT_TRUE(fitter.fit(helix(200), 0.01, 20, all, 2));
    std::vector<Numbers> const c = controlsOf(fitter);
    ASSERT_GT(c.size(), 7u);
    for (std::size_t j = 3; j + 3 < c.size(); j += 3) {
        double dot = 0;
        for (std::size_t d = 0; d < 3; ++d) dot += (c[j][d] - c[j - 1][d]) * (c[j + 1][d] - c[j][d]);
        EXPECT_NEAR(dot, distance(c[j], c[j - 1]) * distance(c[j + 1], c[j]), 1e-12);
    }
}

TEST(CurveFitSimple, TheFirstSampleOfTheLargestErrorIsWhereToSplit) {
    Samples const samples = rowsOf({{0, 0}, {1, 0}, {2, 1}, {3, 0}, {4, 0}, {5, 1}, {6, 0}, {7, 0}});
    Segment const segment = segmentOf(samples, 0, 7, 0);
    EXPECT_TRUE(segment.split == 2 || segment.split == 5);
    Samples const still(5, 2, 1.0);
    EXPECT_EQ(segmentOf(still, 1, 4, 0).split, 1);
    EXPECT_EQ(segmentOf(still, 1, 4, 0).error, 0);
}

TEST(CurveFitSimple, HandleLengthsSolveTheNormalEquations) {
    Samples const samples = wave(15);
    Segment const best = segmentOf(samples, 0, 14, 0);
    auto const squares = [&](Samples const& control) {
        double sum = 0;
        Numbers point;
        for (int i = 0; i < 15; ++i) {
            Fitter().evaluateBezierSegment_noCheck(control, best.u[std::size_t(i)], point);
            sum += std::pow(distance(point, rowOf(samples, i)), 2);
        }
        return sum;
    };
    for (double stretch : {0.999, 1.001})
        for (int end : {0, 3}) {
            Samples other = best.control;
            int const handle = end == 0 ? 1 : 2;
            for (int c = 0; c < 2; ++c) other(handle, c) = other(end, c) + stretch * (other(handle, c) - other(end, c));
            EXPECT_GT(squares(other), squares(best.control));
        }
}

TEST(CurveFitSimple, HandlesThatWouldPointBackwardStandAtTheThirdsInstead) {
    Samples const samples = rowsOf({{0, 0}, {1, 0}, {-9, 5}, {-9, 6}, {1, 1}, {0, 1}});
    Samples const control = segmentOf(samples, 0, 5, 0).control;
    EXPECT_THAT(rowOf(control, 1), Pointwise(DoubleEq(), Numbers{0, 1.0 / 3}));
    EXPECT_THAT(rowOf(control, 2), Pointwise(DoubleEq(), Numbers{0, 1 - 1.0 / 3}));
}

TEST(CurveFitSimple, ARefinementStepBringsTheSamplesNearer) {
    Samples const samples = wave(15);
    EXPECT_LT(segmentOf(samples, 0, 14, 4).error, segmentOf(samples, 0, 14, 0).error);
}

TEST(CurveFitSimple, RefinementIsOneNewtonStepASampleAndThenScaledToEndAtOne) {
    Samples const samples = wave(6);
    Segment const plain = segmentOf(samples, 0, 5, 0);
    Numbers u = plain.u, expected = plain.u, q, q1, q2;
    for (int i = 0; i < 6; ++i) {
        double& t = expected[std::size_t(i)];
        Fitter().evaluateBezierSegment_noCheck(plain.control, t, q);
        Fitter().evaluateBezierSegmentFirstDerivative_noCheck(plain.control, t, q1);
        Fitter().evaluateBezierSegmentSecondDerivative_noCheck(plain.control, t, q2);
        Numbers const d{q[0] - samples(i, 0), q[1] - samples(i, 1)};
        t -= (d[0] * q1[0] + d[1] * q1[1]) / (q1[0] * q1[0] + q1[1] * q1[1] + d[0] * q2[0] + d[1] * q2[1]);
    }
    for (double& t : expected) t /= expected.back();
    Fitter().samplesReparameterization_noCheck(samples, 0, 5, u, plain.control);
    EXPECT_THAT(u, Pointwise(DoubleNear(1e-14), expected));
}

// A closed run of samples whose handles stand at the thirds of no chord at all: the Newton step is 0 / 0.
TEST(CurveFitSimple, AnErrorThatCannotBeMeasuredIsNotWithinAnyTolerance) {
    Samples const samples = rowsOf({{0, 0}, {1, 0}, {-5, 0}, {1, 0}, {0, 0}});
    EXPECT_FALSE(std::isfinite(segmentOf(samples, 0, 4, 1).error));
    std::vector<int> const found = joints(samples, std::numeric_limits<double>::infinity(), 9, all, 1);
    EXPECT_GT(found.size(), 2u);
}

// ---- evaluation ----

TEST(CurveFitSimple, DerivativesAreThoseOfTheSegment) {
    Samples const control = rowsOf({{0, 0, 1}, {1, 3, 0}, {2, -1, 4}, {4, 1, 1}});
    Fitter const fitter;
    double const h = 1e-4;
    Numbers before, at, after, first, second;
    for (double t : {-0.2, 0.0, 0.1, 0.35, 0.5, 0.9, 1.0}) {
        fitter.evaluateBezierSegment_noCheck(control, t - h, before);
        fitter.evaluateBezierSegment_noCheck(control, t, at);
        fitter.evaluateBezierSegment_noCheck(control, t + h, after);
        fitter.evaluateBezierSegmentFirstDerivative_noCheck(control, t, first);
        fitter.evaluateBezierSegmentSecondDerivative_noCheck(control, t, second);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_NEAR(first[c], (after[c] - before[c]) / (2 * h), 1e-6);
            EXPECT_NEAR(second[c], (after[c] - 2 * at[c] + before[c]) / (h * h), 1e-5);
        }
    }
}

// ---- what comes out ----

TEST(CurveFitSimple, ControlPointsAreNumberedAlongTheCurve) {
    SamplesFitter_simpleFit fitter;
    Samples const samples = wave(30);
    ASSERT_TRUE(fitter.fit(samples, 0, 5, all, 0));
    EXPECT_EQ(fitter.getBreakPointsNum(), 30u);
    Numbers point;
    for (unsigned j = 0; j < 30; ++j) {
        ASSERT_TRUE(fitter.getControlPoint(3 * j, point));
        EXPECT_EQ(point, rowOf(samples, int(j)));
    }
    EXPECT_FALSE(fitter.getControlPoint(3 * 29 + 1, point));
    EXPECT_FALSE(fitter.getControlPoint(UINT_MAX, point));
}

TEST(CurveFitSimple, AFitterWithoutAFitHasNothing) {
    SamplesFitter_simpleFit const fitter;
    Numbers point;
    EXPECT_EQ(fitter.getBreakPointsNum(), 0u);
    EXPECT_FALSE(fitter.getControlPoint(0, point));
}

TEST(CurveFitSimple, ACopyIsOfItsOwn) {
    SamplesFitter_simpleFit fitter;
    fitter.fit(wave(30), 0.1, 5, all, 0);
    SamplesFitter_simpleFit const copy = fitter;
    auto const before = controlsOf(copy);
    fitter.fit(helix(10), 0.1, 5, all, 0);
    EXPECT_EQ(controlsOf(copy), before);
}

TEST(CurveFitSimple, Validity) {
    SamplesFitter_simpleFit fitter;
    ASSERT_TRUE(fitter.fit(wave(30), 0.1, 5, all, 0));
    auto const before = controlsOf(fitter);
    Samples notANumber = wave(30), infinite = wave(30), huge = wave(30);
    notANumber(7, 1) = std::nan("");
    infinite(29, 0) = std::numeric_limits<double>::infinity();
    huge(0, 0) = -1e60;
    for (Samples const& bad : {Samples(), Samples(0, 3), Samples(3, 0), Samples(-1, -1), notANumber, infinite, huge}) {
        EXPECT_FALSE(fitter.fit(bad, 0.1, 5, all, 0));
        EXPECT_EQ(controlsOf(fitter), before);
    }
}

// ---- properties ----

TEST(CurveFitSimple, EverySampleIsWithinTheToleranceOfTheCurve) {
    std::mt19937 random(11);
    std::normal_distribution<double> normal;
    for (int round = 0; round < 300; ++round) {
        int const dimension = 1 + int(random() % 3), count = 3 + int(random() % 60);
        double const smoothness = round % 3 * 0.45;
        Numbers place(std::size_t(dimension), 0.0), velocity = place;
        Samples const samples = sampled(count, dimension, [&](double) {
            for (std::size_t c = 0; c < place.size(); ++c)
                place[c] += velocity[c] = smoothness * velocity[c] + normal(random);
            return place;
        });
        double const tolerance = std::pow(10, -2 + 3 * std::generate_canonical<double, 32>(random));
        SamplesFitter_simpleFit fitter;
        ASSERT_TRUE(fitter.fit(samples, tolerance, 20, 4 + int(random() % 60), int(random() % 6)));
        auto const controls = controlsOf(fitter);
        for (int i = 0; i < count; ++i)
            ASSERT_LE(distanceFrom(controls, rowOf(samples, i)), tolerance * (1 + 1e-9) + 1e-12) << round << " " << i;
    }
}

TEST(CurveFitSimple, HostileSamplesGiveFiniteSegmentsThatMeetAtSamples) {
    std::mt19937 random(12);
    for (int round = 0; round < 10000; ++round) {
        Samples const samples = hostileSamples(random);
        double const tolerances[] = {0, 1e-9, 0.1, 1e30, std::numeric_limits<double>::infinity()};
        SamplesFitter_simpleFit fitter;
        ASSERT_TRUE(fitter.fit(samples, tolerances[random() % 5], int(random() % 6) - 1, int(random() % 50) - 2,
                               int(random() % 4)));
        auto const controls = controlsOf(fitter);
        ASSERT_EQ(controls.size(), 3 * (fitter.getBreakPointsNum() - 1) + 1);
        ASSERT_LE(fitter.getBreakPointsNum(), unsigned(std::max(samples.rows(), 2)));
        ASSERT_TRUE(areFinite(controls));
        ASSERT_EQ(controls.front(), rowOf(samples, 0));
        ASSERT_EQ(controls.back(), rowOf(samples, samples.rows() - 1));
        ASSERT_LE(jointsOf(fitter, samples).back(), samples.rows() - 1);
    }
}

}  // namespace
}  // namespace Tavo
