#include "tavo/objects/matrix.h"
#include "qel/utils/maths.h"
#include "qel/utils/rotation.h"
#include "tavo/objects/quaternion.h"
#include "tavo/objects/vector3.h"
#include <cmath>
#include <iterator>
#include <utility>

namespace Tavo {
namespace {

struct RotationOrder {
    XWord word;
    int mathEngineOrder;
    int axes[3];  // of the letters
};
constexpr RotationOrder Orders[] = {
    {L"XYZ", 0, {0, 1, 2}}, {L"XZY", 2, {0, 2, 1}}, {L"YXZ", 6, {1, 0, 2}},
    {L"YZX", 4, {1, 2, 0}}, {L"ZXY", 8, {2, 0, 1}}, {L"ZYX", 10, {2, 1, 0}},
};
constexpr bool isOrder(int order) { return order >= 0 && order < int(std::size(Orders)); }
constexpr bool isAxis(int axis) { return axis >= 0 && axis < 3; }

XVector3 unitAxis(int axis) { return XVector3(axis == 0, axis == 1, axis == 2); }

}  // namespace

XMatrix::XMatrix(float const* rows) { Set(rows); }
XMatrix::XMatrix(double const* rows) { Set(rows); }
XMatrix::XMatrix(XVector3 const& xAxis, XVector3 const& yAxis, XVector3 const& zAxis, XVector3 const& translation) {
    Set(xAxis, yAxis, zAxis, translation);
}
XMatrix::XMatrix(XQuaternion const& rotation) { SetRotationQuaternion(rotation); }
XMatrix::XMatrix(XVector3 const& axis, float angle) { SetRotationAxisAngle(axis, angle); }
XMatrix::XMatrix(QelMatrix4 const& value) { Set(value); }
XMatrix::XMatrix(Qelp::Matrix34 const& value) { Set(value); }
XMatrix::XMatrix(Qelutils::Vector<float> const& rows) { Set(rows); }

// ---- rows ----

QelMatrix4 XMatrix::AsMathEngineMatrix() const {
    QelMatrix4 out;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column) out.m[row][column] = _value.m[row][column];
    return out;
}
float XMatrix::Element(int row, int column) const {
    return row >= 0 && row < 4 && column >= 0 && column < 4 ? _value.m[row][column] : 0;
}
XVector3 XMatrix::XAxis() const { return XVector3(_value.m[0]); }
XVector3 XMatrix::YAxis() const { return XVector3(_value.m[1]); }
XVector3 XMatrix::ZAxis() const { return XVector3(_value.m[2]); }
XVector3 XMatrix::Translation() const { return XVector3(_value.m[3]); }

XMatrix& XMatrix::setRow(int row, float x, float y, float z) {
    float* const out = _value.m[row];
    out[0] = x, out[1] = y, out[2] = z, out[3] = 0;
    return *this;
}
XMatrix& XMatrix::setRow(int row, XVector3 const& value) { return setRow(row, value.X(), value.Y(), value.Z()); }

XMatrix& XMatrix::setRows(float const (&rows)[4][4]) {
    for (int row = 0; row < 4; ++row) setRow(row, rows[row][0], rows[row][1], rows[row][2]);
    return *this;
}

