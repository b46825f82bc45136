// A skeleton in its reference pose: names, who hangs on whom, and each joint's local matrix there, which is called its
// origin. Metres; row vectors, so that a joint's world matrix is its local one times its parent's. "World" means the
// frame in which the joints without a parent stand.
#pragma once
#include "qel/solvers/retarget_algebra.h"
#include <string>
#include <vector>

namespace sg {

struct Skeleton {
    std::vector<std::wstring> names;
    std::vector<int> parents;  // index of a joint that stands before; -1: none
    std::vector<Qelp::Matrix34> origins;

    std::size_t size() const { return parents.size(); }
    // As many names and origins as parents, parents before their children, all numbers finite and below 1e15.
    bool Validate() const;

    std::vector<Qelp::Matrix34> restMatrices() const;  // in the world
    std::vector<Vec3> restPositions() const;
    std::vector<retargeting::Quaternion> restRotations() const;  // without scale
    std::vector<std::vector<int>> children() const;
};

bool isUsable(Qelp::Matrix34 const& m);  // finite, and so far from infinity that products of it are finite

}  // namespace sg
