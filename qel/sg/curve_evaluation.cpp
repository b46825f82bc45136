#include "qel/sg/curve_evaluation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "qel/sg/curve_spline.h"
#include "qel/sg/rotation_blend.h"

namespace sg {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr double largest = std::numeric_limits<float>::max();

// Total: what is not a number, or infinite, comes last.
float sortKey(float input) { return std::isfinite(input) ? input : infinity; }

CurveInterpolation toInterpolation(int value) {
    return value < 0 || value > 3 ? CurveInterpolation::linear : CurveInterpolation(value);
}

double component(float const* array, unsigned slot) { return array ? array[slot] : 0; }

Qelp::Quat turned(Qelp::Quat const& from, Qelp::Quat const& to, double share) {
    return turned(toBlendRotation(from), toBlendRotation(to), share).toQuat();
}

double ease(double s) { return s * s * (3 - 2 * s); }

float toFloat(double value) { return float(std::clamp(value, -largest, largest)); }

}  // namespace

// ---- order

void PreparedCurve::setKeys(CurveKeys const& keys) {
    m_keys = keys;
    m_x = keys.inputs;
    m_y = keys.outputs;
}

void PreparedCurve::update(CurveKeys const& keys) {
    setKeys(keys);
    if (rises()) {
        m_order.clear();
        m_sorted.clear();
    } else {
        sort();
    }
    float const* const x = sortedInputs();
    m_hasTies = std::adjacent_find(x, x + m_keys.count) != x + m_keys.count;
    m_isLinear = true;
    for (unsigned slot = 0; slot < m_keys.count && m_isLinear; ++slot) m_isLinear = isLinearKey(slot);
    finish();
}

void PreparedCurve::rebind(CurveKeys const& keys) {
    setKeys(keys);
    finish();
}

void PreparedCurve::insertKey(CurveKeys const& keys, unsigned slot) {
    if (keys.count != m_keys.count + 1 || slot >= keys.count) return update(keys);
    setKeys(keys);
    m_isLinear = m_isLinear && isLinearKey(slot);
    if (isIdentity()) {
        if (standsInOrder(slot)) return finish(slot);
        spreadExcept(slot);
    } else if (slot + 1 < keys.count) {
        for (unsigned& other : m_order) other += other >= slot;
    }
    insertSorted(slot);
}

void PreparedCurve::removeKey(CurveKeys const& keys, unsigned slot) {
    if (keys.count + 1 != m_keys.count || slot > keys.count) return update(keys);
    setKeys(keys);
    if (!isIdentity()) {
        auto const found = std::find(m_order.begin(), m_order.end(), slot);
        m_sorted.erase(m_sorted.begin() + (found - m_order.begin()));
        m_order.erase(found);
        for (unsigned& other : m_order) other -= other > slot;
    }
    finish();
}

void PreparedCurve::keyChanged(CurveKeys const& keys, unsigned slot) {
    if (keys.count != m_keys.count || slot >= keys.count) return update(keys);
    setKeys(keys);
    m_isLinear = m_isLinear && isLinearKey(slot);
    if (isIdentity()) {
        if (standsInOrder(slot)) return finish(slot);
        spreadExcept(slot);
        return insertSorted(slot);
    }
    unsigned const rank = rankOf(slot);
    float const key = sortKey(keys.inputs[slot]);
    if (m_sorted[rank] == key) return finish();
    unsigned to = insertionRank(slot);
    to -= to > rank;
    auto const move = [rank, to](auto& array, auto value) {
        auto const at = array.begin();
        if (to > rank)
            std::move(at + rank + 1, at + to + 1, at + rank);
        else
            std::move_backward(at + to, at + rank, at + rank + 1);
        array[to] = value;
    };
    move(m_order, slot);
    move(m_sorted, key);
    finish(to);
}

bool PreparedCurve::isLinearKey(unsigned slot) const {
    return !m_keys.interpolations || toInterpolation(m_keys.interpolations[slot]) == CurveInterpolation::linear;
}

