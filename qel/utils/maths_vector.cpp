#include "qel/utils/maths_vector.h"
#include "qel/utils/maths_values.h"
#include <cmath>

using namespace Qelutils;

namespace {

double dot(QelVector3 const& a, QelVector3 const& b) {
    return double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z;
}

double dot(QelVector4 const& a, QelVector4 const& b) {
    return double(a[0]) * b[0] + double(a[1]) * b[1] + double(a[2]) * b[2] + double(a[3]) * b[3];
}

rotation::Triple cross(QelVector3 const& a, QelVector3 const& b) {
    return {double(a.y) * b.z - double(a.z) * b.y, double(a.z) * b.x - double(a.x) * b.z,
            double(a.x) * b.y - double(a.y) * b.x};
}

QelVector3 vectorPart(QelVector4 const& v) { return {v[0], v[1], v[2]}; }

QelVector4 blend(double s, QelVector4 const& a, double t, QelVector4 const& b) {
    QelVector4 out;
    for (int i = 0; i < 4; ++i) out[i] = static_cast<float>(s * a[i] + t * b[i]);
    return out;
}

}  // namespace

float QelVector3::length() const { return static_cast<float>(std::sqrt(dot(*this, *this))); }

QelVector3& QelVector3::normalize() {
    double const square = dot(*this, *this);
    if (square == 0) return *this = {1, 0, 0};
    double const f = 1 / std::sqrt(square);
    return *this = rotation::write(rotation::Triple{x * f, y * f, z * f});
}

bool QelVector3::isNormal(float tolerance) const { return std::abs(std::sqrt(dot(*this, *this)) - 1) <= tolerance; }

// The angle from sine and cosine together: the arc cosine alone loses half the digits of small angles.
bool QelVector3::normalizedCrossProduct(QelVector3& axis, float& angle, QelVector3 const& other) const {
    rotation::Triple const c = cross(*this, other);
    double const sine = std::sqrt(c.x * c.x + c.y * c.y + c.z * c.z);
    angle = static_cast<float>(std::atan2(sine, dot(*this, other)));
    bool const defined = sine > 0;
    QelVector3 const helper = std::abs(y) < 0.9F ? QelVector3(0, 1, 0) : QelVector3(0, 0, 1);
    axis = defined ? rotation::write(rotation::Triple{c.x / sine, c.y / sine, c.z / sine})
                   : rotation::write(cross(*this, helper)).normalize();
    return defined;
}

float QelVector3::getPolarAngleXZ() const { return static_cast<float>(std::atan2(double(z), double(x))); }

QelVector3& QelVector3::radRotateX(float angle) { return radArbitraryRotate({1, 0, 0}, angle); }
QelVector3& QelVector3::radRotateY(float angle) { return radArbitraryRotate({0, 1, 0}, angle); }
QelVector3& QelVector3::radRotateZ(float angle) { return radArbitraryRotate({0, 0, 1}, angle); }

QelVector3& QelVector3::radArbitraryRotate(QelVector3 const& axis, float angle) {
    return *this = rotation::write(rotation::turned(rotation::read(*this), rotation::about(axis, angle)));
}

QelVector4& QelVector4::normalize2() {
    double const square = dot(*this, *this);
    if (square == 0) return *this = {0, 0, 0, 1};
    return *this = blend(1 / std::sqrt(square), *this, 0, *this);
}

float QelVector4::operator*(QelVector4 const& other) const { return static_cast<float>(dot(*this, other)); }

QelVector4 QelVector4::operator*(QelMatrix4 const& m) const {
    QelVector4 out;
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i) out[j] += m_v[i] * m[i][j];
    return out;
}

QelVector4 QelVector4::operator^(QelVector4 const& other) const {
    QelVector3 const v = rotation::write(cross(vectorPart(*this), vectorPart(other)));
    return {v.x, v.y, v.z, 0};
}

bool QelVector4::equals(QelVector4 const& other, double tolerance) const {
    for (int i = 0; i < 4; ++i)
        if (!(std::abs(double(m_v[i]) - other[i]) <= tolerance)) return false;
    return true;
}

