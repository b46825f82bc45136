// How joints get limits and lose them, and how limits are pointed: the graph afterwards, and where the frames are.
#include "tests/kinematics/skeleton_fixture.h"
#include <cmath>

namespace Tavo {
namespace {

struct JointLimits : SkeletonTest {
    static XVector3 axis(XMatrix const& m, XDirection direction) {
        return direction == XAxis ? m.XAxis() : direction == YAxis ? m.YAxis() : m.ZAxis();
    }
    static XVector3 towards(XTransform const& from, XTransform const& to) {
        return XVector3().Subtract(to.WorldTranslation(), from.WorldTranslation()).Normalize();
    }
    static XVector3 offsetAngles(XJointLimit const& limit) {
        return {limit.MovingOffsetX().Float(), limit.MovingOffsetY().Float(), limit.MovingOffsetZ().Float()};
    }
    // The moving frame by its angles.
    static XMatrix moving(XJointLimit const& limit) {
        XMatrix offset;
        return offset.SetRotationEulerAngles(offsetAngles(limit)).Multiply(world(limit.Joint()));
    }
    static XMatrix rotation(XMatrix m) { return m.SetTranslation(XVector3()); }
    void setMatrixSource(XJoint& joint) {
        joint.LocalMatrixInput().SetMatrix(place());
        joint.TransformDataSource().SetEnumeration(XTransform::LocalMatrixSource);
    }
};

// ---- making ----

TEST_F(JointLimits, ANewLimitAndItsJointNameOneAnother) {
    EXPECT_FALSE(spine.HasJointLimit());
    EXPECT_FALSE(spine.JointLimit().IsValid());
    XJointLimit const limit = spine.CreateJointLimit();
    ASSERT_TRUE(limit.IsValid());
    EXPECT_EQ(limit.ObjectType(), XJointLimit::TypeID);
    EXPECT_EQ(limit.Name(), L"spineLimit");
    EXPECT_EQ(limit.Parent(), hips);
    EXPECT_EQ(limit.JointReference().ObjectRef(), spine);
    EXPECT_EQ(spine.JointLimitReference().ObjectRef(), limit);
    EXPECT_EQ(limit.Joint(), spine);
    EXPECT_EQ(spine.JointLimit(), limit);
    EXPECT_TRUE(spine.HasJointLimit());
}

TEST_F(JointLimits, ANewLimitIsFedByItsJointAndByNothingElse) {
    int const count = objectCount();
    XJointLimit const limit = spine.CreateJointLimit();
    EXPECT_EQ(limit.JointWorldMatrix().InputAttribute(), spine.WorldMatrix());
    EXPECT_EQ(limit.JointLocalMatrix().InputAttribute(), spine.LocalMatrix());
    EXPECT_TRUE(feeds(spine, Translation, limit, Translation));
    EXPECT_TRUE(isFree(limit, Rotation));
    EXPECT_EQ(objectCount(), count + 1);
    Qelutils::Vector<XObject> inputs;
    limit.InputObjects(inputs);
    for (XObject const& input : inputs) EXPECT_EQ(input, spine);
}

TEST_F(JointLimits, ALimitOfAJointThatIsAMatrixFollowsItThroughAConversion) {
    setMatrixSource(spine);
    XJointLimit const limit = spine.CreateJointLimit();
    XMatrixConversion const conversion(limit.TranslationX().InputObject());
    ASSERT_TRUE(conversion.IsValid());
    EXPECT_EQ(conversion.Parent(), limit);
    EXPECT_EQ(conversion.InputMatrix().InputAttribute(), spine.LocalMatrix());
    EXPECT_TRUE(feeds(conversion, 18, limit, Translation));
    EXPECT_VECTOR(limit.WorldTranslation(), spine.WorldTranslation());
    spine.LocalMatrixInput().SetMatrix(place());
    EXPECT_VECTOR(limit.WorldTranslation(), spine.WorldTranslation());
}

TEST_F(JointLimits, ALimitOfAJointWithoutChildrenIsWhereTheJointIs) {
    chest.SetRotationEulerAngles(0.4F, 0.2F, -0.9F);
    XJointLimit const limit = chest.CreateJointLimit();
    EXPECT_MATRIX(world(limit), world(chest));
    EXPECT_EQ(offsetAngles(limit), XVector3());
}

TEST_F(JointLimits, ALimitStaysOnItsJointWhenThatHasAPlaceOfRest) {
    chest.SetPreTranslation(0.25F, -0.5F, 0.125F);
    XJointLimit const limit = chest.CreateJointLimit();
    EXPECT_MATRIX(world(limit), world(chest));
    chest.SetTranslation(1, 2, 3);
    spine.SetRotationEulerAngles(0.2F, 0.9F, 0);
    EXPECT_VECTOR(limit.WorldTranslation(), chest.WorldTranslation());
}

TEST_F(JointLimits, ANewLimitPointsItsXAxisAtTheFirstChild) {
    XJointLimit const limit = hips.CreateJointLimit();
    EXPECT_VECTOR(world(limit).XAxis(), towards(hips, spine));
    EXPECT_VECTOR(limit.WorldTranslation(), hips.WorldTranslation());
    EXPECT_MATRIX(rotation(moving(limit)), rotation(world(limit)));
}

TEST_F(JointLimits, ASecondLimitIsRefusedAndTheFirstStays) {
    XJointLimit const first = spine.CreateJointLimit();
    int const count = objectCount();
    EXPECT_FALSE(spine.CreateJointLimit().IsValid());
    EXPECT_EQ(spine.JointLimit(), first);
    EXPECT_EQ(objectCount(), count);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(JointLimits, ADerivedJointGetsNoLimitThisWay) {
    XJoint physical(scene().CreateObject(XPhysicsJoint::TypeID, hips));
    ASSERT_TRUE(physical.IsValid());
    int const count = objectCount();
    EXPECT_FALSE(physical.CreateJointLimit().IsValid());
    EXPECT_FALSE(XJoint(parent).CreateJointLimit().IsValid());
    EXPECT_FALSE(XJoint().CreateJointLimit().IsValid());
    EXPECT_EQ(objectCount(), count);
    EXPECT_TRUE(log.entries.empty());
}

// ---- losing ----

TEST_F(JointLimits, ClearingLetsGoOfTheLimitAndKeepsTheObject) {
    XJointLimit const limit = spine.CreateJointLimit();
    spine.ClearJointLimit();
    EXPECT_FALSE(spine.HasJointLimit());
    EXPECT_TRUE(limit.IsValid());
    EXPECT_TRUE(spine.CreateJointLimit().IsValid());
}

TEST_F(JointLimits, DeletingTheLimitLeavesAJointThatNothingElseIsConnectedTo) {
    XJointLimit const limit = leg.CreateJointLimit();
    leg.DeleteJointLimit();
    EXPECT_FALSE(limit.IsValid());
    EXPECT_TRUE(leg.IsValid());
    EXPECT_FALSE(leg.HasJointLimit());
    leg.DeleteJointLimit();
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(JointLimits, ALimitThatIsDeletedByItselfLeavesItsJoint) {
    spine.CreateJointLimit().Delete();
    EXPECT_TRUE(spine.IsValid() && chest.IsValid());
    EXPECT_FALSE(spine.HasJointLimit());
    EXPECT_TRUE(spine.CreateJointLimit().IsValid());
}

TEST_F(JointLimits, AJointTakesItsLimitAlongAndUndoBringsBothBack) {
    XJointLimit const limit = spine.CreateJointLimit(), below = chest.CreateJointLimit();
    XMatrix const before = world(limit);
    inBlock([&] { spine.Delete(); });
    EXPECT_FALSE(spine.IsValid() || limit.IsValid() || chest.IsValid() || below.IsValid());
    EXPECT_TRUE(hips.IsValid() && leg.IsValid());
    scene().Undo();
    ASSERT_TRUE(spine.IsValid() && limit.IsValid() && chest.IsValid() && below.IsValid());
    EXPECT_EQ(spine.JointLimit(), limit);
    EXPECT_EQ(limit.Joint(), spine);
    EXPECT_TRUE(feeds(spine, Translation, limit, Translation));
    EXPECT_EQ(limit.JointWorldMatrix().InputAttribute(), spine.WorldMatrix());
    EXPECT_MATRIX(world(limit), before);
    scene().Redo();
    EXPECT_FALSE(spine.IsValid() || limit.IsValid());
}

TEST_F(JointLimits, RemovingAJointTakesItsLimitAndKeepsItsChildren) {
    XJointLimit const limit = spine.CreateJointLimit();
    spine.Remove();
    EXPECT_FALSE(spine.IsValid() || limit.IsValid());
    EXPECT_EQ(chest.Parent(), hips);
}

// ---- passing on ----

TEST_F(JointLimits, AnAssignedLimitBelongsToTheNewJoint) {
    XJointLimit limit = spine.CreateJointLimit();
    XJointLimit const replaced = leg.CreateJointLimit();
    XJointLimit& given = leg.AssignJointLimit(limit);
    EXPECT_EQ(&given, &limit);
    EXPECT_FALSE(replaced.IsValid());
    EXPECT_FALSE(spine.HasJointLimit());
    EXPECT_EQ(leg.JointLimit(), limit);
    EXPECT_EQ(limit.Joint(), leg);
    EXPECT_EQ(limit.Parent(), hips);
    EXPECT_EQ(limit.JointWorldMatrix().InputAttribute(), leg.WorldMatrix());
    EXPECT_EQ(limit.JointLocalMatrix().InputAttribute(), leg.LocalMatrix());
    EXPECT_TRUE(feeds(leg, Translation, limit, Translation));
    EXPECT_VECTOR(limit.WorldTranslation(), leg.WorldTranslation());
}

TEST_F(JointLimits, AnAssignedLimitHangsBelowTheNewJointsParent) {
    XJointLimit limit = spine.CreateJointLimit();
    chest.AssignJointLimit(limit);
    EXPECT_EQ(limit.Parent(), spine);
    EXPECT_VECTOR(limit.WorldTranslation(), chest.WorldTranslation());
}

TEST_F(JointLimits, AssigningFromAMatrixToAPlainJointDropsTheConversion) {
    setMatrixSource(spine);
    XJointLimit limit = spine.CreateJointLimit();
    leg.AssignJointLimit(limit);
    EXPECT_TRUE(feeds(leg, Translation, limit, Translation));
    EXPECT_EQ(limit.ChildCount(), 0);
    EXPECT_TRUE(spine.IsValid());
}

TEST_F(JointLimits, AnInvalidLimitOnlyTakesTheOldOneAway) {
    XJointLimit const old = leg.CreateJointLimit();
    XJointLimit none;
    XJointLimit& given = leg.AssignJointLimit(none);
    EXPECT_EQ(&given, &none);
    EXPECT_FALSE(old.IsValid() || leg.HasJointLimit());
    EXPECT_TRUE(leg.IsValid());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(JointLimits, AJointsOwnLimitAndAnInvalidJointChangeNothing) {
    XJointLimit limit = leg.CreateJointLimit();
    leg.AssignJointLimit(limit);
    XJoint().AssignJointLimit(limit);
    EXPECT_TRUE(limit.IsValid());
    EXPECT_EQ(leg.JointLimit(), limit);
    EXPECT_TRUE(feeds(leg, Translation, limit, Translation));
}

// ---- aligning ----

TEST_F(JointLimits, EachAxisIsPointedAtTheFirstChildOrAtTheirMean) {
    XJointLimit limit = hips.CreateJointLimit();
    XTransform mean(scene().CreateObject(XTransform::TypeID));
    mean.SetTranslation(XVector3().Add(spine.WorldTranslation(), leg.WorldTranslation()).Scale(0.5F));
    for (XDirection direction : {ZAxis, XAxis, YAxis}) {
        SCOPED_TRACE(direction);
        limit.AlignJointLimit(direction, AlignToFirstChild);
        EXPECT_VECTOR(axis(world(limit), direction), towards(hips, spine));
        limit.AlignJointLimit(direction, AlignToChildAverage);
        EXPECT_VECTOR(axis(world(limit), direction), towards(hips, mean));
        EXPECT_VECTOR(limit.WorldTranslation(), hips.WorldTranslation());
        EXPECT_MATRIX(rotation(moving(limit)), rotation(world(limit)));
    }
}

TEST_F(JointLimits, EveryOtherModePointsAtTheOriginOfTheWorld) {
    XJointLimit limit = hips.CreateJointLimit();
    XVector3 const towardsOrigin = XVector3(hips.WorldTranslation()).Negate().Normalize();
    for (XAlignmentMode mode : {XPlane, XYPlane, YZPlane, XZPlane, XAlignmentMode(17)}) {
        limit.AlignJointLimit(ZAxis, AlignToFirstChild);
        limit.AlignJointLimit(ZAxis, mode);
        EXPECT_VECTOR(world(limit).ZAxis(), towardsOrigin) << mode;
    }
}

TEST_F(JointLimits, TheNamesOfAxesAreThreeAndNoOthers) {
    XJointLimit limit = hips.CreateJointLimit();
    limit.AlignJointLimit(L"YAxis", AlignToFirstChild);
    EXPECT_VECTOR(world(limit).YAxis(), towards(hips, spine));
    XMatrix const before = world(limit);
    XVector3 const angles = offsetAngles(limit);
    for (wchar_t const* other : {L"X", L"xaxis", L"", L"XAxis "}) limit.AlignJointLimit(other, AlignToFirstChild);
    EXPECT_EQ(numbers(world(limit)), numbers(before));
    EXPECT_EQ(offsetAngles(limit), angles);
}

TEST_F(JointLimits, WithoutChildrenOrAJointNothingIsAligned) {
    XJointLimit limit = chest.CreateJointLimit();
    XMatrix const before = world(limit);
    limit.MovingOffsetX().SetFloat(0.5F);
    limit.AlignJointLimit(ZAxis, AlignToFirstChild);
    EXPECT_EQ(numbers(world(limit)), numbers(before));
    EXPECT_EQ(limit.MovingOffsetX().Float(), 0.5F);
    XJointLimit alone(scene().CreateObject(XJointLimit::TypeID));
    alone.AlignJointLimit(ZAxis, AlignToFirstChild).EnsureValidOrientation().Repair().SnapOffsetClosestAxis(true);
    EXPECT_TRUE(world(alone).IsIdentity());
    XJointLimit()
        .AlignJointLimit(ZAxis, AlignToFirstChild)
        .EnsureValidOrientation()
        .Repair()
        .SnapOffsetClosestAxis(true);
    EXPECT_TRUE(log.entries.empty());
}

// Where the axis points at the child already nothing is written, not even a moving frame that is elsewhere.
TEST_F(JointLimits, AnAxisThatPointsThereAlreadyChangesNothing) {
    XJoint const straight = make(L"straight", scene().RootObject(), {});
    make(L"end", straight, {0, 2, 0});
    XJointLimit limit(XJoint(straight).CreateJointLimit());
    limit.SetIdentity();
    limit.MovingOffsetZ().SetFloat(0.25F);
    limit.AlignJointLimit(YAxis, AlignToFirstChild);
    EXPECT_EQ(limit.MovingOffsetZ().Float(), 0.25F);
    EXPECT_TRUE(world(limit).IsIdentity());
}

// The moving frame is read in the limit's own order of angles: a decision of this system.
TEST_F(JointLimits, TheMovingOffsetIsWrittenInTheLimitsOrder) {
    XJointLimit limit = hips.CreateJointLimit();
    limit.RotationEulerOrder().SetEnumeration(5);
    limit.AlignJointLimit(ZAxis, AlignToFirstChild);
    XMatrix offset;
    offset.SetRotationEulerAngles(offsetAngles(limit), 5);
    EXPECT_VECTOR(offset.Multiply(world(hips)).ZAxis(), towards(hips, spine));
}

// ---- repairing ----

TEST_F(JointLimits, RepairMakesTheConnectionsAgain) {
    XJointLimit limit = spine.CreateJointLimit();
    limit.DisconnectInputAttributes();
    EXPECT_TRUE(isFree(limit, Translation));
    limit.Repair();
    EXPECT_EQ(limit.JointWorldMatrix().InputAttribute(), spine.WorldMatrix());
    EXPECT_EQ(limit.JointLocalMatrix().InputAttribute(), spine.LocalMatrix());
    EXPECT_TRUE(feeds(spine, Translation, limit, Translation));
}

TEST_F(JointLimits, RepairLeavesTheTranslationOfALimitThatIsAMatrix) {
    XJointLimit limit = spine.CreateJointLimit();
    limit.DisconnectInputAttributes();
    limit.TransformDataSource().SetEnumeration(XTransform::LocalMatrixSource);
    limit.Repair();
    EXPECT_EQ(limit.JointLocalMatrix().InputAttribute(), spine.LocalMatrix());
    EXPECT_TRUE(isFree(limit, Translation));
}

// It goes by how the limit gets its pose, not by how the joint does: a decision of this system.
TEST_F(JointLimits, RepairConnectsTheTranslationsThemselvesAlsoOfAJointThatIsAMatrix) {
    setMatrixSource(spine);
    XJointLimit limit = spine.CreateJointLimit();
    limit.Repair();
    EXPECT_TRUE(feeds(spine, Translation, limit, Translation));
}

// ---- copying ----

constexpr int copied[] = {58, 59, 61, 63, 66, 69, 54, 55, 56, 60, 62, 64, 67, 68, 70};

void setOther(XAttribute attribute) {
    if (attribute.IsBool()) attribute.SetBoolean(!attribute.Boolean());
    if (attribute.IsEnum()) attribute.SetEnumeration(1);
    if (attribute.IsFloat()) attribute.SetFloat(attribute.Float() + 0.125F);
}

TEST_F(JointLimits, CopyingTakesWhatLimitsAndNothingElse) {
    XJointLimit other = hips.CreateJointLimit(), limit = spine.CreateJointLimit();
    for (int number = 54; number <= 73; ++number)
        if (number != 57) setOther(other.Attribute(number));
    limit.CopyJointLimit(other);
    for (int number = 54; number <= 73; ++number) {
        if (number == 57) continue;
        bool const isCopied = std::find(std::begin(copied), std::end(copied), number) != std::end(copied);
        EXPECT_EQ(limit.Attribute(number).getAttribute()->compare(*other.Attribute(number).getAttribute()), isCopied)
            << number;
    }
    EXPECT_EQ(limit.Joint(), spine);
    EXPECT_TRUE(feeds(spine, Translation, limit, Translation));
    limit.CopyJointLimit(XJointLimit());
    EXPECT_EQ(limit.LimitType().Enumeration(), 1);
}

TEST_F(JointLimits, AnyCurveOfWhatLimitsOrPlacesItMakesItAnimated) {
    XJointLimit const limit = spine.CreateJointLimit();
    EXPECT_FALSE(limit.IsJointLimitAnimated());
    EXPECT_FALSE(XJointLimit().IsJointLimitAnimated());
    for (int number = 54; number <= 73; ++number) {
        XAttribute attribute = limit.Attribute(number);
        if (!attribute.CreateAnimation().IsValid()) continue;
        bool const counts = std::find(std::begin(copied), std::end(copied), number) != std::end(copied);
        EXPECT_EQ(limit.IsJointLimitAnimated(), counts) << number;
        attribute.DeleteAnimation();
    }
    limit.RotationX().CreateAnimation();
    EXPECT_TRUE(limit.IsJointLimitAnimated());
}

}  // namespace
}  // namespace Tavo
