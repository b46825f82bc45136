// The border between Lua and C++: what the native functions that scripts call carry with them, and how what they throw
// becomes an error of the script.
#pragma once
#include <exception>

struct lua_State;

namespace Tavo {

class XLuaScript;
class XScriptFunction;
struct XScriptSet;

// By the numbers of Lua's upvalues.
enum Upvalue : int {
    // of functions; the two words spare a look-up at each call
    BindingUpvalue = 1,  // user data: the XScriptBinding
    SceneIDUpvalue = 2,
    ObjectIDUpvalue = 3,
    FunctionUpvalues = 3,
    // of the metamethods that find fields
    EngineUpvalue = 1,     // light user data: the XScriptEngineCell
    FunctionsUpvalue = 2,  // the table of the functions
    FullUpvalue = 3,       // the metatable of a table that has all its fields
    FieldUpvalues = 3,
};

// The engine that the functions of a state belong to. A state may live longer, and its last finalizers call functions
// when it is closed; so the cell is the state's, and empty once the engine is gone.
struct XScriptEngineCell {
    XLuaScript* script;
};

// A row in the tables of an engine; the state's as well.
struct XScriptBinding {
    XScriptEngineCell const* engine;
    XScriptSet const* set;
    XScriptFunction const* function;
};

// A cell that lives as long as the state.
XScriptEngineCell* makeEngineCell(lua_State* state, XLuaScript& script);
[[noreturn]] void failWithoutEngine();
// Throws an XScriptError when it is gone.
inline XLuaScript& engineOf(XScriptEngineCell const& cell) {
    if (!cell.script) failWithoutEngine();
    return *cell.script;
}
// Pushes the native function of a row.
void pushScriptFunction(lua_State* state, XScriptBinding const& binding);

void keepMessage(lua_State* state, char const* message);  // as all that is on the stack
int raiseKept(lua_State* state);                          // tells where the script stands; does not return

// Runs `native`, whose exceptions become errors of the script. Lua's own errors pass: they are no std::exception. The
// error is raised when the exception is gone, since Lua's is another.
template<int (*native)(lua_State*)> int guarded(lua_State* state) {
    try {
        return native(state);
    } catch (std::exception const& error) { keepMessage(state, error.what()); }
    return raiseKept(state);
}

}  // namespace Tavo
