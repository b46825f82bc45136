#include "tests/kinematics/transform_fixture.h"

namespace Tavo {
namespace {

using JointTest = TransformTest;

TEST_F(JointTest, ANewJointHasTheDefaultsOfItsType) {
    XJoint const j(scene().CreateObject(XJoint::TypeID));
    EXPECT_EQ(j.Name().substr(0, 5), L"joint");
    EXPECT_EQ(j.BoneRadius().Float(), 0.008F);
    EXPECT_EQ(j.LocatorRadius().Float(), 0.015F);
    EXPECT_EQ(j.BoneStyle().Enumeration(), 0);
    EXPECT_EQ(j.AxesStyle().Enumeration(), 0);
    EXPECT_EQ(j.LocatorStyle().Enumeration(), 2);
    EXPECT_EQ(j.ColourValue(), XJoint::DefaultBoneColour);
    EXPECT_TRUE(j.Visible().Boolean());
    EXPECT_TRUE(j.LocalMatrix().Matrix().IsIdentity());
}

TEST_F(JointTest, AJointKnowsItsJointsAboveAndBelow) {
    XJoint const child(scene().CreateObject(XJoint::TypeID, joint));
    scene().CreateObject(XTransform::TypeID, joint);
    EXPECT_TRUE(child.ParentJoint() == joint);
    EXPECT_TRUE(child.ParentJoint().IsValid());
    EXPECT_FALSE(joint.ParentJoint().IsValid()) << "a plain transform";
    EXPECT_EQ(joint.ChildJointCount(), 1);
    EXPECT_FALSE(joint.IsTerminatingJoint());
    EXPECT_TRUE(child.IsTerminatingJoint());
}

TEST_F(JointTest, OnlyAJointNodeMakesAValidJoint) {
    EXPECT_TRUE(joint.IsValid());
    EXPECT_FALSE(XJoint(parent).IsValid());
    EXPECT_TRUE(XTransform(joint).IsValid());
}

}  // namespace
}  // namespace Tavo
