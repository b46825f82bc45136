// What retargeting does with the selected objects.
#include "tavo/kinematics/retargeting.h"
#include "tavo/app/application.h"
#include "tavo/interaction/selection.h"
#include "tavo/kinematics/retarget_rig.h"
#include "tavo/objects/scene.h"

namespace Tavo {
namespace {

using Objects = XRetargeting::Objects;
using Params = XJointRetargetParams;

Params firstParametersOf(XObject const& joint) { return Params(joint.FindChildObject(Params::TypeID, IsObjectType)); }

Params lastParametersOf(XObject const& joint) {
    Objects all;
    joint.ChildObjects(all, Params::TypeID);
    return all.empty() ? Params() : Params(all.back());
}

// Without what rigs hang below a joint: a joint that took part in one has no child for that.
Objects childTransforms(XTransform const& transform) {
    Objects children;
    transform.ChildTransforms(children);
    std::erase_if(children, [](XObject const& child) { return Params(child).IsValid(); });
    return children;
}

void appendBelow(Objects& joints, XTransform const& root) {
    for (XObject const& child : childTransforms(root))
        if (XJoint const joint(child); joint.IsValid()) {
            joints.push_back(joint);
            appendBelow(joints, joint);
        }
}

}  // namespace

XRetargeting& XRetargeting::Instance() {
    static XRetargeting instance;
    return instance;
}

XScene& XRetargeting::Scene() const { return XApplication::Instance().ActiveScene(); }

// ---- what is selected ----

Objects XRetargeting::selectedTransforms() const {
    Objects transforms;
    Scene().Selection().Objects(transforms);
    std::erase_if(transforms, [](XObject const& object) { return !XTransform(object).IsValid(); });
    return transforms;
}

XTransform XRetargeting::firstSelectedTransform() const {
    Objects const transforms = selectedTransforms();
    return transforms.empty() ? XTransform() : XTransform(transforms.front());
}

void XRetargeting::getSelectedCharacters(Objects& source, Objects& target) const {
    source.clear();
    target.clear();
    Objects const roots = selectedTransforms();
    if (roots.size() < 2) return;
    getCharacterJoints(source, XTransform(roots[0]));
    getCharacterJoints(target, XTransform(roots[1]));
}

// The joints below the root, parents before children; the root itself only when it is a joint without children.
void XRetargeting::getCharacterJoints(Objects& joints, XTransform const& root) {
    if (XJoint(root).IsValid() && childTransforms(root).empty()) joints.push_back(root);
    appendBelow(joints, root);
}

// ---- rigs ----

void XRetargeting::Attach() {
    _results.clear();
    Objects source, target;
    getSelectedCharacters(source, target);
    detach(source);
    attach(source, target);
}

void XRetargeting::attach(Objects const& source, Objects const& target) {
    if (source.empty() || target.empty()) return;
    XRetarget const node(Scene().CreateObject(XRetarget::TypeID));
    XRetargetRig(node).build(source, target);
    _results.push_back(node);
}

void XRetargeting::Detach() {
    _results.clear();
    Objects joints;
    getCharacterJoints(joints, firstSelectedTransform());
    detach(joints);
}

void XRetargeting::detach(Objects const& joints) {
    for (XObject const& joint : joints) {
        Objects readers;
        XTransform(joint).LocalMatrix().OutputObjects(readers);
        for (XObject& reader : readers)
            if (reader.IsValid() && reader.IsType(XRetarget::TypeID)) reader.Delete();
    }
}

// ---- origins ----

void XRetargeting::SetJointsToOrigin() {
    _results.clear();
    Objects joints;
    getCharacterJoints(joints, firstSelectedTransform());
    for (XObject const& joint : joints)
        if (Params const parameters = lastParametersOf(joint); parameters.IsValid())
            XTransform(joint).SetLocalMatrix(parameters.Parameters().Attribute(Params::OriginPart).Matrix());
}

void XRetargeting::SetJointOrigins() {
    _results.clear();
    Objects joints;
    getCharacterJoints(joints, firstSelectedTransform());
    for (XObject const& joint : joints)
        if (Params const parameters = lastParametersOf(joint); parameters.IsValid())
            parameters.Parameters().Attribute(Params::OriginPart).SetMatrix(XTransform(joint).LocalMatrix().Matrix());
}

// ---- referents ----

void XRetargeting::setJointReferent(XTransform const& joint, XTransform const& referent) {
    if (referent != joint && !referent.IsParentOf(joint)) return;
    if (Params const parameters = firstParametersOf(joint); parameters.IsValid())
        parameters.Parameters().Attribute(Params::ReferentPart).SetObjectRef(referent);
}

void XRetargeting::SetJointReferent() {
    _results.clear();
    Objects selected;
    Scene().Selection().Objects(selected);
    if (selected.size() < 2) return;
    XTransform const joint(selected[0]), referent(selected[1]);
    if (joint.IsValid() && referent.IsValid()) setJointReferent(joint, referent);
}

void XRetargeting::SetJointReferentToWorld() {
    _results.clear();
    setJointReferent(firstSelectedTransform(), XTransform());
}

void XRetargeting::ResetJointReferents() {
    _results.clear();
    Objects joints;
    getCharacterJoints(joints, firstSelectedTransform());
    for (XObject const& joint : joints) setJointReferent(XTransform(joint), XTransform(joint));
}

}  // namespace Tavo
