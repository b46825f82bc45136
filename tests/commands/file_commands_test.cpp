// Foreign files in and out, through a host's dialogs and without any.
#include "qel/widgets/file_dialog.h"
#include "tests/commands/fixture.h"

namespace Tavo {
namespace {

class AskedDialogs : public wxUtils::FileDialogs {
public:
    AskedDialogs() { Mirrel::gMirrel.fileDialogs = this; }
    ~AskedDialogs() override { Mirrel::gMirrel.fileDialogs = nullptr; }
    int show(wxUtils::FileDialogRequest const& request, std::wstring& path) override {
        asked.push_back(request);
        path = answer;
        return result;
    }
    void raiseMainWindow() override { ++raised; }

    std::vector<wxUtils::FileDialogRequest> asked;
    std::wstring answer = L"walk.abc";
    int result = wxUtils::DialogOK, raised = 0;
};

struct Files {
    std::vector<std::wstring> imported, exported;
};

// Creates a joint, so that an import can be seen to be a step.
class JointTranslator : public XTranslatorDef {
public:
    JointTranslator(std::wstring extension, bool imports, bool exports, Files& files) :
        _extension(std::move(extension)), _imports(imports), _exports(exports), _files(files) {}
    std::wstring Extension() const override { return _extension; }
    std::wstring Filter() const override { return _extension + L" files (*." + _extension + L")|*." + _extension; }
    bool SupportsImport() const override { return _imports; }
    bool SupportsExport() const override { return _exports; }
    bool Import(XScene& scene, std::wstring const& path) override {
        scene.CreateObject(XJoint::TypeID).SetName(L"imported");
        _files.imported.push_back(path);
        return true;
    }
    bool Export(XScene&, std::wstring const& path) override {
        _files.exported.push_back(path);
        return true;
    }

private:
    std::wstring _extension;
    bool _imports, _exports;
    Files& _files;
};

class FileCommands : public CommandTest {
protected:
    static void add(std::wstring const& extension, bool imports, bool exports, Files& files) {
        settings().CoreModule().Register(new JointTranslator(extension, imports, exports, files));
    }
    Files files;
};

TEST_F(FileCommands, AskForAFileWithAFilterOfTheTranslatorsThatCan) {
    AskedDialogs dialogs;
    add(L"XYZ", true, true, files);
    add(L"ABC", true, false, files);
    add(L"DEF", false, true, files);
    dialogs.result = wxUtils::DialogCancelled;
    run(L"ImportFile");
    run(L"ExportFile");
    ASSERT_EQ(dialogs.asked.size(), 2u);
    EXPECT_EQ(dialogs.asked[0].title, L"Import File");
    EXPECT_EQ(dialogs.asked[0].filter, L"All Files (*.*)|*.*|ABC files (*.ABC)|*.ABC|XYZ files (*.XYZ)|*.XYZ");
    EXPECT_EQ(dialogs.asked[0].style, wxUtils::OpenFile);
    EXPECT_EQ(dialogs.asked[1].title, L"Export File");
    EXPECT_EQ(dialogs.asked[1].filter, L"All Files (*.*)|*.*|DEF files (*.DEF)|*.DEF|XYZ files (*.XYZ)|*.XYZ");
    EXPECT_EQ(dialogs.asked[1].style, wxUtils::SaveFile);
    for (wxUtils::FileDialogRequest const& request : dialogs.asked) EXPECT_EQ(request.directory + request.file, L"");
    EXPECT_EQ(dialogs.raised, 2);
    EXPECT_TRUE(files.imported.empty() && files.exported.empty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(FileCommands, WithoutTranslatorsOfferAllFiles) {
    AskedDialogs dialogs;
    dialogs.result = wxUtils::DialogCancelled;
    run(L"ImportFile");
    EXPECT_EQ(dialogs.asked.at(0).filter, L"All Files (*.*)|*.*");
}

TEST_F(FileCommands, AnImportIsOneStep) {
    AskedDialogs dialogs;
    add(L"ABC", true, true, files);
    std::string const before = bytes();
    scene().SceneGraph()->ClearUndoHistory();
    run(L"ImportFile");
    EXPECT_EQ(files.imported, std::vector<std::wstring>{L"walk.abc"});
    EXPECT_EQ(undoCount(), 1);
    std::string const after = bytes();
    EXPECT_FALSE(after == before);
    undo();
    EXPECT_TRUE(bytes() == before);
    redo();
    EXPECT_TRUE(bytes() == after);
}

TEST_F(FileCommands, AnExportChangesNothing) {
    AskedDialogs dialogs;
    add(L"ABC", true, true, files);
    std::string const before = bytes();
    run(L"ExportFile");
    EXPECT_EQ(files.exported, std::vector<std::wstring>{L"walk.abc"});
    EXPECT_TRUE(bytes() == before);
}

TEST_F(FileCommands, AHostWithoutDialogsIsToldOnceARunAndGoesOn) {
    run(L"ImportFile");
    run(L"ExportFile");
    EXPECT_EQ(log.texts(Qelutils::BasicLogger::Warning),
              (std::vector<std::wstring>{L"Import File: this host has no file dialog",
                                         L"Export File: this host has no file dialog"}));
    EXPECT_EQ(log.entries.size(), 2u);
}

}  // namespace
}  // namespace Tavo
