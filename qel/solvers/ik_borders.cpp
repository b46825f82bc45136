#include "qel/solvers/ik_borders.h"
#include <algorithm>
#include <limits>

namespace sg::ik {
namespace {

using Qelutils::rotation::fromQuaternion;
using Qelutils::rotation::toQuaternion;

constexpr double closedBelow = 1e-9;  // radians: an angle with no more room than this does not move
constexpr double beyond = 1e-10;      // radians: more than the rounding of what was put on the border

struct Gradients {
    Vec3 twist, swing1, swing2;  // by turns about the axes that are turned first
};

// Of a rotation q, the swing after the twist. With the half angles: x : w = tan(twist / 2), and (y, z) turned back by
// half the twist is the swing's axis times the sine of half its angle.
Gradients gradientsOf(Quaternion const& q) {
    double const square = q.w * q.w + q.x * q.x;
    if (square < 1e-12) return {};  // a swing of pi has no twist
    double const c = q.w / std::sqrt(square), s = q.x / std::sqrt(square);
    double const u = q.y * c - q.z * s, v = q.z * c + q.y * s;
    double const sine = std::sqrt(u * u + v * v), cosine = std::sqrt(square);
    double const f = sine < 1e-8 ? 2 : 2 * std::atan2(sine, cosine) / sine;
    double const bend = sine < 1e-4 ? 2.0 / 3 : (2 / cosine - f) / (sine * sine);
    Vec3 const byX = Vec3{q.w, -q.z, q.y} * 0.5, byY = Vec3{q.z, q.w, -q.x} * 0.5, byZ = Vec3{-q.y, q.x, q.w} * 0.5;
    Vec3 const byW = Vec3{q.x, q.y, q.z} * -0.5;
    Gradients g;
    g.twist = (byX * q.w - byW * q.x) * (2 / square);
    Vec3 const du = byY * c - byZ * s - g.twist * (v / 2), dv = byZ * c + byY * s + g.twist * (u / 2);
    Vec3 const along = (du * u + dv * v) * bend;
    g.swing1 = du * f + along * u;
    g.swing2 = dv * f + along * v;
    return g;
}

bool isClosed(bool active, double angle) { return active && !(angle > closedBelow); }
bool isClosed1(JointLimit const& l) { return l.type == HingeLimit || isClosed(l.swing1Active, l.swing1Angle); }
bool isClosed2(JointLimit const& l) { return l.type == HingeLimit || isClosed(l.swing2Active, l.swing2Angle); }

// Collects bounds; `gradient` is not normalised, and `room` is in the angle that it is the gradient of.
struct Collector {
    Bound (&out)[3];
    int count = 0;

    void add(Vec3 const& gradient, double room, bool isTwist) {
        double const l = length(gradient);
        if (l > 1e-9) out[count++] = {gradient * (1 / l), room / l, isTwist};
    }
};

}  // namespace

void Borders::setUp(std::span<JointLimit const* const> limits) {
    limits_.clear();
    limited_.assign(limits.size(), -1);
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (!limits[i]) continue;
        limited_[i] = int(limits_.size());
        limits_.push_back(*limits[i]);
        limits_.back().softSwingActive = limits_.back().softTwistActive = false;
    }
}

void Borders::clamp(Skeleton& skeleton, int joint) const {
    Mat3& turn = skeleton.joints[std::size_t(joint)].turn;
    JointLimit const& limit = limits_[std::size_t(limited_[std::size_t(joint)])];
    Quaternion const at = toQuaternion(toRotation(turn));
    JointLimitAngles const angles = measureJointRotation(limit, at), inside = clampJointAngles(limit, angles);
    if (!(inside == angles)) turn = fromRotation(fromQuaternion(jointRotationAt(limit, inside)));
}

