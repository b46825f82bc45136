#include "tavo/animation/curve_fit_simple.h"
#include "tavo/animation/bezier.h"
#include <cmath>
#include <limits>

namespace Tavo {
namespace {

using Matrix = SamplesFitter_simpleFit::Matrix;
using Vector = SamplesFitter_simpleFit::Vector;

constexpr double handleEps = 1e-5;

double dot(double const* a, double const* b, int dimension) {
    double sum = 0;
    for (int c = 0; c < dimension; ++c) sum += a[c] * b[c];
    return sum;
}

double distance(double const* a, double const* b, int dimension) {
    double sum = 0;
    for (int c = 0; c < dimension; ++c) sum += (b[c] - a[c]) * (b[c] - a[c]);
    return std::sqrt(sum);
}

// Makes it a unit vector and gives the length that it had; what has none stays zero.
double normalize(Vector& v) {
    double const length = std::sqrt(dot(v.data(), v.data(), int(v.size())));
    if (length > 0)
        for (double& x : v) x /= length;
    return length;
}

Vector chord(Matrix const& samples, int from, int to) {
    Vector out(std::size_t(samples.columns()));
    for (int c = 0; c < samples.columns(); ++c) out[c] = samples(to, c) - samples(from, c);
    return out;
}

// The unit direction from an end of a segment into it; `step` is 1 at the start and -1 at the end. Inside the curve it
// blends the chords on both sides, each weighted by the other's length, so that the shorter one has the larger say and
// both segments of a joint find the same line.
Vector tangent(Matrix const& samples, int end, int step, bool isEndOfCurve) {
    Vector inner = chord(samples, end, end + step);
    double const innerLength = normalize(inner);
    if (isEndOfCurve) return inner;
    Vector const innerDirection = inner;
    Vector outer = chord(samples, end - step, end);
    double const outerLength = normalize(outer), sum = innerLength + outerLength;
    if (sum == 0) return inner;
    for (std::size_t c = 0; c < inner.size(); ++c)
        inner[c] = (innerDirection[c] * outerLength + outer[c] * innerLength) / sum;
    normalize(inner);
    return inner;
}

void chordLengthParameters(Matrix const& samples, int first, int last, Vector& u) {
    int const count = last - first + 1;
    u[0] = 0;
    for (int i = 1; i < count; ++i)
        u[i] = u[i - 1] + distance(samples[first + i - 1], samples[first + i], samples.columns());
    double const length = u[count - 1];
    if (length > 0)
        for (int i = 0; i < count; ++i) u[i] /= length;
}

void setRow(Matrix& control, int row, double const* point) { std::copy_n(point, control.columns(), control[row]); }

void setHandlesAtThirds(Matrix& control) {
    for (int c = 0; c < control.columns(); ++c) {
        double const third = (control(3, c) - control(0, c)) / 3;
        control(1, c) = control(0, c) + third;
        control(2, c) = control(3, c) - third;
    }
}

void combine(Matrix const& control, BezierWeights const& weights, Vector& out) {
    out.resize(std::size_t(control.columns()));
    for (int c = 0; c < control.columns(); ++c)
        out[c] = weights[0] * control(0, c) + weights[1] * control(1, c) + weights[2] * control(2, c) +
                 weights[3] * control(3, c);
}

// The normal equations for the lengths of the two handles.
struct HandleEquations {
    double c00 = 0, c01 = 0, c11 = 0, x0 = 0, x1 = 0;

