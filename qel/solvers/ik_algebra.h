// Square matrices of three in double precision, as the inverse kinematics needs them. Row vectors: a point
// is turned by v * m, and in a product the left factor acts first. For the solver's own files.
#pragma once
#include "qel/solvers/vec3.h"
#include "qel/utils/rotation_core.h"
#include <cmath>

namespace sg::ik {

struct Mat3 {
    Vec3 row[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    bool operator==(Mat3 const&) const = default;
};

inline Vec3 operator*(Vec3 const& v, Mat3 const& m) { return m.row[0] * v.x + m.row[1] * v.y + m.row[2] * v.z; }
inline Mat3 operator*(Mat3 const& a, Mat3 const& b) { return {{a.row[0] * b, a.row[1] * b, a.row[2] * b}}; }
inline Mat3 transposed(Mat3 const& m) {
    return {{{m.row[0].x, m.row[1].x, m.row[2].x},
             {m.row[0].y, m.row[1].y, m.row[2].y},
             {m.row[0].z, m.row[1].z, m.row[2].z}}};
}

inline Mat3 fromRotation(Qelutils::rotation::Rotation const& r) {
    auto const row = [&](int i) { return Vec3{r.m[i][0], r.m[i][1], r.m[i][2]}; };
    return {{row(0), row(1), row(2)}};
}
inline Qelutils::rotation::Rotation toRotation(Mat3 const& m) {
    return {{{m.row[0].x, m.row[0].y, m.row[0].z},
             {m.row[1].x, m.row[1].y, m.row[1].z},
             {m.row[2].x, m.row[2].y, m.row[2].z}}};
}

// The turn about `v` by its length, and the shortest such vector of a turn: inverses of each other below pi.
inline Mat3 exponential(Vec3 const& v) {
    double const square = dot(v, v), angle = std::sqrt(square);
    double const s = angle < 1e-4 ? 1 - square / 6 : std::sin(angle) / angle;
    double const c = angle < 1e-4 ? 0.5 - square / 24 : (1 - std::cos(angle)) / square;
    Vec3 const a = v * c, b = v * s;
    double const xy = a.x * v.y, yz = a.y * v.z, zx = a.z * v.x;
    return {{{1 - a.y * v.y - a.z * v.z, xy + b.z, zx - b.y},
             {xy - b.z, 1 - a.x * v.x - a.z * v.z, yz + b.x},
             {zx + b.y, yz - b.x, 1 - a.x * v.x - a.y * v.y}}};
}
inline Vec3 logarithm(Mat3 const& m) {
    auto const q = Qelutils::rotation::toQuaternion(toRotation(m));
    Vec3 const v{q.x, q.y, q.z};
    double const sine = length(v);
    return v * (sine < 1e-9 ? 2 : 2 * std::atan2(sine, q.w) / sine);
}

// The v for which v * m is `product`; zero where m has no inverse.
inline Vec3 solved(Vec3 const& product, Mat3 const& m) {
    Vec3 const byX = cross(m.row[1], m.row[2]), byY = cross(m.row[2], m.row[0]), byZ = cross(m.row[0], m.row[1]);
    double const determinant = dot(m.row[0], byX);
    if (!(std::abs(determinant) > 1e-30)) return {};
    return Vec3{dot(product, byX), dot(product, byY), dot(product, byZ)} * (1 / determinant);
}

}  // namespace sg::ik
