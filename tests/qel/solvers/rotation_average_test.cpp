// Averages of rotations against their definition: no other rotation is nearer to all.
#include "qel/solvers/rotation_average.h"
#include "tests/qel/solvers/random_places.h"
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

namespace sg {
namespace {

using namespace Qelutils::rotation;

struct Weighted {
    Quaternion q;
    double weight;
};

Quaternion averageOf(std::vector<Weighted> const& all) {
    RotationAverage average;
    for (auto const& [q, weight] : all) average.add(q, weight);
    return average.get();
}

double distanceToAll(std::vector<Weighted> const& all, Quaternion const& q) {
    Rotation const r = fromQuaternion(q);
    double sum = 0;
    for (Weighted const& one : all) {
        Rotation const other = fromQuaternion(one.q);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) sum += one.weight * std::pow(r.m[i][j] - other.m[i][j], 2);
    }
    return sum;
}

std::vector<Weighted> randomSet(RandomPlaces& random) {
    std::vector<Weighted> all(std::size_t(random.real(2, 7)));
    for (auto& [q, weight] : all) q = random.rotation(), weight = random.real(0.01, 3);
    return all;
}

TEST(RotationAverage, NoOtherRotationIsNearerToAll) {
    RandomPlaces random;
    for (int round = 0; round < 200; ++round) {
        std::vector<Weighted> const all = randomSet(random);
        Quaternion const best = averageOf(all);
        double const least = distanceToAll(all, best);
        for (int i = 0; i < 300; ++i) {
            double const reach = std::pow(10, random.real(-4, 0.5));
            Quaternion const turn = fromAxisAngle({random.real(-1, 1), random.real(-1, 1), random.real(-1, 1)}, reach);
            EXPECT_GE(distanceToAll(all, multiply(best, turn)), least - 1e-12);
        }
    }
}

TEST(RotationAverage, OfTwoIsOnTheShorterWayBetweenThemAsTheWeightsSay) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        Quaternion const a = random.rotation();
        Quaternion const b = multiply(a, fromAxisAngle({random.real(-1, 1), 1, 0}, random.real(0, 3)));
        Quaternion const middle = averageOf({{a, 1}, {b, 1}});
        EXPECT_NEAR(angleBetween(middle, a), angleBetween(a, b) / 2, 1e-12);
        EXPECT_NEAR(angleBetween(middle, b), angleBetween(a, b) / 2, 1e-12);
        EXPECT_LT(angleBetween(averageOf({{a, 3}, {b, 1}}), a), angleBetween(a, b) / 2 + 1e-12);
    }
}

TEST(RotationAverage, OfOneRotationUnderBothSignsIsThatRotation) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        Quaternion const q = random.rotation();
        EXPECT_NEAR(angleBetween(averageOf({{q, 1}, {{-q.x, -q.y, -q.z, -q.w}, 1}, {q, 2}}), q), 0, 1e-14);
    }
}

TEST(RotationAverage, NeitherSignsNorOrderCount) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        std::vector<Weighted> all = randomSet(random);
        Quaternion const before = averageOf(all);
        for (auto& [q, weight] : all)
            if (random.real(0, 1) < 0.5) q = {-q.x, -q.y, -q.z, -q.w};
        std::swap(all.front(), all.back());
        EXPECT_NEAR(angleBetween(averageOf(all), before), 0, 1e-9);
    }
}

TEST(RotationAverage, TurnsWithWhatIsAveraged) {
    RandomPlaces random;
    for (int round = 0; round < 100; ++round) {
        std::vector<Weighted> all = randomSet(random);
        Quaternion const turn = random.rotation(), expected = multiply(averageOf(all), turn);
        for (auto& one : all) one.q = multiply(one.q, turn);
        EXPECT_NEAR(angleBetween(averageOf(all), expected), 0, 1e-9);
    }
}

TEST(RotationAverage, OfOneIsThatOneAndOfNoneTheIdentity) {
    Quaternion const q = fromAxisAngle({1, 2, 3}, 1);
    Quaternion const only = averageOf({{q, 0.25}});
    EXPECT_EQ(only.x, q.x);
    EXPECT_EQ(only.w, q.w);
    EXPECT_EQ(averageOf({}).w, 1);
    EXPECT_EQ(averageOf({{q, 0}}).w, 1);
}

TEST(RotationAverage, WeightsOfAnySizeCountByTheirRatios) {
    Quaternion const a = fromAxisAngle({1, 0, 0}, 1), b = fromAxisAngle({0, 1, 0}, 1);
    Quaternion const expected = averageOf({{a, 1}, {b, 2}});
    for (double size : {1e-30, 1e30}) {
        EXPECT_NEAR(angleBetween(averageOf({{a, size}, {b, 2 * size}}), expected), 0, 1e-14);
    }
    EXPECT_NEAR(angleBetween(averageOf({{a, 1e-30}, {b, 1e30}}), b), 0, 1e-14);
}

TEST(RotationAverage, BetweenTwoHalfATurnApartItIsTheSameRotationEachTime) {
    Quaternion const a, b{0, 0, 1, 0};
    Quaternion const first = averageOf({{a, 1}, {b, 1}}), second = averageOf({{a, 1}, {b, 1}});
    EXPECT_EQ(angleBetween(first, second), 0);
    double const share = first.z * first.z + first.w * first.w;
    EXPECT_NEAR(share, 1, 1e-14) << "between the two";
}

}  // namespace
}  // namespace sg
