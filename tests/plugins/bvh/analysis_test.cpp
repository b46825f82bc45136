#include "plugins/bvh/analysis.h"

#include "tests/plugins/bvh/clips.h"

#include <cmath>

using namespace bvh;

namespace {

std::vector<Channel> const six{Channel::xPosition, Channel::yPosition, Channel::zPosition,
                               Channel::zRotation, Channel::xRotation, Channel::yRotation};
std::vector<Channel> const three{six.begin() + 3, six.end()};

void add(Clip& clip, std::string name, int parent, Vec3 offset, std::vector<Channel> channels) {
    int const column = clip.channels;
    clip.channels += static_cast<int>(channels.size());
    clip.joints.push_back({std::move(name), parent, offset, std::move(channels), column, {}});
}

// A root and a chain of bones along Y, all with six channels; `factor` of each OFFSET plus `wobble` as positions.
Clip chain(double factor, double wobble, int bones = 4) {
    Clip clip;
    add(clip, "Hips", -1, {0, 90, 0}, six);
    for (int i = 0; i < bones; ++i) add(clip, "Bone", i, {0, 20, 0}, six);
    clip.frames = 10;
    clip.frameTime = 0.1;
    clip.frameTimeText = "0.1";
    for (int frame = 0; frame < clip.frames; ++frame) {
        for (Joint const& joint : clip.joints) {
            double const shift = joint.parent < 0 ? frame * 30 : wobble * std::sin(frame);
            for (std::size_t axis = 0; axis < 3; ++axis) clip.values.push_back(joint.offset[axis] * factor + shift);
            clip.values.insert(clip.values.end(), {10, 20, 30});
        }
    }
    return clip;
}

// A figure `height` units high along `axis`, its hips at `root`.
Clip figure(double height, std::size_t axis = 1, double root = 0) {
    Clip clip;
    add(clip, "Hips", -1, {0, 0, 0}, six);
    Vec3 up{};
    up[axis] = height * 0.5;
    Vec3 const down{-up[0], -up[1], -up[2]};
    add(clip, "Spine", 0, {}, three);
    add(clip, "Foot", 0, down, three);
    clip.joints[1].endSites = {{"Site", up}};
    clip.frames = 3;
    clip.frameTime = 0.1;
    clip.frameTimeText = "0.1";
    for (int frame = 0; frame < 3; ++frame) {
        std::vector<double> row(static_cast<std::size_t>(clip.channels), 0);
        row[axis] = root * (1 + (frame - 1) * 0.01);
        clip.values.insert(clip.values.end(), row.begin(), row.end());
    }
    return clip;
}

}  // namespace

// Position channels ---------------------------------------------------------------------------------------------------

TEST(Positions, ReplaceOffsetsWhereInnerJointsStayNearThem) {
    PositionsFinding const found = findPositions(chain(1, 2));
    EXPECT_EQ(found.positions, Positions::replace);
    EXPECT_EQ(found.reason,
              "The positions of 4 of 4 inner joints with position channels lie nearer to the joint's OFFSET "
              "than to zero: they stand in its place.");
}

TEST(Positions, AddToOffsetsWhereInnerJointsStayNearZero) {
    PositionsFinding const found = findPositions(chain(0, 2));
    EXPECT_EQ(found.positions, Positions::add);
    EXPECT_NE(found.reason.find("4 of 4 inner joints"), std::string::npos) << found.reason;
}

TEST(Positions, AddForAStillPoseOfZeros) { EXPECT_EQ(findPositions(chain(0, 0)).positions, Positions::add); }

TEST(Positions, ReplaceWhereOnlyTheRootHasThem) {
    PositionsFinding const found = findPositions(chain(0, 0, 0));
    EXPECT_EQ(found.positions, Positions::replace);
    EXPECT_EQ(found.reason, "No inner joint has position channels: the roots' replace their OFFSET.");
}

TEST(Positions, ReplaceWhereOffsetsAreZeroAndTellNothing) {
    Clip clip = chain(0, 2);
    for (Joint& joint : clip.joints) joint.offset = {};
    EXPECT_EQ(findPositions(clip).positions, Positions::replace);
}

TEST(Positions, GoWithTheMajorityOfTheJoints) {
    Clip clip = chain(0, 0, 5);
    // The last joint slides along a rail far away: one vote, whatever its distance.
    for (int frame = 0; frame < clip.frames; ++frame) {
        clip.values[static_cast<std::size_t>(frame * clip.channels + clip.joints.back().column + 1)] = 5000;
    }
    EXPECT_EQ(findPositions(clip).positions, Positions::add);
}

