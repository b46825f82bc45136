// What a trajectory is at one moment of a session, in the world, in plain numbers that outlive the scene: its keys, its
// line, its safe guards, and the motion along it. Metres and seconds.
#pragma once
#include "qel/sg/path_bezier.h"
#include "tavo/trajectories/trajectory.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

using sg::PathPoint;

struct PathState {
    struct Key {
        PathPoint position;
        std::optional<PathPoint> in, out;  // handles that shape the line
    };
    struct Guard {
        PathPoint centre;
        double radius = 0, range = 0;  // nothing moves within the first; movement returns over the second
        bool isUsed = true;
    };
    struct Moment {
        double time = 0;
        PathPoint position;
        double speed = 0;  // metres a second, never negative
    };

    std::string name;
    bool isSampled = false;
    double length = 0;
    std::vector<Key> keys;        // along the path
    std::vector<PathPoint> line;  // dense enough for a picture; an empty one without keys
    std::vector<Guard> guards;    // in their order
    std::vector<Moment> motion;   // by rising time, dense; empty without timing

    double start() const { return motion.empty() ? 0 : motion.front().time; }
    double end() const { return motion.empty() ? 0 : motion.back().time; }
    PathPoint at(double time) const;  // there must be motion; beyond its ends it stands
};

// Speed is that between the timing keys before and after of a sampled timing curve, so that its corners do not show.
PathState readPath(Tavo::XTrajectory const& path);

}  // namespace host
