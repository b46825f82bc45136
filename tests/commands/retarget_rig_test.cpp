// The rigs of retargeting: which joints, which objects, which connections.
#include "tests/commands/rig_fixture.h"
#include <algorithm>

namespace Tavo {
namespace {

class RetargetRig : public RigTest {
protected:
    RetargetRig() { buildTwo(); }

    // Below prop, a skeleton like that of the hips; and what is below the hips as a source.
    void buildTwo() {
        build();
        XChangeBlock const block(scene(), label);
        pelvis = joint(L"pelvis", prop, {0, 0.5f, 0});
        back = joint(L"back", pelvis, {0, 0.2f, 0});
        head = joint(L"head", back, {0.1f, 0.1f, 0});
        foot = joint(L"foot", pelvis, {0, -0.2f, 0});
        for (XAttribute channel :
             {back.RotationX(), back.TranslationY(), back.ScaleZ(), back.PreRotationX(), back.PostRotationY()})
            keyed(channel);
        source = XTransform(scene().CreateObject(XTransform::TypeID));
        hips.SetParent(source);
    }
    XRetarget attach() {
        select({source, prop});
        return XRetarget(run(L"RetargetAttach"));
    }
    static XAttribute parametersOf(XObject const& joint) {
        return XJointRetargetParams(joint.FindChildObject(XJointRetargetParams::TypeID, IsObjectType)).Parameters();
    }
    static XObject referentOf(XObject const& joint) { return parametersOf(joint).Attribute(1).ObjectRef(); }
    static void runOn(Objects const& selection, std::wstring const& command) {
        select(selection);
        run(command);
    }

