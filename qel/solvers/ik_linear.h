// One linear step of the inverse kinematics: of all steps y, the one that makes |J y + r|^2 + damping |y - pull|^2
// least, with y S y added where a curvature S is given.
//
// Worked out in the space of the tasks or in that of the unknowns, whichever is smaller: both give the same step. The
// matrix is formed block by block from the sparse Jacobian and factored by Cholesky in a fixed order, so that the same
// numbers give the same bits. Nothing allocates once the room is made.
#pragma once
#include "qel/solvers/ik_curvature.h"

namespace sg::ik {

class LinearStep {
public:
    void setUp(Tasks const& tasks);
    // When the Jacobian has changed. A curvature is worked out in the space of the unknowns.
    void form(Tasks const& tasks, Curvature const* curvature = nullptr);
    double largestDiagonal() const { return largest_; }
    // `pull` and `step` have a number for each unknown. The damping is above 0. False
    // if it is too little for a curvature that bends down: then there is no least.
    bool solve(Tasks const& tasks, std::vector<double> const& residual, double damping, std::vector<double> const& pull,
               std::vector<double>& step);

private:
    void formByTasks(Tasks const& tasks);
    void formByUnknowns(Tasks const& tasks);
    void makeRoom(Tasks const& tasks, bool byTasks);
    bool factor(double damping);
    void substitute(std::vector<double>& b) const;

    bool byTasks_ = true, isCurved_ = false;
    std::size_t size_ = 0;
    std::vector<double> matrix_, factor_;  // lower triangles, row by row in full rows
    std::vector<double> right_;
    std::vector<std::vector<std::size_t>> entriesOfTask_;
    double largest_ = 0;
};

// out += J x, and out += J^T x.
void addProduct(Tasks const& tasks, std::vector<double> const& x, std::vector<double>& out);
void addTransposed(Tasks const& tasks, std::vector<double> const& x, std::vector<double>& out);

}  // namespace sg::ik
