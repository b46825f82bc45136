#include "tests/qel/lua/fixture.h"

namespace LuaPlus {
namespace {

using testing::HasSubstr;

using Sandbox = WithState;

struct Standard : WithState {
    Standard() : WithState(LuaLibraries::Standard) {}
};

TEST_F(Sandbox, HasNothingThatReachesOutside) {
    EXPECT_EQ(owner.Libraries(), LuaLibraries::Sandboxed);
    for (char const* name : {"io", "require", "package", "debug", "dofile", "loadfile", "module"})
        EXPECT_TRUE(global(name).IsNil()) << name;
    for (char const* name : {"execute", "remove", "rename", "exit", "getenv", "tmpname", "setlocale"})
        EXPECT_TRUE(global("os").GetByName(name).IsNil()) << name;
}

TEST_F(Sandbox, TellsTheTimeAndHasTheOtherLibraries) {
    for (char const* name : {"clock", "date", "difftime", "time"})
        EXPECT_TRUE(global("os").GetByName(name).IsFunction()) << name;
    for (char const* name : {"coroutine", "table", "string", "math", "utf8", "_G"})
        EXPECT_TRUE(global(name).IsTable()) << name;
    for (char const* name : {"load", "pcall", "select", "tostring", "setmetatable", "print"})
        EXPECT_TRUE(global(name).IsFunction()) << name;
}

TEST_F(Sandbox, HasNoFinalizers) {
    EXPECT_EQ(run("setmetatable({}, {__gc = function() while true do end end})"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("a script here can not have finalizers (__gc)"));
    mustRun("local m = {} setmetatable({}, m) m.__gc = function() finalized = true end collectgarbage()");
    EXPECT_TRUE(global("finalized").IsNil());
}

TEST_F(Sandbox, LoadsSourceInAnEnvironment) {
    EXPECT_TRUE(isTrue("load('return ...')(5) == 5 and load('return x', 'name', 'bt', {x = 3})() == 3"));
    EXPECT_TRUE(isTrue("load('return x', 'name', nil, {x = 4})() == 4 and load('return x', 'n', 't', nil) ~= nil"));
    EXPECT_TRUE(isTrue("not pcall(load('return print', 'name', 't', nil))"));
    EXPECT_TRUE(isTrue("(function() local parts = {'return', ' 8'} "
                       "return load(function() return table.remove(parts, 1) end)() end)() == 8"));
    EXPECT_TRUE(isTrue("select(2, load('= syntax', '=here')) == \"here:1: unexpected symbol near '='\""));
}

TEST_F(Sandbox, RefusesBinaryChunksInAnyMode) {
    for (char const* mode : {"", ", 'name'", ", 'name', 'b'", ", 'name', 'bt'", ", 'name', 'b', {}"}) {
        EXPECT_EQ(run(std::string("assert(load(string.dump(function() end)") + mode + "))"), LUA_ERRRUN) << mode;
        EXPECT_THAT(error, HasSubstr("attempt to load a binary chunk (mode is 't')")) << mode;
    }
}

TEST_F(Standard, HasAllLibraries) {
    EXPECT_EQ(owner.Libraries(), LuaLibraries::Standard);
    for (char const* name : {"io", "package", "debug", "os", "coroutine", "table", "string", "math", "utf8"})
        EXPECT_TRUE(global(name).IsTable()) << name;
    for (char const* name : {"require", "dofile", "loadfile", "load"}) EXPECT_TRUE(global(name).IsFunction()) << name;
}

TEST_F(Standard, RefusesBinaryChunksInAnyMode) {
    for (char const* mode : {"", ", 'name', 'b'", ", 'name', 'bt', {}"}) {
        EXPECT_EQ(run(std::string("assert(load(string.dump(function() end)") + mode + "))"), LUA_ERRRUN) << mode;
        EXPECT_THAT(error, HasSubstr("attempt to load a binary chunk (mode is 't')")) << mode;
    }
}

TEST_F(Standard, FinalizersRunAtTheEndAtTheLatest) {
    static bool isFinalized;
    isFinalized = false;
    {
        LuaStateOwner other;
        lua_CFunction const note = [](lua_State*) -> int { return isFinalized = true, 0; };
        lua_register(other->GetCState(), "note", note);
        EXPECT_EQ(other->DoString("x = setmetatable({}, {__gc = note})", "=chunk", error), 0);
        EXPECT_FALSE(isFinalized);
    }
    EXPECT_TRUE(isFinalized);
}

TEST_F(Standard, StatesKnowNothingOfEachOther) {
    LuaStateOwner other;
    mustRun("x = 1 string.mine = 2");
    EXPECT_TRUE(other->GetGlobal("x").IsNil());
    EXPECT_TRUE(other->GetGlobal("string").GetByName("mine").IsNil());
}

TEST_F(Standard, ALimitOfTimeStopsAnAccident) {
    owner.SetLimits({.seconds = 0.05});
    EXPECT_EQ(run("while true do end"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("the script was stopped"));
}

}  // namespace
}  // namespace LuaPlus
