// The console of Lua: sessions from a pipe, and what it knows of words, chunks and values.
#include "hosts/tavo/lua_words.h"
#include "hosts/tavo/script_session.h"
#include "tavo/extension/lua/lua_script.h"
#include "tests/hosts/tavo/piped_host.h"

#include <algorithm>
#include <lua.hpp>

using namespace hosttest;

namespace {

class Console : public PipedHostTest {
protected:
    Outcome session(std::string const& lines, std::string const& arguments = "") const {
        return piped("repl " + arguments, lines);
    }
    // One without a message; gives what it printed.
    std::string good(std::string const& lines, std::string const& arguments = "") const {
        Outcome const outcome = session(lines, arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.err, "") << lines;
        return outcome.out;
    }
};

std::string const addsElbow = "elbow = app.scene():createObject('Joint'):setName('elbow')";
std::string const isThere = "\nelbow:isValid()\n";

// The state of an application with an empty scene, in this process.
class LuaWords : public testing::Test {
protected:
    lua_State* state() { return scripts.state(); }
    void run(std::string const& text) { EXPECT_EQ(scripts.run({text, "=test", {}}).error, ""); }
    std::string value(std::string const& text) {
        std::string out;
        scripts.run({"return " + text, "=test", {}}, [&](lua_State* in, int) { out = host::describe(in, -1); });
        return out;
    }
    std::vector<std::string> words(std::string const& line) {
        std::vector<std::string> out;
        scripts.lua().State()->Protect([&] { out = host::completionsOf(state(), line).words; });
        return out;
    }
    bool offers(std::string const& line, std::string const& word) {
        std::vector<std::string> const all = words(line);
        return std::find(all.begin(), all.end(), word) != all.end();
    }

    host::ScriptSession scripts{host::ScriptOptions{}};
};

using Words = std::vector<std::string>;

}  // namespace

// ---- sessions ----

TEST_F(Console, AnExpressionsValueIsShownAndAStatementsIsNot) {
    EXPECT_EQ(good("1 + 1\n\nx = 3\nx, 'a'\nprint(x)\nnil\n"), "2\n3\t\"a\"\n3\nnil\n");
}
TEST_F(Console, TheSceneIsThatOfTheFile) {
    EXPECT_EQ(good("app.scene():object('Scene|Hips')\n", "walk.bvh"), "Joint Scene|Hips\n");
}
TEST_F(Console, AnUnfinishedChunkGoesOnInTheNextLine) {
    EXPECT_EQ(good("for i = 1, 2 do\nprint(i)\nend\nx = [[a\n:quit\nb]]\n#x\n"), "1\n2\n9\n");
}
TEST_F(Console, AnUnfinishedChunkMayBeForgotten) { EXPECT_EQ(good("for i = 1, 2 do\n:cancel\n7\n"), "7\n"); }
TEST_F(Console, AnUnfinishedChunkAtTheEndIsTold) {
    Outcome const outcome = session("for i = 1, 2 do\n");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "error: input:1: 'end' expected near <eof>\n");
}
TEST_F(Console, EachInputIsAStepOfTheHistory) {
    EXPECT_EQ(good(addsElbow + "\n:undo" + isThere + ":redo" + isThere), "false\ntrue\n");
}
TEST_F(Console, ThereIsNoStepBeforeTheFirstInputAndAfterTheLast) {
    Outcome const outcome = session(":undo\n:redo\n", "walk.bvh");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "error: there is nothing to take back\nerror: there is nothing to do again\n");
}
TEST_F(Console, AFailingInputIsTakenBackAndTold) {
    Outcome const outcome = session(addsElbow + " error('boom')" + isThere);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "false\n");
    EXPECT_TRUE(outcome.err.starts_with("error: input:1: boom\nstack traceback:")) << outcome.err;
    EXPECT_EQ(outcome.err.find("boom"), outcome.err.rfind("boom")) << outcome.err;
}
TEST_F(Console, WhatAFailingInputDidMayStay) {
    EXPECT_EQ(session(addsElbow + " error('boom')" + isThere, "--keep").out, "true\n");
}
TEST_F(Console, TheSceneIsSavedOnDemand) {
    EXPECT_EQ(good(addsElbow + "\n:save out.tavo\n:save out.bvh\n", "walk.bvh"), "wrote out.tavo\nwrote out.bvh\n");
    EXPECT_TRUE(has(result("info out.tavo"), "elbow"));
    EXPECT_TRUE(text("out.bvh").starts_with("HIERARCHY"));
}
TEST_F(Console, WordsThatItDoesNotKnowAreToldAndDoNotEndIt) {
    Outcome const outcome = session(":sing\n:save\n:save nowhere/out.tavo\n8\n");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "8\n");
    EXPECT_TRUE(outcome.err.starts_with("error: there is no :sing; :help tells what there is\nerror: :save FILE\n"));
    EXPECT_TRUE(has(outcome.err, "nowhere/out.tavo"));
}
TEST_F(Console, ItEndsByItsWordOrByTheScript) {
    EXPECT_EQ(good("1\n:quit\n2\n"), "1\n");
    Outcome const outcome = session("1\nos.exit(4)\n2\n");
    EXPECT_EQ(outcome.code, 4);
    EXPECT_EQ(outcome.out, "1\n");
    EXPECT_EQ(outcome.err, "");
}
TEST_F(Console, HelpListsItsWords) {
    for (char const* word : {":undo", ":redo", ":save", ":quit", ":cancel", ":help"})
        EXPECT_TRUE(has(good(":help\n"), word)) << word;
}
TEST_F(Console, LimitsHoldForEachInput) {
    Outcome const outcome = session("while true do end\n1\n", "--max-seconds 0.1");
    EXPECT_EQ(outcome.out, "1\n");
    EXPECT_TRUE(has(outcome.err, "it took more than 0.1 seconds"));
    EXPECT_EQ(session("io\n", "--sandbox").out, "nil\n");
}
TEST_F(Console, VariablesComeFromTheCommandLine) { EXPECT_EQ(good("n + 1\n", "--set n=2"), "3\n"); }
TEST_F(Console, AFileThatCannotBeReadIsBadInput) { failure(3, "repl nowhere.bvh"); }

