#include "tavo/commands/skeleton_commands.h"
#include "tavo/app/application.h"
#include "tavo/commands/selected.h"
#include "tavo/kinematics/character.h"
#include "tavo/physics/physics_joint_limit.h"

namespace Tavo {

void XCharacterize::onRun() {
    forEachSelected<XTransform>(Scene(), [](XTransform& transform) { transform.Characterize(); });
}

// The active scene's limits, whatever scene the command works in and whatever is selected there.
void XAlignHingeOffset::onRun() {
    Qelutils::Vector<XObject> limits;
    XApplication::Instance().ActiveScene().Objects(XPhysicsJointLimit::TypeID, IsObjectType, limits);
    for (XObject const& object : limits)
        if (XPhysicsJointLimit limit(object); limit.LimitType().Enumeration() == XJointLimit::Hinge)
            limit.AlignMovingFrame();
}

void XAlignJointLimit::onRun() {
    auto const axis = XDirection(JointLimitAxis().Enumeration());
    auto const mode = XAlignmentMode(AlignmentDirection().Enumeration());
    forEachSelected<XJointLimit>(Scene(), [&](XJointLimit& limit) { limit.AlignJointLimit(axis, mode); });
}

void XCreateJointLimit::onRun() {
    forEachSelected<XJoint>(Scene(), [this](XJoint& joint) {
        XJointLimit limit = joint.CreateJointLimit();
        if (!limit.IsValid()) return;
        CopyParametersTo(limit);
        align(limit);
        finish(limit);
    });
}

void XCreateJointLimit::align(XJointLimit& limit) const {
    int rotation = InitialRotation().Enumeration();
    if (rotation == 0) {
        int const type = LimitType().Enumeration();
        rotation = type == XJointLimit::BallSocket ? 1 : type == XJointLimit::Hinge ? 2 : 0;
    }
    if (rotation >= 1 && rotation <= 3) limit.AlignJointLimit(XDirection(rotation - 1), AlignToFirstChild);
}

}  // namespace Tavo
