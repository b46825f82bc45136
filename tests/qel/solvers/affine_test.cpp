// Transforms in double precision between the matrices of the scene.
#include "qel/solvers/affine.h"
#include "tests/qel/solvers/random_places.h"
#include <cfloat>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

using Qelp::Matrix34;
using Qelutils::rotation::fromQuaternion;
constexpr float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();

void expectNear(Affine const& a, Affine const& b, double tolerance) {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(a.m[i][j], b.m[i][j], tolerance) << i << ", " << j;
}

TEST(Affine, ATransformAndItsInverseAreNothing) {
    RandomPlaces random;
    for (int round = 0; round < 200; ++round) {
        Affine const a = toAffine(random.squeezedPlace());
        expectNear(multiply(a, inverse(a)), {}, 1e-11);
        expectNear(multiply(inverse(a), a), {}, 1e-11);
    }
}

TEST(Affine, TheLeftFactorActsFirst) {
    Affine const quarter = toAffine(fromQuaternion({0, 0, 1, 1}), {});
    Affine const moved = toAffine(Qelutils::rotation::Rotation(), {1, 0, 0});
    expectNear(multiply(moved, quarter), toAffine(fromQuaternion({0, 0, 1, 1}), {0, 1, 0}), 1e-15);
    expectNear(multiply(quarter, moved), toAffine(fromQuaternion({0, 0, 1, 1}), {1, 0, 0}), 1e-15);
}

TEST(Affine, WhatIsSqueezedFlatIsUndoneAsItsRotationAndTranslation) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        Affine const rigid = toAffine(random.place());
        Affine flat = rigid;
        for (double& value : flat.m[round % 3]) value = 0;
        expectNear(inverse(flat), inverse(rigid), 1e-5);
    }
}

TEST(Affine, HugeAndTinyScalesAreUndone) {
    for (float scale : {1e-30F, 1e30F}) {
        Matrix34 m;
        for (int i = 0; i < 3; ++i) m.m[i][i] = scale;
        expectNear(multiply(toAffine(m), inverse(toAffine(m))), {}, 1e-12);
        Qelutils::rotation::Rotation const r = rotationOf(inverse(toAffine(m)));
        EXPECT_DOUBLE_EQ(r.m[0][0], 1);
        EXPECT_DOUBLE_EQ(r.m[2][2], 1);
    }
}

TEST(Affine, TheRotationOfWhatNoFloatCanHoldIsStillTold) {
    RandomPlaces random;
    for (double scale : {1e-60, 1e60}) {
        Qelutils::rotation::Rotation const r = fromQuaternion(random.rotation());
        Affine a = toAffine(r, {});
        for (auto& row : a.m)
            for (double& value : row) value *= scale;
        expectNear(toAffine(rotationOf(a), {}), toAffine(r, {}), 1e-6);
    }
}

TEST(Affine, BrokenNumbersAreThoseOfTheIdentity) {
    Matrix34 m;
    m.m[0][0] = nan, m.m[1][0] = infinity, m.m[3][2] = -infinity;
    EXPECT_FALSE(isFinite(m));
    expectNear(toAffine(m), {}, 0);
    EXPECT_TRUE(isFinite(Matrix34()));
}

TEST(Affine, NumbersBeyondAFloatBecomeItsLargest) {
    EXPECT_EQ(clampedFloat(1e300), FLT_MAX);
    EXPECT_EQ(clampedFloat(-1e300), -FLT_MAX);
    EXPECT_EQ(clampedFloat(0.5), 0.5F);
}

TEST(Affine, AMatrixComesBackAsItWas) {
    RandomPlaces random;
    Matrix34 const m = random.squeezedPlace();
    EXPECT_EQ(toMatrix(toAffine(m)), m);
}

}  // namespace
}  // namespace sg
