#include "hosts/tavo/speed_panel.h"

#include "hosts/tavo/chart.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {

SpeedPanel::SpeedPanel(PathPicture const& picture, SpeedColours const& colours, SvgBox const& area, Svg& svg) :
    picture_(picture), colours_(colours), area_(area), svg_(svg) {
    for (PathPair const& path : picture.paths) {
        take(path.now);
        if (path.before) take(*path.before);
    }
    most_ = most_ > 0 ? most_ * 1.1 : 1;
}

void SpeedPanel::take(PathState const& state) {
    for (PathState::Moment const& m : state.motion) {
        first_ = std::min(first_, m.time), last_ = std::max(last_, m.time);
        most_ = std::max(most_, m.speed);
    }
}

double SpeedPanel::xOf(double time) const {
    return area_.corner.x + (time - first_) / std::max(last_ - first_, 1e-9) * area_.width;
}

double SpeedPanel::yOf(double speed) const { return area_.bottom() - speed / most_ * area_.height; }

void SpeedPanel::draw() {
    svg_.group("class=\"speed-over-time\"");
    drawAxes();
    for (PathPair const& path : picture_.paths)
        if (path.before) drawBefore(*path.before);
    for (PathPair const& path : picture_.paths) drawLine(path.now);
    svg_.endGroup();
}

void SpeedPanel::drawAxes() {
    double const unit = picture_.frame > 0 ? picture_.frame : 1;
    for (double const v : ticks(0, most_, int(area_.height / 40))) {
        svg_.line({area_.corner.x, yOf(v)}, {area_.right(), yOf(v)}, "stroke=\"#e8e8e8\"");
        svg_.text({area_.corner.x - 6, yOf(v) + 4}, fmt::format("{:.6g}", v), "text-anchor=\"end\" fill=\"#666\"");
    }
    for (double const t : ticks(first_ / unit, last_ / unit, int(area_.width / 70))) {
        double const x = xOf(t * unit);
        svg_.line({x, area_.corner.y}, {x, area_.bottom()}, "stroke=\"#e8e8e8\"");
        svg_.text({x, area_.bottom() + 15}, fmt::format("{:.6g}", t), "text-anchor=\"middle\" fill=\"#666\"");
    }
    svg_.text({area_.corner.x - 6, area_.corner.y - 8}, "m/s", "text-anchor=\"end\" fill=\"#666\"");
    svg_.text({area_.corner.x + 4, area_.corner.y - 8}, "speed over time", "font-weight=\"bold\"");
    svg_.text({area_.right(), area_.bottom() + 31}, unit == 1 ? "time, s" : "time, frames",
              "text-anchor=\"end\" fill=\"#666\"");
    svg_.rectangle(area_, "fill=\"none\" stroke=\"#999\"");
}

void SpeedPanel::drawBefore(PathState const& state) {
    std::vector<SvgPoint> points;
    for (PathState::Moment const& m : state.motion) points.push_back(at(m));
    svg_.curve(points, "class=\"before\" stroke=\"#8d949c\" stroke-width=\"1.8\" stroke-dasharray=\"6 4\"");
}

void SpeedPanel::drawLine(PathState const& state) {
    svg_.group("class=\"now\" stroke-width=\"2\" stroke-linecap=\"round\"");
    forRunsOfSpeed(state, colours_, [&](std::size_t from, std::size_t to, int speedClass) {
        std::vector<SvgPoint> points;
        for (std::size_t i = from; i <= to; ++i) points.push_back(at(state.motion[i]));
        svg_.curve(points, fmt::format("stroke=\"{}\"", SpeedColours::colour(speedClass)));
    });
    svg_.endGroup();
    if (picture_.paths.size() > 1 && !state.motion.empty())
        svg_.text(at(state.motion.back()) + SvgPoint{-4, -6}, state.name, "text-anchor=\"end\" font-size=\"11\"");
}

}  // namespace host
