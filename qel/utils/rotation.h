// The transforms of one frame: what the evaluating graph calls for every joint, on the plain values. Free of the scene.
//
// Conventions, orders and sources are those of rotation_core.h: row vectors, right-handed, radians, Euler orders 0 to
// 5, R = R(first letter) R(second) R(third), components by axis name. Conversions work in double precision and round
// once. Every function that writes a matrix writes all of it: rotation rows, a zero translation, column 3 as 0. Nothing
// allocates or fails but `invert`; results may be written over arguments.
#pragma once
#include "qel/utils/values.h"

namespace Qelutils {

// Each component that is exactly 0 costs nothing; an order outside 0 to 5 is XYZ.
void eulerToMatrix(Qelp::Vector3 const& angles, int order, Qelp::Matrix34& out);
// Scale, shear and mirroring of `m` are taken out first, by Gram and Schmidt on its rows.
Qelp::Vector3 matrixToEuler(Qelp::Matrix34 const& m, int order);

// `q` need not have unit length; zero is the identity.
void quatToMatrix(Qelp::Quat const& q, Qelp::Matrix34& out);
// Unit length, w >= 0.
Qelp::Quat matrixToQuat(Qelp::Matrix34 const& m);

// The vector form: x the twist about X, (0, y, z) the swing's axis times its angle.
void twistSwingToMatrix(Qelp::Vector3 const& twistSwing, Qelp::Matrix34& out);
Qelp::Vector3 matrixToTwistSwing(Qelp::Matrix34 const& m);
// The angle form: x the twist about X, y and z the swing angles about Y and Z.
void twistSwingAnglesToMatrix(Qelp::Vector3 const& angles, Qelp::Matrix34& out);
Qelp::Vector3 matrixToTwistSwingAngles(Qelp::Matrix34 const& m);

// The rotation of `m` without scale, shear, mirroring and translation.
void rotationOf(Qelp::Matrix34 const& m, Qelp::Matrix34& out);

// The inverse of an affine transform; false, and `out` left alone, if `m` is singular or its inverse not finite.
bool invert(Qelp::Matrix34 const& m, Qelp::Matrix34& out);

// The affine product: `first` acts first. The local matrix times the parent's world matrix is the world matrix.
// Column 3 of both must be 0; all four columns take part alike, which makes each row one vector operation.
inline Qelp::Matrix34 multiply(Qelp::Matrix34 const& first, Qelp::Matrix34 const& second) {
    Qelp::Matrix34 out;
    for (int row = 0; row < 4; ++row) {
        float const x = first.m[row][0], y = first.m[row][1], z = first.m[row][2];
        for (int column = 0; column < 4; ++column)
            out.m[row][column] = x * second.m[0][column] + y * second.m[1][column] + z * second.m[2][column];
    }
    for (int column = 0; column < 4; ++column) out.m[3][column] += second.m[3][column];
    return out;
}

}  // namespace Qelutils