XMatrix& XMatrix::Set(float const* rows) {
    for (int row = 0; row < 4; ++row, rows += 4) setRow(row, rows[0], rows[1], rows[2]);
    return *this;
}
XMatrix& XMatrix::Set(double const* rows) {
    for (int row = 0; row < 4; ++row, rows += 4) setRow(row, float(rows[0]), float(rows[1]), float(rows[2]));
    return *this;
}
XMatrix& XMatrix::Set(XVector3 const& xAxis, XVector3 const& yAxis, XVector3 const& zAxis,
                      XVector3 const& translation) {
    return setRow(0, xAxis).setRow(1, yAxis).setRow(2, zAxis).setRow(3, translation);
}
XMatrix& XMatrix::Set(XQuaternion const& rotation) { return SetIdentity().SetRotationQuaternion(rotation); }
XMatrix& XMatrix::Set(XVector3 const& axis, float angle) { return SetIdentity().SetRotationAxisAngle(axis, angle); }
XMatrix& XMatrix::Set(XMatrix const& other) { return _value = other._value, *this; }
XMatrix& XMatrix::Set(QelMatrix4 const& value) { return setRows(value.m); }
XMatrix& XMatrix::Set(Qelp::Matrix34 const& value) { return setRows(value.m); }
XMatrix& XMatrix::Set(Qelutils::Vector<float> const& rows) {
    return rows.size() == 16 ? Set(rows.data()) : SetIdentity();
}
XMatrix& XMatrix::SetXAxis(XVector3 const& axis) { return setRow(0, axis); }
XMatrix& XMatrix::SetXAxis(float x, float y, float z) { return setRow(0, x, y, z); }
XMatrix& XMatrix::SetYAxis(XVector3 const& axis) { return setRow(1, axis); }
XMatrix& XMatrix::SetYAxis(float x, float y, float z) { return setRow(1, x, y, z); }
XMatrix& XMatrix::SetZAxis(XVector3 const& axis) { return setRow(2, axis); }
XMatrix& XMatrix::SetZAxis(float x, float y, float z) { return setRow(2, x, y, z); }
XMatrix& XMatrix::SetTranslation(XVector3 const& translation) { return setRow(3, translation); }
XMatrix& XMatrix::SetTranslation(float x, float y, float z) { return setRow(3, x, y, z); }
XMatrix& XMatrix::SetIdentity() { return _value = {}, *this; }
XMatrix& XMatrix::SetZero() {
    for (int row = 0; row < 4; ++row) setRow(row, 0, 0, 0);
    return *this;
}

// ---- algebra ----

float XMatrix::Determinant() const {
    auto const& m = _value.m;
    auto const minor = [&](int a, int b) { return double(m[1][a]) * m[2][b] - double(m[1][b]) * m[2][a]; };
    return float(m[0][0] * minor(1, 2) - m[0][1] * minor(0, 2) + m[0][2] * minor(0, 1));
}

XMatrix& XMatrix::Transpose() {
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < row; ++column) std::swap(_value.m[row][column], _value.m[column][row]);
    return *this;
}

XMatrix& XMatrix::Transpose3x3() {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < row; ++column) std::swap(_value.m[row][column], _value.m[column][row]);
    return *this;
}

XMatrix& XMatrix::Invert() {
    Qelutils::invert(_value, _value);
    return *this;
}

XMatrix& XMatrix::Orthonormalize() {
    XVector3 const x = XAxis().Normalize();
    XVector3 const y = YAxis();
    XVector3 const alongX = XVector3().Multiply(y.DotProduct(x), x);
    XVector3 const squareToX = XVector3().Subtract(y, alongX).Normalize();
    return setRow(0, x).setRow(1, squareToX).setRow(2, XVector3().CrossProduct(x, squareToX));
}

XMatrix& XMatrix::Multiply(XMatrix const& b) { return Multiply(*this, b); }
XMatrix& XMatrix::Multiply(XMatrix const& a, XMatrix const& b) { return Set(Qelutils::multiply(a._value, b._value)); }
XMatrix& XMatrix::ScaleBy(float factor) { return Set(AsMathEngineMatrix().scale(factor)); }
XMatrix& XMatrix::ScaleBy(XVector3 const& factors) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) _value.m[row][column] *= factors[unsigned(row)];
    return *this;
}
XVector3 XMatrix::Scale() const {
    QelVector3 out;
    AsMathEngineMatrix().getScale(out);
    return out;
}

// ---- the rotation ----

XMatrix& XMatrix::SetRotationQuaternion(XQuaternion const& rotation) {
    XQuaternion unit(rotation);
    return Set(AsMathEngineMatrix().setOrientationFromQuaternion(unit.Normalize().AsMathEngineQuaternionVector()));
}
XMatrix& XMatrix::SetRotationAxisAngle(XVector3 const& axis, float angle) {
    XVector3 unit(axis);
    return Set(AsMathEngineMatrix().setOrientationFromAxisAndAngle(unit.Normalize().AsMathEngineVector(), angle));
}
XMatrix& XMatrix::SetRotationEulerAngles(XVector3 const& angles) { return SetRotationEulerAngles(angles, 0); }
XMatrix& XMatrix::SetRotationEulerAngles(XVector3 const& angles, int order) {
    int const engineOrder = convertToMathEngineRotationOrder(order);
    return Set(AsMathEngineMatrix().setOrientationFromGeneralEulers(engineOrder, angles.AsMathEngineVector()));
}
XMatrix& XMatrix::SetRotationEulerAngles(XVector3 const& angles, std::wstring_view order) {
    int const engineOrder = convertToMathEngineRotationOrder(order);
    return Set(AsMathEngineMatrix().setOrientationFromGeneralEulers(engineOrder, angles.AsMathEngineVector()));
}
XMatrix& XMatrix::SetRotationTwistSwing(XVector3 const& twistSwing) {
    return Set(AsMathEngineMatrix().setOrientationFromTwistAndSwing(twistSwing.AsMathEngineVector()));
}
XMatrix& XMatrix::SetRotationTwistSwingAngles(XVector3 const& angles) {
    return Set(AsMathEngineMatrix().setOrientationFromTwistAndSwingAngles(angles.AsMathEngineVector()));
}

