// From the dense keys of a sampled curve to few keys with handles.
#include "tavo/animation/animation.h"
#include "tavo/animation/curve_fit_simple.h"
#include "tavo/app/application.h"
#include "tavo/objects/scene.h"
#include <array>
#include <cmath>

namespace Tavo {
namespace {

std::wstring const fittingLabel = L"Fit Sampled Curve";

using Samples = SamplesFitter_simpleFit::Matrix;
using Floats = Qelutils::Vector<float>;

// Input and output of each sample whose output differs from that of the sample before it, kept or not; of a stretch at
// one value the first remains. `order` holds the slots along the curve.
Samples distinctSamples(Floats const& inputs, Floats const& outputs, Qelutils::Vector<int> const& order,
                        float duplicateEpsilon) {
    Qelutils::Vector<int> kept;
    for (std::size_t i = 0; i < order.size(); ++i)
        if (i == 0 || std::abs(outputs[order[i]] - outputs[order[i - 1]]) > duplicateEpsilon) kept.push_back(order[i]);
    Samples out(int(kept.size()), 2);
    for (int row = 0; row < out.rows(); ++row) out(row, 0) = inputs[kept[row]], out(row, 1) = outputs[kept[row]];
    return out;
}

// The keys of a fit: the joints, and the control points beside them as offsets from them.
struct FittedKeys {
    Floats inputs, outputs, inX, inY, outX, outY;

    explicit FittedKeys(SamplesFitter_simpleFit const& fitter) {
        for (unsigned j = 0; j < fitter.getBreakPointsNum(); ++j) add(fitter, 3 * j);
    }

private:
    using Point = std::array<double, 2>;

    // The index before the first control point wraps, so that there is none, as behind the last.
    void add(SamplesFitter_simpleFit const& fitter, unsigned joint) {
        Qelp::Vector<double> key;
        fitter.getControlPoint(joint, key);
        Point const before = offset(fitter, joint - 1, key), after = offset(fitter, joint + 1, key);
        inputs.push_back(float(key[0])), outputs.push_back(float(key[1]));
        inX.push_back(float(before[0])), inY.push_back(float(before[1]));
        outX.push_back(float(after[0])), outY.push_back(float(after[1]));
    }

    static Point offset(SamplesFitter_simpleFit const& fitter, unsigned index, Qelp::Vector<double> const& key) {
        Qelp::Vector<double> handle;
        if (!fitter.getControlPoint(index, handle)) return {};
        return {handle[0] - key[0], handle[1] - key[1]};
    }
};

}  // namespace

// The first test says the opposite of its message: a decision of this system. A curve that is not sampled and is not to
// be resampled is fitted key by key.
bool XAnimation::FitSampledCurve(int resample, float tolerance, int maxRefinementIterations, int maxSamples,
                                 int refinementSteps, float duplicateEpsilon) {
    if (!isFloatMode()) return false;
    if (!IsCurveSampled().Boolean() && resample >= 2) {
        XApplication::Instance().LogWarning(
            L"Fitting impossible as the curve is not sampled and it is specified not to be re-sampled.");
        return false;
    }
    XChangeBlock const block(Scene(), fittingLabel);
    if (resample >= 2) UniformSampling(resample);
    Floats inputs, outputs;
    KeyframeInputValues().Floats(inputs);
    KeyframeOutputValues().Floats(outputs);
    Qelutils::Vector<int> order;
    curveNode()->getKeysOrderArray(order);
    SamplesFitter_simpleFit fitter;
    if (!fitter.fit(distinctSamples(inputs, outputs, order, duplicateEpsilon), tolerance, maxRefinementIterations,
                    maxSamples, refinementSteps))
        return false;
    FittedKeys const keys(fitter);
    ClearAnimation();
    writeKeys(keys.inputs, keys.outputs, SplineInterpolation, LinearCoupledContinuity);
    KeyframeInTangentsX().SetFloat(keys.inX);
    KeyframeInTangentsY().SetFloat(keys.inY);
    KeyframeOutTangentsX().SetFloat(keys.outX);
    KeyframeOutTangentsY().SetFloat(keys.outY);
    IsCurveSampled().SetBoolean(false);
    return true;
}

bool XAnimation::FitSampledCurve(int resample, float tolerance, int maxRefinementIterations, int maxSamples,
                                 int refinementSteps) {
    return FitSampledCurve(resample, tolerance, maxRefinementIterations, maxSamples, refinementSteps, 1e-5F);
}

}  // namespace Tavo
