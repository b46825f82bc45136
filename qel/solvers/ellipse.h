// The nearest point of an ellipse about the origin: what bounds two angles that are limited together.
//
// The semi-axes lie along x and y. One that is infinite bounds nothing, and leaves a strip or the whole plane; one that
// is zero leaves a segment or a point. Negative semi-axes and those that are not numbers are read as 0. Points are
// finite.
#pragma once

namespace sg {

struct PlanePoint {
    double x = 0, y = 0;
    bool operator==(PlanePoint const&) const = default;
};

struct Ellipse {
    double x = 0, y = 0;
    bool operator==(Ellipse const&) const = default;
};

// What lies outside by no more than this, in the unit of the axes, is on the border: measuring what was put on the
// border gives it back only up to rounding. A thousand times the rounding of an angle.
inline constexpr double ellipseTolerance = 1e-12;

bool isInside(Ellipse const& e, PlanePoint const& p);

// The point itself if it lies inside, the nearest point of the border otherwise.
PlanePoint clampToEllipse(Ellipse const& e, PlanePoint const& p);

// To the border: negative inside, minus infinity if there is no border.
double signedDistance(Ellipse const& e, PlanePoint const& p);

// A border that resists before it is reached. Inside `soft`, which lies in `hard`, a point stays. Between and beyond,
// let the point lie on the ellipse whose semi-axes are soft + level * (hard - soft): it is clamped to the one of level
// 1 - exp(-level). The derivative of that is the share of the room that is left: 1 where resistance starts, so that
// there is no kink, and 0 at the border, which is approached and never passed. With soft = hard it is clampToEllipse.
PlanePoint softClampToEllipse(Ellipse const& soft, Ellipse const& hard, PlanePoint const& p);

}  // namespace sg
