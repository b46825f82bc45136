// Draws paths as an SVG picture: seen from one side at true aspect, with their keys, handles and safe guards, ticks at
// even times (so that wide spacing is speed), speed as colour, an earlier state in grey dashes beneath; and speed over
// time. It knows nothing of scenes.
#pragma once
#include "hosts/tavo/path_state.h"
#include "hosts/tavo/path_view.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct PathPair {
    PathState now;
    std::optional<PathState> before;
};

struct PathPicture {
    std::string title;
    std::vector<PathPair> paths;
    std::string view;  // as PathView::of has it; empty: in which the most is seen
    double frame = 0;  // seconds; above 0, ticks stand at frames and time is told in them
};

// UTF-8. A view that is none counts as empty.
std::string drawPaths(PathPicture const& picture);

}  // namespace host
