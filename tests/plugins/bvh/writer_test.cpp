#include "plugins/bvh/writer.h"

#include "tests/plugins/bvh/clips.h"

#include <cmath>
#include <csignal>
#include <limits>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace bvh;

namespace {

std::string mustWrite(Clip const& clip) {
    std::string text;
    Error error;
    EXPECT_TRUE(write(clip, text, error)) << error.text();
    return text;
}

// Two roots; a root with an end site and two children, one of them with a child.
Clip sample() {
    using enum Channel;
    Clip clip;
    clip.joints = {
        {"Hips", -1, {0, 90, 0.1}, {xPosition, yPosition, zPosition, zRotation, xRotation, yRotation}, 0, {}},
        {"left leg: upper", 0, {1e-7, -1e21, 1.0 / 3}, {yRotation}, 6, {{"Site", {0, -40, 0}}, {"Tip", {1, 2, 3}}}},
        {"Foot", 1, {0, 0, 0}, {}, 7, {}},
        {"Hips", 0, {5, 6, 7}, {zRotation, xRotation, yRotation}, 7, {{"Site", {0, 1, 0}}}},
        {"Prop", -1, {0, 0, 0}, {xPosition}, 10, {}},
    };
    clip.frames = 2;
    clip.channels = 11;
    clip.frameTime = 0.0083333;
    clip.frameTimeText = ".0083333";
    for (int i = 0; i < 22; ++i) clip.values.push_back(i * 1.1 - 7);
    return clip;
}

Error mustRefuse(Clip const& clip) {
    std::string text = "untouched";
    Error error;
    EXPECT_FALSE(write(clip, text, error));
    EXPECT_EQ(text, "untouched");
    EXPECT_FALSE(error.message.empty());
    return error;
}

}  // namespace

TEST(Writer, GivesTheClipBack) { EXPECT_TRUE(mustRead(mustWrite(sample())) == sample()); }

TEST(Writer, WritesTheSameBytesForTheSameClip) {
    std::string const text = mustWrite(sample());
    EXPECT_EQ(mustWrite(mustRead(text)), text);
}

TEST(Writer, WritesTheUsualLayout) {
    Clip clip = sample();
    clip.joints.resize(2);
    clip.joints[1].endSites.resize(1);
    clip.joints[1].offset = {0, -4.5, 0};
    clip.channels = 7;
    clip.values.assign(14, 0.5);
    EXPECT_EQ(mustWrite(clip), R"(HIERARCHY
ROOT Hips
{
	OFFSET 0 90 0.1
	CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation
	JOINT left leg: upper
	{
		OFFSET 0 -4.5 0
		CHANNELS 1 Yrotation
		End Site
		{
			OFFSET 0 -40 0
		}
	}
}
MOTION
Frames: 2
Frame Time: .0083333
0.5 0.5 0.5 0.5 0.5 0.5 0.5
0.5 0.5 0.5 0.5 0.5 0.5 0.5
)");
}

TEST(Writer, WritesTheNewFrameTimeOnceItWasChanged) {
    Clip clip = sample();
    clip.frameTime = 0.04;
    EXPECT_NE(mustWrite(clip).find("Frame Time: 0.04\n"), std::string::npos);
    clip.frameTimeText.clear();
    EXPECT_NE(mustWrite(clip).find("Frame Time: 0.04\n"), std::string::npos);
    clip.frameTimeText = "0.04 seconds";
    EXPECT_NE(mustWrite(clip).find("Frame Time: 0.04\n"), std::string::npos);
}

TEST(Writer, BringsEveryDoubleBackBitForBit) {
    Clip clip = sample();
    double const hard[] = {0.1, -0.0, 1e-310, 1.7976931348623157e308, 5e-324, -1.0 / 3, 123456789.123456789, 1e22};
    std::copy(std::begin(hard), std::end(hard), clip.values.begin());
    Clip const back = mustRead(mustWrite(clip));
    for (std::size_t i = 0; i < std::size(hard); ++i) {
        EXPECT_EQ(back.values[i], hard[i]);
        EXPECT_EQ(std::signbit(back.values[i]), std::signbit(hard[i]));
    }
}

TEST(Writer, ReplacesWhatWouldEndANameEarly) {
    Clip clip = sample();
    clip.joints[0].name = " a{b\nc\rd ";
    clip.joints[1].endSites[0].label = "S{te";
    Clip const back = mustRead(mustWrite(clip));
    EXPECT_EQ(back.joints[0].name, "a_b_c_d");
    EXPECT_EQ(back.joints[1].endSites[0].label, "S_te");
}

TEST(Writer, WritesALineForEachFrameWithoutChannels) {
    Clip const clip = mustRead(oneJoint("0", "Frames: 3\nFrame Time: 0.1\n\n\n\n"));
    EXPECT_TRUE(mustRead(mustWrite(clip)) == clip);
}

TEST(Writer, WritesADeepChainInProportionToItsLength) {
    Clip clip = mustRead(withNumbers("1"));
    for (int i = 1; i < deepest; ++i) clip.joints.push_back({"j", i - 1, {0, 1, 0}, {}, 1, {}});
    std::string const text = mustWrite(clip);
    EXPECT_LT(text.size(), static_cast<std::size_t>(deepest) * 400);
    EXPECT_TRUE(mustRead(text) == clip);
}

