#include "tavo/kinematics/joint.h"

namespace Tavo {

int XJoint::ChildJointCount() const {
    Qelutils::Vector<XObject> joints;
    ChildJoints(joints);
    return int(joints.size());
}

bool XJoint::IsTerminatingJoint() const { return ChildJointCount() == 0; }

void XJoint::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultBoneColour);
    BoneRadius().SetFloat(DefaultBoneRadius);
    LocatorRadius().SetFloat(DefaultLocatorRadius);
    BoneStyle().SetEnumeration(DefaultBoneDisplayStyle);
    AxesStyle().SetEnumeration(DefaultAxesDisplayStyle);
    LocatorStyle().SetEnumeration(DefaultLocatorDisplayStyle);
}

}  // namespace Tavo
