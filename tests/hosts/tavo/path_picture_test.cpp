// What a picture of paths is made of.
#include "hosts/tavo/path_picture.h"
#include "hosts/tavo/speed_colours.h"
#include "tests/hosts/tavo/picture.h"

#include <cmath>

using namespace hosttest;

namespace host {
namespace {

// Along x from 0 to 6 m in three seconds, ever faster, over four keys.
PathState accelerating(double lift = 0) {
    PathState state;
    state.name = "way";
    state.length = 6;
    for (int i = 0; i < 4; ++i) {
        PathPoint const p{2.0 * i, lift, 0.5 * (i % 2)};
        state.keys.push_back({p, {}, {}});
        if (i > 0) state.keys.back().in = p - PathPoint(0.5, 0, 0);
        if (i < 3) state.keys.back().out = p + PathPoint(0.5, 0, 0);
        state.line.push_back(p);
    }
    for (int i = 0; i <= 300; ++i) {
        double const t = i / 100.0;
        state.motion.push_back({t, {6 * t * t / 9, lift, 0}, 12 * t / 9});
    }
    return state;
}

PathPicture one(PathState state) { return {"a.tavo", {{std::move(state), {}}}, "", 0}; }

double luminance(std::string const& colour) {
    auto const part = [&](std::size_t at) { return double(std::stoi(colour.substr(at, 2), nullptr, 16)); };
    return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5);
}

double middleOf(Element const& tick) { return (pointsOf(tick)[0].first + pointsOf(tick)[1].first) / 2; }

}  // namespace

TEST(PathPictures, HasAMarkForEachKeyAndEachHandle) {
    Picture const picture(drawPaths(one(accelerating())));
    EXPECT_EQ(picture.ofClass("key", "keys").size(), 4u);
    EXPECT_EQ(picture.ofClass("handle", "keys").size(), 6u);
    EXPECT_TRUE(picture.says("key with handles"));
    EXPECT_TRUE(picture.says("way, from above: 6 m in 3 s, 4 keys"));
}

TEST(PathPictures, SampledKeysAreDotsUnlessTheyWouldHideThePath) {
    PathState state = accelerating();
    state.isSampled = true;
    EXPECT_EQ(Picture(drawPaths(one(state))).ofClass("key", "keys").at(0).name, "circle");
    state.keys.resize(5000);
    Picture const dense(drawPaths(one(state)));
    EXPECT_TRUE(dense.ofClass("key", "keys").empty());
    EXPECT_TRUE(dense.says("too close to show"));
}

TEST(PathPictures, TicksAreEvenInTimeSoThatTheirSpacingIsSpeed) {
    Picture const picture(drawPaths(one(accelerating())));
    std::vector<Element> const ticks = picture.ofClass("tick", "ticks");
    ASSERT_EQ(ticks.size(), 61u);
    EXPECT_TRUE(picture.says("a tick each 0.05 s"));
    for (std::size_t i = 2; i < ticks.size(); ++i)
        EXPECT_GT(middleOf(ticks[i]) - middleOf(ticks[i - 1]), middleOf(ticks[i - 1]) - middleOf(ticks[i - 2]));
    EXPECT_TRUE(picture.says("2 s"));
}

TEST(PathPictures, TicksStandAtFramesWhenAsked) {
    PathPicture picture = one(accelerating());
    picture.frame = 1 / 24.0;
    Picture const drawn(drawPaths(picture));
    EXPECT_EQ(drawn.ofClass("tick", "ticks").size(), 73u);
    EXPECT_TRUE(drawn.says("a tick each frame"));
    EXPECT_TRUE(drawn.says("time, frames"));
    picture.frame = 1 / 960.0;
    EXPECT_TRUE(Picture(drawPaths(picture)).says("a tick each 20 frames"));
}

TEST(PathPictures, ColoursGetLighterWithSpeed) {
    std::vector<Element> const runs = Picture(drawPaths(one(accelerating()))).ofClass("speed", "path");
    ASSERT_GT(runs.size(), 10u);
    for (std::size_t i = 1; i < runs.size(); ++i) {
        EXPECT_GT(runs[i].number("data-speed"), runs[i - 1].number("data-speed"));
        EXPECT_GT(luminance(runs[i].attribute("stroke")), luminance(runs[i - 1].attribute("stroke")));
    }
}