// ---- chunks ----

TEST_F(LuaWords, AChunkIsIncompleteWhenOnlyItsEndIsMissing) {
    for (char const* chunk : {"for i = 1, 2 do", "f(", "x =", "function f()", "s = [[a", "return {1,"})
        EXPECT_TRUE(host::isIncomplete(state(), chunk)) << chunk;
    for (char const* chunk : {"", "x = 1", "x = = 1", "s = 'a", "end", "f()"})
        EXPECT_FALSE(host::isIncomplete(state(), chunk)) << chunk;
}
TEST_F(LuaWords, AnExpressionHasAValue) {
    for (char const* chunk : {"1", "f()", "a, b", "x -- a remark"})
        EXPECT_TRUE(host::isExpression(state(), chunk)) << chunk;
    for (char const* chunk : {"x = 1", "local y", "1 +"}) EXPECT_FALSE(host::isExpression(state(), chunk)) << chunk;
}

// ---- values ----

TEST_F(LuaWords, ValuesLookAsTheyAreWritten) {
    EXPECT_EQ(value("'a\\n\"b\"'"), "\"a\\n\\\"b\\\"\"");
    EXPECT_EQ(value("1"), "1");
    EXPECT_EQ(value("1.0"), "1.0");
    EXPECT_EQ(value("true"), "true");
    EXPECT_EQ(value("nil"), "nil");
}
TEST_F(LuaWords, TablesShowWhatIsInThem) {
    EXPECT_EQ(value("{}"), "{}");
    EXPECT_EQ(value("{1, 'a', z = {1}, y = {}, b = true, [0] = 2}"),
              "{1, \"a\", [0] = 2, b = true, y = {}, z = {...}}");
    EXPECT_EQ(value("(function() local t = {} for i = 1, 30 do t[i] = i end return t end)()"),
              "{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, ...}");
}
TEST_F(LuaWords, WhatTellsOfItselfIsAsked) {
    EXPECT_EQ(value("setmetatable({}, {__tostring = function() return 'me' end})"), "me");
    EXPECT_EQ(value("app.scene()"), "Scene");
    run("joint = app.scene():createObject('Joint')");
    EXPECT_TRUE(value("joint").starts_with("Joint ")) << value("joint");
    EXPECT_EQ(value("{joint}"), '{' + value("joint") + '}');
}

