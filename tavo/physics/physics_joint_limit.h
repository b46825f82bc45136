// XPhysicsJointLimit: the limit of a physics joint, with how stiffly and how softly it holds.
#pragma once
#include "tavo/kinematics/joint_limit.h"

namespace Tavo {

class XPhysicsJointLimit : public XTyped<XPhysicsJointLimit, XJointLimit, sg::PhysicsJointLimitNode> {
public:
    static constexpr XWord TypeID = L"PhysicsJointLimit", DefaultName = L"physicsJointLimit", DefaultSuffix = L"Limit";
    static constexpr XColour DefaultColour{0.1f, 0.45f, 0.23f, 0.6f};
    static constexpr float DefaultSwingLimitAngle = XJointLimit::DefaultSwingLimitAngle,  // radians, as the next two
        DefaultTwistAngle = XJointLimit::DefaultTwistAngle, DefaultTwistOffset = 0;
    static constexpr float DefaultStiffness = 1e6f, DefaultDamping = 0.1f, DefaultRestitution = 0,
                           DefaultSwingSoftLimitStiffness = 10000, DefaultSwingSoftLimitRatio = 0.7f,
                           DefaultTwistSoftStiffness = 10000, DefaultTwistSoftRatio = 0.7f, DefaultDisplayScale = 1;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Swing1Stiffness, 74)
    TAVO_ATTRIBUTE(Swing1Damping, 75)
    TAVO_ATTRIBUTE(Swing1Restitution, 76)
    TAVO_ATTRIBUTE(Swing2Stiffness, 77)
    TAVO_ATTRIBUTE(Swing2Damping, 78)
    TAVO_ATTRIBUTE(Swing2Restitution, 79)
    TAVO_ATTRIBUTE(LowerTwistStiffness, 80)
    TAVO_ATTRIBUTE(LowerTwistDamping, 81)
    TAVO_ATTRIBUTE(LowerTwistRestitution, 82)
    TAVO_ATTRIBUTE(UpperTwistStiffness, 83)
    TAVO_ATTRIBUTE(UpperTwistDamping, 84)
    TAVO_ATTRIBUTE(UpperTwistRestitution, 85)
    TAVO_ATTRIBUTE(SoftSwing1Stiffness, 86)
    TAVO_ATTRIBUTE(SoftSwing2Stiffness, 87)
    TAVO_ATTRIBUTE(SoftTwistStiffness, 88)

    void onInitialize() override;
};
using XPhysicsJointLimitDef = XTypedDef<XPhysicsJointLimit>;

}  // namespace Tavo
