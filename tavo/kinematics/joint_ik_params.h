// XJointIKParams: what a solver of inverse kinematics knows of one joint beside its place. A child object of the joint.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XJointIKParams : public XTyped<XJointIKParams, XObject, sg::JointIKParamsNode> {
public:
    static constexpr XWord TypeID = L"JointIKParams";
    // Numbers of children of Parameters. Those of the limit follow one another as XLimitParameter tells.
    enum Part : int {
        ActivePart = 0,
        PoleVectorActivePart = 6,
        ControlPolePart = 7,
        ReferencePolePart = 8,
        LimitPart = 9
    };
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Parameters, 8)
};
using XJointIKParamsDef = XTypedDef<XJointIKParams>;

}  // namespace Tavo
