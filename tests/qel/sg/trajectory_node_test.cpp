// The path as a node: its outputs, what makes them out of date, and undo. The geometry is tested with itself.
#include "qel/db/bulk_write.h"
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include "tests/qel/sg/random_path.h"
#include <cmath>
#include <gtest/gtest.h>

namespace sg {
namespace {

using N = TrajectoryNode;
using A = AnimationNode;
using Floats = std::vector<float>;
using Qelp::Matrix34;
using Qelp::Vector3;

struct TrajectoryNodeTest : ::testing::Test {
    TrajectoryNodeTest() : path(static_cast<N*>(scene.makeNode(L"Trajectory", L"path"))) {}

    db::AttributeArray& keys() { return path->at<db::AttributeArray>(N::TranslationKeyframesArray); }
    db::Attribute* key(int slot, int part) { return keys()[std::size_t(slot)]->asComposite()->getAttribute(part); }
    void moveKey(int slot, Vector3 const& to) { key(slot, N::Position)->asVector3()->setValue(to); }
    void addKey(int number, Vector3 const& position) {
        keys().add();
        int const slot = int(keys().size()) - 1;
        key(slot, N::KeyParameter)->asInt()->setValue(number);
        moveKey(slot, position);
    }
    void writeKey(int slot, PathKey const& k) {
        key(slot, N::KeyParameter)->asInt()->setValue(k.number);
        key(slot, N::InHandle)->asVector3()->setValue(k.inHandle);
        key(slot, N::OutHandle)->asVector3()->setValue(k.outHandle);
        key(slot, N::Interpolation)->asEnum()->setValue(k.interpolation);
        moveKey(slot, k.position);
    }
    // The positions and out handles of the keys from `from` to before `to`.
    void moveKeys(int from, int to, auto const& place) {
        db::BulkWriteOf<2> bulk(keys(), {1 + N::Position, 1 + N::OutHandle});
        for (int slot = from; slot < to; ++slot) {
            if (!bulk.open(std::size_t(slot))) continue;
            for (std::size_t part : {0, 1}) bulk.part<db::Vector3Attribute>(part).raw() = place(slot);
        }
    }
    void addRotation(float attach, float angle, int kind = 1) {
        auto& array = path->at<db::AttributeArray>(N::RotationKeyframesArray);
        db::CompositeAttribute& k = *array.add()->asComposite();
        k.getAttribute(N::AttachPoint)->asFloat()->setValue(attach);
        k.getAttribute(N::KeyInterpolation)->asEnum()->setValue(kind);
        db::CompositeAttribute& q = *k.getAttribute(N::Orientation)->asComposite();
        q.getAttribute(2)->asFloat()->setValue(std::sin(angle / 2));
        q.getAttribute(3)->asFloat()->setValue(std::cos(angle / 2));
    }
    // Three keys on a line: 0, 1 and 4.
    void line() {
        for (int i : {0, 1, 2}) addKey(i, {float(i * i), 0, 0, 0});
    }
    // Fractions 0 to 1 in the time from 1 to 3.
    A* timing() {
        auto* curve = static_cast<A*>(scene.makeNode(L"Animation", L"timing"));
        curve->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setValue(Floats{1, 3});
        curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setValue(Floats{0, 1});
        EXPECT_EQ(connect(curve, A::OutputValue, N::InputValue), Connected);
        EXPECT_EQ(connect(curve, A::KeyframeMinX, N::TimingCurveFirstKeyTime), Connected);
        EXPECT_EQ(connect(curve, A::KeyframeMaxX, N::TimingCurveLastKeyTime), Connected);
        integer(N::TimingHandlesNum, 5);
        return curve;
    }
    ConnectionResult connect(Node* from, int out, int in) {
        return scene.connect(from->getAttribute(std::size_t(out)), path->getAttribute(std::size_t(in)));
    }
    void real(int number, float v) { path->at<db::FloatAttribute>(number).setValue(v); }
    void integer(int number, int v) { path->at<db::IntAttribute>(number).setValue(v); }
    float length() { return path->at<db::FloatAttribute>(N::MaxArcLength).getValue(); }
    Floats const& floats(int number) { return path->at<db::FloatArrayAttribute>(number).getValue(); }
    Floats positions() {
        Floats x;
        for (Vector3 const& p : path->at<db::Vector3ArrayAttribute>(N::TimingHandlesPositionsArray).getValue())
            x.push_back(p.x);
        return x;
    }
    Matrix34 matrix(int number) { return path->at<db::Matrix34Attribute>(number).getValue(); }
    float x(int number = N::WorldCurveMatrix) { return matrix(number).m[3][0]; }
    Scene scene;
    N* path;
};

// ---- the length and the maps ----

TEST_F(TrajectoryNodeTest, EveryEditOfAKeyShowsInTheLength) {
    EXPECT_EQ(length(), 0);
    line();
    EXPECT_EQ(length(), 4);
    moveKey(2, {1, 5, 0, 0});
    EXPECT_EQ(length(), 6);
    key(2, N::KeyParameter)->asInt()->setValue(-1);  // first of all: 5 + sqrt(26) no more, but (1,5) (0,0) (1,0)
    EXPECT_NEAR(length(), std::sqrt(26.f) + 1, 1e-5);
    key(2, N::KeyParameter)->asInt()->setValue(2);
    key(0, N::Interpolation)->asEnum()->setValue(0);
    EXPECT_EQ(length(), 5);
    key(0, N::Interpolation)->asEnum()->setValue(2);
    EXPECT_GT(length(), 5.5f) << "automatic handles";
    float const automatic = length();
    real(N::InterpolationTangentsCoeff, 1);
    EXPECT_NE(length(), automatic);
    key(0, N::OutHandle)->asVector3()->setValue({0, 3, 0, 0});
    float const handled = length();
    EXPECT_GT(handled, automatic);
    keys().removeAt(1);
    EXPECT_NE(length(), handled);
    keys().insert(0);
    keys().clearArray();
    EXPECT_EQ(length(), 0);
}

TEST_F(TrajectoryNodeTest, EditsOfAKeyAreUndone) {
    line();
    scene.commitTransient();
    EXPECT_EQ(length(), 4);
    moveKey(2, {9, 0, 0, 0});
    scene.commitTransient();
    EXPECT_EQ(length(), 9);
    keys().removeAt(2);
    scene.commitTransient();
    EXPECT_EQ(length(), 1);
    addKey(3, {1, 1, 0, 0});
    scene.commitTransient();
    EXPECT_EQ(length(), 2);
    for (float expected : {1.f, 9.f, 4.f}) {
        EXPECT_TRUE(scene.undo());
        EXPECT_EQ(length(), expected);
    }
    for (float expected : {9.f, 1.f, 2.f}) {
        EXPECT_TRUE(scene.redo());
        EXPECT_EQ(length(), expected);
    }
    scene.beginChangeBlock();
    moveKey(1, {5, 0, 0, 0});
    EXPECT_NE(length(), 2);
    scene.cancel();
    EXPECT_EQ(length(), 2);
}

TEST_F(TrajectoryNodeTest, MapsAndPositionsAreThoseOfTheGeometry) {
    line();
    EXPECT_EQ(path->arcLengthMap(1), 0.25);
    EXPECT_EQ(path->inverseArcLengthMap(0.625), 1.5);
    Vector3 p;
    EXPECT_TRUE(path->computePosition(0.5, p, 0.01));
    EXPECT_EQ(p, (Vector3{2, 0, 0, 0}));
    EXPECT_TRUE(path->computePosition_parameter(1.5, p));
    EXPECT_EQ(p, (Vector3{2.5f, 0, 0, 0}));
    path->at<db::EnumAttribute>(N::PreInfinity).setValue(1);
    path->at<db::EnumAttribute>(N::PostInfinity).setValue(2);
    path->computePosition(-1, p);
    EXPECT_EQ(p.x, -4);
    path->computePosition(1.25, p);
    EXPECT_EQ(p.x, 1);
    keys().clearArray();
    EXPECT_FALSE(path->computePosition(0.5, p));
    EXPECT_FALSE(path->computePosition_parameter(0.5, p));
    EXPECT_EQ(path->arcLengthMap(1), 0);
    EXPECT_EQ(p.x, 1);
}

TEST_F(TrajectoryNodeTest, KeysAreFoundByNumberWhateverTheirSlots) {
    addKey(2, {4, 0, 0, 0});
    addKey(0, {0, 0, 0, 0});
    addKey(1, {1, 0, 0, 0});
    std::vector<int> order;
    path->getTranslationKeysOrderArray(order);
    EXPECT_EQ(order, std::vector<int>({1, 2, 0}));
    EXPECT_EQ(path->getTranslationKeyframeNum(), 3);
    EXPECT_EQ(path->isTranslationKeyframe(1), 2);
    for (int none : {-1, 3}) EXPECT_EQ(path->isTranslationKeyframe(none), -1);
    Vector3 p;
    EXPECT_TRUE(path->getTranslationOutputTangentControlPoint(0, p));
    EXPECT_NEAR(p.x, 1 / 3.f, 1e-6);
    EXPECT_TRUE(path->getTranslationInputTangentControlPoint(1, p));
    EXPECT_NEAR(p.x, 1 - 2 / 3.f, 1e-6);
    EXPECT_FALSE(path->getTranslationInputTangentControlPoint(0, p));
    EXPECT_FALSE(path->getTranslationOutputTangentControlPoint(2, p));
    EXPECT_FALSE(path->getTranslationOutputTangentControlPoint(7, p));
}

TEST_F(TrajectoryNodeTest, RotationKeysAreFoundByAttachPoint) {
    addRotation(2.5f, 0);
    addRotation(0.1f, 0);
    EXPECT_EQ(path->isRotationKeyframe(2.5, 1e-6), 0);
    EXPECT_EQ(path->isRotationKeyframe(0.1f, 1e-6), 1);
    EXPECT_EQ(path->isRotationKeyframe(0.11, 1e-6), -1);
    EXPECT_EQ(path->getRotationKeyframeNum(), 2);
    std::vector<int> order;
    path->getRotationKeysOrderArray(order);
    EXPECT_EQ(order, std::vector<int>({1, 0}));
    path->at<db::AttributeArray>(N::RotationKeyframesArray).removeAt(0);
    EXPECT_EQ(path->isRotationKeyframe(2.5, 1e-6), -1);
}

TEST_F(TrajectoryNodeTest, RaysFindFractions) {
    line();
    double fraction = 7;
    EXPECT_TRUE(path->findRaysClosestPointOnCurveParallelProjection({3, 9, 1, 0}, {0, 1, 0, 0}, fraction));
    EXPECT_NEAR(fraction, 0.75, 1e-9);
    EXPECT_TRUE(
        path->findRaysClosestPointOnCurvePerspectiveProjection({2, 9, 0, 0}, {2, 8, 0, 0}, {0, -1, 0, 0}, fraction));
    EXPECT_NEAR(fraction, 0.5, 1e-9);
    EXPECT_FALSE(
        path->findRaysClosestPointOnCurvePerspectiveProjection({2, 9, 0, 0}, {2, 10, 0, 0}, {0, 1, 0, 0}, fraction));
    EXPECT_NEAR(fraction, 0.5, 1e-9);
}

// ---- the place on the path ----

TEST_F(TrajectoryNodeTest, TheCurveMatricesFollowTheInput) {
    line();
    addRotation(0, 0);
    addRotation(2, 1);
    real(N::InputValue, 0.625f);  // parameter 1.5
    EXPECT_EQ(x(N::LocalCurveMatrix), 2.5f);
    Matrix34 turn;
    Qelutils::eulerToMatrix({0, 0, 0.75f, 0}, 0, turn);
    EXPECT_NEAR(matrix(N::LocalCurveMatrix).m[0][1], turn.m[0][1], 1e-6);
    EXPECT_NEAR(matrix(N::LocalCurveMatrix).m[0][0], turn.m[0][0], 1e-6);
    real(N::InputValue, 1);
    EXPECT_EQ(x(), 4);
    moveKey(2, {7, 0, 0, 0});
    EXPECT_EQ(x(), 7);
    path->at<db::AttributeArray>(N::RotationKeyframesArray).clearArray();
    EXPECT_EQ(matrix(N::LocalCurveMatrix).m[0][0], 1);
    keys().clearArray();
    EXPECT_EQ(matrix(N::LocalCurveMatrix), Matrix34());
}

TEST_F(TrajectoryNodeTest, TheWorldCurveMatrixStandsInTheNodesOwnTransform) {
    line();
    addRotation(0, 0.5f);
    Node* parent = scene.makeNode(L"Joint", L"parent");
    parent->addChild(*path);
    real(N::InputValue, 0.5f);
    auto const expected = [&] { return Qelutils::multiply(matrix(N::LocalCurveMatrix), matrix(N::WorldMatrix)); };
    EXPECT_EQ(x(), 2);
    real(N::Translation, 10);
    EXPECT_EQ(x(), 12);
    real(N::Rotation + 2, 0.7f);
    EXPECT_EQ(matrix(N::WorldCurveMatrix), expected());
    real(N::Scale + 1, 3);
    EXPECT_EQ(matrix(N::WorldCurveMatrix), expected());
    parent->findAttribute(L"TranslationX")->asFloat()->setValue(100);
    EXPECT_EQ(matrix(N::WorldCurveMatrix), expected());
    EXPECT_GT(x(), 100);
    parent->removeChild(*path);
    EXPECT_LT(x(), 100);
    EXPECT_EQ(matrix(N::LocalCurveMatrix).m[3][0], 2) << "before the transform";
}

TEST_F(TrajectoryNodeTest, APlaceOnThePathFeedsOthers) {
    line();
    Node* follower = scene.makeNode(L"Joint", L"follower");
    follower->findAttribute(L"TransformDataSource")->asEnum()->setValue(3);
    EXPECT_EQ(scene.connect(path->getAttribute(N::WorldCurveMatrix), follower->findAttribute(L"LocalMatrixInput")),
              Connected);
    auto const at = [&] { return follower->at<db::Matrix34Attribute>(TransformNode::WorldMatrix).getValue().m[3][0]; };
    real(N::InputValue, 0.25f);
    EXPECT_EQ(at(), 1);
    real(N::Translation, 2);
    EXPECT_EQ(at(), 3);
    moveKey(1, {1.5f, 0, 0, 0});
    EXPECT_EQ(at(), 3);
    moveKey(2, {8, 0, 0, 0});
    EXPECT_EQ(at(), 4);
    EXPECT_EQ(scene.connect(follower->findAttribute(L"TranslationX"), path->getAttribute(N::Translation)), Connected);
    EXPECT_EQ(
        scene.connect(follower->findAttribute(L"WorldMatrix"), path->getAttribute(N::LocalMatrixInput), true, true),
        WouldMakeCycle);
}

TEST_F(TrajectoryNodeTest, OutsideTheEndsTheRotationGoesWhereThePathGoes) {
    line();
    addRotation(0, 0);
    addRotation(2, 1);
    path->at<db::EnumAttribute>(N::PostInfinity).setValue(2);
    real(N::InputValue, 1.625f);
    Qelp::Quat const q = path->computeRotation_parameter(1.5);
    EXPECT_NEAR(Qelutils::matrixToQuat(matrix(N::LocalCurveMatrix)).z, q.z, 1e-6);
    EXPECT_EQ(x(N::LocalCurveMatrix), 2.5f);
}

// ---- timing handles ----

TEST_F(TrajectoryNodeTest, TimingHandlesAreSpreadEvenlyOverTheTimingCurve) {
    line();
    A* curve = timing();
    EXPECT_EQ(floats(N::TimingHandlesTimesArray), Floats({1, 1.5f, 2, 2.5f, 3}));
    EXPECT_EQ(floats(N::TimingHandlesArcLengthsArray), Floats({0, 0.25f, 0.5f, 0.75f, 1}));
    EXPECT_EQ(positions(), Floats({0, 1, 2, 3, 4}));
    EXPECT_EQ(path->getTimingCurve(), curve);
}

TEST_F(TrajectoryNodeTest, TimingHandlesFollowEditsOfTheTimingCurve) {
    line();
    A* curve = timing();
    EXPECT_EQ(positions(), Floats({0, 1, 2, 3, 4}));
    curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setElement(0.5f, 1);
    EXPECT_EQ(floats(N::TimingHandlesArcLengthsArray), Floats({0, 0.125f, 0.25f, 0.375f, 0.5f}));
    EXPECT_EQ(positions(), Floats({0, 0.5f, 1, 1.5f, 2}));
    curve->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setElement(5, 1);
    EXPECT_EQ(floats(N::TimingHandlesTimesArray), Floats({1, 2, 3, 4, 5}));
    EXPECT_EQ(positions(), Floats({0, 0.5f, 1, 1.5f, 2}));
    curve->at<db::EnumArrayAttribute>(A::KeyframeInterpolations).setValue(std::vector<int>{0, 0});
    EXPECT_EQ(positions(), Floats({0, 0, 0, 0, 2}));
    moveKey(1, {4, 0, 0, 0});
    moveKey(2, {4, 8, 0, 0});
    EXPECT_EQ(positions(), Floats({0, 0, 0, 0, 4}));
    integer(N::TimingHandlesNum, 2);
    EXPECT_EQ(positions(), Floats({0, 4}));
}

TEST_F(TrajectoryNodeTest, TimingHandlesStandWhereTheyAreWhileTheTimeMoves) {
    line();
    A* curve = timing();
    EXPECT_EQ(positions(), Floats({0, 1, 2, 3, 4}));
    for (float time : {0.f, 1.5f, 9.f}) {
        curve->at<db::FloatAttribute>(A::InputValue).setValue(time);
        EXPECT_EQ(positions(), Floats({0, 1, 2, 3, 4}));
    }
    EXPECT_EQ(x(), 4);
}

TEST_F(TrajectoryNodeTest, WithoutATimingCurveThereAreTimesButNoHandles) {
    line();
    EXPECT_EQ(floats(N::TimingHandlesTimesArray).size(), 10u);
    EXPECT_TRUE(floats(N::TimingHandlesArcLengthsArray).empty());
    EXPECT_TRUE(positions().empty());
    EXPECT_EQ(path->getTimingCurve(), nullptr);
    Node* joint = scene.makeNode(L"Joint", L"joint");
    scene.connect(joint->findAttribute(L"TranslationX"), path->getAttribute(N::InputValue));
    EXPECT_EQ(path->getTimingCurve(), nullptr) << "no curve";
    EXPECT_TRUE(positions().empty());
    A* curve = timing();
    EXPECT_EQ(positions().size(), 5u);
    curve->remove();
    EXPECT_TRUE(positions().empty());
    EXPECT_EQ(path->getTimingCurve(), nullptr);
}

TEST_F(TrajectoryNodeTest, AnyNumberOfTimingHandlesIsTaken) {
    line();
    timing();
    struct Case {
        int number;
        std::size_t count;
    } const cases[] = {{0, 0}, {-5, 0}, {1, 1}, {2, 2}, {2147483647, N::mostTimingHandles}, {-2147483647 - 1, 0}};
    for (Case const& c : cases) {
        integer(N::TimingHandlesNum, c.number);
        EXPECT_EQ(floats(N::TimingHandlesTimesArray).size(), c.count);
        EXPECT_EQ(positions().size(), c.count);
    }
    integer(N::TimingHandlesNum, 1);
    EXPECT_EQ(floats(N::TimingHandlesTimesArray), Floats({1}));
}

// A curve can be asked for all handles at once: then it is the curve that brings the fractions.
TEST_F(TrajectoryNodeTest, ArcLengthsOfTheHandlesMayFlowInFromABatchOfTheCurve) {
    line();
    A* curve = timing();
    ASSERT_EQ(scene.connect(path->getAttribute(N::TimingHandlesTimesArray), curve->getAttribute(A::InputValuesArray)),
              Connected);
    scene.commitTransient();
    ASSERT_EQ(connect(curve, A::OutputValuesArray, N::TimingHandlesArcLengthsArray), Connected);
    scene.commitTransient();
    EXPECT_EQ(positions(), Floats({0, 1, 2, 3, 4}));
    curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setElement(0.5f, 1);
    EXPECT_EQ(floats(N::TimingHandlesArcLengthsArray), Floats({0, 0.125f, 0.25f, 0.375f, 0.5f}));
    EXPECT_EQ(positions(), Floats({0, 0.5f, 1, 1.5f, 2}));
    integer(N::TimingHandlesNum, 3);
    EXPECT_EQ(positions(), Floats({0, 1, 2}));
    moveKey(1, {2, 0, 0, 0});
    EXPECT_EQ(positions(), Floats({0, 1, 2}));
    EXPECT_EQ(scene.connect(path->getAttribute(N::TimingHandlesPositionsArray),
                            curve->getAttribute(A::KeyframeOutputValues), true, true),
              KindsDiffer);
    EXPECT_EQ(scene.connect(path->getAttribute(N::TimingHandlesArcLengthsArray),
                            curve->getAttribute(A::KeyframeOutputValues), true, true),
              WouldMakeCycle);
}

TEST_F(TrajectoryNodeTest, WhatNoLongerFlowsInIsComputedAgain) {
    line();
    timing();
    auto* other = static_cast<A*>(scene.makeNode(L"Animation", L"other"));
    other->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setValue(Floats{0, 1});
    other->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setValue(Floats{0, 1});
    other->at<db::FloatArrayAttribute>(A::InputValuesArray).setValue(Floats{0.5f, 0.75f});
    scene.commitTransient();
    Floats const own{0, 1, 2, 3, 4}, brought{2, 3};
    EXPECT_EQ(positions(), own);
    ASSERT_EQ(connect(other, A::OutputValuesArray, N::TimingHandlesArcLengthsArray), Connected);
    scene.commitTransient();
    EXPECT_EQ(positions(), brought);
    EXPECT_EQ(floats(N::TimingHandlesArcLengthsArray), Floats({0.5f, 0.75f}));
    scene.undo();
    EXPECT_EQ(positions(), own);
    scene.redo();
    EXPECT_EQ(positions(), brought);
    scene.disconnectInput(path->getAttribute(N::TimingHandlesArcLengthsArray));
    scene.commitTransient();
    EXPECT_EQ(positions(), own);
    scene.undo();
    EXPECT_EQ(positions(), brought);
    other->at<db::FloatArrayAttribute>(A::InputValuesArray).setValue(Floats{1});
    EXPECT_EQ(positions(), Floats({4}));
    other->remove();
    EXPECT_EQ(positions(), own);
    EXPECT_EQ(floats(N::TimingHandlesArcLengthsArray), Floats({0, 0.25f, 0.5f, 0.75f, 1}));
}

// ---- what is kept beside the block ----

TEST_F(TrajectoryNodeTest, AnEditOfOneKeyOfManyMeasuresOnlyBesideIt) {
    for (int i = 0; i < 1000; ++i) addKey(i, {float(i), float(i % 7), 0, 0});
    length();
    std::uint64_t const before = path->getPath().measured();
    moveKey(500, {500, 9, 0, 0});
    moveKey(500, {500, 8, 0, 0});
    length();
    EXPECT_EQ(path->getPath().measured() - before, 2u);
    real(N::InputValue, 0.3f);
    x();
    length();
    EXPECT_EQ(path->getPath().measured() - before, 2u) << "the table is rebuilt once a change";
}

TEST_F(TrajectoryNodeTest, ABulkWriteMeasuresWhatItMovedAndNothingElse) {
    for (int i = 0; i < 1000; ++i) addKey(i, {float(i), float(i % 7), 0, 0});
    length();
    std::uint64_t const before = path->getPath().measured();
    moveKeys(100, 300, [](int slot) { return Vector3{float(slot), 0.5f + float(slot % 5), 0, 0}; });
    moveKey(700, {700, 9, 0, 0});
    moveKeys(100, 300, [](int slot) { return Vector3{float(slot), float(slot % 5), 0, 0}; });
    float const found = length();
    EXPECT_LE(path->getPath().measured() - before, 203u);
    Node* copy = path->makeCopy(L"copy");
    EXPECT_EQ(found, copy->at<db::FloatAttribute>(N::MaxArcLength).getValue());
}

TEST_F(TrajectoryNodeTest, WhatAKeysPointFeedsFollowsABulkWrite) {
    line();
    auto* other = static_cast<N*>(scene.makeNode(L"Trajectory", L"other"));
    auto& others = other->at<db::AttributeArray>(N::TranslationKeyframesArray);
    others.resize(2);
    for (int slot : {0, 1})
        others[std::size_t(slot)]->asComposite()->getAttribute(N::KeyParameter)->asInt()->setValue(slot);
    scene.connect(key(2, N::Position), others[1]->asComposite()->getAttribute(N::Position));
    auto const reach = [&] { return other->at<db::FloatAttribute>(N::MaxArcLength).getValue(); };
    EXPECT_EQ(reach(), 4);
    moveKeys(0, 3, [](int slot) { return Vector3{float(3 * slot), 0, 0, 0}; });
    EXPECT_EQ(reach(), 6);
    EXPECT_EQ(length(), 6);
}

TEST_F(TrajectoryNodeTest, WhatFlowsIntoAKeyMovesThePath) {
    line();
    Node* sources[2];
    for (Node*& s : sources) {
        s = scene.makeNode(L"Joint", L"source");
        s->addDynamicVector3(L"place", {0, 0, 0, 0});
        s->addDynamicInt(L"number", 5, -100, 100);
    }
    auto const place = [&](int i) { return sources[i]->findAttribute(L"place"); };
    EXPECT_EQ(length(), 4);
    scene.connect(place(0), key(2, N::Position));
    EXPECT_EQ(length(), 2);
    place(0)->asVector3()->setValue({11, 0, 0, 0});
    EXPECT_EQ(length(), 11);
    place(0)->asVector3()->setValue({12, 0, 0, 0});
    moveKey(1, {1, 0, 0, 0});
    EXPECT_EQ(length(), 12);
    place(0)->asVector3()->setValue({13, 0, 0, 0});
    scene.disconnectInput(key(2, N::Position));  // the last value stays, although nobody asked for it before
    EXPECT_EQ(length(), 13);
    scene.connect(place(1), key(2, N::Position));
    place(1)->asVector3()->setValue({21, 0, 0, 0});
    scene.disconnectInput(key(2, N::Position));
    EXPECT_EQ(length(), 21);
    scene.connect(sources[0]->findAttribute(L"number"), key(0, N::KeyParameter));
    EXPECT_EQ(length(), 20 + 21);
}

// Each output of a scene that was edited at random, as bits, against a node that sees the same keys for the first time.
struct RandomEdits : TrajectoryNodeTest, ::testing::WithParamInterface<unsigned> {
    std::vector<float> bits(N* node) {
        std::vector<float> all{node->at<db::FloatAttribute>(N::MaxArcLength).getValue()};
        for (int m : {N::LocalCurveMatrix, N::WorldCurveMatrix}) {
            Matrix34 const& v = node->at<db::Matrix34Attribute>(m).getValue();
            all.insert(all.end(), &v.m[0][0], &v.m[0][0] + 16);
        }
        for (int i = 0; i <= 20; ++i) {
            Vector3 p;
            node->computePosition(i / 20.0, p);
            all.insert(all.end(), {p.x, p.y, p.z, float(node->arcLengthMap(i * 0.7))});
        }
        return all;
    }
    void edit(test::RandomPath& random) {
        int const what = random.below(36), count = int(keys().size()), slot = count ? random.below(count) : 0;
        if (what == 0 || count == 0)
            keys().insert(unsigned(random.below(count + 1)));
        else if (what == 1)
            keys().removeAt(std::size_t(slot));
        else if (what == 2)
            writeKey(slot, random.key(random.below(40)));
        else if (what < 20)
            moveKey(slot, random.point());
        else if (what < 24)
            key(slot, random.below(2) ? N::InHandle : N::OutHandle)->asVector3()->setValue(random.point());
        else if (what < 26)
            key(slot, N::Interpolation)->asEnum()->setValue(random.below(4));
        else if (what < 27)
            addRotation(float(random.real(0, 20)), float(random.real(-3, 3)), random.below(3));
        else if (what < 28)
            real(N::Translation + random.below(3), float(random.real(-9, 9)));
        else if (what < 29)
            real(N::InterpolationTangentsCoeff, float(random.real(0, 1)));
        else if (what < 30)
            real(N::InputValue, float(random.real(-0.5, 1.5)));
        else
            moveKeys(slot, slot + 1 + random.below(count - slot), [&](int) { return random.point(); });
    }
};

TEST_P(RandomEdits, LeaveWhatAFreshNodeComputes) {
    test::RandomPath random(GetParam());
    for (int i = 0; i < 20; ++i) {
        keys().add();
        writeKey(i, random.key(i));
    }
    scene.clearUndoHistory();  // so that no undo takes the path itself away
    for (int step = 0; step < 400; ++step) {
        SCOPED_TRACE(step);
        for (int i = random.below(5); i >= 0; --i) edit(random);
        int const what = random.below(8);
        if (what < 2)
            scene.undo();
        else if (what == 2)
            scene.redo();
        else
            scene.commitTransient();
        if (random.below(2)) continue;
        Node* copy = path->makeCopy(L"copy");
        ASSERT_EQ(bits(path), bits(static_cast<N*>(copy)));
        copy->remove();
        scene.commitTransient();
    }
}

TEST_P(RandomEdits, AreUndoneToTheBit) {
    test::RandomPath random(GetParam() + 100);
    for (int i = 0; i < 12; ++i) {
        keys().add();
        writeKey(i, random.key(i));
    }
    scene.commitTransient();
    std::vector<std::vector<float>> states{bits(path)};
    for (int step = 0; step < 150; ++step) {
        scene.beginChangeBlock();
        for (int i = random.below(4); i >= 0; --i) edit(random);
        scene.endChangeBlock(L"edit");
        states.push_back(bits(path));
    }
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        ASSERT_TRUE(scene.undo());
        ASSERT_EQ(bits(path), states[i]) << i;
    }
    for (std::size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(scene.redo());
        ASSERT_EQ(bits(path), states[i]) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, ::testing::Values(1, 22, 333));

TEST_F(TrajectoryNodeTest, ComesBackFromAFileWithItsConnections) {
    line();
    A* curve = timing();
    scene.connect(path->getAttribute(N::TimingHandlesTimesArray), curve->getAttribute(A::InputValuesArray));
    connect(curve, A::OutputValuesArray, N::TimingHandlesArcLengthsArray);
    db::StringOutputStream out;
    ASSERT_TRUE(db::SaverXML(out, 0).save(scene));
    EXPECT_EQ(out.text().find("MaxArcLength"), std::string::npos) << "what is computed is not saved";
    Scene other;
    db::StringInputStream in(out.text());
    ASSERT_TRUE(db::LoaderXML(in, 0, nullptr).load(other));
    path = static_cast<N*>(other.findNode(L"path"));
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(length(), 4);
    EXPECT_EQ(positions(), Floats({0, 1, 2, 3, 4}));
    EXPECT_NE(other.getInputAttribute(path->getAttribute(N::TimingHandlesArcLengthsArray)), nullptr);
}

}  // namespace
}  // namespace sg
