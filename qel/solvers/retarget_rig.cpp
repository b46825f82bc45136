#include "qel/solvers/retarget_rig.h"
#include "qel/utils/rotation.h"
#include <array>

namespace sg {

using namespace retargeting;
using Qelutils::rotation::Rotation;

namespace {

Quaternion rotationOf(Qelp::Matrix34 const& m) { return toQuaternion(Qelutils::rotation::orthonormal(m.m)); }

// Axes of unit length, square to each other, within single precision.
bool isRigid(Qelp::Matrix34 const& m) {
    for (int i = 0; i < 3; ++i)
        for (int j = i; j < 3; ++j) {
            double const product =
                double(m.m[i][0]) * m.m[j][0] + double(m.m[i][1]) * m.m[j][1] + double(m.m[i][2]) * m.m[j][2];
            if (std::abs(product - (i == j)) > 4e-6) return false;
        }
    Vec3 const x{m.m[0][0], m.m[0][1], m.m[0][2]}, y{m.m[1][0], m.m[1][1], m.m[1][2]};
    return dot(cross(x, y), {m.m[2][0], m.m[2][1], m.m[2][2]}) > 0;
}

// ---- the bodies ----

// Where the matched parts of one skeleton stand at rest.
class Places {
public:
    Places(std::vector<Vec3> const& at, std::span<JointMatch const> matches, bool target) {
        for (JointMatch const& m : matches) {
            Vec3 const& place = at[std::size_t(target ? m.target : m.boneStart())];
            all_.push_back(place);
            auto& part = parts_[std::size_t(m.label.part)][std::size_t(m.label.side)];
            if (!part || (m.label.rank == 0 && m.blendSource < 0)) part = place;
        }
    }
    std::optional<Vec3> of(BodyPart part, BodySide side = BodySide::Middle) const {
        return parts_[std::size_t(part)][std::size_t(side)];
    }
    std::optional<Vec3> middle(BodyPart part) const {
        auto const left = of(part, BodySide::Left), right = of(part, BodySide::Right);
        return left && right ? std::optional((*left + *right) * 0.5) : std::nullopt;
    }
    // Thighs and shins, both sides; 0 if one is missing.
    double legs() const {
        double sum = 0;
        for (BodySide side : {BodySide::Left, BodySide::Right}) {
            auto const hip = of(BodyPart::Thigh, side), knee = of(BodyPart::Shin, side),
                       foot = of(BodyPart::Foot, side);
            if (!hip || !knee || !foot) return 0;
            sum += length(*knee - *hip) + length(*foot - *knee);
        }
        return sum;
    }
    double extent(int axis) const {
        double low = 1e300, high = -1e300;
        for (Vec3 const& p : all_) low = std::min(low, p[axis]), high = std::max(high, p[axis]);
        return all_.empty() ? 0 : high - low;
    }

private:
    std::optional<Vec3> parts_[std::size_t(BodyPart::Little) + 1][3];
    std::vector<Vec3> all_;
};

Vec3 nearestAxis(Vec3 const& v) {
    int axis = 0;
    for (int i = 1; i < 3; ++i)
        if (std::abs(v[i]) > std::abs(v[axis])) axis = i;
    Vec3 out;
    out[axis] = v[axis] < 0 ? -1 : 1;
    return out;
}

// Rows: left, up, forward.
struct Frame {
    Vec3 left, up;
    bool isKnown = false, isSided = false;

