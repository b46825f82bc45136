#include "tavo/commands/constraint_commands.h"
#include "tavo/commands/selected.h"
#include "tavo/kinematics/aim_constraint.h"
#include "tavo/kinematics/kinematics_constraint.h"
#include "tavo/kinematics/wiring.h"

namespace Tavo {
namespace {

using Node = sg::TransformNode;
using Transforms = Qelutils::Vector<XTransform>;

// The first of three in a row, by number.
constexpr int aimEuler = 11, constraintTranslation = 10, constraintRotation = 13;

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

}  // namespace

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
    feedThree(chosen[0], Node::Rotation, constraint, aimEuler);
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
        feedThree(transform, Node::Translation, constraint, constraintTranslation);
        feedThree(transform, Node::Rotation, constraint, constraintRotation);
        for (XTransform const& target : targets) constraint.AddTarget(target);
        addResult(constraint);
    }
}

}  // namespace Tavo
