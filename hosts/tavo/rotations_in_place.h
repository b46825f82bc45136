// Rotation keys are attached to numbers of translation keys. When these are replaced, this brings the rotation keys
// back to the places of the path where they were, so that what follows the path turns where it turned.
#pragma once
#include "tavo/trajectories/trajectory.h"

namespace host {

class RotationsInPlace {
public:
    explicit RotationsInPlace(Tavo::XTrajectory const& path);
    // Of keys that come to lie on one place the first remains, as no two may share one. The caller provides the block.
    void restore() const;

private:
    struct Key {
        int slot;
        float attach, fraction;
    };
    Tavo::XTrajectory path_;
    std::vector<Key> keys_;  // along the path
};

}  // namespace host
