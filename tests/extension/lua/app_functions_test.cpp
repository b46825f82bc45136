// The functions of the application, through scripts; and files that scripts bring in.
#include "plugins/bvh/translator.h"
#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/script_fixture.h"
#include <filesystem>

namespace Tavo {
namespace {

class AppFunctionsTest : public Scripts {
protected:
    static XObject node(wchar_t const* command) { return application().Settings().Object(command); }
};

TEST_F(AppFunctionsTest, StandInTheirOrder) {
    std::string names;
    for (XScriptFunction const& row : AppFunctions().functions) names += row.Name() + std::string(" ");
    EXPECT_EQ(names, "command resetActiveCommand runActiveCommand runLastCommand scene ");
}

TEST_F(AppFunctionsTest, ACommandIsTheNodeThatHoldsItsParameters) {
    EXPECT_EQ("AlignAxis true true", eval("local c = app.command('AlignAxis') "
                                          "return c:name(), c.Axis:isValid(), app:command('AlignAxis') == c"));
    EXPECT_EQ("nil nil", eval("return app.command('NoSuchCommand'), app.command()"));
}

TEST_F(AppFunctionsTest, TheActiveCommandIsResetAndRun) {
    application().SetActiveCommandName(L"AlignAxis");
    node(L"AlignAxis").Attribute(L"Axis").SetEnumeration(2);
    run("app.resetActiveCommand()");
    EXPECT_EQ(node(L"AlignAxis").Attribute(L"Axis").Enumeration(), 0);
    application().SetActiveCommandName(L"CreateJoint");
    EXPECT_EQ("1 joint", eval("local made = app.runActiveCommand() return #made, made[1]:name()"));
}

TEST_F(AppFunctionsTest, TheLastCommandRunsAgain) {
    run("app.scene():run('CreateJoint')");
    EXPECT_EQ("1 true", eval("local made = app:runLastCommand() return #made, made[1]:isValid()"));
    EXPECT_EQ(application().LastCommandName(), L"CreateJoint");
    EXPECT_EQ("2", eval("return #scene:objectsByType('Joint')"));
}

TEST_F(AppFunctionsTest, WithoutACommandToRunTheErrorIsLogged) {
    EXPECT_EQ("0", eval("return #app.runLastCommand()"));
    EXPECT_FALSE(log.errors().empty());
}

TEST_F(AppFunctionsTest, TheUndoCommandRunsOutsideTheStepOfTheScript) {
    application().SetActiveCommandName(L"Undo");
    EXPECT_EQ("false", eval("local j = scene:createObject('Joint') app.runActiveCommand() return j:isValid()"));
}

TEST_F(AppFunctionsTest, TheSceneIsTheActiveOne) {
    application().AddScene();
    EXPECT_EQ("true", eval("return app.scene():isValid()"));
    EXPECT_EQ(std::to_string(scene().DatabaseID()), eval("return app.scene().__sceneID"));
}

TEST_F(AppFunctionsTest, InASandboxNoCommandThatReachesFilesRuns) {
    LuaPlus::LuaStateOwner owner(LuaPlus::LuaLibraries::Sandboxed);
    XLuaScript script(&owner);
    application().SetActiveCommandName(L"ExportFile");
    application().SetLastCommandName(L"ImportFile");
    EXPECT_NE(0, script.RunScript(L"app.runActiveCommand()"));
    EXPECT_EQ(script.LastError().substr(0, script.LastError().find('\n')),
              "script:1: app:runActiveCommand: ExportFile reaches files, which is not allowed in a sandbox");
    EXPECT_NE(0, script.RunScript(L"app:runLastCommand()"));
    EXPECT_TRUE(log.texts(RecordingLog::Warning).empty());
}

// ---- files ----

class ImportTest : public AppFunctionsTest {
protected:
    ImportTest() {
        application().Settings().CoreModule().Register(new XBvhTranslatorDef);
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(std::filesystem::path(TAVO_SOURCE_DIR) / "examples/walk.bvh", folder / "walk.bvh",
                                   std::filesystem::copy_options::overwrite_existing);
    }
    ~ImportTest() override { std::filesystem::remove_all(folder); }
    static void setFile(wchar_t const* command, std::filesystem::path const& file) {
        node(command).Attribute(L"File").SetString(file.wstring());
    }

    std::filesystem::path const folder = std::filesystem::temp_directory_path() / "tavo_script_import";
};

TEST_F(ImportTest, AScriptImportsAClipAsOneStep) {
    int const before = undoCount();
    setFile(L"ImportFile", folder / "walk.bvh");
    EXPECT_EQ("true 0", eval("scene:run('ImportFile') return scene:objectsByType('Joint')[1]:isValid(), "
                             "#app.command('ImportFile').File:name() - 4"));
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_TRUE(log.errors().empty());
    scene().Undo();
    EXPECT_EQ("0", eval("return #scene:objectsByType('Joint')"));
}

TEST_F(ImportTest, AScriptExportsWhatItImported) {
    setFile(L"ImportFile", folder / "walk.bvh");
    setFile(L"ExportFile", folder / "out.bvh");
    run("scene:run('ImportFile') scene:run('ExportFile')");
    EXPECT_GT(std::filesystem::file_size(folder / "out.bvh"), 1000u);
}

TEST_F(ImportTest, AFileThatIsNotThereIsLogged) {
    setFile(L"ImportFile", folder / "none.bvh");
    run("scene:run('ImportFile')");
    EXPECT_FALSE(log.errors().empty());
}

}  // namespace
}  // namespace Tavo
