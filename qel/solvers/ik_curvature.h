// How the ways of the effectors bend when joints turn: what least squares leave out of the second derivatives of the
// cost.
//
// Next to a target it vanishes. Far from one it is most of the matrix: a hand that is drawn out of reach straightens
// the body, and along that nothing but this bending tells how far to go. Without it the descent only creeps there.
// Positions alone are taken in; orientations are never further away than half a turn.
#pragma once
#include "qel/solvers/ik_tasks.h"

namespace sg::ik {

class Curvature {
public:
    void form(Tasks const& tasks, Skeleton const& skeleton);  // with its Jacobian as it is now
    void addRound(std::size_t block, Vec3 const& bend);       // along each of the block's unknowns
    void close(std::size_t block, Vec3 const& direction);     // a unit direction in which the block does not move
    void addTo(std::vector<double>& matrix) const;            // of the unknowns, in full rows
    void addProduct(std::vector<double> const& x, std::vector<double>& out) const;
    double along(std::vector<double> const& x) const;  // x S x

private:
    void add(Tasks const& tasks, Skeleton const& skeleton, Entry const& upper, Entry const& lower);
    double& at(std::size_t r, std::size_t c) { return matrix_[r * size_ + c]; }
    std::size_t size_ = 0;
    std::vector<double> matrix_;  // symmetric, full
};

}  // namespace sg::ik
