// What retargeting does with vectors and the quaternions of rotation_core.h, in double precision. Row vectors: in
// a product of rotations the left factor acts first.
#pragma once
#include "qel/solvers/vec3.h"
#include "qel/utils/rotation_core.h"
#include <algorithm>
#include <cmath>

namespace sg::retargeting {

using Qelutils::rotation::conjugate;
using Qelutils::rotation::multiply;
using Qelutils::rotation::Quaternion;

// Zero where there is no direction.
inline Vec3 direction(Vec3 const& v) {
    double const l = length(v);
    return l > 1e-12 ? v * (1 / l) : Vec3();
}
inline Vec3 translationOf(Qelp::Matrix34 const& m) { return rowOf(m, 3); }

// v turned by a unit quaternion.
inline Vec3 turned(Vec3 const& v, Quaternion const& q) {
    Vec3 const u{q.x, q.y, q.z}, t = cross(u, v) * 2;
    return v + t * q.w + cross(u, t);
}

// The smallest turn from one unit vector to another; none where one of them is zero. Of opposed ones, about any axis
// square to them.
inline Quaternion shortestArc(Vec3 const& from, Vec3 const& to) {
    if (from == Vec3() || to == Vec3()) return {};
    double const w = 1 + dot(from, to);
    Vec3 axis = cross(from, to);
    if (w < 1e-12) axis = cross(from, std::abs(from.x) < 0.9 ? Vec3{1, 0, 0} : Vec3{0, 1, 0});
    return Qelutils::rotation::normalized({axis.x, axis.y, axis.z, std::max(w, 0.0)});
}

// From a to b by the shortest way, at the share t of it. Shoemake, "Animating rotation with quaternion curves",
// SIGGRAPH (1985).
inline Quaternion slerp(Quaternion const& a, Quaternion b, double t) {
    double cosine = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    if (cosine < 0) b = {-b.x, -b.y, -b.z, -b.w}, cosine = -cosine;
    double const angle = std::acos(std::min(cosine, 1.0)), sine = std::sin(angle);
    double const f = sine < 1e-9 ? 1 - t : std::sin((1 - t) * angle) / sine;
    double const g = sine < 1e-9 ? t : std::sin(t * angle) / sine;
    return Qelutils::rotation::normalized({f * a.x + g * b.x, f * a.y + g * b.y, f * a.z + g * b.z, f * a.w + g * b.w});
}

// Below one rounding of single precision.
inline bool isIdentity(Quaternion const& q) { return q.x * q.x + q.y * q.y + q.z * q.z < 1e-20; }

}  // namespace sg::retargeting
