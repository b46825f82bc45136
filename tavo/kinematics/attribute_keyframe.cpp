// Setting a key at the current time: the one operation of an attribute that knows of transforms.
#include "tavo/animation/animation.h"
#include "tavo/kinematics/transform.h"
#include "tavo/objects/scene.h"

namespace Tavo {
namespace {

float asFloat(XAttribute const& a) {
    if (a.IsFloat()) return a.Float();
    if (a.IsDouble()) return float(a.Double());
    if (a.IsInt()) return float(a.Integer());
    return a.IsBool() ? float(a.Boolean()) : float(a.Enumeration());
}

}  // namespace

// The value and the time are read before the curve is made, which has no key yet. The time is that of the attribute's
// own scene, which is what moves its curve.
XKeyframe XAttribute::SetKeyframe() {
    XObject const object = Object();
    if (!object.IsEditable() || !IsAnimatable()) return {};
    XKeyframe key;
    if (XTransform transform(object); transform.IsValid() && transform.SetRotationKeyframe(*this, key)) return key;
    float const value = asFloat(*this), time = XSceneObject(object).Scene().SceneSettings().Time().Float();
    int const interpolation = IsFloat() || IsDouble() ? LinearInterpolation : ConstantInterpolation;
    return CreateAnimation().SetKeyframe(time, value, interpolation);
}

}  // namespace Tavo
