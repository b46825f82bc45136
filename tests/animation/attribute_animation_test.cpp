#include "tests/animation/curve_fixture.h"

namespace Tavo {
namespace {

struct AttributeAnimationTest : StartedApplication {
    AttributeAnimationTest() { joint = scene().CreateObject(XJoint::TypeID); }
    void setTime(float t) { time().Time().SetFloat(t); }
    XJoint joint;
};

TEST_F(AttributeAnimationTest, OnlyEditableNumbersThatMayCarryACurveAreAnimatable) {
    EXPECT_TRUE(joint.TranslationX().IsAnimatable());
    EXPECT_TRUE(joint.Visible().IsAnimatable());
    EXPECT_FALSE(XAttribute().IsAnimatable());
    EXPECT_FALSE(joint.WorldMatrix().IsAnimatable());
    EXPECT_FALSE(joint.Tags().IsAnimatable());
    EXPECT_FALSE(joint.ShowAxis().IsAnimatable()) << "not marked";
}

TEST_F(AttributeAnimationTest, WhatIsDrivenByAnythingButACurveIsNotAnimatable) {
    XJoint other(scene().CreateObject(XJoint::TypeID));
    other.TranslationX().ConnectOutputTo(joint.TranslationX());
    EXPECT_FALSE(joint.TranslationX().IsAnimatable());
    joint.TranslationY().CreateAnimation();
    EXPECT_TRUE(joint.TranslationY().IsAnimatable());
}

TEST_F(AttributeAnimationTest, ACurveIsMadeConnectedAndNamedAfterItsAttribute) {
    XAttribute y = joint.TranslationY();
    XAnimation const curve = y.CreateAnimation();
    ASSERT_TRUE(curve.IsValid());
    EXPECT_EQ(curve.Name(), L"animation" + std::to_wstring(y.AttributeID()));
    EXPECT_TRUE(curve.Parent() == joint);
    EXPECT_TRUE(y.InputAttribute() == curve.OutputValue());
    EXPECT_TRUE(curve.InputValue().InputAttribute() == time().Time());
    EXPECT_EQ(curve.InputUnits().Integer(), 12);
    EXPECT_EQ(curve.OutputUnits().Integer(), y.Units());
    EXPECT_TRUE(y.CreateAnimation() == curve) << "once made, it is returned";
    EXPECT_TRUE(y.IsAnimated());
    EXPECT_TRUE(joint.Animation(22) == curve);
}

TEST_F(AttributeAnimationTest, WhatCannotCarryACurveGetsNone) {
    int const before = int(scene().SceneGraph()->nodeCount());
    EXPECT_FALSE(joint.Tags().CreateAnimation().IsValid());
    EXPECT_FALSE(XAttribute().CreateAnimation().IsValid());
    EXPECT_EQ(int(scene().SceneGraph()->nodeCount()), before);
}

TEST_F(AttributeAnimationTest, ACurveDrivesItsChannelWhileTimeChanges) {
    joint.TranslationX().SetKeyframe(0, 0);
    joint.TranslationX().SetKeyframe(2, 10);
    for (float t : {0.F, 0.5F, 1.F, 2.F, 5.F}) {
        setTime(t);
        EXPECT_FLOAT_EQ(joint.WorldTranslation().X(), std::min(5 * t, 10.F));
    }
}

TEST_F(AttributeAnimationTest, AKeyIsSetAtTheCurrentTimeWithTheCurrentValue) {
    setTime(1);
    joint.TranslationX().SetFloat(3);
    joint.TranslationX().SetKeyframe();
    XKeyframe const key = joint.TranslationX().Animation().Keyframe(1.F);
    ASSERT_TRUE(key.IsValid());
    EXPECT_EQ(key.OutputValue(), 3);
    EXPECT_EQ(key.InterpolationIndex(), 1);
    EXPECT_EQ(joint.WorldTranslation().X(), 3);
}

TEST_F(AttributeAnimationTest, KeysOfOtherKindsThanFloatsAreSteps) {
    joint.Visible().SetBoolean(true);
    joint.Visible().SetKeyframe();
    XKeyframe const key = joint.Visible().Animation().Keyframe(0.F);
    EXPECT_EQ(key.OutputValue(), 1);
    EXPECT_EQ(key.InterpolationIndex(), 0);
}

TEST_F(AttributeAnimationTest, RotationIsKeyedAsAWhole) {
    joint.SetRotationEulerAngles(0.1F, 0.2F, 0.3F);
    EXPECT_FALSE(joint.RotationY().SetKeyframe().IsValid()) << "a creating key does not know its slot";
    XAnimation const curve = joint.RotationX().Animation();
    EXPECT_EQ(curve.OutputMode().Enumeration(), XAnimation::RotationOutputMode);
    EXPECT_TRUE(curve == joint.RotationZ().Animation());
    EXPECT_EQ(curve.KeyframeCount(), 1);
    EXPECT_NEAR(joint.RotationZ().Float(), 0.3F, 1e-6F);
}

TEST_F(AttributeAnimationTest, WhatIsNotAnimatableYieldsAnInvalidKey) {
    EXPECT_FALSE(joint.Tags().SetKeyframe().IsValid());
    EXPECT_FALSE(joint.Tags().SetKeyframe(1, 2).IsValid());
    EXPECT_FALSE(XAttribute().SetKeyframe().IsValid());
}

TEST_F(AttributeAnimationTest, ClearingKeepsTheValueOfTheMoment) {
    joint.TranslationX().SetKeyframe(0, 0);
    joint.TranslationX().SetKeyframe(2, 10);
    setTime(1);
    int const curve = joint.TranslationX().Animation().ObjectID();
    joint.TranslationX().ClearAnimation();
    EXPECT_FALSE(joint.TranslationX().IsAnimated());
    EXPECT_EQ(joint.TranslationX().Float(), 5);
    EXPECT_FALSE(scene().IsObjectID(curve));
}

TEST_F(AttributeAnimationTest, ClearingOneOfThreeLeavesTheSharedCurveToTheOthers) {
    XAnimation const curve = joint.CreateRotationAnimation();
    joint.RotationX().ClearAnimation();
    EXPECT_TRUE(joint.RotationY().Animation() == curve);
    joint.RotationY().ClearAnimation();
    joint.RotationZ().ClearAnimation();
    EXPECT_FALSE(curve.IsValid());
}

TEST_F(AttributeAnimationTest, DeletingTakesTheCurveFromAllThatItFeeds) {
    joint.CreateRotationAnimation();
    joint.RotationX().DeleteAnimation();
    EXPECT_FALSE(joint.IsAnimated());
}

TEST_F(AttributeAnimationTest, OnlyAnEmptyCurveIsDeletedAsEmpty) {
    joint.TranslationX().SetKeyframe(0, 0);
    joint.TranslationX().DeleteEmptyAnimation();
    EXPECT_TRUE(joint.TranslationX().IsAnimated());
    joint.TranslationX().Animation().ClearAnimation();
    joint.TranslationX().DeleteEmptyAnimation();
    EXPECT_FALSE(joint.TranslationX().IsAnimated());
}

TEST_F(AttributeAnimationTest, MakingACurveIsUndone) {
    scene().CommitTransient();
    joint.TranslationX().SetFloat(4);
    scene().CommitTransient();
    scene().BeginChangeBlock();
    joint.TranslationX().SetKeyframe(0, 7);
    scene().EndChangeBlock(L"key");
    EXPECT_EQ(joint.TranslationX().Float(), 7);
    scene().Undo();
    EXPECT_FALSE(joint.TranslationX().IsAnimated());
    EXPECT_EQ(joint.TranslationX().Float(), 4);
    scene().Redo();
    EXPECT_EQ(joint.TranslationX().Float(), 7);
}

}  // namespace
}  // namespace Tavo
