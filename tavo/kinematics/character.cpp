#include "tavo/kinematics/character.h"

namespace Tavo {

void XCharacter::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    IsEditable().SetBoolean(false);
}

}  // namespace Tavo
