#include "tests/plugins/bvh/clips.h"

#include <cmath>

using namespace bvh;

namespace {

std::string const twoJoints = R"(HIERARCHY
ROOT Hips
{
	OFFSET 0 90 0
	CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation
	JOINT Spine
	{
		OFFSET 0.5 -10 1e1
		CHANNELS 3 Yrotation Zrotation Xrotation
		End Site
		{
			OFFSET 0 5 0
		}
	}
}
MOTION
Frames: 2
Frame Time: .0083333
1 2 3 4 5 6 7 8 9
10 11 12 13 14 15 16 17 18
)";

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

}  // namespace

// What the reader gives -----------------------------------------------------------------------------------------------

TEST(Reader, GivesHierarchyChannelsAndMotion) {
    Clip const clip = mustRead(twoJoints);
    ASSERT_EQ(clip.joints.size(), 2u);
    EXPECT_EQ(clip.joints[0].name, "Hips");
    EXPECT_EQ(clip.joints[0].parent, -1);
    EXPECT_EQ(clip.joints[0].offset, (Vec3{0, 90, 0}));
    EXPECT_FALSE(clip.joints[0].hasEndSite());
    EXPECT_EQ(clip.joints[1].name, "Spine");
    EXPECT_EQ(clip.joints[1].parent, 0);
    EXPECT_EQ(clip.joints[1].offset, (Vec3{0.5, -10, 10}));
    EXPECT_EQ(clip.joints[1].column, 6);
    ASSERT_EQ(clip.joints[1].endSites.size(), 1u);
    EXPECT_EQ(clip.joints[1].endSites[0].offset, (Vec3{0, 5, 0}));
    EXPECT_EQ(clip.channels, 9);
    EXPECT_EQ(clip.frames, 2);
    EXPECT_EQ(clip.value(1, 0), 10);
    EXPECT_EQ(clip.value(1, 8), 18);
}

TEST(Reader, KeepsTheFrameTimeAsSpelt) {
    for (char const* spelling : {".0083333", "0.033333", "0.0083330", "1e-2", "+.5", "1"}) {
        SCOPED_TRACE(spelling);
        Clip const clip = mustRead(replaced(twoJoints, ".0083333", spelling));
        EXPECT_EQ(clip.frameTimeText, spelling);
        EXPECT_DOUBLE_EQ(clip.frameTime, std::stod(spelling));
    }
}

TEST(Reader, TakesChannelsInAnyOrderAndOrdersThatDiffer) {
    Clip const clip = mustRead(R"(HIERARCHY ROOT a { OFFSET 0 0 0 CHANNELS 6 Zrotation Xposition Yrotation Zposition
Xrotation Yposition JOINT b { OFFSET 0 0 0 CHANNELS 3 Xrotation Zrotation Yrotation } }
MOTION Frames: 1 Frame Time: 1 1 2 3 4 5 6 7 8 9)");
    using enum Channel;
    EXPECT_EQ(clip.joints[0].channels,
              (std::vector<Channel>{zRotation, xPosition, yRotation, zPosition, xRotation, yPosition}));
    EXPECT_EQ(clip.joints[1].channels, (std::vector<Channel>{xRotation, zRotation, yRotation}));
}

TEST(Reader, TakesJointsOfZeroOneThreeAndSixChannelsInOneFile) {
    Clip const clip = mustRead(R"(HIERARCHY
ROOT none { OFFSET 0 0 0
 JOINT zero { OFFSET 0 0 0 CHANNELS 0
  JOINT one { OFFSET 0 0 0 CHANNELS 1 Zrotation
   JOINT three { OFFSET 0 0 0 CHANNELS 3 Zrotation Xrotation Yrotation
    JOINT six { OFFSET 0 0 0 CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation } } } } }
MOTION
Frames: 1
Frame Time: 1
1 2 3 4 5 6 7 8 9 10)");
    std::vector<std::size_t> counts;
    std::vector<int> columns;
    for (Joint const& joint : clip.joints) {
        counts.push_back(joint.channels.size());
        columns.push_back(joint.column);
    }
    EXPECT_EQ(counts, (std::vector<std::size_t>{0, 0, 1, 3, 6}));
    EXPECT_EQ(columns, (std::vector<int>{0, 0, 0, 1, 4}));
}

