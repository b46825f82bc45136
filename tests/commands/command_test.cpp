#include "tests/app/fixture.h"
#include "tests/app/recorder.h"

namespace Tavo {
namespace {

// What a run calls, in order, and in which scene.
struct Calls {
    std::vector<std::string> names;
    XScene* scene = nullptr;
    bool isAllowed = true;
};
Calls calls;

class XNoted : public XCommandType<XNoted> {
public:
    static constexpr XWord TypeID = L"Noted";
    static constexpr wchar_t const* Help = L"Notes what is called.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, Count, L"How many joints.", integer, 2)
    TAVO_PARAMETER(9, Size, L"Of each.", length, 0.5f)

    void onRun() override {
        calls.names.push_back("onRun");
        calls.scene = &Scene();
        for (int i = 0; i < Count().Integer(); ++i) {
            XJoint joint(Scene().CreateObject(XJoint::TypeID));
            joint.BoneRadius().SetFloat(Size().Float());
            addResult(joint);
        }
    }
    void onPreRun(bool transient) override { XCommand::onPreRun(transient); }
    void onPreRun() override {
        calls.names.push_back("onPreRun");
        XCommand::onPreRun();
    }
    void onPostRun() override {
        calls.names.push_back("onPostRun");
        XCommand::onPostRun();
    }
    bool isRunAllowed() const override {
        calls.names.push_back("isRunAllowed");
        return calls.isAllowed && XCommand::isRunAllowed();
    }
};
using XNotedDef = XTypedDef<XNoted>;

class XNotedTwice : public XCommandType<XNotedTwice, XNoted> {
public:
    static constexpr XWord TypeID = L"NotedTwice";
    static constexpr wchar_t const* Help = L"Notes it with another default.";
    using XTyped::XTyped;

    TAVO_DEFAULT(8, 3)
    TAVO_PARAMETER(10, Extra, L"One more.", boolean, true)
};
using XNotedTwiceDef = XTypedDef<XNotedTwice>;

class Command : public StartedApplication {
protected:
    Command() { calls = {}; }

