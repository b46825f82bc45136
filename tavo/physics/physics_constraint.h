// XPhysicsConstraint: a spring that pulls its physics joint, the parent, towards a target transform.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XPhysicsConstraint : public XTyped<XPhysicsConstraint, XTransform, sg::PhysicsConstraintNode> {
public:
    static constexpr XWord TypeID = L"PhysicsConstraint", DefaultName = L"physicsConstraint";
    static constexpr int DefaultMode = 0;
    static constexpr float DefaultTranslationStiffness = 100000, DefaultRotationStiffness = 5729.5776f,
                           DefaultTranslationDamping = 0, DefaultRotationDamping = 0, DefaultForceLimit = 10,
                           DefaultTorqueLimit = 1;
    static constexpr float DefaultRange = 0.1f;  // metres
    static constexpr XColour DefaultColour{0, 0.75f, 1, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(TargetInputMatrix, 51)   // from the target
    TAVO_ATTRIBUTE(TargetOutputMatrix, 52)  // output
    TAVO_ATTRIBUTE(ConstraintEnabled, 53)
    TAVO_ATTRIBUTE(ConstraintMode, 54)
    TAVO_ATTRIBUTE(TargetBlendWeight, 55)
    TAVO_ATTRIBUTE(ShowCurrentFrame, 56)
    TAVO_ATTRIBUTE(ShowTargetFrame, 57)
    TAVO_ATTRIBUTE_XYZ(WorkingRotation, 58)  // radians
    TAVO_ATTRIBUTE(TranslationXActive, 61)
    TAVO_ATTRIBUTE(TranslationYActive, 62)
    TAVO_ATTRIBUTE(TranslationZActive, 63)
    TAVO_ATTRIBUTE(RotationXActive, 64)
    TAVO_ATTRIBUTE(RotationYActive, 65)
    TAVO_ATTRIBUTE(RotationZActive, 66)
    TAVO_ATTRIBUTE(MaximumRange, 67)
    TAVO_ATTRIBUTE(TranslationStiffness, 68)
    TAVO_ATTRIBUTE(RotationStiffness, 69)
    TAVO_ATTRIBUTE(TranslationDamping, 70)
    TAVO_ATTRIBUTE(RotationDamping, 71)
    TAVO_ATTRIBUTE(ForceLimit, 72)
    TAVO_ATTRIBUTE(TorqueLimit, 73)
    TAVO_ATTRIBUTE(SpeedMultiplier, 74)
    TAVO_ATTRIBUTE(SpeedLimit, 75)
    TAVO_ATTRIBUTE(RelativeSpeedLimit, 76)

    XTransform PhysicsConstraintTarget() const;  // what feeds TargetInputMatrix; invalid when nothing does
    // The target follows `source`, of a trajectory what moves along it, instead of anything else; or stands where it is
    // and follows nothing. Nothing without a target or a source. Both give this constraint.
    XTransform ConnectTarget(XTransform const& source);
    XTransform DisconnectTarget();

    void onInitialize() override;
};
using XPhysicsConstraintDef = XTypedDef<XPhysicsConstraint>;

}  // namespace Tavo
