#include "hosts/tavo/path_view.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr double leastExtent = 1e-6;  // metres: less is a point

double along(PathPoint const& p, PathView::Axis axis) {
    return axis == PathView::x ? p.x : axis == PathView::y ? p.y : p.z;
}

PathView fromAbove(PathBounds const& bounds) {
    PathPoint const extent = bounds.extent();
    if (extent.z > extent.x) return {"from above", PathView::z, PathView::x};
    return {"from above", PathView::x, PathView::z, 1, -1};
}
constexpr PathView fromTheSide{"from the side", PathView::z, PathView::y},
    fromTheFront{"from the front", PathView::x, PathView::y};

}  // namespace

void PathBounds::take(PathPoint const& p, double around) {
    least = {std::min(least.x, p.x - around), std::min(least.y, p.y - around), std::min(least.z, p.z - around)};
    most = {std::max(most.x, p.x + around), std::max(most.y, p.y + around), std::max(most.z, p.z + around)};
}

std::optional<PathView> PathView::of(std::string const& word, PathBounds const& bounds) {
    if (word == "top" || word == "xz") return fromAbove(bounds);
    if (word == "side" || word == "zy") return fromTheSide;
    if (word == "front" || word == "xy") return fromTheFront;
    return {};
}

// The two longest sides of the box.
PathView PathView::largest(PathBounds const& bounds) {
    PathPoint const extent = bounds.extent();
    if (extent.y <= extent.x && extent.y <= extent.z) return fromAbove(bounds);
    return extent.x <= extent.z ? fromTheSide : fromTheFront;
}

PathProjection::PathProjection(PathView const& view, PathBounds const& bounds, SvgBox const& area) :
    view_(view), centre_(area.corner + SvgPoint{area.width / 2, area.height / 2}) {
    if (bounds.isEmpty()) return;
    middle_ = flat((bounds.least + bounds.most) * 0.5);
    double const width = along(bounds.extent(), view.right), height = along(bounds.extent(), view.up);
    scale_ = std::min(area.width / std::max(width, leastExtent), area.height / std::max(height, leastExtent));
    if (width < leastExtent && height < leastExtent) scale_ = std::min(area.width, area.height);
}

SvgPoint PathProjection::flat(PathPoint const& p) const {
    return {along(p, view_.right) * view_.rightSign, -along(p, view_.up) * view_.upSign};
}

double PathProjection::aspect(PathView const& view, PathBounds const& bounds) {
    double const width = std::max(along(bounds.extent(), view.right), leastExtent);
    return std::clamp(width / std::max(along(bounds.extent(), view.up), leastExtent), 0.02, 50.0);
}

}  // namespace host
