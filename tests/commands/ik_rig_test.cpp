// The rigs of inverse kinematics: which objects, which connections, which lists.
#include "tests/commands/rig_fixture.h"
#include <algorithm>

namespace Tavo {
namespace {

class IKRig : public RigTest {
protected:
    static XIKSolver rig(Objects const& selection) {
        select(selection);
        return XIKSolver(run(L"CreateIKRig"));
    }
    static XIKHandle handle(XIKSolver const& solver, int i) {
        return XIKHandle(solver.IKHandleReferences().ObjectRef(i));
    }
    static Objects effectorsOf(XIKSolver const& solver) { return objectsOf(solver.EndEffectorTransforms()); }
    // Of the handles, in their order, and what their shapes and modes say.
    static std::vector<bool> primary(XIKSolver const& solver) {
        std::vector<bool> out;
        for (int i = 0; i < solver.IKHandleReferences().ArraySize(); ++i) {
            bool const isPrimary = handle(solver, i).IsPrimary().Boolean();
            XPrimitive const shape(handle(solver, i).FindChildObject(XPrimitive::TypeID, SupportsObjectType));
            EXPECT_EQ(shape.Shape().EnumerationString(), isPrimary ? L"Box" : L"Sphere");
            EXPECT_EQ(handle(solver, i).SolverParameters().Attribute(0).Enumeration(), isPrimary ? 0 : 2);
            out.push_back(isPrimary);
        }
        return out;
    }
    static XJointIKParams parametersOf(XObject const& joint) {
        return XJointIKParams(joint.FindChildObject(XJointIKParams::TypeID, IsObjectType));
    }
    static void runOn(Objects const& selection, std::wstring const& command) {
        select(selection);
        run(command);
    }
};

// ---- what is selected ----

TEST_F(IKRig, OneJointIsARootWithoutAnEffectorAndMakesNoRig) {
    EXPECT_TRUE(changesNothing({hips}, L"CreateIKRig"));
    EXPECT_TRUE(changesNothing({}, L"CreateIKRig"));
    EXPECT_TRUE(changesNothing({box, scene().DisplayGroups()}, L"CreateIKRig"));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(IKRig, TheHigherOfTwoIsTheRootWhicheverComesFirst) {
    for (bool const rootFirst : {true, false}) {
        build();
        XIKSolver const solver = rig(rootFirst ? Objects{hips, chest} : Objects{chest, hips});
        EXPECT_EQ(objectsOf(solver.RootJoints()), Objects{hips});
        EXPECT_EQ(effectorsOf(solver), (Objects{chest, spine, hips}));
    }
}

TEST_F(IKRig, AChainOfThreeHasOnePrimaryHandleAndTwoSecondaryOnes) {
    XIKSolver const solver = rig({hips, chest});
    EXPECT_EQ(primary(solver), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(selected(), Objects{handle(solver, 2)});
    EXPECT_EQ(solver.BindPoses().ArraySize(), 1);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(IKRig, WhatLiesBetweenIsPrimaryWhereItWasSelectedToo) {
    XIKSolver const solver = rig({hips, chest, spine});
    EXPECT_EQ(effectorsOf(solver), (Objects{chest, spine, hips}));
    EXPECT_EQ(primary(solver), (std::vector<bool>{true, true, false}));
}

TEST_F(IKRig, AnEffectorBelowAnotherRootIsPassedOver) {
    XTransform const child(scene().CreateObject(XTransform::TypeID, prop));
    XIKSolver const solver = rig({hips, prop, child, chest});
    EXPECT_EQ(objectsOf(solver.RootJoints()), (Objects{hips, prop}));
    EXPECT_EQ(effectorsOf(solver), (Objects{chest, spine, hips}));
    EXPECT_EQ(integersOf(solver.RootIndexList()), Numbers{0});
}

TEST_F(IKRig, HandlesAndShapesAreNeitherRootsNorEffectors) {
    XIKSolver const first = rig({hips, chest});
    XIKSolver const second = rig({handle(first, 0), box, hips, leg});
    EXPECT_EQ(objectsOf(second.RootJoints()), Objects{hips});
    EXPECT_EQ(effectorsOf(second), (Objects{leg, hips}));
}

// ---- the solver ----

TEST_F(IKRig, TheSolverIsNamedAndMayComputeWhenItIsDone) {
    XIKSolver const solver = rig({hips, chest});
    ASSERT_TRUE(solver.IsValid());
    EXPECT_EQ(solver.Name(), L"IKSolver");
    EXPECT_TRUE(solver.AllowCompute().Boolean());
    EXPECT_FALSE(solver.ContinuousMode().Boolean());
}

TEST_F(IKRig, ARebuildTurnsContinuousModeOffAndGivesTheNameBack) {
    XIKSolver solver = rig({hips, chest});
    solver.SetName(L"mine");
    solver.ContinuousMode().SetBoolean(true);
    runOn({handle(solver, 0), leg}, L"SetIKEndEffectors");
    EXPECT_EQ(solver.Name(), L"IKSolver");
    EXPECT_FALSE(solver.ContinuousMode().Boolean());
    EXPECT_TRUE(solver.AllowCompute().Boolean());
}

// ---- handles ----

TEST_F(IKRig, AHandleStandsAtItsTransformBesideTheRoot) {
    XIKSolver const solver = rig({hips, chest});
    Objects const effectors = effectorsOf(solver);
    for (int i = 0; i < 3; ++i) {
        XTransform const effector(effectors[std::size_t(i)]);
        XIKHandle const made = handle(solver, i);
        EXPECT_EQ(made.Name(), effector.Name() + L"_IK");
        EXPECT_EQ(made.Parent(), hips.Parent());
        EXPECT_TRUE(made.Visible().Boolean());
        EXPECT_EQ(made.ColourValue(), XIKHandle::DefaultColour);
        EXPECT_SAME_MATRIX(made.WorldMatrix(), effector.WorldMatrix());
        EXPECT_SAME_MATRIX(made.IKEndEffectorWorldMatrix(), effector.WorldMatrix());
    }
}

TEST_F(IKRig, AHandleKnowsItsSolverItsRootAndItsEffector) {
    XIKSolver const solver = rig({hips, chest});
    XIKHandle const made = handle(solver, 0);
    EXPECT_EQ(made.Solver(), solver);
    EXPECT_EQ(made.RootJoint(), hips);
    EXPECT_EQ(made.EndEffectorTransform(), chest);
    EXPECT_FALSE(XIKHandle().Solver().IsValid());
}

TEST_F(IKRig, TheSolverReadsTheHandles) {
    XIKSolver const solver = rig({hips, chest});
    ASSERT_EQ(solver.InputTargets().ArraySize(), 3);
    ASSERT_EQ(solver.IKHandleParams().ArraySize(), 3);
    for (int i = 0; i < 3; ++i) {
        XIKHandle const made = handle(solver, i);
        EXPECT_EQ(solver.InputTargets().Attribute(i).InputAttribute(), made.LocalMatrix());
        EXPECT_EQ(solver.IKHandleParams().Attribute(i).InputAttribute(), made.SolverParameters());
        EXPECT_EQ(made.IKRootWorldMatrix().InputAttribute(), hips.WorldMatrix());
    }
}

TEST_F(IKRig, OnlyTheFirstHandleFollowsTheSolversSwitch) {
    XIKSolver const solver = rig({hips, chest});
    EXPECT_EQ(handle(solver, 0).IKHandleEnabled().InputAttribute(), solver.IKHandleEnabled());
    solver.IKHandleEnabled().SetBoolean(false);
    EXPECT_FALSE(handle(solver, 0).IKHandleEnabled().Boolean());
    EXPECT_TRUE(handle(solver, 1).IKHandleEnabled().Boolean());
    runOn({handle(solver, 0), leg}, L"SetIKEndEffectors");
    EXPECT_FALSE(handle(solver, 3).IKHandleEnabled().Boolean());
    EXPECT_FALSE(handle(solver, 3).IKHandleEnabled().HasInput());
}

TEST_F(IKRig, APinBelowTheSolverHoldsEachEffector) {
    XIKSolver const solver = rig({hips, chest});
    Objects const pins = childrenOf(solver, sg::PinNode::Def);
    ASSERT_EQ(pins.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        XTransform const t(effectorsOf(solver)[i]);
        ASSERT_EQ(pins[i].Attribute(8).ArraySize(), 1);
        XAttribute const target = pins[i].Attribute(8).Attribute(0);
        EXPECT_EQ(target.Attribute(0).InputAttribute(), t.WorldMatrix());
        EXPECT_EQ(target.Attribute(2).Float(), 1);
        EXPECT_EQ(pins[i].Attribute(9).InputAttribute(), t.ParentWorldMatrix());
        std::vector<XAttribute> const pinned = {t.TranslationX(), t.TranslationY(), t.TranslationZ(), t.RotationX(),
                                                t.RotationY(),    t.RotationZ(),    t.LocalMatrix(),  t.WorldMatrix()};
        for (int k = 0; k < 8; ++k) EXPECT_EQ(pins[i].Attribute(10 + k).AttributeRef(), pinned[std::size_t(k)]);
    }
}

TEST_F(IKRig, WhatThePinSaysReachesTheHandleNegated) {
    XIKSolver const solver = rig({hips, chest});
    Objects const pins = childrenOf(solver, sg::PinNode::Def);
    for (int i = 0; i < 3; ++i) {
        Objects const negations = childrenOf(handle(solver, i), sg::NotNode::Def);
        ASSERT_EQ(negations.size(), 1u);
        EXPECT_EQ(handle(solver, i).SolverParameters().Attribute(4).InputAttribute(), negations[0].Attribute(6));
        EXPECT_EQ(negations[0].Attribute(7).InputAttribute(), pins[std::size_t(i)].Attribute(19));
    }
}

TEST_F(IKRig, AHandleHasAShapeOfItsName) {
    XIKSolver const solver = rig({hips, chest});
    for (int i = 0; i < 3; ++i) {
        XPrimitive const shape(handle(solver, i).FindChildObject(XPrimitive::TypeID, IsObjectType));
        EXPECT_EQ(shape.Name(), handle(solver, i).Name());
        EXPECT_TRUE(shape.Visible().Boolean());
        EXPECT_EQ(shape.ColourValue(), XIKHandle::DefaultColour);
        EXPECT_EQ(shape.DisplayStyle().Enumeration(), 3);
        EXPECT_EQ(shape.HighlightStyle().Integer(), 1);
        for (XAttribute const& side : {shape.Width(), shape.Length(), shape.Height()}) EXPECT_EQ(side.Float(), 0.1f);
        EXPECT_EQ(shape.Radius().Float(), 0.025f);
    }
}

// ---- the flat list ----

TEST_F(IKRig, TheListGoesFromTheLeafToTheRootAfterTheRoot) {
    XIKSolver const solver = rig({hips, chest});
    EXPECT_EQ(integersOf(solver.JointHierarchy()), (Numbers{-1, 2, 0, -1}));  // hips, chest, spine; and one more entry
    EXPECT_EQ(integersOf(solver.EndEffectorIndexList()), (Numbers{1, 2, 0}));
    EXPECT_EQ(integersOf(solver.RootIndexList()), Numbers{0});
}

TEST_F(IKRig, ASecondChainEndsWhereItMeetsTheFirst) {
    XJoint const neck = joint(L"neck", spine, {0, 0.1f, 0.1f});
    XIKSolver const solver = rig({hips, chest, neck, leg});
    EXPECT_EQ(effectorsOf(solver), (Objects{chest, spine, hips, neck, leg}));
    // hips, chest, spine, neck, leg
    EXPECT_EQ(integersOf(solver.JointHierarchy()), (Numbers{-1, 2, 0, 2, 0, -1}));
    EXPECT_EQ(integersOf(solver.EndEffectorIndexList()), (Numbers{1, 2, 0, 3, 4}));
}

TEST_F(IKRig, TheHierarchyIsOneEntryLongerThanTheList) {
    for (int joints = 2; joints <= 4; ++joints) {
        build();
        Objects const selection = {hips, leg, spine, chest};
        XIKSolver const solver = rig({selection.begin(), selection.begin() + joints});
        ASSERT_EQ(solver.InputGeometry().ArraySize(), joints);
        EXPECT_EQ(solver.JointHierarchy().ArraySize(), solver.InputGeometry().ArraySize() + 1);
        EXPECT_EQ(integersOf(solver.JointHierarchy()).back(), -1);
        EXPECT_EQ(integersOf(solver.JointHierarchy()).front(), -1);
    }
}

// ---- geometry ----

TEST_F(IKRig, GeometryStartsAtThePose) {
    std::vector<std::vector<float>> const pose = {numbers(hips.LocalMatrix()), numbers(chest.LocalMatrix()),
                                                  numbers(spine.LocalMatrix())};
    XIKSolver const solver = rig({hips, chest});
    ASSERT_EQ(solver.InputGeometry().ArraySize(), 3);
    ASSERT_EQ(solver.OutputGeometry().ArraySize(), 3);
    ASSERT_EQ(solver.JointIKParams().ArraySize(), 3);
    for (int j = 0; j < 3; ++j)
        EXPECT_THAT(numbers(solver.InputGeometry().Attribute(j)),
                    testing::Pointwise(testing::FloatNear(1e-5f), pose[std::size_t(j)]));
}

TEST_F(IKRig, ACopyBelowTheSolverLeadsEachJointsMatrixToTheInput) {
    XIKSolver const solver = rig({hips, chest});
    Objects const copies = childrenOf(solver, sg::CopyMatrixNode::Def);
    std::vector<XTransform> const joints = {hips, chest, spine};
    ASSERT_EQ(copies.size(), 3u);
    for (std::size_t j = 0; j < 3; ++j) {
        EXPECT_EQ(copies[j].Attribute(8).InputAttribute(), joints[j].LocalMatrix());
        EXPECT_EQ(copies[j].Attribute(9).AttributeRef(), solver.InputGeometry().Attribute(int(j)));
    }
}

// ---- joints ----

TEST_F(IKRig, TheTopmostRootIsMovedAndTheOthersTurn) {
    XIKSolver const solver = rig({hips, chest});
    std::vector<XTransform> const joints = {hips, chest, spine};
    Objects const associated = objectsOf(solver.AssociatedObjects());
    ASSERT_EQ(associated.size(), 3u);
    for (int j = 0; j < 3; ++j)
        expectDriven(joints[std::size_t(j)], solver.OutputGeometry().Attribute(j), j == 0, associated[std::size_t(j)]);
}

TEST_F(IKRig, RiggingMovesNothing) {
    prop.SetParent(chest);
    hips.SetPreTranslation(0.1f, 0.2f, 0.3f);
    spine.SetPreRotationEulerAngles({0.1f, 0.2f, 0.3f});
    chest.SetPostRotationEulerAngles({-0.2f, 0.1f, 0.4f});
    std::vector<float> const before = numbers(prop.WorldMatrix());
    rig({hips, prop});
    EXPECT_THAT(numbers(prop.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
}

TEST_F(IKRig, AJointOfAnotherOrderOfAnglesKeepsItsPose) {
    spine.RotationEulerOrder().SetEnumeration(4);
    chest.RotationEulerOrder().SetEnumeration(2);
    chest.RotationX().SetFloat(0.3f), chest.RotationY().SetFloat(-0.5f), chest.RotationZ().SetFloat(0.7f);
    std::vector<float> const before = numbers(chest.WorldMatrix());
    rig({hips, chest});
    EXPECT_EQ(spine.RotationEulerOrder().Enumeration(), 0);
    EXPECT_THAT(numbers(chest.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
}

TEST_F(IKRig, AJointThatTookItsMatrixAsAWholeKeepsItsPose) {
    XMatrix const pose = chest.LocalMatrix().Matrix();
    chest.LocalMatrixInput().SetMatrix(XMatrix(pose).Translate({0.1f, 0.2f, 0.3f}));
    chest.TransformDataSource().SetEnumeration(XTransform::LocalMatrixSource);
    std::vector<float> const before = numbers(chest.WorldMatrix());
    rig({hips, chest});
    EXPECT_THAT(numbers(chest.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
}

TEST_F(IKRig, AnimationOfJointsGoesButForTheTranslationOfTheTopmostRoot) {
    for (XAttribute channel : {spine.TranslationX(), spine.ScaleX(), spine.PreRotationY(), spine.PostRotationZ()})
        keyed(channel);
    XAnimation const move = hips.TranslationY().Animation(), turn = spine.RotationX().Animation(),
                     slide = spine.TranslationX().Animation();
    ASSERT_TRUE(move.IsValid() && turn.IsValid() && slide.IsValid());
    rig({hips, chest});
    EXPECT_TRUE(move.IsValid());  // although the solver moves the root now
    EXPECT_FALSE(turn.IsValid() || slide.IsValid());
    for (int i = 21; i <= 44; ++i) EXPECT_FALSE(spine.Attribute(i).IsAnimated()) << i;
}

TEST_F(IKRig, ATransformInTheChainThatIsNoJointKeepsItsAnimation) {
    prop.SetParent(spine);
    XJoint const tip = joint(L"tip", prop, {0, 0.2f, 0});
    keyed(prop.RotationX());
    keyed(prop.TranslationZ());
    XIKSolver const solver = rig({hips, tip});
    EXPECT_TRUE(prop.RotationX().IsAnimated() && prop.TranslationZ().IsAnimated());
    // hips, tip, prop, spine
    EXPECT_FALSE(solver.JointIKParams().Attribute(2).Attribute(0).Boolean());
    EXPECT_TRUE(solver.JointIKParams().Attribute(1).Attribute(0).Boolean());
    EXPECT_FALSE(parametersOf(prop).IsValid());
    EXPECT_EQ(solver.InputGeometry().Attribute(2).InputAttribute(), prop.LocalMatrix());
    EXPECT_EQ(solver.AssociatedObjects().ArraySize(), 3);
}

// ---- parameters of joints ----

TEST_F(IKRig, EachJointHasParametersWhichTheSolverReads) {
    XIKSolver const solver = rig({hips, chest});
    std::vector<XJoint> const joints = {hips, chest, spine};
    for (int j = 0; j < 3; ++j) {
        XJointIKParams const parameters = parametersOf(joints[std::size_t(j)]);
        ASSERT_TRUE(parameters.IsValid());
        EXPECT_EQ(solver.JointIKParams().Attribute(j).InputAttribute(), parameters.Parameters());
        for (int active : {12, 14, 16}) EXPECT_FALSE(parameters.Parameters().Attribute(active).Boolean());
        EXPECT_EQ(parameters.Parameters().Attribute(9).Enumeration(), 0);
    }
}

TEST_F(IKRig, ALimitFeedsTheParametersOfItsJoint) {
    XJointLimit const limit = limited(chest);
    XIKSolver const solver = rig({hips, chest});
    XAttribute const parameters = parametersOf(chest).Parameters();
    expectFed(parameters, 9, partsOf(limit));
    EXPECT_EQ(solver.JointIKParams().Attribute(1).InputAttribute(), parameters);
    limit.Swing1Angle().SetFloat(0.7f);
    EXPECT_EQ(solver.JointIKParams().Attribute(1).Attribute(13).Float(), 0.7f);
}

// The frame of such a limit hangs on what the solver gives: it is handed over as a value.
TEST_F(IKRig, ALimitOfTheTopmostRootDependsOnNothingThatDependsOnIt) {
    XJointLimit const limit = limited(hips);
    std::vector<float> const frame = numbers(limit.LocalMatrix());
    XIKSolver const solver = rig({hips, chest});
    EXPECT_TRUE(log.entries.empty());
    XAttribute const parameters = parametersOf(hips).Parameters(), read = solver.JointIKParams().Attribute(0);
    expectFed(parameters, 9, partsOf(limit));
    for (int i = 0; i <= 18; ++i)
        EXPECT_EQ(read.Attribute(i).InputAttribute(), i == 10 ? XAttribute() : parameters.Attribute(i)) << i;
    EXPECT_THAT(numbers(read.Attribute(10)), testing::Pointwise(testing::FloatNear(1e-5f), frame));
}

TEST_F(IKRig, ALimitThatIsTakenFromItsJointFeedsNothingAfterARebuild) {
    XJointLimit const limit = limited(chest);
    XIKSolver const solver = rig({hips, chest});
    chest.JointLimitReference().ClearObjectRef();
    runOn({handle(solver, 0), leg}, L"SetIKEndEffectors");
    XAttribute const parameters = parametersOf(chest).Parameters();
    for (int i = 9; i <= 18; ++i) EXPECT_FALSE(parameters.Attribute(i).HasInput());
    for (int active : {12, 14, 16}) EXPECT_FALSE(parameters.Attribute(active).Boolean());
    EXPECT_EQ(parameters.Attribute(9).Enumeration(), 0);
    EXPECT_EQ(childrenOf(chest, sg::JointIKParamsNode::Def).size(), 1u);
}

// ---- more effectors ----

TEST_F(IKRig, ASecondaryHandleTurnsPrimaryWithABox) {
    XIKSolver const solver = rig({hips, chest});
    XIKHandle const promoted = handle(solver, 1);
    runOn({handle(solver, 0), spine}, L"SetIKEndEffectors");
    EXPECT_EQ(primary(solver), (std::vector<bool>{true, true, false}));
    EXPECT_EQ(handle(solver, 1), promoted);
    EXPECT_SAME_MATRIX(promoted.WorldMatrix(), spine.WorldMatrix());
    EXPECT_EQ(selected(), Objects{handle(solver, 2)});
}

TEST_F(IKRig, NewEffectorsAddToTheOldOnes) {
    XIKSolver const solver = rig({hips, chest});
    XIKHandle const first = handle(solver, 0);
    runOn({first, leg}, L"SetIKEndEffectors");
    EXPECT_EQ(effectorsOf(solver), (Objects{chest, spine, hips, leg}));
    EXPECT_EQ(primary(solver), (std::vector<bool>{true, false, false, true}));
    EXPECT_EQ(handle(solver, 0), first);
    EXPECT_EQ(solver.InputTargets().ArraySize(), 4);
    EXPECT_EQ(integersOf(solver.JointHierarchy()), (Numbers{-1, 2, 0, 0, -1}));
    EXPECT_EQ(childrenOf(solver, sg::PinNode::Def).size(), 4u);
}

TEST_F(IKRig, ARebuildLeavesNothingOfTheOldRigBehind) {
    XIKSolver const solver = rig({hips, chest});
    std::size_t const count = allObjects().size();
    Objects const conversions = objectsOf(solver.AssociatedObjects());
    runOn({handle(solver, 0)}, L"SetIKEndEffectors");
    EXPECT_EQ(allObjects().size(), count);
    for (XObject const& gone : conversions) EXPECT_FALSE(gone.IsValid());
    EXPECT_EQ(childrenOf(solver, sg::CopyMatrixNode::Def).size(), 3u);
    Objects const associated = objectsOf(solver.AssociatedObjects());
    ASSERT_EQ(associated.size(), 3u);
    expectDriven(chest, solver.OutputGeometry().Attribute(1), false, associated[1]);
}

TEST_F(IKRig, AShapeBelowAHandleAndTheSolverItselfStandForTheRig) {
    XIKSolver const solver = rig({hips, chest});
    XObject const shape = handle(solver, 0).FindChildObject(XPrimitive::TypeID, IsObjectType);
    runOn({shape}, L"SetIKBindPose");
    EXPECT_EQ(solver.BindPoses().ArraySize(), 2);
    runOn({solver}, L"SetIKBindPose");
    EXPECT_EQ(solver.BindPoses().ArraySize(), selected().empty() ? 2 : 3);
}

// ---- more roots ----

TEST_F(IKRig, ARootAboveTheFirstTakesItsPlaceAndTheHandlesMoveBesideIt) {
    prop.SetRotationEulerAngles(0.1f, 0.2f, 0.3f);
    hips.SetParent(prop);
    XIKSolver const solver = rig({hips, chest});
    std::vector<float> const at = numbers(handle(solver, 0).WorldMatrix());
    runOn({handle(solver, 0), prop}, L"SetIKRootJoints");
    EXPECT_EQ(objectsOf(solver.RootJoints()), (Objects{prop, hips}));
    EXPECT_EQ(solver.IKHandleReferences().ArraySize(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(handle(solver, i).Parent(), prop.Parent());
        EXPECT_EQ(handle(solver, i).RootJoint(), prop);
        EXPECT_EQ(handle(solver, i).IKRootWorldMatrix().InputAttribute(), prop.WorldMatrix());
    }
    EXPECT_THAT(numbers(handle(solver, 0).WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), at));
    // prop, chest, spine, hips
    EXPECT_EQ(integersOf(solver.JointHierarchy()), (Numbers{-1, 2, 3, 0, -1}));
    EXPECT_EQ(integersOf(solver.RootIndexList()), (Numbers{0, 3}));
}

TEST_F(IKRig, ARootAboveAnotherRootIsTheTopmostOne) {
    XTransform const top(scene().CreateObject(XTransform::TypeID));
    hips.SetParent(prop);
    prop.SetParent(top);
    XIKSolver const solver = rig({hips, chest});
    runOn({handle(solver, 0), prop, top}, L"SetIKRootJoints");
    EXPECT_EQ(objectsOf(solver.RootJoints())[0], top);
    EXPECT_EQ(solver.RootJoints().ArraySize(), 3);
}

TEST_F(IKRig, ARootThatIsNotAboveJoinsTheList) {
    XIKSolver const solver = rig({hips, chest});
    runOn({handle(solver, 0), spine, spine}, L"SetIKRootJoints");
    EXPECT_EQ(objectsOf(solver.RootJoints()), (Objects{hips, spine}));
    EXPECT_EQ(integersOf(solver.RootIndexList()), (Numbers{0, 2}));
    EXPECT_EQ(handle(solver, 0).RootJoint(), hips);
}

TEST_F(IKRig, SetRootJointsClearsThePosesAndAddsOne) {
    XIKSolver const solver = rig({hips, chest});
    for (int i = 0; i < 3; ++i) runOn({handle(solver, 0)}, L"SetIKBindPose");
    EXPECT_EQ(solver.BindPoses().ArraySize(), 4);
    runOn({handle(solver, 0), spine}, L"SetIKRootJoints");
    EXPECT_EQ(solver.BindPoses().ArraySize(), 1);
}

TEST_F(IKRig, WithoutARigThatIsSelectedNothingIsRebuilt) {
    rig({hips, chest});
    for (std::wstring const command : {L"SetIKRootJoints", L"SetIKEndEffectors", L"SetIKBindPose",
                                       L"ClearLastIKBindPose", L"ClearAllIKBindPoses", L"SetIKPoleVectorPairs"})
        EXPECT_TRUE(changesNothing({spine, leg}, command)) << Qelutils::toUtf8(command);
    EXPECT_TRUE(log.entries.empty());
}

// ---- bind poses ----

TEST_F(IKRig, ABindPoseHoldsTheInputOfEachJoint) {
    XIKSolver const solver = rig({hips, chest});
    XAttribute const pose = solver.BindPoses().Attribute(0);
    ASSERT_EQ(pose.ArraySize(), 3);
    for (int j = 0; j < 3; ++j) EXPECT_EQ(numbers(pose.Matrix(j)), numbers(solver.InputGeometry().Attribute(j)));
}

TEST_F(IKRig, BindPosesAreAddedAndTakenAway) {
    XIKSolver const solver = rig({hips, chest});
    auto const count = [&](std::wstring const& command) {
        runOn({handle(solver, 0)}, command);
        EXPECT_TRUE(solver.AllowCompute().Boolean());
        return solver.BindPoses().ArraySize();
    };
    EXPECT_EQ(count(L"SetIKBindPose"), 2);
    EXPECT_EQ(count(L"SetIKBindPose"), 3);
    EXPECT_EQ(count(L"ClearLastIKBindPose"), 2);
    EXPECT_EQ(count(L"ClearAllIKBindPoses"), 0);
    EXPECT_EQ(count(L"ClearLastIKBindPose"), 0);
    EXPECT_EQ(count(L"SetIKBindPose"), 1);
}

// ---- poles ----

TEST_F(IKRig, AJointGetsAControlPoleAndAReferencePoleAtItsPlace) {
    XIKSolver const solver = rig({hips, chest});
    runOn({handle(solver, 0), spine}, L"SetIKPoleVectorPairs");
    EXPECT_TRUE(log.entries.empty());
    XAttribute const parameters = parametersOf(spine).Parameters();
    EXPECT_TRUE(parameters.Attribute(6).Boolean());
    XPoleVector const control(parameters.Attribute(7).InputObject()), reference(parameters.Attribute(8).InputObject());
    EXPECT_EQ(parameters.Attribute(7).InputAttribute(), control.PoleVector());
    EXPECT_EQ(parameters.Attribute(8).InputAttribute(), reference.PoleVector());
    EXPECT_EQ(control.Name(), L"spine_controlPole");
    EXPECT_EQ(control.ControlJoint().ObjectRef(), spine);
    EXPECT_EQ(control.EndEffector().ObjectRef(), chest);
    EXPECT_EQ(reference.Name(), L"spine_referencePole");
    EXPECT_EQ(reference.ControlJoint().ObjectRef(), spine);
    EXPECT_FALSE(reference.EndEffector().ObjectRef().IsValid());
    EXPECT_SAME_MATRIX(reference.WorldMatrix(), control.WorldMatrix());
    EXPECT_EQ(selected(), Objects{reference});
}

TEST_F(IKRig, PolesAreReadInTheSpaceOfTheTargets) {
    prop.SetRotationEulerAngles(0.1f, 0.2f, 0.3f);
    hips.SetParent(prop);
    XIKSolver const solver = rig({hips, chest});
    runOn({handle(solver, 0), spine}, L"SetIKPoleVectorPairs");
    for (int part : {7, 8}) {
        XPoleVector const pole(parametersOf(spine).Parameters().Attribute(part).InputObject());
        EXPECT_EQ(pole.SpaceWorldMatrix().InputAttribute(), hips.ParentWorldMatrix());
        XMatrix local = pole.WorldMatrix().Matrix();
        local.Multiply(XMatrix(prop.WorldMatrix().Matrix()).Invert());
        EXPECT_TRUE(pole.PoleVector().Matrix().Translation().IsEqual(local.Translation(), 1e-5f));
    }
}

TEST_F(IKRig, PolesNeedARigAHandleAndATransformBesideIt) {
    XIKSolver const solver = rig({hips, chest});
    EXPECT_TRUE(changesNothing({handle(solver, 0)}, L"SetIKPoleVectorPairs"));
    EXPECT_TRUE(changesNothing({spine, leg}, L"SetIKPoleVectorPairs"));
    EXPECT_TRUE(log.entries.empty());
    runOn({handle(solver, 0), prop}, L"SetIKPoleVectorPairs");
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Selected transforms must be in same hierarchy branch"});
    EXPECT_FALSE(parametersOf(prop).IsValid());
}

TEST_F(IKRig, PolesAreAStepThatUndoAndRedoMoveToTheByte) {
    XIKSolver const solver = rig({hips, chest});
    select({handle(solver, 0), spine});
    expectUndoable(L"SetIKPoleVectorPairs");
}

// ---- results ----

TEST_F(IKRig, TheSolverIsTheResultOfItsMakingAlone) {
    Qelutils::Vector<XObject> results;
    XIKSolver const solver = rig({hips, chest});
    XInverseKinematics::Instance().Results(results);
    EXPECT_EQ(results, Qelutils::Vector<XObject>{solver});
    EXPECT_FALSE(run(L"SetIKBindPose").IsValid());
    XInverseKinematics::Instance().Results(results);
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(&XInverseKinematics::Instance().Scene(), &scene());
}

// ---- history, files, and what is deleted ----

TEST_F(IKRig, EachCommandIsAStepThatUndoAndRedoMoveToTheByte) {
    select({hips, chest});
    expectUndoable(L"CreateIKRig");
    XIKHandle const last(selected()[0]);
    for (std::wstring const command :
         {L"SetIKBindPose", L"ClearLastIKBindPose", L"ClearAllIKBindPoses", L"SetIKRootJoints", L"SetIKEndEffectors"}) {
        SCOPED_TRACE(Qelutils::toUtf8(command));
        select({last, leg});
        expectUndoable(command);
    }
}

TEST_F(IKRig, ARigOutlivesAFile) {
    limited(chest);
    limited(hips);
    rig({hips, chest, leg});
    scene().CommitTransient();
    std::string const saved = bytes();
    std::vector<float> const at = numbers(chest.WorldMatrix());
    std::wstring const path = chest.Path();
    load(saved);
    XTransform const loaded(scene().Object(path));
    EXPECT_THAT(numbers(loaded.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), at));
    EXPECT_TRUE(bytes() == saved);
}

TEST_F(IKRig, AnyNodeOfARigMayGo) {
    limited(chest);
    rig({hips, chest, leg});
    scene().CommitTransient();
    std::string const rigged = bytes();
    std::size_t const count = allObjects().size();
    for (std::size_t i = 0; i < count; ++i)
        for (bool const throughObject : {true, false}) {
            load(rigged);
            XObject victim = allObjects()[i];
            if (victim == scene().RootObject()) continue;
            SCOPED_TRACE(Qelutils::toUtf8(victim.Path()));
            throughObject ? victim.Delete() : void(victim.getNode()->remove());
            scene().CommitTransient();
            readAll();
            for (XObject const& object : allObjects())
                if (XIKHandle const left(object); left.IsValid()) {
                    runOn({left}, L"SetIKEndEffectors");
                    break;
                }
            readAll();
        }
}

TEST_F(IKRig, ARebuildDropsWhatWasDeleted) {
    XIKSolver const solver = rig({hips, chest, leg});
    XIKHandle const first = handle(solver, 0), leftLeg = handle(solver, 3);
    ASSERT_EQ(leftLeg.EndEffectorTransform(), leg);
    XIKHandle(handle(solver, 1)).Delete();
    runOn({first}, L"SetIKEndEffectors");
    EXPECT_EQ(effectorsOf(solver), (Objects{chest, hips, leg}));
    EXPECT_EQ(handle(solver, 2), leftLeg);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(solver.InputTargets().Attribute(i).InputAttribute(), handle(solver, i).LocalMatrix());
        EXPECT_EQ(solver.IKHandleParams().Attribute(i).InputAttribute(), handle(solver, i).SolverParameters());
    }
    runOn({first, spine}, L"SetIKEndEffectors");
    EXPECT_EQ(effectorsOf(solver), (Objects{chest, hips, leg, spine}));
}

TEST_F(IKRig, ARigWithoutItsRootComputesNothing) {
    XIKSolver const solver = rig({spine, chest});
    XIKHandle const first = handle(solver, 0);
    spine.Delete();
    runOn({first}, L"SetIKEndEffectors");
    EXPECT_FALSE(solver.InputGeometry().ArraySize() > 0);
    EXPECT_EQ(solver.RootJoints().ArraySize(), 0);
}

}  // namespace
}  // namespace Tavo
