// The functions of scenes, through scripts.
#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/script_fixture.h"
#include <filesystem>
#include <fstream>
#include <limits>

namespace Tavo {
namespace {

class SceneFunctionsTest : public Scripts {
protected:
    // Joints: hips over spine over head, and a tail of its own.
    void build() {
        run("local hips = scene:createObject('Joint') hips:setName('hips')\n"
            "local spine = scene:createObject('Joint', hips) spine:setName('spine')\n"
            "scene:createObject('Joint', spine):setName('head')\n"
            "scene:createObject('Joint'):setName('tail')");
        log.clear();
    }
    static XObject found(wchar_t const* path) { return scene().SceneGraph()->Node(path); }
    static std::vector<std::wstring> selected() {
        std::vector<std::wstring> names;
        Qelutils::Vector<XObject> objects;
        scene().Selection().Objects(objects);
        for (XObject const& object : objects) names.push_back(object.Name());
        return names;
    }
    std::vector<std::wstring> selectedAfter(std::string const& text) {
        run(text);
        return selected();
    }
    using Names = std::vector<std::wstring>;
};

// ---- the vocabulary ----

TEST_F(SceneFunctionsTest, StandInTheirOrder) {
    std::string names;
    for (XScriptFunction const& row : SceneFunctions().functions) names += row.Name() + std::string(" ");
    EXPECT_EQ(names,
              "clear run undo redo beginUndo endUndo reloadScripts addEventHandler copy createObject createNode delete "
              "object objects attribute isValid isPlaying objectsByType objectsSupportingType error info warning "
              "removeEventHandler remove rename setParent stop play playReverse goToFirstFrame goToPreviousFrame "
              "goToNextFrame goToLastFrame unparent activeTool activeViewport activeCamera displayMode colourMode "
              "setActiveTool setActiveViewport setActiveCamera setDisplayMode setColourMode toggleDisplayMode "
              "changeEditMode toggleToolAxis zoomToFit showAllObjectTypes hideAllObjectTypes showObjectType "
              "hideObjectType toggleObjectTypeShown isObjectTypeShown linearUnits angularUnits frameRate "
              "setLinearUnits setAngularUnits setFrameRate startTime endTime playbackStartTime playbackEndTime "
              "setStartTime setEndTime setPlaybackStartTime setPlaybackEndTime time setTime selectionCount "
              "selectedObject selection isSelected clearSelection select deselect selectAppend selectAll selectType "
              "selectParent selectChild selectPrevious selectNext vector quaternion matrix ");
}

// ---- the document ----

TEST_F(SceneFunctionsTest, ClearLeavesANewDocumentWithoutAHistory) {
    build();
    run("scene:createObject('Joint') scene:clear()");
    EXPECT_FALSE(found(L"Scene|hips").IsValid());
    EXPECT_TRUE(scene().RootObject().IsValid());
    EXPECT_EQ(undoCount(), 0);
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
}

TEST_F(SceneFunctionsTest, WhatFollowsOnClearIsOneStep) {
    build();
    run("scene:clear() scene:createObject('Joint') scene:createObject('Joint')");
    EXPECT_EQ(undoCount(), 1);
    scene().Undo();
    EXPECT_FALSE(found(L"Scene|joint").IsValid());
}

TEST_F(SceneFunctionsTest, RunGivesTheFirstResultOfACommand) {
    EXPECT_EQ("true", eval("return scene:run('CreateJoint') == scene:objectsByType('Joint')[1]"));
    EXPECT_EQ("nil", eval("return scene:run('SelectAll')"));
}

TEST_F(SceneFunctionsTest, RunOfAnUnknownCommandIsLogged) {
    EXPECT_EQ("nil", eval("return scene:run('NoSuchCommand')"));
    EXPECT_EQ(log.errors().back(), L"RunCommand could not find command 'NoSuchCommand'");
}

TEST_F(SceneFunctionsTest, CommandsInAScriptAreOneStepWithTheRest) {
    int const before = undoCount();
    run("scene:run('CreateJoint') scene:createObject('Joint') scene:run('CreateTransform')");
    EXPECT_EQ(undoCount(), before + 1);
}

TEST_F(SceneFunctionsTest, TheUndoCommandTakesBackWhatTheScriptDid) {
    EXPECT_EQ("false true", eval("local j = scene:createObject('Joint') scene:run('Undo') local gone = j:isValid() "
                                 "scene:run('Redo') return gone, j:isValid()"));
}

TEST_F(SceneFunctionsTest, ThePlayCommandPlaysOnAfterTheScript) {
    run("scene:createObject('Joint') scene:run('Play')");
    EXPECT_TRUE(scene().IsPlaying());
    EXPECT_TRUE(scene().SceneGraph()->isTransient());
    run("scene:run('Stop')");
    EXPECT_FALSE(scene().IsPlaying());
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
}

TEST_F(SceneFunctionsTest, UndoAndRedoMoveAlongTheHistory) {
    build();
    run("scene:undo()");
    EXPECT_FALSE(found(L"Scene|hips").IsValid());
    run("scene:redo()");
    EXPECT_TRUE(found(L"Scene|hips|spine").IsValid());
}

TEST_F(SceneFunctionsTest, BeginUndoAndEndUndoGoTogether) {
    int const before = undoCount();
    run("scene:beginUndo('first') scene:createObject('Joint') scene:endUndo('second')");
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    EXPECT_EQ("script:2: Scene:endUndo: there is no beginUndo before it", failure("scene:endUndo('none')"));
}

TEST_F(SceneFunctionsTest, ReloadScriptsRunsTheScriptsOfADirectory) {
    std::filesystem::path const folder = std::filesystem::temp_directory_path() / "tavo_reload_scripts";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "a.lua") << "app.scene():createObject('Joint'):setName('fromFile')";
    std::string const path = folder.string();
    EXPECT_EQ("true", eval("return scene:reloadScripts('" + path + "')"));
    EXPECT_TRUE(found(L"Scene|fromFile").IsValid());
    std::ofstream(folder / "a.lua") << "error('no')";
    EXPECT_EQ("false", eval("return scene:reloadScripts('" + path + "')"));
    std::filesystem::remove_all(folder);
    EXPECT_EQ("true", eval("return scene:reloadScripts('" + path + "')"));
}

TEST_F(SceneFunctionsTest, HandlersMustBeFunctions) {
    EXPECT_EQ("false false", eval("return scene:addEventHandler('OnSceneLoaded', 1), "
                                  "scene:removeEventHandler('OnSceneLoaded', {})"));
    EXPECT_EQ("false false",
              eval("return scene:addEventHandler('NoEvent', print), scene:removeEventHandler('NoEvent', print)"));
}

TEST_F(SceneFunctionsTest, MessagesAreLoggedAndTheCallsChain) {
    run("scene:error('100 %d'):warning('careful'):info('done')");
    EXPECT_EQ(log.texts(RecordingLog::Error), Names{L"100 %d"});
    EXPECT_EQ(log.texts(RecordingLog::Warning), Names{L"careful"});
    EXPECT_EQ(log.texts(RecordingLog::Information), Names{L"done"});
}

TEST_F(SceneFunctionsTest, ASceneIsValidUntilItIsGone) {
    application().AddScene();
    run("other = scene");
    EXPECT_EQ("true", eval("return other:isValid()"));
    application().RemoveScene();
    EXPECT_EQ("false", eval("return other:isValid()"));
}

// ---- objects ----

TEST_F(SceneFunctionsTest, ObjectsAreCreatedBelowTheirParent) {
    build();
    EXPECT_TRUE(found(L"Scene|hips|spine|head").IsValid());
    run("scene:createObject('Joint', 'Scene|tail'):setName('tip')");
    EXPECT_TRUE(found(L"Scene|tail|tip").IsValid());
    EXPECT_EQ("true nil", eval("return scene:createNode('Joint', scene:object('Scene|tail')):isValid(), "
                               "scene:createNode('NoSuchNode')"));
    EXPECT_EQ("nil nil", eval("return scene:createObject('NoSuchType'), scene:createObject()"));
}

TEST_F(SceneFunctionsTest, NothingIsCreatedBelowWhatIsGoneOrInAnotherScene) {
    build();
    run("gone = scene:object('Scene|tail') scene:delete(gone)");
    int const before = undoCount();
    EXPECT_EQ("nil nil", eval("return scene:createObject('Joint', gone), scene:createNode('Joint', gone)"));
    EXPECT_EQ(undoCount(), before);
    application().AddScene();
    scene().New();
    run("foreign = scene:createObject('Joint')");
    application().SetActiveScene(0);
    int const after = undoCount();
    EXPECT_EQ("nil", eval("return scene:createObject('Joint', foreign)"));
    EXPECT_EQ(undoCount(), after);
}

TEST_F(SceneFunctionsTest, AnObjectIsFoundByPathOrIdentifier) {
    build();
    EXPECT_EQ("true true", eval("local hips = scene:object('Scene|hips') "
                                "return hips:name() == 'hips', scene:object(hips:id()) == hips"));
    EXPECT_EQ("nil nil nil", eval("return scene:object('nowhere'), scene:object(-5), scene:object()"));
}

TEST_F(SceneFunctionsTest, ObjectsAreFoundByPatternAndType) {
    build();
    EXPECT_EQ("2 hips", eval("local found = scene:objects('Scene|hips|s*') local tops = scene:objects('*hips') "
                             "return #found + #tops, tops[1]:name()"));
    EXPECT_EQ("4 0", eval("return #scene:objectsByType('Joint'), #scene:objectsByType('RenderObject')"));
    EXPECT_EQ("true true", eval("return #scene:objectsSupportingType('Transform') > 4, #scene:objects() > "
                                "#scene:objectsSupportingType('Transform')"));
}

TEST_F(SceneFunctionsTest, AnAttributeIsFoundByPathAndElseByIdentifier) {
    build();
    EXPECT_EQ("TranslationX TranslationX TranslationX",
              eval("local a = scene:attribute('Scene|hips.TranslationX') "
                   "return a:name(), scene:attribute('', a:id()):name(), scene:attribute(a:id()):name()"));
    EXPECT_EQ("false", eval("return scene:attribute('Scene|hips.NoSuchThing'):isValid()"));
}

TEST_F(SceneFunctionsTest, CopyTakesObjectsListsAndPatterns) {
    build();
    run("scene:copy(scene:object('Scene|tail'))");
    EXPECT_TRUE(found(L"Scene|tail_copy").IsValid());
    run("scene:copy({'Scene|hips', scene:object('Scene|tail_copy')})");
    EXPECT_TRUE(found(L"Scene|hips_copy").IsValid());
    EXPECT_TRUE(found(L"Scene|tail_copy_copy").IsValid());
}

TEST_F(SceneFunctionsTest, DeleteTakesTheChildrenAlong) {
    build();
    run("scene:delete('Scene|hi*')");
    EXPECT_FALSE(found(L"Scene|hips").IsValid() || found(L"Scene|spine").IsValid());
    EXPECT_TRUE(found(L"Scene|tail").IsValid());
    scene().Undo();
    EXPECT_TRUE(found(L"Scene|hips|spine|head").IsValid());
    run("local hips = scene:object('Scene|hips') scene:delete({hips, 'Scene|hips|spine', hips, "
        "scene:object('Scene|tail')})");
    EXPECT_FALSE(found(L"Scene|hips").IsValid() || found(L"Scene|tail").IsValid());
}

TEST_F(SceneFunctionsTest, RemoveLeavesTheChildren) {
    build();
    run("scene:remove({'Scene|hips', 'Scene|hips|spine'})");
    EXPECT_TRUE(found(L"Scene|head").IsValid());
    EXPECT_FALSE(found(L"Scene|hips").IsValid());
}

TEST_F(SceneFunctionsTest, RenameMakesNamesUnique) {
    build();
    run("scene:rename('Scene|*', '')");
    EXPECT_TRUE(found(L"Scene|tail").IsValid());
    run("scene:rename({scene:object('Scene|tail'), 'Scene|hips'}, 'part')");
    EXPECT_EQ("part", eval("return scene:object('Scene|part'):name()"));
    EXPECT_FALSE(found(L"Scene|tail").IsValid() || found(L"Scene|hips").IsValid());
    EXPECT_EQ("4", eval("return #scene:objectsByType('Joint')"));
}

TEST_F(SceneFunctionsTest, ObjectsChangeTheirParents) {
    build();
    run("scene:setParent('Scene|tail', scene:object('Scene|hips')):setParent(scene:object('Scene|hips|spine|head'), "
        "'Scene|hips')");
    EXPECT_TRUE(found(L"Scene|hips|tail").IsValid() && found(L"Scene|hips|head").IsValid());
    run("scene:setParent('Scene|hips', scene:object('Scene|hips|tail'))");
    EXPECT_TRUE(found(L"Scene|hips|tail").IsValid());
    run("scene:unparent({'Scene|hips|tail', scene:object('Scene|hips|head')})");
    EXPECT_TRUE(found(L"Scene|tail").IsValid() && found(L"Scene|head").IsValid());
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
}

TEST_F(SceneFunctionsTest, EditsOfObjectsOfAnotherSceneDoNothing) {
    build();
    run("foreign = scene:object('Scene|tail')");
    application().AddScene();
    scene().New();
    run("scene:delete(foreign):remove(foreign):rename(foreign, 'mine'):copy(foreign):unparent(foreign)\n"
        "scene:setParent(foreign, scene:createObject('Joint')):select(foreign):selectAppend(foreign)");
    EXPECT_EQ("tail", eval("return foreign:name()"));
    EXPECT_TRUE(selected().empty());
    application().SetActiveScene(0);
    EXPECT_FALSE(found(L"Scene|tail_copy").IsValid());
}

TEST_F(SceneFunctionsTest, EditsWithoutObjectsDoNothing) {
    build();
    int const before = undoCount();
    run("scene:delete():remove(''):rename():copy({}):setParent():unparent():delete('nowhere*'):setParent('Scene|tail'"
        ")");
    EXPECT_EQ(undoCount(), before);
    EXPECT_TRUE(found(L"Scene|tail").IsValid());
}

TEST_F(SceneFunctionsTest, EditsRefuseWhatIsNoObject) {
    EXPECT_EQ(
        "script:2: Scene:delete: argument 1 (objects) must be a list of objects or patterns of paths, not boolean",
        failure("scene:delete(true)"));
    EXPECT_EQ("script:2: Scene:copy: argument 1 (objects) must be a list of objects or patterns of paths, but entry 2 "
              "is a number",
              failure("scene:copy({'Scene|hips', 3})"));
}

// ---- playback and time ----

TEST_F(SceneFunctionsTest, PlaybackGoesOnAfterTheScriptAndIsNoStep) {
    int const before = undoCount();
    EXPECT_EQ("false true", eval("local before = scene:isPlaying() scene:play() return before, scene:isPlaying()"));
    EXPECT_EQ(scene().SceneMode(), PlayingForwardMode);
    EXPECT_TRUE(scene().SceneGraph()->isTransient());
    run("scene:playReverse()");
    EXPECT_EQ(scene().SceneMode(), PlayingReverseMode);
    run("scene:stop()");
    EXPECT_EQ(scene().SceneMode(), InteractiveMode);
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    EXPECT_EQ(undoCount(), before);
}

TEST_F(SceneFunctionsTest, AScriptThatPlaysAndStopsStillEndsItsStep) {
    run("scene:createObject('Joint') scene:play():stop():createObject('Joint')");
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    scene().Undo();
    EXPECT_EQ("1", eval("return #scene:objectsByType('Joint')"));
}

TEST_F(SceneFunctionsTest, SteppingStopsAndGoesByWholeFrames) {
    run("scene:setFrameRate(10):setPlaybackStartTime(1):setPlaybackEndTime(2):play():goToFirstFrame()");
    EXPECT_FALSE(scene().IsPlaying());
    EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    EXPECT_EQ("1 1.1 1 2", eval("local function at() return string.format('%g', scene:time()) end "
                                "local first = at() local nextOne = (scene:goToNextFrame() and at()) "
                                "scene:goToPreviousFrame() local back = at() scene:goToLastFrame() "
                                "return first, nextOne, back, at()"));
}

TEST_F(SceneFunctionsTest, TimesAreInSeconds) {
    run("scene:setStartTime(-1):setEndTime(9):setPlaybackStartTime(0.5):setPlaybackEndTime(8):setTime(2.25)");
    EXPECT_EQ(time().StartTime().Float(), -1);
    EXPECT_EQ(time().EndTime().Float(), 9);
    EXPECT_EQ("-1.0 9.0 0.5 8.0 2.25", eval("return scene:startTime(), scene:endTime(), scene:playbackStartTime(), "
                                            "scene:playbackEndTime(), scene:time()"));
    EXPECT_EQ("0.0", eval("return scene:setTime():time()"));
}

TEST_F(SceneFunctionsTest, TimesMustBeFinite) {
    for (char const* function : {"setTime", "setStartTime", "setEndTime", "setPlaybackStartTime", "setPlaybackEndTime"})
        for (char const* value : {"0/0", "1/0", "-math.huge", "1e300"})
            EXPECT_EQ(std::string("script:2: Scene:") + function + ": argument 1 (seconds) must be finite",
                      failure(std::string("scene:") + function + "(" + value + ")"));
    EXPECT_EQ(time().Time().Float(), 0);
}

TEST_F(SceneFunctionsTest, UnitsAreSetByWordOrNumber) {
    EXPECT_EQ("Metres Degrees 24", eval("return scene:linearUnits(), scene:angularUnits(), scene:frameRate()"));
    run("scene:setLinearUnits('Inches'):setAngularUnits(1):setFrameRate(30)");
    EXPECT_EQ("Inches Radians 30", eval("return scene:linearUnits(), scene:angularUnits(), scene:frameRate()"));
    run("scene:setLinearUnits():setAngularUnits('')");
    EXPECT_EQ("Inches Radians", eval("return scene:linearUnits(), scene:angularUnits()"));
}

TEST_F(SceneFunctionsTest, UnitsThatThereAreNotAreRefused) {
    EXPECT_EQ("script:2: Scene:setAngularUnits: argument 1 (units) must be one of Degrees, Radians, or its number from "
              "0 on",
              failure("scene:setAngularUnits('Turns')"));
    for (char const* value : {"-1", "6", "'metres'"}) failure(std::string("scene:setLinearUnits(") + value + ")");
    EXPECT_EQ("Metres", eval("return scene:linearUnits()"));
}

// ---- the selection ----

TEST_F(SceneFunctionsTest, TheSelectionIsCountedFromOne) {
    build();
    EXPECT_EQ(selectedAfter("scene:select({'Scene|tail', scene:object('Scene|hips')})"), (Names{L"tail", L"hips"}));
    EXPECT_EQ("2 tail hips", eval("return scene:selectionCount(), scene:selectedObject(1):name(), "
                                  "scene:selectedObject(2):name()"));
    EXPECT_EQ("nil nil nil nil",
              eval("return scene:selectedObject(0), scene:selectedObject(3), scene:selectedObject(), "
                   "scene:selectedObject(-2147483648)"));
}

TEST_F(SceneFunctionsTest, TheSelectionIsListedByType) {
    build();
    run("scene:select({'Scene|tail', 'Scene|hips', scene:createObject('Transform')})");
    EXPECT_EQ("3 2 1 0", eval("return #scene:selection(), #scene:selection('Joint'), #scene:selection('Transform'), "
                              "#scene:selection('NoSuchType')"));
}

TEST_F(SceneFunctionsTest, IsSelectedTakesAnObjectOrAPath) {
    build();
    run("scene:select('Scene|tail')");
    EXPECT_EQ("true true false false", eval("return scene:isSelected('Scene|tail'), "
                                            "scene:isSelected(scene:object('Scene|tail')), "
                                            "scene:isSelected('Scene|hips'), scene:isSelected()"));
}

TEST_F(SceneFunctionsTest, SelectionsGrowShrinkAndAreCleared) {
    build();
    EXPECT_EQ(selectedAfter("scene:select('Scene|tail'):selectAppend({'Scene|hips', 'Scene|hips|spine'})"),
              (Names{L"tail", L"hips", L"spine"}));
    EXPECT_EQ(selectedAfter("scene:deselect(scene:object('Scene|hips'))"), (Names{L"tail", L"spine"}));
    EXPECT_EQ(selectedAfter("scene:clearSelection()"), Names{});
    EXPECT_EQ(selectedAfter("scene:select('Scene|tail'):select({})"), Names{});
}

TEST_F(SceneFunctionsTest, SelectingNothingOrWhatIsGoneChangesNothing) {
    build();
    run("gone = scene:createObject('Joint') scene:delete(gone)");
    EXPECT_EQ(selectedAfter("scene:select('Scene|tail'):select():select('nowhere'):select(gone):selectAppend()"),
              Names{L"tail"});
    EXPECT_EQ(selectedAfter("scene:deselect():deselect(gone)"), Names{L"tail"});
}

TEST_F(SceneFunctionsTest, SelectionsAreMadeByTypeAndOfAll) {
    build();
    Names const transforms = selectedAfter("scene:createObject('Transform'):setName('extra') "
                                           "scene:select('Scene|tail'):selectType('Transform')");
    EXPECT_THAT(transforms, testing::Contains(L"extra"));
    EXPECT_THAT(transforms, testing::Not(testing::Contains(L"tail")));
    EXPECT_EQ(selectedAfter("scene:selectType('Joint')").size(), 4u);
    EXPECT_GE(selectedAfter("scene:selectAll()").size(), 5u);
}

TEST_F(SceneFunctionsTest, TheSelectionWalksAlongTheHierarchy) {
    build();
    EXPECT_EQ(selectedAfter("scene:select('Scene|hips|spine'):selectParent()"), Names{L"hips"});
    EXPECT_EQ(selectedAfter("scene:selectChild()"), Names{L"spine"});
    EXPECT_EQ(selectedAfter("scene:select('Scene|tail'):selectPrevious()"), Names{L"hips"});
    EXPECT_EQ(selectedAfter("scene:selectNext()"), Names{L"tail"});
}

// ---- tools and views ----

TEST_F(SceneFunctionsTest, ToolsAreSetByNameOrNumber) {
    EXPECT_EQ("MoveTool", eval("return scene:setActiveTool('MoveTool'):activeTool()"));
    EXPECT_EQ("ScaleTool", eval("return scene:setActiveTool(5):activeTool()"));
    EXPECT_EQ("ScaleTool", eval("return scene:setActiveTool():activeTool()"));
    EXPECT_EQ("script:2: Scene:setActiveTool: argument 1 (tool) names no tool", failure("scene:setActiveTool('Saw')"));
    failure("scene:setActiveTool(-1)");
    failure("scene:setActiveTool(7)");
}

TEST_F(SceneFunctionsTest, TheAxisOfTheToolGoesOverAndBack) {
    run("scene:setActiveTool('MoveTool'):toggleToolAxis()");
    EXPECT_EQ(scene().ActiveToolOrientation(), ObjectOrientation);
    run("scene:toggleToolAxis()");
    EXPECT_EQ(scene().ActiveToolOrientation(), WorldOrientation);
}

TEST_F(SceneFunctionsTest, AnEditModeThatTheObjectLacksChangesNothing) {
    build();
    run("scene:select('Scene|tail'):changeEditMode(3):zoomToFit()");
    EXPECT_EQ(scene().Selection().EditMode(), 0);
}

TEST_F(SceneFunctionsTest, TheFirstViewIsTheActiveOne) {
    EXPECT_EQ("1 1", eval("return scene:activeViewport(), scene:setActiveViewport(2):activeViewport()"));
    EXPECT_EQ("script:2: Scene:setActiveViewport: argument 1 (index) must be from 1 to 4",
              failure("scene:setActiveViewport(5)"));
}

TEST_F(SceneFunctionsTest, TheCameraOfTheViewCanBeSet) {
    EXPECT_EQ("perspective", eval("return scene:activeCamera():name()"));
    std::string const top = Qelutils::toUtf8(scene().TopCamera().Path());
    EXPECT_EQ("top", eval("return scene:setActiveCamera('" + top + "'):activeCamera():name()"));
    EXPECT_EQ("top", eval("return scene:setActiveCamera(scene:createObject('Joint')):setActiveCamera():activeCamera()"
                          ":name()"));
    scene().Undo();
    scene().Undo();
    EXPECT_EQ("perspective", eval("return scene:activeCamera():name()"));
}

TEST_F(SceneFunctionsTest, DisplayModesGoOverAndBack) {
    EXPECT_EQ("0 1 0", eval("local first = scene:displayMode() scene:toggleDisplayMode() local second = "
                            "scene:displayMode() scene:toggleDisplayMode() return first, second, scene:displayMode()"));
    run("scene:setDisplayMode(1)");
    EXPECT_EQ(scene().ViewportSettings().DisplayMode().Enumeration(0), 1);
    EXPECT_EQ("script:2: Scene:setDisplayMode: argument 1 (mode) must be 0 or 1", failure("scene:setDisplayMode(2)"));
}

TEST_F(SceneFunctionsTest, ColourModesAreWords) {
    EXPECT_EQ("Object DisplayGroup CollisionGroup",
              eval("return scene:colourMode(), scene:setColourMode('DisplayGroup'):colourMode(), "
                   "scene:setColourMode(3):colourMode()"));
    EXPECT_EQ(scene().ViewportSettings().ColourMode().Integer(0), CollisionGroupColour);
    EXPECT_EQ("Object", eval("return scene:setColourMode('unknown'):colourMode()"));
    failure("scene:setColourMode(4)");
    failure("scene:setColourMode(-1)");
}

TEST_F(SceneFunctionsTest, TypesAreHiddenAndShown) {
    EXPECT_EQ("true false true", eval("local function shown() return scene:isObjectTypeShown('Joint') end "
                                      "local first = shown() scene:hideObjectType('Joint') local second = shown() "
                                      "scene:showObjectType('Joint') return first, second, shown()"));
    EXPECT_EQ("false true",
              eval("scene:toggleObjectTypeShown('Joint') local hidden = scene:isObjectTypeShown('Joint') "
                   "scene:toggleObjectTypeShown('Joint') return hidden, scene:isObjectTypeShown('Joint')"));
}

TEST_F(SceneFunctionsTest, ATypeIsHiddenOnceAndOnlyIfThereIsOne) {
    run("scene:hideObjectType('Joint'):hideObjectType('Joint'):hideObjectType('NoSuchType'):hideObjectType()");
    EXPECT_EQ(scene().ViewportSettings().DisplayFilter().Attribute(0).Strings(),
              (Qelutils::Vector<std::wstring>{L"Joint"}));
    scene().Undo();
    EXPECT_EQ("true", eval("return scene:isObjectTypeShown('Joint')"));
}

TEST_F(SceneFunctionsTest, AllTypesAreHiddenAndShown) {
    EXPECT_EQ("false false true", eval("scene:hideAllObjectTypes() return scene:isObjectTypeShown('Joint'), "
                                       "scene:isObjectTypeShown('Camera'), scene:isObjectTypeShown('Selection')"));
    EXPECT_EQ("true", eval("return scene:showAllObjectTypes():isObjectTypeShown('Joint')"));
}

// ---- values ----

TEST_F(SceneFunctionsTest, ValuesAreMadeOfTheirComponents) {
    EXPECT_EQ("(0, 0, 0) (1, 2, 3) (0, 2, 0)",
              eval("return scene:vector(), scene:vector(1, 2, 3), scene:vector({y = 2})"));
    EXPECT_EQ("1.0 0.5 -0.5", eval("local q = scene:quaternion(0.5, 0.5, -0.5, 0.5) "
                                   "return scene:quaternion().w, q.x, q[3]"));
    EXPECT_EQ("16 1.0 7.0", eval("local m = scene:matrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}) "
                                 "return #scene:matrix(), scene:matrix()[1], m[15]"));
    EXPECT_EQ("script:2: Scene:vector: argument 1 (value) must be a table or 3 numbers", failure("scene:vector(1, 2)"));
}

// ---- scenes that are gone, and tables of nothing ----

TEST_F(SceneFunctionsTest, CallsOnASceneThatIsGoneDoNothing) {
    run("gone = setmetatable({__sceneID = 12345}, getmetatable(scene))");
    EXPECT_EQ("false nil 0 nil", eval("return gone:isValid(), gone:createObject('Joint'), gone:selectionCount(), "
                                      "gone:selectedObject(1)"));
    run("gone:play() gone:goToNextFrame() gone:setTime(1) gone:beginUndo() gone:endUndo() gone:clear() "
        "gone:hideAllObjectTypes() gone:setLinearUnits('Inches') gone:selectAll() gone:setDisplayMode(1)");
    EXPECT_EQ("false", eval("return gone:isPlaying()"));
    EXPECT_FALSE(XScene::Undefined.IsPlaying());
}

// ---- the sandbox ----

class Sandbox : public SceneFunctionsTest {
protected:
    std::string refusal(std::string const& text) {
        EXPECT_NE(0, script.RunScript(Qelutils::fromUtf8("local scene = app.scene()\n" + text)));
        return script.LastError().substr(0, script.LastError().find('\n'));
    }
    LuaPlus::LuaStateOwner owner{LuaPlus::LuaLibraries::Sandboxed};
    XLuaScript script{&owner};
};

TEST_F(Sandbox, WhatReachesFilesIsRefused) {
    EXPECT_EQ("script:2: Scene:reloadScripts: reaches files, which is not allowed in a sandbox",
              refusal("scene:reloadScripts('/tmp')"));
    EXPECT_EQ("script:2: Scene:run: ImportFile reaches files, which is not allowed in a sandbox",
              refusal("scene:run('ImportFile')"));
    EXPECT_EQ("script:2: Scene:run: ExportFile reaches files, which is not allowed in a sandbox",
              refusal("scene:run('ExportFile')"));
    EXPECT_TRUE(log.texts(RecordingLog::Warning).empty());
}

TEST_F(Sandbox, CommandsThatReachFilesAreRefusedAlsoWithoutTheirNode) {
    application().Settings().Object(L"ImportFile").SetName(L"Renamed", true);
    refusal("scene:run('ImportFile')");
    refusal("scene:run('Renamed')");
    EXPECT_TRUE(log.texts(RecordingLog::Warning).empty());
}

TEST_F(Sandbox, OtherCommandsRun) {
    EXPECT_EQ(0, script.RunScript(L"app.scene():run('CreateJoint')")) << script.LastError();
    EXPECT_EQ("1", eval("return #scene:objectsByType('Joint')"));
}

}  // namespace
}  // namespace Tavo
