#include "tavo/animation/curve_fit_global.h"
#include "tavo/animation/bezier.h"
#include <cmath>
#include <limits>
#include <numbers>

namespace Tavo {
namespace {

using Matrix = SamplesFitter_multiFit::Matrix;
using Vector = SamplesFitter_multiFit::Vector;

bool areFittable(Matrix const& samples, Vector const& parameters, double limit) {
    return samples.rows() >= 2 && samples.columns() >= 1 && int(parameters.size()) == samples.rows() &&
           parameters.back() > 0 && Qelp::areWithin(samples.numbers(), limit) && Qelp::areWithin(parameters, limit);
}

int unknownsOf(int segments) { return 2 * segments + 2; }

// ---- where the knots go ----

// The direction from one sample to the next, zero if they coincide.
Vector direction(Matrix const& samples, int from) {
    Vector out(std::max<std::size_t>(samples.columns(), 3));
    double square = 0;
    for (int c = 0; c < samples.columns(); ++c) {
        out[c] = samples(from + 1, c) - samples(from, c);
        square += out[c] * out[c];
    }
    if (square > 0)
        for (double& x : out) x /= std::sqrt(square);
    return out;
}

// The arc tangent of the quotient as it stands, which is negative beyond a right angle; a right angle is one.
double turning(Vector const& a, Vector const& b) {
    double dot = 0;
    for (std::size_t c = 0; c < a.size(); ++c) dot += a[c] * b[c];
    double const x = a[1] * b[2] - a[2] * b[1], y = a[2] * b[0] - a[0] * b[2], z = a[0] * b[1] - a[1] * b[0];
    double const cross = std::sqrt(x * x + y * y + z * z);
    if (dot == 0) return cross > 0 ? std::numbers::pi / 2 : 0;
    return std::atan(cross / dot);
}

Vector turnings(Matrix const& samples) {
    Vector out;
    Vector before = direction(samples, 0);
    for (int i = 0; i + 2 < samples.rows(); ++i) {
        Vector after = direction(samples, i + 1);
        out.push_back(turning(before, after));
        before = std::move(after);
    }
    return out;
}

// The mean over a window about each, of what lies in the array; 0 without anything. By running sums, so that a wide
// window costs no more.
Vector smoothed(Vector const& values, int window) {
    long const count = long(values.size()), start = -long(std::floor((double(window) - 1) * 0.5));
    Vector sums(values.size() + 1), out(values.size());
    for (long i = 0; i < count; ++i) sums[i + 1] = sums[i] + values[i];
    for (long i = 0; i < count; ++i) {
        long const from = std::clamp(i + start, 0L, count), to = std::clamp(i + start + window, 0L, count);
        if (from < to) out[i] = (sums[to] - sums[from]) / double(to - from);
    }
    return out;
}

// The knots that the turning places; behind the last one placed there may be fewer than asked for.
Vector knotsOfTurning(Vector const& parameters, Vector const& turning, int segments, double knotEpsilon) {
    Vector knots{0};
    std::size_t const count = turning.size();
    if (count < 2) return knots;
    double sum = 2 * turning[count - 1] - turning[count - 2];  // one more, in line with the last two
    for (double angle : turning) sum += angle;
    double const budget = sum / segments;
    double accumulated = 0;
    for (std::size_t i = 0; i < count && int(knots.size()) < segments; ++i) {
        double const previous = accumulated;
        accumulated += turning[i];
        if (!(budget <= accumulated)) continue;
        double const share = (budget - previous) / (accumulated - previous);
        accumulated -= budget;
        if (i == 0) continue;
        double const knot = parameters[i - 1] + share * (parameters[i] - parameters[i - 1]);
        if (knot - knots.back() > knotEpsilon && parameters.back() - knot > knotEpsilon) knots.push_back(knot);
    }
    return knots;
}

void spreadMissingKnots(Vector& knots, int segments, double last) {
    double const from = knots.back();
    int const missing = segments + 1 - int(knots.size());
    for (int i = 1; i < missing; ++i) knots.push_back(from + (last - from) * i / missing);
    knots.push_back(last);
}

// ---- the system ----

// The four entries of a sample's row: the weights of the unknowns from `column` on.
struct BasisRow {
    int column;
    BezierWeights weights;
};

// Behind the first segment the first handle is the reflection of the one before the joint, so that its weight falls to
// the joint twice and to that handle once, negative.
BasisRow basisRow(Vector const& knots, double t, double knotEpsilon) {
    auto const lastKnot = knots.end() - 1;
    auto const end = t == 0 ? knots.begin() + 1 : std::partition_point(knots.begin() + 1, lastKnot, [=](double knot) {
        return !(knot + knotEpsilon >= t);
    });
    int const span = int(end - knots.begin()) - 1;
    auto const [b0, b1, b2, b3] = bezierWeights((t - end[-1]) / (end[0] - end[-1]));
    if (span == 0) return {0, {b0, b1, b2, b3}};
    return {2 * span, {-b1, b0 + 2 * b1, b2, b3}};
}

void combine(BasisRow const& row, Matrix const& controls, Vector& out) {
    out.assign(std::size_t(controls.columns()), 0);
    for (int j = 0; j < 4; ++j)
        for (int c = 0; c < controls.columns(); ++c) out[c] += row.weights[j] * controls(row.column + j, c);
}

// A x = b for a symmetric A with three diagonals on either side of the main one, of which the upper half is kept: row
// r's entries r to r + 3. b has one column a dimension, and becomes x.
class BandedSystem {
public:
    BandedSystem(int unknowns, int dimension) : m_a(unknowns, width), m_b(unknowns, dimension) {}

