#include "hosts/tavo/svg.h"
#include "tests/hosts/tavo/picture.h"

#include <limits>

using namespace hosttest;

namespace host {
namespace {

std::string drawn(auto const& draw) {
    Svg svg(100, 50);
    draw(svg);
    return svg.take();
}

TEST(SvgWriter, IsAPictureOfItsSize) {
    Picture const picture(drawn([](Svg&) {}));
    EXPECT_EQ(picture.elements[0].name, "svg");
    EXPECT_EQ(picture.elements[0].attribute("width"), "100");
    EXPECT_EQ(picture.elements[0].attribute("viewBox"), "0 0 100 50");
}

TEST(SvgWriter, WritesNumbersShort) {
    Picture const picture(drawn([](Svg& svg) { svg.circle({1.5, -0.001}, 2.126, "class=\"c\""); }));
    Element const circle = picture.ofClass("c").at(0);
    EXPECT_EQ(circle.attribute("cx"), "1.5");
    EXPECT_EQ(circle.attribute("cy"), "0");
    EXPECT_EQ(circle.attribute("r"), "2.13");
}

TEST(SvgWriter, TextMayHoldAnything) {
    Picture const picture(drawn([](Svg& svg) { svg.text({1, 2}, "a < b & \"c\" > d\x01 \xc3\xbc"); }));
    EXPECT_TRUE(picture.says("a < b & \"c\" > d \xc3\xbc"));
}

TEST(SvgWriter, APointThatIsNotFiniteLeavesAGap) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    SvgPoint const points[] = {{0, 0}, {1, 1}, {nan, 1}, {2, 2}, {3, 3}};
    Picture const picture(drawn([&](Svg& svg) { svg.curve(points, "class=\"c\""); }));
    EXPECT_EQ(picture.ofClass("c").at(0).attribute("d"), "M0 0L1 1M2 2L3 3");
}

TEST(SvgWriter, AnAreaIsClosed) {
    SvgPoint const corners[] = {{0, 0}, {4, 0}, {4, 4}};
    Picture const picture(drawn([&](Svg& svg) { svg.area(corners, "class=\"a\""); }));
    EXPECT_EQ(picture.ofClass("a").at(0).attribute("d"), "M0 0L4 0L4 4Z");
}

TEST(SvgWriter, GroupsAndWindowsHoldWhatIsDrawnInThem) {
    Picture const picture(drawn([](Svg& svg) {
        svg.group("class=\"g\"").window({{1, 2}, 30, 20}).line({0, 0}, {1, 1}, "class=\"l\"").endWindow().endGroup();
        svg.rectangle({{0, 0}, 1, 1}, "class=\"r\"");
    }));
    EXPECT_EQ(picture.ofClass("l", "g").size(), 1u);
    EXPECT_TRUE(picture.ofClass("r", "g").empty());
}

TEST(SvgWriter, BoxesMeetWhereTheyShareAPlace) {
    SvgBox const box{{0, 0}, 10, 10};
    EXPECT_TRUE(box.meets({{9, 9}, 5, 5}));
    EXPECT_FALSE(box.meets({{10, 0}, 5, 5}));
    EXPECT_TRUE(box.contains({10, 10}));
    EXPECT_FALSE(box.contains({10.1, 10}));
}

}  // namespace
}  // namespace host
