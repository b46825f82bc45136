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
wchar_t const* const OrderWords[] = {L"XYZ", L"XZY", L"YXZ", L"YZX", L"ZXY", L"ZYX"};

XMatrix sample() {
    return XMatrix(XVector3(0.3f, -0.5f, 0.8f), 1.1f).ScaleBy(XVector3(2, 3, 4)).SetTranslation(5, 6, 7);
}

bool hasCleanColumn(XMatrix const& m) {
    for (int row = 0; row < 4; ++row)
        if (m.Element(row, 3) != 0) return false;
    return true;
}

XMatrix about(int axis, float angle) { return XMatrix(XVector3(axis == 0, axis == 1, axis == 2), angle); }

}  // namespace

TEST(XMatrix, StartsAtTheIdentityWithAZeroColumn) {
    EXPECT_TRUE(XMatrix().IsIdentity(0));
    EXPECT_TRUE(hasCleanColumn(XMatrix()));
}

TEST(XMatrix, AllFormsStoreTheSameAndDropTheFourthColumn) {
    float const floats[] = {1, 2, 3, 99, 4, 5, 6, 99, 7, 8, 9, 99, 10, 11, 12, 99};
    double const doubles[] = {1, 2, 3, 99, 4, 5, 6, 99, 7, 8, 9, 99, 10, 11, 12, 99};
    Qelutils::Vector<float> const list(floats, floats + 16);
    XVector3 const x(1, 2, 3), y(4, 5, 6), z(7, 8, 9), t(10, 11, 12);
    XMatrix const expected(x, y, z, t);
    for (XMatrix const& m : {XMatrix(floats), XMatrix(doubles), XMatrix(list), XMatrix(expected.AsMathEngineMatrix()),
                             XMatrix(expected.AsMatrix()), XMatrix().Set(x, y, z, t),
                             XMatrix().SetXAxis(x).SetYAxis(4, 5, 6).SetZAxis(z).SetTranslation(t)}) {
        EXPECT_EQ(m.AsMatrix(), expected.AsMatrix());
        EXPECT_TRUE(hasCleanColumn(m));
    }
    EXPECT_EQ(expected.AsMathEngineMatrix().m[2][3], 0);
    EXPECT_EQ(expected.AsMathEngineMatrix().m[3][3], 1);
}

TEST(XMatrix, AListOfAnotherSizeIsTheIdentity) {
    for (std::size_t size : {0u, 15u, 17u}) EXPECT_TRUE(XMatrix(Qelutils::Vector<float>(size, 2.0f)).IsIdentity(0));
}

TEST(XMatrix, MultiplyAppliesTheLeftFactorFirst) {
    XMatrix const turn = about(2, Pi / 2), move = XMatrix().SetTranslation(1, 0, 0);
    EXPECT_EQ(XVector3(1, 0, 0).Multiply(XMatrix(turn).Multiply(move)), XVector3(1, 1, 0));
    EXPECT_EQ(XVector3(1, 0, 0).Multiply(XMatrix().Multiply(move, turn)), XVector3(0, 2, 0));
    EXPECT_TRUE(hasCleanColumn(XMatrix().Multiply(turn, move)));
}

TEST(XMatrix, TheDeterminantIsThatOfTheRotationRows) {
    EXPECT_NEAR(sample().Determinant(), 24, 1e-4f);
    EXPECT_EQ(XMatrix().SetZero().Determinant(), 0);
}

TEST(XMatrix, TransposeTakesAllSixteenNumbersAndTranspose3x3LeavesTheTranslation) {
    XMatrix const m = sample();
    EXPECT_EQ(XMatrix(m).Transpose().Element(0, 3), 5);
    EXPECT_EQ(XMatrix(m).Transpose().Translation(), XVector3());
    EXPECT_EQ(XMatrix(m).Transpose().Transpose(), m);
    EXPECT_EQ(XMatrix(m).Transpose3x3().Translation(), XVector3(5, 6, 7));
    EXPECT_EQ(XMatrix(m).Transpose3x3().Element(0, 1), m.Element(1, 0));
}

