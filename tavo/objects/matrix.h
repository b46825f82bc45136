// XMatrix: an affine transform of row vectors, p' = p M: rows 0 to 2 are the x, y and z axes, row 3 the translation;
// column 3 is kept at 0, in row 3 too. a.Multiply(b) applies a first: world = local * parent world. A value that counts
// as an object, without a node. Angles are radians. Nothing here fails.
//
// Rotation orders: 0 "XYZ", 1 "XZY", 2 "YXZ", 3 "YZX", 4 "ZXY", 5 "ZYX". Any other stands for "XYZ", with the one
// exception of MatrixRotateByEulerAngles.
#pragma once
#include "qel/utils/values.h"
#include "qel/utils/vector.h"
#include "tavo/objects/object_pattern.h"
#include <string_view>

class QelMatrix4;

namespace Tavo {

class XQuaternion;
class XVector3;

class XMatrix : public XTyped<XMatrix, XObject> {
public:
    enum MirrorAxisEnums { MirrorX = 0, MirrorY = 1, MirrorZ = 2 };

    static constexpr XWord TypeID = L"Matrix";
    static constexpr XWord MirrorAxisEnumsHelp = L"Enumerations for the Matrices mirror methods";
    static constexpr float DefaultTolerance = 1e-6f;

    XMatrix() = default;  // the identity
    constexpr XMatrix(XUndefined tag) : XTyped(tag) {}
    explicit XMatrix(float const* rows);  // 16 values, row by row
    explicit XMatrix(double const* rows);
    XMatrix(XVector3 const& xAxis, XVector3 const& yAxis, XVector3 const& zAxis, XVector3 const& translation);
    explicit XMatrix(XQuaternion const& rotation);
    XMatrix(XVector3 const& axis, float angle);
    XMatrix(QelMatrix4 const& value);
    XMatrix(Qelp::Matrix34 const& value);
    explicit XMatrix(Qelutils::Vector<float> const& rows);  // other than 16 values: the identity

    // ---- rows ----
    Qelp::Matrix34 const& AsMatrix() const { return _value; }
    QelMatrix4 AsMathEngineMatrix() const;     // with (0, 0, 0, 1) in column 3
    float Element(int row, int column) const;  // 0 out of range
    XVector3 XAxis() const;
    XVector3 YAxis() const;
    XVector3 ZAxis() const;
    XVector3 Translation() const;
    XMatrix& Set(float const* rows);
    XMatrix& Set(double const* rows);
    XMatrix& Set(XVector3 const& xAxis, XVector3 const& yAxis, XVector3 const& zAxis, XVector3 const& translation);
    XMatrix& Set(XQuaternion const& rotation);
    XMatrix& Set(XVector3 const& axis, float angle);
    XMatrix& Set(XMatrix const& other);
    XMatrix& Set(QelMatrix4 const& value);
    XMatrix& Set(Qelp::Matrix34 const& value);
    XMatrix& Set(Qelutils::Vector<float> const& rows);
    XMatrix& SetXAxis(XVector3 const& axis);
    XMatrix& SetXAxis(float x, float y, float z);
    XMatrix& SetYAxis(XVector3 const& axis);
    XMatrix& SetYAxis(float x, float y, float z);
    XMatrix& SetZAxis(XVector3 const& axis);
    XMatrix& SetZAxis(float x, float y, float z);
    XMatrix& SetTranslation(XVector3 const& translation);
    XMatrix& SetTranslation(float x, float y, float z);
    XMatrix& SetIdentity();
    XMatrix& SetZero();

    // ---- algebra ----
    float Determinant() const;  // of the rotation rows
    XMatrix& Transpose();       // of all four rows and columns
    XMatrix& Transpose3x3();
    XMatrix& Invert();                    // left alone when the determinant is exactly 0
    XMatrix& Orthonormalize();            // right-handed; row 0 keeps its direction, row 2 is not looked at
    XMatrix& Multiply(XMatrix const& b);  // this acts first
    XMatrix& Multiply(XMatrix const& a, XMatrix const& b);
    XMatrix& ScaleBy(float factor);
    XMatrix& ScaleBy(XVector3 const& factors);  // row i by component i
    XVector3 Scale() const;

