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
    static constexpr XWord TypeID = L"Shape";
    using XTyped::XTyped;
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
