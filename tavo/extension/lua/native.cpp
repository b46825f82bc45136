#include "tavo/extension/lua/native.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/script_function.h"
#include <lua.hpp>
#include <new>

namespace Tavo {
namespace {

int callFunction(lua_State* state) {
    auto const& binding = *static_cast<XScriptBinding const*>(lua_touserdata(state, lua_upvalueindex(BindingUpvalue)));
    XScriptCall call(state, engineOf(*binding.engine), binding);
    if (binding.function->MayReachFiles() && call.Script().IsSandboxed())
        call.Fail("reaches files, which is not allowed in a sandbox");
    return binding.function->Invoke(call);
}

}  // namespace

void keepMessage(lua_State* state, char const* message) {
    lua_settop(state, 0);
    lua_pushstring(state, message);
}

int raiseKept(lua_State* state) {
    luaL_where(state, 1);
    lua_insert(state, 1);
    lua_concat(state, 2);
    return lua_error(state);
}

XScriptEngineCell* makeEngineCell(lua_State* state, XLuaScript& script) {
    auto* const cell = static_cast<XScriptEngineCell*>(lua_newuserdatauv(state, sizeof(XScriptEngineCell), 0));
    luaL_ref(state, LUA_REGISTRYINDEX);
    return new (cell) XScriptEngineCell{&script};
}

void failWithoutEngine() { throw XScriptError("the application was shut down"); }

void pushScriptFunction(lua_State* state, XScriptBinding const& binding) {
    new (lua_newuserdatauv(state, sizeof(XScriptBinding), 0)) XScriptBinding(binding);
    lua_pushstring(state, XScriptBase::SceneID);
    lua_pushstring(state, XScriptBase::ObjectID);
    lua_pushcclosure(state, guarded<callFunction>, FunctionUpvalues);
}

}  // namespace Tavo
