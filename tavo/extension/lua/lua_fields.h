// Raw looks into a table; `index` is that of a table.
#pragma once
#include "tavo/objects/object.h"
#include <lua.hpp>

namespace Tavo {

// A whole number under a key; XObject::InvalidID for any other value.
inline long long integerField(lua_State* state, int index, char const* key) {
    index = lua_absindex(state, index);
    lua_pushstring(state, key);
    lua_rawget(state, index);
    int isInteger = 0;
    long long const value = lua_tointegerx(state, -1, &isInteger);
    lua_pop(state, 1);
    return isInteger ? value : XObject::InvalidID;
}

// A number at a position; false, and `out` is left alone, for any other value.
inline bool numberAt(lua_State* state, int index, int position, float& out) {
    lua_rawgeti(state, index, position);
    bool const isNumber = lua_type(state, -1) == LUA_TNUMBER;
    if (isNumber) out = float(lua_tonumber(state, -1));
    lua_pop(state, 1);
    return isNumber;
}

}  // namespace Tavo
