#include "tavo/physics/physics_mesh_instance.h"

namespace Tavo {

void XPhysicsMeshInstance::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName);
}

}  // namespace Tavo
