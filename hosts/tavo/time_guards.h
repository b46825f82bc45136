// Timing keys that keep their times while an edit that keeps the feel of a motion moves the times of all. Between two
// of them the motion is stretched or shortened evenly; before the first and after the last it is only shifted, so that
// its speed stays.
#pragma once
#include "tavo/trajectories/trajectory.h"

namespace host {

class TimeGuards {
public:
    // Before the edit. Keys are counted in time; throws a wrong call for one that is not there.
    TimeGuards(Tavo::XTrajectory const& path, std::vector<int> keys);
    // After it. The caller provides the block.
    void restore() const;
    // By number and, in seconds, its time.
    std::vector<std::pair<int, float>> held() const;

private:
    float guardedTime(std::size_t rank, Qelutils::Vector<float> const& now) const;
    double before(int rank) const { return double(before_[slot(rank)]); }
    std::size_t slot(int rank) const { return std::size_t(order_[std::size_t(rank)]); }

    Tavo::XTrajectory path_;
    std::vector<int> keys_;   // ascending, each once
    std::vector<int> order_;  // the slots in time, before
    Qelutils::Vector<float> before_;
};

}  // namespace host
