// QelVector3 and QelVector4: the mathematics behind the vectors and quaternions of the public interface.
//
// Single-precision values without invariants; double inside the operations that turn or convert. Rotations, angles and
// the twist-and-swing forms are as rotation_core.h defines them: row vectors, right-handed, radians. Axes need not have
// unit length; a zero axis is no rotation. Nothing fails, nothing yields NaN for finite numbers; mutators return the
// value itself.
#pragma once

class QelMatrix4;

class QelVector3 {
public:
    float x = 0, y = 0, z = 0;

    QelVector3() = default;
    QelVector3(float x, float y, float z) : x(x), y(y), z(z) {}

    bool operator==(QelVector3 const&) const = default;
    // An index above 2 gives 0.
    float operator[](int index) const { return index == 0 ? x : index == 1 ? y : index == 2 ? z : 0; }

    float length() const;
    // A zero vector becomes (1, 0, 0).
    QelVector3& normalize();
    // Whether the length differs from 1 by no more than the tolerance.
    bool isNormal(float tolerance) const;

    // This and `other` have unit length. `axis` and `angle`, in [0, pi], turn this to `other` by the shortest way.
    // False if the two are parallel or opposed: any axis square to them would do, and one is given.
    bool normalizedCrossProduct(QelVector3& axis, float& angle, QelVector3 const& other) const;

    // The angle of the projection on the XZ plane, from +X towards +Z, in [-pi, pi]; 0 if there is no projection.
    float getPolarAngleXZ() const;

    QelVector3& radRotateX(float angle);
    QelVector3& radRotateY(float angle);
    QelVector3& radRotateZ(float angle);
    QelVector3& radArbitraryRotate(QelVector3 const& axis, float angle);
};

// Four numbers, which the operations read in one of two ways: as a 4-vector, whose first three numbers are the vector
// part, or, where the name says quaternion (and in slerp), as a quaternion with the scalar first: w, x, y, z.
class QelVector4 {
public:
    QelVector4() = default;
    QelVector4(float a, float b, float c, float d) : m_v{a, b, c, d} {}

    bool operator==(QelVector4 const&) const = default;
    // `index` is 0 to 3.
    float operator[](int index) const { return m_v[index]; }
    float& operator[](int index) { return m_v[index]; }

    // Unit length of the four numbers. A zero vector becomes (0, 0, 0, 1): the identity to those who store x, y, z, w.
    QelVector4& normalize2();
    // The dot product of the four numbers.
    float operator*(QelVector4 const& other) const;
    // The row vector times the whole 4 by 4 matrix.
    QelVector4 operator*(QelMatrix4 const& m) const;
    // The cross product of the vector parts; the fourth number is 0.
    QelVector4 operator^(QelVector4 const& other) const;
    QelVector4& operator^=(QelVector4 const& other) { return *this = *this ^ other; }
    bool equals(QelVector4 const& other, double tolerance) const;

    // This becomes the Hamilton product a b of the numbers as they are stored, the first of each its scalar; it is not
    // normalised.
    QelVector4& quaternionMultiply(QelVector4 const& a, QelVector4 const& b);
    // This becomes the point at `t` of the shortest arc from the unit quaternion a to b or to -b, which is the same
    // rotation; nearly equal ones are interpolated in a straight line. Shoemake, "Animating rotation with quaternion
    // curves", SIGGRAPH (1985). A `t` outside 0 to 1 goes on along the arc.
    QelVector4& slerp(QelVector4 const& a, QelVector4 const& b, float t);

    // The setters give unit quaternions with w >= 0; the getters take quaternions of any length.
    QelVector4& setQuaternionFromAxisAndAngle(QelVector3 const& axis, float angle);
    QelVector4& setQuaternionFromQelMatrix4(QelMatrix4 const& m);
    QelVector4& setQuaternionFromTwistAndSwing(QelVector3 const& twistSwing);
    QelVector4& setQuaternionFromTwistAndSwingAngles(QelVector3 const& angles);
    void getAxisAndAngleFromQuaternion(QelVector3& axis, float& angle) const;
    void getTwistAndSwingFromQuaternion(QelVector3& twistSwing) const;
    void getTwistAndSwingAnglesFromQuaternion(QelVector3& angles) const;

    // The vector part is turned, the fourth number stays; the axis is the vector part of `axis`.
    QelVector4& radRotateX(float angle);
    QelVector4& radRotateY(float angle);
    QelVector4& radRotateZ(float angle);
    QelVector4& radArbitraryRotate(QelVector4 const& axis, float angle);

    // The four numbers as a row vector, from m's space, to it, and from a's to b's. A singular matrix to invert leaves
    // them as they are.
    QelVector4& fromLocaltoGlobal(QelMatrix4 const& m);
    QelVector4& fromGlobaltoLocal(QelMatrix4 const& m);
    QelVector4& fromAtoB(QelMatrix4 const& a, QelMatrix4 const& b);

private:
    QelVector4& rotateVectorPart(QelVector3 const& axis, float angle);

    float m_v[4] = {0, 0, 0, 0};
};
