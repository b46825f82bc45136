#include "qel/solvers/aim.h"
#include <algorithm>
#include <cmath>

namespace sg {
namespace {

using namespace Qelutils::rotation;

Triple minus(Triple const& a, Triple const& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Triple plus(Triple const& a, Triple const& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Triple scaled(Triple const& a, double f) { return {a.x * f, a.y * f, a.z * f}; }
double dot(Triple const& a, Triple const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Triple cross(Triple const& a, Triple const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(Triple const& a) { return std::hypot(a.x, a.y, a.z); }
Triple unitOr(Triple const& a, Triple const& otherwise) {
    double const l = length(a);
    return l > 0 ? scaled(a, 1 / l) : otherwise;
}

Triple readPoint(Qelp::Vector3 const& v) {
    auto const number = [](float x) { return std::isfinite(x) ? double(x) : 0; };
    return {number(v.x), number(v.y), number(v.z)};
}

// The image of Y under the smallest turn of X to the unit vector `aim`; about Y itself where the aim is opposite.
Triple carriedY(Triple const& aim) {
    if (!(1 + aim.x > 1e-12)) return {0, 1, 0};
    double const f = aim.y / (1 + aim.x);
    return {-aim.y, 1 - aim.y * f, -aim.z * f};
}

// The Y axis for the unit vectors of aim and up; an up of zero lies along any aim.
Triple axisAbove(Triple const& aim, Triple const& up) {
    Triple const carried = carriedY(aim), above = minus(up, scaled(aim, dot(up, aim)));
    double const sine = length(above);
    if (sine >= Aim::cone) return scaled(above, 1 / sine);
    return unitOr(plus(above, scaled(carried, Aim::cone - sine)), carried);
}

Rotation aiming(Triple const& aim, Triple const& up) {
    Triple const y = axisAbove(aim, up), z = unitOr(cross(aim, y), {0, 0, 1});
    Triple const squared = cross(z, aim);  // exactly square to both
    return {{{aim.x, aim.y, aim.z}, {squared.x, squared.y, squared.z}, {z.x, z.y, z.z}}};
}

}  // namespace

bool Aim::Validate() const {
    return isFinite(targetWorld) && isFinite(upWorld) && isFinite(parentWorld) && std::isfinite(place.x) &&
           std::isfinite(place.y) && std::isfinite(place.z);
}

void Aim::Run() {
    Affine const toParent = inverse(toAffine(parentWorld));
    auto const towards = [&](Qelp::Matrix34 const& world) {
        return minus(multiply(toAffine(world), toParent).row(3), readPoint(place));
    };
    Rotation const turn = aiming(unitOr(towards(targetWorld), {1, 0, 0}), unitOr(towards(upWorld), {}));
    quaternion = toQuaternion(turn);
    Triple const angles = toEuler(turn, 0);
    rotation = {clampedFloat(angles.x), clampedFloat(angles.y), clampedFloat(angles.z)};
}

}  // namespace sg
