#include "tests/animation/curve_fixture.h"
#include <cmath>
#include <random>

namespace Tavo {
namespace {

std::wstring const notSampled =
    L"Fitting impossible as the curve is not sampled and it is specified not to be re-sampled.";

struct AnimationFittingTest : CurveTest {
    // A sampled curve with a key every 30th of a second.
    void sample(int count, auto const& value) {
        std::vector<float> x, y;
        for (int i = 0; i < count; ++i) x.push_back(float(i) / 30), y.push_back(float(value(double(i) / 30)));
        sample(x, y);
    }
    void sample(std::vector<float> const& x, std::vector<float> const& y) {
        curve.SetKeyframeCount(int(x.size()));
        curve.KeyframeInputValues().SetFloat(x);
        curve.KeyframeOutputValues().SetFloat(y);
        curve.KeyframeInterpolations().SetEnumeration(std::vector<int>(x.size(), 1));
        curve.IsCurveSampled().SetBoolean(true);
    }
    std::vector<float> tangents(int row) const {
        std::vector<float> out;
        curve.Attribute(row).Floats(out);
        return out;
    }
    // All eight arrays.
    std::vector<std::vector<float>> all() const {
        std::vector<std::vector<float>> out;
        for (int row : {26, 27, 29, 30, 31, 32}) out.push_back(tangents(row));
        for (int row : {33, 34}) {
            out.emplace_back();
            for (int i = 0; i < curve.Attribute(row).ArraySize(); ++i)
                out.back().push_back(float(curve.Attribute(row).Enumeration(i)));
        }
        return out;
    }
};

double swing(double t) { return 2 * std::sin(3 * t) + 0.3 * std::cos(7 * t); }

// ---- when ----

TEST_F(AnimationFittingTest, ACurveThatIsNotSampledAndIsToBeResampledIsRefusedWithAWarning) {
    keys({1, 2, 3});
    EXPECT_FALSE(curve.FitSampledCurve(2, 0.1F, 10, 100, 2));
    EXPECT_THAT(log.texts(RecordingLog::Warning), ElementsAre(notSampled));
    EXPECT_THAT(inputs(), ElementsAre(1, 2, 3));
}

TEST_F(AnimationFittingTest, ACurveThatIsNotSampledIsFittedKeyByKeyWhereItIsNotToBeResampled) {
    keys({1, 2, 4});
    for (int resample : {1, 0, -5}) {
        EXPECT_TRUE(curve.FitSampledCurve(resample, 1e-3F, 10, 100, 2));
        EXPECT_EQ(inputs().front(), 1);
        EXPECT_EQ(inputs().back(), 4);
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(AnimationFittingTest, ASampledCurveMayBeResampledFirst) {
    sample(100, swing);
    ASSERT_TRUE(curve.FitSampledCurve(10, 0, 10, 1000, 0));
    EXPECT_LE(curve.KeyframeCount(), 11);
    EXPECT_NEAR(inputs()[1] / (99.F / 30), 0.1F, 1e-5F);
}

TEST_F(AnimationFittingTest, WithoutKeysOrInQuaternionModeItIsFalse) {
    EXPECT_FALSE(curve.FitSampledCurve(0, 0.1F, 10, 100, 2));
    rotation.IsCurveSampled().SetBoolean(true);
    rotation.SetKeyframe(1, XQuaternion());
    EXPECT_FALSE(rotation.FitSampledCurve(0, 0.1F, 10, 100, 2));
    EXPECT_EQ(rotation.KeyframeCount(), 1);
    EXPECT_FALSE(XAnimation().FitSampledCurve(0, 0.1F, 10, 100, 2));
}

// ---- what it becomes ----

TEST_F(AnimationFittingTest, KeysAreSplinesWithLinearCoupledHandles) {
    sample(200, swing);
    ASSERT_TRUE(curve.FitSampledCurve(0, 0.01F, 20, 200, 3));
    int const count = curve.KeyframeCount();
    EXPECT_LT(count, 30);
    EXPECT_GT(count, 3);
    EXPECT_EQ(sizes(curve), sizes(count, 0));
    EXPECT_FALSE(curve.IsCurveSampled().Boolean());
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(curve.KeyframeByAttributeIndex(i).InterpolationIndex(), 2);
        EXPECT_EQ(curve.KeyframeByAttributeIndex(i).ContinuityIndex(), 2);
    }
}

TEST_F(AnimationFittingTest, TheEndsHaveNoHandleOutward) {
    sample(60, swing);
    ASSERT_TRUE(curve.FitSampledCurve(0, 0.01F, 20, 200, 3));
    EXPECT_EQ(tangents(29).front(), 0);
    EXPECT_EQ(tangents(30).front(), 0);
    EXPECT_EQ(tangents(31).back(), 0);
    EXPECT_EQ(tangents(32).back(), 0);
    EXPECT_GT(tangents(31).front(), 0);
    EXPECT_LT(tangents(29).back(), 0);
}

TEST_F(AnimationFittingTest, TwoSamplesBecomeAChordWithHandlesAtThirds) {
    sample({1, 4}, {2, 8});
    ASSERT_TRUE(curve.FitSampledCurve(0, 0, 0, 2, 0));
    EXPECT_EQ(all(),
              (std::vector<std::vector<float>>{{1, 4}, {2, 8}, {0, -1}, {0, -2}, {1, 0}, {2, 0}, {2, 2}, {2, 2}}));
}

TEST_F(AnimationFittingTest, TheFittedCurveStaysWithinTheTolerance) {
    std::mt19937 random(6);
    for (int round = 0; round < 30; ++round) {
        double const fast = 1 + random() % 6, slow = double(random() % 10) / 10;
        auto const value = [=](double t) { return std::sin(fast * t) + slow * std::cos(2 * t + 1); };
        sample(150, value);
        ASSERT_TRUE(curve.FitSampledCurve(0, 0.02F, 20, 100, int(random() % 4)));
        for (int i = 0; i < 150; ++i) {
            // A sample 0.02 away in the plane is farther above or below it where the curve is steep.
            double const t = double(i) / 30, slope = fast + 2 * slow;
            ASSERT_NEAR(curve.Interpolate(float(t)), value(t), 0.02 * std::sqrt(1 + slope * slope) * 1.1) << round;
        }
        curve.ClearAnimation();
    }
}

// ---- which samples ----

TEST_F(AnimationFittingTest, OfAStretchAtOneValueTheFirstSampleRemains) {
    sample({0, 1, 2, 3, 4, 5}, {0, 1, 1, 1, 2, 2});
    ASSERT_TRUE(curve.FitSampledCurve(0, 0, 10, 2, 0));
    EXPECT_THAT(inputs(), ElementsAre(0, 1, 4));
    EXPECT_THAT(outputs(), ElementsAre(0, 1, 2));
}

TEST_F(AnimationFittingTest, SamplesAreComparedWithTheOneBeforeThemKeptOrNot) {
    sample({0, 1, 2, 3}, {0, 0.4F, 0.8F, 2});
    ASSERT_TRUE(curve.FitSampledCurve(0, 0, 10, 2, 0, 0.5F));
    EXPECT_THAT(inputs(), ElementsAre(0, 3));
}

TEST_F(AnimationFittingTest, ACurveAtOneValueBecomesTwoKeysAtItsFirstSample) {
    sample(20, [](double) { return 3; });
    ASSERT_TRUE(curve.FitSampledCurve(0, 0.1F, 10, 100, 1));
    EXPECT_THAT(inputs(), ElementsAre(0, 0));
    EXPECT_THAT(outputs(), ElementsAre(3, 3));
    EXPECT_EQ(curve.Interpolate(1), 3);
}

TEST_F(AnimationFittingTest, TheOmittedArgumentIsAHundredThousandth) {
    sample({0, 1, 2}, {0, 0.9e-5F, 2});
    ASSERT_TRUE(curve.FitSampledCurve(0, 0, 10, 2, 0));
    EXPECT_THAT(inputs(), ElementsAre(0, 2));
    sample({0, 1, 2}, {0, 1.1e-5F, 2});
    ASSERT_TRUE(curve.FitSampledCurve(0, 0, 10, 2, 0));
    EXPECT_THAT(inputs(), ElementsAre(0, 1, 2));
}

TEST_F(AnimationFittingTest, SamplesAreTakenAlongTheCurveAndNotBySlot) {
    sample({2, 0, 1}, {4, 0, 1});
    ASSERT_TRUE(curve.FitSampledCurve(0, 0, 10, 2, 0));
    EXPECT_THAT(inputs(), ElementsAre(0, 1, 2));
    EXPECT_THAT(outputs(), ElementsAre(0, 1, 4));
}

// ---- history ----

TEST_F(AnimationFittingTest, IsOneStepThatUndoTakesBackAndRedoMakesAgain) {
    for (int resample : {0, 50}) {
        sample(100, swing);
        scene().CommitTransient();
        auto const before = all();
        int const steps = undoCount();
        ASSERT_TRUE(curve.FitSampledCurve(resample, 0.01F, 20, 100, 2));
        auto const after = all();
        EXPECT_EQ(undoCount(), steps + 1);
        EXPECT_NE(after, before);
        scene().Undo();
        EXPECT_EQ(all(), before);
        EXPECT_TRUE(curve.IsCurveSampled().Boolean());
        scene().Redo();
        EXPECT_EQ(all(), after);
        EXPECT_FALSE(curve.IsCurveSampled().Boolean());
    }
}

}  // namespace
}  // namespace Tavo
