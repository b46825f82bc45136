#include "qel/db/saver_xml.h"
#include "tests/app/fixture.h"
#include "tests/app/recorder.h"
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace Tavo {
namespace {

using Events = std::vector<std::string>;

class Settings : public StartedApplication {
protected:
    Settings() { std::filesystem::create_directories(folder); }
    ~Settings() override { std::filesystem::remove_all(folder); }

    std::wstring file(std::string const& name) const { return (folder / name).wstring(); }
    void write(std::string const& name, std::string const& text) const { std::ofstream(folder / name) << text; }
    static XSettings& settings() { return application().Settings(); }
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
    Qelutils::Vector<XObject> all;
    settings().Objects(all);
    EXPECT_EQ(all.size(), 1u);
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

TEST_F(Settings, HaveNoUnits) {
    float value = 2;
    settings().ConvertUnits(LengthUnit, ToExternalUnits, value);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(settings().Units(LengthUnit), L"");
    EXPECT_TRUE(settings().IsSettings());
    EXPECT_FALSE(settings().IsScene());
}

TEST_F(Settings, StandInTheListOfNoScene) { EXPECT_EQ(application().SceneCount(), 1u); }

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
