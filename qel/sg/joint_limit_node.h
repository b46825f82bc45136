// The range of a joint as a transform beside it: its own frame is the fixed one. What it bounds and how stands in
// qel/solvers/joint_limit.h; nothing here limits a pose, the solvers that read it do.
#pragma once
#include "qel/sg/transform_node.h"
#include "qel/solvers/joint_limit.h"

namespace sg {

class JointLimitNode : public TransformNode {
public:
    static inline std::wstring const ClassID = L"JointLimit";
    static db::NodeDef const Def;
    enum Number : int {
        JointReference = 51,
        JointWorldMatrix = 52,
        JointLocalMatrix = 53,
        MovingOffset = 54,
        MovingOffsetMatrix = 57,
        LimitType = 58,
        Swing1Active = 59,
        Swing1Angle = 60,
        Swing2Active = 61,
        Swing2Angle = 62,
        TwistActive = 63,
        TwistAngle = 64,
        TwistOffset = 65,
        SoftSwingActive = 66,
        SoftSwing1Ratio = 67,
        SoftSwing2Ratio = 68,
        SoftTwistActive = 69,
        SoftTwistRatio = 70,
    };
    // The moving offset follows from its own angles and from the order in which they turn.
    static constexpr std::uint32_t movingOffsetBit = ofOrderBit;

    explicit JointLimitNode(db::NodeDef const& def = Def) : TransformNode(def) {}
    void compute(std::uint64_t todo) override;

    // As it stands now: evaluates.
    JointLimit getLimit() const;
    // Where the joint stands in it now.
    JointLimitAngles getAngles() const;
};

// The limit that solvers are given for one of their joints: ten parameters of a compound, from the one numbered `first`
// on: type, limit matrix, moving offset matrix, then active and angle of the first swing, of the second and of the
// twist, and the twist's offset. It is hard. Reads what is stored, as a node does that computes.
JointLimit readJointLimit(db::CompositeAttribute const& parameters, std::size_t first);

}  // namespace sg
