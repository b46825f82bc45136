#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

constexpr double Tolerance = 1e-6;

using Second = std::optional<XMatrix> const&;

// A number, or a word; any other stands for XYZ.
int takeOrder(XScriptCall& call) {
    XScriptKey const key = call.TakeKey();
    if (key.isNumber) return key.number;
    return XMatrix::convertFromMathEngineRotationOrder(XMatrix::convertToMathEngineRotationOrder(key.text));
}

void mirror(XScriptCall& call, XMatrix& m) {
    if (call.HasNext() && (!call.IsNextNumber() || call.ArgumentsLeft() >= 4)) {
        m.Mirror(call.TakeQuaternion());
        return;
    }
    int const axis = call.TakeInteger();
    m.Mirror(axis, call.TakeInteger());
}

void rotate(XScriptCall& call, XMatrix& m) {
    if (call.IsNextQuaternion()) {
        m.RotateByQuaternion(call.TakeQuaternion());
        return;
    }
    XVector3 const angles = call.TakeVector();
    m.RotateByEulerAngles(angles, takeOrder(call));
}

void setEulers(XScriptCall& call, XMatrix& m) {
    XVector3 const angles = call.TakeVector();
    m.SetRotationEulerAngles(angles, takeOrder(call));
}

void setRotation(XScriptCall& call, XMatrix& m) {
    if (call.IsNextMatrix())
        m.SetRotationQuaternion(call.TakeMatrix().RotationQuaternion());
    else if (call.IsNextQuaternion())
        m.SetRotationQuaternion(call.TakeQuaternion());
    else
        setEulers(call, m);
}

void scale(XScriptCall& call, XMatrix& m) {
    if (call.IsNextNumber() && call.ArgumentsLeft() == 1)
        m.ScaleBy(float(call.TakeNumber()));
    else if (call.HasNext())
        m.ScaleBy(call.TakeVector());
}

void setAxes(XScriptCall& call, XMatrix& m) {
    XVector3 const x = call.TakeVector();
    if (call.IsNextNumber()) {
        m.Set(x, float(call.TakeNumber()));
        return;
    }
    if (!call.HasNext())
        call.Fail("argument 1 must be 16 numbers, a rotation, an axis with an angle, or three axes and a translation");
    XVector3 const y = call.TakeVector(), z = call.TakeVector();
    m.Set(x, y, z, call.TakeVector());
}

void set(XScriptCall& call, XMatrix& m) {
    if (!call.HasNext() || call.IsNextNumber() || call.IsNextMatrix())
        m.Set(call.TakeMatrix());
    else if (call.IsNextQuaternion())
        m.Set(call.TakeQuaternion());
    else
        setAxes(call, m);
}

XScriptPushed pushRotation(XScriptCall& call, XMatrix const& m) {
    if (call.HasNext())
        call.Push(m.RotationEulerAngles(takeOrder(call)));
    else
        call.Push(m.RotationQuaternion());
    return {1};
}

}  // namespace

