// What handles wire, the graph evaluates: followers follow, and the frames of limits are where they are said to be.
#include "tests/kinematics/skeleton_fixture.h"
#include <cmath>

namespace Tavo {
namespace {

struct ConstraintEvaluation : SkeletonTest {
    ConstraintEvaluation() {
        constraint = scene().CreateObject(XKinematicsConstraint::TypeID);
        follower = scene().CreateObject(XTransform::TypeID, parent);
        for (XTransform* target : {&a, &b}) {
            *target = scene().CreateObject(XTransform::TypeID);
            target->SetWorldMatrix(place());
        }
    }
    static XMatrix rotation(XMatrix m) { return m.SetTranslation(XVector3()); }
    static XVector3 mean(XTransform const& a, XTransform const& b) {
        return XVector3().Add(a.WorldTranslation(), b.WorldTranslation()).Scale(0.5F);
    }

    XKinematicsConstraint constraint;
    XTransform follower, a, b;
};

// ---- following ----

TEST_F(ConstraintEvaluation, AFollowerStandsWhereItsTargetStandsWhateverItsPlaceOfRest) {
    offset(follower);
    constraint.Constrain(follower, a);
    for (int i = 0; i < 5; ++i) {
        a.SetWorldMatrix(place());
        EXPECT_MATRIX(world(follower), world(a));
        offset(follower);
        parent.SetWorldMatrix(place());
        EXPECT_MATRIX(world(follower), world(a));
    }
}

TEST_F(ConstraintEvaluation, OfTwoTargetsAFollowerTakesTheMean) {
    offset(follower);
    constraint.Constrain(follower, {a, b});
    for (int i = 0; i < 5; ++i) {
        a.SetWorldMatrix(place());
        b.SetWorldMatrix(place());
        EXPECT_VECTOR(follower.WorldTranslation(), mean(a, b));
    }
    b.SetWorldMatrix(world(a).Translate({2, 0, 0}));
    EXPECT_MATRIX(rotation(world(follower)), rotation(world(a)));
}

TEST_F(ConstraintEvaluation, ATargetThatIsAddedLaterCountsAsTheOthersDo) {
    constraint.Constrain(follower, a);
    constraint.AddTarget(b).AddTarget(b);
    XVector3 const expected = XVector3(a.WorldTranslation()).Add(b.WorldTranslation()).Add(b.WorldTranslation());
    EXPECT_VECTOR(follower.WorldTranslation(), XVector3(expected).Scale(1 / 3.F));
}

TEST_F(ConstraintEvaluation, WhatIsNotLockedStaysFree) {
    follower.SetRotationEulerAngles(0.1F, 0.2F, 0.3F);
    constraint.Constrain(follower, a, true, false);
    EXPECT_VECTOR(follower.WorldTranslation(), a.WorldTranslation());
    EXPECT_EQ(follower.RotationY().Float(), 0.2F);
}

TEST_F(ConstraintEvaluation, ATargetBelowTheFollowerIsRefused) {
    XTransform const below(scene().CreateObject(XTransform::TypeID, follower));
    XMatrix const before = world(follower);
    constraint.Constrain(follower, below);
    EXPECT_TRUE(isFree(follower, Translation));
    EXPECT_MATRIX(world(follower), before);
}

// ---- the frames of limits ----

TEST_F(ConstraintEvaluation, AnAlignedMovingFrameIsTheFixedOne) {
    XJointLimit limit = hips.CreateJointLimit();
    EXPECT_MATRIX(limit.MovingFrame(), world(limit));
    for (XDirection direction : {YAxis, ZAxis, XAxis}) {
        limit.SetRotationEulerAngles(vector(1));
        EXPECT_FALSE(limit.MovingFrame().IsEqual(world(limit), 0.01F));
        limit.AlignJointLimit(direction, AlignToChildAverage);
        EXPECT_MATRIX(limit.MovingFrame(), world(limit));
    }
}

// The fixed frame of another order is what writing a matrix in that order makes of it.
TEST_F(ConstraintEvaluation, TheMovingFrameIsAlignedInEveryOrderOfAngles) {
    XJointLimit limit = hips.CreateJointLimit();
    XVector3 const bone = XVector3().Subtract(spine.WorldTranslation(), hips.WorldTranslation()).Normalize();
    for (int order = 0; order < 6; ++order) {
        limit.RotationEulerOrder().SetEnumeration(order);
        limit.SetRotationEulerAngles(vector(1));
        limit.AlignJointLimit(ZAxis, AlignToFirstChild);
        EXPECT_VECTOR(limit.MovingFrame().ZAxis(), bone) << order;
    }
}

TEST_F(ConstraintEvaluation, AnAssignedLimitKeepsItsMovingFrameInTheWorld) {
    XJointLimit limit = spine.CreateJointLimit();
    limit.MovingOffsetX().SetFloat(0.4F);
    limit.MovingOffsetZ().SetFloat(-0.7F);
    XMatrix const before = limit.MovingFrame();
    leg.AssignJointLimit(limit);
    EXPECT_MATRIX(rotation(limit.MovingFrame()), rotation(before));
    EXPECT_VECTOR(limit.MovingFrame().Translation(), leg.WorldTranslation());
}

TEST_F(ConstraintEvaluation, AHingesFramesDifferByATurnAboutItsXAxisOnly) {
    XJointLimit limit = hips.CreateJointLimit();
    limit.LimitType().SetEnumeration(XJointLimit::Hinge);
    for (int i = 0; i < 10; ++i) {
        limit.SetRotationEulerAngles(vector(2));
        limit.MovingOffsetY().SetFloat(number(1));
        XMatrix const moving = limit.MovingFrame();
        limit.EnsureValidOrientation();
        EXPECT_MATRIX(limit.MovingFrame(), moving);
        EXPECT_VECTOR(world(limit).XAxis(), moving.XAxis());
        EXPECT_VECTOR(limit.WorldTranslation(), hips.WorldTranslation());
        XMatrix const fixed = world(limit);
        limit.EnsureValidOrientation();
        EXPECT_MATRIX(world(limit), fixed) << "it is valid already";
    }
}

TEST_F(ConstraintEvaluation, AHingeIsTurnedBackNoFurtherThanItMust) {
    XJointLimit limit = hips.CreateJointLimit();
    limit.LimitType().SetEnumeration(XJointLimit::Hinge);
    XMatrix const twisted = XMatrix(XVector3(1, 0, 0), 0.6F).Multiply(limit.MovingFrame());
    limit.SetWorldMatrix(twisted);
    limit.EnsureValidOrientation();
    EXPECT_MATRIX(world(limit), twisted);
}

TEST_F(ConstraintEvaluation, ABallSocketIsLeftAsItStands) {
    XJointLimit limit = hips.CreateJointLimit();
    limit.SetRotationEulerAngles(1, 0.5F, -0.25F);
    XMatrix const before = world(limit);
    limit.EnsureValidOrientation();
    EXPECT_EQ(numbers(world(limit)), numbers(before));
}

// ---- snapping ----

struct Snapping : ConstraintEvaluation {
    Snapping() {
        base = make(L"base", scene().RootObject(), {1, 2, 3});
        base.SetRotationEulerAngles(0.2F, 0.4F, -0.3F);
        end = make(L"end", base, {1, 0, 0});
        limit = base.CreateJointLimit();
        setOffset({});
    }
    void setOffset(XVector3 const& angles) {
        limit.MovingOffsetX().SetFloat(angles.X());
        limit.MovingOffsetY().SetFloat(angles.Y());
        limit.MovingOffsetZ().SetFloat(angles.Z());
    }
    XMatrix offsetMatrix() const { return limit.MovingOffsetMatrix().Matrix(); }
    XVector3 angles() const {
        return {limit.MovingOffsetX().Float(), limit.MovingOffsetY().Float(), limit.MovingOffsetZ().Float()};
    }

