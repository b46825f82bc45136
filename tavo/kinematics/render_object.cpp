#include "tavo/kinematics/render_object.h"
#include "tavo/objects/attribute_colour.h"

namespace Tavo {

XRenderObject& XRenderObject::SetVisible(bool visible) {
    Visible().SetBoolean(visible);
    return *this;
}

XColour XRenderObject::ColourValue() const { return colourOf(Colour()); }

XRenderObject& XRenderObject::SetColour(XColour const& colour) {
    setColour(Colour(), colour);
    return *this;
}

XRenderObject& XRenderObject::SetColour(float red, float green, float blue, float alpha) {
    return SetColour({red, green, blue, alpha});
}

}  // namespace Tavo
