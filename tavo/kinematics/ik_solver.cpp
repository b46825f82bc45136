#include "tavo/kinematics/ik_solver.h"

namespace Tavo {

void XIKSolver::Initialise() {
    if (IsValid()) static_cast<sg::IKSolverNode*>(getNode())->Initialise();
}

}  // namespace Tavo
