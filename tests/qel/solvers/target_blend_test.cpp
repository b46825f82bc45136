// The blend of a constraint's targets.
#include "qel/solvers/rotation_average.h"
#include "qel/solvers/target_blend.h"
#include "qel/utils/rotation.h"
#include "tests/qel/solvers/random_places.h"
#include <cfloat>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

using Qelp::Matrix34;
using Qelp::Vector3;
constexpr float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();

Matrix34 at(float x, float y, float z) {
    Matrix34 m;
    m.m[3][0] = x, m.m[3][1] = y, m.m[3][2] = z;
    return m;
}
Matrix34 turned(float x, float y, float z) {
    Matrix34 m;
    Qelutils::eulerToMatrix({x, y, z}, 0, m);
    return m;
}
void expectNear(Matrix34 const& a, Matrix34 const& b, float tolerance = 1e-5F) {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) EXPECT_NEAR(a.m[i][j], b.m[i][j], tolerance) << i << ", " << j;
}
TargetBlend blended(std::vector<BlendTarget> targets, bool normalize = true, Matrix34 const& parent = {}) {
    TargetBlend blend{std::move(targets), parent, normalize, {}, {}, {}, {}};
    blend.Run();
    return blend;
}
float xOf(std::vector<BlendTarget> targets, bool normalize) {
    return blended(std::move(targets), normalize).translation.x;
}

TEST(TargetBlend, OneTargetIsWhereItEnds) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        Matrix34 const target = random.place(), parent = random.place();
        expectNear(Qelutils::multiply(blended({{target, {}, 0.3}}, true, parent).local, parent), target);
    }
}

TEST(TargetBlend, TheOffsetIsAPlaceInTheTargetsSpace) {
    RandomPlaces random;
    Matrix34 const target = random.place(), offset = random.place();
    expectNear(blended({{target, offset, 1}}).local, Qelutils::multiply(offset, target));
}

TEST(TargetBlend, PointsAreAveragedByTheirWeights) {
    EXPECT_EQ(blended({{at(1, 2, 3), {}, 1}, {at(3, 2, 1), {}, 1}}).translation, (Vector3{2, 2, 2}));
    EXPECT_EQ(blended({{at(1, 2, 3), {}, 3}, {at(5, 2, 3), {}, 1}}).translation, (Vector3{2, 2, 3}));
}

TEST(TargetBlend, RotationsAreAveragedAsRotations) {
    auto const expectAngle = [](float a, float b, double expected) {
        EXPECT_NEAR(blended({{turned(0, 0, a), {}, 1}, {turned(0, 0, b), {}, 1}}).rotation.z, expected, 1e-6);
    };
    expectAngle(0.2F, 0.6F, 0.4);
    expectAngle(3.0F, -3.0F, std::acos(-1));  // by the shorter way
    expectAngle(-0.5F, 0.5F, 0);
}

TEST(TargetBlend, MatchesTheAverageOfWhatItsTargetsAreInTheParent) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        Matrix34 const parent = random.place();
        std::vector<BlendTarget> targets;
        RotationAverage expected;
        for (int i = 0; i < 4; ++i) {
            targets.push_back({random.place(), random.place(), random.real(0, 1)});
            Affine const wanted = multiply(toAffine(targets.back().offset), toAffine(targets.back().world));
            expected.add(toQuaternion(rotationOf(multiply(wanted, inverse(toAffine(parent))))), targets.back().weight);
        }
        EXPECT_NEAR(angleBetween(blended(targets, true, parent).quaternion, expected.get()), 0, 1e-12);
    }
}

TEST(TargetBlend, NormalisedWeightsCountByTheirRatios) {
    for (double size : {1e-6, 0.25, 1.0, 100.0})
        EXPECT_FLOAT_EQ(xOf({{at(1, 0, 0), {}, size}, {at(4, 0, 0), {}, 2 * size}}, true), 3);
}

TEST(TargetBlend, WhatWeightsLeaveOfOneBelongsToTheParent) {
    EXPECT_FLOAT_EQ(xOf({{at(4, 0, 0), {}, 0.25}}, false), 1);
    EXPECT_FLOAT_EQ(xOf({{at(4, 0, 0), {}, 0.25}, {at(2, 0, 0), {}, 0.25}}, false), 1.5);
    EXPECT_NEAR(blended({{turned(0, 0, 1), {}, 0.5}}, false).rotation.z, 0.5, 1e-6);
    EXPECT_NEAR(blended({{turned(0, 0, 1), {}, 1e-9}}, false).rotation.z, 0, 1e-6);
}

