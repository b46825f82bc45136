#include "tavo/trajectories/motion_report.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <algorithm>
#include <cmath>
#include <numeric>

namespace Tavo {
namespace {

// Gathers absolute differences.
class Differences {
public:
    void add(float before, float after) {
        double const change = std::abs(double(after) - double(before));
        _largest = std::max(_largest, change), _sum += change, ++_count;
    }
    XMotionChange::Measure measure() const { return {float(_largest), _count > 0 ? float(_sum / double(_count)) : 0}; }

private:
    double _largest = 0, _sum = 0;
    std::size_t _count = 0;
};

}  // namespace

XMotionReport::Motion::Motion(XTrajectory const& trajectory) : length(trajectory.MaxArcLength().Float()) {
    if (!trajectory.IsValid()) return;
    XTranslationKeys const keys(*static_cast<sg::TrajectoryNode*>(trajectory.getNode()));
    for (int slot = 0; slot < keys.count(); ++slot) positions.push_back(keys[slot].position());
    XAnimation const curve = trajectory.TimingCurve();
    curve.KeyframeInputValues().Floats(times);
    curve.KeyframeOutputValues().Floats(fractions);
    times.resize(std::min(times.size(), fractions.size()));
}

float XMotionReport::Motion::speed(std::size_t from, std::size_t to) const {
    double const duration = double(times[to]) - double(times[from]);
    double const distance = (double(fractions[to]) - double(fractions[from])) * double(length);
    return duration > 0 ? float(distance / duration) : 0;
}

XMotionChange XMotionReport::Change() const {
    Motion const now(_trajectory);
    XMotionChange change;
    for (std::size_t i = 0; i < std::min(now.positions.size(), _before.positions.size()); ++i)
        change.keysMoved += now.positions[i] != _before.positions[i];
    XAttribute const guards = _trajectory.SafeGuardsArray();
    for (int i = 0; _trajectory.UseSafeGuards().Boolean() && i < guards.AttributeCount(); ++i)
        change.keysHeld.push_back(countHeld(guards.Attribute(i), now));
    measureTiming(now, change);
    return change;
}

void XMotionReport::measureTiming(Motion const& now, XMotionChange& change) const {
    Qelutils::Vector<std::size_t> order(std::min(now.times.size(), _before.times.size()));
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return _before.times[a] < _before.times[b]; });
    XAnimation const curve = _trajectory.TimingCurve();
    Differences progress, speed, time;
    for (std::size_t k = 0; k < order.size(); ++k) {
        std::size_t const i = order[k];
        progress.add(_before.fractions[i], curve.Interpolate(_before.times[i]));
        time.add(_before.times[i], now.times[i]);
        if (k > 0) speed.add(_before.speed(order[k - 1], i), now.speed(order[k - 1], i));
    }
    change.progress = progress.measure(), change.speed = speed.measure(), change.time = time.measure();
}

int XMotionReport::countHeld(XAttribute const& guard, Motion const& now) const {
    PathPoint const centre(guard.Attribute(0).Vector().AsVector());
    double const radius = double(guard.Attribute(1).Float());
    int held = 0;
    for (std::size_t i = 0; i < std::min(now.positions.size(), _before.positions.size()); ++i)
        held +=
            (PathPoint(_before.positions[i]) - centre).length() <= radius && now.positions[i] == _before.positions[i];
    return held;
}

}  // namespace Tavo
