// Commands from the command line: what a list does, what is told of it, and what is written.
#include "tests/hosts/tavo/host.h"

#include <utility>

using namespace hosttest;

namespace {

constexpr int failed = 1, wrongCall = 2, badInput = 3;

class Do : public HostTest {
protected:
    Do() { result("import walk.bvh -o walk.tavo"); }

    // "0.5": of one object at the start.
    std::string value(std::string const& file, std::string const& object, std::string const& attribute) const {
        std::string const table =
            result("sample " + file + " --objects '" + object + "' --attribute " + attribute + " --to 0");
        std::size_t const line = table.find('\n') + 1, end = table.find('\n', line);
        return table.substr(table.rfind(',', end) + 1, end - table.rfind(',', end) - 1);
    }
    bool holds(std::string const& file, std::string const& line) const {
        return has(result("info " + file), "\n  " + line);
    }
    // The failed call leaves these two as they were.
    void leavesFiles(int code, std::string const& arguments) const {
        write(folder / "out.tavo", "precious");
        result("do walk.tavo CreateJoint TranslationX=3 --settings mine.xml");
        std::string const settings = text("mine.xml");
        failure(code, "do walk.tavo " + arguments + " -o out.tavo --settings mine.xml");
        EXPECT_EQ(text("out.tavo"), "precious") << arguments;
        EXPECT_EQ(text("mine.xml"), settings) << arguments;
    }
};

}  // namespace

// ---- what a list does ----

TEST_F(Do, RunsTheCommandsInTheirOrderAndTellsStepsAndResults) {
    EXPECT_EQ(result("do walk.tavo -o out.tavo CreateJoint TranslationX=0.5 -- CreateJoint -- SelectAll -- SetKey"),
              "CreateJoint: 1 step\n  Scene|character|kinematics|joint  (Joint)\n"
              "CreateJoint: 1 step\n  Scene|character|kinematics|joint|joint  (Joint)\n"
              "SelectAll: 1 step\nSetKey: 1 step\nwrote out.tavo\n");
    EXPECT_TRUE(holds("out.tavo",
                      "character  (Character)\n    kinematics  (KinematicsCharacter)\n      joint\n        joint\n"));
    EXPECT_EQ(value("out.tavo", "Scene|character|kinematics|joint", "TranslationX"), "0.5");
}

TEST_F(Do, AValueIsForOneRunOfItsCommand) {
    result("do walk.tavo -o out.tavo CreateJoint TranslationX=0.5 TranslationY=1 -- CreateJoint");
    EXPECT_EQ(value("out.tavo", "Scene|character|kinematics|joint|joint", "TranslationX"), "0.2");
    EXPECT_EQ(value("out.tavo", "Scene|character|kinematics|joint|joint", "TranslationY"), "0");
}

TEST_F(Do, TheLaterOfTwoValuesOfAParameterCounts) {
    result("do walk.tavo -o out.tavo CreateJoint TranslationX=0.5 TranslationX=0.7 -- CreateJoint");
    EXPECT_EQ(value("out.tavo", "Scene|character|kinematics|joint", "TranslationX"), "0.7");
    EXPECT_EQ(value("out.tavo", "Scene|character|kinematics|joint|joint", "TranslationX"), "0.2");
}

TEST_F(Do, ValuesAreOfEveryKind) {
    result("do walk.tavo -o out.tavo CreateJoint Colour=1,0,0.5,1 BoneStyle=solid Visible=FALSE Colour.Green=0.25");
    std::string const table = result("sample out.tavo --objects joint --attribute Colour --to 0");
    EXPECT_TRUE(has(table, "Scene|character|kinematics|joint,1,0.25,0.5,1\n")) << table;
    EXPECT_EQ(value("out.tavo", "joint", "BoneStyle"), "1");
    EXPECT_EQ(value("out.tavo", "joint", "Visible"), "0");
    result("do walk.tavo -o out.tavo SelectAll -- CreateShape RadialSegments=5");
    EXPECT_TRUE(has(text("out.tavo"), "\"RadialSegments\">5<"));
}

