#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

struct Steps : XTrajectory {
    using XTrajectory::bendTranslationKeyframePosition_core;
    using XTrajectory::editTranslationKeyframePosition_noCheck;
    using XTrajectory::rotateTranslationKeyframePosition_noCheck;
    using XTrajectory::scaleTranslationKeyframePosition_noCheck;
    using XTrajectory::XTrajectory;
};

// Keys at x = 0, 1, 2, 3 with handles half a metre to both sides; no timing.
struct PositionEdits : TrajectoryTest {
    PositionEdits() {
        path.SmartEditing().SetEnumeration(2);
        for (float x : {0.F, 1.F, 2.F, 3.F}) path.AppendTranslationKeyframe({x, 0, 0}, {x + 0.5F, 0, 0});
    }
    std::vector<XVector3> positions() const {
        std::vector<XVector3> found;
        for (int i = 0; i < count(); ++i) found.push_back(at(i));
        return found;
    }
    static XMatrix turnedFrame() { return XMatrix(XVector3(0, 0, 1), 1.5707963F).SetTranslation(1, 0, 0); }
    float const quarter = 1.5707963F;
};

TEST_F(PositionEdits, MoveAKeyWithItsHandles) {
    path.EditTranslationKeyframePosition(1, {0, 2, 1});
    EXPECT_POINT(at(1), 1, 2, 1);
    EXPECT_POINT(in(1), 0.5F, 2, 1);
    EXPECT_POINT(out(1), 1.5F, 2, 1);
    EXPECT_POINT(at(2), 2, 0, 0);
}

TEST_F(PositionEdits, MoveEachKeyOfAListOnce) {
    path.EditTranslationKeyframePosition({0, 2, 2, 9, -1}, {0, 1, 0});
    EXPECT_POINT(at(0), 0, 1, 0);
    EXPECT_POINT(at(1), 1, 0, 0);
    EXPECT_POINT(at(2), 2, 1, 0);
}

TEST_F(PositionEdits, MoveByTheWeightsOfADropoff) {
    XDropOff const dropoff(2, XDropOff::RadialDropoff);
    path.EditTranslationKeyframePosition({0}, dropoff, {0, 1, 0});
    EXPECT_POINT(at(0), 0, 1, 0);
    EXPECT_POINT(at(1), 1, dropoff.ComputeWeight(1), 0);
    EXPECT_POINT(out(1), 1.5F, dropoff.ComputeWeight(1), 0);
    EXPECT_POINT(at(2), 2, 0, 0);
}

TEST_F(PositionEdits, MoveByGivenWeightsAsMuchAsByTheDropoffTheyCameFrom) {
    XDropOff const dropoff(2.5F);
    Floats weights;
    path.ComputeTranslationWeights({1}, dropoff, weights);
    State const start = state();
    path.EditTranslationKeyframePosition_interactive(weights, {1, 2, 3});
    State const given = state();
    scene().Undo();
    ASSERT_EQ(state(), start);
    path.EditTranslationKeyframePosition({1}, dropoff, {1, 2, 3});
    EXPECT_EQ(state(), given);
}

TEST_F(PositionEdits, MoveWithinABall) {
    path.EditTranslationKeyframePositionBallOfInfluence({0, 0, 0}, 1, XDropOff(1), {0, 1, 0});
    EXPECT_THAT(std::vector<float>({at(0).Y(), at(1).Y(), at(2).Y()}), ElementsAre(1, 1, 0));
}

TEST_F(PositionEdits, LeaveKeysOutsideTheDropoffByteIdentical) {
    for (XDropOff const& dropoff : {XDropOff(0.5F), XDropOff(0.5F, XDropOff::RadialDropoff)}) {
        State const others[] = {stateOf(key(0)), stateOf(key(2)), stateOf(key(3))};
        path.EditTranslationKeyframePosition({1}, dropoff, {0.1F, 2, 3});
        path.ScaleTranslationKeyframePosition({1}, dropoff, turnedFrame(), {1.3F, 2, 0.7F});
        path.RotateTranslationKeyframePosition({1}, dropoff, turnedFrame(), {0.3F, 0.1F, 0.7F});
        EXPECT_EQ(stateOf(key(0)), others[0]);
        EXPECT_EQ(stateOf(key(2)), others[1]);
        EXPECT_EQ(stateOf(key(3)), others[2]);
    }
}

