#include "hosts/tavo/path_picture.h"

#include "hosts/tavo/chart.h"
#include "hosts/tavo/path_panel.h"
#include "hosts/tavo/speed_panel.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

// Pixels.
constexpr double width = 1000, margin = 24, left = 64, header = 40, lineHeight = 17, below = 40, gap = 28,
                 speedHeight = 190, footer = 30, fewestAcross = 200, mostAcross = 440, mostUp = 480, leastUp = 60,
                 barWidth = 220;
constexpr double wide = 1.5;  // from this aspect on, the speed stands below the path, not to its right
constexpr std::size_t mostLines = 8;

std::string shortened(std::string const& text, std::size_t most) {
    if (text.size() <= most) return text;
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // not within a character
    return text.substr(0, end) + "...";
}

// "5.13 m in 3.97 s, 120 sampled keys"
std::string measures(PathState const& state) {
    std::string text = fmt::format("{:.3g} m", state.length);
    if (!state.motion.empty()) text += fmt::format(" in {:.3g} s", state.end() - state.start());
    return text + fmt::format(", {}{} key{}", state.keys.size(), state.isSampled ? " sampled" : "",
                              state.keys.size() == 1 ? "" : "s");
}

SpeedColours coloursOf(std::vector<PathPair> const& paths) {
    double least = 1e300, most = 0;
    for (PathPair const& path : paths)
        for (PathState::Moment const& m : path.now.motion)
            least = std::min(least, m.speed), most = std::max(most, m.speed);
    return {std::min(least, most), most};
}

PathBounds boundsOf(std::vector<PathPair> const& paths) {
    PathBounds bounds;
    auto const take = [&](PathState const& state) {
        for (PathPoint const& p : state.line) bounds.take(p);
        for (PathState::Key const& key : state.keys) {
            if (key.in) bounds.take(*key.in);
            if (key.out) bounds.take(*key.out);
        }
    };
    for (PathPair const& path : paths) {
        take(path.now);
        if (path.before) take(*path.before);
    }
    PathPoint const extent = bounds.extent();
    double const longest = std::max({extent.x, extent.y, extent.z});
    for (PathPair const& path : paths)  // a large one may be cut off: the path is what is to be seen
        for (PathState::Guard const& guard : path.now.guards)
            bounds.take(guard.centre, std::min(guard.radius, longest / 4));
    return bounds;
}

// Where the parts of the picture stand.
struct Layout {
    SvgBox path, speed;
    double height = 0;

    Layout(double aspect, std::size_t lines, bool hasMotion) {
        double const top = header + lineHeight * double(lines), across = width - left - margin;
        constexpr double padding = 2 * PathPanel::padding;
        if (aspect >= wide || !hasMotion) {
            double const up = std::clamp((across - padding) / aspect, leastUp, mostUp);
            path = {{left, top}, across, up + padding};
            speed = {{left, path.bottom() + below + gap}, across, speedHeight};
            height = (hasMotion ? speed.bottom() : path.bottom()) + below + footer;
        } else {
            path = {{left, top}, std::clamp(mostUp * aspect, fewestAcross, mostAcross) + padding, mostUp + padding};
            speed = {{path.right() + left, top}, width - margin - path.right() - left, mostUp / 1.5};
            height = path.bottom() + below + footer;
        }
    }
};

void drawHeader(PathPicture const& picture, PathView const& view, Svg& svg) {
    svg.text({left, 24}, shortened(picture.title, 70), "font-size=\"15\" font-weight=\"bold\"");
    for (std::size_t i = 0; i < std::min(picture.paths.size(), mostLines); ++i) {
        PathPair const& path = picture.paths[i];
        std::string text = fmt::format("{}, {}: {}", shortened(path.now.name, 50), view.name, measures(path.now));
        if (path.before) text += "; before: " + measures(*path.before);
        svg.text({left, 24 + lineHeight * double(i + 1)}, text, "fill=\"#555\"");
    }
}

