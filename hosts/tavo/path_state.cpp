#include "hosts/tavo/path_state.h"

#include "qel/sg/trajectory_node.h"
#include "qel/utils/text.h"
#include "tavo/trajectories/key_parts.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

constexpr int pointsOfASpline = 24;                           // of one segment of a line
constexpr std::size_t fewestMoments = 400, mostTimes = 4000;  // a picture has a thousand pixels across

// A trajectory as it is read: its node, and the way from its own space into the world.
class PathReader {
public:
    explicit PathReader(XTrajectory const& path) :
        path_(path), node_(*static_cast<sg::TrajectoryNode*>(path.getNode())), world_(path.WorldMatrix().Matrix()) {}

    PathState read() {
        state_.name = toUtf8(path_.Name());
        state_.isSampled = path_.IsTranslationCurveSampled().Boolean();
        state_.length = node_.getPath().length();
        readKeys();
        readLine();
        readGuards();
        readMotion();
        return std::move(state_);
    }

private:
    PathPoint toWorld(Qelp::Vector3 const& p) const {
        XMatrix const& m = world_;
        auto const column = [&](int c) {
            auto const element = [&](int row) { return double(m.Element(row, c)); };
            double const value =
                double(p.x) * element(0) + double(p.y) * element(1) + double(p.z) * element(2) + element(3);
            return std::isfinite(value) ? value : 0;
        };
        return {column(0), column(1), column(2)};
    }
    XTranslationKey key(int rank) const { return XTranslationKeys(node_)[order_[std::size_t(rank)]]; }
    bool isSpline(int rank) const {
        return rank >= 0 && rank + 1 < int(order_.size()) && key(rank).interpolation() == SplineInterpolation;
    }

    void readKeys() {
        node_.getTranslationKeysOrderArray(order_);
        for (int rank = 0; rank < int(order_.size()); ++rank) {
            XTranslationKey const own = key(rank);
            PathState::Key& read = state_.keys.emplace_back(PathState::Key{toWorld(own.position()), {}, {}});
            Qelp::Vector3 handle;
            if (isSpline(rank - 1) && node_.getTranslationInputTangentControlPoint(own.number(), handle))
                read.in = toWorld(handle);
            if (isSpline(rank) && node_.getTranslationOutputTangentControlPoint(own.number(), handle))
                read.out = toWorld(handle);
        }
    }
    void readLine() {
        Qelp::Vector3 place;
        for (int rank = 0; rank < int(order_.size()); ++rank) {
            int const parts = isSpline(rank) ? pointsOfASpline : 1;
            for (int i = 0; i < parts; ++i)
                if (node_.computePosition_parameter(rank + double(i) / parts, place))
                    state_.line.push_back(toWorld(place));
        }
    }
    void readGuards() {
        XAttribute const guards = path_.SafeGuardsArray();
        for (int i = 0; i < guards.AttributeCount(); ++i) {
            XAttribute const guard = guards.Attribute(i);
            auto const number = [&](int part) { return std::max(0.0, double(guard.Attribute(part).Float())); };
            state_.guards.push_back({toWorld(guard.Attribute(0).Vector().AsVector()), number(1), number(2),
                                     path_.UseSafeGuards().Boolean()});
        }
    }

    void readMotion() {
        XAnimation const curve = path_.TimingCurve();
        std::vector<double> const times = curve.IsValid() ? timesOf(curve) : std::vector<double>();
        if (times.size() < 2 || order_.empty()) return;
        std::size_t const parts = std::max<std::size_t>(1, (fewestMoments + times.size() - 2) / (times.size() - 1));
        for (std::size_t i = 0; i + 1 < times.size(); ++i)
            for (std::size_t k = 0; k < parts; ++k)
                addMoment(curve, times[i] + (times[i + 1] - times[i]) * double(k) / double(parts));
        addMoment(curve, times.back());
        setSpeeds(parts);
    }
    // Those of its keys; evenly over them when it is no sampled curve, or has more than can be seen.
    static std::vector<double> timesOf(XAnimation const& curve) {
        Qelutils::Vector<float> inputs;
        curve.KeyframeInputValues().Floats(inputs);
        std::vector<double> times(inputs.begin(), inputs.end());
        std::erase_if(times, [](double t) { return !std::isfinite(t); });
        std::sort(times.begin(), times.end());
        times.erase(std::unique(times.begin(), times.end()), times.end());
        if (times.size() < 2 || (curve.IsCurveSampled().Boolean() && times.size() <= mostTimes)) return times;
        std::vector<double> even(mostTimes / 10);
        for (std::size_t i = 0; i < even.size(); ++i)
            even[i] = times.front() + (times.back() - times.front()) * double(i) / double(even.size() - 1);
        return even;
    }
    void addMoment(XAnimation const& curve, double time) {
        Qelp::Vector3 place;
        node_.computePosition(double(curve.Interpolate(float(time))), place);
        state_.motion.push_back({time, toWorld(place), 0});
    }
    // At every `step`-th moment from the distance to those before and after, and evenly in between.
    void setSpeeds(std::size_t step) {
        std::vector<PathState::Moment>& motion = state_.motion;
        std::vector<double> travelled(motion.size());
        for (std::size_t i = 1; i < motion.size(); ++i)
            travelled[i] = travelled[i - 1] + (motion[i].position - motion[i - 1].position).length();
        std::size_t const last = motion.size() - 1;
        auto const speedAt = [&](std::size_t i) {
            std::size_t const from = i < step ? 0 : i - step, to = std::min(i + step, last);
            return (travelled[to] - travelled[from]) / (motion[to].time - motion[from].time);
        };
        for (std::size_t i = 0; i < last; i += step) {
            double const here = speedAt(i), next = speedAt(i + step);
            for (std::size_t k = 0; k < step; ++k)
                motion[i + k].speed = here + (next - here) * double(k) / double(step);
        }
        motion[last].speed = speedAt(last);
    }

    XTrajectory path_;
    sg::TrajectoryNode& node_;
    XMatrix world_;
    std::vector<int> order_;
    PathState state_;
};

}  // namespace

PathPoint PathState::at(double time) const {
    auto const isBefore = [](Moment const& m, double t) { return m.time < t; };
    auto const next = std::lower_bound(motion.begin(), motion.end(), time, isBefore);
    if (next == motion.begin()) return motion.front().position;
    if (next == motion.end()) return motion.back().position;
    auto const last = next - 1;
    return last->position + (next->position - last->position) * ((time - last->time) / (next->time - last->time));
}

PathState readPath(XTrajectory const& path) { return PathReader(path).read(); }

}  // namespace host
