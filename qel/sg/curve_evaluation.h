// Evaluation of animation curves, free of the scene: a map from one float (normally time) to one float or one rotation.
//
// The keys stay where they are, in the parallel arrays of whoever owns the curve, in the order in which they were added
// (a key's place there is its slot). A PreparedCurve holds what evaluation needs besides: the order of the keys by
// input. Keys that already rise, as those of an imported clip do, need none: the caller's arrays are read as they
// stand, and a sample of a linear curve touches the inputs, the outputs and the hint. Otherwise the curve keeps two
// arrays of its own, the sorted inputs (dense, for the search) and the slot of each. Outputs and tangents are never
// copied, so that editing them costs nothing and inserting or moving a key moves two arrays.
//
// Rules
// - Order: by input; among keys at one input by slot, and the first slot stands for all of them, on both sides. A key
//   whose input is not finite stands last and takes no part.
// - Between two keys the left key's interpolation decides: constant holds its output; linear blends; spline runs a
//   cubic Bezier curve through the key, its out handle, the next key's in handle and the next key; external gives the
//   value that the caller passes, also exactly at the left key.
// - The Bezier curve is read as a function of the input. It is one for all handles because each is first fitted to its
//   segment: one that reaches past the opposite key is shortened, direction kept, to end at that key's input; one that
//   points backwards keeps its y and loses its x. With both handles' x inside the segment x(u) never falls, even when
//   the handles overlap. A handle of (0, 0) is none: the curve leaves or meets that key flat, as with a horizontal
//   handle of a third of the segment, so that keys without handles give the ease 3s^2 - 2s^3.
// - The root of x(u) = input is found by Halley's method, in hard cases by Newton's in a bracket, to 1e-9 in u.
// - Before the first and after the last key: constant holds the end key's output, linear goes on with the gradient,
//   cyclic repeats, reverseCyclic repeats with every other turn mirrored in time, offsetCyclic adds last minus first
//   output for each turn. At the last key its own output is the value.
// - No keys give 0, one key or keys at one input alone their first slot's output. An input that is not a number gives
//   the first key's output; infinite inputs count as the largest finite ones. Finite keys give finite values.
// - Rotations follow the same rules with slerp along the shorter arc; they have no handles, so spline eases as above.
//
// Nothing here allocates while evaluating or throws; a const curve may be read by many threads, each with its own hint.
#pragma once
#include <vector>

#include "qel/utils/values.h"

namespace sg {

struct CurveSpline;

// Values of the key attribute; others count as linear.
enum class CurveInterpolation : int { constant, linear, spline, external };

enum class CurveExtrapolation : int { constant, linear, cyclic, reverseCyclic, offsetCyclic };

// The keys as they lie in their arrays, by slot; each array that is given holds `count` elements.
struct CurveKeys {
    unsigned count = 0;
    float const* inputs = nullptr;
    float const* outputs = nullptr;       // none: all 0, as in a curve of rotations
    int const* interpolations = nullptr;  // CurveInterpolation; none: all linear
    float const* inTangentsX = nullptr;   // handles, relative to their key, in units of input and output;
    float const* inTangentsY = nullptr;   // none: no key has handles
    float const* outTangentsX = nullptr;
    float const* outTangentsY = nullptr;
    int const* continuities = nullptr;      // governs editing; evaluation does not read it
    Qelp::Quat const* rotations = nullptr;  // of unit length (others are normalised); none: all the identity
    CurveExtrapolation pre = CurveExtrapolation::constant;
    CurveExtrapolation post = CurveExtrapolation::constant;
};

struct CurvePoint {
    float x = 0, y = 0;
    bool operator==(CurvePoint const&) const = default;
};

// Over all keys with a finite input; all 0 without keys.
struct CurveBounds {
    float minInput = 0, maxInput = 0, minOutput = 0, maxOutput = 0;
    bool operator==(CurveBounds const&) const = default;
};

// The order of the keys and everything that is read through it. It points into the arrays it was last given: when they
// move in memory or change, tell it with one of the first five operations before the next evaluation.
//
// Ranks are places in the sorted order. A hint is the rank of the segment used last: the search looks there and in the
// next segment first. It may start at any value and never changes a result.
class PreparedCurve {
public:
    // Any change. O(n) without allocation while the keys rise in slot order or the order found before still holds;
    // otherwise one sort.
    void update(CurveKeys const&);
    // The arrays moved, or outputs, tangents, rotations or extrapolations changed; not inputs, interpolations or count.
    void rebind(CurveKeys const&);
    // One key changed: it is in the given arrays, has left them (it was in `slot`), or has other values. At most one
    // move of the tail of the sorted inputs and slots. A count that does not fit, or a slot that does not exist, is an
    // update.
    void insertKey(CurveKeys const&, unsigned slot);
    void removeKey(CurveKeys const&, unsigned slot);
    void keyChanged(CurveKeys const&, unsigned slot);

    unsigned count() const { return m_keys.count; }
    unsigned slotOf(unsigned rank) const { return isIdentity() ? rank : m_order[rank]; }  // rank < count()
    bool isIdentity() const { return m_order.empty(); }  // the keys rise in slot order and are read in place
    CurveBounds bounds() const;                          // O(n) for the outputs

