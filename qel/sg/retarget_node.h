// Retargeting as a node: the local matrices of the source's joints go in, those that the target's joints are to have
// come out. The method is that of qel/solvers: joints are matched by skeleton_match.h, from their names and their
// origins, and frames computed by retarget.h. The table says what each parameter of a joint means.
//
// Pairs that are given are matched as they are; a map that names a joint that is not there, or one twice, counts for
// nothing.
//
// What is made of the parameters is kept beside the node's block until one of them changes; a frame reads the matrices
// only. A parent that does not stand before its joint counts as none, what is not finite as its default, so that any
// document gives finite matrices. While computing is not allowed the outputs stay as they are; a node that is not
// enabled gives the origins.
#pragma once
#include "qel/sg/node.h"
#include "qel/solvers/retarget.h"

namespace sg {

class RetargetNode final : public Node {
public:
    static inline std::wstring const ClassID = L"Retarget";
    static db::NodeDef const Def;
    enum Number : int {
        AllowCompute = 1,
        SourceJoints = 8,
        TargetJoints = 9,
        InputSourceGeometry = 10,
        OutputTargetGeometry = 11,
        SourceHierarchy = 12,
        TargetHierarchy = 13,
        Enabled = 14,
        SourceJointParams = 16,
        TargetJointParams = 17,
        DisableAllLimits = 18,
        Prepared = 20,
        MappedSources = 21,
        MappedTargets = 22,
    };
    // The parts of a joint's parameters.
    enum Part : int {
        JointName,
        Referent,
        ReferentMatrix,
        Origin,
        HasParent,
        Mode,
        TranslationWeight,
        RotationWeight,
        Scale,
        Active,
        Offset,
        LimitType = 13,
        LimitMatrix,
        MovingOffsetMatrix,
        Swing1Active,
        Swing1Angle,
        Swing2Active,
        Swing2Angle,
        TwistActive,
        TwistAngle,
        TwistOffset,
    };
    static constexpr std::uint32_t geometryBit = 1, preparedBit = 2;

    explicit RetargetNode(db::NodeDef const& def = Def) : Node(def) {}

    // Reads the arrays anew, and matches anew, when next something is asked for.
    void Initialise();

    // Up to date; until the next change.
    SkeletonMatch const& getMatch();
    RetargetRig const& getRig();
    int getLimitHits();  // of the present frame

    void compute(std::uint64_t todo) override;

private:
    db::AttributeArray& elements(int number) const { return at<db::AttributeArray>(number); }
    void prepare();
    void readMap();
    void solve();
    void readGeometry();

    Skeleton source_, target_;
    std::vector<JointPair> map_;
    SkeletonMatch match_;
    RetargetRig rig_;
    Retarget frame_;
    std::vector<Qelp::Matrix34> input_, output_;
};

}  // namespace sg
