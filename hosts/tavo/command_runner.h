// Runs the commands of a line of `do`, in their order, on the session's scene.
#pragma once
#include "hosts/tavo/command_list.h"
#include "hosts/tavo/session.h"

#include <utility>

namespace host {

// What a run did, told as it was then: a later command may delete what an earlier one made.
struct Done {
    std::string command;
    int steps = 0;  // by how many the history grew; below 0: that were taken back
    std::vector<std::pair<std::string, std::string>> results;  // paths and types
};

// Gives each run its values and takes them back after it; at the end playback is stopped. Throws a Failure at the first
// command that may not run or logs an error: what the scene holds then is to be dropped.
std::vector<Done> runCommands(Session& session, std::vector<CommandCall> const& calls);

// Into the settings' nodes, to stay.
void setParameters(std::vector<Value> const& values);

}  // namespace host