TEST(TargetBlend, WeightsAboveOneInSumDoNotThrowItBeyondItsTargets) {
    EXPECT_FLOAT_EQ(xOf({{at(4, 0, 0), {}, 2}}, false), 4);
    EXPECT_FLOAT_EQ(xOf({{at(4, 0, 0), {}, 1}, {at(2, 0, 0), {}, 1}}, false), 3);
}

TEST(TargetBlend, NotNormalisedItIsContinuousWhereTheSumPassesOneAndZero) {
    Matrix34 const a = turned(0.3F, 0.2F, 0.1F), b = at(1, 2, 3);
    for (double edge : {0.0, 1.0}) {
        TargetBlend const below = blended({{a, {}, edge * 0.4}, {b, {}, edge * 0.6}}, false);
        TargetBlend const above = blended({{a, {}, edge * 0.4 + 1e-7}, {b, {}, edge * 0.6 + 1e-7}}, false);
        EXPECT_NEAR(angleBetween(below.quaternion, above.quaternion), 0, 1e-5);
        EXPECT_NEAR(below.translation.y, above.translation.y, 1e-5);
    }
}

TEST(TargetBlend, WithoutWeightItStandsAtTheParent) {
    RandomPlaces random;
    for (bool normalize : {false, true}) {
        EXPECT_EQ(blended({}, normalize, random.place()).local, Matrix34());
        EXPECT_EQ(blended({{random.place(), {}, 0}}, normalize, random.place()).local, Matrix34());
        EXPECT_EQ(blended({{random.place(), {}, -1}, {random.place(), {}, nan}}, normalize).local, Matrix34());
    }
}

TEST(TargetBlend, ScaleDoesNotCount) {
    Matrix34 big = turned(0.3F, 0.2F, 0.1F);
    for (auto& row : big.m)
        for (float& value : row) value *= 3;
    expectNear(blended({{big, {}, 1}}).local, turned(0.3F, 0.2F, 0.1F));
}

// However the parent is squeezed, the X axis and the place are those of the target.
TEST(TargetBlend, BelowAShearedParentTheDirectionOfXAndThePlaceHold) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        Matrix34 const parent = random.squeezedPlace(), target = random.place();
        Matrix34 const world = Qelutils::multiply(blended({{target, {}, 1}}, true, parent).local, parent);
        double length = 0;
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(world.m[3][j], target.m[3][j], 1e-3);
            length += double(world.m[0][j]) * world.m[0][j];
        }
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(world.m[0][j] / std::sqrt(length), target.m[0][j], 1e-3);
    }
}

TEST(TargetBlend, NoNumberMakesAnythingThatIsNotFinite) {
    float const odd[] = {0, 1, -1, 1e-45F, 1e-20F, 1e20F, FLT_MAX, -FLT_MAX, infinity, -infinity, nan};
    RandomPlaces random;
    auto const pick = [&] { return odd[std::size_t(random.real(0, 10.999))]; };
    auto const matrix = [&] {
        Matrix34 m = random.place();
        for (int i = 0; i < 4; ++i) m.m[int(random.real(0, 3.999))][int(random.real(0, 2.999))] = pick();
        return m;
    };
    for (int round = 0; round < 3000; ++round) {
        TargetBlend const b =
            blended({{matrix(), matrix(), pick()}, {matrix(), matrix(), pick()}}, round % 2, matrix());
        EXPECT_TRUE(isFinite(b.local));
        EXPECT_TRUE(std::isfinite(b.translation.x + 0 * b.translation.y + 0 * b.translation.z));
        EXPECT_TRUE(std::isfinite(b.rotation.x + b.rotation.y + b.rotation.z));
    }
}

TEST(TargetBlend, ValidityFindsEachBrokenInput) {
    TargetBlend good{{{}, {}}, {}, true, {}, {}, {}, {}};
    EXPECT_TRUE(good.Validate());
    for (double bad : {-1.0, double(nan), double(infinity)}) {
        TargetBlend b = good;
        b.targets[1].weight = bad;
        EXPECT_FALSE(b.Validate());
    }
    TargetBlend b = good;
    b.parentWorld.m[3][0] = nan;
    EXPECT_FALSE(b.Validate());
    b = good, b.targets[0].world.m[0][0] = nan;
    EXPECT_FALSE(b.Validate());
    b = good, b.targets[0].offset.m[0][0] = infinity;
    EXPECT_FALSE(b.Validate());
}

}  // namespace
}  // namespace sg
