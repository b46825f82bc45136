// A vector in double precision, for numerical methods: what the single-precision values of the scene become inside.
#pragma once
#include "qel/utils/values.h"
#include <cmath>

namespace sg {

struct Vec3 {
    double x = 0, y = 0, z = 0;

    Vec3 operator+(Vec3 const& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Vec3 operator-(Vec3 const& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec3 operator-() const { return {-x, -y, -z}; }
    Vec3 operator*(double s) const { return {x * s, y * s, z * s}; }
    Vec3& operator+=(Vec3 const& o) { return *this = *this + o; }
    bool operator==(Vec3 const&) const = default;
    double operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }
    double& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
};

inline double dot(Vec3 const& a, Vec3 const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 cross(Vec3 const& a, Vec3 const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(Vec3 const& v) { return std::sqrt(dot(v, v)); }
inline Vec3 rowOf(Qelp::Matrix34 const& m, int i) { return {double(m.m[i][0]), double(m.m[i][1]), double(m.m[i][2])}; }

}  // namespace sg