TEST(XMatrix, TheInverseIsThatOfTheAffineTransformAlsoUnderScaleAndShear) {
    XMatrix m = sample();
    m.SetYAxis(XVector3(m.YAxis()).Add(XVector3(m.XAxis()).Scale(0.3f)));
    EXPECT_TRUE(XMatrix(m).Invert().Multiply(m).IsIdentity(1e-5f));
    EXPECT_TRUE(XMatrix(m).Multiply(XMatrix(m).Invert()).IsIdentity(1e-5f));
}

TEST(XMatrix, ASingularMatrixIsLeftAsItWas) {
    XMatrix zero;
    zero.SetZero().Invert();
    EXPECT_EQ(zero.AsMatrix(), XMatrix().SetZero().AsMatrix());
    XMatrix flat = XMatrix(XVector3(1, 2, 3), XVector3(2, 4, 6), XVector3(0, 0, 1), XVector3(1, 1, 1));
    Qelp::Matrix34 const before = flat.AsMatrix();
    EXPECT_EQ(flat.Invert().AsMatrix(), before);
}

TEST(XMatrix, OrthonormaliseKeepsTheFirstRowsDirectionAndIgnoresTheThird) {
    XMatrix m(XVector3(2, 0, 0), XVector3(1, 3, 0), XVector3(9, 9, -9), XVector3(4, 5, 6));
    m.Orthonormalize();
    EXPECT_EQ(m, XMatrix().SetTranslation(4, 5, 6));
}

TEST(XMatrix, OrthonormaliseOfALeftHandedMatrixIsRightHanded) {
    EXPECT_NEAR(XMatrix().SetZAxis(0, 0, -1).Orthonormalize().Determinant(), 1, 1e-6f);
}

TEST(XMatrix, ScalingLeavesTheTranslation) {
    XMatrix const m = XMatrix().SetTranslation(1, 2, 3);
    EXPECT_EQ(XMatrix(m).ScaleBy(2).Translation(), XVector3(1, 2, 3));
    EXPECT_EQ(XMatrix(m).ScaleBy(2).Scale(), XVector3(2, 2, 2));
    EXPECT_EQ(XMatrix(m).ScaleBy(XVector3(2, 3, 4)).Scale(), XVector3(2, 3, 4));
}

TEST(XMatrix, SettingTheRotationKeepsTheTranslationAndDropsTheScale) {
    XQuaternion const q(0.1f, 0.2f, 0.3f, 0.9f);
    for (XMatrix const& m :
         {sample().SetRotationQuaternion(q), sample().SetRotationAxisAngle(q.RotationAxis(), q.RotationAngle()),
          sample().SetRotationEulerAngles(q.RotationEulerAngles()),
          sample().SetRotationTwistSwing(q.RotationTwistSwing()),
          sample().SetRotationTwistSwingAngles(q.RotationTwistSwingAngles())}) {
        EXPECT_TRUE(m.RotationQuaternion().IsEqual(q, 1e-5f));
        EXPECT_EQ(m.Translation(), XVector3(5, 6, 7));
        EXPECT_TRUE(m.Scale().IsEqual(XVector3(1, 1, 1), 1e-5f));
    }
}

TEST(XMatrix, AnAxisOfAnyLengthSetsARotationAndAZeroOneTurnsAboutX) {
    EXPECT_EQ(XMatrix(XVector3(0, 0, 9), 1), about(2, 1));
    EXPECT_EQ(XMatrix(XVector3(0, 0, 0), 1), about(0, 1));
}

TEST(XMatrix, EulerAnglesReadBackInEveryOrder) {
    unsigned const seed = 99;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> angle(-1.5f, 1.5f);
    for (int i = 0; i < 600; ++i) {
        int const order = i % 6;
        XVector3 const angles(angle(random), angle(random), angle(random));
        XMatrix const m = XMatrix().SetRotationEulerAngles(angles, order);
        EXPECT_TRUE(m.RotationEulerAngles(order).IsEqual(angles, 2e-4f)) << order;
        EXPECT_EQ(m, XMatrix().SetRotationEulerAngles(angles, OrderWords[order]));
    }
}

