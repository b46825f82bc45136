#include "hosts/tavo/closeness.h"

#include "qel/sg/trajectory_node.h"

#include <algorithm>

namespace host {

using namespace Tavo;
using sg::PathPoint;

namespace {

constexpr int refinements = 40;  // each leaves two thirds of the span: in the end it is below a millionth

PathPoint placeAt(XTrajectory const& path, double parameter) {
    Qelp::Vector3 place;
    static_cast<sg::TrajectoryNode*>(path.getNode())->computePosition_parameter(parameter, place);
    return PathPoint(place);
}

}  // namespace

Closeness::Closeness(XTrajectory const& path, int places) : path_(path), places_(places) {
    int const count = (path.TranslationKeyframesArray().AttributeCount() - 1) * places;
    for (int i = 0; i <= count; ++i) {
        points_.push_back(placeAt(path, double(i) / places));
        if (i > 0) longest_ = std::max(longest_, (points_.back() - points_[points_.size() - 2]).length());
    }
}

// Steps without looking over points that are too far away, as none lies farther from the next than `longest_`.
std::size_t Closeness::nearest(PathPoint const& place, std::size_t guess) const {
    std::size_t found = guess;
    double best = (place - points_[guess]).length();
    for (std::size_t at = 0; at < points_.size();) {
        double const distance = (place - points_[at]).length();
        if (distance < best) best = distance, found = at;
        double const steps = longest_ > 0 ? (distance - best) / longest_ : double(points_.size());
        at += std::max<std::size_t>(1, std::size_t(std::min(steps, double(points_.size()))));
    }
    return found;
}

double Closeness::distanceAt(double parameter, PathPoint const& place) const {
    return (place - placeAt(path_, parameter)).length();
}

double Closeness::distance(Qelp::Vector3 const& of, double fraction) const {
    PathPoint const place(of);
    double const last = double(points_.size() - 1);
    double const guess = double(path_.InverseArcLengthMap(float(fraction))) * places_;
    double const at = double(nearest(place, std::size_t(std::clamp(guess, 0.0, last))));
    double low = std::max(at - 1, 0.0) / places_, high = std::min(at + 1, last) / places_;
    for (int i = 0; i < refinements; ++i) {
        double const third = (high - low) / 3;
        bool const isLeft = distanceAt(low + third, place) < distanceAt(high - third, place);
        (isLeft ? high : low) = isLeft ? high - third : low + third;
    }
    return std::min(distanceAt(at / places_, place), distanceAt((low + high) / 2, place));
}

}  // namespace host
