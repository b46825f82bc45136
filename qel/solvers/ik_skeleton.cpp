#include "qel/solvers/ik_skeleton.h"
#include <algorithm>

namespace sg::ik {
namespace {

Mat3 turnOf(Qelp::Matrix34 const& m) { return fromRotation(Qelutils::rotation::orthonormal(m.m)); }

// Rows of a lower triangular matrix: what is left of the rows when the turn is taken out. Above the diagonal only
// rounding is left.
Mat3 shapeOf(Qelp::Matrix34 const& m, Mat3 const& turn) {
    auto const part = [&](int i, int j) { return j > i ? 0 : dot(rowOf(m, i), turn.row[j]); };
    Mat3 shape;
    for (int i = 0; i < 3; ++i) shape.row[i] = {part(i, 0), part(i, 1), part(i, 2)};
    return shape;
}

}  // namespace

bool Skeleton::setUp(std::span<Qelp::Matrix34 const> locals, std::span<int const> parents) {
    joints.resize(locals.size());
    first_.resize(locals.size());
    for (std::size_t i = 0; i < joints.size(); ++i) {
        Joint& j = joints[i];
        j.parent = parents[i];
        j.turn = first_[i] = turnOf(locals[i]);
        j.shape = shapeOf(locals[i], j.turn);
        j.place = rowOf(locals[i], 3);
    }
    if (!joints.empty()) firstRoot_ = joints[0].place;
    return sort();
}

// From the leaves up: a joint enters the list when all its children have.
bool Skeleton::sort() {
    childCount_.assign(joints.size(), 0);
    for (Joint const& j : joints)
        if (j.parent >= 0) ++childCount_[std::size_t(j.parent)];
    order.clear();
    order.reserve(joints.size());
    for (std::size_t i = 0; i < joints.size(); ++i)
        if (childCount_[i] == 0) order.push_back(int(i));
    for (std::size_t at = 0; at < order.size(); ++at) {
        int const parent = joints[std::size_t(order[at])].parent;
        if (parent >= 0 && --childCount_[std::size_t(parent)] == 0) order.push_back(parent);
    }
    std::reverse(order.begin(), order.end());
    return order.size() == joints.size();
}

void Skeleton::setPose(std::span<Qelp::Matrix34 const> locals) {
    for (std::size_t i = 0; i < joints.size() && i < locals.size(); ++i) joints[i].turn = turnOf(locals[i]);
    if (!joints.empty() && !locals.empty()) joints[0].place = rowOf(locals[0], 3);
}

void Skeleton::keep(Pose& pose) const {
    pose.turns.resize(joints.size());
    for (std::size_t i = 0; i < joints.size(); ++i) pose.turns[i] = joints[i].turn;
    pose.root = joints.empty() ? Vec3() : joints[0].place;
}

void Skeleton::restore(Pose const& pose) {
    for (std::size_t i = 0; i < joints.size(); ++i) joints[i].turn = pose.turns[i];
    if (!joints.empty()) joints[0].place = pose.root;
}

void Skeleton::place() {
    for (int i : order) {
        Joint& j = joints[std::size_t(i)];
        if (j.parent < 0)
            placeTop(j);
        else
            placeBelow(j, joints[std::size_t(j.parent)]);
        j.linear = j.shape * j.frame;
    }
}

void Skeleton::placeTop(Joint& j) {
    j.frame = j.axes = j.turn;
    j.handedness = 1;
    j.origin = j.place;
}

void Skeleton::placeBelow(Joint& j, Joint const& above) {
    bool const isMirrored = above.shape.row[2].z < 0;
    j.frame = j.turn * above.linear;
    j.axes = j.turn * (isMirrored ? Mat3{{above.axes.row[0], above.axes.row[1], -above.axes.row[2]}} : above.axes);
    j.handedness = isMirrored ? -above.handedness : above.handedness;
    j.origin = j.place * above.linear + above.origin;
}

void Skeleton::turnBy(int joint, Vec3 const& rotation) {
    Mat3& turn = joints[std::size_t(joint)].turn;
    turn = exponential(rotation) * turn;
}

double Skeleton::reach() const {
    std::vector<double> way(joints.size());
    double longest = 0;
    for (int i : order) {
        Joint const& j = joints[std::size_t(i)];
        if (j.parent < 0) continue;
        Vec3 const bone = j.origin - joints[std::size_t(j.parent)].origin;
        way[std::size_t(i)] = way[std::size_t(j.parent)] + length(bone);
        longest = std::max(longest, way[std::size_t(i)]);
    }
    return longest;
}

Qelp::Matrix34 Skeleton::local(int joint, Qelp::Matrix34 const& came) const {
    Joint const& j = joints[std::size_t(joint)];
    Qelp::Matrix34 out = came;
    bool const moved = joint == 0 && !(j.place == firstRoot_);
    for (int k = 0; moved && k < 3; ++k) out.m[3][k] = float(j.place[k]);
    if (j.turn == first_[std::size_t(joint)]) return out;
    Mat3 const rows = j.shape * j.turn;
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) out.m[i][k] = float(rows.row[i][k]);
    return out;
}

}  // namespace sg::ik
