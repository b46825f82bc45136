// Keys between keys, and from a sampled path to a spline.
#include "tavo/animation/keyframe.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <algorithm>

namespace Tavo {
namespace {

std::wstring const inBetweenLabel = L"Insert In-Between Translation Keyframe", toSplineLabel = L"To Spline";

// The handles of a key as the path has them, its own or automatic ones; none at an end of the path.
struct ControlPoints {
    Qelp::Vector3 in, out;
    bool hasIn, hasOut;

    ControlPoints(sg::TrajectoryNode& node, int number) :
        hasIn(node.getTranslationInputTangentControlPoint(number, in)),
        hasOut(node.getTranslationOutputTangentControlPoint(number, out)) {}

    void writeTo(XTranslationKey const& key) const {
        if (hasIn) key.setInHandle(in);
        if (hasOut) key.setOutHandle(out);
    }
};

class Subdivision {
public:
    Subdivision(sg::TrajectoryNode& node, int first, int last) : _keys(node), _first(first), _last(last) {
        node.getTranslationKeysOrderArray(_order);
        for (int slot : _order) {
            int const number = _keys[slot].number();
            if (number < first || number > last) continue;
            _slots.push_back(slot);
            _points.emplace_back(node, number);
        }
    }

    void run(bool isSampled) const {
        if (!isSampled) keepAutomaticHandles();
        for (std::size_t i = 0; i + 1 < _slots.size(); ++i) {
            long const number = key(i).number();
            if (key(i + 1).number() != number + 1) continue;
            int const between = int(1 - _first + 2 * number);
            isSampled ? addMiddle(i, between) : split(i, between);
        }
        renumber();
    }

private:
    XTranslationKey key(std::size_t i) const { return _keys[_slots[i]]; }
    PathPoint position(std::size_t i) const { return PathPoint(key(i).position()); }
    static bool isSpline(XTranslationKey const& key) { return key.interpolation() != LinearInterpolation; }

    // Halving one handle of a key that has none would make an own one of the other, too: it gets what it had.
    void keepAutomaticHandles() const {
        for (std::size_t i = 0; i < _slots.size(); ++i)
            if (isSpline(key(i)) && !hasHandles(key(i))) _points[i].writeTo(key(i));
    }
    static bool hasHandles(XTranslationKey const& key) {
        return key.inHandle() != Qelp::Vector3() || key.outHandle() != Qelp::Vector3();
    }

    void addMiddle(std::size_t i, int number) const {
        db::Attribute* const element = _keys.array().add();
        if (!element) return;
        XTranslationKey const added(*element);
        added.setNumber(number);
        added.setPosition(toVector(middle(position(i), position(i + 1))));
        added.setInterpolation(LinearInterpolation);
    }

    // By de Casteljau's construction at the middle of the segment.
    void split(std::size_t i, int number) const {
        db::Attribute* const element = _keys.array().add();
        if (!element) return;
        XTranslationKey const left = key(i), right = key(i + 1), added(*element);
        PathPoint const p0 = position(i), h1(_points[i].out), h2(_points[i + 1].in), p3 = position(i + 1);
        PathPoint const a = middle(p0, h1), b = middle(h1, h2), c = middle(h2, p3);
        added.setNumber(number);
        added.setInHandle(toVector(middle(a, b)));
        added.setPosition(toVector(middle(middle(a, b), middle(b, c))));
        added.setOutHandle(toVector(middle(b, c)));
        added.setInterpolation(isSpline(left) || isSpline(right) ? SplineInterpolation : LinearInterpolation);
        added.setContinuity(LinearCoupledContinuity);
        if (isSpline(left)) left.setOutHandle(toVector(a)), uncouple(left);
        if (isSpline(right)) right.setInHandle(toVector(c)), uncouple(right);
    }
    // Its handles are of two lengths from here on.
    static void uncouple(XTranslationKey const& key) {
        if (key.continuity() == LinearCoupledContinuity) key.setContinuity(CoupledContinuity);
    }

    // The keys there were, behind the first one: each by as many as were added before it.
    void renumber() const {
        int offset = 1;
        for (int slot : _order) {
            int const number = _keys[slot].number();
            if (number <= _first) continue;
            _keys[slot].raise(offset);
            if (number < _last) ++offset;
        }
    }

    XTranslationKeys _keys;
    int _first, _last;
    Qelutils::Vector<int> _slots, _order;
    std::vector<ControlPoints> _points;
};

}  // namespace

XTrajectory& XTrajectory::InsertInBetweenTranslationKeyframe(int first, int second) {
    XTrajectoryEdit const edit(*this, inBetweenLabel);
    if (!edit || first == second) return *this;
    if (edit.node().isTranslationKeyframe(first) < 0 || edit.node().isTranslationKeyframe(second) < 0) return *this;
    Subdivision(edit.node(), std::min(first, second), std::max(first, second))
        .run(IsTranslationCurveSampled().Boolean());
    return *this;
}

// The points are all taken first: a key with handles of its own would have another say in its neighbours'.
bool XTrajectory::ToSpline() {
    XTrajectoryEdit const edit(*this, toSplineLabel);
    if (!edit || !IsTranslationCurveSampled().Boolean()) return false;
    XTranslationKeys const keys(edit.node());
    std::vector<ControlPoints> points;
    for (int slot = 0; slot < keys.count(); ++slot) points.emplace_back(edit.node(), keys[slot].number());
    for (int slot = 0; slot < keys.count(); ++slot) {
        points[std::size_t(slot)].writeTo(keys[slot]);
        keys[slot].setInterpolation(SplineInterpolation);
        keys[slot].setContinuity(LinearCoupledContinuity);
    }
    IsTranslationCurveSampled().SetBoolean(false);
    return true;
}

}  // namespace Tavo
