// What a rig of inverse kinematics does when its handles move.
#include "tests/commands/clip.h"
#include "tests/commands/rig_fixture.h"
#include <algorithm>

namespace Tavo {
namespace {

constexpr float closeEnough = 0.001f;  // metres

class IKMotion : public RigTest {
protected:
    // A bent chain of three below a turned parent: a arm of two bones of 0.3 m.
    void buildArm() {
        scene().New();
        XChangeBlock const block(scene(), label);
        body = XTransform(scene().CreateObject(XTransform::TypeID));
        body.SetTranslation(0.2f, 1, -0.3f).SetRotationEulerAngles(0.3f, -0.2f, 0.5f);
        shoulder = joint(L"shoulder", body, {0.1f, 0.2f, 0});
        elbow = joint(L"elbow", shoulder, {0.3f, 0, 0});
        wrist = joint(L"wrist", elbow, {0.3f, 0, 0});
        shoulder.SetRotationEulerAngles(0.1f, 0.2f, -0.4f);
        elbow.SetRotationEulerAngles(0, 0, 0.8f);
    }
    IKMotion() { buildArm(); }
    XIKHandle rigArm() {
        select({shoulder, wrist});
        XIKSolver const solver(run(L"CreateIKRig"));
        solver.RootLocked().SetBoolean(true);
        return handleOf(solver, wrist);
    }
    static XIKHandle handleOf(XIKSolver const& solver, XObject const& effector) {
        Objects const effectors = objectsOf(solver.EndEffectorTransforms());
        auto const it = std::find(effectors.begin(), effectors.end(), effector);
        return XIKHandle(solver.IKHandleReferences().ObjectRef(int(it - effectors.begin())));
    }
    static float distance(XTransform const& a, XTransform const& b) {
        return a.WorldTranslation().DistanceTo(b.WorldTranslation());
    }
    static void move(XIKHandle handle, XVector3 const& by) { handle.WorldTranslate(by); }
    static std::vector<XVector3> steps() {
        return {{0.05f, 0, 0}, {0, -0.08f, 0.02f}, {-0.1f, 0.03f, 0.05f}, {0.02f, 0.06f, -0.1f}, {-0.03f, -0.02f, 0}};
    }

