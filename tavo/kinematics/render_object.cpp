#include "tavo/kinematics/render_object.h"

namespace Tavo {

XRenderObject& XRenderObject::SetVisible(bool visible) {
    Visible().SetBoolean(visible);
    return *this;
}

XColour XRenderObject::ColourValue() const {
    XAttribute const colour = Colour();
    auto part = [&](int i) { return colour.Attribute(i).Float(); };
    return {part(0), part(1), part(2), part(3)};
}

XRenderObject& XRenderObject::SetColour(XColour const& colour) {
    return SetColour(colour.Red(), colour.Green(), colour.Blue(), colour.Alpha());
}

XRenderObject& XRenderObject::SetColour(float red, float green, float blue, float alpha) {
    XAttribute const colour = Colour();
    float const parts[] = {red, green, blue, alpha};
    for (int i = 0; i < 4; ++i) colour.Attribute(i).SetFloat(parts[i]);
    return *this;
}

}  // namespace Tavo
