#include "tavo/physics/physics_body.h"

namespace Tavo {

void XPhysicsBody::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour, DefaultShape, {DefaultWidth, DefaultHeight, DefaultLength, DefaultRadius});
    Density().SetFloat(DefaultDensity);
    Restitution().SetFloat(DefaultRestitution);
    StaticFriction().SetFloat(DefaultStaticFriction);
    DynamicFriction().SetFloat(DefaultDynamicFriction);
    SkinWidth().SetFloat(DefaultSkinWidth);
    DisplayStyle().SetEnumeration(DefaultDisplayStyle);
    HighlightStyle().SetInteger(DefaultHighlightStyle);
}

}  // namespace Tavo
