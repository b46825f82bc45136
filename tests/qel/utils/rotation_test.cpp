#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace Qelutils;
using Qelp::Matrix34;
using Qelp::Quat;
using Qelp::Vector3;

namespace {

constexpr float tolerance = 1e-6F;
constexpr unsigned seed = 21;

struct Random {
    std::mt19937 engine{seed};
    float operator()(float limit) { return std::uniform_real_distribution<float>(-limit, limit)(engine); }
    Vector3 vector(float limit) { return {(*this)(limit), (*this)(limit), (*this)(limit)}; }
    Matrix34 affine(float limit) {
        Matrix34 m;
        for (auto& row : m.m)
            for (int j = 0; j < 3; ++j) row[j] = (*this)(limit);
        return m;
    }
};

float difference(Matrix34 const& a, Matrix34 const& b) {
    float most = 0;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (float const d = std::abs(a.m[i][j] - b.m[i][j]); !(d <= most)) most = d;
    return most;
}

Matrix34 naiveProduct(Matrix34 const& a, Matrix34 const& b) {
    Matrix34 out;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j) {
            double sum = i == 3 ? b.m[3][j] : 0;
            for (int k = 0; k < 3; ++k) sum += double(a.m[i][k]) * b.m[k][j];
            out.m[i][j] = static_cast<float>(sum);
        }
    return out;
}

Matrix34 euler(Vector3 const& angles, int order) {
    Matrix34 out;
    eulerToMatrix(angles, order, out);
    return out;
}

}  // namespace

TEST(Rotation, EulerOrdersAreTheProductOfTheirTurns) {
    char const* const names[] = {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};
    Random random;
    for (int order = 0; order < 6; ++order)
        for (int round = 0; round < 1000; ++round) {
            Vector3 const v = random.vector(4);
            Matrix34 expected;
            for (char const* axis = names[order]; *axis; ++axis) {
                Vector3 const one{*axis == 'X' ? v.x : 0, *axis == 'Y' ? v.y : 0, *axis == 'Z' ? v.z : 0};
                expected = multiply(expected, euler(one, 0));
            }
            ASSERT_LT(difference(euler(v, order), expected), tolerance) << names[order];
        }
}

TEST(Rotation, EulerAnglesRebuildTheMatrix) {
    Random random;
    for (int order = 0; order < 6; ++order)
        for (int round = 0; round < 10000; ++round) {
            Matrix34 const m = euler(random.vector(4), order);
            ASSERT_LT(difference(euler(matrixToEuler(m, order), order), m), tolerance);
        }
}

TEST(Rotation, QuaternionsRebuildTheMatrix) {
    Random random;
    for (int round = 0; round < 10000; ++round) {
        Matrix34 const m = euler(random.vector(4), 0);
        Matrix34 back;
        quatToMatrix(matrixToQuat(m), back);
        ASSERT_LT(difference(back, m), tolerance);
    }
}

TEST(Rotation, TwistAndSwingRebuildTheMatrix) {
    Random random;
    for (int round = 0; round < 10000; ++round) {
        Matrix34 const m = euler(random.vector(4), 0);
        Matrix34 back;
        twistSwingToMatrix(matrixToTwistSwing(m), back);
        ASSERT_LT(difference(back, m), tolerance);
        twistSwingAnglesToMatrix(matrixToTwistSwingAngles(m), back);
        ASSERT_LT(difference(back, m), tolerance);
    }
}

TEST(Rotation, AQuaternionOfAnyLengthIsTheSameRotation) {
    Matrix34 unit, longer;
    quatToMatrix({0.5F, 0.5F, 0.5F, 0.5F}, unit);
    quatToMatrix({-7, -7, -7, -7}, longer);
    EXPECT_LT(difference(unit, longer), tolerance);
    quatToMatrix({0, 0, 0, 0}, unit);
    EXPECT_EQ(unit, Matrix34());
}

TEST(Rotation, WritersReplaceTheWholeMatrix) {
    Matrix34 const noise = Random().affine(5);
    Matrix34 out = noise;
    eulerToMatrix({}, 3, out);
    EXPECT_EQ(out, Matrix34());
    out = noise;
    quatToMatrix({}, out);
    EXPECT_EQ(out, Matrix34());
    out = noise;
    twistSwingToMatrix({}, out);
    EXPECT_EQ(out, Matrix34());
    out = noise;
    rotationOf(Matrix34(), out);
    EXPECT_EQ(out, Matrix34());
}

