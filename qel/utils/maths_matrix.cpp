#include "qel/utils/maths_matrix.h"
#include "qel/utils/maths_values.h"
#include "qel/utils/rotation.h"
#include <algorithm>
#include <iterator>

using namespace Qelutils;

namespace {

// The core's order of the library's.
int coreOrder(int order) {
    constexpr int orders[] = {0, 2, 6, 4, 8, 10};
    auto const found = std::find(std::begin(orders), std::end(orders), order);
    return found == std::end(orders) ? 0 : static_cast<int>(found - std::begin(orders));
}

QelMatrix4& orient(QelMatrix4& m, rotation::Rotation const& r) {
    rotation::store(r, m.m);
    return m;
}

QelMatrix4& orient(QelMatrix4& m, rotation::Quaternion const& q) { return orient(m, rotation::fromQuaternion(q)); }

// Each row is an axis, turned as a vector; scale and shear turn along.
QelMatrix4& turn(QelMatrix4& m, rotation::Rotation const& r) {
    for (int i = 0; i < 3; ++i) {
        QelVector3 const row = rotation::write(rotation::turned(rotation::read(m.row(i)), r));
        for (int j = 0; j < 3; ++j) m[i][j] = row[j];
    }
    return m;
}

}  // namespace

QelMatrix4 QelMatrix4::operator*(QelMatrix4 const& other) const {
    QelMatrix4 out;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            out.m[i][j] =
                m[i][0] * other.m[0][j] + m[i][1] * other.m[1][j] + m[i][2] * other.m[2][j] + m[i][3] * other.m[3][j];
    return out;
}

QelMatrix4& QelMatrix4::translate(QelVector3 const& v) {
    for (int j = 0; j < 3; ++j) m[3][j] += v[j];
    return *this;
}

QelMatrix4& QelMatrix4::scale(float factor) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) m[i][j] *= factor;
    return *this;
}

void QelMatrix4::getScale(QelVector3& out) const { out = {row(0).length(), row(1).length(), row(2).length()}; }

QelMatrix4& QelMatrix4::setOrientationFromAxisAndAngle(QelVector3 const& axis, float angle) {
    return orient(*this, rotation::about(axis, angle));
}

QelMatrix4& QelMatrix4::setOrientationFromQuaternion(QelVector4 const& quaternion) {
    return orient(*this, rotation::readQuaternion(quaternion));
}

QelMatrix4& QelMatrix4::setOrientationFromGeneralEulers(int order, QelVector3 const& angles) {
    return orient(*this, rotation::fromEuler(rotation::read(angles), coreOrder(order)));
}

QelMatrix4& QelMatrix4::setOrientationFromTwistAndSwing(QelVector3 const& twistSwing) {
    return orient(*this, rotation::fromTwistSwing(rotation::read(twistSwing)));
}

QelMatrix4& QelMatrix4::setOrientationFromTwistAndSwingAngles(QelVector3 const& angles) {
    return orient(*this, rotation::fromTwistSwingAngles(rotation::read(angles)));
}

void QelMatrix4::getAxisAndAngleFromOrientation(QelVector3& axis, float& angle) const {
    rotation::AxisAngle const out = rotation::toAxisAngle(rotation::readQuaternion(*this));
    axis = rotation::write(out.axis);
    angle = static_cast<float>(out.angle);
}

void QelMatrix4::getGeneralEulersFromOrientation(int order, QelVector3& angles) const {
    angles = rotation::write(rotation::toEuler(rotation::orthonormal(m), coreOrder(order)));
}

void QelMatrix4::getTwistAndSwingFromOrientation(QelVector3& twistSwing) const {
    twistSwing = rotation::write(rotation::toTwistSwing(rotation::readQuaternion(*this)));
}

void QelMatrix4::getTwistAndSwingAnglesFromOrientation(QelVector3& angles) const {
    angles = rotation::write(rotation::toTwistSwingAngles(rotation::readQuaternion(*this)));
}

QelMatrix4& QelMatrix4::radRotateOrientation(int order, QelVector3 const& angles) {
    return turn(*this, rotation::fromEuler(rotation::read(angles), coreOrder(order)));
}

QelMatrix4& QelMatrix4::radRotateOrientationAboutArbitraryAxis(QelVector3 const& axis, float angle) {
    return turn(*this, rotation::about(axis, angle));
}

QelMatrix4& QelMatrix4::radRotateOrientationAboutGlobalX(float angle) {
    return turn(*this, rotation::fromEuler({angle, 0, 0}, 0));
}

QelMatrix4& QelMatrix4::radRotateOrientationAboutGlobalY(float angle) {
    return turn(*this, rotation::fromEuler({0, angle, 0}, 0));
}

QelMatrix4& QelMatrix4::radRotateOrientationAboutGlobalZ(float angle) {
    return turn(*this, rotation::fromEuler({0, 0, angle}, 0));
}

QelMatrix4& QelMatrix4::fromLocaltoGlobal(QelMatrix4 const& m) { return *this = *this * m; }

QelMatrix4& QelMatrix4::fromGlobaltoLocal(QelMatrix4 const& m) {
    QelMatrix4 inverse;
    return m.affineInverse(inverse) ? *this = *this * inverse : *this;
}

QelMatrix4& QelMatrix4::fromAtoB(QelMatrix4 const& a, QelMatrix4 const& b) {
    QelMatrix4 inverse;
    return b.affineInverse(inverse) ? *this = *this * a * inverse : *this;
}

QelMatrix4& QelMatrix4::removeSwing() { return orient(*this, rotation::twistOf(rotation::readQuaternion(*this))); }

bool QelMatrix4::affineInverse(QelMatrix4& out) const {
    Qelp::Matrix34 affine;
    for (int i = 0; i < 4; ++i) std::copy_n(m[i], 3, affine.m[i]);
    if (!Qelutils::invert(affine, affine)) return false;
    out = {};
    for (int i = 0; i < 4; ++i) std::copy_n(affine.m[i], 3, out.m[i]);
    return true;
}