    int axis() const { return std::abs(up.x) > 0.5 ? 0 : std::abs(up.y) > 0.5 ? 1 : 2; }
    Quaternion rotation() const {
        Vec3 const z = cross(left, up);
        return toQuaternion(Rotation{{{left.x, left.y, left.z}, {up.x, up.y, up.z}, {z.x, z.y, z.z}}});
    }
};

constexpr double almostAlong = 0.9659258;  // the cosine of 15 degrees

Frame frameOf(Places const& places) {
    Frame frame;
    auto const hips = places.middle(BodyPart::Thigh), feet = places.middle(BodyPart::Foot);
    auto const shoulders = places.middle(BodyPart::UpperArm);
    Vec3 up, left;
    if (hips && feet) up += *hips - *feet;
    if (hips && shoulders) up += *shoulders - *hips;
    if (length(up) < 1e-9) return frame;
    frame.isKnown = true;
    frame.up = nearestAxis(up);
    for (BodyPart part : {BodyPart::Thigh, BodyPart::UpperArm})
        if (places.middle(part)) left += *places.of(part, BodySide::Left) - *places.of(part, BodySide::Right);
    left = direction(left - frame.up * dot(left, frame.up));
    frame.isSided = left != Vec3();
    frame.left = dot(left, nearestAxis(left)) > almostAlong ? nearestAxis(left) : left;
    return frame;
}

Quaternion alignmentOf(Frame const& source, Frame const& target) {
    if (!source.isKnown || !target.isKnown) return {};
    if (!source.isSided || !target.isSided) return shortestArc(source.up, target.up);
    Quaternion const q = multiply(conjugate(source.rotation()), target.rotation());
    return isIdentity(q) ? Quaternion() : q;
}

// How a rest pose stands on the floor, which is the world's zero.
struct Stand {
    double low = 1e300, high = -1e300;

    Stand(std::vector<Vec3> const& at, Vec3 const& up) {
        for (Vec3 const& p : at) low = std::min(low, dot(p, up)), high = std::max(high, dot(p, up));
    }
    double height() const { return high - low; }
    bool sinks() const { return low < -0.05 * height(); }
    // Of the lowest joint, for soles have no joints; 0 where that cannot be known.
    double clearance() const { return sinks() || low > 0.1 * height() ? 0 : std::max(low, 0.0); }
    double lift(double clearanceOfTheOther) const { return sinks() ? clearanceOfTheOther - low : 0; }
    bool sharesFloor(Stand const& o) const { return std::abs(low - o.low) < 0.02 * std::max(height(), o.height()); }
};

double ratio(double target, double source) { return source > 1e-9 && target > 1e-9 ? target / source : 0; }

double bones(Skeleton const& s, std::vector<Vec3> const& at) {
    double sum = 0;
    for (std::size_t i = 0; i < s.size(); ++i)
        if (s.parents[i] >= 0) sum += length(at[i] - at[std::size_t(s.parents[i])]);
    return s.size() ? sum / double(s.size()) : 0;
}

// ---- building ----

class Builder {
public:
    explicit Builder(RetargetRig& rig) :
        rig_(rig), source_(*rig.source), target_(*rig.target), sourceAt_(source_.restPositions()),
        targetAt_(target_.restPositions()), targetRest_(target_.restRotations()),
        targetMatrices_(target_.restMatrices()), corrections_(target_.size()), matchAbove_(target_.size(), -1),
        fellow_(source_.size(), -1) {}

    void run() {
        rig_.sources.assign(source_.size(), {});
        rig_.targets.assign(target_.size(), {});
        measureBodies();
        buildSources();
        parts_.assign(target_.size(), BodyPart::None);
        boneStart_.assign(target_.size(), -1);
        for (JointMatch const& m : rig_.matches) setMatch(m);
        for (std::size_t i = 0; i < target_.size(); ++i) setReferent(int(i));
        for (std::size_t i = 0; i < target_.size(); ++i) buildTarget(int(i));
        if (travelsAlone()) standOnFloor();
    }

private:
    using S = RetargetRig::SourceJoint;
    using T = RetargetRig::TargetJoint;
    static RetargetJoint const& option(std::span<RetargetJoint const> all, int i) {
        static RetargetJoint const usual;
        return all.empty() ? usual : all[std::size_t(i)];
    }
    T& target(int i) { return rig_.targets[std::size_t(i)]; }
    bool isMatched(int i) { return target(i).source >= 0; }

