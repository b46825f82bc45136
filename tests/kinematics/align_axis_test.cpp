#include "tests/kinematics/transform_fixture.h"

namespace Tavo {
namespace {

struct AlignAxisTest : TransformTest {
    AlignAxisTest() {
        first = scene().CreateObject(XJoint::TypeID, joint);
        second = scene().CreateObject(XJoint::TypeID, joint);
        grandchild = scene().CreateObject(XJoint::TypeID, first);
        joint.SetTranslation(1, 1, 1).SetRotationEulerAngles(0.2F, 0.3F, 0.4F);
        first.SetTranslation(1, 2, 0.5F).SetRotationEulerAngles(0.5F, 0, 0);
        second.SetTranslation(-1, 1, 2);
        grandchild.SetTranslation(0, 1, 0);
    }
    XVector3 towards(XVector3 const& target) const {
        return XVector3().Subtract(target, joint.WorldTranslation()).Normalize();
    }
    XJoint first, second, grandchild;
};

TEST_F(AlignAxisTest, EachAxisPointsAtTheFirstChildAndNothingBelowMoves) {
    for (int axis = 0; axis < 3; ++axis) {
        XMatrix const a = first.WorldMatrix().Matrix(), b = second.WorldMatrix().Matrix(),
                      c = grandchild.WorldMatrix().Matrix();
        XVector3 const position = joint.WorldTranslation();
        joint.AlignAxis(XDirection(axis), AlignToFirstChild);
        XMatrix const world = joint.WorldMatrix().Matrix();
        XVector3 const axes[] = {world.XAxis(), world.YAxis(), world.ZAxis()};
        EXPECT_VECTOR(axes[axis], towards(first.WorldTranslation()));
        EXPECT_VECTOR(joint.WorldTranslation(), position);
        EXPECT_MATRIX(first.WorldMatrix().Matrix(), a);
        EXPECT_MATRIX(second.WorldMatrix().Matrix(), b);
        EXPECT_MATRIX(grandchild.WorldMatrix().Matrix(), c);
        EXPECT_EQ(joint.RotationX().Float(), 0) << "frozen";
    }
}

TEST_F(AlignAxisTest, TheAverageOfTheChildrenIsTheOtherTarget) {
    joint.AlignAxis(L"YAxis", AlignToChildAverage);
    XVector3 const middle = XVector3().Add(first.WorldTranslation(), second.WorldTranslation()).Scale(0.5F);
    EXPECT_VECTOR(joint.WorldMatrix().Matrix().YAxis(), towards(middle));
}

TEST_F(AlignAxisTest, AnyOtherModeAimsAtTheOrigin) {
    joint.AlignAxis(XAxis, XPlane);
    EXPECT_VECTOR(joint.WorldMatrix().Matrix().XAxis(), towards(XVector3()));
}

TEST_F(AlignAxisTest, AnUnknownAxisDoesNothing) {
    XMatrix const before = joint.WorldMatrix().Matrix();
    joint.AlignAxis(L"WAxis", AlignToFirstChild);
    EXPECT_MATRIX(joint.WorldMatrix().Matrix(), before);
    EXPECT_NE(joint.RotationX().Float(), 0);
}

TEST_F(AlignAxisTest, WithoutChildrenNothingChangesAndAnimationStays) {
    grandchild.SetRotationEulerAngles(0.1F, 0, 0);
    joint.TranslationX().SetKeyframe(0, 1);
    grandchild.AlignAxis(XAxis, AlignToFirstChild);
    EXPECT_EQ(grandchild.RotationX().Float(), 0.1F);
    EXPECT_TRUE(joint.TranslationX().IsAnimated());
}

TEST_F(AlignAxisTest, AnAxisThatPointsThereAlreadyIsNotFrozen) {
    XTransform root(scene().CreateObject(XTransform::TypeID));
    XTransform(scene().CreateObject(XTransform::TypeID, root)).SetTranslation(2, 0, 0);
    root.SetRotationEulerAngles(3.1415927F / 2, 0, 0).AlignAxis(XAxis, AlignToFirstChild);
    EXPECT_NE(root.RotationX().Float(), 0);
}

TEST_F(AlignAxisTest, TheHierarchyLosesItsAnimation) {
    parent.TranslationX().SetKeyframe(0, 1);
    grandchild.TranslationX().SetKeyframe(0, 1);
    joint.AlignAxis(XAxis, AlignToFirstChild);
    EXPECT_FALSE(parent.IsAnimated());
    EXPECT_FALSE(grandchild.IsAnimated());
}

TEST_F(AlignAxisTest, ATransformFedByAMatrixIsLeftAlone) {
    joint.TransformDataSource().SetEnumeration(XTransform::LocalMatrixSource);
    parent.TranslationX().SetKeyframe(0, 1);
    joint.AlignAxis(XAxis, AlignToFirstChild);
    EXPECT_TRUE(parent.IsAnimated());
    EXPECT_NE(joint.RotationX().Float(), 0);
}

TEST_F(AlignAxisTest, InvalidEntriesOfTheAverageAreSkippedButCounted) {
    XVector3 const sum = first.WorldTranslation();
    EXPECT_VECTOR(XTransform::calculateAverageTranslation({first, XObject()}), XVector3(sum).Scale(0.5F));
    EXPECT_VECTOR(XTransform::calculateAverageTranslation({}), XVector3());
}

}  // namespace
}  // namespace Tavo
