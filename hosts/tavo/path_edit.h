// One edit of a path by weights, in the axes of the scene: its keys move, and where it turns them, the rotation keys
// turn with them, so that what follows the path keeps facing along it.
#pragma once
#include "hosts/tavo/edit_words.h"
#include "tavo/animation/drop_off.h"

namespace host {

// The weight of each key, by slot; safe guards in use count.
// - Of keys: the dropoff of the distance along the path from the nearest of them.
// - Of a ball: 1 in it, and the dropoff of the distance in space from its surface.
// - Of a bend at one key: 0 up to that key, and after it what the dropoff of the distance along the path leaves: it
//   rises from 0 at the corner to 1 at the range, beyond which the path turns by the whole angle. With a range of 0 the
//   corner is sharp.
Qelutils::Vector<float> weightsOf(Tavo::XTrajectory const& path, PathChange const& change, PathPlace const& place,
                                  Tavo::XDropOff const& dropoff);

// `centre`: of a scale, a rotation or a bend, in the scene. The timing is repaired as the path's SmartEditing says. The
// caller provides the block. Throws a wrong call where three factors would spoil the handles of a spline that is turned
// in the scene.
void editPath(Tavo::XTrajectory path, PathChange const& change, Tavo::XVector3 const& centre,
              Qelutils::Vector<float> const& weights);

}  // namespace host
