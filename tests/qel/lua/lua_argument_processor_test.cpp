#include "qel/lua/lua_argument_processor.h"
#include "tests/qel/lua/fixture.h"
#include <cmath>
#include <limits>

namespace wxUtils {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Processor = LuaArgumentProcessor;

// A function `move` that scripts call, and what the test does in it.
struct Arguments : LuaPlus::WithState {
    Arguments() {
        lua_State* const state = owner->GetCState();
        lua_pushlightuserdata(state, this);
        lua_pushcclosure(state, call, 1);
        lua_setglobal(state, "move");
        mustRun("self = {move = move}");
    }
    static int call(lua_State* state) {
        auto& here = *static_cast<Arguments*>(lua_touserdata(state, lua_upvalueindex(1)));
        LuaPlus::LuaState const view(state);
        Processor arguments;
        int const top = lua_gettop(state);
        here.declare(arguments);
        arguments.process(&view, here.isMethod);
        here.read(arguments);
        EXPECT_EQ(lua_gettop(state), top);
        return 0;
    }
    // Runs it, and expects an error.
    void mustFail(std::string_view text, std::string const& message) {
        EXPECT_EQ(run(text), LUA_ERRRUN) << text;
        EXPECT_THAT(error, HasSubstr("chunk:1: " + message + "\n")) << text;
    }
    // What the argument "value" of a call reads as.
    template<class Value> Value valueOf(std::string const& text, Value otherwise, auto get) {
        auto const value = std::make_shared<Value>(otherwise);
        read = [=](Processor const& arguments) { (arguments.*get)("value", *value); };
        mustRun("move(" + text + ")");
        return *value;
    }

