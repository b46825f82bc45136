// XAnimationLayers: the scene's table of animation layers: a label, a weight, a colour and two flags for each. It is
// only edited here: no blending is computed, and no curve refers to a layer.
//
// Rows are numbered from 0 without gaps; row 0 always exists after initialisation and is the base layer, an override
// layer named "Background". Numbers are not range-checked: a bad one behaves as a bad index of the array. Nothing here
// opens a change block.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/colour.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XAnimationLayers : public XTyped<XAnimationLayers, XObject, sg::AnimationLayersNode> {
public:
    static constexpr XWord TypeID = L"AnimationLayers", BaseLayerLabel = L"Background",
                           LayerLabelPrefix = L"Animation Layer ";
    using XTyped::XTyped;

    // An array of rows, each: 0 label, 1 weight, 2 colour (four floats), 3 visible, 4 override.
    TAVO_ATTRIBUTE(Layers, 8)

    int LayerCount() const;
    std::wstring LayerLabel(int layer) const;
    float LayerWeight(int layer) const;
    XColour LayerColour(int layer) const;
    bool IsVisibleLayer(int layer) const;
    bool IsOverrideLayer(int layer) const;
    XAnimationLayers& SetLayerLabel(int layer, std::wstring const& label);
    XAnimationLayers& SetLayerWeight(int layer, float const& weight);
    XAnimationLayers& SetLayerColour(int layer, XColour const& colour);
    XAnimationLayers& SetLayerColour(int layer, float red, float green, float blue, float alpha);
    XAnimationLayers& SetIsVisibleLayer(int layer, bool visible);
    XAnimationLayers& SetIsOverrideLayer(int layer, bool isOverride);
    XAnimationLayers& AddLayer();     // its label counts the base layer and may stand twice
    XAnimationLayers& ClearLayers();  // leaves the base layer

    void onInitialize() override;

private:
    enum Field { Label, Weight, Colour, Visible, Override };
    XAttribute field(int layer, Field field) const { return Layers().Attribute(layer).Attribute(field); }
    void appendLayer(std::wstring const& label, bool isOverride);
};
using XAnimationLayersDef = XTypedDef<XAnimationLayers>;

}  // namespace Tavo
