#include "tavo/animation/keyframe.h"
#include "tavo/animation/animation.h"
#include "tavo/objects/scene.h"
#include <cmath>
#include <span>

namespace Tavo {
namespace {

std::wstring labelOf(std::span<XEnumerationWord const> words, int value) {
    return value >= 0 && std::size_t(value) < words.size() ? words[std::size_t(value)].label.str() : std::wstring();
}

// The value whose label or key is `text`; -1 for none.
int valueOf(std::span<XEnumerationWord const> words, std::wstring const& text) {
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i].label == text || words[i].key == text) return int(i);
    return -1;
}

std::wstring const createLabel = L"Create Keyframe", deleteLabel = L"Delete Keyframe";

}  // namespace

XKeyframe::XKeyframe(XAnimation const& animation, int attributeIndex) :
    XTyped(static_cast<XObject const&>(animation)), _objectID(animation.ObjectID()), _attributeIndex(attributeIndex) {}

bool XKeyframe::isValid() const {
    XAnimation const curve = Animation();
    return scene() && curve.IsValid() && _attributeIndex >= 0 && _attributeIndex < curve.KeyframeCount();
}

// The handle's own node is the curve's, so that no lookup by id is needed.
XAnimation XKeyframe::Animation() const { return XAnimation(static_cast<XObject const&>(*this)); }

int XKeyframe::Index() const { return KeyframeInputValues().FindFloat(InputValue()); }

bool XKeyframe::isFloatMode() const { return Animation().isFloatMode(); }

bool XKeyframe::isQuaternionMode() const { return Animation().isQuaternionMode(); }

// ---- the arrays ----

XAttribute XKeyframe::OutputMode() const { return Animation().OutputMode(); }
XAttribute XKeyframe::KeyframeInputValues() const { return Animation().KeyframeInputValues(); }
XAttribute XKeyframe::KeyframeOutputValues() const { return Animation().KeyframeOutputValues(); }
XAttribute XKeyframe::KeyframeOutputValuesQuat() const { return Animation().KeyframeOutputValuesQuat(); }
XAttribute XKeyframe::KeyframeInTangentsX() const { return Animation().KeyframeInTangentsX(); }
XAttribute XKeyframe::KeyframeInTangentsY() const { return Animation().KeyframeInTangentsY(); }
XAttribute XKeyframe::KeyframeOutTangentsX() const { return Animation().KeyframeOutTangentsX(); }
XAttribute XKeyframe::KeyframeOutTangentsY() const { return Animation().KeyframeOutTangentsY(); }
XAttribute XKeyframe::KeyframeInterpolations() const { return Animation().KeyframeInterpolations(); }
XAttribute XKeyframe::KeyframeContinuities() const { return Animation().KeyframeContinuities(); }

// ---- read ----

float XKeyframe::readFloat(XAttribute const& array) const { return isFloatMode() ? array.Float(_attributeIndex) : 0; }

float XKeyframe::InputValue() const { return KeyframeInputValues().Float(_attributeIndex); }
float XKeyframe::OutputValue() const { return readFloat(KeyframeOutputValues()); }
float XKeyframe::InTangentX() const { return readFloat(KeyframeInTangentsX()); }
float XKeyframe::InTangentY() const { return readFloat(KeyframeInTangentsY()); }
float XKeyframe::OutTangentX() const { return readFloat(KeyframeOutTangentsX()); }
float XKeyframe::OutTangentY() const { return readFloat(KeyframeOutTangentsY()); }

// A decision of this system: it gives the default whatever the key holds; the quaternion stands in
// KeyframeOutputValuesQuat.
XQuaternion XKeyframe::OutputQuatValue() const { return XQuaternion(); }

// The defaults of a key without float data differ, on purpose.
int XKeyframe::InterpolationIndex() const {
    return isQuaternionMode() ? 0 : KeyframeInterpolations().Enumeration(_attributeIndex);
}

int XKeyframe::ContinuityIndex() const {
    return isQuaternionMode() ? 1 : KeyframeContinuities().Enumeration(_attributeIndex);
}

std::wstring XKeyframe::Interpolation() const {
    return isFloatMode() ? labelOf(InterpolationWords, InterpolationIndex()) : std::wstring();
}

std::wstring XKeyframe::Continuity() const {
    return isFloatMode() ? labelOf(ContinuityWords, ContinuityIndex()) : std::wstring();
}

