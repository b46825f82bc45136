#include "qel/db/saver_xml.h"
#include "tests/app/fixture.h"
#include "tests/app/recorder.h"
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Tavo {
namespace {

using Events = std::vector<std::string>;

class Settings : public StartedApplication {
protected:
    Settings() { std::filesystem::create_directories(folder); }
    ~Settings() override { std::filesystem::remove_all(folder); }

    std::wstring file(std::string const& name) const { return (folder / name).wstring(); }
    void write(std::string const& name, std::string const& text) const { std::ofstream(folder / name) << text; }
    std::string read(std::string const& name) const {
        std::ostringstream text;
        text << std::ifstream(folder / name).rdbuf();
        return text.str();
    }
    static XSettings& settings() { return application().Settings(); }
    static int objectsBesideCommands() {
        Qelutils::Vector<XObject> all;
        settings().Objects(all);
        return int(std::count_if(all.begin(), all.end(), [](XObject const& o) { return !XCommand(o).IsValid(); }));
    }
    static std::size_t undoSteps() { return settings().SceneGraph()->getUndoCount(); }

    std::filesystem::path const folder =
        std::filesystem::temp_directory_path() /
        ("tavo_settings_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(Settings, AMissingFileGivesTheDefaultsAndFiresCreatedAtTheEnd) {
    settings().SceneSettings().FrameRate().SetInteger(60);
    Recorder recorder;
    EXPECT_FALSE(application().LoadSettings(file("missing.xml")));
    EXPECT_EQ(recorder.take(), (Events{"SettingsCreated", "SettingsLoaded", "SettingsCreated"}));
    EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Settings, ComeBackFromTheirFile) {
    settings().SceneSettings().FrameRate().SetInteger(60);
    settings().SceneSettings().AddStringAttribute(L"recent", L"walk.bvh");
    ASSERT_TRUE(application().SaveSettings(file("settings.xml")));
    settings().New();
    Recorder recorder;
    EXPECT_TRUE(application().LoadSettings(file("settings.xml")));
    EXPECT_EQ(recorder.take(), (Events{"SettingsCreated", "SettingsLoaded", "SettingsLoaded"}));
    EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 60);
    EXPECT_EQ(settings().SceneSettings().Attribute(L"recent").String(), L"walk.bvh");
    EXPECT_EQ(settings().SceneSettings().Path(), L"Settings");
    EXPECT_EQ(objectsBesideCommands(), 1);
}

TEST_F(Settings, LoadingCannotBeUndoneAndCountsAsClean) {
    ASSERT_TRUE(application().SaveSettings(file("settings.xml")));
    for (char const* name : {"settings.xml", "missing.xml"}) {
        settings().BeginChangeBlock();
        settings().SceneSettings().FrameRate().SetInteger(30);
        settings().EndChangeBlock();
        application().LoadSettings(file(name));
        EXPECT_EQ(undoSteps(), 0u) << name;
        EXPECT_TRUE(settings().SceneGraph()->isAtCheckpoint()) << name;
        EXPECT_EQ(settings().SceneGraph()->getMaxUndoItems(), 100000);
        EXPECT_FALSE(settings().SceneGraph()->isInChangeBlock());
    }
}

TEST_F(Settings, AFileWithoutASettingsNodeGivesOneWithTheDefaults) {
    sg::Scene empty;
    db::FileOutputStream stream(file("empty.xml"));
    ASSERT_TRUE(db::SaverXML(stream).save(empty));
    EXPECT_TRUE(application().LoadSettings(file("empty.xml")));
    EXPECT_TRUE(settings().SceneSettings().IsValid());
    EXPECT_EQ(settings().SceneSettings().EndTime().Float(), 3);
}

TEST_F(Settings, ABrokenFileGivesTheDefaultsAndOneErrorThatSaysWhy) {
    for (char const* text : {"", "<", "<tavo", "not a document", "<tavo format=\"1\"><node"}) {
        write("broken.xml", text);
        settings().SceneSettings().FrameRate().SetInteger(60);
        EXPECT_FALSE(application().LoadSettings(file("broken.xml"))) << text;
        EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
        ASSERT_EQ(log.entries.size(), 1u) << text;
        std::wstring const start =
            L"Unable to load the settings from \"" + file("broken.xml") + L"\", so that the defaults stand: ";
        EXPECT_EQ(log.errors().at(0).substr(0, start.size()), start);
        EXPECT_GT(log.errors().at(0).size(), start.size()) << text;
        log.clear();
    }
}

TEST_F(Settings, AFileThatCannotBeWrittenIsAnErrorAndFalse) {
    EXPECT_FALSE(application().SaveSettings(file("missing/settings.xml")));
    EXPECT_EQ(log.errors().size(), 1u);
}

TEST_F(Settings, AChangeOfTheirsReachesTheirObserversAndNoScene) {
    Recorder recorder(true);
    settings().BeginChangeBlock();
    settings().SceneSettings().FrameRate().SetInteger(25);
    settings().EndChangeBlock();
    EXPECT_EQ(recorder.take(), Events{"SettingsChanged"});
}

TEST_F(Settings, AChangeInAGestureIsToldAsOne) {
    Recorder recorder(true);
    settings().BeginChangeBlock(true);
    settings().SceneSettings().FrameRate().SetInteger(25);
    settings().EndChangeBlock();
    EXPECT_EQ(recorder.take(), Events{"SettingsChanged transient"});
    application().Update();
    EXPECT_EQ(recorder.take(), Events{"SettingsChanged"});
}

TEST_F(Settings, ATakenBackChangeReachesTheirObserversAndNoScene) {
    settings().BeginChangeBlock();
    settings().SceneSettings().FrameRate().SetInteger(25);
    settings().EndChangeBlock();
    Recorder recorder(true);
    settings().SceneGraph()->Undo();
    EXPECT_EQ(recorder.take(), Events{"SettingsChanged"});
    EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
}

TEST_F(Settings, TheirObserversSeeWhatChanged) {
    struct Observer : XSettingsObserver {
        void OnSettingsChanged(XSettingsChange const& change, bool) override {
            XSceneSettings const object = change.Settings().SceneSettings();
            isOfSettings = &change.Settings() == &settings();
            isFrameRate = change.IsAttributeChanged(object.FrameRate());
            isTime = change.IsAttributeChanged(object.Time());
        }
        bool isOfSettings = false, isFrameRate = false, isTime = true;
    } observer;
    application().AddSettingsObserver(&observer);
    settings().BeginChangeBlock();
    settings().SceneSettings().FrameRate().SetInteger(25);
    settings().EndChangeBlock();
    application().RemoveSettingsObserver(&observer);
    EXPECT_TRUE(observer.isOfSettings && observer.isFrameRate);
    EXPECT_FALSE(observer.isTime);
}

TEST_F(Settings, AreNamedAndEmptyOfAllElseWhenMadeNew) {
    settings().SceneSettings().AddStringAttribute(L"recent", L"walk.bvh");
    settings().CreateObject(XSceneSettings::TypeID);
    Recorder recorder;
    settings().New();
    EXPECT_EQ(recorder.take(), (Events{"SettingsCreated", "SettingsLoaded"}));
    EXPECT_EQ(settings().SceneGraph()->getDatabaseName(), L"Settings");
    EXPECT_FALSE(settings().SceneSettings().HasCustomAttributes());
    EXPECT_EQ(objectsBesideCommands(), 1);
    EXPECT_EQ(undoSteps(), 0u);
    EXPECT_EQ(settings().SceneGraph()->getMaxUndoItems(), XSettings::MaximumUndoSteps);
}

// Only a scene holds on to its own: meant so. The next load or New makes it again.
TEST_F(Settings, TheirObjectMayBeRenamedAndDeleted) {
    XObject object = settings().SceneSettings();
    EXPECT_TRUE(object.SupportsRenaming() && object.SupportsDeletion());
    object.SetName(L"other");
    EXPECT_EQ(object.Name(), L"other");
    object.Delete();
    EXPECT_FALSE(settings().SceneSettings().IsValid());
    ASSERT_TRUE(application().SaveSettings(file("settings.xml")));
    EXPECT_TRUE(application().LoadSettings(file("settings.xml")));
    EXPECT_EQ(settings().SceneSettings().Path(), L"Settings");
}

TEST_F(Settings, HaveNoUnits) {
    float value = 2;
    settings().ConvertUnits(LengthUnit, ToExternalUnits, value);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(settings().Units(LengthUnit), L"");
    EXPECT_TRUE(settings().IsSettings());
    EXPECT_FALSE(settings().IsScene());
}

TEST_F(Settings, StandInTheListOfNoScene) { EXPECT_EQ(application().SceneCount(), 1u); }

// ---- what is not known survives ----

using namespace std::string_literals;

std::string repeated(std::string const& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

std::string withoutIndents(std::string const& text) {
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines >> std::ws, line);) all += line + "\n";
    return all;
}

class PartlyUnknownSettings : public Settings {
protected:
    // Loads a file of these nodes and saves it; the result.
    std::string roundTrip(std::string const& nodes) {
        write("in.xml", "<tavo format=\"1\" name=\"Settings\" ids=\"9000\">" + nodes + "</tavo>");
        EXPECT_TRUE(application().LoadSettings(file("in.xml")));
        EXPECT_TRUE(log.errors().empty());
        return saved();
    }
    std::string saved() {
        EXPECT_TRUE(application().SaveSettings(file("out.xml")));
        return withoutIndents(read("out.xml"));
    }
    static bool holds(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }
};

TEST_F(PartlyUnknownSettings, KeepNodesOfUnknownTypesWithAllTheyCarry) {
    std::string const
        gadget = "<node id=\"1024\" type=\"Gadget\" space=\"plugin\" name=\"gadget\">",
        part = "<a n=\"Size\">1 0.30000001192092896 -1e-300</a>",
        deep = "<e n=\"Rows\" id=\"1030\">\n<q x=\"1 &lt; 2 &amp; &quot;3&quot;\">a\xC3\xA4 \xF0\x9F\x90\x8E</q>\n"
               "<q x=\"\"/>\n</e>",
        below = "<node id=\"2048\" type=\"Widget\" name=\"widget\" parent=\"1024\">";
    std::string const text = roundTrip(gadget + part + deep + "</node>" + below + "<a n=\"On\">true</a></node>");
    for (std::string const& each : {gadget, part, deep, below, std::string("<a n=\"On\">true</a>")})
        EXPECT_TRUE(holds(text, each)) << each << "\nin\n" << text;
}

TEST_F(PartlyUnknownSettings, KeepUnknownAttributesOfKnownNodes) {
    std::string const number = "<a n=\"Haste\">7.25</a>", list = "<a n=\"List\">\n<s>one</s>\n<s> two </s>\n<s/>\n</a>",
                      later = "<d n=\"Later\" type=\"99\" id=\"1120\">x</d>";
    std::string const text =
        roundTrip("<node id=\"1024\" type=\"SceneSettings\" name=\"Settings\"><a n=\"FrameRate\">60</a>" + number +
                  list + later + "</node>");
    for (std::string const& each : {number, list, later}) EXPECT_TRUE(holds(text, each)) << each << "\nin\n" << text;
    EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 60);
    EXPECT_EQ(settings().SceneSettings().ObjectID(), 1024);
}

