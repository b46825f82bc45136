#include "tests/app/fixture.h"
#include "tests/app/recorder.h"
#include <cmath>

namespace Tavo {
namespace {

using Events = std::vector<std::string>;

class Playback : public StartedApplication {
protected:
    Playback() {
        wxUtils::setClock([this] { return clock; });
    }
    ~Playback() override { wxUtils::setClock(nullptr); }

    static float now() { return time().Time().Float(); }
    static void at(float seconds) { time().Time().SetFloat(seconds); }
    static void range(float start, float end, int rate = 24) {
        time().PlaybackStartTime().SetFloat(start);
        time().PlaybackEndTime().SetFloat(end);
        time().FrameRate().SetInteger(rate);
        scene().CommitTransient();
    }
    void tickAfter(std::uint32_t milliseconds) {
        clock += milliseconds;
        scene().onAppMainLoopTick();
    }
    static bool isBlockOpen() { return scene().SceneGraph()->isInChangeBlock(); }

    std::uint32_t clock = 1000;
};

TEST_F(Playback, AdvancesWithTheClockAndWrapsAtTheEndOfTheRange) {
    range(1, 3);
    at(1.5f);
    scene().Play();
    for (auto const& [step, expected] : std::initializer_list<std::pair<std::uint32_t, float>>{
             {0, 1.5f}, {500, 2}, {1000, 3}, {250, 1.25f}, {250, 1.5f}, {2000, 1.5f}, {20001, 1.501f}}) {
        tickAfter(step);
        EXPECT_NEAR(now(), expected, 1e-5) << step;
    }
}

TEST_F(Playback, RunsBackwardsAndWrapsAtTheStartOfTheRange) {
    range(1, 3);
    at(1.5f);
    scene().PlayReverse();
    for (auto const& [step, expected] :
         std::initializer_list<std::pair<std::uint32_t, float>>{{250, 1.25f}, {250, 1}, {250, 2.75f}, {1250, 1.5f}}) {
        tickAfter(step);
        EXPECT_NEAR(now(), expected, 1e-5) << step;
    }
}

TEST_F(Playback, SurvivesTheWrapOfTheMillisecondCounter) {
    clock = 0xffffff00u;
    scene().Play();
    tickAfter(0x80);
    EXPECT_NEAR(now(), 0.128, 1e-6);
    tickAfter(0x100);
    EXPECT_LT(clock, 0x1000u);
    EXPECT_NEAR(now(), 0.384, 1e-6);
}

TEST_F(Playback, StaysInTheRangeAtAnyMoment) {
    range(0.25f, 1.75f, 30);
    at(1);
    for (bool forward : {true, false}) {
        forward ? scene().Play() : scene().PlayReverse();
        for (int i = 0; i < 1000; ++i) {
            tickAfter(7 + i % 31);
            ASSERT_GE(now(), 0.25f - 1e-5f) << i;
            ASSERT_LE(now(), 1.75f + 1e-5f) << i;
        }
        scene().Stop();
    }
}

TEST_F(Playback, HoldsATransientBlockOpenAndTellsEachFrameAsTransient) {
    Recorder recorder(true);
    scene().Play();
    EXPECT_TRUE(isBlockOpen());
    EXPECT_TRUE(scene().SceneGraph()->isTransient());
    tickAfter(100);
    EXPECT_EQ(recorder.take(), (Events{"Changed transient 0", "Time transient 0"}));
    scene().onAppMainLoopTick();
    EXPECT_EQ(recorder.take(), Events());
    scene().Stop();
    EXPECT_FALSE(isBlockOpen());
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(Playback, LeavesItsLastTimeAsOneStepThatTheNextUpdateMakes) {
    scene().Play();
    for (int i = 0; i < 10; ++i) tickAfter(20);
    scene().Stop();
    application().Update();
    EXPECT_EQ(undoCount(), 1);
    EXPECT_NEAR(now(), 0.2, 1e-6);
    scene().Undo();
    EXPECT_EQ(now(), 0);
}

TEST_F(Playback, PlayingAgainRestartsFromTheCurrentTime) {
    scene().Play();
    tickAfter(500);
    scene().Play();
    EXPECT_TRUE(scene().IsPlaying());
    tickAfter(250);
    EXPECT_NEAR(now(), 0.75, 1e-6);
    scene().PlayReverse();
    EXPECT_EQ(scene().SceneMode(), PlayingReverseMode);
    tickAfter(250);
    EXPECT_NEAR(now(), 0.5, 1e-6);
    scene().Stop();
    EXPECT_FALSE(isBlockOpen());
}

TEST_F(Playback, StoppingWithoutPlayingEndsNoBlock) {
    for (XSceneMode mode : {InteractiveMode, ReadOnlyMode}) {
        scene().SetSceneMode(mode);
        scene().BeginChangeBlock();
        scene().Stop();
        EXPECT_TRUE(isBlockOpen());
        EXPECT_EQ(scene().SceneMode(), mode);
        scene().EndChangeBlock();
    }
}

TEST_F(Playback, SetSceneModeGoesThroughPlayAndStop) {
    struct Case {
        XSceneMode mode;
        bool playing, simulating, block;
    };
    for (Case const& c : {Case{PlayingForwardMode, true, false, true},
                          {PlayingReverseMode, true, false, true},
                          {ReadOnlyMode, false, false, false},
                          {PlayingForwardMode, true, false, true},
                          {SimulationMode, false, true, false},
                          {InteractiveMode, false, false, false}}) {
        scene().SetSceneMode(c.mode);
        EXPECT_EQ(scene().SceneMode(), c.mode);
        EXPECT_EQ(scene().IsPlaying(), c.playing) << c.mode;
        EXPECT_EQ(scene().IsSimulating(), c.simulating) << c.mode;
        EXPECT_EQ(isBlockOpen(), c.block) << c.mode;
    }
}

TEST_F(Playback, StoppingASimulationEndsItsBlock) {
    scene().SetSceneMode(SimulationMode);
    scene().BeginChangeBlock(true);
    scene().Stop();
    EXPECT_FALSE(isBlockOpen());
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
}

TEST_F(Playback, TheMainLoopTicksRegisteredScenes) {
    wxUtils::AppMainLoop loop;
    Mirrel::gMirrel.mainLoop = &loop;
    application().AddScene();
    scene().Play();
    clock += 500;
    loop.tick();
    EXPECT_NEAR(now(), 0.5, 1e-6);
    EXPECT_EQ(application().GetScene(0).SceneSettings().Time().Float(), 0);
    EXPECT_EQ(scene().getAppMainLoopTickPriority(), 1);
    scene().Stop();
    application().RemoveScene(1);
    clock += 500;
    loop.tick();
    Mirrel::gMirrel.mainLoop = nullptr;
}

TEST_F(Playback, ANewDocumentEndsIt) {
    scene().Play();
    scene().New();
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
    EXPECT_FALSE(isBlockOpen());
    EXPECT_EQ(undoCount(), 0);
}

// ---- frame stepping ----

struct Step {
    float start, end;
    int rate;
    float from, to;
};

TEST_F(Playback, TheNextFrameIsAWholeOneWithinTheRange) {
    float const frame = 1.0f / 24;
    for (Step const& s : {Step{0, 3, 24, 0, frame},
                          {0, 3, 24, 0.01f, frame},
                          {0, 3, 24, frame, 2 * frame},
                          {0, 3, 24, 0.99999f * frame, 2 * frame},  // it nearly stands on that frame
                          {0, 3, 24, 1.00001f * frame, 2 * frame},
                          {0, 3, 24, 0.99f * frame, frame},
                          {0, 3, 24, 71 * frame, 3},
                          {0, 3, 24, 3, frame},  // the ends of the range are one moment: one step past the start
                          {1, 3, 24, 3, 1 + frame},
                          {0, 0.7f, 30, 20 / 30.0f, 0.7f},  // 0.7f is a little less than frame 21
                          {0, 0.7f, 30, 0.7f, 1 / 30.0f},
                          {0, 23 * frame, 24, 22 * frame, 23 * frame},  // an end that rounding has put before its frame
                          {0.5f * frame, 2.5f * frame, 24, 2 * frame, frame},  // an end between frames is passed over
                          {0, 3, 24, 2.999f, 3},
                          {-1, 1, 24, -0.5f * frame, 0},
                          {0, 3, 24, 10, 10 + frame - 3},  // outside to begin with
                          {0, 3, 1, 1.5f, 2}}) {
        range(s.start, s.end, s.rate);
        at(s.from);
        scene().GoToNextFrame();
        EXPECT_NEAR(now(), s.to, 1e-5) << s.start << " " << s.end << " " << s.rate << " " << s.from;
    }
}

TEST_F(Playback, ThePreviousFrameIsTheMirror) {
    float const frame = 1.0f / 24;
    for (Step const& s : {Step{0, 3, 24, 3, 71 * frame},
                          {0, 3, 24, 1.01f, 1},
                          {0, 3, 24, 2 * frame, frame},
                          {0, 3, 24, 2.00001f * frame, frame},
                          {0, 3, 24, 1.99999f * frame, frame},
                          {0, 3, 24, frame, 0},
                          {0, 3, 24, 0, 3 - frame},
                          {1, 3, 24, 1, 3 - frame},
                          {0.5f * frame, 2.5f * frame, 24, frame, 2 * frame},
                          {0, 3, 24, 0.001f, 0},
                          {-1, 1, 24, 0, -frame},
                          {0, 3, 24, -1, -1 - frame + 3}}) {
        range(s.start, s.end, s.rate);
        at(s.from);
        scene().GoToPreviousFrame();
        EXPECT_NEAR(now(), s.to, 1e-5) << s.start << " " << s.end << " " << s.rate << " " << s.from;
    }
}

// The end of the range and its start are one moment of the cycle: of the two, the way forward shows the end and the way
// back the start.
TEST_F(Playback, SteppingThroughTheRangeVisitsEveryFrameOnceACycle) {
    for (int rate : {1, 24, 25, 30, 50, 60, 120}) {
        range(0, 3, rate);
        at(0);
        for (int i = 1; i <= 3 * rate; ++i) {
            scene().GoToNextFrame();
            ASSERT_NEAR(now() * float(rate), float(i), 1e-3) << rate;
        }
        scene().GoToNextFrame();
        EXPECT_NEAR(now() * float(rate), 1, 1e-3) << rate;
        for (int i = 0; i > -3 * rate; --i) {
            scene().GoToPreviousFrame();
            ASSERT_NEAR(now() * float(rate), float(i == 0 ? 0 : 3 * rate + i), 1e-3) << rate;
        }
    }
}

TEST_F(Playback, FirstAndLastFrameAreTheEndsOfTheRange) {
    range(0.5f, 2.5f);
    scene().GoToLastFrame();
    EXPECT_EQ(now(), 2.5f);
    scene().GoToFirstFrame();
    EXPECT_EQ(now(), 0.5f);
}

TEST_F(Playback, EveryStepStopsPlayback) {
    for (auto const step :
         {&XScene::GoToFirstFrame, &XScene::GoToPreviousFrame, &XScene::GoToNextFrame, &XScene::GoToLastFrame}) {
        scene().Play();
        (scene().*step)();
        EXPECT_FALSE(scene().IsPlaying());
        EXPECT_FALSE(isBlockOpen());
    }
}

TEST_F(Playback, WithoutARateOrARangeStepsAndTicksDoNothing) {
    struct Case {
        float start, end;
        int rate;
    };
    for (Case const& c : {Case{0, 3, 0}, {1, 1, 24}, {2, 1, 24}}) {
        range(c.start, c.end, c.rate);
        at(0.77f);
        scene().GoToNextFrame().GoToPreviousFrame();
        EXPECT_EQ(now(), 0.77f);
        scene().Play();
        tickAfter(500);
        EXPECT_EQ(now(), 0.77f);
        scene().Stop();
    }
}

TEST_F(Playback, TimeCanBeChangedInTheReadOnlyMode) {
    scene().SetSceneMode(ReadOnlyMode);
    scene().GoToLastFrame();
    EXPECT_EQ(now(), 3);
}

}  // namespace
}  // namespace Tavo
