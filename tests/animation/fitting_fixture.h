// Samples to fit, and what a fit became, as plain numbers.
#pragma once
#include "qel/utils/dense.h"
#include "tavo/animation/bezier.h"
#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <initializer_list>
#include <random>

namespace Tavo {

using Samples = Qelp::Matrix<double>;
using Numbers = std::vector<double>;

inline Samples rowsOf(std::initializer_list<Numbers> rows) {
    Samples out(int(rows.size()), int(rows.begin()->size()));
    int r = 0;
    for (Numbers const& row : rows) std::copy(row.begin(), row.end(), out[r++]);
    return out;
}

// `count` samples of a curve at 0, 1, 2, ...
inline Samples sampled(int count, int dimension, auto const& curve) {
    Samples out(count, dimension);
    for (int i = 0; i < count; ++i) {
        Numbers const point = curve(double(i));
        for (int c = 0; c < dimension; ++c) out(i, c) = point[std::size_t(c)];
    }
    return out;
}

inline Samples helix(int count) {
    return sampled(count, 3, [](double i) { return Numbers{std::cos(i * 0.1), std::sin(i * 0.1), i * 0.02}; });
}

inline Numbers counting(int count) {
    Numbers out;
    for (int i = 0; i < count; ++i) out.push_back(i);
    return out;
}

inline Numbers rowOf(Samples const& m, int row) { return Numbers(m[row], m[row] + m.columns()); }

inline double distance(Numbers const& a, Numbers const& b) {
    double sum = 0;
    for (std::size_t c = 0; c < a.size(); ++c) sum += (a[c] - b[c]) * (a[c] - b[c]);
    return std::sqrt(sum);
}

// All control points of a fitter; nothing else may be there.
std::vector<Numbers> controlsOf(auto const& fitter) {
    std::vector<Numbers> out;
    Numbers point;
    for (unsigned i = 0; fitter.getControlPoint(i, point); ++i) out.push_back(point);
    return out;
}

inline Numbers pointOf(std::vector<Numbers> const& controls, std::size_t segment, double t) {
    auto const weights = bezierWeights(t);
    Numbers out(controls[0].size());
    for (std::size_t j = 0; j < 4; ++j)
        for (std::size_t c = 0; c < out.size(); ++c) out[c] += weights[j] * controls[3 * segment + j][c];
    return out;
}

// The distance of a point from a chain of segments: a dense search, then ever smaller intervals about the best place.
inline double distanceFrom(std::vector<Numbers> const& controls, Numbers const& point) {
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t segment = 0; 3 * segment + 3 < controls.size(); ++segment) {
        auto const at = [&](double t) { return distance(pointOf(controls, segment, t), point); };
        double best = 0, width = 1.0 / 64;
        for (int i = 1; i <= 64; ++i)
            if (at(i * width) < at(best)) best = i * width;
        for (; width > 1e-12; width /= 2)
            for (double t : {best - width, best + width})
                if (t >= 0 && t <= 1 && at(t) < at(best)) best = t;
        nearest = std::min(nearest, at(best));
    }
    return nearest;
}

inline bool areFinite(std::vector<Numbers> const& points) {
    return std::all_of(points.begin(), points.end(), [](Numbers const& p) {
        return std::all_of(p.begin(), p.end(), [](double x) { return std::isfinite(x); });
    });
}

// Samples that are hard on a fitter: coincident, reversing, straight, of any size, from 1 to 40 of them.
inline Samples hostileSamples(std::mt19937& random) {
    auto const pick = [&](int n) { return int(random() % unsigned(n)); };
    std::normal_distribution<double> normal;
    int const rows = 1 + pick(40), columns = 1 + pick(4), kind = pick(6);
    double const scales[] = {1e-30, 1e-6, 1, 1e6, 1e38};
    double const scale = scales[pick(5)];
    Samples out(rows, columns);
    Numbers at(std::size_t(columns), 0.0);
    for (int i = 0; i < rows; ++i) {
        bool const isStill = kind == 0 || (kind == 1 && pick(2) == 0);
        for (int c = 0; c < columns; ++c) {
            double& x = at[std::size_t(c)];
            if (isStill)
                x += 0;
            else if (kind == 2)
                x = c == 0 ? i % 2 : 0;  // to and fro
            else if (kind == 3)
                x += c + 1;  // straight and even
            else if (kind == 4)
                x = pick(3) - 1;  // on a grid
            else
                x += normal(random);
            out(i, c) = x * scale;
        }
    }
    return out;
}

using testing::DoubleEq;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

}  // namespace Tavo
