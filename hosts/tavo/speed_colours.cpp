#include "hosts/tavo/speed_colours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using Colour = std::array<double, 3>;
constexpr std::array<Colour, 6> stops{
    {{26, 42, 120}, {84, 39, 143}, {150, 40, 135}, {208, 62, 96}, {236, 110, 60}, {248, 164, 40}}};

}  // namespace

SpeedColours::SpeedColours(double least, double most) : least_(least), most_(most) {
    double const missing = std::max(std::abs(most) / 5, 1e-9) - (most - least);
    if (missing > 0) least_ = std::max(0.0, least - missing / 2), most_ = most + missing / 2;
}

int SpeedColours::classOf(double speed) const {
    double const share = (speed - least_) / (most_ - least_);
    return share > 0 ? int(std::min(share, 0.9999) * classes) : 0;
}

std::string SpeedColours::colour(int speedClass) {
    double const place = std::clamp(speedClass, 0, classes - 1) / double(classes - 1) * double(stops.size() - 1);
    std::size_t const i = std::min(std::size_t(place), stops.size() - 2);
    auto const part = [&](std::size_t c) {
        return int(std::lround(stops[i][c] + (stops[i + 1][c] - stops[i][c]) * (place - double(i))));
    };
    return fmt::format("#{:02x}{:02x}{:02x}", part(0), part(1), part(2));
}

}  // namespace host
