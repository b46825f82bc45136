// Scripts from the command line: what they find, what is written, how they end.
#include "tests/hosts/tavo/piped_host.h"

using namespace hosttest;

namespace {

constexpr int failed = 1, wrongCall = 2, badInput = 3;

class Run : public PipedHostTest {
protected:
    // A script on the command line that must end well; gives what it printed.
    std::string code(std::string const& text, std::string const& rest = "") const {
        return result("run -e '" + text + "' " + rest);
    }
    // One that fails, with any number of lines of message; gives them.
    std::string failing(std::string const& text, std::string const& rest = "", int exitCode = failed) const {
        Outcome const outcome = tavo("run -e '" + text + "' " + rest);
        EXPECT_EQ(outcome.code, exitCode) << text << outcome.err;
        return outcome.err;
    }
    bool holds(std::string const& file, std::string const& name) const { return has(result("info " + file), name); }
};

std::string const makesElbow = "app.scene():createObject(\"Joint\"):setName(\"elbow\") ";

std::size_t count(std::string const& text, std::string const& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

}  // namespace

// ---- what it finds ----

TEST_F(Run, AScriptWorksOnTheFileAndItsResultIsWritten) {
    write(folder / "make.lua", "#!/usr/bin/env tavo\n" + makesElbow);
    EXPECT_EQ(result("run make.lua walk.bvh -o out.tavo"), "");
    EXPECT_TRUE(holds("out.tavo", "elbow"));
    EXPECT_TRUE(holds("out.tavo", "Hips"));
}
TEST_F(Run, WithoutAFileItWorksOnANewScene) {
    code(makesElbow, "-o out.tavo");
    EXPECT_TRUE(holds("out.tavo", " 1 Joint\n"));
    EXPECT_FALSE(holds("out.tavo", "Hips"));
}
TEST_F(Run, ANewSceneHasItsSettingsAndATopLikeThatOfAFile) {
    std::string const ask = "local s = app.scene() s:setTime(0.5) "
                            "print(s:frameRate() > 0, s:time(), s:createObject(\"Joint\"):parent():path()) ";
    EXPECT_EQ(code(ask), "true\t0.5\tScene\n");
    EXPECT_EQ(code(ask), code(ask, "walk.bvh"));
}
TEST_F(Run, AClipIsBroughtIntoANewSceneAsTheHostBringsIt) {
    std::string const paths = "for _, joint in ipairs(app.scene():objectsByType(\"Joint\")) do print(joint:path()) end";
    EXPECT_EQ(code("app.command(\"ImportFile\").File:set(\"walk.bvh\") app.scene():run(\"ImportFile\") " + paths),
              code(paths, "walk.bvh"));
}
TEST_F(Run, AClipIsFoundByStepsThroughFolders) {
    fs::create_directory(folder / "inner");
    for (char const* path : {"./walk.bvh", "inner/../walk.bvh", "../FOLDER/walk.bvh"}) {
        std::string file = path;
        if (std::size_t const at = file.find("FOLDER"); at != file.npos)
            file.replace(at, 6, folder.filename().string());
        EXPECT_EQ(code("app.command(\"ImportFile\").File:set(\"" + file +
                       "\") app.scene():run(\"ImportFile\") print(#app.scene():objectsByType(\"Joint\"))"),
                  "30\n")
            << file;
    }
}
TEST_F(Run, AClipIsWrittenWhereTheNameAsksForOne) {
    code("", "walk.bvh -o out.bvh");
    EXPECT_TRUE(text("out.bvh").starts_with("HIERARCHY"));
}
TEST_F(Run, WithoutAnOutputNothingIsWritten) {
    std::ptrdiff_t const before = files();
    code(makesElbow, "walk.bvh");
    EXPECT_EQ(files(), before);
}
TEST_F(Run, StandardInputIsAScriptToo) {
    Outcome const outcome = piped("run - -- 1", "print('read', ...)");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "read\t1\n");
}
TEST_F(Run, WordsAfterTheDashesAreTheScriptsWhateverTheyLookLike) {
    EXPECT_EQ(code("print(arg[0], #arg, arg[1], ...)", "-- -o --keep x"), "-e\t3\t-o\t-o\t--keep\tx\n");
    write(folder / "show.lua", "print(arg[0], select('#', ...))");
    EXPECT_EQ(result("run show.lua walk.bvh"), "show.lua\t0\n");
}
TEST_F(Run, VariablesAreNumbersTruthValuesOrTexts) {
    EXPECT_EQ(code("print(math.type(a), math.type(b), c, d, e, f)",
                   "--set a=3 --set b=1e3 --set c=true --set d=false --set e=x=1 --set f="),
              "integer\tfloat\ttrue\tfalse\tx=1\t\n");
}
TEST_F(Run, TheHistoryBeginsWithTheScript) {
    code("app.scene():undo()", "walk.bvh -o out.tavo");
    EXPECT_TRUE(holds("out.tavo", "Hips"));
}

