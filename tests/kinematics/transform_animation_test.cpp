#include "tests/kinematics/transform_fixture.h"

namespace Tavo {
namespace {

struct TransformAnimationTest : TransformTest {
    TransformAnimationTest() {
        time().StartTime().SetFloat(1);
        time().EndTime().SetFloat(2);
        time().FrameRate().SetInteger(10);
    }
    // An animated source: it moves along X and turns about Z with time.
    XTransform mover() {
        XTransform source(scene().CreateObject(XTransform::TypeID, parent));
        source.TranslationX().SetKeyframe(0, 0);
        source.TranslationX().SetKeyframe(2, 4);
        source.RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation);
        source.RotationZ().SetKeyframe(0, 0);
        source.RotationZ().SetKeyframe(2, 1);
        return source;
    }
    void setEuler() { joint.RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation); }
    XQuaternion quaternionKey(int slot) const {
        XAttribute const key = joint.RotationX().Animation().KeyframeOutputValuesQuat().Attribute(slot);
        return {key.Attribute(0).Float(), key.Attribute(1).Float(), key.Attribute(2).Float(), key.Attribute(3).Float()};
    }
};

// ---- curves ----

TEST_F(TransformAnimationTest, OneQuaternionCurveFeedsThreeAngles) {
    XAnimation const curve = joint.CreateRotationAnimation();
    EXPECT_EQ(curve.Name(), XAnimation::DefaultName + std::to_wstring(joint.ObjectID()));
    EXPECT_TRUE(joint.RotationX().InputAttribute() == curve.OutputValueEulerX());
    EXPECT_TRUE(joint.RotationZ().InputAttribute() == curve.OutputValueEulerZ());
    EXPECT_TRUE(curve.InputValue().InputAttribute() == time().Time());
    EXPECT_EQ(curve.OutputMode().Enumeration(), 1);
    EXPECT_EQ(curve.InputUnits().Integer(), 12);
    EXPECT_TRUE(joint.CreateRotationAnimation() == curve);
    EXPECT_FALSE(joint.CreatePreRotationAnimation() == curve);
    EXPECT_TRUE(joint.PostRotationX().Animation() == joint.CreatePostRotationAnimation() ||
                joint.PostRotationX().IsAnimated());
}

TEST_F(TransformAnimationTest, FloatCurvesGiveWayToTheQuaternionCurve) {
    setEuler();
    joint.RotationX().SetKeyframe(0, 1);
    XAnimation const old = joint.RotationX().Animation();
    joint.CreateRotationAnimation();
    EXPECT_FALSE(old.IsValid());
}

TEST_F(TransformAnimationTest, AnyOfTheEighteenChannelsMakesItAnimated) {
    for (int row : {21, 22, 23, 36, 39, 44, 24, 29}) {
        EXPECT_FALSE(joint.IsAnimated());
        joint.Attribute(row).CreateAnimation();
        EXPECT_TRUE(joint.IsAnimated()) << row;
        joint.Attribute(row).DeleteAnimation();
    }
    EXPECT_FALSE(XTransform().IsAnimated());
}

TEST_F(TransformAnimationTest, ClearingTakesTranslationAndRotationOnly) {
    joint.TranslationX().CreateAnimation();
    joint.CreateRotationAnimation();
    joint.ScaleX().CreateAnimation();
    joint.ClearAnimation();
    EXPECT_FALSE(joint.TranslationX().IsAnimated());
    EXPECT_FALSE(joint.RotationY().IsAnimated());
    EXPECT_TRUE(joint.ScaleX().IsAnimated());
}

// ---- keys at the current time ----

TEST_F(TransformAnimationTest, ARotationKeyIsOfTheAttributesGroup) {
    setTime(1.5F);
    joint.SetPreRotationEulerAngles(XVector3(0.1F, 0.2F, 0.3F));
    XAttribute y = joint.PreRotationY(), scale = joint.ScaleX();
    EXPECT_TRUE(joint.SetRotationKeyframe(y));
    EXPECT_TRUE(joint.PreRotationX().IsAnimated());
    EXPECT_FALSE(joint.RotationX().IsAnimated());
    EXPECT_EQ(joint.PreRotationX().Animation().KeyframeInputValues().Float(0), 1.5F);
    EXPECT_NEAR(joint.PreRotationZ().Float(), 0.3F, 1e-6F);
    EXPECT_FALSE(joint.SetRotationKeyframe(scale));
}

