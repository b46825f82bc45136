#include "tavo/extension/lua/native.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/script_function.h"
#include <lua.hpp>

namespace Tavo {
namespace {

template<class Value> Value& upvalue(lua_State* state, int index) {
    return *static_cast<Value*>(lua_touserdata(state, lua_upvalueindex(index)));
}

int callFunction(lua_State* state) {
    auto const& function = upvalue<XScriptFunction const>(state, RowUpvalue);
    XScriptCall call(state, upvalue<XLuaScript>(state, ScriptUpvalue), function);
    if (function.MayReachFiles() && call.Script().IsSandboxed())
        call.Fail("reaches files, which is not allowed in a sandbox");
    return function.Invoke(call);
}

}  // namespace

// The error is raised when the exception is gone: Lua's own is another.
int guardedCall(lua_State* state, int (*native)(lua_State*)) {
    try {
        return native(state);
    } catch (std::exception const& error) {
        lua_settop(state, 0);
        lua_pushstring(state, error.what());
    }
    luaL_where(state, 1);
    lua_insert(state, 1);
    lua_concat(state, 2);
    return lua_error(state);
}

void pushScriptFunction(lua_State* state, XLuaScript& script, XScriptSet const& set, XScriptFunction const& function) {
    lua_pushlightuserdata(state, const_cast<XScriptFunction*>(&function));
    lua_pushlightuserdata(state, &script);
    lua_pushstring(state, XScriptBase::SceneID);
    lua_pushstring(state, XScriptBase::ObjectID);
    lua_pushlightuserdata(state, const_cast<XScriptSet*>(&set));
    lua_pushcclosure(state, guarded<callFunction>, FunctionUpvalues);
}

}  // namespace Tavo
