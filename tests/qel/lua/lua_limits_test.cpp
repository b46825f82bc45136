// What scripts may take of memory and time. A script that is not stopped makes these hang: the suite's own limit ends
// it.
#include "tests/qel/lua/fixture.h"

namespace LuaPlus {
namespace {

using testing::HasSubstr;

struct Timed : WithState {
    Timed() { owner.SetLimits({.seconds = 0.05}); }
    void mustBeStopped(std::string_view text) {
        EXPECT_EQ(run(text), LUA_ERRRUN) << text;
        EXPECT_THAT(error, HasSubstr("the script was stopped: it took more than 0.05 seconds")) << text;
        mustRun("alive = (alive or 0) + 1");
    }
};

// ---- time ----

TEST_F(Timed, AnEndlessLoopIsStoppedWhereItIs) {
    mustBeStopped("\nwhile true do end");
    EXPECT_THAT(error, testing::StartsWith("chunk:2: the script was stopped"));
    EXPECT_THAT(error, HasSubstr("chunk:2: in main chunk"));
}

TEST_F(Timed, NoCatchHoldsUpTheEnd) {
    mustBeStopped("while true do pcall(function() while true do end end) end");
    mustBeStopped("while true do xpcall(function() while true do end end, function(m) return m end) end");
    mustBeStopped("local function f() pcall(f) f() end f()");
}

TEST_F(Timed, AHandlerThatNeverEndsIsNotBegun) {
    mustBeStopped("xpcall(function() while true do end end, function() while true do end end) while true do end");
    mustBeStopped("xpcall(error, function() while true do end end) while true do end");
}

TEST_F(Timed, AnEndlessLoopInACoroutineIsStopped) {
    mustBeStopped("coroutine.wrap(function() while true do end end)()");
    mustBeStopped("while true do coroutine.resume(coroutine.create(function() while true do end end)) end");
    mustBeStopped(
        "local co = coroutine.wrap(function() while true do coroutine.yield() end end) while true do co() end");
}

TEST_F(Timed, ATreeOfShortCoroutinesIsStopped) {
    mustBeStopped("local function f() for i = 1, 10 do pcall(coroutine.wrap(f)) end end while true do f() end");
    mustBeStopped(
        "local function f() for i = 1, 10 do coroutine.resume(coroutine.create(f)) end end while true do f() end");
}

TEST_F(Timed, ACoroutineOlderThanTheLimitIsStopped) {
    owner.SetLimits({});
    mustRun("local function f() coroutine.yield() while true do end end "
            "a, b = coroutine.create(f), coroutine.wrap(f) coroutine.resume(a) b()");
    owner.SetLimits({.seconds = 0.05});
    EXPECT_EQ(run("assert(coroutine.resume(a))"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("the script was stopped"));
    mustBeStopped("b()");
}

TEST_F(Timed, AVariableThatIsClosedOnTheWayOutIsNoWayOut) {
    mustBeStopped("local x <close> = setmetatable({}, {__close = function() while true do end end}) while true do end");
}

TEST_F(Timed, LibraryFunctionsDoNotLoopOverWhatIsNotThere) {
    std::string const sparse =
        "local t = {1, 2, 3, 4, 5, 6, 7, 8} for i = 5, 62 do t[1 << i] = 1 end t[9], t[16] = 1, 1 ";
    std::string const pretended = "local t = setmetatable({}, {__len = function() return 1 << 62 end}) ";
    for (std::string const& text :
         {sparse + "table.insert(t, 1, 1)", pretended + "table.insert(t, 1, 1)", sparse + "table.remove(t, 1)",
          pretended + "table.sort(t)", std::string("table.move({}, 1, math.maxinteger - 1, 2)"),
          std::string("table.concat(setmetatable({}, {__index = rawlen}), '', 1, 1 << 62)"),
          pretended + "table.concat(t)", std::string("table.move({}, math.mininteger, -2, 1)"),
          std::string("string.rep('', math.maxinteger)")}) {
        EXPECT_EQ(run(text), LUA_ERRRUN) << text;
        EXPECT_THAT(error, HasSubstr("too many elements")) << text;
    }
}

TEST_F(Timed, ASourceWhosePartsNeverEndIsStopped) {
    EXPECT_EQ(run("local chunk, message = load(os.clock) error(message)"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("the script was stopped"));
}

TEST_F(Timed, FewSlowCallsAreStoppedToo) {
    mustBeStopped("local t = {} for i = 1, 20000 do t[i] = {} end while true do collectgarbage() end");
    mustBeStopped("local s = ('x'):rep(1000000) while true do s:upper() s:find('y') s:gsub('y', '') end");
}

TEST_F(Timed, TheTimeBeginsAnewWithEachRun) {
    for (int i = 0; i < 3; ++i) mustBeStopped("while true do end");
    mustRun("for i = 1, 2000 do x = i end");
    EXPECT_EQ(global("x").ToNumber(), 2000);
}

int runInner(lua_State* state) {
    std::string error;
    lua_pushinteger(state, LuaState(state).DoString("while true do end", "=inner", error));
    return 1;
}

TEST_F(Timed, AScriptThatAnotherRunsHasNoTimeOfItsOwn) {
    bind("run", runInner);
    mustBeStopped("while true do run() end");
}

TEST_F(Timed, ACallIsStoppedToo) {
    mustRun("function f() while true do end end");
    global("f").Push(owner->GetCState());
    EXPECT_EQ(owner->Call(0, 0, error), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("the script was stopped"));
}

TEST_F(Timed, AScriptThatRunsInsideAnActionIsStoppedToo) {
    mustRun("object = setmetatable({}, {__index = function() while true do end end})");
    EXPECT_THROW(global("object").GetByName("x"), LuaException);
    mustRun("object = setmetatable({}, {__index = function() for i = 1, 2000 do end return 'found' end})");
    EXPECT_EQ(global("object").GetByName("x").ToString(), L"found");
}

TEST_F(Timed, WithoutALimitAnymoreAScriptEnds) {
    mustRun("co = coroutine.create(function() coroutine.yield() for i = 1, 300000 do end return 'end' end) "
            "coroutine.resume(co)");
    mustBeStopped("while true do end");
    for (double const seconds : {0.0, -1e300, std::nan("")}) {
        owner.SetLimits({.seconds = seconds});
        mustRun("for i = 1, 300000 do x = i end");
    }
    mustRun("ok, last = coroutine.resume(co)");
    EXPECT_EQ(global("last").ToString(), L"end");
}

TEST_F(Timed, AnImmenseLimitIsNone) {
    owner.SetLimits({.seconds = 1e300});
    mustRun("for i = 1, 100000 do x = i end");
}

// ---- what the wrappers leave as it was ----

using Libraries = WithState;

TEST_F(Libraries, ErrorsGoThroughTheirHandlers) {
    mustRun("ok, text = xpcall(function(a, b) error(a .. b, 0) end, function(m) return m .. '!' end, 'o', 'h')");
    EXPECT_EQ(global("text").ToString(), L"oh!");
    EXPECT_TRUE(isTrue("select('#', xpcall(function(...) return ... end, print, 1, nil, nil)) == 4"));
}

TEST_F(Libraries, AProtectedCallMayYield) {
    mustRun(
        "local co = coroutine.wrap(function() local ok, v = xpcall(function() return coroutine.yield(1) end, print) "
        "return v end) a, b = co(), co('back')");
    EXPECT_EQ(global("b").ToString(), L"back");
}

TEST_F(Libraries, CoroutinesPassValuesAndErrors) {
    mustRun("local co = coroutine.wrap(function(a) local b = coroutine.yield(a + 1) return b * 2, nil, 3 end) "
            "x = co(1) y = select('#', co(5)) ok, dead = pcall(co)");
    EXPECT_EQ(global("x").ToNumber(), 2);
    EXPECT_EQ(global("y").ToNumber(), 3);
    EXPECT_THAT(global("dead").ToString(), L"cannot resume dead coroutine");
    mustRun("local co = coroutine.create(function() local x <close> = setmetatable({}, {__close = function() "
            "closed = true end}) coroutine.yield() end) coroutine.resume(co) done = coroutine.close(co)");
    EXPECT_TRUE(isTrue("closed and done"));
    EXPECT_TRUE(isTrue("not pcall(coroutine.wrap, 5) and not pcall(coroutine.resume, 5)"));
}

TEST_F(Libraries, CoroutinesMayNest) {
    mustRun("local function depth(n) if n == 0 then return 0 end return 1 + coroutine.wrap(depth)(n - 1) end "
            "x = depth(40)");
    EXPECT_EQ(global("x").ToNumber(), 40);
}

TEST_F(Libraries, TablesAndTextsAreEdited) {
    EXPECT_TRUE(isTrue("(function() local t = {3, 1} table.insert(t, 2) table.insert(t, 1, 5) table.sort(t) "
                       "return table.concat(t, ' ') .. table.remove(t) .. table.remove(t, 1) end)() == '1 2 3 551'"));
    EXPECT_TRUE(isTrue("table.concat({1, 2, 3}, '-', 2) == '2-3' and table.concat({1, 2, 3}, '', 1, 2) == '12'"));
    EXPECT_TRUE(isTrue("table.concat({}) == '' and ('aXb'):upper():lower():reverse() == 'bxa'"));
    EXPECT_TRUE(isTrue("select('#', ('abc'):find('(b)(c)')) == 4 and ('abc'):match('b.') == 'bc'"));
    EXPECT_TRUE(isTrue("('abc'):gsub('%w', {a = 1}) == '1bc' and collectgarbage('count') > 0"));
    EXPECT_TRUE(isTrue("#table.move({1, 2, 3}, 1, 3, 2) == 4 and #table.move({}, 5, 1, 1) == 0"));
    EXPECT_TRUE(isTrue("('ab'):rep(2, '-') == 'ab-ab' and (''):rep(5) == '' and ('a'):rep(-1) == ''"));
    EXPECT_TRUE(isTrue("not pcall(table.insert, 5, 1) and not pcall(string.rep) and not pcall(table.move, {})"));
}

TEST_F(Libraries, TablesMayHaveMetatables) {
    EXPECT_TRUE(isTrue("setmetatable({}, {__index = {a = 1}}).a == 1 and getmetatable(setmetatable({}, nil)) == nil"));
    EXPECT_TRUE(isTrue("not pcall(setmetatable, {}) and not pcall(setmetatable, 1, {})"));
}

// ---- memory ----

struct Measured : WithState {
    Measured() { owner.SetLimits({.bytes = limit}); }
    static constexpr std::size_t limit = 1 << 20;
};

TEST_F(Measured, ALoopOfTextsHitsTheLimitAndTheStateIsUsableAfter) {
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(run("local t = {} for i = 1, 1e9 do t[i] = string.rep('x', 1000) .. i end"), LUA_ERRMEM);
        EXPECT_THAT(error, HasSubstr("not enough memory"));
        EXPECT_LT(owner.BytesInUse(), limit / 2) << "what it left is collected";
        mustRun("x = string.rep('y', 100000)");
    }
}

TEST_F(Measured, OneImmenseTextHitsTheLimit) {
    EXPECT_EQ(run("x = string.rep('x', 1 << 30)"), LUA_ERRMEM);
    EXPECT_EQ(run("x = ('x'):rep(math.maxinteger)"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("resulting string too large"));
}

TEST_F(Measured, AScriptMayCatchIt) {
    mustRun("ok, message = pcall(string.rep, 'x', 1 << 30)");
    EXPECT_EQ(global("message").ToString(), L"not enough memory");
}

TEST_F(Measured, ATextThatDoesNotFitIsNotLoaded) {
    EXPECT_EQ(run("x = '" + std::string(2 << 20, 'x') + "'"), LUA_ERRMEM);
    EXPECT_THAT(error, HasSubstr("not enough memory"));
    mustRun("x = 1");
}

TEST_F(Measured, DeepRecursionAndCoroutinesHitTheLimit) {
    EXPECT_NE(run("local function f(...) return f(1, ...) + 1 end f()"), 0);
    EXPECT_EQ(run("local t = {} while true do t[#t + 1] = coroutine.create(print) end"), LUA_ERRMEM);
    mustRun("x = 1");
}

TEST_F(Measured, AStoppedCollectorDoesNotGetAroundTheLimit) {
    mustRun("collectgarbage('stop') for i = 1, 1000 do local x = ('x'):rep(10000 + i) end");
    EXPECT_LE(owner.BytesInUse(), limit);
}

TEST_F(Measured, TheBytesInUseFollowWhatIsKept) {
    mustRun("collectgarbage()");
    std::size_t const before = owner.BytesInUse();
    mustRun("kept = ('x'):rep(500000)");
    EXPECT_GE(owner.BytesInUse(), before + 500000);
    mustRun("kept = nil collectgarbage()");
    EXPECT_LT(owner.BytesInUse(), before + 10000);
    EXPECT_TRUE(isTrue("math.abs(collectgarbage('count') * 1024 - " + std::to_string(owner.BytesInUse()) + ") < 5000"));
}

TEST_F(Measured, ALimitBelowWhatIsUsedLetsNothingGrow) {
    owner.SetLimits({.bytes = 1});
    EXPECT_EQ(run("x = {}"), LUA_ERRMEM);
    EXPECT_THROW(owner->CreateTable(), LuaException);
    EXPECT_THROW(owner->GetGlobal("a name that is longer than forty letters and so is made anew"), LuaException);
    owner.SetLimits({});
    mustRun("x = string.rep('x', 2000000)");
}

}  // namespace
}  // namespace LuaPlus
