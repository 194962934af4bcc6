#include "geolib_linear.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

using geolib::gaussLiner;

constexpr double kSolveTol = 1e-12;
constexpr double kPivotMin = 1e-6;

TEST(GaussLiner, SolutionMultipliedBackGivesTheRightHandSide) {
    const double a0[9] = {2, 1, -1, -3, -1, 2, -2, 1, 2};
    const double b0[3] = {8, -11, -3};
    double a[9], b[3], x[3], back[3];
    std::copy(a0, a0 + 9, a);
    std::copy(b0, b0 + 3, b);
    ASSERT_TRUE(gaussLiner(3, a, b, x));
    EXPECT_TRUE(std::equal(a0, a0 + 9, a));  // the flat form eliminates on a copy
    geolib::matrixMultVector(3, 3, a0, x, back);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(back[i], b0[i], kSolveTol);
}

// Column (0, 3, -3): row 1 wins over row 2 of the same magnitude, exchanged in place.
TEST(GaussLiner, PivotIsTheFirstOfEqualMaxima) {
    double s0[3] = {0, 1, 0}, s1[3] = {3, 0, 1}, s2[3] = {-3, 0, 2};
    double* c[3] = {s0, s1, s2};
    double d[3] = {1, 2, 3};
    double x[3];
    ASSERT_TRUE(gaussLiner(3, c, d, x));
    EXPECT_EQ(s0[2], 1.0);
    EXPECT_EQ(d[0], 2.0);
}

TEST(GaussLiner, SingularOrInvalidSystemsFail) {
    double x[3];
    double b = 4;
    double tiny = kPivotMin / 2;
    double small = kPivotMin * 2;
    EXPECT_FALSE(gaussLiner(1, &tiny, &b, x));
    EXPECT_TRUE(gaussLiner(1, &small, &b, x));
    double same[9] = {1, 2, 3, 1, 2, 3, 0, 1, 5};
    double rhs[3] = {1, 1, 1};
    EXPECT_FALSE(gaussLiner(3, same, rhs, x));
    double nan[4] = {std::numeric_limits<double>::quiet_NaN(), 1, 1, 1};
    EXPECT_FALSE(gaussLiner(2, nan, rhs, x));
    b = 4;
    EXPECT_FALSE(gaussLiner(1, &small, &b, static_cast<double*>(nullptr)));
    EXPECT_EQ(b, 4.0);
    EXPECT_FALSE(gaussLiner(0, &small, &b, x));
    EXPECT_FALSE(gaussLiner(-3, &small, &b, x));
    double* missingRow[2] = {same, nullptr};
    EXPECT_FALSE(gaussLiner(2, missingRow, rhs, x));
}

}  // namespace
