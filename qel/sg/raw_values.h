// What nodes read of their own block while they compute: a number that is not finite counts as 0, so that a broken
// input never spreads.
#pragma once
#include "qel/sg/node.h"
#include <cmath>

namespace sg {

inline float finite(float value) { return std::isfinite(value) ? value : 0; }

inline Qelp::Vector3 readVector(Node const& n, int first) {
    auto const real = [&](int row) { return finite(n.at<db::FloatAttribute>(row).raw()); };
    return {real(first), real(first + 1), real(first + 2)};
}

inline void writeVector(Node& n, int first, Qelp::Vector3 const& value) {
    n.at<db::FloatAttribute>(first).raw() = value.x;
    n.at<db::FloatAttribute>(first + 1).raw() = value.y;
    n.at<db::FloatAttribute>(first + 2).raw() = value.z;
}

}  // namespace sg
