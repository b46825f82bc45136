// How far places lie from a path: from a polyline so fine that its own error is far below what is measured.
#pragma once
#include "qel/sg/path_bezier.h"
#include "tavo/trajectories/trajectory.h"

#include <vector>

namespace host {

class Closeness {
public:
    // `chords`: of the polyline, even along the path.
    Closeness(Tavo::XTrajectory const& path, int chords);
    // From the nearest place of the path, metres in its own space. `fraction`: where that may be; a good guess is fast.
    double distance(Qelp::Vector3 const& place, double fraction) const;

private:
    double distanceToChord(std::size_t at, sg::PathPoint const& place) const;

    std::vector<sg::PathPoint> points_;
    double longest_ = 0;  // of the chords
};

}  // namespace host