TEST(Reader, UnderstandsEverySpellingOfANumber) {
    struct Case {
        char const* text;
        double value;
    };
    for (auto const& [text, value] : {Case{"0", 0},
                                      {"-0.0", -0.0},
                                      {".5", .5},
                                      {"-.5", -.5},
                                      {"+7", 7},
                                      {"+.25", .25},
                                      {"5.", 5},
                                      {"-5.", -5},
                                      {"1e3", 1000},
                                      {"1E+03", 1000},
                                      {"-2.5e-2", -.025},
                                      {".5e1", 5},
                                      {"00012.50", 12.5},
                                      {"123456789012345678", 123456789012345678.0},
                                      {"0.1234567890123456789", 0.1234567890123456789},
                                      {"-179.9977", -179.9977},
                                      {"1e-400", 0},
                                      {"-1e-400", 0},
                                      {"2.2250738585072014e-308", 2.2250738585072014e-308},
                                      {"1.7976931348623157e308", 1.7976931348623157e308}}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(mustRead(withNumbers(text)).values[0], value);
    }
}

TEST(Reader, TakesATinyNumberWithoutExponentForZero) {
    EXPECT_EQ(mustRead(withNumbers("0." + std::string(400, '0') + "1")).values[0], 0);
}

TEST(Reader, ReadsRandomDecimalsToTheSameBitsAsTheStandardLibrary) {
    std::uint64_t state = 20240601;
    auto const next = [&] { return state = state * 6364136223846793005u + 1442695040888963407u, state >> 33; };
    for (int i = 0; i < 20000; ++i) {
        std::string text = next() % 2 ? "-" : "";
        for (auto n = next() % 9; n > 0; --n) text += static_cast<char>('0' + next() % 10);
        text += '.';
        for (auto n = 1 + next() % 12; n > 0; --n) text += static_cast<char>('0' + next() % 10);
        Clip clip;
        Error error;
        ASSERT_TRUE(read(withNumbers(text), clip, error)) << text;
        ASSERT_EQ(clip.values[0], std::strtod(text.c_str(), nullptr)) << text;
    }
}

TEST(Reader, TakesASignForTheStartOfTheNextNumber) {
    Clip const clip = mustRead(withNumbers("0.0-7.5\n1e-3-4+2-.5", 6));
    EXPECT_EQ(clip.values, (std::vector<double>{0, -7.5, 1e-3, -4, 2, -.5}));
}

TEST(Reader, TellsEndSitesFromJointsMerelyNamedSo) {
    Clip const clip = mustRead(R"(HIERARCHY
ROOT End Site
{
 OFFSET 0 0 0
 CHANNELS 1 Xrotation
 JOINT Site
 {
  OFFSET 1 0 0
  CHANNELS 1 Xrotation
  End Site
  {
   OFFSET 2 0 0
  }
  End Site
  {
   OFFSET 3 0 0
   CHANNELS 0
  }
  JOINT End
  {
   OFFSET 4 0 0
   CHANNELS 1 Xrotation
   End LeftTip { OFFSET 5 0 0 }
  }
 }
}
MOTION
Frames: 1
Frame Time: 1
1 2 3
)");
    ASSERT_EQ(clip.joints.size(), 3u);
    EXPECT_EQ(clip.joints[0].name, "End Site");
    EXPECT_FALSE(clip.joints[0].hasEndSite());
    EXPECT_EQ(clip.joints[1].name, "Site");
    EXPECT_EQ(clip.joints[1].endSites, (std::vector<EndSite>{{"Site", {2, 0, 0}}, {"Site", {3, 0, 0}}}));
    EXPECT_EQ(clip.joints[2].name, "End");
    EXPECT_EQ(clip.joints[2].parent, 1);
    EXPECT_EQ(clip.joints[2].endSites, (std::vector<EndSite>{{"LeftTip", {5, 0, 0}}}));
}

