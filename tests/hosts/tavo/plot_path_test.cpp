// plot --trajectory, through the built host.
#include "tests/hosts/tavo/host.h"
#include "tests/hosts/tavo/picture.h"

using namespace hosttest;

namespace {

class PlotPath : public HostTest {
protected:
    PlotPath() {
        result("do walk.bvh --select Hips GenerateTrajectory -o walk.tavo");
        result("do walk.tavo --select Hips_trajectory FitTrajectory ErrorTolerance=0.01 -o fit.tavo");
    }
    Picture plot(std::string const& arguments) const {
        EXPECT_TRUE(has(result("plot " + arguments + " -o out.svg"), "wrote out.svg"));
        return Picture(text("out.svg"));
    }
};

}  // namespace

TEST_F(PlotPath, DrawsEachKeyOfTheGeneratedPath) {
    Picture const picture = plot("walk.tavo --trajectory Hips_trajectory");
    EXPECT_EQ(picture.ofClass("key", "keys").size(), 119u);
    EXPECT_TRUE(picture.ofClass("handle", "keys").empty());
    EXPECT_TRUE(picture.says("walk.tavo"));
}

TEST_F(PlotPath, DrawsHandlesOfAFittedPath) {
    Picture const picture = plot("fit.tavo --trajectory Hips_trajectory");
    std::size_t const keys = picture.ofClass("key", "keys").size();
    EXPECT_LT(keys, 30u);
    EXPECT_EQ(picture.ofClass("handle", "keys").size(), 2 * keys - 2);
}

TEST_F(PlotPath, FindsThePathByTheObjectThatItBelongsTo) {
    result("plot walk.tavo --trajectory Hips -o a.svg");
    result("plot walk.tavo --trajectory Hips_trajectory -o b.svg");
    EXPECT_EQ(text("a.svg"), text("b.svg"));
}

TEST_F(PlotPath, FindsThePathByTheObjectThatFollowsIt) {
    result("trajectory generate walk.bvh Hips --connect -o follows.tavo");
    EXPECT_FALSE(plot("follows.tavo --trajectory Hips").within("path").empty());
}

TEST_F(PlotPath, ShowsTheStateOfAnotherFileBeneath) {
    Picture const picture = plot("fit.tavo --trajectory Hips --before walk.tavo");
    EXPECT_FALSE(picture.within("before", "path").empty());
    EXPECT_EQ(picture.ofClass("before", "speed-over-time").size(), 1u);
    EXPECT_TRUE(picture.says("before: "));
}

TEST_F(PlotPath, SeesFromWhereItIsTold) {
    EXPECT_TRUE(plot("walk.tavo --trajectory Hips --view top").says("from above"));
    EXPECT_TRUE(plot("walk.tavo --trajectory Hips --view zy").says("from the side"));
    EXPECT_TRUE(plot("walk.tavo --trajectory Hips --view xy").says("from the front"));
}

TEST_F(PlotPath, TellsTimeInFrames) { EXPECT_TRUE(plot("walk.tavo --trajectory Hips --frames").says("time, frames")); }

TEST_F(PlotPath, RefusesWrongCalls) {
    std::pair<char const*, char const*> const cases[] = {
        {"plot walk.tavo --trajectory Hipz -o x", "no object matches \"Hipz\"; did you mean Hips"},
        {"plot walk.tavo --trajectory Head -o x", "\"Head\" has no trajectory"},
        {"plot walk.tavo --trajectory Hips --before walk.bvh -o x", "walk.bvh: "},
        {"plot walk.tavo --trajectory Hips --view above -o x",
         "there is no view \"above\"; views are top, side, front"},
        {"plot walk.tavo --trajectory Hips --view tpo -o x", "there is no view \"tpo\""},
        {"plot walk.tavo Hips.TranslationX --trajectory Hips -o x", "excludes"},
        {"plot walk.tavo Hips.TranslationX --view top -o x", "--view requires --trajectory"},
        {"plot walk.tavo -o x", "it takes OBJECT.ATTRIBUTE or --trajectory PATH"},
        {"plot walk.tavo --trajectory Hips", "--output is required"},
    };
    for (auto const& [call, told] : cases) EXPECT_TRUE(has(failure(2, call), told)) << call << "\n" << tavo(call).err;
}

TEST_F(PlotPath, RefusesBadFiles) {
    write(folder / "note.txt", "Dear diary");
    EXPECT_TRUE(has(failure(3, "plot note.txt --trajectory Hips -o x"), "note.txt"));
    EXPECT_TRUE(has(failure(3, "plot walk.tavo --trajectory Hips --before note.txt -o x"), "note.txt"));
    EXPECT_TRUE(has(failure(3, "plot walk.tavo --trajectory Hips --before missing.tavo -o x"), "missing.tavo"));
}

TEST_F(PlotPath, FailsWhereNothingCanBeWritten) { failure(1, "plot walk.tavo --trajectory Hips -o missing/x.svg"); }
