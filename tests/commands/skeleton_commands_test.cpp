// Characters, limits and what ties transforms together, made by commands: the graph afterwards.
#include "tests/commands/fixture.h"

namespace Tavo {
namespace {

using Objects = std::vector<XObject>;

struct SkeletonCommands : CommandTest {
    static Objects runAll(std::wstring const& name) {
        Qelutils::Vector<XObject> results;
        scene().RunCommand(name, results);
        return {results.begin(), results.end()};
    }
    static XTransform plain(std::wstring const& name, XObject const& above, XVector3 const& at) {
        XTransform made(scene().CreateObject(XTransform::TypeID, above));
        made.SetName(name);
        made.SetTranslation(at);
        return made;
    }
    static bool feeds(XObject const& source, int sourceFirst, XObject const& target, int first) {
        for (int axis = 0; axis < 3; ++axis)
            if (target.Attribute(first + axis).InputAttribute() != source.Attribute(sourceFirst + axis)) return false;
        return true;
    }
    static XObject target(XKinematicsConstraint const& constraint, int i) {
        return constraint.InputMatrices().Attribute(i).Attribute(0).InputObject();
    }
    static XVector3 direction(XTransform const& from, XTransform const& to) {
        return XVector3().Subtract(to.WorldTranslation(), from.WorldTranslation()).Normalize();
    }
    static bool isNear(XVector3 const& a, XVector3 const& b) { return a.IsEqual(b, 2e-5f); }
    static constexpr int Translation = 21, Rotation = 24;
};

// ---- Characterize ----

TEST_F(SkeletonCommands, EachSelectedTransformThatStandsInNoneBecomesACharacter) {
    select({hips, box, chest, prop});
    EXPECT_TRUE(runAll(L"Characterize").empty()) << "it has no results";
    XCharacter const first = hips.Character(), second = prop.Character();
    ASSERT_TRUE(first.IsValid() && second.IsValid());
    EXPECT_NE(first, second);
    EXPECT_EQ(chest.Character(), first);
    EXPECT_EQ(hips.Parent(), first.KinematicsCharacter());
    EXPECT_EQ(prop.Parent(), second.KinematicsCharacter());
    EXPECT_FALSE(first.IsEditable().Boolean());
    EXPECT_EQ(selected(), (Objects{hips, box, chest, prop}));
    undo();
    EXPECT_EQ(hips.Parent(), scene().RootObject());
    EXPECT_FALSE(first.IsValid() || second.IsValid());
}

TEST_F(SkeletonCommands, AJointWithNothingAboveBeginsACharacterThatMayBeEdited) {
    select({});
    XJoint const made(run(L"CreateJoint"));
    XCharacter const character = made.Character();
    ASSERT_TRUE(character.IsValid());
    EXPECT_TRUE(character.IsEditable().Boolean());
    EXPECT_EQ(made.Parent(), character.KinematicsCharacter());
    EXPECT_EQ(character.KinematicsCharacter().CharacterRoot(), made);
    EXPECT_EQ(made.Name(), L"joint");
    EXPECT_EQ(made.LocalTranslation(), XVector3(0.2f, 0, 0));
    EXPECT_EQ(selected(), Objects{made});
    XJoint const next(run(L"CreateJoint"));
    EXPECT_EQ(next.Parent(), made);
    EXPECT_EQ(next.Character(), character);
    EXPECT_EQ(next.LocalTranslation(), XVector3(0.2f, 0, 0));
}

// ---- limits ----

TEST_F(SkeletonCommands, EachSelectedJointGetsALimitWithTheParameters) {
    select({spine, box, leg});
    auto const command = parameters<XCreateJointLimit>();
    command.Swing1Angle().SetFloat(0.5f);
    command.TwistActive().SetBoolean(false);
    command.ShowMovingAxes().SetBoolean(true);
    command.ScaleX().SetFloat(2);
    Objects const results = runAll(L"CreateJointLimit");
    EXPECT_EQ(results, (Objects{spine.JointLimit(), leg.JointLimit()}));
    EXPECT_EQ(selected(), Objects{leg.JointLimit()});
    for (XObject const& made : results) {
        XJointLimit const limit(made);
        EXPECT_EQ(limit.Parent(), hips);
        EXPECT_EQ(limit.Swing1Angle().Float(), 0.5f);
        EXPECT_EQ(limit.Swing2Angle().Float(), XJointLimit::DefaultSwingLimitAngle);
        EXPECT_EQ(limit.ColourValue(), XJointLimit::DefaultColour);
        EXPECT_FALSE(limit.TwistActive().Boolean());
        EXPECT_TRUE(limit.ShowMovingAxes().Boolean());
        EXPECT_TRUE(feeds(limit.Joint(), Translation, limit, Translation));
    }
    EXPECT_EQ(spine.JointLimit().Name(), L"spineLimit");
}

TEST_F(SkeletonCommands, AJointThatHasALimitGetsNoOther) {
    XJointLimit const limit = spine.CreateJointLimit();
    select({spine});
    EXPECT_TRUE(runAll(L"CreateJointLimit").empty());
    EXPECT_EQ(spine.JointLimit(), limit);
    EXPECT_EQ(selected(), Objects{spine});
}

TEST_F(SkeletonCommands, TheInitialRotationSaysWhichAxisPointsAlongTheBone) {
    auto const axis = [](XJointLimit const& limit, int i) {
        XMatrix const world = limit.WorldMatrix().Matrix();
        return i == 0 ? world.XAxis() : i == 1 ? world.YAxis() : world.ZAxis();
    };
    struct Row {
        int rotation, type, axis;  // -1: none
    };
    for (Row const& row :
         {Row{0, 0, 0}, {0, 1, 1}, {0, 2, -1}, {1, 1, 0}, {2, 0, 1}, {3, 0, 2}, {4, 0, -1}, {9, 1, -1}}) {
        SCOPED_TRACE(testing::Message() << row.rotation << " " << row.type);
        build();
        auto const command = parameters<XCreateJointLimit>();
        command.InitialRotation().SetEnumeration(row.rotation);
        command.LimitType().SetEnumeration(row.type);
        select({spine});
        XJointLimit const limit(run(L"CreateJointLimit"));
        ASSERT_TRUE(limit.IsValid());
        for (int i = 0; i < 3; ++i) EXPECT_EQ(isNear(axis(limit, i), direction(spine, chest)), i == row.axis);
        EXPECT_EQ(limit.RotationY().Float() == 0, row.axis < 0) << "then it is as the parameters say";
    }
}

TEST_F(SkeletonCommands, EachSelectedLimitIsAligned) {
    XJointLimit const first = spine.CreateJointLimit(), second = hips.CreateJointLimit();
    auto const command = parameters<XAlignJointLimit>();
    command.JointLimitAxis().SetEnumeration(L"ZAxis");
    command.AlignmentDirection().SetEnumeration(L"AlignToFirstChild");
    select({first, prop, hips});
    run(L"AlignJointLimit");
    EXPECT_TRUE(isNear(first.WorldMatrix().Matrix().ZAxis(), direction(spine, chest)));
    EXPECT_FALSE(isNear(second.WorldMatrix().Matrix().ZAxis(), direction(hips, spine))) << "it is not selected";
}

TEST_F(SkeletonCommands, TheFramesOfEveryPhysicsHingeOfTheSceneAreMadeToCoincide) {
    XPhysicsJoint joint(scene().CreateObject(XPhysicsJoint::TypeID));
    joint.SetRotationEulerAngles(0.3f, 0.2f, -0.4f);
    auto const limitOf = [&](int type) {
        XPhysicsJointLimit limit(scene().CreateObject(XPhysicsJointLimit::TypeID));
        limit.SetRotationEulerAngles(0.5f, -0.25f, 1);
        limit.JointReference().SetObjectRef(joint);
        limit.LimitType().SetEnumeration(type);
        return limit;
    };
    XPhysicsJointLimit const hinge = limitOf(1), socket = limitOf(0);
    XJointLimit const kinematic = spine.CreateJointLimit();
    kinematic.LimitType().SetEnumeration(1);
    kinematic.MovingOffsetX().SetFloat(0.125f);
    select({});
    run(L"AlignHingeOffset");
    XMatrix moving;
    moving.SetRotationEulerAngles(
        XVector3(hinge.MovingOffsetX().Float(), hinge.MovingOffsetY().Float(), hinge.MovingOffsetZ().Float()));
    moving.Multiply(joint.WorldMatrix().Matrix());
    EXPECT_TRUE(moving.IsEqual(hinge.WorldMatrix().Matrix(), 1e-5f));
    EXPECT_EQ(socket.MovingOffsetX().Float(), 0);
    EXPECT_EQ(kinematic.MovingOffsetX().Float(), 0.125f) << "no physics limit";
}

TEST_F(SkeletonCommands, HingesAreThoseOfTheActiveSceneWhateverSceneTheCommandWorksIn) {
    XPhysicsJoint joint(scene().CreateObject(XPhysicsJoint::TypeID));
    XPhysicsJointLimit limit(scene().CreateObject(XPhysicsJointLimit::TypeID));
    limit.JointReference().SetObjectRef(joint);
    limit.LimitType().SetEnumeration(1);
    limit.SetRotationEulerAngles(0.5f, 0, 0);
    XScene& other = application().GetScene(application().AddScene());
    application().SetActiveScene(0);
    ASSERT_NE(&other, &scene());
    other.RunCommand(L"AlignHingeOffset");
    EXPECT_NEAR(limit.MovingOffsetX().Float(), 0.5f, 1e-6f);
}

// ---- constraints ----

TEST_F(SkeletonCommands, TheFirstSelectedTransformFollowsTheOthers) {
    XTransform const follower = plain(L"follower", scene().RootObject(), {});
    select({follower, prop, box, leg});
    Objects const results = runAll(L"CreateKinematicsConstraint");
    ASSERT_EQ(results.size(), 1u);
    XKinematicsConstraint const constraint(results[0]);
    ASSERT_EQ(constraint.InputMatrices().ArraySize(), 2);
    EXPECT_EQ(target(constraint, 0), prop);
    EXPECT_EQ(target(constraint, 1), leg);
    EXPECT_EQ(follower.TranslationX().InputObject().Parent(), constraint);
    EXPECT_EQ(follower.RotationZ().InputObject().Parent(), constraint);
}

TEST_F(SkeletonCommands, OnlyWhatTheParametersLockFollows) {
    XTransform const follower = plain(L"follower", scene().RootObject(), {});
    parameters<XCreateKinematicsConstraint>().LockRotation().SetBoolean(false);
    select({follower, prop});
    run(L"CreateKinematicsConstraint");
    EXPECT_TRUE(follower.TranslationX().HasInput());
    EXPECT_FALSE(follower.RotationX().HasInput());
    parameters<XCreateKinematicsConstraint>().LockTranslation().SetBoolean(false);
    select({prop, leg});
    XKinematicsConstraint const without(run(L"CreateKinematicsConstraint"));
    EXPECT_TRUE(without.IsValid());
    EXPECT_EQ(without.InputMatrices().ArraySize(), 0);
    EXPECT_FALSE(prop.TranslationX().HasInput() || prop.RotationX().HasInput());
}

TEST_F(SkeletonCommands, AWrongSelectionIsConstrainedByNothing) {
    for (Objects const& wrong : {Objects{}, Objects{prop}, Objects{box, prop, leg}, Objects{prop, box}}) {
        select(wrong);
        std::string const before = bytes();
        EXPECT_TRUE(runAll(L"CreateKinematicsConstraint").empty());
        EXPECT_TRUE(bytes() == before);
    }
    for (Objects const& wrong :
         {Objects{}, Objects{prop, leg}, Objects{prop, leg, box}, Objects{prop, leg, hips, chest}}) {
        select(wrong);
        std::string const before = bytes();
        EXPECT_TRUE(runAll(L"CreateAimConstraint").empty());
        EXPECT_TRUE(bytes() == before);
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SkeletonCommands, TheFirstOfThreeAimsAtTheSecondUnderTheThird) {
    XTransform const up = plain(L"up", scene().RootObject(), {0, 9, 0});
    select({prop, leg, up});
    XAimConstraint const constraint(run(L"CreateAimConstraint"));
    ASSERT_TRUE(constraint.IsValid());
    EXPECT_EQ(constraint.ParentWorldIn().InputAttribute(), prop.ParentWorldMatrix());
    EXPECT_EQ(constraint.WorldIn().InputAttribute(), leg.WorldMatrix());
    EXPECT_EQ(constraint.UpVectorIn().InputAttribute(), up.WorldMatrix());
    EXPECT_TRUE(feeds(constraint, 11, prop, Rotation));
    EXPECT_TRUE(feeds(prop, Translation, constraint, 14));
    EXPECT_FALSE(prop.TranslationX().HasInput());
    for (float height : {0.f, 3.f, -2.f}) {
        leg.SetTranslation(0.5f, height, -1);
        EXPECT_TRUE(isNear(prop.WorldMatrix().Matrix().XAxis(), direction(prop, leg)));
        EXPECT_GT(prop.WorldMatrix().Matrix().YAxis().DotProduct(direction(prop, up)), 0);
    }
}

TEST_F(SkeletonCommands, EveryTransformOfTheFirstHierarchyFollowsItsNamesakes) {
    XTransform const root = plain(L"hips", prop, {}), middle = plain(L"spine", root, {}), odd = plain(L"odd", root, {});
    XTransform const other = plain(L"other", scene().RootObject(), {});
    XTransform const deep = plain(L"deep", other, {}), third = plain(L"spine", deep, {});
    select({root, hips, other});
    Objects const results = runAll(L"CreateSkeletalConstraint");
    ASSERT_EQ(results.size(), 2u);
    XKinematicsConstraint const first(results[0]), second(results[1]);
    EXPECT_EQ(first.ParentWorldIn().InputAttribute(), root.ParentWorldMatrix());
    EXPECT_TRUE(feeds(first, 10, root, Translation));
    EXPECT_TRUE(feeds(first, 13, root, Rotation));
    ASSERT_EQ(first.InputMatrices().ArraySize(), 1);
    EXPECT_EQ(target(first, 0), hips);
    EXPECT_TRUE(feeds(second, 10, middle, Translation));
    EXPECT_TRUE(feeds(second, 13, middle, Rotation));
    ASSERT_EQ(second.InputMatrices().ArraySize(), 2);
    EXPECT_EQ(target(second, 0), spine);
    EXPECT_EQ(target(second, 1), third);
    EXPECT_EQ(second.InputMatrices().Attribute(0).Attribute(2).Float(), 0.5f);
    EXPECT_EQ(second.InputMatrices().Attribute(1).Attribute(2).Float(), 0.5f);
    EXPECT_FALSE(odd.TranslationX().HasInput());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SkeletonCommands, WithoutNamesakesNothingIsConstrained) {
    for (Objects const& wrong :
         {Objects{}, Objects{hips}, Objects{hips, prop}, Objects{hips, spine}, Objects{hips, box}}) {
        select(wrong);
        std::string const before = bytes();
        EXPECT_TRUE(runAll(L"CreateSkeletalConstraint").empty());
        EXPECT_TRUE(bytes() == before);
    }
    EXPECT_TRUE(log.entries.empty()) << "where hierarchies overlap, nothing follows itself";
}

// ---- targets of physics constraints ----

struct Targets : SkeletonCommands {
    Targets() {
        joint = scene().CreateObject(XPhysicsJoint::TypeID);
        pull = scene().CreateObject(XPhysicsConstraint::TypeID, joint);
        handle = plain(L"handle", scene().RootObject(), {});
        shape = scene().CreateObject(XPrimitive::TypeID, handle);
        pull.TargetInputMatrix().ConnectInputTo(handle.WorldMatrix());
    }
    XObject source() const {
        return XMatrixConversion(handle.TranslationX().InputObject()).InputMatrix().InputObject();
    }
    bool isFree() const {
        for (int number = Translation; number < Rotation + 3; ++number)
            if (handle.Attribute(number).HasInput()) return false;
        return true;
    }

    XPhysicsJoint joint;
    XPhysicsConstraint pull;
    XTransform handle;
    XPrimitive shape;
};

TEST_F(Targets, TheJointItsConstraintItsTargetAndTheTargetsShapeMeanTheSame) {
    for (XObject const& way : {XObject(joint), XObject(pull), XObject(handle), XObject(shape)}) {
        select({way, prop});
        run(L"SetConstraintTarget");
        XMatrixConversion const conversion(handle.TranslationX().InputObject());
        EXPECT_EQ(conversion.Parent(), handle);
        EXPECT_EQ(conversion.InputMatrix().InputAttribute(), prop.WorldMatrix());
        EXPECT_TRUE(feeds(conversion, 18, handle, Translation) && feeds(conversion, 21, handle, Rotation));
        EXPECT_TRUE(isNear(handle.WorldTranslation(), prop.WorldTranslation()));
        select({way});
        run(L"ClearConstraintTarget");
        EXPECT_TRUE(isFree());
        EXPECT_FALSE(conversion.IsValid());
        EXPECT_TRUE(prop.IsValid());
    }
}

TEST_F(Targets, TheLastSelectedOneMustBeATransformAndNotTheOnlyOne) {
    for (Objects const& wrong :
         {Objects{}, Objects{joint}, Objects{joint, box}, Objects{prop, leg}, Objects{box, leg}}) {
        select(wrong);
        run(L"SetConstraintTarget");
        EXPECT_TRUE(isFree());
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Targets, ANewTargetTakesThePlaceOfTheOldOne) {
    select({joint, prop});
    run(L"SetConstraintTarget");
    XObject const first = handle.TranslationX().InputObject();
    select({joint, leg});
    run(L"SetConstraintTarget");
    EXPECT_EQ(source(), leg);
    EXPECT_FALSE(first.IsValid());
    undo();
    EXPECT_EQ(source(), prop);
}

TEST_F(Targets, OfATrajectoryItIsWhatMovesAlongIt) {
    XTrajectory const path(scene().CreateObject(XTrajectory::TypeID));
    pull.ConnectTarget(path);
    XMatrixConversion const conversion(handle.TranslationX().InputObject());
    EXPECT_EQ(conversion.InputMatrix().InputAttribute(), path.WorldCurveMatrix());
    pull.ConnectTarget(XTransform());
    EXPECT_EQ(source(), path);
    XPhysicsConstraint(scene().CreateObject(XPhysicsConstraint::TypeID)).ConnectTarget(prop);
    XPhysicsConstraint().DisconnectTarget();
    EXPECT_TRUE(log.entries.empty());
}

// ---- poles ----

struct Poles : SkeletonCommands {
    // The point's distance from the plane through three others.
    static float offPlane(XVector3 const& p, XVector3 const& a, XVector3 const& b, XVector3 const& c) {
        XVector3 normal = XVector3().CrossProduct(XVector3().Subtract(b, a), XVector3().Subtract(c, a));
        return XVector3().Subtract(p, a).DotProduct(normal.Normalize());
    }
};

TEST_F(Poles, AControlPoleKnowsTheJointThatBendsAndTheEnd) {
    for (bool fromTheTop : {true, false}) {
        build();
        select(fromTheTop ? Objects{hips, spine, chest} : Objects{spine, chest, hips});
        XPoleVector const pole(run(L"CreatePoleVector"));
        ASSERT_TRUE(pole.IsValid());
        EXPECT_EQ(pole.Name(), L"spine_controlPole");
        EXPECT_EQ(pole.ControlJoint().ObjectRef(), spine);
        EXPECT_EQ(pole.EndEffector().ObjectRef(), chest);
        EXPECT_EQ(pole.Parent(), scene().RootObject());
        EXPECT_EQ(selected(), Objects{pole});
    }
}

TEST_F(Poles, AReferencePoleKnowsTheJointAlone) {
    select({spine, scene().RootObject()});
    XPoleVector const pole(run(L"CreatePoleVector"));
    ASSERT_TRUE(pole.IsValid());
    EXPECT_EQ(pole.Name(), L"spine_referencePole");
    EXPECT_EQ(pole.ControlJoint().ObjectRef(), spine);
    EXPECT_FALSE(pole.EndEffector().ObjectRef().IsValid());
}

TEST_F(Poles, APoleFollowsItsReferentBelowTheTopOfTheChain) {
    select({hips, spine, chest});
    XPoleVector const pole(run(L"CreatePoleVector"));
    XKinematicsConstraint const constraint(pole.TranslationX().InputObject());
    ASSERT_TRUE(constraint.IsValid());
    EXPECT_EQ(constraint.InputMatrices().ArraySize(), 1);
    EXPECT_EQ(constraint.ParentWorldIn().InputAttribute(), pole.ParentWorldMatrix());
    EXPECT_TRUE(feeds(constraint, 10, pole, Translation));
    EXPECT_FALSE(pole.RotationX().HasInput());
    XTransform referent = pole.Referent();
    EXPECT_EQ(referent.Name(), L"spine_controlPole_referent");
    EXPECT_EQ(referent.Parent(), hips);
    hips.SetRotationEulerAngles(0.3f, 1, -0.2f);
    EXPECT_TRUE(isNear(pole.WorldTranslation(), referent.WorldTranslation()));
    referent.SetWorldTranslation(5, 6, 7);
    EXPECT_TRUE(isNear(pole.WorldTranslation(), XVector3(5, 6, 7)));
    EXPECT_FALSE(XPoleVector(scene().CreateObject(XPoleVector::TypeID)).Referent().IsValid());
    EXPECT_FALSE(XPoleVector().Referent().IsValid());
}

TEST_F(Poles, APoleStandsInThePlaneOfTheBonesOnTheSideToWhichTheyBend) {
    select({hips, spine, chest});
    XTransform const referent = XPoleVector(run(L"CreatePoleVector")).Referent();
    XVector3 const at = referent.WorldTranslation(), a = hips.WorldTranslation(), b = spine.WorldTranslation(),
                   c = chest.WorldTranslation();
    EXPECT_NEAR(offPlane(at, a, b, c), 0, 1e-5f);
    XVector3 const step = XVector3().Subtract(at, b), line = XVector3().Subtract(c, a);
    EXPECT_NEAR(step.DotProduct(line), 0, 1e-5f);
    EXPECT_GT(step.DotProduct(XVector3().Subtract(b, a)), 0) << "away from the line between the ends";
    EXPECT_NEAR(step.Magnitude(), (a.DistanceTo(b) + b.DistanceTo(c)) / 2, 1e-5f);
}

TEST_F(Poles, AStraightChainHasItsPoleAcrossTheLine) {
    for (XVector3 const& along : {XVector3(0, 1, 0), XVector3(0, 0, -2), XVector3(0.5f, 0.5f, 0.5f), XVector3()}) {
        XTransform const a = plain(L"a", scene().RootObject(), {1, 1, 1}), b = plain(L"b", a, along),
                         c = plain(L"c", b, along);
        select({a, b, c});
        XTransform const referent = XPoleVector(run(L"CreatePoleVector")).Referent();
        XVector3 const step = XVector3().Subtract(referent.WorldTranslation(), b.WorldTranslation());
        EXPECT_NEAR(step.DotProduct(along), 0, 1e-5f);
        float const length = along.Magnitude();
        EXPECT_NEAR(step.Magnitude(), length > 0 ? length : 1, 1e-5f);
    }
}

TEST_F(Poles, AnotherNumberOfTransformsIsToldAndNothingIsMade) {
    for (Objects const& wrong : {Objects{}, Objects{spine}, Objects{spine, box}, Objects{hips, spine, chest, leg}}) {
        log.clear();
        select(wrong);
        std::string const before = bytes();
        EXPECT_TRUE(runAll(L"CreatePoleVector").empty());
        EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Select 2 or 3 transforms"});
        EXPECT_TRUE(bytes() == before);
    }
}

TEST_F(Poles, TransformsOfTwoBranchesAreToldAndNothingIsMade) {
    for (Objects const& wrong : {Objects{spine, prop}, Objects{leg, spine}, Objects{hips, leg, spine}}) {
        log.clear();
        select(wrong);
        std::string const before = bytes();
        EXPECT_TRUE(runAll(L"CreatePoleVector").empty());
        EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Selected transforms must be in same hierarchy branch"});
        EXPECT_TRUE(bytes() == before);
    }
}

}  // namespace
}  // namespace Tavo