TEST(XMatrix, AnUnknownOrderMeansXYZ) {
    XVector3 const angles(0.1f, 0.2f, 0.3f);
    XMatrix const expected = XMatrix().SetRotationEulerAngles(angles);
    EXPECT_EQ(XMatrix().SetRotationEulerAngles(angles, L"Q"), expected);
    EXPECT_EQ(XMatrix().SetRotationEulerAngles(angles, L"xyz"), expected);
    EXPECT_EQ(XMatrix().SetRotationEulerAngles(angles, 6), expected);
    EXPECT_EQ(XMatrix().SetRotationEulerAngles(angles, -1), expected);
    EXPECT_EQ(expected.RotationEulerAngles(17), expected.RotationEulerAngles());
    EXPECT_EQ(XMatrix().RotateByEulerAngles(angles, 17), expected);
}

TEST(XMatrix, RotationOrdersHaveTheNumbersOfTheMathematicsLibrary) {
    int const numbers[] = {0, 2, 6, 4, 8, 10};
    for (int order = 0; order < 6; ++order) {
        EXPECT_EQ(XMatrix::convertToMathEngineRotationOrder(order), numbers[order]);
        EXPECT_EQ(XMatrix::convertToMathEngineRotationOrder(OrderWords[order]), numbers[order]);
        EXPECT_EQ(XMatrix::convertFromMathEngineRotationOrder(numbers[order]), order);
    }
    EXPECT_EQ(XMatrix::convertToMathEngineRotationOrder(6), 0);
    EXPECT_EQ(XMatrix::convertToMathEngineRotationOrder(L""), 0);
    EXPECT_EQ(XMatrix::convertFromMathEngineRotationOrder(3), 0);
}

TEST(XMatrix, MatrixRotateByEulerAnglesTakesComponentsByTheirPlaceInTheOrder) {
    XVector3 const angles(0.1f, 0.2f, 0.3f);
    XMatrix const expected = about(0, 0.1f).Multiply(about(2, 0.2f)).Multiply(about(1, 0.3f));
    EXPECT_EQ(XMatrix::MatrixRotateByEulerAngles(XMatrix(), angles, 1), expected);
}

TEST(XMatrix, MatrixRotateByEulerAnglesWithAnUnknownOrderReturnsItsInput) {
    for (int order : {6, 100, -1})
        EXPECT_EQ(XMatrix::MatrixRotateByEulerAngles(sample(), XVector3(1, 2, 3), order).AsMatrix(),
                  sample().AsMatrix());
}

TEST(XMatrix, TurningLeavesTheTranslation) {
    XMatrix const start = XMatrix().SetTranslation(1, 2, 3);
    for (XMatrix const& m :
         {XMatrix(start).RotateX(1), XMatrix(start).RotateY(1), XMatrix(start).RotateZ(1),
          XMatrix(start).RotateByAxisAngle(XVector3(0, 0, 1), 1), XMatrix(start).RotateByEulerAngles(XVector3(1, 2, 3)),
          XMatrix(start).RotateByQuaternion(XQuaternion(1, 2, 3, 4))})
        EXPECT_EQ(m.Translation(), XVector3(1, 2, 3));
    EXPECT_TRUE(XMatrix(start).RotateZ(1).IsRotationEqual(about(2, 1)));
}

TEST(XMatrix, RotateByQuaternionGoesThroughEulerAngles) {
    XQuaternion const q(0.1f, 0.2f, 0.3f, 0.9f);
    EXPECT_EQ(sample().RotateByQuaternion(q), sample().RotateByEulerAngles(q.RotationEulerAngles()));
}

TEST(XMatrix, WorldAndLocalSpaceAreInverse) {
    XMatrix const local = XMatrix(XVector3(1, 1, 0), 0.4f).SetTranslation(1, 2, 3), parent = sample();
    XMatrix const world = XMatrix::MatrixTransformToWorldSpace(local, parent);
    EXPECT_EQ(world, XMatrix(local).Multiply(parent));
    EXPECT_TRUE(XMatrix::MatrixTransformToLocalSpace(world, parent).IsEqual(local, 1e-5f));
    EXPECT_TRUE(XMatrix(local).ConvertToWorldSpace(parent).IsEqual(world, 1e-5f));
    EXPECT_TRUE(XMatrix(world).ConvertToLocalSpace(parent).IsEqual(local, 1e-5f));
    EXPECT_TRUE(XMatrix(local).ConvertParentSpace(parent, parent).IsEqual(local, 1e-5f));
}

