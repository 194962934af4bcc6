#include "VoGeLine3d.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/geom_expect.h"

namespace {

constexpr double kRoundTol = 1e-12;
constexpr double kTieTol = 1e-6;  // direction components this close tie
constexpr double kOnTol = 1e-9;   // residuals of a few products of moderate numbers

TEST(VoGeLine3dParam, MeasuredOnTheLargestComponentWithTiesToXThenY) {
    const VoGeLine3d diag(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 1, 0));
    EXPECT_NEAR(diag.getParam(VoGePoint3D(2, 5, 0)), 2 * std::sqrt(2.0), kRoundTol);
    // y just clearly larger than x: y decides.
    VoGeLine3d l;
    l.direction.set(0.6, 0.6 + kTieTol * 2, 0.0);
    EXPECT_EQ(l.getParam(VoGePoint3D(1, 2, 0)), 2 / l.direction.y);
    l.direction.set(0.6, 0.6 + kTieTol / 2, 0.0);
    EXPECT_EQ(l.getParam(VoGePoint3D(1, 2, 0)), 1 / l.direction.x);
    const VoGeLine3d vertical(VoGePoint3D(0, 0, 1), VoGeVector3D(0, 0, -4));
    EXPECT_EQ(vertical.getParam(VoGePoint3D(7, 7, -2)), 3.0);
    EXPECT_EQ(VoGeLine3d().getParam(VoGePoint3D(1, 1, 1)), geolib::kNoLineParam);
    EXPECT_EQ(geolib::kNoLineParam, 3.4028234663852886e38);
}

TEST(VoGeLine3dEquations, BothPlanesHoldTheLineInEveryBranch) {
    const VoGeVector3D dirs[] = {{1, 2, 3}, {0, 1, 1}, {0, 0, 1}, {0, 1, 0}};
    const VoGePoint3D base(1.5, -2, 4);
    for (const auto& d : dirs) {
        const VoGeLine3d l(base, d);
        VoGeMatrix3D m;
        m.setRow(2, 7, 7, 7, 7);
        l.getGeneratlEquation(m);
        EXPECT_EQ(m(2, 0), 7.0);
        for (short r = 0; r < 2; ++r) {
            for (double t : {0.0, 3.0}) {
                const VoGePoint3D q = l.getParamPoint(t);
                EXPECT_NEAR(m(r, 0) * q.x + m(r, 1) * q.y + m(r, 2) * q.z, m(r, 3), kOnTol);
            }
        }
    }
    // A component up to 1e-4 counts as zero: the first plane is x = x0.
    VoGeMatrix3D m;
    VoGeLine3d(base, VoGeVector3D(0.5e-4, 1, 0)).getGeneratlEquation(m);
    EXPECT_EQ(m(0, 0), 1.0);
    EXPECT_EQ(m(0, 1), 0.0);
    VoGeLine3d(base, VoGeVector3D(2e-4, 1, 0)).getGeneratlEquation(m);
    EXPECT_NE(m(0, 1), 0.0);
}

TEST(VoGeLine3dIntersect, MeetingSkewAndParallelLines) {
    const VoGeLine3d a(VoGePoint3D(0, 0, 0), VoGePoint3D(2, 2, 2));
    const VoGeLine3d b(VoGePoint3D(1, 1, 1), VoGeVector3D(1, -1, 0.5));
    VoGePoint3D p;
    ASSERT_TRUE(a.intersectWith(b, p));
    EXPECT_TRUE(vgtest::near3(p, VoGePoint3D(1, 1, 1), kRoundTol));
    // Lifted by 1 in z, b no longer meets a: false, with p set on the other line.
    const VoGeLine3d skew(VoGePoint3D(1, 1, 2), VoGeVector3D(1, -1, 0));
    p.set(9, 9, 9);
    EXPECT_FALSE(a.intersectWith(skew, p));
    EXPECT_TRUE(skew.isOn(p, kOnTol));
    const VoGeLine3d parallel(VoGePoint3D(0, 1, 0), VoGeVector3D(1, 1, 1));
    p.set(9, 9, 9);
    EXPECT_FALSE(a.intersectWith(parallel, p));
    EXPECT_EQ(p.x, 9.0);
}

}  // namespace
