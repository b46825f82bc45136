// The two figures of a retargeting in one scene: the one that takes over, whose document it is, and beside it for a
// while the one whose motion it is.
#pragma once
#include "hosts/tavo/session.h"
#include "tavo/kinematics/joint.h"

#include <string>
#include <vector>

namespace host {

// A file's motion, as a clip whatever the file is. Throws a Failure. No other session may live meanwhile.
struct Motion {
    bvh::Clip clip;
    bvh::ImportOptions options;

    static Motion read(Input const& input);
    std::string frameTime() const { return clip.frameTimeText; }
};

// The joints below one transform, and the pose in which they have not moved yet: as they came, unless it is told.
struct Figure {
    Tavo::XTransform root;              // above the topmost joints
    std::vector<Tavo::XJoint> joints;   // parents before children
    std::vector<Tavo::XMatrix> origin;  // the local matrix of each joint there

    // All joints of the scene. Throws a wrong call when there are none, or when they do not stand on one object.
    static Figure ofScene(Tavo::XScene& scene);
    // A new one of the clip, with the clip's time range.
    static Figure of(Motion const& motion, Tavo::XScene& scene);

    // Its origin becomes the pose of that frame. Throws a wrong call beyond the scene's frames.
    void takeOrigin(Tavo::XScene& scene, int frame);

private:
    void takeRest();
};

}  // namespace host
