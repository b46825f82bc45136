// While a chunk or a call runs: the thread's locale is "C", so that numbers have a point, and the outermost one starts
// the time that its owner allows it.
#pragma once
struct lua_Debug;
struct lua_State;

namespace LuaPlus {

struct LuaClock {
    explicit LuaClock(lua_State* state);
    ~LuaClock();
    LuaClock(LuaClock const&) = delete;
    LuaClock& operator=(LuaClock const&) = delete;

private:
    static void look(lua_State* state, lua_Debug* event);

    void* previous_;
    lua_State* state_;
};

}  // namespace LuaPlus