// Upper right: what the colours say.
void drawColours(SpeedColours const& colours, Svg& svg) {
    double const x = width - margin - barWidth, each = barWidth / SpeedColours::classes;
    svg.group("class=\"speeds\" shape-rendering=\"crispEdges\"");
    svg.text({x - 10, 22}, "speed, m/s", "text-anchor=\"end\"");
    for (int i = 0; i < SpeedColours::classes; ++i)
        svg.rectangle({{x + i * each, 12}, each + 0.3, 11}, fmt::format("fill=\"{}\"", SpeedColours::colour(i)));
    for (double const v : ticks(colours.least(), colours.most(), 5)) {
        double const at = x + (v - colours.least()) / (colours.most() - colours.least()) * barWidth;
        svg.line({at, 23}, {at, 27}, "stroke=\"#333\"");
        svg.text({at, 39}, fmt::format("{:.6g}", v), "text-anchor=\"middle\"");
    }
    svg.endGroup();
}

// The last row: what the marks mean, each item after the one before.
class Legend {
public:
    Legend(double y, Svg& svg) : at_{left, y}, svg_(svg) {}

    void item(std::string const& text, auto const& drawSymbol) {
        drawSymbol(at_);
        svg_.text(at_ + SvgPoint{30, 4}, text);
        at_.x += 30 + 26 + 6.3 * double(text.size());
    }

private:
    SvgPoint at_;
    Svg& svg_;
};

void drawLegend(PathPicture const& picture, PathPanel const& panel, double y, Svg& svg) {
    Legend legend(y, svg);
    auto const any = [&](auto const& has) { return std::any_of(picture.paths.begin(), picture.paths.end(), has); };
    svg.group("class=\"legend\"");
    if (any([](PathPair const& p) { return !p.now.motion.empty(); }))
        legend.item(panel.tickText(), [&](SvgPoint at) { panel.drawTickSymbol(at); });
    if (any([](PathPair const& p) { return !p.now.keys.empty() && !p.now.isSampled; }))
        legend.item("key with handles", [&](SvgPoint at) { panel.drawKeySymbol(at); });
    if (any([](PathPair const& p) { return !p.now.keys.empty() && p.now.isSampled; }))
        legend.item(panel.marksSamples() ? "sampled key" : "sampled keys, too close to show",
                    [&](SvgPoint at) { panel.drawSampleSymbol(at); });
    if (any([](PathPair const& p) { return !p.now.guards.empty(); }))
        legend.item("safe guard, and how far it holds", [&](SvgPoint at) { panel.drawGuardSymbol(at); });
    if (any([](PathPair const& p) { return p.before.has_value(); }))
        legend.item("before", [&](SvgPoint at) { panel.drawBeforeSymbol(at); });
    svg.endGroup();
}

}  // namespace

std::string drawPaths(PathPicture const& picture) {
    auto const moves = [](PathPair const& p) {
        return !p.now.motion.empty() || (p.before && !p.before->motion.empty());
    };
    bool const hasMotion = std::any_of(picture.paths.begin(), picture.paths.end(), moves);
    PathBounds const bounds = boundsOf(picture.paths);
    PathView const view = PathView::of(picture.view, bounds).value_or(PathView::largest(bounds));
    SpeedColours const colours = coloursOf(picture.paths);
    Layout const layout(PathProjection::aspect(view, bounds), std::min(picture.paths.size(), mostLines), hasMotion);

    Svg svg(width, layout.height);
    drawHeader(picture, view, svg);
    PathPanel panel(picture, view, bounds, colours, layout.path, svg);
    panel.draw();
    if (hasMotion) {
        drawColours(colours, svg);
        SpeedPanel(picture, colours, layout.speed, svg).draw();
    }
    drawLegend(picture, panel, layout.height - footer / 2, svg);
    return svg.take();
}

}  // namespace host
