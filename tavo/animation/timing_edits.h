// The arithmetic of a timing curve, whose keys say when (inputs, seconds) the motion is where along its path (outputs,
// fractions of the path's length). Free of any scene: keys are plain arrays, in the order of their slots.
//
// Repairing the timing after the path changed, and moving it by the weights of handles that are spread evenly in time.
#pragma once
#include "qel/utils/vector.h"

namespace Tavo {

// The timing keys, one input and one output a slot.
struct XTimingKeys {
    Qelutils::Vector<float> inputs, outputs;
};

// ---- repair, with the new fraction of each key's place on the path; arrays of another length than the keys' change
// nothing ----

// Each key stays on its place of the path; times stay as they are, bit for bit.
bool RetainConstraints(Qelutils::Vector<double> const& newFractions, XTimingKeys& keys);
// The speed stays, and times move. `order` holds the slots by rising input. Between neighbours the time changes as the
// distance does; where the old distance, in metres, is at most `eps`, it stays. The first key's time becomes the old
// output of that key: a decision of this system.
bool RetainFeel(Qelutils::Vector<double> const& newFractions, Qelutils::Vector<int> const& order, double oldLength,
                double newLength, double eps, XTimingKeys& keys);

// ---- handles ----

// The weights of timing handles spread evenly from the time `first` to the time `last`.
struct XTimingWeights {
    float first = 0, last = 0;
    Qelutils::Vector<float> weights;

    // A smooth step from one handle's weight to the next. Outside the handles' range the end handle's weight; one
    // handle is alike everywhere, none is 0.
    float At(float input) const;
};

// Whether no output is below that of the slot before it; the order of the inputs does not count.
bool IsTimingMonotonic(Qelutils::Vector<float> const& outputs);

// Outputs become originals + weight * amount. False, and nothing changes, if that must be monotonic and is not, or if
// there are not as many originals as keys.
bool SlideTiming(Qelutils::Vector<float> const& originals, XTimingWeights const& handles, float amount,
                 bool mustBeMonotonic, XTimingKeys& keys);
// Outputs move away from the pivot by weight * factor times their distance from it, from where they are: repeated
// events compound. False, and nothing changes, if the result must be monotonic and is not.
bool ScaleTiming(XTimingWeights const& handles, float pivot, float factor, bool mustBeMonotonic, XTimingKeys& keys);

}  // namespace Tavo
