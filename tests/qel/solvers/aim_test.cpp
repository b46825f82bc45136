// What points at something, in all directions and in those where no direction follows.
#include "qel/solvers/aim.h"
#include "qel/utils/rotation.h"
#include "tests/qel/solvers/random_places.h"
#include <cfloat>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

using namespace Qelutils::rotation;
using Qelp::Matrix34;
using Qelp::Vector3;
constexpr float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();

Matrix34 at(Vector3 const& p) {
    Matrix34 m;
    m.m[3][0] = p.x, m.m[3][1] = p.y, m.m[3][2] = p.z;
    return m;
}
Aim aimed(Vector3 const& target, Vector3 const& up) {
    Aim aim{at(target), at(up), {}, {}, {}, {}};
    aim.Run();
    return aim;
}
Triple axis(Aim const& aim, int i) {
    auto const& m = fromQuaternion(aim.quaternion).m;
    return {m[i][0], m[i][1], m[i][2]};
}
double dot(Triple const& a, Triple const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
void expectNear(Triple const& a, Triple const& b, double tolerance = 1e-12) {
    EXPECT_NEAR(std::hypot(a.x - b.x, a.y - b.y, a.z - b.z), 0, tolerance) << a.x << ", " << a.y << ", " << a.z;
}
Triple unit(Vector3 const& v) {
    double const l = std::hypot(double(v.x), double(v.y), double(v.z));
    return {v.x / l, v.y / l, v.z / l};
}

TEST(Aim, AlongXBelowYIsNoRotation) {
    EXPECT_EQ(angleBetween(aimed({3, 0, 0}, {0, 2, 0}).quaternion, {}), 0);
    EXPECT_EQ(aimed({3, 0, 0}, {5, 2, 0}).rotation, (Vector3{0, 0, 0}));
}

TEST(Aim, PointsXAtTheTargetAndTurnsYUp) {
    struct {
        Vector3 target, up;
        Triple x, y;
    } const cases[] = {
        {{0, 1, 0}, {0, 0, 1}, {0, 1, 0}, {0, 0, 1}},    {{0, 0, -2}, {0, 1, 0}, {0, 0, -1}, {0, 1, 0}},
        {{-1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, 1, 0}},  {{1, 0, 0}, {1, 0, -3}, {1, 0, 0}, {0, 0, -1}},
        {{2, 0, 0}, {-7, -1, 0}, {1, 0, 0}, {0, -1, 0}},
    };
    for (auto const& c : cases) {
        expectNear(axis(aimed(c.target, c.up), 0), c.x);
        expectNear(axis(aimed(c.target, c.up), 1), c.y);
    }
}

TEST(Aim, InAllDirectionsXMeetsTheTargetAndUpLiesInTheHalfPlaneOfY) {
    RandomPlaces random;
    for (int round = 0; round < 2000; ++round) {
        Vector3 const target = random.point(5), up = random.point(5);
        Aim const aim = aimed(target, up);
        expectNear(axis(aim, 0), unit(target));
        EXPECT_NEAR(dot(axis(aim, 2), unit(up)), 0, 1e-10);
        EXPECT_GT(dot(axis(aim, 1), unit(up)), 0);
    }
}

TEST(Aim, TheAnglesAreThoseOfTheRotation) {
    RandomPlaces random;
    for (int round = 0; round < 200; ++round) {
        Aim const aim = aimed(random.point(5), random.point(5));
        Triple const angles{aim.rotation.x, aim.rotation.y, aim.rotation.z};
        EXPECT_NEAR(angleBetween(toQuaternion(fromEuler(angles, 0)), aim.quaternion), 0, 1e-6);
    }
}

TEST(Aim, BelowAnyParentTheWorldsXAxisPointsFromThePlaceAtTheTarget) {
    RandomPlaces random;
    for (int round = 0; round < 500; ++round) {
        Aim aim{random.place(), random.place(), random.squeezedPlace(), random.point(3), {}, {}};
        aim.Run();
        Affine const local = toAffine(fromQuaternion(aim.quaternion), {aim.place.x, aim.place.y, aim.place.z});
        Affine const world = multiply(local, toAffine(aim.parentWorld)), target = toAffine(aim.targetWorld);
        Triple const x = world.row(0),
                     to{target.m[3][0] - world.m[3][0], target.m[3][1] - world.m[3][1], target.m[3][2] - world.m[3][2]};
        EXPECT_NEAR(dot(x, to), std::sqrt(dot(x, x) * dot(to, to)), 1e-9 * std::sqrt(dot(x, x) * dot(to, to)));
    }
}

// Rounding turns the up object about the aim by any angle; what is aimed does not follow.
TEST(Aim, UpAlongTheAimGivesTheParentsYCarriedAlongWhateverTheRounding) {
    RandomPlaces random;
    for (int round = 0; round < 500; ++round) {
        Vector3 const d = random.point(1);
        if (unit(d).x < -0.99) continue;
        auto const upNear = [&](float f) {
            Vector3 const noise = random.point(2e-7);
            return Vector3{d.x * f + noise.x, d.y * f + noise.y, d.z * f + noise.z};
        };
        for (float f : {2.F, -2.F}) {
            Aim const one = aimed(d, upNear(f)), other = aimed(d, upNear(f));
            EXPECT_LT(angleBetween(one.quaternion, other.quaternion), 0.05);
        }
        // The smallest turn of X to the aim has no part about the aim or X: its axis is square to both.
        Aim const exact = aimed(d, {d.x * 2, d.y * 2, d.z * 2});
        EXPECT_NEAR(toAxisAngle(exact.quaternion).axis.x, toAxisAngle(exact.quaternion).angle < 1e-6 ? 1 : 0, 1e-6);
        expectNear(axis(exact, 0), unit(d));
    }
}

TEST(Aim, IntoTheConeOfUpItTurnsWithoutAJump) {
    Aim last = aimed({1, 0, 0}, {1, 0, 1e-3F});
    for (int i = 999; i >= 0; --i) {
        Aim const now = aimed({1, 0, 0}, {1, 0, 1e-6F * float(i)});
        EXPECT_LT(angleBetween(now.quaternion, last.quaternion), 0.05);
        last = now;
    }
    expectNear(axis(last, 1), {0, 1, 0});
}

TEST(Aim, AnUpObjectAtThePlaceItselfCountsAsAlongTheAim) {
    expectNear(axis(aimed({1, 0, 0}, {}), 1), {0, 1, 0});
    expectNear(axis(aimed({0, 0, 2}, {}), 1), {0, 1, 0});
    expectNear(axis(aimed({0, 2, 0}, {}), 1), {-1, 0, 0});
    expectNear(axis(aimed({-1, 0, 0}, {}), 1), {0, 1, 0});
}

TEST(Aim, ATargetAtThePlaceItselfIsAimedAtAlongX) {
    expectNear(axis(aimed({}, {0, 0, 3}), 0), {1, 0, 0});
    expectNear(axis(aimed({}, {0, 0, 3}), 1), {0, 0, 1});
    EXPECT_EQ(angleBetween(aimed({}, {}).quaternion, {}), 0);
}

TEST(Aim, NoNumberMakesAnythingThatIsNotFinite) {
    float const odd[] = {0, 1, -1, 1e-45F, 1e-20F, 1e20F, FLT_MAX, -FLT_MAX, infinity, -infinity, nan};
    RandomPlaces random;
    auto const pick = [&] { return odd[std::size_t(random.real(0, 10.999))]; };
    auto const matrix = [&] {
        Matrix34 m = random.place();
        for (int i = 0; i < 5; ++i) m.m[int(random.real(0, 3.999))][int(random.real(0, 2.999))] = pick();
        return m;
    };
    for (int round = 0; round < 3000; ++round) {
        Aim aim{matrix(), matrix(), matrix(), {pick(), pick(), pick()}, {}, {}};
        aim.Run();
        EXPECT_TRUE(std::isfinite(aim.rotation.x + aim.rotation.y + aim.rotation.z));
        EXPECT_NEAR(aim.quaternion.x * aim.quaternion.x + aim.quaternion.y * aim.quaternion.y +
                        aim.quaternion.z * aim.quaternion.z + aim.quaternion.w * aim.quaternion.w,
                    1, 1e-12);
    }
}

TEST(Aim, ValidityFindsEachBrokenInput) {
    EXPECT_TRUE(Aim().Validate());
    Aim aim;
    aim.targetWorld.m[0][0] = nan;
    EXPECT_FALSE(aim.Validate());
    aim = {}, aim.upWorld.m[3][2] = infinity;
    EXPECT_FALSE(aim.Validate());
    aim = {}, aim.parentWorld.m[1][1] = nan;
    EXPECT_FALSE(aim.Validate());
    for (float Vector3::*part : {&Vector3::x, &Vector3::y, &Vector3::z}) {
        aim = {}, aim.place.*part = -infinity;
        EXPECT_FALSE(aim.Validate());
    }
}

}  // namespace
}  // namespace sg