bool PreparedCurve::rises() const {
    float const* const x = m_keys.inputs;
    for (unsigned i = 1; i < m_keys.count; ++i)
        if (!(x[i - 1] <= x[i])) return false;
    return m_keys.count == 0 || (std::isfinite(x[0]) && std::isfinite(x[m_keys.count - 1]));
}

bool PreparedCurve::standsInOrder(unsigned slot) const {
    float const* const x = m_keys.inputs;
    return std::isfinite(x[slot]) && (slot == 0 || x[slot - 1] <= x[slot]) &&
           (slot + 1 == m_keys.count || x[slot] <= x[slot + 1]);
}

// The order found before is the best start: it holds after most edits.
void PreparedCurve::sort() {
    if (m_order.size() != m_keys.count) {
        m_order.resize(m_keys.count);
        std::iota(m_order.begin(), m_order.end(), 0u);
    }
    auto const before = [x = m_keys.inputs](unsigned a, unsigned b) {
        float const xa = sortKey(x[a]), xb = sortKey(x[b]);
        return xa < xb || (xa == xb && a < b);
    };
    if (!std::is_sorted(m_order.begin(), m_order.end(), before)) std::sort(m_order.begin(), m_order.end(), before);
    m_sorted.resize(m_keys.count);
    for (unsigned rank = 0; rank < m_keys.count; ++rank) m_sorted[rank] = sortKey(m_keys.inputs[m_order[rank]]);
}

// From reading the caller's arrays to arrays of our own, of all keys but one.
void PreparedCurve::spreadExcept(unsigned slot) {
    m_order.resize(m_keys.count - 1);
    std::iota(m_order.begin(), m_order.begin() + slot, 0u);
    std::iota(m_order.begin() + slot, m_order.end(), slot + 1);
    m_sorted.assign(m_keys.inputs, m_keys.inputs + slot);
    m_sorted.insert(m_sorted.end(), m_keys.inputs + slot + 1, m_keys.inputs + m_keys.count);
}

void PreparedCurve::insertSorted(unsigned slot) {
    unsigned const rank = insertionRank(slot);
    m_order.insert(m_order.begin() + rank, slot);
    m_sorted.insert(m_sorted.begin() + rank, sortKey(m_keys.inputs[slot]));
    finish(rank);
}

unsigned PreparedCurve::insertionRank(unsigned slot) const {
    auto const [from, to] = std::equal_range(m_sorted.begin(), m_sorted.end(), sortKey(m_keys.inputs[slot]));
    auto const order = m_order.begin();
    return unsigned(std::lower_bound(order + (from - m_sorted.begin()), order + (to - m_sorted.begin()), slot) - order);
}

// Where the key stands by its present input, unless that has just changed.
unsigned PreparedCurve::rankOf(unsigned slot) const {
    unsigned const rank = insertionRank(slot);
    if (rank < m_order.size() && m_order[rank] == slot) return rank;
    return unsigned(std::find(m_order.begin(), m_order.end(), slot) - m_order.begin());
}

void PreparedCurve::finish(unsigned changedRank) {
    float const* const x = sortedInputs() + changedRank;
    if (changedRank > 0 && x[-1] == x[0]) m_hasTies = true;
    if (changedRank + 1 < m_keys.count && x[0] == x[1]) m_hasTies = true;
    finish();
}

void PreparedCurve::finish() {
    m_used = m_keys.count;
    if (!isIdentity())
        m_used = unsigned(std::lower_bound(m_sorted.begin(), m_sorted.end(), infinity) - m_sorted.begin());
    bool const isPlain = isIdentity() && !m_hasTies && m_isLinear && m_keys.outputs && m_keys.count > 1;
    m_plainSegments = isPlain ? m_keys.count - 1 : 0;
}

CurveBounds PreparedCurve::bounds() const {
    if (m_used == 0) return {};
    CurveBounds found{float(input(0)), float(input(m_used - 1)), float(output(0)), float(output(0))};
    if (!m_keys.outputs) return found;
    for (unsigned slot = 0; slot < m_keys.count; ++slot) {
        if (!std::isfinite(m_keys.inputs[slot])) continue;
        found.minOutput = std::min(found.minOutput, m_keys.outputs[slot]);
        found.maxOutput = std::max(found.maxOutput, m_keys.outputs[slot]);
    }
    return found;
}

