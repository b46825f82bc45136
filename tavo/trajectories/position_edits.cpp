// Moving, scaling, turning and bending translation keys by weights.
#include "qel/db/bulk_write.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <algorithm>

namespace Tavo {
namespace {

std::wstring const moveLabel = L"Move Translation Keyframes", scaleLabel = L"Scale Translation Keyframes",
                   rotateLabel = L"Rotate Translation Keyframes", bendLabel = L"Bend Translation Keyframes";

// The points of a key.
struct Points {
    Qelp::Vector3 in, position, out;
};

void changeAlone(XTranslationKey const& key, auto const& step) {
    Points const now = step({key.inHandle(), key.position(), key.outHandle()});
    key.setInHandle(now.in), key.setPosition(now.position), key.setOutHandle(now.out);
}

// Edits of many keys, by rising slots; each step gives new points for old ones.
class KeyChanges {
public:
    explicit KeyChanges(XTranslationKeys const& keys) :
        _keys(keys), _write(keys.array(), {1 + Part::InHandle, 1 + Part::Position, 1 + Part::OutHandle}) {}
    void change(int slot, auto const& step) {
        if (!_write.open(std::size_t(slot))) [[unlikely]]
            return changeAlone(_keys[slot], step);
        Qelp::Vector3 &in = point(0), &position = point(1), &out = point(2);
        Points const now = step({in, position, out});
        set(in, now.in), set(position, now.position), set(out, now.out);
    }

private:
    using Part = XTranslationKey::Part;
    // By component: a vector that was put together on the stack would have to get there before it can be copied whole.
    static void set(Qelp::Vector3& to, Qelp::Vector3 const& v) { to.x = v.x, to.y = v.y, to.z = v.z, to.w = v.w; }
    Qelp::Vector3& point(std::size_t i) const { return _write.part<db::Vector3Attribute>(i).raw(); }

    XTranslationKeys _keys;
    db::BulkWriteOf<3> _write;
};

// An affine transform of points, as a matrix of row vectors, in double.
class Affine {
public:
    Affine() = default;
    explicit Affine(Qelp::Matrix34 const& m) {
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 3; ++column) _m[row][column] = double(m.m[row][column]);
    }
    static Affine translation(PathPoint const& by) {
        Affine out;
        out._m[3][0] = by.x, out._m[3][1] = by.y, out._m[3][2] = by.z;
        return out;
    }

