// The range of a joint: how twist and swing are measured, and what a pose outside becomes.
#include "qel/solvers/joint_limit.h"
#include <cmath>
#include <gtest/gtest.h>

namespace sg {
namespace {

using namespace Qelutils::rotation;
constexpr double pi = std::numbers::pi;

TEST(JointLimit, RestIsMeasuredAsNothing) { EXPECT_EQ(measureJointRotation({}, {}), JointLimitAngles()); }

TEST(JointLimit, ASwingAboutOneAxisStopsAtItsAngle) {
    Quaternion const clamped = clampJointRotation({}, fromAxisAngle({0, 1, 0}, 1.5));
    EXPECT_NEAR(measureJointRotation({}, clamped).swing1, pi / 4, 1e-12);
}

TEST(JointLimit, ATwistStopsAtTheEndOfItsRange) {
    JointLimit limit;
    limit.twistAngle = 0.5;
    limit.twistOffset = 0.25;
    EXPECT_NEAR(measureJointRotation(limit, clampJointRotation(limit, fromAxisAngle({1, 0, 0}, 2))).twist, 0.75, 1e-12);
}

TEST(JointLimit, AHingeAllowsNoSwing) {
    JointLimit limit;
    limit.type = HingeLimit;
    auto const at = measureJointRotation(limit, clampJointRotation(limit, fromTwistSwing({1, 0.4, 0.3})));
    EXPECT_NEAR(at.twist, 1, 1e-12);
    EXPECT_NEAR(std::hypot(at.swing1, at.swing2), 0, 1e-12);
}

}  // namespace
}  // namespace sg
