#include "tavo/extension/lua/tavo_lua_argument_processor.h"
#include <gmock/gmock.h>
#include <lua.hpp>

namespace Tavo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// A function `set` that scripts call, with the arguments "argument01" to "argument06".
struct TavoArguments : testing::Test {
    TavoArguments() {
        lua_State* const state = owner->GetCState();
        lua_pushlightuserdata(state, this);
        lua_pushcclosure(state, call, 1);
        lua_setglobal(state, "set");
    }
    static int call(lua_State* state) {
        auto& here = *static_cast<TavoArguments*>(lua_touserdata(state, lua_upvalueindex(1)));
        LuaPlus::LuaState view(state);
        here.arguments.beginArguments(&view, here.isMethod);
        for (char digit = '1'; digit <= '6'; ++digit) here.arguments.addArgument(std::string("argument0") + digit);
        here.arguments.endArguments(&view);
        here.count = 0;
        here.take("argument01", here.isOn);
        here.take("argument02", here.whole);
        here.take("argument03", here.number);
        here.take("argument04", here.text);
        here.take("argument05", here.numbers);
        here.take("argument06", here.texts);
        return 0;
    }
    template<class Value> void take(char const* name, Value& value) { count += arguments.getValue(name, value); }
    int run(std::string const& text) { return owner->DoString(text, "=chunk", error); }

    LuaPlus::LuaStateOwner owner;
    TavoLuaArgumentProcessor arguments;
    std::string error;
    bool isMethod = false, isOn = false;
    int whole = 1, count = 0;
    float number = 2;
    std::wstring text = L"before";
    std::vector<float> numbers{3};
    std::vector<std::wstring> texts{L"before"};
};

TEST_F(TavoArguments, HaveSixKinds) {
    EXPECT_EQ(run("set(true, 7, 1.5, 'text', {1, 2}, {'a', 'b'})"), 0) << error;
    EXPECT_EQ(count, 6);
    EXPECT_TRUE(isOn);
    EXPECT_EQ(whole, 7);
    EXPECT_EQ(number, 1.5f);
    EXPECT_EQ(text, L"text");
    EXPECT_THAT(numbers, ElementsAre(1, 2));
    EXPECT_THAT(texts, ElementsAre(L"a", L"b"));
}

TEST_F(TavoArguments, AreAllOptional) {
    EXPECT_EQ(run("set()"), 0) << error;
    EXPECT_EQ(count, 0);
    EXPECT_EQ(whole, 1);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(text, L"before");
    EXPECT_THAT(numbers, ElementsAre(3));
    EXPECT_EQ(run("set(nil, 5)"), 0) << error;
    EXPECT_EQ(count, 1);
    EXPECT_EQ(whole, 5);
}

TEST_F(TavoArguments, OfAMethodBeginAfterTheSelfTable) {
    isMethod = true;
    EXPECT_EQ(run("scene = {set = set} scene:set(true, 8)"), 0) << error;
    EXPECT_EQ(count, 2);
    EXPECT_EQ(whole, 8);
}

TEST_F(TavoArguments, OfAWrongKindAreToldWithFunctionNameAndKinds) {
    EXPECT_EQ(run("set(true, 'seven')"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("chunk:1: bad argument #2 'argument02' to 'set' (integer expected, got string)"));
    EXPECT_EQ(run("set(true, 1e10)"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("(integer expected, got number 1e+10)"));
    EXPECT_EQ(whole, 1);
}

TEST_F(TavoArguments, EachCallForgetsTheOneBefore) {
    EXPECT_EQ(run("set(true, 7)"), 0) << error;
    EXPECT_EQ(run("set(true)"), 0) << error;
    EXPECT_EQ(count, 1);
    EXPECT_EQ(run("pcall(set, 'wrong') set(false, 9)"), 0) << error;
    EXPECT_EQ(count, 2);
    EXPECT_EQ(whole, 9);
}

TEST_F(TavoArguments, BeforeTheEndNothingIsGiven) {
    TavoLuaArgumentProcessor fresh;
    fresh.addArgument("argument01");
    fresh.endArguments(owner.Get());
    EXPECT_FALSE(fresh.getValue("argument01", whole));
    owner->PushInteger(4);
    fresh.beginArguments(owner.Get(), false);
    fresh.addArgument("argument01");
    EXPECT_FALSE(fresh.getValue("argument01", whole));
    fresh.endArguments(owner.Get());
    EXPECT_TRUE(fresh.getValue("argument01", whole));
    EXPECT_EQ(whole, 4);
    fresh.beginArguments(owner.Get(), false);
    EXPECT_FALSE(fresh.getValue("argument01", whole));
}

}  // namespace
}  // namespace Tavo
