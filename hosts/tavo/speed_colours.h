// Colours for speeds: from dark blue where it is slow, through purple and red, to bright orange where it is fast. Every
// step is lighter than the one before, so that the order also shows in grey and to most eyes, and all are dark enough
// on white.
#pragma once
#include "hosts/tavo/path_state.h"

#include <string>

namespace host {

class SpeedColours {
public:
    static constexpr int classes = 24;

    // The range is never shown narrower than a fifth of its upper end, so that what hardly changes looks alike.
    SpeedColours(double least, double most);

    double least() const { return least_; }
    double most() const { return most_; }
    int classOf(double speed) const;            // 0 to classes - 1; what lies outside the range counts to its end
    static std::string colour(int speedClass);  // "#1f3a93"
    double speedOf(int speedClass) const { return least_ + (most_ - least_) * (speedClass + 0.5) / classes; }

private:
    double least_, most_;
};

// For each run of moments of one colour: the first, the last, which the next run begins with, and the class.
void forRunsOfSpeed(PathState const& state, SpeedColours const& colours, auto const& action) {
    std::vector<PathState::Moment> const& motion = state.motion;
    for (std::size_t from = 0, to = 0; from + 1 < motion.size(); from = to) {
        auto const classAt = [&](std::size_t i) {
            return colours.classOf((motion[i].speed + motion[i + 1].speed) / 2);
        };
        int const speedClass = classAt(from);
        for (to = from + 1; to + 1 < motion.size() && classAt(to) == speedClass;) ++to;
        action(from, to, speedClass);
    }
}

}  // namespace host
