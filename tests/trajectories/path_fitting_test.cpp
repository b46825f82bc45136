// From dense keys to few with handles.
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

wchar_t const* const notSampled =
    L"Fitting impossible as the trajectory is not sampled and it is specified not to be re-sampled.";

class PathFitting : public TrajectoryTest {
protected:
    using Matrix = Qelp::Matrix<double>;
    using Vector = Qelp::Vector<double>;

    static XVector3 wave(double t) { return {float(t), float(std::sin(t)), float(0.5 * std::cos(1.7 * t))}; }
    void appendWave(int keys, double step = 0.05) {
        for (int i = 0; i < keys; ++i) path.AppendTranslationKeyframe(wave(i * step));
        sample();
    }
    static float distance(XVector3 const& a, XVector3 const& b) {
        return std::hypot(a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z());
    }
    // From `p` to the nearest of many places on the path.
    static float distanceToPath(XVector3 const& p, std::vector<XVector3> const& places) {
        float best = 1e30F;
        for (XVector3 const& place : places) best = std::min(best, distance(p, place));
        return best;
    }
    std::vector<XVector3> places(int number) const {
        std::vector<XVector3> found(std::size_t(number) + 1);
        for (int i = 0; i <= number; ++i) path.ComputePosition(float(i) / float(number), found[std::size_t(i)]);
        return found;
    }
    static Matrix matrixOf(std::vector<XVector3> const& points) {
        Matrix out(int(points.size()), 3);
        for (int i = 0; i < out.rows(); ++i)
            for (int axis = 0; axis < 3; ++axis) out(i, axis) = double(points[std::size_t(i)][unsigned(axis)]);
        return out;
    }
    static Vector counting(int count) {
        Vector out;
        for (int i = 0; i < count; ++i) out.push_back(i);
        return out;
    }
    void expectSpline(int continuityType) const {
        EXPECT_FALSE(path.IsTranslationCurveSampled().Boolean());
        for (int j = 0; j < count(); ++j) {
            EXPECT_EQ(slot(j).Attribute(0).Integer(), j);
            EXPECT_EQ(interpolation(j), SplineInterpolation);
            EXPECT_EQ(continuity(j), continuityType);
        }
        EXPECT_POINT(in(0), 0, 0, 0);
        EXPECT_POINT(out(count() - 1), 0, 0, 0);
    }
};

// ---- by a tolerance ----

TEST_F(PathFitting, KeysPassWithinTheToleranceOfTheSamples) {
    for (float tolerance : {0.1F, 0.01F, 0.001F}) {
        scene().New();
        path = scene().CreateObject(XTrajectory::TypeID);
        appendWave(200);
        EXPECT_TRUE(path.FitSampledCurveTranslation(0, tolerance, 20, 200, 3));
        EXPECT_LT(count(), 60);
        expectSpline(CoupledContinuity);
        std::vector<XVector3> const fitted = places(20000);
        for (int i = 0; i < 200; ++i) EXPECT_LE(distanceToPath(wave(i * 0.05), fitted), tolerance + 5e-4F) << i;
    }
}

TEST_F(PathFitting, TheFitThenSampledStaysWithinTheTolerance) {
    appendWave(300);
    float const tolerance = 0.01F;
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, tolerance, 20, 300, 3));
    EXPECT_TRUE(path.AdaptiveSampling(tolerance, 20, 7, 10));
    std::vector<XVector3> const sampled = places(20000);
    for (int i = 0; i < 300; ++i) EXPECT_LE(distanceToPath(wave(i * 0.05), sampled), 2 * tolerance + 5e-4F) << i;
}

TEST_F(PathFitting, HandlesAreTheControlPointsAndSoPlaces) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0.01F, 20, 10, 0));
    ASSERT_EQ(count(), 2);
    EXPECT_POINT(at(0), 0, 0, 0);
    EXPECT_POINT(out(0), 1, 0, 0);
    EXPECT_POINT(in(1), 2, 0, 0);
    EXPECT_POINT(at(1), 3, 0, 0);
}

TEST_F(PathFitting, WhatIsSmoothAndWithinTheToleranceIsOneSegment) {
    appendWave(20, 0.02);
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0.05F, 20, 20, 3));
    EXPECT_EQ(count(), 2);
}

TEST_F(PathFitting, ASegmentReplacesNoMoreKeysThanAsked) {
    appendWave(31, 0.01);
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 1, 20, 11, 3));
    EXPECT_GE(count(), 4);
}

TEST_F(PathFitting, WithToleranceZeroOnlyExactSegmentsStay) {
    appendWave(12, 0.3);
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0, 20, 12, 3));
    ASSERT_EQ(count(), 12);
    for (int i = 0; i < 12; ++i) EXPECT_LE(distance(at(i), wave(i * 0.3)), 1e-6F);
}

