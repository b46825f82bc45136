#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

class LuaScriptTest : public Scripts {};

TEST_F(LuaScriptTest, RunsAScriptAsOneUndoStep) {
    int const before = undoCount();
    run("local a = scene:createObject('Joint') a:setName('hips') scene:createObject('Joint')");
    EXPECT_EQ(before + 1, undoCount());
    EXPECT_EQ(L"Execute Lua Script", scene().SceneGraph()->getUndoLabel());
    scene().Undo();
    EXPECT_FALSE(scene().IsObject(L"hips"));
}

TEST_F(LuaScriptTest, GivesMinusOneWithoutAState) {
    LuaPlus::LuaStateOwner* const none = nullptr;
    XLuaScript script(none);
    EXPECT_EQ(0, script.RunScript(L"x = 1"));
}

TEST_F(LuaScriptTest, CallsChainWhereThereIsNothingToGiveBack) {
    EXPECT_EQ("hips", eval("return scene:createObject('Joint'):setName('hips'):setTranslation(1, 2, 3):name()"));
}

TEST_F(LuaScriptTest, ACallWithADotFails) {
    EXPECT_EQ("script:2: Scene:isValid: argument 1 is not the table that it belongs to: call it with a colon",
              failure("scene.isValid()"));
}

TEST_F(LuaScriptTest, ATableWithoutASceneFails) {
    EXPECT_EQ("script:2: Invalid scene ID", failure("scene.isValid({})"));
}

TEST_F(LuaScriptTest, ATableKeptAfterTheObjectIsDeletedIsInvalidAndItsCallsDoNothing) {
    run("kept = scene:createObject('Joint')");
    scene().Object(L"Scene|joint").Delete();
    EXPECT_EQ("false", eval("return kept:isValid()"));
    EXPECT_EQ("", eval("return kept:name()"));
    run("kept:setName('ghost')");
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(LuaScriptTest, AttributesAreFieldsOfTheObject) {
    EXPECT_EQ("TranslationX", eval("return scene:createObject('Joint').TranslationX:name()"));
    EXPECT_EQ("nil", eval("return scene:createObject('Joint').NoSuchThing"));
    EXPECT_EQ("true", eval("local j = scene:createObject('Joint') return rawequal(j.Visible, j.Visible)"));
}

TEST_F(LuaScriptTest, PairsShowsAllAttributesAndFunctions) {
    EXPECT_EQ("true true true",
              eval("local seen, j = {}, scene:createObject('Joint') for k in pairs(j) do seen[k] = true end "
                   "return seen.TranslationX, seen.setTranslation, seen.__objectID"));
}

TEST_F(LuaScriptTest, AssignedFieldsStayAsTheyWereAssigned) {
    EXPECT_EQ("5 nil nil", eval("local j = scene:createObject('Joint') j.TranslationX = 5 j.Visible = nil "
                                "return j.TranslationX, j.Visible, j.Colour and nil"));
}

TEST_F(LuaScriptTest, APartialVectorStartsFromZero) {
    EXPECT_EQ("(0, 2, 0)", eval("return scene:createObject('Joint'):setTranslation({y = 2}):translation()"));
}

TEST_F(LuaScriptTest, AWrongKindNamesFunctionAndArgument) {
    EXPECT_EQ("script:2: Transform:setTranslation: argument 1 (value) must be a vector, not boolean",
              failure("scene:createObject('Joint'):setTranslation(true)"));
}

TEST_F(LuaScriptTest, UndoInAScriptTakesBackWhatTheScriptDid) {
    EXPECT_EQ("true false true", eval("local j = scene:createObject('Joint') local a = j:isValid() scene:undo() "
                                      "local b = j:isValid() scene:redo() return a, b, j:isValid()"));
}

TEST_F(LuaScriptTest, TablesOfOneObjectAreEqual) {
    EXPECT_EQ("true false", eval("local j = scene:createObject('Joint') return j == scene:object('Scene|joint'), j == "
                                 "scene:createObject('Joint')"));
}

TEST_F(LuaScriptTest, AFailingScriptIsLoggedAndKeepsWhatItDid) {
    EXPECT_EQ("script:2: stop", failure("scene:createObject('Joint') error('stop')"));
    EXPECT_TRUE(scene().IsObject(L"Scene|joint"));
}

TEST_F(LuaScriptTest, AFailingScriptCanBeTakenBack) {
    lua().SetTakesBackFailures(true);
    failure("kept = scene:createObject('Joint') error('stop')");
    EXPECT_EQ("false", eval("return kept:isValid()"));
}

TEST_F(LuaScriptTest, ValuesAreWrittenBackIntoTheirTable) {
    run("v = scene:createObject('Joint'):setTranslation(3, 0, 4):translation()");
    EXPECT_EQ("5 (0.6, 0, 0.8) 0.8", eval("local m = v:magnitude() v:normalize() "
                                          "return string.format('%g', m), v, string.format('%.1f', v.z)"));
}

TEST_F(LuaScriptTest, MetamethodsMayBeCalledWithAnything) {
    run("local meta = getmetatable(scene:createObject('Joint')) "
        "for _, method in ipairs({'__index', '__newindex', '__pairs', '__eq', '__tostring'}) do "
        "for _, first in ipairs({5, 'x', true, print, {}}) do pcall(meta[method], first, 'name', nil) end "
        "pcall(meta[method]) end "
        "local step = pairs(scene:createObject('Joint')) pcall(step, 5) pcall(step)");
}

// The last finalizers of a state run when it is closed.
TEST_F(LuaScriptTest, FinalizersMayCallFunctionsWhenTheStateCloses) {
    run("local j = scene:createObject('Joint') setmetatable({}, {__gc = function() j:name() end})");
    application().Shutdown();
}

TEST(LuaScript, AStateThatLivesLongerThanTheApplicationKeepsFunctionsThatFail) {
    LuaPlus::LuaStateOwner owner;
    XApplication::Instance().Startup(&owner, nullptr, L"");
    std::string error;
    EXPECT_EQ(0, owner->DoString("scene = app.scene() valid = scene.isValid", "=test", error)) << error;
    XApplication::Instance().Shutdown();
    EXPECT_NE(0, owner->DoString("valid(scene)", "=test", error));
    EXPECT_EQ(0u, error.find("test:1: the application was shut down")) << error;
}

}  // namespace
}  // namespace Tavo