    bool operator==(Affine const&) const = default;
    PathPoint rotate(PathPoint const& p) const { return row(0) * p.x + row(1) * p.y + row(2) * p.z; }
    PathPoint apply(PathPoint const& p) const { return rotate(p) + row(3); }
    Affine then(Affine const& next) const {
        Affine out;
        for (int i = 0; i < 4; ++i) {
            PathPoint const p = i < 3 ? next.rotate(row(i)) : next.apply(row(i));
            out._m[i][0] = p.x, out._m[i][1] = p.y, out._m[i][2] = p.z;
        }
        return out;
    }

private:
    PathPoint row(int i) const { return {_m[i][0], _m[i][1], _m[i][2]}; }
    double _m[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
};

Points apply(Affine const& map, Points const& p) {
    auto const mapped = [&](Qelp::Vector3 const& point) { return toVector(map.apply(PathPoint(point))); };
    return {mapped(p.in), mapped(p.position), mapped(p.out)};
}

// A frame and the way into it. One that cannot be inverted is its own inverse, as XMatrix::Invert leaves it.
struct Frame {
    explicit Frame(XMatrix const& frame) : out(frame.AsMatrix()), in(XMatrix(frame).Invert().AsMatrix()) {}
    Affine out, in;
};

// ---- what is done to one key ----

inline Points move(Points const& p, Qelp::Vector3 const& delta, float weight) {
    float const x = delta.x * weight, y = delta.y * weight, z = delta.z * weight;
    auto const moved = [=](Qelp::Vector3 const& v) { return Qelp::Vector3{v.x + x, v.y + y, v.z + z, 0}; };
    return {moved(p.in), moved(p.position), moved(p.out)};
}

PathPoint scaled(PathPoint const& p, XVector3 const& scale, float weight) {
    auto const factor = [&](unsigned axis) { return (double(scale[axis]) - 1) * double(weight) + 1; };
    return {p.x * factor(0), p.y * factor(1), p.z * factor(2)};
}

// The handles' offsets are not turned back out of the frame: a decision of this system.
Points scale(Points const& p, Frame const& frame, XVector3 const& scale, float weight) {
    PathPoint const old(p.position), position = frame.out.apply(scaled(frame.in.apply(old), scale, weight));
    auto const handle = [&](Qelp::Vector3 const& point) {
        return toVector(position + scaled(frame.in.rotate(PathPoint(point) - old), scale, weight));
    };
    return {handle(p.in), toVector(position), handle(p.out)};
}

Affine rotationBy(XVector3 const& rotation, float weight) {
    return Affine(XMatrix(XQuaternion(XVector3(rotation).Scale(weight))).AsMatrix());
}

Points rotate(Points const& p, Frame const& frame, XVector3 const& rotation, float weight) {
    return apply(frame.in.then(rotationBy(rotation, weight)).then(frame.out), p);
}

// ---- weights ----

Qelutils::Vector<float> weightsOfNamed(sg::TrajectoryNode& node, Qelutils::Vector<int> const& parameters) {
    Qelutils::Vector<float> weights(std::size_t(XTranslationKeys(node).count()));
    for (int slot : translationSlots(node, parameters)) weights[std::size_t(slot)] = 1;
    return weights;
}

void forWeights(sg::TrajectoryNode& node, Qelutils::Vector<float> const& weights, auto const& step) {
    XTranslationKeys const keys(node);
    int const count = std::min(keys.count(), int(weights.size()));
    KeyChanges changes(keys);
    for (int slot = 0; slot < count; ++slot)
        if (float const weight = weights[std::size_t(slot)]; weight != 0)
            changes.change(slot, [&](Points const& p) { return step(p, weight); });
}

auto mover(XVector3 const& delta) {
    return [by = delta.AsVector()](Points const& p, float weight) { return move(p, by, weight); };
}
auto scaler(XMatrix const& frame, XVector3 const& factors) {
    return [&factors, in = Frame(frame)](Points const& p, float weight) { return scale(p, in, factors, weight); };
}
auto rotator(XMatrix const& frame, XVector3 const& rotation) {
    return [&rotation, in = Frame(frame)](Points const& p, float weight) { return rotate(p, in, rotation, weight); };
}

}  // namespace

// ---- the frame of every edit ----

// `weigh` gives the weights, `act` does the edit by them.
XTrajectory& XTrajectory::smartEdit(std::wstring const& label, auto const& weigh, auto const& act) {
    float length = 0;
    Floats parameters;
    smartEditInit(length, parameters);
    XTrajectoryEdit const edit(*this, label);
    if (!edit) return *this;
    decltype(auto) weights = weigh(edit.node());
    act(edit.node(), weights);
    smartEditCore(length, parameters);
    return *this;
}

XTrajectory& XTrajectory::editNamed(std::wstring const& label, IDs const& parameters, auto const& step) {
    return smartEdit(
        label, [&](sg::TrajectoryNode& node) { return weightsOfNamed(node, parameters); },
        [&](sg::TrajectoryNode& node, Floats const& weights) { forWeights(node, weights, step); });
}

XTrajectory& XTrajectory::editAround(std::wstring const& label, IDs const& parameters, XDropOff const& dropoff,
                                     auto const& step) {
    auto const weigh = [&](sg::TrajectoryNode&) {
        Floats weights;
        computeDropoffWeights_translations(parameters, dropoff, weights);
        return weights;
    };
    return smartEdit(label, weigh,
                     [&](sg::TrajectoryNode& node, Floats const& weights) { forWeights(node, weights, step); });
}

XTrajectory& XTrajectory::editWeighted(std::wstring const& label, Floats const& weights, auto const& step) {
    return smartEdit(
        label, [&](sg::TrajectoryNode&) -> Floats const& { return weights; },
        [&](sg::TrajectoryNode& node, Floats const& given) { forWeights(node, given, step); });
}

XTrajectory& XTrajectory::editInBall(std::wstring const& label, XVector3 const& centre, float radius,
                                     XDropOff const& dropoff, auto const& step) {
    auto const weigh = [&](sg::TrajectoryNode&) {
        Floats weights;
        computeDropoffWeights_translations(centre, radius, dropoff, weights);
        return weights;
    };
    return smartEdit(label, weigh,
                     [&](sg::TrajectoryNode& node, Floats const& weights) { forWeights(node, weights, step); });
}

// ---- move ----

XTrajectory& XTrajectory::EditTranslationKeyframePosition(int parameter, XVector3 const& delta) {
    return EditTranslationKeyframePosition(IDs{parameter}, delta);
}

XTrajectory& XTrajectory::EditTranslationKeyframePosition(IDs const& parameters, XVector3 const& delta) {
    return editNamed(moveLabel, parameters, mover(delta));
}

XTrajectory& XTrajectory::EditTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff,
                                                          XVector3 const& delta) {
    return editAround(moveLabel, parameters, dropoff, mover(delta));
}

XTrajectory& XTrajectory::EditTranslationKeyframePosition_interactive(Floats const& weights, XVector3 const& delta) {
    return editWeighted(moveLabel, weights, mover(delta));
}

XTrajectory& XTrajectory::EditTranslationKeyframePositionBallOfInfluence(XVector3 const& centre, float radius,
                                                                         XDropOff const& dropoff,
                                                                         XVector3 const& delta) {
    return editInBall(moveLabel, centre, radius, dropoff, mover(delta));
}

// ---- scale ----

XTrajectory& XTrajectory::ScaleTranslationKeyframePosition(int parameter, XMatrix const& frame, XVector3 const& scale) {
    return ScaleTranslationKeyframePosition(IDs{parameter}, frame, scale);
}

XTrajectory& XTrajectory::ScaleTranslationKeyframePosition(IDs const& parameters, XMatrix const& frame,
                                                           XVector3 const& scale) {
    return editNamed(scaleLabel, parameters, scaler(frame, scale));
}

