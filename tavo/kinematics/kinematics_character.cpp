#include "tavo/kinematics/kinematics_character.h"
#include "tavo/kinematics/joint.h"

namespace Tavo {

XTransform XKinematicsCharacter::CharacterRoot() const {
    XTransform const joint(FindChildObject(XJoint::TypeID, IsObjectType));
    return joint.IsValid() ? joint : XTransform(FindChildObject(XTransform::TypeID, IsObjectType));
}

void XKinematicsCharacter::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, XJoint::DefaultBoneColour);
}

}  // namespace Tavo