// ---- write ----

// A slot of -1 names no key, and element 0 of an empty array must not come into being by a write to it.
XKeyframe& XKeyframe::writeFloat(XAttribute array, float value) {
    if (isFloatMode() && _attributeIndex < array.ArraySize()) array.SetFloat(value, _attributeIndex);
    return *this;
}

XKeyframe& XKeyframe::writeEnumeration(XAttribute array, int value) {
    if (isFloatMode() && value >= 0 && _attributeIndex < array.ArraySize())
        array.SetEnumeration(value, _attributeIndex);
    return *this;
}

XKeyframe& XKeyframe::SetInputValue(float value) {
    XAttribute inputs = KeyframeInputValues();
    if (_attributeIndex < inputs.ArraySize()) inputs.SetFloat(value, _attributeIndex);
    return *this;
}

XKeyframe& XKeyframe::SetOutputValue(float value) { return writeFloat(KeyframeOutputValues(), value); }
XKeyframe& XKeyframe::SetInTangentX(float value) { return writeFloat(KeyframeInTangentsX(), value); }
XKeyframe& XKeyframe::SetInTangentY(float value) { return writeFloat(KeyframeInTangentsY(), value); }
XKeyframe& XKeyframe::SetOutTangentX(float value) { return writeFloat(KeyframeOutTangentsX(), value); }
XKeyframe& XKeyframe::SetOutTangentY(float value) { return writeFloat(KeyframeOutTangentsY(), value); }

XKeyframe& XKeyframe::SetContinuity(int continuity) { return writeEnumeration(KeyframeContinuities(), continuity); }

XKeyframe& XKeyframe::SetContinuity(std::wstring const& label) {
    return SetContinuity(valueOf(ContinuityWords, label));
}

XKeyframe& XKeyframe::SetInterpolation(int interpolation) {
    return writeEnumeration(KeyframeInterpolations(), interpolation);
}

XKeyframe& XKeyframe::SetInterpolation(std::wstring const& label) {
    return SetInterpolation(valueOf(InterpolationWords, label));
}

XKeyframe& XKeyframe::SetOutputValueQuat(XQuaternion const& value) {
    if (isQuaternionMode()) Animation().curveNode()->setRotationKey(_attributeIndex, value.AsQuaternion());
    return *this;
}

XKeyframe& XKeyframe::Move(float dx, float dy) {
    return SetInputValue(InputValue() + dx).SetOutputValue(OutputValue() + dy);
}

XKeyframe& XKeyframe::Scale(float sx, float sy, float px, float py) {
    return SetInputValue((InputValue() - px) * sx + px).SetOutputValue((OutputValue() - py) * sy + py);
}

XKeyframe& XKeyframe::SnapToFrame() { return SetInputValue(std::round(InputValue())); }

// ---- creation and deletion ----

void XKeyframe::Create(float x, float y, int interpolation, int continuity) {
    if (!scene() || !isFloatMode()) return;
    XChangeBlock const block(*scene(), createLabel);
    XAnimation const curve = Animation();
    curve.forEachFloatArray([](XAttribute array) { array.AddValue(); });
    XKeyframe key(curve, curve.KeyframeCount() - 1);
    key.SetInputValue(x).SetOutputValue(y).SetInterpolation(interpolation).SetContinuity(continuity);
    key.SetInTangentX(0).SetInTangentY(0).SetOutTangentX(0).SetOutTangentY(0);
}

void XKeyframe::Create(float x, XQuaternion const& value) {
    if (!scene() || !isQuaternionMode()) return;
    XChangeBlock const block(*scene(), createLabel);
    XAnimation const curve = Animation();
    curve.KeyframeInputValues().AddValue();
    curve.KeyframeOutputValuesQuat().AddValue();
    XKeyframe(curve, curve.KeyframeCount() - 1).SetInputValue(x).SetOutputValueQuat(value);
}

void XKeyframe::Delete() {
    if (!IsValid()) return;
    XChangeBlock const block(*scene(), deleteLabel);
    XAnimation const curve = Animation();
    int const slot = _attributeIndex;
    if (isQuaternionMode()) {
        curve.KeyframeInputValues().Delete(slot);
        curve.KeyframeOutputValuesQuat().Delete(slot);
    } else
        curve.forEachFloatArray([&](XAttribute array) { array.Delete(slot); });
}

}  // namespace Tavo
