// While a chunk or a call runs: the thread's locale is "C", so that numbers have a point, and the outermost one starts
// the time that its owner allows it. A state that has no LuaStateOwner has no limit.
#pragma once
struct lua_Debug;
struct lua_State;

namespace LuaPlus {

struct LuaClock {
    explicit LuaClock(lua_State* state);
    ~LuaClock();
    LuaClock(LuaClock const&) = delete;
    LuaClock& operator=(LuaClock const&) = delete;

    static bool isOver(lua_State* state);
    static void check(lua_State* state);   // a Lua error when the time is over
    static void attend(lua_State* state);  // a coroutine that may be older than the limit

private:
    static void look(lua_State* state, lua_Debug* event);
    static void stop(lua_State* state, int level);

    void* previous_;
    lua_State* state_;
};

}  // namespace LuaPlus
