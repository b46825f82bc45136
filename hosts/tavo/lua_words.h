// What a console needs to know of Lua: whether a chunk is finished, what a value looks like, how a word may go on.
#pragma once
#include "hosts/tavo/line_reader.h"

#include <string>
#include <string_view>

struct lua_State;

namespace host {

// It only lacks its end, as "for i = 1, 3 do" does.
bool isIncomplete(lua_State* state, std::string const& chunk);
// It has a value, as "1 + 1" does.
bool isExpression(lua_State* state, std::string const& chunk);

// Texts in quotes, tables with what is in them, all others as tostring has them. Raises Lua errors: in a protected
// call.
std::string describe(lua_State* state, int index);

// The words that the last word of the line may become: variables, fields after a dot, functions after a colon. Nothing
// that a script wrote is called; after the result of a call a colon gives the functions of all tables. Raises Lua
// errors as well.
Completions completionsOf(lua_State* state, std::string const& line);

}  // namespace host
