#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "tests/app/fixture.h"
#include "tests/app/recorder.h"
#include <filesystem>
#include <fstream>

namespace Tavo {
namespace {

using Events = std::vector<std::string>;

class Scene : public StartedApplication {
protected:
    static std::string saved() {
        db::StringOutputStream stream;
        EXPECT_TRUE(db::SaverXML(stream).save(*scene().SceneGraph()));
        return stream.text();
    }
    static void open(std::string const& text) {
        db::StringInputStream stream(text);
        ASSERT_TRUE(db::LoaderXML(stream).load(*scene().SceneGraph()));
        scene().Open();
    }
    static std::size_t objectCount() {
        Qelutils::Vector<XObject> all;
        scene().Objects(all);
        return all.size();
    }
    static void removeNode(std::wstring const& path) {
        sg::Node* const node = scene().SceneGraph()->Node(path);
        ASSERT_NE(node, nullptr);
        node->remove();
    }
    static std::vector<XSceneObject> fixedObjects() {
        XScene& s = scene();
        std::vector<XSceneObject> all;
        all.insert(all.end(), {s.SceneSettings(), s.Selection(), s.DynamicSelection(), s.DisplayGroups(),
                               s.CollisionGroups(), s.SelectionGroups(), s.RootObject(), s.Grid(),
                               s.PerspectiveCamera(), s.TopCamera(), s.FrontCamera(), s.SideCamera(), s.SelectTool(),
                               s.MoveTool(), s.RotateTool(), s.ScaleTool(), s.TimingTool(), s.ViewportSettings()});
        return all;
    }
};

// ---- the fixed objects ----

TEST_F(Scene, ANewOneHasItsFixedObjects) {
    for (XSceneObject const& object : fixedObjects()) EXPECT_TRUE(object.IsValid());
    EXPECT_TRUE(scene().AnimationLayers().IsValid());
    struct Case {
        XObject object;
        wchar_t const *path, *type;
    };
    XScene& s = scene();
    for (Case const& c : {Case{s.SceneSettings(), L"SceneSettings", L"SceneSettings"},
                          {s.Selection(), L"Selection", L"Selection"},
                          {s.DynamicSelection(), L"DynamicSelection", L"Selection"},
                          {s.AnimationLayers(), L"AnimationLayers", L"AnimationLayers"},
                          {s.DisplayGroups(), L"DisplayGroups", L"DisplayGroup"},
                          {s.SelectionGroups(), L"SelectionGroups", L"SelectionGroup"},
                          {s.CollisionGroups(), L"CollisionGroups", L"CollisionGroup"},
                          {s.RootObject(), L"Scene", L"Transform"},
                          {s.PerspectiveCamera(), L"Scene|perspective", L"Camera"},
                          {s.TopCamera(), L"Scene|top", L"Camera"},
                          {s.FrontCamera(), L"Scene|front", L"Camera"},
                          {s.SideCamera(), L"Scene|side", L"Camera"},
                          {s.SelectTool(), L"SelectTool", L"SelectTool"},
                          {s.MoveTool(), L"MoveTool", L"MoveTool"},
                          {s.RotateTool(), L"RotateTool", L"RotateTool"},
                          {s.ScaleTool(), L"ScaleTool", L"ScaleTool"},
                          {s.TimingTool(), L"TimingTool", L"TimingTool"},
                          {s.ViewportSettings(), L"ViewportSettings", L"ViewportSettings"}}) {
        EXPECT_EQ(c.object.Path(), c.path);
        EXPECT_EQ(c.object.ObjectType(), c.type) << c.object.Path().c_str();
    }
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(Scene, TheGridIsAShapeUnderATransformOfItsOwn) {
    XGrid const grid = scene().Grid();
    EXPECT_EQ(grid.Name(), L"grid");
    EXPECT_EQ(grid.Parent().ObjectType(), L"Transform");
    EXPECT_NE(grid.Parent(), scene().RootObject());
    EXPECT_EQ(grid.Parent().Parent(), scene().RootObject());
}

TEST_F(Scene, TheCamerasStandWhereTheyLookFrom) {
    struct Case {
        XCamera camera;
        int type;
        XVector3 position;
    };
    for (Case const& c : {Case{scene().PerspectiveCamera(), 0, XVector3(1.8f, 0.5f, 1.8f)},
                          {scene().TopCamera(), 1, XVector3(0, 20, 0)},
                          {scene().FrontCamera(), 2, XVector3(0, 0, 20)},
                          {scene().SideCamera(), 3, XVector3(20, 0, 0)}}) {
        EXPECT_EQ(c.camera.Attribute(L"CameraType").Enumeration(), c.type);
        EXPECT_EQ(c.camera.WorldTranslation(), c.position);
    }
}

TEST_F(Scene, TheRootsOfTheGroupsAreFoldersWithLabels) {
    EXPECT_EQ(scene().DisplayGroups().Label().String(), L"Display Groups");
    EXPECT_EQ(scene().CollisionGroups().Label().String(), L"Collision Groups");
    EXPECT_EQ(scene().SelectionGroups().Label().String(), L"Selection Groups");
    EXPECT_TRUE(scene().DisplayGroups().IsFolder() && scene().CollisionGroups().IsFolder() &&
                scene().SelectionGroups().IsFolder());
}

TEST_F(Scene, TheViewsShowTheFourCameras) {
    XAttribute const cameras = scene().ViewportSettings().Camera();
    ASSERT_EQ(cameras.ArraySize(), 4);
    wchar_t const* const expected[] = {L"Scene|perspective", L"Scene|top", L"Scene|front", L"Scene|side"};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(cameras.String(i), expected[i]);
}

// ---- New and Open ----

TEST_F(Scene, NothingOfANewDocumentCanBeUndone) {
    Events events;
    RecordingEngine engine(events);
    engine.onRun = [] { scene().CreateObject(XJoint::TypeID); };
    scene().SetScriptPath(L"/scripts/").New();
    EXPECT_EQ(engine.files, std::vector<std::wstring>{L"/scripts/InitializeScene.lua"});
    EXPECT_TRUE(scene().IsObject(L"Scene|joint"));
    EXPECT_EQ(undoCount(), 0);
    EXPECT_TRUE(scene().SceneGraph()->isAtCheckpoint());
    EXPECT_EQ(scene().SceneGraph()->getMaxUndoItems(), 100000);
    scene().Undo();
    EXPECT_TRUE(scene().IsObject(L"Scene|joint"));
}

TEST_F(Scene, AFailingScriptDoesNotStopANewDocument) {
    Events events;
    RecordingEngine engine(events);
    engine.succeeds = false;
    Recorder recorder;
    scene().New();
    EXPECT_EQ(recorder.take(), (Events{"Created 0", "Loaded 0"}));
    EXPECT_TRUE(scene().ViewportSettings().IsValid());
}

TEST_F(Scene, ANewDocumentIsCreatedBeforeItIsLoadedAndObserversHearBeforeScripts) {
    Recorder recorder;
    RecordingEngine engine(recorder.events);
    scene().New();
    Events events = recorder.take();
    std::erase_if(events, [](std::string const& e) { return e.find("Changed") != e.npos || e.find("Sel") != e.npos; });
    std::erase(events, "script Time");
    EXPECT_EQ(events, (Events{"Created 0", "Loaded 0", "script Loaded"}));
}

TEST_F(Scene, ANewDocumentForgetsTheOldOne) {
    XObject const joint = scene().CreateObject(XJoint::TypeID);
    scene().Selection().Select(joint);
    std::size_t const before = objectCount();
    scene().New();
    EXPECT_FALSE(joint.IsValid());
    EXPECT_EQ(scene().Selection().Count(), 0);
    EXPECT_EQ(objectCount(), before - 1);
}

TEST_F(Scene, ANewDocumentIsSetUpInFullAlsoInTheReadOnlyMode) {
    scene().SetSceneMode(ReadOnlyMode);
    scene().New();
    EXPECT_EQ(scene().SceneMode(), ReadOnlyMode);
    EXPECT_EQ(scene().TopCamera().WorldTranslation(), XVector3(0, 20, 0));
    EXPECT_EQ(scene().DisplayGroups().Label().String(), L"Display Groups");
}

TEST_F(Scene, AnOpenedFileGetsNoSecondFixedObjects) {
    scene().CreateObject(XJoint::TypeID);
    std::string const text = saved();
    std::size_t const before = objectCount();
    for (int round = 0; round < 3; ++round) {
        open(text);
        EXPECT_EQ(objectCount(), before);
        for (XSceneObject const& object : fixedObjects()) EXPECT_TRUE(object.IsValid());
        EXPECT_EQ(saved(), text);
    }
}

TEST_F(Scene, OpeningCannotBeUndoneAndRunsNoScript) {
    std::string const text = saved();
    Events events;
    RecordingEngine engine(events);
    Recorder recorder;
    open(text);
    EXPECT_TRUE(engine.files.empty());
    Events heard = recorder.take();
    EXPECT_EQ(heard.front(), "Created 0");
    EXPECT_EQ(heard.back(), "Loaded 0");
    EXPECT_EQ(undoCount(), 0);
    EXPECT_TRUE(scene().SceneGraph()->isAtCheckpoint());
}

TEST_F(Scene, AFileThatLacksAFixedObjectGetsIt) {
    std::string const text = saved();
    std::size_t const before = objectCount();
    std::vector<std::wstring> paths;
    for (XSceneObject const& object : fixedObjects()) paths.push_back(object.Path());
    paths.push_back(L"AnimationLayers");
    for (std::wstring const& path : paths) {
        if (path == L"Scene") continue;
        open(text);
        removeNode(path);
        open(saved());
        // The grid gets a transform of its own again, beside the one that was left.
        EXPECT_TRUE(path == L"Scene|transform|grid" || scene().IsObject(path)) << Qelutils::toUtf8(path);
        EXPECT_GE(objectCount(), before) << Qelutils::toUtf8(path);
        for (XSceneObject const& object : fixedObjects()) EXPECT_TRUE(object.IsValid());
    }
}

TEST_F(Scene, AnEmptyFileOpensWithEverything) {
    sg::Scene empty;
    db::StringOutputStream stream;
    ASSERT_TRUE(db::SaverXML(stream).save(empty));
    std::size_t const before = objectCount();
    open(stream.text());
    EXPECT_EQ(objectCount(), before);
}

TEST_F(Scene, TheFormerNamesOfTheGroupRootsAreRenewed) {
    struct Case {
        wchar_t const *before, *now;
    };
    for (Case const& c : {Case{L"DisplayLayers", L"DisplayGroups"},
                          {L"SelectionSets", L"SelectionGroups"},
                          {L"CollisionSets", L"CollisionGroups"}}) {
        scene().New();
        sg::Node* const node = scene().SceneGraph()->Node(c.now);
        int const id = node->getID();
        node->setName(c.before);
        std::size_t const before = objectCount();
        open(saved());
        EXPECT_EQ(objectCount(), before);
        ASSERT_TRUE(scene().IsObject(c.now));
        EXPECT_EQ(scene().Object(c.now).ObjectID(), id);
    }
}

TEST_F(Scene, TheNameIsThatOfTheGraph) {
    scene().SceneGraph()->setName(L"walk");
    EXPECT_EQ(scene().SceneName(), L"walk");
    EXPECT_EQ(XScene::Undefined.SceneName(), L"");
}

TEST_F(Scene, TheUndefinedSceneDoesNothing) {
    XScene& none = XScene::Undefined;
    EXPECT_FALSE(none.IsValid());
    none.New().Open().Undo().Redo().Redraw().Play().Stop().GoToNextFrame().GoToFirstFrame().Term();
    none.onAppMainLoopTick();
    EXPECT_FALSE(none.RootObject().IsValid());
    EXPECT_FALSE(none.CreateObject(XJoint::TypeID).IsValid());
}

TEST_F(Scene, TermMayBeRepeated) { scene().Term().Term(); }

// ---- the commit cycle ----

TEST_F(Scene, ACommitIsToldOfInOrder) {
    XObject const joint = scene().CreateObject(XJoint::TypeID);
    scene().CommitTransient();
    Recorder recorder(true);
    RecordingEngine engine(recorder.events);
    scene().BeginChangeBlock();
    scene().Selection().Select(joint);
    time().Time().SetFloat(1);
    scene().EndChangeBlock();
    EXPECT_EQ(recorder.take(), (Events{"script SelectionChanging", "Changed 0", "script Changed", "Selection 0",
                                       "script Selection", "Time 0", "script Time"}));
    XTransform(joint).SetTranslation(1, 2, 3);
    scene().CommitTransient();
    EXPECT_EQ(recorder.take(), (Events{"Changed 0", "script Changed"}));
}

TEST_F(Scene, ObserversAreTimedWhileTheGraphTimesThem) {
    XObject const joint = scene().CreateObject(XJoint::TypeID);
    scene().CommitTransient();
    Recorder recorder;
    log.clear();
    for (bool isTiming : {true, false}) {
        db::Database::setObserverTimingEnabled(isTiming);
        scene().BeginChangeBlock();
        scene().Selection().Select(joint);
        time().Time().SetFloat(time().Time().Float() + 1);
        scene().EndChangeBlock();
        std::vector<std::wstring> lines;
        for (std::wstring const& line : log.texts(RecordingLog::Debug))
            if (line.starts_with(L"Tavo::Recorder")) lines.push_back(line.substr(0, line.find(L' ')));
        EXPECT_EQ(lines, isTiming ? (std::vector<std::wstring>{L"Tavo::Recorder::OnSceneChanged():",
                                                               L"Tavo::Recorder::OnSceneSelectionChanged():",
                                                               L"Tavo::Recorder::OnSceneTimeChanged():"})
                                  : std::vector<std::wstring>());
        log.clear();
    }
}

TEST_F(Scene, AnObserverMayEditWhileItIsTold) {
    struct Editor : XSceneObserver {
        int told = 0;
        void OnSceneChanged(XSceneChange const&, bool) override {
            if (++told > 3) return;
            scene().BeginChangeBlock();
            time().Time().SetFloat(float(told));
            scene().EndChangeBlock();
        }
    } editor;
    application().AddSceneObserver(&editor);
    scene().BeginChangeBlock();
    time().EndTime().SetFloat(9);
    scene().EndChangeBlock();
    EXPECT_EQ(editor.told, 4);
    EXPECT_EQ(time().Time().Float(), 3);
    application().RemoveSceneObserver(&editor);
}

TEST_F(Scene, UndoAndRedoGoThroughTheHistory) {
    std::wstring const label = L"Move time";
    {
        XChangeBlock const block(scene(), label);
        time().Time().SetFloat(1);
    }
    EXPECT_EQ(scene().SceneGraph()->getUndoLabel(), label);
    scene().Undo();
    EXPECT_EQ(time().Time().Float(), 0);
    scene().Redo();
    EXPECT_EQ(time().Time().Float(), 1);
}

TEST_F(Scene, TheReadOnlyModeFreezesAllButTimeAndViews) {
    XTransform joint(scene().CreateObject(XJoint::TypeID));
    scene().SetSceneMode(ReadOnlyMode);
    EXPECT_FALSE(joint.IsEditable());
    EXPECT_TRUE(time().IsEditable());
    EXPECT_TRUE(scene().ViewportSettings().IsEditable());
    EXPECT_FALSE(scene().Selection().IsEditable());
    joint.SetTranslation(1, 2, 3);
    EXPECT_EQ(joint.LocalTranslation(), XVector3(0, 0, 0));
}

// ---- the hierarchy ----

TEST_F(Scene, WhatHasAPlaceInSpaceStandsBelowTheRoot) {
    XObject const joint = scene().CreateObject(XJoint::TypeID), grid = scene().CreateObject(XGrid::TypeID),
                  null = scene().CreateObject(XNull::TypeID);
    EXPECT_EQ(joint.Parent(), scene().RootObject());
    EXPECT_FALSE(XSceneObject(joint).HasParent());
    EXPECT_EQ(grid.Parent().ObjectType(), L"Transform");
    EXPECT_EQ(grid.Parent().Parent(), scene().RootObject());
    EXPECT_FALSE(null.Parent().IsValid());
}

TEST_F(Scene, AChildMadeUnderAParentStaysThere) {
    XObject const joint = scene().CreateObject(XJoint::TypeID), child = scene().CreateObject(XJoint::TypeID, joint);
    EXPECT_EQ(child.Parent(), joint);
}

TEST_F(Scene, ReparentingKeepsThePlaceInTheWorldWhenItShall) {
    XTransform parent(scene().CreateObject(XJoint::TypeID)), child(scene().CreateObject(XJoint::TypeID));
    parent.SetTranslation(1, 2, 3).SetRotationEulerAngles(0.5f, 0, 0);
    child.SetTranslation(5, 0, 0);
    XVector3 const place = child.WorldTranslation();
    child.SetParent(parent, false, true);
    EXPECT_TRUE(child.WorldTranslation().IsEqual(place));
    child.Unparent();
    EXPECT_TRUE(child.WorldTranslation().IsEqual(place));
    child.SetParent(parent, false, false);
    EXPECT_TRUE(child.LocalTranslation().IsEqual(place));
}

TEST_F(Scene, AReparentedObjectGetsAUniqueName) {
    XObject parent = scene().CreateObject(XTransform::TypeID), a = scene().CreateObject(XJoint::TypeID, parent),
            b = scene().CreateObject(XJoint::TypeID);
    a.SetName(L"arm");
    b.SetName(L"arm");
    b.SetParent(parent);
    EXPECT_EQ(b.Name(), L"arm1");
    EXPECT_EQ(b.Parent(), parent);
}

TEST_F(Scene, AnObjectCannotGoBelowItself) {
    XObject a = scene().CreateObject(XJoint::TypeID), b = scene().CreateObject(XJoint::TypeID, a);
    a.SetParent(b);
    a.SetParent(a);
    EXPECT_EQ(a.Parent(), scene().RootObject());
    EXPECT_EQ(b.Parent(), a);
}

TEST_F(Scene, ATransformDoesNotGoBelowWhatIsNone) {
    XObject joint = scene().CreateObject(XJoint::TypeID), null = scene().CreateObject(XNull::TypeID);
    joint.SetParent(null);
    EXPECT_EQ(joint.Parent(), scene().RootObject());
}

TEST_F(Scene, RemovingAParentLeavesTheChildrenWhereTheyAre) {
    XTransform a(scene().CreateObject(XJoint::TypeID)), b(scene().CreateObject(XJoint::TypeID, a)),
        c(scene().CreateObject(XJoint::TypeID, b));
    for (XTransform* each : {&a, &b, &c}) each->SetTranslation(1, 0, 0);
    b.Remove();
    EXPECT_EQ(c.Parent(), a);
    EXPECT_TRUE(c.WorldTranslation().IsEqual(XVector3(3, 0, 0)));
    a.Remove();
    EXPECT_EQ(c.Parent(), scene().RootObject());
}

TEST_F(Scene, AnAncestorIsTheFarthestBelowTheRoot) {
    XObject const a = scene().CreateObject(XJoint::TypeID), b = scene().CreateObject(XTransform::TypeID, a),
                  c = scene().CreateObject(XJoint::TypeID, b);
    EXPECT_EQ(XSceneObject(c).FindAncestor(L"Joint", IsObjectType), a);
    EXPECT_EQ(XSceneObject(c).FindAncestor(L"Transform", IsObjectType), b);
    EXPECT_EQ(XSceneObject(c).FindAncestor(L"Transform", SupportsObjectType), a);
    EXPECT_FALSE(XSceneObject(a).FindAncestor(L"Transform", SupportsObjectType).IsValid());
}

// ---- scripts and assets ----

class SceneFiles : public Scene {
protected:
    SceneFiles() {
        std::filesystem::create_directories(folder);
        for (char const* name : {"a.lua", "b.lua", "c.txt"}) std::ofstream(folder / name) << "";
        application().RemoveScriptEngine(application().LuaScript());  // for one that notes what it is to run
    }
    ~SceneFiles() override { std::filesystem::remove_all(folder); }

    std::filesystem::path const folder =
        std::filesystem::temp_directory_path() /
        ("tavo_scene_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(SceneFiles, ScriptsOfAMissingDirectoryAreDone) {
    EXPECT_TRUE(scene().LoadScripts(L"/no/such/directory"));
    EXPECT_TRUE(scene().LoadScripts(L""));
    EXPECT_TRUE(scene().LoadScripts());
}

TEST_F(SceneFiles, EveryScriptOfADirectoryRuns) {
    Events events;
    RecordingEngine engine(events);
    EXPECT_TRUE(scene().LoadScripts(folder.wstring()));
    std::sort(engine.files.begin(), engine.files.end());
    EXPECT_EQ(engine.files, (std::vector<std::wstring>{(folder / "a.lua").wstring(), (folder / "b.lua").wstring()}));
}

TEST_F(SceneFiles, TheFirstScriptThatFailsStopsTheRest) {
    Events events;
    RecordingEngine engine(events);
    engine.succeeds = false;
    EXPECT_FALSE(scene().LoadScripts(folder.wstring()));
    EXPECT_EQ(engine.files.size(), 1u);
}

TEST_F(SceneFiles, AssetsAreTheMatchingFilesWithTheirDirectory) {
    Qelutils::Vector<std::wstring> out;
    out.push_back(L"old");
    scene().Assets(folder.wstring(), L"*.txt", out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0], (folder / "c.txt").wstring());
    scene().Assets(L"/no/such/directory", L"*", out);
    EXPECT_TRUE(out.empty());
}

}  // namespace
}  // namespace Tavo
