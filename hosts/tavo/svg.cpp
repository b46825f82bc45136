#include "hosts/tavo/svg.h"

#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace host {
namespace {

// To a hundredth, without needless zeros and without "-0".
std::string number(double value) {
    std::string text = fmt::format("{:.2f}", value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string escaped(std::string_view text) {
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

}  // namespace

Svg::Svg(double width, double height) {
    out_ = fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
                       "viewBox=\"0 0 {0} {1}\" font-family=\"sans-serif\" font-size=\"12\">\n"
                       "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n",
                       number(width), number(height));
}

Svg& Svg::group(std::string_view attributes) {
    out_ += fmt::format("<g {}>\n", attributes);
    return *this;
}

Svg& Svg::endGroup() {
    out_ += "</g>\n";
    return *this;
}

Svg& Svg::window(SvgBox const& box) {
    out_ += fmt::format("<svg x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" overflow=\"hidden\">\n",
                        number(box.corner.x), number(box.corner.y), number(box.width), number(box.height));
    return *this;
}

Svg& Svg::endWindow() {
    out_ += "</svg>\n";
    return *this;
}

Svg& Svg::element(std::string_view name, std::string_view attributes) {
    out_ += fmt::format("<{}{}{}/>\n", name, attributes.empty() ? "" : " ", attributes);
    return *this;
}

void Svg::point(char command, SvgPoint const& at) { (((out_ += command) += number(at.x)) += ' ') += number(at.y); }

void Svg::points(std::span<SvgPoint const> points) {
    bool drawing = false;
    for (SvgPoint const& p : points) {
        bool const isUsable = std::isfinite(p.x) && std::isfinite(p.y);
        if (isUsable) point(drawing ? 'L' : 'M', p);
        drawing = isUsable;
    }
}

Svg& Svg::line(SvgPoint from, SvgPoint to, std::string_view attributes) {
    SvgPoint const ends[] = {from, to};
    return curve(ends, attributes);
}

Svg& Svg::curve(std::span<SvgPoint const> points, std::string_view attributes) {
    out_ += "<path fill=\"none\" d=\"";
    this->points(points);
    out_ += fmt::format("\" {}/>\n", attributes);
    return *this;
}

Svg& Svg::area(std::span<SvgPoint const> corners, std::string_view attributes) {
    out_ += "<path d=\"";
    points(corners);
    out_ += fmt::format("Z\" {}/>\n", attributes);
    return *this;
}

Svg& Svg::circle(SvgPoint centre, double radius, std::string_view attributes) {
    return element("circle", fmt::format("cx=\"{}\" cy=\"{}\" r=\"{}\" {}", number(centre.x), number(centre.y),
                                         number(radius), attributes));
}

Svg& Svg::rectangle(SvgBox const& box, std::string_view attributes) {
    return element("rect", fmt::format("x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" {}", number(box.corner.x),
                                       number(box.corner.y), number(box.width), number(box.height), attributes));
}

Svg& Svg::text(SvgPoint at, std::string_view what, std::string_view attributes) {
    out_ += fmt::format("<text x=\"{}\" y=\"{}\"{}{}>{}</text>\n", number(at.x), number(at.y),
                        attributes.empty() ? "" : " ", attributes, escaped(what));
    return *this;
}

}  // namespace host
