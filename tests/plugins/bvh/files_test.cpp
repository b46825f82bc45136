// Whole files: the shared clips where they are present, and the example.
#include "plugins/bvh/analysis.h"
#include "plugins/bvh/writer.h"
#include "tests/plugins/bvh/clips.h"

#include <cstdio>

using namespace bvh;

namespace {

using Orders = std::vector<std::pair<std::string, int>>;

struct Known {
    char const* file;
    int joints;
    int endSites;
    int depth;
    int frames;
    char const* frameTime;
    int channels;
    Orders orders;
    Positions positions;
    char const* unit;
};

Known const known[] = {
    {"cmu_01_01.bvh",
     31,
     7,
     11,
     2752,
     ".0083333",
     96,
     {{"rot ZYX", 30}, {"pos XYZ + rot ZYX", 1}},
     Positions::replace,
     "in"},
    {"cmu_131_01_max.bvh",
     31,
     7,
     11,
     994,
     ".0083333",
     96,
     {{"rot ZYX", 18}, {"rot ZXY", 12}, {"pos XYZ + rot ZYX", 1}},
     Positions::replace,
     "in"},
    {"walk8_xyz.bvh",
     23,
     7,
     8,
     1064,
     "0.008333",
     72,
     {{"rot XYZ", 22}, {"pos XYZ + rot XYZ", 1}},
     Positions::replace,
     "in"},
    {"mh_face_poseunits.bvh",
     163,
     49,
     18,
     60,
     "0.041667",
     492,
     {{"rot XYZ", 162}, {"pos XYZ + rot XYZ", 1}},
     Positions::replace,
     "ft"},
    {"mixed_orders_24.bvh",
     24,
     5,
     10,
     75,
     "0.033333",
     75,
     {{"rot XZY", 15}, {"rot XYZ", 4}, {"rot YZX", 2}, {"rot ZYX", 2}, {"pos XYZ + rot XZY", 1}},
     Positions::replace,
     "in"},
    {"mh_benchmark_pose.bvh",
     163,
     49,
     18,
     1,
     "0.041667",
     891,
     {{"pos XYZ + rot XYZ", 134}, {"rot XYZ", 29}},
     Positions::add,
     "ft"},
};

int endSitesOf(Clip const& clip) {
    std::size_t count = 0;
    for (Joint const& joint : clip.joints) count += joint.endSites.size();
    return static_cast<int>(count);
}

// Levels of the hierarchy, end sites included.
int depthOf(Clip const& clip) {
    std::vector<int> depths;
    int levels = 0;
    for (Joint const& joint : clip.joints) {
        depths.push_back(joint.parent < 0 ? 1 : depths[static_cast<std::size_t>(joint.parent)] + 1);
        levels = std::max(levels, depths.back() + (joint.hasEndSite() ? 1 : 0));
    }
    return levels;
}

void PrintTo(Known const& clip, std::ostream* stream) { *stream << clip.file; }

class SharedClips : public testing::TestWithParam<Known> {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(sharedClips())) GTEST_SKIP() << "no shared clips here";
        Error error;
        ASSERT_TRUE(readFile(sharedClips() / GetParam().file, clip, error)) << error.text();
    }
    Clip clip;
};

}  // namespace

TEST_P(SharedClips, HaveTheKnownCounts) {
    Known const& wanted = GetParam();
    EXPECT_EQ(static_cast<int>(clip.joints.size()), wanted.joints);
    EXPECT_EQ(endSitesOf(clip), wanted.endSites);
    EXPECT_EQ(depthOf(clip), wanted.depth);
    EXPECT_EQ(clip.frames, wanted.frames);
    EXPECT_EQ(clip.frameTimeText, wanted.frameTime);
    EXPECT_EQ(clip.channels, wanted.channels);
    EXPECT_EQ(clip.values.size(), static_cast<std::size_t>(wanted.frames) * static_cast<std::size_t>(wanted.channels));
    EXPECT_EQ(channelOrders(clip), wanted.orders);
}

TEST_P(SharedClips, ComeBackFromAFileUnchanged) {
    TemporaryFolder const folder;
    Clip back;
    Error error;
    ASSERT_TRUE(writeFile(folder.path / "clip.bvh", clip, error)) << error.text();
    ASSERT_TRUE(readFile(folder.path / "clip.bvh", back, error)) << error.text();
    EXPECT_TRUE(back == clip);
}

TEST_P(SharedClips, AreJudgedAsTheyShouldBe) {
    EXPECT_EQ(findPositions(clip).positions, GetParam().positions) << findPositions(clip).reason;
    EXPECT_STREQ(symbolOf(guessUnit(clip).unit), GetParam().unit) << guessUnit(clip).reason;
    EXPECT_TRUE(repeatedNames(clip).empty());
}

INSTANTIATE_TEST_SUITE_P(Files, SharedClips, testing::ValuesIn(known), [](auto const& info) {
    return std::string{info.param.file}.substr(0, std::string_view{info.param.file}.find('.'));
});

TEST(SharedClip, InUnitsOfItsOwnIsCalledUncertain) {
    if (!std::filesystem::exists(sharedClips())) GTEST_SKIP() << "no shared clips here";
    Clip clip;
    Error error;
    ASSERT_TRUE(readFile(sharedClips() / "cmu_01_01.bvh", clip, error));
    UnitGuess const guess = guessUnit(clip);
    EXPECT_FALSE(guess.certain);
    EXPECT_NE(guess.reason.find("a unit of its own"), std::string::npos) << guess.reason;
}

TEST(ExampleWalk, IsAFigureOfThirtyJointsInCentimetres) {
    Clip clip;
    Error error;
    ASSERT_TRUE(readFile(sourceFolder() / "examples" / "walk.bvh", clip, error)) << error.text();
    EXPECT_EQ(clip.joints.size(), 30u);
    EXPECT_EQ(clip.frames, 120);
    EXPECT_EQ(frameRate(clip), 30);
    UnitGuess const guess = guessUnit(clip);
    EXPECT_EQ(guess.unit, Unit::centimetre);
    EXPECT_TRUE(guess.certain);
    EXPECT_TRUE(repeatedNames(clip).empty());
}

TEST(ExampleWalk, IsWhatItsScriptMakes) {
    if (std::system("python3 --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no python3 here";
    TemporaryFolder const folder;
    std::string const made = (folder.path / "walk.bvh").string();
    std::string const script = (sourceFolder() / "scripts" / "make_walk.py").string();
    ASSERT_EQ(std::system(("python3 '" + script + "' '" + made + "'").c_str()), 0);
    EXPECT_TRUE(fileText(made) == fileText(sourceFolder() / "examples" / "walk.bvh"));
}
