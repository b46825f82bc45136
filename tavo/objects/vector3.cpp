#include "tavo/objects/vector3.h"
#include "qel/utils/maths.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/quaternion.h"
#include <cmath>

namespace Tavo {
namespace {

constexpr float Pi = 3.1415927f;
constexpr double SmallestLength = 1e-13;  // below it a direction, or an angle to turn by, means nothing

double dot(Qelp::Vector3 const& a, Qelp::Vector3 const& b) {
    return double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z;
}

double length(XVector3 const& v) { return std::sqrt(dot(v.AsVector(), v.AsVector())); }

XVector3 normalised(XVector3 v) { return v.Normalize(); }

// By both the sine and the cosine, which is exact where the arc cosine alone loses half of the digits.
double angleBetween(Qelp::Vector3 const& a, Qelp::Vector3 const& b) {
    double const x = double(a.y) * b.z - double(a.z) * b.y, y = double(a.z) * b.x - double(a.x) * b.z,
                 z = double(a.x) * b.y - double(a.y) * b.x;
    return std::atan2(std::sqrt(x * x + y * y + z * z), dot(a, b));
}

bool isWithin(float a, float b, float tolerance) { return std::abs(a - b) <= tolerance; }

}  // namespace

XVector3::XVector3(QelVector3 const& value) : XVector3(value.x, value.y, value.z) {}
XVector3::XVector3(XQuaternion const& rotation) : XVector3(rotation.RotationEulerAngles()) {}
QelVector3 XVector3::AsMathEngineVector() const { return {_value.x, _value.y, _value.z}; }
XVector3& XVector3::Set(QelVector3 const& value) { return Set(value.x, value.y, value.z); }
XVector3& XVector3::Set(XQuaternion const& value) { return Set(value.X(), value.Y(), value.Z()); }

// ---- measures ----

float XVector3::Magnitude() const { return float(length(*this)); }
float XVector3::MagnitudeSquared() const { return float(dot(_value, _value)); }
float XVector3::DistanceTo(XVector3 const& other) const { return XVector3().Subtract(*this, other).Magnitude(); }
float XVector3::DistanceSquaredTo(XVector3 const& other) const {
    return XVector3().Subtract(*this, other).MagnitudeSquared();
}
float XVector3::DotProduct(XVector3 const& other) const { return float(dot(_value, other._value)); }
float XVector3::PolarAngleXZ() const { return AsMathEngineVector().getPolarAngleXZ(); }

float XVector3::RelativeAngle(XVector3 const& other) const {
    QelVector3 axis;
    float angle = 0;
    normalised(*this).AsMathEngineVector().normalizedCrossProduct(axis, angle, normalised(other).AsMathEngineVector());
    return angle;
}

// ---- arithmetic ----

XVector3& XVector3::CrossProduct(XVector3 const& b) { return CrossProduct(*this, b); }
XVector3& XVector3::CrossProduct(XVector3 const& a, XVector3 const& b) {
    Qelp::Vector3 const &p = a._value, &q = b._value;
    return Set(float(double(p.y) * q.z - double(p.z) * q.y), float(double(p.z) * q.x - double(p.x) * q.z),
               float(double(p.x) * q.y - double(p.y) * q.x));
}
XVector3& XVector3::Add(XVector3 const& b) { return Add(*this, b); }
XVector3& XVector3::Add(XVector3 const& a, XVector3 const& b) {
    return Set(a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z());
}
XVector3& XVector3::Subtract(XVector3 const& b) { return Subtract(*this, b); }
XVector3& XVector3::Subtract(XVector3 const& a, XVector3 const& b) {
    return Set(a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z());
}
XVector3& XVector3::Scale(float factor) { return Multiply(factor, *this); }
XVector3& XVector3::Multiply(float factor, XVector3 const& b) {
    return Set(factor * b.X(), factor * b.Y(), factor * b.Z());
}

XVector3& XVector3::Multiply(XMatrix const& m) {
    auto const& row = m.AsMatrix().m;
    return Rotate(m).Set(X() + row[3][0], Y() + row[3][1], Z() + row[3][2]);
}

XVector3& XVector3::Rotate(XMatrix const& m) {
    auto const& row = m.AsMatrix().m;
    auto const column = [&](int c) {
        return float(double(X()) * row[0][c] + double(Y()) * row[1][c] + double(Z()) * row[2][c]);
    };
    return Set(column(0), column(1), column(2));
}

XVector3& XVector3::Negate() { return Set(-X(), -Y(), -Z()); }

XVector3& XVector3::Normalize() {
    double const size = length(*this);
    if (size == 0) return Set(1, 0, 0);
    return Set(float(X() / size), float(Y() / size), float(Z() / size));
}

XVector3& XVector3::RotateX(float angle) { return Set(AsMathEngineVector().radRotateX(angle)); }
XVector3& XVector3::RotateY(float angle) { return Set(AsMathEngineVector().radRotateY(angle)); }
XVector3& XVector3::RotateZ(float angle) { return Set(AsMathEngineVector().radRotateZ(angle)); }
XVector3& XVector3::RotateAxisAngle(XVector3 const& axis, float angle) {
    return Set(AsMathEngineVector().radArbitraryRotate(axis.AsMathEngineVector(), angle));
}

XVector3& XVector3::Interpolate(XVector3 const& b, float t) { return Interpolate(*this, b, t); }
XVector3& XVector3::Interpolate(XVector3 const& a, XVector3 const& b, float t) {
    return Set(a.X() + (b.X() - a.X()) * t, a.Y() + (b.Y() - a.Y()) * t, a.Z() + (b.Z() - a.Z()) * t);
}

XVector3& XVector3::SphericalInterpolate(XVector3 const& a, XVector3 const& b, float t) {
    double const lengthA = length(a), lengthB = length(b);
    if (lengthA <= SmallestLength || lengthB <= SmallestLength) return Interpolate(a, b, t);
    XVector3 const unitA = normalised(a), unitB = normalised(b);
    // Rounded before it is compared, so that half a turn is recognised as such.
    float const swept = float(angleBetween(a._value, b._value)) * t;
    if (!(swept > SmallestLength && swept < Pi)) return Interpolate(a, b, t);
    XVector3 const axis = XVector3().CrossProduct(unitA, unitB).Normalize();
    float const size = float(lengthA + (lengthB - lengthA) * t);
    return Set(unitA).RotateAxisAngle(axis, swept).Scale(size);
}

XVector3& XVector3::RotationAxis(XVector3 const& a, XVector3 const& b, float tolerance) {
    if (length(a) < tolerance || length(b) < tolerance) return SetZero();
    XVector3 axis = XVector3().CrossProduct(a, b);
    if (length(axis) >= tolerance) return Multiply(float(angleBetween(a._value, b._value)), axis.Normalize());
    if (dot(a._value, b._value) > 0) return SetZero();
    // Opposite: an axis square to a, left as long as it comes out and not scaled to half a turn.
    if (length(a) - a.X() >= tolerance) return Set(0, a.Z(), -a.Y());
    return Set(0, 1, 0);
}

XVector3& XVector3::ConvertToWorldSpace(XMatrix const& m) { return Set(XQuaternion(*this).ConvertToWorldSpace(m)); }
XVector3& XVector3::ConvertToLocalSpace(XMatrix const& m) { return Set(XQuaternion(*this).ConvertToLocalSpace(m)); }
XVector3& XVector3::ConvertParentSpace(XMatrix const& a, XMatrix const& b) {
    return Set(XQuaternion(*this).ConvertParentSpace(a, b));
}

// ---- comparison ----

bool XVector3::IsZero(float tolerance) const { return dot(_value, _value) <= tolerance; }
bool XVector3::IsNormal(float tolerance) const { return AsMathEngineVector().isNormal(tolerance); }
bool XVector3::IsEqual(XVector3 const& other, float tolerance) const {
    return isWithin(X(), other.X(), tolerance) && isWithin(Y(), other.Y(), tolerance) &&
           isWithin(Z(), other.Z(), tolerance);
}

}  // namespace Tavo
