#include "tests/qel/lua/fixture.h"

namespace LuaPlus {
namespace {

using Object = WithState;

TEST_F(Object, OfNothingIsNil) {
    LuaObject const nothing;
    EXPECT_TRUE(nothing.IsNil());
    EXPECT_FALSE(nothing.IsTable() || nothing.IsFunction() || nothing.IsString() || nothing.IsNumber());
    EXPECT_EQ(nothing.ToNumber(4), 4);
    EXPECT_EQ(nothing.ToString(), L"");
    EXPECT_TRUE(nothing.GetByName("x").IsNil());
    nothing.SetInteger("x", 1);
    nothing.Push(owner->GetCState());
    EXPECT_TRUE(lua_isnil(owner->GetCState(), -1));
    EXPECT_TRUE(nothing == LuaObject());
    EXPECT_TRUE(nothing == global("none"));
}

TEST_F(Object, TellsItsKind) {
    mustRun("t, f, s, n, b = {}, print, 'text', 1.5, true");
    EXPECT_TRUE(global("t").IsTable());
    EXPECT_TRUE(global("f").IsFunction());
    EXPECT_TRUE(global("s").IsString());
    EXPECT_TRUE(global("n").IsNumber());
    EXPECT_FALSE(global("n").IsString());
    EXPECT_FALSE(global("s").IsNumber() || global("s").IsTable() || global("s").IsNil());
    EXPECT_FALSE(global("b").IsNil() || global("b").IsNumber() || global("b").IsTable());
}

TEST_F(Object, GivesNumbersAndTexts) {
    mustRun("n, i, s, digits = 1.5, 7, 'a\\0\\u{20AC}', '12'");
    EXPECT_EQ(global("n").ToNumber(), 1.5);
    EXPECT_EQ(global("n").ToString(), L"1.5");
    EXPECT_EQ(global("i").ToString(), L"7");
    EXPECT_EQ(global("s").ToString(), std::wstring(L"a\0\u20AC", 3));
    EXPECT_EQ(global("digits").ToNumber(-1), -1) << "a text is no number";
    EXPECT_EQ(global("_G").ToString(), L"");
    EXPECT_TRUE(isTrue("math.type(i) == 'integer'")) << "reading changes nothing";
}

TEST_F(Object, KeepsItsValueAlive) {
    mustRun("t = {name = 'kept'}");
    LuaObject const kept = global("t");
    mustRun("watch = setmetatable({t}, {__mode = 'v'}) t = nil collectgarbage()");
    EXPECT_EQ(kept.GetByName("name").ToString(), L"kept");
    EXPECT_TRUE(isTrue("watch[1] ~= nil"));
}

TEST_F(Object, LetsItsValueGo) {
    mustRun("t = {}");
    { LuaObject const kept = global("t"), copy = kept; }
    mustRun("watch = setmetatable({t}, {__mode = 'v'}) t = nil collectgarbage()");
    EXPECT_TRUE(isTrue("watch[1] == nil"));
}

TEST_F(Object, ReferencesAreUsedAgain) {
    mustRun("t = {} collectgarbage()");
    auto const references = [&] { return lua_rawlen(owner->GetCState(), LUA_REGISTRYINDEX); };
    { LuaObject const one = global("t"), two = one, three = owner->CreateTable(); }
    auto const before = references();
    for (int i = 0; i < 1000; ++i) {
        LuaObject one = global("t"), two = one, three = std::move(one);
        two = three;
        one = LuaObject();
        try {
            owner->Protect([&] {
                LuaObject const four = two;
                lua_error(owner->GetCState());
            });
        } catch (LuaException const&) {}
    }
    EXPECT_EQ(references(), before);
}

TEST_F(Object, CopiesAndMovesReferToTheSame) {
    mustRun("t = {}");
    LuaObject first = global("t"), copy = first, moved = std::move(first);
    EXPECT_TRUE(first.IsNil());
    EXPECT_TRUE(copy == moved);
    copy.SetInteger("x", 3);
    EXPECT_EQ(moved.GetByName("x").ToNumber(), 3);
    first = copy;
    copy = LuaObject();
    EXPECT_TRUE(copy.IsNil());
    EXPECT_TRUE(first == moved);
    LuaObject& same = first;
    first = same;
    EXPECT_TRUE(first == moved);
}

TEST_F(Object, EqualityIsThatOfTheValue) {
    mustRun("f = function() end g = f h = load('return 1') t, u = setmetatable({}, {__eq = function() return true "
            "end}), {}");
    EXPECT_TRUE(global("f") == global("g"));
    EXPECT_FALSE(global("f") == global("h"));
    EXPECT_FALSE(global("t") == global("u")) << "no metamethod is asked";
    EXPECT_TRUE(global("f") != LuaObject());
    mustRun("i, n, s = 1, 1.0, '1'");
    EXPECT_TRUE(global("i") == global("n"));
    EXPECT_FALSE(global("i") == global("s"));
}

TEST_F(Object, NilMayBeReferredTo) {
    owner->PushNil();
    LuaObject const nil = owner->Stack(-1), copy = nil;
    EXPECT_TRUE(nil.IsNil() && copy.IsNil());
    EXPECT_TRUE(nil == LuaObject());
}

TEST_F(Object, TablesAreWrittenAndRead) {
    LuaObject const table = owner->CreateTable(), inner = owner->CreateTable();
    table.SetInteger("i", 1LL << 60);
    table.SetNumber("n", 0.5);
    table.SetString("s", L"\u20AC");
    table.SetObject("t", inner);
    owner->SetGlobal("t", table);
    EXPECT_TRUE(isTrue("t.i == 1 << 60 and t.n == 0.5 and t.s == '\\u{20AC}' and type(t.t) == 'table'"));
    EXPECT_TRUE(table.GetByName("t") == inner);
    table.SetObject("t", LuaObject());
    EXPECT_TRUE(table.GetByName("t").IsNil());
    owner->SetGlobal("t", LuaObject());
    EXPECT_TRUE(global("t").IsNil());
}

TEST_F(Object, WhatIsNoTableIsNotWritten) {
    mustRun("s = 'text'");
    global("s").SetInteger("x", 1);
    EXPECT_TRUE(global("s").GetByName("x").IsNil());
    EXPECT_EQ(owner->GetTop(), 0);
}

TEST_F(Object, AMetamethodThatFailsIsAnException) {
    mustRun("t = setmetatable({}, {__index = function() error('in') end, __newindex = function() error('out') end})");
    LuaObject const table = global("t");
    EXPECT_THROW(table.GetByName("x"), LuaException);
    EXPECT_THROW(table.SetInteger("x", 1), LuaException);
    EXPECT_EQ(owner->GetTop(), 0);
}

TEST_F(Object, WithoutMemoryIsAnException) {
    LuaObject const table = owner->CreateTable();
    std::vector<LuaObject> many;
    owner.SetLimits({.bytes = owner.BytesInUse() + 2000});
    EXPECT_THROW(
        {
            for (int i = 0; i < 100000; ++i) many.push_back(table);
        },
        LuaException);
    many.clear();
    owner.SetLimits({});
    EXPECT_TRUE(table.IsTable());
}

// ---- coroutines ----

static LuaObject kept;

int keep(lua_State* state) {
    kept = LuaState(state).Stack(1);
    return 0;
}

TEST_F(Object, FromACoroutineThatEndedIsAsGoodAsAny) {
    bind("keep", keep);
    mustRun("coroutine.wrap(function() keep({name = 'from there'}) end)() collectgarbage() collectgarbage()");
    EXPECT_EQ(kept.GetByName("name").ToString(), L"from there");
    LuaObject const copy = kept;
    kept = LuaObject();
    EXPECT_TRUE(copy.IsTable());
}

int readInside(lua_State* state) {
    return LuaState(state).Guard([&] {
        LuaObject const object = LuaState(state).Stack(1), copy = object;
        copy.GetByName("x").Push(state);
        return 1;
    });
}

TEST_F(Object, IsReadWhileACoroutineRuns) {
    bind("read", readInside);
    mustRun("x = coroutine.wrap(function() return read({x = 'here'}) end)()");
    EXPECT_EQ(global("x").ToString(), L"here");
}

TEST_F(Object, AnErrorWhileACoroutineRunsEndsThatAlone) {
    bind("read", readInside);
    mustRun("co = coroutine.create(function() read(setmetatable({}, {__index = function() error('oh', 0) end})) end) "
            "ok, message = coroutine.resume(co) status = coroutine.status(co)");
    EXPECT_EQ(global("message").ToString(), L"chunk:1: oh");
    EXPECT_EQ(global("status").ToString(), L"dead");
}

TEST_F(Object, AViewOfACoroutineWorksOnItsOwnStack) {
    lua_State* const thread = lua_newthread(owner->GetCState());
    LuaState const view(thread);
    view.PushInteger(5);
    EXPECT_EQ(view.GetTop(), 1);
    EXPECT_EQ(owner->GetTop(), 1);
    EXPECT_EQ(view.DoString("x = 1 error('oh')", "=chunk", error), LUA_ERRRUN);
    LuaObject const five = view.Stack(-1);
    owner->Pop();
    mustRun("collectgarbage()");
    EXPECT_EQ(five.ToNumber(), 5);
}

}  // namespace
}  // namespace LuaPlus
