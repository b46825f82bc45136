// Inverse kinematics from the inputs of ik_solver.h to a pose: sets the descent up, and starts it again elsewhere where
// it ends in a pose that cannot be improved and is not good enough.
#pragma once
#include "qel/solvers/ik_descent.h"
#include "qel/solvers/ik_solver.h"

namespace sg::ik {

class Search {
public:
    // The solver's inputs are valid.
    void run(IKSolver& solver);

private:
    void setUpJoints(IKSolver const& solver);
    void setUpBlocks(IKSolver const& solver);
    void setUpHandles(IKSolver const& solver);
    void setUpPoles(IKSolver const& solver);
    void setUpPreference(IKSolver const& solver);
    void findDepths();
    Vec3 readiness(IKSolver const& solver, int joint) const;

    Descent descent_;
    std::vector<JointLimit const*> limits_;
    std::vector<int> depths_;
    std::vector<char> pulled_;  // joints with a handle below that pulls
    int deepest_ = 0;
    double size_ = 1;
};

}  // namespace sg::ik