TEST_F(PartlyUnknownSettings, WriteTheSameBytesEachTime) {
    std::string const once =
        roundTrip("<node id=\"1024\" type=\"SceneSettings\" name=\"Settings\"><a n=\"New\">1</a></node>"
                  "<node id=\"2048\" type=\"Gadget\" name=\"g\"><a n=\"B\">2</a><a n=\"A\">1</a></node>"
                  "<connection id=\"3072\" from=\"2048.A\" to=\"1024.New\"/>");
    EXPECT_TRUE(holds(once, "<connection id=\"3072\" from=\"2048.A\" to=\"1024.New\"/>"));
    ASSERT_TRUE(application().LoadSettings(file("out.xml")));
    EXPECT_EQ(saved(), once);
}

TEST_F(PartlyUnknownSettings, KeepThemThroughAChangeOfWhatIsKnown) {
    roundTrip("<node id=\"1024\" type=\"SceneSettings\" name=\"Settings\"><a n=\"Haste\">7.25</a></node>");
    settings().SceneSettings().FrameRate().SetInteger(30);
    std::string const text = saved();
    EXPECT_TRUE(holds(text, "<a n=\"Haste\">7.25</a>"));
    EXPECT_TRUE(holds(text, "<a n=\"FrameRate\">30</a>"));
}