// ---- completion ----

TEST_F(LuaWords, VariablesAndKeywordsAreOffered) {
    run("foreign = 1");
    EXPECT_EQ(words("x = fo"), (Words{"for", "foreign"}));
    EXPECT_EQ(words("setmeta"), Words{"setmetatable"});
    EXPECT_EQ(words("zzz"), Words{});
}
TEST_F(LuaWords, FieldsAreOfferedAfterADot) {
    run("a = {b = {call = print, count = 1}}");
    EXPECT_EQ(words("a.b.c"), (Words{"call", "count"}));
    EXPECT_EQ(words("print(math.hu"), Words{"huge"});
    EXPECT_EQ(words("app.sce"), Words{"scene"});
    EXPECT_EQ(words("a.nowhere.c"), Words{});
}
TEST_F(LuaWords, FunctionsAloneAreOfferedAfterAColon) {
    run("a = {call = print, count = 1}  s = 'text'");
    EXPECT_EQ(words("a:c"), Words{"call"});
    EXPECT_EQ(words("s:rep"), Words{"rep"});
}
TEST_F(LuaWords, OfAnObjectTheFunctionsAreOfferedAfterAColonAndTheAttributesAfterADot) {
    run("joint = app.scene():createObject('Joint')  scene = app.scene()");
    EXPECT_TRUE(offers("joint:setT", "setTranslation"));
    EXPECT_TRUE(offers("joint:na", "name"));
    EXPECT_FALSE(offers("joint:", "TranslationX"));
    EXPECT_TRUE(offers("joint.Transl", "TranslationX"));
    EXPECT_FALSE(offers("joint.setT", "setTranslation"));
    EXPECT_FALSE(offers("joint:", "useSafeGuards"));
    EXPECT_TRUE(offers("scene:und", "undo"));
    EXPECT_TRUE(offers("joint.TranslationX:na", "name"));
}
TEST_F(LuaWords, AfterACallTheFunctionsOfAllTablesAreOffered) {
    EXPECT_TRUE(offers("app.scene():object('Hips'):setT", "setTranslation"));
    EXPECT_TRUE(offers("list[1]:useS", "useSafeGuards"));
    EXPECT_EQ(words("app.scene().un"), Words{});
}
TEST_F(LuaWords, NothingIsOfferedInTextsAndNumbersAndAfterTwoDots) {
    EXPECT_EQ(words("x = 'pri"), Words{});
    EXPECT_EQ(words("x = \"it's pri"), Words{});
    EXPECT_EQ(words("1.e"), Words{});
    EXPECT_EQ(words("x = 'a'..prin"), Words{"print"});
    EXPECT_EQ(words("a::pri"), Words{});
}
TEST_F(LuaWords, NothingOfAScriptIsCalled) {
    run("t = setmetatable({}, {__index = function() called = true end, __pairs = function() called = true end})");
    EXPECT_EQ(words("t.x"), Words{});
    EXPECT_EQ(words("t.x.y"), Words{});
    EXPECT_EQ(words("t:x"), Words{});
    EXPECT_EQ(value("called"), "nil");
}
TEST_F(LuaWords, TablesThatLookIntoThemselvesHaveAnEnd) {
    run("t = {call = print} t.__index = t setmetatable(t, t)");
    EXPECT_EQ(words("t:"), Words{"call"});
    EXPECT_EQ(words("t.x.y"), Words{});
}
TEST_F(LuaWords, CompletionsTellWhereTheWordBegins) {
    scripts.lua().State()->Protect([&] {
        EXPECT_EQ(host::completionsOf(state(), "x = math.hu").start, 9u);
        EXPECT_EQ(host::completionsOf(state(), "").start, 0u);
    });
}
