// Builds the rig of a solver of inverse kinematics, anew or with more roots and effectors. For the files of this folder
// and for XInverseKinematics.
#pragma once
#include "tavo/kinematics/ik_handle.h"
#include "tavo/kinematics/rig_parts.h"

namespace Tavo {

class XIKRig {
public:
    using Objects = Qelutils::Vector<XObject>;

    explicit XIKRig(XIKSolver const& solver);

    // Everything but the handles that are there is made anew. New roots and effectors add to the old ones; of the new
    // effectors those take part that are the topmost root or lie below it. Where nothing is left to be a root the rig
    // stays empty and does not compute.
    void build(Objects const& roots, Objects const& effectors);

private:
    void reset();
    void dropDeleted();
    void addRoots(Objects const& roots);
    void addEffector(XTransform const& chosen);
    void makePrimary(int effector);
    void moveHandles();
    void createHandle(int effector);
    void connectHandle(XIKHandle const& handle, XTransform const& effector);
    XObject createPin(XTransform const& effector);
    void createShape(XIKHandle const& handle);
    void listJoints();
    int listChain(XTransform const& effector);  // the number of the effector's joint
    void readJoints();
    void driveJoints();
    void followTransform(int transform);
    void feedParameters(int joint);

    XTransform root() const { return XTransform(_roots.front()); }
    XIKHandle handle(int effector) const { return XIKHandle(_solver.IKHandleReferences().ObjectRef(effector)); }

    XIKSolver _solver;
    XScene& _scene;
    Objects _roots;          // the topmost first
    XObjectList _effectors;  // those with handles first, in the order of the handles
    std::vector<bool> _primary;
    XObjectList _joints;
    std::vector<int> _parents;  // of each joint its parent's number
};

}  // namespace Tavo
