// The life of a state: its libraries, its memory, its time.
#include "qel/lua/lua_clock.h"
#include "qel/lua/lua_state.h"
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <locale.h>
#include <lua.hpp>

namespace LuaPlus {

using Clock = std::chrono::steady_clock;

// Found from any thread of its state: it stands where the allocator's data stand.
struct LuaStateOwner::Meter {
    LuaLimits limits;
    std::size_t bytes = 0;
    int running = 0;  // nested chunks and calls
    Clock::time_point end;

    static Meter& of(lua_State* state) {
        void* data = nullptr;
        lua_getallocf(state, &data);
        return *static_cast<Meter*>(data);
    }
    static bool owns(lua_State* state) { return lua_getallocf(state, nullptr) == allocate; }
    static void* allocate(void* data, void* block, std::size_t before, std::size_t after);
};

void* LuaStateOwner::Meter::allocate(void* data, void* block, std::size_t before, std::size_t after) {
    Meter& meter = *static_cast<Meter*>(data);
    if (!block) before = 0;  // then it names the kind of what is made
    if (after > before && meter.limits.bytes && meter.bytes + (after - before) > meter.limits.bytes) return nullptr;
    void* result = after ? std::realloc(block, after) : nullptr;
    if (!after) std::free(block);
    if (after && !result) return nullptr;
    meter.bytes += after;
    meter.bytes -= before;
    return result;
}

// ---- time ----

namespace {

constexpr int instructionsBetweenLooks = 10000;

locale_t cLocale() {
    static locale_t const locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

}  // namespace

// From the end on the look is at every instruction, so that no pcall can hold up the error for long.
void LuaClock::look(lua_State* state, lua_Debug*) {
    LuaStateOwner::Meter const& meter = LuaStateOwner::Meter::of(state);
    if (Clock::now() < meter.end) return;
    lua_sethook(state, look, LUA_MASKCOUNT, 1);
    luaL_error(state, "the script was stopped: it took more than %f seconds", meter.limits.seconds);
}

LuaClock::LuaClock(lua_State* state) : previous_(uselocale(cLocale())), state_(state) {
    if (!LuaStateOwner::Meter::owns(state)) return;
    LuaStateOwner::Meter& meter = LuaStateOwner::Meter::of(state);
    if (meter.running++) return;
    bool const isTimed = meter.limits.seconds > 0;
    meter.end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                   std::chrono::duration<double>(std::min(meter.limits.seconds, 1e9)));
    lua_sethook(state, isTimed ? look : nullptr, isTimed ? LUA_MASKCOUNT : 0, instructionsBetweenLooks);
}

LuaClock::~LuaClock() {
    uselocale(static_cast<locale_t>(previous_));
    if (LuaStateOwner::Meter::owns(state_)) --LuaStateOwner::Meter::of(state_).running;
}

// ---- libraries ----

namespace {

// Loads source alone, whatever mode is asked for: a binary chunk that was tampered with could break the state. The mode
// is the argument before the environment, which is the last one.
int callWithMode(lua_State* state, int mode) {
    if (lua_gettop(state) < mode) lua_settop(state, mode);
    lua_pushliteral(state, "t");
    lua_replace(state, mode);
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 1);
    lua_call(state, lua_gettop(state) - 1, LUA_MULTRET);
    return lua_gettop(state);
}
int loadSource(lua_State* state) { return callWithMode(state, 3); }
int loadSourceFile(lua_State* state) { return callWithMode(state, 2); }

int runSourceFile(lua_State* state) {
    lua_settop(state, 1);
    lua_getglobal(state, "loadfile");
    lua_insert(state, 1);
    lua_call(state, 1, 2);
    if (lua_isnil(state, 1)) return lua_error(state);
    lua_settop(state, 1);
    lua_call(state, 0, LUA_MULTRET);
    return lua_gettop(state);
}

void wrapGlobal(lua_State* state, char const* name, lua_CFunction wrapper) {
    lua_getglobal(state, name);
    lua_pushcclosure(state, wrapper, 1);
    lua_setglobal(state, name);
}

void removeGlobal(lua_State* state, char const* name) {
    lua_pushnil(state);
    lua_setglobal(state, name);
}

void keepOnly(lua_State* state, char const* table, std::initializer_list<char const*> names) {
    lua_getglobal(state, table);
    lua_newtable(state);
    for (char const* name : names) {
        lua_getfield(state, -2, name);
        lua_setfield(state, -2, name);
    }
    lua_setglobal(state, table);
    lua_pop(state, 1);
}

void openSandboxed(lua_State* state) {
    constexpr std::array<luaL_Reg, 7> libraries{{{LUA_GNAME, luaopen_base},
                                                 {LUA_COLIBNAME, luaopen_coroutine},
                                                 {LUA_TABLIBNAME, luaopen_table},
                                                 {LUA_STRLIBNAME, luaopen_string},
                                                 {LUA_MATHLIBNAME, luaopen_math},
                                                 {LUA_UTF8LIBNAME, luaopen_utf8},
                                                 {LUA_OSLIBNAME, luaopen_os}}};
    for (luaL_Reg const& library : libraries) {
        luaL_requiref(state, library.name, library.func, 1);
        lua_pop(state, 1);
    }
    keepOnly(state, LUA_OSLIBNAME, {"clock", "date", "difftime", "time"});
    removeGlobal(state, "dofile");
    removeGlobal(state, "loadfile");
}

void openLibraries(lua_State* state, LuaLibraries libraries) {
    if (libraries == LuaLibraries::Standard) {
        luaL_openlibs(state);
        wrapGlobal(state, "loadfile", loadSourceFile);
        wrapGlobal(state, "dofile", runSourceFile);
    } else {
        openSandboxed(state);
    }
    wrapGlobal(state, "load", loadSource);
}

}  // namespace

LuaStateOwner::LuaStateOwner(LuaLibraries libraries) :
    meter_(std::make_unique<Meter>()), libraries_(libraries), state_(lua_newstate(Meter::allocate, meter_.get())) {
    if (state_) state_.Protect([this] { openLibraries(state_.GetCState(), libraries_); });
}

LuaStateOwner::~LuaStateOwner() {
    meter_->limits = {};
    if (state_) lua_close(state_.GetCState());
}

void LuaStateOwner::SetLimits(LuaLimits const& limits) { meter_->limits = limits; }

std::size_t LuaStateOwner::BytesInUse() const { return meter_->bytes; }

}  // namespace LuaPlus
