#include "VoGeMatrix3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "geometry/matrix_cofactors.h"

namespace {

const double kPi = std::acos(-1.0);
constexpr double kRoundTol = 1e-12;  // rounding of a few products of unit quantities

VoGeMatrix3D fromRows(std::initializer_list<double> v) {
    VoGeMatrix3D a;
    int i = 0;
    for (double e : v)
        a.m[i++] = e;
    return a;
}

void expectRows(const VoGeMatrix3D& a, std::initializer_list<double> v, double tol = 0.0) {
    int i = 0;
    for (double e : v) {
        if (tol == 0.0) {
            EXPECT_EQ(a.m[i], e) << "element (" << i / 4 << ", " << i % 4 << ")";
        } else {
            EXPECT_NEAR(a.m[i], e, tol) << "element (" << i / 4 << ", " << i % 4 << ")";
        }
        ++i;
    }
}

TEST(VoGeMatrix3DBasics, DefaultIsZeroNotIdentity) {
    VoGeMatrix3D a;
    for (double e : a.m)
        EXPECT_EQ(e, 0.0);
    a.makeIdentity();
    EXPECT_EQ(a(0, 0), 1.0);
    EXPECT_EQ(a(3, 3), 1.0);
    EXPECT_EQ(a(0, 1), 0.0);
}

TEST(VoGeMatrix3DBasics, OutOfRangeShortIndicesTouchNothing) {
    VoGeMatrix3D a = fromRows({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    const VoGeMatrix3D before = a;
    a.setRow(4, 0, 0, 0, 0);
    a.setColumn(-1, 0, 0, 0, 0);
    a.row2Num(7, 0.0);
    a.column2Num(-3, 0.0);
    double r0 = -1, r1 = -1, r2 = -1, r3 = -1;
    a.getColumn(-1, r0, r1, r2, r3);
    a.getRow(4, r0, r1, r2, r3);
    EXPECT_EQ(r0, -1.0);
    EXPECT_EQ(r3, -1.0);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(a.m[i], before.m[i]);
    EXPECT_EQ(a.scale(3), 1.0);
    EXPECT_EQ(a.scale(-1), 1.0);
}

TEST(VoGeMatrix3DProducts, PointVectorRowAndColumnConventions) {
    const VoGeMatrix3D a = fromRows({1, 2, 3, 10, 4, 5, 6, 20, 7, 8, 9, 30, 100, 200, 300, 1});
    const VoGePoint3D p(1, 1, 1);
    const VoGePoint3D col = a.postMult1(p);  // M.p with translation from column 3
    EXPECT_EQ(col.x, 16.0);
    EXPECT_EQ(col.z, 54.0);
    const VoGePoint3D row = a.preMult1(p);  // p.M with translation from row 3
    EXPECT_EQ(row.x, 112.0);
    EXPECT_EQ(row.z, 318.0);
    const VoGeVector3D v = a.postMult1(VoGeVector3D(1, 1, 1));
    EXPECT_EQ(v.x, 6.0);
    const VoGeVector3D w = a.preMult1(VoGeVector3D(1, 1, 1));
    EXPECT_EQ(w.x, 12.0);
    // In-place forms compute from the old coordinates.
    VoGePoint3D q = p;
    a.postMult(q);
    EXPECT_EQ(q.y, col.y);
    VoGeVector3D u(1, 1, 1);
    a.preMult(u);
    EXPECT_EQ(u.z, w.z);
    double arr[3] = {1, 1, 1};
    a.matMultVec(arr, arr);  // in and out may be the same array
    EXPECT_EQ(arr[2], 24.0);
    double arr2[3] = {1, 1, 1};
    a.vecMultMat(arr2, arr2);
    EXPECT_EQ(arr2[2], 18.0);
}

TEST(VoGeMatrix3DProducts, ProductAppliesTheRightFactorFirstAndSquaresInPlace) {
    VoGeMatrix3D t;
    t.makeIdentity();
    t(0, 3) = 5.0;
    VoGeMatrix3D r;
    r.getRotateMatrix(VoGePoint3D(), VoGePoint3D(0, 0, 1), kPi / 2);
    const VoGePoint3D p = t.postMult1(r).postMult1(VoGePoint3D(1, 0, 0));  // rotate, then move
    EXPECT_NEAR(p.x, 5.0, kRoundTol);
    EXPECT_NEAR(p.y, 1.0, kRoundTol);
    VoGeMatrix3D s = fromRows({1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    s.postMult(s);
    EXPECT_EQ(s(0, 1), 2.0);  // a true square, not a product with a half-written matrix
}

TEST(VoGeMatrix3DFrames, RotationAboutALineFollowsTheRightHandRule) {
    VoGeMatrix3D r;
    r.getRotateMatrix(VoGePoint3D(), VoGePoint3D(0, 0, 1), kPi / 2);
    const VoGePoint3D p = r.postMult1(VoGePoint3D(1, 0, 0));
    EXPECT_NEAR(p.x, 0.0, kRoundTol);
    EXPECT_NEAR(p.y, 1.0, kRoundTol);
    // About a line off the origin: the line's points stay put.
    r.getRotateMatrix(VoGePoint3D(1, 1, 0), VoGePoint3D(1, 1, 2), kPi);
    const VoGePoint3D q = r.postMult1(VoGePoint3D(2, 1, 5));
    EXPECT_NEAR(q.x, 0.0, kRoundTol);
    EXPECT_NEAR(q.y, 1.0, kRoundTol);
    EXPECT_NEAR(q.z, 5.0, kRoundTol);
    // Coincident points: zero block and zero translation, row 3 still (0, 0, 0, 1).
    r.makeIdentity();
    r.getRotateMatrix(VoGePoint3D(1, 2, 3), VoGePoint3D(1, 2, 3 + 0.5e-4), 1.0);
    expectRows(r, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
}

TEST(VoGeMatrix3DFrames, CoordSystemNormalisesOnlyInTheFirstForm) {
    VoGeMatrix3D a;
    a.setCoordSystem(VoGePoint3D(1, 2, 3), VoGeVector3D(2, 0, 0), VoGeVector3D(0, 3, 0),
                     VoGeVector3D(0, 0, 1e-5));
    expectRows(a, {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 0, 3, 0, 0, 0, 1});
    a.setCoordSystem_1(VoGePoint3D(1, 2, 3), VoGeVector3D(2, 0, 0), VoGeVector3D(0, 3, 0),
                       VoGeVector3D(0, 0, 1e-5));
    expectRows(a, {2, 0, 0, 1, 0, 3, 0, 2, 0, 0, 1e-5, 3, 0, 0, 0, 1});
    VoGePoint3D o;
    VoGeVector3D x, y, z;
    a.getCoordSystem(o, x, y, z);
    EXPECT_EQ(o.z, 3.0);
    EXPECT_EQ(y.y, 3.0);
}

TEST(VoGeMatrix3DFrames, ArbitraryAxisRule) {
    VoGeMatrix3D a;
    a.setZTrans(VoGeVector3D(0, 0, 1));
    expectRows(a, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    a.setZTrans(VoGeVector3D(1, 0, 0));  // X = (0,1,0), Y = (0,0,1)
    expectRows(a, {0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1});
    // Just inside the 1/64 limit world Y is the reference; just outside, world Z.
    VoGeMatrix3D inside, outside;
    inside.setZTrans(VoGeVector3D(0.5 / 64, 0, 1));
    outside.setZTrans(VoGeVector3D(2.0 / 64, 0, 1));
    EXPECT_GT(inside(0, 0), 0.99);               // X stays near world X
    EXPECT_NEAR(outside(0, 0), 0.0, kRoundTol);  // X = Z x ... lies along world Y
    EXPECT_NEAR(outside(1, 0), 1.0, kRoundTol);
}

TEST(VoGeMatrix3DFrames, SetZTransOneKeepsUnnormalisedAxes) {
    const VoGeVector3D z(1, 0, 1);
    VoGeMatrix3D unit, raw;
    unit.setZTrans(z);
    raw.setZTrans_1(z);
    const double sine = std::sqrt(0.5);  // |world Z x unit(z)|
    EXPECT_NEAR(raw.scale(0), sine, kRoundTol);
    EXPECT_NEAR(unit.scale(0), 1.0, kRoundTol);
    EXPECT_NEAR(raw.scale(2), 1.0, kRoundTol);
    for (int r = 0; r < 3; ++r)
        EXPECT_NEAR(raw(r, 2), unit(r, 2), kRoundTol);
}

TEST(VoGeMatrix3DFrames, ZaxisUcsAlongXIsFixedWithUnitCornerElement) {
    VoGeMatrix3D a;
    a.getZaxisUcsMatrix(VoGePoint3D(7, 8, 9), VoGeVector3D(5, 0, 0));
    expectRows(a, {0, 0, -1, 7, 0, 1, 0, 8, 1, 0, 1, 9, 0, 0, 0, 1});
    // The along-X test is inclusive at 1e-4, whatever the sign of x.
    a.getZaxisUcsMatrix(VoGePoint3D(), VoGeVector3D(-1, 1e-4, -1e-4));
    EXPECT_EQ(a(2, 2), 1.0);
}

TEST(VoGeMatrix3DFrames, ZaxisUcsHoldsAxesAsRowsAndOriginAsColumn) {
    const double s = std::sqrt(1.0 / 3.0);
    const VoGeVector3D z(s, s, s);
    VoGeMatrix3D a;
    a.getZaxisUcsMatrix(VoGePoint3D(1, 2, 3), z);
    // Row 2 is z itself, and the rows are orthonormal: the world-to-local rotation.
    EXPECT_NEAR(a(2, 0), s, kRoundTol);
    EXPECT_NEAR(a(2, 1), s, kRoundTol);
    EXPECT_NEAR(a(2, 2), s, kRoundTol);
    const double r = std::sqrt(2.0 / 3.0);
    EXPECT_NEAR(a(0, 0), r, kRoundTol);
    EXPECT_NEAR(a(0, 1), -s * s / r, kRoundTol);
    EXPECT_NEAR(a(1, 1), s / r, kRoundTol);
    EXPECT_EQ(a(0, 3), 1.0);
    EXPECT_EQ(a(2, 3), 3.0);
    EXPECT_EQ(a(3, 3), 1.0);
}

TEST(VoGeMatrix3DPlanes, ProjectionTranslatesByThePointItself) {
    VoGeMatrix3D a;
    a.getProjectMatrix(VoGePoint3D(0, 0, 5), VoGeVector3D(0, 0, 2));
    const VoGePoint3D p = a.postMult1(VoGePoint3D(1, 2, 3));
    EXPECT_EQ(p.x, 1.0);
    EXPECT_EQ(p.z, 5.0);  // flattened onto z = 0, then moved by p
    a.getProjectMatrix(VoGePoint3D(1, 0, 0), VoGeVector3D(0, 0, 1));
    EXPECT_EQ(a.postMult1(VoGePoint3D(1, 2, 3)).x, 2.0);  // by p, not by (n.p)n
}

TEST(VoGeMatrix3DPlanes, ReflectionInAnOffsetPlane) {
    VoGeMatrix3D a;
    a.getReflectMatrix(VoGePoint3D(0, 0, 2), VoGeVector3D(0, 0, -1));
    const VoGePoint3D p = a.postMult1(VoGePoint3D(1, 1, 5));
    EXPECT_NEAR(p.z, -1.0, kRoundTol);
    EXPECT_NEAR(p.x, 1.0, kRoundTol);
    a.getReflectMatrix(VoGePoint3D(), VoGeVector3D(1, 0, 0));
    expectRows(a, {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
}

TEST(VoGeMatrix3DInverse, SingularIsZeroWithoutTolerance) {
    VoGeMatrix3D a;
    a.makeIdentity();
    a(2, 2) = 0.0;
    for (double e : a.inverse().m)
        EXPECT_EQ(e, 0.0);
    a(2, 2) = 1e-300;  // tiny but not zero: inverted
    const VoGeMatrix3D inv = a.inverse();
    EXPECT_DOUBLE_EQ(inv(2, 2), 1e300);
    EXPECT_EQ(inv(0, 0), 1.0);
}

TEST(VoGeMatrix3DInverse, GeneralInverseMultipliesBackToIdentity) {
    const VoGeMatrix3D a = fromRows({2, 1, 0, 3, 1, 3, 1, -2, 0, 1, 4, 1, 0.5, 0, 0, 1});
    const VoGeMatrix3D prod = a.postMult1(a.inverse());
    expectRows(prod, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, kRoundTol);
}

TEST(VoGeMatrix3DInverse, CofactorRoutinesOnSmallBlocks) {
    using namespace geolib::geometry;
    const double one[16] = {4};
    EXPECT_EQ(matDeterminant(one, 1), 4.0);
    double adj[16] = {};
    matAdjoint(one, 1, adj);
    EXPECT_EQ(adj[0], 1.0);
    // 2x2 at stride 4: [[1, 2], [3, 4]] has determinant -2 and inverse [[-2, 1], [1.5, -0.5]].
    const double two[16] = {1, 2, 0, 0, 3, 4};
    double inv[16] = {};
    ASSERT_TRUE(matInverse(two, 2, inv));
    EXPECT_EQ(inv[0], -2.0);
    EXPECT_EQ(inv[1], 1.0);
    EXPECT_EQ(inv[4], 1.5);
    EXPECT_EQ(inv[5], -0.5);
    double untouched[16] = {7};
    const double singular[16] = {1, 2, 0, 0, 2, 4};
    EXPECT_FALSE(matInverse(singular, 2, untouched));
    EXPECT_EQ(untouched[0], 7.0);
}

TEST(VoGeMatrix3DInverse, RigidInverseHasASymmetricBlock) {
    const VoGeMatrix3D rotZ = fromRows({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    expectRows(rotZ.getInverseMatrix(), {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    // A pure translation inverts exactly: the block is the identity either way.
    VoGeMatrix3D t;
    t.makeIdentity();
    t(0, 3) = 3.0;
    t(1, 3) = -4.0;
    const VoGePoint3D back = t.getInverseMatrix().postMult1(t.postMult1(VoGePoint3D(1, 2, 3)));
    EXPECT_EQ(back.x, 1.0);
    EXPECT_EQ(back.y, 2.0);
}

TEST(VoGeMatrix3DParts, ScaleRotationAndTranslationParts) {
    VoGeMatrix3D a;
    a.setCoordSystem_1(VoGePoint3D(1, 2, 3), VoGeVector3D(0, 2, 0), VoGeVector3D(-3, 0, 0),
                       VoGeVector3D(0, 0, 4));
    expectRows(a.extractScaleMatrix(), {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1});
    expectRows(a.extractRotateMatrix(), {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    expectRows(a.extractTranslationMatrix(), {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1});
    VoGeMatrix3D zero;
    EXPECT_TRUE(std::isnan(zero.extractRotateMatrix()(0, 0)));  // unguarded division
}

TEST(VoGeMatrix3DRobustness, NonFiniteInputStaysNonFiniteWithoutTrapping) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    VoGeMatrix3D a;
    a.getZaxisUcsMatrix(VoGePoint3D(), VoGeVector3D(nan, nan, nan));
    a.setZTrans(VoGeVector3D(inf, 0, 0));
    a.getRotateMatrix(VoGePoint3D(nan, 0, 0), VoGePoint3D(1, 1, 1), inf);
    VoGeMatrix3D b = fromRows({nan, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    const VoGeMatrix3D inv = b.inverse();
    EXPECT_TRUE(std::isnan(inv(0, 0)));
}

}  // namespace
