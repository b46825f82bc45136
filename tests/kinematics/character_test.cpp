// Characters and what stands in them; making a character of a skeleton.
#include "tests/kinematics/skeleton_fixture.h"
#include "tests/objects/typed_object.h"

namespace Tavo {
namespace {

struct Characters : SkeletonTest {
    static std::vector<XObject> children(XObject const& object) {
        Qelutils::Vector<XObject> out;
        object.ChildObjects(out);
        return {out.begin(), out.end()};
    }
};

TEST_F(Characters, TheKinematicPartIsATypeOfItsOwn) {
    expectType<XKinematicsCharacter>(scene(), L"KinematicsCharacter", L"KinematicsCharacter");
    XKinematicsCharacter const part(scene().CreateObject(XKinematicsCharacter::TypeID));
    EXPECT_EQ(part.Name(), L"kinematics1") << "the second of its kind";
    EXPECT_EQ(part.ColourValue(), XJoint::DefaultBoneColour);
    EXPECT_TRUE(part.LocalMatrix().Matrix().IsIdentity());
}

// ---- making ----

TEST_F(Characters, ANewCharacterHasItsTwoPartsAndTheSkeletonInOne) {
    XCharacter const character = hips.Characterize();
    ASSERT_TRUE(character.IsValid());
    EXPECT_EQ(character.Name(), L"character");
    EXPECT_EQ(character.Parent(), scene().RootObject());
    EXPECT_FALSE(character.IsEditable().Boolean());
    EXPECT_TRUE(character.Visible().Boolean());
    EXPECT_TRUE(character.LocalMatrix().Matrix().IsIdentity());
    XKinematicsCharacter const kinematics = character.KinematicsCharacter();
    XPhysicsCharacter const physics = character.PhysicsCharacter();
    EXPECT_EQ(children(character), (std::vector<XObject>{kinematics, physics}));
    EXPECT_EQ(kinematics.Name(), L"kinematics");
    EXPECT_EQ(physics.Name(), L"physics");
    EXPECT_EQ(kinematics.ColourValue(), XJoint::DefaultBoneColour);
    EXPECT_EQ(physics.ColourValue(), XPhysicsJoint::DefaultColour);
    EXPECT_EQ(children(kinematics), std::vector<XObject>{hips});
    EXPECT_TRUE(children(physics).empty());
}

TEST_F(Characters, WhatBecomesOneStaysWhereItIs) {
    hips.RotationEulerOrder().SetEnumeration(4);
    XMatrix const before = world(chest), local = world(hips);
    XVector3 const angles(hips.RotationX().Float(), hips.RotationY().Float(), hips.RotationZ().Float());
    hips.Characterize();
    EXPECT_EQ(numbers(world(chest)), numbers(before));
    EXPECT_EQ(numbers(world(hips)), numbers(local));
    EXPECT_EQ(XVector3(hips.RotationX().Float(), hips.RotationY().Float(), hips.RotationZ().Float()), angles);
    XMatrix const under = world(leg);
    EXPECT_EQ(leg.Characterize(), hips.Character()) << "it stands in one";
    EXPECT_EQ(numbers(world(leg)), numbers(under));
}

TEST_F(Characters, WhatStoodBelowSomethingKeepsItsPlaceInTheWorld) {
    XMatrix const before = world(spine);
    XCharacter const character = spine.Characterize();
    EXPECT_EQ(spine.Parent(), character.KinematicsCharacter());
    EXPECT_MATRIX(world(spine), before);
    EXPECT_FALSE(hips.Character().IsValid());
}

TEST_F(Characters, WhatStoodAtTheOriginBelowSomethingThatWasMovedStaysToo) {
    scene().RootObject().SetTranslation(1, 0, 0);
    XTransform back(scene().CreateObject(XTransform::TypeID));
    back.SetTranslation(-1, 0, 0);
    XTransform child(scene().CreateObject(XTransform::TypeID, back));
    child.Characterize();
    EXPECT_TRUE(world(child).IsIdentity());
}

TEST_F(Characters, ASecondTimeGivesTheSameCharacter) {
    XCharacter const character = hips.Characterize();
    int const count = objectCount();
    EXPECT_EQ(hips.Characterize(), character);
    EXPECT_EQ(chest.Characterize(), character);
    EXPECT_EQ(XTransform(character).Characterize(), character);
    EXPECT_EQ(character.KinematicsCharacter().Characterize(), character);
    EXPECT_EQ(objectCount(), count);
    EXPECT_EQ(children(character.KinematicsCharacter()), std::vector<XObject>{hips});
}

TEST_F(Characters, APhysicsJointGoesToThePhysicsPart) {
    XPhysicsJoint joint(scene().CreateObject(XPhysicsJoint::TypeID));
    XCharacter const character = XTransform(joint).Characterize();
    EXPECT_EQ(joint.Parent(), character.PhysicsCharacter());
    EXPECT_TRUE(children(character.KinematicsCharacter()).empty());
}

TEST_F(Characters, TheOriginAndWhatIsInvalidBecomeNoCharacter) {
    int const count = objectCount();
    EXPECT_FALSE(scene().RootObject().Characterize().IsValid());
    EXPECT_FALSE(XTransform().Characterize().IsValid());
    EXPECT_EQ(objectCount(), count);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Characters, MakingOneIsUndoneToTheWay) {
    XMatrix const before = world(chest);
    XCharacter character;
    inBlock([&] { character = hips.Characterize(); });
    scene().Undo();
    EXPECT_FALSE(character.IsValid());
    EXPECT_EQ(hips.Parent(), scene().RootObject());
    EXPECT_EQ(numbers(world(chest)), numbers(before));
    scene().Redo();
    EXPECT_EQ(hips.Character(), character);
}

// ---- finding ----

TEST_F(Characters, EverythingInOneKnowsIt) {
    EXPECT_FALSE(chest.Character().IsValid());
    XCharacter const character = hips.Characterize();
    XAnimation const curve = chest.RotationX().CreateAnimation();
    for (XObject const& part :
         {XObject(character), XObject(character.PhysicsCharacter()), XObject(hips), XObject(chest), XObject(curve)})
        EXPECT_EQ(part.Character(), character) << Qelutils::toUtf8(part.Name());
    EXPECT_FALSE(scene().RootObject().Character().IsValid());
    EXPECT_FALSE(XObject().Character().IsValid());
}

TEST_F(Characters, TheEnvironmentIsKnownByItsName) {
    XCharacter character = hips.Characterize();
    EXPECT_FALSE(character.IsEnvironmentCharacter());
    character.SetName(L"environment");
    EXPECT_TRUE(character.IsEnvironmentCharacter());
    EXPECT_FALSE(XCharacter().IsEnvironmentCharacter());
}

TEST_F(Characters, TheRootIsTheFirstJointAndElseTheFirstPlainTransform) {
    XCharacter const character = hips.Characterize();
    XKinematicsCharacter const kinematics = character.KinematicsCharacter();
    EXPECT_EQ(kinematics.CharacterRoot(), hips);
    XTransform plain(scene().CreateObject(XTransform::TypeID, kinematics));
    XCamera camera(scene().CreateObject(XCamera::TypeID, kinematics));
    XPhysicsJoint physical(scene().CreateObject(XPhysicsJoint::TypeID, kinematics));
    EXPECT_EQ(kinematics.CharacterRoot(), hips);
    hips.SetParent(scene().RootObject());
    EXPECT_EQ(kinematics.CharacterRoot(), plain) << "a derived type is no joint here";
    plain.Delete();
    EXPECT_FALSE(kinematics.CharacterRoot().IsValid());
    EXPECT_FALSE(XKinematicsCharacter().CharacterRoot().IsValid());
}

// ---- joints in one ----

TEST_F(Characters, AJointIsTheRootOrAnEndOrBetween) {
    EXPECT_FALSE(hips.IsCharacterRootJoint());
    EXPECT_TRUE(hips.IsIntermediateJoint()) << "without a character there is no root";
    hips.Characterize();
    struct Row {
        XJoint joint;
        bool isRoot, isEnd, isBetween;
    };
    for (Row const& row :
         {Row{hips, true, false, false}, Row{spine, false, false, true}, Row{chest, false, true, false}}) {
        EXPECT_EQ(row.joint.IsCharacterRootJoint(), row.isRoot);
        EXPECT_EQ(row.joint.IsTerminatingJoint(), row.isEnd);
        EXPECT_EQ(row.joint.IsIntermediateJoint(), row.isBetween);
    }
}

TEST_F(Characters, TheRootTerminatesNothingAlsoWhenItIsAlone) {
    XJoint alone = make(L"alone", scene().RootObject(), {});
    EXPECT_TRUE(alone.IsTerminatingJoint());
    alone.Characterize();
    EXPECT_TRUE(alone.IsCharacterRootJoint());
    EXPECT_FALSE(alone.IsTerminatingJoint() || alone.IsIntermediateJoint());
}

TEST_F(Characters, AChildOfADerivedTypeDoesNotCount) {
    scene().CreateObject(XPhysicsJoint::TypeID, chest);
    EXPECT_EQ(chest.ChildJointCount(), 0);
    EXPECT_TRUE(chest.IsTerminatingJoint());
}

TEST_F(Characters, AnInvalidJointIsNoRoot) {
    EXPECT_FALSE(XJoint().IsCharacterRootJoint());
    EXPECT_TRUE(XCharacter().SetInteractiveMode().SetSimulationMode() == XCharacter());
}

}  // namespace
}  // namespace Tavo