    void measureBodies() {
        Places const source(sourceAt_, rig_.matches, false), target(targetAt_, rig_.matches, true);
        sourceFrame_ = frameOf(source), targetFrame_ = frameOf(target);
        rig_.alignment = alignmentOf(sourceFrame_, targetFrame_);
        double scale = ratio(target.legs(), source.legs());
        if (scale == 0) scale = ratio(target.extent(targetFrame_.axis()), source.extent(sourceFrame_.axis()));
        if (scale == 0) scale = ratio(bones(target_, targetAt_), bones(source_, sourceAt_));
        rig_.scale = scale == 0 ? 1 : std::clamp(scale, 1e-6, 1e6);
    }

    void buildSources() {
        for (std::size_t i = 0; i < source_.size(); ++i) {
            S& s = rig_.sources[i];
            s.parent = source_.parents[i];
            s.origin = source_.origins[i];
            s.local = rotationOf(s.origin);
            s.isStretched = !isRigid(s.origin);
            auto const above = s.parent < 0 ? rig_.alignment : sourceRest_[std::size_t(s.parent)];
            sourceRest_.push_back(multiply(s.local, above));
            s.inverseRest = conjugate(sourceRest_.back());
        }
    }

    void setMatch(JointMatch const& m) {
        T& t = target(m.target);
        t.source = m.source, t.blendSource = m.blendSource, t.blend = m.blend;
        parts_[std::size_t(m.target)] = m.label.part;
        boneStart_[std::size_t(m.target)] = m.boneStart();
        if (m.blendSource < 0) fellow_[std::size_t(m.source)] = m.target;
    }

    void buildTarget(int i) {
        T& t = target(i);
        RetargetJoint const& o = option(rig_.targetOptions, i);
        t.parent = target_.parents[std::size_t(i)];
        t.origin = target_.origins[std::size_t(i)];
        t.local = rotationOf(t.origin);
        t.isStretched = !isRigid(t.origin);
        t.isDriven = isMatched(i) && o.isActive;
        corrections_[std::size_t(i)] = correctionOf(i, o.mode);
        t.rest = multiply(targetRest_[std::size_t(i)], corrections_[std::size_t(i)]);
        t.inverseRest = conjugate(t.rest);
        t.limit = o.limit;
        if (isMatched(i)) setOptions(i, o);
    }

    void setOptions(int i, RetargetJoint const& o) {
        T& t = target(i);
        t.rotationWeight = std::clamp(o.rotationWeight, 0.0, 1.0);
        t.offset = toQuaternion(Qelutils::rotation::fromEuler({o.offset.x, o.offset.y, o.offset.z}, 0));
        t.hasOffset = !isIdentity(t.offset);
        Quaternion const from = rotationOf(option(rig_.sourceOptions, t.source).axes), to = rotationOf(o.axes);
        if (!isIdentity(multiply(from, conjugate(to)))) {
            // In the target's world: the axes of measurement of the source over those of the target.
            Quaternion const there = multiply(multiply(conjugate(rig_.alignment), from), rig_.alignment);
            t.turn = multiply(conjugate(there), to);
        }
        S const& s = rig_.sources[std::size_t(t.source)];
        t.axes = multiply(sourceRest_[std::size_t(t.source)], t.inverseRest);
        if (isIdentity(t.axes)) t.axes = {};
        Quaternion const above = s.parent < 0 ? rig_.alignment : sourceRest_[std::size_t(s.parent)];
        t.carry = t.parent < 0 ? above : multiply(above, target(t.parent).inverseRest);
        if (isIdentity(t.carry)) t.carry = {};
        t.travels = t.isDriven && matchAbove_[std::size_t(i)] < 0;
        double const ratio = t.travels ? rig_.scale : boneRatio(i);
        t.translationFactor = ratio * o.scale * std::clamp(o.translationWeight, 0.0, 1.0);
        if (t.travels) setTravel(i);
    }

    // How much longer its bone is than the source's, where both hang on fellows; as the legs are for what does not.
    double boneRatio(int i) {
        T const& t = target(i);
        S const& s = rig_.sources[std::size_t(t.source)];
        bool const isTrunk = parts_[std::size_t(i)] == BodyPart::Hips || parts_[std::size_t(i)] == BodyPart::Root;
        bool const alike = s.parent >= 0 && t.parent >= 0 && target(t.parent).source == s.parent;
        double const bone = ratio(length(translationOf(t.origin)), length(translationOf(s.origin)));
        return alike && !isTrunk && bone > 0 ? bone : rig_.scale;
    }