XQuaternion XMatrix::RotationQuaternion() const { return XQuaternion().SetRotationMatrix(*this); }
XVector3 XMatrix::RotationAxis() const {
    QelVector3 axis;
    float angle = 0;
    AsMathEngineMatrix().getAxisAndAngleFromOrientation(axis, angle);
    return axis;
}
float XMatrix::RotationAngle() const {
    QelVector3 axis;
    float angle = 0;
    AsMathEngineMatrix().getAxisAndAngleFromOrientation(axis, angle);
    return angle;
}
XVector3 XMatrix::RotationEulerAngles() const { return RotationEulerAngles(0); }
XVector3 XMatrix::RotationEulerAngles(int order) const {
    QelVector3 angles;
    AsMathEngineMatrix().getGeneralEulersFromOrientation(convertToMathEngineRotationOrder(order), angles);
    return angles;
}
XVector3 XMatrix::RotationTwistSwing() const {
    QelVector3 twistSwing;
    AsMathEngineMatrix().getTwistAndSwingFromOrientation(twistSwing);
    return twistSwing;
}
XVector3 XMatrix::RotationTwistSwingAngles() const {
    QelVector3 angles;
    AsMathEngineMatrix().getTwistAndSwingAnglesFromOrientation(angles);
    return angles;
}

// ---- moved and turned ----

XMatrix& XMatrix::Translate(XVector3 const& delta) { return SetTranslation(Translation().Add(delta)); }
XMatrix& XMatrix::RotateByAxisAngle(XVector3 const& axis, float angle) {
    return Set(AsMathEngineMatrix().radRotateOrientationAboutArbitraryAxis(axis.AsMathEngineVector(), angle));
}
XMatrix& XMatrix::RotateByEulerAngles(XVector3 const& angles) { return RotateByEulerAngles(angles, 0); }
XMatrix& XMatrix::RotateByEulerAngles(XVector3 const& angles, int order) {
    int const engineOrder = convertToMathEngineRotationOrder(order);
    return Set(AsMathEngineMatrix().radRotateOrientation(engineOrder, angles.AsMathEngineVector()));
}
XMatrix& XMatrix::RotateByQuaternion(XQuaternion const& rotation) {
    return RotateByEulerAngles(rotation.RotationEulerAngles());
}
XMatrix& XMatrix::RotateX(float angle) { return Set(AsMathEngineMatrix().radRotateOrientationAboutGlobalX(angle)); }
XMatrix& XMatrix::RotateY(float angle) { return Set(AsMathEngineMatrix().radRotateOrientationAboutGlobalY(angle)); }
XMatrix& XMatrix::RotateZ(float angle) { return Set(AsMathEngineMatrix().radRotateOrientationAboutGlobalZ(angle)); }

// ---- spaces ----

