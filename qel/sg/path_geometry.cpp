#include "qel/sg/path_geometry.h"
#include <numeric>

namespace sg {
namespace {

// Beyond it turns cannot be told apart, and whatever is asked for is as far away as that.
constexpr double farthest = 1e12;

double finite(double x) { return std::isfinite(x) ? x : 0; }

PathPoint toPoint(Qelp::Vector3 const& v) { return {finite(v.x), finite(v.y), finite(v.z)}; }

bool isAtOrigin(Qelp::Vector3 const& v) { return v.x == 0 && v.y == 0 && v.z == 0; }

bool hasHandles(PathKey const& k) {
    return k.interpolation == int(CurveInterpolation::spline) && !(isAtOrigin(k.inHandle) && isAtOrigin(k.outHandle));
}

PathPoint blend(PathPoint const& a, PathPoint const& b, double share) { return a * (1 - share) + b * share; }

double bounded(double x) { return x == x ? std::clamp(x, -farthest, farthest) : 0; }

}  // namespace

// ---- keys and their order ----

PathPoint PathGeometry::automaticTangent(int rank) const {
    int const before = std::max(rank - 1, 0), after = std::min(rank + 1, keyCount() - 1);
    double const share = finite(keys_.tangentsCoefficient) / std::max(after - before, 1);
    return (position(after) - position(before)) * share;
}

PathPoint PathGeometry::handle(int rank, bool isOut) const {
    PathKey const& k = key(rank);
    if (hasHandles(k)) return toPoint(isOut ? k.outHandle : k.inHandle);
    return position(rank) + automaticTangent(rank) * (isOut ? 1 : -1);
}

int PathGeometry::rankOf(int number) const {
    auto const at = std::lower_bound(numbers_.begin(), numbers_.end(), number);
    return at != numbers_.end() && *at == number ? int(at - numbers_.begin()) : -1;
}

int PathGeometry::findKey(int number) const {
    int const rank = rankOf(number);
    return rank < 0 ? -1 : order_[std::size_t(rank)];
}

bool PathGeometry::inputControlPoint(int number, Qelp::Vector3& out) const {
    int const rank = rankOf(number);
    if (rank < 1) return false;
    out = handle(rank, false).toVector();
    return true;
}

bool PathGeometry::outputControlPoint(int number, Qelp::Vector3& out) const {
    int const rank = rankOf(number);
    if (rank < 0 || rank + 1 >= keyCount()) return false;
    out = handle(rank, true).toVector();
    return true;
}

bool PathGeometry::isInOrder() const {
    for (std::size_t rank = 1; rank < order_.size(); ++rank) {
        int const before = order_[rank - 1], slot = order_[rank];
        int const a = keys_.keys[std::size_t(before)].number, b = keys_.keys[std::size_t(slot)].number;
        if (a > b || (a == b && before > slot)) return false;
    }
    return true;
}

// The order found before is the best start: it holds after most edits.
void PathGeometry::sort() {
    std::size_t const count = keys_.keys.size();
    if (order_.size() != count) {
        order_.resize(count);
        std::iota(order_.begin(), order_.end(), 0);
    }
    auto const number = [&](int slot) { return keys_.keys[std::size_t(slot)].number; };
    if (!isInOrder())
        std::sort(order_.begin(), order_.end(),
                  [&](int a, int b) { return number(a) != number(b) ? number(a) < number(b) : a < b; });
    isSlotRank_ = std::is_sorted(order_.begin(), order_.end());
    ranks_.resize(count);
    numbers_.resize(count);
    points_.resize(count);
    for (std::size_t rank = 0; rank < count; ++rank) {
        PathKey const& k = key(int(rank));
        ranks_[std::size_t(order_[rank])] = int(rank);
        numbers_[rank] = k.number;
        points_[rank] = toPoint(k.position);
    }
}

// ---- segments and their lengths ----

inline CurveInterpolation PathGeometry::kindOf(int rank) const {
    auto const kind = CurveInterpolation(key(rank).interpolation);
    bool const isKnown = kind == CurveInterpolation::constant || kind == CurveInterpolation::spline;
    return isKnown ? kind : CurveInterpolation::linear;
}

PathBezier PathGeometry::curveOf(int rank) const {
    PathPoint const from = position(rank), to = position(rank + 1);
    switch (kindOf(rank)) {
    case CurveInterpolation::constant: return {{from, from, from, from}};
    case CurveInterpolation::spline: return {{from, handle(rank, true), handle(rank + 1, false), to}};
    default: return {{from, blend(from, to, 1.0 / 3), blend(from, to, 2.0 / 3), to}};
    }
}

// False when the length is still the same. A straight one is measured sooner than compared.
inline bool PathGeometry::replace(int rank) {
    Segment& s = segments_[std::size_t(rank)];
    bool const isLinear = s.kind == CurveInterpolation::linear && kindOf(rank) == CurveInterpolation::linear;
    if (!isLinear) return replaceOther(rank);
    double const length = (position(rank + 1) - position(rank)).length();
    bool const isNew = length != s.length;
    s.length = length;
    measured_ += isNew;
    return isNew;
}

bool PathGeometry::replaceOther(int rank) {
    Segment& s = segments_[std::size_t(rank)];
    Segment const before = s;
    s.kind = kindOf(rank);
    if (s.kind == CurveInterpolation::spline) return replaceSpline(rank, before.kind == s.kind);
    if (before.kind == CurveInterpolation::spline) arcs_[std::size_t(rank)] = ArcLength();
    s.length = straightLength(rank);
    bool const isNew = s.length != before.length || s.kind != before.kind;
    measured_ += isNew;
    return isNew;
}

void PathGeometry::update(PathKeys const& keys) {
    keys_ = keys;
    sort();
    makeRoom();
    for (int rank = 0; rank + 1 < keyCount(); ++rank) replace(rank);
    addUp(0);
}

// For as many segments as there are now. Where keys came or went, those behind them that are still the same move along
// with their lengths, and the others in between are to be measured.
void PathGeometry::makeRoom() {
    std::size_t const count = std::size_t(std::max(keyCount() - 1, 0)), before = segments_.size();
    if (count == before) return;
    std::size_t same = 0;
    while (same < std::min(count, before) && isSame(int(count - 1 - same), int(before - 1 - same))) ++same;
    auto const fit = [&](auto& all) {
        auto const tail = all.end() - std::ptrdiff_t(same);
        if (count > before)
            all.insert(tail, count - before, {});
        else
            all.erase(tail - std::ptrdiff_t(before - count), tail);
    };
    fit(segments_);
    fit(curves_);
    fit(arcs_);
}

// Does the segment from this key on have the length of one that was measured?
bool PathGeometry::isSame(int rank, int measured) const {
    Segment const& s = segments_[std::size_t(measured)];
    if (s.kind != kindOf(rank)) return false;
    return s.kind == CurveInterpolation::spline ? curves_[std::size_t(measured)] == curveOf(rank)
                                                : s.length == straightLength(rank);
}

double PathGeometry::straightLength(int rank) const {
    bool const isLinear = kindOf(rank) == CurveInterpolation::linear;
    return isLinear ? (position(rank + 1) - position(rank)).length() : 0;
}

// False when the key is not where it was in the order.
inline bool PathGeometry::takePoint(int slot) {
    PathKey const& k = keys_.keys[std::size_t(slot)];
    std::size_t const rank = std::size_t(ranks_[std::size_t(slot)]);
    points_[rank] = toPoint(k.position);
    return k.number == numbers_[rank];
}

bool PathGeometry::takePoints(Slots slots) {
    for (int slot = slots.from; slot < slots.to; ++slot)
        if (!takePoint(slot)) return false;
    return true;
}

// Where slots are ranks. Automatic tangents reach one key further than the segments beside a key; a segment is measured
// when all points that it may lean on are there. `first`: the first segment whose length is new, if none is before it.
bool PathGeometry::remeasureRun(Slots slots, int& first) {
    int const from = std::max(slots.from - 2, 0), to = std::min(slots.to + 1, keyCount() - 1);
    constexpr int ahead = 2;
    if (!takePoints({slots.from, std::min(from + ahead, slots.to)})) return false;
    for (int rank = from; rank < to; ++rank) {
        int const next = rank + ahead;
        if (next >= slots.from && next < slots.to && !takePoint(next)) return false;
        if (replace(rank)) first = std::min(first, rank);
    }
    return true;
}

bool PathGeometry::remeasureEach(std::span<Slots const> slots, int& first) {
    for (Slots const& some : slots)
        if (!takePoints(some)) return false;
    for (Slots const& some : slots)
        for (int slot = some.from; slot < some.to; ++slot) {
            int const rank = ranks_[std::size_t(slot)];
            for (int r = std::max(rank - 2, 0); r <= rank + 1 && r + 1 < keyCount(); ++r)
                if (replace(r)) first = std::min(first, r);
        }
    return true;
}

void PathGeometry::keysChanged(PathKeys const& keys, std::span<Slots const> slots) {
    if (keys.keys.size() != std::size_t(keyCount()) || keys.tangentsCoefficient != keys_.tangentsCoefficient)
        return update(keys);
    keys_ = keys;
    int first = keyCount();
    bool const isRun = isSlotRank_ && slots.size() == 1;
    if (isRun ? !remeasureRun(slots[0], first) : !remeasureEach(slots, first)) return update(keys);
    if (first < keyCount()) addUp(first);
}

bool PathGeometry::replaceSpline(int rank, bool wasSpline) {
    PathBezier const curve = curveOf(rank);
    if (wasSpline && curves_[std::size_t(rank)] == curve) return false;
    curves_[std::size_t(rank)] = curve;
    arcs_[std::size_t(rank)] = ArcLength(curve);
    segments_[std::size_t(rank)].length = arcs_[std::size_t(rank)].length();
    ++measured_;
    return true;
}

void PathGeometry::addUp(int from) {
    starts_.resize(order_.size());
    if (from == 0 && !starts_.empty()) starts_[0] = 0;
    for (std::size_t rank = std::size_t(from); rank + 1 < starts_.size(); ++rank)
        starts_[rank + 1] = starts_[rank] + segments_[rank].length;
}

// ---- inside the path ----

inline double PathGeometry::fractionInside(double parameter) const {
    int const last = keyCount() - 1;
    if (last < 1) return 0;
    if (!(length() > 0)) return parameter / last;
    int const rank = std::min(int(parameter), last);
    if (rank == last) return 1;
    Segment const& s = segments_[std::size_t(rank)];
    double const share = parameter - rank;
    bool const isSpline = s.kind == CurveInterpolation::spline;
    double const inside = isSpline ? arcs_[std::size_t(rank)].at(curves_[std::size_t(rank)], share) : s.length * share;
    return std::min((starts_[std::size_t(rank)] + inside) / length(), 1.0);
}

// The first that reaches so far, looked for at `near` and the two behind it before all others. What lies as densely as
// the keys is found there without a branch that cannot be foreseen.
inline std::size_t PathGeometry::findSegment(double distance, std::size_t near) const {
    if (near + 2 < segments_.size()) [[likely]] {
        std::size_t const rank = near + (starts_[near + 1] < distance) + (starts_[near + 2] < distance);
        if (starts_[rank] < distance && distance <= starts_[rank + 1]) [[likely]]
            return rank;
    }
    return std::size_t(std::lower_bound(starts_.begin() + 1, starts_.end() - 1, distance) - starts_.begin()) - 1;
}

inline double PathGeometry::parameterIn(std::size_t rank, double distance) const {
    Segment const& s = segments_[rank];
    double const inside = distance - starts_[rank];
    if (s.kind == CurveInterpolation::spline) [[unlikely]]
        return double(rank) + arcs_[rank].parameter(curves_[rank], inside);
    return double(rank) + (s.length > 0 ? std::min(inside / s.length, 1.0) : 0);
}

double PathGeometry::parameterOf(double fraction) const {
    int const last = keyCount() - 1;
    if (last < 1 || fraction <= 0) return 0;
    if (fraction >= 1) return last;
    if (!(length() > 0)) return fraction * last;
    double const distance = fraction * length();
    return parameterIn(findSegment(distance, segments_.size()), distance);
}

PathPoint PathGeometry::pointAt(double parameter) const {
    int const last = keyCount() - 1;
    int const rank = std::min(int(parameter), last);
    double const share = parameter - rank;
    if (rank == last || share <= 0) return position(rank);
    switch (segments_[std::size_t(rank)].kind) {
    case CurveInterpolation::constant: return position(rank);
    case CurveInterpolation::spline: return curves_[std::size_t(rank)].at(share);
    default: return blend(position(rank), position(rank + 1), share);
    }
}

// ---- beyond its ends ----

PathGeometry::Folded PathGeometry::fold(double x) const {
    if (x >= 0 && x <= 1) return {x, 0};
    CurveExtrapolation const mode = x < 0 ? keys_.pre : keys_.post;
    double const end = x < 0 ? 0 : 1;
    switch (mode) {
    case CurveExtrapolation::linear: return {end, x - end};
    case CurveExtrapolation::cyclic:
    case CurveExtrapolation::offsetCyclic: return {x - std::floor(x), std::floor(x)};
    case CurveExtrapolation::reverseCyclic: {
        bool const mirrored = std::fmod(std::floor(x), 2) != 0;
        double const at = x - std::floor(x);
        return {mirrored ? 1 - at : at, std::floor(x), mirrored};
    }
    default: return {end, 0};
    }
}

// A map of [0, 1] onto itself, carried on beyond it.
template<class Map> double PathGeometry::extend(double x, Map const& inside) const {
    Folded const f = fold(bounded(x));
    return f.turns + (f.mirrored ? 1 - inside(f.at) : inside(f.at));
}

double PathGeometry::fractionAt(double parameter) const {
    double const last = std::max(keyCount() - 1, 0);
    if (parameter >= 0 && parameter <= last) return fractionInside(parameter);
    if (last == 0) return 0;
    return extend(parameter / last, [&](double x) { return fractionInside(x * last); });
}

double PathGeometry::parameterAt(double fraction) const {
    if (fraction >= 0 && fraction <= 1) return parameterOf(fraction);
    double const last = std::max(keyCount() - 1, 0);
    if (last == 0) return 0;
    return last * extend(fraction, [&](double x) { return parameterOf(x) / last; });
}

void PathGeometry::fractionsAt(std::span<float const> parameters, std::vector<double>& out) const {
    out.resize(parameters.size());
    double const last = std::max(keyCount() - 1, 0);
    for (std::size_t i = 0; i < out.size(); ++i) {
        double const parameter = double(parameters[i]);
        out[i] = parameter >= 0 && parameter <= last ? fractionInside(parameter) : fractionAt(parameter);
    }
}

void PathGeometry::parametersAt(std::span<float const> fractions, std::vector<float>& out) const {
    out.resize(fractions.size());
    double const whole = length();
    std::size_t near = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        double const fraction = double(fractions[i]), distance = fraction * whole;
        bool const isInside = fraction > 0 && fraction < 1 && whole > 0;
        if (isInside) [[likely]]
            near = findSegment(distance, near);
        out[i] = float(isInside ? parameterIn(near, distance) : parameterAt(fraction));
    }
}

