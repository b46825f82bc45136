// Scripts in files: those of a directory, of the start, and the one that every new scene runs.
#include "tests/extension/lua/script_fixture.h"
#include <filesystem>
#include <fstream>

namespace Tavo {
namespace {

class ScriptFiles : public Scripts {
protected:
    ScriptFiles() {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~ScriptFiles() override { std::filesystem::remove_all(folder); }

    void write(std::string const& name, std::string const& text) { std::ofstream(folder / name) << text; }
    std::wstring directory() const { return folder.wstring() + L"/"; }
    void makeNew(std::string const& initialization) {
        write("InitializeScene.lua", initialization);
        scene().SetScriptPath(directory());
        scene().New();
    }

    std::filesystem::path const folder =
        std::filesystem::temp_directory_path() /
        ("tavo_scripts_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

// ---- the scripts of a directory ----

TEST_F(ScriptFiles, AllScriptsOfADirectoryRun) {
    for (char const* name : {"a", "b", "c"})
        write(name + std::string(".lua"), "app.scene():createObject('Joint'):setName('" + std::string(name) + "')");
    write("d.txt", "error('no script')");
    EXPECT_TRUE(scene().LoadScripts(folder.wstring()));
    for (char const* name : {"a", "b", "c"}) EXPECT_TRUE(scene().IsObject(L"Scene|" + Qelutils::fromUtf8(name)));
    EXPECT_TRUE(log.errors().empty());
}

// The order is the directory's, so each fails: only one of them has run.
TEST_F(ScriptFiles, TheFirstScriptThatFailsEndsTheRest) {
    for (char const* name : {"a.lua", "b.lua", "c.lua"}) write(name, "ran = (ran or 0) + 1 error('stop')");
    EXPECT_FALSE(scene().LoadScripts(folder.wstring()));
    EXPECT_EQ("1", eval("return ran"));
    EXPECT_EQ(1u, log.errors().size());
}

TEST_F(ScriptFiles, AScriptThatIsNoLuaFails) {
    write("a.lua", "this is no Lua");
    EXPECT_FALSE(scene().LoadScripts(folder.wstring()));
    ASSERT_EQ(1u, log.errors().size());
    EXPECT_EQ(0u, log.errors()[0].find(L"Error running script: "));
}

TEST_F(ScriptFiles, AMissingDirectoryIsNoFailure) {
    EXPECT_TRUE(scene().LoadScripts((folder / "none").wstring()));
    EXPECT_TRUE(scene().LoadScripts(L""));
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(ScriptFiles, EachScriptOfADirectoryIsAStep) {
    write("a.lua", "app.scene():createObject('Joint')");
    write("b.lua", "app.scene():createObject('Joint')");
    int const before = undoCount();
    EXPECT_TRUE(scene().LoadScripts(folder.wstring()));
    EXPECT_EQ(before + 2, undoCount());
}

// ---- the scripts of the start ----

TEST_F(ScriptFiles, TheStartRunsItsScript) {
    write("InitializeApplication.lua", "started = 'yes'");
    application().RunStartupScripts(directory());
    EXPECT_EQ("yes", eval("return started"));
}

TEST_F(ScriptFiles, AMissingOrFailingScriptDoesNotStopTheStart) {
    application().RunStartupScripts(directory());
    EXPECT_TRUE(log.errors().empty());
    write("InitializeApplication.lua", "before = 1 error('stop')");
    application().RunStartupScripts(directory());
    EXPECT_EQ(1u, log.errors().size());
    EXPECT_EQ("1", eval("return before"));
}

// ---- the script of a new scene ----

TEST_F(ScriptFiles, ANewSceneRunsItsScriptAndNothingOfItCanBeUndone) {
    makeNew("local j = app.scene():createObject('Joint') j:setName('hips') j:setTranslation(1, 2, 3)");
    EXPECT_TRUE(scene().IsObject(L"Scene|hips"));
    EXPECT_EQ(0, undoCount());
    scene().Undo();
    EXPECT_TRUE(scene().IsObject(L"Scene|hips"));
    EXPECT_TRUE(scene().SceneGraph()->isAtCheckpoint());
}

TEST_F(ScriptFiles, AScriptThatUndoesDoesNotHarmANewScene) {
    makeNew(
        "local s = app.scene() s:createObject('Joint'):setName('hips') s:undo() s:redo() s:beginUndo('x') s:undo()");
    EXPECT_TRUE(scene().IsObject(L"Scene|hips"));
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    EXPECT_EQ(0, undoCount());
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(ScriptFiles, AFailingScriptDoesNotStopANewScene) {
    makeNew("app.scene():createObject('Joint'):setName('hips') error('stop')");
    EXPECT_TRUE(scene().IsObject(L"Scene|hips"));
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    EXPECT_EQ(1u, log.errors().size());
    run("scene:createObject('Joint')");
    EXPECT_EQ(1, undoCount());
}

// Each one begins a new scene, which runs the script, until Lua has enough of it.
TEST_F(ScriptFiles, AScriptThatEmptiesTheSceneAgainAndAgainEnds) {
    makeNew("times = (times or 0) + 1 app.scene():clear()");
    EXPECT_FALSE(log.errors().empty());
    EXPECT_EQ("true", eval("return times > 1"));
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    write("InitializeScene.lua", "");
    scene().New();
    run("scene:createObject('Joint')");
    EXPECT_EQ(1, undoCount());
}

TEST_F(ScriptFiles, ClearInAScriptRunsTheScriptOfANewScene) {
    makeNew("app.scene():createObject('Joint'):setName('hips')");
    run("scene:object('Scene|hips'):delete() scene:clear() again = scene:object('Scene|hips')");
    EXPECT_EQ("true", eval("return again:isValid()"));
}

}  // namespace
}  // namespace Tavo