TEST_F(Do, DisplayMeansTheUnitsOfTheScene) {
    result("do walk.tavo -o out.tavo CreateJoint RotationX=90 --display");
    EXPECT_EQ(value("out.tavo", "joint", "RotationX"), "1.5707963");
    result("set walk.tavo SceneSettings.LinearUnits=Millimetres -o millimetres.tavo");
    result("do millimetres.tavo -o out.tavo --display CreateJoint BoneRadius=20");
    EXPECT_EQ(value("out.tavo", "joint", "BoneRadius"), "0.02");
}

TEST_F(Do, TakesClipsAndWritesThem) {
    result("do walk.bvh --units cm CreateJoint -o out.bvh");
    EXPECT_TRUE(has(text("out.bvh"), "joint"));
}

// ---- the selection ----

TEST_F(Do, SelectsWhatMatchesBeforeTheFirstCommand) {
    EXPECT_EQ(result("do walk.tavo --select 'Left*' Delete -- Undo -o out.tavo"),
              "selected 12 objects\nDelete: 1 step\nUndo: 1 step taken back\nwrote out.tavo\n");
    EXPECT_TRUE(holds("out.tavo", "  LeftUpLeg  3 curves\n      LeftLeg  3 curves"));
    result("do walk.tavo --select 'Left*' Delete -o out.tavo");
    EXPECT_FALSE(has(result("info out.tavo"), "Left"));
}

TEST_F(Do, SelectsInTheOrderOfThePatterns) {
    result("do walk.tavo --select 'Scene|Hips|Spine' --select RightToe Parent -o out.tavo");
    EXPECT_TRUE(has(result("info out.tavo --json"), "Scene|Hips|RightUpLeg|RightLeg|RightFoot|RightToe|Spine|Spine1"));
    std::string const told = result("do walk.tavo --select RightToe --select 'Scene|Hips|Spine' Unparent --json");
    EXPECT_TRUE(has(told, R"("selected":["Scene|Hips|RightUpLeg|RightLeg|RightFoot|RightToe","Scene|Hips|Spine"])"));
}

TEST_F(Do, WithoutAPatternTheSelectionOfTheFileStands) {
    result("do walk.tavo --select LeftToe --select RightToe ClearSelection -- Undo -o selected.tavo");
    result("do selected.tavo Delete -o out.tavo");
    EXPECT_FALSE(has(result("info out.tavo"), "Toe"));
    result("do selected.tavo --select Head Delete -o out.tavo");
    EXPECT_TRUE(has(result("info out.tavo"), "Toe"));
    EXPECT_FALSE(has(result("info out.tavo"), "Head"));
}

TEST_F(Do, GroupsWhatIsSelected) {
    EXPECT_EQ(result("do walk.tavo --select LeftToe --select Head Group -o out.tavo"),
              "selected 2 objects\nGroup: 1 step\nwrote out.tavo\n");
    EXPECT_TRUE(holds("out.tavo", "group  (Transform)\n    LeftToe  3 curves\n    Head  3 curves\n"));
}

// ---- history and time ----

TEST_F(Do, UndoAndRedoMoveInTheHistoryOfTheList) {
    EXPECT_EQ(
        result("do walk.tavo CreateJoint -- Undo -- Undo -- Redo -- Redo -o out.tavo"),
        "CreateJoint: 1 step\n  Scene|character|kinematics|joint  (Joint)\nUndo: 1 step taken back\nUndo: no step\n"
        "Redo: 1 step\nRedo: no step\nwrote out.tavo\n");
    EXPECT_TRUE(holds("out.tavo", "    joint"));
}

TEST_F(Do, ReadingAndSelectingAreNoSteps) {
    for (char const* file : {"walk.bvh", "walk.tavo"})
        EXPECT_EQ(result(std::string("do ") + file + " --select Head Undo -- Delete -o out.tavo"),
                  "selected 1 object\nUndo: no step\nDelete: 1 step\nwrote out.tavo\n");
}

TEST_F(Do, ANewTimeIsAStepOfItsOwn) {
    EXPECT_EQ(result("do walk.tavo --select Head GoToNextFrame -- Delete -- Undo -o out.tavo"),
              "selected 1 object\nGoToNextFrame: 1 step\nDelete: 1 step\nUndo: 1 step taken back\nwrote out.tavo\n");
    EXPECT_TRUE(has(text("out.tavo"), "\"Time\">0.0333")) << "the time is taken back with the deletion";
}

