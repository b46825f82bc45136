#include "tests/app/fixture.h"

namespace Tavo {
namespace {

// A root and two joints below each other, of which each has a curve over time.
class SceneAnimation : public StartedApplication {
protected:
    SceneAnimation() {
        for (XJoint* joint : {&root, &middle, &leaf, &beside}) {
            *joint = XJoint(scene().CreateObject(XJoint::TypeID));
            joint->TranslationX().SetKeyframe(0, 1);
            joint->TranslationX().SetKeyframe(2, 3);
        }
        middle.SetParent(root);
        leaf.SetParent(middle);
        time().Time().SetFloat(1);
        scene().CommitTransient();
    }
    static bool isAnimated(XJoint const& joint) { return joint.TranslationX().IsAnimated(); }
    static std::size_t curves() {
        Qelutils::Vector<XObject> found;
        scene().Objects(XAnimation::TypeID, IsObjectType, found);
        return found.size();
    }

    XJoint root, middle, leaf, beside;
};

TEST_F(SceneAnimation, ClearingTakesTheCurvesOfTheObjectAndOfAllBelowIt) {
    ASSERT_EQ(curves(), 4u);
    scene().ClearAnimation(root);
    EXPECT_FALSE(isAnimated(root) || isAnimated(middle) || isAnimated(leaf));
    EXPECT_TRUE(isAnimated(beside));
    EXPECT_EQ(curves(), 1u);
}

TEST_F(SceneAnimation, ClearingLeavesWhatStandsAbove) {
    scene().ClearAnimation(middle);
    EXPECT_TRUE(isAnimated(root) && isAnimated(beside));
    EXPECT_FALSE(isAnimated(middle) || isAnimated(leaf));
}

TEST_F(SceneAnimation, ChannelsKeepTheValueOfTheMoment) {
    scene().ClearAnimation(root);
    for (XJoint const& joint : {root, middle, leaf}) EXPECT_FLOAT_EQ(joint.TranslationX().Float(), 2);
    time().Time().SetFloat(2);
    EXPECT_FLOAT_EQ(root.TranslationX().Float(), 2);
    EXPECT_FLOAT_EQ(beside.TranslationX().Float(), 3);
}

TEST_F(SceneAnimation, DisconnectingLeavesTheCurvesInTheDocument) {
    XAnimation const curve = leaf.TranslationX().Animation();
    scene().DisconnectAnimation(root);
    EXPECT_FALSE(isAnimated(root) || isAnimated(middle) || isAnimated(leaf));
    EXPECT_TRUE(isAnimated(beside));
    EXPECT_EQ(curves(), 4u);
    EXPECT_TRUE(curve.IsValid());
    EXPECT_EQ(curve.KeyframeCount(), 2);
    EXPECT_FALSE(curve.HasOutputAttributes());
}

TEST_F(SceneAnimation, WhatIsDrivenByNoCurveStaysConnected) {
    beside.TranslationX().ConnectOutputTo(leaf.TranslationY());
    scene().DisconnectAnimation(root).ClearAnimation(root);
    EXPECT_TRUE(leaf.TranslationY().IsConnectedInput());
}

TEST_F(SceneAnimation, TheCallerProvidesTheBlockThatMakesOneStep) {
    static std::wstring const label = L"Clear";
    for (auto const edit : {&XScene::ClearAnimation, &XScene::DisconnectAnimation}) {
        int const before = undoCount();
        {
            XChangeBlock const block(scene(), label);
            (scene().*edit)(root);
        }
        EXPECT_EQ(undoCount(), before + 1);
        scene().Undo();
        EXPECT_TRUE(isAnimated(root) && isAnimated(middle) && isAnimated(leaf));
    }
}

TEST_F(SceneAnimation, WithoutAnObjectNothingHappens) {
    scene().ClearAnimation(XObject()).DisconnectAnimation(XObject());
    EXPECT_EQ(curves(), 4u);
    EXPECT_TRUE(isAnimated(root) && isAnimated(leaf));
}

}  // namespace
}  // namespace Tavo
