#include "qel/solvers/joint_limit.h"
#include <algorithm>
#include <cmath>
#include <limits>

namespace sg {
namespace {

using namespace Qelutils::rotation;

constexpr double pi = std::numbers::pi, infinity = std::numeric_limits<double>::infinity();

// Also for what is not a number, which compares as false.
double notNegative(double value) { return value > 0 ? value : 0; }
double readRatio(bool active, double ratio) { return active ? std::min(notNegative(ratio), 1.0) : 1; }

Ellipse swingBorder(JointLimit const& limit) {
    if (limit.type == HingeLimit) return {0, 0};
    return {limit.swing1Active ? notNegative(limit.swing1Angle) : infinity,
            limit.swing2Active ? notNegative(limit.swing2Angle) : infinity};
}

// Resistance begins here. An axis without a border has none either.
Ellipse softSwingBorder(JointLimit const& limit) {
    Ellipse border = swingBorder(limit);
    if (border.x < infinity) border.x *= readRatio(limit.softSwingActive, limit.softSwing1Ratio);
    if (border.y < infinity) border.y *= readRatio(limit.softSwingActive, limit.softSwing2Ratio);
    return border;
}

double twistBorder(JointLimit const& limit) { return limit.twistActive ? notNegative(limit.twistAngle) : infinity; }

double twistMiddle(JointLimit const& limit) { return std::isfinite(limit.twistOffset) ? limit.twistOffset : 0; }

// From the middle of the range, by the shorter way.
double twistFromMiddle(JointLimit const& limit, double twist) {
    return std::remainder(twist - twistMiddle(limit), 2 * pi);
}

// Along one axis a clamp is that of a strip.
double clampTwist(JointLimit const& limit, double twist, double ratio) {
    double const border = twistBorder(limit), at = twistFromMiddle(limit, twist);
    double const soft = border < infinity ? border * ratio : infinity;
    double const clamped = softClampToEllipse({soft, infinity}, {border, infinity}, {at, 0}).x;
    return clamped == at ? twist : twistMiddle(limit) + clamped;
}

JointLimitAngles clampAngles(JointLimit const& limit, JointLimitAngles const& angles, double twistRatio,
                             Ellipse const& soft) {
    PlanePoint const swing = softClampToEllipse(soft, swingBorder(limit), {angles.swing1, angles.swing2});
    return {clampTwist(limit, angles.twist, twistRatio), swing.x, swing.y};
}

bool hasDirection(Quaternion const& q) {
    double const square = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
    return square > 0 && std::isfinite(square);
}

double dot(Quaternion const& a, Quaternion const& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }

bool areFinite(Quaternion const& q) {
    return std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) && std::isfinite(q.w);
}
bool isAngle(double value) { return value >= 0 && value < infinity; }
bool isRatio(double value) { return value >= 0 && value <= 1; }

}  // namespace

bool JointLimit::Validate() const {
    return (type == BallSocketLimit || type == HingeLimit) && areFinite(fixedFrame) && areFinite(movingOffset) &&
           isAngle(swing1Angle) && isAngle(swing2Angle) && isAngle(twistAngle) && std::isfinite(twistOffset) &&
           isRatio(softSwing1Ratio) && isRatio(softSwing2Ratio) && isRatio(softTwistRatio);
}

Quaternion rotationOfFrame(Qelp::Matrix34 const& m) { return toQuaternion(completed(m.m)); }

JointLimitAngles measureJointRotation(JointLimit const& limit, Quaternion const& jointLocal) {
    Quaternion const moving = multiply(normalized(limit.movingOffset), normalized(jointLocal));
    Triple const v = toTwistSwing(multiply(moving, conjugate(normalized(limit.fixedFrame))));
    return {v.x, v.y, v.z};
}

Quaternion jointRotationAt(JointLimit const& limit, JointLimitAngles const& angles) {
    Quaternion const measured = fromTwistSwing({angles.twist, angles.swing1, angles.swing2});
    Quaternion const moving = multiply(measured, normalized(limit.fixedFrame));
    return normalized(multiply(conjugate(normalized(limit.movingOffset)), moving));
}

JointLimitAngles clampJointAngles(JointLimit const& limit, JointLimitAngles const& angles) {
    double const twistRatio = readRatio(limit.softTwistActive, limit.softTwistRatio);
    return clampAngles(limit, angles, twistRatio, softSwingBorder(limit));
}

JointLimitAngles jointLimitExcess(JointLimit const& limit, JointLimitAngles const& angles) {
    JointLimitAngles const inside = clampAngles(limit, angles, 1, swingBorder(limit));
    double const twist = twistFromMiddle(limit, angles.twist) - twistFromMiddle(limit, inside.twist);
    return {twist, angles.swing1 - inside.swing1, angles.swing2 - inside.swing2};
}

JointLimitDistance jointLimitDistance(JointLimit const& limit, JointLimitAngles const& angles) {
    return {std::abs(twistFromMiddle(limit, angles.twist)) - twistBorder(limit),
            signedDistance(swingBorder(limit), {angles.swing1, angles.swing2})};
}

Quaternion clampJointRotation(JointLimit const& limit, Quaternion const& jointLocal) {
    Quaternion const local = hasDirection(jointLocal) ? jointLocal : Quaternion();
    JointLimitAngles const at = measureJointRotation(limit, local), inside = clampJointAngles(limit, at);
    if (inside == at) return local;
    Quaternion const q = jointRotationAt(limit, inside);
    return dot(q, local) < 0 ? Quaternion{-q.x, -q.y, -q.z, -q.w} : q;
}

}  // namespace sg
