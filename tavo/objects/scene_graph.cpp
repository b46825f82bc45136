#include "tavo/objects/scene_graph.h"
#include "tavo/app/application.h"
#include "tavo/objects/database.h"
#include "tavo/objects/database_change.h"
#include "tavo/objects/vector3.h"
#include <algorithm>

namespace Tavo {

// ---- the graph ----

XSceneGraph::XSceneGraph(XDatabase& owner) : _owner(owner) {}
XSceneGraph::~XSceneGraph() = default;

void XSceneGraph::Clear() { clear(); }

sg::Node* XSceneGraph::CreateNode(std::wstring const& type, std::wstring const& name) {
    return makeNode(type, name, L"sg");
}

bool XSceneGraph::DeleteNode(sg::Node* node) {
    return node && node->getDatabase() == this && !node->isRemovedNode() && node->remove();
}

sg::Node* XSceneGraph::Node(std::wstring const& path) const { return findNode(path); }

sg::Node* XSceneGraph::Node(int id) const {
    db::Node* const node = id == getID() ? nullptr : lookupNode(id);  // the database is no object
    return static_cast<sg::Node*>(node);
}

void XSceneGraph::Nodes(std::vector<sg::Node*>& out) const { listAllNodes(out); }
void XSceneGraph::Nodes(std::wstring const& pattern, std::vector<sg::Node*>& out) const { findNodes(pattern, out); }

db::Attribute* XSceneGraph::Attribute(int id) const { return id == getID() ? nullptr : lookupAttribute(id); }

db::Attribute* XSceneGraph::Attribute(int nodeID, int index) const {
    sg::Node const* node = Node(nodeID);
    return node && index >= 0 ? node->getAttribute(std::size_t(index)) : nullptr;
}

db::Attribute* XSceneGraph::Attribute(int nodeID, std::wstring const& name) const {
    sg::Node const* node = Node(nodeID);
    return node ? node->findAttribute(name) : nullptr;
}

db::Attribute* XSceneGraph::Attribute(std::wstring const& path) const { return findAttributeByPath(path); }

db::Attribute* XSceneGraph::Attribute(std::wstring const& nodePath, std::wstring const& name) const {
    std::vector<sg::Node*> nodes;
    findNodes(nodePath, nodes);
    return nodes.empty() ? nullptr : nodes.front()->findAttribute(name);
}

void XSceneGraph::ForceRedraw() {
    if (_renderer) _renderer->requestNeedToRedraw();
}

// ---- change control ----

void XSceneGraph::BatchCommitBegin(bool transient) {
    beginChangeBlock(transient ? db::ChangeMode::Transient : db::ChangeMode::Recorded);
}
void XSceneGraph::BatchCommitEnd(std::wstring const& label) { endChangeBlock(label); }
void XSceneGraph::BatchCommitTransient() { commitTransient(); }
void XSceneGraph::BatchCommitCancel() { cancel(); }
bool XSceneGraph::Undo() { return undo(); }
bool XSceneGraph::Redo() { return redo(); }
void XSceneGraph::ClearUndoHistory() { clearUndoHistory(); }
bool XSceneGraph::IsTimingEnabled() { return isObserverTimingEnabled(); }
void XSceneGraph::RegisterObserver(db::DatabaseObserver* observer) { addObserver(observer); }
void XSceneGraph::UnregisterObserver(db::DatabaseObserver* observer) { removeObserver(observer); }

void XSceneGraph::onDatabaseChangedPreCommit(db::ChangeSet const& changes, bool transient) {
    _owner.onSceneChangedPreCommit(XDatabaseChange(_owner, changes), transient);
}

void XSceneGraph::cancel() {
    _objectEvents.Cancel();
    sg::Scene::cancel();
}
void XSceneGraph::notifyObservers(db::ChangeSet const& changes, bool transient) {
    XObjectEvents::Telling const telling(_objectEvents);
    sg::Scene::notifyObservers(changes, transient);
}

// ---- what the renderer asks ----

bool XSceneGraph::requestClientVisibility(int viewport, sg::Node* node, bool& visible) {
    return _owner.onRequestVisibility(this, viewport, node, visible);
}
bool XSceneGraph::requestClientColour(int viewport, sg::Node* node, float& red, float& green, float& blue,
                                      float& alpha) {
    return _owner.onRequestColour(this, viewport, node, red, green, blue, alpha);
}
bool XSceneGraph::requestClientColour(int viewport, sg::Node* node, int subObject, float& red, float& green,
                                      float& blue, float& alpha) {
    return _owner.onRequestColour(this, viewport, node, subObject, red, green, blue, alpha);
}
bool XSceneGraph::requestClientSelectability(int viewport, sg::Node* node, bool& selectable) {
    return _owner.onRequestSelectability(this, viewport, node, selectable);
}
bool XSceneGraph::requestClientEditMode(int& mode) { return _owner.onRequestEditMode(mode); }

// ---- the observer ----

void XSceneGraphObserver::Register() { _graph.RegisterObserver(this); }
void XSceneGraphObserver::UnRegister() { _graph.UnregisterObserver(this); }

void XSceneGraphObserver::onSceneChanged(db::ChangeSet const& changes, bool transient) {
    _owner.onSceneChanged(XDatabaseChange(_owner, changes), transient);
}
void XSceneGraphObserver::onSceneLoaded(sg::Scene*) {
    db::ChangeSet const nothing;
    _owner.onSceneLoaded(XDatabaseChange(_owner, nothing));
}
void XSceneGraphObserver::onControllerEnter(sg::Scene* scene, int viewport, int tool, bool a, bool b, bool c) {
    _owner.onControllerEnter(scene, viewport, tool, a, b, c);
}
void XSceneGraphObserver::onControllerExit(sg::Scene* scene, int viewport, int tool) {
    _owner.onControllerExit(scene, viewport, tool);
}
void XSceneGraphObserver::onControllerCancel(sg::Scene* scene, int viewport, int tool) {
    _owner.onControllerCancel(scene, viewport, tool);
}
void XSceneGraphObserver::onControllerTranslation(sg::Scene* scene, Qelp::Vector3 const& delta) {
    _owner.onControllerTranslation(scene, delta);
}
void XSceneGraphObserver::onControllerRotation(sg::Scene* scene, float angle, Qelp::Vector3 const& axis) {
    _owner.onControllerRotation(scene, angle, axis);
}
void XSceneGraphObserver::onControllerRotation(sg::Scene* scene, Qelp::Vector3 const& eulerAngles, int order) {
    _owner.onControllerRotation(scene, XVector3(eulerAngles), order);
}
void XSceneGraphObserver::onControllerScaleEnter(sg::Scene* scene) { _owner.onControllerScaleEnter(scene); }
void XSceneGraphObserver::onControllerScale(sg::Scene* scene, Qelp::Vector3 const& scale) {
    _owner.onControllerScale(scene, scale);
}
void XSceneGraphObserver::onControllerReportSelection(sg::Scene* scene, std::vector<int> const& items,
                                                      std::vector<int> const& subItems, int mode) {
    _owner.onControllerReportSelection(scene, items, subItems, mode);
}
void XSceneGraphObserver::onControllerReportCamera(sg::Scene* scene, int viewport) {
    _owner.onControllerReportCamera(scene, viewport);
}

// ---- the lookup ----

XSceneLookup::XSceneLookup(XDatabase& owner) : _owner(owner) { XApplication::Instance().AddSceneObserver(this); }
XSceneLookup::~XSceneLookup() { XApplication::Instance().RemoveSceneObserver(this); }

// Move to front: the last seven distinct ids, the most recent first. What the graph does not find stays out.
template<class Handle, class Resolve, class Find>
auto XSceneLookup::lookUp(Cache<Handle>& cache, int id, Resolve const& resolve, Find const& find) {
    auto const begin = cache.entries.begin(), end = begin + cache.count;
    auto place = std::find_if(begin, end, [&](auto const& entry) { return entry.first == id; });
    auto target = place == end ? nullptr : resolve(place->second);
    if (place == begin && target) return target;
    if (!target) {
        target = find();
        if (!target) return target;
        if (place == end) place = cache.count < Capacity ? begin + cache.count++ : end - 1;
    }
    std::move_backward(begin, place, place + 1);
    begin->first = id;
    begin->second = Handle(target);
    return target;
}

sg::Node* XSceneLookup::Node(int id) {
    if (id == XDatabase::InvalidID) return nullptr;
    return lookUp(
        _nodes, id, [](sg::NodeHandle const& handle) { return handle.getRef(); },
        [&] { return _owner.SceneGraph()->Node(id); });
}

db::Attribute* XSceneLookup::Attribute(int id) {
    if (id == XDatabase::InvalidID) return nullptr;
    return lookUp(
        _attributes, id, [](sg::AttributeHandle const& handle) { return handle.getRefOrRemoved(); },
        [&] { return _owner.SceneGraph()->Attribute(id); });
}

// A deleted attribute alone empties nothing: a decision of this system. Its handle tells that it is removed.
void XSceneLookup::OnSceneChanged(XSceneChange const& change, bool) {
    if (change.IsObjectDeleted()) _nodes.count = _attributes.count = 0;
}

}  // namespace Tavo
