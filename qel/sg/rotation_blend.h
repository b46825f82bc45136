// Rotations while they are blended, in double precision: what curves of rotations and paths share. Unit quaternions;
// the product is Hamilton's, its right factor turns first.
#pragma once
#include "qel/utils/values.h"
#include <cmath>

namespace sg {

struct BlendRotation {
    double x = 0, y = 0, z = 0, w = 1;

    BlendRotation operator*(BlendRotation const& b) const {
        return {w * b.x + x * b.w + y * b.z - z * b.y, w * b.y - x * b.z + y * b.w + z * b.x,
                w * b.z + x * b.y - y * b.x + z * b.w, w * b.w - x * b.x - y * b.y - z * b.z};
    }
    BlendRotation conjugate() const { return {-x, -y, -z, w}; }
    Qelp::Quat toQuat() const { return {float(x), float(y), float(z), float(w)}; }
};

inline BlendRotation toBlendRotation(Qelp::Quat const& q) { return {q.x, q.y, q.z, q.w}; }

// The turn repeated `times` (any number) in its own direction, along the shorter arc. The half angle comes from atan2,
// which is exact for small and for large turns alike.
inline BlendRotation power(BlendRotation const& turn, double times) {
    double const sine = std::hypot(turn.x, turn.y, turn.z);
    if (sine == 0) return {0, 0, 0, 1};
    double const sign = turn.w < 0 ? -1 : 1;
    double const angle = std::atan2(sine, sign * turn.w) * times;
    double const scale = sign * std::sin(angle) / sine;
    return {turn.x * scale, turn.y * scale, turn.z * scale, std::cos(angle)};
}

// Slerp; beyond 0 and 1 it turns on at the same speed.
inline BlendRotation turned(BlendRotation const& from, BlendRotation const& to, double share) {
    return power(to * from.conjugate(), share) * from;
}

// A rotation vector: the axis times the angle, in radians.
struct BlendTurning {
    double x = 0, y = 0, z = 0;

    BlendTurning operator+(BlendTurning const& o) const { return {x + o.x, y + o.y, z + o.z}; }
    BlendTurning operator*(double f) const { return {x * f, y * f, z * f}; }
    bool isZero() const { return x == 0 && y == 0 && z == 0; }
    BlendRotation toRotation() const {
        double const angle = std::hypot(x, y, z);
        if (angle == 0) return {};
        double const scale = std::sin(angle / 2) / angle;
        return {x * scale, y * scale, z * scale, std::cos(angle / 2)};
    }
};

// The shorter way round.
inline BlendTurning turningBetween(BlendRotation const& from, BlendRotation const& to) {
    BlendRotation const turn = to * from.conjugate();
    double const sine = std::hypot(turn.x, turn.y, turn.z), sign = turn.w < 0 ? -1 : 1;
    if (sine == 0) return {};
    double const scale = 2 * sign * std::atan2(sine, sign * turn.w) / sine;
    return {turn.x * scale, turn.y * scale, turn.z * scale};
}

}  // namespace sg