void Borders::centre(Skeleton& skeleton, int joint, double share) const {
    JointLimit const& l = limit(joint);
    Mat3& turn = skeleton.joints[std::size_t(joint)].turn;
    JointLimitAngles at = measureJointRotation(l, toQuaternion(toRotation(turn)));
    auto const shrink = [&](bool active, double angle, double& value, double middle) {
        if (active && angle < std::numbers::pi) value += share * (middle - value);
    };
    shrink(l.twistActive, l.twistAngle, at.twist, l.twistOffset);
    shrink(l.swing1Active, l.swing1Angle, at.swing1, 0);
    shrink(l.swing2Active, l.swing2Angle, at.swing2, 0);
    turn = fromRotation(fromQuaternion(jointRotationAt(l, at)));
}

void Borders::goTo(Skeleton& skeleton, int joint, Vec3 const& at) const {
    JointLimit const& l = limit(joint);
    auto const room = [](bool active, double angle) { return active ? std::min(angle, 3.0) : 3.0; };
    JointLimitAngles const angles{l.twistOffset + at.x * room(l.twistActive, l.twistAngle),
                                  at.y * room(l.swing1Active, l.swing1Angle),
                                  at.z * room(l.swing2Active, l.swing2Angle)};
    skeleton.joints[std::size_t(joint)].turn =
        fromRotation(fromQuaternion(jointRotationAt(l, clampJointAngles(l, angles))));
}

double Borders::excess(Skeleton const& skeleton, int joint) const {
    JointLimit const& limit = limits_[std::size_t(limited_[std::size_t(joint)])];
    Quaternion const at = toQuaternion(toRotation(skeleton.joints[std::size_t(joint)].turn));
    JointLimitDistance const d = jointLimitDistance(limit, measureJointRotation(limit, at));
    return std::max({0.0, d.twist, d.swing});
}

LimitState Borders::measure(Skeleton const& skeleton, int joint) const {
    JointLimit const& l = limit(joint);
    LimitState state;
    state.at = measureJointRotation(l, toQuaternion(toRotation(skeleton.joints[std::size_t(joint)].turn)));
    Gradients const g =
        gradientsOf(Qelutils::rotation::fromTwistSwing({state.at.twist, state.at.swing1, state.at.swing2}));
    Mat3 const offset = fromRotation(fromQuaternion(l.movingOffset));
    state.twist = g.twist * offset;
    state.swing1 = g.swing1 * offset;
    state.swing2 = g.swing2 * offset;
    return state;
}

int Borders::closed(int joint, LimitState const& state, Bound (&out)[3]) const {
    JointLimit const& l = limit(joint);
    Collector c{out};
    if (isClosed(l.twistActive, l.twistAngle)) c.add(state.twist, -jointLimitExcess(l, state.at).twist, true);
    if (isClosed1(l)) c.add(state.swing1, -state.at.swing1, false);
    if (isClosed2(l)) c.add(state.swing2, -state.at.swing2, false);
    return c.count;
}

int Borders::bounds(int joint, LimitState const& state, Vec3 const& turn, Bound (&out)[3]) const {
    JointLimit const& l = limit(joint);
    JointLimitAngles const moved{state.at.twist + dot(state.twist, turn), state.at.swing1 + dot(state.swing1, turn),
                                 state.at.swing2 + dot(state.swing2, turn)};
    JointLimitAngles const over = jointLimitExcess(l, moved);
    Collector c{out};
    if (std::abs(over.twist) > beyond && !isClosed(l.twistActive, l.twistAngle)) {
        double const side = over.twist < 0 ? -1 : 1;
        c.add(state.twist * side, side * (moved.twist - over.twist - state.at.twist), true);
    }
    double const s1 = isClosed1(l) ? 0 : over.swing1, s2 = isClosed2(l) ? 0 : over.swing2;
    double const size = std::sqrt(s1 * s1 + s2 * s2);
    if (size > beyond) {
        double const n1 = s1 / size, n2 = s2 / size;
        double const room =
            n1 * (moved.swing1 - over.swing1 - state.at.swing1) + n2 * (moved.swing2 - over.swing2 - state.at.swing2);
        c.add(state.swing1 * n1 + state.swing2 * n2, room, false);
    }
    return c.count;
}

}  // namespace sg::ik