TEST_F(Do, KeysAtTheTimeThatTheListWentTo) {
    result("do walk.tavo CreateJoint -- ActivateMoveTool -- SetKey -- GoToLastFrame -- SetKey -o out.tavo");
    std::string const before = result("info walk.tavo --json"), after = result("info out.tavo --json");
    EXPECT_TRUE(has(before, R"("curves":93,"keys":11160)"));
    EXPECT_TRUE(has(after, R"("curves":96,"keys":11166)")) << after;
}

TEST_F(Do, PlaybackIsStoppedAtTheEndOfTheList) {
    EXPECT_EQ(result("do walk.tavo Play -- CreateJoint -o out.tavo"),
              "Play: no step\nCreateJoint: no step\n  Scene|character|kinematics|joint  (Joint)\nwrote out.tavo\n");
    EXPECT_TRUE(holds("out.tavo", "    joint"));
    EXPECT_EQ(result("do walk.tavo Play -- CreateJoint -- Stop -- Undo"),
              "Play: no step\nCreateJoint: no step\n  Scene|character|kinematics|joint  (Joint)\nStop: 1 step\nUndo: 1 "
              "step taken back\n");
}

// ---- the report ----

TEST_F(Do, TheReportForMachinesIsJson) {
    EXPECT_EQ(
        result("do walk.tavo --json CreateJoint -- Undo -o out.tavo --settings mine.xml"),
        R"({"file":"walk.tavo","selected":[],"commands":[)"
        R"({"name":"CreateJoint","steps":1,"results":[{"path":"Scene|character|kinematics|joint","type":"Joint"}]},)"
        R"({"name":"Undo","steps":-1,"results":[]}],"dryRun":false,"wrote":["mine.xml","out.tavo"]})"
        "\n");
    EXPECT_TRUE(has(result("do walk.tavo --json Copy --dry-run -o x.tavo"), R"("dryRun":true,"wrote":[])"));
}

TEST_F(Do, AResultIsToldAlsoWhenALaterCommandDeletesIt) {
    EXPECT_TRUE(has(result("do walk.tavo CreateJoint -- Delete"),
                    "  Scene|character|kinematics|joint  (Joint)\nDelete: 1 step\n"));
}

TEST_F(Do, WithoutAnOutputNothingIsWritten) {
    std::ptrdiff_t const before = files();
    std::string const scene = text("walk.tavo");
    EXPECT_EQ(result("do walk.tavo --select Head Delete"), "selected 1 object\nDelete: 1 step\n");
    EXPECT_EQ(files(), before);
    EXPECT_EQ(text("walk.tavo"), scene);
}

TEST_F(Do, ADryRunRunsAndReportsAndWritesNothing) {
    std::ptrdiff_t const before = files();
    EXPECT_EQ(result("do walk.tavo CreateJoint --dry-run -o out.tavo --settings mine.xml"),
              "CreateJoint: 1 step\n  Scene|character|kinematics|joint  (Joint)\na dry run: nothing written\n");
    EXPECT_EQ(files(), before);
    failure(failed, "do walk.tavo SelectAll -- Delete --dry-run");
}

TEST_F(Do, ACommandThatOnlyWarnsIsNoFailure) {
    Outcome const outcome = tavo("do walk.tavo ImportFile -o out.tavo");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(has(outcome.err, "warning: Import File: this host has no file dialog")) << outcome.err;
    EXPECT_TRUE(exists("out.tavo"));
}

TEST_F(Do, ParentOnItsOrdinaryRouteIsNoFailure) {
    EXPECT_EQ(result("do walk.tavo --select Head --select Hips Parent"), "selected 2 objects\nParent: 1 step\n");
    EXPECT_EQ(result("do walk.tavo --select Head Parent"), "selected 1 object\nParent: 1 step\n");
}

// ---- settings ----

