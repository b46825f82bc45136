#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

// Four metres in four seconds.
struct MotionReport : TrajectoryTest {
    MotionReport() {
        append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
        sample();
        connectTiming({0, 1, 2, 3, 4}, {0, 0.25F, 0.5F, 0.75F, 1});
    }
};

TEST_F(MotionReport, OfAnEditThatKeepsTheFeelShowsTimeAndNoSpeed) {
    XMotionReport const report(path);
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    XMotionChange const change = report.Change();
    EXPECT_EQ(change.keysMoved, 1);
    EXPECT_NEAR(change.speed.largest, 0, 1e-5F);
    EXPECT_FLOAT_EQ(change.time.largest, 4);
    EXPECT_FLOAT_EQ(change.time.mean, 0.8F);
    EXPECT_FLOAT_EQ(change.progress.largest, 0.5F) << "at four seconds half of the path is gone";
}

TEST_F(MotionReport, OfAnEditThatKeepsTheConstraintsShowsSpeedAndNoTime) {
    path.SmartEditing().SetEnumeration(1);
    XMotionReport const report(path);
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    XMotionChange const change = report.Change();
    EXPECT_EQ(change.time.largest, 0);
    EXPECT_FLOAT_EQ(change.speed.largest, 4);
    EXPECT_FLOAT_EQ(change.speed.mean, 1);
    EXPECT_FLOAT_EQ(change.progress.largest, 0.375F);
    EXPECT_FLOAT_EQ(change.progress.mean, 0.15F);
}

TEST_F(MotionReport, WithoutAnEditThereIsNothingToTell) {
    XMotionChange const change = XMotionReport(path).Change();
    EXPECT_EQ(change.keysMoved, 0);
    EXPECT_EQ(change.progress.largest + change.speed.largest + change.time.largest, 0);
    EXPECT_THAT(change.keysHeld, IsEmpty());
}

TEST_F(MotionReport, SaysWhichGuardHeldHowManyKeys) {
    path.AddSafeGuard({0, 0, 0}, 1.5F, XDropOff(0)).AddSafeGuard({4, 0, 0}, 0.5F, XDropOff(0)).UseSafeGuards(true);
    XMotionReport const report(path);
    path.EditTranslationKeyframePosition({0, 1, 2, 3, 4}, XDropOff(0.5F), {0, 1, 0});
    XMotionChange const change = report.Change();
    EXPECT_THAT(change.keysHeld, ElementsAre(2, 1));
    EXPECT_EQ(change.keysMoved, 2);
    path.UseSafeGuards(false);
    EXPECT_THAT(report.Change().keysHeld, IsEmpty());
}

TEST_F(MotionReport, CoversAWholeDragAndItsUndo) {
    XMotionReport const report(path);
    scene().BeginChangeBlock();
    for (int i = 0; i < 10; ++i) path.EditTranslationKeyframePosition_interactive({0, 0, 1, 0, 0}, {0, 0.1F, 0});
    scene().EndChangeBlock(L"Drag");
    EXPECT_EQ(report.Change().keysMoved, 1);
    EXPECT_GT(report.Change().time.largest, 0);
    scene().Undo();
    EXPECT_EQ(report.Change().keysMoved, 0);
    EXPECT_EQ(report.Change().time.largest, 0);
}

TEST_F(MotionReport, WithoutTimingTellsOfTheKeysAlone) {
    path.InputValue().DisconnectInput();
    XMotionReport const report(path);
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    XMotionChange const change = report.Change();
    EXPECT_EQ(change.keysMoved, 1);
    EXPECT_EQ(change.progress.largest + change.speed.largest + change.time.largest, 0);
}

TEST_F(MotionReport, KeysThatCameOrWentAreLeftOut) {
    XMotionReport const report(path);
    path.DeleteTranslationKeyframe(4);
    curve.DeleteKeyframeByAttributeIndex(4);
    EXPECT_EQ(report.Change().keysMoved, 0);
    EXPECT_EQ(XMotionReport(XTrajectory()).Change().keysMoved, 0);
}

}  // namespace
}  // namespace Tavo
