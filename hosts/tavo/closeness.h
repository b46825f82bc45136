// How far places lie from a path. What is found is the distance of a place of the path, so that it is never too small.
#pragma once
#include "qel/sg/path_bezier.h"
#include "tavo/trajectories/trajectory.h"

#include <vector>

namespace host {

class Closeness {
public:
    // Looks at so many places of each segment, even in the parameter, and then more closely about the nearest. The path
    // has a key at least.
    Closeness(Tavo::XTrajectory const& path, int places);
    // From the nearest place of the path, metres in its own space. `fraction`: where that may be; a good guess is fast.
    double distance(Qelp::Vector3 const& place, double fraction) const;

private:
    std::size_t nearest(sg::PathPoint const& place, std::size_t guess) const;
    double distanceAt(double parameter, sg::PathPoint const& place) const;

    Tavo::XTrajectory path_;
    int places_;
    std::vector<sg::PathPoint> points_;
    double longest_ = 0;  // from one point to the next
};

}  // namespace host
