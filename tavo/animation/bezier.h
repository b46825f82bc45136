// The weights of the four control points of a cubic Bezier segment, at t in 0 to 1: of its point and of its first and
// second derivative. They are polynomials, so that a t outside follows the cubic on.
#pragma once
#include <array>

namespace Tavo {

using BezierWeights = std::array<double, 4>;

constexpr BezierWeights bezierWeights(double t) {
    double const u = 1 - t;
    return {u * u * u, 3 * t * u * u, 3 * t * t * u, t * t * t};
}

constexpr BezierWeights bezierFirstDerivativeWeights(double t) {
    double const a = t - 1;
    return {-3 * a * a, 3 * a * (3 * t - 1), -3 * t * (3 * t - 2), 3 * t * t};
}

constexpr BezierWeights bezierSecondDerivativeWeights(double t) {
    return {-6 * (t - 1), 18 * t - 12, 6 - 18 * t, 6 * t};
}

}  // namespace Tavo
