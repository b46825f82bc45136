// The scripts in examples/lua: each as its own second line tells to run it, on what it saved itself, and on another
// figure. What they print is in the folder beside this file.
#include "tests/hosts/tavo/host.h"
#include "tests/hosts/tavo/picture.h"

#include <array>
#include <sstream>

using namespace hosttest;

namespace {

fs::path const source = TAVO_SOURCE_DIR;

struct Example {
    char const *name, *words, *wordsForFigure;  // words: what stands after --
};

constexpr std::array examples = {
    Example{"01_import_and_inspect", "", ""},
    Example{"02_edit_curves", "", ""},
    Example{"03_bend_a_path", "", ""},
    Example{"04_build_ik_rig", "LeftUpLeg LeftFoot", "thigh_l foot_l"},
    Example{"05_retarget", "examples/figure.bvh", "examples/walk.bvh"},
    Example{"06_batch_folder", "examples/*.bvh", "examples/*.bvh"},
    Example{"07_watch_events", "", ""},
    Example{"08_report_csv", "report.csv", "report.csv"},
    Example{"09_write_svg", "drawn.svg", "drawn.svg 1"},
    Example{"10_make_library", "poses.lua", "poses.lua 2"},
};

std::ostream& operator<<(std::ostream& out, Example const& example) { return out << example.name; }

std::vector<std::string> linesOf(std::string const& text) {
    std::istringstream stream{text};
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// In a folder with a copy of the examples.
class LuaExamples : public HostTest {
protected:
    LuaExamples() { fs::copy(source / "examples", folder / "examples", fs::copy_options::recursive); }
    static fs::path script(Example const& example) {
        return source / "examples/lua" / (std::string(example.name) + ".lua");
    }
    static Example const& named(std::string const& name) {
        return *std::find_if(examples.begin(), examples.end(), [&](Example const& e) { return name == e.name; });
    }
    // As the script itself tells.
    std::string asTold(Example const& example) const {
        std::string const told = linesOf(textOf(script(example))).at(1), start = "-- tavo ";
        EXPECT_EQ(told.substr(0, start.size()), start);
        return result(told.substr(start.size()));
    }
    // Six seconds each make a minute for all of them.
    std::string on(std::string const& file, Example const& example, std::string const& words,
                   std::string const& out) const {
        return result("run examples/lua/" + std::string(example.name) + ".lua " + file + " --max-seconds 6 -o " + out +
                      " -- " + words);
    }
};

class LuaExample : public LuaExamples, public testing::WithParamInterface<Example> {};

INSTANTIATE_TEST_SUITE_P(All, LuaExample, testing::ValuesIn(examples),
                         [](auto const& info) { return std::string("No") + info.param.name; });

}  // namespace

// ---- each of them ----

TEST_P(LuaExample, PrintsTheSameEverywhere) {
    fs::path const pinned = source / "tests/hosts/tavo/lua_examples" / (std::string(GetParam().name, 2) + ".txt");
    EXPECT_EQ(asTold(GetParam()), textOf(pinned));
}

TEST_P(LuaExample, PrintsTheSameTwice) { EXPECT_EQ(asTold(GetParam()), asTold(GetParam())); }

TEST_P(LuaExample, WorksOnWhatItSaved) {
    on("walk.bvh", GetParam(), GetParam().words, "saved.tavo");
    ASSERT_TRUE(exists("saved.tavo"));
    EXPECT_NE(on("saved.tavo", GetParam(), GetParam().words, "again.tavo"), "");
    EXPECT_TRUE(exists("again.tavo"));
}

TEST_P(LuaExample, WorksOnAnotherFigure) {
    EXPECT_NE(on("examples/figure.bvh", GetParam(), GetParam().wordsForFigure, "saved.tavo"), "");
    EXPECT_TRUE(exists("saved.tavo"));
}

TEST_P(LuaExample, IsShortAndTellsWhatItDoesAndHowItIsRun) {
    std::vector<std::string> const lines = linesOf(textOf(script(GetParam())));
    ASSERT_GE(lines.size(), 3U);
    EXPECT_LT(lines.size(), 40U);
    for (std::string const& line : lines) EXPECT_LE(line.size(), 120U) << line;
    EXPECT_TRUE(lines[0].starts_with("-- ") && lines[0].ends_with(".")) << lines[0];
    EXPECT_TRUE(lines[1].starts_with("-- tavo run examples/lua/" + std::string(GetParam().name) + ".lua ")) << lines[1];
    EXPECT_FALSE(lines[2].starts_with("--")) << "more than it takes to say that";
}

// ---- all of them ----

TEST_F(LuaExamples, AreAllHereAndInTheGuide) {
    std::string const guide = textOf(source / "docs/lua.md");
    std::size_t files = 0;
    for (auto const& entry : fs::directory_iterator(source / "examples/lua")) {
        ++files;
        EXPECT_TRUE(has(guide, entry.path().filename().string())) << entry.path();
    }
    EXPECT_EQ(files, examples.size());
}

TEST_F(LuaExamples, TheSavedScenesHoldWhatWasBuilt) {
    constexpr std::array<std::array<char const*, 2>, 3> built = {
        {{"03_bend_a_path", " Trajectory\n"}, {"04_build_ik_rig", " IKSolver\n"}, {"05_retarget", " Retarget\n"}}};
    for (auto const& [name, kind] : built) {
        on("walk.bvh", named(name), named(name).words, "saved.tavo");
        EXPECT_TRUE(has(result("info saved.tavo"), kind)) << name;
    }
}

TEST_F(LuaExamples, OneUndoTakesAnExampleBack) {
    std::string const path = "examples/lua/03_bend_a_path.lua";
    std::string const counts = "print(#app.scene():objectsByType(\"Trajectory\"))";
    std::vector<std::string> const lines =
        linesOf(result("run walk.bvh -e 'dofile(\"" + path + "\") " + counts + " app.scene():undo() " + counts + "'"));
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2], "1");
    EXPECT_EQ(lines.back(), "0");
}

