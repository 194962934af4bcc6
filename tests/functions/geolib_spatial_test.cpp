#include "geolib_spatial.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/test_constants.h"

namespace {

using namespace geolib;
using P = VoGePoint3D;
using vgtest::kNaN;
using vgtest::kPi;

// Codes along and around a segment (ends within 1e-4, parameters read off the largest
// component), of a segment without length, and NaN anywhere off the line.
TEST(IsPointOnLineSeg, CodesAlongAndAroundTheSegment) {
    const P a(0, 0, 0), b(10, 0, 0), n(kNaN, 0, 0);
    const struct {
        P s, e, p;
        int code;
    } cases[] = {{a, b, {5, 0, 0}, kSegOn},
                 {a, b, {0.5e-4, 0, 0}, kSegOn | kSegAtStart},
                 {a, b, {10, 0.5e-4, 0}, kSegOn | kSegAtEnd},
                 {a, b, {10 + 2e-4, 0, 0}, kSegBeyondEnd},
                 {{0, 4, 1}, {0, -4, 1}, {0, 5, 1}, kSegBeyondStart},
                 {a, b, {5, 0.1, 0}, kSegOffLine},
                 {a, a, a, kSegOn | kSegAtStart | kSegAtEnd},
                 {a, a, b, kSegOffLine},
                 {a, b, n, kSegOffLine},
                 {a, b, {5, kNaN, 0}, kSegOffLine},
                 {a, n, a, kSegOffLine},
                 {n, n, n, kSegOffLine}};
    for (const auto& c : cases)
        EXPECT_EQ(isPointOnLineSeg(c.s, c.e, c.p, 1e-6), c.code) << c.p.x << " " << c.p.y;
}

// Arc codes on a quarter and on an arc through angle 0 and a full turn; the arc through three
// points of a tilted circle gives back its centre, normal, radius and angles; points in a line,
// too close or NaN give no circle and leave the outputs alone.
TEST(ArcParameters, CodesAndRoundTripsOnATiltedCircle) {
    const VoGeCircle3d flat(P(1, 1, 2), 2.0, VoGeVector3D(0, 0, 1));
    const double r2 = std::sqrt(2.0);
    EXPECT_EQ(isPointOnArc(flat, 0, kPi / 2, P(1 + r2, 1 + r2, 2), 1e-6), kArcOn);
    EXPECT_EQ(isPointOnArc(flat, 0, kPi / 2, P(3, 1, 2), 1e-6), kArcOn | kArcAtStart);
    EXPECT_EQ(isPointOnArc(flat, 0, kPi / 2, P(-1, 1, 2), 1e-6), kArcOffRange);
    EXPECT_EQ(isPointOnArc(flat, 0, kPi / 2, P(1, 3, 2 + 2e-6), 1e-6), kArcOffCircle);
    EXPECT_EQ(isPointOnArc(flat, 3 * kPi / 2, kPi / 2, P(1 + r2, 1 - r2, 2), 1e-6), kArcOn);
    EXPECT_EQ(isPointOnArc(flat, 1.0, 1.0 + 2 * kPi, P(-1, 1, 2), 1e-6), kArcOn);
    const VoGeCircle3d c(P(1, -2, 3), 2.5, VoGeVector3D(-1, 2, 2));
    for (const auto& arc : {std::make_pair(0.5, 2.0), {5.0, 1.0}, {0.1, 6.0}}) {
        P s, m, e, centre;
        getArcParamFromAngles(c, arc.first, arc.second, s, m, e);
        VoGeCircle3d back;
        double b0 = 0, b1 = 0;
        ASSERT_TRUE(getArcParamFromPoints(s, m, e, back, b0, b1));
        ASSERT_TRUE(getCircleCenter(s, m, e, centre));
        EXPECT_NEAR(back.center.distanceTo(c.center) + centre.distanceTo(c.center), 0, 1e-11);
        EXPECT_NEAR(back.radius + b0 + b1, c.radius + arc.first + arc.second, 1e-11);
        EXPECT_NEAR(back.normal.x, c.normal.x, 1e-12);
    }
    VoGeCircle3d untouched;
    double b0 = -1, b1 = -1;
    // A start a hair below +X stays below the full turn.
    ASSERT_TRUE(getArcParamFromPoints(P(1, -1e-17, 0), P(0, 1, 0), P(-1, 0, 0), untouched, b0, b1));
    EXPECT_LT(b0, 2 * kPi);
    EXPECT_GE(b0, 0.0);
    P centre(9, 9, 9);
    b0 = -1;
    EXPECT_FALSE(getCircleCenter(P(0, 0, 0), P(1, 1, 1), P(3, 3, 3), centre));
    EXPECT_FALSE(getCircleCenter(P(0, 0, 0), P(0.5e-4, 0, 0), P(3, 1, 0), centre));
    EXPECT_FALSE(getCircleCenter(P(0, 0, 0), P(kNaN, 0, 0), P(3, 1, 0), centre));
    EXPECT_FALSE(getArcParamFromPoints(P(0, 0, 0), P(1, 0, 0), P(2, 0, 0), untouched, b0, b1));
    EXPECT_EQ(centre.x, 9.0);
    EXPECT_EQ(b0, -1.0);
}

}  // namespace
