// What an attribute offers of its animation. Setting a key at the current time stands on the kinematics floor, because
// the rotation of a transform is keyed as a whole.
#include "tavo/animation/animation.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/units.h"

namespace Tavo {

// Something other than a curve decides the value. A curve does not count: its keys are how the value is edited.
bool XAttribute::isDriven() const { return IsComputed() && !Animation().IsValid(); }

bool XAttribute::IsAnimatable() const {
    db::Attribute const* a = getAttribute();
    if (!a || !(a->isFloat() || a->isDouble() || a->isInt() || a->isBool() || a->isEnum())) return false;
    db::AttributeDef const& def = a->getDef();
    return def.hasFlag(db::FlagAnimatable) && !def.hasFlag(db::FlagInternal) && IsEditable() && !isDriven();
}

bool XAttribute::IsAnimated() const { return Animation().IsValid(); }

XAnimation XAttribute::Animation() const { return XAnimation(InputObject()); }

XAnimation XAttribute::CreateAnimation() {
    if (XAnimation curve = Animation(); curve.IsValid()) return curve;
    XObject object = Object();
    XScene& scene = XSceneObject(object).Scene();
    if (!object.IsEditable() || !scene.IsValid()) return {};
    XAnimation curve(scene.CreateNode(XAnimation::TypeID));
    curve.SetName(XAnimation::DefaultName + std::to_wstring(AttributeID()));
    curve.SetParent(object);
    if (!curve.OutputValue().ConnectOutputTo(*this)) {
        curve.Remove();
        return {};
    }
    scene.SceneSettings().Time().ConnectOutputTo(curve.InputValue());
    curve.InputUnits().SetInteger(FrameUnit);
    curve.OutputUnits().SetInteger(Units());
    return curve;
}

XAttribute& XAttribute::DeleteAnimation() {
    if (XAnimation curve = Animation(); curve.IsValid()) curve.Remove();
    return *this;
}

XAttribute& XAttribute::DeleteEmptyAnimation() {
    if (XAnimation curve = Animation(); curve.IsValid() && curve.KeyframeCount() == 0) curve.Remove();
    return *this;
}

// The attribute keeps the value it has now. A curve that feeds others too, as one of a rotation feeds three, stays with
// those; one that feeds nothing any more goes.
XAttribute& XAttribute::ClearAnimation() {
    XAnimation curve = Animation();
    if (!curve.IsValid()) return *this;
    DisconnectInput();
    if (!curve.HasOutputAttributes()) curve.Remove();
    return *this;
}

XKeyframe XAttribute::SetKeyframe(float time, float value) {
    return IsAnimatable() ? CreateAnimation().SetKeyframe(time, value) : XKeyframe();
}

}  // namespace Tavo