TEST_F(Do, SettingsRememberParametersFromOneRunToTheNext) {
    EXPECT_TRUE(
        has(result("do walk.tavo CreateJoint TranslationX=0.5 Colour.Red=1 --settings mine.xml"), "wrote mine.xml\n"));
    result("do walk.tavo CreateJoint --settings mine.xml -o out.tavo");
    EXPECT_EQ(value("out.tavo", "joint", "TranslationX"), "0.5");
    EXPECT_EQ(value("out.tavo", "joint", "Colour.Red"), "1");
    result("do walk.tavo CreateJoint -o out.tavo");
    EXPECT_EQ(value("out.tavo", "joint", "TranslationX"), "0.2");
}

TEST_F(Do, AListDoesTheSameWithSettingsAsWithout) {
    std::string const list = "CreateJoint TranslationX=0.5 -- CreateJoint -- CreateJoint TranslationX=0.7 ";
    result("do walk.tavo " + list + "-o plain.tavo");
    result("do walk.tavo " + list + "-o kept.tavo --settings mine.xml");
    EXPECT_EQ(text("plain.tavo"), text("kept.tavo"));
    result("do walk.tavo CreateJoint --settings mine.xml -o out.tavo");
    EXPECT_EQ(value("out.tavo", "joint", "TranslationX"), "0.7");
}

TEST_F(Do, ABrokenSettingsFileIsBadInputAndStays) {
    write(folder / "mine.xml", "<tavo");
    std::string const told = failure(badInput, "do walk.tavo CreateJoint --settings mine.xml -o out.tavo");
    EXPECT_TRUE(has(told, "Unable to load the settings from \"mine.xml\"")) << told;
    EXPECT_TRUE(has(told, "line 1, column ")) << told;
    EXPECT_EQ(text("mine.xml"), "<tavo");
}

TEST_F(Do, SettingsThatHoldSomethingElseUnderTheNameAreBadInput) {
    write(folder / "mine.xml", R"(<tavo format="1" name="Settings" ids="100"><node id="0" type="SceneSettings" )"
                               R"(name="CreateJoint"/></tavo>)");
    EXPECT_TRUE(has(failure(badInput, "do walk.tavo CreateJoint --settings mine.xml"), "CreateJoint is not that"));
    result("do walk.tavo SelectAll --settings mine.xml");
}

TEST_F(Do, SettingsAreAFileOfTheirOwn) {
    std::string const scene = text("walk.tavo");
    failure(wrongCall, "do walk.tavo Copy --settings ./walk.tavo");
    failure(wrongCall, "do walk.tavo Copy --settings mine.xml -o mine.xml");
    EXPECT_EQ(text("walk.tavo"), scene);
}

// ---- what is wrong is told before the first command runs ----

TEST_F(Do, WhatIsWrongInALineIsToldWithWhatWouldBeRight) {
    std::pair<char const*, char const*> const cases[] = {
        {"Delte", "there is no command \"Delte\"; did you mean Delete?"},
        {"CreateJoint -- selectall", "there is no command \"selectall\"; did you mean SelectAll?"},
        {"TranslationX=1", "there is no command \"TranslationX=1\"; `tavo commands` lists them"},
        {"CreateJoint TranslatonX=1", "CreateJoint has no parameter \"TranslatonX\"; did you mean TranslationX"},
        {"CreateJoint Colour.Rd=1", "CreateJoint has no parameter \"Colour.Rd\"; did you mean Colour.Red"},
        {"CreateJoint Name=x", "CreateJoint has no parameter \"Name\"; `tavo commands CreateJoint` lists them"},
        {"Delete Hard=1", "Delete has no parameters"},
        {"Delete Undo", "\"Undo\" is not PARAM=VALUE; the next command comes after --"},
        {"CreateJoint TranslationX=far", "CreateJoint.TranslationX takes a number, not \"far\""},
        {"CreateJoint TranslationX=inf", "CreateJoint.TranslationX takes a number, not \"inf\""},
        {"CreateJoint TranslationX=1e300", "CreateJoint.TranslationX takes a number, not \"1e300\""},
        {"CreateJoint TranslationX=", "CreateJoint.TranslationX takes a number, not \"\""},
        {"CreateShape RadialSegments=2.5", "CreateShape.RadialSegments takes a whole number, not \"2.5\""},
        {"CreateJoint Visible=maybe", "CreateJoint.Visible takes true or false, not \"maybe\""},
        {"CreateJoint BoneStyle=Sold", "CreateJoint.BoneStyle has no value \"Sold\"; did you mean Solid?"},
        {"CreateJoint BoneStyle=3", "has no value \"3\"; it is one of Wireframe, Solid, Hidden"},
        {"CreateJoint Colour=1,0", "CreateJoint.Colour takes 4 values with commas, not \"1,0\""},
        {"CreateJoint Colour=1,0,x,1", "CreateJoint.Colour.Blue takes a number, not \"x\""},
        {"CreateJoint --", "a command is missing"},
        {"CreateJoint -- -- Undo", "a command is missing"},
        {"-- CreateJoint", "a command is missing"},
        {"--select Hipz Delete", "no object matches \"Hipz\"; did you mean Hips?"},
        {"--select Head --select 'Lefty*' Delete", "no object matches \"Lefty*\""},
        {"--select MoveTool Delete", "nothing that matches \"MoveTool\" can be selected"},
        {"Delete --slect Head", "there is no option --slect; did you mean --select?"},
        {"--select", "--select"},
        {"", "COMMAND is required"},
    };
    for (auto const& [line, told] : cases) {
        std::string const call = std::string("do walk.tavo -o x.tavo --settings x.xml ") + line;
        std::string const error = failure(wrongCall, call);
        EXPECT_TRUE(has(error, told)) << line << "\n" << error;
    }
    EXPECT_TRUE(has(failure(wrongCall, "do"), "FILE is required"));
    EXPECT_TRUE(has(failure(wrongCall, "do -- Delete"), "FILE comes before the first command"));
}