    // `external` is the value of segments whose interpolation is external.
    float evaluate(float input, unsigned& hint, float external = 0) const {
        float const* const x = m_x;
        unsigned i = hint;
        if (i < m_plainSegments && x[i] <= input) {
            if (!(input < x[i + 1])) ++i;
            if (i < m_plainSegments && input < x[i + 1]) {
                hint = i;
                return blend(i, input);
            }
        }
        return evaluateAny(input, hint, external);
    }

    Qelp::Quat evaluateRotation(float input, unsigned& hint, Qelp::Quat const& external = {}) const;

    // The slope at the first and the last key, as linear extrapolation continues it: that of the end segment, 0 when it
    // is constant, external or missing. A spline's is its handle's; when the handle has no x, where the true slope
    // would be infinite, that of the chord.
    float preGradient() const;
    float postGradient() const;

    // The handle's end, key plus tangent, before it is fitted to the segment; of a missing handle the end of the flat
    // one that stands for it. False, and no change, when the segment on that side is missing or no spline.
    bool inputTangentControlPoint(unsigned rank, CurvePoint&) const;
    bool outputTangentControlPoint(unsigned rank, CurvePoint&) const;

    // A polyline of the curve from one input to another, rising, for drawing. Each key in between is a point, steps
    // have two at one x; splines are divided so that no chord is farther from the curve than `tolerance` of the
    // segment's (or its drawn part's) box. Many repetitions of a cyclic curve are sampled evenly instead. Replaces the
    // contents; empty without keys or when a bound is not finite. External segments stand at 0.
    void points(float from, float to, std::vector<CurvePoint>& out, double tolerance = 1.0 / 500) const;

private:
    struct Segment {
        unsigned left, right;  // ranks of two keys, the first of their input each
    };
    struct Folded {
        double input;   // inside the key range
        double cycles;  // whole turns away from it, negative before the first key
    };

    bool isLinearKey(unsigned slot) const;
    bool rises() const;
    bool standsInOrder(unsigned slot) const;
    unsigned insertionRank(unsigned slot) const;
    unsigned rankOf(unsigned slot) const;
    void sort();
    void spreadExcept(unsigned slot);
    void insertSorted(unsigned slot);
    void finish(unsigned changedRank);
    void finish();
    void setKeys(CurveKeys const&);

    float const* sortedInputs() const { return isIdentity() ? m_keys.inputs : m_sorted.data(); }
    double input(unsigned rank) const { return sortedInputs()[rank]; }
    double output(unsigned rank) const { return m_keys.outputs ? m_keys.outputs[slotOf(rank)] : 0; }
    CurveInterpolation interpolation(unsigned rank) const;
    unsigned firstOfInput(unsigned rank) const;
    unsigned last() const { return firstOfInput(m_used - 1); }
    bool hasSpan() const { return m_used > 1 && input(0) < input(m_used - 1); }
    Segment firstSegment() const;
    Segment lastSegment() const;
    Segment segmentAfter(unsigned rank) const;
    template<class Input> unsigned search(Input) const;
    template<class Input> Segment find(Input, unsigned& hint) const;
    double fraction(Segment, double input) const;
    Folded fold(double input, CurveExtrapolation) const;

    // In a plain segment, where ranks are slots.
    float blend(unsigned i, float input) const {
        double const x0 = m_x[i], y0 = m_y[i];
        return float(y0 + (input - x0) / (m_x[i + 1] - x0) * (m_y[i + 1] - y0));
    }
    float evaluateAny(float input, unsigned& hint, float external) const;
    template<class Input> double inside(Input, unsigned& hint, double external) const;
    double outside(double input, unsigned& hint, double external) const;
    double valueIn(Segment, double input, double external) const;
    double gradient(Segment, unsigned end) const;

    CurveSpline spline(Segment) const;

    Qelp::Quat rotation(unsigned rank) const;
    Qelp::Quat rotationInside(double input, unsigned& hint, Qelp::Quat const& external) const;
    Qelp::Quat rotationOutside(double input, unsigned& hint, Qelp::Quat const& external) const;

    using Points = std::vector<CurvePoint>;
    void addInside(double from, double to, double tolerance, Points&) const;
    void addSegment(Segment, double from, double to, double tolerance, Points&) const;
    void addTurns(double from, double to, double tolerance, Points&) const;
    void addTurn(double cycle, double from, double to, double tolerance, Points&) const;
    void addOutside(double from, double to, double tolerance, Points&) const;

    // A sample of a plain segment touches only these, so that they may share a cache line with what the owner needs.
    float const *m_x = nullptr, *m_y = nullptr;  // inputs and outputs of m_keys
    unsigned m_plainSegments = 0;   // count - 1 if the keys rise strictly in slot order and all are linear, otherwise 0
    unsigned m_used = 0;            // keys with a finite input: the ranks that evaluation reads
    CurveKeys m_keys;               // as last told
    bool m_hasTies = false;         // some keys may share their input
    bool m_isLinear = true;         // all keys interpolate linearly
    std::vector<unsigned> m_order;  // slot by rank; empty when each slot is its own rank
    std::vector<float> m_sorted;    // input by rank, infinity for those that are not finite
};

}  // namespace sg
