// A joint's limit in the graph.
#include "qel/sg/joint_limit_node.h"
#include "tests/qel/sg/rig_fixture.h"
#include <gmock/gmock.h>
#include <limits>

namespace sg {
namespace {

using L = JointLimitNode;
using T = TransformNode;

struct JointLimitNodeTest : RigTest {
    JointLimitNodeTest() : limit(static_cast<L*>(make(L"JointLimit"))), joint(make(L"Joint")) {
        EXPECT_EQ(connect(joint, T::LocalMatrix, limit, L::JointLocalMatrix), Connected);
    }
    L* limit;
    Node* joint;
};

TEST_F(JointLimitNodeTest, TheMovingOffsetMatrixIsThatOfItsAngles) {
    EXPECT_EQ(matrix(limit, L::MovingOffsetMatrix), Qelp::Matrix34());
    set(limit, L::MovingOffset, Qelp::Vector3{0.1F, 0.2F, 0.3F});
    EXPECT_EQ(matrix(limit, L::MovingOffsetMatrix), euler({0.1F, 0.2F, 0.3F}));
}

TEST_F(JointLimitNodeTest, TheMovingOffsetTurnsInTheOrderOfTheRotation) {
    set(limit, L::MovingOffset, Qelp::Vector3{0.1F, 0.2F, 0.3F});
    for (int order : {5, 2, 0}) {
        limit->at<db::EnumAttribute>(T::RotationEulerOrder).setValue(order);
        EXPECT_EQ(matrix(limit, L::MovingOffsetMatrix), euler({0.1F, 0.2F, 0.3F}, order));
    }
}

TEST_F(JointLimitNodeTest, MovingTheLimitDoesNotTouchTheMovingOffset) {
    matrix(limit, L::MovingOffsetMatrix);
    set(limit, T::Translation, 3);
    EXPECT_EQ(work([&] { matrix(limit, L::MovingOffsetMatrix); }), 0u);
    EXPECT_EQ(matrix(limit, T::LocalMatrix).m[3][0], 3);
}

TEST_F(JointLimitNodeTest, AMovingOffsetThatIsNotFiniteIsNone) {
    set(limit, L::MovingOffset, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(matrix(limit, L::MovingOffsetMatrix), Qelp::Matrix34());
}

TEST_F(JointLimitNodeTest, TheMovingOffsetMatrixIsNotAnInput) {
    EXPECT_EQ(connect(joint, T::LocalMatrix, limit, L::MovingOffsetMatrix), NotConnectable);
}

TEST_F(JointLimitNodeTest, ALimitAsItIsMadeIsTheDefaultOne) {
    JointLimit const got = limit->getLimit(), expected;
    EXPECT_TRUE(got.Validate());
    EXPECT_EQ(got.type, expected.type);
    EXPECT_TRUE(got.swing1Active && got.swing2Active && got.twistActive);
    EXPECT_FALSE(got.softSwingActive || got.softTwistActive);
    EXPECT_NEAR(got.swing1Angle, expected.swing1Angle, 1e-7);
    EXPECT_NEAR(got.swing2Angle, expected.swing2Angle, 1e-7);
    EXPECT_NEAR(got.twistAngle, expected.twistAngle, 1e-7);
    EXPECT_NEAR(got.softSwing1Ratio, expected.softSwing1Ratio, 1e-7);
    EXPECT_NEAR(got.softTwistRatio, expected.softTwistRatio, 1e-7);
}

TEST_F(JointLimitNodeTest, EachAttributeReachesTheLimit) {
    limit->at<db::EnumAttribute>(L::LimitType).setValue(HingeLimit);
    for (int number : {L::Swing1Active, L::Swing2Active, L::TwistActive}) setFlag(limit, number, false);
    for (int number : {L::SoftSwingActive, L::SoftTwistActive}) setFlag(limit, number, true);
    float value = 0;
    for (int number : {L::Swing1Angle, L::Swing2Angle, L::TwistAngle, L::TwistOffset, L::SoftSwing1Ratio,
                       L::SoftSwing2Ratio, L::SoftTwistRatio})
        set(limit, number, ++value);
    JointLimit const got = limit->getLimit();
    EXPECT_EQ(got.type, HingeLimit);
    EXPECT_FALSE(got.swing1Active || got.swing2Active || got.twistActive);
    EXPECT_TRUE(got.softSwingActive && got.softTwistActive);
    double const read[] = {got.swing1Angle,     got.swing2Angle,     got.twistAngle,    got.twistOffset,
                           got.softSwing1Ratio, got.softSwing2Ratio, got.softTwistRatio};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(read[i], i + 1) << i;
}

TEST_F(JointLimitNodeTest, TheJointIsMeasuredBetweenTheTwoFrames) {
    set(limit, T::Rotation, Qelp::Vector3{0.4F, 0.3F, -0.2F});
    set(joint, T::Rotation, Qelp::Vector3{0.4F, 0.3F, -0.2F});
    EXPECT_NEAR(limit->getAngles().twist, 0, 1e-6);
    set(limit, L::MovingOffset, Qelp::Vector3{0.5F, 0, 0});
    EXPECT_NEAR(limit->getAngles().twist, 0.5, 1e-6);
    set(limit, L::MovingOffset, Qelp::Vector3{0, 0, 0.25F});
    EXPECT_NEAR(limit->getAngles().swing2, 0.25, 1e-6);
    set(joint, T::Rotation, Qelp::Vector3{});
    set(limit, T::Rotation, Qelp::Vector3{});
    set(limit, L::MovingOffset, Qelp::Vector3{});
    set(joint, T::Rotation + 1, 0.75F);
    EXPECT_NEAR(limit->getAngles().swing1, 0.75, 1e-6);
}

TEST_F(JointLimitNodeTest, APhysicsJointLimitIsOneToo) {
    auto* physics = static_cast<L*>(make(L"PhysicsJointLimit"));
    set(physics, L::MovingOffset, 0.5F);
    EXPECT_EQ(matrix(physics, L::MovingOffsetMatrix), euler({0.5F, 0, 0}));
}

// The parameters that solvers hold, of inverse kinematics and of retargeting, are one run of the same kinds.
TEST_F(JointLimitNodeTest, SolversReadTheLimitOfAJointFromTheirParameters) {
    struct {
        wchar_t const* type;
        int number;
        std::size_t first;
    } const cases[] = {{L"JointIKParams", 8, 9}, {L"JointRetargetParams", 51, 13}};
    for (auto const& c : cases) {
        db::CompositeAttribute& p = *attribute(make(c.type), c.number)->asComposite();
        auto const at = [&](std::size_t i) { return p.getAttribute(c.first + i); };
        at(0)->asEnum()->setValue(HingeLimit);
        at(1)->asMatrix34()->setValue(euler({0.5F, 0, 0}));
        at(2)->asMatrix34()->setValue(euler({0, 0.25F, 0}));
        for (std::size_t i : {3, 5, 7}) at(i)->asBool()->setValue(true);
        for (std::size_t i : {4, 6, 8, 9}) at(i)->asFloat()->setValue(float(i));
        JointLimit const limit = readJointLimit(p, c.first);
        EXPECT_EQ(limit.type, HingeLimit);
        EXPECT_NEAR(limit.fixedFrame.x, std::sin(0.25), 1e-7);
        EXPECT_NEAR(limit.movingOffset.y, std::sin(0.125), 1e-7);
        EXPECT_TRUE(limit.swing1Active && limit.swing2Active && limit.twistActive);
        EXPECT_FALSE(limit.softSwingActive || limit.softTwistActive);
        double const read[] = {limit.swing1Angle, limit.swing2Angle, limit.twistAngle, limit.twistOffset};
        EXPECT_THAT(read, ::testing::ElementsAre(4, 6, 8, 9));
    }
}

}  // namespace
}  // namespace sg
