// What retargeting knows before the first frame: two skeletons, which joint follows which, and how.
//
// A joint's motion is the turn that takes its world orientation in the origin pose to that of now, told in the axes of
// the world; so the joints' own axes, and how they stand at rest, do not matter. A target joint makes the same turn, or
// a mix of two where chains differ in count, seen from its referent.
//
// Axes. The two worlds are laid over each other by the bodies: up is the axis of the world that is nearest to the way
// from the feet over the hips to the head, forward follows from left and right; a facing within 15 degrees of an axis
// of the world is taken for that axis. Where a body has no such directions, the worlds are taken as they are.
//
// Rest poses. Origins are taken to correspond; how far, says the mode of a target joint:
// - Fixed: as they stand. At the source's origin the target stands at its own.
// - Auto, the default: limbs are compared bone by bone. An upper arm, forearm, thigh or shin points where its
//   counterpart points, so that a T pose drives an A pose; hands keep their place on the forearm, feet their place on
//   the ground.
// - Free: every bone with a matched joint at its end points where its counterpart points, whatever its origin.
//
// Travel. The matched joints that have no matched joint above them travel: their way from the origin is scaled by the
// ratio of the legs (thigh and shin, both sides), else of the heights at rest, else of the bones. Motion files have
// origins without a floor, which hang below the world's zero: unless both skeletons stand on one floor, such an origin
// counts for the travel as lifted until it stands at zero. Where rest poses are corrected, the height at which the
// target's feet stand in its own origin is kept. All other joints keep their translation, and what the source adds to
// its own they add in proportion to their bones.
#pragma once
#include "qel/solvers/joint_limit.h"
#include "qel/solvers/skeleton_match.h"
#include <optional>

namespace sg {

enum class RetargetMode { Fixed, Auto, Free };

// The user's say on one joint of either skeleton. Of a source joint, only `referent` and `axes` count.
struct RetargetJoint {
    static constexpr int itself = -2, world = -1;

    // In whose frame the motion is measured and made: the joint itself, which means the nearest matched joint above,
    // an ancestor by its index, or the world. It makes a difference where a joint between the two does not follow the
    // source: limited, weighted, or inactive. A target joint's own choice goes before that of its source.
    int referent = itself;
    Qelp::Matrix34 axes;  // the rotation of the axes of measurement against the world's; the translation is not used
    RetargetMode mode = RetargetMode::Auto;
    bool isActive = true;          // if not, it keeps its origin
    double translationWeight = 1;  // of travel, and of what the source adds to its translation
    double rotationWeight = 1;     // 0: as its parent carries it; 1: like the source; in between by the shortest way
    double scale = 1;              // of its translation, besides the ratio
    retargeting::Vec3 offset;      // radians, XYZ: turned by this about its own axes at last
    std::optional<JointLimit> limit;
};

// Prepared once; frames are computed by Retarget (retarget.h).
struct RetargetRig {
    // ---- given; not needed after Run ----
    Skeleton const* source = nullptr;
    Skeleton const* target = nullptr;
    std::span<JointMatch const> matches;           // each target at most once
    std::span<RetargetJoint const> sourceOptions;  // one for each joint, or none
    std::span<RetargetJoint const> targetOptions;

    // Skeletons are valid, matches name joints that exist, options are as many as joints or none, their numbers finite
    // and below 1e15, their referents joints of that skeleton or one of the two constants.
    bool Validate() const;
    // False, and nothing changed, if it is not valid.
    bool Run();

    // ---- found ----
    double scale = 1;      // of travel: target's legs by source's
    Quaternion alignment;  // from the source's world to the target's

    // ---- for Retarget: one entry a joint ----
    struct SourceJoint {
        int parent;
        Quaternion inverseRest;  // of the world orientation, in the target's world
        Quaternion local;        // origin
        Qelp::Matrix34 origin;
        bool isCarrier = false;    // its world matrix is asked for
        bool isStretched = false;  // the origin has scale or shear
    };
    struct TargetJoint {
        int parent;
        int source = -1, blendSource = -1;
        double blend = 0;
        int referent = -1;  // a matched target joint; -1: the world
        bool isDriven = false, travels = false, isStretched = false;
        Quaternion rest, inverseRest;  // world orientation that corresponds to the source's at rest
        Quaternion local;              // origin
        Qelp::Matrix34 origin;
        std::optional<Quaternion> turn;  // from the axes of measurement to the target's world
        double rotationWeight = 1, translationFactor = 1;
        Quaternion offset;
        bool hasOffset = false;
        Quaternion carry;                  // from the axes of the source's parent to those of the target's
        retargeting::Vec3 from, to;        // of a traveller: places at rest, source and target
        Qelp::Matrix34 inverseParentRest;  // of a traveller
        Quaternion axes;                   // from the source joint's own axes to the target's
        std::optional<JointLimit> limit;
    };
    std::vector<SourceJoint> sources;
    std::vector<TargetJoint> targets;
};

}  // namespace sg
