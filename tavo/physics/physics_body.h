// XPhysicsBody: a primitive that a simulation collides with. It hangs under a transform below its physics joint.
#pragma once
#include "tavo/kinematics/shape.h"

namespace Tavo {

class XPhysicsBody : public XTyped<XPhysicsBody, XPrimitive, sg::PhysicsBodyNode> {
public:
    static constexpr XWord TypeID = L"PhysicsBody", DefaultName = L"physicsBody",
                           DefaultTransformName = L"physicsBodyTM";
    static constexpr XColour DefaultColour{0, 0.6f, 0.5f, 1};
    static constexpr int DefaultShape = 0, DefaultDisplayStyle = 1, DefaultHighlightStyle = 0;
    static constexpr float DefaultDensity = 1000;  // kilograms per cubic metre
    static constexpr float DefaultRestitution = 0.05f, DefaultStaticFriction = 0.2f, DefaultDynamicFriction = 0.2f;
    // metres, as all that follow
    static constexpr float DefaultSkinWidth = 0.001f;
    static constexpr float DefaultWidth = 0.2f, DefaultHeight = 0.2f, DefaultLength = 0.35f, DefaultRadius = 0.1f;
    static constexpr float AutoSizeBoxWidth = 0.1f, AutoSizeBoxHeight = 0.1f, AutoSizeBoxLength = 0.1f,
                           AutoSizeCapsuleRadius = 0.05f, AutoSizeCapsuleLength = 0.1f, AutoSizeCylinderRadius = 0.05f,
                           AutoSizeCylinderLength = 0.1f, AutoSizeSphereRadius = 0.1f;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Density, 31)
    TAVO_ATTRIBUTE(Restitution, 32)
    TAVO_ATTRIBUTE(StaticFriction, 33)
    TAVO_ATTRIBUTE(DynamicFriction, 34)
    TAVO_ATTRIBUTE(SkinWidth, 35)

    void onInitialize() override;
};
using XPhysicsBodyDef = XTypedDef<XPhysicsBody>;

}  // namespace Tavo
