#include "qel/utils/maths.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>

namespace {

constexpr float pi = std::numbers::pi_v<float>;
// An entry is the product of a few numbers with a rounding of 6e-8 each, and angles near pi have one of 1.2e-7.
constexpr float tolerance = 1e-6F;
constexpr unsigned seed = 20;

struct Order {
    char const* name;
    int value;
};
constexpr Order orders[] = {{"XYZ", 0}, {"XZY", 2}, {"YXZ", 6}, {"YZX", 4}, {"ZXY", 8}, {"ZYX", 10}};

float difference(QelMatrix4 const& a, QelMatrix4 const& b) {
    float most = 0;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            float const d = std::abs(a[i][j] - b[i][j]);
            if (!(d <= most)) most = d;  // also a NaN
        }
    return most;
}

float difference(QelVector3 const& a, QelVector3 const& b) {
    return std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.z - b.z);
}

// Of the rotations of two quaternions: q and -q are the same.
float difference(QelVector4 const& a, QelVector4 const& b) {
    float plus = 0, minus = 0;
    for (int i = 0; i < 4; ++i) {
        plus = std::max(plus, std::abs(a[i] + b[i]));
        minus = std::max(minus, std::abs(a[i] - b[i]));
    }
    return std::min(plus, minus);
}

QelMatrix4 rotated(QelVector4 const& wxyz) { return QelMatrix4().setOrientationFromQuaternion(wxyz); }
QelMatrix4 aboutX(float a) { return QelMatrix4().radRotateOrientationAboutGlobalX(a); }
QelMatrix4 aboutY(float a) { return QelMatrix4().radRotateOrientationAboutGlobalY(a); }
QelMatrix4 aboutZ(float a) { return QelMatrix4().radRotateOrientationAboutGlobalZ(a); }
QelMatrix4 about(char axis, float a) { return axis == 'X' ? aboutX(a) : axis == 'Y' ? aboutY(a) : aboutZ(a); }
float component(QelVector3 const& v, char axis) { return v[axis - 'X']; }

// Random rotations, and all products of quarter turns with none or a small turn on top: every pole of every form.
std::vector<QelMatrix4> const& rotations() {
    static std::vector<QelMatrix4> const all = [] {
        std::vector<QelMatrix4> out;
        std::mt19937 random(seed);
        std::normal_distribution<float> normal;
        for (int i = 0; i < 10000; ++i)
            out.push_back(rotated({normal(random), normal(random), normal(random), normal(random)}));
        for (float small : {0.0F, 1e-8F, 1e-7F, 3e-7F, 1e-6F, 1e-5F, 1e-4F, 1e-3F})
            for (int turns = 0; turns < 64; ++turns) {
                auto const quarters = [turns](int shift) { return static_cast<float>((turns >> shift) & 3) * pi / 2; };
                QelMatrix4 const pole = aboutX(quarters(0)) * aboutY(quarters(2)) * aboutZ(quarters(4));
                out.push_back(pole * aboutX(small));
                out.push_back(pole * aboutY(small) * aboutZ(-small));
                out.push_back(pole * aboutY(0.7F) * aboutZ(small));
            }
        for (float angle = 0; angle < 7; angle += 0.1F)
            out.push_back(QelMatrix4().setOrientationFromAxisAndAngle({0, std::cos(angle), std::sin(angle)}, pi));
        return out;
    }();
    return all;
}

template<class Rebuild> void expectRebuilt(Rebuild rebuild) {
    SCOPED_TRACE(seed);
    float worst = 0;
    for (QelMatrix4 const& m : rotations()) {
        float const d = difference(rebuild(m), m);
        if (!(d <= worst)) worst = d;
    }
    EXPECT_LT(worst, tolerance);
}

std::vector<QelVector3> randomVectors(int count, float limit) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-limit, limit);
    std::vector<QelVector3> out;
    for (int i = 0; i < count; ++i) out.emplace_back(uniform(random), uniform(random), uniform(random));
    return out;
}

}  // namespace

