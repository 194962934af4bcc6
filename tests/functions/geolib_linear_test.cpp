#include "geolib_linear.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/alloc_hook.h"

namespace {

using geolib::gaussLiner;

constexpr double kSolveTol = 1e-12;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(GaussLiner, SolutionMultipliedBackGivesTheRightHandSide) {
    const double a[9] = {2, 1, -1, -3, -1, 2, -2, 1, 2};
    const double b0[3] = {8, -11, -3};
    double aFlat[9];
    double b[3];
    double rows[3][3];
    double rb[3];
    for (int i = 0; i < 9; ++i)
        aFlat[i] = rows[i / 3][i % 3] = a[i];
    for (int i = 0; i < 3; ++i)
        b[i] = rb[i] = b0[i];
    double x[3];
    ASSERT_TRUE(gaussLiner(3, aFlat, b, x));
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(aFlat[i], a[i]);  // the flat form works on a copy
    double back[3];
    geolib::matrixMultVector(3, 3, a, x, back);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(back[i], b0[i], kSolveTol);
    // The row-pointer form is the same elimination: the same bits.
    double* rp[3] = {rows[0], rows[1], rows[2]};
    double xr[3];
    ASSERT_TRUE(gaussLiner(3, rp, rb, xr));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(xr[i], x[i]);
}

TEST(GaussLiner, PivotIsTheFirstOfEqualMaxima) {
    // Column (0, 3, -3): row 1 wins over row 2 of the same magnitude, and the rows are
    // exchanged in place.
    double s0[3] = {0, 1, 0};
    double s1[3] = {3, 0, 1};
    double s2[3] = {-3, 0, 2};
    double* c[3] = {s0, s1, s2};
    double d[3] = {1, 2, 3};
    double x[3];
    ASSERT_TRUE(gaussLiner(3, c, d, x));
    EXPECT_EQ(s0[2], 1.0);
}

TEST(GaussLiner, SingularOrInvalidSystemsFail) {
    const double pivotTol = 1e-6;
    double x[3] = {-1, -1, -1};
    double tiny = pivotTol / 2;
    double b = 4;
    EXPECT_FALSE(gaussLiner(1, &tiny, &b, x));
    double small = pivotTol * 2;
    EXPECT_TRUE(gaussLiner(1, &small, &b, x));
    double two = 2;
    b = 4;
    ASSERT_TRUE(gaussLiner(1, &two, &b, x));
    EXPECT_EQ(x[0], 2.0);
    double same[9] = {1, 2, 3, 1, 2, 3, 0, 1, 5};
    double rhs[3] = {1, 1, 1};
    EXPECT_FALSE(gaussLiner(3, same, rhs, x));
    double nan[4] = {kNaN, 1, 1, 1};
    EXPECT_FALSE(gaussLiner(2, nan, rhs, x));
    double keep[1] = {2};
    b = 4;
    EXPECT_FALSE(gaussLiner(1, keep, &b, static_cast<double*>(nullptr)));
    EXPECT_EQ(b, 4.0);
    EXPECT_FALSE(gaussLiner(0, keep, &b, x));
    EXPECT_FALSE(gaussLiner(-3, keep, &b, x));
    double* missingRow[2] = {keep, nullptr};
    EXPECT_FALSE(gaussLiner(2, missingRow, rhs, x));
}

TEST(GaussLiner, FlatFormGivesEveryBlockBackWhenAnAllocationFails) {
    const long blocks = vgtest::forEachAllocationFailure([] {
        double a[9] = {4, 1, 0, 1, 4, 1, 0, 1, 4};
        double b[3] = {1, 2, 3};
        double x[3];
        gaussLiner(3, a, b, x);
    });
    EXPECT_EQ(blocks, 4);  // the row pointers and three rows
}

TEST(ArrayProducts, RowAndColumnProductsAndDot) {
    const double m[6] = {1, 2, 3, 4, 5, 6};  // 2 x 3
    const double v3[3] = {1, 0, -1};
    const double v2[2] = {1, -1};
    double out[3] = {9, 9, 9};
    geolib::matrixMultVector(2, 3, m, v3, out);
    EXPECT_EQ(out[0], -2.0);
    EXPECT_EQ(out[1], -2.0);
    EXPECT_EQ(out[2], 9.0);
    geolib::vectorMultMatrix(2, 3, v2, m, out);
    EXPECT_EQ(out[0], -3.0);
    EXPECT_EQ(out[2], -3.0);
    double dot = 9;
    geolib::vecPMulVector(3, v3, v3, &dot);
    EXPECT_EQ(dot, 2.0);
    geolib::vecPMulVector(0, v3, v3, &dot);
    EXPECT_EQ(dot, 0.0);
}

}  // namespace
