#include "qel/utils/maths.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/quaternion.h"
#include "tavo/objects/vector3.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace Tavo;

namespace {

constexpr float Pi = 3.1415927f;

void expectNear(XVector3 const& actual, float x, float y, float z, float tolerance = 1e-6f) {
    EXPECT_NEAR(actual.X(), x, tolerance);
    EXPECT_NEAR(actual.Y(), y, tolerance);
    EXPECT_NEAR(actual.Z(), z, tolerance);
}

XMatrix turnAndMove() { return XMatrix(XVector3(0, 0, 1), Pi / 2).SetTranslation(10, 20, 30); }

}  // namespace

TEST(XVector3, StartsAtZeroAndAllFormsStoreTheSame) {
    float const floats[] = {1, 2, 3};
    EXPECT_TRUE(XVector3().IsZero(0));
    for (XVector3 const& v : {XVector3(1, 2, 3), XVector3(floats), XVector3(Qelp::Vector3{1, 2, 3, 9}),
                              XVector3(QelVector3(1, 2, 3)), XVector3().Set(floats), XVector3().Set(XVector3(1, 2, 3)),
                              XVector3().Set(QelVector3(1, 2, 3)), XVector3().SetX(1).SetY(2).SetZ(3)})
        EXPECT_EQ(v.AsVector(), (Qelp::Vector3{1, 2, 3, 0}));
}

TEST(XVector3, AnIndexBeyondTheComponentsReadsZero) {
    XVector3 const v(1, 2, 3);
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[2], 3);
    EXPECT_EQ(v[3], 0);
    EXPECT_EQ(v[4000000000u], 0);
}

TEST(XVector3, CopyToFillsItsArgument) {
    XVector3 out;
    XVector3(1, 2, 3).CopyTo(out);
    expectNear(out, 1, 2, 3, 0);
}

TEST(XVector3, ConstructionFromARotationReadsEulerAnglesAndSetCopiesTheVectorPart) {
    XQuaternion const q = XQuaternion().SetRotationAxisAngle(XVector3(0, 1, 0), 1);
    expectNear(XVector3(q), 0, 1, 0);
    expectNear(XVector3().Set(q), 0, std::sin(0.5f), 0);
}

TEST(XVector3, MeasuresLengthsDistancesAndProducts) {
    XVector3 const a(3, 4, 12), b(3, 4, 0);
    EXPECT_FLOAT_EQ(a.Magnitude(), 13);
    EXPECT_FLOAT_EQ(a.MagnitudeSquared(), 169);
    EXPECT_FLOAT_EQ(a.DistanceTo(b), 12);
    EXPECT_FLOAT_EQ(a.DistanceSquaredTo(b), 144);
    EXPECT_FLOAT_EQ(a.DotProduct(b), 25);
}

TEST(XVector3, ArithmeticWorksOnItselfAndOnItsArguments) {
    XVector3 const a(1, 2, 3), b(10, 20, 40);
    expectNear(XVector3(a).Add(b), 11, 22, 43);
    expectNear(XVector3(9, 9, 9).Add(a, b), 11, 22, 43);
    expectNear(XVector3(a).Subtract(b), -9, -18, -37);
    expectNear(XVector3(9, 9, 9).Subtract(b, a), 9, 18, 37);
    expectNear(XVector3(a).Scale(2), 2, 4, 6);
    expectNear(XVector3(9, 9, 9).Multiply(2, a), 2, 4, 6);
    expectNear(XVector3(a).Negate(), -1, -2, -3);
}

TEST(XVector3, TheCrossProductIsRightHanded) {
    expectNear(XVector3(1, 0, 0).CrossProduct(XVector3(0, 1, 0)), 0, 0, 1);
    expectNear(XVector3(9, 9, 9).CrossProduct(XVector3(0, 1, 0), XVector3(0, 0, 1)), 1, 0, 0);
}

TEST(XVector3, NormalisingZeroGivesTheXAxis) { expectNear(XVector3(0, 0, 0).Normalize(), 1, 0, 0, 0); }

TEST(XVector3, NormalisingTinyAndHugeVectorsKeepsTheirDirection) {
    for (float size : {1e-38f, 1e-20f, 1.0f, 1e20f, 1e38f}) {
        SCOPED_TRACE(size);
        expectNear(XVector3(0.6f * size, 0, 0.8f * size).Normalize(), 0.6f, 0, 0.8f);
    }
}

