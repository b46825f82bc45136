// The solver as a node: what it reads from its arrays, and when it computes.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

using N = IKSolverNode;
using Qelp::Matrix34;

Matrix34 at(float x, float y, float z) {
    Matrix34 m;
    m.m[3][0] = x, m.m[3][1] = y, m.m[3][2] = z;
    return m;
}

// Three joints along X, 1 m apart; the flat list goes root, leaf, middle. One handle on the leaf.
struct IKSolverNodeTest : ::testing::Test {
    IKSolverNodeTest() : solver(static_cast<N*>(scene.makeNode(L"IKSolver", L"solver"))) {
        for (int n : {N::InputGeometry, N::OutputGeometry, N::JointIKParams}) array(n).resize(3);
        for (int n : {N::InputTargets, N::IKHandleParams}) array(n).resize(1);
        integers(N::JointHierarchy, {-1, 2, 0, -1});
        integers(N::EndEffectorIndexList, {1});
        integers(N::RootIndexList, {0});
        matrix(N::InputGeometry, 1).setValue(at(1, 0, 0));
        matrix(N::InputGeometry, 2).setValue(at(1, 0, 0));
        set(N::RootLocked, true);
        handle(N::Mode)->asEnum()->setValue(PositionHandle);
        target(1, 1, 0);
    }
    db::AttributeArray& array(int n) { return solver->at<db::AttributeArray>(n); }
    db::Matrix34Attribute& matrix(int n, std::size_t i) { return *array(n).getElement(i)->asMatrix34(); }
    void integers(int n, std::vector<int> values) { solver->at<db::IntArrayAttribute>(n).setValue(std::move(values)); }
    void set(int n, bool on) { solver->at<db::BoolAttribute>(n).setValue(on); }
    db::Attribute* handle(int child) { return part(N::IKHandleParams, 0, child); }
    db::Attribute* joint(std::size_t i, int child) { return part(N::JointIKParams, i, child); }
    db::Attribute* part(int n, std::size_t i, int child) {
        return array(n).getElement(i)->asComposite()->getAttribute(std::size_t(child));
    }
    void target(float x, float y, float z) { matrix(N::InputTargets, 0).setValue(at(x, y, z)); }
    Matrix34 out(std::size_t i) { return matrix(N::OutputGeometry, i).getValue(); }
    // Where the leaf is.
    Matrix34 leaf() { return Qelutils::multiply(out(1), Qelutils::multiply(out(2), out(0))); }
    void expectLeafAt(float x, float y, float z) {
        Matrix34 const m = leaf();
        EXPECT_NEAR(m.m[3][0], x, 1e-3);
        EXPECT_NEAR(m.m[3][1], y, 1e-3);
        EXPECT_NEAR(m.m[3][2], z, 1e-3);
    }
    std::uint64_t evaluationsOf(auto const& work) {
        std::uint64_t const before = scene.evaluations();
        work();
        return scene.evaluations() - before;
    }
    Scene scene;
    N* solver;
};

TEST_F(IKSolverNodeTest, BringsTheEffectorToItsTarget) {
    expectLeafAt(1, 1, 0);
    EXPECT_TRUE(solver->solver().isReached);
    EXPECT_EQ(solver->problem(), L"");
}

TEST_F(IKSolverNodeTest, ComputesOnceAndOnlyWhatIsAskedFor) {
    leaf();
    EXPECT_EQ(evaluationsOf([&] { leaf(); }), 0u);
    target(0, 1, 1);
    EXPECT_EQ(evaluationsOf([&] { leaf(); }), 1u);
    expectLeafAt(0, 1, 1);
}

TEST_F(IKSolverNodeTest, TakesATargetThatFlowsInAndDrivesWhatIsConnected) {
    Node* handleNode = scene.makeNode(L"IKHandle", L"handle");
    Node* joint = scene.makeNode(L"Joint", L"joint");
    handleNode->at<db::FloatAttribute>(TransformNode::Translation + 1).setValue(2);
    joint->at<db::EnumAttribute>(TransformNode::TransformDataSource).setValue(LocalMatrixSource);
    EXPECT_EQ(scene.connect(handleNode->getAttribute(TransformNode::LocalMatrix), array(N::InputTargets).getElement(0)),
              Connected);
    EXPECT_EQ(
        scene.connect(array(N::OutputGeometry).getElement(0), joint->getAttribute(TransformNode::LocalMatrixInput)),
        Connected);
    expectLeafAt(0, 2, 0);
    EXPECT_EQ(joint->at<db::Matrix34Attribute>(TransformNode::LocalMatrix).getValue(), out(0));
    handleNode->at<db::FloatAttribute>(TransformNode::Translation + 1).setValue(-2);
    EXPECT_LT(joint->at<db::Matrix34Attribute>(TransformNode::WorldMatrix).getValue().m[0][1], -0.99F);
}

TEST_F(IKSolverNodeTest, RefusesToFeedItself) {
    Node* joint = scene.makeNode(L"Joint", L"joint");
    scene.connect(array(N::OutputGeometry).getElement(0), joint->getAttribute(TransformNode::LocalMatrixInput));
    EXPECT_EQ(scene.connect(joint->getAttribute(TransformNode::LocalMatrix), array(N::InputGeometry).getElement(0),
                            true, true),
              WouldMakeCycle);
}

TEST_F(IKSolverNodeTest, KeepsItsOutputsWhileItMayNotCompute) {
    Matrix34 const before = out(0);
    set(N::AllowCompute, false);
    target(0, -1, 1);
    EXPECT_EQ(out(0), before);
    set(N::AllowCompute, true);
    expectLeafAt(0, -1, 1);
}

