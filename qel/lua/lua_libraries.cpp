#include "qel/lua/lua_libraries.h"
#include "qel/lua/lua_clock.h"
#include <array>
#include <initializer_list>
#include <lua.hpp>

namespace LuaPlus {
namespace {

// ---- wrappers: the first upvalue is the library's function ----

int allResults(lua_State* state, int, lua_KContext) { return lua_gettop(state); }

int forward(lua_State* state) {
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 1);
    lua_callk(state, lua_gettop(state) - 1, LUA_MULTRET, 0, allResults);
    return lua_gettop(state);
}

// Wraps functions of the table on the top of the stack.
void wrap(lua_State* state, std::initializer_list<luaL_Reg> wrappers) {
    for (luaL_Reg const& wrapper : wrappers) {
        lua_getfield(state, -1, wrapper.name);
        lua_pushcclosure(state, wrapper.func, 1);
        lua_setfield(state, -2, wrapper.name);
    }
}

void wrapLibrary(lua_State* state, char const* name, std::initializer_list<luaL_Reg> wrappers) {
    lua_getglobal(state, name);
    wrap(state, wrappers);
    lua_pop(state, 1);
}

// ---- source alone is loaded: a binary chunk that was tampered with could break the state ----

constexpr char const* onlySource = "t";

// Whatever mode is asked for; it is the argument before the environment, which is the last one.
int loadWithMode(lua_State* state, int mode) {
    if (lua_gettop(state) < mode) lua_settop(state, mode);
    lua_pushstring(state, onlySource);
    lua_replace(state, mode);
    return forward(state);
}
int loadSource(lua_State* state) { return loadWithMode(state, 3); }
int loadSourceFile(lua_State* state) { return loadWithMode(state, 2); }

int runSourceFile(lua_State* state) {
    char const* const path = luaL_optstring(state, 1, nullptr);
    lua_settop(state, 1);
    if (luaL_loadfilex(state, path, onlySource) != LUA_OK) return lua_error(state);
    lua_remove(state, 1);
    lua_callk(state, 0, LUA_MULTRET, 0, allResults);
    return lua_gettop(state);
}

// Finds a module as the library's own searcher does; the upvalue is the table "package".
int searchSource(lua_State* state) {
    char const* const name = luaL_checkstring(state, 1);
    lua_getfield(state, lua_upvalueindex(1), "searchpath");
    lua_pushvalue(state, 1);
    lua_getfield(state, lua_upvalueindex(1), "path");
    lua_call(state, 2, 2);
    if (lua_isnil(state, -2)) return 1;
    lua_pop(state, 1);
    char const* const path = lua_tostring(state, -1);
    if (luaL_loadfilex(state, path, onlySource) != LUA_OK)
        return luaL_error(state, "error loading module '%s':\n\t%s", name, lua_tostring(state, -1));
    lua_insert(state, -2);
    return 2;
}

void searchOnlySource(lua_State* state) {
    constexpr int luaSearcher = 2;
    lua_getglobal(state, LUA_LOADLIBNAME);
    lua_getfield(state, -1, "searchers");
    lua_pushvalue(state, -2);
    lua_pushcclosure(state, searchSource, 1);
    lua_rawseti(state, -2, luaSearcher);
    lua_pop(state, 2);
}

// ---- no way around a limit of time ----

// While an error of the clock passes, Lua does not call the clock: a handler that never ended would not be stopped.
int handleUnlessOver(lua_State* state) {
    if (!LuaClock::isOver(state)) return forward(state);
    lua_settop(state, 1);
    return 1;
}

int callWithHandler(lua_State* state) {
    luaL_checktype(state, 2, LUA_TFUNCTION);
    lua_pushvalue(state, 2);
    lua_pushcclosure(state, handleUnlessOver, 1);
    lua_replace(state, 2);
    return forward(state);
}

// Lua does not call the clock in finalizers either.
int setMetatable(lua_State* state) {
    if (lua_istable(state, 2)) {
        lua_pushliteral(state, "__gc");
        if (lua_rawget(state, 2) != LUA_TNIL) return luaL_error(state, "a script here can not have finalizers (__gc)");
        lua_pop(state, 1);
    }
    return forward(state);
}

// Each coroutine counts its instructions from its own beginning: many short ones would never be looked at.
int resume(lua_State* state) {
    LuaClock::check(state);
    if (lua_State* const coroutine = lua_tothread(state, 1)) LuaClock::attend(coroutine);
    return forward(state);
}

int resumeWrapped(lua_State* state) {
    LuaClock::check(state);
    if (lua_getupvalue(state, lua_upvalueindex(1), 1)) {
        if (lua_State* const coroutine = lua_tothread(state, -1)) LuaClock::attend(coroutine);
        lua_pop(state, 1);
    }
    return forward(state);
}

int wrapCoroutine(lua_State* state) {
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 1);
    lua_call(state, lua_gettop(state) - 1, 1);
    lua_pushcclosure(state, resumeWrapped, 1);
    return 1;
}

// Many instructions may pass between two looks at the clock: those that can take long look themselves.
int forwardInTime(lua_State* state) {
    LuaClock::check(state);
    return forward(state);
}

