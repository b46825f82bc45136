// Draws curves over time as an SVG picture: a panel per unit, one above the other, each with its axes, ticks at round
// numbers, and a legend. It knows nothing of scenes.
#pragma once
#include <string>
#include <vector>

namespace host {

struct ChartCurve {
    std::string name;                // in the legend
    std::vector<double> x, y;        // the line, x rising
    std::vector<double> keyX, keyY;  // marked, unless they are so dense that the marks would hide the line
};

struct ChartPanel {
    std::string unit;  // beside the axis; may be empty
    std::vector<ChartCurve> curves;
};

struct Chart {
    std::string title;
    std::vector<ChartPanel> panels;
};

// UTF-8. Any finite numbers; others leave a gap.
std::string drawSvg(Chart const& chart);

// The smallest of 1, 2 or 5 times a power of ten that is not below `rough`; 0 for what is no positive number.
double roundStep(double rough);
// Of the step within [from, to], the ends included; at most 1000.
std::vector<double> multiples(double step, double from, double to);
// Round numbers (1, 2 or 5 times a power of ten apart) within [from, to], about `count` of them.
std::vector<double> ticks(double from, double to, int count);

}  // namespace host
