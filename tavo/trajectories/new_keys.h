// Keys that are added to a trajectory, at the end of their array; for the files of this folder.
#pragma once
#include "tavo/animation/keyframe.h"
#include "tavo/trajectories/key_parts.h"
#include <optional>

namespace Tavo {

struct XNewTranslationKey {
    struct Handles {
        Qelp::Vector3 in, out;
    };

    Qelp::Vector3 position;
    std::optional<Handles> handles;  // without them, and so with linear interpolation, a key keeps its defaults
    int continuity = BrokenContinuity;

    void addTo(sg::TrajectoryNode& node, int number) const {
        db::Attribute* const element = XTranslationKeys(node).array().add();
        if (!element) return;
        XTranslationKey const added(*element);
        added.setNumber(number);
        added.setPosition(position);
        added.setInterpolation(handles ? SplineInterpolation : LinearInterpolation);
        if (!handles) return;
        added.setInHandle(handles->in);
        added.setOutHandle(handles->out);
        added.setContinuity(continuity);
    }
};

// In place of all there are, numbered from 0.
template<class Keys> void replaceTranslationKeys(sg::TrajectoryNode& node, Keys const& keys) {
    XTranslationKeys(node).array().clearArray();
    int number = 0;
    for (XNewTranslationKey const& key : keys) key.addTo(node, number++);
}

struct XNewRotationKey {
    struct Tangents {
        Qelp::Vector3 in, out;
    };

    Qelp::Quat orientation;
    std::optional<Tangents> tangents;
    int continuity = BrokenContinuity;

    // There must be none at that place.
    void addTo(sg::TrajectoryNode& node, float attach) const {
        db::Attribute* const element = XRotationKeys(node).array().add();
        if (!element) return;
        XRotationKey const added(*element);
        added.setAttachPoint(attach);
        added.setOrientation(orientation);
        added.setInterpolation(tangents ? SplineInterpolation : LinearInterpolation);
        if (!tangents) return;
        added.setInTangent(tangents->in);
        added.setOutTangent(tangents->out);
        added.setContinuity(continuity);
    }
};

}  // namespace Tavo
