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

// The time from each key of the order to the next; the last has none.
Doubles newDurations(Doubles const& newFractions, Qelutils::Vector<int> const& order, double oldLength,
                     double newLength, double eps, XTimingKeys const& keys) {
    Doubles out(order.size());
    for (std::size_t k = 0; k + 1 < order.size(); ++k) {
        int const a = order[k], b = order[k + 1];
        double const oldDistance = (double(keys.outputs[b]) - double(keys.outputs[a])) * oldLength;
        double const newDistance = newLength * (newFractions[b] - newFractions[a]);
        out[k] = double(keys.inputs[b]) - double(keys.inputs[a]);
        if (std::abs(oldDistance) > eps) out[k] = out[k] * newDistance / oldDistance;
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
    Doubles const durations = newDurations(newFractions, order, oldLength, newLength, eps, keys);
    double time = double(keys.outputs[order[0]]);  // the output, on purpose
    for (std::size_t k = 0; k < order.size(); ++k) {
        keys.inputs[order[k]] = float(time);
        time += durations[k];
    }
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
