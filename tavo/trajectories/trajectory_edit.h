// The frame of every edit of a trajectory; for the files of this folder.
#pragma once
#include "tavo/objects/scene.h"
#include "tavo/trajectories/key_parts.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

// A change block, and in it the node if the trajectory is valid and may be edited, else null.
class [[nodiscard]] XTrajectoryEdit {
public:
    XTrajectoryEdit(XTrajectory const& trajectory, std::wstring const& label);

    explicit operator bool() const { return _node; }
    sg::TrajectoryNode& node() const { return *_node; }

private:
    XChangeBlock _block;
    sg::TrajectoryNode* _node;
};

// Each once, in ascending order, without what is negative.
Qelutils::Vector<int> distinctSlots(Qelutils::Vector<int> slots);
// The slots of the keys that exist.
Qelutils::Vector<int> translationSlots(sg::TrajectoryNode& node, Qelutils::Vector<int> const& parameters);
Qelutils::Vector<int> rotationSlots(sg::TrajectoryNode& node, Qelutils::Vector<float> const& attach);
int rotationSlot(sg::TrajectoryNode& node, float attach);

// The place of a script word in the enumeration of interpolations or of continuities; -1 for none.
int interpolationOf(std::wstring const& word);
int continuityOf(std::wstring const& word);

}  // namespace Tavo
