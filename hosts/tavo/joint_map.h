// Files of joints that correspond, for people to read and edit: a line for each pair, "SOURCE<tab>TARGET", and whatever
// follows another tab; a line with nothing before the tab keeps that target free. Empty lines and those that begin with
// '#' count for nothing.
#pragma once
#include "tavo/kinematics/retarget.h"

#include <string>
#include <vector>

namespace host {

struct JointMapLine {
    std::string place;            // the file and the number of the line
    std::wstring source, target;  // names; no source: the target is left alone
};

// Throws a Failure, bad input with the line's number, when the file is not one.
std::vector<JointMapLine> readMap(std::string const& file);

// The rig takes the pairs as given. Throws a wrong call, with the place, for a name that a figure does not have, that
// several of its joints have, or that stood there before.
void applyMap(Tavo::XRetarget const& rig, std::vector<JointMapLine> const& lines);

}  // namespace host
