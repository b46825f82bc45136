// The node that solves a rig's inverse kinematics: reads its arrays into the inputs of qel/solvers/ik_solver.h, and
// writes the solved local matrix of each joint to its outputs, from where they drive the joints.
//
// A joint's limit counts where its parameters say so; its frames come as matrices. A pole pair counts where it is
// attached. What the arrays lack is read as the defaults of their rows. While the node may not compute, the outputs
// keep what they hold; while the solver or the handles are switched off, and where the rig is not sound (a joint below
// itself, a number of a joint that there is not, a matrix that is not finite), the geometry passes through unchanged.
//
// The outputs are a function of the inputs alone, but in continuous mode: there each solve begins from what the
// outputs held before, and so depends on the order in which frames are asked for.
#pragma once
#include "qel/sg/node.h"
#include "qel/solvers/ik_solver.h"

namespace sg {

class IKSolverNode final : public Node {
public:
    static inline std::wstring const ClassID = L"IKSolver";
    static db::NodeDef const Def;
    enum Number : int {
        AllowCompute = 1,
        JointHierarchy = 11,
        EndEffectorIndexList = 12,
        RootIndexList = 13,
        InputTargets = 14,
        BindPoses = 15,
        InputGeometry = 16,
        OutputGeometry = 17,
        IKHandleEnabled = 18,
        IKSolverEnabled = 19,
        RootLocked = 21,
        LockRootX = 22,
        ContinuousMode = 25,
        MaxIterations = 26,
        MoreBias = 27,
        ReverseBias = 28,
        PositionAccuracy = 29,
        OrientationAccuracy = 30,
        DisableAllLimits = 31,
        IKHandleParams = 32,
        JointIKParams = 33,
    };
    // The children of a handle's and of a joint's parameters.
    enum HandleChild : int { Mode = 0, PositionWeight = 1, OrientationWeight = 2, SecondaryWeight = 3, Free = 4 };
    enum JointChild : int {
        IsJoint = 0,
        Stiffness = 1,
        RotationWeightX = 2,
        LimitActive = 5,
        PoleVectorActive = 6,
        ControlPole = 7,
        ReferencePole = 8,
        LimitType = 9,
        LimitMatrix = 10,
        MovingOffsetMatrix = 11,
        Swing1Active = 12,
        Swing1Angle = 13,
        Swing2Active = 14,
        Swing2Angle = 15,
        TwistActive = 16,
        TwistAngle = 17,
        TwistOffset = 18,
    };
    static constexpr std::uint32_t solvedBit = 1;

    explicit IKSolverNode(db::NodeDef const& def = Def) : Node(def) {}
    void compute(std::uint64_t todo) override;

    // Reads the arrays anew and forgets the last pose of continuous mode: the next solve begins from the geometry.
    void Initialise();
    // What the last solve came to: whether it reached, its errors, what is wrong with the rig.
    IKSolver const& solver() const { return solver_; }
    std::wstring const& problem() const { return problem_; }  // empty if the rig is sound

private:
    bool flag(int row) const;
    float real(int row) const;
    std::vector<int> const& integers(int row) const;
    void readGeometry();
    void readHandles();
    void readJoints();
    void readBindPoses();
    void readSettings();
    void write(std::vector<Qelp::Matrix34> const& matrices);

    IKSolver solver_;
    std::wstring problem_;
    bool hasPrevious_ = false;
    std::vector<Qelp::Matrix34> geometry_, previous_;
    std::vector<IKHandle> handles_;
    std::vector<IKJoint> joints_;
    std::vector<std::vector<Qelp::Matrix34>> bindPoses_;
};

}  // namespace sg
