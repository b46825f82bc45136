// What the verbs of paths share: from names to trajectories, and what stands in one.
#pragma once
#include "tavo/animation/drop_off_weights.h"
#include "tavo/objects/scene.h"
#include "tavo/trajectories/trajectory.h"

#include <string>
#include <vector>

namespace host {

// In the order of the line, each once, never none. An object that is no trajectory stands for those that were made of
// its motion and for the one that it follows. Throws a wrong call that proposes names.
std::vector<Tavo::XTrajectory> findTrajectories(Tavo::XScene& scene, std::vector<std::string> const& patterns);
// Throws likewise where there are several.
Tavo::XTrajectory findTrajectory(Tavo::XScene& scene, std::string const& pattern);
std::vector<Tavo::XTrajectory> allTrajectories(Tavo::XScene& scene);

// The objects that an XMatrixConversion places on the path.
std::vector<Tavo::XObject> followersOf(Tavo::XTrajectory const& path);

int keyCountOf(Tavo::XTrajectory const& path);
// Of the translation keys, by slot, in the path's own space.
Qelutils::Vector<Qelp::Vector3> positionsOf(Tavo::XTrajectory const& path);
// That of one key, by its number; throws a wrong call for one that is not there. `option`: where it was named.
Tavo::XVector3 keyPosition(Tavo::XTrajectory const& path, int key, std::string const& option);
Qelutils::Vector<Tavo::XSafeGuard> guardsOf(Tavo::XTrajectory const& path);
// Of the timing curve, the slots in the order of time; none without timing.
std::vector<int> timingOrder(Tavo::XTrajectory const& path);
// "feel", "constraints", "none".
std::string keepOf(Tavo::XTrajectory const& path);

std::string pathOf(Tavo::XObject const& object);  // through the hierarchy, as text
// A figure for people: four digits and no tail of zeros.
std::string figure(double value);

}  // namespace host
