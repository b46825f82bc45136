#include "hosts/tavo/closeness.h"

#include <algorithm>

namespace host {

using namespace Tavo;
using sg::PathPoint;

Closeness::Closeness(XTrajectory const& path, int chords) {
    for (int i = 0; i <= chords; ++i) {
        XVector3 place;
        path.ComputePosition(float(double(i) / chords), place);
        points_.emplace_back(place.AsVector());
        if (i > 0) longest_ = std::max(longest_, (points_.back() - points_[points_.size() - 2]).length());
    }
}

double Closeness::distanceToChord(std::size_t at, PathPoint const& place) const {
    PathPoint const chord = points_[at + 1] - points_[at], from = place - points_[at];
    double const square = chord.dot(chord);
    double const along = square > 0 ? std::clamp(from.dot(chord) / square, 0.0, 1.0) : 0;
    return (from - chord * along).length();
}

// Over places that are too far away, as no chord is longer than the longest, it steps without looking.
double Closeness::distance(Qelp::Vector3 const& of, double fraction) const {
    PathPoint const place(of);
    std::size_t const last = points_.size() - 2;
    double best = distanceToChord(std::size_t(std::clamp(fraction, 0.0, 1.0) * double(last)), place);
    for (std::size_t at = 0; at <= last;) {
        best = std::min(best, distanceToChord(at, place));
        double const beyond = (place - points_[at]).length() - best;
        double const steps = longest_ > 0 ? std::min(beyond / longest_, double(last)) : double(last);
        at += std::max<std::size_t>(1, std::size_t(std::max(steps, 0.0)));
    }
    return best;
}

}  // namespace host
