// Affine transforms of row vectors in double precision: what solvers work with between the single-precision matrices of
// the scene. Rows 0 to 2 are the axes, row 3 is the translation.
#pragma once
#include "qel/utils/rotation_core.h"
#include "qel/utils/values.h"

namespace sg {

struct Affine {
    double m[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};

    Qelutils::rotation::Triple row(int i) const { return {m[i][0], m[i][1], m[i][2]}; }
};

bool isFinite(Qelp::Matrix34 const& m);
// A number that is not finite is read as that of the identity.
Affine toAffine(Qelp::Matrix34 const& m);
Affine toAffine(Qelutils::rotation::Rotation const& r, Qelutils::rotation::Triple const& translation);
// What is beyond the range of a float becomes its largest number.
float clampedFloat(double value);
Qelp::Matrix34 toMatrix(Affine const& a);

Affine multiply(Affine const& first, Affine const& second);
// The rotation without scale, shear and mirroring, as rotation_core.h completes one.
Qelutils::rotation::Rotation rotationOf(Affine const& a);
// Of a singular transform that of its rotation and translation, so that something squeezed flat still has a place.
Affine inverse(Affine const& a);

}  // namespace sg
