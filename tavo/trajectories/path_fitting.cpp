// From the dense keys of a sampled path to few keys with handles.
#include "tavo/animation/curve_fit_global.h"
#include "tavo/animation/curve_fit_simple.h"
#include "tavo/app/application.h"
#include "tavo/trajectories/new_keys.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <cmath>

namespace Tavo {
namespace {

std::wstring const fittingLabel = L"Fit Sampled Trajectory";

constexpr double pivotTolerance = 0.001, knotEpsilon = 1e-12;

// The keys whose place differs from that of the key before it, kept or not, along the path.
struct DistinctSamples {
    Qelp::Matrix<double> points;
    Qelp::Vector<double> parameters;  // the numbers of those keys

    DistinctSamples(sg::TrajectoryNode& node, float duplicateEpsilon) {
        Qelutils::Vector<int> order;
        node.getTranslationKeysOrderArray(order);
        XTranslationKeys const keys(node);
        auto const place = [&](std::size_t i) { return PathPoint(keys[order[i]].position()); };
        for (std::size_t i = 0; i < order.size(); ++i)
            if (i == 0 || !((place(i) - place(i - 1)).length() <= double(duplicateEpsilon)))
                parameters.push_back(double(i));
        points = Qelp::Matrix<double>(int(parameters.size()), 3);
        for (int row = 0; row < points.rows(); ++row) {
            PathPoint const p = place(std::size_t(parameters[std::size_t(row)]));
            points(row, 0) = p.x, points(row, 1) = p.y, points(row, 2) = p.z;
        }
    }
};

template<class Fitter> Qelp::Vector3 controlPoint(Fitter const& fitter, unsigned index) {
    Qelp::Vector<double> found;
    if (!fitter.getControlPoint(index, found)) return {};
    return toVector({found[0], found[1], found[2]});
}

// The joints of a fit, and the control points beside them; the ends of the path have none on their outer sides.
template<class Fitter> std::vector<XNewTranslationKey> keysOf(Fitter const& fitter, int continuity) {
    std::vector<XNewTranslationKey> keys;
    for (unsigned joint = 0; joint < fitter.getBreakPointsNum(); ++joint) {
        Qelp::Vector3 const in = joint == 0 ? Qelp::Vector3() : controlPoint(fitter, 3 * joint - 1);
        XNewTranslationKey::Handles const handles{in, controlPoint(fitter, 3 * joint + 1)};
        keys.push_back({controlPoint(fitter, 3 * joint), handles, continuity});
    }
    return keys;
}

// Whether samples of doubles have led beyond the range of a float.
bool areFinite(std::vector<XNewTranslationKey> const& keys) {
    for (XNewTranslationKey const& key : keys)
        for (Qelp::Vector3 const& p : {key.handles->in, key.position, key.handles->out})
            if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return false;
    return true;
}

bool replaceKeys(sg::TrajectoryNode& node, std::vector<XNewTranslationKey> const& keys) {
    if (!areFinite(keys)) return false;
    replaceTranslationKeys(node, keys);
    return true;
}

bool fitWalking(sg::TrajectoryNode& node, float tolerance, int maxRefinementIterations, int maxSamples,
                int refinementSteps, float duplicateEpsilon) {
    SamplesFitter_simpleFit fitter;
    return fitter.fit(DistinctSamples(node, duplicateEpsilon).points, double(tolerance), maxRefinementIterations,
                      maxSamples, refinementSteps) &&
           replaceKeys(node, keysOf(fitter, CoupledContinuity));
}

}  // namespace

// The first test says the opposite of its message: a decision of this system. A path that is not sampled and is not to
// be resampled is fitted key by key.
bool XTrajectory::FitSampledCurveTranslation(int resample, float tolerance, int maxRefinementIterations, int maxSamples,
                                             int refinementSteps, float duplicateEpsilon) {
    if (!IsValid() || !std::isfinite(tolerance)) return false;
    if (!IsTranslationCurveSampled().Boolean() && resample >= 2) {
        XApplication::Instance().LogWarning(
            L"Fitting impossible as the trajectory is not sampled and it is specified not to be re-sampled.");
        return false;
    }
    XTrajectoryEdit const edit(*this, fittingLabel);
    if (!edit || (resample >= 2 && !UniformSampling(resample))) return false;
    if (!fitWalking(edit.node(), tolerance, maxRefinementIterations, maxSamples, refinementSteps, duplicateEpsilon))
        return false;
    IsTranslationCurveSampled().SetBoolean(false);
    return true;
}

bool XTrajectory::FitSampledCurveTranslation(int segments, int window, float duplicateEpsilon) {
    if (!IsValid() || !IsTranslationCurveSampled().Boolean()) return false;
    DistinctSamples const samples(*pathNode(), duplicateEpsilon);
    return FitSampledCurveTranslation_interactive(samples.parameters, samples.points, segments, window);
}

bool XTrajectory::FitSampledCurveTranslation_interactive(Qelp::Vector<double> const& parameters,
                                                         Qelp::Matrix<double> const& samples, int segments, int window,
                                                         float) {
    XTrajectoryEdit const edit(*this, fittingLabel);
    if (!edit || !fitSampledCurveTranslation_sharedCode(samples, parameters, segments, window)) return false;
    IsTranslationCurveSampled().SetBoolean(false);
    return true;
}

bool XTrajectory::fitSampledCurveTranslation_sharedCode(Qelp::Matrix<double> const& samples,
                                                        Qelp::Vector<double> const& parameters, int segments,
                                                        int window) {
    SamplesFitter_multiFit fitter;
    return samples.columns() == 3 &&
           fitter.superSegmentFit(samples, parameters, segments, window, pivotTolerance, knotEpsilon) &&
           replaceKeys(*pathNode(), keysOf(fitter, LinearCoupledContinuity));
}

}  // namespace Tavo
