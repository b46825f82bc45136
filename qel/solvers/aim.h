// A rotation that points at something: the formula of an aim constraint. Free of any scene.
//
// The X axis points at the target's origin; the Y axis lies in the half plane that the up object's origin spans with
// it, so that what is above stays above. Everything is found in the parent's space, where lines are lines whatever the
// parent's scale: in the world the X axis points at the target exactly.
//
// Where the up object lies along the aim, or at the place itself, no Y axis follows from it. There the parent's own Y
// axis holds, taken along by the smallest turn that takes the parent's X axis to the aim. Within a narrow cone about
// the aim the one passes over into the other, so that rounding does not flip what is aimed. No rule is continuous for
// all aims: when the up object swings through the aim, the turn over happens inside the cone, and for an aim opposite
// to the parent's X axis the smallest turn is one of many. With the target at the place itself the aim is the parent's
// X axis.
//
// A number that is not finite counts as that of the identity, and a parent squeezed flat as its rotation and
// translation; results are finite.
#pragma once
#include "qel/solvers/affine.h"

namespace sg {

struct Aim {
    // The sine of the cone's half angle: a thousand times the rounding of a direction in single precision.
    static constexpr double cone = 1e-4;

    // ---- inputs ----
    Qelp::Matrix34 targetWorld;
    Qelp::Matrix34 upWorld;
    Qelp::Matrix34 parentWorld;
    Qelp::Vector3 place;  // where what aims stands, in the parent's space, metres

    // ---- outputs, relative to the parent ----
    Qelutils::rotation::Quaternion quaternion;
    Qelp::Vector3 rotation;  // radians, Euler angles of order XYZ

    bool Validate() const;  // every number is finite; Run takes what is not as said above
    void Run();
};

}  // namespace sg
