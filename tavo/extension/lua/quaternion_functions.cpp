#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

constexpr double Tolerance = 1e-6;

using Second = std::optional<XQuaternion> const&;
using Operand = XScriptOperand<XQuaternion> const&;

// One operand, which is no matrix, multiplies itself.
void multiply(XScriptCall& call, XQuaternion& q) {
    if (call.IsNextMatrix() || call.ArgumentsLeft() >= 16) {
        q.Multiply(call.TakeMatrix());
        return;
    }
    XQuaternion const a = call.TakeQuaternion();
    call.HasNext() ? q.Multiply(a, call.TakeQuaternion()) : q.Multiply(XQuaternion(q), a);
}

}  // namespace

XScriptSet const& QuaternionFunctions() {
    static XScriptSet const set{
        "Quaternion",
        "A rotation as four numbers x, y, z and w, of length 1 together; whatever changes it brings it back to that. "
        "They are also its elements 1 to 4.",
        {
            {"convertParentSpace",
             &XQuaternion::ConvertParentSpace,
             {"from", "to"},
             "Takes its four numbers, as a row, from one space to another."},
            {"convertToLocalSpace",
             &XQuaternion::ConvertToLocalSpace,
             {"space"},
             "Takes its four numbers, as a row, into the space."},
            {"convertToWorldSpace",
             &XQuaternion::ConvertToWorldSpace,
             {"space"},
             "Takes its four numbers, as a row, out of the space."},
            {"crossProduct",
             [](XQuaternion& q, XQuaternion const& a, Second b) { b ? q.CrossProduct(a, *b) : q.CrossProduct(a); },
             {"a", "b"},
             "Becomes its cross product with a; with b, that of a and b."},
            {"dotProduct", &XQuaternion::DotProduct, {"other"}, "The dot product of the four numbers of both."},
            {"interpolate",
             [](XQuaternion& q, XQuaternion const& a, Operand b, float t) {
                 b.value ? q.Interpolate(a, *b.value, t) : q.Interpolate(a, t);
             },
             {"a", "b", "t"},
             "Goes the part t of the way to a, number by number; with b it becomes what lies so far from a to b."},
            {"isEqual",
             &XQuaternion::IsEqual,
             {"other", {"tolerance", Tolerance}},
             "Whether no number differs from the other's by more than the tolerance."},
            {"isNormal", &XQuaternion::IsNormal, {{"tolerance", Tolerance}}, "Whether it is no longer than 1."},
            {"isIdentity",
             [](XQuaternion const& q, float tolerance) { return q.IsIdentity(tolerance); },
             {"tolerance"},
             "Whether it turns nothing, exactly: the tolerance is not looked at."},
            {"magnitude", &XQuaternion::Magnitude, {}, "Its length as four numbers, which is 1."},
            {"magnitudeSquared", &XQuaternion::MagnitudeSquared, {}, "The square of its length."},
            {"multiply",
             [](XScriptCall& call, XQuaternion& q) { multiply(call, q); },
             {"aOrMatrix", "b"},
             "Becomes its product with a, with b that of a and b, both by the numbers as they are stored; a matrix "
             "does what convertToWorldSpace does."},
            {"normalize", &XQuaternion::Normalize, {}, "Gives it the length 1."},
            {"rotationAngle", &XQuaternion::RotationAngle, {}, "The angle in radians that it turns by."},
            {"rotationAxis", &XQuaternion::RotationAxis, {}, "The axis that it turns about."},
            {"twistSwing", &XQuaternion::RotationTwistSwing, {}, "Its twist and its two swings, as a vector."},
            {"twistSwingAngles",
             &XQuaternion::RotationTwistSwingAngles,
             {},
             "The angles in radians of its twist and its two swings."},
            {"relativeAngle",
             &XQuaternion::RelativeAngle,
             {"other"},
             "The angle in radians between the x, y and z of both, which is not that between the rotations."},
            {"rotateAxisAngle",
             &XQuaternion::RotateAxisAngle,
             {"axis", "angle"},
             "Turns its four numbers, as a vector, by an angle in radians."},
            {"rotateX",
             &XQuaternion::RotateX,
             {"angle"},
             "Turns its four numbers, as a vector, about the X axis, by an angle in radians."},
            {"rotateY",
             &XQuaternion::RotateY,
             {"angle"},
             "Turns its four numbers, as a vector, about the Y axis, by an angle in radians."},
            {"rotateZ",
             &XQuaternion::RotateZ,
             {"angle"},
             "Turns its four numbers, as a vector, about the Z axis, by an angle in radians."},
            {"set",
             [](XQuaternion& q, XQuaternion const& value) { q.Set(value); },
             {"value"},
             "Takes over four numbers, a quaternion, or a vector with 0 for w, brought to the length 1."},
            {"setMatrix", &XQuaternion::SetRotationMatrix, {"matrix"}, "Becomes the rotation of the matrix."},
            {"setAxisAngle",
             &XQuaternion::SetRotationAxisAngle,
             {"axis", "angle"},
             "Becomes the rotation about an axis of length 1, by an angle in radians."},
            {"setTwistSwing",
             &XQuaternion::SetRotationTwistSwing,
             {"twistSwing"},
             "Becomes the rotation that twistSwing tells so."},
            {"setTwistSwingAngles",
             &XQuaternion::SetRotationTwistSwingAngles,
             {"angles"},
             "Becomes the rotation that twistSwingAngles tells so, in radians."},
            {"setIdentity", &XQuaternion::SetIdentity, {}, "Becomes the rotation that turns nothing."},
            {"slerp",
             [](XQuaternion& q, XQuaternion const& a, Operand b, float t) {
                 b.value ? q.SphericalInterpolate(a, *b.value, t) : q.SphericalInterpolate(XQuaternion(q), a, t);
             },
             {"a", "b", "t"},
             "As interpolate, but it turns evenly."},
        }};
    return set;
}

}  // namespace Tavo