TEST_F(PathFitting, OneKeyIsASegmentOfEqualPoints) {
    append({{1, 2, 3}});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0.1F, 20, 10, 3));
    ASSERT_EQ(count(), 2);
    EXPECT_POINT(at(0), 1, 2, 3);
    EXPECT_POINT(out(0), 1, 2, 3);
    EXPECT_POINT(in(1), 1, 2, 3);
    EXPECT_POINT(at(1), 1, 2, 3);
}

TEST_F(PathFitting, TwoKeysGetHandlesAtTheThirds) {
    append({{0, 3, 0}, {3, 0, 6}});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0.1F, 20, 10, 3));
    EXPECT_POINT(out(0), 1, 2, 2);
    EXPECT_POINT(in(1), 2, 1, 4);
}

// Each key is compared with the one before it, kept or not: of a stretch that stands still the first remains.
TEST_F(PathFitting, KeysCloseToTheOneBeforeAreLeftOut) {
    append({{0, 0, 0}, {1, 0, 0}, {1, 0.3F, 0}, {1, 0.6F, 0}, {3, 5, 0}});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0, 20, 2, 0, 0.5F));
    EXPECT_THAT(xs(), ElementsAre(0, 1, 3));
}

TEST_F(PathFitting, TheShortFormLeavesOutWhatIsWithinAHundredthOfAMillimetre) {
    append({{0, 0, 0}, {0.000009F, 0, 0}, {1, 0, 0}, {1.00002F, 0, 0}});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0, 20, 2, 0));
    EXPECT_THAT(xs(), ElementsAre(0, 1, 1.00002F));
}

TEST_F(PathFitting, SamplesAreTakenInTheOrderOfThePathAndNotOfTheSlots) {
    append({{0, 0, 0}, {2, 0, 0}, {4, 1, 0}});
    path.InsertTranslationKeyframe(1, {1, 1, 0});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, 0, 20, 2, 0));
    EXPECT_THAT(xs(), ElementsAre(0, 1, 2, 4));
}

TEST_F(PathFitting, ASampledPathMayBeResampledFirst) {
    append({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(4, 0, 20, 2, 0));
    ASSERT_EQ(count(), 5);
    EXPECT_POINT(at(1), 0.5F, 0, 0);
    EXPECT_POINT(at(3), 1, 0.5F, 0);
}

// The test reads the opposite of its message.
TEST_F(PathFitting, APathThatIsNotSampledCannotBeResampled) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}});
    State const before = state();
    EXPECT_FALSE(path.FitSampledCurveTranslation(2, 0.1F, 20, 10, 3));
    EXPECT_EQ(log.texts(RecordingLog::Warning), std::vector<std::wstring>{notSampled});
    EXPECT_EQ(state(), before);
}

TEST_F(PathFitting, APathThatIsNotSampledIsFittedKeyByKeyWithoutResampling) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}});
    EXPECT_TRUE(path.FitSampledCurveTranslation(1, 0, 20, 2, 0));
    EXPECT_EQ(count(), 3);
    expectSpline(CoupledContinuity);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(PathFitting, WithoutKeysOrWithNumbersThatAreNoneNothingChanges) {
    sample();
    EXPECT_FALSE(path.FitSampledCurveTranslation(0, 0.1F, 20, 10, 3));
    EXPECT_FALSE(path.FitSampledCurveTranslation(4, 0.1F, 20, 10, 3));
    append({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}});
    State const before = state();
    for (float none : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        EXPECT_FALSE(path.FitSampledCurveTranslation(4, none, 20, 10, 3));
    EXPECT_EQ(state(), before);
    EXPECT_FALSE(XTrajectory().FitSampledCurveTranslation(0, 0.1F, 20, 10, 3));
    EXPECT_FALSE(XTrajectory().FitSampledCurveTranslation(2, 5));
}

TEST_F(PathFitting, IsOneStepThatUndoTakesBack) {
    sample();
    appendWave(50);
    path.AppendTranslationKeyframe({5, 5, 5});  // a step after the flag
    State const before = state();
    int const steps = undoCount();
    path.FitSampledCurveTranslation(40, 0.01F, 20, 100, 3);
    EXPECT_EQ(undoCount(), steps + 1);
    scene().Undo();
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(path.FitSampledCurveTranslation(4, 5));
    EXPECT_EQ(undoCount(), steps + 1);
    scene().Undo();
    EXPECT_EQ(state(), before);
}

// ---- to a number of segments ----

