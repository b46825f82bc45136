// XRenderObject: a scene object that is drawn.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/colour.h"
#include "tavo/objects/scene_object.h"

namespace Tavo {

class XRenderObject : public XTyped<XRenderObject, XSceneObject, sg::RenderableNode> {
public:
    static constexpr XWord TypeID = L"RenderObject";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Visible, 8)
    TAVO_ATTRIBUTE(Colour, 9)  // four floats: red, green, blue, alpha
    TAVO_ATTRIBUTE(ShowHierarchy, 10)

    XRenderObject& SetVisible(bool visible);
    XColour ColourValue() const;
    XRenderObject& SetColour(XColour const& colour);
    XRenderObject& SetColour(float red, float green, float blue, float alpha);
};
using XRenderObjectDef = XTypedDef<XRenderObject>;

}  // namespace Tavo
