// What a push marks again: only what was read since the last one, and whatever reads came in between, all that is read
// afterwards is right.
#include "qel/sg/scene.h"
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace sg {
namespace {

struct FrameMarksTest : ::testing::Test {
    FrameMarksTest() { clocks = {makeClock(), makeClock()}; }

    Node* makeClock() { return scene.makeNode(L"SceneSettings", L"clock"); }
    static db::FloatAttribute& time(Node& clock) { return clock.at<db::FloatAttribute>(12); }
    // A chain of joints, each moved along X by a curve that gives its input.
    void addChain(Node& clock, int length) {
        Node* above = nullptr;
        for (int i = 0; i < length; ++i) {
            Node* joint = scene.makeNode(L"Joint", L"joint");
            if (above) above->addChild(*joint);
            drive(clock, *joint, TransformNode::Translation);
            joints.push_back(above = joint);
        }
    }
    void drive(Node& clock, Node& joint, int row) {
        Node* curve = scene.makeNode(L"Animation", L"curve");
        using A = AnimationNode;
        curve->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setValue({0, 1000});
        curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setValue({0, 1000});
        scene.connect(&time(clock), &curve->at<db::Attribute>(A::InputValue));
        scene.connect(&curve->at<db::Attribute>(A::OutputValue), &joint.at<db::Attribute>(row));
    }
    float world(Node& joint, int axis) {
        return joint.at<db::Matrix34Attribute>(TransformBaseNode::WorldMatrix).getValue().m[3][axis];
    }

    Scene scene;
    std::vector<Node*> clocks, joints;
};

TEST_F(FrameMarksTest, ReadingOneChainOfManyEvaluatesThatChainOnly) {
    for (int i = 0; i < 50; ++i) addChain(*clocks[0], 4);
    for (Node* joint : joints) world(*joint, 0);
    for (int frame = 1; frame < 20; ++frame) {
        std::uint64_t const before = scene.evaluations();
        time(*clocks[0]).setValue(float(frame));
        EXPECT_EQ(world(*joints[3], 0), 4.F * float(frame));
        EXPECT_EQ(scene.evaluations() - before, 8U) << "four curves and four joints";
    }
    EXPECT_EQ(world(*joints[199], 0), 4.F * 19);
}

TEST_F(FrameMarksTest, ANodeThatGoesWhileItIsLoggedIsForgotten) {
    scene.setMaxUndoItems(0);
    for (int i = 0; i < 20; ++i) addChain(*clocks[0], 4);
    for (int frame = 1; frame < 10; ++frame) {
        time(*clocks[0]).setValue(float(frame));
        Node* loose = scene.makeNode(L"Joint", L"loose");
        world(*loose, 0);
        world(*joints[0], 0);
        loose->remove();
        scene.commitTransient();
    }
    time(*clocks[0]).setValue(50);
    for (Node* joint : {joints[0], joints[79]}) EXPECT_GE(world(*joint, 0), 50);
}

// X follows the first clock and Y the second, so that both plans reach the same joints.
TEST_F(FrameMarksTest, RandomClocksAndReadsGiveWhatTheClocksSay) {
    unsigned const seed = 99;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto number = [&](std::size_t limit) { return std::size_t(random() % limit); };
    constexpr std::size_t length = 5;
    for (int i = 0; i < 12; ++i) addChain(*clocks[0], int(length));
    for (Node* joint : joints) drive(*clocks[1], *joint, TransformNode::Translation + 1);
    float now[2] = {0, 0};
    for (int step = 0; step < 4000; ++step) {
        if (number(3) == 0) {
            std::size_t const c = number(10) == 0;
            time(*clocks[c]).setValue(now[c] = float(number(100)));
        } else if (number(100) == 0) {
            addChain(*clocks[0], int(length));  // the structure changes: plans are made anew
            for (std::size_t i = joints.size() - length; i < joints.size(); ++i)
                drive(*clocks[1], *joints[i], TransformNode::Translation + 1);
        }
        std::size_t const i = number(joints.size());
        for (int axis = 0; axis < 2; ++axis)
            ASSERT_EQ(world(*joints[i], axis), float(i % length + 1) * now[axis]) << "step " << step;
    }
}

// A drag pushes one joint's outputs again and again, between them the clocks and other joints, and reads few or many.
// The second clock reaches only the lower half of each chain, so that plans overlap in part.
TEST_F(FrameMarksTest, RandomDragsAndReadsGiveWhatWasWritten) {
    unsigned const seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto number = [&](std::size_t limit) { return std::size_t(random() % limit); };
    constexpr std::size_t length = 40, half = length / 2;
    for (int i = 0; i < 3; ++i) addChain(*clocks[0], int(length));
    for (std::size_t i = 0; i < joints.size(); ++i)
        if (i % length >= half) drive(*clocks[1], *joints[i], TransformNode::Translation + 1);
    std::vector<float> z(joints.size());
    std::size_t dragged = 0;
    float now[2] = {0, 0};
    for (int step = 0; step < 4000; ++step) {
        if (number(20) == 0) dragged = number(joints.size());
        std::size_t const moved = number(10) == 0 ? number(joints.size()) : dragged;
        joints[moved]->at<db::FloatAttribute>(TransformNode::Translation + 2).setValue(z[moved] = float(number(100)));
        if (number(10) == 0) {
            std::size_t const c = number(5) > 0;
            time(*clocks[c]).setValue(now[c] = float(number(100)));
        }
        if (number(200) == 0) joints[number(joints.size())]->addChild(*scene.makeNode(L"Joint", L"leaf"));
        for (std::size_t reads = number(4) == 0 ? 30 : number(3); reads > 0; --reads) {
            std::size_t const i = number(joints.size()), first = i - i % length;
            float const sum = std::accumulate(z.begin() + long(first), z.begin() + long(i) + 1, 0.F);
            ASSERT_EQ(world(*joints[i], 2), sum) << "step " << step;
            ASSERT_EQ(world(*joints[i], 0), float(i % length + 1) * now[0]) << "step " << step;
            std::size_t const moving = i % length < half ? 0 : i % length - half + 1;
            ASSERT_EQ(world(*joints[i], 1), float(moving) * now[1]) << "step " << step;
        }
    }
}

}  // namespace
}  // namespace sg