    static XSettings& settings() { return application().Settings(); }
    static void registerNoted(bool withNode = true) {
        settings().CoreModule().Register(new XNotedDef);
        settings().CoreModule().Register(new XNotedTwiceDef);
        if (withNode) XCommandCatalogue::CreateNodes(settings());
    }
    static int jointCount() {
        Qelutils::Vector<XObject> joints;
        scene().Objects(XJoint::TypeID, IsObjectType, joints);
        return int(joints.size());
    }
    // What the application offers to those that derive from it.
    struct Access : XApplication {
        using XApplication::resetActiveCommand;
        using XApplication::runActiveCommand;
        using XApplication::runLastCommand;
    };
    static void runLast() { (application().*(&Access::runLastCommand))(); }
    static void runActive() { (application().*(&Access::runActiveCommand))(); }
    static void resetActive() { (application().*(&Access::resetActiveCommand))(); }
};

TEST_F(Command, CallsItsOperationsInTheirOrder) {
    registerNoted();
    scene().RunCommand(L"Noted");
    EXPECT_EQ(calls.names, (std::vector<std::string>{"isRunAllowed", "onPreRun", "onRun", "onPostRun"}));
    EXPECT_EQ(calls.scene, &scene());
}

TEST_F(Command, GivesItsResultsAndTheFirstOfThem) {
    registerNoted();
    Qelutils::Vector<XObject> results = {XObject(scene().Grid())};
    XObject const first = scene().RunCommand(L"Noted", results);
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(first, results[0]);
    EXPECT_TRUE(XJoint(first).IsValid());

    XCommand command(settings().Object(L"Noted"));
    command.Run(nullptr, results);
    Qelutils::Vector<XObject> again;
    EXPECT_EQ(&command.Results(again), &command);
    EXPECT_EQ(again, results);
    XCommand copy(command);
    EXPECT_TRUE((copy.Results(again), again.empty()));
    command = XCommand(settings().Object(L"Noted"));
    EXPECT_TRUE((command.Results(again), again.empty()));
}

TEST_F(Command, IsOneStepWithoutANameThatUndoAndRedoMove) {
    registerNoted();
    int const before = undoCount();
    scene().RunCommand(L"Noted");
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_EQ(jointCount(), 2);
    scene().Undo();
    EXPECT_EQ(jointCount(), 0);
    scene().Redo();
    EXPECT_EQ(jointCount(), 2);
}

TEST_F(Command, MergesIntoABlockThatIsOpen) {
    registerNoted();
    static std::wstring const label = L"script";
    int const before = undoCount();
    {
        XChangeBlock const block(scene(), label);
        scene().RunCommand(L"Noted");
        scene().RunCommand(L"Noted");
    }
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_EQ(jointCount(), 4);
    scene().Undo();
    EXPECT_EQ(jointCount(), 0);
}

TEST_F(Command, ReadsItsParametersFromItsNodeAndKeepsThemBetweenRuns) {
    registerNoted();
    XNoted parameters(settings().Object(L"Noted"));
    parameters.Count().SetInteger(5);
    parameters.Size().SetFloat(0.25f);
    XJoint const joint(scene().RunCommand(L"Noted"));
    EXPECT_EQ(jointCount(), 5);
    EXPECT_EQ(joint.BoneRadius().Float(), 0.25f);
    scene().RunCommand(L"Noted");
    EXPECT_EQ(jointCount(), 10);
    parameters.Initialize();
    EXPECT_EQ(parameters.Count().Integer(), 2);
    EXPECT_EQ(parameters.Size().Float(), 0.5f);
}

TEST_F(Command, ADerivedOneHasTheParametersOfItsBaseWithDefaultsOfItsOwn) {
    registerNoted();
    XNotedTwice twice(settings().Object(L"NotedTwice"));
    ASSERT_TRUE(twice.IsValid());
    EXPECT_TRUE(XNoted(twice).IsValid());
    EXPECT_FALSE(XNotedTwice(settings().Object(L"Noted")).IsValid());
    EXPECT_EQ(twice.Count().Integer(), 3);
    EXPECT_EQ(twice.Size().Float(), 0.5f);
    EXPECT_TRUE(twice.Extra().Boolean());
    EXPECT_TRUE(twice.SupportsType(L"Noted"));
    twice.Count().SetInteger(1);
    twice.Initialize();
    EXPECT_EQ(twice.Count().Integer(), 3);
}

TEST_F(Command, OneThatIsNotAllowedIsSilentAndWithoutResults) {
    registerNoted();
    calls.isAllowed = false;
    Qelutils::Vector<XObject> results = {XObject(scene().Grid())};
    EXPECT_FALSE(scene().RunCommand(L"Noted", results).IsValid());
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(calls.names, std::vector<std::string>{"isRunAllowed"});
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Command, RunsInTheSceneThatIsAskedAlsoWhenAnotherIsActive) {
    registerNoted();
    XScene& first = scene();
    application().AddScene();
    first.RunCommand(L"Noted");
    EXPECT_EQ(calls.scene, &first);
    Qelutils::Vector<XObject> results;
    XCommand(settings().Object(L"Noted")).Run(nullptr, results);
    EXPECT_EQ(calls.scene, &scene());
    XCommand command;
    EXPECT_EQ(&command.Scene(), &scene());
    EXPECT_EQ(&command.SetWorkingScene(&first).Scene(), &first);
    EXPECT_EQ(&command.Settings(), &settings());
}

// ---- without a node ----

TEST_F(Command, WithoutANodeRunsOnOneOfItsOwnWithTheDefaults) {
    registerNoted(false);
    Qelutils::Vector<XObject> before, after, results;
    settings().Objects(before);
    XJoint const joint(scene().RunCommand(L"NotedTwice", results));
    EXPECT_EQ(results.size(), 3u);
    EXPECT_EQ(joint.BoneRadius().Float(), 0.5f);
    EXPECT_EQ(application().LastCommandName(), L"NotedTwice");
    settings().Objects(after);
    EXPECT_EQ(before, after);
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Unable to find a node with the path \"NotedTwice\""});
    XNoted noted;
    EXPECT_TRUE(noted.Run(&scene(), results).IsValid());
}

TEST_F(Command, AnUnknownNameCostsTwoErrorLinesAndKeepsTheLastName) {
    scene().RunCommand(L"SelectAll");
    EXPECT_FALSE(scene().RunCommand(L"Nothing").IsValid());
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{L"Unable to find a node with the path \"Nothing\"",
                                                       L"RunCommand could not find command 'Nothing'"}));
    EXPECT_EQ(application().LastCommandName(), L"SelectAll");
}