double PathGeometry::parameterInside(double fraction) const { return parameterOf(fold(bounded(fraction)).at); }

// That of the first segment from the end that goes anywhere.
PathPoint PathGeometry::endDirection(bool atStart) const {
    for (std::size_t i = 0; i < segments_.size(); ++i) {
        std::size_t const rank = atStart ? i : segments_.size() - 1 - i;
        if (!(segments_[rank].length > 0)) continue;
        PathBezier const b = curveOf(int(rank));
        for (int k = 1; k < 4; ++k) {
            PathPoint const way = atStart ? b.p[k] - b.p[0] : b.p[3] - b.p[3 - k];
            if (double const length = way.length(); length > 0) return way * (1 / length);
        }
    }
    return {};
}

bool PathGeometry::positionAt(double fraction, Qelp::Vector3& out) const {
    if (order_.empty()) return false;
    double const x = bounded(fraction);
    Folded const f = fold(x);
    PathPoint p = pointAt(parameterOf(f.at));
    CurveExtrapolation const mode = x < 0 ? keys_.pre : keys_.post;
    if (f.turns != 0 && mode == CurveExtrapolation::linear) p = p + endDirection(x < 0) * (f.turns * length());
    if (f.turns != 0 && mode == CurveExtrapolation::offsetCyclic)
        p = p + (position(keyCount() - 1) - position(0)) * f.turns;
    out = p.toVector();
    return true;
}

bool PathGeometry::positionAtParameter(double parameter, Qelp::Vector3& out) const {
    if (!(parameter >= 0 && parameter <= keyCount() - 1)) return positionAt(fractionAt(parameter), out);
    out = pointAt(parameter).toVector();
    return true;
}

bool PathGeometry::nearest(PathRay const& ray, double& fraction) const {
    if (order_.empty()) return false;
    PathPoint const end = position(keyCount() - 1);
    PathBezier const lastKey{{end, end, end, end}};  // a path of one key, and what a constant segment leaps to
    std::vector<PathBezier> curves(segments_.size());
    for (std::size_t rank = 0; rank < curves.size(); ++rank) curves[rank] = curveOf(int(rank));
    PathRay::Nearest const atEnd = ray.nearest({&lastKey, 1}), found = ray.nearest(curves);
    if (atEnd.segment < 0 && found.segment < 0) return false;
    bool const isEnd = found.segment < 0 || atEnd.distance < found.distance;
    fraction = isEnd ? fractionInside(keyCount() - 1) : fractionInside(found.segment + found.u);
    return true;
}

}  // namespace sg