// ---- segments

unsigned PreparedCurve::firstOfInput(unsigned rank) const {
    if (!m_hasTies) return rank;
    float const* const x = sortedInputs();
    return unsigned(std::lower_bound(x, x + rank, x[rank]) - x);
}

PreparedCurve::Segment PreparedCurve::segmentAfter(unsigned rank) const {
    float const* const x = sortedInputs();
    return {rank, m_hasTies ? unsigned(std::upper_bound(x + rank, x + m_used, x[rank]) - x) : rank + 1};
}

PreparedCurve::Segment PreparedCurve::firstSegment() const { return segmentAfter(0); }

PreparedCurve::Segment PreparedCurve::lastSegment() const {
    unsigned const right = last();
    return {firstOfInput(right - 1), right};
}

// For first input <= input < last input. The search keeps x[at] <= input and has no branch to predict.
template<class Input> unsigned PreparedCurve::search(Input input) const {
    float const* const x = sortedInputs();
    unsigned at = 0;
    for (unsigned size = m_used; size > 1;) {
        unsigned const half = size / 2;
        at += half * unsigned(x[at + half] <= input);
        size -= half;
    }
    return at;
}

template<class Input> PreparedCurve::Segment PreparedCurve::find(Input input, unsigned& hint) const {
    float const* const x = sortedInputs();
    unsigned const end = m_used - 1;
    unsigned at = hint;
    bool isNear = at < end && x[at] <= input;
    if (isNear && !(input < x[at + 1])) isNear = ++at < end && input < x[at + 1];
    hint = isNear ? at : search(input);
    return {firstOfInput(hint), hint + 1};
}

double PreparedCurve::fraction(Segment segment, double input) const {
    double const start = this->input(segment.left);
    return (input - start) / (this->input(segment.right) - start);
}

CurveInterpolation PreparedCurve::interpolation(unsigned rank) const {
    return m_keys.interpolations ? toInterpolation(m_keys.interpolations[slotOf(rank)]) : CurveInterpolation::linear;
}

// fmod is exact, so far turns lose nothing but what the input itself lacks.
PreparedCurve::Folded PreparedCurve::fold(double input, CurveExtrapolation mode) const {
    double const start = this->input(0), span = this->input(m_used - 1) - start;
    double local = std::fmod(input - start, span);
    if (local < 0) local += span;
    double const cycles = std::round((input - start - local) / span);
    if (mode == CurveExtrapolation::reverseCyclic && std::fmod(cycles, 2) != 0) local = span - local;
    return {start + local, cycles};
}

// ---- values

CurveSpline PreparedCurve::spline(Segment segment) const {
    unsigned const left = slotOf(segment.left), right = slotOf(segment.right);
    double const scale = 1 / (input(segment.right) - input(segment.left));
    double const y0 = output(segment.left), y3 = output(segment.right);
    CurveSpline curve{.y0 = y0, .y1 = y0, .y2 = y3, .y3 = y3};
    curve.setOutHandle(component(m_keys.outTangentsX, left) * scale, component(m_keys.outTangentsY, left));
    curve.setInHandle(component(m_keys.inTangentsX, right) * scale, component(m_keys.inTangentsY, right));
    return curve;
}

float PreparedCurve::evaluateAny(float input, unsigned& hint, float external) const {
    if (m_used == 0) return 0;
    if (std::isnan(input)) return toFloat(output(0));
    float const* const x = sortedInputs();
    if (x[0] <= input && input < x[m_used - 1]) {
        if (m_plainSegments) return blend(hint = search(input), input);
        return toFloat(inside(input, hint, external));
    }
    return toFloat(outside(std::clamp(double(input), -largest, largest), hint, external));
}

template<class Input> double PreparedCurve::inside(Input input, unsigned& hint, double external) const {
    if (!(input < sortedInputs()[m_used - 1])) return output(last());
    return valueIn(find(input, hint), input, external);
}

