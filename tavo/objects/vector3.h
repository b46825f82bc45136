// XVector3: a vector or point of three single-precision components. A value that counts as an object, so that scripts
// can create it by type name; it has no node and allocates nothing. Mutators return the value itself, so that calls
// chain. Angles are radians; matrices act on row vectors. Nothing here fails.
#pragma once
#include "qel/utils/values.h"
#include "tavo/objects/object_pattern.h"

class QelVector3;

namespace Tavo {

class XMatrix;
class XQuaternion;

class XVector3 : public XTyped<XVector3, XObject> {
public:
    static constexpr XWord TypeID = L"Vector3";
    static constexpr float DefaultTolerance = 1e-6f, DefaultRotationAxisTolerance = 1e-5f;

    XVector3() = default;
    constexpr XVector3(XUndefined tag) : XTyped(tag) {}
    XVector3(float x, float y, float z) : _value{x, y, z, 0} {}
    explicit XVector3(float const* xyz) : XVector3(xyz[0], xyz[1], xyz[2]) {}
    XVector3(Qelp::Vector3 const& value) : XVector3(value.x, value.y, value.z) {}
    XVector3(QelVector3 const& value);
    explicit XVector3(XQuaternion const& rotation);  // its "XYZ" Euler angles; Set copies x, y, z instead

    // ---- components; an index above 2 reads 0 ----
    float X() const { return _value.x; }
    float Y() const { return _value.y; }
    float Z() const { return _value.z; }
    float operator[](unsigned int index) const {
        return index == 0 ? _value.x : index == 1 ? _value.y : index == 2 ? _value.z : 0;
    }
    Qelp::Vector3 const& AsVector() const { return _value; }
    QelVector3 AsMathEngineVector() const;
    XVector3& SetX(float x) { return _value.x = x, *this; }
    XVector3& SetY(float y) { return _value.y = y, *this; }
    XVector3& SetZ(float z) { return _value.z = z, *this; }
    XVector3& Set(float x, float y, float z) { return _value = {x, y, z, 0}, *this; }
    XVector3& Set(float const* xyz) { return Set(xyz[0], xyz[1], xyz[2]); }
    XVector3& Set(XVector3 const& other) { return _value = other._value, *this; }
    XVector3& Set(Qelp::Vector3 const& value) { return Set(value.x, value.y, value.z); }
    XVector3& Set(QelVector3 const& value);
    XVector3& Set(XQuaternion const& value);  // x, y and z; the constructor reads Euler angles instead
    XVector3& SetZero() { return Set(0, 0, 0); }
    XVector3 const& CopyTo(XVector3& out) const { return out._value = _value, *this; }

    // ---- measures ----
    float Magnitude() const;
    float MagnitudeSquared() const;
    float DistanceTo(XVector3 const& other) const;
    float DistanceSquaredTo(XVector3 const& other) const;
    float DotProduct(XVector3 const& other) const;
    float PolarAngleXZ() const;  // of the projection on the XZ plane, from +X towards +Z; 0 without one
    float RelativeAngle(XVector3 const& other) const;  // in [0, pi]

    // ---- arithmetic ----
    XVector3& CrossProduct(XVector3 const& b);  // this cross b
    XVector3& CrossProduct(XVector3 const& a, XVector3 const& b);
    XVector3& Add(XVector3 const& b);
    XVector3& Add(XVector3 const& a, XVector3 const& b);
    XVector3& Subtract(XVector3 const& b);
    XVector3& Subtract(XVector3 const& a, XVector3 const& b);  // a - b
    XVector3& Scale(float factor);
    XVector3& Multiply(float factor, XVector3 const& b);  // becomes factor * b
    XVector3& Multiply(XMatrix const& m);                 // as a point: rotation rows and translation
    XVector3& Rotate(XMatrix const& m);                   // rotation rows only
    XVector3& Negate();
    XVector3& Normalize();  // exactly zero becomes (1, 0, 0)
    XVector3& RotateX(float angle);
    XVector3& RotateY(float angle);
    XVector3& RotateZ(float angle);
    XVector3& RotateAxisAngle(XVector3 const& axis, float angle);
    XVector3& Interpolate(XVector3 const& b, float t);  // this + (b - this) t
    XVector3& Interpolate(XVector3 const& a, XVector3 const& b, float t);
    XVector3& SphericalInterpolate(XVector3 const& a, XVector3 const& b, float t);  // direction and length apart
    // The rotation that takes a to b, as axis times angle. Opposite vectors give an axis that is not scaled to pi.
    XVector3& RotationAxis(XVector3 const& a, XVector3 const& b, float tolerance = DefaultRotationAxisTolerance);

    // Not for points, for which there are Multiply and Rotate: the vector goes through its "XYZ" Euler angles, the
    // quaternion of those is converted, and its x, y and z are the result. Scripts rely on it as it stands.
    XVector3& ConvertToWorldSpace(XMatrix const& m);
    XVector3& ConvertToLocalSpace(XMatrix const& m);
    XVector3& ConvertParentSpace(XMatrix const& a, XMatrix const& b);

    // ---- comparison: each component within the tolerance ----
    bool IsZero(float tolerance = DefaultTolerance) const;  // the tolerance is of the squared length
    bool IsNormal(float tolerance = DefaultTolerance) const;
    bool IsEqual(XVector3 const& other, float tolerance = DefaultTolerance) const;
    bool operator==(XVector3 const& other) const { return IsEqual(other); }
    bool operator!=(XVector3 const& other) const { return !IsEqual(other); }

private:
    Qelp::Vector3 _value;
};
using XVector3Def = XTypedDef<XVector3>;

}  // namespace Tavo