    // ---- the rotation replaced, the translation kept ----
    XMatrix& SetRotationQuaternion(XQuaternion const& rotation);
    XMatrix& SetRotationAxisAngle(XVector3 const& axis, float angle);  // the axis of any length
    XMatrix& SetRotationEulerAngles(XVector3 const& angles);
    XMatrix& SetRotationEulerAngles(XVector3 const& angles, int order);
    XMatrix& SetRotationEulerAngles(XVector3 const& angles, std::wstring_view order);
    XMatrix& SetRotationTwistSwing(XVector3 const& twistSwing);
    XMatrix& SetRotationTwistSwingAngles(XVector3 const& angles);
    XQuaternion RotationQuaternion() const;
    XVector3 RotationAxis() const;
    float RotationAngle() const;
    XVector3 RotationEulerAngles() const;
    XVector3 RotationEulerAngles(int order) const;
    XVector3 RotationTwistSwing() const;
    XVector3 RotationTwistSwingAngles() const;

    // ---- moved and turned; a turn leaves the translation ----
    XMatrix& Translate(XVector3 const& delta);
    XMatrix& RotateByAxisAngle(XVector3 const& axis, float angle);  // the axis of unit length
    XMatrix& RotateByEulerAngles(XVector3 const& angles);
    XMatrix& RotateByEulerAngles(XVector3 const& angles, int order);
    XMatrix& RotateByQuaternion(XQuaternion const& rotation);  // by its "XYZ" Euler angles
    XMatrix& RotateX(float angle);
    XMatrix& RotateY(float angle);
    XMatrix& RotateZ(float angle);

    // ---- spaces ----
    XMatrix& ConvertToWorldSpace(XMatrix const& m);
    XMatrix& ConvertToLocalSpace(XMatrix const& m);
    XMatrix& ConvertParentSpace(XMatrix const& a, XMatrix const& b);
    static XMatrix MatrixTransformToWorldSpace(XMatrix const& a, XMatrix const& b);  // a b
    static XMatrix MatrixTransformToLocalSpace(XMatrix const& a, XMatrix const& b);  // a b^-1
    static XMatrix MatrixTranslate(XMatrix const& m, XVector3 const& delta);
    static XMatrix MatrixRotateByAxisAngle(XMatrix const& m, float angle, XVector3 const& axis);
    // The components go with the letters of the order by position, not by name. An order above 5 gives m.
    static XMatrix MatrixRotateByEulerAngles(XMatrix const& m, XVector3 const& angles, int order);

    // ---- mirrors ----
    XMatrix& Mirror(XQuaternion const& plane);      // normal x, y, z and offset w, as they are; changes the handedness
    XMatrix& Mirror(int mirror, int flip);          // MirrorRotation, then MirrorTranslation
    XMatrix& MirrorRotation(int mirror, int flip);  // column `mirror` and row `flip` negated; other numbers: not
    XMatrix& MirrorTranslation(int mirror);

    // ---- comparison: rows as vectors, column 3 ignored ----
    bool IsIdentity(float tolerance = DefaultTolerance) const;  // by the sum of each row's differences
    bool IsIsotropic() const;                                   // exactly a multiple of the identity rotation
    bool IsEqual(XMatrix const& other, float tolerance = DefaultTolerance) const;
    bool IsTranslationEqual(XMatrix const& other, float tolerance = DefaultTolerance) const;
    bool IsRotationEqual(XMatrix const& other, float tolerance = DefaultTolerance) const;
    bool operator==(XMatrix const& other) const { return IsEqual(other); }
    bool operator!=(XMatrix const& other) const { return !IsEqual(other); }

    // The maths library's numbers of the rotation orders.
    static int convertToMathEngineRotationOrder(int order);
    static int convertToMathEngineRotationOrder(std::wstring_view order);
    static int convertFromMathEngineRotationOrder(int order);

private:
    XMatrix& setRow(int row, XVector3 const& value);
    XMatrix& setRow(int row, float x, float y, float z);
    XMatrix& setRows(float const (&rows)[4][4]);

    Qelp::Matrix34 _value;
};
using XMatrixDef = XTypedDef<XMatrix>;

}  // namespace Tavo
