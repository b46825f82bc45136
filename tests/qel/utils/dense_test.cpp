#include "qel/utils/dense.h"
#include <gmock/gmock.h>
#include <limits>

using namespace Qelp;
using testing::ElementsAre;

TEST(Dense, NumbersLieRowAfterRow) {
    Matrix<double> m(2, 3, 1.0);
    m(0, 2) = 5, m[1][0] = 7;
    EXPECT_EQ(m.rows(), 2);
    EXPECT_EQ(m.columns(), 3);
    EXPECT_THAT(m.numbers(), ElementsAre(1, 1, 5, 7, 1, 1));
    EXPECT_EQ(static_cast<Matrix<double> const&>(m)[0][2], 5);
}

TEST(Dense, NumbersAreZeroUnlessGiven) {
    EXPECT_THAT(Matrix<int>(1, 2).numbers(), ElementsAre(0, 0));
    EXPECT_TRUE(Matrix<double>().numbers().empty());
}

TEST(Dense, ANegativeSizeIsNone) {
    Matrix<double> const m(-1, 3);
    EXPECT_EQ(m.rows(), 0);
    EXPECT_EQ(m.columns(), 3);
    EXPECT_EQ((Matrix<double>(3, -1).columns()), 0);
}

TEST(Dense, MatricesOfEqualNumbersButOtherShapeDiffer) {
    EXPECT_NE(Matrix<double>(2, 3), Matrix<double>(3, 2));
    EXPECT_EQ(Matrix<double>(2, 3), Matrix<double>(2, 3));
}

TEST(Dense, WhatIsNotANumberIsWithinNoLimit) {
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(areWithin({-2, 2}, 2));
    EXPECT_FALSE(areWithin({-2.1, 2}, 2));
    EXPECT_FALSE(areWithin({std::nan("")}, infinity));
    EXPECT_FALSE(areWithin({-infinity}, std::numeric_limits<double>::max()));
    EXPECT_TRUE(areWithin({}, 0));
}
