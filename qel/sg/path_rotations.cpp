#include "qel/sg/path_rotations.h"
#include <algorithm>
#include <numeric>

namespace sg {
namespace {

double finite(double x) { return std::isfinite(x) ? x : 0; }

BlendTurning toTurning(Qelp::Vector3 const& v) { return {finite(v.x), finite(v.y), finite(v.z)}; }

BlendRotation unit(Qelp::Quat const& q) {
    BlendRotation const r = toBlendRotation(q);
    double const length = std::sqrt(r.x * r.x + r.y * r.y + r.z * r.z + r.w * r.w);
    if (!(length > 0) || !std::isfinite(length)) return {};
    return {r.x / length, r.y / length, r.z / length, r.w / length};
}

CurveInterpolation toKind(int value) {
    auto const kind = CurveInterpolation(value);
    bool const isKnown = kind == CurveInterpolation::constant || kind == CurveInterpolation::spline;
    return isKnown ? kind : CurveInterpolation::linear;
}

}  // namespace

void PathRotations::update(std::vector<PathRotationKey> const& keys) {
    order_.resize(keys.size());
    std::iota(order_.begin(), order_.end(), 0);
    auto const attach = [&](int slot) { return finite(keys[std::size_t(slot)].attach); };
    auto const before = [&](int a, int b) { return attach(a) < attach(b); };
    if (!std::is_sorted(order_.begin(), order_.end(), before)) std::stable_sort(order_.begin(), order_.end(), before);
    keys_.clear();
    for (int slot : order_) {
        PathRotationKey const& k = keys[std::size_t(slot)];
        keys_.push_back({attach(slot), toKind(k.interpolation), unit(k.orientation), {}, {}});
    }
    for (std::size_t rank = 0; rank < keys_.size(); ++rank) findTangents(rank, keys[std::size_t(order_[rank])]);
}

void PathRotations::findTangents(std::size_t rank, PathRotationKey const& key) {
    Key& k = keys_[rank];
    k.in = toTurning(key.inTangent);
    k.out = toTurning(key.outTangent);
    if (k.kind == CurveInterpolation::spline && !(k.in.isZero() && k.out.isZero())) return;
    Key const &before = keys_[rank > 0 ? rank - 1 : 0], &after = keys_[std::min(rank + 1, keys_.size() - 1)];
    double const span = after.attach - before.attach;
    BlendTurning const whole = turningBetween(before.rotation, k.rotation) + turningBetween(k.rotation, after.rotation);
    k.in = k.out = span > 0 ? whole * (1 / span) : BlendTurning();
}

std::size_t PathRotations::firstAt(double attach) const {
    auto const isBefore = [](Key const& k, double x) { return k.attach < x; };
    return std::size_t(std::lower_bound(keys_.begin(), keys_.end(), attach, isBefore) - keys_.begin());
}

int PathRotations::findKey(double attach, double tolerance) const {
    std::size_t const next = firstAt(attach);
    int found = -1;
    double nearest = tolerance;
    for (std::size_t rank : {next, next - 1}) {  // before the first: wraps round, and is no rank
        if (rank >= keys_.size() || !(std::abs(keys_[rank].attach - attach) <= nearest)) continue;
        found = order_[firstAt(keys_[rank].attach)];
        nearest = std::abs(keys_[rank].attach - attach);
    }
    return found;
}

BlendRotation PathRotations::spline(Key const& left, Key const& right, double share) {
    double const third = (right.attach - left.attach) / 3;
    BlendRotation const first = (left.out * third).toRotation() * left.rotation;
    BlendRotation const second = (right.in * -third).toRotation() * right.rotation;
    BlendRotation const middle = turned(first, second, share);
    BlendRotation const from = turned(turned(left.rotation, first, share), middle, share);
    return turned(from, turned(middle, turned(second, right.rotation, share), share), share);
}

Qelp::Quat PathRotations::at(double parameter) const {
    if (keys_.empty()) return {};
    auto const isBefore = [](double x, Key const& k) { return x < k.attach; };
    auto const next = std::upper_bound(keys_.begin(), keys_.end(), finite(parameter), isBefore);
    if (next == keys_.begin()) return next->rotation.toQuat();
    Key const& left = keys_[firstAt((next - 1)->attach)];
    if (next == keys_.end() || left.kind == CurveInterpolation::constant) return left.rotation.toQuat();
    double const share = (finite(parameter) - left.attach) / (next->attach - left.attach);
    bool const isSpline = left.kind == CurveInterpolation::spline;
    return (isSpline ? spline(left, *next, share) : turned(left.rotation, next->rotation, share)).toQuat();
}

}  // namespace sg
