// XScene: one open document: an object database with the fixed objects that every scene has, playback, and the commit
// cycle that keeps caches, tools and display in step.
//
// New empties the document; Open takes over what the host has loaded into the database. Neither can be undone. During
// playback and simulation the scene holds a transient change block open. Main thread only; the playback tick comes from
// the host's main loop.
//
// The handles on the fixed objects, the caches and the tools are of classes that stand on higher floors; they live in
// XSceneObjects, and the operations that need them are defined there.
#pragma once
#include "qel/widgets/app_main_loop.h"
#include "tavo/objects/colour.h"
#include "tavo/objects/database.h"
#include "tavo/objects/scene_settings.h"
#include <memory>
#include <unordered_set>

namespace sg {
class Controller;
class Renderer;
}  // namespace sg

namespace Tavo {

class XAnimationLayers;
class XCamera;
class XCollisionGroup;
class XGrid;
class XMoveTool;
class XRotateTool;
class XScaleTool;
class XSceneChange;
class XSelectTool;
class XSelection;
class XTimingTool;
class XTransform;
class XViewportSettings;
struct XSceneObjects;
struct XSelectionCache;

enum XSceneMode : int {
    InteractiveMode = 0,
    PlayingForwardMode = 1,
    PlayingReverseMode = 2,
    SimulationMode = 3,
    ReadOnlyMode = 4,  // commands do not run
};

// The scene's sets of members of display groups, by what those groups forbid.
enum XGroupMode : int { NotVisibleGroup = 0, NotEditableGroup = 1, NotSelectableGroup = 2 };

class XScene : public wxUtils::AppMainLoopTimerClient, public XDatabase {
public:
    using ObjectIDs = std::unordered_set<int>;

    static constexpr int ViewportCount = 4;
    static constexpr float FrameTimeThreshold = 0.001f, FloatDelta = 0.001f;
    static constexpr int MaximumUndoSteps = 100000;
    static constexpr XWord OriginName = L"Scene", DynamicSelectionName = L"DynamicSelection",
                           DisplayGroupsName = L"DisplayGroups", CollisionGroupsName = L"CollisionGroups",
                           SelectionGroupsName = L"SelectionGroups", DisplayGroupsLabel = L"Display Groups",
                           CollisionGroupsLabel = L"Collision Groups", SelectionGroupsLabel = L"Selection Groups",
                           InitializationScriptName = L"InitializeScene.lua", ScriptFileExtension = L"*.lua",
                           EnvironmentCharacterName = L"environment", FileImportDialogTitle = L"Import File",
                           FileExportDialogTitle = L"Export File";
    static constexpr XColour PrimarySelectionColour{1, 0.9f, 0, 1}, SecondarySelectionColour{0.8f, 0.8f, 0.8f, 1},
        SubEntityDefaultColour{0.75f, 0, 0.75f, 1};
    static XScene& Undefined;  // an invalid scene

    XScene();
    ~XScene() override;

    // ---- identity and the fixed objects ----
    std::wstring SceneName() const;  // of the graph; empty without one
    sg::Renderer* Renderer() const;  // null without a display, as the controller
    sg::Controller* Controller() const;
    XGrid Grid() const;
    XTransform RootObject() const;  // named OriginName
    XSelection Selection() const;
    XSelection DynamicSelection() const;
    XAnimationLayers AnimationLayers() const;
    XDisplayGroup DisplayGroups() const;
    XCollisionGroup CollisionGroups() const;
    XSelectionGroup SelectionGroups() const;
    XSceneSettings SceneSettings() const { return _sceneSettings; }
    XCamera PerspectiveCamera() const;
    XCamera TopCamera() const;
    XCamera FrontCamera() const;
    XCamera SideCamera() const;
    XSelectTool SelectTool() const;
    XMoveTool MoveTool() const;
    XRotateTool RotateTool() const;
    XScaleTool ScaleTool() const;
    XTimingTool TimingTool() const;
    XViewportSettings ViewportSettings() const;
    bool IsRootObject(XObject const& object) const;   // by id
    ObjectIDs const& ObjectSet(int groupMode) const;  // of an XGroupMode; empty for any other number
    int ActiveViewportIndex() const { return 0; }     // without a display

    // ---- document ----
    void Register() override;
    void Unregister() override;
    XScene& New();
    XScene& Open();
    XScene& Term();  // lets go of the object controllers; may be repeated
    void NotifySceneCreated() { doNotifySceneCreated(); }
    void NotifySceneLoaded() { doNotifySceneLoaded(); }
    void NotifySceneRegistered() { doNotifySceneRegistered(); }
    XScene& Undo();
    XScene& Redo();
    XScene& Redraw();
    XScene& UpdateDisplay();
    XScene& UpdateFrame();
    XScene& UpdateViewports();
    XScene& UpdateAll();
    XScene& ZoomToFit();  // nothing without a display

    // ---- scripts and assets ----
    XScene& SetScriptPath(std::wstring const& path);  // ends in a separator
    bool LoadScripts();
    bool LoadScripts(std::wstring const& path);  // true when the directory is missing; stops at the first failure
    // The files of `directory` that match `filter`, with the directory in front.
    void Assets(std::wstring const& directory, std::wstring const& filter, Qelutils::Vector<std::wstring>& out) const;

    // ---- playback ----
    XSceneMode SceneMode() const { return _mode; }
    XScene& SetSceneMode(XSceneMode mode);
    bool IsPlaying() const { return _mode == PlayingForwardMode || _mode == PlayingReverseMode; }
    bool IsSimulating() const { return _mode == SimulationMode; }
    XScene& Play();
    XScene& PlayReverse();
    XScene& Stop();
    // Whole frames within the playback range, around whose ends the single steps wrap: they are one moment of the
    // cycle, so that the frame after the end is the one after the start. Each stops playback first.
    XScene& GoToFirstFrame();
    XScene& GoToPreviousFrame();
    XScene& GoToNextFrame();
    XScene& GoToLastFrame();
    void onAppMainLoopTick() override;
    int getAppMainLoopTickPriority() const override { return 1; }