TEST_F(PartlyUnknownSettings, ForgetThemWhenTheyAreMadeNew) {
    roundTrip("<node id=\"1024\" type=\"SceneSettings\" name=\"Settings\"><a n=\"Haste\">7.25</a></node>"
              "<node id=\"2048\" type=\"Gadget\" name=\"gadget\"/>");
    settings().New();
    std::string const text = saved();
    EXPECT_FALSE(holds(text, "Haste") || holds(text, "Gadget")) << text;
}

TEST_F(PartlyUnknownSettings, TakeTheirNameFromAnObjectOfAnotherType) {
    std::string const gadget = "<node id=\"1024\" type=\"Gadget\" name=\"Settings\"><a n=\"A\">1</a></node>";
    std::string const once = roundTrip(gadget);
    EXPECT_EQ(settings().SceneSettings().Path(), L"Settings");
    EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
    EXPECT_TRUE(holds(once, "type=\"Gadget\"") && holds(once, "<a n=\"A\">1</a>")) << once;
    ASSERT_TRUE(application().LoadSettings(file("out.xml")));
    EXPECT_EQ(saved(), once);
}

TEST_F(PartlyUnknownSettings, AreNotTheSettingsOfAnotherLevel) {
    roundTrip(
        "<node id=\"1024\" type=\"Gadget\" name=\"g\"/>"
        "<node id=\"2048\" type=\"SceneSettings\" name=\"Settings\" parent=\"1024\"><a n=\"FrameRate\">60</a></node>");
    EXPECT_EQ(settings().SceneSettings().Path(), L"Settings");
    EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
}

