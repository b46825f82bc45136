// What the host tells of the commands, and that the reference page says the same.
#include "tests/hosts/tavo/host.h"

using namespace hosttest;

namespace {

class Commands : public HostTest {};

}  // namespace

TEST_F(Commands, EachIsALineWithItsHelp) {
    std::string const told = result("commands");
    EXPECT_TRUE(
        has(told, "\nDelete                                   Deletes the selected objects and all below them.\n"));
    EXPECT_TRUE(has(told, "\nUndo "));
    EXPECT_FALSE(has(told, "TranslationX"));
    EXPECT_GE(std::count(told.begin(), told.end(), '\n'), 40);
}

TEST_F(Commands, OneIsToldInFull) {
    EXPECT_EQ(result("commands AlignAxis"),
              "AlignAxis\n"
              "  Points an axis of each selected transform at its children, which stay.\n"
              "  A run is one step of the history.\n"
              "parameters, with their defaults\n"
              "  Axis       a word  XAxis              The axis that is turned. One of XAxis, YAxis, ZAxis.\n"
              "  Direction  a word  AlignToFirstChild  What it is to point at. One of AlignToFirstChild, "
              "AlignToChildAverage.\n");
    EXPECT_EQ(result("commands Undo"), "Undo\n  Takes the last step back.\n"
                                       "  Acts directly: a run opens no step of the history.\nno parameters\n");
}

TEST_F(Commands, DefaultsAreThoseOfTheRowsWithTheirUnits) {
    std::string const told = result("commands CreateJoint");
    for (char const* line : {"  TranslationX           a number              0.2 m          Where",
                             "  TranslationY           a number              0 m            Where",
                             "  RotationX              a number              0 rad          How",
                             "  Visible                true or false         true           Drawn",
                             "  Colour                 4 values with commas  0.3,0.3,0.7,1  Red",
                             "  Colour.Blue            a number              0.7\n",
                             "  BoneStyle              a word                Wireframe      How"})
        EXPECT_TRUE(has(told, line)) << line << "\n" << told;
    EXPECT_TRUE(has(result("commands CreateShape"), "  RadialSegments  a whole number        16 "));
}

TEST_F(Commands, ForMachinesIsJson) {
    std::string const all = result("commands --json"), one = result("commands CreateJoint --json");
    EXPECT_EQ(all.front(), '[');
    EXPECT_TRUE(has(all, R"({"name":"Undo","help":"Takes the last step back.","undoable":false,"parameters":[]})"));
    EXPECT_TRUE(has(all, one.substr(0, one.size() - 1)));
    for (
        char const* part :
        {R"({"name":"CreateJoint","help":"Creates a joint)", R"("undoable":true)",
         R"({"name":"TranslationX","kind":"float","default":0.2,"unit":"m","help":"Where)",
         R"({"name":"Visible","kind":"boolean","default":true,"help":)",
         R"({"name":"BoneStyle","kind":"enumeration","default":"Wireframe","words":["Wireframe","Solid","Hidden"],)",
         R"("kind":"compound","help":"Red, green, blue, alpha.","parts":[{"name":"Red","kind":"float","default":0.3})"})
        EXPECT_TRUE(has(one, part)) << part << "\n" << one;
    EXPECT_TRUE(has(result("commands CreateShape --json"), R"("kind":"integer","default":16)"));
}

TEST_F(Commands, ATypoIsToldWithTheNearestNames) {
    EXPECT_TRUE(
        has(failure(2, "commands CreatJoint"), "there is no command \"CreatJoint\"; did you mean CreateJoint?"));
    EXPECT_TRUE(has(failure(2, "commands undo --json"), "did you mean Undo?"));
    failure(2, "commands Undo Redo");
    failure(2, "commands --json --markdown");
}

// `make readme` writes the page anew.
TEST_F(Commands, TheReferencePageIsWhatTheHostWrites) {
    EXPECT_EQ(textOf(fs::path(TAVO_SOURCE_DIR) / "docs/commands.md"), result("commands --markdown"));
}

TEST_F(Commands, OneIsASectionOfThePage) {
    std::string const section = result("commands FreezeTransform --markdown");
    EXPECT_EQ(section.rfind("## FreezeTransform\n\nMakes the present place", 0), 0u);
    EXPECT_TRUE(has(section, "\n| `FreezeTranslation` | true or false | true | Moves the translation"));
    EXPECT_TRUE(has(result("commands --markdown"), section));
}
