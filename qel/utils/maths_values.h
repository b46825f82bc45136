// Between the single-precision values of the mathematics library and the double-precision core. For its .cpp files
// only.
#pragma once
#include "qel/utils/maths.h"
#include "qel/utils/rotation_core.h"

namespace Qelutils::rotation {

inline Triple read(QelVector3 const& v) { return {v.x, v.y, v.z}; }
inline QelVector3 write(Triple const& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

// Scalar first in the library's four numbers.
inline Quaternion readQuaternion(QelVector4 const& q) { return {q[1], q[2], q[3], q[0]}; }
inline QelVector4 write(Quaternion const& q) {
    return {static_cast<float>(q.w), static_cast<float>(q.x), static_cast<float>(q.y), static_cast<float>(q.z)};
}

inline Quaternion readQuaternion(QelMatrix4 const& m) { return toQuaternion(orthonormal(m.m)); }

inline Triple turned(Triple const& v, Rotation const& r) {
    return {v.x * r.m[0][0] + v.y * r.m[1][0] + v.z * r.m[2][0], v.x * r.m[0][1] + v.y * r.m[1][1] + v.z * r.m[2][1],
            v.x * r.m[0][2] + v.y * r.m[1][2] + v.z * r.m[2][2]};
}

inline Rotation about(QelVector3 const& axis, float angle) { return fromQuaternion(fromAxisAngle(read(axis), angle)); }

}  // namespace Qelutils::rotation
