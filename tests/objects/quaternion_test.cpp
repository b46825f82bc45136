#include "qel/utils/maths.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/quaternion.h"
#include "tavo/objects/vector3.h"
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace Tavo;

namespace {

constexpr float Pi = 3.1415927f;

void expectNear(XQuaternion const& actual, float x, float y, float z, float w, float tolerance = 1e-6f) {
    EXPECT_NEAR(actual.X(), x, tolerance);
    EXPECT_NEAR(actual.Y(), y, tolerance);
    EXPECT_NEAR(actual.Z(), z, tolerance);
    EXPECT_NEAR(actual.W(), w, tolerance);
}

XQuaternion aboutZ(float angle) { return XQuaternion().SetRotationAxisAngle(XVector3(0, 0, 1), angle); }

}  // namespace

TEST(XQuaternion, StartsAtTheIdentity) {
    EXPECT_TRUE(XQuaternion().IsIdentity());
    expectNear(XQuaternion(), 0, 0, 0, 1, 0);
}

TEST(XQuaternion, EveryWayInEndsAtUnitLength) {
    float const floats[] = {2, 0, 0, 2};
    float const half = std::sqrt(0.5f);
    for (XQuaternion const& q :
         {XQuaternion(0.1f, 0, 0, 0.1f), XQuaternion(floats), XQuaternion(QelVector4(3, 0, 0, 3)),
          XQuaternion(Qelp::Quat{4, 0, 0, 4}), XQuaternion().Set(5, 0, 0, 5), XQuaternion().Set(floats),
          XQuaternion().Set(QelVector4(3, 0, 0, 3)), XQuaternion().Set(Qelp::Quat{4, 0, 0, 4}),
          XQuaternion().SetReverseQuaternion(QelVector4(6, 6, 0, 0))})
        expectNear(q, half, 0, 0, half);
}

TEST(XQuaternion, ZeroBecomesTheIdentity) { EXPECT_TRUE(XQuaternion(0, 0, 0, 0).IsIdentity()); }

TEST(XQuaternion, AnIndexBeyondTheComponentsReadsZero) {
    XQuaternion const q(0, 0, 0, 1);
    EXPECT_EQ(q[3], 1);
    EXPECT_EQ(q[4], 0);
}

TEST(XQuaternion, ConstructionFromAVectorReadsEulerAnglesAndSetCopiesIt) {
    expectNear(XQuaternion(XVector3(0, 0, 1)), 0, 0, std::sin(0.5f), std::cos(0.5f));
    expectNear(XQuaternion().Set(XVector3(0, 0, 2)), 0, 0, 1, 0);
}

TEST(XQuaternion, TheTwoConversionsToFourNumbersDifferInTheirOrder) {
    XQuaternion const q(0.5f, 0.5f, -0.5f, 0.5f);
    EXPECT_EQ(q.AsMathEngineVector(), QelVector4(0.5f, 0.5f, -0.5f, 0.5f));
    EXPECT_EQ(q.AsMathEngineQuaternionVector(), QelVector4(0.5f, 0.5f, 0.5f, -0.5f));
    EXPECT_EQ(q.AsVector3(), XVector3(0.5f, 0.5f, -0.5f));
}

TEST(XQuaternion, RotationsAboutAnAxisReadBack) {
    XQuaternion const q = XQuaternion().SetRotationAxisAngle(XVector3(0, 1, 0), 0.7f);
    EXPECT_EQ(q.RotationAxis(), XVector3(0, 1, 0));
    EXPECT_NEAR(q.RotationAngle(), 0.7f, 1e-6f);
    EXPECT_EQ(q.RotationEulerAngles(), XVector3(0, 0.7f, 0));
}

TEST(XQuaternion, SetRotationMatrixLeavesScaleOut) {
    XMatrix const m = XMatrix(XVector3(0, 0, 1), 1).ScaleBy(XVector3(2, 3, 4));
    EXPECT_EQ(XQuaternion().SetRotationMatrix(m), aboutZ(1));
}

TEST(XQuaternion, ConjugateTurnsBack) { EXPECT_EQ(aboutZ(1).Conjugate(), aboutZ(-1)); }

TEST(XQuaternion, MultiplyTakesTheStoredOrderAsItIs) {
    QelVector4 expected;
    XQuaternion const a = aboutZ(1), b = XQuaternion().SetRotationAxisAngle(XVector3(1, 0, 0), 1);
    expected.quaternionMultiply(a.AsMathEngineVector(), b.AsMathEngineVector());
    EXPECT_EQ(XQuaternion().Multiply(a, b), XQuaternion(expected));
    QelVector4 hamilton;
    hamilton.quaternionMultiply(a.AsMathEngineQuaternionVector(), b.AsMathEngineQuaternionVector());
    EXPECT_NE(XQuaternion().Multiply(a, b), XQuaternion().SetReverseQuaternion(hamilton));
}

TEST(XQuaternion, TheCrossProductIsThatOfTheVectorParts) {
    XQuaternion const x(1, 0, 0, 0), y(0, 1, 0, 0);
    expectNear(XQuaternion().CrossProduct(x, y), 0, 0, 1, 0);
    expectNear(XQuaternion(x).CrossProduct(y), 0, 0, 1, 0);
}