TEST_F(TransformAnimationTest, InEulerModeOneAngleIsKeyed) {
    setEuler();
    joint.SetRotationEulerAngles(0.1F, 0.2F, 0.3F);
    XAttribute y = joint.RotationY();
    EXPECT_TRUE(joint.SetRotationKeyframe(y));
    EXPECT_FALSE(joint.RotationX().IsAnimated());
    EXPECT_EQ(y.Animation().Keyframe(0).OutputValue(), 0.2F);
    EXPECT_EQ(y.Animation().Keyframe(0).InterpolationIndex(), 1);
}

TEST_F(TransformAnimationTest, WhatIsKeyedAutomaticallyDependsOnTheTool) {
    scene().SetActiveTool(1U);
    joint.AutoSetKeyframe();
    EXPECT_FALSE(joint.IsAnimated());
    scene().SetActiveTool(3U);
    joint.AutoSetKeyframe();
    EXPECT_TRUE(joint.TranslationZ().IsAnimated());
    EXPECT_FALSE(joint.RotationX().IsAnimated());
    scene().SetActiveTool(4U);
    joint.AutoSetKeyframe();
    EXPECT_TRUE(joint.RotationX().Animation() == joint.RotationZ().Animation());
    scene().SetActiveTool(5U);
    joint.AutoSetKeyframe();
    EXPECT_TRUE(joint.ScaleY().IsAnimated());
}

// ---- keys in whole and in place ----

TEST_F(TransformAnimationTest, InitializingMakesOneKeyMoreThanThereAreSteps) {
    joint.SetTranslation(5, 6, 7).SetRotationEulerAngles(0.1F, 0.2F, 0.3F);
    joint.InitializeAnimation(4);
    std::vector<float> inputs, outputs;
    joint.TranslationY().Animation().KeyframeInputValues().Floats(inputs);
    joint.TranslationY().Animation().KeyframeOutputValues().Floats(outputs);
    EXPECT_EQ(inputs, (std::vector<float>{1, 1.25F, 1.5F, 1.75F, 2}));
    EXPECT_EQ(outputs, std::vector<float>(5, 6.F));
    EXPECT_EQ(joint.RotationX().Animation().KeyframeOutputValuesQuat().ArraySize(), 5);
    EXPECT_NEAR(joint.RotationY().Float(), 0.2F, 1e-6F);
}

TEST_F(TransformAnimationTest, InitializingInEulerModeMakesThreeFloatCurves) {
    setEuler();
    joint.SetRotationEulerAngles(0.1F, 0.2F, 0.3F).InitializeAnimation(4);
    EXPECT_EQ(joint.RotationZ().Animation().Keyframe(2).OutputValue(), 0.3F);
}

TEST_F(TransformAnimationTest, NoDurationOrNoRateInitializesNothing) {
    joint.InitializeAnimation(0);
    joint.InitializeAnimation(-5);
    joint.InitializeAnimation(1e30F);
    time().EndTime().SetFloat(1);
    joint.InitializeAnimation(10);
    EXPECT_FALSE(joint.IsAnimated());
}

TEST_F(TransformAnimationTest, KeysAreOverwrittenInPlaceAndTakenBack) {
    joint.InitializeAnimation(2);
    scene().CommitTransient();
    scene().BeginChangeBlock();
    EXPECT_TRUE(joint.SetTranslationKeyframe(XVector3(1, 2, 3), 1));
    EXPECT_TRUE(joint.SetRotationKeyframe(XVector3(0, 0, 0.5F), 1));
    scene().EndChangeBlock(L"keys");
    setTime(1.5F);
    EXPECT_VECTOR(joint.LocalTranslation(), XVector3(1, 2, 3));
    EXPECT_NEAR(joint.RotationZ().Float(), 0.5F, 1e-5F);
    scene().CommitTransient();
    scene().Undo();
    scene().Undo();
    setTime(1.5F);
    EXPECT_VECTOR(joint.LocalTranslation(), XVector3());
    EXPECT_NEAR(joint.RotationZ().Float(), 0, 1e-6F);
}

