// The tables that scripts see: plain tables that carry identifiers and are looked up anew whenever they come back, so
// that a table kept too long is harmless. A scene carries `__sceneID`; an object `__sceneID` and `__objectID`; an
// attribute the same two, with its own id in the second; a key also `__objectSubID`, its slot; values carry their
// numbers by name and by position.
//
// An object's functions and the fields of its attributes, of which there are hundreds, come into being when they are
// asked for, and stay in the table from then on. Indexing, assignment and pairs behave as if all had been there from
// the start; only a field that was asked for and then set to nil comes back. `==` compares what is meant.
//
// No identifier is given twice by one document, undone, emptied or closed. A document that is loaded brings those of
// its file: a table names the same object after the same document is loaded again, and in another document whatever
// bears its identifier there.
#pragma once
#include "tavo/app/application.h"
#include "tavo/extension/lua/script_call.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace db {
class NodeDef;
}

namespace Tavo {

class XLuaScript;
struct XScriptSet;

// References into Lua's registry: a metatable while fields are still to come, and one for when all are there.
struct XScriptMetatables {
    int lazy, full;
};

class XScriptTables {
public:
    // Builds the functions' tables; inside a protected call.
    XScriptTables(XLuaScript& script, lua_State* state);
    // From now on the functions that the state keeps fail. The state is still there.
    void Disconnect() { _engine->script = nullptr; }

    // ---- to scripts ----
    void PushScene(lua_State* state, XDatabase const& scene);
    void PushObject(lua_State* state, XObject const& object);  // nil for an invalid one
    void PushAttribute(lua_State* state, XAttribute const& attribute);
    void PushKeyframe(lua_State* state, XKeyframe const& key);
    void PushValue(lua_State* state, XVector3 const& value, int sceneID);
    void PushValue(lua_State* state, XQuaternion const& value, int sceneID);
    void PushValue(lua_State* state, XMatrix const& value, int sceneID);
    // Into the table at `index`, which stays what it is.
    static void StoreValue(lua_State* state, int index, XVector3 const& value);
    static void StoreValue(lua_State* state, int index, XQuaternion const& value);
    static void StoreValue(lua_State* state, int index, XMatrix const& value);
    // The functions of one set, into the table on top of the stack.
    void RegisterFunctions(lua_State* state, XScriptSet const& set);

    // ---- from scripts; `index` is that of a table. A table without a scene's id throws the XScriptError "Invalid
    // scene ID"; one that names nothing, or what is gone, gives null or an invalid handle ----
    static XDatabase* DatabaseAt(lua_State* state, int index);
    static XObject ObjectAt(lua_State* state, int index);
    static XAttribute AttributeAt(lua_State* state, int index);
    static XKeyframe KeyframeAt(lua_State* state, int index);
    static bool HasField(lua_State* state, int index, char const* key);
    // Starts from zero and takes each component that is a number; a table without any by name is read by position.
    static XVector3 VectorAt(lua_State* state, int index);
    static XQuaternion QuaternionAt(lua_State* state, int index);
    static bool MatrixAt(lua_State* state, int index, XMatrix& value);  // false unless there are 16 numbers

    static XDatabase* DatabaseOf(long long id);  // null for -1, and for one that is not open
    static XObject ObjectOf(XDatabase const* database, long long id);
    static XAttribute AttributeOf(XDatabase const* database, long long id);

private:
    XScriptMetatables const& metatablesOf(lua_State* state, XObject const& object);
    XScriptMetatables makeMetatables(lua_State* state, std::vector<std::wstring> const& types);
    int makePlain(lua_State* state, XScriptSet const& set);
    template<class Value>
    void pushValue(lua_State* state, Value const& value, int sceneID, int positions, int metatable);
    void setIdentity(lua_State* state, int scene, int object);

    XLuaScript& _script;
    XScriptEngineCell* _engine;
    std::map<std::vector<std::wstring>, XScriptMetatables> _byTypes;
    std::map<db::NodeDef const*, XScriptMetatables> _byNode;
    XScriptMetatables _attribute{};
    int _scene = 0, _keyframe = 0, _vector = 0, _quaternion = 0, _matrix = 0;  // metatables in the registry
};

// What follows is in the way of every call. It goes straight to the graph: what is gone is no error here, where the
// scene's own look-up would log one.

inline XDatabase* XScriptTables::DatabaseOf(long long id) {
    XApplication& application = XApplication::Instance();
    if (id < 0 || id > std::numeric_limits<int>::max() || !application.IsStarted()) return nullptr;
    XScene& active = application.ActiveScene();
    return active.DatabaseID() == int(id) ? &active : application.GetDatabaseByID(int(id));
}

inline XObject XScriptTables::ObjectOf(XDatabase const* database, long long id) {
    XSceneGraph* const graph = database ? database->SceneGraph() : nullptr;
    if (!graph || id < 0 || id > std::numeric_limits<int>::max()) return {};
    db::Node* const node = graph->lookupNode(int(id));
    return node && node != graph ? XObject(*database, *node) : XObject();
}

inline XAttribute XScriptTables::AttributeOf(XDatabase const* database, long long id) {
    XSceneGraph* const graph = database ? database->SceneGraph() : nullptr;
    if (!graph || id < 0 || id > std::numeric_limits<int>::max()) return {};
    return XAttribute(graph->lookupAttribute(int(id)));
}

}  // namespace Tavo