TEST_F(LuaExamples, ABatchTellsOfAClipThatIsMissingAndGoesOn) {
    Outcome const outcome = tavo("run examples/lua/06_batch_folder.lua -- nowhere.bvh walk.bvh");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(has(outcome.out, "\nnowhere.bvh has no figure\nwalk.bvh  ")) << outcome.out;
    EXPECT_TRUE(has(outcome.err, "nowhere.bvh")) << outcome.err;
}

// ---- the files that they write ----

TEST_F(LuaExamples, TheReportHasALineForEachJoint) {
    asTold(named("08_report_csv"));
    std::vector<std::string> const lines = linesOf(text("report.csv"));
    ASSERT_EQ(lines.size(), 31U);
    for (std::string const& line : lines) EXPECT_EQ(std::count(line.begin(), line.end(), ','), 5) << line;
    EXPECT_TRUE(lines[1].starts_with("Hips,")) << lines[1];
}

TEST_F(LuaExamples, ThePictureHasALineForEachFigure) {
    asTold(named("09_write_svg"));
    Picture const picture(text("walk.svg"));
    ASSERT_EQ(picture.elements.size(), 9U);
    for (std::size_t i = 1; i < picture.elements.size(); ++i) {
        std::string const bones = picture.elements[i].attribute("d");
        EXPECT_EQ(picture.elements[i].name, "path");
        EXPECT_EQ(std::count(bones.begin(), bones.end(), 'L'), 29);
    }
}

TEST_F(LuaExamples, TheLibraryBringsPosesBack) {
    asTold(named("10_make_library"));
    EXPECT_EQ(result("run -e 'local poses = dofile(\"poses.lua\") print(#poses, #poses[2].LeftArm)'"), "4\t3\n");
    std::string const ask = "sample loop.tavo --objects LeftLeg --attribute RotationX ";
    std::string const first = result(ask + "--from 0 --to 0"), last = result(ask + "--from 3.966627 --to 3.966627");
    auto const angle = [](std::string const& table) { return std::stod(table.substr(table.rfind(',') + 1)); };
    EXPECT_NEAR(angle(first), angle(last), 1e-5);
}
