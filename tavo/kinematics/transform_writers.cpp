// What is written to a transform: its attributes, and through them its local and its world matrix.
#include "tavo/kinematics/transform.h"
#include <cmath>

namespace Tavo {
namespace {

bool isFinite(XMatrix const& m) {
    for (int i = 0; i < 16; ++i)
        if (!std::isfinite(m.Element(i / 4, i % 4))) return false;
    return true;
}

}  // namespace

using Node = sg::TransformNode;

// ---- the attributes ----

XTransform& XTransform::SetTranslation(XVector3 const& value) { return setChannels(Node::Translation, value); }
XTransform& XTransform::SetTranslation(float x, float y, float z) { return SetTranslation(XVector3(x, y, z)); }
XTransform& XTransform::SetPreTranslation(XVector3 const& value) { return setChannels(Node::PreTranslation, value); }
XTransform& XTransform::SetPreTranslation(float x, float y, float z) { return SetPreTranslation(XVector3(x, y, z)); }
XTransform& XTransform::SetScale(XVector3 const& value) { return setChannels(Node::Scale, value); }
XTransform& XTransform::SetScale(float x, float y, float z) { return SetScale(XVector3(x, y, z)); }

XTransform& XTransform::setRotation(XVector3 const& angles, XQuaternion const& rotation) {
    setChannels(Node::Rotation, angles);
    XAttribute const quaternion = RotationQuaternion();
    for (unsigned i = 0; i < 4; ++i) quaternion.Attribute(int(i)).SetFloat(rotation[i]);
    return *this;
}

XTransform& XTransform::SetRotationEulerAngles(XVector3 const& angles) {
    return setRotation(angles, XMatrix().SetRotationEulerAngles(angles).RotationQuaternion());
}

XTransform& XTransform::SetRotationEulerAngles(float x, float y, float z) {
    return SetRotationEulerAngles(XVector3(x, y, z));
}

XTransform& XTransform::SetRotationQuaternion(XQuaternion const& rotation) {
    return setRotation(XMatrix(rotation).RotationEulerAngles(), rotation);
}

XTransform& XTransform::SetRotationAxisAngle(XVector3 const& axis, float angle) {
    XMatrix const m(axis, angle);
    return setRotation(m.RotationEulerAngles(), m.RotationQuaternion());
}

XTransform& XTransform::SetPreRotationQuaternion(XQuaternion const& rotation) {
    return SetPreRotationEulerAngles(XMatrix(rotation).RotationEulerAngles());
}

XTransform& XTransform::SetPostRotationQuaternion(XQuaternion const& rotation) {
    return SetPostRotationEulerAngles(XMatrix(rotation).RotationEulerAngles());
}

XTransform& XTransform::SetPreRotationEulerAngles(XVector3 const& angles) {
    return setChannels(Node::PreRotation, angles);
}

XTransform& XTransform::SetPostRotationEulerAngles(XVector3 const& angles) {
    return setChannels(Node::PostRotation, angles);
}

// ---- the local and the world matrix ----

// The angles are read by the transform's own order, and from there on as "XYZ": for another order the two do not agree.
// A decision of this system.
// Below a parent that is scaled to almost nothing a place in the world may have no place in numbers: it is no source.
XTransform& XTransform::SetLocalMatrix(XMatrix const& matrix, int mode) {
    if (!isFinite(matrix)) return *this;
    XVector3 const translation = SubtractPreTranslation(matrix.Translation());
    XVector3 const read = matrix.RotationEulerAngles(RotationEulerOrder().Enumeration());
    XVector3 const angles(SubtractPrePostRotation(XQuaternion(read)));
    if (mode == UpdateAll || mode == UpdateTranslation) SetTranslation(translation);
    if (mode == UpdateAll || mode == UpdateRotation) SetRotationEulerAngles(angles);
    if (mode == UpdateAll) SetScale(matrix.Scale());
    return *this;
}

XTransform& XTransform::SetWorldMatrix(XMatrix const& matrix, int mode) {
    return SetLocalMatrix(ConvertToLocalSpace(matrix), mode);
}

XTransform& XTransform::SetLocalMatrix(Qelutils::Vector<float> const& values, int mode) {
    return SetLocalMatrix(XMatrix(values), mode);
}

XTransform& XTransform::SetWorldMatrix(Qelutils::Vector<float> const& values, int mode) {
    return SetWorldMatrix(XMatrix(values), mode);
}

// Each of the operations below changes the present matrix and writes back a part of it.
XTransform& XTransform::changeLocal(int mode, auto const& change) {
    XMatrix m = LocalMatrix().Matrix();
    change(m);
    return SetLocalMatrix(m, mode);
}

XTransform& XTransform::changeWorld(int mode, auto const& change) {
    XMatrix m = WorldMatrix().Matrix();
    change(m);
    return SetWorldMatrix(m, mode);
}

XTransform& XTransform::SetWorldTranslation(XVector3 const& value) {
    return changeWorld(UpdateTranslation, [&](XMatrix& m) { m.SetTranslation(value); });
}

XTransform& XTransform::SetWorldTranslation(float x, float y, float z) {
    return SetWorldTranslation(XVector3(x, y, z));
}

XTransform& XTransform::SetWorldRotationQuaternion(XQuaternion const& rotation) {
    return changeWorld(UpdateRotation, [&](XMatrix& m) { m.SetRotationQuaternion(rotation); });
}

XTransform& XTransform::SetWorldRotationEulerAngles(XVector3 const& angles) {
    int const order = RotationEulerOrder().Enumeration();
    return changeWorld(UpdateRotation, [&](XMatrix& m) { m.SetRotationEulerAngles(angles, order); });
}

XTransform& XTransform::SetWorldRotationAxisAngle(XVector3 const& axis, float angle) {
    return changeWorld(UpdateRotation, [&](XMatrix& m) { m.SetRotationAxisAngle(axis, angle); });
}

XTransform& XTransform::Translate(XVector3 const& delta) {
    return changeLocal(UpdateTranslation, [&](XMatrix& m) { m.Translate(delta); });
}

XTransform& XTransform::RotateByEulerAngles(XVector3 const& angles) {
    return changeLocal(UpdateRotation, [&](XMatrix& m) { m.RotateByEulerAngles(angles); });
}

XTransform& XTransform::RotateByAxisAngle(XVector3 const& axis, float angle) {
    return changeLocal(UpdateRotation, [&](XMatrix& m) { m.RotateByAxisAngle(axis, angle); });
}

XTransform& XTransform::RotateByQuaternion(XQuaternion const& rotation) {
    return RotateByEulerAngles(XVector3(rotation));
}

XTransform& XTransform::WorldTranslate(XVector3 const& delta) {
    return changeWorld(UpdateTranslation, [&](XMatrix& m) { m.Translate(delta); });
}

XTransform& XTransform::WorldRotateByEulerAngles(XVector3 const& angles) {
    return WorldRotateByEulerAngles(angles, RotationEulerOrder().Enumeration());
}

XTransform& XTransform::WorldRotateByEulerAngles(XVector3 const& angles, int order) {
    return changeWorld(UpdateRotation, [&](XMatrix& m) { m.RotateByEulerAngles(angles, order); });
}

XTransform& XTransform::WorldRotateByAxisAngle(XVector3 const& axis, float angle) {
    return changeWorld(UpdateRotation, [&](XMatrix& m) { m.RotateByAxisAngle(axis, angle); });
}

XTransform& XTransform::SetIdentity() {
    SetPreRotationQuaternion(XQuaternion());
    SetPostRotationQuaternion(XQuaternion());
    return SetLocalMatrix(XMatrix(), UpdateAll);
}

}  // namespace Tavo
