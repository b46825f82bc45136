// XRetargeting: one skeleton follows the motion of another, on what is selected in the active scene: first the root of
// the source, then that of the target. The rig is a node (XRetarget) with the joints below each root, conversions that
// lead what it computes to the target's joints, and parameters below each joint of both. These stay when the rig goes,
// with the pose of reference and the referents of their joints, and serve the next one.
//
// Origins are the poses of the two skeletons that are meant to correspond. A referent says in which transform's frame
// the motion of a joint is copied: the joint itself, or one above it.
//
// Nothing here opens a change block or reports: callers are commands, and a wrong selection does nothing. Main thread.
#pragma once
#include "tavo/kinematics/retarget.h"

namespace Tavo {

class XRetargeting {
public:
    using Objects = Qelutils::Vector<XObject>;

    static XRetargeting& Instance();

    XScene& Scene() const;                                // the active one
    void Results(Objects& out) const { out = _results; }  // of the last operation: the node that Attach made

    // ---- on the selection; defined on the interaction floor ----
    void Attach();                   // a source follows no more than one node: a former one goes
    void Detach();                   // a skeleton is detached by selecting its source
    void SetJointsToOrigin();        // moves the joints to their pose of reference
    void SetJointOrigins();          // makes the present pose that of reference
    void SetJointReferent();         // of the first selected transform: the second one, if that is it or above it
    void SetJointReferentToWorld();  // leaves things as they are: a decision of this system
    void ResetJointReferents();      // each joint its own

private:
    Objects selectedTransforms() const;
    XTransform firstSelectedTransform() const;
    void getSelectedCharacters(Objects& source, Objects& target) const;
    static void getCharacterJoints(Objects& joints, XTransform const& root);
    void attach(Objects const& source, Objects const& target);
    static void detach(Objects const& joints);
    static void setJointReferent(XTransform const& joint, XTransform const& referent);

    Objects _results;
};

}  // namespace Tavo
