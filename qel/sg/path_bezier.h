// One segment of a path: a cubic Bezier curve in space, in double precision. Coordinates are metres, u runs from 0
// to 1.
#pragma once
#include "qel/utils/values.h"
#include <algorithm>
#include <cmath>

namespace sg {

struct PathPoint {
    double x = 0, y = 0, z = 0;

    PathPoint() = default;
    PathPoint(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
    explicit PathPoint(Qelp::Vector3 const& v) : x(double(v.x)), y(double(v.y)), z(double(v.z)) {}

    PathPoint operator+(PathPoint const& o) const { return {x + o.x, y + o.y, z + o.z}; }
    PathPoint operator-(PathPoint const& o) const { return {x - o.x, y - o.y, z - o.z}; }
    PathPoint operator*(double f) const { return {x * f, y * f, z * f}; }
    bool operator==(PathPoint const&) const = default;

    double dot(PathPoint const& o) const { return x * o.x + y * o.y + z * o.z; }
    double length() const { return std::sqrt(dot(*this)); }  // of float magnitudes: the square cannot overflow

    // What does not fit a float becomes the largest that does.
    Qelp::Vector3 toVector() const {
        auto const fit = [](double v) { return float(std::clamp(v, -3.4028234663852886e38, 3.4028234663852886e38)); };
        return {fit(x), fit(y), fit(z), 0};
    }
};

struct PathBezier {
    PathPoint p[4];

    bool operator==(PathBezier const&) const = default;

    PathPoint at(double u) const {  // the ends come out exactly
        double const v = 1 - u;
        return p[0] * (v * v * v) + p[1] * (3 * v * v * u) + p[2] * (3 * v * u * u) + p[3] * (u * u * u);
    }

    // The derivative is a + b u + c u^2.
    struct Derivative {
        PathPoint a, b, c;
        PathPoint at(double u) const { return a + (b + c * u) * u; }
        double speed(double u) const { return at(u).length(); }
    };
    Derivative derivative() const {
        PathPoint const d0 = (p[1] - p[0]) * 3, d1 = (p[2] - p[1]) * 3, d2 = (p[3] - p[2]) * 3;
        return {d0, (d1 - d0) * 2, d0 - d1 * 2 + d2};
    }

    // No curve is longer than the polygon of its control points.
    double polygonLength() const { return (p[1] - p[0]).length() + (p[2] - p[1]).length() + (p[3] - p[2]).length(); }
};

}  // namespace sg
