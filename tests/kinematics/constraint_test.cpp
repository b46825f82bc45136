// The handles of constraints: what they are, and how they wire a transform to its targets.
#include "tests/kinematics/skeleton_fixture.h"
#include "tests/objects/typed_object.h"

namespace Tavo {
namespace {

struct Constraints : SkeletonTest {
    Constraints() {
        constraint = scene().CreateObject(XKinematicsConstraint::TypeID);
        follower = scene().CreateObject(XTransform::TypeID);
        a = scene().CreateObject(XTransform::TypeID);
        b = scene().CreateObject(XTransform::TypeID);
        a.SetTranslation(1, 2, 3);
        b.SetTranslation(3, 4, 7);
    }
    XAttribute target(int i) const { return constraint.InputMatrices().Attribute(i); }
    float weight(int i) const { return target(i).Attribute(2).Float(); }
    std::vector<XObject> targets() const {
        std::vector<XObject> found;
        for (int i = 0; i < constraint.InputMatrices().ArraySize(); ++i)
            found.push_back(target(i).Attribute(0).InputObject());
        return found;
    }
    XMatrixConversion conversion() const {
        return XMatrixConversion(constraint.FindChildObject(XMatrixConversion::TypeID, IsObjectType));
    }
    static constexpr int SplitTranslation = 18, SplitRotation = 21;
    using Objects = std::vector<XObject>;