TEST(Rotation, AnOrderOutOfRangeIsXYZ) {
    Vector3 const v{0.1F, 0.2F, 0.3F};
    EXPECT_EQ(euler(v, -1), euler(v, 0));
    EXPECT_EQ(euler(v, 6), euler(v, 0));
}

TEST(Rotation, NonFiniteAnglesGiveNoNaN) {
    float const inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    Matrix34 out;
    EXPECT_EQ(euler({inf, nan, -inf}, 0), Matrix34());
    twistSwingToMatrix({inf, nan, 0}, out);
    EXPECT_EQ(out, Matrix34());
    twistSwingAnglesToMatrix({nan, inf, 0}, out);
    EXPECT_EQ(out, Matrix34());
    quatToMatrix({nan, 0, 0, 1}, out);
    EXPECT_EQ(out, Matrix34());
}

TEST(Rotation, MultiplyIsTheAffineProduct) {
    Random random;
    for (int round = 0; round < 1000; ++round) {
        Matrix34 const a = random.affine(2), b = random.affine(2);
        ASSERT_LT(difference(multiply(a, b), naiveProduct(a, b)), 4 * tolerance);
    }
}

TEST(Rotation, MultiplyMayWriteOverItsFactors) {
    Random random;
    Matrix34 const a = random.affine(2), b = random.affine(2), expected = multiply(a, b);
    Matrix34 left = a, right = b, both = a;
    left = multiply(left, b);
    right = multiply(a, right);
    both = multiply(both, both);
    EXPECT_EQ(left, expected);
    EXPECT_EQ(right, expected);
    EXPECT_EQ(both, multiply(a, a));
}

TEST(Rotation, InvertUndoesScaleShearAndMirroring) {
    Random random;
    for (int round = 0; round < 1000; ++round) {
        Matrix34 m = random.affine(1);
        for (int i = 0; i < 3; ++i) m.m[i][i] += 3;
        if (round % 2) m.m[2][2] -= 6;
        Matrix34 inverse;
        ASSERT_TRUE(invert(m, inverse));
        ASSERT_LT(difference(multiply(m, inverse), Matrix34()), 4 * tolerance);
        ASSERT_TRUE(invert(m, m));
        ASSERT_EQ(m, inverse);
    }
}

TEST(Rotation, InvertTakesExtremeScales) {
    for (float scale : {1e-12F, 1e-6F, 1e6F, 1e12F}) {
        Matrix34 m = euler({1, 2, 3}, 0);
        for (auto& row : m.m)
            for (float& entry : row) entry *= scale;
        Matrix34 inverse;
        ASSERT_TRUE(invert(m, inverse)) << scale;
        EXPECT_LT(difference(multiply(m, inverse), Matrix34()), tolerance) << scale;
    }
}

TEST(Rotation, InvertRefusesWhatHasNoInverseAndLeavesTheResult) {
    float const nan = std::numeric_limits<float>::quiet_NaN();
    Matrix34 const flats[] = {
        {{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {1, 2, 3, 0}}},
        {{{0.1F, 0.2F, 0.3F, 0}, {0.2F, 0.4F, 0.6F, 0}, {7, 1, 2, 0}, {0, 0, 0, 0}}},
        {{{nan, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 0}}},
        {{{1e-39F, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 0}}},
    };
    Matrix34 const noise = Random().affine(5);
    for (Matrix34 const& flat : flats) {
        Matrix34 out = noise;
        EXPECT_FALSE(invert(flat, out));
        EXPECT_EQ(out, noise);
    }
}

// Their determinant in double precision is seldom exactly 0.
TEST(Rotation, InvertRefusesRowsThatDependOnOneAnotherWithinRounding) {
    std::mt19937 random(seed);
    auto const entry = [&random] { return static_cast<float>(random() % 2097152) / 1048576; };
    for (int round = 0; round < 1000; ++round) {
        Matrix34 m;
        for (int j = 0; j < 3; ++j) {
            m.m[0][j] = entry();
            m.m[1][j] = entry();
            m.m[2][j] = m.m[0][j] + m.m[1][j];
        }
        Matrix34 out;
        ASSERT_FALSE(invert(m, out));
    }
}
