// What is told, and with which code the host ends, when something is wrong; that nothing is written then.
#include "tests/hosts/tavo/host.h"

#include <cctype>

using namespace hosttest;

namespace {

class Failures : public HostTest {};

struct Case {
    char const* call;
    char const* told;
};

constexpr int failed = 1, wrongCall = 2, badInput = 3;

}  // namespace

TEST_F(Failures, TyposAreToldWithTheNearestNames) {
    Case const cases[] = {
        {"imprt walk.bvh -o x", "there is no verb \"imprt\"; did you mean import?"},
        {"import walk.bvh --unts cm -o x", "did you mean --units?"},
        {"import walk.bvh --units cmm -o x", "units are mm, cm, m, in, ft, yd, or auto"},
        {"import walk.bvh --positions replac -o x", "did you mean replace?"},
        {"export walk.bvh --to-units fft -o x", "units are mm, cm, m, in, ft, yd, or auto"},
        {"sample walk.bvh --objects Hipz --attribute Visible", "no object matches \"Hipz\"; did you mean Hips?"},
        {"sample walk.bvh --objects 'Scene|Hips|Spin' --attribute Visible", "did you mean Spine"},
        {"sample walk.bvh --attribute WorldTranslaton", "did you mean WorldTranslation"},
        {"set walk.bvh Hipz.Visible=1 -o x", "did you mean Hips?"},
        {"set walk.bvh Hips.Visble=1 -o x", "Hips has no attribute \"Visble\"; did you mean Visible?"},
        {"set walk.bvh Head.BoneStyle=Sold -o x", "did you mean Solid?"},
        {"plot walk.bvh Hips.TranslationXX -o x", "did you mean TranslationX"},
    };
    for (Case const& c : cases)
        EXPECT_TRUE(has(failure(wrongCall, c.call), c.told)) << c.call << "\n" << tavo(c.call).err;
}

TEST_F(Failures, WrongCallsAreToldAndEndWithTwo) {
    Case const cases[] = {
        {"", "which verb"},
        {"import", "FILE is required"},
        {"import walk.bvh", "--output is required"},
        {"sample walk.bvh", "--attribute is required"},
        {"sample walk.bvh --attribute Name", "holds no numbers"},
        {"sample walk.bvh --attribute Visible --step 0", "--step is a time above 0"},
        {"sample walk.bvh --attribute Visible --step nan", "--step is a time above 0"},
        {"sample walk.bvh --attribute Visible --from 2 --to 1", "there is no time from 2 to 1 s"},
        {"sample walk.bvh --attribute Visible --step 1e-12", "too many moments"},
        {"sample walk.bvh --attribute Visible --step 1e-7", "too large a table"},
        {"sample walk.bvh --attribute Visible --csv --json", "excludes"},
        {"sample walk.bvh --attribute Visible --from soon", "--from"},
        {"play walk.bvh --seconds -1", "--seconds is a time above 0"},
        {"set walk.bvh Hips -o x", "is not OBJECT.ATTRIBUTE=VALUE"},
        {"set walk.bvh Hips=1 -o x", "names no attribute"},
        {"set walk.bvh Hips.RotationX=1 -o x", "Hips.RotationX is driven by"},
        {"set walk.bvh Hips.WorldMatrix=1 -o x", "Hips.WorldMatrix is computed"},
        {"set walk.bvh Head.BoneRadius=big -o x", "Head.BoneRadius takes a number, not \"big\""},
        {"set walk.bvh Head.BoneRadius=nan -o x", "Head.BoneRadius takes a number, not \"nan\""},
        {"set walk.bvh Head.Visible=maybe -o x", "takes true or false"},
        {"set walk.bvh SceneSettings.FrameRate=2.5 -o x", "takes a whole number"},
        {"set walk.bvh SceneSettings.FrameRate=-1 -o x", "takes a whole number from 0 to 1e+06, not \"-1\""},
        {"set walk.bvh Head.BoneStyle=Fluffy -o x", "it is one of Wireframe, Solid, Hidden"},
        {"set walk.bvh Head.Colour=1,0,0 -o x", "Head.Colour takes 4 values with commas, not \"1,0,0\""},
        {"plot walk.bvh Hips.WorldMatrix -o x", "is no number"},
    };
    for (Case const& c : cases)
        EXPECT_TRUE(has(failure(wrongCall, c.call), c.told)) << c.call << "\n" << tavo(c.call).err;
}

