#include "hosts/tavo/path_panel.h"

#include "hosts/tavo/chart.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

// Pixels.
constexpr double leastTickSpacing = 12, leastFrameSpacing = 4, leastKeySpacing = 3, gridSpacing = 70, minorTick = 5,
                 majorTick = 9, labelDistance = 18, letterWidth = 6.6, letterHeight = 13, nearestDistance = 2;
constexpr double mostTicks = 400, mostLabels = 12;

constexpr char const* beforeStyle = "stroke=\"#8d949c\" stroke-width=\"1.8\" stroke-dasharray=\"6 4\"";
constexpr char const* guardStyle = "fill=\"#009e73\" fill-opacity=\"0.08\" stroke=\"#009e73\" stroke-dasharray=\"2 3\"";
constexpr char const* guardCentreStyle = "fill=\"none\" stroke=\"#009e73\" stroke-width=\"2\"";
constexpr char const* idleGuardStyle = "fill=\"none\" stroke=\"#bbb\" stroke-dasharray=\"2 3\"";
constexpr char const* handleStyle = "stroke=\"#444\"";
constexpr char const* handleEndStyle = "fill=\"#fff\" stroke=\"#444\"";
constexpr char const* keyStyle = "fill=\"#fff\" stroke=\"#222\" stroke-width=\"1.5\"";
constexpr char const* sampleStyle = "fill=\"#fff\" stroke=\"#333\" stroke-width=\"0.7\"";

std::string classed(char const* name, char const* style) { return fmt::format("class=\"{}\" {}", name, style); }

double lengthOf(SvgPoint const& v) { return std::hypot(v.x, v.y); }
SvgBox squareAt(SvgPoint const& p, double half) { return {p - SvgPoint{half, half}, 2 * half, 2 * half}; }

char const* axisName(PathView::Axis axis) {
    static constexpr char const* names[] = {"x, m", "y, m", "z, m"};
    return names[axis];
}

// Within the frame, with room for labels around the paths.
SvgBox inner(SvgBox const& area) {
    return {area.corner + SvgPoint{PathPanel::padding, PathPanel::padding}, area.width - 2 * PathPanel::padding,
            area.height - 2 * PathPanel::padding};
}

}  // namespace

PathPanel::PathPanel(PathPicture const& picture, PathView const& view, PathBounds const& bounds,
                     SpeedColours const& colours, SvgBox const& area, Svg& svg) :
    picture_(picture),
    view_(view), project_(view, bounds, inner(area)), colours_(colours), area_(area), svg_(svg), tickStep_(tickStep()) {
    for (PathPair const& path : picture.paths) {
        std::vector<SvgPoint> const points = projected(path.now.line);
        occupied_.insert(occupied_.end(), points.begin(), points.end());
    }
}

void PathPanel::draw() {
    drawGrid();
    drawScaleBar();
    for (PathPair const& path : picture_.paths) drawGuards(path.now);
    for (PathPair const& path : picture_.paths)
        if (path.before) drawBefore(*path.before);
    for (PathPair const& path : picture_.paths) {
        svg_.group("class=\"path\"");
        drawLine(path.now);
        drawTicks(path.now);
        drawEnds(path.now);
        drawKeys(path.now);
        drawLabels(path.now);
        svg_.endGroup();
    }
    svg_.rectangle(area_, "fill=\"none\" stroke=\"#999\"");
}

std::vector<SvgPoint> PathPanel::projected(std::vector<PathPoint> const& points) const {
    std::vector<SvgPoint> out;
    for (PathPoint const& p : points) out.push_back(project_(p));
    return out;
}

// ---- ticks ----

double PathPanel::lengthOf(PathState const& state) const {
    double length = 0;
    for (std::size_t i = 1; i < state.motion.size(); ++i)
        length += host::lengthOf(project_(state.motion[i].position) - project_(state.motion[i - 1].position));
    return length;
}

// Seconds; the same for all paths, so that they compare. 0 without motion.
double PathPanel::tickStep() const {
    double step = 0;
    bool const inFrames = picture_.frame > 0;
    for (PathPair const& path : picture_.paths) {
        double const duration = path.now.end() - path.now.start();
        double const room = lengthOf(path.now) / (inFrames ? leastFrameSpacing : leastTickSpacing);
        step = std::max(step, duration / std::clamp(room, 4.0, mostTicks));
    }
    return inFrames ? std::max(1.0, roundStep(step / picture_.frame)) * picture_.frame : roundStep(step);
}