TEST(Maths, APositiveTurnIsRightHanded) {
    EXPECT_LT(difference(QelVector3(0, 1, 0).radRotateX(pi / 2), {0, 0, 1}), tolerance);
    EXPECT_LT(difference(QelVector3(0, 0, 1).radRotateY(pi / 2), {1, 0, 0}), tolerance);
    EXPECT_LT(difference(QelVector3(1, 0, 0).radRotateZ(pi / 2), {0, 1, 0}), tolerance);
    EXPECT_LT(difference(QelVector3(1, 0, 0).radArbitraryRotate({0, 0, 5}, pi / 2), {0, 1, 0}), tolerance);
}

TEST(Maths, EulerOrdersTurnAboutTheFixedAxesInTheSequenceOfTheLetters) {
    for (Order const& order : orders)
        for (QelVector3 const& v : randomVectors(1000, 4)) {
            QelMatrix4 expected;
            for (char const* axis = order.name; *axis; ++axis) expected *= about(*axis, component(v, *axis));
            QelMatrix4 const m = QelMatrix4().setOrientationFromGeneralEulers(order.value, v);
            ASSERT_LT(difference(m, expected), tolerance) << order.name;
        }
}

TEST(Maths, AnUnknownEulerOrderIsXYZ) {
    QelVector3 const v(0.1F, 0.2F, 0.3F);
    QelMatrix4 const expected = QelMatrix4().setOrientationFromGeneralEulers(0, v);
    for (int order : {-1, 1, 3, 5, 7, 9, 11, 100})
        EXPECT_EQ(QelMatrix4().setOrientationFromGeneralEulers(order, v), expected) << order;
}

TEST(Maths, EulerAnglesRebuildEveryRotation) {
    for (Order const& order : orders) {
        SCOPED_TRACE(order.name);
        expectRebuilt([&](QelMatrix4 const& m) {
            QelVector3 angles;
            m.getGeneralEulersFromOrientation(order.value, angles);
            return QelMatrix4().setOrientationFromGeneralEulers(order.value, angles);
        });
    }
}

TEST(Maths, EulerAnglesComeBackAwayFromGimbalLock) {
    for (Order const& order : orders)
        for (QelVector3 v : randomVectors(2000, 3)) {
            v = {v.x / 2, v.y / 2, v.z / 2};  // within a quarter turn but for 0.07
            QelVector3 back;
            QelMatrix4()
                .setOrientationFromGeneralEulers(order.value, v)
                .getGeneralEulersFromOrientation(order.value, back);
            ASSERT_LT(difference(v, back), 1e-5F) << order.name;
        }
}

TEST(Maths, AtGimbalLockTheLastAngleIsZero) {
    for (Order const& order : orders)
        for (float sign : {-1.0F, 1.0F}) {
            char const *first = order.name, *middle = order.name + 1, *last = order.name + 2;
            QelMatrix4 const m = about(*first, 0.3F) * about(*middle, sign * pi / 2) * about(*last, 0.4F);
            QelVector3 angles;
            m.getGeneralEulersFromOrientation(order.value, angles);
            EXPECT_EQ(component(angles, *last), 0) << order.name;
            EXPECT_NEAR(component(angles, *middle), sign * pi / 2, 1e-6F) << order.name;
        }
}

TEST(Maths, QuaternionsRebuildEveryRotation) {
    expectRebuilt([](QelMatrix4 const& m) { return rotated(QelVector4().setQuaternionFromQelMatrix4(m)); });
}

TEST(Maths, QuaternionsComeBackFromTheirMatrix) {
    for (QelMatrix4 const& m : rotations()) {
        QelVector4 const q = QelVector4().setQuaternionFromQelMatrix4(m);
        QelVector4 const back = QelVector4().setQuaternionFromQelMatrix4(rotated(q));
        ASSERT_LT(difference(q, back), tolerance);
        ASSERT_NEAR(q * q, 1, tolerance);
        ASSERT_GE(q[0], 0);
    }
}

