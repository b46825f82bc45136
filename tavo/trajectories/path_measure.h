// The lengths along a path as an edit finds it, for maps in both directions at many places; for the files of this
// folder. A path of linear keys whose slots are in their order is a polyline: it is measured in one pass over the keys,
// and neighbouring places are found by walking. Any other is asked of the node, which gathers and measures all of it.
// Both give the same numbers.
#pragma once
#include "tavo/trajectories/key_parts.h"

namespace Tavo {

class XPathMeasure {
public:
    explicit XPathMeasure(sg::TrajectoryNode& node);

    double length() const;  // metres
    // As the path has them when they are asked for.
    double parameterAt(double fraction);
    double fractionAt(double parameter);
    bool isPolyline() const { return _isPolyline; }

private:
    struct Segment {
        double start, length;
    };
    bool measure();
    bool isBetween(std::size_t at, double distance) const;
    std::size_t find(double distance) const;

    sg::TrajectoryNode& _node;
    std::vector<Segment> _segments;
    double _length = 0;
    std::size_t _at = 0;  // the segment of the last fraction
    bool _isPolyline;
};

}  // namespace Tavo
