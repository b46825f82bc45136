#include "tavo/kinematics/retarget.h"
#include "tavo/kinematics/rig_parts.h"

namespace Tavo {

void XRetarget::Initialise() {
    if (IsValid()) static_cast<sg::RetargetNode*>(getNode())->Initialise();
}

// Its sources are not its own: let go of first, none of them goes with it as an input that nothing else needs.
void XRetarget::onDelete() {
    XTyped::onDelete();
    deleteAssociated(AssociatedObjects());
    for (XAttribute const& array : {TargetJointParams(), SourceJointParams(), InputSourceGeometry()})
        disconnectElements(array);
    DisconnectInputAttributes();
}

}  // namespace Tavo
