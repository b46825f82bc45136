#include "tavo/animation/timing_edits.h"
#include "tavo/animation/bezier.h"
#include <algorithm>
#include <cmath>
#include <functional>

namespace Tavo {
namespace {

using Floats = Qelutils::Vector<float>;
using Doubles = Qelutils::Vector<double>;

bool areAlike(XTimingKeys const& keys, std::size_t count) {
    return keys.inputs.size() == count && keys.outputs.size() == count;
}

// Whether there is one entry a key, each of them a slot.
bool areSlots(Qelutils::Vector<int> const& order, std::size_t count) {
    return order.size() == count &&
           std::all_of(order.begin(), order.end(), [=](int slot) { return slot >= 0 && std::size_t(slot) < count; });
}

void setOutputs(Doubles const& fractions, Floats& outputs) {
    std::transform(fractions.begin(), fractions.end(), outputs.begin(), [](double f) { return float(f); });
}

// The times by slot, from that of the first key in the order on: the time to the next key changes as the distance does.
Floats newTimes(double time, Doubles const& newFractions, Qelutils::Vector<int> const& order, double oldLength,
                double newLength, double eps, XTimingKeys const& keys) {
    Floats out = keys.inputs;
    out[order[0]] = float(time);
    for (std::size_t k = 1; k < order.size(); ++k) {
        int const a = order[k - 1], b = order[k];
        double const oldDistance = (double(keys.outputs[b]) - double(keys.outputs[a])) * oldLength;
        double const newDistance = newLength * (newFractions[b] - newFractions[a]);
        double duration = double(keys.inputs[b]) - double(keys.inputs[a]);
        if (std::abs(oldDistance) > eps) duration = duration * newDistance / oldDistance;
        out[b] = float(time += duration);
    }
    return out;
}

bool setIfAllowed(Floats&& outputs, bool mustBeMonotonic, XTimingKeys& keys) {
    if (mustBeMonotonic && !IsTimingMonotonic(outputs)) return false;
    keys.outputs = std::move(outputs);
    return true;
}

}  // namespace

// ---- repair ----

bool RetainConstraints(Doubles const& newFractions, XTimingKeys& keys) {
    if (!areAlike(keys, newFractions.size())) return false;
    setOutputs(newFractions, keys.outputs);
    return true;
}

bool RetainFeel(Doubles const& newFractions, Qelutils::Vector<int> const& order, double oldLength, double newLength,
                double eps, XTimingKeys& keys) {
    if (!areAlike(keys, newFractions.size()) || !areSlots(order, newFractions.size())) return false;
    if (order.empty()) return true;
    double const first = double(keys.outputs[order[0]]);  // the output, on purpose
    keys.inputs = newTimes(first, newFractions, order, oldLength, newLength, eps, keys);
    setOutputs(newFractions, keys.outputs);
    return true;
}

// ---- handles ----

float XTimingWeights::At(float input) const {
    if (weights.empty()) return 0;
    std::size_t const gaps = weights.size() - 1;
    double const place = (double(input) - double(first)) / (double(last) - double(first)) * double(gaps);
    if (!(place > 0)) return weights.front();
    if (place >= double(gaps)) return weights.back();
    std::size_t const i = std::size_t(place);
    auto const [next0, next1, here1, here0] = bezierWeights(double(i) + 1 - place);
    return float((next0 + next1) * double(weights[i + 1]) + (here1 + here0) * double(weights[i]));
}

bool IsTimingMonotonic(Floats const& outputs) {
    return std::adjacent_find(outputs.begin(), outputs.end(), std::greater<float>()) == outputs.end();
}

bool SlideTiming(Floats const& originals, XTimingWeights const& handles, float amount, bool mustBeMonotonic,
                 XTimingKeys& keys) {
    if (!areAlike(keys, originals.size())) return false;
    Floats outputs = originals;
    for (std::size_t i = 0; i < outputs.size(); ++i) outputs[i] += handles.At(keys.inputs[i]) * amount;
    return setIfAllowed(std::move(outputs), mustBeMonotonic, keys);
}

bool ScaleTiming(XTimingWeights const& handles, float pivot, float factor, bool mustBeMonotonic, XTimingKeys& keys) {
    if (!areAlike(keys, keys.outputs.size())) return false;
    Floats outputs = keys.outputs;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        outputs[i] += (outputs[i] - pivot) * handles.At(keys.inputs[i]) * factor;
    return setIfAllowed(std::move(outputs), mustBeMonotonic, keys);
}

}  // namespace Tavo
