// One spline segment of an animation curve in its own units: the input runs from 0 to 1 between its two keys.
//
// A cubic Bezier curve whose handles have been fitted, so that x(u) never falls (its derivative is a quadratic in
// Bernstein form with the coefficients a, 1 - a - b, b, which has no sign change while a and b lie in [0, 1]). Outputs
// keep the curve's unit.
#pragma once

namespace sg {

struct CurveSpline {
    double x1 = 1.0 / 3, x2 = 2.0 / 3;  // control points' x, both in [0, 1]; the ends' are 0 and 1
    double y0 = 0, y1 = 0, y2 = 0, y3 = 0;

    // From a key's handle, relative to it, and the segment's width, in the curve's units. Nothing happens on (0, 0): a
    // missing handle is flat and a third of the segment long.
    void setOutHandle(double dx, double dy, double width) {
        if (dx == 0 && dy == 0) return;
        double const fit = dx > width ? width / dx : 1;
        x1 = dx > 0 ? dx * fit / width : 0;
        y1 = y0 + dy * fit;
    }
    void setInHandle(double dx, double dy, double width) {
        if (dx == 0 && dy == 0) return;
        double const fit = -dx > width ? width / -dx : 1;
        x2 = dx < 0 ? 1 + dx * fit / width : 1;
        y2 = y3 + dy * fit;
    }

    double x(double u) const { return ((1 + 3 * (x1 - x2)) * u + 3 * (x2 - 2 * x1)) * u * u + 3 * x1 * u; }
    double y(double u) const {
        double const v = 1 - u;
        return (y0 * v + 3 * y1 * u) * v * v + (3 * y2 * v + y3 * u) * u * u;
    }

    // The u in [0, 1] with x(u) = s, for s in [0, 1]. Newton's method from u = s, kept inside a bracket that every step
    // narrows. Where it converges slowly (x'(u) near 0) every other step halves the bracket: at most 40 halvings.
    double solve(double s) const {
        double const a = 1 + 3 * (x1 - x2), b = 3 * (x2 - 2 * x1), c = 3 * x1;
        double low = 0, high = 1, u = s;
        for (int step = 0; step < 88; ++step) {
            double const error = ((a * u + b) * u + c) * u - s;
            if (error == 0) return u;
            (error > 0 ? high : low) = u;
            double next = u - error / ((3 * a * u + 2 * b) * u + c);
            bool const halve = (step > 8 && step % 2) || !(next > low && next < high);
            if (halve) next = 0.5 * (low + high);
            double const moved = next - u;
            u = next;
            if (moved < 1e-9 && moved > -1e-9) break;
        }
        return u;
    }

    double at(double s) const { return y(solve(s)); }
};

}  // namespace sg
