// The dialog of the file commands, and what follows its answer.
#include "tests/app/fixture.h"
#include "tests/commands/file_dialogs.h"
#include <optional>

namespace Tavo {
namespace {

// What the translators of a test are asked to do, in order: "import KIND /a/path".
std::vector<std::wstring> work;
XScene* worked = nullptr;

struct Format {
    std::wstring extension, filter = {};
    bool imports = true, exports = true, works = true;
};

class FormatDef : public XTranslatorDef {
public:
    explicit FormatDef(Format const& format) : _format(format) { appendObjectType(format.extension + L"Translator"); }

    std::wstring Extension() const override { return _format.extension; }
    std::wstring Filter() const override { return _format.filter; }
    bool SupportsImport() const override { return _format.imports; }
    bool SupportsExport() const override { return _format.exports; }
    bool Import(XScene& scene, std::wstring const& path) override {
        if (_format.works) scene.CreateObject(XJoint::TypeID);
        return note(L"import ", scene, path);
    }
    bool Export(XScene& scene, std::wstring const& path) override { return note(L"export ", scene, path); }

private:
    bool note(wchar_t const* what, XScene& scene, std::wstring const& path) const {
        work.push_back(what + _format.extension + L" " + path);
        worked = &scene;
        return _format.works;
    }
    Format _format;
};

class FileCommands : public StartedApplication {
protected:
    FileCommands() {
        work.clear();
        worked = nullptr;
    }

    static void add(Format const& format) { application().Settings().CoreModule().Register(new FormatDef(format)); }
    // The request that running the command brings up, once.
    std::optional<wxUtils::FileDialogRequest> requestOf(wchar_t const* command) {
        dialogs.requests.clear();
        scene().RunCommand(command);
        if (dialogs.requests.size() != 1) return {};
        return dialogs.requests.front();
    }
    void run(wchar_t const* command, std::wstring const& answer, int result = wxUtils::DialogOK) {
        dialogs.answer = answer;
        dialogs.result = result;
        scene().RunCommand(command);
    }
    static int jointCount() {
        Qelutils::Vector<XObject> joints;
        scene().Objects(XJoint::TypeID, IsObjectType, joints);
        return int(joints.size());
    }

