#include "qel/solvers/body_parts.h"
#include "qel/solvers/joint_names.h"

namespace sg {

wchar_t const* nameOf(BodyPart part) {
    constexpr wchar_t const* names[] = {L"",         L"Root",    L"Hips",   L"Spine", L"Neck",  L"Head", L"Collar",
                                        L"UpperArm", L"Forearm", L"Hand",   L"Thigh", L"Shin",  L"Foot", L"Toe",
                                        L"Thumb",    L"Index",   L"Middle", L"Ring",  L"Little"};
    return names[std::size_t(part)];
}

int& BodyAnchors::at(int i) {
    if (i < 2) return i == 0 ? hips : head;
    Limb& limb = i < 8 ? arms[(i - 2) / 3] : legs[(i - 8) / 3];
    int const place = (i - 2) % 3;
    return place == 0 ? limb.start : place == 1 ? limb.middle : limb.end;
}

int BodyAnchors::count() const {
    int found = 0;
    for (int i = 0; i < total; ++i) found += at(i) >= 0;
    return found;
}

bool isAncestor(Skeleton const& skeleton, int ancestor, int joint) {
    while (joint > ancestor) joint = skeleton.parents[std::size_t(joint)];
    return ancestor >= 0 && joint == ancestor;
}

int commonAncestor(Skeleton const& skeleton, int a, int b) {
    while (a >= 0 && !isAncestor(skeleton, a, b)) a = skeleton.parents[std::size_t(a)];
    return b < 0 ? -1 : a;
}

std::vector<int> pathBelow(Skeleton const& skeleton, int ancestor, int joint) {
    std::vector<int> path;
    if (!isAncestor(skeleton, ancestor, joint)) return path;
    for (int at = joint; at != ancestor; at = skeleton.parents[std::size_t(at)]) path.insert(path.begin(), at);
    return path;
}

// ---- by name ----

namespace {

// The first joint of that part and side; parents stand first, so it is the one nearest to the root.
int find(std::vector<JointName> const& names, BodyPart part, BodySide side) {
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i].word == NameWord::Certain && names[i].part == part && names[i].side == side) return int(i);
    return -1;
}

int find(std::vector<JointName> const& names, NameWord word, BodySide side, bool last = false) {
    int found = -1;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i].word == word && names[i].side == side && (last || found < 0)) found = int(i);
    return found;
}

// What hangs together from the body outwards; the rest is not believed.
BodyAnchors::Limb checked(Skeleton const& skeleton, BodyAnchors::Limb limb) {
    if (limb.start >= 0 && limb.middle >= 0 && !isAncestor(skeleton, limb.start, limb.middle)) limb = {};
    int const above = limb.middle >= 0 ? limb.middle : limb.start;
    if (above >= 0 && limb.end >= 0 && !isAncestor(skeleton, above, limb.end)) limb.end = -1;
    return limb;
}

BodyAnchors::Limb legByName(std::vector<JointName> const& names, BodySide side) {
    int const leg = find(names, NameWord::Leg, side), hip = find(names, NameWord::Hip, side, true);
    BodyAnchors::Limb out{find(names, BodyPart::Thigh, side), find(names, BodyPart::Shin, side),
                          find(names, BodyPart::Foot, side)};
    if (out.start >= 0 && out.middle < 0) out.middle = leg;
    if (out.start < 0) out.start = out.middle >= 0 && leg >= 0 ? leg : hip;
    if (out.start < 0) out.start = leg;
    if (out.middle < 0 && leg != out.start) out.middle = leg;
    return out;
}

BodyAnchors::Limb armByName(std::vector<JointName> const& names, BodySide side) {
    int const arm = find(names, NameWord::Arm, side), shoulder = find(names, NameWord::Shoulder, side);
    BodyAnchors::Limb out{find(names, BodyPart::UpperArm, side), find(names, BodyPart::Forearm, side),
                          find(names, BodyPart::Hand, side)};
    if (out.start >= 0 && out.middle < 0) out.middle = arm;
    if (out.start < 0) out.start = arm >= 0 ? arm : shoulder;
    return out;
}

// The joint on the way from start to end that halves it best.
void completeMiddle(Skeleton const& skeleton, BodyAnchors::Limb& limb) {
    std::vector<int> const path = pathBelow(skeleton, limb.start, limb.end);
    if (limb.middle >= 0 || limb.start < 0 || path.size() < 2) return;
    auto const at = skeleton.restPositions();
    auto const unevenness = [&](int joint) {
        auto const j = std::size_t(joint);
        return std::abs(length(at[j] - at[std::size_t(limb.start)]) - length(at[std::size_t(limb.end)] - at[j]));
    };
    limb.middle = path[0];
    for (std::size_t i = 0; i + 1 < path.size(); ++i)
        if (unevenness(path[i]) < unevenness(limb.middle)) limb.middle = path[i];
}

}  // namespace

