#include "hosts/tavo/time_guards.h"

#include "hosts/tavo/console.h"
#include "hosts/tavo/paths.h"

#include <algorithm>
#include <fmt/format.h>

namespace host {

using namespace Tavo;

TimeGuards::TimeGuards(XTrajectory const& path, std::vector<int> keys) :
    path_(path), keys_(std::move(keys)), order_(timingOrder(path)) {
    path.TimingCurve().KeyframeInputValues().Floats(before_);
    std::sort(keys_.begin(), keys_.end());
    keys_.erase(std::unique(keys_.begin(), keys_.end()), keys_.end());
    for (int key : keys_)
        if (key < 0 || std::size_t(key) >= order_.size())
            throw wrongCall(fmt::format("--guard-time: {} has no timing key {}; it has {}, from 0 on", pathOf(path),
                                        key, counted(order_.size(), "timing key")));
}

// From the guards on both sides, or the one there is. Where the time between two has vanished, as it was before.
float TimeGuards::guardedTime(std::size_t rank, Qelutils::Vector<float> const& now) const {
    auto const after = [&](int key) { return double(now[slot(key)]); };
    auto const next = std::lower_bound(keys_.begin(), keys_.end(), int(rank));
    int const right = next == keys_.end() ? keys_.back() : *next;
    int const left = next == keys_.begin() || next == keys_.end() ? right : *(next - 1);
    double const moved = after(int(rank)) - after(left), span = after(right) - after(left);
    if (left == right) return float(before(left) + moved);
    return float(span > 0 ? before(left) + moved * (before(right) - before(left)) / span : before(int(rank)));
}

void TimeGuards::restore() const {
    if (keys_.empty()) return;
    Qelutils::Vector<float> now;
    XAttribute times = path_.TimingCurve().KeyframeInputValues();
    times.Floats(now);
    if (now.size() != before_.size()) return;
    for (std::size_t rank = 0; rank < order_.size(); ++rank) {
        std::size_t const at = slot(int(rank));
        if (float const time = guardedTime(rank, now); time != now[at]) times.SetFloat(time, int(at));
    }
}

std::vector<std::pair<int, float>> TimeGuards::held() const {
    std::vector<std::pair<int, float>> held;
    for (int key : keys_) held.emplace_back(key, float(before(key)));
    return held;
}

}  // namespace host