TEST(Maths, AxisAndAngleRebuildEveryRotation) {
    expectRebuilt([](QelMatrix4 const& m) {
        QelVector3 axis;
        float angle = 0;
        m.getAxisAndAngleFromOrientation(axis, angle);
        EXPECT_TRUE(axis.isNormal(tolerance) && angle >= 0 && angle <= pi);
        return QelMatrix4().setOrientationFromAxisAndAngle(axis, angle);
    });
}

TEST(Maths, TheIdentityHasTheXAxisAndNoAngle) {
    QelVector3 axis;
    float angle = 1;
    QelMatrix4().getAxisAndAngleFromOrientation(axis, angle);
    EXPECT_EQ(axis, QelVector3(1, 0, 0));
    EXPECT_EQ(angle, 0);
}

TEST(Maths, TwistAndSwingRebuildEveryRotation) {
    expectRebuilt([](QelMatrix4 const& m) {
        QelVector3 v;
        m.getTwistAndSwingFromOrientation(v);
        EXPECT_LE(std::abs(v.x), pi);
        EXPECT_LE(std::hypot(v.y, v.z), pi + tolerance);
        return QelMatrix4().setOrientationFromTwistAndSwing(v);
    });
}

TEST(Maths, TwistAndSwingAnglesRebuildEveryRotation) {
    expectRebuilt([](QelMatrix4 const& m) {
        QelVector3 v;
        m.getTwistAndSwingAnglesFromOrientation(v);
        return QelMatrix4().setOrientationFromTwistAndSwingAngles(v);
    });
}

TEST(Maths, TwistAndSwingOfQuaternionsAgreeWithThoseOfMatrices) {
    for (QelVector3 const& v : randomVectors(1000, 3)) {
        QelVector4 const q = QelVector4().setQuaternionFromTwistAndSwing(v);
        QelVector4 const p = QelVector4().setQuaternionFromTwistAndSwingAngles(v);
        ASSERT_LT(difference(rotated(q), QelMatrix4().setOrientationFromTwistAndSwing(v)), tolerance);
        ASSERT_LT(difference(rotated(p), QelMatrix4().setOrientationFromTwistAndSwingAngles(v)), tolerance);
        QelVector3 back;
        q.getTwistAndSwingFromQuaternion(back);
        ASSERT_LT(difference(QelVector4().setQuaternionFromTwistAndSwing(back), q), tolerance);
        p.getTwistAndSwingAnglesFromQuaternion(back);
        ASSERT_LT(difference(QelVector4().setQuaternionFromTwistAndSwingAngles(back), p), tolerance);
    }
}

TEST(Maths, TwistAndSwingComeBackWithinTheirRange) {
    for (QelVector3 const& v : randomVectors(2000, 2)) {
        QelVector3 back;
        QelMatrix4().setOrientationFromTwistAndSwing(v).getTwistAndSwingFromOrientation(back);
        ASSERT_LT(difference(v, back), 1e-5F);
        QelMatrix4().setOrientationFromTwistAndSwingAngles(v).getTwistAndSwingAnglesFromOrientation(back);
        ASSERT_LT(difference(v, back), 1e-5F);
    }
}

TEST(Maths, TheTwistActsBeforeTheSwing) {
    QelMatrix4 const expected = aboutX(0.5F) * aboutZ(0.7F);
    EXPECT_LT(difference(QelMatrix4().setOrientationFromTwistAndSwing({0.5F, 0, 0.7F}), expected), tolerance);
    EXPECT_LT(difference(QelMatrix4().setOrientationFromTwistAndSwingAngles({0.5F, 0, 0.7F}), expected), tolerance);
}

TEST(Maths, ASwingAboutOneAxisIsTheSameInBothForms) {
    for (float angle = -3.1F; angle < 3.1F; angle += 0.2F) {
        EXPECT_LT(difference(QelMatrix4().setOrientationFromTwistAndSwing({0, angle, 0}), aboutY(angle)), tolerance);
        EXPECT_LT(difference(QelMatrix4().setOrientationFromTwistAndSwingAngles({0, angle, 0}), aboutY(angle)),
                  tolerance);
    }
}

