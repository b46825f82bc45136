// QelMatrix4: the mathematics behind the matrices of the public interface.
//
// A 4 by 4 matrix of single precision that acts on row vectors: rows 0 to 2 are the axes, row 3 the translation, and
// column 3 is 0, 0, 0, 1 in an affine transform. Products take all sixteen numbers; inverses and conversions take the
// matrix as affine. Rotations, angles and the twist-and-swing forms are as rotation_core.h defines them. Nothing fails,
// nothing yields NaN for finite numbers; mutators return the matrix itself.
//
// Euler orders are given as this library's own values: 0 XYZ, 2 XZY, 4 YZX, 6 YXZ, 8 ZXY, 10 ZYX; any other is XYZ.
#pragma once
#include "qel/utils/maths_vector.h"

class QelMatrix4 {
public:
    float m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    bool operator==(QelMatrix4 const&) const = default;

    float* operator[](int row) { return m[row]; }
    float const* operator[](int row) const { return m[row]; }
    // The first three numbers of the row.
    QelVector3 row(int index) const { return {m[index][0], m[index][1], m[index][2]}; }

    QelMatrix4& setIdentity() { return *this = {}; }
    // A point is transformed by this first and by `other` second.
    QelMatrix4 operator*(QelMatrix4 const& other) const;
    QelMatrix4& operator*=(QelMatrix4 const& other) { return *this = *this * other; }
    // Adds to the translation row.
    QelMatrix4& translate(QelVector3 const& v);
    // Multiplies the rotation rows; the translation stays.
    QelMatrix4& scale(float factor);
    // The lengths of the rotation rows.
    void getScale(QelVector3& out) const;

    // Replace the rotation rows, scale included, and keep the translation. Axes and quaternions (w, x, y, z) of any
    // length; zero ones give the identity.
    QelMatrix4& setOrientationFromAxisAndAngle(QelVector3 const& axis, float angle);
    QelMatrix4& setOrientationFromQuaternion(QelVector4 const& quaternion);
    QelMatrix4& setOrientationFromGeneralEulers(int order, QelVector3 const& angles);
    QelMatrix4& setOrientationFromTwistAndSwing(QelVector3 const& twistSwing);
    QelMatrix4& setOrientationFromTwistAndSwingAngles(QelVector3 const& angles);

    // The inverse conversions. They read the rotation without scale, shear and mirroring.
    void getAxisAndAngleFromOrientation(QelVector3& axis, float& angle) const;
    void getGeneralEulersFromOrientation(int order, QelVector3& angles) const;
    void getTwistAndSwingFromOrientation(QelVector3& twistSwing) const;
    void getTwistAndSwingAnglesFromOrientation(QelVector3& angles) const;

    // Turn the rotation rows about the fixed axes; the translation stays.
    QelMatrix4& radRotateOrientation(int order, QelVector3 const& angles);
    QelMatrix4& radRotateOrientationAboutArbitraryAxis(QelVector3 const& axis, float angle);
    QelMatrix4& radRotateOrientationAboutGlobalX(float angle);
    QelMatrix4& radRotateOrientationAboutGlobalY(float angle);
    QelMatrix4& radRotateOrientationAboutGlobalZ(float angle);

    // This transform from m's space, to it, and from a's to b's. A singular matrix to invert leaves it as it is.
    QelMatrix4& fromLocaltoGlobal(QelMatrix4 const& m);
    QelMatrix4& fromGlobaltoLocal(QelMatrix4 const& m);
    QelMatrix4& fromAtoB(QelMatrix4 const& a, QelMatrix4 const& b);

    // Keeps of the rotation only the twist about X: the identity if the swing is pi.
    QelMatrix4& removeSwing();

    // The affine inverse; false, and `out` left alone, if there is none.
    bool affineInverse(QelMatrix4& out) const;
};