    std::function<void(Processor&)> declare = [](Processor& arguments) { arguments.addOptional("value"); };
    std::function<void(Processor const&)> read = [](Processor const&) {};
    bool isMethod = false;
};

constexpr auto asInt = &Processor::getArgAsInt;
constexpr auto asBool = &Processor::getArgAsBool;
constexpr auto asString = &Processor::getArgAsString;
constexpr auto asFloats = &Processor::getArgAsFloatList;
constexpr auto asStrings = &Processor::getArgAsStringList;
constexpr auto asFloat = static_cast<bool (Processor::*)(std::string_view, float&) const>(&Processor::getArgAsFloat);
constexpr auto asDouble = static_cast<bool (Processor::*)(std::string_view, double&) const>(&Processor::getArgAsFloat);

// ---- which argument ----

TEST_F(Arguments, AreReadInTheOrderInWhichTheyWereAdded) {
    declare = [](Processor& arguments) {
        arguments.addOptional("path");
        arguments.addOptional("amount");
    };
    std::wstring path;
    int amount = 0;
    read = [&](Processor const& arguments) {
        EXPECT_TRUE(arguments.getArgAsInt("amount", amount));
        EXPECT_TRUE(arguments.getArgAsString("path", path));
    };
    mustRun("move('a|b', 7)");
    EXPECT_EQ(path, L"a|b");
    EXPECT_EQ(amount, 7);
}

TEST_F(Arguments, OneThatIsMissingOrNilLeavesTheValue) {
    int value = 5;
    bool isGiven = true;
    read = [&](Processor const& arguments) {
        isGiven = arguments.getArgAsInt("value", value) || arguments.hasArg("value");
    };
    for (char const* text : {"move()", "move(nil)", "move(nil, 8)"}) {
        isGiven = true;
        mustRun(text);
        EXPECT_FALSE(isGiven) << text;
        EXPECT_EQ(value, 5) << text;
    }
}

TEST_F(Arguments, FalseIsGiven) {
    read = [](Processor const& arguments) { EXPECT_TRUE(arguments.hasArg("value")); };
    mustRun("move(false)");
}

TEST_F(Arguments, OneThatIsRequiredMustBeThere) {
    declare = [](Processor& arguments) {
        arguments.addOptional("path");
        arguments.addRequired("amount");
    };
    mustFail("move()", "bad argument #2 'amount' to 'move' (value expected, got nothing)");
    mustFail("move('a', nil)", "bad argument #2 'amount' to 'move' (value expected, got nothing)");
    mustFail("move{path = 'a'}", "bad argument 'amount' to 'move' (value expected, got nothing)");
    mustRun("move('a', 1) move(nil, 1)");
}

TEST_F(Arguments, TheSelfTableOfAMethodIsNotCounted) {
    isMethod = true;
    int value = 0;
    read = [&](Processor const& arguments) { arguments.getArgAsInt("value", value); };
    mustRun("self:move(4)");
    EXPECT_EQ(value, 4);
    mustRun("self:move()");
    EXPECT_EQ(value, 4);
    mustFail("self:move('x')", "bad argument #1 'value' to 'move' (integer expected, got string)");
}

TEST_F(Arguments, AMethodMayBeCalledWithoutAnything) {
    isMethod = true;
    mustRun("move()");
}

TEST_F(Arguments, MoreThanWereAddedArePassedOver) {
    int value = 0;
    read = [&](Processor const& arguments) { arguments.getArgAsInt("value", value); };
    mustRun("move(1, 2, {}, print)");
    EXPECT_EQ(value, 1);
}

TEST_F(Arguments, OneThatWasNotAddedIsAnError) {
    read = [](Processor const& arguments) {
        int value = 0;
        arguments.getArgAsInt("valeu", value);
    };
    mustFail("move(1)", "'move' has no argument 'valeu'");
}

TEST_F(Arguments, BeforeTheyAreProcessedNothingIsGiven) {
    Processor arguments;
    arguments.addRequired("value");
    int value = 3;
    EXPECT_FALSE(arguments.getArgAsInt("value", value));
    EXPECT_FALSE(arguments.hasArg("value"));
    EXPECT_EQ(value, 3);
}

TEST_F(Arguments, AreForgottenByTheNextCall) {
    Processor arguments;
    arguments.addOptional("value");
    owner->PushInteger(1);
    arguments.process(owner.Get(), false);
    EXPECT_TRUE(arguments.hasArg("value"));
    owner->Pop();
    arguments.process(owner.Get(), false);
    EXPECT_FALSE(arguments.hasArg("value"));
}

TEST_F(Arguments, AFunctionWithoutANameIsToldAsSuch) {
    read = [](Processor const& arguments) {
        bool value = false;
        arguments.getArgAsBool("value", value);
    };
    mustRun("ok, message = pcall(move, {})");
    EXPECT_EQ(global("message").ToString(), L"bad argument #1 'value' to '?' (boolean expected, got table)");
}

// ---- by name ----

struct NamedArguments : Arguments {
    NamedArguments() {
        declare = [](Processor& arguments) {
            arguments.addOptional("path");
            arguments.addOptional("amount");
        };
        read = [this](Processor const& arguments) {
            path.clear(), amount = 0;
            isPathGiven = arguments.hasArg("path");
            arguments.getArgAsInt("amount", amount);
        };
    }
    std::wstring path;
    int amount = 0;
    bool isPathGiven = false;
};

TEST_F(NamedArguments, ComeInOneTableAlone) {
    mustRun("move{amount = 3}");
    EXPECT_EQ(amount, 3);
    EXPECT_FALSE(isPathGiven);
    mustRun("move{path = 'a', amount = 4}");
    EXPECT_EQ(amount, 4);
    EXPECT_TRUE(isPathGiven);
}

TEST_F(NamedArguments, ComeAfterTheSelfTable) {
    isMethod = true;
    mustRun("self:move{amount = 5}");
    EXPECT_EQ(amount, 5);
}

TEST_F(NamedArguments, OfAWrongKindAreToldWithoutAPosition) {
    mustFail("move{amount = true}", "bad argument 'amount' to 'move' (integer expected, got boolean)");
}

TEST_F(NamedArguments, AreNoneIfOneOfThemIsUnknown) {
    for (char const* text : {"move{amount = 3, other = 1}", "move{amount = 3, 1}", "move{}", "move{1, 2}",
                             "move({amount = 3}, nil)", "move({amount = 3}, 6)", "move{[true] = 1}"}) {
        mustRun(text);
        EXPECT_TRUE(isPathGiven) << text << ": the table is the first argument";
        EXPECT_NE(amount, 3) << text;
    }
}

// ---- kinds ----

TEST_F(Arguments, ABooleanIsOne) {
    EXPECT_TRUE(valueOf("true", false, asBool));
    EXPECT_FALSE(valueOf("false", true, asBool));
    for (auto [text, kind] : {std::pair("1", "number 1"), {"'true'", "string"}, {"{}", "table"}, {"print", "function"}})
        mustFail(std::string("move(") + text + ")",
                 std::string("bad argument #1 'value' to 'move' (boolean expected, got ") + kind + ")");
}

struct Integers : Arguments {
    Integers() {
        read = [this](Processor const& arguments) { arguments.getArgAsInt("value", value); };
    }
    int value = 9;
};

TEST_F(Integers, AreWholeNumbersInRange) {
    for (auto [text, number] : {std::pair("0", 0),
                                {"-3", -3},
                                {"2.0", 2},
                                {"2147483647", 2147483647},
                                {"-2147483648", -2147483647 - 1},
                                {"-2147483648.0", -2147483647 - 1}})
        EXPECT_EQ(valueOf(text, 9, asInt), number) << text;
}

TEST_F(Integers, ThatDoNotFitAreRefused) {
    for (auto [text, told] : {std::pair("2147483648", "2147483648"),
                              {"-2147483649", "-2147483649"},
                              {"1 << 62", "4611686018427387904"},
                              {"math.mininteger", "-9223372036854775808"},
                              {"1e300", "1e+300"},
                              {"-1e300", "-1e+300"},
                              {"0.5", "0.5"},
                              {"2147483647.5", "2147483647.5"},
                              {"math.huge", "inf"},
                              {"-math.huge", "-inf"}}) {
        mustFail(std::string("move(") + text + ")",
                 std::string("bad argument #1 'value' to 'move' (integer expected, got number ") + told + ")");
        EXPECT_EQ(value, 9) << text;
    }
    EXPECT_EQ(run("move(0/0)"), LUA_ERRRUN);
    EXPECT_THAT(error, HasSubstr("nan"));
    EXPECT_EQ(value, 9);
}

TEST_F(Integers, AreNotReadFromTexts) {
    mustFail("move('5')", "bad argument #1 'value' to 'move' (integer expected, got string)");
    mustFail("move(true)", "bad argument #1 'value' to 'move' (integer expected, got boolean)");
}

TEST_F(Arguments, ANumberIsOfEitherKind) {
    EXPECT_EQ(valueOf("1.5", 0.f, asFloat), 1.5f);
    EXPECT_EQ(valueOf("3", 0.f, asFloat), 3.f);
    EXPECT_EQ(valueOf("0.1", 0.0, asDouble), 0.1);
    EXPECT_EQ(valueOf("1e300", 0.0, asDouble), 1e300);
    EXPECT_EQ(valueOf("math.maxinteger", 0.0, asDouble), 9223372036854775808.0);
    EXPECT_EQ(valueOf("-math.huge", 0.f, asFloat), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(valueOf("0/0", 0.f, asFloat)));
    EXPECT_EQ(valueOf("1e-300", 1.f, asFloat), 0.f);
}

TEST_F(Arguments, ANumberTooLargeForAFloatIsRefused) {
    read = [](Processor const& arguments) {
        float value = 0;
        arguments.getArgAsFloat("value", value);
    };
    mustFail("move(1e300)",
             "bad argument #1 'value' to 'move' (number of single precision expected, got number 1e+300)");
    mustFail("move('1')", "bad argument #1 'value' to 'move' (number of single precision expected, got string)");
}

TEST_F(Arguments, ATextMayBeANumber) {
    EXPECT_EQ(valueOf("'\\u{20AC}\\0x'", std::wstring(), asString), std::wstring(L"\u20AC\0x", 3));
    EXPECT_EQ(valueOf("''", std::wstring(L"before"), asString), L"");
    EXPECT_EQ(valueOf("5", std::wstring(), asString), L"5");
    EXPECT_EQ(valueOf("0.1", std::wstring(), asString), L"0.1");
    mustFail("move(true)", "bad argument #1 'value' to 'move' (string expected, got boolean)");
}

TEST_F(Arguments, AListOfNumbers) {
    using Floats = std::vector<float>;
    EXPECT_THAT(valueOf("{1, 2.5, -3}", Floats{9}, asFloats), ElementsAre(1, 2.5, -3));
    EXPECT_THAT(valueOf("{}", Floats{9}, asFloats), ElementsAre());
    EXPECT_THAT(valueOf("{1, nil, 3}", Floats{9}, asFloats), ElementsAre(1));
    EXPECT_THAT(valueOf("{1, 2, x = 'other'}", Floats{9}, asFloats), ElementsAre(1, 2));
    EXPECT_THAT(valueOf("nil", Floats{9}, asFloats), ElementsAre(9));
    mustFail("move{1, 'two'}",
             "bad argument #1 'value' to 'move' (list of numbers expected, got string at position 2)");
    mustFail("move(1)", "bad argument #1 'value' to 'move' (list of numbers expected, got number 1)");
    mustFail("move(print)", "bad argument #1 'value' to 'move' (list of numbers expected, got function)");
}

TEST_F(Arguments, AListOfTexts) {
    using Texts = std::vector<std::wstring>;
    EXPECT_THAT(valueOf("{'a', 'b', 3}", Texts{L"before"}, asStrings), ElementsAre(L"a", L"b", L"3"));
    mustFail("move{'a', {}}", "bad argument #1 'value' to 'move' (list of strings expected, got table at position 2)");
    mustFail("move('a')", "bad argument #1 'value' to 'move' (list of strings expected, got string)");
}

TEST_F(Arguments, AListThatFailsLeavesTheValue) {
    std::vector<float> list{9};
    read = [&](Processor const& arguments) { arguments.getArgAsFloatList("value", list); };
    EXPECT_EQ(run("move{1, true}"), LUA_ERRRUN);
    EXPECT_THAT(list, ElementsAre(9));
}

TEST_F(Arguments, ATableThatPretendsToBeLongIsReadAsItIs) {
    EXPECT_THAT(valueOf("setmetatable({1}, {__len = function() return 1 << 62 end, __index = function() return 0 end})",
                        std::vector<float>{}, asFloats),
                ElementsAre(1));
}

TEST_F(Arguments, AreCopiesOfWhatTheScriptGave) {
    std::vector<std::wstring> list;
    read = [&](Processor const& arguments) {
        mustRun("list[1] = 'changed' collectgarbage()");
        arguments.getArgAsStringList("value", list);
    };
    mustRun("list = {'given'} move(list)");
    EXPECT_THAT(list, ElementsAre(L"given"));
}

TEST_F(Arguments, AreReadInACoroutineToo) {
    int value = 0;
    read = [&](Processor const& arguments) { arguments.getArgAsInt("value", value); };
    mustRun("coroutine.wrap(function() move(6) end)()");
    EXPECT_EQ(value, 6);
    mustRun("ok, message = coroutine.resume(coroutine.create(function() move('x') end))");
    EXPECT_EQ(global("message").ToString(),
              L"chunk:1: bad argument #1 'value' to 'move' (integer expected, got string)");
}

}  // namespace
}  // namespace wxUtils