TEST(Positions, JudgeOnlyTheAxesThatHaveAChannel) {
    Clip clip;
    add(clip, "Hips", -1, {0, 90, 0}, three);
    add(clip, "Slider", 0, {100, 20, 100}, {Channel::yPosition});
    clip.frames = 1;
    clip.frameTime = 1;
    clip.values = {0, 0, 0, 19};
    EXPECT_EQ(findPositions(clip).positions, Positions::replace);
    clip.values.back() = 1;
    EXPECT_EQ(findPositions(clip).positions, Positions::add);
}

TEST(Positions, DoAsAsked) {
    EXPECT_EQ(findPositions(chain(0, 0), Positions::replace).positions, Positions::replace);
    EXPECT_EQ(findPositions(chain(1, 0), Positions::add).positions, Positions::add);
}

TEST(Positions, AreReadFromText) {
    Positions positions = Positions::automatic;
    EXPECT_TRUE(parsePositions("Replace", positions));
    EXPECT_EQ(positions, Positions::replace);
    EXPECT_TRUE(parsePositions("add", positions));
    EXPECT_EQ(positions, Positions::add);
    EXPECT_TRUE(parsePositions("auto", positions));
    EXPECT_EQ(positions, Positions::automatic);
    EXPECT_FALSE(parsePositions("automatic", positions));
    EXPECT_FALSE(parsePositions("", positions));
}

// Size and unit -------------------------------------------------------------------------------------------------------

TEST(Units, AreGuessedFromTheHeightOfTheRestPose) {
    struct Case {
        double height;
        Unit unit;
        bool certain;
        char const* reason;
    };
    Case const cases[] = {
        {1750, Unit::millimetre, true,
         "The rest pose is 1750 units high; only in millimetres is that a human (1.75 m)."},
        {175, Unit::centimetre, true, "The rest pose is 175 units high; only in centimetres is that a human (1.75 m)."},
        {110, Unit::centimetre, true, "(1.10 m)"},
        {68, Unit::inch, true, "only in inches is that a human (1.73 m)"},
        {5.8, Unit::foot, true, "only in feet is that a human (1.77 m)"},
        {1.8, Unit::metre, false, "Other units would do as well: yards. The most usual one is taken."},
        {2.6, Unit::metre, false, "yards"},
        {25.65, Unit::inch, false,
         "none of the usual units makes that a human of 1 to 2.5 m. The nearest is inches (0.65 m)"},
        {16.6, Unit::foot, false, "The nearest is feet (5.06 m)"},
    };
    for (Case const& wanted : cases) {
        SCOPED_TRACE(wanted.height);
        UnitGuess const guess = guessUnit(figure(wanted.height));
        EXPECT_STREQ(symbolOf(guess.unit), symbolOf(wanted.unit));
        EXPECT_NE(guess.reason.find(wanted.reason), std::string::npos) << guess.reason;
        EXPECT_EQ(guess.certain, wanted.certain);
        EXPECT_DOUBLE_EQ(guess.height, wanted.height * metresPer(wanted.unit));
    }
}

TEST(Units, AreGuessedFromTheRootWhereTheRestPoseTellsNothing) {
    UnitGuess const guess = guessUnit(figure(30, 1, 95));
    EXPECT_EQ(guess.unit, Unit::centimetre);
    EXPECT_TRUE(guess.certain);
    EXPECT_EQ(guess.reason, "The root moves 95.0 units above the ground, which makes a figure of about 179; only in "
                            "centimetres is that a human (1.79 m).");
}

TEST(Units, AreTakenFromTheRestPoseWhereRootAndRestPoseDisagree) {
    EXPECT_EQ(guessUnit(figure(175, 1, 0.9)).unit, Unit::centimetre);
}

TEST(Units, AreCentimetresWhereNothingHasASize) {
    UnitGuess const guess = guessUnit(figure(0));
    EXPECT_EQ(guess.unit, Unit::centimetre);
    EXPECT_FALSE(guess.certain);
    EXPECT_EQ(guess.reason, "The rest pose has no height to judge by; centimetres are taken as usual.");
}

TEST(Units, StayFiniteForAnySize) {
    for (double const height : {1e-300, 1e-9, 1e9, 1e300}) {
        UnitGuess const guess = guessUnit(figure(height));
        EXPECT_TRUE(std::isfinite(guess.height)) << height;
        EXPECT_FALSE(guess.certain);
    }
}

TEST(Units, HaveSymbolsThatReadBack) {
    for (char const* symbol : {"mm", "cm", "m", "in", "ft", "yd"}) {
        Unit unit{};
        ASSERT_TRUE(parseUnit(symbol, unit));
        EXPECT_STREQ(symbolOf(unit), symbol);
    }
    Unit unit = Unit::yard;
    EXPECT_TRUE(parseUnit("CM", unit));
    EXPECT_EQ(unit, Unit::centimetre);
    EXPECT_FALSE(parseUnit("furlong", unit));
    EXPECT_DOUBLE_EQ(metresPer(Unit::inch), 0.0254);
    EXPECT_DOUBLE_EQ(metresPer(Unit::yard), 0.9144);
}

