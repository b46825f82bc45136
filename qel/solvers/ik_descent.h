// The iteration of the inverse kinematics: damped least squares over the turns of the joints, inside their limits.
//
// Each iteration makes the linear model of the tasks, solves it with a damping that follows how well the model foretold
// the last step (Levenberg and Marquardt; the rule is Nielsen's, "Damping parameter in Marquardt's method",
// IMM-REP-1999-05), and takes the step if it makes the tasks better. Joints on the border of their limits which would
// leave it slide along it: their unknowns are projected, as in Bertsekas, "Projected Newton methods for optimization
// problems with simple constraints", SIAM Journal on Control and Optimization 20 (1982). What a step carries beyond a
// border is brought back to it.
//
// What the tasks leave open goes towards a preferred pose, which is the centre of the damping.
#pragma once
#include "qel/solvers/ik_borders.h"
#include "qel/solvers/ik_linear.h"

namespace sg::ik {

struct Accuracy {
    double position = 1e-4;     // metres
    double orientation = 1e-3;  // radians
};

class Descent {
public:
    Skeleton skeleton;
    Tasks tasks;
    Borders borders;
    Accuracy accuracy;
    Pose preferred;         // turns that the joints go to where nothing else decides
    double preference = 0;  // of the way there, in each iteration
    double tie = 0;         // to them where targets are far, as a part of how much these bend the cost
    int iterations = 0;     // taken, all in all

    void setUp();        // after the parts are filled
    void enterLimits();  // all joints inside, and everything placed and evaluated
    void evaluate();
    bool isReached() const;  // but for what is soft
    bool isDone() const;     // all
    // Until what is wanted is reached, nothing improves, or `most` iterations are taken. False: not reached. An eager
    // run also gives up where it comes on slowly: a descent that ends well falls fast.
    bool run(int most, bool isEager);

private:
    struct Held {
        std::size_t block;
        Bound bound;
        bool isFixed;  // closed to both sides
        Vec3 across;   // the direction that it takes out of the block's unknowns
    };
    void linearise();
    void measureLimits();
    bool hold(std::vector<double> const& step);
    bool hold(std::size_t block, Bound const& bound);
    bool release();
    void close(Held& held);
    void closeAll();
    Vec3 away(Block const& block) const;
    void computePull();
    void bendBorders(double steepness);
    std::vector<double> const& bentFree();
    void computeStep();
    void apply();
    void pullTie();
    double merit() const;
    double predicted(double before);
    bool iterate(double before);
    bool isSlow(double before);
    void bend(double before);
    bool isIdle(double before);

    LinearStep linear_;
    Pose kept_;
    std::vector<std::vector<Vec3>> closed_;  // of each block: orthonormal directions that are decided
    std::vector<LimitState> limits_;         // of each block
    std::vector<double> gradient_, pull_, tied_, fixed_, step_, change_, right_, model_, projected_, residual_, free_;
    std::vector<Held> held_;
    Curvature curvature_, open_;  // whole, and of what is not held
    bool isCurved_ = false;
    double damping_ = 0, growth_ = 2, tie_ = 0;
    int slow_ = 0, idle_ = 0;
};

}  // namespace sg::ik
