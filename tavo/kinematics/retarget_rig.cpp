#include "tavo/kinematics/retarget_rig.h"
#include "tavo/objects/scene.h"

namespace Tavo {
namespace {

using Params = XJointRetargetParams;

// The pose that a joint has when it first takes part is its pose of reference.
Params createParameters(XTransform const& joint) {
    Params made(joint.Scene().CreateObject(Params::TypeID, joint));
    made.SetName(joint.Name() + Params::DefaultSuffix);
    made.Parameters().Attribute(Params::ReferentPart).SetObjectRef(joint);
    made.Parameters().Attribute(Params::OriginPart).SetMatrix(joint.LocalMatrix().Matrix());
    made.SetLocalMatrix(XMatrix());
    return made;
}

Params parametersOf(XTransform const& joint) {
    Params const there(joint.FindChildObject(Params::TypeID, IsObjectType));
    return there.IsValid() ? there : createParameters(joint);
}

void setHierarchy(XAttribute parents, XObjectList const& joints) {
    for (int j = 0; j < joints.size(); ++j) parents.SetInteger(joints.indexOf(XJoint(joints[j]).ParentJoint()), j);
}

void setSizes(int count, std::initializer_list<XAttribute> arrays) {
    for (XAttribute array : arrays) array.SetArraySize(count);
}

}  // namespace

void XRetargetRig::build(Objects const& source, Objects const& target) {
    XObjectList const sources(source), targets(target);
    reset();
    setSizes(sources.size(),
             {_node.SourceJoints(), _node.InputSourceGeometry(), _node.SourceHierarchy(), _node.SourceJointParams()});
    setSizes(targets.size(),
             {_node.TargetJoints(), _node.OutputTargetGeometry(), _node.TargetHierarchy(), _node.TargetJointParams()});
    addSource(sources);
    addTarget(targets);
    _node.Initialise();
    _node.AllowCompute().SetBoolean(true);
}

void XRetargetRig::reset() {
    _node.SetName(XRetarget::DefaultName);
    _node.AllowCompute().SetBoolean(false);
    for (XAttribute const& array : {_node.TargetJointParams(), _node.SourceJointParams(), _node.OutputTargetGeometry(),
                                    _node.InputSourceGeometry()})
        clearConnected(array);
    setSizes(0, {_node.SourceJoints(), _node.TargetJoints(), _node.SourceHierarchy(), _node.TargetHierarchy()});
    deleteAssociated(_node.AssociatedObjects());
}

void XRetargetRig::addSource(XObjectList const& joints) {
    for (int j = 0; j < joints.size(); ++j) {
        XTransform const joint(joints[j]);
        _node.SourceJoints().SetObjectRef(joint, j);
        feed(_node.InputSourceGeometry().Attribute(j), joint.LocalMatrix());
        addParameters(joints, j, _node.SourceJointParams());
    }
    setHierarchy(_node.SourceHierarchy(), joints);
}

void XRetargetRig::addTarget(XObjectList const& joints) {
    for (int j = 0; j < joints.size(); ++j) {
        XTransform const joint(joints[j]);
        XAttribute output = _node.OutputTargetGeometry().Attribute(j);
        _node.TargetJoints().SetObjectRef(joint, j);
        output.SetMatrix(joint.LocalMatrix().Matrix());
        clearJointAnimation(joint, true);
        driveJoint(joint, output, true, _node.AssociatedObjects());
        addParameters(joints, j, _node.TargetJointParams());
    }
    setHierarchy(_node.TargetHierarchy(), joints);
}

void XRetargetRig::addParameters(XObjectList const& joints, int j, XAttribute const& all) {
    XJoint const joint(joints[j]);
    XAttribute const compound = parametersOf(joint).Parameters();
    compound.Attribute(Params::JointNamePart).SetString(joint.Name());
    compound.Attribute(Params::HasParentPart).SetBoolean(j != 0);
    feedLimit(compound, Params::LimitPart, joint);
    feed(all.Attribute(j), compound);
}

}  // namespace Tavo
