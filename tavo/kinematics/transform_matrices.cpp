// What is read of a transform: component matrices, rotations, scales and conversions between spaces.
#include "tavo/kinematics/transform.h"

namespace Tavo {

using Node = sg::TransformNode;

sg::TransformInputs XTransform::inputs() const {
    return isNodeOfType(Node::Def) ? static_cast<Node*>(getNode())->getInputs() : sg::TransformInputs();
}

XMatrix XTransform::LocalTranslationMatrix() const { return sg::localTranslationMatrix(inputs()); }
XMatrix XTransform::LocalRotationMatrix() const { return sg::localRotationMatrix(inputs()); }
XMatrix XTransform::LocalScaleMatrix() const { return sg::localScaleMatrix(inputs()); }
XMatrix XTransform::LocalPreTranslationMatrix() const { return sg::localPreTranslationMatrix(inputs()); }
XMatrix XTransform::LocalPreRotationMatrix() const { return sg::localPreRotationMatrix(inputs()); }
XMatrix XTransform::LocalPostRotationMatrix() const { return sg::localPostRotationMatrix(inputs()); }

XVector3 XTransform::LocalScale() const { return sg::localScale(inputs()); }

// The diagonal, and not the lengths of the axes: a decision of this system.
XVector3 XTransform::WorldScale() const {
    XMatrix const world = WorldMatrix().Matrix();
    return {world.Element(0, 0), world.Element(1, 1), world.Element(2, 2)};
}

XVector3 XTransform::PreTranslation() const { return channels(Node::PreTranslation); }

// By "XYZ", whatever RotationEulerOrder says.
XQuaternion XTransform::Rotation() const { return XQuaternion(channels(Node::Rotation)); }
XQuaternion XTransform::PreRotation() const { return XQuaternion(channels(Node::PreRotation)); }
XQuaternion XTransform::PostRotation() const { return XQuaternion(channels(Node::PostRotation)); }

XVector3 XTransform::SubtractPreTranslation(XVector3 const& translation) const {
    return XVector3().Subtract(translation, PreTranslation());
}

XQuaternion XTransform::SubtractPrePostRotation(XQuaternion const& combined) const {
    XMatrix result = XMatrix(PostRotation()).Invert();
    result.Multiply(XMatrix().RotateByQuaternion(combined));
    result.Multiply(XMatrix(PreRotation()).Invert());
    return result.RotationQuaternion();
}

XMatrix XTransform::ConvertToLocalSpace(XMatrix const& world) const {
    return XMatrix::MatrixTransformToLocalSpace(world, ParentWorldMatrix().Matrix());
}

XMatrix XTransform::ConvertToWorldSpace(XMatrix const& local) const {
    return XMatrix::MatrixTransformToWorldSpace(local, ParentWorldMatrix().Matrix());
}

}  // namespace Tavo