TEST(PathPictures, TheLegendShowsTheColoursWithTheirSpeeds) {
    Picture const picture(drawPaths(one(accelerating())));
    EXPECT_EQ(picture.within("speeds", "rect").size(), std::size_t(SpeedColours::classes));
    EXPECT_TRUE(picture.says("speed, m/s"));
}

TEST(PathPictures, AMetreIsAsLongUpwardsAsToTheRight) {
    PathState state;
    for (PathPoint const& p : {PathPoint(0, 0, 0), PathPoint(4, 0, 0), PathPoint(4, 2, 0)}) state.line.push_back(p);
    auto const line = pointsOf(Picture(drawPaths(one(state))).ofClass("line").at(0));
    EXPECT_NEAR(line[1].first - line[0].first, 2 * (line[1].second - line[2].second), 0.05);
}

TEST(PathPictures, TheScaleBarIsAsLongAsItSays) {
    Picture const picture(drawPaths(one(accelerating())));
    auto const line = pointsOf(picture.ofClass("line").at(0));
    double const metre = (line[3].first - line[0].first) / 6;
    auto const bar = pointsOf(picture.within("scale-bar", "path").at(0));
    double const said = std::stod(picture.within("scale-bar", "text").at(0).text);
    EXPECT_NEAR(bar[3].first - bar[2].first, said * metre, 0.05);
}

TEST(PathPictures, AnEarlierStateLiesBeneathInDashes) {
    PathPicture both = one(accelerating());
    both.paths[0].before = accelerating(0.5);
    both.view = "front";
    Picture const picture(drawPaths(both));
    std::vector<Element> const before = picture.within("before", "path");
    ASSERT_FALSE(before.empty());
    EXPECT_NE(before[0].attribute("stroke-dasharray"), "");
    auto const indexOf = [&](auto const& is) {
        return std::find_if(picture.elements.begin(), picture.elements.end(), is) - picture.elements.begin();
    };
    EXPECT_LT(indexOf([](Element const& e) { return e.isWithin("before"); }),
              indexOf([](Element const& e) { return e.isClass("line"); }));
    EXPECT_EQ(picture.ofClass("before", "speed-over-time").size(), 1u);
    EXPECT_FALSE(picture.within("now").empty());
    EXPECT_TRUE(picture.says("before: 6 m in 3 s"));
}

TEST(PathPictures, SafeGuardsAreCirclesOfTheirSize) {
    PathState state = accelerating();
    state.guards = {{{2, 0, 0}, 0.5, 0, true}, {{4, 0, 0}, 0.25, 0.25, false}};
    Picture const picture(drawPaths(one(state)));
    auto const guards = picture.ofClass("guard");
    ASSERT_EQ(guards.size(), 2u);
    EXPECT_NEAR(guards[0].number("r"), 2 * guards[1].number("r"), 0.02);
    EXPECT_EQ(picture.ofClass("guard-range").at(1).attribute("r"), guards[0].attribute("r"));
    EXPECT_TRUE(picture.says("safe guard"));
}

TEST(PathPictures, AHugeSafeGuardDoesNotMakeThePathADot) {
    PathState state = accelerating();
    state.guards = {{{2, 0, 0}, 1000, 1, true}};
    auto const line = pointsOf(Picture(drawPaths(one(state))).ofClass("line").at(0));
    EXPECT_GT(line[3].first - line[0].first, 400);
}

TEST(PathPictures, TheViewIsThatInWhichTheMostIsSeen) {
    auto const viewOf = [](PathPoint const& end) {
        PathState state;
        state.line = {{0, 0, 0}, end};
        Picture const picture(drawPaths(one(state)));
        for (char const* view : {"from above", "from the side", "from the front"})
            if (picture.says(view)) return std::string(view);
        return std::string();
    };
    EXPECT_EQ(viewOf({3, 1, 2}), "from above");
    EXPECT_EQ(viewOf({1, 3, 2}), "from the side");
    EXPECT_EQ(viewOf({3, 2, 1}), "from the front");
}

