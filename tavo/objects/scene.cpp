#include "tavo/objects/scene.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/app/observers.h"
#include "tavo/app/script_engine.h"
#include "tavo/objects/database_change.h"
#include "tavo/objects/scene_graph.h"
#include <chrono>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <typeinfo>

namespace Tavo {
namespace {

XApplication& application() { return XApplication::Instance(); }

std::string classNameOf(XSceneObserver const& observer) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const name(
        abi::__cxa_demangle(typeid(observer).name(), nullptr, nullptr, &status), std::free);
    return name ? name.get() : typeid(observer).name();
}

// Each observer in its order; how long it took goes to the log while the graph times its observers.
template<class Notice> void tellSceneObservers(wchar_t const* operation, Notice const& notice) {
    application().ForEachSceneObserver([&](XSceneObserver& observer) {
        if (!XSceneGraph::IsTimingEnabled()) return notice(observer);
        std::string const name = classNameOf(observer);  // now: it may be gone after the call
        auto const start = std::chrono::steady_clock::now();
        notice(observer);
        std::chrono::duration<double, std::milli> const taken = std::chrono::steady_clock::now() - start;
        application().LogDebug(L"%s::%s(): %.3f ms", Qelutils::fromUtf8(name), std::wstring(operation), taken.count());
    });
}

}  // namespace

// Never destroyed, so that handles without a scene may ask it until the very end of the program.
XScene& XScene::Undefined = *new XScene;

// ---- identity ----

std::wstring XScene::SceneName() const { return SceneGraph() ? SceneGraph()->getName() : std::wstring(); }

sg::Renderer* XScene::Renderer() const { return SceneGraph() ? SceneGraph()->Renderer() : nullptr; }

sg::Controller* XScene::Controller() const { return SceneGraph() ? SceneGraph()->Controller() : nullptr; }

// ---- document ----

void XScene::Register() {
    XDatabase::Register();
    SceneGraph()->setLogger(application().Logger());
    if (Mirrel::gMirrel.mainLoop) Mirrel::gMirrel.mainLoop->addTimerClient(this);
    doNotifySceneRegistered();
    clearGroupCache();
    clearVisibilityCache();
    clearSelectionCache();
}

void XScene::Unregister() {
    if (Mirrel::gMirrel.mainLoop) Mirrel::gMirrel.mainLoop->removeTimerClient(this);
    _mode = InteractiveMode;  // an open block of playback goes with the graph
    XDatabase::Unregister();
}

// Playback is ended first: inside its open block nothing of a document-level change would be committed.
XScene& XScene::New() {
    if (!IsValid()) return *this;
    Stop();
    beginUnrecorded();
    clearSelection();
    clearGroupCache();
    clearNodes();
    bindSceneObjects();
    doNotifySceneCreated();
    runSceneInitializationLuaScript();
    prepareSceneForEditing();
    endDocumentLevelChange();
    return *this;
}

XScene& XScene::Open() {
    if (!IsValid()) return *this;
    Stop();
    beginUnrecorded();
    upgradeSceneFileVersion();
    repairSceneFileErrors();
    bindSceneObjects();
    doNotifySceneCreated();
    prepareSceneForEditing();
    endDocumentLevelChange();
    return *this;
}

XScene& XScene::Term() {
    deleteObjectControllers();
    return *this;
}

void XScene::beginDocumentLevelChange() { beginUnrecorded(); }

void XScene::endDocumentLevelChange() {
    endUnrecorded(MaximumUndoSteps);
    doNotifySceneLoaded();
}

// The names that the roots of the groups had in files of former versions.
void XScene::upgradeSceneFileVersion() {
    struct Renaming {
        XWord before, now;
    };
    static constexpr Renaming renamings[] = {{L"DisplayLayers", DisplayGroupsName},
                                             {L"SelectionSets", SelectionGroupsName},
                                             {L"CollisionSets", CollisionGroupsName}};
    for (Renaming const& each : renamings)
        if (sg::Node* const node = SceneGraph()->Node(each.before)) XObject(node).SetName(each.now, true);
}

void XScene::prepareSceneForEditing() {
    SceneGraph()->setCheckpoint();
    SetActiveTool(unsigned(_sceneSettings.ActiveTool().Integer()));
    reloadSelectionCache();
    clearVisibilityCache();
    loadVisibilityCache();
    reloadGroupCache();
    updateRenderSettings();
    SceneGraph()->ClearUndoHistory();
    application().UpdateFrame();
}