// What gives the parts of a source may be a library function, and never end.
int loadSourceInTime(lua_State* state) {
    if (lua_isfunction(state, 1)) {
        lua_pushvalue(state, 1);
        lua_pushcclosure(state, forwardInTime, 1);
        lua_replace(state, 1);
    }
    return loadSource(state);
}

// A loop of the library over this many elements takes a fraction of a second. A few keys at powers of two, or a __len,
// can make a table look longer than any loop ever ends.
constexpr lua_Unsigned mostElements = 10'000'000;

int forwardUnlessLong(lua_State* state, lua_Unsigned count) {
    if (count > mostElements) return luaL_error(state, "too many elements");
    return forwardInTime(state);
}

int forwardRange(lua_State* state, lua_Integer first, lua_Integer last) {
    auto const distance = static_cast<lua_Unsigned>(last) - static_cast<lua_Unsigned>(first);
    return forwardUnlessLong(state, last > first ? distance : 0);
}

lua_Integer lengthOf(lua_State* state, int index) { return lua_istable(state, index) ? luaL_len(state, index) : 0; }

int sortTable(lua_State* state) { return forwardRange(state, 0, lengthOf(state, 1)); }
// At the end of a table there is nothing to move.
int insertElement(lua_State* state) { return lua_gettop(state) > 2 ? sortTable(state) : forward(state); }
int removeElement(lua_State* state) { return lua_gettop(state) > 1 ? sortTable(state) : forward(state); }

int moveElements(lua_State* state) {
    return forwardRange(state, luaL_checkinteger(state, 2), luaL_checkinteger(state, 3));
}

int joinTable(lua_State* state) {
    lua_Integer const first = luaL_optinteger(state, 3, 1);
    return forwardRange(state, first, lua_isnoneornil(state, 4) ? lengthOf(state, 1) : luaL_checkinteger(state, 4));
}

int repeatText(lua_State* state) {
    std::size_t length = 0, separator = 0;
    luaL_checklstring(state, 1, &length);
    luaL_optlstring(state, 3, "", &separator);
    return forwardRange(state, 0, length + separator ? 0 : luaL_checkinteger(state, 2));
}

// ---- which ----

void keepOnly(lua_State* state, char const* table, std::initializer_list<char const*> names) {
    lua_getglobal(state, table);
    lua_newtable(state);
    for (char const* name : names) {
        lua_getfield(state, -2, name);
        lua_setfield(state, -2, name);
    }
    lua_setglobal(state, table);
    lua_pop(state, 1);
}

void removeGlobals(lua_State* state, std::initializer_list<char const*> names) {
    for (char const* name : names) {
        lua_pushnil(state);
        lua_setglobal(state, name);
    }
}

void openHarmless(lua_State* state) {
    constexpr std::array<luaL_Reg, 7> libraries{{{LUA_GNAME, luaopen_base},
                                                 {LUA_COLIBNAME, luaopen_coroutine},
                                                 {LUA_TABLIBNAME, luaopen_table},
                                                 {LUA_STRLIBNAME, luaopen_string},
                                                 {LUA_MATHLIBNAME, luaopen_math},
                                                 {LUA_UTF8LIBNAME, luaopen_utf8},
                                                 {LUA_OSLIBNAME, luaopen_os}}};
    for (luaL_Reg const& library : libraries) {
        luaL_requiref(state, library.name, library.func, 1);
        lua_pop(state, 1);
    }
    keepOnly(state, LUA_OSLIBNAME, {"clock", "date", "difftime", "time"});
    removeGlobals(state, {"dofile", "loadfile"});
}

void openSandboxed(lua_State* state) {
    openHarmless(state);
    wrapLibrary(state, LUA_GNAME,
                {{"load", loadSourceInTime},
                 {"setmetatable", setMetatable},
                 {"xpcall", callWithHandler},
                 {"collectgarbage", forwardInTime}});
    wrapLibrary(state, LUA_COLIBNAME, {{"resume", resume}, {"close", resume}, {"wrap", wrapCoroutine}});
    wrapLibrary(state, LUA_TABLIBNAME,
                {{"insert", insertElement},
                 {"remove", removeElement},
                 {"sort", sortTable},
                 {"move", moveElements},
                 {"concat", joinTable}});
    wrapLibrary(state, LUA_STRLIBNAME,
                {{"rep", repeatText},
                 {"find", forwardInTime},
                 {"match", forwardInTime},
                 {"gsub", forwardInTime},
                 {"upper", forwardInTime},
                 {"lower", forwardInTime},
                 {"reverse", forwardInTime}});
}

void openStandard(lua_State* state) {
    luaL_openlibs(state);
    wrapLibrary(state, LUA_GNAME, {{"load", loadSource}, {"loadfile", loadSourceFile}, {"dofile", runSourceFile}});
    searchOnlySource(state);
}

}  // namespace

void openLibraries(lua_State* state, LuaLibraries libraries) {
    if (libraries == LuaLibraries::Standard)
        openStandard(state);
    else
        openSandboxed(state);
}

}  // namespace LuaPlus