TEST_F(TransformAnimationTest, WithoutACurveOrAKeyNothingIsOverwritten) {
    EXPECT_FALSE(joint.SetRotationKeyframe(XVector3(), 0));
    EXPECT_FALSE(joint.SetTranslationKeyframe(XVector3(), 0));
    joint.InitializeAnimation(2);
    EXPECT_FALSE(joint.SetTranslationKeyframe(XVector3(), 3));
    EXPECT_FALSE(joint.SetTranslationKeyframe(XVector3(), -1));
    EXPECT_FALSE(joint.SetRotationKeyframe(XVector3(), 3));
    EXPECT_FALSE(XTransform().SetTranslationKeyframe(XVector3(), 0));
}

// ---- baking ----

TEST_F(TransformAnimationTest, BakingTheWorldFollowsTheSource) {
    XTransform const source = mover();
    XTransform target(scene().CreateObject(XTransform::TypeID));
    setTime(0.25F);
    target.BakeAnimation(source, 20, XTransform::WorldFrame);
    EXPECT_EQ(time().Time().Float(), 0.25F) << "the time is restored";
    EXPECT_EQ(target.TranslationX().Animation().KeyframeCount(), 20);
    for (float t : {1.F, 1.25F, 1.5F, 1.95F}) {
        setTime(t);
        EXPECT_VECTOR(target.LocalTranslation(), source.WorldTranslation());
        EXPECT_MATRIX(XMatrix(target.LocalRotation()), XMatrix(source.WorldRotation()));
    }
}

TEST_F(TransformAnimationTest, BakingTheLocalFrameTakesPreAndPostRotationOut) {
    XTransform const source = mover();
    offset(joint);
    joint.SetPreTranslation(0, 0, 0);
    joint.BakeAnimation(source, 20, XTransform::LocalFrame);
    for (float t : {1.F, 1.5F}) {
        setTime(t);
        EXPECT_MATRIX(joint.LocalMatrix().Matrix(), source.LocalMatrix().Matrix());
    }
}

TEST_F(TransformAnimationTest, TheLastSampleOfABakeIsDroppedOnPurpose) {
    joint.BakeAnimation(mover(), 20, XTransform::LocalFrame);
    EXPECT_LT(joint.TranslationX().Animation().KeyframeMaxX().Float(), 2);
}

TEST_F(TransformAnimationTest, AnUnknownFrameBakesKeysOfZero) {
    joint.SetTranslation(5, 5, 5).BakeAnimation(mover(), 20, 1);
    EXPECT_EQ(joint.TranslationX().Animation().Keyframe(3).OutputValue(), 0);
    EXPECT_TRUE(quaternionKey(3).IsIdentity());
}

TEST_F(TransformAnimationTest, OnlyWhatIsAskedForIsBaked) {
    joint.BakeAnimation(mover(), 20, 0, true, false);
    EXPECT_TRUE(joint.TranslationX().IsAnimated());
    EXPECT_FALSE(joint.RotationX().IsAnimated());
    joint.BakeAnimation(mover(), 20, 0, false, true);
    EXPECT_TRUE(joint.RotationX().IsAnimated());
    EXPECT_TRUE(joint.TranslationX().IsAnimated());
}

TEST_F(TransformAnimationTest, AnInvalidSourceLeavesTheTransformUnchanged) {
    joint.TranslationX().SetKeyframe(0, 1);
    joint.BakeAnimation(XTransform(), 20, 0);
    EXPECT_TRUE(joint.TranslationX().IsAnimated());
}

TEST_F(TransformAnimationTest, ABakeIsUndone) {
    XTransform const source = mover();
    scene().CommitTransient();
    scene().BeginChangeBlock();
    joint.BakeAnimation(source, 20, 0);
    scene().EndChangeBlock(L"bake");
    scene().Undo();
    EXPECT_FALSE(joint.IsAnimated());
    scene().Redo();
    EXPECT_TRUE(joint.IsAnimated());
}

}  // namespace
}  // namespace Tavo