// ---- how it fails ----

TEST_F(Run, AFailureTellsFileLineAndTracebackOnce) {
    write(folder / "bad.lua", "local function deep()\n  error('boom')\nend\ndeep()\n");
    Outcome const outcome = tavo("run bad.lua walk.bvh -o out.tavo");
    EXPECT_EQ(outcome.code, failed);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.starts_with("error: bad.lua:2: boom\nstack traceback:\n")) << outcome.err;
    EXPECT_TRUE(has(outcome.err, "bad.lua:4: in main chunk")) << outcome.err;
    EXPECT_EQ(count(outcome.err, "boom"), 1u) << outcome.err;
    EXPECT_FALSE(exists("out.tavo"));
}
TEST_F(Run, AFailureLeavesAnOlderFileAsItWas) {
    write(folder / "out.tavo", "precious");
    failing(makesElbow + "error()", "-o out.tavo");
    EXPECT_EQ(text("out.tavo"), "precious");
}
TEST_F(Run, WhatWasDoneBeforeAFailureIsWrittenOnRequest) {
    failing(makesElbow + "error(\"boom\")", "walk.bvh -o out.tavo --keep");
    EXPECT_TRUE(holds("out.tavo", "elbow"));
}
TEST_F(Run, ASyntaxErrorIsTheScriptsFailure) {
    EXPECT_EQ(failing("x = = 1"), "error: (command line):1: unexpected symbol near '='\n");
}
TEST_F(Run, ErrorsThatTheScriptLogsAreToldAndNoFailure) {
    Outcome const outcome = tavo("run -e 'io.stderr:write(\"mine\\n\") app.scene():object(\"nowhere\")'");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(has(outcome.err, "mine\nerror: ")) << outcome.err;
}

// ---- os.exit ----

TEST_F(Run, AScriptMayEndItselfWithACode) {
    EXPECT_EQ(failing("os.exit(5)", "", 5), "");
    EXPECT_EQ(failing("os.exit(false)", "", 1), "");
    EXPECT_EQ(failing("os.exit(257)", "", 1), "");
    EXPECT_EQ(code("print(1) os.exit() print(2)"), "1\n");
    EXPECT_EQ(code("os.exit(true)", "--sandbox"), "");
}
TEST_F(Run, EndedWithNoughtItWritesAndWithAnotherCodeItDoesNot) {
    code(makesElbow + "os.exit(0)", "walk.bvh -o good.tavo");
    EXPECT_TRUE(holds("good.tavo", "elbow"));
    failing(makesElbow + "os.exit(2)", "-o bad.tavo", 2);
    EXPECT_FALSE(exists("bad.tavo"));
    failing(makesElbow + "os.exit(2)", "walk.bvh -o kept.tavo --keep", 2);
    EXPECT_TRUE(holds("kept.tavo", "elbow"));
}
TEST_F(Run, NothingKeepsAScriptGoingThatEndedItself) {
    EXPECT_EQ(failing("pcall(os.exit, 7) print(1) while true do pcall(print, 2) end", "", 7), "");
    EXPECT_EQ(
        failing("coroutine.resume(coroutine.create(function() os.exit(8) end)) print(1) while true do end", "", 8), "");
}
TEST_F(Run, AnExitCodeThatIsNoneIsAnError) { EXPECT_TRUE(has(failing("os.exit({})"), "number expected")); }

// ---- limits ----