TEST(Reader, TakesKeywordsInEitherCase) {
    Clip const expected = mustRead(twoJoints);
    std::string lower;
    std::string upper;
    for (char const c : replaced(replaced(twoJoints, "Hips", "1"), "Spine", "2")) {
        lower += static_cast<char>(std::tolower(c));
        upper += static_cast<char>(std::toupper(c));
    }
    for (std::string const& text : {lower, upper}) {
        Clip const clip = mustRead(text);
        ASSERT_EQ(clip.joints.size(), 2u);
        EXPECT_EQ(clip.joints[1].channels, expected.joints[1].channels);
        EXPECT_EQ(clip.values, expected.values);
    }
}

TEST(Reader, TakesTheRestOfTheLineTrimmedForAName) {
    struct Case {
        char const* line;
        char const* name;
    };
    for (auto const& [line, name] : {Case{"ROOT  left arm \t", "left arm"},
                                     {"ROOT\tmixed:Hips", "mixed:Hips"},
                                     {"ROOT a.b.c", "a.b.c"},
                                     {"ROOT Bip01 L Thigh", "Bip01 L Thigh"},
                                     {"ROOT H\xC3\xBC"
                                      "fte",
                                      "H\xC3\xBC"
                                      "fte"},
                                     {"ROOT", ""},
                                     {"ROOT ROOT", "ROOT"},
                                     {"ROOT 12", "12"},
                                     {"ROOT a}b", "a}b"},
                                     {"ROOT \"quoted\"", "\"quoted\""}}) {
        SCOPED_TRACE(line);
        for (char const* brace : {"\n{", " {", "{", "\r\n\t{ "}) {
            EXPECT_EQ(mustRead(replaced(twoJoints, "ROOT Hips\n{", std::string{line} + brace)).joints[0].name, name);
        }
    }
}

TEST(Reader, KeepsRepeatedNames) {
    Clip const clip = mustRead(replaced(twoJoints, "Spine", "Hips"));
    EXPECT_EQ(clip.joints[0].name, "Hips");
    EXPECT_EQ(clip.joints[1].name, "Hips");
}

TEST(Reader, GivesTheSameClipForEveryWayOfSpacing) {
    Clip const expected = mustRead(twoJoints);
    std::string const cases[] = {
        replaced(twoJoints, "\n", "\r\n"),
        replaced(twoJoints, "\n", "\r"),
        replaced(twoJoints, "\n", " \t\n\n\n  \n"),
        replaced(twoJoints, "\t", "    "),
        replaced(twoJoints, "\n\t", "\n"),
        replaced(twoJoints, "1 2 3", "1\t2\t\t3"),
        replaced(twoJoints, "4 5 6", "4\n5\n6"),
        replaced(twoJoints, "9\n10", "9 10"),
        twoJoints.substr(0, twoJoints.size() - 1),
        "\xEF\xBB\xBF" + twoJoints,
        "\n\n \t" + twoJoints,
        twoJoints + "\n \r\n\t\n",
        replaced(twoJoints, " ", std::string(20000, ' ')),
        replaced(replaced(twoJoints, "Hips\n{", "Hips {"), "Spine\n\t\t{", "Spine {"),
    };
    for (std::string const& text : cases) EXPECT_TRUE(mustRead(text) == expected) << text.substr(0, 400);
}

TEST(Reader, TakesOffsetAndChannelsInEitherOrder) {
    std::string const text = replaced(replaced(twoJoints, "\tOFFSET 0 90 0\n", ""), "Xrotation Yrotation\n",
                                      "Xrotation Yrotation\n\tOFFSET 0 90 0\n");
    EXPECT_TRUE(mustRead(text) == mustRead(twoJoints));
}

