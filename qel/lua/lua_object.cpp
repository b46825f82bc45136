// Values that stay alive in the registry. What is read of them goes over the stack of the main thread, and what may
// fail there is always protected: an error of that thread would pass the coroutine that runs, and Lua would lose its
// way.
#include "qel/lua/lua_state.h"
#include "qel/utils/text.h"
#include <lua.hpp>
#include <utility>

namespace LuaPlus {
namespace {

void makeRoom(lua_State* state, int count) {
    if (!lua_checkstack(state, count)) throw LuaException("stack overflow");
}

}  // namespace

LuaObject::LuaObject(lua_State* state, int index) {
    luaL_checkstack(state, 4, nullptr);
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
    if (state_ && lua_checkstack(state_, 3)) luaL_unref(state_, LUA_REGISTRYINDEX, reference_);
}

void LuaObject::Push(lua_State* state) const {
    luaL_checkstack(state, 1, nullptr);
    if (state_)
        lua_rawgeti(state, LUA_REGISTRYINDEX, reference_);
    else
        lua_pushnil(state);
}

template<class Read> auto LuaObject::read(Read const& read) const {
    if (!state_) return decltype(read(state_))();
    makeRoom(state_, 1);
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
    makeRoom(state_, 2);
    Push(state_);
    other.Push(state_);
    bool const same = lua_rawequal(state_, -1, -2) != 0;
    lua_pop(state_, 2);
    return same;
}

}  // namespace LuaPlus