XTrajectory& XTrajectory::ScaleTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff,
                                                           XMatrix const& frame, XVector3 const& scale) {
    return editAround(scaleLabel, parameters, dropoff, scaler(frame, scale));
}

XTrajectory& XTrajectory::ScaleTranslationKeyframePosition_interactive(Floats const& weights, XMatrix const& frame,
                                                                       XVector3 const& scale) {
    return editWeighted(scaleLabel, weights, scaler(frame, scale));
}

XTrajectory& XTrajectory::ScaleTranslationKeyframePositionBallOfInfluence(XVector3 const& centre, float radius,
                                                                          XDropOff const& dropoff, XMatrix const& frame,
                                                                          XVector3 const& scale) {
    return editInBall(scaleLabel, centre, radius, dropoff, scaler(frame, scale));
}

// ---- rotate ----

XTrajectory& XTrajectory::RotateTranslationKeyframePosition(int parameter, XMatrix const& frame,
                                                            XVector3 const& rotation) {
    return RotateTranslationKeyframePosition(IDs{parameter}, frame, rotation);
}

XTrajectory& XTrajectory::RotateTranslationKeyframePosition(IDs const& parameters, XMatrix const& frame,
                                                            XVector3 const& rotation) {
    return editNamed(rotateLabel, parameters, rotator(frame, rotation));
}

XTrajectory& XTrajectory::RotateTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff,
                                                            XMatrix const& frame, XVector3 const& rotation) {
    return editAround(rotateLabel, parameters, dropoff, rotator(frame, rotation));
}

XTrajectory& XTrajectory::RotateTranslationKeyframePosition_interactive(Floats const& weights, XMatrix const& frame,
                                                                        XVector3 const& rotation) {
    return editWeighted(rotateLabel, weights, rotator(frame, rotation));
}

XTrajectory& XTrajectory::RotateTranslationKeyframePositionBallOfInfluence(XVector3 const& centre, float radius,
                                                                           XDropOff const& dropoff,
                                                                           XMatrix const& frame,
                                                                           XVector3 const& rotation) {
    return editInBall(rotateLabel, centre, radius, dropoff, rotator(frame, rotation));
}

// ---- bend ----

XTrajectory& XTrajectory::BendTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff,
                                                          XVector3 const& rotation, bool forward) {
    auto const weigh = [&](sg::TrajectoryNode&) {
        Floats weights;
        computeDropoffWeights_translations(parameters, dropoff, weights);
        return weights;
    };
    return smartEdit(bendLabel, weigh, [&](sg::TrajectoryNode&, Floats const& weights) {
        bendTranslationKeyframePosition_core(weights, rotation, forward);
    });
}

XTrajectory& XTrajectory::BendTranslationKeyframePosition_interactive(Floats const& weights, XVector3 const& rotation,
                                                                      bool forward) {
    return smartEdit(
        bendLabel, [&](sg::TrajectoryNode&) -> Floats const& { return weights; },
        [&](sg::TrajectoryNode&, Floats const& given) {
            bendTranslationKeyframePosition_core(given, rotation, forward);
        });
}

// Each weight turns all keys further on, about the key before: their turns add up to one transform, so that each key is
// moved once.
void XTrajectory::bendTranslationKeyframePosition_core(Floats const& weights, XVector3 const& rotation, bool forward) {
    XTranslationKeys const keys(*pathNode());
    int const count = keys.count(), step = forward ? 1 : -1;
    KeyChanges changes(keys);
    Affine map;
    auto const bend = [&](Points const& p) { return apply(map, p); };
    for (int k = 1; k < count; ++k) {
        int const slot = forward ? k : count - 1 - k;
        float const weight = slot < int(weights.size()) ? weights[std::size_t(slot)] : 0;
        if (weight != 0) {
            PathPoint const pivot(keys[slot - step].position());
            Affine const turn = rotationBy(rotation, weight);
            map = map.then(Affine::translation(pivot * -1)).then(turn).then(Affine::translation(pivot));
        }
        if (map == Affine()) continue;
        forward ? changes.change(slot, bend) : changeAlone(keys[slot], bend);
    }
}

// ---- one key ----

void XTrajectory::editTranslationKeyframePosition_noCheck(int slot, XVector3 const& delta, float weight) {
    changeAlone(XTranslationKeys(*pathNode())[slot], [&](Points const& p) { return mover(delta)(p, weight); });
}

void XTrajectory::scaleTranslationKeyframePosition_noCheck(int slot, XMatrix const& frame, XVector3 const& factors,
                                                           float weight) {
    changeAlone(XTranslationKeys(*pathNode())[slot],
                [&](Points const& p) { return scaler(frame, factors)(p, weight); });
}

void XTrajectory::rotateTranslationKeyframePosition_noCheck(int slot, XMatrix const& frame, XVector3 const& rotation,
                                                            float weight) {
    changeAlone(XTranslationKeys(*pathNode())[slot],
                [&](Points const& p) { return rotator(frame, rotation)(p, weight); });
}

}  // namespace Tavo
