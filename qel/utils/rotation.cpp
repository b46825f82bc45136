#include "qel/utils/rotation.h"
#include "qel/utils/rotation_core.h"
#include <cmath>

namespace Qelutils {
namespace {

rotation::Triple tripleOf(Qelp::Vector3 const& v) { return {v.x, v.y, v.z}; }

Qelp::Vector3 vectorOf(rotation::Triple const& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

void storeWhole(rotation::Rotation const& r, Qelp::Matrix34& out) {
    out = {};
    rotation::store(r, out.m);
}

rotation::Quaternion quaternionOf(Qelp::Matrix34 const& m) {
    return rotation::toQuaternion(rotation::orthonormal(m.m));
}

// The cofactors of the rotation rows, transposed: divided by the determinant, their inverse.
void adjugate(float const (&m)[4][4], double (&out)[3][3]) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            int const a = (j + 1) % 3, b = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
            out[i][j] = double(m[a][c]) * m[b][d] - double(m[a][d]) * m[b][c];
        }
}

double length(float const* row) {
    return std::sqrt(double(row[0]) * row[0] + double(row[1]) * row[1] + double(row[2]) * row[2]);
}

bool isFinite(Qelp::Matrix34 const& m) {
    float sum = 0;
    for (auto const& row : m.m)
        for (float entry : row) sum += entry * 0;
    return sum == 0;
}

}  // namespace

void eulerToMatrix(Qelp::Vector3 const& angles, int order, Qelp::Matrix34& out) {
    if (angles.x == 0 && angles.y == 0 && angles.z == 0)
        out = {};
    else
        storeWhole(rotation::fromEuler(tripleOf(angles), order), out);
}

Qelp::Vector3 matrixToEuler(Qelp::Matrix34 const& m, int order) {
    return vectorOf(rotation::toEuler(rotation::orthonormal(m.m), order));
}

void quatToMatrix(Qelp::Quat const& q, Qelp::Matrix34& out) {
    storeWhole(rotation::fromQuaternion({q.x, q.y, q.z, q.w}), out);
}

Qelp::Quat matrixToQuat(Qelp::Matrix34 const& m) {
    auto const [x, y, z, w] = quaternionOf(m);
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), static_cast<float>(w)};
}

void twistSwingToMatrix(Qelp::Vector3 const& twistSwing, Qelp::Matrix34& out) {
    storeWhole(rotation::fromQuaternion(rotation::fromTwistSwing(tripleOf(twistSwing))), out);
}

Qelp::Vector3 matrixToTwistSwing(Qelp::Matrix34 const& m) { return vectorOf(rotation::toTwistSwing(quaternionOf(m))); }

void twistSwingAnglesToMatrix(Qelp::Vector3 const& angles, Qelp::Matrix34& out) {
    storeWhole(rotation::fromQuaternion(rotation::fromTwistSwingAngles(tripleOf(angles))), out);
}

Qelp::Vector3 matrixToTwistSwingAngles(Qelp::Matrix34 const& m) {
    return vectorOf(rotation::toTwistSwingAngles(quaternionOf(m)));
}

void rotationOf(Qelp::Matrix34 const& m, Qelp::Matrix34& out) { storeWhole(rotation::orthonormal(m.m), out); }

bool invert(Qelp::Matrix34 const& m, Qelp::Matrix34& out) {
    double inverse[3][3];
    adjugate(m.m, inverse);
    double const determinant = m.m[0][0] * inverse[0][0] + m.m[0][1] * inverse[1][0] + m.m[0][2] * inverse[2][0];
    // The volume of the rows against that of a box with their lengths: flat within the rounding of the determinant.
    double const box = length(m.m[0]) * length(m.m[1]) * length(m.m[2]);
    if (!(std::abs(determinant) > 1e-14 * box)) return false;
    Qelp::Matrix34 result;
    for (int j = 0; j < 3; ++j) {
        double translation = 0;
        for (int i = 0; i < 3; ++i) {
            double const entry = inverse[i][j] / determinant;
            result.m[i][j] = static_cast<float>(entry);
            translation -= m.m[3][i] * entry;
        }
        result.m[3][j] = static_cast<float>(translation);
    }
    if (!isFinite(result)) return false;
    out = result;
    return true;
}

}  // namespace Qelutils
