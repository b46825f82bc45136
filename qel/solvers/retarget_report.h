// How good a retargeted motion is, in numbers, from what can be seen: where the joints of both skeletons were in the
// world, frame by frame, and how they were matched. Free of any scene and of how the motion was made.
//
// Contacts are found in the source: a foot is down in a frame where it is near its lowest and hardly moves, and stays
// so for some frames. On those frames the target's foot should stand still; how far it comes from where it stood at
// the first of them, along the floor, is its slide. Depth is how far a foot goes below where it stands at rest on the
// floor. Both are told beside what the source's own foot does, in the target's size, as no motion is free of them.
//
// Lengths are metres, times seconds; "mm" in a name says millimetres.
#pragma once
#include "qel/solvers/retarget_rig.h"

namespace sg {

// Where the joints of one skeleton were: frame after frame, and in each the joints in their order.
struct JointTracks {
    std::size_t joints = 0;
    std::span<Qelp::Vector3 const> positions;

    std::size_t frames() const { return joints ? positions.size() / joints : 0; }
    retargeting::Vec3 at(std::size_t frame, int joint) const {
        Qelp::Vector3 const& p = positions[frame * joints + std::size_t(joint)];
        return {double(p.x), double(p.y), double(p.z)};
    }
};

// A joint that stands on the floor: an ankle, or better a toe.
struct RetargetFoot {
    int source = -1, target = -1;
    double sourceHeight = 0, targetHeight = 0;  // over the sole, at rest
};

// Toes where both have them, otherwise ankles, at the heights of the origins over their lowest joints.
std::vector<RetargetFoot> findFeet(SkeletonMatch const& match, Qelp::Vector3 const& sourceUp,
                                   Qelp::Vector3 const& targetUp);

enum class RetargetVerdict { Failed, Poor, Fair, Good };
wchar_t const* nameOf(RetargetVerdict verdict);

struct RetargetReport {
    // ---- given ----
    JointTracks source, target;  // as many frames
    double frameTime = 1.0 / 30;
    std::span<RetargetFoot const> feet;
    SkeletonMatch const* match = nullptr;
    double scale = 1;  // target's size by the source's, as of the rig
    // Unit vectors along an axis of the world; not checked beyond their length.
    Qelp::Vector3 sourceUp{0, 1, 0}, targetUp{0, 1, 0};
    int limitHits = 0;  // joints held back, summed over the frames
    // Of the source's size, which is the greatest extent of a frame: how near to its lowest, and how slow a second, a
    // foot is down.
    double contactHeight = 0.04, contactSpeed = 0.12;
    double shortestContact = 0.1;  // seconds

    // ---- found ----
    struct Measure {
        double largest = 0, mean = 0;  // mm; the mean over the frames of contact
    };
    struct Foot {
        RetargetFoot joints;
        int contactFrames = 0, contacts = 0;
        Measure slide, sourceSlide;         // the source's in the target's size
        double depth = 0, sourceDepth = 0;  // mm below the floor, over all frames
    };
    std::vector<Foot> footing;
    Measure slide, sourceSlide;  // over all feet
    double depth = 0, sourceDepth = 0;
    std::size_t frames = 0;
    double limitShare = 0;  // of the matched joints times frames
    double meanConfidence = 0, leastConfidence = 0;
    std::size_t matched = 0, unmatchedSource = 0, unmatchedTarget = 0;
    bool isEmpty = false;      // no frames, no joints, or no matches
    bool isFrozen = false;     // the source moves and the target does not
    bool isCollapsed = false;  // all its joints lie in one point
    bool isBroken = false;     // positions that are not finite
    RetargetVerdict verdict = RetargetVerdict::Failed;
    std::vector<std::wstring> reasons;  // sentences: what keeps the verdict from being better

    // Tracks hold whole frames, as many on both sides; the match is there and its skeletons fit the tracks; feet are
    // joints of the tracks; the other numbers are finite and positive.
    bool Validate() const;
    bool Run();  // false, and nothing changed, if it is not valid
};

}  // namespace sg
