// Bodies for the tests and benchmarks of the inverse kinematics: a chain, and a humanoid of 60 joints.
#pragma once
#include "qel/solvers/ik_algebra.h"
#include "qel/solvers/ik_solver.h"
#include <random>

namespace sg::ik {

struct Body {
    std::vector<Qelp::Matrix34> rest;
    std::vector<int> parents;
    std::vector<IKJoint> joints;
    std::vector<int> effectors;

    // A joint at `place` below `parent`, limited about `axis`: the X axis of the limit.
    int add(int parent, Vec3 const& place, Vec3 const& axis, JointLimit limit) {
        Qelp::Matrix34 m;
        for (int k = 0; k < 3; ++k) m.m[3][k] = float(place[k]);
        limit.fixedFrame = limit.movingOffset = frameAlong(axis);
        IKJoint joint;
        joint.limit = limit;
        joint.isLimited = true;
        rest.push_back(m);
        parents.push_back(parent);
        joints.push_back(joint);
        return int(rest.size()) - 1;
    }
    static Quaternion frameAlong(Vec3 const& x) {
        Vec3 const other = std::abs(x.y) < 0.9 ? Vec3{0, 1, 0} : Vec3{0, 0, 1};
        Vec3 z = cross(x, other);
        z = z * (1 / length(z));
        return Qelutils::rotation::toQuaternion(toRotation({{x, cross(z, x), z}}));
    }
};

inline JointLimit ball(double swing1, double swing2, double twist) {
    JointLimit l;
    l.swing1Angle = swing1;
    l.swing2Angle = swing2;
    l.twistAngle = twist;
    return l;
}
inline JointLimit hinge(double from, double to) {
    JointLimit l;
    l.type = HingeLimit;
    l.twistOffset = (from + to) / 2;
    l.twistAngle = (to - from) / 2;
    return l;
}

inline Body makeChain(int count, float bone = 0.1F) {
    Body b;
    int at = -1;
    for (int i = 0; i < count; ++i)
        at = b.add(at, {at < 0 ? 0 : double(bone), 0, 0}, {1, 0, 0}, ball(0.785, 0.785, 1.57));
    b.effectors = {at};
    return b;
}

// Arms along X, legs and spine along Y, facing Z; 1.8 m.
inline Body makeHumanoid() {
    Body b;
    Vec3 const right{1, 0, 0}, up{0, 1, 0}, down{0, -1, 0}, front{0, 0, 1};
    int const hips = b.add(-1, {0, 1, 0}, up, ball(1, 1, 1));
    int spine = hips;
    for (int i = 0; i < 4; ++i) spine = b.add(spine, {0, 0.12, 0}, up, ball(0.5, 0.5, 0.4));
    int const neck = b.add(spine, {0, 0.1, 0}, up, ball(0.5, 0.5, 0.6));
    b.effectors.push_back(b.add(neck, {0, 0.1, 0}, up, ball(0.6, 0.6, 0.8)));
    for (double side : {-1.0, 1.0}) {
        Vec3 const out{side, 0, 0};
        int const clavicle = b.add(spine, {0.05 * side, 0.08, 0}, out, ball(0.3, 0.3, 0.2));
        int const shoulder = b.add(clavicle, {0.15 * side, 0, 0}, out, ball(1.4, 1.4, 1.2));
        int const elbow = b.add(shoulder, {0.28 * side, 0, 0}, {0, -side, 0}, hinge(0, 2.4));
        int const hand = b.add(elbow, {0.26 * side, 0, 0}, out, ball(0.8, 0.8, 1.2));
        b.effectors.push_back(hand);
        for (int finger = 0; finger < 5; ++finger)
            for (int i = 0, at = hand; i < 3; ++i)
                at = b.add(at, {0.04 * side, 0, i == 0 ? 0.02 * (finger - 2) : 0}, front, hinge(0, 1.6));
    }
    for (double side : {-1.0, 1.0}) {
        int const hip = b.add(hips, {0.1 * side, -0.05, 0}, down, ball(1.2, 0.9, 0.8));
        int const knee = b.add(hip, {0, -0.42, 0}, right, hinge(0, 2.4));
        int const ankle = b.add(knee, {0, -0.42, 0}, down, ball(0.6, 0.6, 0.4));
        b.effectors.push_back(ankle);
        int const toes = b.add(ankle, {0, -0.05, 0.15}, right, hinge(-0.2, 0.6));
        b.add(toes, {0, 0, 0.08}, right, hinge(-0.2, 0.2));
    }
    while (b.rest.size() < 60) b.add(6, {0, 0.05, 0.02}, front, hinge(-0.3, 0.3));  // face
    return b;
}

// A rotation that the joint's limit allows, all alike: the swings over the area of their ellipse.
inline Mat3 randomTurn(JointLimit const& l, std::mt19937& random) {
    auto const between = [&](double a, double b) { return a + (b - a) * double(random()) / 4294967296.0; };
    double const radius = l.type == HingeLimit ? 0 : std::sqrt(between(0, 1)), way = between(-3.14159265, 3.14159265);
    JointLimitAngles const at{l.twistOffset + between(-l.twistAngle, l.twistAngle),
                              radius * std::cos(way) * l.swing1Angle, radius * std::sin(way) * l.swing2Angle};
    return fromRotation(Qelutils::rotation::fromQuaternion(jointRotationAt(l, clampJointAngles(l, at))));
}

inline std::vector<Qelp::Matrix34> worldOf(std::vector<Qelp::Matrix34> const& locals, std::vector<int> const& parents);

// Local matrices of a random pose within the limits; the root moves by up to `roam` along each axis.
inline std::vector<Qelp::Matrix34> randomPose(Body const& b, std::mt19937& random, double roam) {
    std::vector<Qelp::Matrix34> pose = b.rest;
    for (std::size_t i = 0; i < pose.size(); ++i) {
        Mat3 const turn = randomTurn(b.joints[i].limit, random);
        for (int r = 0; r < 3; ++r)
            for (int k = 0; k < 3; ++k) pose[i].m[r][k] = float(turn.row[r][k]);
    }
    for (int k = 0; k < 3; ++k) pose[0].m[3][k] += float(roam * (double(random()) / 2147483648.0 - 1));
    return pose;
}

// World matrices, in double precision rounded once.
inline std::vector<Qelp::Matrix34> worldOf(std::vector<Qelp::Matrix34> const& locals, std::vector<int> const& parents) {
    struct World {
        Mat3 linear;
        Vec3 origin;
        bool isDone = false;
    };
    std::vector<World> worlds(locals.size());
    for (bool more = true; more;) {
        more = false;
        for (std::size_t i = 0; i < locals.size(); ++i) {
            if (worlds[i].isDone) continue;
            int const parent = parents[i];
            if (parent >= 0 && !worlds[std::size_t(parent)].isDone) {
                more = true;
                continue;
            }
            World const above = parent < 0 ? World() : worlds[std::size_t(parent)];
            Mat3 const own{{rowOf(locals[i], 0), rowOf(locals[i], 1), rowOf(locals[i], 2)}};
            worlds[i] = {own * above.linear, rowOf(locals[i], 3) * above.linear + above.origin, true};
        }
    }
    std::vector<Qelp::Matrix34> out(locals.size());
    for (std::size_t i = 0; i < out.size(); ++i)
        for (int k = 0; k < 3; ++k) {
            for (int r = 0; r < 3; ++r) out[i].m[r][k] = float(worlds[i].linear.row[r][k]);
            out[i].m[3][k] = float(worlds[i].origin[k]);
        }
    return out;
}

inline double distanceBetween(Qelp::Matrix34 const& a, Qelp::Matrix34 const& b) {
    return length(rowOf(a, 3) - rowOf(b, 3));
}
inline double angleBetween(Qelp::Matrix34 const& a, Qelp::Matrix34 const& b) {
    auto const turn = [](Qelp::Matrix34 const& m) { return fromRotation(Qelutils::rotation::orthonormal(m.m)); };
    return length(logarithm(transposed(turn(a)) * turn(b)));
}

}  // namespace sg::ik
