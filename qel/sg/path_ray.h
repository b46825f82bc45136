// The place of a path that lies nearest to a ray, as seen on a picture: what a click on a drawn path means. Free of the
// scene.
//
// In a parallel projection the picture is square to the rays, and the distance on it is that from the ray's line, on
// either side of its origin: how far before the scene a parallel camera stands has no meaning. In a perspective
// projection distances are measured on the plane through the ray's origin square to its direction, as seen from the
// eye; what does not lie before the eye is not seen. The ray meets that plane where a line from the eye to its origin
// does, so that a ray through the eye, as rays of a camera are, is one point of the picture.
//
// Both are ratios |N(u)|^2 / D(u)^2, where N and D are cubic in u (D is 1 in parallel projection). In a segment the
// minimum is at an end or where N.N' D - |N|^2 D' changes its sign, a polynomial of degree 8 (5 in parallel
// projection), all of whose roots are found. A segment whose control points, projected, keep farther away than the
// nearest end of any segment is left out: a rational Bezier curve with positive weights lies within the box of its
// control points. So the minimum is the global one.
#pragma once
#include "qel/sg/path_bezier.h"
#include <span>

namespace sg {

class PathRay {
public:
    // Directions need no unit length. Without a direction the nearest place to `origin` in space is meant.
    static PathRay parallel(PathPoint const& origin, PathPoint const& direction);
    // Without a direction the one from the eye to `origin` is taken.
    static PathRay perspective(PathPoint const& eye, PathPoint const& origin, PathPoint const& direction);

    struct Nearest {
        int segment = -1;     // -1: there is no segment, or none is seen
        double u = 0;         // in the segment
        double distance = 0;  // on the picture, squared, in perspective at unit depth
    };
    // Of several that are equally near the first.
    Nearest nearest(std::span<PathBezier const> segments) const;

private:
    struct Seen {
        PathPoint n;  // from the ray, times the depth
        double depth;
    };
    Seen see(PathPoint const& p) const;
    static double distance(Seen const& s);
    static double leastDistance(Seen const (&control)[4]);
    void searchInside(PathBezier const& b, int index, Nearest& best) const;

    PathPoint eye_, along_, toOrigin_;
    bool hasDepth_ = false;
};

}  // namespace sg