std::vector<PathPanel::Tick> PathPanel::ticksOf(PathState const& state) const {
    std::vector<Tick> out;
    if (state.motion.empty() || !(tickStep_ > 0)) return out;
    double const count = (state.end() - state.start()) / tickStep_;
    double const labelEvery = std::max(1.0, roundStep(count / mostLabels));
    for (double const time : multiples(tickStep_, state.start(), state.end())) {
        bool const isLabelled = std::fmod(std::round(time / tickStep_), labelEvery) == 0;
        out.push_back({time, project_(state.at(time)), across(state, time), isLabelled});
    }
    return out;
}

// From as little of the path as has a direction.
SvgPoint PathPanel::across(PathState const& state, double time) const {
    double const duration = state.end() - state.start();
    for (double part = 1e-3; part < 2; part *= 2) {
        SvgPoint const way = project_(state.at(time + part * duration)) - project_(state.at(time - part * duration));
        double const length = host::lengthOf(way);
        if (length > nearestDistance) return SvgPoint{-way.y, way.x} * (1 / length);
    }
    return {0, -1};
}

std::string PathPanel::timeText(double time) const {
    return picture_.frame > 0 ? fmt::format("{:.0f}", time / picture_.frame) : fmt::format("{:.6g} s", time);
}

// ---- the parts, from the ground up ----

void PathPanel::drawGrid() {
    double const step = roundStep(gridSpacing / project_.scale());
    svg_.group("class=\"grid\" stroke=\"#e8e8e8\"");
    std::vector<double> rights{project_.rightAt(area_.corner.x), project_.rightAt(area_.right())},
        ups{project_.upAt(area_.bottom()), project_.upAt(area_.corner.y)};
    std::sort(rights.begin(), rights.end());
    std::sort(ups.begin(), ups.end());
    rights = multiples(step, rights[0], rights[1]), ups = multiples(step, ups[0], ups[1]);
    for (double const v : rights) svg_.line({project_.xOf(v), area_.corner.y}, {project_.xOf(v), area_.bottom()}, "");
    for (double const v : ups) svg_.line({area_.corner.x, project_.yOf(v)}, {area_.right(), project_.yOf(v)}, "");
    svg_.endGroup().group("class=\"scale\" fill=\"#666\"");
    for (double const v : rights)
        svg_.text({project_.xOf(v), area_.bottom() + 15}, fmt::format("{:.6g}", v), "text-anchor=\"middle\"");
    for (double const v : ups)
        svg_.text({area_.corner.x - 6, project_.yOf(v) + 4}, fmt::format("{:.6g}", v), "text-anchor=\"end\"");
    svg_.text({area_.right(), area_.bottom() + 31}, axisName(view_.right), "text-anchor=\"end\"");
    svg_.text({area_.corner.x - 6, area_.corner.y - 8}, axisName(view_.up), "text-anchor=\"end\"");
    svg_.endGroup();
}

// The sphere, its centre, since it may have no size, and how far around it movement is held back.
void PathPanel::drawGuards(PathState const& state) {
    svg_.window(area_);
    for (PathState::Guard const& guard : state.guards) {
        SvgPoint const centre = project_(guard.centre) - area_.corner;
        char const* const style = guard.isUsed ? guardStyle : idleGuardStyle;
        svg_.circle(centre, (guard.radius + guard.range) * project_.scale(), classed("guard-range", style));
        svg_.circle(centre, guard.radius * project_.scale(), classed("guard", style));
        svg_.circle(centre, 9, guard.isUsed ? guardCentreStyle : idleGuardStyle);
    }
    svg_.endWindow();
}

void PathPanel::drawBefore(PathState const& state) {
    svg_.group("class=\"before\"");
    svg_.curve(projected(state.line), beforeStyle);
    for (Tick const& tick : ticksOf(state))
        svg_.line(tick.at - tick.across * minorTick, tick.at + tick.across * minorTick, "stroke=\"#a9b0b7\"");
    svg_.endGroup();
}

