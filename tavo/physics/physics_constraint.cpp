#include "tavo/physics/physics_constraint.h"

namespace Tavo {

XTransform XPhysicsConstraint::PhysicsConstraintTarget() const { return XTransform(TargetInputMatrix().InputObject()); }

void XPhysicsConstraint::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    ConstraintEnabled().SetBoolean(true);
    ConstraintMode().SetEnumeration(DefaultMode);
    MaximumRange().SetFloat(DefaultRange);
    TranslationStiffness().SetFloat(DefaultTranslationStiffness);
    RotationStiffness().SetFloat(DefaultRotationStiffness);
    TranslationDamping().SetFloat(DefaultTranslationDamping);
    RotationDamping().SetFloat(DefaultRotationDamping);
    ForceLimit().SetFloat(DefaultForceLimit);
    TorqueLimit().SetFloat(DefaultTorqueLimit);
}

}  // namespace Tavo
