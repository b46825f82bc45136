// XInverseKinematics: builds and maintains the rigs of skeletons, on what is selected in the active scene. A rig is a
// solver (XIKSolver) with a flat list of joints; a handle (XIKHandle) for each end effector, whose place the solver
// reads; conversions that lead what it solves to the joints; and parameters below each joint. All of it are objects,
// attributes and connections, so that a rig is saved with its scene and undone with it.
//
// Nothing here opens a change block or reports: callers are commands, and a wrong selection does nothing. Main thread.
//
// While a rig is built its AllowCompute is false. What is built anew loses its bind poses; handles stay.
#pragma once
#include "tavo/kinematics/ik_handle.h"
#include "tavo/kinematics/ik_solver.h"
#include "tavo/kinematics/pole_vector.h"

namespace Tavo {

class XInverseKinematics {
public:
    enum BindPoseMode : int { AddBindPose = 0, RemoveLastBindPose = 1, RemoveAllBindPoses = 2 };
    using Objects = Qelutils::Vector<XObject>;

    static XInverseKinematics& Instance();

    XScene& Scene() const;                                // the active one
    void Results(Objects& out) const { out = _results; }  // of the last operation: the solver that CreateRig made

    // ---- on the selection; defined on the interaction floor ----
    // From the highest selected transforms as roots and the other selected ones as effectors. Selects the last handle.
    void CreateRig();
    // Of the selected rig: the rig of the first selected solver, or else of the first selected handle or what hangs
    // below one.
    void SetBindPose();  // adds the pose of now
    void ClearLastBindPose();
    void ClearAllBindPoses();
    void SetRootJoints();       // the selected transforms become roots, beside those that are
    void SetEndEffectors();     // the same for effectors
    void SetPoleVectorPairs();  // gives the selected joint a control pole and a reference pole

private:
    XIKHandle getSelectedIKHandle() const;
    XIKSolver getSelectedIKSolver() const;
    Objects selectedTransforms() const;  // those that are no handles
    void identifyIKJoints(Objects& roots, Objects& effectors) const;
    void createIKRig(Objects const& roots, Objects const& effectors);
    void rebuild(Objects const& roots, Objects const& effectors);  // the selected rig, with more of both
    void initialiseIKSolver(XIKSolver const& solver, Objects const& roots, Objects const& effectors);
    void selectLastHandle(XIKSolver const& solver);
    void setIKBindPose(int mode);
    XPoleVector createPole(Objects const& selected);

    Objects _results;
};

}  // namespace Tavo
