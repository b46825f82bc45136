#include "tavo/kinematics/joint_limit.h"
#include "qel/sg/units.h"
#include "qel/utils/maths.h"
#include "tavo/kinematics/alignment.h"
#include "tavo/kinematics/joint.h"
#include <algorithm>
#include <array>

namespace Tavo {
namespace {

// By number, in the order in which they are copied.
constexpr int limiting[] = {58, 59, 61, 63, 66, 69, 54, 55, 56, 60, 62, 64, 67, 68, 70};

XVector3 nearestAxis(XMatrix const& frame, XVector3 const& direction) {
    std::array<XVector3, 6> candidates;  // an axis, then its opposite
    for (int i = 0; XVector3 axis : {frame.XAxis(), frame.YAxis(), frame.ZAxis()}) {
        candidates[std::size_t(i++)] = axis.Normalize();
        candidates[std::size_t(i++)] = axis.Negate();
    }
    // The smallest angle is the largest cosine; of equal ones the first.
    return *std::max_element(candidates.begin(), candidates.end(), [&](XVector3 const& a, XVector3 const& b) {
        return a.DotProduct(direction) < b.DotProduct(direction);
    });
}

}  // namespace

void XJointLimit::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    for (XAttribute active : {Swing1Active(), Swing2Active(), TwistActive()}) active.SetBoolean(true);
    for (XAttribute angle : {Swing1Angle(), Swing2Angle()}) angle.SetFloat(DefaultSwingLimitAngle);
    TwistAngle().SetFloat(DefaultTwistAngle);
    TwistOffset().SetFloat(DefaultTwistOffset);
    for (XAttribute soft : {SoftSwingActive(), SoftTwistActive()}) soft.SetBoolean(false);
    for (XAttribute ratio : {SoftSwing1Ratio(), SoftSwing2Ratio()}) ratio.SetFloat(DefaultSwingSoftLimitRatio);
    SoftTwistRatio().SetFloat(DefaultTwistSoftRatio);
}

XJoint XJointLimit::Joint() const { return XJoint(JointReference().ObjectRef()); }

XMatrix XJointLimit::MovingFrame() const {
    return MovingOffsetMatrix().Matrix().Multiply(Joint().WorldMatrix().Matrix());
}

bool XJointLimit::IsJointLimitAnimated() const {
    return IsValid() && (IsAnimated() || std::any_of(std::begin(limiting), std::end(limiting),
                                                     [this](int number) { return Attribute(number).IsAnimated(); }));
}

XJointLimit& XJointLimit::CopyJointLimit(XJointLimit const& other) {
    if (other.IsValid())
        for (int number : limiting) Attribute(number).CopyValue(other.Attribute(number));
    return *this;
}

// ---- the frames ----

void XJointLimit::setMovingOffset(XVector3 const& angles) {
    MovingOffsetX().SetFloat(angles.X());
    MovingOffsetY().SetFloat(angles.Y());
    MovingOffsetZ().SetFloat(angles.Z());
}

XJointLimit& XJointLimit::AlignJointLimit(XDirection direction, XAlignmentMode mode) {
    XJoint const joint = Joint();
    Qelutils::Vector<XObject> children;
    joint.ChildTransforms(children);
    if (!joint.IsValid() || children.empty()) return *this;
    XMatrix frame = WorldMatrix().Matrix();
    XMatrix const place = joint.WorldMatrix().Matrix();
    if (!alignment::turnAxis(frame, direction, alignment::targetOf(children, mode))) return *this;
    SetWorldMatrix(frame.SetTranslation(place.Translation()));
    XMatrix const offset = XMatrix::MatrixTransformToLocalSpace(frame, place);
    setMovingOffset(offset.RotationEulerAngles(RotationEulerOrder().Enumeration()));
    return *this;
}

XJointLimit& XJointLimit::AlignJointLimit(std::wstring const& axis, XAlignmentMode mode) {
    std::optional<XDirection> const direction = alignment::directionOf(axis);
    return direction ? AlignJointLimit(*direction, mode) : *this;
}

XJointLimit& XJointLimit::AlignMovingFrame() {
    XJoint const joint = Joint();
    if (!joint.IsValid()) return *this;
    XMatrix const offset = XMatrix::MatrixTransformToLocalSpace(WorldMatrix().Matrix(), joint.WorldMatrix().Matrix());
    setMovingOffset(offset.RotationEulerAngles());
    return *this;
}

XJointLimit& XJointLimit::EnsureValidOrientation() {
    if (!Joint().IsValid() || LimitType().Enumeration() != Hinge) return *this;
    XMatrix const moving = MovingFrame();
    QelMatrix4 difference = XMatrix::MatrixTransformToLocalSpace(WorldMatrix().Matrix(), moving).AsMathEngineMatrix();
    XMatrix twist(difference.removeSwing());
    SetWorldMatrix(twist.SetTranslation(XVector3()).Multiply(moving), UpdateAll);
    return *this;
}

// The angle is read with the sine too: the cosine alone says nothing about angles below a thousandth.
XJointLimit& XJointLimit::SnapOffsetClosestAxis(bool moveLimit) {
    Qelutils::Vector<XObject> descendants;
    Joint().DescendantTransforms(descendants);
    if (descendants.empty()) return *this;
    XVector3 const bone = XTransform(descendants.front()).LocalTranslation().Normalize();
    XMatrix offset = MovingOffsetMatrix().Matrix();
    XVector3 const nearest = nearestAxis(offset, bone);
    float const angle = nearest.RelativeAngle(bone);
    if (angle <= sg::g_floatTolerance) return *this;
    XMatrix const turn(XVector3().CrossProduct(nearest, bone).Normalize(), angle);
    setMovingOffset(offset.Multiply(turn).RotationEulerAngles(RotationEulerOrder().Enumeration()));
    if (moveLimit) SetWorldMatrix(XMatrix(turn).Multiply(WorldMatrix().Matrix()));
    return *this;
}

}  // namespace Tavo
