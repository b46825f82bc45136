#include "qel/lua/lua_state.h"
#include "qel/lua/lua_clock.h"
#include "qel/utils/text.h"
#include <algorithm>
#include <exception>
#include <fstream>
#include <iterator>
#include <lua.hpp>
#include <sstream>

namespace LuaPlus {
namespace {

constexpr char const* onlySource = "t";

// Where no script is below that could take a Lua error.
bool hasRoom(lua_State* state, int count) { return lua_checkstack(state, count) != 0; }

bool isText(lua_State* state, int index) {
    int const type = lua_type(state, index);
    return type == LUA_TSTRING || type == LUA_TNUMBER;
}

// The message as text, in place of what may be anything. A __tostring that fails has its own message handled so.
int describe(lua_State* state) {
    lua_settop(state, 1);
    if (isText(state, 1))
        lua_tostring(state, 1);
    else if (luaL_getmetafield(state, 1, "__tostring") != LUA_TNIL)
        luaL_tolstring(state, 1, nullptr);
    else
        lua_pushfstring(state, "an error without a message (a %s value)", luaL_typename(state, 1));
    return 1;
}

int describeWithTraceback(lua_State* state) {
    describe(state);
    lua_pushliteral(state, "\n");
    luaL_traceback(state, state, nullptr, 1);
    lua_concat(state, 3);
    return 1;
}

// Takes the message off the stack. The status of what was no Lua error is negative, and the message anything. Without
// memory, what the script left is collected: the buffers of the libraries do not do so themselves when they need room.
std::string takeError(lua_State* state, int status) {
    std::size_t length = 0;
    char const* text = status > 0 && lua_type(state, -1) == LUA_TSTRING ? lua_tolstring(state, -1, &length) : nullptr;
    std::string error = text ? std::string(text, length) : std::string("an error without a message");
    lua_pop(state, 1);
    if (status == LUA_ERRMEM) lua_gc(state, LUA_GCCOLLECT);
    return error;
}

struct Action {
    std::function<void()> const& run;
    std::exception_ptr failure;
};

int runAction(lua_State* state) {
    auto& action = *static_cast<Action*>(lua_touserdata(state, 1));
    lua_settop(state, 0);
    try {
        action.run();
    } catch (std::exception const&) { action.failure = std::current_exception(); }
    return 0;
}

// Without the mark of UTF-8 and without a first line that tells a shell how to run the script; the line's end stays, so
// that lines keep their numbers.
std::string_view source(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    if (text.starts_with('#')) text.remove_prefix(std::min(text.find('\n'), text.size()));
    return text;
}

}  // namespace

int LuaState::GetTop() const { return lua_gettop(state_); }
void LuaState::Pop(int count) const { lua_pop(state_, count); }
void LuaState::PushNil() const {
    luaL_checkstack(state_, 1, nullptr);
    lua_pushnil(state_);
}
void LuaState::PushBoolean(bool value) const {
    luaL_checkstack(state_, 1, nullptr);
    lua_pushboolean(state_, value);
}
void LuaState::PushInteger(long long value) const {
    luaL_checkstack(state_, 1, nullptr);
    lua_pushinteger(state_, value);
}
void LuaState::PushNumber(double value) const {
    luaL_checkstack(state_, 1, nullptr);
    lua_pushnumber(state_, value);
}
void LuaState::PushString(std::wstring_view text) const { PushUtf8(Qelutils::toUtf8(text)); }
void LuaState::PushUtf8(std::string_view text) const {
    luaL_checkstack(state_, 1, nullptr);
    lua_pushlstring(state_, text.data(), text.size());
}

LuaObject LuaState::Stack(int index) const { return LuaObject(state_, index); }

LuaObject LuaState::GetGlobal(char const* name) const {
    LuaObject value;
    Protect([&] {
        lua_getglobal(state_, name);
        value = LuaObject(state_, -1);
    });
    return value;
}

void LuaState::SetGlobal(char const* name, LuaObject const& value) const {
    Protect([&] {
        value.Push(state_);
        lua_setglobal(state_, name);
    });
}

LuaObject LuaState::CreateTable() const {
    LuaObject table;
    Protect([&] {
        lua_newtable(state_);
        table = LuaObject(state_, -1);
    });
    return table;
}

int LuaState::DoString(std::string_view text, std::string const& name, std::string& error) const {
    LuaClock const clock(state_);
    if (!hasRoom(state_, 1)) return error = "stack overflow", LUA_ERRMEM;
    std::string_view const chunk = source(text);
    int const status = luaL_loadbufferx(state_, chunk.data(), chunk.size(), name.c_str(), onlySource);
    if (status != LUA_OK) return error = takeError(state_, status), status;
    return Call(0, 0, error);
}

int LuaState::DoFile(std::wstring const& path, std::string& error) const {
    std::string const name = Qelutils::toUtf8(path);
    std::ifstream file(name, std::ios::binary);
    std::ostringstream text;
    // A directory opens, and fails at the first read; so does an empty file, without being bad.
    if (file && file.peek() != std::ifstream::traits_type::eof()) text << file.rdbuf();
    if (!file.is_open() || file.bad() || !text) return error = "cannot read " + name, LUA_ERRFILE;
    return DoString(text.str(), "@" + name, error);
}

int LuaState::Call(int arguments, int results, std::string& error) const {
    LuaClock const clock(state_);
    if (!hasRoom(state_, std::max(results, 0) + 1)) {
        lua_pop(state_, arguments + 1);
        return error = "stack overflow", LUA_ERRMEM;
    }
    int const handler = lua_gettop(state_) - arguments;
    lua_pushcfunction(state_, describeWithTraceback);
    lua_insert(state_, handler);
    int const status = lua_pcall(state_, arguments, results, handler);
    if (status != LUA_OK) error = takeError(state_, status);
    lua_remove(state_, handler);
    return status < 0 ? LUA_ERRRUN : status;
}

void LuaState::Protect(std::function<void()> const& action) const {
    LuaClock const clock(state_);
    if (!hasRoom(state_, 3)) throw LuaException("stack overflow");
    Action call{action, nullptr};
    int const handler = lua_gettop(state_) + 1;
    lua_pushcfunction(state_, describe);
    lua_pushcfunction(state_, runAction);
    lua_pushlightuserdata(state_, &call);
    int const status = lua_pcall(state_, 1, 0, handler);
    std::string const error = status == LUA_OK ? std::string() : takeError(state_, status);
    lua_remove(state_, handler);
    if (call.failure) std::rethrow_exception(call.failure);
    if (status != LUA_OK) throw LuaException(error);
}

int LuaState::Guard(std::function<int()> const& work) const {
    try {
        return work();
    } catch (std::exception const& failure) { return luaL_error(state_, "%s", failure.what()); }
}

}  // namespace LuaPlus
