// The close companions of XDatabase: the graph that it owns, the observer that brings the graph's notices to it, and
// the cache behind lookups by id. Nobody else needs them but who works on the graph itself.
#pragma once
#include "qel/sg/scene.h"
#include "qel/sg/scene_observer.h"
#include "tavo/app/observers.h"
#include "tavo/objects/object_events.h"
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace Tavo {

class XDatabase;

// The database proper. Renderer and controller exist only where a display library has given them.
class XSceneGraph : public sg::Scene {
public:
    explicit XSceneGraph(XDatabase& owner);
    ~XSceneGraph() override;

    XDatabase& Database() const { return _owner; }
    sg::Renderer* Renderer() const { return _renderer; }
    sg::Controller* Controller() const { return _controller; }
    void SetDisplay(sg::Renderer* renderer, sg::Controller* controller) {
        _renderer = renderer;
        _controller = controller;
    }

    void Clear();
    sg::Node* CreateNode(std::wstring const& type, std::wstring const& name);  // null for an unknown type
    bool DeleteNode(sg::Node* node);
    sg::Node* Node(std::wstring const& path) const;  // null when there is none, as the following
    sg::Node* Node(int id) const;
    void Nodes(std::vector<sg::Node*>& out) const;
    void Nodes(std::wstring const& pattern, std::vector<sg::Node*>& out) const;
    db::Attribute* Attribute(int id) const;
    db::Attribute* Attribute(int nodeID, int index) const;
    db::Attribute* Attribute(int nodeID, std::wstring const& name) const;
    db::Attribute* Attribute(std::wstring const& path) const;
    db::Attribute* Attribute(std::wstring const& nodePath, std::wstring const& name) const;
    void ForceRedraw();

    void BatchCommitBegin(bool transient);
    void BatchCommitEnd(std::wstring const& label);
    void BatchCommitTransient();
    void BatchCommitCancel();
    bool Undo();
    bool Redo();
    void ClearUndoHistory();
    static bool IsTimingEnabled();
    void RegisterObserver(db::DatabaseObserver* observer);
    void UnregisterObserver(db::DatabaseObserver* observer);

    void onDatabaseChangedPreCommit(db::ChangeSet const& changes, bool transient) override;
    void cancel() override;
    void notifyObservers(db::ChangeSet const& changes, bool transient) override;
    XObjectEvents& ObjectEvents() { return _objectEvents; }

    // What the renderer asks, passed on to the database.
    bool requestClientVisibility(int viewport, sg::Node* node, bool& visible);
    bool requestClientColour(int viewport, sg::Node* node, float& red, float& green, float& blue, float& alpha);
    bool requestClientColour(int viewport, sg::Node* node, int subObject, float& red, float& green, float& blue,
                             float& alpha);
    bool requestClientSelectability(int viewport, sg::Node* node, bool& selectable);
    bool requestClientEditMode(int& mode);

private:
    XDatabase& _owner;
    sg::Renderer* _renderer = nullptr;      // borrowed
    sg::Controller* _controller = nullptr;  // borrowed
    XObjectEvents _objectEvents{*this};
};

// Brings what the graph and its controller tell to the database, each to its operation of the same name.
class XSceneGraphObserver : public sg::SceneObserver {
public:
    XSceneGraphObserver(XDatabase& owner, XSceneGraph& graph) : _owner(owner), _graph(graph) {}
    void Register();
    void UnRegister();

    wchar_t const* getObserverName() const override { return L"XSceneGraphObserver"; }
    void onSceneChanged(db::ChangeSet const& changes, bool transient) override;
    void onSceneLoaded(sg::Scene* scene) override;
    void onControllerEnter(sg::Scene* scene, int viewport, int tool, bool a, bool b, bool c) override;
    void onControllerExit(sg::Scene* scene, int viewport, int tool) override;
    void onControllerCancel(sg::Scene* scene, int viewport, int tool) override;
    void onControllerTranslation(sg::Scene* scene, Qelp::Vector3 const& delta) override;
    void onControllerRotation(sg::Scene* scene, float angle, Qelp::Vector3 const& axis) override;
    void onControllerRotation(sg::Scene* scene, Qelp::Vector3 const& eulerAngles, int order) override;
    void onControllerScaleEnter(sg::Scene* scene) override;
    void onControllerScale(sg::Scene* scene, Qelp::Vector3 const& scale) override;
    void onControllerReportSelection(sg::Scene* scene, std::vector<int> const& items, std::vector<int> const& subItems,
                                     int mode) override;
    void onControllerReportCamera(sg::Scene* scene, int viewport) override;

private:
    XDatabase& _owner;
    XSceneGraph& _graph;
};

// The last seven distinct ids, most recent first. Null results are not kept. A change that removed an object empties
// both lists; one that removed only attributes leaves them, and a cached attribute with them.
class XSceneLookup : public XSceneObserver {
public:
    static constexpr int Capacity = 7;

    explicit XSceneLookup(XDatabase& owner);  // registers with the application
    ~XSceneLookup() override;
    sg::Node* Node(int id);  // null for -1 and for an unknown id
    db::Attribute* Attribute(int id);
    void OnSceneChanged(XSceneChange const& change, bool transient) override;

private:
    // The entries are weak: what was destroyed meanwhile reads null, which counts as a miss.
    template<class Handle> struct Cache {
        std::array<std::pair<int, Handle>, Capacity> entries;
        int count = 0;
    };
    template<class Handle, class Resolve, class Find>
    static auto lookUp(Cache<Handle>& cache, int id, Resolve const& resolve, Find const& find);

    XDatabase& _owner;
    Cache<sg::NodeHandle> _nodes;
    Cache<sg::AttributeHandle> _attributes;
};

}  // namespace Tavo
