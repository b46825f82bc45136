#include "hosts/tavo/chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
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

std::string escaped(std::string const& text) {
    std::string result;
    for (char const c : text) {
        if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '&')
            result += "&amp;";
        else if (c == '"')
            result += "&quot;";
        else if (static_cast<unsigned char>(c) >= 0x20)
            result += c;
    }
    return result;
}

class Panel {
public:
    Panel(ChartPanel const& panel, Range x, double y0, std::string& out) : panel_(panel), x_(x), y0_(y0), out_(out) {
        for (ChartCurve const& curve : panel.curves) y_.take(curve.y), y_.take(curve.keyY);
        y_.widen(0.06);
    }
    void draw(bool last) {
        legend();
        axes(last);
        fmt::format_to(std::back_inserter(out_),
                       "<svg x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" overflow=\"hidden\">\n", left, y0_,
                       width - left - right, panelHeight);
        for (std::size_t i = 0; i < panel_.curves.size(); ++i) curve(panel_.curves[i], colours[i % colours.size()]);
        out_ += "</svg>\n";
        fmt::format_to(std::back_inserter(out_),
                       "<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" fill=\"none\" stroke=\"#999\"/>\n", left,
                       y0_, width - left - right, panelHeight);
    }

private:
    // Within the plotting area.
    double px(double x) const { return (x - x_.from) / (x_.to - x_.from) * (width - left - right); }
    double py(double y) const { return panelHeight - (y - y_.from) / (y_.to - y_.from) * panelHeight; }

    void text(double x, double y, char const* anchor, std::string const& what) {
        fmt::format_to(std::back_inserter(out_), "<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\">{}</text>\n", x, y,
                       anchor, escaped(what));
    }
    void line(double x1, double y1, double x2, double y2, char const* colour) {
        fmt::format_to(std::back_inserter(out_), "<path d=\"M{:.1f} {:.1f}L{:.1f} {:.1f}\" stroke=\"{}\"/>\n", x1, y1,
                       x2, y2, colour);
    }
    void axes(bool last) {
        for (double const y : ticks(y_.from, y_.to, 6)) {
            line(left, y0_ + py(y), width - right, y0_ + py(y), y == 0 ? "#bbb" : "#e6e6e6");
            text(left - 8, y0_ + py(y) + 4, "end", fmt::format("{:.6g}", y));
        }
        for (double const x : ticks(x_.from, x_.to, 10)) {
            line(left + px(x), y0_, left + px(x), y0_ + panelHeight, "#e6e6e6");
            text(left + px(x), y0_ + panelHeight + 16, "middle", fmt::format("{:.6g}", x));
        }
        if (!panel_.unit.empty()) text(left - 8, y0_ - 10, "end", panel_.unit);
        if (last) text(width - right, y0_ + panelHeight + 34, "end", "time, s");
    }
    void legend() {
        double x = left;
        for (std::size_t i = 0; i < panel_.curves.size() && x < width - right - 60; ++i) {
            std::string const& name = panel_.curves[i].name;
            line(x, y0_ - 14, x + 18, y0_ - 14, colours[i % colours.size()]);
            text(x + 24, y0_ - 10, "start", name);
            x += 44 + 6.6 * double(name.size());
        }
    }
    void curve(ChartCurve const& curve, char const* colour) {
        out_ += "<path fill=\"none\" stroke-width=\"1.5\" stroke-linejoin=\"round\" d=\"";
        bool drawing = false;
        for (std::size_t i = 0; i < curve.x.size(); ++i) {
            bool const usable = std::isfinite(curve.x[i]) && std::isfinite(curve.y[i]);
            if (usable)
                fmt::format_to(std::back_inserter(out_), "{}{:.2f} {:.2f}", drawing ? 'L' : 'M', px(curve.x[i]),
                               py(curve.y[i]));
            drawing = usable;
        }
        fmt::format_to(std::back_inserter(out_), "\" stroke=\"{}\"/>\n", colour);
        if (double(curve.keyX.size()) * leastKeyDistance > width - left - right) return;
        for (std::size_t i = 0; i < curve.keyX.size(); ++i)
            fmt::format_to(std::back_inserter(out_),
                           "<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"3\" fill=\"#fff\" stroke=\"{}\"/>\n",
                           px(curve.keyX[i]), py(curve.keyY[i]), colour);
    }

    ChartPanel const& panel_;
    Range x_, y_;
    double y0_;
    std::string& out_;
};

}  // namespace

std::vector<double> ticks(double from, double to, int count) {
    double const rough = (to - from) / std::max(count, 1);
    if (!(rough > 0) || !std::isfinite(rough)) return {};
    double const power = std::pow(10, std::floor(std::log10(rough)));
    double const step = power * (rough > power * 5 ? 10 : rough > power * 2 ? 5 : rough > power ? 2 : 1);
    std::vector<double> result;
    for (double i = std::ceil(from / step - 1e-9); i * step <= to + step * 1e-9 && result.size() < 1000; ++i)
        result.push_back(i * step + 0.0);
    return result;
}

std::string drawSvg(Chart const& chart) {
    Range x;
    for (ChartPanel const& panel : chart.panels)
        for (ChartCurve const& curve : panel.curves) x.take(curve.x);
    x.widen(x.to > x.from ? 0 : 1);
    double const each = legendHeight + panelHeight + gap;
    double const height = top + double(chart.panels.size()) * each - gap + bottom;
    std::string out = fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
                                  "viewBox=\"0 0 {0} {1}\" font-family=\"sans-serif\" font-size=\"12\">\n"
                                  "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n"
                                  "<text x=\"{2}\" y=\"24\" font-size=\"15\" font-weight=\"bold\">{3}</text>\n",
                                  width, height, left, escaped(chart.title));
    for (std::size_t i = 0; i < chart.panels.size(); ++i)
        Panel(chart.panels[i], x, top + legendHeight + double(i) * each, out).draw(i + 1 == chart.panels.size());
    return out + "</svg>\n";
}

}  // namespace host
