// What scripts may rely on beyond single functions: other scenes, coroutines, caught errors, handlers, and tables as
// Lua's own functions see them.
#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

class ScriptBehaviour : public Scripts {
protected:
    // A further scene, the global `other`, that is not the active one.
    XScene& addOther(char const* name = "other") {
        int const index = application().AddScene();
        XScene& other = application().GetScene(index);
        other.New();
        application().SetActiveScene(0);
        lua().PushScene(other);
        lua().State()->SetGlobal(name, lua().State()->Stack(-1));
        lua().State()->Pop();
        return other;
    }
    bool has(std::wstring const& name) { return scene().IsObject(L"Scene|" + name); }
};

// ---- other scenes than the active one ----

TEST_F(ScriptBehaviour, AScriptChangesAnotherSceneAndThatOneAlone) {
    XScene& other = addOther();
    int const before = undoCount();
    run("other:createObject('Joint'):setName('hips')");
    EXPECT_TRUE(other.IsObject(L"Scene|hips"));
    EXPECT_FALSE(has(L"hips"));
    EXPECT_EQ(before, undoCount());
}

TEST_F(ScriptBehaviour, WhatAScriptChangedInAnotherSceneIsUndoneThere) {
    XScene& other = addOther();
    run("other:beginUndo('Make') joint = other:createObject('Joint') other:endUndo('Make')");
    EXPECT_EQ(L"Make", other.SceneGraph()->getUndoLabel());
    EXPECT_EQ("true", eval("return joint:isValid()"));
    other.Undo();
    EXPECT_EQ("false", eval("return joint:isValid()"));
    EXPECT_EQ("true", eval("other:redo() return joint:isValid()"));
}

TEST_F(ScriptBehaviour, ObjectsOfTwoScenesAreDifferentAlthoughTheirIdsAreTheSame) {
    addOther();
    addOther("third");
    EXPECT_EQ("true false", eval("local a, b = other:createObject('Joint'), third:createObject('Joint') "
                                 "return a:id() == b:id(), a == b"));
}

TEST_F(ScriptBehaviour, TheBlocksOfAFailingScriptAreClosedInEveryScene) {
    XScene& other = addOther();
    failure("other:beginUndo('a') other:beginUndo('b') scene:beginUndo('c') other:createObject('Joint') error('stop')");
    EXPECT_FALSE(other.SceneGraph()->isInChangeBlock());
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    other.Undo();
    EXPECT_FALSE(other.IsObject(L"Scene|joint"));
}

TEST_F(ScriptBehaviour, AClosedSceneIsNeverAnotherOne) {
    addOther();
    run("joint = other:createObject('Joint')");
    application().RemoveScene(1);
    for (int i = 0; i < 5; ++i) {
        application().AddScene();
        application().ActiveScene().New();
        run("scene:createObject('Joint')");
        EXPECT_EQ("false false  nil", eval("return other:isValid(), joint:isValid(), joint:name(), joint:parent()"));
        application().RemoveScene(1);
    }
}

// ---- coroutines ----

TEST_F(ScriptBehaviour, CoroutinesCallFunctionsAndYieldBetween) {
    EXPECT_EQ("a b c true",
              eval("local co = coroutine.wrap(function() for _, name in ipairs{'a', 'b', 'c'} do "
                   "coroutine.yield(scene:createObject('Joint'):setName(name):name()) end return 'end' end) "
                   "return co(), co(), co(), co() == 'end'"));
    EXPECT_TRUE(has(L"a") && has(L"b") && has(L"c"));
}

TEST_F(ScriptBehaviour, ACoroutineGoesOnInALaterScript) {
    run("later = coroutine.create(function() local j = scene:createObject('Joint') coroutine.yield() j:setName('late') "
        "error('over', 0) end) assert(coroutine.resume(later))");
    EXPECT_EQ("false over", eval("return coroutine.resume(later)"));
    EXPECT_TRUE(has(L"late"));
    EXPECT_EQ("dead", eval("return coroutine.status(later)"));
}

