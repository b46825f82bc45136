#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_character.h"
#include "tavo/objects/scene.h"

namespace Tavo {

XCharacter XObject::Character() const {
    XCharacter const self(*this);
    return self.IsValid() ? self : XCharacter(FindParentObject(XCharacter::TypeID, SupportsObjectType));
}

XKinematicsCharacter XCharacter::KinematicsCharacter() const {
    return XKinematicsCharacter(FindChildObject(XKinematicsCharacter::TypeID, IsObjectType));
}

bool XCharacter::IsEnvironmentCharacter() const { return IsValid() && XScene::EnvironmentCharacterName == Name(); }

void XCharacter::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    IsEditable().SetBoolean(false);
}

}  // namespace Tavo
