// XPhysicsMeshInstance: a mesh that a simulation collides with.
#pragma once
#include "tavo/kinematics/mesh_instance.h"

namespace Tavo {

class XPhysicsMeshInstance : public XTyped<XPhysicsMeshInstance, XMeshInstance, sg::PhysicsMeshInstanceNode> {
public:
    static constexpr XWord TypeID = L"PhysicsMeshInstance", DefaultName = L"physicsMeshInstance";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(MotionEnabled, 25)
    TAVO_ATTRIBUTE(Density, 26)  // kilograms per cubic metre
    TAVO_ATTRIBUTE(Restitution, 27)
    TAVO_ATTRIBUTE(StaticFriction, 28)
    TAVO_ATTRIBUTE(DynamicFriction, 29)
    TAVO_ATTRIBUTE(SkinWidth, 30)  // metres

    void onInitialize() override;  // leaves these as the node gives them
};
using XPhysicsMeshInstanceDef = XTypedDef<XPhysicsMeshInstance>;

}  // namespace Tavo
