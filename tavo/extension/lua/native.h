// The border between Lua and C++: what the native functions that scripts call carry with them, and how what they throw
// becomes an error of the script.
#pragma once
#include <string>

struct lua_State;

namespace Tavo {

class XLuaScript;
class XScriptFunction;
struct XScriptSet;

// By the numbers of Lua's upvalues.
enum Upvalue : int {
    RowUpvalue = 1,     // light user data: the XScriptFunction
    ScriptUpvalue = 2,  // light user data: the XLuaScript
    // of functions; the two words spare a look-up at each call
    SceneIDUpvalue = 3,
    ObjectIDUpvalue = 4,
    SetUpvalue = 5,  // light user data: the XScriptSet, for messages
    FunctionUpvalues = 5,
    // of the metamethods that find fields
    FunctionsUpvalue = 3,  // the table of the functions
    FullUpvalue = 4,       // the metatable of a table that has all its fields
    FieldUpvalues = 4,
};

// The native function of a row.
void pushScriptFunction(lua_State* state, XLuaScript& script, XScriptSet const& set, XScriptFunction const& function);

// Runs `native`, whose exceptions become errors of the script. Lua's own errors pass: they are no std::exception.
int guardedCall(lua_State* state, int (*native)(lua_State*));
template<int (*native)(lua_State*)> int guarded(lua_State* state) { return guardedCall(state, native); }

}  // namespace Tavo
