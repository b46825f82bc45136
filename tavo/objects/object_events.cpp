#include "tavo/objects/object_events.h"
#include "tavo/app/application.h"
#include "tavo/app/script_engine.h"
#include "tavo/objects/database.h"
#include "tavo/objects/scene_graph.h"
#include <unordered_set>
#include <utility>

namespace Tavo {
namespace {

using Notice = void (XScriptEngine::*)(XObject const&);
constexpr Notice notices[] = {&XScriptEngine::NotifyObjectCreated, &XScriptEngine::NotifyObjectDeleted,
                              &XScriptEngine::NotifyObjectRemoved, &XScriptEngine::NotifyObjectRenamed,
                              &XScriptEngine::NotifyObjectReparented};

bool isWanted() {
    bool wanted = false;
    XApplication::Instance().ForEachScriptEngine(
        [&](XScriptEngine const& engine) { wanted = wanted || engine.WantsObjectEvents(); });
    return wanted;
}

}  // namespace

// ---- noting ----

bool XObjectEvents::isNoting() const {
    return !_isDropping && _graph.Database().IsScene() && _graph.getMaxUndoItems() > 0;
}

// Whether anybody wants to know is asked first: mostly nobody does.
bool XObjectEvents::AreNoted(XObject const& object) {
    if (!isWanted()) return false;
    XSceneGraph* const graph = object.Database().SceneGraph();
    return graph && graph->ObjectEvents().isNoting();
}

void XObjectEvents::Note(Kind kind, XObject const& object) {
    if (AreNoted(object)) object.Database().SceneGraph()->ObjectEvents().note(kind, object);
}

void XObjectEvents::NoteCopies(XObject const& top) {
    if (!AreNoted(top)) return;
    Note(Created, top);
    Qelutils::Vector<XObject> below;
    top.DescendantObjects(below);
    for (XObject const& each : below) Note(Created, each);
}

void XObjectEvents::note(Kind kind, XObject const& object) {
    if (_nesting >= MostNestedTellings) return drop();
    _noted.push_back({kind, object, _graph.isInChangeBlock()});
}

void XObjectEvents::drop() {
    _isDropping = true;
    _noted.clear();
    _due.clear();
    XApplication::Instance().LogError(L"Scripts answer every event with another: they are not told of what follows");
}

// What is pending from before the block stays, but for the cancellation of a gesture, which takes it back as well.
void XObjectEvents::Cancel() {
    bool const takesAll = _graph.isTransient();
    std::erase_if(_noted, [&](Event const& event) { return takesAll || event.isInBlock; });
}

// ---- telling ----

// An object goes once in a commit, also when several ways led to its end.
void XObjectEvents::commit() {
    std::unordered_set<int> gone;
    for (Event& event : _noted) {
        bool const goes = event.kind == Deleted || event.kind == Removed;
        if (!goes || gone.insert(event.object.ObjectID()).second) _due.push_back(std::move(event));
    }
    _noted.clear();
}

// What a handler's own commits make due is told by those. An object that is gone for good, as when a handler makes the
// document new, has no id to tell of any more.
void XObjectEvents::Tell() {
    for (Event const& event : std::exchange(_due, {})) {
        if (_isDropping) return;
        if (event.object.ObjectID() == XObject::InvalidID) continue;
        XApplication::Instance().ForEachScriptEngine(
            [&](XScriptEngine& engine) { (engine.*notices[event.kind])(event.object); });
    }
}

XObjectEvents::Telling::Telling(XObjectEvents& events) : _events(events), _pauses(std::exchange(events._pauses, 0)) {
    ++_events._nesting;
    _events.commit();
}

XObjectEvents::Telling::~Telling() {
    if (--_events._nesting == 0) _events._isDropping = false;
    _events._pauses = _pauses;
}

// ---- what is noted as a whole ----

XObjectEvents::Pause::Pause(XDatabase const& database) : _graph(database.SceneGraph()) {
    if (_graph) ++_graph->ObjectEvents()._pauses;
}

XObjectEvents::Pause::~Pause() {
    if (_graph) --_graph->ObjectEvents()._pauses;
}

XObjectEvents::Comparison::Comparison(XObject const& object) : _object(object) {
    XSceneGraph* const graph = object.Database().SceneGraph();
    if (!graph || graph->ObjectEvents()._pauses > 0 || !AreNoted(object)) return;
    _parent = object.getNode()->getParent();
    _name = object.Name();
    _pause.emplace(object.Database());
}

XObjectEvents::Comparison::~Comparison() {
    if (!_pause) return;
    _pause.reset();
    if (_object.getNode()->getParent() != _parent) Note(Reparented, _object);
    if (_object.Name() != _name) Note(Renamed, _object);
}

XObjectEvents::Departures::~Departures() {
    for (std::size_t i = 0; i < _objects.size(); ++i)
        if (!_objects[i].IsValid()) Note(i == 0 ? _kind : Deleted, _objects[i]);
}

void XObjectEvents::Departures::Expect(XObject const& object) {
    if (AreNoted(object)) _objects.push_back(object);
}

void XObjectEvents::Departures::ExpectHierarchy(XObject const& top) {
    if (!AreNoted(top)) return;
    Qelutils::Vector<XObject> below;
    top.DescendantObjects(below);
    _objects.push_back(top);
    _objects.insert(_objects.end(), below.begin(), below.end());
}

}  // namespace Tavo