    // False if they have no answer, or one that is not a forward length.
    bool solve(double eps, double& start, double& end) const {
        double const det = c00 * c11 - c01 * c01;
        if (!(std::abs(det) >= eps)) return false;
        start = (c11 * x0 - c01 * x1) / det;
        end = (c00 * x1 - c01 * x0) / det;
        return start >= eps && end >= eps;
    }
};

}  // namespace

// ---- the curve as a whole ----

bool SamplesFitter_simpleFit::fit(Matrix const& samples, double tolerance, int maxRefinementIterations, int maxSamples,
                                  int refinementSteps) {
    if (samples.rows() < 1 || samples.columns() < 1 || !Qelp::areWithin(samples.numbers(), MaxMagnitude)) return false;
    Vector work(std::size_t(std::clamp(maxSamples, 2, std::max(samples.rows(), 2))));
    superSegmentFit(samples, 0, samples.rows() - 1, tolerance, maxRefinementIterations, maxSamples, refinementSteps,
                    work);
    return true;
}

// One segment after the other. The end of each is searched between the farthest that is known to fit, `low`, and the
// nearest that is known not to, `high`. Two samples always fit, and no segment ends before it has them, so the walk
// ends.
void SamplesFitter_simpleFit::superSegmentFit(Matrix const& samples, int first, int last, double tolerance,
                                              int maxRefinementIterations, int maxSamples, int refinementSteps,
                                              Vector& work) {
    m_segments.clear();
    Matrix attempt(4, samples.columns());
    int const reach = std::max(maxSamples, 2) - 1;
    int start = first, low = first;
    do {
        start = low;
        int end = start + std::min(reach, last - start), high = end + 1, steps = 0;
        m_segments.push_back(attempt);
        for (bool isDone = false; !isDone; end = low + (high - low) / 2) {
            double error = 0;
            int split = 0;
            singleSegmentFit(samples, start, end, first, last, refinementSteps, work, attempt, error, split);
            if ((std::isfinite(error) && error <= tolerance) || end < start + 2)
                low = end, m_segments.back() = attempt;
            else
                high = end;
            if (low > start + 1) ++steps;
            bool const isSpent = steps == maxRefinementIterations && low > start;
            isDone = low == last || low + 1 == high || isSpent;
        }
    } while (low != last);
}

unsigned SamplesFitter_simpleFit::getBreakPointsNum() const {
    return m_segments.empty() ? 0 : unsigned(m_segments.size()) + 1;
}

bool SamplesFitter_simpleFit::getControlPoint(unsigned index, Vector& out) const {
    std::size_t const count = m_segments.size();
    if (count == 0 || index > 3 * count) return false;
    std::size_t const segment = std::min<std::size_t>(index / 3, count - 1);
    double const* const row = m_segments[segment][int(index - 3 * segment)];
    out.assign(row, row + m_segments[segment].columns());
    return true;
}

// ---- one segment ----

void SamplesFitter_simpleFit::singleSegmentFit(Matrix const& samples, int first, int last, int wholeFirst,
                                               int wholeLast, int refinementSteps, Vector& u, Matrix& control,
                                               double& maxError, int& splitIndex, float) const {
    maxError = 0, splitIndex = 0;
    setRow(control, 0, samples[first]);
    setRow(control, 3, samples[last]);
    if (last - first < 2) return setHandlesAtThirds(control);
    Vector const startTangent = tangent(samples, first, 1, first == wholeFirst);
    Vector const endTangent = tangent(samples, last, -1, last == wholeLast);
    chordLengthParameters(samples, first, last, u);
    tangentsLength_noCheck(samples, first, last, u, startTangent, endTangent, control, handleEps);
    for (int step = 0; step < refinementSteps; ++step) {
        samplesReparameterization_noCheck(samples, first, last, u, control);
        tangentsLength_noCheck(samples, first, last, u, startTangent, endTangent, control, handleEps);
    }
    measure(samples, first, last, u, control, maxError, splitIndex);
}

// Newton steps may leave a parameter outside 0 to 1, where the segment has no points: what counts there is its end.
void SamplesFitter_simpleFit::measure(Matrix const& samples, int first, int last, Vector const& u,
                                      Matrix const& control, double& maxError, int& splitIndex) const {
    maxError = 0, splitIndex = first;
    Vector point;
    for (int i = first; i <= last; ++i) {
        evaluateBezierSegment_noCheck(control, std::clamp(u[i - first], 0.0, 1.0), point);
        double error = distance(point.data(), samples[i], samples.columns());
        if (std::isnan(error)) error = std::numeric_limits<double>::infinity();
        if (error > maxError) maxError = error, splitIndex = i;
    }
}

void SamplesFitter_simpleFit::tangentsLength_noCheck(Matrix const& samples, int first, int last, Vector const& u,
                                                     Vector const& startTangent, Vector const& endTangent,
                                                     Matrix& control, double eps) const {
    int const dimension = samples.columns();
    double const *const left = startTangent.data(), *const right = endTangent.data();
    double const *const p0 = samples[first], *const p3 = samples[last];
    double const ll = dot(left, left, dimension), lr = dot(left, right, dimension), rr = dot(right, right, dimension);
    HandleEquations sums;
    for (int i = first; i <= last; ++i) {
        auto const [b0, b1, b2, b3] = bezierWeights(u[i - first]);
        double residualLeft = 0, residualRight = 0;
        for (int c = 0; c < dimension; ++c) {
            double const residual = samples(i, c) - (p0[c] * (b0 + b1) + p3[c] * (b2 + b3));
            residualLeft += residual * left[c];
            residualRight += residual * right[c];
        }
        sums.c00 += ll * b1 * b1, sums.c01 += lr * b1 * b2, sums.c11 += rr * b2 * b2;
        sums.x0 += residualLeft * b1, sums.x1 += residualRight * b2;
    }
    setRow(control, 0, p0);
    setRow(control, 3, p3);
    double startLength = 0, endLength = 0;
    if (!sums.solve(eps, startLength, endLength)) return setHandlesAtThirds(control);
    for (int c = 0; c < dimension; ++c) {
        control(1, c) = p0[c] + startLength * left[c];
        control(2, c) = p3[c] + endLength * right[c];
    }
}

// One Newton step a sample towards its nearest point on the segment. Nothing guards the quotient: a sample where it has
// no answer makes the segment's error infinite, and the walk takes fewer samples.
void SamplesFitter_simpleFit::samplesReparameterization_noCheck(Matrix const& samples, int first, int last, Vector& u,
                                                                Matrix const& control) const {
    int const dimension = samples.columns(), count = last - first + 1;
    Vector point, velocity, acceleration;
    for (int i = 0; i < count; ++i) {
        evaluateBezierSegment_noCheck(control, u[i], point);
        evaluateBezierSegmentFirstDerivative_noCheck(control, u[i], velocity);
        evaluateBezierSegmentSecondDerivative_noCheck(control, u[i], acceleration);
        for (int c = 0; c < dimension; ++c) point[c] -= samples(first + i, c);
        double const along = dot(point.data(), velocity.data(), dimension);
        double const speed = dot(velocity.data(), velocity.data(), dimension);
        u[i] -= along / (speed + dot(point.data(), acceleration.data(), dimension));
    }
    double const end = u[count - 1];
    for (int i = 0; i < count; ++i) u[i] /= end;
}

// ---- evaluation ----

void SamplesFitter_simpleFit::evaluateBezierSegment_noCheck(Matrix const& control, double t, Vector& out) const {
    combine(control, bezierWeights(t), out);
}

void SamplesFitter_simpleFit::evaluateBezierSegmentFirstDerivative_noCheck(Matrix const& control, double t,
                                                                           Vector& out) const {
    combine(control, bezierFirstDerivativeWeights(t), out);
}

void SamplesFitter_simpleFit::evaluateBezierSegmentSecondDerivative_noCheck(Matrix const& control, double t,
                                                                            Vector& out) const {
    combine(control, bezierSecondDerivativeWeights(t), out);
}

}  // namespace Tavo
