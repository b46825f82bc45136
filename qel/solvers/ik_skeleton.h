// The joints as the inverse kinematics sees them: where each stands, and what turning one does to those below.
//
// A local matrix is taken apart once: its rows are `shape * turn` with a lower triangular shape, the scale and shear,
// and a turn, the rotation. Only the turn changes, and of the top root the place; so scale, shear and mirroring of any
// joint stay exactly as they came. All lies in the space of the root's parent, in metres.
#pragma once
#include "qel/solvers/ik_algebra.h"
#include <span>
#include <vector>

namespace sg::ik {

struct Joint {
    int parent = -1;
    Mat3 shape, turn;  // local: rows are shape * turn
    Vec3 place;        // local
    Mat3 frame;        // turn * linear part of the parent: what a vector of the turned, unscaled joint becomes
    Mat3 linear;       // shape * frame: the world matrix without its translation
    Vec3 origin;       // world
    // The turns of this joint and all above, with their mirrorings and without any other scale: left-handed below a
    // mirrored joint, where turns go the other way round.
    Mat3 axes;
    double handedness = 1;                                       // of the axes: 1 or -1
    Vec3 axis(int i) const { return axes.row[i] * handedness; }  // about which the i-th turn turns the world
    // As Gram and Schmidt would read it from the world matrix, if nothing above is sheared.
    Mat3 orientation() const { return {{axes.row[0], axes.row[1], axis(2)}}; }
};

// What a solve may change: enough to come back to it.
struct Pose {
    std::vector<Mat3> turns;
    Vec3 root;
};

class Skeleton {
public:
    std::vector<Joint> joints;
    std::vector<int> order;  // parents before children

    // `parents` has at least one entry for each matrix. False if a joint is above itself.
    bool setUp(std::span<Qelp::Matrix34 const> locals, std::span<int const> parents);
    void setPose(std::span<Qelp::Matrix34 const> locals);  // the turns of these matrices, and the root's place
    void keep(Pose& pose) const;
    void restore(Pose const& pose);
    void place();  // frames, axes and origins, from what is local

    void turnBy(int joint, Vec3 const& rotation);  // about the joint's own axes
    double reach() const;  // the longest way from a root to a joint along the bones as they are placed
    // As it came where nothing has turned, so that an untouched joint keeps its bits.
    Qelp::Matrix34 local(int joint, Qelp::Matrix34 const& came) const;

private:
    bool sort();
    static void placeTop(Joint& joint);
    static void placeBelow(Joint& joint, Joint const& above);
    std::vector<Mat3> first_;  // turns as they came
    Vec3 firstRoot_;
    std::vector<int> childCount_;
};

}  // namespace sg::ik
