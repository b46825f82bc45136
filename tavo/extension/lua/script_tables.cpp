#include "tavo/extension/lua/script_tables.h"
#include "tavo/animation/animation.h"
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_fields.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/native.h"
#include "tavo/extension/lua/script_metamethods.h"
#include "tavo/extension/lua/script_sets.h"
#include "tavo/objects/scene_graph.h"
#include <algorithm>
#include <limits>
#include <lua.hpp>

namespace Tavo {
namespace {

bool numberField(lua_State* state, int index, char const* key, float& out) {
    lua_pushstring(state, key);
    lua_rawget(state, index);
    bool const isNumber = lua_type(state, -1) == LUA_TNUMBER;
    if (isNumber) out = float(lua_tonumber(state, -1));
    lua_pop(state, 1);
    return isNumber;
}

constexpr char const* componentNames[] = {"x", "y", "z", "w"};
constexpr int componentsByName = 4;

// By name, or else by position.
void readComponents(lua_State* state, int index, float* out, int count) {
    index = lua_absindex(state, index);
    bool isNamed = false;
    for (int i = 0; i < count; ++i) isNamed |= numberField(state, index, componentNames[i], out[i]);
    for (int i = 0; i < count && !isNamed; ++i) numberAt(state, index, i + 1, out[i]);
}

void storeComponents(lua_State* state, int index, float const* values, int count) {
    index = lua_absindex(state, index);
    for (int i = 0; i < count; ++i) {
        lua_pushnumber(state, double(values[i]));
        lua_pushvalue(state, -1);
        lua_rawseti(state, index, i + 1);
        lua_pushstring(state, componentNames[i]);
        lua_insert(state, -2);
        lua_rawset(state, index);
    }
}

void setInteger(lua_State* state, char const* key, long long value) {
    lua_pushstring(state, key);
    lua_pushinteger(state, value);
    lua_rawset(state, -3);
}

void setMetatable(lua_State* state, int reference) {
    lua_rawgeti(state, LUA_REGISTRYINDEX, reference);
    lua_setmetatable(state, -2);
}

}  // namespace

// ---- the functions' tables ----

XScriptTables::XScriptTables(XLuaScript& script, lua_State* state) :
    _script(script), _engine(makeEngineCell(state, script)) {
    _scene = makePlain(state, SceneFunctions());
    lua_rawgeti(state, LUA_REGISTRYINDEX, _scene);
    setEquality(state);
    lua_setglobal(state, XScriptBase::SceneMetaTable);
    _keyframe = makePlain(state, KeyframeFunctions());
    _vector = makePlain(state, Vector3Functions());
    _quaternion = makePlain(state, QuaternionFunctions());
    _matrix = makePlain(state, MatrixFunctions());
    for (auto const& [reference, count] : {std::pair{_vector, 3}, {_quaternion, 4}, {_matrix, 16}}) {
        lua_rawgeti(state, LUA_REGISTRYINDEX, reference);
        setDescriptionOfNumbers(state, count);
        lua_pop(state, 1);
    }
    lua_newtable(state);
    RegisterFunctions(state, AttributeFunctions());
    _attribute = makeFieldMetatables(state, *_engine, XScriptFields::OfAttributes);
    lua_pop(state, 1);
}

void XScriptTables::RegisterFunctions(lua_State* state, XScriptSet const& set) {
    for (XScriptFunction const& function : set.functions) {
        lua_pushstring(state, function.Name());
        pushScriptFunction(state, {_engine, &set, &function});
        lua_rawset(state, -3);
    }
}

// A metatable whose __index is the table of the functions.
int XScriptTables::makePlain(lua_State* state, XScriptSet const& set) {
    lua_newtable(state);
    lua_newtable(state);
    RegisterFunctions(state, set);
    lua_setfield(state, -2, XScriptBase::IndexMetaMethod);
    lua_pushstring(state, set.table);
    lua_setfield(state, -2, "__name");
    return luaL_ref(state, LUA_REGISTRYINDEX);
}

XScriptMetatables XScriptTables::makeMetatables(lua_State* state, std::vector<std::wstring> const& types) {
    lua_newtable(state);
    for (std::wstring const& type : types)
        if (XScriptSet const* set = FunctionsOfType(type)) RegisterFunctions(state, *set);
    XScriptMetatables const made = makeFieldMetatables(state, *_engine, XScriptFields::OfObjects);
    lua_pop(state, 1);
    return made;
}

// Of the object's types, from "Object" down; nodes of one type share theirs.
XScriptMetatables const& XScriptTables::metatablesOf(lua_State* state, XObject const& object) {
    auto const known = _byNode.find(&object.getNode()->getNodeDef());
    if (known != _byNode.end()) return known->second;
    std::vector<std::wstring> types;
    object.ObjectTypes(types);
    if (types.empty()) types.push_back(XObject::TypeID);
    auto place = _byTypes.find(types);
    if (place == _byTypes.end()) place = _byTypes.emplace(types, makeMetatables(state, types)).first;
    return _byNode.emplace(&object.getNode()->getNodeDef(), place->second).first->second;
}

// ---- to scripts ----

void XScriptTables::setIdentity(lua_State* state, int scene, int object) {
    lua_pushstring(state, XScriptBase::LightUserDataObject);
    lua_pushlightuserdata(state, &_script);
    lua_rawset(state, -3);
    setInteger(state, XScriptBase::SceneID, scene);
    setInteger(state, XScriptBase::ObjectID, object);
}

void XScriptTables::PushScene(lua_State* state, XDatabase const& scene) {
    luaL_checkstack(state, 4, nullptr);
    lua_createtable(state, 0, 2);
    lua_pushstring(state, XScriptBase::LightUserDataObject);
    lua_pushlightuserdata(state, &_script);
    lua_rawset(state, -3);
    setInteger(state, XScriptBase::SceneID, scene.DatabaseID());
    setMetatable(state, _scene);
}

void XScriptTables::PushObject(lua_State* state, XObject const& object) {
    luaL_checkstack(state, 8, nullptr);
    if (!object.IsValid() || !object.getNode()) return lua_pushnil(state);
    int const reference = metatablesOf(state, object).lazy;
    lua_createtable(state, 0, 4);
    setIdentity(state, object.Database().DatabaseID(), object.ObjectID());
    setMetatable(state, reference);
}

void XScriptTables::PushAttribute(lua_State* state, XAttribute const& attribute) {
    luaL_checkstack(state, 4, nullptr);
    lua_createtable(state, 0, 3);
    setInteger(state, XScriptBase::SceneID,
               attribute.IsValid() ? attribute.Database().DatabaseID() : XDatabase::InvalidID);
    setInteger(state, XScriptBase::ObjectID, attribute.AttributeID());
    setMetatable(state, _attribute.lazy);
}

void XScriptTables::PushKeyframe(lua_State* state, XKeyframe const& key) {
    luaL_checkstack(state, 4, nullptr);
    if (!key.IsValid()) return lua_pushnil(state);
    lua_createtable(state, 0, 4);
    setIdentity(state, key.Database().DatabaseID(), key.ObjectID());
    setInteger(state, XScriptBase::ObjectSubID, key.AttributeIndex());
    setMetatable(state, _keyframe);
}

template<class Value>
void XScriptTables::pushValue(lua_State* state, Value const& value, int sceneID, int positions, int metatable) {
    luaL_checkstack(state, 6, nullptr);
    lua_createtable(state, positions, 1 + std::min(positions, componentsByName));
    setInteger(state, XScriptBase::SceneID, sceneID);
    StoreValue(state, -1, value);
    setMetatable(state, metatable);
}

void XScriptTables::PushValue(lua_State* state, XVector3 const& value, int sceneID) {
    pushValue(state, value, sceneID, 3, _vector);
}
void XScriptTables::PushValue(lua_State* state, XQuaternion const& value, int sceneID) {
    pushValue(state, value, sceneID, 4, _quaternion);
}
void XScriptTables::PushValue(lua_State* state, XMatrix const& value, int sceneID) {
    pushValue(state, value, sceneID, 16, _matrix);
}

void XScriptTables::StoreValue(lua_State* state, int index, XVector3 const& value) {
    float const values[] = {value.X(), value.Y(), value.Z()};
    storeComponents(state, index, values, 3);
}

void XScriptTables::StoreValue(lua_State* state, int index, XQuaternion const& value) {
    float const values[] = {value.X(), value.Y(), value.Z(), value.W()};
    storeComponents(state, index, values, 4);
}

// Rows as scripts see them are closed by (0, 0, 0, 1).
void XScriptTables::StoreValue(lua_State* state, int index, XMatrix const& value) {
    index = lua_absindex(state, index);
    for (int i = 0; i < 16; ++i) {
        bool const isLast = i == 15;
        lua_pushnumber(state, isLast ? 1.0 : i % 4 == 3 ? 0.0 : double(value.Element(i / 4, i % 4)));
        lua_rawseti(state, index, i + 1);
    }
}

// ---- from scripts ----

bool XScriptTables::HasField(lua_State* state, int index, char const* key) {
    index = lua_absindex(state, index);
    lua_pushstring(state, key);
    lua_rawget(state, index);
    bool const has = !lua_isnil(state, -1);
    lua_pop(state, 1);
    return has;
}

XDatabase* XScriptTables::DatabaseAt(lua_State* state, int index) {
    index = lua_absindex(state, index);
    lua_pushstring(state, XScriptBase::SceneID);
    lua_rawget(state, index);
    int isInteger = 0;
    long long const id = lua_tointegerx(state, -1, &isInteger);
    lua_pop(state, 1);
    if (!isInteger) throw XScriptError("Invalid scene ID");
    return DatabaseOf(id);
}

XObject XScriptTables::ObjectAt(lua_State* state, int index) {
    return ObjectOf(DatabaseAt(state, index), integerField(state, index, XScriptBase::ObjectID));
}

XAttribute XScriptTables::AttributeAt(lua_State* state, int index) {
    return AttributeOf(DatabaseAt(state, index), integerField(state, index, XScriptBase::ObjectID));
}

XKeyframe XScriptTables::KeyframeAt(lua_State* state, int index) {
    long long const slot = integerField(state, index, XScriptBase::ObjectSubID);
    bool const isSlot = slot >= 0 && slot <= std::numeric_limits<int>::max();
    return XKeyframe(XAnimation(ObjectAt(state, index)), isSlot ? int(slot) : -1);
}

XVector3 XScriptTables::VectorAt(lua_State* state, int index) {
    float values[3] = {};
    readComponents(state, index, values, 3);
    return XVector3(values);
}

XQuaternion XScriptTables::QuaternionAt(lua_State* state, int index) {
    float values[4] = {};
    readComponents(state, index, values, 4);
    return XQuaternion(values);
}

bool XScriptTables::MatrixAt(lua_State* state, int index, XMatrix& value) {
    index = lua_absindex(state, index);
    float values[16];
    for (int i = 0; i < 16; ++i)
        if (!numberAt(state, index, i + 1, values[i])) return false;
    value.Set(values);
    return true;
}

}  // namespace Tavo