XMatrix& XMatrix::ConvertToWorldSpace(XMatrix const& m) {
    return Set(AsMathEngineMatrix().fromLocaltoGlobal(m.AsMathEngineMatrix()));
}
XMatrix& XMatrix::ConvertToLocalSpace(XMatrix const& m) {
    return Set(AsMathEngineMatrix().fromGlobaltoLocal(m.AsMathEngineMatrix()));
}
XMatrix& XMatrix::ConvertParentSpace(XMatrix const& a, XMatrix const& b) {
    return Set(AsMathEngineMatrix().fromAtoB(a.AsMathEngineMatrix(), b.AsMathEngineMatrix()));
}
XMatrix XMatrix::MatrixTransformToWorldSpace(XMatrix const& a, XMatrix const& b) { return XMatrix().Multiply(a, b); }
XMatrix XMatrix::MatrixTransformToLocalSpace(XMatrix const& a, XMatrix const& b) {
    XMatrix inverse(b);
    return XMatrix().Multiply(a, inverse.Invert());
}
XMatrix XMatrix::MatrixTranslate(XMatrix const& m, XVector3 const& delta) { return XMatrix(m).Translate(delta); }
XMatrix XMatrix::MatrixRotateByAxisAngle(XMatrix const& m, float angle, XVector3 const& axis) {
    return XMatrix(m).RotateByAxisAngle(axis, angle);
}
XMatrix XMatrix::MatrixRotateByEulerAngles(XMatrix const& m, XVector3 const& angles, int order) {
    XMatrix out(m);
    if (!isOrder(order)) return out;
    for (unsigned letter = 0; letter < 3; ++letter)
        out.RotateByAxisAngle(unitAxis(Orders[order].axes[letter]), angles[letter]);
    return out;
}

// ---- mirrors ----

XMatrix& XMatrix::Mirror(XQuaternion const& plane) {
    QelMatrix4 reflection;
    for (unsigned row = 0; row < 3; ++row)
        for (unsigned column = 0; column < 3; ++column)
            reflection.m[row][column] = (row == column ? 1.0f : 0.0f) - 2 * plane[row] * plane[column];
    for (unsigned column = 0; column < 3; ++column) reflection.m[3][column] = -2 * plane[column] * plane.W();
    return Set(AsMathEngineMatrix() * reflection);
}
XMatrix& XMatrix::Mirror(int mirror, int flip) { return MirrorRotation(mirror, flip).MirrorTranslation(mirror); }
XMatrix& XMatrix::MirrorRotation(int mirror, int flip) {
    if (isAxis(mirror))
        for (int row = 0; row < 3; ++row) _value.m[row][mirror] *= -1;
    if (!isAxis(flip)) return *this;
    float const* const row = _value.m[flip];
    return setRow(flip, -row[0], -row[1], -row[2]);
}
XMatrix& XMatrix::MirrorTranslation(int mirror) {
    if (isAxis(mirror)) _value.m[3][mirror] *= -1;
    return *this;
}

// ---- comparison ----

bool XMatrix::IsIdentity(float tolerance) const {
    for (int row = 0; row < 4; ++row) {
        float sum = 0;
        for (int column = 0; column < 3; ++column)
            sum += std::abs(_value.m[row][column] - (row == column ? 1.0f : 0.0f));
        if (!(sum <= tolerance)) return false;
    }
    return true;
}
bool XMatrix::IsIsotropic() const {
    auto const& m = _value.m;
    return m[0][0] == m[1][1] && m[1][1] == m[2][2] && m[0][1] == 0 && m[0][2] == 0 && m[1][0] == 0 && m[1][2] == 0 &&
           m[2][0] == 0 && m[2][1] == 0;
}
bool XMatrix::IsEqual(XMatrix const& other, float tolerance) const {
    return IsRotationEqual(other, tolerance) && IsTranslationEqual(other, tolerance);
}
bool XMatrix::IsTranslationEqual(XMatrix const& other, float tolerance) const {
    return Translation().IsEqual(other.Translation(), tolerance);
}
bool XMatrix::IsRotationEqual(XMatrix const& other, float tolerance) const {
    return XAxis().IsEqual(other.XAxis(), tolerance) && YAxis().IsEqual(other.YAxis(), tolerance) &&
           ZAxis().IsEqual(other.ZAxis(), tolerance);
}

// ---- rotation orders ----

int XMatrix::convertToMathEngineRotationOrder(int order) { return isOrder(order) ? Orders[order].mathEngineOrder : 0; }
int XMatrix::convertToMathEngineRotationOrder(std::wstring_view order) {
    for (RotationOrder const& known : Orders)
        if (known.word == order) return known.mathEngineOrder;
    return 0;
}
int XMatrix::convertFromMathEngineRotationOrder(int order) {
    for (int i = 0; i < int(std::size(Orders)); ++i)
        if (Orders[i].mathEngineOrder == order) return i;
    return 0;
}

}  // namespace Tavo
