#include "tavo/kinematics/shape.h"

namespace Tavo {

XTransform XShape::Transform() const { return XTransform(FindParentObject(XTransform::TypeID, SupportsObjectType)); }

void XGrid::onInitialize() {
    XTyped::onInitialize();
    SetName(DefaultName);
    SetColour(DefaultColour);
    Attribute(L"Size").SetFloat(DefaultSize);
    Attribute(L"Spacing").SetFloat(DefaultSpacing);
    Attribute(L"Divisions").SetInteger(DefaultDivisions);
}

}  // namespace Tavo
