// Rotations in double precision and every conversion between their forms: the one place that knows the conventions.
//
// A rotation acts on row vectors, v' = v R, and turns right-handedly: a quarter turn about X takes Y to Z. In a product
// the left factor acts first. Angles are radians. Nothing here fails or yields NaN: what has no direction
// (a zero or non-finite axis, quaternion or matrix row) and a non-finite angle are read as "no rotation", or completed
// to one. Triples hold values of single-precision magnitude.
#pragma once

namespace Qelutils::rotation {

struct Triple {
    double x = 0, y = 0, z = 0;
};

// Unit length is not required of arguments, results have it. q and -q are the same rotation; results have w >= 0.
struct Quaternion {
    double x = 0, y = 0, z = 0, w = 1;
};

// Rows are the images of the X, Y and Z axes.
struct Rotation {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
};

struct AxisAngle {
    Triple axis{1, 0, 0};
    double angle = 0;
};

// Of the rotation rows of a stored matrix, the nearest rotation that keeps row 0's direction and the plane of rows 0
// and 1 (Gram and Schmidt); always right-handed, whatever row 2 says. Missing directions are completed.
Rotation orthonormal(float const (&m)[4][4]);
// As `orthonormal`, but what rows 0 and 1 leave open is read from row 2: a scale of zero along one axis loses nothing.
// With one direction left, it is the smallest turn that takes that axis there.
Rotation completed(float const (&m)[4][4]);
// Overwrites columns 0 to 2 of rows 0 to 2.
void store(Rotation const& r, float (&m)[4][4]);
Rotation multiply(Rotation const& first, Rotation const& second);

// The same rotation of unit length, w >= 0; the identity for what has no direction.
Quaternion normalized(Quaternion const& q);
// The product as it is, not normalised. Hamilton's turns by its right factor first; here, as with matrices, the
// arguments stand in the order they act.
inline Quaternion multiply(Quaternion const& first, Quaternion const& second) {
    auto const& [ax, ay, az, aw] = second;
    auto const& [bx, by, bz, bw] = first;
    return {aw * bx + ax * bw + ay * bz - az * by, aw * by + ay * bw + az * bx - ax * bz,
            aw * bz + az * bw + ax * by - ay * bx, aw * bw - ax * bx - ay * by - az * bz};
}
// The inverse, of a unit quaternion.
inline Quaternion conjugate(Quaternion const& q) { return {-q.x, -q.y, -q.z, q.w}; }

Rotation fromQuaternion(Quaternion const& q);
// Shepperd, "Quaternion from rotation matrix", Journal of Guidance and Control 1 (1978).
Quaternion toQuaternion(Rotation const& r);

// An axis of any length; a zero axis is no rotation.
Quaternion fromAxisAngle(Triple const& axis, double angle);
// A unit axis and an angle in [0, pi]; the identity gives (1, 0, 0) and 0.
AxisAngle toAxisAngle(Quaternion const& q);

// Euler angles about the fixed (parent) axes. The letters of the order give the sequence: "XYZ" turns about X first,
// then Y, then Z, R = Rx Ry Rz; the components go by axis name, x is the angle about X whatever the order. `order` is 0
// XYZ, 1 XZY, 2 YXZ, 3 YZX, 4 ZXY, 5 ZYX; any other is XYZ.
Rotation fromEuler(Triple const& angles, int order);
// The middle angle of the sequence is in [-pi/2, pi/2], the others in [-pi, pi]. At gimbal lock the last one is 0.
// Shoemake, "Euler angle conversion", Graphics Gems IV (1994); the last angle is read after undoing the first, as in
// Day, "Extracting Euler angles from a rotation matrix" (2012), so that the three agree also close to gimbal lock.
Triple toEuler(Rotation const& r, int order);

// Twist and swing: first a turn about X, the twist, then a turn about an axis in the YZ plane, the swing, which takes
// the X axis by the shortest way to where it points. Every rotation is such a pair, and but for a swing of pi, where
// any twist will do and 0 is taken, one pair only. Baerlocher and Boulic, "Parametrization and range of motion of the
// ball-and-socket joint", Deformable Avatars (2001). Results have the twist in [-pi, pi] and the swing in [0, pi].
//
// Vector form: x is the twist; (0, y, z) is the swing's axis times its angle, the exponential map (Grassia, "Practical
// parameterization of rotations using the exponential map", Journal of Graphics Tools 3 (1998)).
Quaternion fromTwistSwing(Triple const& v);
Triple toTwistSwing(Quaternion const& q);

// Angle form: x is the twist; y and z are one swing angle each, about Y and Z: the components of the swing's axis times
// the tangent of a quarter of its angle are tan(y/4) and tan(z/4), the modified Rodrigues parameters (Marandi and Modi,
// "A preferred coordinate system and the associated orientation representation in attitude dynamics", Acta Astronautica
// 15 (1987)). A swing about Y or Z alone is that angle itself; y and z lie in [-pi, pi], and no pose is singular.
Quaternion fromTwistSwingAngles(Triple const& v);
Triple toTwistSwingAngles(Quaternion const& q);

// The twist about X alone.
Quaternion twistOf(Quaternion const& q);

}  // namespace Qelutils::rotation
