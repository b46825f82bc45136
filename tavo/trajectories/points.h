// The points of keys while they are worked on, in double; for the files of this folder.
#pragma once
#include "qel/sg/path_bezier.h"

namespace Tavo {

using sg::PathPoint;

// Rounds once. Beyond the range of a float it is infinite, as the float's own arithmetic would have it.
inline Qelp::Vector3 toVector(PathPoint const& p) { return {float(p.x), float(p.y), float(p.z), 0}; }

// Of zero length: along x, as XVector3::Normalize has it.
inline PathPoint normalised(PathPoint const& p) {
    double const length = p.length();
    return length > 0 ? p * (1 / length) : PathPoint(1, 0, 0);
}

inline PathPoint middle(PathPoint const& a, PathPoint const& b) { return (a + b) * 0.5; }

}  // namespace Tavo
