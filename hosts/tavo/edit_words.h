// The words of `tavo trajectory edit`: what is done, and to which keys. All throw a wrong call for what they cannot
// read.
#pragma once
#include "hosts/tavo/trajectory_verbs.h"
#include "tavo/objects/vector3.h"
#include "tavo/trajectories/trajectory.h"

#include <optional>

namespace host {

// What is done to a path, in the axes of the scene.
struct PathChange {
    enum Kind { move, scale, rotate, bend } kind;
    // Metres; factors; "XYZ" angles in radians, one of them other than 0.
    Tavo::XVector3 by;

    bool turns() const { return kind == rotate || kind == bend; }
};
// From the one of --move, --scale, --rotate and --bend that is given.
PathChange changeOf(EditTrajectoryVerb const& verb);

struct Ball {
    Tavo::XVector3 centre;  // in the scene
    float radius;
};
// From the one of --keys and --ball that is given: either keys, or the ball.
struct PathPlace {
    Qelutils::Vector<int> keys;
    std::optional<Ball> ball;
};
PathPlace placeOf(EditTrajectoryVerb const& verb, Tavo::XTrajectory const& path);

// "X,Y,Z".
Tavo::XVector3 vectorOf(std::string const& option, std::string const& text);
// 0, 1 and 2 for "feel", "constraints" and "none", as SmartEditing has them.
int keepModeOf(std::string const& word);

}  // namespace host
