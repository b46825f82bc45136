// Where an effector is to be, from a command line: "PATH=x,y,z" or "PATH=x,y,z,rx,ry,rz", in the world, metres and
// degrees; the angles turn about x, then y, then z.
#pragma once
#include "tavo/objects/quaternion.h"
#include "tavo/objects/vector3.h"

#include <optional>
#include <string>
#include <utility>

namespace host {

struct IkTarget {
    Tavo::XVector3 position;
    std::optional<Tavo::XQuaternion> rotation;  // none: free to turn
};

// The path and the target. Throws a wrong call. Paths may hold '=': the split is the last one.
std::pair<std::string, IkTarget> parseTarget(std::string const& text);

}  // namespace host
