#include "hosts/tavo/rotations_in_place.h"

#include <algorithm>

namespace host {

using namespace Tavo;

namespace {

constexpr float nearest = 1e-6F;  // rotation keys that are closer count as one

}  // namespace

RotationsInPlace::RotationsInPlace(XTrajectory const& path) : path_(path) {
    XAttribute const keys = path.RotationKeyframesArray();
    for (int slot = 0; slot < keys.AttributeCount(); ++slot) {
        float const attach = keys.Attribute(slot).Attribute(0).Float();
        keys_.push_back({slot, attach, path.ArcLengthMap(attach)});
    }
    std::stable_sort(keys_.begin(), keys_.end(), [](Key const& a, Key const& b) { return a.attach < b.attach; });
}

void RotationsInPlace::restore() const {
    XAttribute keys = path_.RotationKeyframesArray();
    std::vector<int> doubled;
    float last = -1;
    for (Key const& key : keys_) {
        float const attach = path_.InverseArcLengthMap(key.fraction);
        if (attach - last <= nearest) {
            doubled.push_back(key.slot);
            continue;
        }
        keys.Attribute(key.slot).Attribute(0).SetFloat(last = attach);
    }
    std::sort(doubled.rbegin(), doubled.rend());
    for (int slot : doubled) keys.Delete(slot);
}

}  // namespace host
