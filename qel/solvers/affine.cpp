#include "qel/solvers/affine.h"
#include <algorithm>
#include <cfloat>
#include <cmath>

namespace sg {

using namespace Qelutils::rotation;

namespace {

// Transposed cofactors: divided by the determinant, the inverse of the axes.
void adjugate(Affine const& a, double (&out)[3][3]) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            int const p = (j + 1) % 3, q = (j + 2) % 3, r = (i + 1) % 3, s = (i + 2) % 3;
            out[i][j] = a.m[p][r] * a.m[q][s] - a.m[p][s] * a.m[q][r];
        }
}

// The translation that undoes that of `a`, behind axes that undo those of `a`.
void undoTranslation(Affine const& a, Affine& inverse) {
    for (int j = 0; j < 3; ++j) {
        inverse.m[3][j] = 0;
        for (int i = 0; i < 3; ++i) inverse.m[3][j] -= a.m[3][i] * inverse.m[i][j];
    }
}

Affine inverseOfRotation(Affine const& a) {
    Rotation const r = rotationOf(a);
    Affine out;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) out.m[i][j] = r.m[j][i];
    undoTranslation(a, out);
    return out;
}

}  // namespace

bool isFinite(Qelp::Matrix34 const& m) {
    for (auto const& row : m.m)
        for (float value : row)
            if (!std::isfinite(value)) return false;
    return true;
}

float clampedFloat(double value) { return static_cast<float>(std::clamp(value, double(-FLT_MAX), double(FLT_MAX))); }

Affine toAffine(Qelp::Matrix34 const& m) {
    Affine out;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            if (std::isfinite(m.m[i][j])) out.m[i][j] = m.m[i][j];
    return out;
}

Affine toAffine(Rotation const& r, Triple const& translation) {
    Affine out;
    for (int i = 0; i < 3; ++i) std::copy_n(r.m[i], 3, out.m[i]);
    out.m[3][0] = translation.x, out.m[3][1] = translation.y, out.m[3][2] = translation.z;
    return out;
}

Qelp::Matrix34 toMatrix(Affine const& a) {
    Qelp::Matrix34 out;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j) out.m[i][j] = clampedFloat(a.m[i][j]);
    return out;
}

Affine multiply(Affine const& first, Affine const& second) {
    Affine out;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j) {
            out.m[i][j] = i == 3 ? second.m[3][j] : 0;
            for (int k = 0; k < 3; ++k) out.m[i][j] += first.m[i][k] * second.m[k][j];
        }
    return out;
}

Rotation rotationOf(Affine const& a) {
    Affine unit = a;
    for (auto& row : unit.m)
        if (double const length = std::hypot(row[0], row[1], row[2]); length > 0)
            for (double& value : row) value /= length;
    return completed(toMatrix(unit).m);
}

Affine inverse(Affine const& a) {
    double adjugated[3][3];
    adjugate(a, adjugated);
    double determinant = 0, box = 1;
    for (int i = 0; i < 3; ++i) {
        determinant += a.m[0][i] * adjugated[i][0];
        box *= std::hypot(a.m[i][0], a.m[i][1], a.m[i][2]);
    }
    // The volume against that of a box with the same edges: what came in single precision is flat within its rounding.
    if (!(std::abs(determinant) > 1e-14 * box)) return inverseOfRotation(a);
    Affine out;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) out.m[i][j] = adjugated[i][j] / determinant;
    undoTranslation(a, out);
    return out;
}

}  // namespace sg
