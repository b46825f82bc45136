// Finding, editing and making keys. The operations on several keys are one family: which keys are hit, by a predicate
// on the input, and what happens to each.
#include "tavo/animation/animation.h"
#include "tavo/objects/scene.h"
#include <algorithm>

namespace Tavo {
namespace {

std::wstring const editLabel = L"Edit Keyframes";

auto between(float from, float to) {
    return [=](float input) { return from <= input && input <= to; };
}

// The delete ranges hit what lies at or after both bounds: a decision of this system.
auto fromBoth(float from, float to) {
    return [=](float input) { return from <= input && to <= input; };
}

auto exactly(float key) {
    return [=](float input) { return input == key; };
}

auto moving(float dx, float dy) {
    return [=](XKeyframe& key) { key.Move(dx, dy); };
}

auto scaling(float sx, float sy, float px, float py) {
    return [=](XKeyframe& key) { key.Scale(sx, sy, px, py); };
}

void snap(XKeyframe& key) { key.SnapToFrame(); }

}  // namespace

// ---- which keys ----

XKeyframe XAnimation::Keyframe(float input) const { return XKeyframe(*this, KeyframeInputValues().FindFloat(input)); }

XKeyframe XAnimation::Keyframe(int sorted) const { return keyOfRank(sorted); }

// A rank that no key has gives an invalid key; the sorted read alone would give 0, and with it a key at 0.
XKeyframe XAnimation::keyOfRank(int sorted) const {
    float input = 0;
    return inputsOfRanks(sorted, sorted, input, input) ? Keyframe(input) : XKeyframe(*this, -1);
}

bool XAnimation::inputsOfRanks(int from, int to, float& first, float& last) const {
    int const count = KeyframeCount();
    if (from < 0 || to < 0 || from >= count || to >= count) return false;
    first = KeyframeInputValues().SortedFloat(from);
    last = to == from ? first : KeyframeInputValues().SortedFloat(to);
    return true;
}

// Slots outside the arrays have no key, so that the range may be cut to them.
XAnimation& XAnimation::forKeys(int first, int last, auto const& action) {
    XChangeBlock const block(Scene(), editLabel);
    last = std::min(last, KeyframeCount() - 1);
    for (int i = std::max(first, 0); i <= last; ++i) {
        XKeyframe key = KeyframeByAttributeIndex(i);
        action(key);
    }
    return *this;
}

XAnimation& XAnimation::forHits(auto const& isHit, auto const& action) {
    return forKeys(0, KeyframeCount() - 1, [&](XKeyframe& key) {
        if (isHit(key.InputValue())) action(key);
    });
}

// Deleting closes the gap in the arrays, so it runs from the highest slot down.
XAnimation& XAnimation::deleteKeys(int first, int last, auto const& isHit) {
    XChangeBlock const block(Scene(), editLabel);
    for (int i = std::min(last, KeyframeCount() - 1); i >= std::max(first, 0); --i) {
        XKeyframe key = KeyframeByAttributeIndex(i);
        if (isHit(key.InputValue())) key.Delete();
    }
    return *this;
}

XAnimation& XAnimation::forRange(int from, int to, auto const& hits, auto const& action) {
    float first = 0, last = 0;
    return inputsOfRanks(from, to, first, last) ? forHits(hits(first, last), action) : *this;
}

XAnimation& XAnimation::forOne(XKeyframe key, auto const& action) {
    if (key.IsValid()) action(key);
    return *this;
}

// ---- delete ----

XAnimation& XAnimation::DeleteKeyframe(float input) { return Keyframe(input).Delete(), *this; }
XAnimation& XAnimation::DeleteKeyframe(int sorted) { return Keyframe(sorted).Delete(), *this; }
XAnimation& XAnimation::DeleteKeyframeByAttributeIndex(int index) {
    return KeyframeByAttributeIndex(index).Delete(), *this;
}

XAnimation& XAnimation::DeleteKeyframes(float from, float to) {
    return deleteKeys(0, KeyframeCount() - 1, fromBoth(from, to));
}

XAnimation& XAnimation::DeleteKeyframes(int from, int to) {
    float first = 0, last = 0;
    return inputsOfRanks(from, to, first, last) ? DeleteKeyframes(first, last) : *this;
}

XAnimation& XAnimation::DeleteKeyframesByAttributeIndex(int from, int to) {
    return deleteKeys(from, to, [](float) { return true; });
}

// ---- move ----

XAnimation& XAnimation::MoveKeyframe(int sorted, float dx, float dy) {
    return forOne(Keyframe(sorted), moving(dx, dy));
}

XAnimation& XAnimation::MoveKeyframes(float from, float to, float dx, float dy) {
    return forHits(between(from, to), moving(dx, dy));
}

XAnimation& XAnimation::MoveKeyframes(int from, int to, float dx, float dy) {
    return forRange(from, to, between, moving(dx, dy));
}

XAnimation& XAnimation::MoveKeyframesByAttributeIndex(int from, int to, float dx, float dy) {
    return forKeys(from, to, moving(dx, dy));
}

// ---- scale ----

XAnimation& XAnimation::ScaleKeyframe(float key, float sx, float sy, float px, float py) {
    return forHits(exactly(key), scaling(sx, sy, px, py));
}

XAnimation& XAnimation::ScaleKeyframe(int sorted, float sx, float sy, float px, float py) {
    return forOne(Keyframe(sorted), scaling(sx, sy, px, py));
}

XAnimation& XAnimation::ScaleKeyframes(float from, float to, float sx, float sy, float px, float py) {
    return forHits(between(from, to), scaling(sx, sy, px, py));
}

XAnimation& XAnimation::ScaleKeyframes(int from, int to, float sx, float sy, float px, float py) {
    return forRange(from, to, between, scaling(sx, sy, px, py));
}

XAnimation& XAnimation::ScaleKeyframesByAttributeIndex(int from, int to, float sx, float sy, float px, float py) {
    return forKeys(from, to, scaling(sx, sy, px, py));
}

// ---- snap ----

XAnimation& XAnimation::SnapKeyframe(float key) { return forHits(exactly(key), snap); }
XAnimation& XAnimation::SnapKeyframe(int sorted) { return forOne(Keyframe(sorted), snap); }
XAnimation& XAnimation::SnapKeyframes(float from, float to) { return forHits(between(from, to), snap); }
XAnimation& XAnimation::SnapKeyframes(int from, int to) { return forRange(from, to, between, snap); }
XAnimation& XAnimation::SnapKeyframesByAttributeIndex(int from, int to) { return forKeys(from, to, snap); }

// ---- create ----

XKeyframe XAnimation::CreateKeyframe(float x, float y, int interpolation, int continuity) {
    if (!isFloatMode()) return {};
    XKeyframe key = Keyframe(x);
    if (!key.IsValid()) key.Create(x, y, interpolation, continuity);
    return key;
}

// x twice: a decision of this system.
XKeyframe XAnimation::CreateKeyframe(float x, float, int interpolation) {
    return CreateKeyframe(x, x, interpolation, 0);
}

XKeyframe XAnimation::CreateKeyframe(float x, float) { return CreateKeyframe(x, x, 0, 0); }

XKeyframe XAnimation::CreateKeyframe(float x, XQuaternion const& value) {
    if (!isQuaternionMode()) return {};
    XKeyframe key = Keyframe(x);
    if (!key.IsValid()) key.Create(x, value);
    return key;
}

// ---- edit ----

XKeyframe XAnimation::editKey(XKeyframe key, float const* x, float y, int interpolation, int continuity) {
    if (!isFloatMode()) return {};
    if (!key.IsValid()) return key;
    if (x) key.SetInputValue(*x);
    return key.SetOutputValue(y).SetInterpolation(interpolation).SetContinuity(continuity);
}

XKeyframe XAnimation::editKey(XKeyframe key, float const* x, XQuaternion const& value) {
    if (!isQuaternionMode()) return {};
    if (!key.IsValid()) return key;
    if (x) key.SetInputValue(*x);
    return key.SetOutputValueQuat(value);
}

XKeyframe XAnimation::EditKeyframe(float x, float y, int interpolation, int continuity) {
    return editKey(Keyframe(x), nullptr, y, interpolation, continuity);
}
XKeyframe XAnimation::EditKeyframe(float x, float y, int interpolation) { return EditKeyframe(x, y, interpolation, 0); }
XKeyframe XAnimation::EditKeyframe(float x, float y) { return EditKeyframe(x, y, 0, 0); }
XKeyframe XAnimation::EditKeyframe(float x, XQuaternion const& value) { return editKey(Keyframe(x), nullptr, value); }

XKeyframe XAnimation::EditKeyframe(int sorted, float x, float y, int interpolation, int continuity) {
    return editKey(Keyframe(sorted), &x, y, interpolation, continuity);
}
XKeyframe XAnimation::EditKeyframe(int sorted, float x, float y, int interpolation) {
    return EditKeyframe(sorted, x, y, interpolation, 0);
}
XKeyframe XAnimation::EditKeyframe(int sorted, float x, float y) { return EditKeyframe(sorted, x, y, 0, 0); }
XKeyframe XAnimation::EditKeyframe(int sorted, float x, XQuaternion const& value) {
    return editKey(Keyframe(sorted), &x, value);
}

XKeyframe XAnimation::EditKeyframeByAttributeIndex(int index, float x, float y, int interpolation, int continuity) {
    return editKey(KeyframeByAttributeIndex(index), &x, y, interpolation, continuity);
}
XKeyframe XAnimation::EditKeyframeByAttributeIndex(int index, float x, float y, int interpolation) {
    return EditKeyframeByAttributeIndex(index, x, y, interpolation, 1);
}
XKeyframe XAnimation::EditKeyframeByAttributeIndex(int index, float x, float y) {
    return EditKeyframeByAttributeIndex(index, x, y, 1, 1);
}
XKeyframe XAnimation::EditKeyframeByAttributeIndex(int index, float x, XQuaternion const& value) {
    return editKey(KeyframeByAttributeIndex(index), &x, value);
}

// ---- set: edit, or create ----

XKeyframe XAnimation::SetKeyframe(float x, float y, int interpolation, int continuity) {
    if (!isFloatMode()) return {};
    XKeyframe key = Keyframe(x);
    if (key.IsValid()) return editKey(key, nullptr, y, interpolation, continuity);
    key.Create(x, y, interpolation, continuity);
    return key;
}

XKeyframe XAnimation::SetKeyframe(float x, float y, int interpolation) { return SetKeyframe(x, y, interpolation, 1); }
XKeyframe XAnimation::SetKeyframe(float x, float y) { return SetKeyframe(x, y, 1, 1); }

XKeyframe XAnimation::SetKeyframe(float x, XQuaternion const& value) {
    if (!isQuaternionMode()) return {};
    XKeyframe key = Keyframe(x);
    if (key.IsValid()) return editKey(key, nullptr, value);
    key.Create(x, value);
    return key;
}

XKeyframe XAnimation::SetKeyframe(XQuaternion const& value) { return SetKeyframe(InputValue().Float(), value); }

}  // namespace Tavo
