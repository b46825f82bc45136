#include "tavo/kinematics/shape.h"

namespace Tavo {

XTransform XShape::Transform() const { return XTransform(FindParentObject(XTransform::TypeID, SupportsObjectType)); }

void XPrimitive::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour, DefaultShape, {DefaultWidth, DefaultHeight, DefaultLength, DefaultRadius});
}

void XPrimitive::initializeAs(XWord const& name, XColour const& colour, int shape, Size const& size) {
    SetName(name);
    SetColour(colour);
    Shape().SetEnumeration(shape);
    Width().SetFloat(size.width);
    Height().SetFloat(size.height);
    Length().SetFloat(size.length);
    Radius().SetFloat(size.radius);
}

void XGrid::onInitialize() {
    XTyped::onInitialize();
    SetName(DefaultName);
    SetColour(DefaultColour);
    Attribute(L"Size").SetFloat(DefaultSize);
    Attribute(L"Spacing").SetFloat(DefaultSpacing);
    Attribute(L"Divisions").SetInteger(DefaultDivisions);
}

}  // namespace Tavo
