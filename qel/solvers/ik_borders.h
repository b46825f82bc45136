// The limits of the joints during a solve: bringing a joint back inside, and what they leave of a step.
//
// Within one linear step the twist and the two swings of a joint change by their gradients. A step that would carry
// them out is held by bounds: the border's outward normal where the angles would be brought back to, as a direction of
// turns about the joint's own axes, and how far the joint may go along it. The swings of a hinge, and those with no
// room at all, are closed to both sides.
#pragma once
#include "qel/solvers/ik_skeleton.h"
#include "qel/solvers/joint_limit.h"

namespace sg::ik {

struct Bound {
    Vec3 normal;  // of unit length
    double room;  // radians along it, negative if the joint has to come back
    bool isTwist;
};

// Where a joint stands in its limit, and how a turn about its own axes changes that.
struct LimitState {
    JointLimitAngles at;
    Vec3 twist, swing1, swing2;
};

class Borders {
public:
    // Null for a joint without a limit; what is pointed at is copied. Limits are taken as hard ones.
    void setUp(std::span<JointLimit const* const> limits);
    bool has(int joint) const { return limited_[std::size_t(joint)] >= 0; }
    bool clamp(Skeleton& skeleton, int joint) const;           // whether it had to move
    double excess(Skeleton const& skeleton, int joint) const;  // radians beyond the border; 0 inside
    // Takes the joint this part of the way to where its limits have most room: 1 is the middle.
    void centre(Skeleton& skeleton, int joint, double share) const;
    // To a place inside, told by three numbers in [-1, 1].
    void goTo(Skeleton& skeleton, int joint, Vec3 const& at) const;
    LimitState measure(Skeleton const& skeleton, int joint) const;
    // What is closed whatever the step is.
    int closed(int joint, LimitState const& state, Bound (&out)[3]) const;
    // What holds a step that turns the joint by `turn`.
    int bounds(int joint, LimitState const& state, Vec3 const& turn, Bound (&out)[3]) const;

private:
    JointLimit const& limit(int joint) const { return limits_[std::size_t(limited_[std::size_t(joint)])]; }
    // The limit's frames as matrices, and its borders, infinite where there are none.
    struct Frames {
        Mat3 offset, fromFixed;
        double middle, twist, swing1, swing2;
    };
    Frames const& frames(int joint) const { return frames_[std::size_t(limited_[std::size_t(joint)])]; }
    static bool isInside(Frames const& f, JointLimitAngles const& at);
    // The rotation that is limited, and its angles; kept for a joint that is asked again before it turns.
    struct Measured {
        Mat3 turn;
        Quaternion rotation;
        JointLimitAngles at;
        bool isValid = false;
    };
    Measured const& measured(Skeleton const& skeleton, int joint) const;
    std::vector<JointLimit> limits_;
    std::vector<Frames> frames_;
    mutable std::vector<Measured> measured_;
    std::vector<int> limited_;  // number of a joint's limit; -1
};

}  // namespace sg::ik
