#include "tavo/extension/lua/script_tables.h"
#include "qel/utils/text.h"
#include "tavo/animation/animation.h"
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/native.h"
#include "tavo/extension/lua/script_sets.h"
#include "tavo/objects/scene_graph.h"
#include <cmath>
#include <limits>
#include <lua.hpp>

namespace Tavo {
namespace {

XScriptTables& tablesOf(lua_State* state) {
    return engineOf(*static_cast<XScriptEngineCell*>(lua_touserdata(state, lua_upvalueindex(EngineUpvalue)))).Tables();
}

long long integerField(lua_State* state, int index, char const* key) {
    index = lua_absindex(state, index);
    lua_pushstring(state, key);
    lua_rawget(state, index);
    int isInteger = 0;
    long long const value = lua_tointegerx(state, -1, &isInteger);
    lua_pop(state, 1);
    return isInteger ? value : XObject::InvalidID;
}

bool numberField(lua_State* state, int index, char const* key, float& out) {
    lua_pushstring(state, key);
    lua_rawget(state, index);
    bool const isNumber = lua_type(state, -1) == LUA_TNUMBER;
    if (isNumber) out = float(lua_tonumber(state, -1));
    lua_pop(state, 1);
    return isNumber;
}

bool numberAt(lua_State* state, int index, int position, float& out) {
    lua_rawgeti(state, index, position);
    bool const isNumber = lua_type(state, -1) == LUA_TNUMBER;
    if (isNumber) out = float(lua_tonumber(state, -1));
    lua_pop(state, 1);
    return isNumber;
}

constexpr char const* componentNames[] = {"x", "y", "z", "w"};

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

std::wstring textAt(lua_State* state, int index) {
    std::size_t length = 0;
    char const* text = lua_tolstring(state, index, &length);
    return Qelutils::fromUtf8({text, length});
}

// ---- fields that come when they are asked for. Upvalues: the functions' table, and the metatable for a full table
// ----

struct ObjectFields {
    static XObject At(lua_State* state) { return XScriptTables::ObjectAt(state, 1); }
    static bool IsThere(lua_State* state) { return At(state).IsValid(); }
};
struct AttributeFields {
    static XAttribute At(lua_State* state) {
        XAttribute const attribute = XScriptTables::AttributeAt(state, 1);
        return attribute.IsCompositeAttribute() ? attribute : XAttribute();
    }
    static bool IsThere(lua_State* state) { return XScriptTables::AttributeAt(state, 1).IsValid(); }
};

// An attribute hides a function of its name; such attributes are custom ones.
bool pushAttributeNamed(lua_State* state, auto const& owner, std::wstring const& name) {
    if (!owner.IsValid()) return false;
    for (int i = 0, count = owner.AttributeCount(); i < count; ++i) {
        XAttribute const attribute = owner.Attribute(i);
        if (attribute.Name() != name) continue;
        tablesOf(state).PushAttribute(state, attribute);
        return true;
    }
    return false;
}
bool pushAttributeNamed(lua_State* state, XObject const& owner, std::wstring const& name) {
    XAttribute const attribute = owner.Attribute(name);
    if (attribute.IsValid()) tablesOf(state).PushAttribute(state, attribute);
    return attribute.IsValid();
}

void keepField(lua_State* state) {
    lua_pushvalue(state, 2);
    lua_pushvalue(state, -2);
    lua_rawset(state, 1);
}

bool mayHideFunctions(XObject const& object) { return object.IsValid() && object.HasCustomAttributes(); }
bool mayHideFunctions(XAttribute const& attribute) { return attribute.IsValid(); }

template<class Fields> int indexField(lua_State* state) {
    lua_pushvalue(state, 2);
    lua_rawget(state, lua_upvalueindex(FunctionsUpvalue));
    bool const isFunction = !lua_isnil(state, -1);
    if (lua_type(state, 2) == LUA_TSTRING) {
        auto const owner = Fields::At(state);
        if ((!isFunction || mayHideFunctions(owner)) && pushAttributeNamed(state, owner, textAt(state, 2))) {
            keepField(state);
            return 1;
        }
    }
    if (isFunction) keepField(state);
    return 1;
}

// All fields that are not there yet; then the table is like any other. What is gone has no attributes, but may come
// back with them.
template<class Fields> void fill(lua_State* state) {
    auto const owner = Fields::At(state);
    for (int i = 0, count = owner.IsValid() ? owner.AttributeCount() : 0; i < count; ++i) {
        XAttribute const attribute = owner.Attribute(i);
        std::string const name = Qelutils::toUtf8(attribute.Name());
        if (name.empty()) continue;
        lua_pushlstring(state, name.data(), name.size());
        lua_pushvalue(state, -1);
        lua_rawget(state, 1);
        bool const isThere = !lua_isnil(state, -1);
        lua_pop(state, 1);
        if (isThere) {
            lua_pop(state, 1);
            continue;
        }
        tablesOf(state).PushAttribute(state, attribute);
        lua_rawset(state, 1);
    }
    lua_pushnil(state);
    while (lua_next(state, lua_upvalueindex(FunctionsUpvalue))) {
        lua_pushvalue(state, -2);
        lua_rawget(state, 1);
        bool const isThere = !lua_isnil(state, -1);
        lua_pop(state, 1);
        lua_pushvalue(state, -2);
        lua_insert(state, -2);
        if (isThere)
            lua_pop(state, 2);
        else
            lua_rawset(state, 1);
    }
    if (!Fields::IsThere(state)) return;
    lua_pushvalue(state, lua_upvalueindex(FullUpvalue));
    lua_setmetatable(state, 1);
}

int nextField(lua_State* state) {
    lua_settop(state, 2);
    return lua_next(state, 1) ? 2 : (lua_pushnil(state), 1);
}

template<class Fields> int pairsOfFields(lua_State* state) {
    fill<Fields>(state);
    lua_pushcfunction(state, nextField);
    lua_pushvalue(state, 1);
    lua_pushnil(state);
    return 3;
}

// Nothing that is set to nil may come back by itself.
template<class Fields> int assignField(lua_State* state) {
    if (lua_isnil(state, 3)) fill<Fields>(state);
    lua_settop(state, 3);
    lua_rawset(state, 1);
    return 0;
}

// ---- common to all tables ----

int areSame(lua_State* state) {
    bool same = lua_istable(state, 1) && lua_istable(state, 2);
    for (char const* key : {XScriptBase::SceneID, XScriptBase::ObjectID, XScriptBase::ObjectSubID}) {
        if (!same) break;
        same = integerField(state, 1, key) == integerField(state, 2, key);
    }
    lua_pushboolean(state, same);
    return 1;
}

int pushText(lua_State* state, std::wstring const& text) {
    LuaPlus::LuaState(state).PushString(text);
    return 1;
}

template<class Handle> std::wstring kindOf(Handle const& handle) { return handle.ObjectType(); }
std::wstring kindOf(XAttribute const&) { return L"Attribute"; }

template<class Fields> int describe(lua_State* state) {
    if (!lua_istable(state, 1)) return 0;
    auto const handle = Fields::At(state);
    return pushText(state, handle.IsValid() ? kindOf(handle) + L" " + handle.Path() : std::wstring(L"invalid"));
}
struct AnyAttribute {
    static XAttribute At(lua_State* state) { return XScriptTables::AttributeAt(state, 1); }
};

template<int count> int describeValue(lua_State* state) {
    if (!lua_istable(state, 1)) return 0;
    float values[count] = {};
    std::wstring text = L"(";
    for (int i = 0; i < count; ++i) {
        numberAt(state, 1, i + 1, values[i]);
        text += (i ? L", " : L"") + Qelutils::fromUtf8(Qelutils::number(values[i]));
    }
    return pushText(state, text + L")");
}

void setFunction(lua_State* state, char const* key, lua_CFunction function) {
    lua_pushcfunction(state, function);
    lua_setfield(state, -2, key);
}

}  // namespace

// ---- the functions' tables ----

XScriptTables::XScriptTables(XLuaScript& script, lua_State* state) :
    _script(script), _engine(makeEngineCell(state, script)) {
    _scene = makePlain(state, SceneFunctions());
    lua_rawgeti(state, LUA_REGISTRYINDEX, _scene);
    setFunction(state, "__eq", areSame);
    lua_setglobal(state, XScriptBase::SceneMetaTable);
    _keyframe = makePlain(state, KeyframeFunctions());
    _vector = makePlain(state, Vector3Functions());
    _quaternion = makePlain(state, QuaternionFunctions());
    _matrix = makePlain(state, MatrixFunctions());
    for (auto const& [reference, describeIt] : {std::pair<int, lua_CFunction>{_vector, describeValue<3>},
                                                {_quaternion, describeValue<4>},
                                                {_matrix, describeValue<16>}}) {
        lua_rawgeti(state, LUA_REGISTRYINDEX, reference);
        setFunction(state, "__tostring", describeIt);
        lua_pop(state, 1);
    }
    lua_newtable(state);
    RegisterFunctions(state, AttributeFunctions());
    _attribute = makeLazy(state, lua_gettop(state), guarded<indexField<AttributeFields>>,
                          guarded<pairsOfFields<AttributeFields>>, guarded<assignField<AttributeFields>>,
                          guarded<describe<AnyAttribute>>);
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

XScriptTables::Metatables XScriptTables::makeLazy(lua_State* state, int functions, lua_CFunction index,
                                                  lua_CFunction pairs, lua_CFunction assign, lua_CFunction describeIt) {
    lua_newtable(state);
    setFunction(state, "__eq", areSame);
    setFunction(state, "__tostring", describeIt);
    int const full = lua_gettop(state);
    lua_newtable(state);
    setFunction(state, "__eq", areSame);
    setFunction(state, "__tostring", describeIt);
    for (auto const& [key, function] :
         {std::pair<char const*, lua_CFunction>{"__index", index}, {"__pairs", pairs}, {"__newindex", assign}}) {
        lua_pushlightuserdata(state, _engine);
        lua_pushvalue(state, functions);
        lua_pushvalue(state, full);
        lua_pushcclosure(state, function, FieldUpvalues);
        lua_setfield(state, -2, key);
    }
    int const lazy = luaL_ref(state, LUA_REGISTRYINDEX);
    return {lazy, luaL_ref(state, LUA_REGISTRYINDEX)};
}

XScriptTables::Metatables XScriptTables::makeMetatables(lua_State* state, std::vector<std::wstring> const& types) {
    lua_newtable(state);
    for (std::wstring const& type : types)
        if (XScriptSet const* set = FunctionsOfType(type)) RegisterFunctions(state, *set);
    Metatables const made =
        makeLazy(state, lua_gettop(state), guarded<indexField<ObjectFields>>, guarded<pairsOfFields<ObjectFields>>,
                 guarded<assignField<ObjectFields>>, guarded<describe<ObjectFields>>);
    lua_pop(state, 1);
    return made;
}

// Of the object's types, from "Object" down; nodes of one type share theirs.
XScriptTables::Metatables const& XScriptTables::metatablesOf(lua_State* state, XObject const& object) {
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

void XScriptTables::PushValue(lua_State* state, XVector3 const& value, int sceneID) {
    luaL_checkstack(state, 6, nullptr);
    lua_createtable(state, 3, 4);
    setInteger(state, XScriptBase::SceneID, sceneID);
    StoreValue(state, -1, value);
    setMetatable(state, _vector);
}

void XScriptTables::PushValue(lua_State* state, XQuaternion const& value, int sceneID) {
    luaL_checkstack(state, 6, nullptr);
    lua_createtable(state, 4, 5);
    setInteger(state, XScriptBase::SceneID, sceneID);
    StoreValue(state, -1, value);
    setMetatable(state, _quaternion);
}

void XScriptTables::PushValue(lua_State* state, XMatrix const& value, int sceneID) {
    luaL_checkstack(state, 6, nullptr);
    lua_createtable(state, 16, 1);
    setInteger(state, XScriptBase::SceneID, sceneID);
    StoreValue(state, -1, value);
    setMetatable(state, _matrix);
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
