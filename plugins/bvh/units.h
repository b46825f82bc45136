// Between a file's numbers and the scene's: metres and radians in single precision. Inside this folder only.
#pragma once
#include "qel/utils/text.h"
#include "tavo/kinematics/transform.h"

namespace bvh {

inline constexpr double radiansPerDegree = 0.017453292519943295769;

inline float toRadians(double degrees) { return float(degrees * radiansPerDegree); }
inline float toMetres(double length, double unit) { return float(length * unit); }

// Axes in the order in which a RotationEulerOrder turns a vector about them.
inline constexpr int turningAxes[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

inline Tavo::XAttribute translation(Tavo::XTransform const& transform, int axis) {
    return transform.Attribute(21 + axis);
}
inline Tavo::XAttribute rotation(Tavo::XTransform const& transform, int axis) { return transform.Attribute(24 + axis); }

}  // namespace bvh
