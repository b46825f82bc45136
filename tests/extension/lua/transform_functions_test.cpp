#include "tests/extension/lua/script_fixture.h"
#include <cmath>
#include <numbers>

namespace Tavo {
namespace {

// parent > child, both turned and away from the origin.
class TransformFunctionsTest : public Scripts {
protected:
    TransformFunctionsTest() {
        parent = make(L"parent", scene().RootObject());
        child = make(L"child", parent);
        parent.SetTranslation(1, 2, 3).SetRotationEulerAngles(0.3f, -0.4f, 0.5f);
        child.SetTranslation(0.5f, 0, -0.25f).SetRotationEulerAngles(-0.2f, 0.1f, 0.7f);
        run("parent = scene:object('Scene|parent') child = parent:child(1)");
    }

    static XJoint make(std::wstring const& name, XObject const& above) {
        XJoint joint(scene().CreateObject(XJoint::TypeID, above));
        joint.SetName(name);
        return joint;
    }
    XVector3 vector(std::string const& expression) {
        run("local v = " + expression + " vx, vy, vz = v.x, v.y, v.z");
        return {number("vx"), number("vy"), number("vz")};
    }
    XMatrix matrix(std::string const& expression) {
        run("local m = " + expression + " for i = 1, 16 do _G['m' .. i] = m[i] end");
        float values[16];
        for (int i = 0; i < 16; ++i) values[i] = number(("m" + std::to_string(i + 1)).c_str());
        return XMatrix(values);
    }
    float angle(std::string const& expression) {
        run("angle = " + expression);
        return number("angle");
    }
    float number(char const* global) { return float(lua().State()->GetGlobal(global).ToNumber()); }
    static XMatrix world(XTransform const& object) { return object.WorldMatrix().Matrix(); }
    static XMatrix local(XTransform const& object) { return object.LocalMatrix().Matrix(); }