TEST(Reader, TakesEverySpellingOfTheMotionHeadings) {
    for (char const* frames : {"Frames:", "Frames :", "FRAMES:", "frames", "Frames:\t", "Frames\n:\n"}) {
        for (char const* time :
             {"Frame Time:", "Frame Time :", "FRAME TIME", "frame time:", "FrameTime:", "Frame\tTime:"}) {
            SCOPED_TRACE(std::string{frames} + " / " + time);
            std::string const text = replaced(replaced(twoJoints, "Frames:", frames), "Frame Time:", time);
            EXPECT_EQ(mustRead(text).frames, 2);
        }
    }
    EXPECT_EQ(mustRead(oneJoint("1 Xrotation", "Frames:1\nFrame Time:0.5\n3")).frameTime, 0.5);
}

TEST(Reader, ReadsSeveralRoots) {
    Clip const clip =
        mustRead("HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 1 Xrotation }\nROOT b\n{ OFFSET 1 0 0 CHANNELS 1 "
                 "Yrotation JOINT c\n{ OFFSET 0 1 0 CHANNELS 1 Zrotation } }\n"
                 "MOTION Frames: 1 Frame Time: 1 1 2 3");
    ASSERT_EQ(clip.joints.size(), 3u);
    EXPECT_EQ(clip.joints[1].parent, -1);
    EXPECT_EQ(clip.joints[1].column, 1);
    EXPECT_EQ(clip.joints[2].parent, 1);
}

TEST(Reader, ReadsVeryLongLines) {
    std::string numbers;
    for (int i = 0; i < 200000; ++i) numbers += std::to_string(i) + ".125 ";
    Clip const clip = mustRead(withNumbers(numbers, 200000));
    EXPECT_EQ(clip.values[199999], 199999.125);
}

TEST(Reader, TakesOneFrameALineIfThereAreNoChannels) {
    Clip const clip = mustRead(oneJoint("0", "Frames: 3\nFrame Time: 0.1\n\n\n\n"));
    EXPECT_EQ(clip.frames, 3);
    EXPECT_TRUE(clip.values.empty());
}

// Suspicious values ---------------------------------------------------------------------------------------------------

TEST(Reader, NotesSuspiciousValuesWithTheirPlace) {
    Clip clip;
    Error error;
    Notes notes;
    std::string const text = replaced(replaced(twoJoints, "10 11", "-2e6 1000000"), " 17 ", " 1000001 ");
    ASSERT_TRUE(read(text, clip, error, &notes));
    ASSERT_EQ(notes.suspicious.size(), 2u);
    EXPECT_EQ(notes.suspiciousCount, 2u);
    Suspicious const& first = notes.suspicious[0];
    EXPECT_EQ(first.value, -2e6);
    EXPECT_EQ((std::array{first.frame, first.joint, first.line, first.column}), (std::array{1, 0, 20, 1}));
    Suspicious const& second = notes.suspicious[1];
    EXPECT_EQ((std::array{second.frame, second.joint, second.line, second.column}), (std::array{1, 1, 20, 29}));
}

TEST(Reader, KeepsTheFirstTwentySuspiciousValuesAndCountsAll) {
    std::string numbers;
    for (int i = 0; i < 50; ++i) numbers += "9999999\n";
    Clip clip;
    Error error;
    Notes notes;
    ASSERT_TRUE(read(withNumbers(numbers, 50), clip, error, &notes));
    EXPECT_EQ(notes.suspicious.size(), suspiciousKept);
    EXPECT_EQ(notes.suspiciousCount, 50u);
    EXPECT_EQ(notes.suspicious.back().line, 10 + 19);
}

// What it refuses -----------------------------------------------------------------------------------------------------

struct Broken {
    std::string text;
    std::string message;  // part of it
    int line;
    int column;
};

