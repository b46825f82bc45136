// Where something stands that follows several targets at once: the blend of a kinematics constraint. Free of any scene.
//
// A target wants it at offset * world. Seen from its parent, where it is to be given, these places are averaged by
// their weights: the translations as points, the rotations as RotationAverage does; scale, shear and mirroring do not
// count.
//
// Weights that are negative or not finite are 0. Normalised, only their ratios count. Not normalised, what the weights
// leave of 1 belongs to the parent itself, so that a weight fading out leads back to the parent's origin and axes; a
// sum above 1 leaves nothing and counts as normalised, so that no weight throws what is constrained beyond its targets.
// Without any weight it stands at the parent.
//
// A number that is not finite counts as that of the identity, and a parent squeezed flat as its rotation and
// translation; results are finite.
#pragma once
#include "qel/solvers/affine.h"
#include <vector>

namespace sg {

struct BlendTarget {
    Qelp::Matrix34 world;
    Qelp::Matrix34 offset;  // where it wants what follows, in its own space
    double weight = 1;

    double usableWeight() const;  // 0 for what is negative or not finite
};

struct TargetBlend {
    // ---- inputs ----
    std::vector<BlendTarget> targets;
    Qelp::Matrix34 parentWorld;
    bool normalizeWeights = true;

    // ---- outputs, relative to the parent ----
    Qelp::Matrix34 local;       // rotation and translation, without scale
    Qelp::Vector3 translation;  // metres
    Qelp::Vector3 rotation;     // radians, Euler angles of order XYZ
    Qelutils::rotation::Quaternion quaternion;

    bool Validate() const;  // every number is finite and no weight negative; Run takes what is not as said above
    void Run();
};

}  // namespace sg
