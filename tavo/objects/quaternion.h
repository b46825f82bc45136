// XQuaternion: a rotation as a unit quaternion, stored x, y, z, w. Every constructor, Set and mutator ends in a
// normalisation, so that no value is left without unit length. A value that counts as an object, without a node.
// Angles are radians. Nothing here fails.
#pragma once
#include "qel/utils/values.h"
#include "tavo/objects/object_pattern.h"

class QelVector4;

namespace Tavo {

class XMatrix;
class XVector3;

class XQuaternion : public XTyped<XQuaternion, XObject> {
public:
    static constexpr XWord TypeID = L"Quaternion";
    static constexpr float DefaultTolerance = 1e-6f;

    XQuaternion() = default;  // the identity
    constexpr XQuaternion(XUndefined tag) : XTyped(tag) {}
    XQuaternion(float x, float y, float z, float w);
    explicit XQuaternion(float const* xyzw);
    XQuaternion(QelVector4 const& stored);  // in stored order
    XQuaternion(Qelp::Quat const& value);
    explicit XQuaternion(XVector3 const& eulerAngles);  // "XYZ"; Set copies x, y, z instead

    // ---- components; an index above 3 reads 0 ----
    float X() const { return _value.x; }
    float Y() const { return _value.y; }
    float Z() const { return _value.z; }
    float W() const { return _value.w; }
    float operator[](unsigned int index) const;
    Qelp::Quat const& AsQuaternion() const { return _value; }
    XVector3 AsVector3() const;                       // x, y, z
    QelVector4 AsMathEngineVector() const;            // x, y, z, w
    QelVector4 AsMathEngineQuaternionVector() const;  // w, x, y, z: what the maths library calls a quaternion
    XQuaternion& Set(float x, float y, float z, float w);
    XQuaternion& Set(float const* xyzw);
    XQuaternion& Set(XQuaternion const& other);
    XQuaternion& Set(QelVector4 const& stored);
    XQuaternion& Set(Qelp::Quat const& value);
    XQuaternion& Set(XVector3 const& vectorPart);  // with w = 0; the constructor reads Euler angles instead
    XQuaternion& SetReverseQuaternion(QelVector4 const& scalarFirst);
    XQuaternion& SetIdentity();
    XQuaternion const& CopyTo(XQuaternion& out) const;

    // ---- measures ----
    float Magnitude() const;
    float MagnitudeSquared() const;
    float DotProduct(XQuaternion const& other) const;     // of the four components
    float RelativeAngle(XQuaternion const& other) const;  // between the vector parts, not between the rotations

    // ---- as a rotation ----
    XQuaternion& SetRotationMatrix(XMatrix const& m);
    XQuaternion& SetRotationAxisAngle(XVector3 const& axis, float angle);  // the axis of unit length
    XQuaternion& SetRotationEulerAngles(XVector3 const& angles);           // "XYZ"
    XQuaternion& SetRotationEulerAngles(float x, float y, float z);
    XQuaternion& SetRotationTwistSwing(XVector3 const& twistSwing);
    XQuaternion& SetRotationTwistSwingAngles(XVector3 const& angles);
    XVector3 RotationEulerAngles() const;  // "XYZ"
    XVector3 RotationAxis() const;
    float RotationAngle() const;
    XVector3 RotationTwistSwing() const;
    XVector3 RotationTwistSwingAngles() const;

    // ---- arithmetic ----
    XQuaternion& Normalize();
    XQuaternion& Conjugate();
    // The product on the stored order, without moving w to the front as all others do: what the editing of rotation
    // keys is built on, kept as it stands.
    XQuaternion& Multiply(XQuaternion const& a, XQuaternion const& b);
    XQuaternion& Multiply(XMatrix const& m) { return ConvertToWorldSpace(m); }
    XQuaternion& CrossProduct(XQuaternion const& b);
    XQuaternion& CrossProduct(XQuaternion const& a, XQuaternion const& b);
    XQuaternion& Interpolate(XQuaternion const& b, float t);  // linear, without choosing the shorter arc
    XQuaternion& Interpolate(XQuaternion const& a, XQuaternion const& b, float t);
    XQuaternion& SphericalInterpolate(XQuaternion const& a, XQuaternion const& b, float t);
    // The four numbers turned as a 4-vector.
    XQuaternion& RotateX(float angle);
    XQuaternion& RotateY(float angle);
    XQuaternion& RotateZ(float angle);
    XQuaternion& RotateAxisAngle(XQuaternion const& axis, float angle);
    // The four numbers as a row 4-vector, transformed between spaces.
    XQuaternion& ConvertToWorldSpace(XMatrix const& m);
    XQuaternion& ConvertToLocalSpace(XMatrix const& m);
    XQuaternion& ConvertParentSpace(XMatrix const& a, XMatrix const& b);

    // ---- comparison ----
    bool IsIdentity() const;  // exactly
    bool IsIdentity(float /*ignored*/) const { return IsIdentity(); }
    bool IsNormal(float tolerance = DefaultTolerance) const;  // signed: shorter than unit length always passes
    bool IsEqual(XQuaternion const& other, float tolerance = DefaultTolerance) const;  // component by component
    bool operator==(XQuaternion const& other) const { return IsEqual(other); }
    bool operator!=(XQuaternion const& other) const { return !IsEqual(other); }

private:
    Qelp::Quat _value;
};
using XQuaternionDef = XTypedDef<XQuaternion>;

}  // namespace Tavo
