#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_character.h"

namespace Tavo {

int XJoint::ChildJointCount() const {
    Qelutils::Vector<XObject> joints;
    ChildJoints(joints);
    return int(joints.size());
}

bool XJoint::IsCharacterRootJoint() const {
    return IsValid() && Character().KinematicsCharacter().CharacterRoot() == *this;
}

bool XJoint::IsTerminatingJoint() const { return !IsCharacterRootJoint() && ChildJointCount() == 0; }

bool XJoint::IsIntermediateJoint() const { return !IsCharacterRootJoint() && !IsTerminatingJoint(); }

void XJoint::onDelete() {
    DeleteJointLimit();
    XTyped::onDelete();
}

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
