#include "VoGeLine3d.h"

#include <gtest/gtest.h>

namespace {

// The parameter is measured on the largest direction component, x winning ties within 1e-6;
// a line without direction has the "no parameter" value.
TEST(VoGeLine3d, ParameterOnTheLargestComponentWithTiesToX) {
    VoGeLine3d l;
    EXPECT_EQ(l.getParam(VoGePoint3D(1, 1, 1)), 3.4028234663852886e38);
    l.direction.set(0.6, 0.6 + 2e-6, 0.0);
    EXPECT_EQ(l.getParam(VoGePoint3D(1, 2, 0)), 2 / l.direction.y);
    l.direction.set(0.6, 0.6 + 0.5e-6, 0.0);
    EXPECT_EQ(l.getParam(VoGePoint3D(1, 2, 0)), 1 / l.direction.x);
    EXPECT_EQ(VoGeLine3d(VoGePoint3D(0, 0, 1), VoGeVector3D(0, 0, -4)).getParam({7, 7, -2}), 3.0);
}

// Both planes of the general equation hold the line in every branch; a component up to 1e-4
// counts as zero.
TEST(VoGeLine3d, EquationsHoldTheLineAndLinesMeetOrNot) {
    const VoGePoint3D base(1.5, -2, 4);
    for (const VoGeVector3D& d : {VoGeVector3D(1, 2, 3), VoGeVector3D(0, 1, 1),
                                  VoGeVector3D(0, 0, 1), VoGeVector3D(0, 1, 0)}) {
        const VoGeLine3d l(base, d);
        VoGeMatrix3D m;
        l.getGeneratlEquation(m);
        for (short r = 0; r < 2; ++r) {
            const VoGePoint3D q = l.getParamPoint(3.0);
            EXPECT_NEAR(m(r, 0) * q.x + m(r, 1) * q.y + m(r, 2) * q.z, m(r, 3), 1e-9);
        }
    }
    VoGeMatrix3D m;
    VoGeLine3d(base, VoGeVector3D(2e-4, 1, 0)).getGeneratlEquation(m);
    EXPECT_NE(m(0, 1), 0.0);
    VoGeLine3d(base, VoGeVector3D(0.5e-4, 1, 0)).getGeneratlEquation(m);
    EXPECT_EQ(m(0, 1), 0.0);
    // Meeting lines give the point; skew ones false with the point on the other line; parallel
    // ones false with the point untouched.
    const VoGeLine3d a(VoGePoint3D(0, 0, 0), VoGePoint3D(2, 2, 2));
    VoGePoint3D p;
    ASSERT_TRUE(a.intersectWith(VoGeLine3d(VoGePoint3D(1, 1, 1), VoGeVector3D(1, -1, 0.5)), p));
    EXPECT_NEAR(p.x + p.y + p.z, 3.0, 1e-12);
    const VoGeLine3d skew(VoGePoint3D(1, 1, 2), VoGeVector3D(1, -1, 0));
    EXPECT_FALSE(a.intersectWith(skew, p));
    EXPECT_TRUE(skew.isOn(p, 1e-9));
    p.set(9, 9, 9);
    EXPECT_FALSE(a.intersectWith(VoGeLine3d(VoGePoint3D(0, 1, 0), VoGeVector3D(1, 1, 1)), p));
    EXPECT_EQ(p.x, 9.0);
}

}  // namespace