double PreparedCurve::valueIn(Segment segment, double input, double external) const {
    double const y = output(segment.left), s = fraction(segment, input);
    switch (interpolation(segment.left)) {
    case CurveInterpolation::constant: return y;
    case CurveInterpolation::linear: return y + s * (output(segment.right) - y);
    case CurveInterpolation::spline: return spline(segment).at(s);
    case CurveInterpolation::external: return external;
    }
    return y;
}

// For inputs before the first key and from the last key on.
double PreparedCurve::outside(double input, unsigned& hint, double external) const {
    bool const before = input < this->input(0);
    unsigned const end = before ? 0 : last();
    CurveExtrapolation const mode = before ? m_keys.pre : m_keys.post;
    double const away = input - this->input(end);
    if (away == 0 || mode == CurveExtrapolation::constant || !hasSpan()) return output(end);
    if (mode == CurveExtrapolation::linear) return output(end) + away * (before ? preGradient() : postGradient());
    Folded const folded = fold(input, mode);
    double const value = inside(folded.input, hint, external);
    return mode == CurveExtrapolation::offsetCyclic ? value + folded.cycles * (output(last()) - output(0)) : value;
}

float PreparedCurve::preGradient() const { return hasSpan() ? toFloat(gradient(firstSegment(), 0)) : 0; }

float PreparedCurve::postGradient() const { return hasSpan() ? toFloat(gradient(lastSegment(), last())) : 0; }

double PreparedCurve::gradient(Segment segment, unsigned end) const {
    double const width = input(segment.right) - input(segment.left);
    double const chord = (output(segment.right) - output(segment.left)) / width;
    CurveInterpolation const kind = interpolation(segment.left);
    if (kind == CurveInterpolation::linear) return chord;
    if (kind != CurveInterpolation::spline) return 0;
    CurveSpline const curve = spline(segment);
    bool const atStart = end == segment.left;
    double const reach = atStart ? curve.x1 : 1 - curve.x2;
    double const rise = atStart ? curve.y1 - curve.y0 : curve.y3 - curve.y2;
    return reach > 0 ? rise / (reach * width) : chord;
}

// ---- handles

bool PreparedCurve::inputTangentControlPoint(unsigned rank, CurvePoint& point) const {
    if (rank >= m_used || firstOfInput(rank) == 0) return false;
    unsigned const left = firstOfInput(firstOfInput(rank) - 1), slot = slotOf(rank);
    if (interpolation(left) != CurveInterpolation::spline) return false;
    double dx = component(m_keys.inTangentsX, slot);
    double const dy = component(m_keys.inTangentsY, slot);
    if (dx == 0 && dy == 0) dx = (input(left) - input(rank)) / 3;
    point = {toFloat(input(rank) + dx), toFloat(output(rank) + dy)};
    return true;
}

bool PreparedCurve::outputTangentControlPoint(unsigned rank, CurvePoint& point) const {
    if (rank >= m_used || interpolation(rank) != CurveInterpolation::spline) return false;
    unsigned const right = segmentAfter(rank).right, slot = slotOf(rank);
    if (right >= m_used) return false;
    double dx = component(m_keys.outTangentsX, slot);
    double const dy = component(m_keys.outTangentsY, slot);
    if (dx == 0 && dy == 0) dx = (input(right) - input(rank)) / 3;
    point = {toFloat(input(rank) + dx), toFloat(output(rank) + dy)};
    return true;
}

// ---- rotations

// Unit quaternions come back bit for bit.
Qelp::Quat PreparedCurve::rotation(unsigned rank) const {
    if (!m_keys.rotations) return {};
    Qelp::Quat const& q = m_keys.rotations[slotOf(rank)];
    double const length = std::hypot(std::hypot(double(q.x), double(q.y)), std::hypot(double(q.z), double(q.w)));
    if (std::abs(length - 1) <= 1e-6) return q;
    if (length == 0 || !std::isfinite(length)) return {};
    return BlendRotation{q.x / length, q.y / length, q.z / length, q.w / length}.toQuat();
}

