// Constraints: nodes that say where in its parent a transform stands that follows or aims at others. The formulas stand
// in qel/solvers/target_blend.h and aim.h.
#pragma once
#include "qel/sg/node.h"
#include "qel/solvers/target_blend.h"

namespace sg {

// The elements of an array of targets, each a matrix, an offset and a weight; `out` keeps its memory.
void readTargets(db::AttributeArray const& array, std::vector<BlendTarget>& out);

// Follows its targets, by their weights.
class KinematicsConstraintNode final : public Node {
public:
    static inline std::wstring const ClassID = L"KinematicsConstraint";
    static db::NodeDef const Def;
    enum Number : int {
        InputMatrices = 8,
        ParentWorldIn = 9,
        LocalTranslationOut = 10,
        LocalRotationOut = 13,
        LocalMatrix = 16,
        NormalizeWeights = 17,
    };
    enum TargetChild : int { TargetMatrix = 0, TargetOffset = 1, TargetWeight = 2 };
    static constexpr std::uint32_t blendBit = 1;

    explicit KinematicsConstraintNode(db::NodeDef const& def = Def) : Node(def) {}
    void compute(std::uint64_t todo) override;

private:
    TargetBlend blend_;  // kept for its memory
};

// Points at its target. Where it stands itself comes from three inputs of their own: its translation, connected; left
// alone, it aims from its parent's origin.
class AimConstraintNode final : public Node {
public:
    static inline std::wstring const ClassID = L"AimConstraint";
    static db::NodeDef const Def;
    enum Number : int {
        WorldIn = 8,
        UpVectorIn = 9,
        ParentWorldIn = 10,
        LocalEulerOut = 11,
        LocalTranslationIn = 14,
    };
    static constexpr std::uint32_t aimBit = 1;

    explicit AimConstraintNode(db::NodeDef const& def = Def) : Node(def) {}
    void compute(std::uint64_t todo) override;
};

}  // namespace sg
