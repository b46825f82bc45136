#include "tests/animation/curve_fixture.h"

namespace Tavo {
namespace {

struct KeyframeTest : CurveTest {
    KeyframeTest() {
        keys({2, 1});
        rotation.SetKeyframe(1, XQuaternion(XVector3(0, 0, 1)));
    }
    XKeyframe key() const { return curve.KeyframeByAttributeIndex(0); }
    XKeyframe rotationKey() const { return rotation.KeyframeByAttributeIndex(0); }
};

TEST_F(KeyframeTest, ADefaultKeyNamesNothing) {
    XKeyframe key;
    EXPECT_EQ(key.ObjectID(), -1);
    EXPECT_EQ(key.AttributeIndex(), -1);
    EXPECT_FALSE(key.IsValid());
    key.SetInputValue(1).SetOutputValue(2).Move(1, 1).Delete();
    key.Create(1, 2, 0, 0);
    EXPECT_EQ(key.InputValue(), 0);
    EXPECT_EQ(key.Interpolation(), L"");
}

TEST_F(KeyframeTest, AKeyIsValidWhileItsSlotExists) {
    EXPECT_TRUE(key().IsValid());
    EXPECT_FALSE(curve.KeyframeByAttributeIndex(2).IsValid());
    EXPECT_FALSE(curve.KeyframeByAttributeIndex(-1).IsValid());
    XKeyframe const held = curve.KeyframeByAttributeIndex(1);
    curve.DeleteKeyframeByAttributeIndex(1);
    EXPECT_FALSE(held.IsValid());
    XKeyframe const first = key();
    curve.Remove();
    EXPECT_FALSE(first.IsValid());
}

TEST_F(KeyframeTest, AKeyKnowsItsCurveAndTheFirstSlotOfItsInput) {
    EXPECT_EQ(key().ObjectID(), curve.ObjectID());
    EXPECT_TRUE(key().Animation() == curve);
    XKeyframe second = curve.KeyframeByAttributeIndex(1);
    EXPECT_EQ(second.Index(), 1);
    second.SetInputValue(2);
    EXPECT_EQ(second.Index(), 0);
}

TEST_F(KeyframeTest, WordsAreReadAsLabelsAndWrittenAsEither) {
    XKeyframe k = key();
    k.SetInterpolation(L"Spline").SetContinuity(L"linear");
    EXPECT_EQ(k.Interpolation(), L"Spline");
    EXPECT_EQ(k.Continuity(), L"Coupled") << "its key is \"linear\", on purpose";
    k.SetContinuity(L"Linear Coupled");
    EXPECT_EQ(k.ContinuityIndex(), 2);
    k.SetInterpolation(L"no such word");
    EXPECT_EQ(k.InterpolationIndex(), 2);
}

TEST_F(KeyframeTest, TheWordsOfTheEnumerationsStandInOrder) {
    EXPECT_EQ(ExtrapolationWords[3].key, L"reverseCyclic");
    EXPECT_EQ(ExtrapolationWords[3].label, L"Reverse Cycle");
    EXPECT_EQ(InterpolationWords[3].label, L"External");
    EXPECT_EQ(XAnimation::DefaultContinuityType, 1);
    EXPECT_EQ(XAnimation::DefaultInterpolationType, 2);
    EXPECT_EQ(XAnimation::DefaultExtrapolationType, 0);
}

TEST_F(KeyframeTest, TangentsAreWrittenAndRead) {
    XKeyframe k = key();
    k.SetInTangentX(-1).SetInTangentY(2).SetOutTangentX(3).SetOutTangentY(4);
    EXPECT_EQ(k.InTangentX(), -1);
    EXPECT_EQ(k.InTangentY(), 2);
    EXPECT_EQ(k.OutTangentX(), 3);
    EXPECT_EQ(k.OutTangentY(), 4);
}

TEST_F(KeyframeTest, MovingScalingAndSnapping) {
    XKeyframe k = key();
    k.Move(0.4F, 1);
    EXPECT_FLOAT_EQ(k.InputValue(), 2.4F);
    EXPECT_EQ(k.OutputValue(), 21);
    k.SnapToFrame();
    EXPECT_EQ(k.InputValue(), 2);
    k.Scale(3, 2, 1, 1);
    EXPECT_EQ(k.InputValue(), 4);
    EXPECT_EQ(k.OutputValue(), 41);
}

TEST_F(KeyframeTest, FloatAccessorsOfAQuaternionKeyReadNothingAndWriteNothing) {
    XKeyframe k = rotationKey();
    k.SetOutputValue(5).SetInTangentX(5).SetInterpolation(2).SetContinuity(2);
    EXPECT_EQ(k.OutputValue(), 0);
    EXPECT_EQ(k.InTangentX(), 0);
    EXPECT_EQ(k.Interpolation(), L"");
    EXPECT_EQ(k.Continuity(), L"");
    EXPECT_EQ(k.InterpolationIndex(), 0);
    EXPECT_EQ(k.ContinuityIndex(), 1);
    EXPECT_EQ(sizes(rotation), (std::vector<int>{1, 0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST_F(KeyframeTest, AQuaternionKeyMovesAndScalesByItsInputOnly) {
    XKeyframe k = rotationKey();
    k.Move(1, 5).Scale(3, 7, 0, 0);
    EXPECT_EQ(k.InputValue(), 6);
}

TEST_F(KeyframeTest, OutputQuatValueIsAlwaysTheDefaultOnPurpose) {
    EXPECT_TRUE(rotationKey().OutputQuatValue().IsIdentity());
    EXPECT_NE(rotationKey().KeyframeOutputValuesQuat().Attribute(0).Attribute(2).Float(), 0);
}

TEST_F(KeyframeTest, QuaternionsAreNotWrittenToAFloatCurve) {
    key().SetOutputValueQuat(XQuaternion(XVector3(1, 0, 0)));
    key().Create(7, XQuaternion());
    EXPECT_EQ(sizes(curve), sizes(2, 0));
}

TEST_F(KeyframeTest, AKeyThatIsCreatedDoesNotLearnItsSlot) {
    XKeyframe k(curve, -1);
    k.Create(5, 6, 2, 2);
    EXPECT_EQ(k.AttributeIndex(), -1);
    EXPECT_FALSE(k.IsValid());
    XKeyframe const found = curve.Keyframe(5.F);
    EXPECT_EQ(found.OutputValue(), 6);
    EXPECT_EQ(found.InterpolationIndex(), 2);
}

TEST_F(KeyframeTest, CreationAndDeletionAreOneStepEach) {
    scene().CommitTransient();
    int const before = undoCount();
    XKeyframe(curve, -1).Create(5, 6, 2, 2);
    key().Delete();
    EXPECT_EQ(undoCount(), before + 2);
    scene().Undo().Undo();
    EXPECT_THAT(inputs(), ElementsAre(2, 1));
    scene().Redo().Redo();
    EXPECT_THAT(inputs(), ElementsAre(1, 5));
}

}  // namespace
}  // namespace Tavo
