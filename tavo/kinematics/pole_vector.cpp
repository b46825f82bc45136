#include "tavo/kinematics/pole_vector.h"
#include "tavo/kinematics/kinematics_constraint.h"

namespace Tavo {

XTransform XPoleVector::Referent() const {
    XKinematicsConstraint const constraint(TranslationX().InputObject());
    if (!constraint.IsValid() || constraint.InputMatrices().ArraySize() == 0) return {};
    return XTransform(constraint.InputMatrices().Attribute(0).Attribute(0).InputObject());
}

void XPoleVector::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
}

}  // namespace Tavo
