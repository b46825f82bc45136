#include "tavo/kinematics/mesh_instance.h"

namespace Tavo {

void XMeshInstance::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName);
}

void XMeshInstance::initializeAs(XWord const& name) {
    SetName(name);
    SetVisible(true);
}

}  // namespace Tavo