// The path in light grey, where nothing may ever go, and on it the motion in the colours of its speed.
void PathPanel::drawLine(PathState const& state) {
    std::vector<SvgPoint> const line = projected(state.line);
    svg_.group("stroke-linejoin=\"round\" stroke-linecap=\"round\" stroke-width=\"4\"");
    svg_.curve(line, "class=\"casing\" stroke=\"#fff\" stroke-width=\"8\"");
    svg_.curve(line, "class=\"line\" stroke=\"#c3c8cd\"");
    forRunsOfSpeed(state, colours_, [&](std::size_t from, std::size_t to, int speedClass) {
        std::vector<SvgPoint> points;
        for (std::size_t i = from; i <= to; ++i) points.push_back(project_(state.motion[i].position));
        svg_.curve(points, fmt::format("class=\"speed\" data-speed=\"{:.4g}\" stroke=\"{}\"",
                                       colours_.speedOf(speedClass), SpeedColours::colour(speedClass)));
    });
    svg_.endGroup();
}

void PathPanel::drawTicks(PathState const& state) {
    svg_.group("class=\"ticks\" stroke=\"#222\"");
    for (Tick const& tick : ticksOf(state)) {
        double const half = tick.isLabelled ? majorTick : minorTick;
        svg_.line(tick.at - tick.across * half, tick.at + tick.across * half, "class=\"tick\"");
    }
    svg_.endGroup();
}

void PathPanel::drawHandle(SvgPoint key, SvgPoint handle) {
    svg_.line(key, handle, handleStyle).circle(handle, 2.6, classed("handle", handleEndStyle));
}

void PathPanel::drawKeys(PathState const& state) {
    if (state.isSampled && !marksSamples()) return;
    svg_.group("class=\"keys\"");
    for (PathState::Key const& key : state.keys) {
        if (key.in) drawHandle(project_(key.position), project_(*key.in));
        if (key.out) drawHandle(project_(key.position), project_(*key.out));
    }
    for (PathState::Key const& key : state.keys) {
        if (state.isSampled)
            svg_.circle(project_(key.position), 1.6, classed("key", sampleStyle));
        else
            svg_.rectangle(squareAt(project_(key.position), 3.5), classed("key", keyStyle));
    }
    svg_.endGroup();
}

// A disc where the motion starts, an arrow head where it ends.
void PathPanel::drawEnds(PathState const& state) {
    if (state.motion.empty()) return;
    SvgPoint const across = this->across(state, state.end()), along{across.y, -across.x};
    SvgPoint const tip = project_(state.motion.back().position) + along * 13, back = tip - along * 12;
    SvgPoint const corners[] = {tip, back + across * 6, back - across * 6};
    svg_.area(corners, "class=\"end\" fill=\"#222\"");
    svg_.circle(project_(state.motion.front().position), 6, "class=\"start\" fill=\"#222\"");
}

void PathPanel::drawLabels(PathState const& state) {
    svg_.group("class=\"times\" font-size=\"11\" fill=\"#222\" stroke=\"#fff\" stroke-width=\"3\" "
               "stroke-linejoin=\"round\" paint-order=\"stroke\"");
    for (Tick const& tick : ticksOf(state))
        if (tick.isLabelled) drawLabel(tick.at, tick.across, labelDistance, timeText(tick.time), "");
    svg_.endGroup();
    if (picture_.paths.size() < 2 || state.line.empty()) return;
    SvgPoint const start = project_(state.line.front());
    drawLabel(start, {0, 1}, 2 * labelDistance, state.name, "font-weight=\"bold\"");
}

// On the side where less is drawn; not at all where other labels are all around.
void PathPanel::drawLabel(SvgPoint at, SvgPoint across, double distance, std::string const& text,
                          std::string_view attributes) {
    double const half = letterWidth / 2 * double(text.size());
    SvgBox best;
    double least = 1e9;
    for (double const side : {-1.0, 1.0, -1.7, 1.7}) {
        double const reach = distance * std::abs(side) + std::abs(across.x) * std::max(0.0, half - 8);
        SvgPoint const middle = at + across * (std::copysign(reach, side));
        SvgBox const box{middle - SvgPoint{half, letterHeight / 2}, 2 * half, letterHeight};
        double const cost = isFree(box) ? crowding(box) : 1e9;
        if (cost < least) least = cost, best = box;
    }
    if (least == 1e9) return;
    taken_.push_back(best);
    svg_.text({best.corner.x + half, best.bottom() - 3}, text,
              fmt::format("text-anchor=\"middle\"{}{}", attributes.empty() ? "" : " ", attributes));
}