    void setTravel(int i) {
        T& t = target(i);
        t.from = turned(sourceAt_[std::size_t(t.source)], rig_.alignment);
        t.to = targetAt_[std::size_t(i)];
        if (t.parent >= 0) {
            t.travels = Qelutils::invert(targetMatrices_[std::size_t(t.parent)], t.inverseParentRest);
        }
        for (int j = t.source; j >= 0; j = source_.parents[std::size_t(j)])
            rig_.sources[std::size_t(j)].isCarrier = true;
    }

    // ---- referents ----

    int nearestMatched(int joint) {  // itself or above
        while (joint >= 0 && !isMatched(joint)) joint = target_.parents[std::size_t(joint)];
        return joint;
    }
    void setReferent(int i) {
        int const parent = target_.parents[std::size_t(i)];
        int const above = parent < 0 ? -1 : isMatched(parent) ? parent : matchAbove_[std::size_t(parent)];
        matchAbove_[std::size_t(i)] = above;
        target(i).referent = above;
        if (!isMatched(i)) return;
        int const own = option(rig_.targetOptions, i).referent;
        int const sources = option(rig_.sourceOptions, target(i).source).referent;
        if (own == RetargetJoint::world || (own == RetargetJoint::itself && sources == RetargetJoint::world))
            target(i).referent = -1;
        else if (own >= 0 && own < i && isAncestor(target_, own, i))
            target(i).referent = nearestMatched(own);
        else if (own == RetargetJoint::itself && sources >= 0)
            target(i).referent = fellowAbove(sources, i);
    }
    // The counterpart of a source joint, or of the next one above that has one above the target joint.
    int fellowAbove(int joint, int i) {
        for (; joint >= 0; joint = source_.parents[std::size_t(joint)]) {
            int const fellow = fellow_[std::size_t(joint)];
            if (fellow >= 0 && fellow < i && isAncestor(target_, fellow, i)) return fellow;
        }
        return -1;
    }

    // ---- rest poses that differ ----

    // The turn that takes a target's bone, as it stands at rest, to where the source's points.
    Quaternion correctionOf(int i, RetargetMode mode) {
        int const parent = target_.parents[std::size_t(i)];
        Quaternion const inherited = parent < 0 ? Quaternion() : corrections_[std::size_t(parent)];
        if (!isMatched(i)) return inherited;
        BodyPart const part = parts_[std::size_t(i)];
        if (mode == RetargetMode::Fixed || (mode == RetargetMode::Auto && part == BodyPart::Foot)) return {};
        if (mode == RetargetMode::Auto && !isLimbBone(part)) return inherited;
        auto const [from, to] = bonesOf(i);
        Quaternion const q = multiply(inherited, shortestArc(turned(from, inherited), to));
        return isIdentity(q) ? Quaternion() : q;
    }
    // Directions at rest, in the target's world, of the target's bone and the source's: towards the nearest matched
    // joints below, on the average.
    std::pair<Vec3, Vec3> bonesOf(int i) {
        T const& t = target(i);
        Vec3 const& start = sourceAt_[std::size_t(boneStart_[std::size_t(i)])];
        Vec3 from, to;
        for (int j = i + 1; j < int(target_.size()); ++j) {
            if (!isMatched(j) || matchAbove_[std::size_t(j)] != i) continue;
            int const end = boneStart_[std::size_t(j)];
            if (end == t.source || !isAncestor(source_, t.source, end)) continue;
            from += targetAt_[std::size_t(j)] - targetAt_[std::size_t(i)];
            to += turned(sourceAt_[std::size_t(end)] - start, rig_.alignment);
        }
        from = direction(from), to = direction(to);
        // Of equal bones rounding is all that is left.
        bool const known = from != Vec3() && to != Vec3() && length(from - to) > 1e-7;
        return known ? std::pair(from, to) : std::pair(Vec3(), Vec3());
    }

