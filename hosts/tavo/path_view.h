// From which side a path is seen, and the way from metres in space to pixels at true aspect: a metre is as long to the
// right as it is upwards.
#pragma once
#include "hosts/tavo/path_state.h"
#include "hosts/tavo/svg.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The smallest box, its sides along the axes, around what it has taken.
struct PathBounds {
    PathPoint least{1e300, 1e300, 1e300}, most{-1e300, -1e300, -1e300};

    void take(PathPoint const& p, double around = 0);
    bool isEmpty() const { return least.x > most.x; }
    PathPoint extent() const { return isEmpty() ? PathPoint() : most - least; }
};

struct PathView {
    enum Axis : int { x, y, z };
    char const* name;  // "from above"
    Axis right, up;
    double rightSign = 1, upSign = 1;

    // "top" or "xz", "side" or "zy", "front" or "xy". Seen from above, the longer way lies across. None for other
    // words.
    static std::optional<PathView> of(std::string const& word, PathBounds const& bounds);
    // The one in which the most is seen.
    static PathView largest(PathBounds const& bounds);
};

class PathProjection {
public:
    // Fills the area with the bounds, in its middle.
    PathProjection(PathView const& view, PathBounds const& bounds, SvgBox const& area);

    SvgPoint operator()(PathPoint const& p) const { return centre_ + (flat(p) - middle_) * scale_; }
    double scale() const { return scale_; }  // pixels a metre
    // What the view's coordinates are, on the axes' own scales: those to the right, and those upwards.
    double rightAt(double x) const { return ((x - centre_.x) / scale_ + middle_.x) * view_.rightSign; }
    double upAt(double y) const { return -((y - centre_.y) / scale_ + middle_.y) * view_.upSign; }
    double xOf(double right) const { return centre_.x + (right * view_.rightSign - middle_.x) * scale_; }
    double yOf(double up) const { return centre_.y + (-up * view_.upSign - middle_.y) * scale_; }

    // How wide the bounds are for each unit of their height; within [0.02, 50].
    static double aspect(PathView const& view, PathBounds const& bounds);

private:
    SvgPoint flat(PathPoint const& p) const;  // metres, y down

    PathView view_;
    SvgPoint centre_, middle_;
    double scale_ = 1;
};

}  // namespace host
