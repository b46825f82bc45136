// Motion that becomes keys: what the angles do from key to key, and what gets a curve at all.
#include "hosts/tavo/baking.h"
#include "hosts/tavo/session.h"
#include "tavo/animation/animation.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using namespace Tavo;

class Bakings : public testing::Test {
protected:
    Bakings() {
        session.scene().New();
        joint = session.scene().CreateObject(XJoint::TypeID);
    }
    static XAttribute channel(XJoint const& of, int number) {
        int const first = number < 3 ? sg::TransformNode::Translation : sg::TransformNode::Rotation;
        return of.Attribute(first + number % 3);
    }
    void set(int number, float value) const { channel(joint, number).SetFloat(value); }
    // One axis turns on and on, the others stand.
    static float angle(int axis, int moving, int step) {
        return axis == moving ? 0.3F * float(step) : axis == 0 ? 0.2F : axis == 1 ? -0.15F : 0.1F;
    }
    static std::vector<float> keys(XJoint const& of, int number) {
        Qelutils::Vector<float> values;
        if (XAnimation const curve = channel(of, number).Animation(); curve.IsValid())
            curve.KeyframeOutputValues().Floats(values);
        return {values.begin(), values.end()};
    }
    Session session;
    XJoint joint;
};

constexpr int steps = 50;  // more than two full turns

TEST_F(Bakings, AnglesGoOnThroughFullTurnsInEveryOrderAndAboutEveryAxis) {
    for (int order = 0; order < 6; ++order)
        for (int moving = 0; moving < 3; ++moving) {
            joint.RotationEulerOrder().SetEnumeration(order);
            Baking baking({joint});
            for (int step = 0; step < steps; ++step) {
                for (int axis = 0; axis < 3; ++axis) set(3 + axis, angle(axis, moving, step));
                baking.sample(float(step));
            }
            baking.write();
            std::vector<float> const turning = keys(joint, 3 + moving);
            ASSERT_EQ(turning.size(), std::size_t(steps)) << "order " << order << ", axis " << moving;
            for (int step = 0; step < steps; ++step)
                EXPECT_NEAR(turning[std::size_t(step)], angle(moving, moving, step), 1e-3)
                    << "order " << order << ", axis " << moving;
            for (int axis : {(moving + 1) % 3, (moving + 2) % 3})
                for (float const value : keys(joint, 3 + axis)) EXPECT_NEAR(value, angle(axis, moving, 0), 1e-3);
            for (int number = 3; number < 6; ++number) channel(joint, number).ClearAnimation();
        }
}

TEST_F(Bakings, TheOrderIsThatOfTheBeginningWhateverDrivesTheJointMeanwhile) {
    joint.RotationEulerOrder().SetEnumeration(4);
    for (int axis = 0; axis < 3; ++axis) set(3 + axis, angle(axis, -1, 0));
    Baking baking({joint});
    XMatrix const pose = joint.LocalMatrix().Matrix();
    joint.RotationEulerOrder().SetEnumeration(0);
    joint.SetLocalMatrix(pose);
    baking.sample(0);
    baking.write();
    EXPECT_EQ(joint.RotationEulerOrder().Enumeration(), 4);
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(channel(joint, 3 + axis).Float(), angle(axis, -1, 0), 1e-5);
}

TEST_F(Bakings, WhatStandsBeforeAndAfterTheRotationStaysApart) {
    joint.PreRotationY().SetFloat(0.7F);
    joint.PostRotationZ().SetFloat(-0.4F);
    joint.PreTranslationX().SetFloat(2);
    for (int number = 0; number < 6; ++number) set(number, 0.1F * float(number + 1));
    Baking baking({joint});
    baking.sample(0);
    for (int number = 0; number < 6; ++number) set(number, 0);
    baking.write();
    for (int number = 0; number < 6; ++number)
        EXPECT_NEAR(channel(joint, number).Float(), 0.1F * float(number + 1), 1e-5) << number;
}

TEST_F(Bakings, AChannelThatStandsStillGetsItsValueAndNoCurve) {
    set(0, 3);
    Baking baking({joint});
    for (int step = 0; step < 4; ++step) {
        set(1, float(step));
        baking.sample(float(step));
    }
    channel(joint, 0).CreateAnimation().SetKeyframe(0, 7, LinearInterpolation);
    baking.write();
    for (int number : {0, 2, 3, 4, 5}) EXPECT_FALSE(channel(joint, number).Animation().IsValid()) << number;
    EXPECT_EQ(keys(joint, 1), (std::vector<float>{0, 1, 2, 3}));
    EXPECT_EQ(channel(joint, 0).Float(), 3);
}

TEST_F(Bakings, KeysStandAtTheVeryTimesOfTheSamples) {
    Baking baking({joint});
    std::vector<float> times;
    for (int step = 0; step < 40; ++step) {
        times.push_back(float(2 + step * 0.0333333));
        set(2, float(step % 7));
        baking.sample(times.back());
    }
    EXPECT_EQ(baking.times(), times);
    baking.write();
    Qelutils::Vector<float> written;
    channel(joint, 2).Animation().KeyframeInputValues().Floats(written);
    EXPECT_EQ(std::vector<float>(written.begin(), written.end()), times);
    session.settings().Time().SetFloat(times[20]);
    EXPECT_EQ(channel(joint, 2).Float(), 20 % 7);
}

TEST_F(Bakings, EachJointHasItsOwnKeys) {
    XJoint other(session.scene().CreateObject(XJoint::TypeID));
    Baking baking({joint, other});
    for (int step = 0; step < 3; ++step) {
        set(0, float(step));
        channel(other, 0).SetFloat(float(-step));
        baking.sample(float(step));
    }
    baking.write();
    EXPECT_EQ(keys(joint, 0), (std::vector<float>{0, 1, 2}));
    EXPECT_EQ(keys(other, 0), (std::vector<float>{0, -1, -2}));
}

TEST_F(Bakings, WithoutSamplesNothingChanges) {
    set(0, 5);
    channel(joint, 1).CreateAnimation().SetKeyframe(0, 7, LinearInterpolation);
    Baking({joint}).write();
    EXPECT_EQ(channel(joint, 0).Float(), 5);
    EXPECT_TRUE(channel(joint, 1).Animation().IsValid());
}

}  // namespace
}  // namespace host