TEST(XVector3, MultiplyMovesAPointAndRotateOnlyTurnsIt) {
    expectNear(XVector3(1, 2, 3).Multiply(turnAndMove()), 8, 21, 33, 1e-5f);
    expectNear(XVector3(1, 2, 3).Rotate(turnAndMove()), -2, 1, 3);
}

TEST(XVector3, QuarterTurnsAboutTheAxesAreRightHanded) {
    expectNear(XVector3(0, 1, 0).RotateX(Pi / 2), 0, 0, 1);
    expectNear(XVector3(0, 0, 1).RotateY(Pi / 2), 1, 0, 0);
    expectNear(XVector3(1, 0, 0).RotateZ(Pi / 2), 0, 1, 0);
    expectNear(XVector3(1, 0, 0).RotateAxisAngle(XVector3(0, 0, 1), Pi / 2), 0, 1, 0);
}

TEST(XVector3, ThePolarAngleRunsFromXTowardsZ) {
    EXPECT_FLOAT_EQ(XVector3(1, 5, 0).PolarAngleXZ(), 0);
    EXPECT_FLOAT_EQ(XVector3(0, 5, 2).PolarAngleXZ(), Pi / 2);
    EXPECT_FLOAT_EQ(XVector3(0, 5, 0).PolarAngleXZ(), 0);
}

TEST(XVector3, InterpolatesInAStraightLineAlsoBeyondTheEnds) {
    XVector3 const a(0, 10, 20), b(10, 20, 40);
    expectNear(XVector3(a).Interpolate(b, 0.5f), 5, 15, 30);
    expectNear(XVector3(9, 9, 9).Interpolate(a, b, 2), 20, 30, 60);
}

TEST(XVector3, SphericalInterpolationTakesDirectionAndLengthApart) {
    expectNear(XVector3().SphericalInterpolate(XVector3(1, 0, 0), XVector3(0, 3, 0), 0.5f), std::sqrt(2.0f),
               std::sqrt(2.0f), 0);
}

TEST(XVector3, SphericalInterpolationFallsBackToAStraightLine) {
    struct {
        char const* what;
        XVector3 a, b;
        float t;
        XVector3 result;
    } const cases[] = {
        {"a without length", {0, 0, 0}, {0, 2, 0}, 0.5f, {0, 1, 0}},
        {"b without length", {2, 0, 0}, {0, 0, 0}, 0.5f, {1, 0, 0}},
        {"no angle", {1, 0, 0}, {3, 0, 0}, 0.5f, {2, 0, 0}},
        {"nothing swept", {1, 0, 0}, {0, 1, 0}, 0, {1, 0, 0}},
        {"half a turn", {1, 0, 0}, {-1, 0, 0}, 1, {-1, 0, 0}},
        {"backwards", {1, 0, 0}, {0, 1, 0}, -1, {2, -1, 0}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.what);
        expectNear(XVector3().SphericalInterpolate(c.a, c.b, c.t), c.result.X(), c.result.Y(), c.result.Z());
    }
}

TEST(XVector3, TheRotationAxisHasTheAngleAsItsLength) {
    expectNear(XVector3().RotationAxis(XVector3(2, 0, 0), XVector3(0, 5, 0)), 0, 0, Pi / 2);
}

TEST(XVector3, TheRotationAxisOfParallelVectorsIsZeroAndOfOppositeOnesUnscaled) {
    expectNear(XVector3().RotationAxis(XVector3(0, 0, 0), XVector3(1, 0, 0)), 0, 0, 0, 0);
    expectNear(XVector3().RotationAxis(XVector3(1, 0, 0), XVector3(0, 0, 0)), 0, 0, 0, 0);
    expectNear(XVector3().RotationAxis(XVector3(0, 2, 0), XVector3(0, 3, 0)), 0, 0, 0, 0);
    expectNear(XVector3().RotationAxis(XVector3(1, 0, 0), XVector3(-1, 0, 0)), 0, 1, 0, 0);
    expectNear(XVector3().RotationAxis(XVector3(0, 0, 2), XVector3(0, 0, -2)), 0, 2, 0, 0);
}

TEST(XVector3, TheRotationAxisOfMinusXIsZeroAsItStands) {
    expectNear(XVector3().RotationAxis(XVector3(-1, 0, 0), XVector3(1, 0, 0)), 0, 0, 0, 0);
}

