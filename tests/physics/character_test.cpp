// The physics skeleton of a character: twins, what edits act on, and the two modes.
#include "tests/kinematics/skeleton_fixture.h"

namespace Tavo {
namespace {

struct PhysicsCharacters : SkeletonTest {
    PhysicsCharacters() {
        character = hips.Characterize();
        physicsHips = twin(L"hips", character.PhysicsCharacter(), hips);
        physicsSpine = twin(L"spine", physicsHips, spine);
    }
    static XPhysicsJoint twin(std::wstring const& name, XObject const& above, XJoint const& of) {
        XPhysicsJoint joint(scene().CreateObject(XPhysicsJoint::TypeID, above));
        joint.SetName(name);
        joint.SetWorldMatrix(world(of));
        XKinematicsConstraint(scene().CreateObject(XKinematicsConstraint::TypeID)).Constrain(joint, of);
        return joint;
    }
    XTransform moved(XTransform part) {
        character.OnBeginMove(part);
        return part;
    }
    XTransform turned(XTransform part) {
        character.OnBeginRotate(part);
        return part;
    }
    XTransform scaled(XTransform part) {
        character.OnBeginScale(part);
        return part;
    }
    // The object whose constraint drives the channel.
    static XObject driver(XAttribute const& channel) {
        XMatrixConversion const conversion(channel.InputObject());
        XKinematicsConstraint const constraint(conversion.InputMatrix().InputObject());
        return constraint.InputMatrices().Attribute(0).Attribute(0).InputObject();
    }