    XTransform body;
    XJoint shoulder, elbow, wrist;
};

TEST_F(IKMotion, AChainFollowsItsHandle) {
    XIKHandle const handle = rigArm();
    XVector3 const root = shoulder.WorldTranslation();
    for (XVector3 const& step : steps()) {
        move(handle, step);
        EXPECT_LT(distance(wrist, handle), closeEnough);
        EXPECT_LT(shoulder.WorldTranslation().DistanceTo(root), 1e-5f);
        EXPECT_NEAR(distance(shoulder, elbow), 0.3f, 1e-4f);
        EXPECT_NEAR(distance(elbow, wrist), 0.3f, 1e-4f);
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(IKMotion, TheChainTurnsWithItsHandle) {
    XIKHandle handle = rigArm();
    handle.Solver().RootLocked().SetBoolean(false);
    handle.RotateByEulerAngles({0.2f, 0.3f, -0.1f});
    EXPECT_LT(distance(wrist, handle), closeEnough);
    EXPECT_THAT(numbers(wrist.WorldMatrix()),
                testing::Pointwise(testing::FloatNear(5e-3f), numbers(handle.WorldMatrix())));
}

TEST_F(IKMotion, ASecondaryHandleLetsItsTransformGoUntilItIsPinned) {
    XIKHandle const handle = rigArm();
    XIKHandle ofElbow = handleOf(handle.Solver(), elbow);
    move(handle, {-0.1f, 0.05f, 0.02f});
    EXPECT_GT(distance(elbow, ofElbow), 0.01f);
    std::vector<float> const at = numbers(elbow.WorldMatrix());
    EXPECT_FALSE(ofElbow.IsPinned());
    ofElbow.SetPinned(true);
    EXPECT_TRUE(ofElbow.IsPinned());
    EXPECT_FALSE(ofElbow.SolverParameters().Attribute(4).Boolean());
    EXPECT_LT(distance(elbow, ofElbow), closeEnough);
    EXPECT_THAT(numbers(elbow.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-3f), at));
    handle.Solver().RootLocked().SetBoolean(false);
    for (int weight : {1, 2}) handle.SolverParameters().Attribute(weight).SetFloat(0);
    move(ofElbow, {0, 0.05f, 0.05f});
    EXPECT_LT(distance(elbow, ofElbow), closeEnough);
    ofElbow.SetPinned(false);
    move(ofElbow, {0, 0.05f, 0.05f});
    EXPECT_GT(distance(elbow, ofElbow), 0.01f);
}

TEST_F(IKMotion, APinIsUndoneWithThePlaceOfItsHandle) {
    XIKHandle const handle = rigArm();
    XIKHandle ofElbow = handleOf(handle.Solver(), elbow);
    move(handle, {-0.1f, 0.05f, 0.02f});
    scene().CommitTransient();
    std::string const before = bytes();
    {
        XChangeBlock const block(scene(), label);
        ofElbow.SetPinned(true);
    }
    scene().Undo();
    EXPECT_TRUE(bytes() == before);
    EXPECT_FALSE(ofElbow.IsPinned());
    XIKHandle().SetPinned(true);
    EXPECT_FALSE(XIKHandle().IsPinned());
}

TEST_F(IKMotion, SwitchedOffTheChainStaysWhereItBegan) {
    std::vector<float> const before = numbers(wrist.WorldMatrix());
    XIKHandle const handle = rigArm();
    move(handle, {0, -0.1f, 0});
    handle.Solver().IKSolverEnabled().SetBoolean(false);
    EXPECT_THAT(numbers(wrist.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
    handle.Solver().IKSolverEnabled().SetBoolean(true);
    EXPECT_LT(distance(wrist, handle), closeEnough);
}

TEST_F(IKMotion, AHandleWithKeysIsFollowedFrameByFrame) {
    XIKHandle const handle = rigArm();
    for (int i = 0; i <= 4; ++i)
        handle.TranslationY().SetKeyframe(0.5f * float(i), handle.TranslationY().Float() - 0.02f * float(i));
    for (float t : {0.f, 0.25f, 1.1f, 1.9f, 0.25f}) {
        time().Time().SetFloat(t);
        EXPECT_LT(distance(wrist, handle), closeEnough);
    }
}

TEST_F(IKMotion, ALaterEditOfALimitReachesTheChain) {
    XJointLimit const limit = elbow.CreateJointLimit();
    limit.LimitType().SetEnumeration(0);
    for (XAttribute active : {limit.Swing1Active(), limit.Swing2Active(), limit.TwistActive()})
        active.SetBoolean(false);
    XIKHandle const handle = rigArm();
    move(handle, {-0.1f, 0.05f, 0.02f});
    EXPECT_LT(distance(wrist, handle), closeEnough);
    std::vector<float> const bent = numbers(elbow.LocalMatrix());
    for (XAttribute active : {limit.Swing1Active(), limit.Swing2Active(), limit.TwistActive()}) active.SetBoolean(true);
    for (XAttribute angle : {limit.Swing1Angle(), limit.Swing2Angle(), limit.TwistAngle()}) angle.SetFloat(0.001f);
    EXPECT_THAT(numbers(elbow.LocalMatrix()), testing::Not(testing::Pointwise(testing::FloatNear(1e-2f), bent)));
    handle.Solver().DisableAllLimits().SetBoolean(true);
    EXPECT_LT(distance(wrist, handle), closeEnough);
}

TEST_F(IKMotion, APoseThatIsSetIsTheOneToBeginFrom) {
    XIKHandle const handle = rigArm();
    move(handle, {-0.1f, 0.05f, 0.02f});  // which nobody has looked at yet
    select({handle});
    run(L"SetIKBindPose");
    XIKSolver const solver = handle.Solver();
    XAttribute const last = solver.BindPoses().Attribute(solver.BindPoses().ArraySize() - 1);
    EXPECT_LT(distance(wrist, handle), closeEnough);
    EXPECT_THAT(numbers(last.Matrix(2)), testing::Pointwise(testing::FloatNear(1e-5f), numbers(elbow.LocalMatrix())));
    EXPECT_SAME_MATRIX(solver.InputGeometry().Attribute(2), elbow.LocalMatrix());
}

TEST_F(IKMotion, AHandleThatTurnsPrimaryIsWhereItsTransformIs) {
    XIKHandle const handle = rigArm();
    move(handle, {-0.1f, 0.05f, 0.02f});  // which nobody has looked at yet
    select({handle, elbow});
    run(L"SetIKEndEffectors");
    EXPECT_LT(distance(wrist, handle), closeEnough);
    EXPECT_LT(distance(elbow, handleOf(handle.Solver(), elbow)), closeEnough);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(IKMotion, APoleTurnsTheChainAboutItsLine) {
    XIKHandle const handle = rigArm();
    select({handle, shoulder});
    run(L"SetIKPoleVectorPairs");
    XAttribute const parameters =
        XJointIKParams(shoulder.FindChildObject(XJointIKParams::TypeID, IsObjectType)).Parameters();
    XPoleVector const control(parameters.Attribute(7).InputObject());
    ASSERT_TRUE(control.IsValid());
    handle.SolverParameters().Attribute(0).SetEnumeration(XIKHandle::Position);
    XVector3 const before = elbow.WorldTranslation();
    XTransform referent = control.Referent();
    // A quarter turn about the line from shoulder to wrist.
    XVector3 const line = XVector3().Subtract(wrist.WorldTranslation(), shoulder.WorldTranslation()).Normalize();
    XVector3 const side = XVector3().Subtract(referent.WorldTranslation(), shoulder.WorldTranslation());
    XVector3 const turned = XVector3().CrossProduct(line, side);
    referent.SetWorldTranslation(XVector3().Add(shoulder.WorldTranslation(), turned));
    EXPECT_GT(elbow.WorldTranslation().DistanceTo(before), 0.1f);
    EXPECT_LT(distance(wrist, handle), closeEnough);
    XVector3 const at = elbow.WorldTranslation();
    select({handle});
    run(L"SetIKBindPose");  // from now on the solver begins from there, and the poles ask for no more
    EXPECT_LT(elbow.WorldTranslation().DistanceTo(at), closeEnough);
}

TEST_F(IKMotion, ARigThatWasSavedStillFollows) {
    XIKHandle const handle = rigArm();
    move(handle, {-0.05f, 0.05f, 0.02f});
    scene().CommitTransient();
    std::string const saved = bytes();
    std::wstring const wristPath = wrist.Path(), handlePath = handle.Path();
    std::vector<float> const at = numbers(wrist.WorldMatrix());
    load(saved);
    EXPECT_TRUE(bytes() == saved);
    XTransform const loaded(scene().Object(wristPath));
    XIKHandle const again(scene().Object(handlePath));
    EXPECT_THAT(numbers(loaded.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-4f), at));
    move(again, {0.03f, -0.04f, 0});
    EXPECT_LT(distance(loaded, again), closeEnough);
}

TEST_F(IKMotion, UndoAndRedoOfAMoveTakeTheChainAlong) {
    XIKHandle const handle = rigArm();
    scene().CommitTransient();
    std::vector<float> const before = numbers(wrist.WorldMatrix());
    {
        XChangeBlock const block(scene(), label);
        move(handle, {-0.05f, 0.05f, 0.02f});
    }
    std::vector<float> const moved = numbers(wrist.WorldMatrix());
    scene().Undo();
    EXPECT_THAT(numbers(wrist.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
    scene().Redo();
    EXPECT_THAT(numbers(wrist.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), moved));
}

TEST_F(IKMotion, TwoChainsOfABodyFollowTheirHandlesTogether) {
    build();
    XJoint const knee = joint(L"knee", leg, {0.02f, -0.4f, 0.05f}), foot = joint(L"foot", knee, {0, -0.4f, -0.05f});
    XJoint const arm = joint(L"arm", chest, {0.2f, 0.1f, 0}), hand = joint(L"hand", arm, {0.2f, -0.2f, 0});
    select({hips, hand, foot});
    XIKSolver const solver(run(L"CreateIKRig"));
    for (XJoint const& effector : {hand, foot}) {
        XIKHandle const handle = handleOf(solver, effector);
        handle.SolverParameters().Attribute(0).SetEnumeration(XIKHandle::Position);
        move(handle, {0.03f, 0.05f, 0.04f});
    }
    for (XJoint const& effector : {hand, foot}) EXPECT_LT(distance(effector, handleOf(solver, effector)), closeEnough);
}

}  // namespace
}  // namespace Tavo
