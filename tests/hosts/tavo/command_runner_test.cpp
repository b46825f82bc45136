// Commands of a plug-in in the host: ranges, failures, and runs that are not allowed. In this process, since the host
// itself has no such commands.
#include "hosts/tavo/command_runner.h"
#include "tavo/commands/command_pattern.h"
#include "tavo/kinematics/joint.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using namespace Tavo;

constexpr db::AttributeDef within(int n, wchar_t const* name, double low, double high, double initial) {
    return db::row::real(n, name, initial).range(low, high);
}
constexpr db::AttributeDef count(int n, wchar_t const* name) { return db::row::integer(n, name, 1).range(1, 1e308); }

constexpr db::AttributeDef reach(int n, wchar_t const* name) { return within(n, name, 0, 0.1, 0).unit(sg::Linear); }

class XRanged : public XCommandType<XRanged> {
public:
    static constexpr XWord TypeID = L"Ranged";
    static constexpr wchar_t const* Help = L"Makes joints of a size.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, Share, L"Of the whole.", within, 0, 1, 0.5)
    TAVO_PARAMETER(9, Count, L"How many.", count)
    TAVO_PARAMETER(10, Label, L"Of each.", text, L"mine")
    TAVO_PARAMETER(12, Reach, L"Of an arm.", reach)
    TAVO_PARAMETER(11, Offset, L"From one to the next.", vector)

    void onRun() override {
        for (int i = 0; i < Count().Integer(); ++i) addResult(Scene().CreateObject(XJoint::TypeID));
    }
};
using XRangedDef = XTypedDef<XRanged>;

TAVO_COMMAND(XFailing, L"Failing", L"Logs two errors.")
void XFailing::onRun() { XApplication::Instance().LogError(L"one").LogWarning(L"aside").LogError(L"two"); }

TAVO_COMMAND(XRefusing, L"Refusing", L"Makes the scene one that is only read.")
void XRefusing::onRun() { Scene().SetSceneMode(ReadOnlyMode); }

class PlugIn : public XSettingsObserver {
    void OnSettingsRegistered(XSettings& settings) override {
        settings.CoreModule().Register(new XRangedDef);
        settings.CoreModule().Register(new XFailingDef);
        settings.CoreModule().Register(new XRefusingDef);
    }
};

class CommandRunner : public testing::Test {
protected:
    CommandRunner() {
        XApplication::Instance().AddSettingsObserver(&plugIn);
        session.emplace();
        session->scene().New();
    }

    static std::vector<CommandCall> parse(std::vector<std::string> const& words, XScene* display = nullptr) {
        return parseCommands(XApplication::Instance().Settings(), words, display);
    }
    std::vector<Done> run(std::vector<std::string> const& words) { return runCommands(*session, parse(words)); }
    // What is told when it fails with that code.
    std::string failure(ExitCode code, std::vector<std::string> const& words) {
        try {
            run(words);
        } catch (Failure const& failure) {
            EXPECT_EQ(int(failure.code), int(code));
            return failure.message;
        }
        ADD_FAILURE() << words[0] << " succeeded";
        return {};
    }
    static XRanged ranged() { return XRanged(XApplication::Instance().Settings().Object(L"Ranged")); }

    PlugIn plugIn;
    std::optional<Session> session;
};

TEST_F(CommandRunner, RefusesAValueBeyondTheRange) {
    EXPECT_EQ(failure(ExitCode::wrongCall, {"Ranged", "Share=1.5"}),
              "Ranged.Share takes a number from 0 to 1, not \"1.5\"");
    EXPECT_EQ(failure(ExitCode::wrongCall, {"Ranged", "Share=-0.1"}),
              "Ranged.Share takes a number from 0 to 1, not \"-0.1\"");
    EXPECT_EQ(failure(ExitCode::wrongCall, {"Ranged", "Count=0"}),
              "Ranged.Count takes a whole number of at least 1, not \"0\"");
}

TEST_F(CommandRunner, TakesTheEndsOfTheRange) {
    for (char const* end : {"Share=0", "Share=1", "Count=1", "Reach=0.1"})
        EXPECT_EQ(run({"Ranged", end}).size(), 1u) << end;
}