    XCharacter character;
    XPhysicsJoint physicsHips, physicsSpine;
};

// ---- twins ----

TEST_F(PhysicsCharacters, TwinsAreFoundByTheirPaths) {
    EXPECT_EQ(character.EquivalentPhysicsJoint(hips), physicsHips);
    EXPECT_EQ(character.EquivalentPhysicsJoint(spine), physicsSpine);
    EXPECT_EQ(character.EquivalentKinematicsJoint(physicsHips), hips);
    EXPECT_EQ(character.EquivalentKinematicsJoint(physicsSpine), spine);
}

TEST_F(PhysicsCharacters, WithoutATwinThereIsNoneAndNoMessage) {
    EXPECT_FALSE(character.EquivalentPhysicsJoint(chest).IsValid());
    EXPECT_FALSE(character.EquivalentPhysicsJoint(joint).IsValid()) << "outside any character";
    EXPECT_FALSE(character.EquivalentPhysicsJoint(XJoint()).IsValid());
    EXPECT_FALSE(character.EquivalentKinematicsJoint(XPhysicsJoint()).IsValid());
    EXPECT_FALSE(XCharacter().EquivalentPhysicsJoint(hips).IsValid());
    physicsSpine.SetName(L"other");
    EXPECT_FALSE(character.EquivalentKinematicsJoint(physicsSpine).IsValid());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(PhysicsCharacters, OnlyTheFirstWordOfThePathIsReplaced) {
    XJoint const named = make(L"kinematics", hips, {1, 0, 0});
    XPhysicsJoint const kept = twin(L"kinematics", physicsHips, named);
    EXPECT_EQ(character.EquivalentPhysicsJoint(named), kept);
    XPhysicsJoint const other = twin(L"physics", physicsHips, named);
    EXPECT_EQ(other.Name(), L"physics");
    EXPECT_FALSE(character.EquivalentKinematicsJoint(other).IsValid()) << "there is no kinematic joint 'physics'";
}

TEST_F(PhysicsCharacters, TheJointThatDrivesTheTargetOfAConstraintGoesBeforeThePath) {
    XPhysicsConstraint const pull(scene().CreateObject(XPhysicsConstraint::TypeID, physicsSpine));
    XTransform const handle(scene().CreateObject(XTransform::TypeID));
    XMatrixConversion const conversion(scene().CreateObject(XMatrixConversion::TypeID, handle));
    EXPECT_EQ(physicsSpine.PhysicsConstraint(), pull);
    EXPECT_FALSE(pull.PhysicsConstraintTarget().IsValid());
    EXPECT_EQ(character.EquivalentKinematicsJoint(physicsSpine), spine);
    pull.TargetInputMatrix().ConnectInputTo(handle.WorldMatrix());
    EXPECT_EQ(pull.PhysicsConstraintTarget(), handle);
    handle.TranslationX().ConnectInputTo(conversion.TranslationX());
    EXPECT_EQ(character.EquivalentKinematicsJoint(physicsSpine), spine);
    conversion.InputMatrix().ConnectInputTo(leg.WorldMatrix());
    EXPECT_EQ(character.EquivalentKinematicsJoint(physicsSpine), leg);
}

// ---- what an edit acts on ----

TEST_F(PhysicsCharacters, TheCharacterAndItsPartsStandForTheRootAlsoWhenItIsEditable) {
    for (bool editable : {false, true}) {
        character.IsEditable().SetBoolean(editable);
        for (XTransform const& whole : {XTransform(character), XTransform(character.KinematicsCharacter()),
                                        XTransform(character.PhysicsCharacter())}) {
            EXPECT_EQ(moved(whole), hips);
            EXPECT_EQ(turned(whole), hips);
            EXPECT_EQ(scaled(whole), hips);
        }
    }
}

TEST_F(PhysicsCharacters, PartsOfAnEditableCharacterAreEditedThemselves) {
    character.IsEditable().SetBoolean(true);
    XTransform const body(scene().CreateObject(XTransform::TypeID, physicsSpine));
    for (XTransform const& part : {XTransform(chest), XTransform(physicsSpine), body}) {
        EXPECT_EQ(moved(part), part);
        EXPECT_EQ(turned(part), part);
        EXPECT_EQ(scaled(part), part);
    }
}

TEST_F(PhysicsCharacters, ASkeletonMovesAsAWhole) {
    XPhysicsJointLimit const physicsLimit(scene().CreateObject(XPhysicsJointLimit::TypeID));
    physicsLimit.JointReference().SetObjectRef(physicsSpine);
    XTransform const body(scene().CreateObject(XTransform::TypeID, physicsSpine));
    for (XTransform const& part : {XTransform(chest), XTransform(spine.CreateJointLimit()), XTransform(physicsSpine),
                                   XTransform(physicsLimit), body})
        EXPECT_EQ(moved(part), hips) << Qelutils::toUtf8(part.Path());
}

TEST_F(PhysicsCharacters, APhysicsPartIsTurnedAsItsTwinAndAKinematicOneAsItself) {
    XPhysicsJointLimit const physicsLimit(scene().CreateObject(XPhysicsJointLimit::TypeID));
    physicsLimit.JointReference().SetObjectRef(physicsSpine);
    XTransform const body(scene().CreateObject(XTransform::TypeID, physicsSpine));
    for (XTransform const& part : {XTransform(physicsSpine), XTransform(physicsLimit), body})
        EXPECT_EQ(turned(part), spine);
    EXPECT_EQ(turned(chest), chest);
    XJointLimit const limit = spine.CreateJointLimit();
    EXPECT_EQ(turned(limit), limit);
}

TEST_F(PhysicsCharacters, ASkeletonIsNotScaled) {
    EXPECT_FALSE(scaled(chest).IsValid());
    EXPECT_FALSE(scaled(physicsSpine).IsValid());
    EXPECT_FALSE(scaled(spine.CreateJointLimit()).IsValid());
}

TEST_F(PhysicsCharacters, WhatIsNoPartOfASkeletonStays) {
    XTransform const other(scene().CreateObject(XTransform::TypeID, chest));
    EXPECT_EQ(moved(other), other);
    EXPECT_EQ(turned(other), other);
    EXPECT_EQ(scaled(other), other);
    XTransform part = chest;
    XCharacter().OnBeginMove(part);
    XCharacter().OnBeginRotate(part);
    XCharacter().OnBeginScale(part);
    EXPECT_EQ(part, chest);
}

TEST_F(PhysicsCharacters, KeysAreSetOnWhatTheEditActsOn) {
    scene().SetActiveTool(3u);
    chest.AutoSetKeyframe();
    EXPECT_TRUE(hips.TranslationX().IsAnimated());
    EXPECT_FALSE(chest.TranslationX().IsAnimated());
    scene().SetActiveTool(4u);
    physicsSpine.AutoSetKeyframe();
    EXPECT_TRUE(spine.RotationX().IsAnimated());
    scene().SetActiveTool(5u);
    chest.AutoSetKeyframe();
    EXPECT_FALSE(chest.ScaleX().IsAnimated() || hips.ScaleX().IsAnimated());
    character.IsEditable().SetBoolean(true);
    chest.AutoSetKeyframe();
    EXPECT_TRUE(chest.ScaleX().IsAnimated());
    EXPECT_EQ(chest.Name(), L"chest") << "the handle stays its own";
}

// ---- modes ----

TEST_F(PhysicsCharacters, ForASimulationThePhysicsSkeletonIsFreeAndHasUniformKeys) {
    EXPECT_EQ(driver(physicsSpine.TranslationX()), spine);
    int const steps = undoCount();
    scene().CommitTransient();
    character.SetSimulationMode();
    EXPECT_LE(undoCount(), steps + 2);
    for (XPhysicsJoint const& each : {physicsHips, physicsSpine}) {
        XAnimation const curve = each.TranslationX().Animation();
        ASSERT_TRUE(curve.IsValid() && each.RotationZ().Animation().IsValid());
        EXPECT_EQ(curve.KeyframeCount(), 181) << "three seconds at sixty steps";
    }
    EXPECT_FALSE(spine.TranslationX().HasInput());
}

TEST_F(PhysicsCharacters, InteractivelyThePhysicsSkeletonFollowsTheKinematicOneAgain) {
    character.SetSimulationMode();
    int const count = objectCount();
    character.SetInteractiveMode();
    for (auto const& [each, of] : {std::pair(physicsHips, hips), std::pair(physicsSpine, spine)})
        for (XAttribute const& channel : {each.TranslationX(), each.TranslationZ(), each.RotationX(), each.RotationZ()})
            EXPECT_EQ(driver(channel), of);
    EXPECT_LT(objectCount(), count) << "the curves are gone, and no conversion is left over";
    int const again = objectCount();
    character.SetInteractiveMode();
    EXPECT_EQ(objectCount(), again);
}

TEST_F(PhysicsCharacters, AJointWithoutATwinIsSimulatedAndNotTied) {
    XPhysicsJoint const alone(scene().CreateObject(XPhysicsJoint::TypeID, physicsSpine));
    character.SetSimulationMode();
    EXPECT_TRUE(alone.TranslationX().IsAnimated());
    character.SetInteractiveMode();
    EXPECT_TRUE(alone.TranslationX().IsAnimated()) << "it has nothing to go back to";
}

TEST_F(PhysicsCharacters, AModeIsUndoneInOneStep) {
    scene().CommitTransient();
    int const steps = undoCount();
    character.SetSimulationMode();
    EXPECT_EQ(undoCount(), steps + 1);
    scene().Undo();
    EXPECT_EQ(driver(physicsSpine.RotationY()), spine);
    EXPECT_FALSE(physicsHips.TranslationX().Animation().IsValid());
}

}  // namespace
}  // namespace Tavo
