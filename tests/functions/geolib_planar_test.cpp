#include "geolib_planar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using P = VoGePoint3D;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// The crossing rule on a U open at the top: the left edge is inside, the right one not, the
// notch outside, NaN nowhere; with the box test a point above the flat outline is outside.
// Plan segments meet when they cross, touch or overlap, either way round, z ignored.
TEST(GeolibPlanar, PointInPolygonAndSegmentsMeeting) {
    const std::vector<P> u = {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {2, 3, 0},
                              {2, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}};
    const P in[] = {{0, 2, 0}, {0.5, 2, 0}, {2.5, 2, 0}, {1.5, 0.5, 0}};
    const P out[] = {{3, 2, 0}, {1.5, 2, 0}, {1.5, 4, 0}, {kNaN, 1, 0}};
    for (int k = 0; k < 4; ++k) {
        for (bool boxFirst : {false, true}) {
            EXPECT_TRUE(geolib::isPointInPoly(u, in[k], boxFirst)) << k << boxFirst;
            EXPECT_FALSE(geolib::isPointInPoly(u, out[k], boxFirst)) << k << boxFirst;
        }
    }
    EXPECT_FALSE(geolib::isPointInPoly({}, P(0, 0, 0), false));
    EXPECT_TRUE(geolib::isPointInPoly(u, P(0.5, 0.5, 5), false));
    EXPECT_FALSE(geolib::isPointInPoly(u, P(0.5, 0.5, 5), true));
    const P o(0, 0, 0), x2(2, 0, 0);
    const struct {
        P a, b, c, d;
        bool meet;
    } cases[] = {{o, {2, 2, 0}, {0, 2, 0}, x2, true},
                 {o, {1, 1, 0}, {1, 1, 0}, x2, true},
                 {o, x2, {1, 0, 0}, {1, 5, 0}, true},
                 {o, x2, {1, 0, 0}, {3, 0, 0}, true},
                 {o, {1, 0, 0}, x2, {3, 0, 0}, false},
                 {o, x2, {0, 1, 0}, {2, 1, 0}, false},
                 {o, {2, 2, 0}, {0, 2, 0}, {0.9, 1.1, 0}, false},
                 {{0, 0, 5}, {2, 2, -5}, {0, 2, 0}, x2, true},
                 {o, {kNaN, 2, 0}, {0, 2, 0}, x2, false}};
    for (const auto& k : cases) {
        EXPECT_EQ(geolib::isLineIntersect(k.a, k.b, k.c, k.d), k.meet) << k.d.x << " " << k.b.x;
        EXPECT_EQ(geolib::isLineIntersect(k.c, k.d, k.b, k.a), k.meet) << k.d.x << " " << k.b.x;
    }
}

// Lines through (1, 1, 1): met within the segments, beyond the end of c0c1 (within 1e-4 of it
// still met), skew, parallel or without plan length (the point untouched).
TEST(GeolibPlanar, LineIntersectionInSpaceAndPlan) {
    const P a0(0, 0, 0), a1(2, 2, 2), b0(2, 0, 1), b1(0, 2, 1), c0(3, -1, 1), c1(2, 0, 1);
    P out;
    ASSERT_TRUE(geolib::lineIntersect3d(a0, a1, b0, b1, out, true));
    EXPECT_NEAR(out.x + out.y + out.z, 3, 1e-12);
    EXPECT_FALSE(geolib::lineIntersect3d(a0, a1, c0, c1, out, true));
    EXPECT_FALSE(geolib::lineIntersect3d(a0, a1, b0 + VoGeVector3D(0, 0, 4), b1, out, false));
    ASSERT_TRUE(geolib::lineIntersect2d(a0, a1, c0, c1, out, false));
    EXPECT_NEAR(std::fabs(out.x - 1) + std::fabs(out.y - 1) + std::fabs(out.z), 0, 1e-12);
    EXPECT_FALSE(geolib::lineIntersect2d(a0, a1, c0, c1, out, true));
    EXPECT_TRUE(geolib::lineIntersect2d(a0, a1, c0, P(1 + 0.5e-4, 1 - 0.5e-4, 0), out, true));
    out.set(9, 9, 9);
    EXPECT_FALSE(geolib::lineIntersect2d(a0, a1, b0, b0 + VoGeVector3D(1, 1, 0), out, false));
    EXPECT_FALSE(geolib::lineIntersect2d(a0, P(0, 0, 1), b0, b1, out, false));
    EXPECT_EQ(out.x, 9.0);
}

}  // namespace
