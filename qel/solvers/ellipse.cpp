#include "qel/solvers/ellipse.h"
#include <algorithm>
#include <cmath>
#include <limits>

namespace sg {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Squares of what lies between neither vanish nor overflow.
constexpr double smallest = 1e-100, largest = 1e100;

double readAxis(double axis) { return axis > largest ? infinity : axis >= smallest ? axis : 0; }
Ellipse read(Ellipse const& e) { return {readAxis(e.x), readAxis(e.y)}; }
bool isTrue(Ellipse const& e) { return e.x > 0 && e.y > 0 && e.x < infinity && e.y < infinity; }

// numerator / (offset + slope * t)
struct Term {
    double numerator, offset, slope;

    double at(double t) const { return numerator == 0 ? 0 : numerator / (offset + slope * t); }
    // Where it is 1.
    double start() const { return (numerator - offset) / slope; }
};

// The largest t at which the sum of both squares is 1. To the right of both poles the sum falls and is convex, so that
// Newton's steps from the left run up to the root and never past it; they begin where the larger term is 1, or at
// `from` if the root is known to lie beyond.
double largestRoot(Term const& a, Term const& b, double from) {
    double t = from;
    for (Term const* term : {&a, &b})
        if (term->numerator > 0) t = std::max(t, term->start());
    for (int i = 0; i < 100 && t < infinity; ++i) {
        double const x = a.at(t), y = b.at(t);
        double const slope = x * x * a.slope / (a.offset + a.slope * t) + y * y * b.slope / (b.offset + b.slope * t);
        double const next = t + (x * x + y * y - 1) / (2 * slope);
        if (!(next > t)) break;
        t = next;
    }
    return t;
}

// On the border of an ellipse with e.x >= e.y > 0, for a point with no negative coordinate: Eberly, "Distance from a
// point to an ellipse, an ellipsoid, or a hyperellipsoid" (2013). The nearest point is (e.x^2 p.x / (u + e.x^2 -
// e.y^2), e.y^2 p.y / u); the unknown is counted from the pole, where nothing cancels.
PlanePoint nearestInQuadrant(Ellipse const& e, PlanePoint const& p) {
    double const gap = (e.x - e.y) * (e.x + e.y);
    Term const x{e.x * p.x, gap, 1}, y{e.y * p.y, 0, 1};
    double cosine = 1, sine = 0;
    if (y.numerator > 0) {
        double const u = largestRoot(x, y, -infinity);
        cosine = x.at(u);
        sine = y.at(u);
    } else if (x.numerator < gap) {
        cosine = x.numerator / gap;
        sine = std::sqrt(1 - cosine * cosine);
    }
    double const length = std::hypot(cosine, sine);
    return {e.x * cosine / length, e.y * sine / length};
}

PlanePoint swapped(PlanePoint const& p) { return {p.y, p.x}; }

PlanePoint nearestOnBorder(Ellipse const& e, PlanePoint const& p) {
    PlanePoint const folded{std::abs(p.x), std::abs(p.y)};
    PlanePoint const near =
        e.x >= e.y ? nearestInQuadrant(e, folded) : swapped(nearestInQuadrant({e.y, e.x}, swapped(folded)));
    return {std::copysign(near.x, p.x), std::copysign(near.y, p.y)};
}

// 1 on the border.
double gauge(Ellipse const& e, PlanePoint const& p) {
    double const x = p.x / e.x, y = p.y / e.y;
    return x * x + y * y;
}

// How far outside a strip, a segment or a point; negative inside.
double distanceToBox(Ellipse const& e, PlanePoint const& p) {
    double const x = std::abs(p.x) - e.x, y = std::abs(p.y) - e.y;
    return x > 0 && y > 0 ? std::hypot(x, y) : std::max(x, y);
}

// The level of an axis whose ellipses lie between two.
Term levelTerm(double p, double soft, double hard) {
    bool const free = hard == infinity || p == 0;
    return free ? Term{0, 1, 0} : Term{std::abs(p), soft, hard - soft};
}

double levelOf(Ellipse const& soft, Ellipse const& hard, PlanePoint const& p) {
    Term const x = levelTerm(p.x, soft.x, hard.x), y = levelTerm(p.y, soft.y, hard.y);
    return largestRoot(x, y, 0);
}

double between(double soft, double hard, double share) {
    return hard == infinity ? hard : soft + share * (hard - soft);
}

}  // namespace

PlanePoint clampToEllipse(Ellipse const& raw, PlanePoint const& p) {
    Ellipse const e = read(raw);
    if (isTrue(e) && gauge(e, p) <= 1) return p;
    PlanePoint const near =
        isTrue(e) ? nearestOnBorder(e, p) : PlanePoint{std::clamp(p.x, -e.x, e.x), std::clamp(p.y, -e.y, e.y)};
    return std::hypot(p.x - near.x, p.y - near.y) <= ellipseTolerance ? p : near;
}

bool isInside(Ellipse const& e, PlanePoint const& p) { return clampToEllipse(e, p) == p; }

double signedDistance(Ellipse const& raw, PlanePoint const& p) {
    Ellipse const e = read(raw);
    if (!isTrue(e)) return distanceToBox(e, p);
    PlanePoint const near = nearestOnBorder(e, p);
    double const distance = std::hypot(p.x - near.x, p.y - near.y);
    return gauge(e, p) < 1 ? -distance : distance;
}

PlanePoint softClampToEllipse(Ellipse const& rawSoft, Ellipse const& rawHard, PlanePoint const& raw) {
    Ellipse const hard = read(rawHard);
    Ellipse const soft{std::min(read(rawSoft).x, hard.x), std::min(read(rawSoft).y, hard.y)};
    if (soft == hard) return clampToEllipse(hard, raw);
    // Along an axis of no length nothing moves: what lies off it does not count as pressure on the other.
    PlanePoint const p{hard.x == 0 ? 0 : raw.x, hard.y == 0 ? 0 : raw.y};
    if (isInside(soft, p)) return isInside(hard, raw) ? raw : p;
    double const share = -std::expm1(-levelOf(soft, hard, p));
    return clampToEllipse({between(soft.x, hard.x, share), between(soft.y, hard.y, share)}, p);
}

}  // namespace sg