TEST(XQuaternion, LinearInterpolationDoesNotChooseTheShorterArc) {
    XQuaternion const a(0, 0, 0, 1), b(0, 0, 0.6f, -0.8f);
    expectNear(XQuaternion().Interpolate(a, b, 0.5f), 0, 0, 0.3f / std::hypot(0.3f, 0.1f),
               0.1f / std::hypot(0.3f, 0.1f));
    expectNear(XQuaternion(a).Interpolate(b, 0), 0, 0, 0, 1);
}

TEST(XQuaternion, SphericalInterpolationIsUniformInTheAngle) {
    EXPECT_EQ(XQuaternion().SphericalInterpolate(aboutZ(0), aboutZ(2), 0.25f), aboutZ(0.5f));
}

TEST(XQuaternion, TurningTheFourNumbersTurnsTheVectorPart) {
    expectNear(XQuaternion(1, 0, 0, 0).RotateZ(Pi / 2), 0, 1, 0, 0);
    expectNear(XQuaternion(0, 1, 0, 0).RotateX(Pi / 2), 0, 0, 1, 0);
    expectNear(XQuaternion(0, 0, 1, 0).RotateY(Pi / 2), 1, 0, 0, 0);
    expectNear(XQuaternion(1, 0, 0, 0).RotateAxisAngle(XQuaternion(0, 0, 1, 0), Pi / 2), 0, 1, 0, 0);
}

TEST(XQuaternion, ConversionToWorldSpaceIsARowTimesTheMatrix) {
    XMatrix const m = XMatrix(XVector3(0, 0, 1), 0.5f).SetTranslation(1, 2, 3);
    XQuaternion const q(0.5f, -0.5f, 0.5f, 0.5f);
    EXPECT_EQ(XQuaternion(q).ConvertToWorldSpace(m), XQuaternion(q.AsMathEngineVector() * m.AsMathEngineMatrix()));
    EXPECT_EQ(XQuaternion(q).Multiply(m), XQuaternion(q).ConvertToWorldSpace(m));
}

TEST(XQuaternion, ConversionToLocalSpaceUndoesTheRotationOfAMatrixWithoutTranslation) {
    XMatrix const m(XVector3(0, 0, 1), 0.5f);
    XQuaternion const q(0.5f, -0.5f, 0.5f, 0.5f);
    EXPECT_EQ(XQuaternion(q).ConvertToWorldSpace(m).ConvertToLocalSpace(m), q);
    EXPECT_EQ(XQuaternion(q).ConvertParentSpace(m, m), q);
}

TEST(XQuaternion, TheRelativeAngleIsBetweenTheVectorParts) {
    EXPECT_NEAR(aboutZ(0.1f).RelativeAngle(aboutZ(3)), 0, 1e-6f);
    EXPECT_NEAR(aboutZ(1).RelativeAngle(XQuaternion().SetRotationAxisAngle(XVector3(1, 0, 0), 1)), Pi / 2, 1e-6f);
}

TEST(XQuaternion, IsIdentityIgnoresItsTolerance) {
    EXPECT_FALSE(XQuaternion(0, 0, 0.1f, 0.995f).IsIdentity(0.5f));
    EXPECT_TRUE(XQuaternion().IsIdentity(0));
}

TEST(XQuaternion, IsNormalIsSigned) {
    EXPECT_TRUE(XQuaternion().IsNormal(0));
    EXPECT_FALSE(XQuaternion().IsNormal(-0.5f));
    EXPECT_TRUE(XQuaternion(0.3f, 0.4f, 0.5f, 0.6f).IsNormal());
}

TEST(XQuaternion, EqualityIsByComponentSoThatMinusQDiffers) {
    XQuaternion const q(0.5f, 0.5f, 0.5f, 0.5f);
    EXPECT_EQ(q, XQuaternion(q));
    EXPECT_NE(q, XQuaternion(-0.5f, -0.5f, -0.5f, -0.5f));
    EXPECT_TRUE(q.IsEqual(XQuaternion(0.6f, 0.5f, 0.5f, 0.5f), 0.2f));
}

TEST(XQuaternion, EveryFormOfARotationReadsBack) {
    unsigned const seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::normal_distribution<float> component;
    for (int i = 0; i < 1000; ++i) {
        XQuaternion q(component(random), component(random), component(random), component(random));
        if (q.W() < 0) q.Set(-q.X(), -q.Y(), -q.Z(), -q.W());
        EXPECT_TRUE(XQuaternion().SetRotationMatrix(XMatrix(q)).IsEqual(q, 1e-5f));
        EXPECT_TRUE(XQuaternion().SetRotationAxisAngle(q.RotationAxis(), q.RotationAngle()).IsEqual(q, 1e-5f));
        EXPECT_TRUE(XQuaternion().SetRotationEulerAngles(q.RotationEulerAngles()).IsEqual(q, 1e-5f));
        EXPECT_TRUE(XQuaternion().SetRotationTwistSwing(q.RotationTwistSwing()).IsEqual(q, 1e-5f));
        EXPECT_TRUE(XQuaternion().SetRotationTwistSwingAngles(q.RotationTwistSwingAngles()).IsEqual(q, 1e-5f));
    }
}