TEST(Maths, ASwingOfPiHasNoTwist) {
    for (float direction = 0; direction < 3; direction += 0.25F) {
        QelVector3 const axis(0, std::cos(direction), std::sin(direction));
        QelVector3 v;
        QelMatrix4().setOrientationFromAxisAndAngle(axis, pi).getTwistAndSwingFromOrientation(v);
        EXPECT_EQ(v.x, 0);
        EXPECT_NEAR(std::hypot(v.y, v.z), pi, tolerance);
    }
}

TEST(Maths, RemoveSwingKeepsTheTwistAboutX) {
    for (QelVector3 const& v : randomVectors(500, 2)) {
        QelMatrix4 m = QelMatrix4().setOrientationFromTwistAndSwing(v).translate({1, 2, 3});
        EXPECT_LT(difference(m.removeSwing(), aboutX(v.x).translate({1, 2, 3})), tolerance);
    }
    EXPECT_LT(difference(aboutY(pi).removeSwing(), QelMatrix4()), tolerance);
}

TEST(Maths, OrientationSettersKeepTheTranslation) {
    QelMatrix4 const start = aboutX(1).translate({1, 2, 3});
    QelMatrix4 m = start;
    QelVector3 const expected = start.row(3), v(0.1F, 0.2F, 0.3F);
    EXPECT_EQ((m = start).setOrientationFromAxisAndAngle(v, 1).row(3), expected);
    EXPECT_EQ((m = start).setOrientationFromQuaternion({1, 2, 3, 4}).row(3), expected);
    EXPECT_EQ((m = start).setOrientationFromGeneralEulers(4, v).row(3), expected);
    EXPECT_EQ((m = start).setOrientationFromTwistAndSwing(v).row(3), expected);
    EXPECT_EQ((m = start).setOrientationFromTwistAndSwingAngles(v).row(3), expected);
    EXPECT_EQ((m = start).radRotateOrientation(8, v).row(3), expected);
    EXPECT_EQ((m = start).radRotateOrientationAboutArbitraryAxis(v, 1).row(3), expected);
    EXPECT_EQ((m = start).radRotateOrientationAboutGlobalY(1).row(3), expected);
    EXPECT_EQ((m = start).scale(2).row(3), expected);
}

TEST(Maths, TurningAnOrientationMultipliesOnTheRight) {
    QelVector3 const v(0.4F, -1.1F, 2.2F), axis(1, 2, -1);
    QelMatrix4 const start = aboutX(1) * aboutY(2);
    for (Order const& order : orders) {
        QelMatrix4 m = start;
        QelMatrix4 const expected = start * QelMatrix4().setOrientationFromGeneralEulers(order.value, v);
        EXPECT_LT(difference(m.radRotateOrientation(order.value, v), expected), tolerance) << order.name;
    }
    QelMatrix4 m = start;
    QelMatrix4 const expected = start * QelMatrix4().setOrientationFromAxisAndAngle(axis, 0.8F);
    EXPECT_LT(difference(m.radRotateOrientationAboutArbitraryAxis(axis, 0.8F), expected), tolerance);
}

TEST(Maths, AZeroAxisOrQuaternionIsNoRotation) {
    EXPECT_EQ(QelMatrix4().setOrientationFromAxisAndAngle({0, 0, 0}, 1), QelMatrix4());
    EXPECT_EQ(QelMatrix4().setOrientationFromQuaternion({0, 0, 0, 0}), QelMatrix4());
    EXPECT_EQ(QelVector4().setQuaternionFromAxisAndAngle({0, 0, 0}, 1), QelVector4(1, 0, 0, 0));
    EXPECT_EQ(QelVector3(1, 2, 3).radArbitraryRotate({0, 0, 0}, 1), QelVector3(1, 2, 3));
}

