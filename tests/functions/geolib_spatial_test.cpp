#include "geolib_spatial.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using P = VoGePoint3D;

using vgtest::kPi;
constexpr double kRoundTol = 1e-12;
constexpr double kEndTol = 1e-4;  // a point this close to a segment's end is on it
constexpr double kOnTol = 1e-6;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(IsPointOnLineSeg, CodesAlongAndAroundTheSegmentAndNaNAnywhereIsOffTheLine) {
    const P a(0, 0, 0);
    const P b(10, 0, 0);
    const struct {
        P p;
        int code;
    } cases[] = {{{5, 0, 0}, kSegOn},
                 {{kEndTol / 2, 0, 0}, kSegOn | kSegAtStart},
                 {{10, kEndTol / 2, 0}, kSegOn | kSegAtEnd},
                 {{10 + kEndTol * 2, 0, 0}, kSegBeyondEnd},
                 {{-kEndTol * 2, 0, 0}, kSegBeyondStart},
                 {{5, 0.1, 0}, kSegOffLine},
                 {{kNaN, 0, 0}, kSegOffLine}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.p.x << ", " << c.p.y);
        EXPECT_EQ(isPointOnLineSeg(a, b, c.p, kOnTol), c.code);
    }
    // Backwards and along y: the parameters are read off y.
    EXPECT_EQ(isPointOnLineSeg(P(0, 4, 1), P(0, -4, 1), P(0, 3, 1), kOnTol), kSegOn);
    EXPECT_EQ(isPointOnLineSeg(P(0, 4, 1), P(0, -4, 1), P(0, 5, 1), kOnTol), kSegBeyondStart);
    // A segment without length has only its ends.
    EXPECT_EQ(isPointOnLineSeg(a, a, a, kOnTol), kSegOn | kSegAtStart | kSegAtEnd);
    EXPECT_EQ(isPointOnLineSeg(a, a, b, kOnTol), kSegOffLine);
    // NaN anywhere is off the line.
    const P n(kNaN, 0, 0);
    EXPECT_EQ(isPointOnLineSeg(n, n, n, kOnTol), kSegOffLine);
    EXPECT_EQ(isPointOnLineSeg(a, n, a, kOnTol), kSegOffLine);
    EXPECT_EQ(isPointOnLineSeg(a, b, P(5, kNaN, 0), kOnTol), kSegOffLine);
}

TEST(IsPointOnArc, CodesOnAQuarterAndOnAnArcThroughZero) {
    const VoGeCircle3d c(P(1, 1, 2), 2.0, VoGeVector3D(0, 0, 1));
    const double r2 = std::sqrt(2.0);
    EXPECT_EQ(isPointOnArc(c, 0, kPi / 2, P(1 + r2, 1 + r2, 2), kOnTol), kArcOn);
    EXPECT_EQ(isPointOnArc(c, 0, kPi / 2, P(3, 1, 2), kOnTol), kArcOn | kArcAtStart);
    EXPECT_EQ(isPointOnArc(c, 0, kPi / 2, P(1, 3, 2), kOnTol), kArcOn | kArcAtEnd);
    EXPECT_EQ(isPointOnArc(c, 0, kPi / 2, P(-1, 1, 2), kOnTol), kArcOffRange);
    EXPECT_EQ(isPointOnArc(c, 0, kPi / 2, P(1, 3, 2 + kOnTol * 2), kOnTol), kArcOffCircle);
    EXPECT_EQ(isPointOnArc(c, 3 * kPi / 2, kPi / 2, P(1 + r2, 1 - r2, 2), kOnTol), kArcOn);
    EXPECT_EQ(isPointOnArc(c, 3 * kPi / 2, kPi / 2, P(-1, 1, 2), kOnTol), kArcOffRange);
    EXPECT_EQ(isPointOnArc(c, 1.0, 1.0 + 2 * kPi, P(-1, 1, 2), kOnTol), kArcOn);  // full turn
}

TEST(CircleFromPoints, CentreOfATiltedCircleAndDegenerateTriples) {
    const VoGeCircle3d c(P(1, -2, 3), 2.5, VoGeVector3D(1, 2, 2));
    P centre;
    ASSERT_TRUE(getCircleCenter(c.getPt(0.3), c.getPt(2.0), c.getPt(4.0), centre));
    EXPECT_TRUE(vgtest::near3(centre, c.center, kRoundTol * 10));
    centre.set(9, 9, 9);
    EXPECT_FALSE(getCircleCenter(P(0, 0, 0), P(1, 1, 1), P(3, 3, 3), centre));
    EXPECT_FALSE(getCircleCenter(P(0, 0, 0), P(kEndTol / 2, 0, 0), P(3, 1, 0), centre));
    EXPECT_FALSE(getCircleCenter(P(0, 0, 0), P(kNaN, 0, 0), P(3, 1, 0), centre));
    EXPECT_EQ(centre.x, 9.0);
}

TEST(ArcParameters, AnglesToPointsAndBackOnATiltedCircle) {
    const VoGeCircle3d c(P(1, -2, 3), 2.5, VoGeVector3D(-1, 2, 2));
    const struct { double a0, a1; } arcs[] = {{0.5, 2.0}, {5.0, 1.0}, {0.1, 6.0}};
    for (const auto& arc : arcs) {
        SCOPED_TRACE(arc.a0);
        P s;
        P m;
        P e;
        getArcParamFromAngles(c, arc.a0, arc.a1, s, m, e);
        EXPECT_EQ(isPointOnArc(c, arc.a0, arc.a1, m, kOnTol), kArcOn);
        VoGeCircle3d back;
        double b0 = 0;
        double b1 = 0;
        ASSERT_TRUE(getArcParamFromPoints(s, m, e, back, b0, b1));
        EXPECT_TRUE(vgtest::near3(back.center, c.center, kRoundTol * 10));
        EXPECT_TRUE(vgtest::near3(back.normal, c.normal, kRoundTol));
        EXPECT_NEAR(back.radius, c.radius, kRoundTol * 10);
        EXPECT_NEAR(b0, arc.a0, kRoundTol * 10);
        EXPECT_NEAR(b1, arc.a1, kRoundTol * 10);
    }
    VoGeCircle3d untouched;
    double b0 = -1;
    double b1 = -1;
    EXPECT_FALSE(getArcParamFromPoints(P(0, 0, 0), P(1, 0, 0), P(2, 0, 0), untouched, b0, b1));
    EXPECT_EQ(b0, -1.0);
}

}  // namespace
