#include "tavo/commands/constraint_commands.h"
#include "tavo/commands/selected.h"
#include "tavo/kinematics/aim_constraint.h"
#include "tavo/kinematics/kinematics_constraint.h"
#include "tavo/kinematics/shape.h"
#include "tavo/kinematics/wiring.h"
#include "tavo/physics/physics_constraint.h"
#include "tavo/physics/physics_joint.h"

namespace Tavo {
namespace {

using Node = sg::TransformNode;
using Transforms = Qelutils::Vector<XTransform>;

Transforms selectedTransforms(XScene& scene) {
    Transforms transforms;
    forEachSelected<XTransform>(scene, [&](XTransform const& transform) { transforms.push_back(transform); });
    return transforms;
}

// The object and all transforms below it.
Transforms hierarchyOf(XObject const& top) {
    Transforms transforms{XTransform(top)};
    std::vector<db::Node*> nodes;
    if (top.IsValid()) top.getNode()->getDescendents(nodes);
    for (db::Node* node : nodes)
        if (node->isOfType(Node::Def)) transforms.push_back(XTransform(node));
    return transforms;
}

// All of that name in the other hierarchies but the transform itself, which also stands there where they overlap.
Transforms namesakesOf(XTransform const& transform, std::vector<Transforms> const& hierarchies) {
    Transforms found;
    for (std::size_t i = 1; i < hierarchies.size(); ++i)
        for (XTransform const& other : hierarchies[i])
            if (other.IsValid() && other != transform && other.Name() == transform.Name()) found.push_back(other);
    return found;
}

// A physics joint means its first constraint, any other transform, or that of a shape, the constraint that it feeds.
XPhysicsConstraint constraintOf(XObject const& object) {
    if (XPhysicsJoint const joint(object); joint.IsValid()) return joint.PhysicsConstraint();
    if (XPhysicsConstraint const constraint(object); constraint.IsValid()) return constraint;
    XTransform const transform = XShape(object).IsValid() ? XShape(object).Transform() : XTransform(object);
    return XPhysicsConstraint(transform.WorldMatrix().OutputObject(0));
}

}  // namespace

void XSetConstraintTarget::onRun() {
    Qelutils::Vector<XObject> selected = selectedObjects(Scene());
    if (selected.size() < 2) return;
    XTransform const target(selected.back());
    selected.pop_back();
    if (!target.IsValid()) return;
    for (XObject const& object : selected) constraintOf(object).ConnectTarget(target);
}

void XClearConstraintTarget::onRun() {
    for (XObject const& object : selectedObjects(Scene())) constraintOf(object).DisconnectTarget();
}

void XCreateKinematicsConstraint::onRun() {
    Qelutils::Vector<XObject> const selected = selectedObjects(Scene());
    XTransform const transform(selected.empty() ? XObject() : selected.front());
    if (!transform.IsValid()) return;
    Transforms targets = selectedTransforms(Scene());
    targets.erase(targets.begin());
    if (targets.empty()) return;
    XKinematicsConstraint constraint(Scene().CreateObject(XKinematicsConstraint::TypeID));
    constraint.Constrain(transform, targets, LockTranslation().Boolean(), LockRotation().Boolean());
    addResult(constraint);
}

void XCreateAimConstraint::onRun() {
    Transforms const chosen = selectedTransforms(Scene());
    if (chosen.size() != 3) return;
    XAimConstraint const constraint(Scene().CreateObject(XAimConstraint::TypeID));
    constraint.ParentWorldIn().ConnectInputTo(chosen[0].ParentWorldMatrix());
    constraint.WorldIn().ConnectInputTo(chosen[1].WorldMatrix());
    constraint.UpVectorIn().ConnectInputTo(chosen[2].WorldMatrix());
    feedThree(constraint, sg::AimConstraintNode::LocalTranslationIn, chosen[0], Node::Translation);
    feedThree(chosen[0], Node::Rotation, constraint, sg::AimConstraintNode::LocalEulerOut);
    addResult(constraint);
}

void XCreateSkeletalConstraint::onRun() {
    std::vector<Transforms> hierarchies;
    for (std::wstring const& path : Scene().Selection().Paths())
        hierarchies.push_back(hierarchyOf(Scene().Object(path)));
    if (hierarchies.empty()) return;
    for (XTransform const& transform : hierarchies.front()) {
        Transforms const targets = namesakesOf(transform, hierarchies);
        if (targets.empty() || !transform.IsValid()) continue;
        XKinematicsConstraint constraint(Scene().CreateObject(XKinematicsConstraint::TypeID));
        constraint.ParentWorldIn().ConnectInputTo(transform.ParentWorldMatrix());
        feedThree(transform, Node::Translation, constraint, sg::KinematicsConstraintNode::LocalTranslationOut);
        feedThree(transform, Node::Rotation, constraint, sg::KinematicsConstraintNode::LocalRotationOut);
        for (XTransform const& target : targets) constraint.AddTarget(target);
        addResult(constraint);
    }
}

}  // namespace Tavo
