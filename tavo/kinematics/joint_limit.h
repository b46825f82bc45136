// XJointLimit: the range of rotation of a joint, between a fixed frame and a moving frame. It is an object of its own
// beside the joint. Its world matrix is the fixed frame; the moving frame is MovingOffsetMatrix times the joint's world
// matrix. Angles are in radians.
//
// A limit hangs below its joint's parent, and its translation is fed by the joint's, so that its origin stays on the
// joint; each names the other by a reference. Joints make limits and let them go (tavo/kinematics/joint.h). Nothing
// here limits a pose: solvers read the limit. Operations on a limit without a valid joint do nothing.
#pragma once
#include "tavo/kinematics/transform.h"
#include <numbers>

namespace Tavo {

class XJoint;

class XJointLimit : public XTyped<XJointLimit, XTransform, sg::JointLimitNode> {
public:
    static constexpr XWord TypeID = L"JointLimit", DefaultName = L"jointLimit", DefaultSuffix = L"Limit";
    static constexpr float DefaultSwingLimitAngle = std::numbers::pi_v<float> / 4,
                           DefaultTwistAngle = std::numbers::pi_v<float> / 2, DefaultTwistOffset = 0;
    static constexpr float DefaultSwingSoftLimitRatio = 0.7f, DefaultTwistSoftRatio = 0.7f;
    static constexpr XColour DefaultColour{0.1f, 0.25f, 0.5f, 0.6f};
    enum LimitTypes { BallSocket = 0, Hinge = 1 };
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(JointReference, 51)
    TAVO_ATTRIBUTE(JointWorldMatrix, 52)    // input
    TAVO_ATTRIBUTE(JointLocalMatrix, 53)    // input
    TAVO_ATTRIBUTE_XYZ(MovingOffset, 54)    // Euler angles of the moving frame, relative to the joint
    TAVO_ATTRIBUTE(MovingOffsetMatrix, 57)  // output: the matrix of those angles
    TAVO_ATTRIBUTE(LimitType, 58)           // 0 "BallSocket", 1 "Hinge"
    TAVO_ATTRIBUTE(Swing1Active, 59)
    TAVO_ATTRIBUTE(Swing1Angle, 60)
    TAVO_ATTRIBUTE(Swing2Active, 61)
    TAVO_ATTRIBUTE(Swing2Angle, 62)
    TAVO_ATTRIBUTE(TwistActive, 63)
    TAVO_ATTRIBUTE(TwistAngle, 64)
    TAVO_ATTRIBUTE(TwistOffset, 65)
    TAVO_ATTRIBUTE(SoftSwingActive, 66)
    TAVO_ATTRIBUTE(SoftSwing1Ratio, 67)  // of the angle, from where the limit begins to resist
    TAVO_ATTRIBUTE(SoftSwing2Ratio, 68)
    TAVO_ATTRIBUTE(SoftTwistActive, 69)
    TAVO_ATTRIBUTE(SoftTwistRatio, 70)
    TAVO_ATTRIBUTE(DisplayScale, 71)
    TAVO_ATTRIBUTE(ShowFixedAxes, 72)
    TAVO_ATTRIBUTE(ShowMovingAxes, 73)

    XJoint Joint() const;
    XMatrix MovingFrame() const;  // in the world
    bool IsJointLimitAnimated() const;
    // What limits, and the moving offset; neither the twist's offset, nor the fixed frame, nor how it is drawn.
    XJointLimit& CopyJointLimit(XJointLimit const& other);

    // Points an axis of the fixed frame at the joint's child or children, and lets the moving frame be the same. Any
    // mode but the first two points it at the world's origin. Nothing when the axis points there already.
    XJointLimit& AlignJointLimit(XDirection direction, XAlignmentMode mode);
    XJointLimit& AlignJointLimit(std::wstring const& axis, XAlignmentMode mode);  // "XAxis", "YAxis", "ZAxis"
    // Of a hinge: turns the fixed frame so that it differs from the moving one by a turn about the hinge's X axis only.
    XJointLimit& EnsureValidOrientation();
    // Turns the moving frame so that the axis which is nearest to the bone lies along it; the fixed frame with it when
    // `moveLimit` is set. The bone is the way from the joint to the first transform below it.
    XJointLimit& SnapOffsetClosestAxis(bool moveLimit);
    XJointLimit& AlignMovingFrame();  // it becomes the same as the fixed frame
    XJointLimit& Repair();            // makes the connections from the joint again

    void onInitialize() override;

private:
    friend class XJoint;
    void followMatrices(XJoint const& joint);
    void followTranslation(XJoint const& joint);
    void setMovingOffset(XVector3 const& angles);
};
using XJointLimitDef = XTypedDef<XJointLimit>;

}  // namespace Tavo