TEST_F(PositionEdits, AWeightOfZeroLeavesAKeyUnwritten) {
    Floats const weights{0, 0, 0, 0};
    int const steps = undoCount();
    path.EditTranslationKeyframePosition_interactive(weights, {1, 1, 1});
    EXPECT_EQ(undoCount(), steps);
}

TEST_F(PositionEdits, MoreOrFewerWeightsThanKeysAreNoHarm) {
    path.EditTranslationKeyframePosition_interactive({1, 1, 1, 1, 1, 1, 1}, {0, 1, 0});
    EXPECT_POINT(at(3), 3, 1, 0);
    path.EditTranslationKeyframePosition_interactive({1}, {0, 1, 0});
    EXPECT_POINT(at(0), 0, 2, 0);
    EXPECT_POINT(at(1), 1, 1, 0);
    path.BendTranslationKeyframePosition_interactive({}, {0, 0, 1}, true);
    EXPECT_POINT(at(3), 3, 1, 0);
}

// ---- scale ----

TEST_F(PositionEdits, ScaleAlongTheAxesOfAFrameWithoutRotation) {
    XMatrix frame;
    frame.SetTranslation(1, 0, 0);
    path.ScaleTranslationKeyframePosition({2, 3}, frame, {3, 1, 1});
    EXPECT_POINT(at(2), 4, 0, 0);
    EXPECT_POINT(in(2), 2.5F, 0, 0);
    EXPECT_POINT(out(2), 5.5F, 0, 0);
    EXPECT_POINT(at(3), 7, 0, 0);
    EXPECT_POINT(at(1), 1, 0, 0);
}

TEST_F(PositionEdits, ScaleByAWeightScalesTheWayToOne) {
    path.ScaleTranslationKeyframePosition_interactive({0, 0, 0.5F, 0}, XMatrix(), {3, 1, 1});
    EXPECT_POINT(at(2), 4, 0, 0);
    EXPECT_POINT(out(2), 5, 0, 0);
}

TEST_F(PositionEdits, ScaleLeavesOffsetsOfHandlesInTheAxesOfATurnedFrame) {
    path.ScaleTranslationKeyframePosition(2, turnedFrame(), {1, 3, 1});  // its y axis is the negative x axis
    EXPECT_POINT(at(2), 4, 0, 0);
    EXPECT_POINT(out(2), 4, -1.5F, 0);  // half a metre along x is -y in the frame, and stays there: that is meant
    EXPECT_POINT(in(2), 4, 1.5F, 0);
}

TEST_F(PositionEdits, ScaleHasFormsForADropoffAndABall) {
    XDropOff const dropoff(2, XDropOff::RadialDropoff);
    path.ScaleTranslationKeyframePosition({3}, dropoff, XMatrix(), {2, 1, 1});
    EXPECT_POINT(at(3), 6, 0, 0);
    EXPECT_POINT(at(2), 2 + 2 * dropoff.ComputeWeight(1), 0, 0);
    path.ScaleTranslationKeyframePositionBallOfInfluence({0, 0, 0}, 1, XDropOff(0.5F), XMatrix(), {5, 1, 1});
    EXPECT_POINT(at(1), 5, 0, 0);
    EXPECT_POINT(at(3), 6, 0, 0);
}

// ---- rotate ----

TEST_F(PositionEdits, RotateAboutTheOriginOfTheFrame) {
    XMatrix frame;
    frame.SetTranslation(1, 0, 0);
    path.RotateTranslationKeyframePosition({2, 3}, frame, {0, 0, quarter});
    EXPECT_POINT(at(2), 1, 1, 0);
    EXPECT_POINT(out(2), 1, 1.5F, 0);
    EXPECT_POINT(at(3), 1, 2, 0);
}