TEST_F(PartlyUnknownSettings, AreRefusedAsAWholeWhereTheyCannotBeTrusted) {
    for (std::string const& nodes :
         {"<node id=\"1024\" type=\"SceneSettings\" name=\"Settings\"><a n=\"FrameRate\">fast</a></node>"s,
          "<node id=\"1024\" type=\"Gadget\" parent=\"1024\"/>"s, "<node id=\"-4\" type=\"Gadget\"/>"s,
          "<node id=\"1024\" type=\"Gadget\"/><node id=\"1024\" type=\"Gadget\"/>"s,
          "<node id=\"1024\" type=\"Gadget\"><a></node>"s, "<gadget/>"s,
          "<node id=\"1024\" type=\"Gadget\">" + repeated("<a>", 100000)}) {
        write("in.xml", "<tavo format=\"1\" name=\"Settings\" ids=\"9000\">" + nodes + "</tavo>");
        settings().SceneSettings().FrameRate().SetInteger(60);
        EXPECT_FALSE(application().LoadSettings(file("in.xml"))) << nodes.substr(0, 200);
        EXPECT_EQ(log.errors().size(), 1u) << nodes.substr(0, 200);
        EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
        log.clear();
    }
}

TEST_F(PartlyUnknownSettings, GiveTheDefaultsWhereverTheirFileWasCutOff) {
    std::string const whole = roundTrip(
        "<node id=\"1024\" type=\"SceneSettings\" name=\"Settings\"><a n=\"FrameRate\">60</a><a n=\"N\">1</a></node>"
        "<node id=\"2048\" type=\"Gadget\" name=\"gadget\"/>");
    std::size_t const end = whole.rfind('>');
    for (std::size_t length = 0; length <= end; ++length) {
        write("cut.xml", whole.substr(0, length));
        EXPECT_FALSE(application().LoadSettings(file("cut.xml"))) << length;
        EXPECT_EQ(settings().SceneSettings().FrameRate().Integer(), 24);
    }
}

// ---- a kill ----

