// The parts of a body that joints are, as far as they can be told from their names or from the shape of the skeleton.
#pragma once
#include "qel/solvers/skeleton.h"

namespace sg {

enum class BodyPart {
    None,
    Root,  // above the hips
    Hips,
    Spine,
    Neck,
    Head,
    Collar,
    UpperArm,
    Forearm,
    Hand,
    Thigh,
    Shin,
    Foot,
    Toe,
    Thumb,
    Index,
    Middle,
    Ring,
    Little,
};

enum class BodySide { Middle, Left, Right };

wchar_t const* nameOf(BodyPart part);  // "UpperArm"; of None an empty text

// Hips, spine, neck and head, arms from the collar to the hand, legs to the foot.
constexpr bool isCore(BodyPart part) { return part >= BodyPart::Hips && part <= BodyPart::Foot; }
// A bone that is compared with its counterpart by its direction.
constexpr bool isLimbBone(BodyPart part) {
    return part == BodyPart::UpperArm || part == BodyPart::Forearm || part == BodyPart::Thigh || part == BodyPart::Shin;
}

struct BodyLabel {
    BodyPart part = BodyPart::None;
    BodySide side = BodySide::Middle;
    int rank = 0;  // where several joints in a row are one part: their order from the hips outwards
    bool operator==(BodyLabel const&) const = default;
};

// The joints on which all other labels hang. -1: not found.
struct BodyAnchors {
    struct Limb {
        int start = -1, middle = -1, end = -1;  // shoulder, elbow, wrist; hip, knee, ankle
        bool isWhole() const { return start >= 0 && middle >= 0 && end >= 0; }
    };
    int hips = -1, head = -1;
    Limb arms[2], legs[2];  // left, right

    int count() const;
    int& at(int i);  // of 14: hips, head, then the limbs
    int at(int i) const { return const_cast<BodyAnchors*>(this)->at(i); }
    static constexpr int total = 14;
};

// By what the joints are called: case, separators, what all names begin with, and everything before the last ':' or
// '|' do not count; sides and body parts are known by many words, also run together ("lfoot"). Ambiguous words are
// decided by those that the same side has besides: a "Shoulder" before an "Arm" is a collar, one before an "Elbow" is
// not.
BodyAnchors anchorsByName(Skeleton const& skeleton);
// By the tree and the lengths of bones alone, whatever the rest pose: the two longest pairs of limbs that are alike
// are legs and arms, and the one that the other hangs on is the legs. Left is told from right by where the feet point.
// Nothing is found where there are no two such pairs.
BodyAnchors anchorsByShape(Skeleton const& skeleton);

// All labels that follow from the anchors: the spine is what lies between hips and arms, and so on. Fingers are told
// by their names.
std::vector<BodyLabel> labelBody(Skeleton const& skeleton, BodyAnchors const& anchors);

// ---- trees ----
bool isAncestor(Skeleton const& skeleton, int ancestor, int joint);  // or the same
int commonAncestor(Skeleton const& skeleton, int a, int b);          // -1: none
// From an ancestor down to a joint, the joint included and the ancestor not; empty when it is none.
std::vector<int> pathBelow(Skeleton const& skeleton, int ancestor, int joint);

}  // namespace sg
