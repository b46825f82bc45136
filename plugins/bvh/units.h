// Between a file's numbers and the scene's: metres and radians in single precision. Inside this folder only.
#pragma once
#include "plugins/bvh/analysis.h"
#include "qel/utils/text.h"
#include "tavo/kinematics/transform.h"

namespace bvh {

inline constexpr double fullTurn = 6.2831853071795864769;  // in radians

constexpr double radiansPer(Angles angles) { return angles == Angles::degrees ? 0.017453292519943295769 : 1; }
static_assert(fullTurn / radiansPer(Angles::degrees) == 360);

inline float toRadians(double angle, double unit) { return float(angle * unit); }
inline float toMetres(double length, double unit) { return float(length * unit); }

// Axes in the order in which a RotationEulerOrder turns a vector about them.
inline constexpr int turningAxes[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

inline Tavo::XAttribute translation(Tavo::XTransform const& transform, int axis) {
    return transform.Attribute(21 + axis);
}
inline Tavo::XAttribute rotation(Tavo::XTransform const& transform, int axis) { return transform.Attribute(24 + axis); }

}  // namespace bvh
