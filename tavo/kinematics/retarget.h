// XRetarget: one skeleton follows the motion of another. Its node computes; here are the two lists of joints that it
// reads and writes. XJointRetargetParams: what it knows of one joint.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XRetarget : public XTyped<XRetarget, XObject, sg::RetargetNode> {
public:
    static constexpr XWord TypeID = L"Retarget", DefaultName = L"Retargeter";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(AllowCompute, 1)           // false while the rig is rebuilt
    TAVO_ATTRIBUTE(SourceJoints, 8)           // references; all arrays are in the order of their joints
    TAVO_ATTRIBUTE(TargetJoints, 9)           // references
    TAVO_ATTRIBUTE(InputSourceGeometry, 10)   // the local matrix of each source joint
    TAVO_ATTRIBUTE(OutputTargetGeometry, 11)  // the local matrix that each target joint is to have
    TAVO_ATTRIBUTE(SourceHierarchy, 12)       // the number of each source joint's parent; -1 for none
    TAVO_ATTRIBUTE(TargetHierarchy, 13)       // the number of each target joint's parent; -1 for none
    TAVO_ATTRIBUTE(Enabled, 14)
    TAVO_ATTRIBUTE(DrawDebugLines, 15)
    TAVO_ATTRIBUTE(SourceJointParams, 16)  // XJointRetargetParams::Parameters of each source joint
    TAVO_ATTRIBUTE(TargetJointParams, 17)  // the same of each target joint
    TAVO_ATTRIBUTE(DisableAllLimits, 18)
    TAVO_ATTRIBUTE(AssociatedObjects, 19)  // references: helpers that the rig owns, and that go with it

    TAVO_ATTRIBUTE(MappedSources, 21)  // numbers of joints that are matched as told...
    TAVO_ATTRIBUTE(MappedTargets, 22)  // ...and of those that follow them

    void Initialise();  // reads the arrays anew
    void onDelete() override;
};
using XRetargetDef = XTypedDef<XRetarget>;

// A child object of the joint.
class XJointRetargetParams : public XTyped<XJointRetargetParams, XTransform, sg::JointRetargetParamsNode> {
public:
    static constexpr XWord TypeID = L"JointRetargetParams", DefaultSuffix = L"_retarget";
    // Numbers of children of Parameters. Those of the limit follow one another as XLimitParameter tells.
    enum Part : int {
        JointNamePart = 0,
        ReferentPart = 1,   // the transform in whose frame the joint's motion is measured
        OriginPart = 3,     // the joint's local matrix in the pose of reference
        HasParentPart = 4,  // false for the first joint of a list
        ActivePart = 9,     // false: the joint keeps its origin
        LimitPart = 13,
    };
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Parameters, 51)
};
using XJointRetargetParamsDef = XTypedDef<XJointRetargetParams>;

}  // namespace Tavo
