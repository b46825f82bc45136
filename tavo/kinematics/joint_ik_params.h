// XJointIKParams: what a solver of inverse kinematics knows of one joint beside its place. A child object of the joint.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XJointIKParams : public XTyped<XJointIKParams, XObject, sg::JointIKParamsNode> {
public:
    static constexpr XWord TypeID = L"JointIKParams";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Parameters, 8)  // a compound; its children are numbered as sg::IKSolverNode::JointChild tells
};
using XJointIKParamsDef = XTypedDef<XJointIKParams>;

}  // namespace Tavo