    // ---- the selected objects ----
    XScene& CopySelection();
    XScene& DeleteSelection();
    XScene& RemoveSelection();
    XScene& RenameSelection(std::wstring const& name);
    XScene& ReparentSelection();
    XScene& ReparentSelection(std::wstring const& path);
    XScene& UnparentSelection();
    XScene& ChangeEditMode(int mode);

    // ---- animation ----
    XScene& ClearAnimation(XObject const& root);  // of the object and all below it; the caller provides the block
    XScene& DisconnectAnimation(XObject const& root);

    // ---- commands; defined on the commands floor ----
    // Runs the command of that name on this scene: one step of the history. Gives the first of its results, or an
    // invalid handle; an unknown name is logged.
    XObject RunCommand(std::wstring const& name);
    XObject RunCommand(std::wstring const& name, Qelutils::Vector<XObject>& results);

    // ---- tools; defined on the interaction floor ----
    XScene& SetActiveTool(std::wstring const& name);
    XScene& SetActiveTool(unsigned int index);
    std::wstring ActiveToolName() const;
    int ActiveToolIndex() const;
    int ActiveToolOrientation() const;
    XScene& ToggleActiveToolOrientation();
    XScene& UpdateActiveToolTransform();
    XScene& UpdateActiveToolWeights();
    XScene& UpdateActiveToolWeights(XSceneChange const& change, bool force);
    XScene& UpdateActiveToolDisplay();

    // ---- what a document does its own way ----
    using XDatabase::CreateObject;
    XObject CreateNode(std::wstring const& nodeType, XObject const& parent) override;
    XObject CreateNode(std::wstring const& nodeType) override;
    std::wstring Units(int code) override;
    void ConvertUnits(int code, XUnitConversionType direction, float& value) override;
    void ConvertUnits(int code, XUnitConversionType direction, double& value) override;
    void ConvertUnits(sg::AttributeUnit unit, XUnitConversionType direction, float& value) override;
    void ConvertUnits(sg::AttributeUnit unit, XUnitConversionType direction, XVector3& value) override;
    void ConvertUnits(XUnitConversionType direction, Qelutils::Vector<float>& lengths) override;
    void ConvertUnits(XUnitConversionType direction, XMatrix& value) override;
    void ReparentChildObjects(XObject& object) override;
    void onSceneLoaded(XDatabaseChange const& change) override;
    void onSceneChanged(XDatabaseChange const& change, bool transient) override;
    void onSceneChangedPreCommit(XDatabaseChange const& change, bool transient) override;
    void onSceneChangedPostCommit(XDatabaseChange const& change, bool transient) override;
    void reparent(XObject& object, XObject const& parent, bool flag, bool keepWorld) override;
    void unparent(XObject& object) override;
    bool querySupportsEditMode(XObject const& object, int mode) const override;
    bool queryIsCopyable(XObject const& object) const override;
    bool queryIsEditable(XObject const& object) const override;
    bool queryIsSelectable(XObject const& object) const override;
    bool queryIsSelected(XObject const& object) const override;
    bool queryIsVisible(XObject const& object) const override;
    void queryDisplayGroup(XObject const& object, XDisplayGroup& out) const override;
    void querySelectionGroups(XObject const& object, Qelutils::Vector<XSelectionGroup>& out) const override;

protected:
    XSceneObjects& objects() const { return *_objects; }

    void clearSelection();
    void bindSceneObjects();
    void upgradeSceneFileVersion();
    void prepareSceneForEditing();
    void beginDocumentLevelChange();
    void endDocumentLevelChange();
    void runSceneInitializationLuaScript();
    void createObjectControllers();
    void deleteObjectControllers();
    void setActiveToolIndex(unsigned int index);
    void changeEditMode(int mode);

    void doNotifySceneRegistered();
    void doNotifySceneCreated();
    void doNotifySceneLoaded();
    void doNotifySceneChanged(XSceneChange const& change, bool transient);
    void doNotifySceneSelectionChanged(bool transient);
    void doNotifySceneTimeChanged(bool transient);

    // The caches, all derived data.
    void clearSelectionCache();
    void loadSelectionCache();
    void reloadSelectionCache();
    void updateSelectionCache(XSceneChange const& change, bool transient);
    XSelectionCache const& selectionCache() const;  // the ids of what is selected, and of all below that
    void clearVisibilityCache();
    void loadVisibilityCache();
    void updateVisibilityCache(XSceneChange const& change);
    void clearGroupCache();
    void reloadGroupCache();
    void updateGroupCache(XSceneChange const& change, bool transient);
    void updateObjectColourCache(XSceneChange const& change, bool transient);
    void updateRenderSettings();

private:
    template<class Value> void convertUnits(int code, XUnitConversionType direction, Value& value) const;
    void startPlayback(XSceneMode mode);
    void stepFrame(bool forward);
    void setTime(float time);  // if it differs

    XSceneSettings _sceneSettings;
    std::unique_ptr<XSceneObjects> _objects;
    std::wstring _scriptPath;
    XSceneMode _mode = InteractiveMode;
    unsigned _currentStamp = 0;  // milliseconds; differences are right also when the counter wraps
    unsigned _startStamp = 0;
    float _playbackStart = 0;  // the scene's time when playback began, in seconds
};

}  // namespace Tavo