TEST(Writer, RefusesAClipThatBreaksItsInvariants) {
    struct Case {
        char const* what;
        std::function<void(Clip&)> breakIt;
    };
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    Case const cases[] = {
        {"no joints", [](Clip& c) { c = Clip{}; }},
        {"parent after child", [](Clip& c) { c.joints[1].parent = 2; }},
        {"its own parent", [](Clip& c) { c.joints[1].parent = 1; }},
        {"no such parent", [](Clip& c) { c.joints[1].parent = -2; }},
        {"not depth first", [](Clip& c) { c.joints[4].parent = 1; }},
        {"column", [](Clip& c) { ++c.joints[1].column; }},
        {"repeated channel", [](Clip& c) { c.joints[0].channels[1] = Channel::xPosition; }},
        {"wrong channel", [](Clip& c) { c.joints[0].channels[1] = Channel(6); }},
        {"channel count", [](Clip& c) { ++c.channels; }},
        {"offset", [&](Clip& c) { c.joints[2].offset[1] = nan; }},
        {"end site", [&](Clip& c) { c.joints[1].endSites[1].offset[2] = inf; }},
        {"no frames", [](Clip& c) { c.frames = 0, c.values.clear(); }},
        {"negative frames", [](Clip& c) { c.frames = -1; }},
        {"too few values", [](Clip& c) { c.values.pop_back(); }},
        {"too many values", [](Clip& c) { c.values.push_back(0); }},
        {"nan", [&](Clip& c) { c.values[13] = nan; }},
        {"infinity", [&](Clip& c) { c.values[13] = -inf; }},
        {"frame time zero", [](Clip& c) { c.frameTime = 0; }},
        {"frame time nan", [&](Clip& c) { c.frameTime = nan; }},
        {"too deep",
         [](Clip& c) {
             for (int i = 0; i < deepest; ++i) c.joints.push_back({"j", i + 4, {}, {}, 11, {}});
         }},
    };
    for (Case const& broken : cases) {
        SCOPED_TRACE(broken.what);
        Clip clip = sample();
        broken.breakIt(clip);
        mustRefuse(clip);
        Error error;
        EXPECT_FALSE(check(clip, error));
    }
}

TEST(Writer, NamesTheFrameOfANumberThatIsNone) {
    Clip clip = sample();
    clip.values[13] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(mustRefuse(clip).text(), "a value of frame 1 is not a finite number");
}

// Files ---------------------------------------------------------------------------------------------------------------

TEST(WriteFile, WritesAndReplacesAFileAndLeavesNothingElse) {
    TemporaryFolder const folder;
    std::filesystem::path const path = folder.path / "clip.bvh";
    Error error;
    ASSERT_TRUE(writeFile(path, sample(), error)) << error.text();
    EXPECT_EQ(fileText(path), mustWrite(sample()));
    Clip changed = sample();
    changed.values[0] = 42;
    ASSERT_TRUE(writeFile(path, changed, error)) << error.text();
    EXPECT_EQ(fileText(path), mustWrite(changed));
    EXPECT_EQ(folder.files(), 1);
}

TEST(WriteFile, KeepsTheModeOfTheFileItReplaces) {
    TemporaryFolder const folder;
    std::filesystem::path const path = folder.path / "clip.bvh";
    std::ofstream{path} << "old";
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    Error error;
    ASSERT_TRUE(writeFile(path, sample(), error));
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0640});
}

TEST(WriteFile, FollowsASymbolicLink) {
    TemporaryFolder const folder;
    std::ofstream{folder.path / "real.bvh"} << "old";
    std::filesystem::create_symlink("real.bvh", folder.path / "link.bvh");
    Error error;
    ASSERT_TRUE(writeFile(folder.path / "link.bvh", sample(), error)) << error.text();
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path / "link.bvh"));
    EXPECT_EQ(fileText(folder.path / "real.bvh"), mustWrite(sample()));
}

TEST(WriteFile, WritesIntoTheWorkingFolder) {
    TemporaryFolder const folder;
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    Error error;
    EXPECT_TRUE(writeFile("clip.bvh", sample(), error)) << error.text();
    std::filesystem::current_path(before);
    EXPECT_EQ(folder.files(), 1);
}

TEST(WriteFile, SaysWhyItCannotWriteAndLeavesNothingBehind) {
    TemporaryFolder const folder;
    Error error;
    EXPECT_FALSE(writeFile(folder.path / "none" / "clip.bvh", sample(), error));
    EXPECT_NE(error.text().find("clip.bvh\": No such file or directory"), std::string::npos) << error.text();
    EXPECT_FALSE(writeFile(folder.path, sample(), error));
    EXPECT_NE(error.text().find("it is no plain file"), std::string::npos) << error.text();
    EXPECT_FALSE(writeFile("/dev/null", sample(), error));
    EXPECT_FALSE(writeFile("", sample(), error));
    EXPECT_EQ(folder.files(), 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(WriteFile, LeavesTheOldFileIfTheClipCannotBeWritten) {
    TemporaryFolder const folder;
    std::ofstream{folder.path / "clip.bvh"} << "old";
    Clip clip = sample();
    clip.values.pop_back();
    Error error;
    EXPECT_FALSE(writeFile(folder.path / "clip.bvh", clip, error));
    EXPECT_EQ(fileText(folder.path / "clip.bvh"), "old");
    EXPECT_EQ(folder.files(), 1);
}

// The limit stands in for a full disk: the write stops in the middle.
TEST(WriteFile, LeavesTheOldFileAndNoOtherWhenWritingStopsHalfway) {
    TemporaryFolder const folder;
    std::ofstream{folder.path / "clip.bvh"} << "old";
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    auto const handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit const small{100, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    Error error;
    bool const written = writeFile(folder.path / "clip.bvh", sample(), error);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_NE(error.text().find("File too large"), std::string::npos) << error.text();
    EXPECT_EQ(fileText(folder.path / "clip.bvh"), "old");
    EXPECT_EQ(folder.files(), 1);
}
