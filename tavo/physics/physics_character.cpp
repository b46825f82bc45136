#include "tavo/physics/physics_character.h"
#include "tavo/physics/physics_joint.h"

namespace Tavo {

void XPhysicsCharacter::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, XPhysicsJoint::DefaultColour);
}

}  // namespace Tavo