XScriptSet const& MatrixFunctions() {
    static XScriptSet const functions{
        "Matrix",
        "A transform of places, which are rows: 16 numbers, row by row, the last row the translation. Rotation orders "
        "are words, or numbers: XYZ 0, XZY 1, YXZ 2, YZX 3, ZXY 4, ZYX 5; any other stands for XYZ.",
        {
            {"convertParentSpace", &XMatrix::ConvertParentSpace, {"from", "to"}, "Takes it from one space to another."},
            {"convertToLocalSpace",
             &XMatrix::ConvertToLocalSpace,
             {"space"},
             "Takes it from the world into the space."},
            {"convertToWorldSpace",
             &XMatrix::ConvertToWorldSpace,
             {"space"},
             "Takes it from the space into the world."},
            {"determinant", &XMatrix::Determinant, {}, "The determinant of the three axes."},
            {"invert", &XMatrix::Invert, {}, "Becomes its inverse; stays as it is if there is none."},
            {"isEqual",
             &XMatrix::IsEqual,
             {"other", {"tolerance", Tolerance}},
             "Whether no number differs from the other's by more than the tolerance."},
            {"isIdentity",
             &XMatrix::IsIdentity,
             {{"tolerance", Tolerance}},
             "Whether in no row the differences from the identity add up to more than the tolerance."},
            {"isIsotropic", &XMatrix::IsIsotropic, {}, "Whether it scales all axes alike, exactly, and turns nothing."},
            {"mirror",
             [](XScriptCall& call, XMatrix& m) { mirror(call, m); },
             {"axisOrPlane", "flip"},
             "Mirrors it along the axis 0, 1 or 2, and turns the axis flip round, so that it stays right-handed; or, "
             "with the normal of a plane through the origin, mirrors it there and leaves it left-handed."},
            {"multiply",
             [](XMatrix& m, XMatrix const& a, Second b) { b ? m.Multiply(a, *b) : m.Multiply(a); },
             {"a", "b"},
             "Lets a act after it; with b it becomes a, and then b."},
            {"orthonormalize",
             &XMatrix::Orthonormalize,
             {},
             "Makes its axes square to one another and of length 1, right-handed; the X axis keeps its direction."},
            {"rotateAxisAngle",
             &XMatrix::RotateByAxisAngle,
             {"axis", "angle"},
             "Turns its axes about an axis of length 1, by an angle in radians; the translation stays."},
            {"rotate",
             [](XScriptCall& call, XMatrix& m) { rotate(call, m); },
             {"anglesOrRotation", {"order", "XYZ"}},
             "Turns its axes by three angles in radians, or by a quaternion; the translation stays."},
            {"rotateX", &XMatrix::RotateX, {"angle"}, "Turns its axes about the X axis, by an angle in radians."},
            {"rotateY", &XMatrix::RotateY, {"angle"}, "Turns its axes about the Y axis, by an angle in radians."},
            {"rotateZ", &XMatrix::RotateZ, {"angle"}, "Turns its axes about the Z axis, by an angle in radians."},
            {"rotation",
             [](XScriptCall& call, XMatrix const& m) { return pushRotation(call, m); },
             {"order"},
             "Its rotation, as a quaternion; with an order as three angles in radians."},
            {"rotationAngle", &XMatrix::RotationAngle, {}, "The angle in radians that it turns by."},
            {"rotationAxis", &XMatrix::RotationAxis, {}, "The axis that it turns about."},
            {"rotationTwistSwing",
             &XMatrix::RotationTwistSwing,
             {},
             "The twist and the two swings of its rotation, as a vector."},
            {"rotationTwistSwingAngles",
             &XMatrix::RotationTwistSwingAngles,
             {},
             "The angles in radians of the twist and the two swings of its rotation."},
            {"effectiveScale", &XMatrix::Scale, {}, "How much it scales each axis."},
            {"scale",
             [](XScriptCall& call, XMatrix& m) { scale(call, m); },
             {"factors"},
             "Scales its axes by one factor, or each by its own of three; the translation stays."},
            {"set",
             [](XScriptCall& call, XMatrix& m) { set(call, m); },
             {"value", "angleOrYAxis", "zAxis", "translation"},
             "Becomes a matrix of 16 numbers, the rotation of a quaternion, that about an axis by an angle in radians, "
             "or what has three axes and a translation."},
            {"setIdentity", &XMatrix::SetIdentity, {}, "Becomes the transform that changes nothing."},
            {"setRotationAxisAngle",
             &XMatrix::SetRotationAxisAngle,
             {"axis", "angle"},
             "Gives it the rotation about the axis, by an angle in radians; the translation stays."},
            {"setRotation",
             [](XScriptCall& call, XMatrix& m) { setRotation(call, m); },
             {"rotation", {"order", "XYZ"}},
             "Gives it the rotation of a quaternion, of a matrix, or of three angles in radians; the translation "
             "stays."},
            {"setRotationEulers",
             [](XScriptCall& call, XMatrix& m) { setEulers(call, m); },
             {"angles", {"order", "XYZ"}},
             "Gives it the rotation of three angles in radians; the translation stays."},
            {"setRotationQuaternion",
             &XMatrix::SetRotationQuaternion,
             {"rotation"},
             "Gives it the rotation of a quaternion; the translation stays."},
            {"setRotationTwistSwing",
             &XMatrix::SetRotationTwistSwing,
             {"twistSwing"},
             "Gives it the rotation that rotationTwistSwing tells so."},
            {"setRotationTwistSwingAngles",
             &XMatrix::SetRotationTwistSwingAngles,
             {"angles"},
             "Gives it the rotation that rotationTwistSwingAngles tells so, in radians."},
            {"setTranslation",
             [](XMatrix& m, XVector3 const& value) { m.SetTranslation(value); },
             {"translation"},
             "Gives it another translation."},
            {"setXAxis",
             [](XMatrix& m, XVector3 const& axis) { m.SetXAxis(axis); },
             {"axis"},
             "Gives it another X axis, whatever the others are."},
            {"setYAxis",
             [](XMatrix& m, XVector3 const& axis) { m.SetYAxis(axis); },
             {"axis"},
             "Gives it another Y axis, whatever the others are."},
            {"setZAxis",
             [](XMatrix& m, XVector3 const& axis) { m.SetZAxis(axis); },
             {"axis"},
             "Gives it another Z axis, whatever the others are."},
            {"setZero", &XMatrix::SetZero, {}, "Sets axes and translation to zero."},
            {"translate", &XMatrix::Translate, {"delta"}, "Adds to its translation."},
            {"translation", &XMatrix::Translation, {}, "Its translation, in metres."},
            {"transpose", &XMatrix::Transpose, {}, "Swaps rows and columns of all; the translation is lost with it."},
            {"transpose3x3", &XMatrix::Transpose3x3, {}, "Swaps rows and columns of the axes; the translation stays."},
            {"xAxis", &XMatrix::XAxis, {}, "Its X axis."},
            {"yAxis", &XMatrix::YAxis, {}, "Its Y axis."},
            {"zAxis", &XMatrix::ZAxis, {}, "Its Z axis."},
        }};
    return functions;
}

}  // namespace Tavo