    void add(BasisRow const& row, double const* sample) {
        for (int i = 0; i < width; ++i) {
            int const r = row.column + i;
            for (int j = i; j < width; ++j) m_a(r, j - i) += row.weights[i] * row.weights[j];
            for (int c = 0; c < m_b.columns(); ++c) m_b(r, c) += row.weights[i] * sample[c];
        }
    }

    // False on a pivot below the tolerance, and on a solution that is not finite, as behind a pivot of 0.
    bool solve(double pivotTolerance) {
        for (int r = 0; r < m_a.rows(); ++r)
            if (!eliminate(r, pivotTolerance)) return false;
        for (int r = m_a.rows() - 1; r >= 0; --r) substitute(r);
        return Qelp::areWithin(m_b.numbers(), std::numeric_limits<double>::max());
    }

    Matrix& solution() { return m_b; }

private:
    static constexpr int width = 4;

    int reach(int r) const { return std::min(width, m_a.rows() - r); }

    bool eliminate(int r, double pivotTolerance) {
        double const pivot = m_a(r, 0);
        if (!(std::abs(pivot) >= pivotTolerance)) return false;
        for (int i = 1; i < reach(r); ++i) {
            double const factor = m_a(r, i) / pivot;
            for (int j = i; j < reach(r); ++j) m_a(r + i, j - i) -= factor * m_a(r, j);
            for (int c = 0; c < m_b.columns(); ++c) m_b(r + i, c) -= factor * m_b(r, c);
        }
        return true;
    }

    void substitute(int r) {
        for (int c = 0; c < m_b.columns(); ++c) {
            double value = m_b(r, c);
            for (int i = 1; i < reach(r); ++i) value -= m_a(r, i) * m_b(r + i, c);
            m_b(r, c) = value / m_a(r, 0);
        }
    }

    Matrix m_a, m_b;
};

// The control rows that fit the samples best with the given knots.
bool fitControls(Matrix const& samples, Vector const& parameters, Vector const& knots, double pivotTolerance,
                 double knotEpsilon, Matrix& controls) {
    BandedSystem system(unknownsOf(int(knots.size()) - 1), samples.columns());
    for (int i = 0; i < samples.rows(); ++i) system.add(basisRow(knots, parameters[i], knotEpsilon), samples[i]);
    if (!system.solve(pivotTolerance)) return false;
    controls = std::move(system.solution());
    return true;
}

bool isWithin(double tolerance, Matrix const& samples, Vector const& parameters, Vector const& knots,
              Matrix const& controls, double knotEpsilon) {
    Vector point;
    for (int i = 0; i < samples.rows(); ++i) {
        combine(basisRow(knots, parameters[i], knotEpsilon), controls, point);
        double square = 0;
        for (int c = 0; c < samples.columns(); ++c) square += (point[c] - samples(i, c)) * (point[c] - samples(i, c));
        if (!(std::sqrt(square) <= tolerance)) return false;
    }
    return true;
}

}  // namespace

// More unknowns than samples leave a pivot of 0, whatever rounding makes of it.
bool SamplesFitter_multiFit::superSegmentFit(Matrix const& samples, Vector const& parameters, int segments, int window,
                                             double pivotTolerance, double knotEpsilon) {
    if (!areFittable(samples, parameters, MaxMagnitude)) return false;
    if (segments < 1 || segments > (samples.rows() - 2) / 2) return false;
    Vector knots = knotsOfTurning(parameters, smoothed(turnings(samples), window), segments, knotEpsilon);
    spreadMissingKnots(knots, segments, parameters.back());
    Matrix controls;
    if (!fitControls(samples, parameters, knots, pivotTolerance, knotEpsilon, controls)) return false;
    m_knots = std::move(knots), m_controls = std::move(controls);
    return true;
}

bool SamplesFitter_multiFit::superSegmentFit(Matrix const& samples, Vector const& parameters, double tolerance,
                                             double pivotTolerance, double knotEpsilon) {
    if (!areFittable(samples, parameters, MaxMagnitude)) return false;
    for (int segments = 1; unknownsOf(segments) <= samples.rows(); ++segments) {
        Vector knots{0};
        spreadMissingKnots(knots, segments, parameters.back());
        Matrix controls;
        if (!fitControls(samples, parameters, knots, pivotTolerance, knotEpsilon, controls)) return false;
        if (!isWithin(tolerance, samples, parameters, knots, controls, knotEpsilon)) continue;
        m_knots = std::move(knots), m_controls = std::move(controls);
        return true;
    }
    return false;
}

bool SamplesFitter_multiFit::getControlPoint(unsigned index, Vector& out) const {
    if (m_knots.empty() || index >= 3 * m_knots.size() - 2) return false;
    int const knot = int((index + 1) / 3), place = int(index) - 3 * knot;
    out.resize(std::size_t(m_controls.columns()));
    for (int c = 0; c < m_controls.columns(); ++c) {
        if (knot == 0)
            out[c] = m_controls(int(index), c);
        else if (place < 1)
            out[c] = m_controls(2 * knot + (place + 1), c);
        else
            out[c] = 2 * m_controls(2 * knot + 1, c) - m_controls(2 * knot, c);
    }
    return true;
}

bool SamplesFitter_multiFit::evaluate(double t, Vector& out, double eps) const {
    if (m_knots.empty()) return false;
    combine(basisRow(m_knots, t, eps), m_controls, out);
    return true;
}

}  // namespace Tavo
