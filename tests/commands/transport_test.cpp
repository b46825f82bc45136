// Playback, stepping, and moving through the history.
#include "tests/commands/fixture.h"

namespace Tavo {
namespace {

class Transport : public CommandTest {
protected:
    Transport() {
        time().FrameRate().SetInteger(10);
        time().PlaybackStartTime().SetFloat(0);
        time().PlaybackEndTime().SetFloat(1);
        scene().CommitTransient();
        scene().SceneGraph()->ClearUndoHistory();
    }
    static float now() { return time().Time().Float(); }
    static void go(float seconds) { time().Time().SetFloat(seconds); }
};

TEST_F(Transport, PlaysForwardBackwardAndStops) {
    run(L"Play");
    EXPECT_EQ(scene().SceneMode(), PlayingForwardMode);
    run(L"PlayReverse");
    EXPECT_EQ(scene().SceneMode(), PlayingReverseMode);
    run(L"Stop");
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
    run(L"Stop");
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
}

TEST_F(Transport, PlayToggleStopsWhateverRuns) {
    run(L"PlayToggle");
    EXPECT_EQ(scene().SceneMode(), PlayingForwardMode);
    run(L"PlayToggle");
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
    run(L"PlayReverse");
    run(L"PlayToggle");
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
    scene().BeginChangeBlock(true);
    scene().SetSceneMode(SimulationMode);
    run(L"PlayToggle");
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
}

TEST_F(Transport, GoesToTheEndsAndByFramesAndStopsPlaybackFirst) {
    struct Step {
        wchar_t const* command;
        float from, to;
    };
    for (Step const& step :
         {Step{L"GoToFirstFrame", 0.25f, 0}, Step{L"GoToLastFrame", 0.25f, 1}, Step{L"GoToNextFrame", 0.25f, 0.3f},
          Step{L"GoToNextFrame", 0.3f, 0.4f}, Step{L"GoToNextFrame", 1, 0.1f}, Step{L"GoToPreviousFrame", 0.25f, 0.2f},
          Step{L"GoToPreviousFrame", 0.2f, 0.1f}, Step{L"GoToPreviousFrame", 0, 0.9f}}) {
        SCOPED_TRACE(Qelutils::toUtf8(step.command));
        go(step.from);
        run(L"Play");
        run(step.command);
        EXPECT_EQ(scene().SceneMode(), InteractiveMode);
        EXPECT_NEAR(now(), step.to, 1e-6f);
    }
}

TEST_F(Transport, ATimeThatWasGoneToIsNoStepAndJoinsTheNext) {
    go(0.25f);
    scene().CommitTransient();
    scene().SceneGraph()->ClearUndoHistory();
    run(L"GoToLastFrame");
    EXPECT_EQ(undoCount(), 0);
    run(L"CreateTransform");
    EXPECT_EQ(undoCount(), 1);
    undo();
    EXPECT_EQ(now(), 0.25f);
    redo();
    EXPECT_EQ(now(), 1);
}

TEST_F(Transport, UndoTakesAStepBackAndAddsNoneSoThatRedoIsThere) {
    run(L"CreateTransform");
    run(L"CreateTransform");
    XObject const made = selected().front();
    undo();
    EXPECT_FALSE(made.IsValid());
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(scene().SceneGraph()->getRedoCount(), 1u);
    redo();
    EXPECT_TRUE(made.IsValid());
    EXPECT_EQ(undoCount(), 2);
    EXPECT_EQ(selected(), std::vector<XObject>{made});
    redo();
    for (int i = 0; i < 3; ++i) undo();
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(stepCount(), 2);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Transport, TheHistoryDoesNotMoveWhilePlaying) {
    run(L"CreateTransform");
    run(L"Play");
    undo();
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(scene().SceneMode(), PlayingForwardMode);
    run(L"Stop");
    undo();
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(Transport, ActsOnTheSceneThatIsAskedOnly) {
    XScene& first = scene();
    application().AddScene();
    first.RunCommand(L"Play");
    EXPECT_TRUE(first.IsPlaying());
    EXPECT_FALSE(scene().IsPlaying());
    first.RunCommand(L"Stop");
    first.RunCommand(L"GoToLastFrame");
    EXPECT_EQ(first.SceneSettings().Time().Float(), 1);
    EXPECT_NE(now(), 1);
}

}  // namespace
}  // namespace Tavo
