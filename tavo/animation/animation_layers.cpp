#include "tavo/animation/animation_layers.h"
#include "tavo/objects/attribute_colour.h"

namespace Tavo {

int XAnimationLayers::LayerCount() const { return Layers().ArraySize(); }

std::wstring XAnimationLayers::LayerLabel(int layer) const { return field(layer, Label).String(); }

float XAnimationLayers::LayerWeight(int layer) const { return field(layer, Weight).Float(); }

XColour XAnimationLayers::LayerColour(int layer) const { return colourOf(field(layer, Colour)); }

bool XAnimationLayers::IsVisibleLayer(int layer) const { return field(layer, Visible).Boolean(); }

bool XAnimationLayers::IsOverrideLayer(int layer) const { return field(layer, Override).Boolean(); }

XAnimationLayers& XAnimationLayers::SetLayerLabel(int layer, std::wstring const& label) {
    field(layer, Label).SetString(label);
    return *this;
}

XAnimationLayers& XAnimationLayers::SetLayerWeight(int layer, float const& weight) {
    field(layer, Weight).SetFloat(weight);
    return *this;
}

XAnimationLayers& XAnimationLayers::SetLayerColour(int layer, XColour const& colour) {
    setColour(field(layer, Colour), colour);
    return *this;
}

XAnimationLayers& XAnimationLayers::SetLayerColour(int layer, float red, float green, float blue, float alpha) {
    return SetLayerColour(layer, XColour(red, green, blue, alpha));
}

XAnimationLayers& XAnimationLayers::SetIsVisibleLayer(int layer, bool visible) {
    field(layer, Visible).SetBoolean(visible);
    return *this;
}

XAnimationLayers& XAnimationLayers::SetIsOverrideLayer(int layer, bool isOverride) {
    field(layer, Override).SetBoolean(isOverride);
    return *this;
}

XAnimationLayers& XAnimationLayers::AddLayer() {
    if (IsValid()) appendLayer(LayerLabelPrefix + std::to_wstring(LayerCount() + 1), false);
    return *this;
}

XAnimationLayers& XAnimationLayers::ClearLayers() {
    if (!IsValid()) return *this;
    Layers().Clear();
    appendLayer(BaseLayerLabel, true);
    return *this;
}

void XAnimationLayers::onInitialize() {
    XTyped::onInitialize();
    ClearLayers();
}

void XAnimationLayers::appendLayer(std::wstring const& label, bool isOverride) {
    Layers().AddAttribute();
    int const layer = LayerCount() - 1;
    SetLayerLabel(layer, label).SetLayerWeight(layer, 1).SetLayerColour(layer, 1, 1, 1, 1);
    SetIsVisibleLayer(layer, true).SetIsOverrideLayer(layer, isOverride);
}

}  // namespace Tavo
