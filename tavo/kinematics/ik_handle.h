// XIKHandle: what a user drags to pose a chain: the target of one end effector of a solver.
//
// The graph has no cycles, so that a handle that is free does not move along with its transform from frame to frame; it
// goes to it when it begins to matter: when it is pinned, and when it turns primary.
#pragma once
#include "tavo/kinematics/ik_solver.h"
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XIKHandle : public XTyped<XIKHandle, XTransform, sg::IKHandleNode> {
public:
    static constexpr XWord TypeID = L"IKHandle", DefaultName = L"ikHandle", DefaultSuffix = L"_IK";
    static constexpr XColour DefaultColour{1, 0, 0.4f, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(IKSolverReference, 51)
    TAVO_ATTRIBUTE(IKRootReference, 52)
    TAVO_ATTRIBUTE(IKEffectorReference, 53)
    TAVO_ATTRIBUTE(IKRootWorldMatrix, 54)         // input
    TAVO_ATTRIBUTE(IKEndEffectorWorldMatrix, 55)  // input
    TAVO_ATTRIBUTE(IKHandleEnabled, 56)
    TAVO_ATTRIBUTE(SolverParameters, 57)  // 0 mode, 1 position weight, 2 orientation weight, 3 depth, 4 enabled
    TAVO_ATTRIBUTE(IsPrimary, 58)         // its effector was chosen, and does not only lie on the way to the root

    enum Mode { PositionAndOrientation = 0, Position = 1, Secondary = 2 };  // child 0 of SolverParameters

    XIKSolver Solver() const { return XIKSolver(IKSolverReference().ObjectRef()); }
    XTransform RootJoint() const { return XTransform(IKRootReference().ObjectRef()); }
    XTransform EndEffectorTransform() const { return XTransform(IKEffectorReference().ObjectRef()); }
    // A secondary handle lets its transform go until it is pinned: then it holds it at the place that the transform has
    // at that time. Nothing happens without a pin.
    bool IsPinned() const;
    XIKHandle& SetPinned(bool pinned);
    void onInitialize() override;

private:
    sg::PinNode* pin() const;  // null without one
};
using XIKHandleDef = XTypedDef<XIKHandle>;

}  // namespace Tavo