    XKinematicsConstraint constraint;
    XTransform follower, a, b;
};

TEST_F(Constraints, AreValidOnTheirOwnNodesAlone) {
    expectType<XKinematicsConstraint>(scene(), L"KinematicsConstraint", L"KinematicsConstraint");
    expectType<XAimConstraint>(scene(), L"AimConstraint", L"AimConstraint");
}

// clang-format off
TEST_F(Constraints, HaveTheirAttributesAtTheirNumbers) {
    XKinematicsConstraint const o = constraint;
    expectNumbers(o, {
        TAVO_NUMBER(o, 8, InputMatrices), TAVO_NUMBER(o, 9, ParentWorldIn), TAVO_NUMBER(o, 10, LocalTranslationOutX),
        TAVO_NUMBER(o, 11, LocalTranslationOutY), TAVO_NUMBER(o, 12, LocalTranslationOutZ),
        TAVO_NUMBER(o, 13, LocalRotationOutX), TAVO_NUMBER(o, 14, LocalRotationOutY),
        TAVO_NUMBER(o, 15, LocalRotationOutZ), TAVO_NUMBER(o, 16, LocalMatrix), TAVO_NUMBER(o, 17, NormalizeWeights),
    });
    XAimConstraint const aim(scene().CreateObject(XAimConstraint::TypeID));
    expectNumbers(aim, {
        TAVO_NUMBER(aim, 8, WorldIn), TAVO_NUMBER(aim, 9, UpVectorIn), TAVO_NUMBER(aim, 10, ParentWorldIn),
        TAVO_NUMBER(aim, 11, LocalEulerOutX), TAVO_NUMBER(aim, 12, LocalEulerOutY),
        TAVO_NUMBER(aim, 13, LocalEulerOutZ),
    });
}
// clang-format on

// ---- targets ----

TEST_F(Constraints, EachTargetIsConnectedByItsWorldMatrixAndAllCountEqually) {
    constraint.AddTarget(a);
    EXPECT_EQ(target(0).Attribute(0).InputAttribute(), a.WorldMatrix());
    EXPECT_EQ(weight(0), 1);
    constraint.AddTarget(b).AddTarget(hips);
    EXPECT_EQ(targets(), (Objects{a, b, hips}));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(weight(i), 1 / 3.F);
}

TEST_F(Constraints, AnInvalidTargetIsNone) {
    constraint.AddTarget(XTransform()).AddTarget(a);
    EXPECT_EQ(targets(), Objects{a});
    EXPECT_EQ(weight(0), 1);
    XKinematicsConstraint().AddTarget(a).ClearTargets();
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Constraints, ClearedTargetsAreNotConnectedAnyMore) {
    constraint.AddTarget(a).AddTarget(b).ClearTargets();
    EXPECT_EQ(constraint.InputMatrices().ArraySize(), 0);
    EXPECT_FALSE(a.WorldMatrix().HasOutput() || b.WorldMatrix().HasOutput());
    constraint.AddTarget(b);
    EXPECT_EQ(targets(), Objects{b});
}

TEST_F(Constraints, ADeletedConstraintLeavesItsTargetsAndWhatFollowedThem) {
    constraint.Constrain(follower, {a, b});
    XMatrixConversion const made = conversion();
    constraint.Delete();
    EXPECT_FALSE(made.IsValid());
    EXPECT_TRUE(a.IsValid() && b.IsValid() && follower.IsValid());
    EXPECT_TRUE(isFree(follower, Translation) && isFree(follower, Rotation));
}

// ---- constraining ----

TEST_F(Constraints, AConstrainedTransformIsDrivenThroughAConversionOfTheConstraint) {
    int const count = objectCount();
    constraint.Constrain(follower, {b, a});
    EXPECT_EQ(objectCount(), count + 1);
    EXPECT_EQ(targets(), (Objects{b, a}));
    EXPECT_EQ(constraint.ParentWorldIn().InputAttribute(), follower.ParentWorldMatrix());
    XMatrixConversion const split = conversion();
    ASSERT_TRUE(split.IsValid());
    EXPECT_EQ(split.Parent(), constraint);
    EXPECT_EQ(split.InputMatrix().InputAttribute(), constraint.LocalMatrix());
    EXPECT_TRUE(feeds(follower, PreTranslation, split, 9));
    EXPECT_TRUE(feeds(follower, PreRotation, split, 12));
    EXPECT_TRUE(feeds(follower, PostRotation, split, 15));
    EXPECT_TRUE(feeds(split, SplitTranslation, follower, Translation));
    EXPECT_TRUE(feeds(split, SplitRotation, follower, Rotation));
}

TEST_F(Constraints, OneTargetIsAListOfOne) {
    constraint.Constrain(follower, a);
    EXPECT_EQ(targets(), Objects{a});
    EXPECT_TRUE(feeds(conversion(), SplitTranslation, follower, Translation));
}

TEST_F(Constraints, OnlyWhatIsLockedIsDriven) {
    constraint.Constrain(follower, a, true, false);
    EXPECT_TRUE(feeds(conversion(), SplitTranslation, follower, Translation));
    EXPECT_TRUE(isFree(follower, Rotation));
    XKinematicsConstraint other(scene().CreateObject(XKinematicsConstraint::TypeID));
    other.Constrain(a, b, false, true);
    EXPECT_TRUE(isFree(a, Translation));
    EXPECT_EQ(a.RotationZ().InputObject().Parent(), other);
}

TEST_F(Constraints, WithoutALockATargetOrATransformNothingHappens) {
    constraint.AddTarget(hips);
    int const count = objectCount();
    constraint.Constrain(follower, a, false, false);
    constraint.Constrain(follower, Qelutils::Vector<XTransform>());
    constraint.Constrain(XTransform(), a);
    XKinematicsConstraint().Constrain(follower, a);
    EXPECT_EQ(targets(), Objects{hips});
    EXPECT_EQ(objectCount(), count);
    EXPECT_FALSE(constraint.ParentWorldIn().HasInput());
    EXPECT_TRUE(isFree(follower, Translation) && isFree(follower, Rotation));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Constraints, WhatIsDrivenAlreadyIsNotTakenOver) {
    XAnimation const curve = follower.RotationX().CreateAnimation();
    constraint.Constrain(follower, a);
    EXPECT_TRUE(feeds(conversion(), SplitTranslation, follower, Translation));
    EXPECT_EQ(follower.RotationX().InputObject(), curve);
    EXPECT_FALSE(follower.RotationY().HasInput() || follower.RotationZ().HasInput());

    XKinematicsConstraint other(scene().CreateObject(XKinematicsConstraint::TypeID));
    b.TranslationZ().CreateAnimation();
    other.Constrain(b, a);
    EXPECT_FALSE(b.TranslationX().HasInput() || b.TranslationY().HasInput());
    EXPECT_TRUE(b.RotationX().HasInput() && b.RotationZ().HasInput());
}

TEST_F(Constraints, ConstrainingReplacesTheTargetsAndSkipsInvalidOnes) {
    constraint.AddTarget(hips);
    constraint.Constrain(follower, {a, XTransform(), b});
    EXPECT_EQ(targets(), (Objects{a, b}));
    EXPECT_EQ(weight(0), 0.5F);
    EXPECT_EQ(weight(1), 0.5F);
}

TEST_F(Constraints, AConstraintIsUndoneInOneStep) {
    inBlock([&] { constraint.Constrain(follower, {a, b}); });
    scene().Undo();
    EXPECT_TRUE(isFree(follower, Translation) && isFree(follower, Rotation));
    EXPECT_EQ(constraint.InputMatrices().ArraySize(), 0);
    EXPECT_FALSE(conversion().IsValid());
    scene().Redo();
    EXPECT_EQ(targets(), (Objects{a, b}));
    EXPECT_TRUE(feeds(conversion(), SplitRotation, follower, Rotation));
}

}  // namespace
}  // namespace Tavo
