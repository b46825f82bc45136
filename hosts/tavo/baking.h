// Turns what drives joints into keys: their places are sampled while they are driven, and written as curves when
// nothing drives them any more. Angles go on from key to key without jumps, in the order that is asked for.
#pragma once
#include "tavo/kinematics/joint.h"

#include <array>
#include <vector>

namespace host {

class Baking {
public:
    explicit Baking(std::vector<Tavo::XJoint> joints) : joints_(std::move(joints)), samples_(joints_.size()) {
        for (Tavo::XJoint const& joint : joints_) orders_.push_back(joint.RotationEulerOrder().Enumeration());
    }

    // Appends the places that the joints have now, in the order of angles that each joint had at the beginning.
    void sample(float time);
    // A channel that moves gets a curve with a key for each sample, any other the value. The joints must be free of
    // other inputs; the caller provides the change block.
    void write();

    std::vector<Tavo::XJoint> const& joints() const { return joints_; }
    std::vector<float> const& times() const { return times_; }

private:
    using Place = std::array<float, 6>;  // translation, angles about x, y, z

    Place placeOf(std::size_t joint) const;
    void writeChannel(Tavo::XAttribute channel, std::vector<Place> const& places, std::size_t number);

    std::vector<Tavo::XJoint> joints_;
    std::vector<int> orders_;
    std::vector<float> times_;
    std::vector<std::vector<Place>> samples_;  // of each joint
};

}  // namespace host