TEST_F(PathFitting, SegmentsFollowTheSamplesAndAreSmoothWhereTheyMeet) {
    appendWave(200);
    EXPECT_TRUE(path.FitSampledCurveTranslation(12, 5));
    ASSERT_EQ(count(), 13);
    expectSpline(LinearCoupledContinuity);
    std::vector<XVector3> const fitted = places(20000);
    for (int i = 0; i < 200; ++i) EXPECT_LE(distanceToPath(wave(i * 0.05), fitted), 0.015F) << i;
    for (int j = 1; j < 12; ++j) {
        XVector3 const p = at(j);
        EXPECT_TRUE(isAt(out(j), 2 * p.X() - in(j).X(), 2 * p.Y() - in(j).Y(), 2 * p.Z() - in(j).Z(), 1e-5F));
    }
}

TEST_F(PathFitting, AStraightRunIsFittedStraight) {
    for (int i = 0; i < 40; ++i) path.AppendTranslationKeyframe({0.1F * float(i), 0, 0});
    sample();
    EXPECT_TRUE(path.FitSampledCurveTranslation(4, 5));
    ASSERT_EQ(count(), 5);
    EXPECT_TRUE(isAt(at(0), 0, 0, 0, 1e-4F));
    EXPECT_TRUE(isAt(at(4), 3.9F, 0, 0, 1e-4F));
}

TEST_F(PathFitting, DuplicatesAreLeftOutAndTheRestKeepTheirNumbers) {
    appendWave(60);
    for (int i = 0; i < 5; ++i) path.AppendTranslationKeyframe(wave(59 * 0.05));
    EXPECT_TRUE(path.FitSampledCurveTranslation(4, 5));
    XTrajectory other(scene().CreateObject(XTrajectory::TypeID));
    std::vector<XVector3> points;
    for (int i = 0; i < 60; ++i) points.push_back(wave(i * 0.05));
    EXPECT_TRUE(other.FitSampledCurveTranslation_interactive(counting(60), matrixOf(points), 4, 5));
    EXPECT_EQ(stateOf(path.TranslationKeyframesArray()), stateOf(other.TranslationKeyframesArray()));
}

TEST_F(PathFitting, OnlyASampledPathIsFittedToSegments) {
    appendWave(60);
    path.IsTranslationCurveSampled().SetBoolean(false);
    State const before = state();
    EXPECT_FALSE(path.FitSampledCurveTranslation(4, 5));
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(PathFitting, TooFewSamplesForTheSegmentsChangeNothing) {
    append({{0, 0, 0}});
    sample();
    State one = state();
    EXPECT_FALSE(path.FitSampledCurveTranslation(1, 5));
    EXPECT_EQ(state(), one);
    append({{1, 0, 0}, {2, 1, 0}, {2, 3, 1}, {1, 3, 2}});
    State const few = state();
    EXPECT_FALSE(path.FitSampledCurveTranslation(20, 5));
    EXPECT_FALSE(path.FitSampledCurveTranslation(0, 5));
    EXPECT_EQ(state(), few);
    EXPECT_TRUE(path.IsTranslationCurveSampled().Boolean());
}

// ---- in a drag ----

TEST_F(PathFitting, GivenSamplesTakeThePlaceOfTheKeys) {
    append({{7, 7, 7}});
    std::vector<XVector3> points;
    for (int i = 0; i < 100; ++i) points.push_back(wave(i * 0.05));
    int const steps = undoCount();
    EXPECT_TRUE(path.FitSampledCurveTranslation_interactive(counting(100), matrixOf(points), 6, 5));
    EXPECT_EQ(count(), 7);
    EXPECT_EQ(undoCount(), steps + 1);
    expectSpline(LinearCoupledContinuity);
    State const found = state();
    EXPECT_TRUE(path.FitSampledCurveTranslation_interactive(counting(100), matrixOf(points), 6, 5, 100));
    EXPECT_EQ(state(), found);
}

TEST_F(PathFitting, GivenSamplesThatAreNoPathChangeNothing) {
    append({{7, 7, 7}});
    State const before = state();
    Matrix const samples = matrixOf({wave(0), wave(1), wave(2), wave(3), wave(4), wave(5)});
    Matrix huge = samples;
    huge(3, 1) = 1e60;
    EXPECT_FALSE(path.FitSampledCurveTranslation_interactive(counting(5), samples, 1, 5));
    EXPECT_FALSE(path.FitSampledCurveTranslation_interactive(counting(6), Matrix(6, 2, 1), 1, 5));
    EXPECT_FALSE(path.FitSampledCurveTranslation_interactive(counting(6), Matrix(6, 0), 1, 5));
    EXPECT_FALSE(path.FitSampledCurveTranslation_interactive(counting(6), huge, 1, 5));
    EXPECT_FALSE(path.FitSampledCurveTranslation_interactive({}, {}, 1, 5));
    EXPECT_FALSE(XTrajectory().FitSampledCurveTranslation_interactive(counting(6), samples, 1, 5));
    EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace Tavo