    XJoint pelvis, back, head, foot;
    XTransform source;
};

// ---- which joints ----

TEST_F(RetargetRig, ListsTheJointsBelowEachRootDepthFirst) {
    XRetarget const node = attach();
    EXPECT_EQ(objectsOf(node.SourceJoints()), (Objects{hips, spine, chest, leg}));
    EXPECT_EQ(objectsOf(node.TargetJoints()), (Objects{pelvis, back, head, foot}));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(RetargetRig, ARootThatIsAJointWithChildrenIsNotInTheList) {
    select({hips, pelvis});
    XRetarget const node(run(L"RetargetAttach"));
    EXPECT_EQ(objectsOf(node.SourceJoints()), (Objects{spine, chest, leg}));
    EXPECT_EQ(objectsOf(node.TargetJoints()), (Objects{back, head, foot}));
}

TEST_F(RetargetRig, ARootThatIsAChildlessJointIsTheList) {
    select({chest, head});
    XRetarget const node(run(L"RetargetAttach"));
    EXPECT_EQ(objectsOf(node.SourceJoints()), Objects{chest});
    EXPECT_EQ(objectsOf(node.TargetJoints()), Objects{head});
    select({chest, head});
    XRetarget const again(run(L"RetargetAttach"));  // what the first one left below the joints does not count
    EXPECT_EQ(objectsOf(again.SourceJoints()), Objects{chest});
}

TEST_F(RetargetRig, JointsBelowWhatIsNoJointAreNotInTheList) {
    XTransform const between(scene().CreateObject(XTransform::TypeID, spine));
    joint(L"hidden", between, {0, 1, 0});
    XRetarget const node = attach();
    EXPECT_EQ(objectsOf(node.SourceJoints()), (Objects{hips, spine, chest, leg}));
}

TEST_F(RetargetRig, TheFirstTwoTransformsInTheOrderOfSelectionAreTheRoots) {
    select({box, scene().DisplayGroups(), prop, source, hips});
    XRetarget const node(run(L"RetargetAttach"));
    EXPECT_EQ(objectsOf(node.SourceJoints()), (Objects{pelvis, back, head, foot}));
    EXPECT_EQ(objectsOf(node.TargetJoints()), (Objects{hips, spine, chest, leg}));
}

TEST_F(RetargetRig, AWrongSelectionAttachesNothing) {
    XTransform const empty(scene().CreateObject(XTransform::TypeID));
    for (Objects const& selection :
         {Objects{}, Objects{source}, Objects{source, box}, Objects{source, empty}, Objects{empty, prop}})
        EXPECT_TRUE(changesNothing(selection, L"RetargetAttach"));
    EXPECT_TRUE(log.entries.empty());
}

// ---- the node ----

TEST_F(RetargetRig, TheNodeIsNamedAndMayCompute) {
    XRetarget const node = attach();
    ASSERT_TRUE(node.IsValid());
    EXPECT_EQ(node.Name(), L"Retargeter");
    EXPECT_TRUE(node.AllowCompute().Boolean());
    for (XAttribute const& array : {node.SourceJoints(), node.TargetJoints(), node.InputSourceGeometry(),
                                    node.OutputTargetGeometry(), node.SourceHierarchy(), node.TargetHierarchy(),
                                    node.SourceJointParams(), node.TargetJointParams(), node.AssociatedObjects()})
        EXPECT_EQ(array.ArraySize(), 4) << Qelutils::toUtf8(array.Name());
}

TEST_F(RetargetRig, AJointWhoseParentIsNotListedHasNone) {
    XRetarget const node = attach();
    EXPECT_EQ(integersOf(node.SourceHierarchy()), (Numbers{-1, 0, 1, 0}));
    EXPECT_EQ(integersOf(node.TargetHierarchy()), (Numbers{-1, 0, 1, 0}));
    select({hips, pelvis});
    EXPECT_EQ(integersOf(XRetarget(run(L"RetargetAttach")).SourceHierarchy()), (Numbers{-1, 0, -1}));
}

TEST_F(RetargetRig, TheNodeReadsTheSourcesMatrices) {
    XRetarget const node = attach();
    std::vector<XJoint> const joints = {hips, spine, chest, leg};
    for (int j = 0; j < 4; ++j)
        EXPECT_EQ(node.InputSourceGeometry().Attribute(j).InputAttribute(), joints[std::size_t(j)].LocalMatrix());
    time().Time().SetFloat(1);
    EXPECT_SAME_MATRIX(node.InputSourceGeometry().Attribute(1), spine.LocalMatrix());
}

TEST_F(RetargetRig, EveryTargetIsTurnedAndMoved) {
    XRetarget const node = attach();
    std::vector<XJoint> const joints = {pelvis, back, head, foot};
    Objects const associated = objectsOf(node.AssociatedObjects());
    for (int j = 0; j < 4; ++j)
        expectDriven(joints[std::size_t(j)], node.OutputTargetGeometry().Attribute(j), true,
                     associated[std::size_t(j)]);
}

TEST_F(RetargetRig, ATargetsKeysAreGone) {
    XAnimation const slide = back.TranslationY().Animation();
    ASSERT_TRUE(slide.IsValid());
    attach();
    for (int i = 21; i <= 44; ++i) EXPECT_FALSE(back.Attribute(i).IsAnimated()) << i;
    EXPECT_FALSE(slide.IsValid());
    EXPECT_TRUE(spine.RotationX().IsAnimated());  // the source's stay
}

TEST_F(RetargetRig, AttachingMovesNothing) {
    head.SetPreTranslation(0.1f, 0.2f, 0.3f);
    head.RotationEulerOrder().SetEnumeration(3);
    head.RotationX().SetFloat(0.4f), head.RotationY().SetFloat(0.5f), head.RotationZ().SetFloat(-0.6f);
    std::vector<float> const before = numbers(head.WorldMatrix());
    attach();
    EXPECT_THAT(numbers(head.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
}

// ---- parameters ----

TEST_F(RetargetRig, EachJointHasParametersWhichTheNodeReads) {
    XRetarget const node = attach();
    std::vector<std::vector<XJoint>> const lists = {{hips, spine, chest, leg}, {pelvis, back, head, foot}};
    for (int list = 0; list < 2; ++list)
        for (int j = 0; j < 4; ++j) {
            XJoint const joint = lists[std::size_t(list)][std::size_t(j)];
            XJointRetargetParams const object(joint.FindChildObject(XJointRetargetParams::TypeID, IsObjectType));
            ASSERT_TRUE(object.IsValid());
            EXPECT_EQ(object.Name(), joint.Name() + L"_retarget");
            EXPECT_SAME_MATRIX(object.LocalMatrix(), XMatrix());
            XAttribute const all = list == 0 ? node.SourceJointParams() : node.TargetJointParams();
            XAttribute const parameters = object.Parameters();
            EXPECT_EQ(all.Attribute(j).InputAttribute(), parameters);
            EXPECT_EQ(all.Attribute(j).Attribute(0).String(), joint.Name());
            EXPECT_EQ(all.Attribute(j).Attribute(1).ObjectRef(), joint);
            EXPECT_SAME_MATRIX(all.Attribute(j).Attribute(3), joint.LocalMatrix());
            EXPECT_EQ(all.Attribute(j).Attribute(4).Boolean(), j != 0);
            for (int active : {16, 18, 20}) EXPECT_FALSE(parameters.Attribute(active).Boolean());
            EXPECT_EQ(parameters.Attribute(13).Enumeration(), 0);
        }
}

TEST_F(RetargetRig, ALimitFeedsTheParametersOfItsJoint) {
    XJointLimit const ofSource = limited(spine), ofTarget = limited(head);
    XRetarget const node = attach();
    EXPECT_TRUE(log.entries.empty());
    expectFed(parametersOf(spine), 13, partsOf(ofSource));
    expectFed(parametersOf(head), 13, partsOf(ofTarget));
    EXPECT_EQ(node.SourceJointParams().Attribute(1).InputAttribute(), parametersOf(spine));
    ofTarget.TwistAngle().SetFloat(0.9f);
    EXPECT_EQ(node.TargetJointParams().Attribute(2).Attribute(21).Float(), 0.9f);
}

// ---- again, and no more ----

TEST_F(RetargetRig, ASecondAttachOfTheSameSourceReplacesTheFirst) {
    XRetarget const first = attach();
    Objects const conversions = objectsOf(first.AssociatedObjects());
    std::size_t const count = allObjects().size();
    XRetarget const second = attach();
    EXPECT_FALSE(first.IsValid());
    EXPECT_TRUE(second.IsValid());
    EXPECT_NE(first, second);
    for (XObject const& gone : conversions) EXPECT_FALSE(gone.IsValid());
    EXPECT_EQ(allObjects().size(), count);
}

TEST_F(RetargetRig, DetachOfTheSourceTakesTheRigAndLeavesTheParameters) {
    std::size_t const count = allObjects().size();
    XRetarget const node = attach();
    runOn({prop}, L"RetargetDetach");
    EXPECT_TRUE(node.IsValid());  // the target does not let go
    std::vector<float> const at = numbers(head.WorldMatrix());
    runOn({source, prop}, L"RetargetDetach");
    EXPECT_FALSE(node.IsValid());
    EXPECT_FALSE(head.RotationX().HasInput() || head.TranslationX().HasInput());
    EXPECT_THAT(numbers(head.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), at));
    EXPECT_TRUE(parametersOf(spine).IsValid() && parametersOf(back).IsValid());
    for (XJoint const& left : {hips, spine, chest, leg, pelvis, back, head, foot}) EXPECT_TRUE(left.IsValid());
    EXPECT_EQ(allObjects().size(), count + 8 - 5);  // parameters; without the target's curves
}

TEST_F(RetargetRig, ALaterAttachKeepsOriginsAndReferents) {
    attach();
    runOn({chest, hips}, L"RetargetSetJointReferent");
    runOn({source}, L"RetargetDetach");
    std::vector<float> const origin = numbers(parametersOf(chest).Attribute(3));
    chest.SetRotationEulerAngles(0.5f, 0.2f, 0.1f);
    attach();
    EXPECT_EQ(numbers(parametersOf(chest).Attribute(3)), origin);
    EXPECT_EQ(referentOf(chest), hips);
    EXPECT_EQ(childrenOf(chest, sg::JointRetargetParamsNode::Def).size(), 1u);
}

TEST_F(RetargetRig, ALimitThatIsTakenFromItsJointFeedsNothingAfterALaterAttach) {
    limited(spine);
    attach();
    spine.JointLimitReference().ClearObjectRef();
    attach();
    XAttribute const parameters = parametersOf(spine);
    for (int i = 13; i <= 22; ++i) EXPECT_FALSE(parameters.Attribute(i).HasInput());
    for (int active : {16, 18, 20}) EXPECT_FALSE(parameters.Attribute(active).Boolean());
    EXPECT_EQ(parameters.Attribute(13).Enumeration(), 0);
}

TEST_F(RetargetRig, DeletingTheNodeLeavesWhatItReadAndTakesWhatItOwned) {
    XRetarget node = attach();
    Objects const conversions = objectsOf(node.AssociatedObjects());
    node.Delete();
    for (XObject const& gone : conversions) EXPECT_FALSE(gone.IsValid());
    for (XJoint const& left : {hips, spine, chest, leg}) EXPECT_TRUE(left.IsValid());
    EXPECT_TRUE(parametersOf(head).IsValid());
}

// ---- origins ----

TEST_F(RetargetRig, JointsGoBackToTheirOrigins) {
    attach();
    std::vector<float> const before = numbers(chest.LocalMatrix()), ofLeg = numbers(leg.LocalMatrix());
    chest.SetRotationEulerAngles(0.5f, 0.2f, 0.1f).SetTranslation(1, 2, 3);
    runOn({source}, L"RetargetSetJointsToOrigin");
    EXPECT_THAT(numbers(chest.LocalMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), before));
    EXPECT_THAT(numbers(leg.LocalMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), ofLeg));
}

TEST_F(RetargetRig, ThePresentPoseBecomesTheOrigin) {
    attach();
    chest.SetRotationEulerAngles(0.5f, 0.2f, 0.1f);
    runOn({source}, L"RetargetSetJointOrigins");
    EXPECT_SAME_MATRIX(parametersOf(chest).Attribute(3), chest.LocalMatrix());
}

TEST_F(RetargetRig, WithoutParametersThereIsNoOrigin) {
    for (std::wstring const command :
         {L"RetargetSetJointsToOrigin", L"RetargetSetJointOrigins", L"RetargetResetJointReferents"})
        for (Objects const& selection : {Objects{source}, Objects{box}, Objects{}})
            EXPECT_TRUE(changesNothing(selection, command)) << Qelutils::toUtf8(command);
}

// ---- referents ----

TEST_F(RetargetRig, AReferentIsTheJointOrOneAboveIt) {
    attach();
    EXPECT_EQ(referentOf(chest), chest);
    for (XTransform const& referent : {XTransform(hips), source, XTransform(spine)}) {
        runOn({chest, referent}, L"RetargetSetJointReferent");
        EXPECT_EQ(referentOf(chest), referent);
    }
}

TEST_F(RetargetRig, AReferentBelowTheJointOrBesideItIsRefused) {
    attach();
    for (XTransform const& referent : {XTransform(chest), XTransform(leg), prop})
        EXPECT_TRUE(changesNothing({spine, referent}, L"RetargetSetJointReferent"));
    EXPECT_TRUE(changesNothing({spine}, L"RetargetSetJointReferent"));
    EXPECT_TRUE(changesNothing({box, hips}, L"RetargetSetJointReferent"));
    EXPECT_EQ(referentOf(spine), spine);
}

TEST_F(RetargetRig, TheWorldAsAReferentLeavesThingsAsTheyWere) {
    attach();
    runOn({chest, hips}, L"RetargetSetJointReferent");
    EXPECT_TRUE(changesNothing({chest}, L"RetargetSetJointReferentToWorld"));
    EXPECT_TRUE(changesNothing({}, L"RetargetSetJointReferentToWorld"));
    EXPECT_EQ(referentOf(chest), hips);
}

TEST_F(RetargetRig, ResetSetsEveryReferentBackToItsJoint) {
    attach();
    runOn({chest, hips}, L"RetargetSetJointReferent");
    runOn({spine, source}, L"RetargetSetJointReferent");
    runOn({source}, L"RetargetResetJointReferents");
    for (XJoint const& each : {hips, spine, chest, leg}) EXPECT_EQ(referentOf(each), each);
}

// ---- results, history, files, and what is deleted ----

TEST_F(RetargetRig, TheNodeIsTheResultOfItsMakingAlone) {
    XRetarget const node = attach();
    Qelutils::Vector<XObject> results;
    XRetargeting::Instance().Results(results);
    EXPECT_EQ(results, Qelutils::Vector<XObject>{node});
    EXPECT_FALSE(run(L"RetargetSetJointOrigins").IsValid());
    XRetargeting::Instance().Results(results);
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(&XRetargeting::Instance().Scene(), &scene());
}

TEST_F(RetargetRig, EachCommandIsAStepThatUndoAndRedoMoveToTheByte) {
    select({source, prop});
    expectUndoable(L"RetargetAttach");
    expectUndoable(L"RetargetAttach");
    select({chest, hips});
    expectUndoable(L"RetargetSetJointReferent");
    chest.SetTranslation(1, 2, 3);
    select({source});
    expectUndoable(L"RetargetSetJointsToOrigin");
    chest.SetTranslation(1, 2, 3);
    expectUndoable(L"RetargetSetJointOrigins");
    expectUndoable(L"RetargetResetJointReferents");
    expectUndoable(L"RetargetDetach");
}

TEST_F(RetargetRig, ARigOutlivesAFile) {
    limited(head);
    attach();
    scene().CommitTransient();
    std::string const saved = bytes();
    std::wstring const path = head.Path();
    std::vector<float> const at = numbers(head.WorldMatrix());
    load(saved);
    XTransform const loaded(scene().Object(path));
    EXPECT_THAT(numbers(loaded.WorldMatrix()), testing::Pointwise(testing::FloatNear(1e-5f), at));
    EXPECT_TRUE(bytes() == saved);
}

TEST_F(RetargetRig, AnyNodeOfARigMayGo) {
    limited(head);
    attach();
    scene().CommitTransient();
    std::string const rigged = bytes();
    std::wstring const from = source.Path(), to = prop.Path();
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
            runOn({scene().Object(from), scene().Object(to)}, L"RetargetAttach");
            readAll();
        }
}

}  // namespace
}  // namespace Tavo
