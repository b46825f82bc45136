// The life of a state, its memory and its time.
#include "qel/lua/lua_clock.h"
#include "qel/lua/lua_libraries.h"
#include "qel/lua/lua_state.h"
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <locale.h>
#include <lua.hpp>
#include <new>

namespace LuaPlus {

using Clock = std::chrono::steady_clock;

// Found from any thread of its state: it stands where the allocator's data stand.
struct LuaStateOwner::Meter {
    LuaLimits limits;
    std::size_t bytes = 0;
    int running = 0;  // nested chunks and calls
    Clock::time_point end;

    static Meter* of(lua_State* state) {
        void* data = nullptr;
        return lua_getallocf(state, &data) == allocate ? static_cast<Meter*>(data) : nullptr;
    }
    static void* allocate(void* data, void* block, std::size_t before, std::size_t after);

    bool mayGrow(std::size_t more) const {
        return !limits.bytes || (bytes <= limits.bytes && more <= limits.bytes - bytes);
    }
    bool isTimed() const { return limits.seconds > 0; }
    bool isOver() const { return running > 0 && isTimed() && Clock::now() >= end; }
    void start() {
        double const seconds = isTimed() ? std::min(limits.seconds, 1e9) : 0;
        end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    }
};

void* LuaStateOwner::Meter::allocate(void* data, void* block, std::size_t before, std::size_t after) {
    Meter& meter = *static_cast<Meter*>(data);
    if (!block) before = 0;  // then it names the kind of what is made
    if (after > before && !meter.mayGrow(after - before)) return nullptr;
    void* result = nullptr;
    if (!after)
        std::free(block);
    else if (!(result = std::realloc(block, after))) {
        if (after > before) return nullptr;
        result = block;  // Lua counts on it that blocks can become smaller
    }
    meter.bytes = meter.bytes - before + after;
    return result;
}

// ---- time ----

namespace {

// A call of a library function can take a millisecond, and every tenth instruction may be one.
constexpr int instructionsBetweenLooks = 1000;

locale_t cLocale() {
    static locale_t const locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

}  // namespace

bool LuaClock::isOver(lua_State* state) {
    LuaStateOwner::Meter const* const meter = LuaStateOwner::Meter::of(state);
    return meter && meter->isOver();
}

void LuaClock::stop(lua_State* state, int level) {
    luaL_where(state, level);
    lua_pushfstring(state, "the script was stopped: it took more than %f seconds",
                    LuaStateOwner::Meter::of(state)->limits.seconds);
    lua_concat(state, 2);
    lua_error(state);
}

// In a function that a script calls; the script is one level up.
void LuaClock::check(lua_State* state) {
    if (isOver(state)) stop(state, 1);
}

// From the end on the look is at every instruction, so that no pcall can hold up the error for long.
void LuaClock::look(lua_State* state, lua_Debug*) {
    bool const isLate = isOver(state);
    int const between = isLate ? 1 : instructionsBetweenLooks;
    if (between != lua_gethookcount(state)) lua_sethook(state, look, LUA_MASKCOUNT, between);
    if (isLate) stop(state, 0);
}

void LuaClock::attend(lua_State* state) {
    LuaStateOwner::Meter const* const meter = LuaStateOwner::Meter::of(state);
    if (meter && meter->isTimed() && !lua_gethook(state))
        lua_sethook(state, look, LUA_MASKCOUNT, instructionsBetweenLooks);
}

LuaClock::LuaClock(lua_State* state) : previous_(uselocale(cLocale())), state_(state) {
    LuaStateOwner::Meter* const meter = LuaStateOwner::Meter::of(state);
    if (!meter || meter->running++) return;
    meter->start();
    if (lua_gethook(state) == look) lua_sethook(state, nullptr, 0, 0);
    attend(state);
}

LuaClock::~LuaClock() {
    uselocale(static_cast<locale_t>(previous_));
    if (LuaStateOwner::Meter* const meter = LuaStateOwner::Meter::of(state_)) --meter->running;
}

// ---- life ----

namespace {

// An error where nothing is below to take it.
int throwError(lua_State* state) {
    std::size_t length = 0;
    char const* const text = lua_type(state, -1) == LUA_TSTRING ? lua_tolstring(state, -1, &length) : "";
    LuaException const exception(std::string(text, length));
    lua_settop(state, 0);
    throw exception;
}

}  // namespace

LuaStateOwner::LuaStateOwner(LuaLibraries libraries) : LuaStateOwner(libraries, std::make_unique<Meter>()) {
    lua_atpanic(state_.GetCState(), throwError);
    state_.Protect([this] { openLibraries(state_.GetCState(), libraries_); });
}

LuaStateOwner::LuaStateOwner(LuaLibraries libraries, std::unique_ptr<Meter> meter) :
    meter_(std::move(meter)), libraries_(libraries), state_(lua_newstate(Meter::allocate, meter_.get())) {
    if (!state_) throw std::bad_alloc();
}

LuaStateOwner::~LuaStateOwner() {
    meter_->limits = {};
    lua_close(state_.GetCState());
}

void LuaStateOwner::SetLimits(LuaLimits const& limits) {
    meter_->limits = limits;
    meter_->start();
    LuaClock::attend(state_.GetCState());
}

std::size_t LuaStateOwner::BytesInUse() const { return meter_->bytes; }

}  // namespace LuaPlus
