#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

// What a class that offers itself to scripts calls.
struct Offering : XScriptBase {
    using XScriptBase::buildXFloatArray, XScriptBase::buildXIntegerArray, XScriptBase::buildXStringArray,
        XScriptBase::runLuaFunction, XScriptBase::runLuaFunctionReturnObject;
};

class ScriptBaseTest : public Scripts {
protected:
    Offering base;
};

TEST_F(ScriptBaseTest, CallsAFunctionOfATableWithTheTable) {
    run("Tools = {count = 0} function Tools:tick() self.count = self.count + 1 end");
    EXPECT_TRUE(base.runLuaFunction(L"Tools", L"tick"));
    EXPECT_EQ("1", eval("return Tools.count"));
}

TEST_F(ScriptBaseTest, TellsOfAFunctionThatIsNotThere) {
    EXPECT_FALSE(base.runLuaFunction(L"Tools", L"tick"));
    EXPECT_EQ(std::vector<std::wstring>{L"Error running command: Tools:tick"}, log.errors());
}

TEST_F(ScriptBaseTest, TellsOfAFunctionThatFails) {
    run("Tools = {tick = function() error('no', 0) end}");
    EXPECT_FALSE(base.runLuaFunction(L"Tools", L"tick"));
    ASSERT_EQ(2u, log.errors().size());
    EXPECT_EQ(0u, log.errors()[0].find(L"Error running script: no"));
    EXPECT_EQ(L"Error running command: Tools:tick", log.errors()[1]);
}

TEST_F(ScriptBaseTest, GivesTheObjectThatAFunctionGives) {
    run("Tools = {} function Tools:make(name, number) "
        "return app.scene():createObject('Joint'):setName(name .. number) end");
    EXPECT_EQ(L"hips7", base.runLuaFunctionReturnObject(L"Tools", L"make", std::wstring(L"hips"), 7).Name());
}

TEST_F(ScriptBaseTest, GivesAnInvalidObjectForAnyOtherResult) {
    run("Tools = {} function Tools:none() end function Tools:forged() return {} end");
    EXPECT_FALSE(base.runLuaFunctionReturnObject(L"Tools", L"none").IsValid());
    EXPECT_FALSE(base.runLuaFunctionReturnObject(L"Tools", L"forged").IsValid());
}

TEST_F(ScriptBaseTest, ListsEndAtTheFirstEntryOfAnotherKind) {
    run("numbers, words = {1, 2, 3.5, 'x', 5}, {'a', 'b', 3}");
    Qelutils::Vector<float> floats;
    base.buildXFloatArray(lua().State()->GetGlobal("numbers"), floats);
    EXPECT_THAT(floats, testing::ElementsAre(1, 2, 3.5F));
    Qelutils::Vector<int> integers;
    base.buildXIntegerArray(lua().State()->GetGlobal("numbers"), integers);
    EXPECT_THAT(integers, testing::ElementsAre(1, 2));
    std::vector<std::wstring> texts;
    base.buildXStringArray(lua().State()->GetGlobal("words"), texts);
    EXPECT_THAT(texts, testing::ElementsAre(L"a", L"b"));
}

}  // namespace
}  // namespace Tavo