TEST(XVector3, TheRotationAxisHonoursItsTolerance) {
    EXPECT_FALSE(XVector3().RotationAxis(XVector3(1, 0, 0), XVector3(1, 2e-5f, 0)).IsZero(0));
    EXPECT_TRUE(XVector3().RotationAxis(XVector3(1, 0, 0), XVector3(1, 5e-6f, 0)).IsZero(0));
    EXPECT_TRUE(XVector3().RotationAxis(XVector3(1, 0, 0), XVector3(1, 2e-5f, 0), 1e-3f).IsZero(0));
}

TEST(XVector3, TheRelativeAngleIsThatOfTheDirections) {
    EXPECT_NEAR(XVector3(5, 0, 0).RelativeAngle(XVector3(0, 0.1f, 0)), Pi / 2, 1e-6f);
    EXPECT_NEAR(XVector3(5, 0, 0).RelativeAngle(XVector3(-1, 0, 0)), Pi, 1e-6f);
    EXPECT_EQ(XVector3(5, 0, 0).RelativeAngle(XVector3(7, 0, 0)), 0);
}

TEST(XVector3, SpaceConversionsGoThroughAQuaternionAndAreNoPointTransforms) {
    XMatrix const m = turnAndMove();
    XVector3 const angles(0.1f, 0.2f, 0.3f);
    XQuaternion const q(angles);
    expectNear(XVector3(angles).ConvertToWorldSpace(m), XQuaternion(q).ConvertToWorldSpace(m).X(),
               XQuaternion(q).ConvertToWorldSpace(m).Y(), XQuaternion(q).ConvertToWorldSpace(m).Z(), 0);
    EXPECT_NE(XVector3(angles).ConvertToWorldSpace(m), XVector3(angles).Multiply(m));
    EXPECT_EQ(XVector3(angles).ConvertToLocalSpace(m), XVector3().Set(XQuaternion(q).ConvertToLocalSpace(m)));
    EXPECT_EQ(XVector3(angles).ConvertParentSpace(m, XMatrix()),
              XVector3().Set(XQuaternion(q).ConvertParentSpace(m, XMatrix())));
}

TEST(XVector3, IsZeroComparesTheToleranceWithTheSquaredLength) {
    EXPECT_TRUE(XVector3(9e-4f, 0, 0).IsZero());
    EXPECT_FALSE(XVector3(2e-3f, 0, 0).IsZero());
}

TEST(XVector3, EqualityIsByComponentWithinTheTolerance) {
    XVector3 const v(1, 2, 3);
    EXPECT_EQ(v, XVector3(1, 2, 3.0000002f));
    EXPECT_NE(v, XVector3(1, 2.00001f, 3));
    EXPECT_TRUE(v.IsEqual(XVector3(1.1f, 2, 3), 0.2f));
    EXPECT_FALSE(v.IsEqual(XVector3(std::numeric_limits<float>::quiet_NaN(), 2, 3), 1));
}

TEST(XVector3, IsNormalComparesTheLength) {
    EXPECT_TRUE(XVector3(0, 1, 0).IsNormal());
    EXPECT_FALSE(XVector3(0, 1.1f, 0).IsNormal());
    EXPECT_TRUE(XVector3(0, 1.1f, 0).IsNormal(0.2f));
}

TEST(XVector3, CountsAsAnObjectWithoutANode) {
    int const before = XVector3::ObjectRefCount();
    {
        XVector3 const v;
        EXPECT_EQ(XVector3::ObjectRefCount(), before + 1);
        EXPECT_FALSE(v.IsValid());
        EXPECT_FALSE(v.definition()->CanUnregister());
    }
    EXPECT_EQ(XVector3::ObjectRefCount(), before);
    EXPECT_EQ(XVector3::Definition().ObjectType(), L"Vector3");
    std::unique_ptr<XObject> const made(XVector3::Definition().CreateObject(nullptr, 7));
    EXPECT_TRUE(dynamic_cast<XVector3*>(made.get()));
}

TEST(XVector3, RotationAxisTakesOneVectorToTheOther) {
    unsigned const seed = 20250711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> component(-10, 10);
    auto const any = [&] { return XVector3(component(random), component(random), component(random)); };
    for (int i = 0; i < 1000; ++i) {
        XVector3 const a = any(), b = any();
        XVector3 const turn = XVector3().RotationAxis(a, b);
        XVector3 const turned = XVector3(a).RotateAxisAngle(turn, turn.Magnitude());
        EXPECT_NEAR(turned.RelativeAngle(b), 0, 1e-3f);
    }
}
