// Which joint of one skeleton corresponds to which of another.
//
// Matched are, in this order: the pairs that are given; the parts of a body (body_parts.h), told on either side by the
// names and, where these say nothing or contradict the shape of the skeleton, by the shape; joints of equal names; and
// what remains below and above matched joints by its place in the tree and the shape of the rest pose. A spine, a neck
// or a collar of another number of joints is matched along its length: a target joint then follows a mix of two
// joints of the source, and the last one follows the last. Of a limb whose bone is split into several joints on one
// side only, the first follows the last of the source's, which knows the whole turn.
//
// Every match says how sure it is. Deterministic; takes time in proportion to the product of the sizes at most.
#pragma once
#include "qel/solvers/body_parts.h"
#include <span>
#include <utility>

namespace sg {

enum class MatchBasis { Given, Name, Shape, Place };

struct JointMatch {
    int source = -1, target = -1;
    // 1 for what was given, and for equal names where the shape agrees; 0.85 for parts by their names, 0.7 by shape
    // alone, 0.5 and less for what was found by its place. Less where skeletons differ more.
    double confidence = 0;
    MatchBasis basis = MatchBasis::Given;
    BodyLabel label;  // of the target joint
    // The target follows this share of the way from `source` to another joint. -1: `source` alone.
    int blendSource = -1;
    double blend = 0;
    // Where the source's bone begins, if `source` is a later part of a bone that is split. -1: `source`.
    int boneSource = -1;

    int boneStart() const { return boneSource >= 0 ? boneSource : source; }
};

using JointPair = std::pair<int, int>;  // source, target

struct SkeletonMatch {
    // ---- given ----
    Skeleton const* source = nullptr;
    Skeleton const* target = nullptr;
    std::span<JointPair const> given;  // neither side twice
    bool matchesRest = true;           // find matches for what is not given; if not, the given ones are all
    bool usesNames = true;             // if not, only shape and place count

    // ---- found ----
    std::vector<JointMatch> matches;  // in the order of the target's joints
    std::vector<int> unmatchedSource, unmatchedTarget;

    // Both skeletons are there and valid, given pairs name joints that exist, none twice on one side.
    bool Validate() const;
    // False, and nothing changed, if it is not valid.
    bool Run();

    JointMatch const* matchOf(int target) const;  // null: unmatched
    double confidence(int target) const;          // 0: unmatched
    double meanConfidence() const;                // over the matches; 0 without any
};

}  // namespace sg
