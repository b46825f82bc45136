// Rigs of inverse kinematics and of retargeting, on the selected objects of the active scene.
#pragma once
#include "tavo/commands/command_pattern.h"

namespace Tavo {

TAVO_COMMAND(XCreateIKRig, L"CreateIKRig",
             L"Rigs the chains between the highest selected transforms and the other selected ones, so that handles "
             L"move them.")
TAVO_COMMAND(XSetIKBindPose, L"SetIKBindPose", L"Adds the present pose to those that the selected rig stays close to.")
TAVO_COMMAND(XClearLastIKBindPose, L"ClearLastIKBindPose", L"Takes the last of its poses from the selected rig.")
TAVO_COMMAND(XClearAllIKBindPoses, L"ClearAllIKBindPoses", L"Takes all of its poses from the selected rig.")
TAVO_COMMAND(XSetIKRootJoints, L"SetIKRootJoints",
             L"Makes the selected transforms roots of the selected handle's rig, beside those that it has.")
TAVO_COMMAND(XSetIKEndEffectors, L"SetIKEndEffectors",
             L"Gives the selected transforms handles of the selected handle's rig.")
TAVO_COMMAND(XSetIKPoleVectorPairs, L"SetIKPoleVectorPairs",
             L"Gives the selected joint two poles that say where its chain bends on the way to the selected handle.")

TAVO_COMMAND(XRetargetAttach, L"RetargetAttach",
             L"Makes the joints below the second selected transform follow those below the first.")
TAVO_COMMAND(XRetargetDetach, L"RetargetDetach", L"Lets go of the skeletons that follow the selected one.")
TAVO_COMMAND(XRetargetSetJointsToOrigin, L"RetargetSetJointsToOrigin",
             L"Moves the joints below the selected transform to their pose of reference.")
TAVO_COMMAND(XRetargetSetJointOrigins, L"RetargetSetJointOrigins",
             L"Makes the present pose of the joints below the selected transform their pose of reference.")
TAVO_COMMAND(XRetargetSetJointReferent, L"RetargetSetJointReferent",
             L"Copies the motion of the first selected joint in the frame of the second selected transform, which is "
             L"above it.")
TAVO_COMMAND(XRetargetSetJointReferentToWorld, L"RetargetSetJointReferentToWorld",
             L"Leaves the joint's referent as it is.")
TAVO_COMMAND(XRetargetResetJointReferents, L"RetargetResetJointReferents",
             L"Copies the motion of each joint below the selected transform in its own frame.")

}  // namespace Tavo
