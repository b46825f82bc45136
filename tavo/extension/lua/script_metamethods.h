// What the tables that scripts see do by themselves: fields that come into being when they are asked for, comparison,
// and what tostring shows. A script may call any of it with anything.
#pragma once

struct lua_State;

namespace Tavo {

struct XScriptEngineCell;
struct XScriptMetatables;

enum class XScriptFields { OfObjects, OfAttributes };

// For tables of one kind, whose functions are in the table on top of the stack.
XScriptMetatables makeFieldMetatables(lua_State* state, XScriptEngineCell& engine, XScriptFields fields);
// Into the metatable on top of the stack.
void setEquality(lua_State* state);
void setDescriptionOfNumbers(lua_State* state, int count);

}  // namespace Tavo
