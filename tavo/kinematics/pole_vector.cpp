#include "tavo/kinematics/pole_vector.h"

namespace Tavo {

void XPoleVector::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
}

}  // namespace Tavo