BodyAnchors anchorsByName(Skeleton const& skeleton) {
    std::vector<JointName> const names = readJointNames(skeleton.names);
    BodyAnchors out;
    for (int side = 0; side < 2; ++side) {
        BodySide const s = side == 0 ? BodySide::Left : BodySide::Right;
        out.arms[side] = checked(skeleton, armByName(names, s));
        out.legs[side] = checked(skeleton, legByName(names, s));
        completeMiddle(skeleton, out.arms[side]);
        completeMiddle(skeleton, out.legs[side]);
    }
    out.hips = find(names, BodyPart::Hips, BodySide::Middle);
    if (out.hips < 0) out.hips = commonAncestor(skeleton, out.legs[0].start, out.legs[1].start);
    out.head = find(names, BodyPart::Head, BodySide::Middle);
    return out;
}

// ---- what follows from the anchors ----

namespace {

class Labels {
public:
    explicit Labels(Skeleton const& skeleton) : skeleton_(skeleton), labels_(skeleton.size()) {}

    void set(int joint, BodyPart part, BodySide side, int rank = 0) {
        if (joint >= 0 && labels_[std::size_t(joint)].part == BodyPart::None)
            labels_[std::size_t(joint)] = {part, side, rank};
    }
    // From `above`, not included, down to `below`, included or not.
    void setPath(int above, int below, bool included, BodyPart part, BodySide side) {
        std::vector<int> path = pathBelow(skeleton_, above, below);
        if (!included && !path.empty()) path.pop_back();
        for (std::size_t i = 0; i < path.size(); ++i) set(path[i], part, side, int(i));
    }
    // From `start` down to `end`, which is not included.
    void setBone(int start, int end, BodyPart part, BodySide side) {
        set(start, part, side);
        std::vector<int> const path = pathBelow(skeleton_, start, end);
        for (std::size_t i = 0; i + 1 < path.size(); ++i) set(path[i], part, side, int(i) + 1);
    }
    std::vector<BodyLabel> take() { return std::move(labels_); }

private:
    Skeleton const& skeleton_;
    std::vector<BodyLabel> labels_;
};

// Where the arms meet; with one arm, or none, where the spine ends that leads to the head.
int chestOf(Skeleton const& skeleton, BodyAnchors const& anchors) {
    int const chest = commonAncestor(skeleton, anchors.arms[0].start, anchors.arms[1].start);
    return chest >= 0 ? chest : anchors.hips;
}

int toeOf(Skeleton const& skeleton, std::vector<JointName> const& names, int foot) {
    int first = -1;
    for (int i = foot + 1; foot >= 0 && i < int(skeleton.size()); ++i) {
        if (!isAncestor(skeleton, foot, i)) continue;
        if (names[std::size_t(i)].part == BodyPart::Toe) return i;
        if (first < 0 && !names[std::size_t(i)].isHelper) first = i;
    }
    return first;
}

void labelFingers(Skeleton const& skeleton, std::vector<JointName> const& names, Labels& labels) {
    std::vector<int> depth(names.size(), 0);
    for (std::size_t i = 0; i < names.size(); ++i) {
        JointName const& name = names[i];
        if (name.part < BodyPart::Thumb) continue;
        int const parent = skeleton.parents[i];
        bool const continues = parent >= 0 && names[std::size_t(parent)].part == name.part;
        depth[i] = continues ? depth[std::size_t(parent)] + 1 : 0;
        labels.set(int(i), name.part, name.side, depth[i]);
    }
}

}  // namespace

std::vector<BodyLabel> labelBody(Skeleton const& skeleton, BodyAnchors const& anchors) {
    std::vector<JointName> const names = readJointNames(skeleton.names);
    Labels labels(skeleton);
    int const chest = chestOf(skeleton, anchors), waist = commonAncestor(skeleton, anchors.hips, chest);
    labels.set(anchors.hips, BodyPart::Hips, BodySide::Middle);
    labels.set(anchors.head, BodyPart::Head, BodySide::Middle);
    for (int side = 0; side < 2; ++side) {
        BodySide const s = side == 0 ? BodySide::Left : BodySide::Right;
        BodyAnchors::Limb const &arm = anchors.arms[side], &leg = anchors.legs[side];
        labels.setBone(arm.start, arm.middle, BodyPart::UpperArm, s);
        labels.setBone(arm.middle, arm.end, BodyPart::Forearm, s);
        labels.set(arm.end, BodyPart::Hand, s);
        labels.setPath(chest, arm.start, false, BodyPart::Collar, s);
        labels.setBone(leg.start, leg.middle, BodyPart::Thigh, s);
        labels.setBone(leg.middle, leg.end, BodyPart::Shin, s);
        labels.set(leg.end, BodyPart::Foot, s);
        labels.set(toeOf(skeleton, names, leg.end), BodyPart::Toe, s);
    }
    labels.setPath(waist, chest, true, BodyPart::Spine, BodySide::Middle);
    labels.setPath(chest, anchors.head, false, BodyPart::Neck, BodySide::Middle);
    for (int above = anchors.hips, rank = 0; above >= 0; ++rank) {
        above = skeleton.parents[std::size_t(above)];
        labels.set(above, BodyPart::Root, BodySide::Middle, rank);
    }
    labelFingers(skeleton, names, labels);
    return labels.take();
}

}  // namespace sg