TEST(Reader, RefusesABrokenHierarchyWithItsPlace) {
    Broken const cases[] = {
        {"", "empty", 1, 1},
        {" \n\t\n", "empty", 1, 1},
        {"\xFF\xFEH", "UTF-16", 1, 1},
        {"ROOT a\n{", "HIERARCHY expected, found \"ROOT\"", 1, 1},
        {"HIERARCHY", "the file ends where ROOT should stand", 1, 10},
        {"HIERARCHY\nMOTION", "ROOT expected, found \"MOTION\"", 2, 1},
        {"HIERARCHY\nJOINT a", "ROOT expected, found \"JOINT\"", 2, 1},
        {"HIERARCHY\nROOT a\nOFFSET 0 0 0", "\"{\" after joint \"a\" expected, found \"OFFSET\"", 3, 1},
        {"HIERARCHY\nROOT a", "the file ends where \"{\" after joint \"a\" should stand", 2, 7},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0", "joint \"a\" is not closed", 4, 14},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0\nMOTION\n", "joint \"a\" is not closed", 5, 1},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0\nROOT b\n", "joint \"a\" is not closed", 5, 1},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0\n}\n}", "ROOT or MOTION expected, found \"}\"", 6, 1},
        {"HIERARCHY\nROOT a\n{\n}", "joint \"a\" has no OFFSET", 4, 1},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0\n OFFSET 1 1 1\n}", "second OFFSET", 5, 2},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0\n}", "\"}\" is not a number", 5, 1},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0", "the file ends where a number should stand", 4, 12},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 x1 0\n}", "\"x1\" is not a number", 4, 11},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0 0\n}", "expected, found \"0\"", 4, 15},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 nan 0\n}", "\"nan\" is not a number", 4, 11},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 7", "announces 7 channels; 0 to 6 are possible", 4, 11},
        {"HIERARCHY\nROOT a\n{\n CHANNELS -1", "announces -1 channels", 4, 11},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 99999999999999999999", "too large", 4, 11},
        {"HIERARCHY\nROOT a\n{\n CHANNELS three", "whole number) expected, found \"three\"", 4, 11},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 1.5", "whole number) expected, found \"1.5\"", 4, 11},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 2 Xrotation\n}", "channel 2 of 2", 5, 1},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 1 Wrotation\n}", "found \"Wrotation\"", 4, 13},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 1 Xrotation Yrotation\n}", "more channels than CHANNELS announces", 4, 23},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 2 Xrotation Xrotation\n}", "Xrotation twice", 4, 23},
        {"HIERARCHY\nROOT a\n{\n CHANNELS 0\n CHANNELS 0\n}", "a second time", 5, 2},
        {"HIERARCHY\nROOT a\n{\n OFFSET 0 0 0\n JOINT b\n {\n  OFFSET 0 0 0\n }\n CHANNELS 0\n}",
         "must stand before its child joints", 9, 2},
        {"HIERARCHY\nROOT a\n{\n End Site\n OFFSET", "\"{\" after End Site", 5, 2},
        {"HIERARCHY\nROOT a\n{\n End Site\n {\n }", "OFFSET expected", 6, 2},
        {"HIERARCHY\nROOT a\n{\n End Site\n {\n OFFSET 1 2 3\n CHANNELS 1 Xrotation }", "no channels", 7, 11},
        {"HIERARCHY\nROOT a\n{\n End Site\n {\n OFFSET 1 2 3\n JOINT b", "\"}\" of the End Site expected", 7, 2},
        {"HIERARCHY\nROOT \xC3\xA4\n{\n OFFSET 0 0 0\n\xC3\xA4\xC3\xA4 }", "found \"\xC3\xA4\xC3\xA4\"", 5, 1},
        {"HIERARCHY\rROOT a\r\n{\r\n OFFSET 0 0 \xE2\x82\xAC", "is not a number", 4, 13},
    };
    for (Broken const& broken : cases) {
        SCOPED_TRACE(broken.text);
        Error const error = mustFail(broken.text);
        EXPECT_NE(error.message.find(broken.message), std::string::npos) << error.text();
        EXPECT_EQ(error.line, broken.line) << error.text();
        EXPECT_EQ(error.column, broken.column) << error.text();
    }
}

