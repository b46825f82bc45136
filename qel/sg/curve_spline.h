// One spline segment of an animation curve in its own units: the input runs from 0 to 1 between its two keys.
//
// A cubic Bezier curve whose handles have been fitted, so that x(u) never falls (its derivative is a quadratic in
// Bernstein form with the coefficients a, 1 - a - b, b, which has no sign change while a and b lie in [0, 1]). Outputs
// keep the curve's unit.
#pragma once
#include <cmath>
#include <initializer_list>

namespace sg {

struct CurveSpline {
    double x1 = 1.0 / 3, x2 = 2.0 / 3;  // control points' x, both in [0, 1]; the ends' are 0 and 1
    double y0 = 0, y1 = 0, y2 = 0, y3 = 0;

    // From a key's handle, relative to it, in the curve's output and in widths of the segment. Nothing happens on (0,
    // 0): a missing handle is flat and a third of the segment long.
    void setOutHandle(double dx, double dy) {
        if (dx == 0 && dy == 0) return;
        x1 = dx < 0 ? 0 : dx > 1 ? 1 : dx;
        y1 = y0 + (dx > 1 ? dy / dx : dy);
    }
    void setInHandle(double dx, double dy) {
        if (dx == 0 && dy == 0) return;
        x2 = dx > 0 ? 1 : dx < -1 ? 0 : 1 + dx;
        y2 = y3 + (dx < -1 ? dy / -dx : dy);
    }

    double x(double u) const { return ((1 + 3 * (x1 - x2)) * u + 3 * (x2 - 2 * x1)) * u * u + 3 * x1 * u; }
    double y(double u) const {
        double const v = 1 - u;
        return (y0 * v + 3 * y1 * u) * v * v + (3 * y2 * v + y3 * u) * u * u;
    }

    // The u in [0, 1] with x(u) = s, for s in [0, 1]: Halley's method from u = s, which needs two or three steps with
    // ordinary handles, and a bracket for the others. After a step the error is about
    // ((b / x')^2 - a / x') step^3, where b is half the second derivative and a a sixth of the third. As both handles
    // lie in the segment, |b| <= 6, |a| <= 4 and x' <= 3, so that it is at most 48 step^3 / x'^2.
    double solve(double s) const {
        double const a = 1 + 3 * (x1 - x2), b = 3 * (x2 - 2 * x1), c = 3 * x1;
        double u = s;
        for (int step = 0; step < 5; ++step) {
            double const error = ((a * u + b) * u + c) * u - s;
            double const slope = (3 * a * u + 2 * b) * u + c, bend = 3 * a * u + b;
            double const moved = error * slope / (slope * slope - error * bend);
            u -= moved;
            if (48 * std::abs(moved * moved * moved) < precision * slope * slope) {
                if (u >= 0 && u <= 1) return u;
                break;
            }
        }
        return solveBracketed(s);
    }

    double at(double s) const { return y(solve(s)); }

private:
    // In u. A value differs by at most 3 times the control points' spread times this, far below a float's last place.
    static constexpr double precision = 1e-9;

    // Newton's method where it stays inside a bracket that every step narrows; where it is slow (x'(u) near 0) every
    // other step halves the bracket.
    double solveBracketed(double s) const {
        double const a = 1 + 3 * (x1 - x2), b = 3 * (x2 - 2 * x1), c = 3 * x1;
        double low = 0, high = 1, u = s;
        while (high - low > precision) {
            for (bool const halve : {false, true}) {
                double const error = ((a * u + b) * u + c) * u - s;
                if (error == 0) return u;
                (error > 0 ? high : low) = u;
                double const next = u - error / ((3 * a * u + 2 * b) * u + c);
                u = !halve && next > low && next < high ? next : 0.5 * (low + high);
            }
        }
        return u;
    }
};

}  // namespace sg