TEST(Maths, ConversionsOfDegenerateMatricesAreFinite) {
    float const inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    for (float fill : {0.0F, 1.0F, 1e-30F, 1e30F, inf, nan}) {
        QelMatrix4 m;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) m[i][j] = fill;
        QelVector3 v, axis;
        float angle = 0;
        for (Order const& order : orders) {
            m.getGeneralEulersFromOrientation(order.value, v);
            EXPECT_TRUE(std::isfinite(v.x + v.y + v.z)) << fill;
        }
        m.getTwistAndSwingFromOrientation(v);
        EXPECT_TRUE(std::isfinite(v.x + v.y + v.z)) << fill;
        m.getAxisAndAngleFromOrientation(axis, angle);
        EXPECT_TRUE(axis.isNormal(tolerance)) << fill;
        EXPECT_EQ(QelMatrix4().setOrientationFromGeneralEulers(0, {inf, nan, -inf}), QelMatrix4());
    }
}

TEST(Maths, AnglesOfAScaledOrMirroredMatrixAreThoseOfItsRotation) {
    QelVector3 const v(0.3F, -0.6F, 1.2F);
    QelMatrix4 m = QelMatrix4().setOrientationFromGeneralEulers(0, v);
    for (int j = 0; j < 3; ++j) {
        m[0][j] *= 3;
        m[1][j] *= 0.01F;
        m[2][j] *= -1;
    }
    QelVector3 back;
    m.getGeneralEulersFromOrientation(0, back);
    EXPECT_LT(difference(back, v), 1e-5F);
}

TEST(Maths, QuaternionMultiplyIsTheHamiltonProductWithTheFirstNumberAsScalar) {
    QelVector4 const i(0, 1, 0, 0), j(0, 0, 1, 0), k(0, 0, 0, 1);
    EXPECT_EQ(QelVector4().quaternionMultiply(i, j), k);
    EXPECT_EQ(QelVector4().quaternionMultiply(j, i), QelVector4(0, 0, 0, -1));
    EXPECT_EQ(QelVector4().quaternionMultiply(i, i), QelVector4(-1, 0, 0, 0));
    EXPECT_EQ(QelVector4().quaternionMultiply({1, 2, 3, 4}, {5, 6, 7, 8}), QelVector4(-60, 12, 30, 24));
}

TEST(Maths, SlerpGoesAlongTheShortestArcAtConstantSpeed) {
    auto const turn = [](float angle) { return QelVector4().setQuaternionFromAxisAndAngle({1, 2, 3}, angle); };
    for (float t : {0.0F, 0.25F, 0.5F, 1.0F}) {
        QelVector4 const plain = QelVector4().slerp(turn(0.2F), turn(2.2F), t);
        EXPECT_LT(difference(plain, turn(0.2F + 2 * t)), tolerance);
        QelVector4 const b = turn(2.2F), negated(-b[0], -b[1], -b[2], -b[3]);
        EXPECT_LT(difference(QelVector4().slerp(turn(0.2F), negated, t), plain), tolerance);
        EXPECT_LT(difference(QelVector4().slerp(turn(1), turn(1.00001F), t), turn(1 + 0.00001F * t)), tolerance);
    }
}

TEST(Maths, SlerpBetweenEqualQuaternionsGivesThem) {
    QelVector4 const q(0.5F, 0.5F, 0.5F, 0.5F);
    EXPECT_EQ(QelVector4().slerp(q, q, 0.3F), q);
    EXPECT_LT(difference(QelVector4().slerp(q, {-0.5F, -0.5F, -0.5F, -0.5F}, 0.3F), q), tolerance);
}

TEST(Maths, Normalize2OfZeroIsTheIdentityToThoseWhoStoreTheScalarLast) {
    EXPECT_EQ(QelVector4().normalize2(), QelVector4(0, 0, 0, 1));
    QelVector4 v(1e-20F, 0, 0, 1e-20F);
    v.normalize2();
    EXPECT_NEAR(v * v, 1, tolerance);
    EXPECT_NEAR(v[0], std::sqrt(0.5F), tolerance);
}

