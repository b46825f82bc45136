// The two figures of a retargeting in one scene: the one that takes over, whose document it is, and beside it for a
// while the one whose motion it is.
#pragma once
#include "hosts/tavo/session.h"
#include "tavo/kinematics/joint.h"

#include <string>
#include <vector>

namespace host {

// Moments, evenly apart, in seconds.
struct Frames {
    double start = 0, step = 0;
    std::int64_t count = 0;

    static Frames of(Tavo::XScene const& scene);
    float time(std::int64_t frame) const { return float(start + double(frame) * step); }
};

// A file's motion, as a clip whatever the file is. Throws a Failure. No other session may live meanwhile.
struct Motion {
    bvh::Clip clip;
    bvh::ImportOptions options;

    // Throws also when the file holds more than one figure.
    static Motion read(Input const& input);
    // As the motion has them; a scene that it is brought into may hold another figure with a frame time of its own.
    Frames frames() const { return {0, clip.frameTime, clip.frames}; }
};

// The joints below one transform, and the pose in which they have not moved yet: as they came, unless it is told.
struct Figure {
    Tavo::XTransform root;              // above the topmost joint
    std::vector<Tavo::XJoint> joints;   // parents before children
    std::vector<Tavo::XMatrix> origin;  // the local matrix of each joint there

    // All joints of the scene. Throws a wrong call when there are none, or when they are not all below one of them.
    static Figure ofScene(Tavo::XScene& scene);
    // A new one of the clip, with the clip's time range.
    static Figure of(Motion const& motion, Tavo::XScene& scene);

    // Its origin becomes the pose of that frame. Throws a wrong call beyond these frames.
    void takeOrigin(Tavo::XScene& scene, Frames const& frames, int frame);

private:
    void takeRest();
};

}  // namespace host
