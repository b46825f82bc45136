#include "tests/animation/curve_fixture.h"
#include <cmath>
#include <random>

namespace Tavo {
namespace {

using AnimationTest = CurveTest;

// ---- addressing ----

TEST_F(AnimationTest, AKeyIsFoundByItsExactInput) {
    keys({3, 1, 2});
    EXPECT_EQ(curve.Keyframe(1.F).AttributeIndex(), 1);
    EXPECT_FALSE(curve.Keyframe(1.5F).IsValid());
    curve.SetKeyframe(1.5000001F, 0);
    EXPECT_FALSE(curve.Keyframe(1.5F).IsValid());
    EXPECT_EQ(curve.Keyframe(1.5F).AttributeIndex(), -1);
}

TEST_F(AnimationTest, ASortedIndexIsTheRankByInput) {
    keys({3, 1, 2});
    for (int rank = 0; rank < 3; ++rank) EXPECT_EQ(curve.Keyframe(rank).InputValue(), float(rank + 1));
}

TEST_F(AnimationTest, ARankThatNoKeyHasGivesAnInvalidKeyAndNotTheKeyAtZero) {
    keys({0, 1});
    EXPECT_FALSE(curve.Keyframe(2).IsValid());
    EXPECT_FALSE(curve.Keyframe(-1).IsValid());
    curve.DeleteKeyframe(7);
    EXPECT_THAT(inputs(), ElementsAre(0, 1));
}

TEST_F(AnimationTest, WithSeveralKeysAtOneInputTheFirstSlotAnswers) {
    curve.SetKeyframeCount(3);
    for (int i = 0; i < 3; ++i) curve.EditKeyframeByAttributeIndex(i, 5, float(i));
    EXPECT_EQ(curve.Keyframe(5.F).AttributeIndex(), 0);
    EXPECT_EQ(curve.Keyframe(2).AttributeIndex(), 0);
    EXPECT_EQ(curve.Interpolate(5), 0);
}

TEST_F(AnimationTest, AKeyMovedPastItsNeighbourKeepsItsSlotAndChangesItsRank) {
    keys({1, 2, 3});
    curve.MoveKeyframe(0, 1.5F, 0);
    EXPECT_THAT(inputs(), ElementsAre(2.5F, 2, 3));
    EXPECT_EQ(curve.Keyframe(1).AttributeIndex(), 0);
}

// ---- the whole ----

TEST_F(AnimationTest, ACountBelowOneLeavesTheCurveAsItIs) {
    keys({1, 2});
    curve.SetKeyframeCount(0).SetKeyframeCount(-3);
    EXPECT_THAT(inputs(), ElementsAre(1, 2));
}

TEST_F(AnimationTest, TheCountSizesTheArraysOfTheMode) {
    curve.SetKeyframeCount(4);
    EXPECT_EQ(sizes(curve), sizes(4, 0));
    rotation.SetKeyframeCount(3);
    EXPECT_EQ(sizes(rotation), (std::vector<int>{3, 0, 0, 0, 0, 0, 0, 0, 3}));
}

TEST_F(AnimationTest, ClearingEmptiesAllNineArrays) {
    keys({1, 2});
    rotation.SetKeyframe(1, XQuaternion());
    EXPECT_EQ(sizes(curve.ClearAnimation()), sizes(0, 0));
    EXPECT_EQ(sizes(rotation.ClearAnimation()), sizes(0, 0));
}

TEST_F(AnimationTest, InitializingLeavesAllEightArraysAtOneLengthWithTangentsOfZero) {
    keys({7, 8, 9});
    curve.Keyframe(8.F).SetInTangentX(-1);
    curve.InitializeKeyframes(2, 1, 0.5F, 4, 2, 0);
    EXPECT_EQ(sizes(curve), sizes(2, 0));
    EXPECT_THAT(inputs(), ElementsAre(1, 1.5F));
    EXPECT_THAT(outputs(), ElementsAre(4, 4));
    XKeyframe const key = curve.KeyframeByAttributeIndex(1);
    EXPECT_EQ(key.InterpolationIndex(), 2);
    EXPECT_EQ(key.ContinuityIndex(), 0);
    EXPECT_EQ(key.InTangentX(), 0);
}

TEST_F(AnimationTest, InitializingAQuaternionCurveSetsEveryKey) {
    XQuaternion const q(XVector3(0, 0, 1));
    rotation.InitializeKeyframes(3, 0, 1, q);
    EXPECT_THAT(inputs(rotation), ElementsAre(0, 1, 2));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(rotation.KeyframeOutputValuesQuat().Attribute(i).Attribute(2).Float(), q.Z());
}

TEST_F(AnimationTest, TheModeMayBeSetWhileACurveHasNoKeys) {
    curve.OutputMode().SetEnumeration(XAnimation::RotationOutputMode);
    curve.SetKeyframe(0, XQuaternion());
    EXPECT_EQ(curve.KeyframeCount(), 1);
}

TEST_F(AnimationTest, AnOperationOfTheOtherModeDoesNothing) {
    curve.SetKeyframe(1, XQuaternion());
    curve.InitializeKeyframes(3, 0, 1, XQuaternion());
    EXPECT_EQ(curve.KeyframeCount(), 0);
    rotation.SetKeyframe(1, 2);
    rotation.CreateKeyframe(1, 2, 0, 0);
    rotation.InitializeKeyframes(3, 0, 1, 5, 0, 0);
    EXPECT_FALSE(rotation.UniformSampling(5));
    EXPECT_EQ(rotation.KeyframeCount(), 0);
    EXPECT_EQ(rotation.Interpolate(1), 0);
}

TEST_F(AnimationTest, AnInvalidHandleDoesNothing) {
    XAnimation none;
    EXPECT_FALSE(none.SetKeyframe(1, 2).IsValid());
    none.DeleteKeyframes(0, 5).MoveKeyframes(0.F, 1.F, 1, 1).ClearAnimation().SetKeyframeCount(3);
    EXPECT_EQ(none.KeyframeCount(), 0);
    EXPECT_EQ(none.Interpolate(1), 0);
    EXPECT_FALSE(none.UniformSampling(4));
    std::vector<XAnimation::Point> points(3);
    none.CurvePoints(points, 0, 1);
    EXPECT_THAT(points, IsEmpty());
}

// ---- delete ----

TEST_F(AnimationTest, TheDeleteRangesRemoveWhatLiesAtOrAfterTheLargerBoundOnPurpose) {
    keys({1, 2, 3, 4});
    curve.DeleteKeyframes(2.F, 3.F);
    EXPECT_THAT(inputs(), ElementsAre(1, 2));
}

TEST_F(AnimationTest, TheSortedDeleteRangeGoesByTheInputsOfItsRanks) {
    keys({4, 1, 3, 2});
    curve.DeleteKeyframes(2, 0);
    EXPECT_THAT(inputs(), ElementsAre(1, 2));
}

TEST_F(AnimationTest, AnAttributeIndexRangeDeletesItsSlots) {
    keys({4, 1, 3, 2});
    curve.DeleteKeyframesByAttributeIndex(1, 2);
    EXPECT_THAT(inputs(), ElementsAre(4, 2));
    curve.DeleteKeyframesByAttributeIndex(1, 0);
    EXPECT_THAT(inputs(), ElementsAre(4, 2));
    curve.DeleteKeyframesByAttributeIndex(1, 2000000000);
    EXPECT_THAT(inputs(), ElementsAre(4));
}

TEST_F(AnimationTest, OneKeyIsDeletedByEachForm) {
    keys({4, 1, 3, 2});
    curve.DeleteKeyframe(1.F);
    EXPECT_THAT(inputs(), ElementsAre(4, 3, 2));
    curve.DeleteKeyframe(0);
    EXPECT_THAT(inputs(), ElementsAre(4, 3));
    curve.DeleteKeyframeByAttributeIndex(0);
    EXPECT_THAT(inputs(), ElementsAre(3));
    EXPECT_EQ(sizes(curve), sizes(1, 0));
}

// ---- move, scale, snap ----

TEST_F(AnimationTest, AMoveRangeIsInclusive) {
    keys({1, 2, 3, 4});
    curve.MoveKeyframes(2.F, 3.F, 1, 0);
    EXPECT_THAT(inputs(), ElementsAre(1, 3, 4, 4));
    EXPECT_THAT(outputs(), ElementsAre(10, 20, 30, 40));
}

TEST_F(AnimationTest, SortedAndAttributeIndexMovesHitDifferentKeys) {
    keys({4, 3, 2, 1});
    curve.MoveKeyframes(0, 1, 0, 100);
    EXPECT_THAT(outputs(), ElementsAre(40, 30, 120, 110));
    curve.MoveKeyframesByAttributeIndex(0, 1, 0, 1000);
    EXPECT_THAT(outputs(), ElementsAre(1040, 1030, 120, 110));
}

TEST_F(AnimationTest, ScalingIsAboutThePivot) {
    keys({1, 2, 3});
    curve.ScaleKeyframes(2.F, 3.F, 2, 0.5F, 1, 10);
    EXPECT_THAT(inputs(), ElementsAre(1, 3, 5));
    EXPECT_THAT(outputs(), ElementsAre(10, 15, 20));
    curve.ScaleKeyframe(0, 1, 3, 0, 0).ScaleKeyframes(1, 2, 1, 2, 0, 0);
    EXPECT_THAT(outputs(), ElementsAre(30, 30, 40));
    curve.ScaleKeyframesByAttributeIndex(2, 2, 10, 1, 0, 0);
    EXPECT_THAT(inputs(), ElementsAre(1, 3, 50));
}

TEST_F(AnimationTest, TheFloatFormsForOneKeyHitEveryKeyAtThatInput) {
    curve.SetKeyframeCount(3);
    for (int i = 0; i < 3; ++i) curve.EditKeyframeByAttributeIndex(i, i < 2 ? 1.4F : 5, 1);
    curve.ScaleKeyframe(1.4F, 1, 3, 0, 0);
    EXPECT_THAT(outputs(), ElementsAre(3, 3, 1));
    curve.SnapKeyframe(1.4F);
    EXPECT_THAT(inputs(), ElementsAre(1, 1, 5));
}

TEST_F(AnimationTest, SnappingGoesToTheNearestInteger) {
    keys({0.4F, 1.6F, 2.4F, 3.6F});
    curve.SnapKeyframes(0.F, 2.F);
    EXPECT_THAT(inputs(), ElementsAre(0, 2, 2.4F, 3.6F));
    curve.SnapKeyframe(3);
    curve.SnapKeyframesByAttributeIndex(2, 2);
    EXPECT_THAT(inputs(), ElementsAre(0, 2, 2, 4));
    keys({9.3F});
    curve.SnapKeyframes(0, 4);
    EXPECT_THAT(inputs(), ElementsAre(0, 2, 2, 4, 9));
}

// ---- create, edit, set ----

TEST_F(AnimationTest, TheShortFormsOfCreateKeyframePassTheInputAsOutputOnPurpose) {
    curve.CreateKeyframe(2, 7);
    EXPECT_EQ(curve.Keyframe(2.F).OutputValue(), 2);
    curve.CreateKeyframe(3, 7, 2);
    EXPECT_EQ(curve.Keyframe(3.F).OutputValue(), 3);
    EXPECT_EQ(curve.Keyframe(3.F).InterpolationIndex(), 2);
    EXPECT_EQ(curve.Keyframe(3.F).ContinuityIndex(), 0);
}

TEST_F(AnimationTest, TheFullFormOfCreateKeyframeTakesTheOutputUnlessAKeyIsThere) {
    EXPECT_FALSE(curve.CreateKeyframe(2, 7, 2, 1).IsValid()) << "the key of a creation does not know its slot";
    EXPECT_EQ(curve.Keyframe(2.F).OutputValue(), 7);
    XKeyframe const existing = curve.CreateKeyframe(2, 9, 0, 0);
    EXPECT_TRUE(existing.IsValid());
    EXPECT_EQ(existing.OutputValue(), 7);
    EXPECT_EQ(curve.KeyframeCount(), 1);
}

TEST_F(AnimationTest, ANewKeyHasTangentsOfZero) {
    curve.SetKeyframe(1, 2);
    XKeyframe const key = curve.Keyframe(1.F);
    for (float t : {key.InTangentX(), key.InTangentY(), key.OutTangentX(), key.OutTangentY()}) EXPECT_EQ(t, 0);
    EXPECT_EQ(sizes(curve), sizes(1, 0));
}

struct OmittedCase {
    char const* name;
    XKeyframe (*edit)(XAnimation& curve);
    int interpolation, continuity;
};
class OmittedArguments : public CurveTest, public testing::WithParamInterface<OmittedCase> {};

TEST_P(OmittedArguments, HaveTheDefaultsOfTheirFamily) {
    curve.SetKeyframe(1, 0, 2, 2);
    GetParam().edit(curve);
    EXPECT_EQ(curve.Keyframe(1.F).InterpolationIndex(), GetParam().interpolation);
    EXPECT_EQ(curve.Keyframe(1.F).ContinuityIndex(), GetParam().continuity);
    EXPECT_EQ(curve.Keyframe(1.F).OutputValue(), 5);
}

INSTANTIATE_TEST_SUITE_P(
    Curves, OmittedArguments,
    testing::Values(
        OmittedCase{"Edit", [](XAnimation& c) { return c.EditKeyframe(1.F, 5); }, 0, 0},
        OmittedCase{"EditInterpolation", [](XAnimation& c) { return c.EditKeyframe(1.F, 5, 2); }, 2, 0},
        OmittedCase{"EditSorted", [](XAnimation& c) { return c.EditKeyframe(0, 1.F, 5.F); }, 0, 0},
        OmittedCase{"EditSortedInterpolation", [](XAnimation& c) { return c.EditKeyframe(0, 1.F, 5.F, 2); }, 2, 0},
        OmittedCase{"EditSlot", [](XAnimation& c) { return c.EditKeyframeByAttributeIndex(0, 1, 5); }, 1, 1},
        OmittedCase{"EditSlotInterpolation", [](XAnimation& c) { return c.EditKeyframeByAttributeIndex(0, 1, 5, 2); },
                    2, 1},
        OmittedCase{"Set", [](XAnimation& c) { return c.SetKeyframe(1, 5); }, 1, 1},
        OmittedCase{"SetInterpolation", [](XAnimation& c) { return c.SetKeyframe(1, 5, 2); }, 2, 1}),
    [](auto const& info) { return info.param.name; });

TEST_F(AnimationTest, EditingSetsTheInputInTheFormsThatTakeAKey) {
    keys({2, 1});
    curve.EditKeyframe(0, 7.F, 70.F, 0, 0);
    EXPECT_THAT(inputs(), ElementsAre(2, 7));
    curve.EditKeyframeByAttributeIndex(0, 8, 80, 0, 0);
    EXPECT_THAT(inputs(), ElementsAre(8, 7));
    EXPECT_FALSE(curve.EditKeyframe(99.F, 0.F).IsValid());
    EXPECT_FALSE(curve.EditKeyframeByAttributeIndex(2, 1, 1).IsValid());
    EXPECT_EQ(curve.KeyframeCount(), 2);
}

TEST_F(AnimationTest, QuaternionKeysAreSetEditedAndCreatedByTheirForms) {
    XQuaternion const a(XVector3(1, 0, 0)), b(XVector3(0, 1, 0));
    auto y = [&](int slot) { return rotation.KeyframeOutputValuesQuat().Attribute(slot).Attribute(1).Float(); };
    EXPECT_FALSE(rotation.CreateKeyframe(1, a).IsValid());
    EXPECT_TRUE(rotation.CreateKeyframe(1, b).IsValid());
    EXPECT_EQ(y(0), 0);
    rotation.EditKeyframe(1.F, b);
    EXPECT_EQ(y(0), b.Y());
    rotation.EditKeyframe(0, 3.F, a);
    EXPECT_THAT(inputs(rotation), ElementsAre(3));
    rotation.EditKeyframeByAttributeIndex(0, 4, b);
    EXPECT_THAT(inputs(rotation), ElementsAre(4));
    rotation.InputValue().SetFloat(6);
    rotation.SetKeyframe(a);
    EXPECT_THAT(inputs(rotation), ElementsAre(4, 6));
    rotation.DeleteKeyframe(4.F);
    EXPECT_THAT(inputs(rotation), ElementsAre(6));
    EXPECT_EQ(rotation.KeyframeOutputValuesQuat().ArraySize(), 1);
}

// ---- evaluation ----

TEST_F(AnimationTest, InterpolationIsThatOfTheLeftKey) {
    curve.SetKeyframe(0, 0);
    curve.SetKeyframe(2, 10, 0);
    curve.SetKeyframe(4, 20);
    EXPECT_EQ(curve.Interpolate(1), 5);
    EXPECT_EQ(curve.Interpolate(3), 10);
    EXPECT_EQ(curve.PreGradient(), 5);
}

TEST_F(AnimationTest, ControlPointsExistOnSplineSegmentsOnly) {
    curve.SetKeyframe(0, 0, 2);
    curve.SetKeyframe(1, 1, 1);
    curve.SetKeyframe(2, 2, 1);
    float value = -1;
    EXPECT_TRUE(curve.GetOutputTangentControlPoint(0, value));
    EXPECT_TRUE(curve.GetInputTangentControlPoint(1, value));
    EXPECT_FALSE(curve.GetOutputTangentControlPoint(1, value));
    EXPECT_FALSE(curve.GetInputTangentControlPoint(0, value));
}

TEST_F(AnimationTest, CurvePointsRunFromOneInputToTheOther) {
    keys({0, 1, 2});
    std::vector<XAnimation::Point> points;
    curve.CurvePoints(points, 0, 2);
    ASSERT_GE(points.size(), 3U);
    EXPECT_EQ(points.front(), (XAnimation::Point{0, 0}));
    EXPECT_EQ(points.back(), (XAnimation::Point{2, 20}));
}

TEST_F(AnimationTest, TheBoundsFollowTheKeys) {
    keys({3, 1, 2});
    EXPECT_EQ(curve.KeyframeMinX().Float(), 1);
    EXPECT_EQ(curve.KeyframeMaxX().Float(), 3);
    curve.MoveKeyframe(2, 2, 5);
    EXPECT_EQ(curve.KeyframeMaxX().Float(), 5);
    EXPECT_EQ(curve.KeyframeMaxY().Float(), 35);
}

// ---- angles ----

struct CyclicCase {
    float previous, value, expected;
    sg::AngularUnit unit;
};

TEST_F(AnimationTest, AnglesAreBroughtWithinHalfATurnOfTheKeyBefore) {
    auto const degrees = sg::AngularUnit::Degrees, radians = sg::AngularUnit::Radians;
    curve.OutputUnits().SetInteger(9);
    for (CyclicCase const& c :
         {CyclicCase{0, 370, 10, degrees}, CyclicCase{10, 380, 20, degrees}, CyclicCase{0, 180, 180, degrees},
          CyclicCase{0, -180, 180, degrees}, CyclicCase{0, 540, 180, degrees}, CyclicCase{0, -1090, -10, degrees},
          CyclicCase{0, 7, 7 - 2 * 3.1415927F, radians}, CyclicCase{0, 3, 3, radians}}) {
        curve.ClearAnimation().SetKeyframe(0, c.previous);
        float value = c.value;
        curve.EnsureCyclicContinuity(1, value, c.unit);
        EXPECT_FLOAT_EQ(value, c.expected) << c.previous << " " << c.value;
    }
}

TEST_F(AnimationTest, KeyZeroOtherUnitsAndInfiniteValuesAreLeftAlone) {
    curve.SetKeyframe(0, 0);
    float value = 370;
    curve.EnsureCyclicContinuity(1, value, sg::AngularUnit::Degrees);
    EXPECT_EQ(value, 370) << "no angle";
    curve.OutputUnits().SetInteger(9);
    curve.EnsureCyclicContinuity(0, value, sg::AngularUnit::Degrees);
    EXPECT_EQ(value, 370) << "key 0";
    float endless = INFINITY;
    curve.EnsureCyclicContinuity(1, endless);
    EXPECT_EQ(endless, INFINITY);
}

// ---- sampling ----

TEST_F(AnimationTest, UniformSamplingNeedsTwoSegments) {
    keys({1, 2, 5});
    EXPECT_FALSE(curve.UniformSampling(1));
    EXPECT_THAT(inputs(), ElementsAre(1, 2, 5));
    EXPECT_FALSE(curve.IsCurveSampled().Boolean());
}

TEST_F(AnimationTest, UniformSamplingKeepsTheShape) {
    curve.SetKeyframe(0, 0, 2);
    curve.SetKeyframe(4, 8, 2);
    std::vector<float> expected;
    for (int i = 0; i <= 4; ++i) expected.push_back(curve.Interpolate(float(i)));
    EXPECT_TRUE(curve.UniformSampling(4));
    EXPECT_THAT(inputs(), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_EQ(outputs(), expected);
    EXPECT_TRUE(curve.IsCurveSampled().Boolean());
    EXPECT_EQ(curve.Keyframe(2).InterpolationIndex(), 1);
    EXPECT_EQ(curve.Keyframe(2).ContinuityIndex(), 1);
    EXPECT_EQ(sizes(curve), sizes(5, 0));
}

TEST_F(AnimationTest, SamplesOfKeysAtOneInputCollapseToOneKey) {
    curve.SetKeyframeCount(2);
    for (int i = 0; i < 2; ++i) curve.EditKeyframeByAttributeIndex(i, 3, 7);
    EXPECT_TRUE(curve.UniformSampling(10));
    EXPECT_THAT(inputs(), ElementsAre(3));
    EXPECT_THAT(outputs(), ElementsAre(7));
}

// ---- history ----

TEST_F(AnimationTest, EachRangeOperationIsOneStepThatUndoTakesBack) {
    keys({1, 2, 3, 4.3F});
    scene().CommitTransient();
    std::vector<float> const x = inputs(), y = outputs();
    std::vector<std::function<void()>> const operations = {
        [&] { curve.DeleteKeyframes(1.F, 2.F); },     [&] { curve.DeleteKeyframesByAttributeIndex(0, 2); },
        [&] { curve.MoveKeyframes(1.F, 3.F, 5, 5); }, [&] { curve.ScaleKeyframes(0, 2, 2, 2, 0, 0); },
        [&] { curve.SnapKeyframes(0.F, 9.F); },       [&] { curve.UniformSampling(7); },
        [&] { curve.CreateKeyframe(9, 9, 1, 1); },    [&] { curve.DeleteKeyframe(2.F); }};
    for (auto const& operation : operations) {
        int const before = undoCount();
        operation();
        EXPECT_EQ(undoCount(), before + 1);
        EXPECT_NE(inputs(), x);
        scene().Undo();
        EXPECT_EQ(inputs(), x);
        EXPECT_EQ(outputs(), y);
        EXPECT_EQ(sizes(curve), sizes(4, 0));
    }
}

// Random edits against a plain list of keys in slot order.
TEST_F(AnimationTest, RandomEditsAgreeWithAPlainList) {
    unsigned const seed = 20240611;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto number = [&](int limit) { return int(random() % unsigned(limit)); };
    struct Key {
        float x, y;
        bool operator==(Key const&) const = default;
    };
    std::vector<Key> model;
    for (int step = 0; step < 400; ++step) {
        float const a = float(number(12)), b = float(number(12)), d = float(number(5)) - 2;
        auto const at = [&](float x) {
            return std::find_if(model.begin(), model.end(), [&](Key k) { return k.x == x; });
        };
        switch (number(5)) {
        case 0:
            curve.SetKeyframe(a, b);
            at(a) == model.end() ? model.push_back({a, b}) : void(at(a)->y = b);
            break;
        case 1:
            if (number(4)) break;
            curve.DeleteKeyframes(a, b);
            std::erase_if(model, [&](Key k) { return a <= k.x && b <= k.x; });
            break;
        case 2:
            curve.MoveKeyframes(a, b, d, 1);
            for (Key& k : model)
                if (a <= k.x && k.x <= b) k = {k.x + d, k.y + 1};
            break;
        case 3:
            curve.ScaleKeyframes(a, b, 0.5F, 2, 4, 0);
            for (Key& k : model)
                if (a <= k.x && k.x <= b) k = {(k.x - 4) * 0.5F + 4, k.y * 2};
            break;
        default:
            curve.DeleteKeyframe(a);
            if (at(a) != model.end()) model.erase(at(a));
        }
        std::vector<float> x, y;
        for (Key k : model) x.push_back(k.x), y.push_back(k.y);
        ASSERT_EQ(inputs(), x) << "step " << step;
        ASSERT_EQ(outputs(), y) << "step " << step;
        ASSERT_EQ(sizes(curve), sizes(int(model.size()), 0));
    }
}

}  // namespace
}  // namespace Tavo