    XJoint base, end;
    XJointLimit limit;
};

TEST_F(Snapping, TheAxisNearestToTheBoneIsTurnedOntoIt) {
    struct Row {
        XVector3 bone;
        int axis;
        float sign;
    };
    for (Row const& row : {Row{{3, 1, -1}, 0, 1},
                           {{-3, 1, 1}, 0, -1},
                           {{1, 3, 1}, 1, 1},
                           {{1, -3, 0}, 1, -1},
                           {{0.5F, 1, 3}, 2, 1},
                           {{0, 1, -3}, 2, -1}}) {
        SCOPED_TRACE(testing::Message() << row.axis << " " << row.sign);
        setOffset({});
        end.SetTranslation(row.bone);
        XMatrix const fixed = world(limit);
        limit.SnapOffsetClosestAxis(false);
        XMatrix const m = offsetMatrix();
        XVector3 const axis = row.axis == 0 ? m.XAxis() : row.axis == 1 ? m.YAxis() : m.ZAxis();
        EXPECT_VECTOR(XVector3(axis).Scale(row.sign), XVector3(row.bone).Normalize());
        EXPECT_EQ(numbers(world(limit)), numbers(fixed));
    }
}

TEST_F(Snapping, OfAxesThatAreEquallyNearTheFirstIsTaken) {
    end.SetTranslation(1, 1, 0);
    limit.SnapOffsetClosestAxis(false);
    EXPECT_VECTOR(offsetMatrix().XAxis(), XVector3(1, 1, 0).Normalize());
    setOffset({});
    end.SetTranslation(0, -2, -2);
    limit.SnapOffsetClosestAxis(false);
    EXPECT_VECTOR(offsetMatrix().YAxis(), XVector3(0, 1, 1).Normalize());
    setOffset({});
    end.SetTranslation(-1, 1, 1);
    limit.SnapOffsetClosestAxis(false);
    EXPECT_VECTOR(offsetMatrix().XAxis(), XVector3(1, -1, -1).Normalize());
}

TEST_F(Snapping, ABoneAlongAnAxisChangesNothing) {
    for (XVector3 const& bone : {XVector3(0, 2, 0), XVector3(0, -0.1F, 0), XVector3(0, 0, 4), XVector3(-1, 0, 0)}) {
        end.SetTranslation(bone);
        limit.SnapOffsetClosestAxis(true);
        EXPECT_EQ(angles(), XVector3());
    }
    setOffset({0.3F, -0.2F, 0.5F});
    end.SetTranslation(XVector3(offsetMatrix().YAxis()).Scale(0.7F));
    XVector3 const before = angles();
    XMatrix const fixed = world(limit);
    limit.SnapOffsetClosestAxis(true);
    EXPECT_EQ(numbers(world(limit)), numbers(fixed));
    EXPECT_EQ(limit.MovingOffsetX().Float(), before.X()) << "not even in its last digit";
}

TEST_F(Snapping, AnAngleBelowTheGraphsToleranceIsNone) {
    end.SetTranslation(0.5F * sg::g_floatTolerance, 1, 0);
    limit.SnapOffsetClosestAxis(true);
    EXPECT_EQ(limit.MovingOffsetZ().Float(), 0);
    end.SetTranslation(20 * sg::g_floatTolerance, 1, 0);
    limit.SnapOffsetClosestAxis(true);
    EXPECT_NEAR(limit.MovingOffsetZ().Float(), -20 * sg::g_floatTolerance, 1e-6F);
}

TEST_F(Snapping, TheFixedFrameIsTurnedAlongWhenAsked) {
    end.SetTranslation(3, 1, 0);
    XMatrix const before = world(limit);
    XMatrix const turn(XVector3(0, 0, 1), std::atan2(1.F, 3.F));
    limit.SnapOffsetClosestAxis(true);
    EXPECT_MATRIX(rotation(world(limit)), rotation(XMatrix(turn).Multiply(before)));
    EXPECT_VECTOR(limit.WorldTranslation(), base.WorldTranslation());
}

TEST_F(Snapping, WithoutAnythingBelowTheJointNothingIsSnapped) {
    XJointLimit lonely = end.CreateJointLimit();
    lonely.MovingOffsetX().SetFloat(0.5F);
    XMatrix const before = world(lonely);
    lonely.SnapOffsetClosestAxis(true);
    EXPECT_EQ(lonely.MovingOffsetX().Float(), 0.5F);
    EXPECT_EQ(numbers(world(lonely)), numbers(before));
}

TEST_F(Snapping, ABoneWithoutALengthLiesAlongX) {
    end.SetTranslation(0, 0, 0);
    setOffset({0, 0, 0.25F});
    limit.SnapOffsetClosestAxis(false);
    EXPECT_VECTOR(offsetMatrix().XAxis(), XVector3(1, 0, 0));
}

}  // namespace
}  // namespace Tavo