Qelp::Quat PreparedCurve::evaluateRotation(float input, unsigned& hint, Qelp::Quat const& external) const {
    if (m_used == 0) return {};
    if (std::isnan(input)) return rotation(0);
    double const t = std::clamp(double(input), -largest, largest);
    bool const isInside = this->input(0) <= t && t < this->input(m_used - 1);
    return isInside ? rotationInside(t, hint, external) : rotationOutside(t, hint, external);
}

Qelp::Quat PreparedCurve::rotationInside(double input, unsigned& hint, Qelp::Quat const& external) const {
    if (!(input < this->input(m_used - 1))) return rotation(last());
    Segment const segment = find(input, hint);
    double const s = fraction(segment, input);
    switch (interpolation(segment.left)) {
    case CurveInterpolation::constant: break;
    case CurveInterpolation::linear: return turned(rotation(segment.left), rotation(segment.right), s);
    case CurveInterpolation::spline: return turned(rotation(segment.left), rotation(segment.right), ease(s));
    case CurveInterpolation::external: return external;
    }
    return rotation(segment.left);
}

// Linear turns on with the end segment's speed, which is 0 unless that is linear. Offset cyclic puts the turn from the
// first to the last key, seen from outside the rotation, before each repetition, as offsets of positions add up.
Qelp::Quat PreparedCurve::rotationOutside(double input, unsigned& hint, Qelp::Quat const& external) const {
    bool const before = input < this->input(0);
    unsigned const end = before ? 0 : last();
    CurveExtrapolation const mode = before ? m_keys.pre : m_keys.post;
    if (input == this->input(end) || mode == CurveExtrapolation::constant || !hasSpan()) return rotation(end);
    if (mode == CurveExtrapolation::linear) {
        Segment const segment = before ? firstSegment() : lastSegment();
        if (interpolation(segment.left) != CurveInterpolation::linear) return rotation(end);
        return turned(rotation(segment.left), rotation(segment.right), fraction(segment, input));
    }
    Folded const folded = fold(input, mode);
    Qelp::Quat const value = rotationInside(folded.input, hint, external);
    if (mode != CurveExtrapolation::offsetCyclic) return value;
    BlendRotation const turn = toBlendRotation(rotation(last())) * toBlendRotation(rotation(0)).conjugate();
    return (power(turn, folded.cycles) * toBlendRotation(value)).toQuat();
}

// ---- polyline

namespace {

constexpr double mostPoints = 100'000;
constexpr int evenSamples = 4'096;

void add(double x, double y, std::vector<CurvePoint>& out) {
    CurvePoint const point{toFloat(x), toFloat(y)};
    if (out.empty() || out.back() != point) out.push_back(point);
}

// Chords for the part of the spline between two u, each of the same length in u. The distance from a chord is at most
// 1/8 of its length squared times the largest second derivative, which is 6 times the largest second difference of the
// control points (G. Wang 1984, The subdivision method for finding the intersection between two Bezier curves). x and y
// are measured in the drawn part's share of the segment's box.
int chords(CurveSpline const& c, double share, double tolerance) {
    double const height = std::max({c.y0, c.y1, c.y2, c.y3}) - std::min({c.y0, c.y1, c.y2, c.y3});
    double const unit = height > 0 ? 1 / height : 0;
    double const first = std::hypot(c.x2 - 2 * c.x1, (c.y0 - 2 * c.y1 + c.y2) * unit);
    double const second = std::hypot(c.x1 - 2 * c.x2 + 1, (c.y1 - 2 * c.y2 + c.y3) * unit);
    double const count = std::sqrt(0.75 * std::max(first, second) * share / std::max(tolerance, 1e-7));
    return std::max(1, int(std::ceil(count)));
}

}  // namespace