    // ---- the floor ----

    bool travelsAlone() {
        int travellers = 0;
        bool trunk = true;
        for (std::size_t i = 0; i < target_.size(); ++i) {
            if (!rig_.targets[i].travels) continue;
            ++travellers;
            trunk = parts_[i] == BodyPart::Hips || parts_[i] == BodyPart::Root;
        }
        return travellers == 1 && trunk && sourceFrame_.isKnown && targetFrame_.isKnown;
    }
    void standOnFloor() {
        Vec3 const up = targetFrame_.up;
        Stand const from(sourceAt_, sourceFrame_.up), to(targetAt_, targetFrame_.up);
        bool const lifts = !from.sharesFloor(to);
        for (T& t : rig_.targets) {
            if (!t.travels) continue;
            if (lifts) t.from += up * from.lift(to.clearance() / rig_.scale);
            if (lifts) t.to += up * to.lift(from.clearance() * rig_.scale);
            t.to += up * feetOff();
        }
    }
    // By how much the feet of the target, in the pose of the source's origin, stand below where they do in its own.
    double feetOff() {
        std::vector<Vec3> at;
        double own = 1e300, corrected = 1e300;
        bool differs = false;
        for (std::size_t i = 0; i < target_.size(); ++i) {
            int const parent = target_.parents[i];
            Vec3 const bone =
                parent < 0 ? Vec3()
                           : turned(targetAt_[i] - targetAt_[std::size_t(parent)], corrections_[std::size_t(parent)]);
            at.push_back(parent < 0 ? targetAt_[i] : at[std::size_t(parent)] + bone);
            differs = differs || !isIdentity(corrections_[i]);
            if (parts_[i] != BodyPart::Foot && parts_[i] != BodyPart::Toe) continue;
            own = std::min(own, dot(targetAt_[i], targetFrame_.up));
            corrected = std::min(corrected, dot(at[i], targetFrame_.up));
        }
        return differs && own < 1e300 ? own - corrected : 0;
    }
    RetargetRig& rig_;
    Skeleton const &source_, &target_;
    std::vector<Vec3> sourceAt_, targetAt_;
    std::vector<Quaternion> targetRest_, sourceRest_;
    std::vector<Qelp::Matrix34> targetMatrices_;
    std::vector<Quaternion> corrections_;
    std::vector<int> matchAbove_, fellow_, boneStart_;
    std::vector<BodyPart> parts_;
    Frame sourceFrame_, targetFrame_;
};

bool isInside(int i, Skeleton const& s) { return i >= 0 && i < int(s.size()); }

bool isSound(RetargetJoint const& o, Skeleton const& s) {
    for (double v : {o.translationWeight, o.rotationWeight, o.scale, o.offset.x, o.offset.y, o.offset.z})
        if (!(std::abs(v) < 1e15)) return false;
    return isUsable(o.axes) && o.referent >= RetargetJoint::itself && o.referent < int(s.size());
}

bool areSound(std::span<RetargetJoint const> options, Skeleton const& s) {
    if (options.empty()) return true;
    return options.size() == s.size() &&
           std::all_of(options.begin(), options.end(), [&](RetargetJoint const& o) { return isSound(o, s); });
}

}  // namespace

bool RetargetRig::Validate() const {
    if (!source || !target || !source->Validate() || !target->Validate()) return false;
    std::vector<bool> taken(target->size());
    for (JointMatch const& m : matches) {
        if (!isInside(m.source, *source) || !isInside(m.target, *target) || taken[std::size_t(m.target)]) return false;
        if (m.blendSource >= 0 && !(isInside(m.blendSource, *source) && m.blend >= 0 && m.blend <= 1)) return false;
        taken[std::size_t(m.target)] = true;
    }
    return areSound(sourceOptions, *source) && areSound(targetOptions, *target);
}

bool RetargetRig::Run() {
    if (!Validate()) return false;
    Builder(*this).run();
    source = target = nullptr;
    matches = {};
    sourceOptions = targetOptions = {};
    return true;
}

}  // namespace sg
