#include "tavo/extension/lua/script_sets.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

XScriptSet const& TrajectoryFunctions() {
    static XScriptSet const set{"Trajectory",
                                "A path that an object follows.",
                                {
                                    {"useSafeGuards",
                                     [](XTrajectory& path, bool use) { path.UseSafeGuards(use); },
                                     {{"use", true}},
                                     "Whether the safe guards hold keys."},
                                }};
    return set;
}

}  // namespace Tavo
