// XShape: what is drawn under a transform. XGrid: the ground grid of a scene.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XShape : public XTyped<XShape, XRenderObject, sg::ShapeBaseNode> {
public:
    static constexpr XWord TypeID = L"BaseShape", DefaultName = L"shape", DefaultSuffix = L"Shape";
    using XTyped::XTyped;

    XTransform Transform() const;  // the nearest transform above
};
using XShapeDef = XTypedDef<XShape>;

// The words of this type and of its base are the way round they are on purpose.
class XPrimitive : public XTyped<XPrimitive, XShape, sg::PrimitiveNode> {
public:
    static constexpr XWord TypeID = L"Shape", DefaultName = L"shape";
    static constexpr int DefaultShape = 0;
    static constexpr float DefaultRadius = 0.05f, DefaultWidth = 0.05f, DefaultHeight = 0.05f,
                           DefaultLength = 0.3f;  // metres
    static constexpr XColour DefaultColour{0, 0.5f, 0.7f, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Shape, 18)  // 0 "Box", 1 "Capsule", 2 "Cylinder", 3 "Sphere"
    TAVO_ATTRIBUTE(Width, 19)
    TAVO_ATTRIBUTE(Height, 20)
    TAVO_ATTRIBUTE(Length, 21)
    TAVO_ATTRIBUTE(Radius, 22)
    TAVO_ATTRIBUTE(Volume, 23)  // read only
    TAVO_ATTRIBUTE(InheritColour, 24)
    TAVO_ATTRIBUTE(InheritScale, 25)
    TAVO_ATTRIBUTE(DisplayStyle, 26)    // 0 "Shaded", 1 "ShadedEdges", 2 "ShadedWireframe", 3 "Edges", 4 "Wireframe"
    TAVO_ATTRIBUTE(HighlightStyle, 27)  // 0 "Edges", 1 "Wireframe", 2 "Shaded", 3 "ShadedEdges", 4 "ShadedWireframe"
    TAVO_ATTRIBUTE(RadialSegments, 29)
    TAVO_ATTRIBUTE(ArcSegments, 30)

    void onInitialize() override;

protected:
    struct Size {
        float width, height, length, radius;  // metres
    };
    void initializeAs(XWord const& name, XColour const& colour, int shape, Size const& size);
};
using XPrimitiveDef = XTypedDef<XPrimitive>;

class XGrid : public XTyped<XGrid, XShape, sg::GridNode> {
public:
    static constexpr XWord TypeID = L"Grid", DefaultName = L"grid";
    static constexpr float DefaultSize = 20, DefaultSpacing = 1;  // metres
    static constexpr int DefaultDivisions = 5;
    static constexpr XColour DefaultColour{0.15f, 0.15f, 0.15f, 1};
    using XTyped::XTyped;

    void onInitialize() override;
};
using XGridDef = XTypedDef<XGrid>;

}  // namespace Tavo