TEST_F(CommandRunner, TellsTheRangeInTheUnitsInWhichTheValueIsGiven) {
    XScene& scene = session->scene();
    scene.SceneSettings().LinearUnits().SetEnumeration(0);
    EXPECT_EQ(parse({"Ranged", "Reach=100"}, &scene).size(), 1u);
    try {
        parse({"Ranged", "Reach=101"}, &scene);
        FAIL();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.message, "Ranged.Reach takes a number from 0 to 100, not \"101\"");
    }
}

TEST_F(CommandRunner, GivesTheValuesToTheRunAndTakesThemBack) {
    std::vector<Done> const done = run({"Ranged", "Count=3", "Label=yours", "Offset=1,2,3"});
    EXPECT_EQ(done.at(0).results.size(), 3u);
    EXPECT_EQ(done.at(0).results.at(0), std::pair(std::string("Scene|joint"), std::string("Joint")));
    EXPECT_EQ(ranged().Count().Integer(), 1);
    EXPECT_EQ(ranged().Label().String(), L"mine");
    EXPECT_EQ(ranged().Offset().Vector(), XVector3(0, 0, 0));
}

TEST_F(CommandRunner, SetsParametersToStayWhenToldSo) {
    setParameters(parse({"Ranged", "Count=3", "Label=yours", "Offset=1,2,3", "Share=0.25"}).at(0).values);
    EXPECT_EQ(ranged().Count().Integer(), 3);
    EXPECT_EQ(ranged().Label().String(), L"yours");
    EXPECT_EQ(ranged().Offset().Vector(), XVector3(1, 2, 3));
    EXPECT_EQ(ranged().Share().Float(), 0.25f);
}

TEST_F(CommandRunner, ParsingWritesNothing) {
    parse({"Ranged", "Count=3", commandSeparator, "Ranged", "Label=yours"});
    EXPECT_EQ(ranged().Count().Integer(), 1);
    EXPECT_EQ(ranged().Label().String(), L"mine");
}

TEST_F(CommandRunner, ACommandThatLogsErrorsFailsWithAllOfThem) {
    EXPECT_EQ(failure(ExitCode::failed, {"Ranged", commandSeparator, "Failing"}),
              "Failing (command 2 of 2) failed: one; two; nothing is written");
}

TEST_F(CommandRunner, ACommandThatMayNotRunFails) {
    EXPECT_EQ(failure(ExitCode::failed, {"Refusing", commandSeparator, "SelectAll"}),
              "SelectAll (command 2 of 2) may not run now; nothing is written");
}

TEST_F(CommandRunner, StopsPlaybackAtTheEnd) {
    run({"Play"});
    EXPECT_EQ(session->scene().SceneMode(), InteractiveMode);
}

TEST_F(CommandRunner, APlugInsCommandIsToldWithItsRanges) {
    session.reset();
    XApplication::Instance().AddSettingsObserver(&plugIn);
    auto const told = [&](CommandsVerb const& verb) {
        testing::internal::CaptureStdout();
        host::run(verb);
        return testing::internal::GetCapturedStdout();
    };
    std::string const text = told({"Ranged"});
    EXPECT_NE(text.find("  Share   a number from 0 to 1          0.5    Of the whole.\n"), text.npos) << text;
    EXPECT_NE(text.find("  Count   a whole number of at least 1  1 "), text.npos) << text;
    XApplication::Instance().AddSettingsObserver(&plugIn);
    std::string const json = told({"Ranged", true});
    EXPECT_NE(json.find(R"("default":0.5,"minimum":0,"maximum":1,"help")"), json.npos) << json;
    EXPECT_NE(json.find(R"("kind":"integer","default":1,"minimum":1,"help")"), json.npos) << json;
    EXPECT_NE(json.find(R"("kind":"string","default":"mine")"), json.npos) << json;
    EXPECT_NE(json.find(R"("kind":"vector","default":[0,0,0])"), json.npos) << json;
}

}  // namespace
}  // namespace host