TEST(Reader, RefusesABrokenMotionWithItsPlace) {
    auto const motion = [](char const* text) { return oneJoint("2 Xrotation Yrotation", text); };
    Broken const cases[] = {
        {motion(""), "the file ends where Frames: should stand", 8, 1},
        {motion("Frame Time: 1"), "Frames: expected, found \"Frame\"", 8, 1},
        {motion("Frames: "), "the file ends where the number of frames", 8, 9},
        {motion("Frames: 0\n"), "at least 1, not 0", 8, 9},
        {motion("Frames: -5\n"), "at least 1, not -5", 8, 9},
        {motion("Frames: many\n"), "whole number) expected, found \"many\"", 8, 9},
        {motion("Frames: 1.5\n"), "found \"1.5\"", 8, 9},
        {motion("Frames: nan\n"), "found \"nan\"", 8, 9},
        {motion("Frames: 99999999999999999999\n"), "too large", 8, 9},
        {motion("Frames: 9223372036854775807\n"), "too short to hold", 8, 9},
        {motion("Frames: 2000000000\nFrame Time: 1\n1 2"), "too short to hold 2000000000 frames", 8, 9},
        {motion("Frames: 1\n1 2"), "Frame Time: expected, found \"1\"", 9, 1},
        {motion("Frames: 1\nFrame 1"), "Frame Time: expected, found \"Frame\"", 9, 1},
        {motion("Frames: 1\nFrame Time:"), "the file ends where a number", 9, 12},
        {motion("Frames: 1\nFrame Time: -0.1\n1 2"), "above 0, not -0.1", 9, 13},
        {motion("Frames: 1\nFrame Time: 0\n1 2"), "above 0, not 0", 9, 13},
        {motion("Frames: 1\nFrame Time: inf\n1 2"), "\"inf\" is not a number", 9, 13},
        {motion("Frames: 1\nFrame Time: 1e9\n1 2"), "no frame lasts 1e9 seconds", 9, 13},
        {motion("Frames: 1\nFrame Time: 1e-9\n1 2"), "no frame lasts 1e-9 seconds", 9, 13},
        {motion("Frames: 1\nFrame Time: 0,033\n1 2"), "\"0,033\" is not a number", 9, 13},
        {motion("Frames: 2\nFrame Time: 1\n1 2\n3"), "ends after 3 numbers; 2 frames x 2 channels announced 4", 11, 2},
        {motion("Frames: 2\nFrame Time: 1\n"), "ends after 0 numbers", 10, 1},
        {motion("Frames: 1\nFrame Time: 1\n1 2\n3"), "more numbers than the 1 frames x 2 channels", 11, 1},
        {motion("Frames: 1\nFrame Time: 1\n1 2\nHIERARCHY"), "\"HIERARCHY\" is not a number", 11, 1},
        {motion("Frames: 1\nFrame Time: 1\n1 nan"), "\"nan\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n-inf 2"), "\"-inf\" is not a number", 10, 1},
        {motion("Frames: 1\nFrame Time: 1\n1 #QNAN"), "\"#QNAN\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n-1.#IND 2"), "\"-1.#IND\" is not a number", 10, 1},
        {motion("Frames: 1\nFrame Time: 1\n1 2x"), "\"2x\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1.2.3 4"), "\"1.2.3\" is not a number", 10, 1},
        {motion("Frames: 1\nFrame Time: 1\n1 --2"), "\"--2\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 -"), "\"-\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 ."), "\".\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 0x10"), "\"0x10\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 2e"), "\"2e\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 1,5"), "\"1,5\" is not a number", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 1e400"), "\"1e400\" is too large", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n1 -1e400"), "\"-1e400\" is too large", 10, 3},
        {motion("Frames: 1\nFrame Time: 1\n}"), "\"}\" is not a number", 10, 1},
    };
    for (Broken const& broken : cases) {
        SCOPED_TRACE(broken.text);
        Error const error = mustFail(broken.text);
        EXPECT_NE(error.message.find(broken.message), std::string::npos) << error.text();
        EXPECT_EQ(error.line, broken.line) << error.text();
        EXPECT_EQ(error.column, broken.column) << error.text();
    }
}

TEST(Reader, RefusesEveryTruncationOfTheHierarchyAndHeadings) {
    std::size_t const motion = twoJoints.find("\n1 2 3");
    for (std::size_t length = 0; length <= motion; ++length) {
        Error const error = mustFail(std::string_view{twoJoints}.substr(0, length));
        EXPECT_GT(error.line, 0) << length;
        EXPECT_FALSE(error.message.empty()) << length;
    }
}

