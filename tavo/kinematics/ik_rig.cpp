#include "tavo/kinematics/ik_rig.h"
#include "tavo/kinematics/joint_ik_params.h"
#include "tavo/kinematics/shape.h"
#include "tavo/objects/scene.h"
#include <algorithm>

namespace Tavo {
namespace {

using Pin = sg::PinNode;
using Copy = sg::CopyMatrixNode;
using Solver = sg::IKSolverNode;
enum TargetPart : int { TargetMatrix = 0, TargetWeight = 2 };

// What copies matrices into elements that are about to go: without them it has no purpose.
void deleteCopies(XIKSolver const& solver) {
    Qelutils::Vector<XObject> children;
    solver.ChildObjects(children);
    for (XObject& child : children)
        if (child.getNode()->isOfType(Copy::Def)) child.DisconnectInputAttributes().Delete();
}

void eraseElements(XAttribute array, std::vector<bool> const& erased) {
    for (int i = array.ArraySize() - 1; i >= 0; --i)
        if (std::size_t(i) < erased.size() && erased[std::size_t(i)]) array.Delete(i);
}

}  // namespace

XIKRig::XIKRig(XIKSolver const& solver) : _solver(solver), _scene(XSceneObject(XObject(solver)).Scene()) {}

void XIKRig::build(Objects const& roots, Objects const& effectors) {
    reset();
    XObject const oldRoot = _solver.RootJoints().ObjectRef();
    dropDeleted();
    addRoots(roots);
    if (_roots.empty()) return;
    for (XObject const& effector : effectors)
        if (XTransform const chosen(effector); chosen.IsValid()) addEffector(chosen);
    if (root() != oldRoot) moveHandles();
    for (int i = _solver.IKHandleReferences().ArraySize(); i < _effectors.size(); ++i) createHandle(i);
    setReferences(_solver.EndEffectorTransforms(), _effectors.objects());
    listJoints();
    readJoints();
    driveJoints();
    _solver.Initialise();
    _solver.AllowCompute().SetBoolean(true);
}

// The pose of now is asked for before the solver stops.
void XIKRig::reset() {
    if (_solver.OutputGeometry().ArraySize() > 0) _solver.OutputGeometry().Attribute(0).Matrix();
    _solver.SetName(XIKSolver::DefaultName);
    _solver.AllowCompute().SetBoolean(false);
    _solver.ContinuousMode().SetBoolean(false);
    for (XAttribute const& array : {_solver.JointIKParams(), _solver.OutputGeometry(), _solver.InputGeometry()})
        clearConnected(array);
    for (XAttribute array :
         {_solver.JointHierarchy(), _solver.EndEffectorIndexList(), _solver.RootIndexList(), _solver.BindPoses()})
        array.Clear();
    deleteCopies(_solver);
    deleteAssociated(_solver.AssociatedObjects());
}

// What was deleted since the last time takes no part: roots, and effectors of which the transform or the handle is
// gone.
void XIKRig::dropDeleted() {
    _solver.RootJoints().ObjectRefs(_roots);
    std::erase_if(_roots, [](XObject const& object) { return !object.IsValid(); });
    Objects effectors;
    _solver.EndEffectorTransforms().ObjectRefs(effectors);
    std::vector<bool> gone;
    for (int i = 0; i < int(effectors.size()); ++i) {
        bool const isWhole = effectors[std::size_t(i)].IsValid() && handle(i).IsValid();
        gone.push_back(!isWhole);
        if (!isWhole) continue;
        _effectors.add(effectors[std::size_t(i)]);
        _primary.push_back(handle(i).IsPrimary().Boolean());
    }
    for (XAttribute const& array : {_solver.IKHandleReferences(), _solver.InputTargets(), _solver.IKHandleParams()})
        eraseElements(array, gone);
}

// ---- roots and effectors ----

void XIKRig::addRoots(Objects const& roots) {
    for (XObject const& added : roots)
        if (added.IsValid() && std::find(_roots.begin(), _roots.end(), added) == _roots.end()) _roots.push_back(added);
    if (!_roots.empty())
        for (XTransform up = root().ParentTransform(); up.IsValid(); up = up.ParentTransform())
            if (auto const it = std::find(_roots.begin() + 1, _roots.end(), up); it != _roots.end())
                std::swap(*it, _roots.front());
    setReferences(_solver.RootJoints(), _roots);
}

// Every transform from the effector to the root becomes one too, with a handle of its own that is secondary.
void XIKRig::addEffector(XTransform const& chosen) {
    if (chosen != root() && !root().IsParentOf(chosen)) return;
    for (XTransform t = chosen; t.IsValid(); t = t.ParentTransform()) {
        if (int const known = _effectors.indexOf(t); known >= 0) {
            if (t == chosen) makePrimary(known);
            return;
        }
        _effectors.add(t);
        _primary.push_back(t == chosen);
        if (t == root()) return;
    }
}

// One that was listed just now has no handle yet.
void XIKRig::makePrimary(int effector) {
    if (_primary[std::size_t(effector)]) return;
    _primary[std::size_t(effector)] = true;
    XIKHandle promoted = handle(effector);
    if (!promoted.IsValid()) return;
    if (!promoted.IsPinned()) promoted.SetWorldMatrix(promoted.EndEffectorTransform().WorldMatrix().Matrix());
    promoted.IsPrimary().SetBoolean(true);
    promoted.SolverParameters().Attribute(Solver::Mode).SetEnumeration(XIKHandle::PositionAndOrientation);
    XPrimitive(promoted.FindChildObject(XPrimitive::TypeID, SupportsObjectType)).Shape().SetEnumeration(0);
}

// ---- handles ----

void XIKRig::moveHandles() {
    for (int i = 0; i < _solver.IKHandleReferences().ArraySize(); ++i) {
        XIKHandle moved = handle(i);
        moved.SetParent(root().Parent());
        moved.IKRootWorldMatrix().DisconnectInput().ConnectInputTo(root().WorldMatrix());
        moved.IKRootReference().SetObjectRef(root());
    }
}

void XIKRig::createHandle(int effector) {
    XTransform const t(_effectors[effector]);
    XIKHandle made(_scene.CreateObject(XIKHandle::TypeID));
    made.SetParent(root().Parent());
    made.SetName(t.Name() + XIKHandle::DefaultSuffix);
    made.SetVisible(true).SetColour(XIKHandle::DefaultColour);
    made.IsPrimary().SetBoolean(_primary[std::size_t(effector)]);
    if (!_primary[std::size_t(effector)])
        made.SolverParameters().Attribute(Solver::Mode).SetEnumeration(XIKHandle::Secondary);
    connectHandle(made, t);
    made.SetWorldMatrix(t.WorldMatrix().Matrix());
    _solver.IKHandleReferences().AddObjectRef(made);
    createShape(made);
}

// Only the first handle follows the solver's switch from now on; the others take its value as it stands.
void XIKRig::connectHandle(XIKHandle const& made, XTransform const& effector) {
    made.IKSolverReference().SetObjectRef(_solver);
    made.IKRootReference().SetObjectRef(root());
    made.IKEffectorReference().SetObjectRef(effector);
    made.IKRootWorldMatrix().ConnectInputTo(root().WorldMatrix());
    _solver.InputTargets().AddAttribute().ConnectInputTo(made.LocalMatrix());
    made.IKHandleEnabled().SetBoolean(_solver.IKHandleEnabled().Boolean());
    if (_solver.IKHandleReferences().ArraySize() == 0)
        _solver.IKHandleEnabled().ConnectOutputTo(made.IKHandleEnabled());
    _solver.IKHandleParams().AddAttribute().ConnectInputTo(made.SolverParameters());
    made.IKEndEffectorWorldMatrix().SetMatrix(effector.WorldMatrix().Matrix());
    XObject const pin = createPin(effector);
    XObject const negation = _scene.CreateNode(sg::NotNode::ClassID, made);
    negation.Attribute(sg::NotNode::Output).ConnectOutputTo(made.SolverParameters().Attribute(Solver::Free));
    negation.Attribute(sg::NotNode::Input).ConnectInputTo(pin.Attribute(Pin::Pinned));
}

XObject XIKRig::createPin(XTransform const& effector) {
    XObject const pin = _scene.CreateNode(Pin::ClassID, _solver);
    XAttribute targets = pin.Attribute(Pin::InputMatrices);
    targets.SetArraySize(1);
    targets.Attribute(0).Attribute(TargetMatrix).ConnectInputTo(effector.WorldMatrix());
    targets.Attribute(0).Attribute(TargetWeight).SetFloat(1);
    pin.Attribute(Pin::ParentWorldIn).ConnectInputTo(effector.ParentWorldMatrix());
    XAttribute const pinned[] = {effector.TranslationX(), effector.TranslationY(), effector.TranslationZ(),
                                 effector.RotationX(),    effector.RotationY(),    effector.RotationZ(),
                                 effector.LocalMatrix(),  effector.WorldMatrix()};
    for (int i = 0; i < int(std::size(pinned)); ++i)
        pin.Attribute(Pin::TranslationReference + i).SetAttributeRef(pinned[i]);
    return pin;
}

void XIKRig::createShape(XIKHandle const& made) {
    XPrimitive shape(_scene.CreateObject(XPrimitive::TypeID, made));
    shape.SetName(made.Name());
    shape.SetVisible(true).SetColour(XIKHandle::DefaultColour);
    shape.DisplayStyle().SetEnumeration(3);
    shape.HighlightStyle().SetInteger(1);
    for (XAttribute side : {shape.Width(), shape.Length(), shape.Height()}) side.SetFloat(0.1f);
    shape.Radius().SetFloat(0.025f);
    shape.Shape().SetEnumeration(made.IsPrimary().Boolean() ? 0 : 3);
}

// ---- the flat list of joints ----

// The list of parents is one longer than that of joints: a decision of this system.
void XIKRig::listJoints() {
    _joints.add(root());
    _parents = {-1};
    XAttribute indices = _solver.EndEffectorIndexList();
    indices.SetArraySize(_effectors.size());
    for (int i = 0; i < _effectors.size(); ++i) indices.SetInteger(listChain(XTransform(_effectors[i])), i);
    _parents.push_back(-1);
    _solver.JointHierarchy().SetInteger(Qelutils::Vector<int>(_parents.begin(), _parents.end()));
    XObjectList const roots(_roots);
    for (int j = 0; j < _joints.size(); ++j)
        if (roots.indexOf(_joints[j]) >= 0) _solver.RootIndexList().AddInteger(j);
}

// From the effector upwards, until one is met that is listed.
int XIKRig::listChain(XTransform const& effector) {
    int first = -1, previous = -1;
    for (XTransform t = effector; t.IsValid(); t = t.ParentTransform()) {
        bool const isNew = _joints.add(t);
        int const number = _joints.indexOf(t);
        if (isNew) _parents.push_back(-1);
        if (previous >= 0) _parents[std::size_t(previous)] = number;
        if (first < 0) first = number;
        if (!isNew) break;
        previous = number;
    }
    return first;
}

// ---- geometry and parameters ----

void XIKRig::readJoints() {
    for (XAttribute array : {_solver.OutputGeometry(), _solver.InputGeometry(), _solver.JointIKParams()})
        array.SetArraySize(_joints.size());
    for (int j = 0; j < _joints.size(); ++j) {
        XTransform const joint(_joints[j]);
        XAttribute const input = _solver.InputGeometry().Attribute(j);
        XAttribute(input).SetMatrix(joint.LocalMatrix().Matrix());
        XObject const copy = _scene.CreateNode(Copy::ClassID, _solver);
        copy.Attribute(Copy::Input).ConnectInputTo(joint.LocalMatrix());
        copy.Attribute(Copy::OutputReference).SetAttributeRef(input);
    }
}

// Only the topmost root is moved; all others turn.
void XIKRig::driveJoints() {
    for (int j = 0; j < _joints.size(); ++j) {
        XJoint const joint(_joints[j]);
        if (!joint.IsValid()) {
            followTransform(j);
            continue;
        }
        XAttribute const output = _solver.OutputGeometry().Attribute(j);
        XAttribute(output).SetMatrix(joint.LocalMatrix().Matrix());
        clearJointAnimation(joint, j > 0);
        driveJoint(joint, output, j == 0, _solver.AssociatedObjects());
        feedParameters(j);
    }
}

// One that is no joint keeps its animation. Nothing here drives it, so that its matrix may flow in all the time.
void XIKRig::followTransform(int transform) {
    _solver.JointIKParams().Attribute(transform).Attribute(Solver::IsJoint).SetBoolean(false);
    feed(_solver.InputGeometry().Attribute(transform), XTransform(_joints[transform]).LocalMatrix());
}

void XIKRig::feedParameters(int joint) {
    XObject parameters = _joints[joint].FindChildObject(XJointIKParams::TypeID, IsObjectType);
    if (!parameters.IsValid()) parameters = _scene.CreateObject(XJointIKParams::TypeID, _joints[joint]);
    XAttribute const compound = XJointIKParams(parameters).Parameters();
    feedLimit(compound, Solver::LimitType, XJoint(_joints[joint]));
    feed(_solver.JointIKParams().Attribute(joint), compound);
}

}  // namespace Tavo
