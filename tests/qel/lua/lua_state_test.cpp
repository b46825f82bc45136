#include "tests/qel/lua/fixture.h"
#include <clocale>

namespace LuaPlus {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using State = WithState;

// ---- running ----

TEST_F(State, AChunkThatRunsGivesZeroAndLeavesTheError) {
    error = "before";
    EXPECT_EQ(run("x = 1 + 2"), 0);
    EXPECT_EQ(error, "before");
    EXPECT_EQ(global("x").ToNumber(), 3);
}

TEST_F(State, ASyntaxErrorTellsTheLine) {
    EXPECT_EQ(run("x = 1\ny = = 2"), LUA_ERRSYNTAX);
    EXPECT_EQ(error, "chunk:2: unexpected symbol near '='");
}

TEST_F(State, AnErrorTellsTheLineAndTheWayThere) {
    EXPECT_EQ(run("function deep() error('oh') end\nfunction f() deep() end\nf()"), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("chunk:1: oh\nstack traceback:"));
    EXPECT_THAT(error, HasSubstr("chunk:1: in function 'deep'"));
    EXPECT_THAT(error, HasSubstr("chunk:3: in main chunk"));
}

TEST_F(State, RunningLeavesTheStackAsItWas) {
    owner->PushInteger(7);
    for (char const* text : {"return 1, 2", "error('oh')", "= syntax"}) run(text);
    EXPECT_EQ(owner->GetTop(), 1);
    EXPECT_EQ(owner->Stack(-1).ToNumber(), 7);
}

TEST_F(State, AnErrorMayHoldZeros) {
    run("error('a\\0b', 0)");
    EXPECT_THAT(error, StartsWith(std::string("a\0b\nstack", 9)));
}

TEST_F(State, AChunkMayHoldZeros) {
    using namespace std::string_literals;
    mustRun("x = #'a\0b'"s);
    EXPECT_EQ(global("x").ToNumber(), 3);
}

TEST_F(State, AnErrorThatIsATableTellsWhatItsToStringSays) {
    EXPECT_EQ(run("error(setmetatable({}, {__tostring = function() return 'table text' end}))"), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("table text\nstack traceback:"));
}

TEST_F(State, AnErrorWithoutTextTellsItsKind) {
    for (auto [text, message] : {std::pair("error({})", "an error without a message (a table value)\n"),
                                 std::pair("error(nil)", "an error without a message (a nil value)\n"),
                                 std::pair("error(true)", "an error without a message (a boolean value)\n"),
                                 std::pair("error(42, 0)", "42\n")}) {
        EXPECT_EQ(run(text), LUA_ERRRUN);
        EXPECT_THAT(error, StartsWith(message)) << text;
    }
}

TEST_F(State, AToStringThatFailsTellsItsOwnError) {
    EXPECT_EQ(run("error(setmetatable({}, {__tostring = function() error('worse', 0) end}))"), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("worse\n"));
    EXPECT_NE(run("error(setmetatable({}, {__tostring = function() return {} end}))"), 0);
    EXPECT_THAT(error, HasSubstr("'__tostring' must return a string"));
}

TEST_F(State, AToStringThatFailsForeverEnds) {
    EXPECT_NE(
        run("local m = {}; m.__tostring = function(t) error(setmetatable({}, m)) end; error(setmetatable({}, m))"), 0);
    EXPECT_FALSE(error.empty());
    mustRun("x = 1");
}

TEST_F(State, EndlessRecursionIsAnError) {
    EXPECT_NE(run("local function f() return 1 + f() end f()"), 0);
    EXPECT_THAT(error, HasSubstr("stack overflow"));
    mustRun("x = 1");
}

TEST_F(State, AFirstLineForAShellIsPassedOver) {
    mustRun("#!/usr/bin/env script\nx = 5");
    EXPECT_EQ(global("x").ToNumber(), 5);
    EXPECT_EQ(run("#!/usr/bin/env script\nerror('oh')"), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("chunk:2: oh"));
    mustRun("#");
}

TEST_F(State, AMarkOfUtf8IsPassedOver) {
    mustRun("\xEF\xBB\xBFx = 6");
    EXPECT_EQ(global("x").ToNumber(), 6);
    mustRun("\xEF\xBB\xBF#!shell\nx = 7");
    EXPECT_EQ(global("x").ToNumber(), 7);
    mustRun("\xEF\xBB\xBF");
}

TEST_F(State, EmptyTextRuns) { mustRun(""); }

TEST_F(State, ABinaryChunkIsRefused) {
    mustRun("binary = string.dump(function() x = 1 end)");
    LuaObject const binary = global("binary");
    binary.Push(owner->GetCState());
    std::size_t length = 0;
    char const* const bytes = lua_tolstring(owner->GetCState(), -1, &length);
    std::string const text(bytes, length);
    EXPECT_EQ(run(text), LUA_ERRSYNTAX);
    EXPECT_THAT(error, HasSubstr("attempt to load a binary chunk"));
    EXPECT_EQ(run("#\n" + text), LUA_ERRSYNTAX);
}

TEST_F(State, CallGivesResultsInPlaceOfFunctionAndArguments) {
    mustRun("function f(a, b) return a + b, a * b end");
    global("f").Push(owner->GetCState());
    owner->PushInteger(3);
    owner->PushInteger(4);
    EXPECT_EQ(owner->Call(2, 2, error), 0);
    EXPECT_EQ(owner->GetTop(), 2);
    EXPECT_EQ(owner->Stack(1).ToNumber(), 7);
    EXPECT_EQ(owner->Stack(2).ToNumber(), 12);
}

TEST_F(State, ACallThatFailsLeavesNothingOnTheStack) {
    owner->PushNil();
    owner->PushInteger(3);
    EXPECT_EQ(owner->Call(1, 1, error), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("attempt to call a nil value"));
    EXPECT_EQ(owner->GetTop(), 0);
}

// ---- files ----

using File = WithFiles;

TEST_F(File, RunsUnderItsName) {
    write("a.lua", "x = 1\nerror('oh')");
    EXPECT_EQ(owner->DoFile(L"a.lua", error), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("a.lua:2: oh\nstack traceback:"));
    EXPECT_EQ(global("x").ToNumber(), 1);
}

TEST_F(File, ANameMayHaveAnyLetters) {
    write("\xC3\xA4\xE2\x82\xAC.lua", "x = 2");
    EXPECT_EQ(owner->DoFile(L"\u00E4\u20AC.lua", error), 0) << error;
    EXPECT_EQ(global("x").ToNumber(), 2);
}

TEST_F(File, OneThatIsMissingIsTold) {
    EXPECT_EQ(owner->DoFile(L"missing.lua", error), LUA_ERRFILE);
    EXPECT_EQ(error, "cannot read missing.lua");
}

TEST_F(File, AFolderIsNone) {
    std::filesystem::create_directory("folder.lua");
    EXPECT_EQ(owner->DoFile(L"folder.lua", error), LUA_ERRFILE);
    EXPECT_EQ(error, "cannot read folder.lua");
}

TEST_F(File, AnEmptyOneRuns) {
    write("empty.lua", "");
    EXPECT_EQ(owner->DoFile(L"empty.lua", error), 0) << error;
}

TEST_F(File, WindowsLineEndsAndAMarkAreFine) {
    write("dos.lua", "\xEF\xBB\xBFx = 1\r\nerror('oh')\r\n");
    EXPECT_EQ(owner->DoFile(L"dos.lua", error), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("dos.lua:2: oh"));
}

TEST_F(File, ABinaryOneIsRefusedByEveryWayToLoadIt) {
    mustRun("local f = io.open('b.lua', 'wb'); f:write(string.dump(function() loaded = true end)); f:close()");
    EXPECT_EQ(owner->DoFile(L"b.lua", error), LUA_ERRSYNTAX);
    for (std::string const call : {"assert(loadfile('b.lua'))", "assert(loadfile('b.lua', 'b'))", "dofile('b.lua')",
                                   "package.path = './?.lua'; require('b')"}) {
        EXPECT_EQ(run(call), LUA_ERRRUN) << call;
        EXPECT_THAT(error, HasSubstr("attempt to load a binary chunk")) << call;
    }
    EXPECT_TRUE(global("loaded").IsNil());
}

TEST_F(File, ScriptsLoadSourceByEveryWay) {
    write("s.lua", "count = (count or 0) + 1; return count, ...");
    mustRun("a, b = dofile('s.lua'); c = assert(loadfile('s.lua'))(); package.path = './?.lua'; d, e = require('s')");
    EXPECT_EQ(global("a").ToNumber(), 1);
    EXPECT_TRUE(global("b").IsNil());
    EXPECT_EQ(global("c").ToNumber(), 2);
    EXPECT_EQ(global("d").ToNumber(), 3);
    EXPECT_EQ(global("e").ToString(), L"./s.lua");
}

TEST_F(File, AModuleThatIsMissingIsToldWithThePlacesWhereItWasSought) {
    EXPECT_EQ(run("package.path = './?.lua'; require('none')"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("no file './none.lua'"));
}

TEST_F(File, AScriptThatAScriptLoadsMayYield) {
    write("y.lua", "coroutine.yield('from file') return 'end'");
    mustRun("local co = coroutine.wrap(function() return dofile('y.lua') end); first, last = co(), co()");
    EXPECT_EQ(global("first").ToString(), L"from file");
    EXPECT_EQ(global("last").ToString(), L"end");
}

// ---- nesting and exceptions ----

int runNested(lua_State* state) {
    std::string error;
    LuaState const here(state);
    here.PushInteger(here.DoString(lua_tostring(state, 1), "=inner", error));
    here.PushUtf8(error);
    return 2;
}

TEST_F(State, AScriptMayRunAnother) {
    bind("run", runNested);
    mustRun("status = run('x = 1'); failed, message = run('error(\"oh\")')");
    EXPECT_EQ(global("x").ToNumber(), 1);
    EXPECT_EQ(global("status").ToNumber(), 0);
    EXPECT_EQ(global("failed").ToNumber(), LUA_ERRRUN);
    EXPECT_EQ(global("message").ToString().rfind(L"inner:1: oh", 0), 0u);
}

TEST_F(State, ACoroutineMayRunAnotherScript) {
    bind("run", runNested);
    mustRun("status = coroutine.wrap(function() return run('x = 2') end)()");
    EXPECT_EQ(global("status").ToNumber(), 0);
    EXPECT_EQ(global("x").ToNumber(), 2);
}

TEST_F(State, ProtectTellsAnErrorAndRestoresTheStack) {
    owner->PushInteger(7);
    try {
        owner->Protect([&] {
            EXPECT_EQ(owner->GetTop(), 0);
            owner->PushInteger(8);
            luaL_error(owner->GetCState(), "oh %d", 5);
        });
        FAIL() << "no exception";
    } catch (LuaException const& exception) { EXPECT_STREQ(exception.GetErrorMessage(), "oh 5"); }
    EXPECT_EQ(owner->GetTop(), 1);
}

TEST_F(State, ProtectTellsAnErrorThatIsNoText) {
    mustRun("object = setmetatable({}, {__index = function() error(setmetatable({}, {__tostring = function() "
            "return 'told' end})) end})");
    try {
        global("object").GetByName("x");
        FAIL() << "no exception";
    } catch (LuaException const& exception) { EXPECT_STREQ(exception.GetErrorMessage(), "told"); }
}

TEST_F(State, ProtectInsideProtectTellsTheInnerError) {
    try {
        owner->Protect([&] {
            owner->PushInteger(1);
            owner->Protect([&] { luaL_error(owner->GetCState(), "inner"); });
            ADD_FAILURE() << "went on";
        });
        FAIL() << "no exception";
    } catch (LuaException const& exception) { EXPECT_STREQ(exception.GetErrorMessage(), "inner"); }
    EXPECT_EQ(owner->GetTop(), 0);
}

TEST_F(State, AnExceptionOfAnActionPassesAsItIs) {
    EXPECT_THROW(owner->Protect([] { throw std::out_of_range("far"); }), std::out_of_range);
    EXPECT_EQ(owner->GetTop(), 0);
    mustRun("x = 1");
}

int guarded(lua_State* state) {
    return LuaState(state).Guard([&]() -> int {
        if (lua_toboolean(state, 1)) throw std::runtime_error("from C++");
        lua_pushliteral(state, "fine");
        return 1;
    });
}

TEST_F(State, AScriptCatchesTheExceptionsOfWhatIsGuarded) {
    bind("f", guarded);
    mustRun("fine = f(false); ok, message = pcall(f, true)");
    EXPECT_EQ(global("fine").ToString(), L"fine");
    EXPECT_EQ(global("message").ToString(), L"from C++");
    EXPECT_EQ(run("f(true)"), LUA_ERRRUN);
    EXPECT_THAT(error, StartsWith("chunk:1: from C++"));
    mustRun("ok, message = coroutine.resume(coroutine.create(f), true)");
    EXPECT_EQ(global("message").ToString(), L"from C++");
}

int unguarded(lua_State*) { throw std::runtime_error("lost"); }

TEST_F(State, AnExceptionThatReachesLuaIsAnErrorOfTheCall) {
    bind("f", unguarded);
    EXPECT_EQ(run("f()"), LUA_ERRRUN);
    EXPECT_EQ(error, "an error without a message");
    EXPECT_EQ(owner->GetTop(), 0);
}

TEST_F(State, AnErrorWithNothingBelowIsAnException) {
    EXPECT_THROW(luaL_error(owner->GetCState(), "oh"), LuaException);
    mustRun("x = 1");
    owner.SetLimits({.bytes = owner.BytesInUse() + 1000});
    EXPECT_THROW(owner->PushUtf8(std::string(100000, 'a')), LuaException);
    EXPECT_EQ(run("x = 2"), 0) << error;
}

TEST_F(State, EveryPushMakesRoomForItself) {
    for (int i = 0; i < 10000; ++i) {
        owner->PushNil();
        owner->PushBoolean(true);
        owner->PushInteger(i);
        owner->PushNumber(0.5);
        owner->PushString(L"\u00E4");
        global("_G").Push(owner->GetCState());
    }
    EXPECT_EQ(owner->GetTop(), 60000);
    EXPECT_EQ(owner->Stack(5).ToString(), L"\u00E4");
    EXPECT_TRUE(owner->Stack(-1).IsTable());
    owner->Pop(60000);
    EXPECT_EQ(owner->GetTop(), 0);
}

TEST_F(State, AStackThatIsFullIsAnError) {
    lua_State* const state = owner->GetCState();
    while (lua_checkstack(state, 1)) lua_pushnil(state);
    EXPECT_NE(run("x = 1"), 0);
    EXPECT_THROW(owner->Protect([] {}), LuaException);
    EXPECT_THROW(owner->PushNil(), LuaException);
    lua_settop(state, 0);
    mustRun("x = 1");
}

// ---- numbers ----

struct Numbers : WithState {
    Numbers() {
        for (char const* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8"})
            hasComma = hasComma || std::setlocale(LC_NUMERIC, name);
    }
    ~Numbers() override { std::setlocale(LC_NUMERIC, "C"); }
    bool hasComma = false;
};

TEST_F(Numbers, HaveAPointUnderALocaleWithAComma) {
    if (!hasComma) GTEST_SKIP() << "no locale with a decimal comma here";
    mustRun("text = tostring(1.5) .. ' ' .. string.format('%.2f', 0.25) .. ' ' .. tostring(tonumber('2.5'))");
    EXPECT_EQ(global("text").ToString(), L"1.5 0.25 2.5");
    EXPECT_TRUE(isTrue("tonumber('1,5') == nil"));
}

TEST_F(Numbers, HaveAPointOutsideOfChunksToo) {
    if (!hasComma) GTEST_SKIP() << "no locale with a decimal comma here";
    mustRun("x = 1.5");
    EXPECT_EQ(global("x").ToString(), L"1.5");
    char text[8];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1,5") << "the locale of the rest is its own";
}

TEST_F(Numbers, AreTheSameInEveryLocaleThatWasSet) {
    std::setlocale(LC_ALL, "");
    mustRun("text = tostring(1.5)");
    EXPECT_EQ(global("text").ToString(), L"1.5");
    std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace LuaPlus
