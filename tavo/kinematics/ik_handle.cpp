#include "tavo/kinematics/ik_handle.h"

namespace Tavo {

void XIKHandle::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
}

}  // namespace Tavo
