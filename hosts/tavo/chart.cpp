#include "hosts/tavo/chart.h"
#include "hosts/tavo/svg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace host {
namespace {

// Pixels.
constexpr double width = 960, panelHeight = 280, left = 72, right = 24, top = 44, legendHeight = 24, gap = 40,
                 bottom = 44, leastKeyDistance = 6;
// Dark enough on white, and apart from each other for most eyes (after M. Okabe and K. Ito, Color Universal Design).
constexpr std::array<char const*, 8> colours{"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                             "#e69f00", "#56b4e9", "#444444", "#7b61a8"};

struct Range {
    double from = std::numeric_limits<double>::infinity(), to = -std::numeric_limits<double>::infinity();

    void take(std::vector<double> const& values) {
        for (double const v : values)
            if (std::isfinite(v)) from = std::min(from, v), to = std::max(to, v);
    }
    // Never empty.
    void widen(double part) {
        if (!(from <= to)) from = 0, to = 1;
        double const more = to > from ? (to - from) * part : std::max(std::abs(from) * 0.1, 0.5);
        from -= more, to += more;
    }
};

class Panel {
public:
    Panel(ChartPanel const& panel, Range x, double y0, Svg& svg) :
        panel_(panel), x_(x), area_{{left, y0}, width - left - right, panelHeight}, svg_(svg) {
        for (ChartCurve const& curve : panel.curves) y_.take(curve.y), y_.take(curve.keyY);
        y_.widen(0.06);
    }
    void draw(bool last) {
        legend();
        axes(last);
        svg_.window(area_);
        for (std::size_t i = 0; i < panel_.curves.size(); ++i) curve(panel_.curves[i], colours[i % colours.size()]);
        svg_.endWindow().rectangle(area_, "fill=\"none\" stroke=\"#999\"");
    }

private:
    // Within the plotting area.
    SvgPoint at(double x, double y) const {
        return {(x - x_.from) / (x_.to - x_.from) * area_.width,
                area_.height - (y - y_.from) / (y_.to - y_.from) * area_.height};
    }
    void text(double x, double y, char const* anchor, std::string const& what) {
        svg_.text({x, y}, what, fmt::format("text-anchor=\"{}\"", anchor));
    }
    void line(SvgPoint from, SvgPoint to, char const* colour) {
        svg_.line(from, to, fmt::format("stroke=\"{}\"", colour));
    }
    void axes(bool last) {
        for (double const y : ticks(y_.from, y_.to, 6)) {
            double const py = area_.corner.y + at(0, y).y;
            line({left, py}, {area_.right(), py}, y == 0 ? "#bbb" : "#e6e6e6");
            text(left - 8, py + 4, "end", fmt::format("{:.6g}", y));
        }
        for (double const x : ticks(x_.from, x_.to, 10)) {
            double const px = left + at(x, 0).x;
            line({px, area_.corner.y}, {px, area_.bottom()}, "#e6e6e6");
            text(px, area_.bottom() + 16, "middle", fmt::format("{:.6g}", x));
        }
        if (!panel_.unit.empty()) text(left - 8, area_.corner.y - 10, "end", panel_.unit);
        if (last) text(area_.right(), area_.bottom() + 34, "end", "time, s");
    }
    void legend() {
        double x = left;
        double const y = area_.corner.y - 14;
        for (std::size_t i = 0; i < panel_.curves.size() && x < area_.right() - 60; ++i) {
            std::string const& name = panel_.curves[i].name;
            line({x, y}, {x + 18, y}, colours[i % colours.size()]);
            text(x + 24, y + 4, "start", name);
            x += 44 + 6.6 * double(name.size());
        }
    }
    void curve(ChartCurve const& curve, char const* colour) {
        std::vector<SvgPoint> points;
        for (std::size_t i = 0; i < curve.x.size(); ++i) points.push_back(at(curve.x[i], curve.y[i]));
        svg_.curve(points, fmt::format("stroke-width=\"1.5\" stroke-linejoin=\"round\" stroke=\"{}\"", colour));
        if (double(curve.keyX.size()) * leastKeyDistance > area_.width) return;
        for (std::size_t i = 0; i < curve.keyX.size(); ++i)
            svg_.circle(at(curve.keyX[i], curve.keyY[i]), 3, fmt::format("fill=\"#fff\" stroke=\"{}\"", colour));
    }

    ChartPanel const& panel_;
    Range x_, y_;
    SvgBox area_;
    Svg& svg_;
};

}  // namespace

double roundStep(double rough) {
    if (!(rough > 0) || !std::isfinite(rough)) return 0;
    double const power = std::pow(10, std::floor(std::log10(rough)));
    return power * (rough > power * 5 ? 10 : rough > power * 2 ? 5 : rough > power ? 2 : 1);
}

std::vector<double> multiples(double step, double from, double to) {
    std::vector<double> result;
    if (!(step > 0)) return result;
    for (double i = std::ceil(from / step - 1e-9); i * step <= to + step * 1e-9 && result.size() < 1000; ++i)
        result.push_back(i * step + 0.0);
    return result;
}

std::vector<double> ticks(double from, double to, int count) {
    return multiples(roundStep((to - from) / std::max(count, 1)), from, to);
}

std::string drawSvg(Chart const& chart) {
    Range x;
    for (ChartPanel const& panel : chart.panels)
        for (ChartCurve const& curve : panel.curves) x.take(curve.x);
    x.widen(x.to > x.from ? 0 : 1);
    double const each = legendHeight + panelHeight + gap;
    Svg svg(width, top + double(chart.panels.size()) * each - gap + bottom);
    svg.text({left, 24}, chart.title, "font-size=\"15\" font-weight=\"bold\"");
    for (std::size_t i = 0; i < chart.panels.size(); ++i)
        Panel(chart.panels[i], x, top + legendHeight + double(i) * each, svg).draw(i + 1 == chart.panels.size());
    return svg.take();
}

}  // namespace host
