// The timing curve of a trajectory as two arrays of floats; for the files of this folder.
#pragma once
#include "qel/sg/animation_node.h"
#include "tavo/animation/timing_edits.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

// Found through the connection of InputValue. Without a curve it is not sampled, has no keys, and writes nothing.
class XTimingCurve {
public:
    explicit XTimingCurve(XTrajectory const& trajectory);

    bool isSampled() const;
    Qelutils::Vector<float> const& outputs() const;  // by slot
    Qelutils::Vector<int> order() const;             // the slots by rising input
    XTimingKeys keys() const;
    // What has changed, unless the curve may not be edited. As many keys as there are.
    void write(XTimingKeys const& keys) const;

private:
    db::FloatArrayAttribute& array(int number) const { return _node->at<db::FloatArrayAttribute>(number); }

    sg::AnimationNode* _node;
};

}  // namespace Tavo