TEST_F(IKSolverNodeTest, PassesTheGeometryThroughWhileItIsSwitchedOff) {
    for (int n : {N::IKSolverEnabled, N::IKHandleEnabled}) {
        set(n, false);
        EXPECT_EQ(out(0), Matrix34());
        EXPECT_EQ(out(1), at(1, 0, 0));
        set(n, true);
        expectLeafAt(1, 1, 0);
    }
}

TEST_F(IKSolverNodeTest, PassesTheGeometryThroughWhereTheRigIsNotSound) {
    integers(N::JointHierarchy, {-1, 2, 1, -1});
    EXPECT_EQ(out(2), at(1, 0, 0));
    EXPECT_EQ(solver->problem(), L"Joint 1 is below itself");
    integers(N::JointHierarchy, {-1, 2, 0, -1});
    matrix(N::InputTargets, 0).setValue(at(std::numeric_limits<float>::quiet_NaN(), 0, 0));
    EXPECT_EQ(out(2), at(1, 0, 0));
    target(1, 1, 0);
    expectLeafAt(1, 1, 0);
}

TEST_F(IKSolverNodeTest, PullsASecondaryHandleOnlyWhileItIsNotFree) {
    handle(N::Mode)->asEnum()->setValue(SecondaryHandle);
    handle(N::OrientationWeight)->asFloat()->setValue(0);
    EXPECT_EQ(leaf(), at(2, 0, 0));
    handle(N::Free)->asBool()->setValue(false);
    expectLeafAt(1, 1, 0);
}

TEST_F(IKSolverNodeTest, HonoursALimitThatTheParametersDescribe) {
    Matrix34 upright;  // X along the world's Z: a hinge about it
    upright.m[0][0] = 0, upright.m[0][2] = 1, upright.m[2][0] = -1, upright.m[2][2] = 0;
    joint(2, N::LimitType)->asEnum()->setValue(HingeLimit);
    for (int frame : {N::LimitMatrix, N::MovingOffsetMatrix}) joint(2, frame)->asMatrix34()->setValue(upright);
    joint(2, N::TwistActive)->asBool()->setValue(true);
    joint(2, N::TwistAngle)->asFloat()->setValue(0.5F);
    target(0, 0.5F, 0);
    EXPECT_NEAR(std::atan2(out(2).m[0][1], out(2).m[0][0]), 0.5F, 0.51F);
    EXPECT_LE(std::abs(std::atan2(out(2).m[0][1], out(2).m[0][0])), 0.5001F);
    EXPECT_FALSE(solver->solver().isReached);
    joint(2, N::LimitActive)->asBool()->setValue(false);
    expectLeafAt(0, 0.5F, 0);
    joint(2, N::LimitActive)->asBool()->setValue(true);
    set(N::DisableAllLimits, true);
    expectLeafAt(0, 0.5F, 0);
}

TEST_F(IKSolverNodeTest, LeavesATransformThatIsNoJoint) {
    joint(2, N::IsJoint)->asBool()->setValue(false);
    target(0, 1.5F, 0);
    EXPECT_EQ(out(2), at(1, 0, 0));
    EXPECT_NEAR(leaf().m[3][1], 2, 1e-3);
}

TEST_F(IKSolverNodeTest, GivesTheSameWhateverTheWayToTheInputs) {
    Matrix34 const first = out(0);
    target(-1, 0.5F, 0.5F);
    leaf();
    target(1, 1, 0);
    EXPECT_EQ(out(0), first);
}

TEST_F(IKSolverNodeTest, GoesOnFromTheLastPoseInContinuousModeUntilItIsInitialised) {
    set(N::ContinuousMode, true);
    Matrix34 const first = out(0);
    EXPECT_GT(solver->solver().iterations, 0);
    solver->at<db::FloatAttribute>(N::MoreBias).setValue(0.5F);
    EXPECT_EQ(out(0), first);
    EXPECT_EQ(solver->solver().iterations, 0);
    solver->Initialise();
    leaf();
    EXPECT_GT(solver->solver().iterations, 0);
}

TEST_F(IKSolverNodeTest, TellsWhatItReadsFromAnArrayThatIsTooShort) {
    array(N::JointIKParams).resize(0);
    array(N::IKHandleParams).resize(0);
    matrix(N::InputTargets, 0).setValue(at(1, 1, 0));
    EXPECT_EQ(solver->problem(), L"");
    leaf();
    EXPECT_TRUE(solver->solver().isReached);
    array(N::OutputGeometry).resize(5);
    EXPECT_EQ(out(4), Matrix34());
}

TEST_F(IKSolverNodeTest, ComesBackFromAFileWithItsConnections) {
    Node* joint = scene.makeNode(L"Joint", L"joint");
    joint->at<db::EnumAttribute>(TransformNode::TransformDataSource).setValue(LocalMatrixSource);
    scene.connect(array(N::OutputGeometry).getElement(0), joint->getAttribute(TransformNode::LocalMatrixInput));
    Matrix34 const before = out(0);
    db::StringOutputStream file;
    EXPECT_TRUE(db::SaverXML(file, 0).save(scene));
    Scene copy;
    db::StringInputStream in(file.text());
    ASSERT_TRUE(db::LoaderXML(in, 0, nullptr).load(copy));
    EXPECT_EQ(copy.findNode(L"joint")->at<db::Matrix34Attribute>(TransformNode::LocalMatrix).getValue(), before);
}

TEST_F(IKSolverNodeTest, FollowsUndo) {
    leaf();
    scene.commitTransient();
    target(0, 0, 1);
    scene.commitTransient();
    expectLeafAt(0, 0, 1);
    scene.undo();
    expectLeafAt(1, 1, 0);
}

}  // namespace
}  // namespace sg
