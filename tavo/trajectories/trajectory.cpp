#include "tavo/trajectories/trajectory.h"

namespace Tavo {

void XTrajectory::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    for (XAttribute shown : {ShowCurrentFrame(), ShowRotationCurves(), ShowTiming()}) shown.SetBoolean(false);
}

}  // namespace Tavo