TEST(XMatrix, TheStaticFormsWorkOnACopy) {
    XMatrix const m = sample();
    EXPECT_EQ(XMatrix::MatrixTranslate(m, XVector3(1, 1, 1)).Translation(), XVector3(6, 7, 8));
    EXPECT_EQ(XMatrix::MatrixRotateByAxisAngle(m, 1, XVector3(0, 0, 1)), XMatrix(m).RotateZ(1));
    EXPECT_EQ(m, sample());
}

TEST(XMatrix, MirrorOnAPlaneReflectsPointsAndChangesTheHandedness) {
    XMatrix const m = XMatrix().Mirror(XQuaternion(1, 0, 0, 0));
    EXPECT_EQ(XVector3(2, 3, 4).Multiply(m), XVector3(-2, 3, 4));
    EXPECT_NEAR(m.Determinant(), -1, 1e-6f);
}

TEST(XMatrix, MirrorOnAPlaneTakesTheFourNumbersAsTheyAre) {
    float const half = std::sqrt(0.5f);
    XMatrix const m = XMatrix().Mirror(XQuaternion(half, 0, 0, half));
    EXPECT_EQ(XVector3(0, 1, 0).Multiply(m), XVector3(-1, 1, 0));
    EXPECT_EQ(XVector3(1, 0, 0).Multiply(m), XVector3(-1, 0, 0));
}

TEST(XMatrix, MirrorRotationNegatesAColumnAndARow) {
    EXPECT_TRUE(XMatrix().MirrorRotation(XMatrix::MirrorX, XMatrix::MirrorX).IsIdentity(0));
    XMatrix const m = XMatrix().MirrorRotation(XMatrix::MirrorX, XMatrix::MirrorY);
    EXPECT_EQ(m, XMatrix(XVector3(-1, 0, 0), XVector3(0, -1, 0), XVector3(0, 0, 1), XVector3()));
    EXPECT_NEAR(sample().MirrorRotation(XMatrix::MirrorZ, XMatrix::MirrorY).Determinant(), 24, 1e-4f);
}

TEST(XMatrix, AnUnknownMirrorAxisDoesNothingForThatArgument) {
    EXPECT_EQ(sample().Mirror(3, -1), sample());
    EXPECT_EQ(sample().MirrorRotation(7, XMatrix::MirrorX).XAxis(), sample().XAxis().Negate());
    EXPECT_EQ(sample().MirrorTranslation(-1).Translation(), XVector3(5, 6, 7));
}

TEST(XMatrix, MirrorTurnsTheRotationAndTheTranslation) {
    XMatrix const m = sample().Mirror(XMatrix::MirrorX, XMatrix::MirrorZ);
    EXPECT_EQ(m.Translation(), XVector3(-5, 6, 7));
    EXPECT_TRUE(m.IsRotationEqual(sample().MirrorRotation(XMatrix::MirrorX, XMatrix::MirrorZ)));
}

TEST(XMatrix, IsIdentityAddsTheDifferencesOfEachRow) {
    EXPECT_TRUE(XMatrix().SetXAxis(1, 4e-7f, 4e-7f).IsIdentity());
    EXPECT_FALSE(XMatrix().SetXAxis(1, 6e-7f, 6e-7f).IsIdentity());
    EXPECT_FALSE(XMatrix().SetTranslation(6e-7f, 6e-7f, 0).IsIdentity());
}

TEST(XMatrix, IsIsotropicIsExact) {
    EXPECT_TRUE(XMatrix().ScaleBy(3).SetTranslation(1, 2, 3).IsIsotropic());
    EXPECT_TRUE(XMatrix().SetZero().IsIsotropic());
    EXPECT_FALSE(XMatrix().ScaleBy(XVector3(1, 1, 1.0000001f)).IsIsotropic());
    EXPECT_FALSE(XMatrix().SetXAxis(1, 1e-30f, 0).IsIsotropic());
}

TEST(XMatrix, EqualityIsByRowAndTellsRotationFromTranslation) {
    XMatrix const moved = XMatrix().SetTranslation(1, 0, 0);
    EXPECT_NE(moved, XMatrix());
    EXPECT_TRUE(moved.IsRotationEqual(XMatrix()));
    EXPECT_FALSE(moved.IsTranslationEqual(XMatrix()));
    EXPECT_TRUE(moved.IsTranslationEqual(XMatrix(), 1));
    EXPECT_TRUE(XMatrix().Transpose().IsEqual(XMatrix()));
}
