#include "qel/lua/lua_frame.h"
#include "qel/lua/lua_state.h"
#include "tests/app/fixture.h"
#include "tests/app/recorder.h"
#include <wx/string.h>

namespace Tavo {
namespace {

using Events = std::vector<std::string>;

class Application : public StartedApplication {
protected:
    static XObject selectSomething() {
        XObject joint = scene().CreateObject(XJoint::TypeID);
        scene().Selection().Select(joint);
        return joint;
    }
    static int addScenes(int count) {
        for (int i = 0; i < count; ++i) application().AddScene();
        return int(application().SceneCount());
    }
};

TEST(ApplicationStart, RegistersTheSettingsAndThenOneSceneWithoutContent) {
    RecordingLog log;
    Recorder recorder;
    XApplication& application = XApplication::Instance();
    application.Startup(nullptr, &log, L"/opt/host/");
    EXPECT_EQ(recorder.take(), (Events{"SettingsRegistered", "Registered 0"}));
    EXPECT_EQ(application.SceneCount(), 1u);
    EXPECT_EQ(application.ActiveSceneIndex(), 0);
    EXPECT_EQ(application.ExecutableDir(), L"/opt/host/");
    EXPECT_FALSE(application.ActiveScene().RootObject().IsValid());
    EXPECT_EQ(application.ActiveScene().SceneGraph()->nodeCount(), 0u);
    application.Shutdown();
}

TEST(ApplicationStart, MakesAFreshObjectAfterShutdown) {
    XApplication::Instance().Startup(nullptr, nullptr, nullptr);
    XApplication::Instance().AddScene();
    XApplication::Instance().SetLastCommandName(L"old").Shutdown();
    EXPECT_FALSE(XApplication::Instance().IsStarted());
    EXPECT_EQ(XApplication::Instance().SceneCount(), 0u);
    EXPECT_EQ(XApplication::Instance().LastCommandName(), L"");
    XApplication::Instance().Startup(nullptr, nullptr, nullptr);
    EXPECT_TRUE(XApplication::Instance().IsStarted());
    XApplication::Instance().Shutdown();
}

TEST(ApplicationStart, WithoutTypesMakesAnEmptySceneAndNoHarm) {
    RecordingLog log;
    XApplication::Instance().Startup(nullptr, &log, L"");
    XScene& scene = XApplication::Instance().ActiveScene().New();
    EXPECT_FALSE(scene.SceneSettings().IsValid());
    EXPECT_FALSE(scene.Selection().IsValid());
    scene.Play().Stop().GoToNextFrame().SetActiveTool(3u);
    XApplication::Instance().Shutdown();
}

TEST_F(Application, AnIndexOutOfRangeStandsForTheActiveScene) {
    addScenes(2);
    application().SetActiveScene(1);
    for (int index : {-1, -1000, 3, 4, 1 << 30}) EXPECT_EQ(&application().GetScene(index), &scene()) << index;
    EXPECT_NE(&application().GetScene(0), &scene());
}

TEST_F(Application, SettingTheActiveSceneAgainTellsNobodyAndKeepsTheSelection) {
    addScenes(1);
    selectSomething();
    Recorder recorder;
    for (int index : {1, -1, 2}) EXPECT_EQ(&application().SetActiveScene(index), &scene());
    EXPECT_EQ(recorder.take(), Events());
    EXPECT_EQ(scene().Selection().Count(), 1);
}

TEST_F(Application, ASwitchOfSceneClearsTheSelectionThatIsLeftAndReadsAsALoad) {
    addScenes(1);
    selectSomething();
    XScene& left = scene();
    Recorder recorder;
    EXPECT_EQ(&application().SetActiveScene(0), &application().GetScene(0));
    EXPECT_EQ(recorder.take(), Events{"Loaded 0"});
    EXPECT_EQ(left.Selection().Count(), 0);
    EXPECT_EQ(application().ActiveSceneIndex(), 0);
}

TEST_F(Application, TheNextAndThePreviousSceneWrapAround) {
    addScenes(2);
    struct Case {
        int from;
        bool next;
        int to;
    };
    for (Case const& c : {Case{0, true, 1}, {1, true, 2}, {2, true, 0}, {0, false, 2}, {2, false, 1}, {1, false, 0}}) {
        application().SetActiveScene(c.from);
        selectSomething();
        XScene& left = scene();
        c.next ? application().ActivateNextScene() : application().ActivatePreviousScene();
        EXPECT_EQ(application().ActiveSceneIndex(), c.to) << c.from << c.next;
        EXPECT_EQ(left.Selection().Count(), 0);
    }
}

TEST_F(Application, WithOneSceneNextAndPreviousLeaveTheSelectionAlone) {
    selectSomething();
    Recorder recorder;
    application().ActivateNextScene();
    application().ActivatePreviousScene();
    EXPECT_EQ(scene().Selection().Count(), 1);
    EXPECT_EQ(recorder.take(), Events());
}

TEST_F(Application, AddingASceneTellsOfItsLoadTwice) {
    selectSomething();
    Recorder recorder;
    EXPECT_EQ(application().AddScene(), 1);
    EXPECT_EQ(recorder.take(), (Events{"Registered 1", "Created 1", "Loaded 1", "Loaded 1"}));
    EXPECT_EQ(application().ActiveSceneIndex(), 1);
    EXPECT_EQ(application().GetScene(0).Selection().Count(), 0);
}

TEST_F(Application, TheFirstSceneCannotBeRemoved) {
    Recorder recorder;
    EXPECT_EQ(&application().RemoveScene(), &scene());
    EXPECT_EQ(&application().RemoveScene(0), &scene());
    addScenes(1);
    recorder.take();
    for (int index : {0, -1, 2}) EXPECT_EQ(&application().RemoveScene(index), &application().GetScene(1)) << index;
    EXPECT_EQ(application().SceneCount(), 2u);
    EXPECT_EQ(recorder.take(), Events());
}

TEST_F(Application, RemovingTheActiveSceneActivatesTheFirst) {
    addScenes(2);
    selectSomething();
    XScene* const second = &application().GetScene(1);
    Recorder recorder;
    EXPECT_EQ(&application().RemoveScene(), &application().GetScene(0));
    EXPECT_EQ(recorder.take(), Events{"Loaded 0"});
    EXPECT_EQ(application().SceneCount(), 2u);
    EXPECT_EQ(&application().GetScene(1), second);
}

TEST_F(Application, AfterRemovingBySceneIndexTheFirstIsActive) {
    for (int active : {0, 1, 2}) {
        addScenes(2);
        application().SetActiveScene(active);
        XScene* const kept = &application().GetScene(2);
        EXPECT_EQ(&application().RemoveScene(1), &application().GetScene(0));
        EXPECT_EQ(application().ActiveSceneIndex(), 0) << active;
        EXPECT_EQ(application().SceneCount(), 2u);
        EXPECT_EQ(&application().GetScene(1), kept);
        application().RemoveScene(1);
    }
}

TEST_F(Application, ARemovedSceneIsNotTickedAnyMore) {
    wxUtils::AppMainLoop loop;
    Mirrel::gMirrel.mainLoop = &loop;
    addScenes(2);
    scene().Play();
    application().RemoveScene();
    application().RemoveScene(1);
    loop.tick();
    Mirrel::gMirrel.mainLoop = nullptr;
}

TEST_F(Application, RemovingAllScenesLeavesTheFirstAndMakesItNew) {
    XObject const joint = selectSomething();
    addScenes(3);
    Recorder recorder;
    EXPECT_EQ(&application().RemoveScenes(), &application().GetScene(0));
    EXPECT_EQ(recorder.take(), (Events{"Created 0", "Loaded 0"}));
    EXPECT_EQ(application().SceneCount(), 1u);
    EXPECT_FALSE(joint.IsValid());
}

TEST_F(Application, ClearingMakesEverySceneNewAndKeepsTheActiveOne) {
    XObject const joint = selectSomething();
    addScenes(2);
    application().SetActiveScene(1);
    Recorder recorder;
    EXPECT_EQ(&application().ClearScenes(), &application().GetScene(1));
    EXPECT_EQ(recorder.take(), (Events{"Created 0", "Loaded 0", "Created 1", "Loaded 1", "Created 2", "Loaded 2"}));
    EXPECT_FALSE(joint.IsValid());
}

TEST_F(Application, FindsDatabasesByIdAndScenesByExactName) {
    addScenes(1);
    application().GetScene(0).SceneGraph()->setName(L"walk");
    application().GetScene(1).SceneGraph()->setName(L"Walk");
    for (XDatabase* each :
         {static_cast<XDatabase*>(&application().GetScene(0)), static_cast<XDatabase*>(&application().GetScene(1)),
          static_cast<XDatabase*>(&application().Settings())})
        EXPECT_EQ(application().GetDatabaseByID(each->DatabaseID()), each);
    EXPECT_EQ(application().GetDatabaseByID(12345), nullptr);
    EXPECT_EQ(application().GetSceneByName(L"Walk"), &application().GetScene(1));
    EXPECT_EQ(application().GetSceneByName(L"WALK"), nullptr);
}

TEST_F(Application, ObserversAreToldInTheOrderOfAdditionAndMayLeaveMeanwhile) {
    struct Leaver : XSceneObserver {
        std::vector<int>& told;
        int number;
        XSceneObserver* goes = nullptr;
        Leaver(std::vector<int>& t, int n) : told(t), number(n) {}
        void OnSceneLoaded(XScene&) override {
            told.push_back(number);
            if (goes) application().RemoveSceneObserver(goes);
        }
    };
    std::vector<int> told;
    Leaver a(told, 1), b(told, 2), c(told, 3);
    application().AddSceneObserver(&a).AddSceneObserver(&b).AddSceneObserver(nullptr).AddSceneObserver(&c);
    a.goes = &b;
    b.goes = &b;
    scene().NotifySceneLoaded();
    EXPECT_EQ(told, (std::vector<int>{1, 3}));
    c.goes = &c;
    told.clear();
    scene().NotifySceneLoaded();
    scene().NotifySceneLoaded();
    EXPECT_EQ(told, (std::vector<int>{1, 3, 1}));
    application().RemoveSceneObserver(&a);
}

TEST_F(Application, UpdateCommitsWhatIsPendingThenRefreshesFrameAndDisplay) {
    struct Frame : qellua::LuaFrame {
        std::vector<std::string>& events;
        explicit Frame(std::vector<std::string>& e) : events(e) {}
        void updateUI(std::wstring const& name) override { events.push_back("frame " + Qelutils::toUtf8(name)); }
    };
    struct Loop : wxUtils::AppMainLoop {
        std::vector<std::string>& events;
        explicit Loop(std::vector<std::string>& e) : events(e) {}
        void redraw() override { events.push_back("redraw"); }
    };
    Recorder recorder(true);
    Frame frame(recorder.events);
    Loop loop(recorder.events);
    Mirrel::gMirrel.mainLoop = &loop;
    application().SetFrame(&frame, "main");
    application().Settings().SceneSettings().Time().SetFloat(2);
    time().Time().SetFloat(1);
    recorder.take();
    application().Update();
    Events events = recorder.take();
    std::erase(events, "redraw");
    EXPECT_EQ(events, (Events{"SettingsChanged", "Changed 0", "Time 0", "frame main"}));
    application().Update();
    EXPECT_EQ(recorder.take(), (Events{"frame main", "redraw"}));
    application().SetFrame(&frame, "");
    Mirrel::gMirrel.mainLoop = nullptr;
    application().Update();
    EXPECT_EQ(recorder.take(), Events());
}

TEST_F(Application, HandsScriptsToTheEngineThatTakesThem) {
    Events events;
    EXPECT_FALSE(application().RunScriptFromFile(L"a.lua"));
    RecordingEngine first(events), second(events), third(events);
    first.succeeds = false;
    application().RunStartupScripts(L"/opt/host/");
    EXPECT_EQ(first.files, std::vector<std::wstring>{L"/opt/host/InitializeApplication.lua"});
    EXPECT_EQ(second.files.size(), 1u);
    EXPECT_TRUE(third.files.empty());
    application().NotifyOnIdle();
    EXPECT_EQ(events, Events(3, "script Idle"));
}

TEST_F(Application, RemembersTheNamesOfCommands) {
    EXPECT_EQ(application().ActiveCommandName(), L"");
    application().SetActiveCommandName(L"CreateJoint").SetLastCommandName(L"Undo");
    EXPECT_EQ(application().ActiveCommandName(), L"CreateJoint");
    EXPECT_EQ(application().LastCommandName(), L"Undo");
}

}  // namespace
}  // namespace Tavo