TEST_F(Failures, BadFilesAreToldWithThePlaceAndEndWithThree) {
    result("import walk.bvh -o walk.tavo");
    std::string const clip = text("walk.bvh"), scene = text("walk.tavo");
    write(folder / "cut.bvh", clip.substr(0, 3000));
    write(folder / "short.bvh", clip.substr(0, clip.size() - 300));
    write(folder / "cut.tavo", scene.substr(0, scene.size() / 2));
    write(folder / "other.tavo", "<html></html>");
    write(folder / "empty.bvh", "");
    write(folder / "empty.tavo", "");
    write(folder / "empty", "");
    write(folder / "note.txt", "Dear diary");
    Case const cases[] = {
        {"cut.bvh", "line "},
        {"short.bvh", "line "},
        {"cut.tavo", "line "},
        {"other.tavo", "line "},
        {"empty.bvh", "line 1"},
        {"empty.tavo", "line 1"},
        {"empty", "neither"},
        {"note.txt", "neither a motion clip"},
        {"missing.bvh", "No such file"},
        {".", "directory"},
    };
    for (Case const& c : cases) {
        std::string const file = c.call;
        for (std::string const& call :
             {"import " + file + " -o x", "export " + file + " -o x", "info " + file,
              "sample " + file + " --attribute Visible", "play " + file, "set " + file + " Hips.Visible=0 -o x",
              "plot " + file + " Hips.TranslationX -o x"}) {
            std::string const told = failure(badInput, call);
            EXPECT_TRUE(has(told, c.told)) << call << "\n" << told;
            EXPECT_TRUE(has(told, file)) << call << "\n" << told;
        }
    }
}

TEST_F(Failures, AnOutputThatCannotBeWrittenEndsWithOne) {
    fs::create_directory(folder / "folder");
    for (char const* call :
         {"import walk.bvh -o missing/x.tavo", "import walk.bvh -o folder", "export walk.bvh -o missing/x.bvh",
          "export walk.bvh -o folder", "plot walk.bvh Hips.TranslationX -o missing/x.svg",
          "sample walk.bvh --attribute Visible -o missing/x.csv", "set walk.bvh Hips.Visible=0 -o missing/x"})
        failure(failed, call);
}

TEST_F(Failures, AFullDeviceIsNotTakenForSuccess) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full";
    std::string const command =
        "'" TAVO_BINARY_DIR "/bin/tavo' info '" + (folder / "walk.bvh").string() + "' >/dev/full 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), failed);
}

TEST_F(Failures, AnOlderOutputStaysUntouched) {
    write(folder / "old", "precious");
    failure(badInput, "import missing.bvh -o old");
    failure(wrongCall, "set walk.bvh Hips.Visible=0 Hipz.Visible=0 -o old");
    failure(wrongCall, "plot walk.bvh Hips.Translation -o old");
    failure(wrongCall, "sample walk.bvh --attribute Visibl -o old");
    EXPECT_EQ(text("old"), "precious");
}

TEST_F(Failures, ASceneWithoutJointsIsNoClip) {
    write(folder / "root.bvh", "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 0 }\nMOTION\nFrames: 1\nFrame Time: 0.1\n\n");
    EXPECT_TRUE(has(failure(failed, "play root.bvh"), "there is nothing to play"));
}

TEST_F(Failures, HelpBeginsWithExamplesAndEndsWithTheExitCodes) {
    for (char const* verb :
         {"", "import ", "export ", "info ", "sample ", "play ", "set ", "plot ", "commands ", "do "}) {
        std::string const help = result(std::string(verb) + "--help");
        std::size_t const examples = help.find("Examples:\n  tavo "), usage = help.find("Usage: ");
        EXPECT_LT(examples, usage) << verb;
        EXPECT_NE(usage, std::string::npos) << verb;
        EXPECT_TRUE(has(help, "Exit codes: 0 done, 1 failed, 2 wrong call, 3 bad input")) << verb;
    }
}

TEST_F(Failures, HelpOfDoTellsEveryCommand) {
    std::string const help = result("do --help");
    EXPECT_TRUE(has(help, "  AlignAxis  ")) << help;
    EXPECT_TRUE(has(help, "  Undo  ")) << help;
    EXPECT_TRUE(has(help, "Points an axis of each selected transform at its children, which stay.\n")) << help;
}

TEST_F(Failures, VersionIsANumber) {
    std::string const told = result("--version");
    EXPECT_EQ(told.rfind("tavo ", 0), 0u);
    EXPECT_TRUE(std::isdigit(told[5]));
}

TEST_F(Failures, MessagesCarryNoColourInAPipe) { EXPECT_FALSE(has(failure(wrongCall, "imprt"), "\x1b")); }