    AnsweredDialogs dialogs;
};

// ---- what is asked ----

TEST_F(FileCommands, AskWithATitleAndAStyleOfTheirOwnAndNothingFilledIn) {
    dialogs.result = wxUtils::DialogCancelled;
    auto const import = requestOf(L"ImportFile"), written = requestOf(L"ExportFile");
    ASSERT_TRUE(import && written);
    EXPECT_EQ(import->title, L"Import File");
    EXPECT_EQ(import->style, 1);
    EXPECT_EQ(written->title, L"Export File");
    EXPECT_EQ(written->style, 2);
    for (auto const& request : {*import, *written}) EXPECT_EQ(request.directory + request.file, L"");
}

TEST_F(FileCommands, WithoutATranslatorOfferAllFilesOnly) {
    dialogs.result = wxUtils::DialogCancelled;
    for (wchar_t const* command : {L"ImportFile", L"ExportFile"}) {
        auto const request = requestOf(command);
        ASSERT_TRUE(request);
        EXPECT_EQ(request->filter, L"All Files (*.*)|*.*");
    }
}

TEST_F(FileCommands, OfferTheFormatsInTheOrderOfTheirExtensions) {
    add({L"ZIP", L"Z (*.zip)|*.zip"});
    add({L"bin", L"B (*.bin)|*.bin"});  // the order is that of the upper case
    add({L"ABC", L"A (*.abc)|*.abc"});
    dialogs.result = wxUtils::DialogCancelled;
    for (wchar_t const* command : {L"ImportFile", L"ExportFile"}) {
        auto const request = requestOf(command);
        ASSERT_TRUE(request);
        EXPECT_EQ(request->filter, L"All Files (*.*)|*.*|A (*.abc)|*.abc|B (*.bin)|*.bin|Z (*.zip)|*.zip");
    }
}

TEST_F(FileCommands, OfferOnlyFormatsThatGoTheirWay) {
    add({L"IN", L"In (*.in)|*.in", true, false});
    add({L"OUT", L"Out (*.out)|*.out", false, true});
    dialogs.result = wxUtils::DialogCancelled;
    auto const import = requestOf(L"ImportFile"), written = requestOf(L"ExportFile");
    ASSERT_TRUE(import && written);
    EXPECT_EQ(import->filter, L"All Files (*.*)|*.*|In (*.in)|*.in");
    EXPECT_EQ(written->filter, L"All Files (*.*)|*.*|Out (*.out)|*.out");
}

TEST_F(FileCommands, RaiseTheMainWindowAfterTheDialogHoweverItEnds) {
    for (wchar_t const* command : {L"ImportFile", L"ExportFile"})
        for (int const result : {wxUtils::DialogOK, wxUtils::DialogCancelled}) {
            dialogs.calls.clear();
            run(command, L"/tmp/file", result);
            EXPECT_EQ(dialogs.calls, (std::vector<std::string>{"show", "raise"}));
        }
}

// ---- what follows ----

TEST_F(FileCommands, CancelledChangeNothing) {
    add({L"ABC"});
    int const before = undoCount();
    run(L"ImportFile", L"/tmp/a.abc", wxUtils::DialogCancelled);
    run(L"ExportFile", L"/tmp/a.abc", wxUtils::DialogCancelled);
    run(L"ImportFile", L"/tmp/a.abc", 0);  // whatever a toolkit may answer that is not its OK
    EXPECT_TRUE(work.empty());
    EXPECT_TRUE(log.entries.empty());
    EXPECT_EQ(undoCount(), before + 3);  // a run is a step, also an empty one
}

TEST_F(FileCommands, AnsweredHaveTheTranslatorOfTheExtensionDoTheWorkInAnyCase) {
    add({L"ABC"});
    add({L"xyz"});
    run(L"ImportFile", L"/tmp/one.aBc");
    run(L"ExportFile", L"/tmp/two.XYZ");
    EXPECT_EQ(work, (std::vector<std::wstring>{L"import ABC /tmp/one.aBc", L"export xyz /tmp/two.XYZ"}));
    EXPECT_EQ(worked, &scene());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(FileCommands, TakeAllAfterTheFirstDotOfThePathForTheExtension) {
    add({L"ABC"});
    add({L"D/FILE"});
    run(L"ImportFile", L"/tmp/v1.2/one.abc");
    EXPECT_TRUE(work.empty());
    EXPECT_EQ(log.errors().back(), L"Unable to import the file at \"/tmp/v1.2/one.abc\"");
    run(L"ImportFile", L"/tmp/a.d/file");
    EXPECT_EQ(work, std::vector<std::wstring>{L"import D/FILE /tmp/a.d/file"});
}

TEST_F(FileCommands, TellOfTheFormatAndThenOfTheFileWhenATranslatorDoesNotGoTheirWay) {
    add({L"IN", {}, true, false});
    add({L"OUT", {}, false, true});
    run(L"ImportFile", L"/tmp/a.out");
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{
                                L"There are no file translators which support importing from the format (\"OUT\")",
                                L"Unable to import the file at \"/tmp/a.out\""}));
    log.clear();
    run(L"ExportFile", L"/tmp/a.in");
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{
                                L"There are no file translators which support exporting to the format (\"IN\")",
                                L"Unable to export the file to \"/tmp/a.in\""}));
    EXPECT_TRUE(work.empty());
}

TEST_F(FileCommands, TellOfTheFileAloneWhenTheTranslatorFails) {
    add({L"ABC", {}, true, true, false});
    int const before = undoCount();
    run(L"ImportFile", L"/tmp/a.abc");
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Unable to import the file at \"/tmp/a.abc\""});
    log.clear();
    run(L"ExportFile", L"/tmp/a.abc");
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Unable to export the file to \"/tmp/a.abc\""});
    EXPECT_EQ(undoCount(), before + 2);
}

TEST_F(FileCommands, AnImportIsOneStepThatUndoAndRedoMove) {
    add({L"ABC"});
    int const before = undoCount();
    run(L"ImportFile", L"/tmp/a.abc");
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_EQ(jointCount(), 1);
    scene().Undo();
    EXPECT_EQ(jointCount(), 0);
    scene().Redo();
    EXPECT_EQ(jointCount(), 1);
}

TEST_F(FileCommands, WorkOnTheActiveSceneAlsoWhenAnotherRunsThem) {
    add({L"ABC"});
    XScene& first = scene();
    application().AddScene();
    dialogs.answer = L"/tmp/a.abc";
    first.RunCommand(L"ExportFile");
    EXPECT_NE(&scene(), &first);
    EXPECT_EQ(worked, &scene());
}

// ---- where they do not ask ----

TEST_F(FileCommands, DoNotEvenAskInTheReadOnlyMode) {
    add({L"ABC"});
    scene().SetSceneMode(ReadOnlyMode);
    run(L"ImportFile", L"/tmp/a.abc");
    run(L"ExportFile", L"/tmp/a.abc");
    EXPECT_TRUE(dialogs.calls.empty() && work.empty() && log.entries.empty());
}