TEST(Reader, RefusesANulByteInTheMotion) {
    mustFail(withNumbers(std::string{"1\0", 2}));
    EXPECT_EQ(mustFail(withNumbers(std::string{"\0", 1})).message, "\"?\" is not a number");
}

TEST(Reader, LeavesTheClipAsItWasOnFailure) {
    Clip const before = mustRead(twoJoints);
    Clip clip = before;
    Notes notes{{{1, 2, 3, 4, 5}}, 7};
    Error error;
    EXPECT_FALSE(read(withNumbers("9999999 1"), clip, error, &notes));
    EXPECT_TRUE(clip == before);
    EXPECT_EQ(notes.suspiciousCount, 7u);
}

TEST(Reader, ShortensWhatItQuotes) {
    Error const error = mustFail(withNumbers(std::string(1000000, 'x')));
    EXPECT_LT(error.message.size(), 100u);
    EXPECT_NE(error.message.find("xxx...\""), std::string::npos);
}

std::string nested(int depth) {
    std::string text = "HIERARCHY\n";
    for (int i = 0; i < depth; ++i) text += std::string{i == 0 ? "ROOT" : "JOINT"} + " j\n{ OFFSET 0 1 0\n";
    for (int i = 0; i < depth; ++i) text += "}";
    return text + "\nMOTION\nFrames: 1\nFrame Time: 1\n";
}

TEST(Reader, TakesTenThousandNestedJointsAndNoMore) {
    EXPECT_EQ(mustRead(nested(deepest)).joints.size(), static_cast<std::size_t>(deepest));
    EXPECT_EQ(mustFail(nested(deepest + 1)).text(), "line 20002, column 1: joints are nested deeper than 10000");
    mustFail(nested(300000));
}

TEST(Reader, TakesManyJointsSideBySide) {
    std::string text = "HIERARCHY\n";
    for (int i = 0; i < 30000; ++i) text += "ROOT r" + std::to_string(i) + "\n{ OFFSET 0 1 0 }\n";
    EXPECT_EQ(mustRead(text + "MOTION Frames: 1 Frame Time: 1").joints.size(), 30000u);
}

TEST(Reader, ReservesMemoryForWhatTheFileHoldsNotForWhatItClaims) {
    // 6 million frames of six channels would be 288 MB; the text allows 3 million numbers at most.
    std::string const text =
        oneJoint("6 Xposition Yposition Zposition Xrotation Yrotation Zrotation", "Frames: 6000000\nFrame Time: 1\n") +
        std::string(6000000, '\n');
    EXPECT_NE(mustFail(text).message.find("ends after 0 numbers; 6000000 frames x 6 channels announced 36000000"),
              std::string::npos);
}

// Files ---------------------------------------------------------------------------------------------------------------

TEST(ReadFile, ReadsAFile) {
    TemporaryFolder const folder;
    std::ofstream{folder.path / "a b.bvh"} << twoJoints;
    Clip clip;
    Error error;
    EXPECT_TRUE(readFile(folder.path / "a b.bvh", clip, error)) << error.text();
    EXPECT_TRUE(clip == mustRead(twoJoints));
}

TEST(ReadFile, SaysWhatIsWrongWithAFileItCannotRead) {
    TemporaryFolder const folder;
    Clip clip;
    Error error;
    EXPECT_FALSE(readFile(folder.path / "none.bvh", clip, error));
    EXPECT_NE(error.text().find("none.bvh\": there is no such file"), std::string::npos) << error.text();
    EXPECT_EQ(error.line, 0);
    EXPECT_FALSE(readFile(folder.path, clip, error));
    EXPECT_NE(error.text().find("it is a folder"), std::string::npos) << error.text();
    EXPECT_FALSE(readFile("/dev/zero", clip, error));
    EXPECT_NE(error.text().find("it is no file"), std::string::npos) << error.text();
    EXPECT_FALSE(readFile("", clip, error));
}
