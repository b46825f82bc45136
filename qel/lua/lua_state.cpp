#include "qel/lua/lua_state.h"
#include "qel/lua/lua_clock.h"
#include "qel/utils/text.h"
#include <fstream>
#include <iterator>
#include <lua.hpp>

namespace LuaPlus {
namespace {

constexpr char const* onlySource = "t";

// The message as it is, or what stands for it, and where it happened.
int traceback(lua_State* state) {
    char const* message = lua_tostring(state, 1);
    if (!message) message = luaL_tolstring(state, 1, nullptr);
    luaL_traceback(state, state, message, 1);
    return 1;
}

// Takes the message off the stack. What is not text tells of itself without a metamethod, which could fail again.
std::string takeError(lua_State* state) {
    std::size_t length = 0;
    char const* text = lua_type(state, -1) == LUA_TSTRING ? lua_tolstring(state, -1, &length) : nullptr;
    std::string error = text ? std::string(text, length) : std::string("an error without a message");
    lua_pop(state, 1);
    return error;
}

int runAction(lua_State* state) {
    auto const& action = *static_cast<std::function<void()> const*>(lua_touserdata(state, 1));
    lua_settop(state, 0);
    action();
    return 0;
}

}  // namespace

int LuaState::GetTop() const { return lua_gettop(state_); }
void LuaState::Pop(int count) const { lua_pop(state_, count); }
void LuaState::PushNil() const { lua_pushnil(state_); }
void LuaState::PushBoolean(bool value) const { lua_pushboolean(state_, value); }
void LuaState::PushInteger(long long value) const { lua_pushinteger(state_, value); }
void LuaState::PushNumber(double value) const { lua_pushnumber(state_, value); }
void LuaState::PushString(std::wstring_view text) const { PushUtf8(Qelutils::toUtf8(text)); }
void LuaState::PushUtf8(std::string_view text) const { lua_pushlstring(state_, text.data(), text.size()); }

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
    // The first line of a script may tell a shell how to run it.
    bool const hasShebang = !text.empty() && text.front() == '#';
    std::string_view const source = hasShebang ? text.substr(std::min(text.find('\n'), text.size())) : text;
    int const status = luaL_loadbufferx(state_, source.data(), source.size(), name.c_str(), onlySource);
    if (status != LUA_OK) return error = takeError(state_), status;
    return Call(0, 0, error);
}

int LuaState::DoFile(std::wstring const& path, std::string& error) const {
    std::string const name = Qelutils::toUtf8(path);
    std::ifstream file(name, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    // A directory opens and fails at the first read.
    if (!file.is_open() || file.bad()) return error = "cannot read " + name, LUA_ERRFILE;
    return DoString(text, "@" + name, error);
}

int LuaState::Call(int arguments, int results, std::string& error) const {
    LuaClock const clock(state_);
    int const handler = lua_gettop(state_) - arguments;
    lua_pushcfunction(state_, traceback);
    lua_insert(state_, handler);
    int const status = lua_pcall(state_, arguments, results, handler);
    if (status != LUA_OK) error = takeError(state_);
    lua_remove(state_, handler);
    return status;
}

void LuaState::Protect(std::function<void()> const& action) const {
    lua_pushcfunction(state_, runAction);
    lua_pushlightuserdata(state_, const_cast<std::function<void()>*>(&action));
    if (lua_pcall(state_, 1, 0, 0) != LUA_OK) throw LuaException(takeError(state_));
}

// ---- objects ----

LuaObject::LuaObject(lua_State* state, int index) {
    lua_pushvalue(state, index);
    reference_ = luaL_ref(state, LUA_REGISTRYINDEX);
    lua_rawgeti(state, LUA_REGISTRYINDEX, LUA_RIDX_MAINTHREAD);
    state_ = lua_tothread(state, -1);
    lua_pop(state, 1);
}

LuaObject::LuaObject(LuaObject const& other) {
    if (!other.state_) return;
    LuaState(other.state_).Protect([&] {
        other.Push(other.state_);
        reference_ = luaL_ref(other.state_, LUA_REGISTRYINDEX);
    });
    state_ = other.state_;
}

LuaObject& LuaObject::operator=(LuaObject other) noexcept {
    std::swap(state_, other.state_);
    std::swap(reference_, other.reference_);
    return *this;
}

LuaObject::~LuaObject() {
    if (state_) luaL_unref(state_, LUA_REGISTRYINDEX, reference_);
}

void LuaObject::Push(lua_State* state) const {
    if (state_)
        lua_rawgeti(state, LUA_REGISTRYINDEX, reference_);
    else
        lua_pushnil(state);
}

template<class Read> auto LuaObject::read(Read const& read) const {
    if (!state_) return decltype(read(state_))();
    Push(state_);
    auto const value = read(state_);
    lua_pop(state_, 1);
    return value;
}

bool LuaObject::IsNil() const {
    return !read([](lua_State* state) { return !lua_isnil(state, -1); });
}
bool LuaObject::IsTable() const {
    return read([](lua_State* state) { return lua_istable(state, -1); });
}
bool LuaObject::IsFunction() const {
    return read([](lua_State* state) { return lua_isfunction(state, -1); });
}
bool LuaObject::IsString() const {
    return read([](lua_State* state) { return lua_type(state, -1) == LUA_TSTRING; });
}
bool LuaObject::IsNumber() const {
    return read([](lua_State* state) { return lua_type(state, -1) == LUA_TNUMBER; });
}

double LuaObject::ToNumber(double otherwise) const {
    return IsNumber() ? read([](lua_State* state) { return lua_tonumber(state, -1); }) : otherwise;
}

std::wstring LuaObject::ToString() const {
    std::wstring text;
    if (!IsString() && !IsNumber()) return text;
    LuaState(state_).Protect([&] {
        Push(state_);
        std::size_t length = 0;
        char const* characters = lua_tolstring(state_, -1, &length);
        text = Qelutils::fromUtf8({characters, length});
    });
    return text;
}

LuaObject LuaObject::GetByName(char const* name) const {
    LuaObject value;
    if (!IsTable()) return value;
    LuaState(state_).Protect([&] {
        Push(state_);
        lua_getfield(state_, -1, name);
        value = LuaObject(state_, -1);
    });
    return value;
}

void LuaObject::set(char const* name, std::function<void(lua_State*)> const& push) const {
    if (!IsTable()) return;
    LuaState(state_).Protect([&] {
        Push(state_);
        push(state_);
        lua_setfield(state_, -2, name);
    });
}

void LuaObject::SetObject(char const* name, LuaObject const& value) const {
    set(name, [&](lua_State* state) { value.Push(state); });
}
void LuaObject::SetInteger(char const* name, long long value) const {
    set(name, [&](lua_State* state) { lua_pushinteger(state, value); });
}
void LuaObject::SetNumber(char const* name, double value) const {
    set(name, [&](lua_State* state) { lua_pushnumber(state, value); });
}
void LuaObject::SetString(char const* name, std::wstring_view value) const {
    set(name, [&](lua_State* state) { LuaState(state).PushString(value); });
}

bool LuaObject::operator==(LuaObject const& other) const {
    if (!state_ || !other.state_) return IsNil() && other.IsNil();
    Push(state_);
    other.Push(state_);
    bool const same = lua_rawequal(state_, -1, -2) != 0;
    lua_pop(state_, 2);
    return same;
}

}  // namespace LuaPlus
