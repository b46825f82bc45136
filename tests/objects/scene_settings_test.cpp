#include "tests/app/fixture.h"

namespace Tavo {
namespace {

class SceneSettings : public StartedApplication {
protected:
    static void setRate(int rate) { time().FrameRate().SetInteger(rate); }
};

TEST_F(SceneSettings, HaveTheirDefaultsAtTheirIndices) {
    struct Number {
        int index;
        wchar_t const* name;
        float value;
    };
    for (Number const& n : {Number{12, L"Time", 0},
                            {13, L"StartTime", 0},
                            {14, L"EndTime", 3},
                            {15, L"PlaybackStartTime", 0},
                            {16, L"PlaybackEndTime", 3},
                            {17, L"SimulationRate", 60},
                            {22, L"GravityX", 0},
                            {23, L"GravityY", -9.81f},
                            {24, L"GravityZ", 0}}) {
        EXPECT_EQ(time().Attribute(n.index).Name(), n.name);
        EXPECT_EQ(time().Attribute(n.index).Float(), n.value) << n.index;
    }
    for (Number const& n : {Number{11, L"FrameRate", 24},
                            {18, L"SolverAccuracy", 100},
                            {19, L"SolverSubsteps", 10},
                            {31, L"ActiveTool", 1}}) {
        EXPECT_EQ(time().Attribute(n.index).Name(), n.name);
        EXPECT_EQ(time().Attribute(n.index).Integer(), n.value) << n.index;
    }
    for (Number const& n : {Number{8, L"LinearUnits", 2},
                            {9, L"MassUnits", 1},
                            {10, L"AngularUnits", 0},
                            {28, L"ScriptingLanguage", 0}}) {
        EXPECT_EQ(time().Attribute(n.index).Name(), n.name);
        EXPECT_EQ(time().Attribute(n.index).Enumeration(), n.value) << n.index;
    }
    EXPECT_TRUE(time().ContinuousCollisions().Boolean());
    EXPECT_TRUE(time().PlayDuringSimulation().Boolean());
    for (int index : {25, 26, 27}) EXPECT_EQ(time().Attribute(index).String(), L"");
    for (int index : {29, 30}) EXPECT_EQ(time().Attribute(index).ArraySize(), 0);
}

TEST_F(SceneSettings, InitializeBringsTheDefaultsBack) {
    XSceneSettings settings = time();
    settings.FrameRate().SetInteger(60);
    settings.GravityY().SetFloat(1);
    settings.StartScript().SetString(L"print()");
    settings.Initialize();
    EXPECT_EQ(settings.FrameRate().Integer(), 24);
    EXPECT_EQ(settings.GravityY().Float(), -9.81f);
    EXPECT_EQ(settings.StartScript().String(), L"");
}

TEST_F(SceneSettings, FramesAreAViewOfTime) {
    XSceneSettings settings = time();
    EXPECT_EQ(settings.EndFrame(), 72);
    EXPECT_EQ(settings.PlaybackEndFrame(), 72);
    settings.SetStartFrame(12).SetEndFrame(48).SetPlaybackStartFrame(24).SetPlaybackEndFrame(36);
    EXPECT_EQ(settings.StartTime().Float(), 0.5f);
    EXPECT_EQ(settings.EndTime().Float(), 2);
    EXPECT_EQ(settings.PlaybackStartTime().Float(), 1);
    EXPECT_EQ(settings.PlaybackEndTime().Float(), 1.5f);
}

TEST_F(SceneSettings, SettingTheFrameStaysWithinStartAndEnd) {
    struct Case {
        float frame, expected;
    };
    time().SetStartFrame(-12);
    for (Case const& c : {Case{36, 1.5f}, {72, 3}, {73, 3}, {1e9f, 3}, {-12, -0.5f}, {-13, -0.5f}, {0.5f, 0.5f / 24}}) {
        time().SetFrame(c.frame);
        EXPECT_EQ(time().Time().Float(), c.expected) << c.frame;
    }
}

TEST_F(SceneSettings, WithoutAFrameRateNoFrameIsSet) {
    setRate(0);
    XSceneSettings settings = time();
    settings.SetFrame(10).SetStartFrame(10).SetEndFrame(10).SetPlaybackStartFrame(10).SetPlaybackEndFrame(10);
    EXPECT_EQ(settings.Time().Float(), 0);
    EXPECT_EQ(settings.StartTime().Float(), 0);
    EXPECT_EQ(settings.EndTime().Float(), 3);
    EXPECT_EQ(settings.Frame(), 0);
}

TEST_F(SceneSettings, TheSimulationStepIsASixtiethWithoutARate) {
    EXPECT_FLOAT_EQ(time().SimulationTimeStep(), 1.0f / 60);
    time().SimulationRate().SetFloat(100);
    EXPECT_FLOAT_EQ(time().SimulationTimeStep(), 0.01f);
    for (float rate : {0.0f, -1.0f}) {
        time().SimulationRate().SetFloat(rate);
        EXPECT_EQ(time().SimulationTimeStep(), 0.016666668f) << rate;
    }
}

TEST_F(SceneSettings, OnlyTheScenesOwnRefuseDeletionAndRenaming) {
    XObject const other = scene().CreateObject(XSceneSettings::TypeID);
    EXPECT_FALSE(time().SupportsDeletion());
    EXPECT_FALSE(time().SupportsRenaming());
    EXPECT_TRUE(other.SupportsDeletion());
    EXPECT_TRUE(other.SupportsRenaming());
    EXPECT_TRUE(application().Settings().SceneSettings().SupportsDeletion());
}

}  // namespace
}  // namespace Tavo
