// A body with handles on its effectors and a solver over both, for the tests of the inverse kinematics.
#pragma once
#include "tests/qel/solvers/ik_bodies.h"
#include <gtest/gtest.h>

namespace sg::ik {

using Qelp::Matrix34;

inline constexpr double pi = 3.14159265358979;

struct Rig {
    Body body;
    std::vector<IKHandle> handles;
    IKSolver solver;

    explicit Rig(Body b) : body(std::move(b)) {
        for (int e : body.effectors) handles.emplace_back().joint = e;
        solver.hierarchy = body.parents;
        solver.geometry = body.rest;
        aim(body.rest);
    }
    // The targets are where the effectors are in this pose.
    void aim(std::vector<Matrix34> const& pose) {
        std::vector<Matrix34> const world = worldOf(pose, body.parents);
        for (IKHandle& h : handles) h.target = world[std::size_t(h.joint)];
    }
    // Only positions count from now on.
    void aimAt(std::size_t handle, Vec3 const& place) {
        handles[handle].mode = PositionHandle;
        for (int k = 0; k < 3; ++k) handles[handle].target.m[3][k] = float(place[k]);
    }
    bool run() {
        solver.handles = handles;
        solver.joints = body.joints;
        return solver.Run();
    }
    std::vector<Matrix34> world() const { return worldOf(solver.result, body.parents); }
    Vec3 placeOf(int joint) const { return rowOf(world()[std::size_t(joint)], 3); }
    double missOf(std::size_t handle) const {
        return distanceBetween(world()[std::size_t(handles[handle].joint)], handles[handle].target);
    }
    void expectAtTargets(double metres = 1e-3, double degrees = 0.5) const {
        std::vector<Matrix34> const at = world();
        for (IKHandle const& h : handles) {
            EXPECT_LE(distanceBetween(at[std::size_t(h.joint)], h.target), metres);
            EXPECT_LE(angleBetween(at[std::size_t(h.joint)], h.target), degrees * pi / 180);
        }
    }
    double largestExcess() const {
        double most = 0;
        for (std::size_t i = 0; i < body.joints.size(); ++i) {
            if (!body.joints[i].isLimited) continue;
            JointLimit const& l = body.joints[i].limit;
            JointLimitDistance const d =
                jointLimitDistance(l, measureJointRotation(l, rotationOfFrame(solver.result[i])));
            most = std::max({most, d.twist, d.swing});
        }
        return most;
    }
    double largestTurnFrom(std::vector<Matrix34> const& pose) const {
        double most = 0;
        for (std::size_t i = 0; i < pose.size(); ++i) most = std::max(most, angleBetween(pose[i], solver.result[i]));
        return most;
    }
    bool isFinite() const {
        for (Matrix34 const& m : solver.result)
            for (auto const& row : m.m)
                for (float x : row)
                    if (!std::isfinite(x)) return false;
        return true;
    }
    void free() {
        for (IKJoint& j : body.joints) j.isLimited = false;
    }
};

inline bool sameBits(std::vector<Matrix34> const& a, std::vector<Matrix34> const& b) { return a == b; }

}  // namespace sg::ik