TEST_F(ScriptBehaviour, AnErrorInACoroutineNamesTheFunction) {
    EXPECT_EQ("false script:3: Transform:setTranslation: argument 1 (value) must be a vector, not boolean",
              eval("return coroutine.resume(coroutine.create(function() "
                   "scene:createObject('Joint'):setTranslation(true) end))"));
}

TEST_F(ScriptBehaviour, ACoroutineUndoesWhileHandlersListen) {
    run("count = 0 scene:addEventHandler('OnSceneChanged', function() count = count + 1 "
        "app.scene():object('Scene'):children() end)");
    EXPECT_EQ("false true", eval("local j = scene:createObject('Joint') "
                                 "coroutine.wrap(function() scene:undo() coroutine.yield() end)() "
                                 "local gone = j:isValid() "
                                 "coroutine.wrap(function() scene:redo() end)() return gone, j:isValid()"));
    EXPECT_EQ("true", eval("return count >= 3"));
    EXPECT_TRUE(log.errors().empty());
}

// ---- errors that are caught ----

TEST_F(ScriptBehaviour, ACaughtErrorLeavesTheScriptOneStep) {
    int const before = undoCount();
    EXPECT_EQ("false true", eval("local j = scene:createObject('Joint') "
                                 "local ok = pcall(function() j:setName('x') j:setTranslation(true) end) "
                                 "return ok, j:isValid()"));
    EXPECT_EQ(before + 1, undoCount());
    EXPECT_TRUE(has(L"x"));
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    scene().Undo();
    EXPECT_FALSE(has(L"x"));
}

TEST_F(ScriptBehaviour, ErrorsOfAllKindsAreCaughtAThousandTimes) {
    run("local j = scene:createObject('Joint') for i = 1, 1000 do "
        "assert(not pcall(j.setTranslation, j, 'x')) assert(not pcall(scene.createObject)) "
        "assert(not pcall(j.setParent, j, {})) assert(not pcall(error, {})) "
        "assert(select(2, xpcall(j.setTranslation, function() return j:name() end, j, true)) == 'joint') end");
    EXPECT_TRUE(has(L"joint"));
}

// ---- handlers ----

TEST_F(ScriptBehaviour, AHandlerRunsWhileAScriptUndoes) {
    run("seen = '' joint = scene:createObject('Joint') "
        "scene:addEventHandler('OnSceneChanged', function() seen = seen .. tostring(joint:isValid()) .. ' ' end)");
    run("seen = '' scene:undo() scene:undo() scene:redo() seen = seen .. '.'");
    EXPECT_NE(std::string::npos, eval("return seen").find("false"));
    EXPECT_NE(std::string::npos, eval("return seen").find("true"));
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
}

TEST_F(ScriptBehaviour, AHandlerThatUndoesDuringAnUndoDoesNotHarm) {
    run("for i = 1, 5 do scene:createObject('Joint') end depth = 0 "
        "scene:addEventHandler('OnSceneChanged', function() if depth < 3 then depth = depth + 1 app.scene():undo() "
        "depth = depth - 1 end end)");
    for (int i = 0; i < 5; ++i) run("scene:createObject('Joint') scene:undo() scene:redo()");
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
}

// An observer that is told in the middle of a script runs one of its own.
class ScriptingObserver : public XSceneObserver {
public:
    void OnSceneChanged(XSceneChange const&, bool) override {
        if (std::exchange(isRunning, true)) return;
        status = XApplication::Instance().LuaScript()->RunScript(L"inner = (inner or 0) + 1");
        isRunning = false;
    }
    bool isRunning = false;
    int status = -1;
};

TEST_F(ScriptBehaviour, ScriptsRunInsideScripts) {
    ScriptingObserver observer;
    application().AddSceneObserver(&observer);
    EXPECT_EQ("3 true", eval("scene:createObject('Joint') scene:undo() scene:redo() return inner, scene:isValid()"));
    application().RemoveSceneObserver(&observer);
    EXPECT_EQ(0, observer.status);
}

TEST_F(ScriptBehaviour, AHandlerThatEmptiesTheSceneDoesNotHarm) {
    run("cleared = 0 scene:addEventHandler('OnSelectionChanged', function() if cleared == 0 then cleared = 1 "
        "app.scene():clear() end end)");
    run("kept = scene:createObject('Joint') kept:select()");
    EXPECT_EQ("1 false", eval("return cleared, kept:isValid()"));
}

