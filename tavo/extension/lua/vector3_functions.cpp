#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

constexpr double Tolerance = 1e-6;

using Second = std::optional<XVector3> const&;
using Operand = XScriptOperand<XVector3> const&;

// As a point by a matrix; or b by a factor, which is itself where there is no b.
void multiply(XScriptCall& call, XVector3& v) {
    if (!call.IsNextNumber() || call.ArgumentsLeft() >= 16) {
        v.Multiply(call.TakeMatrix());
        return;
    }
    float const factor = float(call.TakeNumber());
    v.Multiply(factor, call.HasNext() ? call.TakeVector() : v);
}

}  // namespace

XScriptSet const& Vector3Functions() {
    static XScriptSet const set{
        "Vector3",
        "Three numbers x, y and z: a place in metres, a direction, angles. They are also its elements 1 to 3.",
        {
            {"add",
             [](XVector3& v, XVector3 const& a, Second b) { b ? v.Add(a, *b) : v.Add(a); },
             {"a", "b"},
             "Adds a; with b it becomes a + b."},
            {"convertParentSpace",
             &XVector3::ConvertParentSpace,
             {"from", "to"},
             "Reads it as XYZ angles, and takes the first three numbers of that rotation from one space to another; "
             "for places there is multiply."},
            {"convertToLocalSpace",
             &XVector3::ConvertToLocalSpace,
             {"space"},
             "Reads it as XYZ angles, and takes the first three numbers of that rotation into the space; for places "
             "there is multiply."},
            {"convertToWorldSpace",
             &XVector3::ConvertToWorldSpace,
             {"space"},
             "Reads it as XYZ angles, and takes the first three numbers of that rotation out of the space; for places "
             "there is multiply."},
            {"crossProduct",
             [](XVector3& v, XVector3 const& a, Second b) { b ? v.CrossProduct(a, *b) : v.CrossProduct(a); },
             {"a", "b"},
             "Becomes its cross product with a; with b, that of a and b."},
            {"distance", &XVector3::DistanceTo, {"other"}, "How far it is from the other."},
            {"distanceSquared", &XVector3::DistanceSquaredTo, {"other"}, "The square of the distance to the other."},
            {"dotProduct", &XVector3::DotProduct, {"other"}, "The dot product of both."},
            {"interpolate",
             [](XVector3& v, XVector3 const& a, Operand b, float t) {
                 b.value ? v.Interpolate(a, *b.value, t) : v.Interpolate(a, t);
             },
             {"a", "b", "t"},
             "Goes the part t of the way to a, where 1 is all of it; with b it becomes what lies so far from a to b."},
            {"isEqual",
             &XVector3::IsEqual,
             {"other", {"tolerance", Tolerance}},
             "Whether no number differs from the other's by more than the tolerance."},
            {"isNormal", &XVector3::IsNormal, {{"tolerance", Tolerance}}, "Whether its length is 1."},
            {"isZero",
             &XVector3::IsZero,
             {{"tolerance", Tolerance}},
             "Whether the square of its length is no more than the tolerance."},
            {"magnitude", &XVector3::Magnitude, {}, "Its length."},
            {"magnitudeSquared", &XVector3::MagnitudeSquared, {}, "The square of its length."},
            {"multiply",
             [](XScriptCall& call, XVector3& v) { multiply(call, v); },
             {"matrixOrFactor", "b"},
             "Transforms it by a matrix, as a place; or with a factor becomes that times b, or times itself without "
             "b."},
            {"normalize", &XVector3::Normalize, {}, "Gives it the length 1; zero becomes (1, 0, 0)."},
            {"polarAngle",
             &XVector3::PolarAngleXZ,
             {},
             "The angle in radians from the X axis towards the Z axis, seen along Y."},
            {"relativeAngle", &XVector3::RelativeAngle, {"other"}, "The angle in radians between both, up to pi."},
            {"rotateAxisAngle",
             &XVector3::RotateAxisAngle,
             {"axis", "angle"},
             "Turns it about the axis, by an angle in radians."},
            {"rotateX", &XVector3::RotateX, {"angle"}, "Turns it about the X axis, by an angle in radians."},
            {"rotateY", &XVector3::RotateY, {"angle"}, "Turns it about the Y axis, by an angle in radians."},
            {"rotateZ", &XVector3::RotateZ, {"angle"}, "Turns it about the Z axis, by an angle in radians."},
            {"scale", &XVector3::Scale, {{"factor", 1}}, "Makes it so many times as long."},
            {"set",
             [](XVector3& v, XVector3 const& value) { v.Set(value); },
             {"value"},
             "Takes over three numbers, a vector, or the first three numbers of a quaternion."},
            {"setZero", &XVector3::SetZero, {}, "Becomes (0, 0, 0)."},
            {"slerp",
             [](XVector3& v, XVector3 const& a, Operand b, float t) {
                 b.value ? v.SphericalInterpolate(a, *b.value, t) : v.SphericalInterpolate(XVector3(v), a, t);
             },
             {"a", "b", "t"},
             "As interpolate, but direction and length change evenly, each for itself."},
            {"subtract",
             [](XVector3& v, XVector3 const& a, Second b) { b ? v.Subtract(a, *b) : v.Subtract(a); },
             {"a", "b"},
             "Subtracts a; with b it becomes a - b."},
        }};
    return set;
}

}  // namespace Tavo
