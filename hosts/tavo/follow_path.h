// An object on a path, through the graph: the path's curve matrix is split into what drives the object's translation
// and rotation, in place of the curves that drove them.
#pragma once
#include "tavo/trajectories/trajectory.h"

namespace host {

// Throws a wrong call: a path says where in the world an object stands, so that only one directly below the scene's
// origin can follow it.
void checkCanFollow(Tavo::XTransform const& object);

// The object's own curves of translation and rotation are deleted; its rest values stay in force.
void followPath(Tavo::XTransform object, Tavo::XTrajectory const& path);

}  // namespace host
