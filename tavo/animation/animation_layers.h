// XAnimationLayers: the scene's table of animation layers: a label, a weight, a colour and two flags for each.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XAnimationLayers : public XTyped<XAnimationLayers, XObject, sg::AnimationLayersNode> {
public:
    static constexpr XWord TypeID = L"AnimationLayers";
    using XTyped::XTyped;

    // An array of rows, each: 0 label, 1 weight, 2 colour (four floats), 3 visible, 4 override.
    TAVO_ATTRIBUTE(Layers, 8)
};
using XAnimationLayersDef = XTypedDef<XAnimationLayers>;

}  // namespace Tavo