XScene& XScene::Undo() {
    if (SceneGraph()) SceneGraph()->Undo();
    return *this;
}

XScene& XScene::Redo() {
    if (SceneGraph()) SceneGraph()->Redo();
    return *this;
}

XScene& XScene::Redraw() {
    if (SceneGraph()) SceneGraph()->ForceRedraw();
    return *this;
}

XScene& XScene::UpdateDisplay() {
    application().UpdateDisplay();
    return *this;
}

XScene& XScene::UpdateFrame() {
    application().UpdateFrame();
    return *this;
}

XScene& XScene::UpdateViewports() { return Redraw(); }

XScene& XScene::ZoomToFit() {
    if (Renderer()) Renderer()->zoomToFit();
    return *this;
}

XScene& XScene::UpdateAll() { return UpdateFrame().UpdateViewports().UpdateDisplay(); }

// ---- the commit cycle ----

void XScene::onSceneLoaded(XDatabaseChange const&) {
    UpdateActiveToolTransform();
    CommitTransient();
    Redraw();
    doNotifySceneLoaded();
}

void XScene::onSceneChanged(XDatabaseChange const& change, bool transient) {
    onSceneChangedPostCommit(change, transient);
}

void XScene::onSceneChangedPreCommit(XDatabaseChange const& change, bool) {
    if (!XSceneChange(*this, change.ChangeSet()).IsSelectionChange()) return;
    application().ForEachScriptEngine([&](XScriptEngine& engine) { engine.NotifySceneSelectionChanging(*this); });
}

void XScene::onSceneChangedPostCommit(XDatabaseChange const& databaseChange, bool transient) {
    XSceneChange const change(*this, databaseChange.ChangeSet());
    // Asked now: the observers' own edits are other changes.
    bool const selectionChanged = change.IsSelectionChange(), timeChanged = change.IsTimeChange();
    updateGroupCache(change, transient);
    updateObjectColourCache(change, transient);
    updateSelectionCache(change, transient);
    if (!transient) updateVisibilityCache(change);
    if (timeChanged || !transient) UpdateActiveToolTransform();
    UpdateActiveToolWeights(change, transient);
    if (!transient) {
        CommitTransient();
        Redraw();
    }
    doNotifySceneChanged(change, transient);
    if (selectionChanged) doNotifySceneSelectionChanged(transient);
    if (timeChanged) doNotifySceneTimeChanged(transient);
}

// ---- notices: the observers first, then the scripts ----

void XScene::doNotifySceneRegistered() {
    application().ForEachSceneObserver([&](XSceneObserver& each) { each.OnSceneRegistered(*this); });
}

void XScene::doNotifySceneCreated() {
    application().ForEachSceneObserver([&](XSceneObserver& each) { each.OnSceneCreated(*this); });
}

void XScene::doNotifySceneLoaded() {
    application().ForEachSceneObserver([&](XSceneObserver& each) { each.OnSceneLoaded(*this); });
    application().ForEachScriptEngine([&](XScriptEngine& engine) { engine.NotifySceneLoaded(*this); });
}

void XScene::doNotifySceneChanged(XSceneChange const& change, bool transient) {
    tellSceneObservers(L"OnSceneChanged", [&](XSceneObserver& each) { each.OnSceneChanged(change, transient); });
    application().ForEachScriptEngine([&](XScriptEngine& engine) { engine.NotifySceneChanged(change, transient); });
    if (SceneGraph()) SceneGraph()->ObjectEvents().Tell();
}

void XScene::doNotifySceneSelectionChanged(bool transient) {
    tellSceneObservers(L"OnSceneSelectionChanged",
                       [&](XSceneObserver& each) { each.OnSceneSelectionChanged(*this, transient); });
    application().ForEachScriptEngine(
        [&](XScriptEngine& engine) { engine.NotifySceneSelectionChanged(*this, transient); });
}

void XScene::doNotifySceneTimeChanged(bool transient) {
    tellSceneObservers(L"OnSceneTimeChanged", [&](XSceneObserver& each) { each.OnSceneTimeChanged(*this, transient); });
    application().ForEachScriptEngine([&](XScriptEngine& engine) { engine.NotifySceneTimeChanged(*this, transient); });
}

}  // namespace Tavo