bool PathPanel::isFree(SvgBox const& box) const {
    return area_.contains(box.corner) && area_.contains({box.right(), box.bottom()}) &&
           std::none_of(taken_.begin(), taken_.end(), [&](SvgBox const& o) { return o.meets(box); });
}

double PathPanel::crowding(SvgBox const& box) const {
    return double(
        std::count_if(occupied_.begin(), occupied_.end(), [&](SvgPoint const& p) { return box.contains(p); }));
}

// A round length in metres, in the corner where the least is drawn; the lower right one if that is as good.
void PathPanel::drawScaleBar() {
    double const step = roundStep(60 / project_.scale()), length = step * project_.scale();
    SvgBox box{{}, length + 28, 36}, best;
    double least = 1e9;
    for (SvgPoint const corner : {SvgPoint{area_.right() - box.width, area_.bottom() - box.height},
                                  {area_.corner.x, area_.bottom() - box.height},
                                  {area_.right() - box.width, area_.corner.y},
                                  area_.corner}) {
        box.corner = corner;
        if (crowding(box) < least) least = crowding(box), best = box;
    }
    taken_.push_back(best);
    SvgPoint const left = best.corner + SvgPoint{14, 25}, right = left + SvgPoint{length, 0}, up{0, 4};
    SvgPoint const bar[] = {left - up, left + up, left, right, right - up, right + up};
    svg_.group("class=\"scale-bar\"");
    svg_.rectangle({best.corner + SvgPoint{4, 4}, best.width - 8, best.height - 8}, "fill=\"#fff\"");
    svg_.curve(bar, "stroke=\"#222\" stroke-width=\"1.5\"");
    svg_.text((left + right) * 0.5 - SvgPoint{0, 7}, fmt::format("{:.6g} m", step), "text-anchor=\"middle\"");
    svg_.endGroup();
}

// ---- for the legend ----

std::string PathPanel::tickText() const {
    if (!(picture_.frame > 0)) return fmt::format("a tick each {:.6g} s", tickStep_);
    double const frames = std::round(tickStep_ / picture_.frame);
    return frames == 1 ? "a tick each frame" : fmt::format("a tick each {:.0f} frames", frames);
}

bool PathPanel::marksSamples() const {
    return std::all_of(picture_.paths.begin(), picture_.paths.end(), [&](PathPair const& p) {
        return !p.now.isSampled || lengthOf(p.now) >= leastKeySpacing * double(p.now.keys.size());
    });
}

void PathPanel::drawTickSymbol(SvgPoint at) const {
    std::string const colour = SpeedColours::colour(SpeedColours::classes / 2);
    svg_.line(at, at + SvgPoint{24, 0}, fmt::format("stroke=\"{}\" stroke-width=\"4\"", colour));
    for (double const x : {4.0, 10.0, 20.0}) svg_.line(at + SvgPoint{x, -5}, at + SvgPoint{x, 5}, "stroke=\"#222\"");
}

void PathPanel::drawKeySymbol(SvgPoint at) const {
    svg_.line(at, at + SvgPoint{24, 0}, handleStyle);
    for (double const x : {0.0, 24.0}) svg_.circle(at + SvgPoint{x, 0}, 2.6, handleEndStyle);
    svg_.rectangle(squareAt(at + SvgPoint{12, 0}, 3.5), keyStyle);
}

void PathPanel::drawSampleSymbol(SvgPoint at) const { svg_.circle(at + SvgPoint{16, 0}, 1.6, sampleStyle); }
void PathPanel::drawGuardSymbol(SvgPoint at) const { svg_.circle(at + SvgPoint{16, 0}, 7, guardStyle); }
void PathPanel::drawBeforeSymbol(SvgPoint at) const { svg_.line(at, at + SvgPoint{24, 0}, beforeStyle); }

}  // namespace host