TEST_F(Run, AnEndlessLoopIsStopped) {
    EXPECT_TRUE(has(failing("while true do end", "--max-seconds 0.1 -o out.tavo"),
                    "the script was stopped: it took more than 0.1 seconds\nstack traceback"));
    EXPECT_FALSE(exists("out.tavo"));
}
TEST_F(Run, AnEndlessCallOfTheLibraryEndsTheProcess) {
    Outcome const outcome = tavo("run -e 'print(\"said\"); (\"a\"):rep(5000):find((\".-\"):rep(9) .. \"b\")' "
                                 "--max-seconds 0.1 -o out.tavo");
    EXPECT_EQ(outcome.code, failed);
    EXPECT_EQ(outcome.out, "said\n");
    EXPECT_EQ(outcome.err, "error: the script was stopped: it took more than 0.1 seconds\n");
    EXPECT_FALSE(exists("out.tavo"));
}
TEST_F(Run, AScriptWithinItsTimeIsNotDisturbed) { EXPECT_EQ(code("print(1)", "--max-seconds 60"), "1\n"); }
TEST_F(Run, MemoryIsLimited) {
    EXPECT_TRUE(has(failing("local t = {} while true do t[#t + 1] = {} end", "--max-memory 10"), "not enough memory"));
    EXPECT_EQ(code("print(#(\"a\"):rep(1000))", "--max-memory 10"), "1000\n");
}
TEST_F(Run, InTheSandboxThereAreNoFilesAndProcesses) {
    EXPECT_EQ(code("print(io, os.execute, require, dofile)", "--sandbox"), "nil\tnil\tnil\tnil\n");
    EXPECT_EQ(code("print(type(io), type(os.execute))"), "table\tfunction\n");
}

// ---- what scripts can call ----

// `make readme` writes the page anew.
TEST_F(Run, TheReferencePageIsWhatTheHostWrites) {
    EXPECT_EQ(textOf(fs::path(TAVO_SOURCE_DIR) / "docs/lua_reference.md"), result("run --reference"));
}
TEST_F(Run, AnnotationsArePrintedForANewSceneAndForAFile) {
    EXPECT_TRUE(has(result("run --annotations"), "---@meta"));
    EXPECT_TRUE(has(result("run --annotations walk.bvh"), "TranslationX"));
    failure(badInput, "run --annotations nowhere.bvh");
}
TEST_F(Run, OneIsPrintedAndNothingRuns) {
    failure(wrongCall, "run --annotations --reference");
    failure(wrongCall, "run --reference -e x=1");
    failure(wrongCall, "run --annotations -e x=1");
}

// ---- wrong calls and bad input ----

TEST_F(Run, WithoutAScriptItIsAWrongCall) {
    EXPECT_TRUE(has(failure(wrongCall, "run"), "which script?"));
    EXPECT_TRUE(has(failure(wrongCall, "run -e x=1 walk.bvh other.bvh"),
                    "without a script there is one FILE: walk.bvh or other.bvh"));
}
TEST_F(Run, FilesThatCannotBeReadAreBadInput) {
    EXPECT_TRUE(has(failure(badInput, "run nowhere.lua"), "nowhere.lua"));
    EXPECT_TRUE(has(failure(badInput, "run -e x=1 nowhere.bvh"), "nowhere.bvh"));
    failure(badInput, "run . walk.bvh");
}
TEST_F(Run, VariablesThatCannotBeAreWrongCalls) {
    for (char const* wrong : {"a", "1a=2", "=1", "end=1", "a.b=1", "''"})
        failure(wrongCall, std::string("run -e x=1 --set ") + wrong);
    EXPECT_TRUE(has(failure(wrongCall, "run -e x=1 --set app=1"), "there is a \"app\" already"));
}
TEST_F(Run, LimitsAreNumbersAboveNought) {
    for (char const* wrong : {"0", "-1", "nan", "inf", "1e300"}) {
        failure(wrongCall, std::string("run -e x=1 --max-seconds ") + wrong);
        failure(wrongCall, std::string("run -e x=1 --max-memory ") + wrong);
    }
}
TEST_F(Run, AResultThatCannotBeWrittenIsAFailure) {
    EXPECT_TRUE(has(failure(failed, "run -e x=1 -o nowhere/out.tavo"), "nowhere/out.tavo"));
}
