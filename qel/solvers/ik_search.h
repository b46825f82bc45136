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
    void relax();
    bool giveWay(int most, bool isEager);
    bool goOn(int most);
    bool searchElsewhere(IKSolver& solver);
    bool misses(Effector const& e) const;
    void stir(int joint, std::uint64_t& random, double range);
    void stirMissing(std::uint64_t& random);
    void stirAll(std::uint64_t& random);
    bool isStuck() const;
    bool bend(IKSolver const& solver);
    void comeBackTo(Pose const& pose);
    void findDepths();
    Vec3 readiness(IKSolver const& solver, int joint) const;

    Descent descent_;
    std::vector<JointLimit const*> limits_;
    std::vector<int> depths_;
    std::vector<int> pulled_;  // how many handles that pull are below a joint or on it
    Pose first_, best_;
    int deepest_ = 0;
    double size_ = 1;
};

}  // namespace sg::ik
