#include "tavo/kinematics/retarget.h"
#include "tavo/kinematics/rig_parts.h"

namespace Tavo {
namespace {

template<class Node> void initialise(Node& node) {
    if constexpr (requires { node.Initialise(); }) node.Initialise();
}

}  // namespace

void XRetarget::Initialise() {
    if (IsValid()) initialise(static_cast<sg::RetargetNode&>(*getNode()));
}

// Its sources are not its own: let go of first, none of them goes with it as an input that nothing else needs.
void XRetarget::onDelete() {
    XTyped::onDelete();
    deleteAssociated(AssociatedObjects());
    DisconnectInputAttributes();
}

}  // namespace Tavo