// ---- tables as Lua sees them ----

TEST_F(ScriptBehaviour, EachTableIsAKeyOfItsOwnAlthoughTheyAreEqual) {
    EXPECT_EQ("1 nil true", eval("local a = scene:createObject('Joint') local b = scene:object(a:id()) "
                                 "local map = {[a] = 1} return map[a], map[b], a == b"));
}

TEST_F(ScriptBehaviour, TablesCompareByWhatTheyName) {
    EXPECT_EQ("true true true false false false",
              eval("local j = scene:createObject('Joint') "
                   "return j:attribute('TranslationX') == j.TranslationX, app.scene() == app.scene(), "
                   "j:parent() == j:parent(), j == j.TranslationX, j == scene, j == 1"));
}

TEST_F(ScriptBehaviour, TheDeadAreEqualToThemselvesAlone) {
    EXPECT_EQ("true true false", eval("local a, b = scene:createObject('Joint'), scene:createObject('Joint') "
                                      "local again = scene:object(a:id()) a:delete() b:delete() "
                                      "return a == a, a == again, a == b"));
}

TEST_F(ScriptBehaviour, TablesPrintWhatTheyName) {
    EXPECT_EQ("Joint Scene|joint", eval("return scene:createObject('Joint')"));
    EXPECT_EQ(0u, eval("return scene:object('Scene|joint').TranslationX").find("Attribute Scene|joint"));
    EXPECT_EQ("invalid", eval("local j = scene:object('Scene|joint') j:delete() return j"));
    EXPECT_EQ(0u, eval("return scene").find("Scene: "));
}

TEST_F(ScriptBehaviour, PairsShowsCustomAttributesAndWhatHidesFunctions) {
    EXPECT_EQ("7 true 2 function",
              eval("local j = scene:createObject('Joint') j:addCustomInteger('Load', 7) j:addCustomInteger('copy', 2) "
                   "local seen = {} for k, v in pairs(scene:object(j:id())) do seen[k] = v end "
                   "return seen.Load:get(), seen.TranslationX:isValid(), seen.copy:get(), type(seen.delete)"));
}

TEST_F(ScriptBehaviour, PairsShowsThePartsOfAComposite) {
    EXPECT_EQ("true true", eval("local colour, seen = scene:createObject('Joint').Colour, {} "
                                "for k, v in pairs(colour) do seen[k] = v end "
                                "return seen[colour:attribute(1):name()] == colour:attribute(1), "
                                "seen[colour:attribute(4):name()] == colour:attribute(4)"));
}

TEST_F(ScriptBehaviour, PairsOnTheDeadShowsFunctionsAlone) {
    EXPECT_EQ("function nil",
              eval("local j, seen = scene:createObject('Joint'), {} j:delete() "
                   "for k, v in pairs(j) do seen[k] = type(v) end return seen.name, seen.TranslationX"));
}

TEST_F(ScriptBehaviour, PairsOnTheDeadDoesNotHideTheFieldsOfWhatComesBack) {
    EXPECT_EQ("nil 3 true true",
              eval("local j = scene:createObject('Joint') j:addCustomInteger('Load', 3) "
                   "local colour = j.Colour scene:undo() "
                   "for k in pairs(j) do end for k in pairs(colour) do end j.other = nil "
                   "local gone = j.Load scene:redo() return gone, j.Load:get(), "
                   "j.Visible:isValid(), colour[colour:attribute(1):name()] == colour:attribute(1)"));
}

TEST_F(ScriptBehaviour, AFieldOfADeletedAttributeOwnerIsInvalidUntilTheObjectComesBack) {
    EXPECT_EQ("false true 3", eval("j = scene:createObject('Joint') j:addCustomInteger('Load', 3) load = j.Load "
                                   "scene:undo() local gone = load:isValid() scene:redo() "
                                   "return gone, load:isValid(), load:get()"));
}

}  // namespace
}  // namespace Tavo
