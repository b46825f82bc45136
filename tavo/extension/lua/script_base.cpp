// Calls from C++ into functions that scripts defined.
#include "tavo/app/script_base.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/script_tables.h"
#include <cmath>
#include <limits>
#include <lua.hpp>

namespace Tavo {
namespace {

// Calls take(index) for each entry, which stands on top of the stack, as long as it says that the kind is right.
template<class Take> void forEachEntry(LuaPlus::LuaObject const& list, Take const& take) {
    XLuaScript const* const lua = XApplication::Instance().LuaScript();
    if (!lua || !lua->State() || !list.IsTable()) return;
    lua_State* const state = lua->State()->GetCState();
    lua->State()->Protect([&] {
        list.Push(state);
        bool more = true;
        for (lua_Integer i = 1; more; ++i) {
            lua_rawgeti(state, -1, i);
            more = take(state);
            lua_pop(state, 1);
        }
    });
}

bool isInteger(lua_State* state) {
    if (lua_type(state, -1) != LUA_TNUMBER) return false;
    double const value = lua_tonumber(state, -1);
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max() &&
           value == std::floor(value);
}

}  // namespace

bool XScriptBase::assertPreconditions() const {
    XApplication& application = XApplication::Instance();
    bool const isReady = application.IsStarted() && application.LuaScript() && application.LuaScript()->State();
    if (!isReady) application.LogError(L"There is no Lua state to run a command in");
    return isReady;
}

bool XScriptBase::runLuaFunction(std::wstring const& tableName, std::wstring const& functionName) const {
    return callLua(tableName, functionName, {}, nullptr);
}

XObject XScriptBase::callLuaFunction(std::wstring const& tableName, std::wstring const& functionName,
                                     std::initializer_list<Argument> arguments) const {
    XObject object;
    callLua(tableName, functionName, arguments, &object);
    return object;
}

bool XScriptBase::callLua(std::wstring const& tableName, std::wstring const& functionName,
                          std::initializer_list<Argument> arguments, XObject* result) const {
    if (!assertPreconditions()) return false;
    LuaPlus::LuaState& lua = *XApplication::Instance().LuaScript()->State();
    lua_State* const state = lua.GetCState();
    int status = LUA_ERRRUN;
    std::string error;
    try {
        lua.Protect([&] {
            luaL_checkstack(state, LUA_MINSTACK, nullptr);
            lua_getglobal(state, Qelutils::toUtf8(tableName).c_str());
            if (!lua_istable(state, -1)) return;
            lua_getfield(state, -1, Qelutils::toUtf8(functionName).c_str());
            if (!lua_isfunction(state, -1)) return;
            lua_insert(state, -2);
            for (Argument const& argument : arguments) {
                if (int const* number = std::get_if<int>(&argument))
                    lua.PushInteger(*number);
                else
                    lua.PushString(std::get<std::wstring>(argument));
            }
            status = lua.Call(int(arguments.size()) + 1, result ? 1 : 0, error);
            if (status == LUA_OK && result && lua_istable(state, -1)) *result = XScriptTables::ObjectAt(state, -1);
        });
    } catch (LuaPlus::LuaException const& exception) {
        status = LUA_ERRRUN;
        error = exception.what();
    } catch (XScriptError const& exception) {
        status = LUA_ERRRUN;
        error = exception.what();
    }
    if (!error.empty()) logLuaExceptionError(LuaPlus::LuaException(error));
    if (status != LUA_OK) logLuaFunctionError(tableName, functionName);
    return status == LUA_OK;
}

void XScriptBase::buildXStringArray(LuaPlus::LuaObject const& list, std::vector<std::wstring>& out) const {
    out.clear();
    forEachEntry(list, [&](lua_State* state) {
        if (lua_type(state, -1) != LUA_TSTRING) return false;
        std::size_t length = 0;
        char const* const text = lua_tolstring(state, -1, &length);
        out.push_back(Qelutils::fromUtf8({text, length}));
        return true;
    });
}

void XScriptBase::buildXFloatArray(LuaPlus::LuaObject const& list, Qelutils::Vector<float>& out) const {
    out.clear();
    forEachEntry(list, [&](lua_State* state) {
        bool const isNumber = lua_type(state, -1) == LUA_TNUMBER;
        if (isNumber) out.push_back(float(lua_tonumber(state, -1)));
        return isNumber;
    });
}

void XScriptBase::buildXIntegerArray(LuaPlus::LuaObject const& list, Qelutils::Vector<int>& out) const {
    out.clear();
    forEachEntry(list, [&](lua_State* state) {
        bool const isNumber = isInteger(state);
        if (isNumber) out.push_back(int(lua_tonumber(state, -1)));
        return isNumber;
    });
}

void XScriptBase::logLuaFunctionError(std::wstring const& tableName, std::wstring const& functionName) const {
    XApplication::Instance().LogError(L"Error running command: %s:%s", tableName, functionName);
}

void XScriptBase::logLuaExceptionError(LuaPlus::LuaException const& exception) const {
    XApplication::Instance().LogError(L"Error running script: %s", Qelutils::fromUtf8(exception.what()));
}

}  // namespace Tavo
