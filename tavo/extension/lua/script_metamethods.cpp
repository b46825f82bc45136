#include "tavo/extension/lua/script_metamethods.h"
#include "qel/utils/text.h"
#include "tavo/extension/lua/lua_fields.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/native.h"
#include "tavo/extension/lua/script_tables.h"
#include <lua.hpp>
#include <utility>

namespace Tavo {
namespace {

XScriptTables& tablesOf(lua_State* state) {
    return engineOf(*static_cast<XScriptEngineCell*>(lua_touserdata(state, lua_upvalueindex(EngineUpvalue)))).Tables();
}

std::wstring textAt(lua_State* state, int index) {
    std::size_t length = 0;
    char const* text = lua_tolstring(state, index, &length);
    return Qelutils::fromUtf8({text, length});
}

// ---- fields that come when they are asked for ----

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
    luaL_checktype(state, 1, LUA_TTABLE);
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
    luaL_checktype(state, 1, LUA_TTABLE);
    lua_settop(state, 2);
    return lua_next(state, 1) ? 2 : (lua_pushnil(state), 1);
}

template<class Fields> int pairsOfFields(lua_State* state) {
    luaL_checktype(state, 1, LUA_TTABLE);
    fill<Fields>(state);
    lua_pushcfunction(state, nextField);
    lua_pushvalue(state, 1);
    lua_pushnil(state);
    return 3;
}

// Nothing that is set to nil may come back by itself.
template<class Fields> int assignField(lua_State* state) {
    luaL_checktype(state, 1, LUA_TTABLE);
    lua_settop(state, 3);
    if (lua_isnil(state, 3)) fill<Fields>(state);
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

// The upvalue is how many.
int describeNumbers(lua_State* state) {
    if (!lua_istable(state, 1)) return 0;
    std::wstring text = L"(";
    for (int i = 0, count = int(lua_tointeger(state, lua_upvalueindex(1))); i < count; ++i) {
        float value = 0;
        numberAt(state, 1, i + 1, value);
        text += (i ? L", " : L"") + Qelutils::fromUtf8(Qelutils::number(value));
    }
    return pushText(state, text + L")");
}

void setFunction(lua_State* state, char const* key, lua_CFunction function) {
    lua_pushcfunction(state, function);
    lua_setfield(state, -2, key);
}

struct Metamethods {
    lua_CFunction index, pairs, assign, describe;
};
template<class Fields, class Any>
constexpr Metamethods metamethods{guarded<indexField<Fields>>, guarded<pairsOfFields<Fields>>,
                                  guarded<assignField<Fields>>, guarded<describe<Any>>};

void newMetatable(lua_State* state, lua_CFunction describeIt) {
    lua_newtable(state);
    setEquality(state);
    setFunction(state, "__tostring", describeIt);
}

}  // namespace

void setEquality(lua_State* state) { setFunction(state, "__eq", areSame); }

void setDescriptionOfNumbers(lua_State* state, int count) {
    lua_pushinteger(state, count);
    lua_pushcclosure(state, describeNumbers, 1);
    lua_setfield(state, -2, "__tostring");
}

XScriptMetatables makeFieldMetatables(lua_State* state, XScriptEngineCell& engine, XScriptFields fields) {
    auto const& [index, pairs, assign, describeIt] = fields == XScriptFields::OfObjects
                                                         ? metamethods<ObjectFields, ObjectFields>
                                                         : metamethods<AttributeFields, AnyAttribute>;
    int const functions = lua_gettop(state);
    newMetatable(state, describeIt);
    int const full = lua_gettop(state);
    newMetatable(state, describeIt);
    for (auto const& [key, function] : {std::pair<char const*, lua_CFunction>{XScriptBase::IndexMetaMethod, index},
                                        {"__pairs", pairs},
                                        {"__newindex", assign}}) {
        lua_pushlightuserdata(state, &engine);
        lua_pushvalue(state, functions);
        lua_pushvalue(state, full);
        lua_pushcclosure(state, function, FieldUpvalues);
        lua_setfield(state, -2, key);
    }
    int const lazy = luaL_ref(state, LUA_REGISTRYINDEX);
    return {lazy, luaL_ref(state, LUA_REGISTRYINDEX)};
}

}  // namespace Tavo
