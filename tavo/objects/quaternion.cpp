#include "tavo/objects/quaternion.h"
#include "qel/utils/maths.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/vector3.h"
#include <cmath>

namespace Tavo {

XQuaternion::XQuaternion(float x, float y, float z, float w) { Set(x, y, z, w); }
XQuaternion::XQuaternion(float const* xyzw) { Set(xyzw); }
XQuaternion::XQuaternion(QelVector4 const& stored) { Set(stored); }
XQuaternion::XQuaternion(Qelp::Quat const& value) { Set(value); }
XQuaternion::XQuaternion(XVector3 const& eulerAngles) { SetRotationEulerAngles(eulerAngles); }

// ---- components ----

float XQuaternion::operator[](unsigned int index) const {
    float const components[] = {_value.x, _value.y, _value.z, _value.w};
    return index < 4 ? components[index] : 0;
}
XVector3 XQuaternion::AsVector3() const { return XVector3(_value.x, _value.y, _value.z); }
QelVector4 XQuaternion::AsMathEngineVector() const { return {_value.x, _value.y, _value.z, _value.w}; }
QelVector4 XQuaternion::AsMathEngineQuaternionVector() const { return {_value.w, _value.x, _value.y, _value.z}; }

XQuaternion& XQuaternion::Set(float x, float y, float z, float w) {
    _value = {x, y, z, w};
    return Normalize();
}
XQuaternion& XQuaternion::Set(float const* xyzw) { return Set(xyzw[0], xyzw[1], xyzw[2], xyzw[3]); }
XQuaternion& XQuaternion::Set(XQuaternion const& other) { return _value = other._value, *this; }
XQuaternion& XQuaternion::Set(QelVector4 const& stored) { return Set(stored[0], stored[1], stored[2], stored[3]); }
XQuaternion& XQuaternion::Set(Qelp::Quat const& value) { return Set(value.x, value.y, value.z, value.w); }
XQuaternion& XQuaternion::Set(XVector3 const& vectorPart) {
    return Set(vectorPart.X(), vectorPart.Y(), vectorPart.Z(), 0);
}
XQuaternion& XQuaternion::SetReverseQuaternion(QelVector4 const& scalarFirst) {
    return Set(scalarFirst[1], scalarFirst[2], scalarFirst[3], scalarFirst[0]);
}
XQuaternion& XQuaternion::SetIdentity() { return _value = {}, *this; }
XQuaternion const& XQuaternion::CopyTo(XQuaternion& out) const { return out._value = _value, *this; }

// ---- measures ----

float XQuaternion::Magnitude() const { return std::sqrt(MagnitudeSquared()); }
float XQuaternion::MagnitudeSquared() const { return DotProduct(*this); }
float XQuaternion::DotProduct(XQuaternion const& other) const {
    return AsMathEngineVector() * other.AsMathEngineVector();
}
float XQuaternion::RelativeAngle(XQuaternion const& other) const {
    return AsVector3().RelativeAngle(other.AsVector3());
}

// ---- as a rotation ----

XQuaternion& XQuaternion::SetRotationMatrix(XMatrix const& m) {
    XMatrix rotation(m);
    return SetReverseQuaternion(
        QelVector4().setQuaternionFromQelMatrix4(rotation.Orthonormalize().AsMathEngineMatrix()));
}
XQuaternion& XQuaternion::SetRotationAxisAngle(XVector3 const& axis, float angle) {
    return SetReverseQuaternion(QelVector4().setQuaternionFromAxisAndAngle(axis.AsMathEngineVector(), angle));
}
XQuaternion& XQuaternion::SetRotationEulerAngles(XVector3 const& angles) {
    return SetRotationMatrix(XMatrix().SetRotationEulerAngles(angles));
}
XQuaternion& XQuaternion::SetRotationEulerAngles(float x, float y, float z) {
    return SetRotationEulerAngles(XVector3(x, y, z));
}
XQuaternion& XQuaternion::SetRotationTwistSwing(XVector3 const& twistSwing) {
    return SetReverseQuaternion(QelVector4().setQuaternionFromTwistAndSwing(twistSwing.AsMathEngineVector()));
}
XQuaternion& XQuaternion::SetRotationTwistSwingAngles(XVector3 const& angles) {
    return SetReverseQuaternion(QelVector4().setQuaternionFromTwistAndSwingAngles(angles.AsMathEngineVector()));
}
XVector3 XQuaternion::RotationEulerAngles() const { return XMatrix(*this).RotationEulerAngles(); }

XVector3 XQuaternion::RotationAxis() const {
    QelVector3 axis;
    float angle = 0;
    AsMathEngineQuaternionVector().getAxisAndAngleFromQuaternion(axis, angle);
    return axis;
}
float XQuaternion::RotationAngle() const {
    QelVector3 axis;
    float angle = 0;
    AsMathEngineQuaternionVector().getAxisAndAngleFromQuaternion(axis, angle);
    return angle;
}
XVector3 XQuaternion::RotationTwistSwing() const {
    QelVector3 twistSwing;
    AsMathEngineQuaternionVector().getTwistAndSwingFromQuaternion(twistSwing);
    return twistSwing;
}
XVector3 XQuaternion::RotationTwistSwingAngles() const {
    QelVector3 angles;
    AsMathEngineQuaternionVector().getTwistAndSwingAnglesFromQuaternion(angles);
    return angles;
}

// ---- arithmetic ----

XQuaternion& XQuaternion::Normalize() {
    QelVector4 const unit = AsMathEngineVector().normalize2();
    _value = {unit[0], unit[1], unit[2], unit[3]};
    return *this;
}
XQuaternion& XQuaternion::Conjugate() { return Set(-X(), -Y(), -Z(), W()); }
XQuaternion& XQuaternion::Multiply(XQuaternion const& a, XQuaternion const& b) {
    return Set(QelVector4().quaternionMultiply(a.AsMathEngineVector(), b.AsMathEngineVector()));
}
XQuaternion& XQuaternion::CrossProduct(XQuaternion const& b) { return CrossProduct(*this, b); }
XQuaternion& XQuaternion::CrossProduct(XQuaternion const& a, XQuaternion const& b) {
    return Set(a.AsMathEngineVector() ^ b.AsMathEngineVector());
}
XQuaternion& XQuaternion::Interpolate(XQuaternion const& b, float t) { return Interpolate(*this, b, t); }
XQuaternion& XQuaternion::Interpolate(XQuaternion const& a, XQuaternion const& b, float t) {
    auto const blend = [t](float from, float to) { return from + (to - from) * t; };
    return Set(blend(a.X(), b.X()), blend(a.Y(), b.Y()), blend(a.Z(), b.Z()), blend(a.W(), b.W()));
}
XQuaternion& XQuaternion::SphericalInterpolate(XQuaternion const& a, XQuaternion const& b, float t) {
    return SetReverseQuaternion(
        QelVector4().slerp(a.AsMathEngineQuaternionVector(), b.AsMathEngineQuaternionVector(), t));
}
XQuaternion& XQuaternion::RotateX(float angle) { return Set(AsMathEngineVector().radRotateX(angle)); }
XQuaternion& XQuaternion::RotateY(float angle) { return Set(AsMathEngineVector().radRotateY(angle)); }
XQuaternion& XQuaternion::RotateZ(float angle) { return Set(AsMathEngineVector().radRotateZ(angle)); }
XQuaternion& XQuaternion::RotateAxisAngle(XQuaternion const& axis, float angle) {
    return Set(AsMathEngineVector().radArbitraryRotate(axis.AsMathEngineVector(), angle));
}
XQuaternion& XQuaternion::ConvertToWorldSpace(XMatrix const& m) {
    return Set(AsMathEngineVector() * m.AsMathEngineMatrix());
}
XQuaternion& XQuaternion::ConvertToLocalSpace(XMatrix const& m) {
    return Set(AsMathEngineVector().fromGlobaltoLocal(m.AsMathEngineMatrix()));
}
XQuaternion& XQuaternion::ConvertParentSpace(XMatrix const& a, XMatrix const& b) {
    return Set(AsMathEngineVector().fromAtoB(a.AsMathEngineMatrix(), b.AsMathEngineMatrix()));
}

// ---- comparison ----

bool XQuaternion::IsIdentity() const { return _value == Qelp::Quat{}; }
bool XQuaternion::IsNormal(float tolerance) const { return DotProduct(*this) - 1 <= tolerance; }
bool XQuaternion::IsEqual(XQuaternion const& other, float tolerance) const {
    return AsMathEngineVector().equals(other.AsMathEngineVector(), double(tolerance));
}

}  // namespace Tavo
