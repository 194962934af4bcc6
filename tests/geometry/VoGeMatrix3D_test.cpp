#include "VoGeMatrix3D.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/test_constants.h"

namespace {

using vgtest::near;

VoGeMatrix3D fromRows(std::initializer_list<double> v) {
    VoGeMatrix3D a;
    std::copy(v.begin(), v.end(), a.m);
    return a;
}

// M.p takes the translation from column 3, p.M from row 3; vectors are not translated; the
// in-place forms (and the array forms with one array in and out) compute from the old values.
TEST(VoGeMatrix3D, PointAndVectorProductsOnBothSides) {
    const VoGeMatrix3D a = fromRows({1, 2, 3, 10, 4, 5, 6, 20, 7, 8, 9, 30, 100, 200, 300, 1});
    EXPECT_TRUE(near(a.postMult1(VoGePoint3D(1, 1, 1)), VoGePoint3D(16, 35, 54), 0));
    EXPECT_TRUE(near(a.preMult1(VoGePoint3D(1, 1, 1)), VoGePoint3D(112, 215, 318), 0));
    VoGeVector3D u(1, 1, 1);
    a.preMult(u);
    double c[3] = {1, 1, 1};
    a.matMultVec(c, c);
    EXPECT_TRUE(near(VoGePoint3D(u.x, u.y, u.z), VoGePoint3D(12, 15, 18), 0));
    EXPECT_TRUE(near(VoGePoint3D(c[0], c[1], c[2]), VoGePoint3D(6, 15, 24), 0));
    VoGeMatrix3D s = fromRows({1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    s.postMult(s);
    EXPECT_EQ(s(0, 1), 2.0) << "a true square, not a product with a half-written matrix";
}

// The arbitrary axis rule: world Y is the reference within 1/64 of Z, world Z outside;
// setZTrans_1 keeps X unnormalised; the UCS matrix along X is fixed (inclusive at 1e-4).
TEST(VoGeMatrix3D, FramesFollowTheArbitraryAxisRule) {
    VoGeMatrix3D inside, outside, raw, ucs;
    inside.setZTrans(VoGeVector3D(0.5 / 64, 0, 1));
    outside.setZTrans(VoGeVector3D(2.0 / 64, 0, 1));
    EXPECT_GT(inside(0, 0), 0.99);
    EXPECT_NEAR(outside(1, 0), 1.0, 1e-12);
    raw.setZTrans_1(VoGeVector3D(1, 0, 1));
    EXPECT_NEAR(raw.scale(0), std::sqrt(0.5), 1e-12);
    ucs.getZaxisUcsMatrix(VoGePoint3D(), VoGeVector3D(-1, 1e-4, -1e-4));
    EXPECT_EQ(ucs(2, 2), 1.0);
    ucs.getZaxisUcsMatrix(VoGePoint3D(7, 8, 9), VoGeVector3D(1.0 / 3, 2.0 / 3, 2.0 / 3));
    EXPECT_TRUE(near(ucs.postMult1(VoGePoint3D(1, 2, 2)), VoGePoint3D(7, 8, 12), 1e-12));
}

// Rotations about random lines keep their line's points and turn right-handed; the general
// inverse undoes them and any regular matrix; the rigid inverse's block comes out symmetric.
TEST(VoGeMatrix3D, RandomRotationsAndInversesRoundTrip) {
    vgtest::Lcg r(11);
    VoGeMatrix3D q;
    q.getRotateMatrix(VoGePoint3D(), VoGePoint3D(0, 0, 1), vgtest::kPi / 2);
    EXPECT_TRUE(near(q.postMult1(VoGePoint3D(1, 0, 0)), VoGePoint3D(0, 1, 0), 1e-12));
    const VoGeMatrix3D rotZ = fromRows({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    EXPECT_EQ(rotZ.getInverseMatrix()(0, 1), 1.0);
    EXPECT_EQ(rotZ.getInverseMatrix()(1, 0), 1.0);
    for (int k = 0; k < 200; ++k) {
        const VoGePoint3D a(r(-5, 5), r(-5, 5), r(-5, 5)), b(r(-5, 5), r(-5, 5), r(-5, 5));
        const VoGePoint3D p(r(-5, 5), r(-5, 5), r(-5, 5)), onLine = a + (b - a) * r(-2, 2);
        VoGeMatrix3D m, g;
        m.getRotateMatrix(a, b, r(-7, 7));
        EXPECT_TRUE(near(m.postMult1(onLine), onLine, 1e-11));
        EXPECT_TRUE(near(m.inverse().postMult1(m.postMult1(p)), p, 1e-11));
        for (double& x : g.m)
            x = r(-3, 3);
        const VoGeMatrix3D one = g.postMult1(g.inverse());
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(one.m[i], i % 5 == 0 ? 1 : 0, 1e-8);
    }
    // Exactly singular gives the zero matrix; tiny but not zero is inverted; NaN stays NaN.
    VoGeMatrix3D b = fromRows({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_EQ(b.inverse()(0, 0), 0.0);
    b(2, 2) = 1e-300;
    EXPECT_DOUBLE_EQ(b.inverse()(2, 2), 1e300);
    b(0, 0) = vgtest::kNaN;
    EXPECT_TRUE(std::isnan(b.inverse()(0, 0)));
}

}  // namespace
