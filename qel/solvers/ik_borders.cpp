#include "qel/solvers/ik_borders.h"
#include <algorithm>
#include <limits>

namespace sg::ik {
namespace {

using Qelutils::rotation::fromQuaternion;
using Qelutils::rotation::toQuaternion;

constexpr double closedBelow = 1e-9;  // radians: an angle with no more room than this does not move
constexpr double beyond = 1e-10;      // radians: more than the rounding of what was put on the border

constexpr double infinity = std::numeric_limits<double>::infinity();

// Of a rotation that is known to be one. From the largest of the four numbers, as rotation::toQuaternion.
Quaternion quaternionOf(Mat3 const& m) {
    double const x = m.row[0].x, y = m.row[1].y, z = m.row[2].z;
    Vec3 const odd{m.row[1].z - m.row[2].y, m.row[2].x - m.row[0].z, m.row[0].y - m.row[1].x};
    double const xy = m.row[0].y + m.row[1].x, yz = m.row[1].z + m.row[2].y, zx = m.row[2].x + m.row[0].z;
    Quaternion q;
    if (x + y + z > 0)
        q = {odd.x, odd.y, odd.z, 1 + x + y + z};
    else if (x >= y && x >= z)
        q = {1 + x - y - z, xy, zx, odd.x};
    else if (y >= z)
        q = {xy, 1 + y - x - z, yz, odd.y};
    else
        q = {zx, yz, 1 + z - x - y, odd.z};
    double const f = (q.w < 0 ? -1 : 1) / std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    return {q.x * f, q.y * f, q.z * f, q.w * f};
}

// As rotation::toTwistSwing, of a unit quaternion whose scalar is not negative.
JointLimitAngles anglesOf(Quaternion const& q) {
    double const cosine = std::sqrt(q.w * q.w + q.x * q.x);
    double const c = cosine > 1e-6 ? q.w / cosine : 1, s = cosine > 1e-6 ? q.x / cosine : 0;
    double const u = q.y * c - q.z * s, v = q.z * c + q.y * s, sine = std::sqrt(u * u + v * v);
    double const f = sine < 1e-8 ? 2 : 2 * std::atan2(sine, cosine) / sine;
    return {2 * std::atan2(s, c), f * u, f * v};
}

double border(bool active, double angle) { return !active ? infinity : angle > 0 ? angle : 0; }

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
    frames_.clear();
    measured_.clear();
    limited_.assign(limits.size(), -1);
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (!limits[i]) continue;
        limited_[i] = int(limits_.size());
        limits_.push_back(*limits[i]);
        JointLimit& l = limits_.back();
        l.softSwingActive = l.softTwistActive = false;
        if (!std::isfinite(l.twistOffset)) l.twistOffset = 0;
        measured_.emplace_back();
        bool const isHinge = l.type == HingeLimit;
        frames_.push_back({fromRotation(fromQuaternion(l.movingOffset)),
                           transposed(fromRotation(fromQuaternion(l.fixedFrame))), l.twistOffset,
                           border(l.twistActive, l.twistAngle), isHinge ? 0 : border(l.swing1Active, l.swing1Angle),
                           isHinge ? 0 : border(l.swing2Active, l.swing2Angle)});
    }
}

Borders::Measured const& Borders::measured(Skeleton const& skeleton, int joint) const {
    Mat3 const& turn = skeleton.joints[std::size_t(joint)].turn;
    Measured& m = measured_[std::size_t(limited_[std::size_t(joint)])];
    if (m.isValid && m.turn == turn) return m;
    Frames const& f = frames(joint);
    m.turn = turn;
    m.rotation = quaternionOf(f.offset * turn * f.fromFixed);
    m.at = anglesOf(m.rotation);
    m.isValid = true;
    return m;
}

// Cheaper than asking the limit, and true only of what it would leave as it is.
bool Borders::isInside(Frames const& f, JointLimitAngles const& at) {
    double const x = at.swing1 / f.swing1, y = at.swing2 / f.swing2;
    return std::abs(at.twist - f.middle) < f.twist && x * x + y * y < 1;
}

bool Borders::clamp(Skeleton& skeleton, int joint) const {
    if (isInside(frames(joint), measured(skeleton, joint).at)) return false;
    Mat3& turn = skeleton.joints[std::size_t(joint)].turn;
    JointLimitAngles const at = measureJointRotation(limit(joint), toQuaternion(toRotation(turn)));
    JointLimitAngles const inside = clampJointAngles(limit(joint), at);
    if (inside == at) return false;
    turn = fromRotation(fromQuaternion(jointRotationAt(limit(joint), inside)));
    return true;
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
    Measured const& m = measured(skeleton, joint);
    Gradients const g = gradientsOf(m.rotation);
    Mat3 const& offset = frames(joint).offset;
    return {m.at, g.twist * offset, g.swing1 * offset, g.swing2 * offset};
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
    if (isInside(frames(joint), moved)) return 0;
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
