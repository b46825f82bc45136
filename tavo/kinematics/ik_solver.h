// XIKSolver: the rig of a skeleton's inverse kinematics. Its node solves; here are the joints, effectors, handles and
// poses that the node reads.
//
// The solver sees the skeleton as a flat list of joints, the topmost root first. Arrays that hold one element for each
// joint, or for each handle, are in the order of that list, or of IKHandleReferences.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XIKSolver : public XTyped<XIKSolver, XObject, sg::IKSolverNode> {
public:
    static constexpr XWord TypeID = L"IKSolver", DefaultName = L"IKSolver";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(AllowCompute, 1)           // false while the rig is rebuilt
    TAVO_ATTRIBUTE(IKHandleReferences, 8)     // one for each end effector, in the same order
    TAVO_ATTRIBUTE(EndEffectorTransforms, 9)  // references
    TAVO_ATTRIBUTE(RootJoints, 10)            // references; 0 is the topmost
    TAVO_ATTRIBUTE(JointHierarchy, 11)        // the number of each joint's parent, -1 for the topmost root; and one -1
    TAVO_ATTRIBUTE(EndEffectorIndexList, 12)  // the number of each end effector's joint
    TAVO_ATTRIBUTE(RootIndexList, 13)         // the numbers of the roots
    TAVO_ATTRIBUTE(InputTargets, 14)          // a matrix for each handle
    TAVO_ATTRIBUTE(BindPoses, 15)             // arrays of matrices, one for each joint
    TAVO_ATTRIBUTE(InputGeometry, 16)         // the local matrix of each joint
    TAVO_ATTRIBUTE(OutputGeometry, 17)        // the solved local matrix of each joint
    TAVO_ATTRIBUTE(IKHandleEnabled, 18)       // all handles of the rig
    TAVO_ATTRIBUTE(IKSolverEnabled, 19)
    TAVO_ATTRIBUTE(DrawDebugLines, 20)
    TAVO_ATTRIBUTE(RootLocked, 21)
    TAVO_ATTRIBUTE(LockRootX, 22)
    TAVO_ATTRIBUTE(LockRootY, 23)
    TAVO_ATTRIBUTE(LockRootZ, 24)
    TAVO_ATTRIBUTE(ContinuousMode, 25)
    TAVO_ATTRIBUTE(MaxIterations, 26)
    TAVO_ATTRIBUTE(MoreBias, 27)
    TAVO_ATTRIBUTE(ReverseBias, 28)
    TAVO_ATTRIBUTE(PositionAccuracy, 29)     // metres
    TAVO_ATTRIBUTE(OrientationAccuracy, 30)  // radians
    TAVO_ATTRIBUTE(DisableAllLimits, 31)
    TAVO_ATTRIBUTE(IKHandleParams, 32)     // XIKHandle::SolverParameters of each handle
    TAVO_ATTRIBUTE(JointIKParams, 33)      // the parameters of each joint
    TAVO_ATTRIBUTE(AssociatedObjects, 34)  // references: helpers that the rig owns

    void Initialise();  // reads the arrays anew
    bool supportsDeletion() const override { return false; }
};
using XIKSolverDef = XTypedDef<XIKSolver>;

}  // namespace Tavo