    XJoint parent, child;
};

#define EXPECT_NEAR_VECTOR(expected, actual) EXPECT_TRUE(XVector3(expected).IsEqual(actual, 1e-5f))

TEST_F(TransformFunctionsTest, MatricesAreLocalAndOfTheWorld) {
    EXPECT_EQ(local(child), matrix("child:matrix()"));
    EXPECT_EQ(world(child), matrix("child:worldMatrix()"));
    EXPECT_FALSE(local(child).IsEqual(world(child)));
}

TEST_F(TransformFunctionsTest, PlacesAreLocalAndOfTheWorld) {
    EXPECT_NEAR_VECTOR(XVector3(0.5f, 0, -0.25f), vector("child:translation()"));
    EXPECT_NEAR_VECTOR(child.WorldTranslation(), vector("child:worldTranslation()"));
}

TEST_F(TransformFunctionsTest, RotationsAreEulerAnglesInRadians) {
    EXPECT_NEAR_VECTOR(XVector3(-0.2f, 0.1f, 0.7f), vector("child:rotation()"));
    EXPECT_NEAR_VECTOR(world(child).RotationEulerAngles(), vector("child:worldRotation()"));
}

TEST_F(TransformFunctionsTest, AnglesBeyondAQuarterTurnComeBackAsTheyWereSet) {
    EXPECT_NEAR_VECTOR(XVector3(0.5f, 2, -7), vector("child:setRotation(0.5, 2, -7):rotation()"));
}

TEST_F(TransformFunctionsTest, AxesAndAnglesSayTheSameAsTheRotations) {
    EXPECT_NEAR_VECTOR(child.Rotation().RotationAxis(), vector("child:rotationAxis()"));
    EXPECT_NEAR(child.Rotation().RotationAngle(), angle("child:rotationAngle()"), 1e-5f);
    EXPECT_NEAR_VECTOR(child.WorldRotation().RotationAxis(), vector("child:worldRotationAxis()"));
    EXPECT_NEAR(child.WorldRotation().RotationAngle(), angle("child:worldRotationAngle()"), 1e-5f);
}

TEST_F(TransformFunctionsTest, ScalesAreLocalAndTheDiagonalOfTheWorld) {
    EXPECT_NEAR_VECTOR(XVector3(1, 2, 3), vector("child:setScale(1, 2, 3):scale()"));
    EXPECT_NEAR_VECTOR(child.WorldScale(), vector("child:worldScale()"));
}

TEST_F(TransformFunctionsTest, RotationOrdersAreWordsOrNumbers) {
    EXPECT_EQ("XYZ ZYX XZY XYZ",
              eval("return child:rotationOrder(), child:setRotationOrder('ZYX'):rotationOrder(), "
                   "child:setRotationOrder(1):rotationOrder(), child:setRotationOrder():rotationOrder()"));
    EXPECT_EQ("script:2: Transform:setRotationOrder: there is no such choice; there are XYZ, XZY, YXZ, YZX, ZXY, ZYX, "
              "or their numbers from 0 to 5",
              failure("child:setRotationOrder('XYY')"));
    failure("child:setRotationOrder(6)");
    failure("child:setRotationOrder(-1)");
    EXPECT_EQ(0, child.RotationEulerOrder().Enumeration());
}

TEST_F(TransformFunctionsTest, WhatIsSetIsReadAgain) {
    EXPECT_NEAR_VECTOR(XVector3(7, 8, 9), vector("child:setTranslation(7, 8, 9):translation()"));
    EXPECT_NEAR_VECTOR(XVector3(7, 8, 9), vector("child:setWorldTranslation(7, 8, 9):worldTranslation()"));
    EXPECT_NEAR_VECTOR(XVector3(0.1f, 0.2f, 0.3f), vector("child:setWorldRotation(0.1, 0.2, 0.3):worldRotation()"));
    EXPECT_NEAR_VECTOR(XVector3(0, 1, 0), vector("child:setRotationAxisAngle({0, 5, 0}, 0.6):rotationAxis()"));
    EXPECT_NEAR(0.6f, angle("child:rotationAngle()"), 1e-5f);
    EXPECT_NEAR_VECTOR(XVector3(0, 0, 1),
                       vector("child:setWorldRotationAxisAngle({0, 0, 2}, 0.4):worldRotationAxis()"));
    EXPECT_NEAR(0.4f, angle("child:worldRotationAngle()"), 1e-5f);
}

TEST_F(TransformFunctionsTest, MatricesAreSetLocallyAndInTheWorld) {
    XMatrix const there = world(parent);
    EXPECT_TRUE(there.IsEqual(matrix("child:setMatrix(parent:worldMatrix()):matrix()"), 1e-5f));
    EXPECT_TRUE(there.IsEqual(matrix("child:setWorldMatrix(parent:worldMatrix()):worldMatrix()"), 1e-5f));
    EXPECT_TRUE(matrix("child:setMatrix():matrix()").IsIdentity(1e-5f));
}

TEST_F(TransformFunctionsTest, SetIdentityPutsItWhereItsParentIs) {
    EXPECT_TRUE(matrix("child:freeze():setTranslation(1, 1, 1):setIdentity():matrix()").IsIdentity(1e-5f));
}

TEST_F(TransformFunctionsTest, TranslateMovesOnBelowTheParentAndInTheWorld) {
    XVector3 const before = child.WorldTranslation();
    EXPECT_NEAR_VECTOR(XVector3(1.5f, 1, 0.75f), vector("child:translate(1, 1, 1):translation()"));
    child.SetWorldTranslation(before);
    EXPECT_NEAR_VECTOR(XVector3().Add(before, XVector3(1, 1, 1)),
                       vector("child:worldTranslate(1, 1, 1):worldTranslation()"));
}

TEST_F(TransformFunctionsTest, RotateTurnsOnAndLeavesThePlace) {
    XMatrix expected = local(child);
    expected.RotateByEulerAngles(XVector3(0.1f, 0.2f, 0.3f));
    EXPECT_TRUE(expected.IsEqual(matrix("child:rotate(0.1, 0.2, 0.3):matrix()"), 1e-5f));
    expected.RotateByAxisAngle(XVector3(0, 1, 0), 0.5f);
    EXPECT_TRUE(expected.IsEqual(matrix("child:rotateAxisAngle({0, 3, 0}, 0.5):matrix()"), 1e-5f));
}

TEST_F(TransformFunctionsTest, WorldRotateTurnsOnAboutAxesOfTheWorld) {
    XMatrix expected = world(child);
    expected.RotateByEulerAngles(XVector3(0.1f, 0.2f, 0.3f));
    EXPECT_TRUE(expected.IsEqual(matrix("child:worldRotate(0.1, 0.2, 0.3):worldMatrix()"), 1e-5f));
    expected.RotateByAxisAngle(XVector3(1, 0, 0), -0.5f);
    EXPECT_TRUE(expected.IsEqual(matrix("child:worldRotateAxisAngle({0.01, 0, 0}, -0.5):worldMatrix()"), 1e-5f));
}

TEST_F(TransformFunctionsTest, RotateTurnsAboutTheAxesOfTheParent) {
    run("child:setRotation(0, 0, math.pi / 2):rotateAxisAngle({1, 0, 0}, math.pi / 2)");
    EXPECT_NEAR_VECTOR(XVector3(0, 0, 1), local(child).XAxis());
    run("child:setRotation(0, 0, math.pi / 2):rotate(math.pi / 2, 0, 0)");
    EXPECT_NEAR_VECTOR(XVector3(0, 0, 1), local(child).XAxis());
}

TEST_F(TransformFunctionsTest, TurningByNothingChangesNothing) {
    XMatrix const before = local(child);
    run("child:translate():rotate():rotateAxisAngle():worldTranslate():worldRotate():worldRotateAxisAngle()");
    EXPECT_TRUE(before.IsEqual(local(child), 1e-5f));
}

// ---- freezing ----

TEST_F(TransformFunctionsTest, FreezeKeepsThePoseAndLetsTheChannelsCountFromZero) {
    XMatrix const before = local(child);
    EXPECT_NEAR_VECTOR(XVector3(), vector("child:freeze():rotation()"));
    EXPECT_TRUE(before.IsEqual(local(child), 1e-5f));
    EXPECT_EQ(0, child.TranslationX().Float());
    EXPECT_NEAR_VECTOR(XVector3(0.5f, 0, -0.25f), vector("child:translation()"));
}

TEST_F(TransformFunctionsTest, FreezeTakesOnlyWhatItIsTold) {
    run("child:freeze('translation')");
    EXPECT_EQ(0, child.TranslationX().Float());
    EXPECT_FLOAT_EQ(0.7f, child.RotationZ().Float());
    run("parent:freeze('rotation')");
    EXPECT_FLOAT_EQ(1, parent.TranslationX().Float());
    EXPECT_EQ(0, parent.RotationZ().Float());
    EXPECT_EQ("script:2: Transform:freeze: there is no such choice; there are all, translation, rotation, or their "
              "numbers from 0 to 2",
              failure("child:freeze('scale')"));
}

// ---- aligning ----

TEST_F(TransformFunctionsTest, AlignAxisPointsAnAxisAtTheChildWhichStaysWhereItIs) {
    XMatrix const place = world(child);
    run("parent:alignAxis('YAxis')");
    XVector3 const bone = XVector3().Subtract(child.WorldTranslation(), parent.WorldTranslation()).Normalize();
    EXPECT_NEAR_VECTOR(bone, world(parent).YAxis());
    EXPECT_TRUE(place.IsEqual(world(child), 1e-4f));
}

TEST_F(TransformFunctionsTest, AlignAxisPointsAtTheMiddleOfTheChildrenIfToldSo) {
    make(L"second", parent).SetTranslation(-0.5f, 1, 0.5f);
    Qelutils::Vector<XObject> children;
    parent.ChildObjects(children);
    XVector3 const middle = XTransform::calculateAverageTranslation(children);
    run("parent:alignAxis(2, 'AlignToChildAverage')");
    EXPECT_NEAR_VECTOR(XVector3().Subtract(middle, parent.WorldTranslation()).Normalize(), world(parent).ZAxis());
}

TEST_F(TransformFunctionsTest, AnUnknownAxisOrModeIsRefused) {
    XMatrix const before = world(parent);
    EXPECT_EQ("script:2: Transform:alignAxis: there is no such choice; there are XAxis, YAxis, ZAxis, or their numbers "
              "from 0 to 2",
              failure("parent:alignAxis('W')"));
    failure("parent:alignAxis(3)");
    failure("parent:alignAxis('XAxis', 2)");
    failure("parent:alignAxis('XAxis', 'AlignToSecondChild')");
    failure("parent:alignAxis(true)");
    EXPECT_EQ(before, world(parent));
}

// ---- paths ----

TEST_F(TransformFunctionsTest, CreateTrajectoryLaysAPathThroughTheMotion) {
    time().StartTime().SetFloat(0);
    time().EndTime().SetFloat(1);
    parent.TranslationX().SetKeyframe(0, 0);
    parent.TranslationX().SetKeyframe(1, 10);
    EXPECT_EQ("Trajectory", eval("path = child:createTrajectory() return path:type()"));
    XTrajectory const path(scene().Object(Qelutils::fromUtf8(eval("return path:path()"))));
    EXPECT_EQ(2 * time().FrameRate().Integer(), path.TranslationKeyframesArray().AttributeCount());
}

TEST_F(TransformFunctionsTest, WhatIsGoneHasNoPathAndMakesNone) {
    run("child:delete()");
    std::string const count = eval("return #scene:object('Scene'):descendants()");
    EXPECT_EQ("nil", eval("return child:createTrajectory()"));
    EXPECT_EQ(count, eval("return #scene:object('Scene'):descendants()"));
}

// ---- limits of joints, and handles ----

TEST_F(TransformFunctionsTest, AlignLimitPointsAnAxisOfTheLimitAtTheChild) {
    XJointLimit const limit = parent.CreateJointLimit();
    run("parent:alignLimit('ZAxis')");
    XVector3 const bone = XVector3().Subtract(child.WorldTranslation(), parent.WorldTranslation()).Normalize();
    EXPECT_NEAR_VECTOR(bone, world(limit).ZAxis());
    EXPECT_TRUE(world(limit).IsEqual(limit.MovingFrame(), 1e-4f));
    failure("parent:alignLimit('W')");
}

TEST_F(TransformFunctionsTest, SnappingLaysTheNearestAxisOfTheMovingFrameAlongTheBone) {
    XJointLimit const limit = parent.CreateJointLimit();
    limit.MovingOffsetY().SetFloat(limit.MovingOffsetY().Float() + 0.2f);
    XMatrix const fixed = world(limit);
    run("parent:snapOffsetClosestAxis()");
    XVector3 const bone = XVector3().Subtract(child.WorldTranslation(), parent.WorldTranslation()).Normalize();
    XMatrix const frame = limit.MovingFrame();
    float const along = std::max({std::abs(frame.XAxis().DotProduct(bone)), std::abs(frame.YAxis().DotProduct(bone)),
                                  std::abs(frame.ZAxis().DotProduct(bone))});
    EXPECT_NEAR(1, along, 1e-4f);
    EXPECT_EQ(fixed, world(limit));
    limit.MovingOffsetY().SetFloat(limit.MovingOffsetY().Float() + 0.2f);
    run("parent:snapOffsetClosestAxis(true)");
    EXPECT_FALSE(fixed.IsEqual(world(limit), 1e-3f));
}

TEST_F(TransformFunctionsTest, AJointWithoutALimitStaysAsItIs) {
    int const count = parent.AttributeCount();
    EXPECT_EQ("true", eval("return parent:alignLimit('XAxis'):snapOffsetClosestAxis(true) == parent"));
    EXPECT_EQ(count, parent.AttributeCount());
}

TEST_F(TransformFunctionsTest, AHandleKnowsItsSolverAndTheEndsOfItsChain) {
    XIKHandle const handle(scene().CreateObject(XIKHandle::TypeID));
    XObject const solver = scene().CreateObject(XIKSolver::TypeID);
    std::string const path = Qelutils::toUtf8(handle.Path());
    EXPECT_EQ("nil nil nil", eval("handle = scene:object('" + path +
                                  "') return handle:solver(), handle:root(), "
                                  "handle:endEffector()"));
    handle.IKSolverReference().SetObjectRef(solver);
    handle.IKRootReference().SetObjectRef(parent);
    handle.IKEffectorReference().SetObjectRef(child);
    EXPECT_EQ("IKSolver parent child", eval("return handle:solver():type(), handle:root():name(), "
                                            "handle:endEffector():name()"));
}

}  // namespace
}  // namespace Tavo
