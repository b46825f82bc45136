// Raw looks into a table; `index` is that of a table.
#pragma once

struct lua_State;

namespace Tavo {

// A whole number under a key; XObject::InvalidID for any other value.
long long integerField(lua_State* state, int index, char const* key);
// A number at a position; false, and `out` is left alone, for any other value.
bool numberAt(lua_State* state, int index, int position, float& out);

}  // namespace Tavo