TEST(PathPictures, EachViewHasItsAxes) {
    std::tuple<char const*, char const*, char const*> const views[] = {
        {"top", "x, m", "z, m"}, {"side", "z, m", "y, m"}, {"front", "x, m", "y, m"}};
    for (auto const& [view, right, up] : views) {
        PathPicture picture = one(accelerating());
        picture.view = view;
        std::vector<std::string> names;
        for (Element const& e : Picture(drawPaths(picture)).within("scale", "text"))
            if (e.text.find(", m") != e.text.npos) names.push_back(e.text);
        EXPECT_EQ(names, (std::vector<std::string>{right, up})) << view;
    }
}

TEST(PathPictures, SeenFromAboveTheLongerWayLiesAcross) {
    PathState state;
    state.line = {{0, 0, 0}, {1, 0, 5}};
    auto const line = pointsOf(Picture(drawPaths(one(state))).ofClass("line").at(0));
    EXPECT_NEAR(line[1].first - line[0].first, 5 * (line[0].second - line[1].second), 0.1);
}

TEST(PathPictures, WithoutMotionThereIsNeitherSpeedNorTick) {
    PathState state = accelerating();
    state.motion.clear();
    Picture const picture(drawPaths(one(state)));
    EXPECT_TRUE(picture.ofClass("speed").empty());
    EXPECT_TRUE(picture.ofClass("tick").empty());
    EXPECT_TRUE(picture.within("speed-over-time").empty());
    EXPECT_EQ(picture.ofClass("key", "keys").size(), 4u);
}

TEST(PathPictures, APathOfNothingIsAPictureStill) {
    PathState single;
    single.line = {{1, 2, 3}};
    single.keys = {{{1, 2, 3}, {}, {}}};
    PathState standing = single;
    standing.motion = {{0, {1, 2, 3}, 0}, {1, {1, 2, 3}, 0}};
    for (PathState const& state : {PathState(), single, standing})
        for (char const* view : {"", "top", "side", "front"}) {
            PathPicture picture = one(state);
            picture.view = view;
            Picture const drawn(drawPaths(picture));
            EXPECT_FALSE(drawn.elements.empty());
        }
}

TEST(PathPictures, SeveralPathsAreNamed) {
    PathState other = accelerating(1);
    other.name = "other < way";
    PathPicture const two{"a.tavo", {{accelerating(), {}}, {other, {}}}, "front", 0};
    Picture const picture(drawPaths(two));
    EXPECT_EQ(picture.ofClass("key", "keys").size(), 8u);
    EXPECT_TRUE(picture.says("other < way"));
}

TEST(PathPictures, TheSamePathIsTheSameBytes) {
    EXPECT_EQ(drawPaths(one(accelerating())), drawPaths(one(accelerating())));
}

TEST(SpeedClasses, CoverTheRangeFromEndToEnd) {
    SpeedColours const colours(1, 3);
    EXPECT_EQ(colours.classOf(1), 0);
    EXPECT_EQ(colours.classOf(3), SpeedColours::classes - 1);
    EXPECT_EQ(colours.classOf(0), 0);
    EXPECT_EQ(colours.classOf(99), SpeedColours::classes - 1);
    EXPECT_EQ(colours.classOf(std::nan("")), 0);
}

TEST(SpeedClasses, WhatHardlyChangesLooksAlike) {
    SpeedColours const colours(1.4, 1.401);
    EXPECT_LE(std::abs(colours.classOf(1.401) - colours.classOf(1.4)), 1);
    SpeedColours const standing(0, 0);
    EXPECT_LT(standing.least(), standing.most());
}

TEST(SpeedClasses, EachIsLighterThanTheOneBefore) {
    for (int i = 1; i < SpeedColours::classes; ++i)
        EXPECT_GT(luminance(SpeedColours::colour(i)), luminance(SpeedColours::colour(i - 1))) << i;
}

}  // namespace host