TEST_F(Command, ANodeThatIsNoCommandIsNotRun) {
    EXPECT_FALSE(scene().RunCommand(L"Settings").IsValid());
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"RunCommand could not find command 'Settings'"});
}

// ---- modes ----

TEST_F(Command, NoneRunsInTheReadOnlyModeButTheLastNameIsNoted) {
    scene().SetSceneMode(ReadOnlyMode);
    for (XCommandInfo const& command : XCommandCatalogue::List(settings())) {
        int const before = undoCount();
        EXPECT_FALSE(scene().RunCommand(command.name).IsValid());
        EXPECT_EQ(application().LastCommandName(), command.name);
        EXPECT_EQ(undoCount(), before) << Qelutils::toUtf8(command.name);
    }
    EXPECT_TRUE(log.entries.empty());
    EXPECT_EQ(scene().SceneMode(), ReadOnlyMode);
}

TEST_F(Command, DuringSimulationOnlyWhatStopsItRuns) {
    for (wchar_t const* name : {L"Stop", L"PlayToggle"}) {
        scene().SetSceneMode(SimulationMode);
        scene().BeginChangeBlock(true);  // which a simulation holds
        scene().RunCommand(L"Play");
        scene().RunCommand(L"CreateJoint");
        EXPECT_EQ(scene().SceneMode(), SimulationMode);
        EXPECT_EQ(jointCount(), 0);
        scene().RunCommand(name);
        EXPECT_EQ(scene().SceneMode(), InteractiveMode) << Qelutils::toUtf8(name);
    }
}

// ---- the node ----

TEST_F(Command, ItsNodeCannotBeDeletedRenamedOrMoved) {
    XCommand command(settings().Object(L"SelectAll"));
    ASSERT_TRUE(command.IsValid());
    command.Delete();
    EXPECT_TRUE(command.IsValid());
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"The object 'SelectAll' does not support deletion"});
    command.SetName(L"Other");
    EXPECT_EQ(command.Name(), L"SelectAll");
    EXPECT_FALSE(command.SupportsReparenting());
}

TEST_F(Command, AChangedParameterReachesTheObserversOfTheSettingsAndNoScene) {
    XFreezeTransform command(settings().Object(L"FreezeTransform"));
    Recorder recorder(true);
    settings().BeginChangeBlock();
    command.FreezeRotation().SetBoolean(false);
    settings().EndChangeBlock();
    EXPECT_EQ(recorder.take(), std::vector<std::string>{"SettingsChanged"});
}

TEST_F(Command, CannotBeUnregisteredWhileHandlesOnOneAreInUse) {
    XModule module(settings());
    module.Register(new XNotedDef);
    {
        XNoted const inUse;
        EXPECT_FALSE(module.Unregister());
    }
    EXPECT_TRUE(module.Unregister());
    EXPECT_EQ(settings().ObjectDefinition(L"Noted"), nullptr);
}

// ---- what the application remembers ----

TEST_F(Command, TheActiveAndTheLastOneAreTheNodesOfThoseNames) {
    registerNoted();
    application().SetActiveCommandName(L"NotedTwice");
    EXPECT_EQ(application().ActiveCommand().Name(), L"NotedTwice");
    runActive();
    EXPECT_EQ(jointCount(), 3);
    EXPECT_EQ(application().LastCommand().Name(), L"NotedTwice");
    runLast();
    EXPECT_EQ(jointCount(), 6);
    EXPECT_EQ(application().ActiveCommandName(), L"NotedTwice");
    XNotedTwice(application().ActiveCommand()).Count().SetInteger(9);
    resetActive();
    EXPECT_EQ(XNotedTwice(application().ActiveCommand()).Count().Integer(), 3);
}

TEST_F(Command, RunningTheLastOneWithoutAnyFailsLikeAnUnknownName) {
    runLast();
    ASSERT_FALSE(log.errors().empty());
    EXPECT_EQ(log.errors().back(), L"RunCommand could not find command ''");
    EXPECT_EQ(log.errors().size(), 2u);
}

}  // namespace
}  // namespace Tavo
