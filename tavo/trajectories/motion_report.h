// What an edit, or a whole drag, did to the motion along a path: remember the motion before, ask after.
//
//     XMotionReport report(trajectory);
//     trajectory.EditTranslationKeyframePosition(...);
//     XMotionChange change = report.Change();
//
// Edits know nothing of it: who does not ask pays nothing. It may be asked any number of times. Keys are compared by
// their slots, so that the keys must neither come nor go in between: those without a counterpart are left out.
#pragma once
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

struct XMotionChange {
    struct Measure {
        float largest = 0, mean = 0;  // of the absolute changes; 0 without timing
    };
    Measure progress;  // fraction of the path at the same moments: those of the timing keys before
    Measure speed;     // metres a second, between timing keys that follow each other in time
    Measure time;      // seconds, of the timing keys
    int keysMoved = 0;
    // For each safe guard in use, the translation keys that lay in its sphere and did not move.
    Qelutils::Vector<int> keysHeld;
};

class XMotionReport {
public:
    explicit XMotionReport(XTrajectory const& trajectory) : _trajectory(trajectory), _before(trajectory) {}

    XMotionChange Change() const;

private:
    struct Motion {
        explicit Motion(XTrajectory const& trajectory);
        float speed(std::size_t from, std::size_t to) const;  // between two timing keys

        Qelutils::Vector<Qelp::Vector3> positions;
        Qelutils::Vector<float> times, fractions;
        float length = 0;
    };
    void measureTiming(Motion const& now, XMotionChange& change) const;
    int countHeld(XAttribute const& guard, Motion const& now) const;

    XTrajectory _trajectory;
    Motion _before;
};

}  // namespace Tavo
