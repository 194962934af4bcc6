#include "VoGeMatrix3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using vgtest::near3;
using Rows = std::vector<double>;

using vgtest::kPi;
constexpr double kRoundTol = 1e-12;  // rounding of a few products of unit quantities
const Rows kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

VoGeMatrix3D fromRows(const Rows& v) {
    VoGeMatrix3D a;
    for (std::size_t i = 0; i < 16; ++i)
        a.m[i] = v[i];
    return a;
}

::testing::AssertionResult hasRows(const VoGeMatrix3D& a, const Rows& v, double tol = 0.0) {
    for (std::size_t i = 0; i < 16; ++i) {
        if (!(std::fabs(a.m[i] - v[i]) <= tol))
            return ::testing::AssertionFailure() << "element (" << i / 4 << ", " << i % 4 << ") is "
                                                 << a.m[i] << ", not " << v[i];
    }
    return ::testing::AssertionSuccess();
}

TEST(VoGeMatrix3DProducts, PointVectorRowAndColumnConventions) {
    const VoGeMatrix3D a = fromRows({1, 2, 3, 10, 4, 5, 6, 20, 7, 8, 9, 30, 100, 200, 300, 1});
    const VoGePoint3D p(1, 1, 1);
    const VoGePoint3D col(16, 35, 54);                     // M.p with translation from column 3
    const VoGePoint3D row(112, 215, 318);                  // p.M with translation from row 3
    const VoGeVector3D colV(6, 15, 24), rowV(12, 15, 18);  // vectors are not translated
    EXPECT_TRUE(near3(a.postMult1(p), col, 0.0));
    EXPECT_TRUE(near3(a.preMult1(p), row, 0.0));
    EXPECT_TRUE(near3(a.postMult1(VoGeVector3D(1, 1, 1)), colV, 0.0));
    EXPECT_TRUE(near3(a.preMult1(VoGeVector3D(1, 1, 1)), rowV, 0.0));
    // In-place forms compute from the old coordinates; arrays may be in and out at once.
    VoGePoint3D q = p;
    a.postMult(q);
    EXPECT_TRUE(near3(q, col, 0.0));
    VoGeVector3D u(1, 1, 1);
    a.preMult(u);
    EXPECT_TRUE(near3(u, rowV, 0.0));
    double c[3] = {1, 1, 1}, r[3] = {1, 1, 1};
    a.matMultVec(c, c);
    a.vecMultMat(r, r);
    EXPECT_TRUE(near3(VoGeVector3D(c), colV, 0.0));
    EXPECT_TRUE(near3(VoGeVector3D(r), rowV, 0.0));
    VoGeMatrix3D s = fromRows({1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    s.postMult(s);
    EXPECT_EQ(s(0, 1), 2.0) << "a true square, not a product with a half-written matrix";
}

TEST(VoGeMatrix3DFrames, ArbitraryAxisRule) {
    VoGeMatrix3D a;
    a.setZTrans(VoGeVector3D(0, 0, 1));
    EXPECT_TRUE(hasRows(a, kIdentity));
    a.setZTrans(VoGeVector3D(1, 0, 0));  // X = (0,1,0), Y = (0,0,1)
    EXPECT_TRUE(hasRows(a, {0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1}));
    // Just inside the 1/64 limit world Y is the reference; just outside, world Z.
    VoGeMatrix3D inside, outside;
    inside.setZTrans(VoGeVector3D(0.5 / 64, 0, 1));
    outside.setZTrans(VoGeVector3D(2.0 / 64, 0, 1));
    EXPECT_GT(inside(0, 0), 0.99);               // X stays near world X
    EXPECT_NEAR(outside(0, 0), 0.0, kRoundTol);  // X = Z x ... lies along world Y
    EXPECT_NEAR(outside(1, 0), 1.0, kRoundTol);
    // setZTrans_1 keeps the axes unnormalised: X has the length of world Z x unit(z).
    VoGeMatrix3D raw;
    a.setZTrans(VoGeVector3D(1, 0, 1));
    raw.setZTrans_1(VoGeVector3D(1, 0, 1));
    EXPECT_NEAR(raw.scale(0), std::sqrt(0.5), kRoundTol);
    EXPECT_NEAR(a.scale(0), 1.0, kRoundTol);
    EXPECT_NEAR(raw.scale(2), 1.0, kRoundTol);
    for (int r = 0; r < 3; ++r)
        EXPECT_NEAR(raw(r, 2), a(r, 2), kRoundTol);
}

TEST(VoGeMatrix3DFrames, ZaxisUcsHoldsAxesAsRowsAndOriginAsColumn) {
    VoGeMatrix3D a;
    // Along X the frame is fixed, with element (2, 2) = 1; the test is inclusive at 1e-4.
    a.getZaxisUcsMatrix(VoGePoint3D(7, 8, 9), VoGeVector3D(5, 0, 0));
    EXPECT_TRUE(hasRows(a, {0, 0, -1, 7, 0, 1, 0, 8, 1, 0, 1, 9, 0, 0, 0, 1}));
    a.getZaxisUcsMatrix(VoGePoint3D(), VoGeVector3D(-1, 1e-4, -1e-4));
    EXPECT_EQ(a(2, 2), 1.0);
    // Otherwise row 2 is z and the rows are orthonormal: the world-to-local rotation.
    const double s = std::sqrt(1.0 / 3.0), r = std::sqrt(2.0 / 3.0);
    a.getZaxisUcsMatrix(VoGePoint3D(1, 2, 3), VoGeVector3D(s, s, s));
    EXPECT_TRUE(hasRows(
        a, {r, -s * s / r, -s * s / r, 1, 0, s / r, -s / r, 2, s, s, s, 3, 0, 0, 0, 1}, kRoundTol));
}

// Round trips over random lines and angles: a rotation keeps the points of its line and the
// right-hand sense, and its general inverse undoes it. The cheap rigid inverse's block comes
// out symmetric (upper triangle transposed, lower one kept).
TEST(VoGeMatrix3DRoundTrips, RotationsAboutRandomLinesAndTheirInverses) {
    vgtest::Lcg r(11);
    VoGeMatrix3D q;
    q.getRotateMatrix(VoGePoint3D(), VoGePoint3D(0, 0, 1), kPi / 2);
    EXPECT_TRUE(near3(q.postMult1(VoGePoint3D(1, 0, 0)), 0, 1, 0, kRoundTol));
    const VoGeMatrix3D rotZ = fromRows({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    EXPECT_TRUE(hasRows(rotZ.getInverseMatrix(), {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    for (int k = 0; k < 200; ++k) {
        const VoGePoint3D a(r(-5, 5), r(-5, 5), r(-5, 5)), b(r(-5, 5), r(-5, 5), r(-5, 5));
        const VoGePoint3D p(r(-5, 5), r(-5, 5), r(-5, 5));
        VoGeMatrix3D m;
        m.getRotateMatrix(a, b, r(-7, 7));
        const VoGePoint3D onLine = a + (b - a) * r(-2, 2);
        EXPECT_TRUE(near3(m.postMult1(onLine), onLine, 1e-11));
        EXPECT_TRUE(near3(m.inverse().postMult1(m.postMult1(p)), p, 1e-11));
        VoGeMatrix3D g = fromRows({r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3),
                                   r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3),
                                   r(-3, 3), r(-3, 3), r(-3, 3), r(-3, 3)});
        EXPECT_TRUE(hasRows(g.postMult1(g.inverse()), kIdentity, 1e-8));
    }
}

TEST(VoGeMatrix3DInverse, GeneralInverseMultipliesBackAndSingularIsZeroWithoutTolerance) {
    const VoGeMatrix3D a = fromRows({2, 1, 0, 3, 1, 3, 1, -2, 0, 1, 4, 1, 0.5, 0, 0, 1});
    EXPECT_TRUE(hasRows(a.postMult1(a.inverse()), kIdentity, kRoundTol));
    VoGeMatrix3D b = fromRows(kIdentity);
    b(2, 2) = 0.0;
    EXPECT_TRUE(hasRows(b.inverse(), Rows(16, 0.0)));
    b(2, 2) = 1e-300;  // tiny but not zero: inverted
    EXPECT_DOUBLE_EQ(b.inverse()(2, 2), 1e300);
    EXPECT_EQ(b.inverse()(0, 0), 1.0);
}

TEST(VoGeMatrix3DRobustness, NonFiniteInputStaysNonFiniteWithoutTrapping) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    VoGeMatrix3D a;
    a.getZaxisUcsMatrix(VoGePoint3D(), VoGeVector3D(nan, nan, nan));
    a.setZTrans(VoGeVector3D(inf, 0, 0));
    a.getRotateMatrix(VoGePoint3D(nan, 0, 0), VoGePoint3D(1, 1, 1), inf);
    const VoGeMatrix3D b = fromRows({nan, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    EXPECT_TRUE(std::isnan(b.inverse()(0, 0)));
}

}  // namespace
