// Writes SVG pictures: elements as they come, groups opened and closed by hand. Pixels, y down. Numbers are written to
// a hundredth, so that the same picture is the same bytes wherever it is drawn. Text is UTF-8; attributes are written
// as given ("class=\"key\" stroke=\"#444\"").
#pragma once
#include <span>
#include <string>
#include <string_view>

namespace host {

struct SvgPoint {
    double x = 0, y = 0;

    SvgPoint operator+(SvgPoint const& o) const { return {x + o.x, y + o.y}; }
    SvgPoint operator-(SvgPoint const& o) const { return {x - o.x, y - o.y}; }
    SvgPoint operator*(double f) const { return {x * f, y * f}; }
};

struct SvgBox {
    SvgPoint corner;  // upper left
    double width = 0, height = 0;

    double right() const { return corner.x + width; }
    double bottom() const { return corner.y + height; }
    bool contains(SvgPoint const& p) const {
        return p.x >= corner.x && p.x <= right() && p.y >= corner.y && p.y <= bottom();
    }
    bool meets(SvgBox const& o) const {
        return corner.x < o.right() && o.corner.x < right() && corner.y < o.bottom() && o.corner.y < bottom();
    }
};

class Svg {
public:
    Svg(double width, double height);  // white

    Svg& group(std::string_view attributes);
    Svg& endGroup();
    Svg& window(SvgBox const& box);  // hides what lies outside; its own coordinates begin at its corner
    Svg& endWindow();
    Svg& line(SvgPoint from, SvgPoint to, std::string_view attributes);
    // A point that is not finite leaves a gap.
    Svg& curve(std::span<SvgPoint const> points, std::string_view attributes);
    Svg& area(std::span<SvgPoint const> corners, std::string_view attributes);  // closed
    Svg& circle(SvgPoint centre, double radius, std::string_view attributes);
    Svg& rectangle(SvgBox const& box, std::string_view attributes);
    Svg& text(SvgPoint at, std::string_view what, std::string_view attributes = {});
    std::string take() { return std::move(out_ += "</svg>\n"); }

private:
    Svg& element(std::string_view name, std::string_view attributes);
    void point(char command, SvgPoint const& at);
    void points(std::span<SvgPoint const> points);

    std::string out_;
};

}  // namespace host
