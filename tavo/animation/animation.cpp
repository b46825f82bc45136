#include "tavo/animation/animation.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/units.h"
#include <cmath>

namespace Tavo {
namespace {

std::wstring const samplingLabel = L"Uniform Sampling";

// The same value for each of `count` keys.
template<class Value> Qelutils::Vector<Value> constant(std::size_t count, Value value) {
    return Qelutils::Vector<Value>(count, value);
}

Qelutils::Vector<float> steps(int count, float first, float step) {
    Qelutils::Vector<float> inputs(std::size_t(std::max(count, 0)));
    for (std::size_t i = 0; i < inputs.size(); ++i) inputs[i] = float(double(first) + double(i) * double(step));
    return inputs;
}

}  // namespace

XScene& XAnimation::Scene() const { return XSceneObject(*this).Scene(); }

// ---- evaluation ----

float XAnimation::Interpolate(float input) const {
    float out = 0;
    return isFloatMode() && curveNode()->compute(input, out) ? out : 0;
}

float XAnimation::PreGradient() const { return isFloatMode() ? curveNode()->computePreGradient() : 0; }

float XAnimation::PostGradient() const { return isFloatMode() ? curveNode()->computePostGradient() : 0; }

bool XAnimation::GetInputTangentControlPoint(int key, float& value) const {
    return IsValid() && curveNode()->getInputTangentControlPoint(key, value);
}

bool XAnimation::GetOutputTangentControlPoint(int key, float& value) const {
    return IsValid() && curveNode()->getOutputTangentControlPoint(key, value);
}

void XAnimation::CurvePoints(Qelutils::Vector<Point>& out, float from, float to) const {
    if (IsValid())
        curveNode()->compute(from, to, out);
    else
        out.clear();
}

// ---- the keys as a whole ----

int XAnimation::KeyframeCount() const { return KeyframeInputValues().ArraySize(); }

XAnimation& XAnimation::SetKeyframeCount(int count) {
    if (count < 1) return *this;
    if (isFloatMode()) forEachFloatArray([&](XAttribute array) { array.SetArraySize(count); });
    if (isQuaternionMode()) {
        KeyframeInputValues().SetArraySize(count);
        KeyframeOutputValuesQuat().SetArraySize(count);
    }
    return *this;
}

XAnimation& XAnimation::ClearAnimation() {
    for (int row : {26, 27, 28, 33, 34, 29, 30, 31, 32}) Attribute(row).Clear();
    return *this;
}

XAnimation& XAnimation::InitializeKeyframes(int count, float first, float step, float value, int interpolation,
                                            int continuity) {
    Qelutils::Vector<float> const inputs = steps(count, first, step);
    if (isFloatMode()) writeKeys(inputs, constant(inputs.size(), value), interpolation, continuity);
    return *this;
}

XAnimation& XAnimation::InitializeKeyframes(int count, float first, float step, XQuaternion const& value) {
    if (!isQuaternionMode()) return *this;
    Qelutils::Vector<float> const inputs = steps(count, first, step);
    KeyframeInputValues().SetFloat(inputs);
    KeyframeOutputValuesQuat().SetArraySize(int(inputs.size()));
    for (int i = 0; i < int(inputs.size()); ++i) curveNode()->setRotationKey(i, value.AsQuaternion());
    return *this;
}

// All keys of float mode, one write an array.
void XAnimation::writeKeys(Qelutils::Vector<float> const& inputs, Qelutils::Vector<float> const& outputs,
                           int interpolation, int continuity) {
    KeyframeInputValues().SetFloat(inputs);
    KeyframeOutputValues().SetFloat(outputs);
    KeyframeInterpolations().SetEnumeration(constant(inputs.size(), interpolation));
    KeyframeContinuities().SetEnumeration(constant(inputs.size(), continuity));
    for (int row : {29, 30, 31, 32}) Attribute(row).SetFloat(constant(inputs.size(), 0.F));
}

// What SetKeyframe for one sample after the other would leave: the inputs rise, so that a sample whose input is already
// taken meets the key before it, and sets its output.
bool XAnimation::UniformSampling(int segments) {
    if (segments < 2 || !isFloatMode()) return false;
    XChangeBlock const block(Scene(), samplingLabel);
    double const first = double(KeyframeMinX().Float()), range = double(KeyframeMaxX().Float()) - first;
    Qelutils::Vector<float> inputs, outputs;
    for (int i = 0; i <= segments; ++i) {
        float const input = float(first + range * i / segments), output = Interpolate(input);
        if (!inputs.empty() && inputs.back() == input) {
            outputs.back() = output;
            continue;
        }
        inputs.push_back(input);
        outputs.push_back(output);
    }
    ClearAnimation();
    writeKeys(inputs, outputs, LinearInterpolation, CoupledContinuity);
    IsCurveSampled().SetBoolean(true);
    return true;
}

// ---- angles ----

// In closed form instead of turn by turn, so that no value takes long; one that is not finite stays.
void XAnimation::EnsureCyclicContinuity(int key, float& value, sg::AngularUnit unit) const {
    if (key <= 0 || OutputUnits().Integer() != AngleUnit) return;
    double const half = unit == sg::AngularUnit::Degrees ? 180.0 : double(3.1415927F), turn = 2 * half;
    double const above = double(value) - double(KeyframeOutputValues().Float(key - 1));
    if (!std::isfinite(above)) return;
    if (above > half) value = float(value - turn * std::ceil((above - half) / turn));
    if (above <= -half) value = float(value + turn * (std::floor((-half - above) / turn) + 1));
}

void XAnimation::EnsureCyclicContinuity(int key, float& value) const {
    EnsureCyclicContinuity(key, value, sg::AngularUnit::Radians);
}

}  // namespace Tavo
