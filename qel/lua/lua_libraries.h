// The libraries of a new state, and what keeps scripts within its limits. May fail in Lua.
#pragma once
#include "qel/lua/lua_state.h"

namespace LuaPlus {

void openLibraries(lua_State* state, LuaLibraries libraries);

}  // namespace LuaPlus