TEST_F(PositionEdits, RotateInTheAxesOfTheFrame) {
    XMatrix const frame(XVector3(1, 0, 0), quarter);  // its z axis is the negative y axis
    path.RotateTranslationKeyframePosition(1, frame, {0, 0, quarter});
    EXPECT_POINT(at(1), 0, 0, 1);
}

TEST_F(PositionEdits, RotateByAWeightTurnsByThatShareOfTheAngles) {
    path.RotateTranslationKeyframePosition_interactive({0, 0.5F, 0, 0}, XMatrix(), {0, 0, 2 * quarter});
    EXPECT_POINT(at(1), 0, 1, 0);
}

TEST_F(PositionEdits, RotateHasFormsForADropoffAndABall) {
    path.RotateTranslationKeyframePosition({2}, XDropOff(0.5F), XMatrix(), {0, 0, quarter});
    EXPECT_POINT(at(2), 0, 2, 0);
    EXPECT_POINT(at(3), 3, 0, 0);
    path.RotateTranslationKeyframePositionBallOfInfluence({3, 0, 0}, 0.1F, XDropOff(1), XMatrix(), {0, 0, quarter});
    EXPECT_POINT(at(3), 0, 3, 0);
}

// ---- bend ----

TEST_F(PositionEdits, BendTurnsAllThatFollowsAboutTheKeyBefore) {
    path.BendTranslationKeyframePosition_interactive({0, 0, 1, 0}, {0, 0, quarter}, true);
    EXPECT_POINT(at(1), 1, 0, 0);
    EXPECT_POINT(at(2), 1, 1, 0);
    EXPECT_POINT(at(3), 1, 2, 0);
    EXPECT_POINT(out(3), 1, 2.5F, 0);
    EXPECT_POINT(out(1), 1.5F, 0, 0);
}

TEST_F(PositionEdits, BendBackwardsTurnsAllThatGoesBefore) {
    path.BendTranslationKeyframePosition_interactive({0, 1, 0, 0}, {0, 0, quarter}, false);
    EXPECT_POINT(at(3), 3, 0, 0);
    EXPECT_POINT(at(1), 2, -1, 0);
    EXPECT_POINT(at(0), 2, -2, 0);
}

TEST_F(PositionEdits, BendCurlsASquareShut) {
    path.BendTranslationKeyframePosition({0, 1, 2, 3}, XDropOff(0.5F), {0, 0, quarter}, true);
    EXPECT_POINT(at(0), 0, 0, 0);
    EXPECT_POINT(at(1), 0, 1, 0);
    EXPECT_POINT(at(2), -1, 1, 0);
    EXPECT_POINT(at(3), -1, 0, 0);
}

