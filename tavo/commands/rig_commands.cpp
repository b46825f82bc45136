#include "tavo/commands/rig_commands.h"
#include "tavo/kinematics/inverse_kinematics.h"
#include "tavo/kinematics/retargeting.h"

namespace Tavo {
namespace {

XInverseKinematics& kinematics() { return XInverseKinematics::Instance(); }

Qelutils::Vector<XObject> runRetargeting(void (XRetargeting::*operation)()) {
    Qelutils::Vector<XObject> results;
    (XRetargeting::Instance().*operation)();
    XRetargeting::Instance().Results(results);
    return results;
}

}  // namespace

void XCreateIKRig::onRun() {
    kinematics().CreateRig();
    Qelutils::Vector<XObject> results;
    kinematics().Results(results);
    for (XObject const& object : results) addResult(object);
}

void XSetIKBindPose::onRun() { kinematics().SetBindPose(); }
void XClearLastIKBindPose::onRun() { kinematics().ClearLastBindPose(); }
void XClearAllIKBindPoses::onRun() { kinematics().ClearAllBindPoses(); }
void XSetIKRootJoints::onRun() { kinematics().SetRootJoints(); }
void XSetIKEndEffectors::onRun() { kinematics().SetEndEffectors(); }
void XSetIKPoleVectorPairs::onRun() { kinematics().SetPoleVectorPairs(); }

#define TAVO_RETARGET_RUN(Class, Operation)                                                                            \
    void Class::onRun() {                                                                                              \
        for (XObject const& object : runRetargeting(&XRetargeting::Operation)) addResult(object);                      \
    }
TAVO_RETARGET_RUN(XRetargetAttach, Attach)
TAVO_RETARGET_RUN(XRetargetDetach, Detach)
TAVO_RETARGET_RUN(XRetargetSetJointsToOrigin, SetJointsToOrigin)
TAVO_RETARGET_RUN(XRetargetSetJointOrigins, SetJointOrigins)
TAVO_RETARGET_RUN(XRetargetSetJointReferent, SetJointReferent)
TAVO_RETARGET_RUN(XRetargetSetJointReferentToWorld, SetJointReferentToWorld)
TAVO_RETARGET_RUN(XRetargetResetJointReferents, ResetJointReferents)
#undef TAVO_RETARGET_RUN

}  // namespace Tavo
