// New keys at places along a path.
#include "tavo/trajectories/new_keys.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <algorithm>

namespace Tavo {
namespace {

std::wstring const samplingLabel = L"Sample Trajectory";

using NewKeys = std::vector<XNewTranslationKey>;

// `fraction` of the path's length.
Qelp::Vector3 placeAt(sg::TrajectoryNode& node, double fraction) {
    Qelp::Vector3 found;
    node.computePosition(std::min(fraction, 1.0), found);
    return found;
}

// Along the path, by spans that a straight line may stand for.
class AdaptiveSpans {
public:
    AdaptiveSpans(sg::TrajectoryNode& node, float tolerance, int testSamples, int refinementIterations) :
        _node(node), _tolerance(double(tolerance)), _testSamples(testSamples), _iterations(refinementIterations) {}

    // The last span may be a thousandth longer, so that no sliver is left over from rounding.
    NewKeys run(int minSegments) const {
        double const longest = 1.0 / minSegments;
        NewKeys keys{{placeAt(_node, 0), {}}};
        for (double from = 0; from < 1; keys.push_back({placeAt(_node, from), {}}))
            from = endOfSpan(from, from + longest * 1.001 < 1 ? from + longest : 1);
        return keys;
    }

private:
    static constexpr double shortest = 1e-6;

    // Bisects between the last length that fits and the last that does not.
    double endOfSpan(double from, double farthest) const {
        double accepted = from, high = farthest, at = farthest;
        for (int count = 0;;) {
            (at - from <= shortest || isStraight(from, at) ? accepted : high) = at;
            if (accepted > from) ++count;
            if (accepted == high || count == _iterations) return accepted;
            at = high + (accepted - high) * 0.5;
            if (at <= accepted || at >= high) return accepted;
        }
    }

    // A tolerance below the rounding of the places counts as that rounding.
    bool isStraight(double from, double to) const {
        PathPoint const start(placeAt(_node, from)), end(placeAt(_node, to)), chord = end - start;
        double const rounding = 2.5e-7 * std::max(start.length(), end.length());
        for (long k = 1; k <= _testSamples; ++k) {
            double const f = double(k) / (double(_testSamples) + 1);
            PathPoint const place(placeAt(_node, from + (to - from) * f));
            if ((start + chord * f - place).length() > std::max(_tolerance, rounding)) return false;
        }
        return true;
    }

    sg::TrajectoryNode& _node;
    double _tolerance;
    int _testSamples, _iterations;
};

bool replaceBySamples(XTrajectory& trajectory, auto const& makeKeys) {
    XTrajectoryEdit const edit(trajectory, samplingLabel);
    if (!edit || edit.node().getTranslationKeyframeNum() == 0) return false;
    replaceTranslationKeys(edit.node(), makeKeys(edit.node()));
    trajectory.IsTranslationCurveSampled().SetBoolean(true);
    return true;
}

}  // namespace

bool XTrajectory::UniformSampling(int segments) {
    if (segments < 2 || segments > MostSegments) return false;
    return replaceBySamples(*this, [&](sg::TrajectoryNode& node) {
        NewKeys keys;
        for (int i = 0; i <= segments; ++i) keys.push_back({placeAt(node, double(i) / segments), {}});
        return keys;
    });
}

bool XTrajectory::AdaptiveSampling(float tolerance, int minSegments, int testSamples, int refinementIterations) {
    bool const isSound = tolerance > 0 && minSegments >= 1 && minSegments <= MostSegments;
    if (!isSound || testSamples < 1 || refinementIterations < 1) return false;
    return replaceBySamples(*this, [&](sg::TrajectoryNode& node) {
        return AdaptiveSpans(node, tolerance, testSamples, refinementIterations).run(minSegments);
    });
}

}  // namespace Tavo
