#include "tavo/extension/lua/lua_fields.h"
#include "tavo/objects/object.h"
#include <lua.hpp>

namespace Tavo {

long long integerField(lua_State* state, int index, char const* key) {
    index = lua_absindex(state, index);
    lua_pushstring(state, key);
    lua_rawget(state, index);
    int isInteger = 0;
    long long const value = lua_tointegerx(state, -1, &isInteger);
    lua_pop(state, 1);
    return isInteger ? value : XObject::InvalidID;
}

bool numberAt(lua_State* state, int index, int position, float& out) {
    lua_rawgeti(state, index, position);
    bool const isNumber = lua_type(state, -1) == LUA_TNUMBER;
    if (isNumber) out = float(lua_tonumber(state, -1));
    lua_pop(state, 1);
    return isNumber;
}

}  // namespace Tavo
