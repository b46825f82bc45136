#include "qel/sg/matrix_split.h"
#include "qel/utils/rotation_core.h"
#include <algorithm>
#include <cmath>
#include <limits>

namespace rotation = Qelutils::rotation;

namespace sg {
namespace {

bool isFinite(Qelp::Vector3 const& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

float difference(float a, float b) {
    constexpr double largest = std::numeric_limits<float>::max();
    return float(std::clamp(double(a) - double(b), -largest, largest));
}

// The inverse of a rotation is its transpose.
rotation::Rotation undoing(Qelp::Vector3 const& angles) {
    rotation::Rotation r = rotation::fromEuler({angles.x, angles.y, angles.z}, 0);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < i; ++j) std::swap(r.m[i][j], r.m[j][i]);
    return r;
}

}  // namespace

bool MatrixSplit::Validate() const {
    for (auto const& row : matrix.m)
        if (!isFinite({row[0], row[1], row[2]})) return false;
    return isFinite(preTranslation) && isFinite(preRotation) && isFinite(postRotation);
}

bool MatrixSplit::Run() {
    if (!Validate()) return false;
    splitTranslation();
    splitRotation();
    return true;
}

void MatrixSplit::splitTranslation() {
    float const* const origin = matrix.m[3];
    translation = {difference(origin[0], preTranslation.x), difference(origin[1], preTranslation.y),
                   difference(origin[2], preTranslation.z)};
}

void MatrixSplit::splitRotation() {
    rotation::Rotation const whole = rotation::completed(matrix.m);
    rotation::Rotation const r =
        rotation::multiply(rotation::multiply(undoing(postRotation), whole), undoing(preRotation));
    rotation::Triple const angles = rotation::toEuler(r, 0);
    rotation::Quaternion const q = rotation::toQuaternion(r);
    rotation = {float(angles.x), float(angles.y), float(angles.z)};
    quaternion = {float(q.x), float(q.y), float(q.z), float(q.w)};
}

}  // namespace sg
