#include "tavo/trajectories/path_measure.h"
#include "tavo/animation/keyframe.h"
#include "tavo/trajectories/points.h"

namespace Tavo {

XPathMeasure::XPathMeasure(sg::TrajectoryNode& node) : _node(node), _isPolyline(measure()) {}

// False where the node has to say: other kinds of key, another order, no length.
bool XPathMeasure::measure() {
    XTranslationKeys const keys(_node);
    int const count = keys.count();
    if (count < 2) return false;
    _segments.resize(std::size_t(count - 1));
    PathPoint before;
    for (int slot = 0, number = 0; slot < count; ++slot) {
        XTranslationKey const key = keys[slot];
        int const kind = key.interpolation();
        if (kind == ConstantInterpolation || kind == SplineInterpolation) return false;
        if (slot > 0 && key.number() <= number) return false;
        number = key.number();
        PathPoint const position(key.position());
        if (slot > 0) {
            double const length = (position - before).length();
            _segments[std::size_t(slot - 1)] = {_length, length};
            _length += length;
        }
        before = position;
    }
    return _length > 0 && std::isfinite(_length);
}

double XPathMeasure::length() const { return _isPolyline ? _length : _node.getPath().length(); }

// The first of the segments that reach the distance, which is above 0.
bool XPathMeasure::isBetween(std::size_t at, double distance) const {
    return at < _segments.size() && _segments[at].start < distance &&
           (at + 1 == _segments.size() || distance <= _segments[at + 1].start);
}

std::size_t XPathMeasure::find(double distance) const {
    auto const isBefore = [](Segment const& s, double d) { return s.start < d; };
    return std::size_t(std::lower_bound(_segments.begin() + 1, _segments.end(), distance, isBefore) -
                       _segments.begin()) -
           1;
}

double XPathMeasure::parameterAt(double fraction) {
    if (!_isPolyline || !(fraction >= 0 && fraction <= 1)) return _node.inverseArcLengthMap(fraction);
    if (fraction == 0 || fraction == 1) return fraction * double(_segments.size());
    double const distance = fraction * _length;
    if (!isBetween(_at, distance) && !isBetween(++_at, distance)) _at = find(distance);
    Segment const& s = _segments[_at];
    return double(_at) + (s.length > 0 ? std::min((distance - s.start) / s.length, 1.0) : 0);
}

double XPathMeasure::fractionAt(double parameter) {
    double const last = double(_segments.size());
    if (!_isPolyline || !(parameter >= 0 && parameter <= last)) return _node.arcLengthMap(parameter);
    if (parameter == last) return 1;
    std::size_t const rank = std::size_t(parameter);
    Segment const& s = _segments[rank];
    return std::min((s.start + s.length * (parameter - double(rank))) / _length, 1.0);
}

}  // namespace Tavo
