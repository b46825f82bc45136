// How a joint gets a limit, and loses it.
#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/joint_limit.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/kinematics/wiring.h"
#include "tavo/objects/database.h"

namespace Tavo {

using Node = sg::TransformNode;

XJointLimit XJoint::JointLimit() const { return XJointLimit(JointLimitReference().ObjectRef()); }

bool XJoint::HasJointLimit() const { return JointLimit().IsValid(); }

XJointLimit XJoint::CreateJointLimit() {
    if (!IsValid() || HasJointLimit() || !IsType(TypeID)) return {};
    XJointLimit limit(Database().CreateObject(XJointLimit::TypeID));
    if (!limit.IsValid()) return {};
    limit.JointReference().SetObjectRef(*this);
    limit.followMatrices(*this);
    limit.SetParent(Parent());
    limit.SetName(Name() + XJointLimit::DefaultSuffix);
    JointLimitReference().SetObjectRef(limit);
    limit.followTranslation(*this);
    limit.SetWorldMatrix(WorldMatrix().Matrix(), UpdateAll);
    limit.AlignJointLimit(XAxis, AlignToFirstChild);
    return limit;
}

// A limit that is this joint's already is left alone: it is not its own predecessor.
XJointLimit& XJoint::AssignJointLimit(XJointLimit& limit) {
    if (!IsValid() || (limit.IsValid() && limit == JointLimit())) return limit;
    DeleteJointLimit();
    if (!limit.IsValid()) return limit;
    XMatrix const frame = limit.MovingFrame();
    limit.Joint().ClearJointLimit();
    limit.JointReference().SetObjectRef(*this);
    JointLimitReference().SetObjectRef(limit);
    limit.followMatrices(*this);
    limit.SetParent(Parent());
    limit.SetTranslation(TranslationX().Float(), TranslationY().Float(), TranslationZ().Float());
    limit.followTranslation(*this);
    limit.setMovingOffset(XMatrix::MatrixTransformToLocalSpace(frame, WorldMatrix().Matrix()).RotationEulerAngles());
    return limit;
}

XJoint& XJoint::ClearJointLimit() {
    JointLimitReference().ClearObjectRef();
    return *this;
}

XJoint& XJoint::DeleteJointLimit() {
    XJointLimit limit = JointLimit();
    ClearJointLimit();
    if (limit.IsValid()) limit.Delete();
    return *this;
}

// ---- the connections ----

void XJointLimit::followMatrices(XJoint const& joint) {
    JointWorldMatrix().ConnectInputTo(joint.WorldMatrix());
    JointLocalMatrix().ConnectInputTo(joint.LocalMatrix());
}

// What a joint's place of rest adds to its translation, the limit's adds as well, so that both origins are one. A joint
// whose pose is a matrix has no translation of its own: it is split from the matrix.
void XJointLimit::followTranslation(XJoint const& joint) {
    XMatrixConversion former(TranslationX().InputObject());
    if (joint.TransformDataSource().Enumeration() == LocalMatrixSource) {
        XMatrixConversion conversion(Database().CreateObject(XMatrixConversion::TypeID));
        conversion.InputMatrix().ConnectInputTo(joint.LocalMatrix());
        SetPreTranslation(XVector3());
        feedThree(*this, Node::Translation, conversion, sg::MatrixConversionNode::Translation);
        conversion.SetParent(*this);
    } else {
        SetPreTranslation(joint.PreTranslation());
        feedThree(*this, Node::Translation, joint, Node::Translation);
    }
    if (former.IsValid()) former.Delete();
}

XJointLimit& XJointLimit::Repair() {
    XJoint const joint = Joint();
    if (!joint.IsValid()) return *this;
    followMatrices(joint);
    if (TransformDataSource().Enumeration() != LocalMatrixSource)
        feedThree(*this, Node::Translation, joint, Node::Translation);
    return *this;
}

}  // namespace Tavo