QelVector4& QelVector4::quaternionMultiply(QelVector4 const& a, QelVector4 const& b) {
    return *this = {a[0] * b[0] - a[1] * b[1] - a[2] * b[2] - a[3] * b[3],
                    a[0] * b[1] + a[1] * b[0] + a[2] * b[3] - a[3] * b[2],
                    a[0] * b[2] - a[1] * b[3] + a[2] * b[0] + a[3] * b[1],
                    a[0] * b[3] + a[1] * b[2] - a[2] * b[1] + a[3] * b[0]};
}

QelVector4& QelVector4::slerp(QelVector4 const& a, QelVector4 const& b, float t) {
    double const sign = dot(a, b) < 0 ? -1 : 1;
    QelVector4 const sum = blend(1, a, sign, b), difference = blend(1, a, -sign, b);
    double const angle = 2 * std::atan2(std::sqrt(dot(difference, difference)), std::sqrt(dot(sum, sum)));
    double const sine = std::sin(angle);
    // Below this the arc and its chord agree within single precision.
    if (sine < 1e-4) return *this = blend(1.0 - t, a, sign * t, b);
    return *this = blend(std::sin((1.0 - t) * angle) / sine, a, sign * std::sin(t * angle) / sine, b);
}

QelVector4& QelVector4::setQuaternionFromAxisAndAngle(QelVector3 const& axis, float angle) {
    return *this = rotation::write(rotation::fromAxisAngle(rotation::read(axis), angle));
}

QelVector4& QelVector4::setQuaternionFromQelMatrix4(QelMatrix4 const& m) {
    return *this = rotation::write(rotation::readQuaternion(m));
}

QelVector4& QelVector4::setQuaternionFromTwistAndSwing(QelVector3 const& twistSwing) {
    return *this = rotation::write(rotation::fromTwistSwing(rotation::read(twistSwing)));
}

QelVector4& QelVector4::setQuaternionFromTwistAndSwingAngles(QelVector3 const& angles) {
    return *this = rotation::write(rotation::fromTwistSwingAngles(rotation::read(angles)));
}

void QelVector4::getAxisAndAngleFromQuaternion(QelVector3& axis, float& angle) const {
    rotation::AxisAngle const out = rotation::toAxisAngle(rotation::readQuaternion(*this));
    axis = rotation::write(out.axis);
    angle = static_cast<float>(out.angle);
}

void QelVector4::getTwistAndSwingFromQuaternion(QelVector3& twistSwing) const {
    twistSwing = rotation::write(rotation::toTwistSwing(rotation::readQuaternion(*this)));
}

void QelVector4::getTwistAndSwingAnglesFromQuaternion(QelVector3& angles) const {
    angles = rotation::write(rotation::toTwistSwingAngles(rotation::readQuaternion(*this)));
}

QelVector4& QelVector4::rotateVectorPart(QelVector3 const& axis, float angle) {
    QelVector3 const v = vectorPart(*this).radArbitraryRotate(axis, angle);
    return *this = {v.x, v.y, v.z, m_v[3]};
}

QelVector4& QelVector4::radRotateX(float angle) { return rotateVectorPart({1, 0, 0}, angle); }
QelVector4& QelVector4::radRotateY(float angle) { return rotateVectorPart({0, 1, 0}, angle); }
QelVector4& QelVector4::radRotateZ(float angle) { return rotateVectorPart({0, 0, 1}, angle); }

QelVector4& QelVector4::radArbitraryRotate(QelVector4 const& axis, float angle) {
    return rotateVectorPart(vectorPart(axis), angle);
}

QelVector4& QelVector4::fromLocaltoGlobal(QelMatrix4 const& m) { return *this = *this * m; }

QelVector4& QelVector4::fromGlobaltoLocal(QelMatrix4 const& m) {
    QelMatrix4 inverse;
    return m.affineInverse(inverse) ? *this = *this * inverse : *this;
}

QelVector4& QelVector4::fromAtoB(QelMatrix4 const& a, QelMatrix4 const& b) {
    QelMatrix4 inverse;
    return b.affineInverse(inverse) ? *this = *this * a * inverse : *this;
}
