#include "tavo/kinematics/ik_solver.h"

namespace Tavo {
namespace {

template<class Node> void initialise(Node& node) {
    if constexpr (requires { node.Initialise(); }) node.Initialise();
}

}  // namespace

void XIKSolver::Initialise() {
    if (IsValid()) initialise(static_cast<sg::IKSolverNode&>(*getNode()));
}

}  // namespace Tavo
