// The curve as a node: its outputs, and what makes them out of date. The curve itself is tested with its evaluation.
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>

namespace sg {
namespace {

using A = AnimationNode;
using Floats = std::vector<float>;

struct AnimationNodeTest : ::testing::Test {
    AnimationNodeTest() : curve(static_cast<A*>(scene.makeNode(L"Animation", L"curve"))) {}
    void floats(int number, Floats const& v) { curve->at<db::FloatArrayAttribute>(number).setValue(v); }
    void enums(int number, std::vector<int> const& v) { curve->at<db::EnumArrayAttribute>(number).setValue(v); }
    void keys(Floats const& inputs, Floats const& outputs) {
        floats(A::KeyframeInputValues, inputs);
        floats(A::KeyframeOutputValues, outputs);
    }
    float real(int number) { return curve->at<db::FloatAttribute>(number).getValue(); }
    float at(float input) {
        curve->at<db::FloatAttribute>(A::InputValue).setValue(input);
        return real(A::OutputValue);
    }
    Scene scene;
    A* curve;
};

TEST_F(AnimationNodeTest, EveryEditOfTheKeysShowsInTheOutput) {
    EXPECT_EQ(at(1), 0) << "no keys";
    keys({0, 2}, {0, 20});
    EXPECT_EQ(at(1), 10);
    curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setElement(40, 1);
    EXPECT_EQ(real(A::OutputValue), 20);
    curve->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setElement(4, 1);
    EXPECT_EQ(real(A::OutputValue), 10);
    enums(A::KeyframeInterpolations, {0, 0});
    EXPECT_EQ(real(A::OutputValue), 0);
    enums(A::KeyframeInterpolations, {2, 2});
    float const eased = real(A::OutputValue);
    EXPECT_NEAR(eased, 40 * (3 / 16.f - 2 / 64.f), 1e-4);
    for (int number : {A::KeyframeInTangentsX, A::KeyframeInTangentsY, A::KeyframeOutTangentsX}) floats(number, {0, 0});
    floats(A::KeyframeOutTangentsY, {0, 0});
    floats(A::KeyframeOutTangentsX, {2, 0});
    floats(A::KeyframeOutTangentsY, {30, 0});
    EXPECT_NE(real(A::OutputValue), eased);
    enums(A::KeyframeInterpolations, {3, 3});
    curve->at<db::FloatAttribute>(A::ExternalValue).setValue(7);
    EXPECT_EQ(real(A::OutputValue), 7);
    scene.commitTransient();
    curve->at<db::FloatAttribute>(A::ExternalValue).setValue(8);
    scene.commitTransient();
    scene.undo();
    EXPECT_EQ(real(A::OutputValue), 7);
    scene.undo();
    EXPECT_EQ(real(A::OutputValue), 0);
}

TEST_F(AnimationNodeTest, KeysNeedNotBeSorted) {
    keys({2, 0, 1}, {20, 0, 5});
    EXPECT_EQ(at(0.5f), 2.5f);
    EXPECT_EQ(at(1.5f), 12.5f);
    std::vector<int> order;
    curve->getKeysOrderArray(order);
    EXPECT_EQ(order, std::vector<int>({1, 2, 0}));
    curve->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setElement(3, 2);
    curve->getKeysOrderArray(order);
    EXPECT_EQ(order, std::vector<int>({1, 0, 2}));
    EXPECT_EQ(at(2.5f), 12.5f);
}

TEST_F(AnimationNodeTest, ArraysOfOtherLengthsAreReadAsFarAsTheyGo) {
    struct Case {
        Floats inputs, outputs;
        std::vector<int> interpolations;
        float value;
    } const cases[] = {
        {{0, 2, 4}, {0, 20}, {}, 10}, {{0, 2}, {0, 20, 99}, {}, 10},      {{0, 2}, {}, {}, 0}, {{}, {1}, {}, 0},
        {{0, 2}, {0, 20}, {0}, 10},   {{0, 2}, {0, 20}, {0, 0, 0, 0}, 0}, {{0}, {5}, {}, 5},
    };
    for (Case const& c : cases) {
        keys(c.inputs, c.outputs);
        enums(A::KeyframeInterpolations, c.interpolations);
        EXPECT_EQ(at(1), c.value);
    }
    keys({0, 2}, {0, 20});
    enums(A::KeyframeInterpolations, {2, 2});
    floats(A::KeyframeInTangentsX, {-1});  // without the others no key has handles
    EXPECT_EQ(at(1), 10);
}

TEST_F(AnimationNodeTest, ExtrapolationsAreAttributes) {
    keys({0, 2}, {0, 20});
    struct Case {
        int mode;
        float before, after;  // at -0.5 and 2.5
    } const cases[] = {{0, 0, 20}, {1, -5, 25}, {2, 15, 5}, {3, 5, 15}, {4, -5, 25}};
    for (Case const& c : cases) {
        SCOPED_TRACE(c.mode);
        curve->at<db::EnumAttribute>(A::PreExtrapolation).setValue(c.mode);
        EXPECT_NEAR(at(-0.5f), c.before, 1e-5);
        curve->at<db::EnumAttribute>(A::PostExtrapolation).setValue(c.mode);
        EXPECT_NEAR(at(2.5f), c.after, 1e-5);
    }
    EXPECT_EQ(curve->computePreGradient(), 10);
    EXPECT_EQ(curve->computePostGradient(), 10);
}

TEST_F(AnimationNodeTest, BoundsFollowTheKeys) {
    auto bounds = [&] {
        return Floats{real(A::KeyframeMinX), real(A::KeyframeMaxX), real(A::KeyframeMinY), real(A::KeyframeMaxY)};
    };
    EXPECT_EQ(bounds(), Floats({0, 0, 0, 0}));
    keys({2, -1, 1}, {20, 3, -5});
    EXPECT_EQ(bounds(), Floats({-1, 2, -5, 20}));
    curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setElement(50, 1);
    EXPECT_EQ(bounds(), Floats({-1, 2, -5, 50}));
}

TEST_F(AnimationNodeTest, ABatchOfInputsIsOneArrayOfOutputs) {
    keys({0, 2}, {0, 20});
    floats(A::InputValuesArray, {1, 0.5f, 9, -1});
    auto& out = curve->at<db::FloatArrayAttribute>(A::OutputValuesArray);
    EXPECT_EQ(out.getValue(), Floats({10, 5, 20, 0}));
    keys({0, 2}, {0, 40});
    EXPECT_EQ(out.getValue(), Floats({20, 10, 40, 0}));
    floats(A::InputValuesArray, {});
    EXPECT_TRUE(out.getValue().empty());
}

TEST_F(AnimationNodeTest, ControlPointsBelongToSplines) {
    keys({2, 0}, {20, 0});
    float y = -1;
    EXPECT_FALSE(curve->getOutputTangentControlPoint(0, y)) << "linear";
    enums(A::KeyframeInterpolations, {2, 2});
    floats(A::KeyframeInTangentsX, {-0.5f, 0});
    floats(A::KeyframeInTangentsY, {-4, 0});
    floats(A::KeyframeOutTangentsX, {0, 0.5f});
    floats(A::KeyframeOutTangentsY, {0, 3});
    EXPECT_TRUE(curve->getOutputTangentControlPoint(0, y));
    EXPECT_EQ(y, 3);
    EXPECT_TRUE(curve->getInputTangentControlPoint(1, y));
    EXPECT_EQ(y, 16);
    EXPECT_FALSE(curve->getInputTangentControlPoint(0, y)) << "nothing lies before it";
    EXPECT_FALSE(curve->getOutputTangentControlPoint(1, y));
    for (int none : {-1, 2, 1000}) EXPECT_FALSE(curve->getInputTangentControlPoint(none, y));
    EXPECT_EQ(y, 16);
}

TEST_F(AnimationNodeTest, ARotationCurveTurnsBetweenItsKeys) {
    curve->at<db::EnumAttribute>(A::OutputMode).setValue(1);
    floats(A::KeyframeInputValues, {0, 1});
    auto& values = curve->at<db::AttributeArray>(A::KeyframeOutputValuesQuat);
    values.resize(2);
    values[1]->asComposite()->getAttribute(2)->asFloat()->setValue(1);
    values[1]->asComposite()->getAttribute(3)->asFloat()->setValue(0);  // half a turn about z
    curve->at<db::FloatAttribute>(A::InputValue).setValue(0.5f);
    Qelp::Quat const q = curve->at<db::QuaternionAttribute>(A::OutputValueQuat).getValue();
    EXPECT_NEAR(q.z, std::sqrt(0.5f), 1e-6);
    EXPECT_NEAR(q.w, std::sqrt(0.5f), 1e-6);
    EXPECT_NEAR(real(A::OutputValueEulerZ), 1.5707964f, 1e-5);
    EXPECT_NEAR(real(A::OutputValueEulerX), 0, 1e-6);
    values[1]->asComposite()->getAttribute(2)->asFloat()->setValue(0);
    values[1]->asComposite()->getAttribute(3)->asFloat()->setValue(1);
    EXPECT_NEAR(real(A::OutputValueEulerZ), 0, 1e-6) << "an edit of one part of one key";
    Qelp::Quat other;
    float number = 0;
    EXPECT_TRUE(curve->compute(1, other));
    EXPECT_FALSE(curve->compute(1, number));
    curve->at<db::EnumAttribute>(A::OutputMode).setValue(0);
    EXPECT_FALSE(curve->compute(1, other));
    EXPECT_TRUE(curve->compute(1, number));
    EXPECT_EQ(curve->at<db::QuaternionAttribute>(A::OutputValueQuat).getValue().w, 1) << "the identity";
}

TEST_F(AnimationNodeTest, TheCurveIsReadAnywhereWithoutMovingItsInput) {
    keys({0, 2}, {0, 20});
    EXPECT_EQ(at(1), 10);
    float y = 0;
    EXPECT_TRUE(curve->compute(1.5f, y));
    EXPECT_EQ(y, 15);
    EXPECT_EQ(real(A::OutputValue), 10);
    std::vector<CurvePoint> points;
    curve->compute(0, 2, points);
    ASSERT_GE(points.size(), 2u);
    EXPECT_EQ(points.back(), (CurvePoint{2, 20}));
}

TEST_F(AnimationNodeTest, AConnectedExternalValueTakesTheSegmentOver) {
    keys({0, 2}, {0, 20});
    enums(A::KeyframeInterpolations, {3, 3});
    Node* joint = scene.makeNode(L"Joint", L"joint");
    scene.connect(joint->findAttribute(L"TranslationX"), &curve->at<db::Attribute>(A::ExternalValue));
    joint->findAttribute(L"TranslationX")->asFloat()->setValue(6);
    EXPECT_EQ(at(1), 6);
    joint->findAttribute(L"TranslationX")->asFloat()->setValue(8);
    EXPECT_EQ(real(A::OutputValue), 8);
    float y = 0;
    joint->findAttribute(L"TranslationX")->asFloat()->setValue(9);
    curve->compute(1, y);
    EXPECT_EQ(y, 9);
}

}  // namespace
}  // namespace sg
