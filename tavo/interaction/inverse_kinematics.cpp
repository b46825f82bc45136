// What the rigs of inverse kinematics do with the selected objects.
#include "tavo/kinematics/inverse_kinematics.h"
#include "tavo/app/application.h"
#include "tavo/interaction/selection.h"
#include "tavo/kinematics/ik_rig.h"
#include "tavo/kinematics/joint_ik_params.h"
#include "tavo/kinematics/pole_vector.h"
#include "tavo/objects/scene.h"
#include <algorithm>

namespace Tavo {
namespace {

using Objects = XInverseKinematics::Objects;
using Solver = sg::IKSolverNode;

Objects selectedObjects(XScene const& scene) {
    Objects objects;
    return scene.Selection().Objects(objects);
}

void placePole(XPoleVector pole, XMatrix const& world) {
    if (XTransform referent = pole.Referent(); referent.IsValid()) referent.SetWorldMatrix(world);
    pole.SetWorldMatrix(world);
}

// The solver reads poles in the space of the topmost root's parent. A pole that followed what the solver drives would
// depend on itself: it follows that parent instead.
void tieToRig(XPoleVector const& pole, XIKHandle const& handle) {
    XTransform const root = handle.RootJoint();
    pole.SpaceWorldMatrix().ConnectInputTo(root.ParentWorldMatrix());
    XTransform referent = pole.Referent();
    if (root.IsParentOf(referent)) referent.SetParent(root.ParentTransform());
}

// The pose of now becomes the one that the solver begins from. A reference pole rides with its joint from there on, so
// that it begins where its control pole is.
void takePoseOver(XIKSolver const& solver) {
    sg::copyMatrices(*solver.getNode());
    for (int j = 0; j < solver.JointIKParams().ArraySize(); ++j) {
        XAttribute const parameters = solver.JointIKParams().Attribute(j);
        auto const pole = [&](int number) {
            return XPoleVector(parameters.Attribute(number).InputAttribute().InputObject());
        };
        XPoleVector const control = pole(Solver::ControlPole), reference = pole(Solver::ReferencePole);
        if (control.IsValid() && reference.IsValid()) placePole(reference, control.WorldMatrix().Matrix());
    }
}

}  // namespace

XInverseKinematics& XInverseKinematics::Instance() {
    static XInverseKinematics instance;
    return instance;
}

XScene& XInverseKinematics::Scene() const { return XApplication::Instance().ActiveScene(); }

// ---- what is selected ----

XIKHandle XInverseKinematics::getSelectedIKHandle() const {
    for (XObject const& object : selectedObjects(Scene())) {
        if (XIKHandle const handle(object); handle.IsValid()) return handle;
        if (XIKHandle const above(object.Parent()); above.IsValid()) return above;
    }
    return {};
}

XIKSolver XInverseKinematics::getSelectedIKSolver() const {
    for (XObject const& object : selectedObjects(Scene()))
        if (XIKSolver const solver(object); solver.IsValid()) return solver;
    return getSelectedIKHandle().Solver();
}

Objects XInverseKinematics::selectedTransforms() const {
    Objects transforms = selectedObjects(Scene());
    std::erase_if(transforms,
                  [](XObject const& object) { return !XTransform(object).IsValid() || XIKHandle(object).IsValid(); });
    return transforms;
}

void XInverseKinematics::identifyIKJoints(Objects& roots, Objects& effectors) const {
    Objects const selected = selectedTransforms();
    XObjectList found;
    for (XObject const& object : selected) {
        XTransform highest(object);
        for (XTransform up = highest.ParentTransform(); up.IsValid(); up = up.ParentTransform())
            if (up.IsSelected()) highest = up;
        found.add(highest);
    }
    roots = found.objects();
    effectors.clear();
    for (XObject const& object : selected)
        if (found.indexOf(object) < 0) effectors.push_back(object);
}

void XInverseKinematics::selectLastHandle(XIKSolver const& solver) {
    XAttribute const handles = solver.IKHandleReferences();
    Scene().Selection().Select(handles.ObjectRef(handles.ArraySize() - 1));
}

// ---- rigs ----

void XInverseKinematics::CreateRig() {
    _results.clear();
    Objects roots, effectors;
    identifyIKJoints(roots, effectors);
    createIKRig(roots, effectors);
}

void XInverseKinematics::createIKRig(Objects const& roots, Objects const& effectors) {
    if (roots.empty() || effectors.empty()) return;
    XIKSolver const solver(Scene().CreateObject(XIKSolver::TypeID));
    initialiseIKSolver(solver, roots, effectors);
    selectLastHandle(solver);
    setIKBindPose(AddBindPose);
    _results.push_back(solver);
}

void XInverseKinematics::SetRootJoints() {
    _results.clear();
    rebuild(selectedTransforms(), {});
}

void XInverseKinematics::SetEndEffectors() {
    _results.clear();
    rebuild({}, selectedTransforms());
}

void XInverseKinematics::rebuild(Objects const& roots, Objects const& effectors) {
    XIKSolver const solver = getSelectedIKSolver();
    if (!solver.IsValid()) return;
    initialiseIKSolver(solver, roots, effectors);
    selectLastHandle(solver);
    setIKBindPose(AddBindPose);
}

void XInverseKinematics::initialiseIKSolver(XIKSolver const& solver, Objects const& roots, Objects const& effectors) {
    XIKRig(solver).build(roots, effectors);
}

// ---- bind poses ----

void XInverseKinematics::SetBindPose() {
    _results.clear();
    setIKBindPose(AddBindPose);
}

void XInverseKinematics::ClearLastBindPose() {
    _results.clear();
    setIKBindPose(RemoveLastBindPose);
}

void XInverseKinematics::ClearAllBindPoses() {
    _results.clear();
    setIKBindPose(RemoveAllBindPoses);
}

void XInverseKinematics::setIKBindPose(int mode) {
    XIKSolver solver = getSelectedIKSolver();
    if (!solver.IsValid()) return;
    if (mode == AddBindPose) takePoseOver(solver);
    solver.AllowCompute().SetBoolean(false);
    XAttribute poses = solver.BindPoses();
    if (mode == AddBindPose) {
        XAttribute const geometry = solver.InputGeometry();
        XAttribute pose = poses.AddAttribute();
        for (int j = 0; j < geometry.ArraySize(); ++j) pose.AddMatrix(geometry.Attribute(j).Matrix());
    } else if (mode == RemoveLastBindPose)
        poses.Delete(poses.ArraySize() - 1);
    else if (mode == RemoveAllBindPoses)
        poses.Clear();
    solver.Initialise();
    solver.AllowCompute().getAttribute()->asBool()->setValue(true);
}

// ---- pole vectors ----

XPoleVector XInverseKinematics::createPole(Objects const& selected) {
    Scene().Selection().Select(selected);
    return XPoleVector(Scene().RunCommand(L"CreatePoleVector"));
}

void XInverseKinematics::SetPoleVectorPairs() {
    _results.clear();
    XIKHandle const handle = getSelectedIKHandle();
    Objects const transforms = selectedTransforms();
    if (!getSelectedIKSolver().IsValid() || !handle.IsValid() || transforms.empty()) return;
    XTransform const joint(transforms.front());
    XPoleVector const control = createPole({joint, joint.ParentTransform(), handle.EndEffectorTransform()});
    if (!control.IsValid()) return;
    XPoleVector const reference = createPole({joint, handle.ParentTransform()});
    if (!reference.IsValid()) return;
    for (XPoleVector const& pole : {control, reference}) tieToRig(pole, handle);
    placePole(reference, control.WorldMatrix().Matrix());
    Objects parameters;
    joint.ChildObjects(parameters, XJointIKParams::TypeID);
    if (parameters.empty()) return;
    XAttribute const compound = XJointIKParams(parameters.back()).Parameters();
    compound.Attribute(Solver::PoleVectorActive).SetBoolean(true);
    compound.Attribute(Solver::ControlPole).ConnectInputTo(control.PoleVector());
    compound.Attribute(Solver::ReferencePole).ConnectInputTo(reference.PoleVector());
}

}  // namespace Tavo
