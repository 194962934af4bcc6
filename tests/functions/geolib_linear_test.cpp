#include "geolib_linear.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

using geolib::gaussLiner;

// The solution multiplied back gives the right-hand side (the flat form eliminates on a copy);
// of equal largest pivots the first wins (rows exchanged in place); a pivot below 1e-6, NaN,
// a missing row or output and a size below 1 fail.
TEST(GaussLiner, SolvesPivotsOnTheFirstMaximumAndRefusesSingularSystems) {
    const double a0[9] = {2, 1, -1, -3, -1, 2, -2, 1, 2}, b0[3] = {8, -11, -3};
    double a[9], b[3], x[3], back[3];
    std::copy(a0, a0 + 9, a);
    std::copy(b0, b0 + 3, b);
    ASSERT_TRUE(gaussLiner(3, a, b, x));
    EXPECT_TRUE(std::equal(a0, a0 + 9, a));
    geolib::matrixMultVector(3, 3, a0, x, back);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(back[i], b0[i], 1e-12);
    double s0[3] = {0, 1, 0}, s1[3] = {3, 0, 1}, s2[3] = {-3, 0, 2}, d[3] = {1, 2, 3};
    double* rows[3] = {s0, s1, s2};
    ASSERT_TRUE(gaussLiner(3, rows, d, x));
    EXPECT_EQ(s0[2], 1.0);
    EXPECT_EQ(d[0], 2.0);
    double tiny = 0.5e-6, small = 2e-6, four = 4, same[9] = {1, 2, 3, 1, 2, 3, 0, 1, 5};
    double nan[4] = {std::numeric_limits<double>::quiet_NaN(), 1, 1, 1}, rhs[3] = {1, 1, 1};
    double* missingRow[2] = {same, nullptr};
    EXPECT_FALSE(gaussLiner(1, &tiny, &four, x));
    EXPECT_TRUE(gaussLiner(1, &small, &four, x));
    EXPECT_FALSE(gaussLiner(3, same, rhs, x));
    EXPECT_FALSE(gaussLiner(2, nan, rhs, x));
    EXPECT_FALSE(gaussLiner(1, &small, &four, static_cast<double*>(nullptr)));
    EXPECT_FALSE(gaussLiner(0, &small, &four, x));
    EXPECT_FALSE(gaussLiner(-3, &small, &four, x));
    EXPECT_FALSE(gaussLiner(2, missingRow, rhs, x));
}

}  // namespace