// In a process of its own saves again and again, with one of two contents in turn, until it is killed.
class KilledSaver : public Settings {
protected:
    void fill(int content) {
        settings().SceneSettings().Attribute(L"Notes").SetString(std::wstring(400'000, content ? L'b' : L'a'));
    }
    bool save() const { return application().SaveSettings(file("settings.xml")); }
    std::string content() const { return read("settings.xml"); }
    void saveUntilKilled(int first) {
        for (int i = first; true; ++i) {
            fill(i % 2);
            if (!save()) ::_exit(1);
        }
    }
    void killAfter(std::chrono::microseconds delay, int first) {
        pid_t const child = ::fork();
        if (child == 0) saveUntilKilled(first);
        std::this_thread::sleep_for(delay);
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "a save failed";
    }
    std::size_t fileCount() const {
        return std::size_t(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
};

TEST_F(KilledSaver, LeavesTheOldSettingsOrTheNewOnesWhole) {
    settings().SceneSettings().AddStringAttribute(L"Notes", L"");
    std::string contents[2];
    for (int i : {1, 0}) {
        fill(i);
        ASSERT_TRUE(save());
        contents[i] = content();
        ASSERT_GT(contents[i].size(), 400'000u);
        EXPECT_TRUE(application().LoadSettings(file("settings.xml")));
    }
    // One kill in five is to come after a save is done, the others under way: the range follows what the machine needs.
    std::mt19937 random(1);
    double range = 1000;  // microseconds
    int changes = 0;
    for (int kill = 0; kill < 200; ++kill) {
        std::string const before = content();
        long const delay = long(std::uniform_real_distribution(0., range)(random));
        killAfter(std::chrono::microseconds(delay), before == contents[0] ? 1 : 0);
        std::string const left = content();
        ASSERT_TRUE(left == contents[0] || left == contents[1]) << "kill " << kill << ": " << left.size() << " bytes";
        ASSERT_LE(fileCount(), 2u);
        changes += left != before;
        range *= left == before ? 1.05 : 1 / 1.2;
    }
    EXPECT_GT(changes, 0);
    EXPECT_LT(changes, 200);
    EXPECT_TRUE(application().LoadSettings(file("settings.xml")));
    ASSERT_TRUE(save());
    EXPECT_EQ(fileCount(), 1u) << "the next save takes away what the killed one left";
}

// ---- translators ----

class FakeTranslator : public XTranslatorDef {
public:
    struct State {
        bool canImport = true, canExport = true, succeeds = true;
        std::vector<std::wstring> files;
        XScene* scene = nullptr;
    };
    FakeTranslator(std::wstring extension, State& state) : _extension(std::move(extension)), _state(state) {}
    std::wstring Extension() const override { return _extension; }
    bool SupportsImport() const override { return _state.canImport; }
    bool SupportsExport() const override { return _state.canExport; }
    bool Import(XScene& scene, std::wstring const& path) override { return note(scene, path); }
    bool Export(XScene& scene, std::wstring const& path) override { return note(scene, path); }

private:
    bool note(XScene& scene, std::wstring const& path) {
        _state.scene = &scene;
        _state.files.push_back(path);
        return _state.succeeds;
    }
    std::wstring _extension;
    State& _state;
};

class Translation : public Settings {
protected:
    void add(std::wstring const& extension) { settings().CoreModule().Register(new FakeTranslator(extension, state)); }
    FakeTranslator::State state;
};

TEST_F(Translation, WorksOnTheActiveScene) {
    add(L"BVH");
    application().AddScene();
    settings().ExportFile(L"walk.bvh");
    settings().ImportFile(L"run.Bvh");
    EXPECT_EQ(state.files, (std::vector<std::wstring>{L"walk.bvh", L"run.Bvh"}));
    EXPECT_EQ(state.scene, &scene());
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(Translation, AFileWithoutADotLogsBothErrorLinesWithAnEmptyFormat) {
    settings().ExportFile(L"walk");
    settings().ImportFile(L"walk");
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{
                                L"There are no file translators which support exporting to the format (\"\")",
                                L"Unable to export the file to \"walk\"",
                                L"There are no file translators which support importing from the format (\"\")",
                                L"Unable to import the file at \"walk\""}));
}

TEST_F(Translation, TheExtensionBeginsAtTheFirstDotOfTheWholePath) {
    add(L"XML");
    settings().ExportFile(L"a.b/file.xml");
    EXPECT_TRUE(state.files.empty());
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{
                                L"There are no file translators which support exporting to the format (\"B/FILE.XML\")",
                                L"Unable to export the file to \"a.b/file.xml\""}));
    add(L"B/FILE.XML");
    settings().ExportFile(L"a.b/file.xml");
    EXPECT_EQ(state.files.size(), 1u);
}

std::vector<std::wstring> const unsupported = {
    L"There are no file translators which support exporting to the format (\"BVH\")",
    L"Unable to export the file to \"walk.bvh\"",
    L"There are no file translators which support importing from the format (\"BVH\")",
    L"Unable to import the file at \"walk.bvh\""};

TEST_F(Translation, AnUnknownExtensionLogsTheFormatAndThenTheFailure) {
    settings().ExportFile(L"walk.bvh");
    settings().ImportFile(L"walk.bvh");
    EXPECT_EQ(log.errors(), unsupported);
}

TEST_F(Translation, OneThatCannotDoItIsToldWithItsFormat) {
    add(L"BVH");
    state.canImport = state.canExport = false;
    settings().ExportFile(L"walk.bvh");
    settings().ImportFile(L"walk.bvh");
    EXPECT_TRUE(state.files.empty());
    EXPECT_EQ(log.errors(), unsupported);
}

TEST_F(Translation, OneDirectionMayBeSupportedAlone) {
    add(L"BVH");
    state.canExport = false;
    settings().ImportFile(L"walk.bvh");
    EXPECT_TRUE(log.errors().empty());
    settings().ExportFile(L"walk.bvh");
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{unsupported[0], unsupported[1]}));
    EXPECT_EQ(state.files.size(), 1u);
}

TEST_F(Translation, AFailureIsToldWithoutTheFormat) {
    add(L"BVH");
    state.succeeds = false;
    settings().ExportFile(L"walk.bvh");
    settings().ImportFile(L"walk.bvh");
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{unsupported[1], unsupported[3]}));
}

}  // namespace
}  // namespace Tavo
