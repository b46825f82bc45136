#include "qel/sg/path_ray.h"
#include "qel/sg/polynomial_roots.h"
#include <limits>
#include <vector>

namespace sg {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Zero when there is no direction.
PathPoint normalized(PathPoint const& v) {
    double const length = v.length();
    return length > 0 && std::isfinite(length) ? v * (1 / length) : PathPoint();
}

// Sums the products of two polynomials into a third: sum += factor * a * b.
template<class A, class B, class Product>
void addProduct(A const* a, int degreeA, B const* b, int degreeB, double factor, double* sum, Product const& product) {
    for (int i = 0; i <= degreeA; ++i)
        for (int j = 0; j <= degreeB; ++j) sum[i + j] += factor * product(a[i], b[j]);
}

double dot(PathPoint const& a, PathPoint const& b) { return a.dot(b); }
double times(double a, double b) { return a * b; }

// From the values at the control points to the coefficients of powers of u.
template<class T> void toPowers(T const (&p)[4], T (&c)[4]) {
    c[0] = p[0];
    c[1] = (p[1] - p[0]) * 3;
    c[2] = (p[0] - p[1] * 2 + p[2]) * 3;
    c[3] = (p[1] - p[2]) * 3 + p[3] - p[0];
}

template<class T> void differentiate(T const (&c)[4], T (&slope)[3]) {
    for (int i = 0; i < 3; ++i) slope[i] = c[i + 1] * (i + 1.0);
}

}  // namespace

PathRay PathRay::parallel(PathPoint const& origin, PathPoint const& direction) {
    PathRay r;
    r.eye_ = origin;
    r.along_ = normalized(direction);
    r.toOrigin_ = r.along_;
    return r;
}

PathRay PathRay::perspective(PathPoint const& eye, PathPoint const& origin, PathPoint const& direction) {
    PathRay r;
    r.eye_ = eye;
    PathPoint const before = origin - eye;
    r.along_ = normalized(direction);
    if (r.along_ == PathPoint()) r.along_ = normalized(before);
    double const depth = before.dot(r.along_);
    r.toOrigin_ = depth > 0 ? before * (1 / depth) : r.along_;
    r.hasDepth_ = true;
    return r;
}

PathRay::Seen PathRay::see(PathPoint const& p) const {
    PathPoint const v = p - eye_;
    double const depth = v.dot(along_);
    return {v - toOrigin_ * depth, hasDepth_ ? depth : 1};
}

double PathRay::distance(Seen const& s) { return s.depth > 0 ? s.n.dot(s.n) / (s.depth * s.depth) : infinity; }

// None of the curve with these control points is nearer than this.
double PathRay::leastDistance(Seen const (&control)[4]) {
    PathPoint low(infinity, infinity, infinity), high = low * -1;
    int hidden = 0;
    for (Seen const& s : control) {
        if (!(s.depth > 0)) {
            ++hidden;
            continue;
        }
        PathPoint const q = s.n * (1 / s.depth);
        low = {std::min(low.x, q.x), std::min(low.y, q.y), std::min(low.z, q.z)};
        high = {std::max(high.x, q.x), std::max(high.y, q.y), std::max(high.z, q.z)};
    }
    if (hidden > 0) return hidden == 4 ? infinity : 0;
    auto const outside = [](double from, double to) { return std::max(std::max(from, -to), 0.0); };
    PathPoint const off(outside(low.x, high.x), outside(low.y, high.y), outside(low.z, high.z));
    return off.dot(off) * (1 - 1e-12);  // less what rounding may have added
}

void PathRay::searchInside(PathBezier const& b, int index, Nearest& best) const {
    PathPoint n[4], c[4], slope[3];
    double depth[4], d[4], depthSlope[3];
    for (int i = 0; i < 4; ++i) {
        Seen const s = see(b.p[i]);
        n[i] = s.n;
        depth[i] = s.depth;
    }
    toPowers(n, c);
    differentiate(c, slope);
    double turning[9] = {}, *toFind = turning;
    double along[6] = {}, square[7] = {};
    addProduct(c, 3, slope, 2, 1, along, dot);
    if (hasDepth_) {
        toPowers(depth, d);
        differentiate(d, depthSlope);
        addProduct(c, 3, c, 3, 1, square, dot);
        addProduct(along, 5, d, 3, 1, turning, times);
        addProduct(square, 6, depthSlope, 2, -1, turning, times);
    } else {
        toFind = along;
    }
    double roots[mostPolynomialDegree];
    int const count = findSignChanges({toFind, hasDepth_ ? 9u : 6u}, roots);
    for (int i = 0; i < count; ++i) {
        double const there = distance(see(b.at(roots[i])));
        if (there < best.distance) best = {index, roots[i], there};
    }
}

PathRay::Nearest PathRay::nearest(std::span<PathBezier const> segments) const {
    Nearest best{-1, 0, infinity};
    std::vector<double> least(segments.size());
    for (std::size_t i = 0; i < segments.size(); ++i) {
        PathPoint const(&p)[4] = segments[i].p;
        Seen const control[] = {see(p[0]), see(p[1]), see(p[2]), see(p[3])};
        least[i] = leastDistance(control);
        for (int end : {0, 1}) {
            double const there = distance(control[3 * end]);
            if (there < best.distance) best = {int(i), double(end), there};
        }
    }
    for (std::size_t i = 0; i < segments.size(); ++i)
        if (least[i] < best.distance) searchInside(segments[i], int(i), best);
    return best;
}

}  // namespace sg