TEST(Maths, NormalizesVectors) {
    EXPECT_EQ(QelVector3(0, 0, 0).normalize(), QelVector3(1, 0, 0));
    EXPECT_EQ(QelVector3(0, -3, 0).normalize(), QelVector3(0, -1, 0));
    EXPECT_TRUE(QelVector3(1e-25F, 1e-25F, 0).normalize().isNormal(tolerance));
    EXPECT_TRUE(QelVector3(1e25F, 1e25F, 0).normalize().isNormal(tolerance));
}

TEST(Maths, IsNormalComparesTheLengthWithOne) {
    EXPECT_TRUE(QelVector3(0, 1.05F, 0).isNormal(0.1F));
    EXPECT_FALSE(QelVector3(0, 1.2F, 0).isNormal(0.1F));
    EXPECT_FALSE(QelVector3(0, 0.8F, 0).isNormal(0.1F));
}

TEST(Maths, NormalizedCrossProductGivesAxisAndAngle) {
    QelVector3 axis;
    float angle = 0;
    EXPECT_TRUE(QelVector3(1, 0, 0).normalizedCrossProduct(axis, angle, {0, 1, 0}));
    EXPECT_EQ(axis, QelVector3(0, 0, 1));
    EXPECT_NEAR(angle, pi / 2, tolerance);
    QelVector3 const tiny = QelVector3(1, 1e-5F, 0).normalize();
    EXPECT_TRUE(QelVector3(1, 0, 0).normalizedCrossProduct(axis, angle, tiny));
    EXPECT_NEAR(angle, 1e-5F, 1e-11F);
}

TEST(Maths, NormalizedCrossProductOfParallelVectorsGivesSomeSquareAxis) {
    for (QelVector3 const& a : {QelVector3(1, 0, 0), QelVector3(0, 1, 0), QelVector3(0, 0, 1)})
        for (float sign : {1.0F, -1.0F}) {
            QelVector3 axis;
            float angle = -1;
            EXPECT_FALSE(a.normalizedCrossProduct(axis, angle, {sign * a.x, sign * a.y, sign * a.z}));
            EXPECT_EQ(angle, sign > 0 ? 0 : pi);
            EXPECT_TRUE(axis.isNormal(tolerance));
            EXPECT_EQ(axis.x * a.x + axis.y * a.y + axis.z * a.z, 0);
        }
}

TEST(Maths, PolarAngleRunsFromXTowardsZ) {
    EXPECT_EQ(QelVector3(2, 5, 0).getPolarAngleXZ(), 0);
    EXPECT_NEAR(QelVector3(0, 5, 3).getPolarAngleXZ(), pi / 2, tolerance);
    EXPECT_NEAR(QelVector3(-1, 0, -1).getPolarAngleXZ(), -3 * pi / 4, tolerance);
    EXPECT_EQ(QelVector3(0, 1, 0).getPolarAngleXZ(), 0);
}

TEST(Maths, AnIndexBeyondAVectorGivesZero) {
    QelVector3 const v(1, 2, 3);
    EXPECT_EQ(v[2], 3);
    EXPECT_EQ(v[3], 0);
    EXPECT_EQ(v[-1], 0);
}

TEST(Maths, FourNumbersMultiplyAsARowVector) {
    QelMatrix4 m = aboutZ(pi / 2);
    m.translate({10, 20, 30});
    EXPECT_LT(difference(QelVector4(1, 0, 0, 1) * m, {10, 21, 30, 1}), 1e-5F);
    EXPECT_LT(difference(QelVector4(1, 0, 0, 0) * m, {0, 1, 0, 0}), tolerance);
    EXPECT_EQ(QelVector4(1, 2, 3, 4) * QelVector4(5, 6, 7, 8), 70);
}

TEST(Maths, CrossProductTakesTheVectorParts) {
    QelVector4 v(1, 0, 0, 7);
    EXPECT_EQ(v ^ QelVector4(0, 1, 0, 9), QelVector4(0, 0, 1, 0));
    v ^= {0, 1, 0, 9};
    EXPECT_EQ(v, QelVector4(0, 0, 1, 0));
}