TEST(Measure, FindsTheAxisTheFigureStandsAlong) {
    EXPECT_EQ(measure(figure(175, 1)).upAxis, 1);
    Size const upright = measure(figure(175, 2, 90));
    EXPECT_EQ(upright.upAxis, 2);
    EXPECT_DOUBLE_EQ(upright.height, 175);
    EXPECT_DOUBLE_EQ(upright.rootHeight, 90);
}

TEST(Measure, LooksAtTheFirstFigureAlone) {
    Clip clip = figure(175);
    add(clip, "Other", -1, {0, 1000, 0}, {});
    EXPECT_DOUBLE_EQ(measure(clip).height, 175);
}

// Channels and names --------------------------------------------------------------------------------------------------

TEST(Channels, AreDescribedInFileOrder) {
    using enum Channel;
    auto const described = [](std::vector<Channel> channels) {
        Joint joint;
        joint.channels = std::move(channels);
        return channelOrder(joint);
    };
    EXPECT_EQ(described(six), "pos XYZ + rot ZXY");
    EXPECT_EQ(described({}), "none");
    EXPECT_EQ(described({xRotation}), "rot X");
    EXPECT_EQ(described({yPosition, zRotation, xPosition}), "pos Y + rot Z + pos X");
}

TEST(Channels, AreCountedByOrderMostFrequentFirst) {
    Clip clip = figure(1);
    add(clip, "Last", 0, {}, {});
    EXPECT_EQ(channelOrders(clip),
              (std::vector<std::pair<std::string, int>>{{"rot ZXY", 2}, {"pos XYZ + rot ZXY", 1}, {"none", 1}}));
    EXPECT_EQ(channelCounts(clip), (std::array{1, 0, 0, 2, 0, 0, 1}));
}

TEST(Channels, AreMixedIfInnerJointsDiffer) {
    Clip clip = figure(1);
    add(clip, "None", 0, {}, {});
    EXPECT_FALSE(hasMixedChannelCounts(clip));
    add(clip, "One", 0, {}, {Channel::xRotation});
    EXPECT_TRUE(hasMixedChannelCounts(clip));
}

TEST(Names, AreReportedWhereRepeated) {
    Clip clip;
    for (char const* name : {"b", "a", "c", "a", "b", "a", "B"}) add(clip, name, -1, {}, {});
    EXPECT_EQ(repeatedNames(clip), (std::vector<RepeatedName>{{"b", {0, 4}}, {"a", {1, 3, 5}}}));
    EXPECT_TRUE(repeatedNames(figure(1)).empty());
}

// Frame rate ----------------------------------------------------------------------------------------------------------

TEST(FrameRate, IsTheUsualOneThatRoundsToTheDigitsWritten) {
    struct Case {
        char const* text;
        double rate;
    };
    for (auto const& [text, rate] : {Case{".0083333", 120},
                                     {"0.008333", 120},
                                     {"0.00833333", 120},
                                     {"0.033333", 30},
                                     {"0.0333333", 30},
                                     {"0.033", 30},
                                     {"0.041667", 24},
                                     {"0.0416667", 24},
                                     {"0.04", 25},
                                     {"0.016667", 60},
                                     {"0.017", 60},
                                     {"0.0417", 24},
                                     {"0.0334", 30000.0 / 1001},
                                     {"0.01", 100},
                                     {"0.0333667", 30000.0 / 1001},
                                     {"0.0417083", 24000.0 / 1001},
                                     {"0.0166833", 60000.0 / 1001},
                                     {"1", 1},
                                     {"0.5", 2},
                                     {"2", 0.5},
                                     {"0.1", 10},
                                     {"0.0142857", 70},
                                     {"1e-2", 100},
                                     {"0.0123456", 1 / 0.0123456},
                                     {"3.7", 1 / 3.7}}) {
        SCOPED_TRACE(text);
        Clip clip;
        clip.frameTimeText = text;
        clip.frameTime = std::stod(text);
        EXPECT_DOUBLE_EQ(frameRate(clip), rate);
    }
}

TEST(FrameRate, IsTheInverseWithoutASpelling) {
    Clip clip;
    clip.frameTime = 0.0083333;
    EXPECT_DOUBLE_EQ(frameRate(clip), 1 / 0.0083333);
    clip.frameTime = 0.04;
    EXPECT_EQ(frameRate(clip), 25);
}
