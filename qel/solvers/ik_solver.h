// Inverse kinematics of a whole body: turns joints, and moves the top root, so that effectors come to their targets.
// Free of any scene.
//
// Any number of effectors pull at once. Joints stay inside their limits. Where all targets can be met together they are
// met to the accuracies; where not, the pose is one from which no small change brings the effectors closer, in the
// sense of least squares over all weighted errors, an error of half the body's length counting as much as one radian.
// What the targets leave open stays close to the pose the solve began from, or to a bind pose.
//
// The same inputs give the same bits. A target that moves by little moves every joint by little, as long as the targets
// can be met, or met as well as before, in the way they were met; a search that starts again elsewhere (see `attempts`)
// may find another.
//
// All matrices act on row vectors and lie in the space of the top root's parent, or are local to a joint's parent.
// Metres, radians. Method: see ik_descent.h; every number inside is of double precision.
#pragma once
#include "qel/solvers/joint_limit.h"
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace sg {

namespace ik {
class Search;
}

// The values of the attribute.
enum IKHandleMode { PositionAndOrientationHandle = 0, PositionHandle = 1, SecondaryHandle = 2 };

struct IKHandle {
    int joint = 0;          // in the list of joints: the effector
    Qelp::Matrix34 target;  // in the space of the top root's parent; scale is not looked at
    int mode = PositionAndOrientationHandle;
    double positionWeight = 1;     // 0 or more, against the other handles
    double orientationWeight = 1;  // 0 or more
    // Of a secondary handle. One that is not pinned follows its joint and does not pull, unless softly, by this factor
    // on its weights: where that would cost another handle its accuracy it gives way. Pinned it pulls like any other.
    double secondaryWeight = 0;
    bool isPinned = false;
};

struct IKJoint {
    bool isJoint = true;              // false: a transform on the way, which stays as it is
    double stiffness = 0;             // 0 or more: turns 1 / (1 + stiffness) as readily as others
    double readiness[3] = {1, 1, 1};  // 0 or more, about its own axes: 0 does not turn about that one
    bool isLimited = false;
    JointLimit limit;  // as a hard limit

    // A pair of poles turns the limb that begins here about the line to its effector, the first handle below that
    // pulls. The reference rides with the joint from the input pose on; the limb turns until it lies on the same side
    // as the control. Where that would cost a handle its accuracy, the poles give way. Only the translations are looked
    // at.
    bool hasPoles = false;
    Qelp::Matrix34 controlPole, referencePole;  // in the space of the top root's parent
};

struct IKSolver {
    IKSolver();
    ~IKSolver();
    IKSolver(IKSolver&&) noexcept;
    IKSolver& operator=(IKSolver&&) noexcept;

    // ---- inputs ----
    std::span<Qelp::Matrix34 const> geometry;  // the local matrix of each joint: where the solve begins
    std::span<int const> hierarchy;            // the number of each joint's parent, -1 for none; may be longer
    std::span<int const> roots;                // numbers of joints; joint 0 is the topmost root whatever stands here
    std::span<IKHandle const> handles;
    std::span<IKJoint const> joints;  // of each joint; missing ones have the defaults
    // Poses that are preferred, each a local matrix of each joint. The one whose turns are closest to the geometry's is
    // taken; it decides only what the handles leave open.
    std::span<std::vector<Qelp::Matrix34> const> bindPoses;
    // Where the solve begins instead of the geometry, if it has a matrix for each joint: the result of the last frame,
    // in continuous mode. It then never starts again elsewhere, so that nothing jumps. Scales and the translations of
    // all but joint 0 are those of the geometry.
    std::span<Qelp::Matrix34 const> previous;

    // The top root does not move along these axes of its parent. `rootLocked` stands for all three.
    bool rootLocked = false;
    bool lockRoot[3] = {false, false, false};
    bool disableAllLimits = false;

    int maxIterations = 200;            // 0 only brings the joints inside their limits
    double positionAccuracy = 1e-4;     // metres, 0 or more
    double orientationAccuracy = 1e-3;  // radians, 0 or more
    // How readily joints turn, from the top root, t = 0, to the deepest, t = 1: as
    // exp(-moreBias * t - reverseBias * (1 - t)). More bias lets those near the root do more, reverse bias those near
    // the effectors; 0 treats all alike.
    double moreBias = 0;
    double reverseBias = 0;

    // ---- outputs ----
    std::vector<Qelp::Matrix34> result;  // the local matrix of each joint; what has not moved keeps its bits
    bool isReached = false;              // all handles that pull, but soft ones, are at their targets
    int iterations = 0;                  // linear models solved, at most maxIterations
    int attempts = 0;                    // 1 and the times that the search started again elsewhere
    double positionError = 0;            // the largest of those handles, metres
    double orientationError = 0;         // radians

    // Empty if Run can work, or what is wrong, such as "Joint 3 is below itself".
    std::wstring Validate() const;
    // False, and the result is the geometry, if the inputs are not valid. No iterations are left is no failure.
    bool Run();

private:
    std::unique_ptr<ik::Search> search_;  // room that is kept from one run to the next
};

}  // namespace sg