// Against the definition: one rotation of all that follows after the other.
TEST_F(PositionEdits, BendIsTheChainOfItsRotations) {
    for (bool forward : {true, false}) {
        XTrajectory other = scene().CreateObject(XTrajectory::TypeID);
        path.DeleteTranslationKeyframe({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
        Floats weights;
        for (int i = 0; i < 12; ++i) {
            XVector3 const p = point(2), h = point(2);
            path.AppendTranslationKeyframe(p, h);
            other.AppendTranslationKeyframe(p, h);
            weights.push_back(i % 3 == 0 ? 0 : number(0, 1));
        }
        XVector3 const rotation = point(0.4F);
        Steps(path).bendTranslationKeyframePosition_core(weights, rotation, forward);
        auto const keyOf = [&](int i) { return other.TranslationKeyframesArray().Attribute(i); };
        for (int k = 1; k < 12; ++k) {
            int const i = forward ? k : 11 - k, step = forward ? 1 : -1;
            XMatrix pivot;
            pivot.SetTranslation(keyOf(i - step).Attribute(2).Vector());
            for (int j = i; weights[std::size_t(i)] != 0 && j >= 0 && j < 12; j += step)
                Steps(other).rotateTranslationKeyframePosition_noCheck(j, pivot, rotation, weights[std::size_t(i)]);
        }
        for (int i = 0; i < 12; ++i)
            for (int part : {1, 2, 3})
                EXPECT_LE(slot(i).Attribute(part).Vector().DistanceTo(keyOf(i).Attribute(part).Vector()), 2e-5F);
    }
}

// ---- all of them ----

TEST_F(PositionEdits, TheStepsOfOneKeyAreWhatTheEditsDo) {
    State const start = state();
    path.ScaleTranslationKeyframePosition(1, turnedFrame(), {2, 3, 4});
    path.RotateTranslationKeyframePosition(1, turnedFrame(), {0.1F, 0.2F, 0.3F});
    path.EditTranslationKeyframePosition(1, {1, 2, 3});
    State const edited = state();
    for (int i = 0; i < 3; ++i) scene().Undo();
    ASSERT_EQ(state(), start);
    Steps steps(path);
    steps.scaleTranslationKeyframePosition_noCheck(1, turnedFrame(), {2, 3, 4}, 1);
    steps.rotateTranslationKeyframePosition_noCheck(1, turnedFrame(), {0.1F, 0.2F, 0.3F}, 1);
    steps.editTranslationKeyframePosition_noCheck(1, {1, 2, 3}, 1);
    EXPECT_EQ(state(), edited);
}

TEST_F(PositionEdits, ASingularFrameGivesNumbers) {
    XMatrix frame;
    frame.SetZero();
    path.ScaleTranslationKeyframePosition(1, frame, {2, 2, 2}).RotateTranslationKeyframePosition(2, frame, {1, 0, 0});
    for (int i : {1, 2}) EXPECT_TRUE(std::isfinite(at(i).Magnitude()));
}

TEST_F(PositionEdits, EachIsOneStepThatUndoTakesBack) {
    State const before = state();
    int const steps = undoCount();
    path.EditTranslationKeyframePosition({0, 1}, XDropOff(3), {1, 2, 3});
    path.BendTranslationKeyframePosition({1}, XDropOff(3), {0.2F, 0, 0}, true);
    path.RotateTranslationKeyframePositionBallOfInfluence({}, 1, XDropOff(3), XMatrix(), {0.2F, 0, 0});
    EXPECT_EQ(undoCount(), steps + 3);
    State const after = state();
    for (int i = 0; i < 3; ++i) scene().Undo();
    EXPECT_EQ(state(), before);
    for (int i = 0; i < 3; ++i) scene().Redo();
    EXPECT_EQ(state(), after);
}

TEST_F(PositionEdits, WhatFollowsAKeyIsToldWhenManyMoveAtOnce) {
    XTransform follower = scene().CreateObject(XTransform::TypeID);
    XVector3 const before = at(2);
    XAttribute to = follower.AddVectorAttribute(L"Follows");
    ASSERT_TRUE(to.ConnectInputTo(key(2).Attribute(2)));
    ASSERT_EQ(to.Vector(), before);
    path.EditTranslationKeyframePosition_interactive({1, 1, 1, 1}, {0, 3, 0});
    EXPECT_POINT(to.Vector(), 2, 3, 0);
    EXPECT_EQ(path.MaxArcLength().Float(), 3);
}

TEST_F(PositionEdits, AKeyThatAConnectionFeedsStaysWithItsSource) {
    XTransform leader = scene().CreateObject(XTransform::TypeID);
    ASSERT_TRUE(key(2).Attribute(2).ConnectInputTo(leader.AddVectorAttribute(L"Leads", XVector3(2, 7, 0))));
    path.EditTranslationKeyframePosition_interactive({1, 1, 1, 1}, {0, 3, 0});
    EXPECT_POINT(at(2), 2, 7, 0);
    EXPECT_POINT(at(3), 3, 3, 0);
}

}  // namespace
}  // namespace Tavo