TEST_F(Do, TheWholeLineIsCheckedBeforeTheFirstCommandRuns) {
    // The first command would fail: what comes later is told instead.
    for (char const* wrong : {"Delte", "CreateJoint Size=1", "CreateJoint TranslationX=far"})
        EXPECT_FALSE(has(failure(wrongCall, std::string("do walk.tavo --select Scene Delete -- ") + wrong), "failed"));
}

TEST_F(Do, AFileThatCannotBeReadIsBadInput) {
    EXPECT_TRUE(has(failure(badInput, "do missing.tavo Delete -o x.tavo"), "missing.tavo"));
    write(folder / "cut.tavo", text("walk.tavo").substr(0, 5000));
    EXPECT_TRUE(has(failure(badInput, "do cut.tavo Delete -o x.tavo --settings x.xml"), "line "));
}

// ---- all or nothing ----

TEST_F(Do, ACommandThatFailsTakesTheWholeListBack) {
    std::string const told = failure(failed, "do walk.tavo CreateJoint -- SelectAll -- Delete -- Undo -o out.tavo");
    EXPECT_TRUE(has(told, "Delete (command 3 of 4) failed: The object 'Scene' does not support deletion")) << told;
    EXPECT_TRUE(has(failure(failed, "do walk.tavo --select Scene Delete"), "error: Delete failed: The object"));
}

TEST_F(Do, AFailureLeavesTheOutputAndTheSettingsUntouched) {
    leavesFiles(failed, "CreateJoint TranslationX=9 -- SelectAll -- Delete");
    leavesFiles(wrongCall, "CreateJoint TranslationX=9 -- Delte");
    leavesFiles(wrongCall, "CreateJoint TranslationX=9 --select Nobody");
}

TEST_F(Do, OutputAndSettingsAreWrittenBothOrNot) {
    failure(failed, "do walk.tavo CreateJoint TranslationX=9 --settings new.xml -o missing/out.tavo");
    result("do walk.tavo CreateJoint TranslationX=3 --settings mine.xml");
    std::string const settings = text("mine.xml");
    failure(failed, "do walk.tavo CreateJoint TranslationX=9 --settings mine.xml -o missing/out.tavo");
    EXPECT_EQ(text("mine.xml"), settings);
    std::string const told = failure(failed, "do walk.tavo CreateJoint --settings missing/mine.xml -o out.tavo");
    EXPECT_TRUE(has(told, "Unable to save the settings to \"missing/mine.xml\"")) << told;
}

TEST_F(Do, TheSceneMayBeWrittenOverItself) {
    result("do walk.tavo --select Head Delete -o walk.tavo");
    EXPECT_FALSE(has(result("info walk.tavo"), "Head"));
}