TEST_F(FileCommands, DoNotEvenAskDuringSimulation) {
    add({L"ABC"});
    scene().SetSceneMode(SimulationMode);
    scene().BeginChangeBlock(true);  // which a simulation holds
    run(L"ImportFile", L"/tmp/a.abc");
    run(L"ExportFile", L"/tmp/a.abc");
    EXPECT_TRUE(dialogs.calls.empty() && work.empty() && log.entries.empty());
    scene().Stop();
}

TEST_F(FileCommands, OfAHostWithoutDialogsLogOneLineAndEndAsIfCancelled) {
    add({L"ABC"});
    Mirrel::gMirrel.fileDialogs = nullptr;
    int const before = undoCount();
    scene().RunCommand(L"ImportFile");
    scene().RunCommand(L"ExportFile");
    EXPECT_EQ(log.entries, (std::vector<RecordingLog::Entry>{
                               {RecordingLog::Warning, L"Import File: this host has no file dialog"},
                               {RecordingLog::Warning, L"Export File: this host has no file dialog"}}));
    EXPECT_TRUE(work.empty());
    EXPECT_EQ(undoCount(), before + 2);
}

// ---- where the parameter names the file ----

TEST_F(FileCommands, TakeTheFileOfTheirParameterWithoutAsking) {
    add({L"ABC"});
    application().Settings().Object(L"ImportFile").Attribute(L"File").SetString(L"/tmp/in.abc");
    application().Settings().Object(L"ExportFile").Attribute(L"File").SetString(L"/tmp/out.abc");
    run(L"ImportFile", L"/tmp/answer.abc");
    run(L"ExportFile", L"/tmp/answer.abc");
    EXPECT_TRUE(dialogs.calls.empty());
    EXPECT_EQ(work, (std::vector<std::wstring>{L"import ABC /tmp/in.abc", L"export ABC /tmp/out.abc"}));
}

TEST_F(FileCommands, AskAgainAfterTheRunThatTookTheParameter) {
    add({L"ABC"});
    XImportFile const import(application().Settings().Object(L"ImportFile"));
    import.File().SetString(L"/tmp/none.xyz");
    run(L"ImportFile", L"/tmp/a.abc");
    EXPECT_EQ(log.errors().back(), L"Unable to import the file at \"/tmp/none.xyz\"");
    EXPECT_EQ(import.File().String(), L"");
    run(L"ImportFile", L"/tmp/a.abc");
    EXPECT_EQ(work, std::vector<std::wstring>{L"import ABC /tmp/a.abc"});
}

TEST_F(FileCommands, WorkInAHostWithoutDialogsByTheirParameter) {
    add({L"ABC"});
    Mirrel::gMirrel.fileDialogs = nullptr;
    application().Settings().Object(L"ImportFile").Attribute(L"File").SetString(L"/tmp/in.abc");
    scene().RunCommand(L"ImportFile");
    EXPECT_EQ(work, std::vector<std::wstring>{L"import ABC /tmp/in.abc"});
    EXPECT_TRUE(log.entries.empty());
}

// ---- parameters ----

TEST_F(FileCommands, HaveTheParametersOfTranslators) {
    XImportFile const import(application().Settings().Object(L"ImportFile"));
    XExportFile const written(application().Settings().Object(L"ExportFile"));
    ASSERT_TRUE(import.IsValid() && written.IsValid());
    EXPECT_EQ(import.ImportMode().Enumeration(), XImportFile::AddObjects);
    EXPECT_EQ(import.LinearUnits().Enumeration(), file_units::AutomaticLength);
    EXPECT_EQ(import.AngularUnits().Enumeration(), file_units::AutomaticAngle);
    EXPECT_FALSE(import.Characterize().Boolean());
    EXPECT_TRUE(import.ResetTimeline().Boolean());
    EXPECT_EQ(written.LinearUnits().Enumeration(), file_units::AutomaticLength);
    EXPECT_EQ(written.AngularUnits().Enumeration(), file_units::AutomaticAngle);
    EXPECT_FALSE(written.ExportSelected().Boolean());
    std::vector<std::wstring> names;
    for (int i = 8; i <= 13; ++i) names.push_back(import.Attribute(i).Name());
    for (int i = 8; i <= 11; ++i) names.push_back(written.Attribute(i).Name());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"ImportMode", L"LinearUnits", L"AngularUnits", L"Characterize",
                                                L"ResetTimeline", L"File", L"LinearUnits", L"AngularUnits",
                                                L"ExportSelected", L"File"}));
}

}  // namespace
}  // namespace Tavo