TEST(Maths, EqualsComparesEachComponent) {
    QelVector4 const v(1, 2, 3, 4);
    EXPECT_TRUE(v.equals({1.5F, 1.5F, 3, 4}, 0.5));
    EXPECT_FALSE(v.equals({1, 2, 3, 4.75F}, 0.5));
    EXPECT_FALSE(v.equals({1, 2, 3, std::numeric_limits<float>::quiet_NaN()}, 0.5));
}

TEST(Maths, TurningFourNumbersLeavesTheFourth) {
    EXPECT_LT(difference(QelVector4(0, 1, 0, 5).radRotateX(pi / 2), {0, 0, 1, 5}), tolerance);
    EXPECT_LT(difference(QelVector4(0, 0, 1, 5).radRotateY(pi / 2), {1, 0, 0, 5}), tolerance);
    EXPECT_LT(difference(QelVector4(1, 0, 0, 5).radRotateZ(pi / 2), {0, 1, 0, 5}), tolerance);
    EXPECT_LT(difference(QelVector4(1, 0, 0, 5).radArbitraryRotate({0, 0, 2, 9}, pi / 2), {0, 1, 0, 5}), tolerance);
}

TEST(Maths, ProductsApplyTheLeftFactorFirst) {
    QelMatrix4 const move = QelMatrix4().translate({1, 0, 0}), turn = aboutZ(pi / 2);
    EXPECT_LT(difference(QelVector4(0, 0, 0, 1) * (move * turn), {0, 1, 0, 1}), tolerance);
    EXPECT_LT(difference(QelVector4(0, 0, 0, 1) * (turn * move), {1, 0, 0, 1}), tolerance);
    QelMatrix4 product = move;
    EXPECT_EQ(product *= turn, move * turn);
}

TEST(Maths, ScaleIsReadAsTheLengthsOfTheRows) {
    QelVector3 scale;
    aboutX(0.5F).scale(-2).getScale(scale);
    EXPECT_LT(difference(scale, {2, 2, 2}), tolerance);
}

TEST(Maths, SpaceChangesUndoOneAnother) {
    QelMatrix4 const a = (aboutX(0.3F) * aboutY(1)).translate({1, 2, 3}).scale(2);
    QelMatrix4 const b = (aboutZ(-2) * aboutY(0.5F)).translate({-4, 0, 1});
    QelMatrix4 m = a;
    EXPECT_LT(difference(m.fromLocaltoGlobal(b), a * b), tolerance);
    EXPECT_LT(difference(m.fromGlobaltoLocal(b), a), 1e-5F);
    QelMatrix4 between = aboutZ(1);
    EXPECT_LT(difference(between.fromAtoB(a, b).fromAtoB(b, a), aboutZ(1)), 1e-5F);
    QelVector4 v(1, 2, 3, 1);
    EXPECT_LT(difference(v.fromLocaltoGlobal(b).fromGlobaltoLocal(b), {1, 2, 3, 1}), 1e-5F);
    EXPECT_LT(difference(v.fromAtoB(a, b), QelVector4(1, 2, 3, 1).fromLocaltoGlobal(a).fromGlobaltoLocal(b)), 1e-5F);
}

TEST(Maths, ASingularSpaceLeavesTheValue) {
    QelMatrix4 flat;
    flat[0][0] = 0;
    QelMatrix4 m = aboutX(1);
    EXPECT_EQ(m.fromGlobaltoLocal(flat), aboutX(1));
    EXPECT_EQ(m.fromAtoB(aboutY(1), flat), aboutX(1));
    EXPECT_EQ(QelVector4(1, 2, 3, 4).fromGlobaltoLocal(flat), QelVector4(1, 2, 3, 4));
    EXPECT_EQ(QelVector4(1, 2, 3, 4).fromAtoB(aboutY(1), flat), QelVector4(1, 2, 3, 4));
}