void PreparedCurve::points(float from, float to, std::vector<CurvePoint>& out, double tolerance) const {
    out.clear();
    if (m_used == 0 || !std::isfinite(from) || !std::isfinite(to)) return;
    double const low = std::min(from, to), high = std::max(from, to);
    double const first = input(0), end = input(m_used - 1);
    if (low < first) addOutside(low, std::min(high, first), tolerance, out);
    if (high >= first && low <= end) addInside(std::max(low, first), std::min(high, end), tolerance, out);
    if (high > end) addOutside(std::max(low, end), high, tolerance, out);
}

void PreparedCurve::addInside(double from, double to, double tolerance, Points& out) const {
    if (!(from < input(m_used - 1))) return add(from, output(last()), out);
    unsigned hint = 0;
    for (Segment segment = find(from, hint);; segment = segmentAfter(segment.right)) {
        double const start = input(segment.left), end = input(segment.right);
        addSegment(segment, std::max(from, start), std::min(to, end), tolerance, out);
        if (end <= to) add(end, output(segment.right), out);
        if (end >= to) return;
    }
}

// Up to the right key, but without it.
void PreparedCurve::addSegment(Segment segment, double from, double to, double tolerance, Points& out) const {
    CurveInterpolation const kind = interpolation(segment.left);
    bool const isStep = kind == CurveInterpolation::constant || kind == CurveInterpolation::external;
    add(from, valueIn(segment, from, 0), out);
    if (kind == CurveInterpolation::spline) {
        CurveSpline const curve = spline(segment);
        double const start = input(segment.left), width = input(segment.right) - start;
        double const u = curve.solve((from - start) / width), share = curve.solve((to - start) / width) - u;
        int const count = chords(curve, share, tolerance);
        for (int i = 1; i < count; ++i) {
            double const at = u + share * i / count;
            add(start + width * curve.x(at), curve.y(at), out);
        }
    }
    if (isStep || to < input(segment.right)) add(to, valueIn(segment, to, 0), out);
}

void PreparedCurve::addOutside(double from, double to, double tolerance, Points& out) const {
    CurveExtrapolation const mode = from < input(0) ? m_keys.pre : m_keys.post;
    if (hasSpan() && mode != CurveExtrapolation::constant && mode != CurveExtrapolation::linear)
        return addTurns(from, to, tolerance, out);
    unsigned hint = 0;
    for (double const x : {from, to})
        if (x < input(0) || x > input(m_used - 1)) add(x, outside(x, hint, 0), out);
}

void PreparedCurve::addTurns(double from, double to, double tolerance, Points& out) const {
    double const first = input(0), span = input(m_used - 1) - first;
    double const low = std::floor((from - first) / span), high = std::floor((to - first) / span);
    unsigned hint = 0;
    if ((high - low + 1) * m_used > mostPoints) {
        for (int i = 0; i <= evenSamples; ++i) {
            double const x = from + (to - from) * i / evenSamples;
            add(x, outside(x, hint, 0), out);
        }
        return;
    }
    for (double cycle = low; cycle <= high; ++cycle)
        if (cycle != 0)
            addTurn(cycle, std::max(from, first + cycle * span), std::min(to, first + (cycle + 1) * span), tolerance,
                    out);
}

// One turn of a repeating curve: the part of the key range, mirrored if need be, and moved to its place.
void PreparedCurve::addTurn(double cycle, double from, double to, double tolerance, Points& out) const {
    double const first = input(0), end = input(m_used - 1), shift = cycle * (end - first);
    CurveExtrapolation const mode = cycle < 0 ? m_keys.pre : m_keys.post;
    bool const mirrored = mode == CurveExtrapolation::reverseCyclic && std::fmod(cycle, 2) != 0;
    double const rise = mode == CurveExtrapolation::offsetCyclic ? cycle * (output(last()) - output(0)) : 0;
    double const low = std::clamp(from - shift, first, end), high = std::clamp(to - shift, first, end);
    Points turn;
    addInside(mirrored ? first + end - high : low, mirrored ? first + end - low : high, tolerance, turn);
    if (mirrored) std::reverse(turn.begin(), turn.end());
    for (CurvePoint const& point : turn) {
        double const x = mirrored ? first + end - point.x : point.x;
        add(x + shift, point.y + rise, out);
    }
}

}  // namespace sg
