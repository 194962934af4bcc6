#include "geolib_planar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/geom_expect.h"

namespace {

using geolib::isLineIntersect;
using geolib::isPointInPoly;
using P = VoGePoint3D;

constexpr double kRoundTol = 1e-12;
constexpr double kBoxTol = 1e-4;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const std::vector<P> kSquare = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
// A U open at the top: the notch x in (1, 2), y in (1, 3) is outside.
const std::vector<P> kU = {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {2, 3, 0},
                           {2, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}};

TEST(IsPointInPoly, CrossingRuleOnConvexAndConcaveOutlines) {
    const struct {
        const std::vector<P>* poly;
        P p;
        bool inside;
    } cases[] = {{&kSquare, {0.5, 0.5, 0}, true}, {&kSquare, {0.5, 1.5, 0}, false},
                 {&kSquare, {0, 0.5, 0}, true},   {&kSquare, {1, 0.5, 0}, false},
                 {&kU, {1.5, 2, 0}, false},       {&kU, {0.5, 2, 0}, true},
                 {&kU, {2.5, 2, 0}, true},        {&kU, {1.5, 0.5, 0}, true},
                 {&kU, {kNaN, 1, 0}, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.p.x << ", " << c.p.y);
        EXPECT_EQ(isPointInPoly(*c.poly, c.p, false), c.inside);
        EXPECT_EQ(isPointInPoly(*c.poly, c.p, true), c.inside);
    }
    EXPECT_FALSE(isPointInPoly({}, P(0, 0, 0), false));
    // The box is flat at z = 0: a point above it fails the box test only.
    EXPECT_TRUE(isPointInPoly(kSquare, P(0.5, 0.5, 5), false));
    EXPECT_FALSE(isPointInPoly(kSquare, P(0.5, 0.5, 5), true));
}

TEST(IsLineIntersect, CrossingTouchingOverlappingAndApart) {
    const struct {
        P a, b, c, d;
        bool meet;
    } cases[] = {{{0, 0, 0}, {2, 2, 0}, {0, 2, 0}, {2, 0, 0}, true},       // proper crossing
                 {{0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {2, 0, 0}, true},       // shared end
                 {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {1, 5, 0}, true},       // T junction
                 {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {3, 0, 0}, true},       // collinear overlap
                 {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, false},      // collinear apart
                 {{0, 0, 0}, {2, 0, 0}, {0, 1, 0}, {2, 1, 0}, false},      // parallel
                 {{0, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0.9, 1.1, 0}, false},  // stops short
                 {{0, 0, 5}, {2, 2, -5}, {0, 2, 0}, {2, 0, 0}, true},      // z ignored
                 {{0, 0, 0}, {kNaN, 2, 0}, {0, 2, 0}, {2, 0, 0}, false}};
    for (std::size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        SCOPED_TRACE(i);
        const auto& k = cases[i];
        EXPECT_EQ(isLineIntersect(k.a, k.b, k.c, k.d), k.meet);
        EXPECT_EQ(isLineIntersect(k.c, k.d, k.b, k.a), k.meet);
    }
}

// Both pairs of lines meet at (1, 1, 1) in space, (1, 1) in the plan: within the segments a0a1
// and b0b1, beyond the end of c0c1.
TEST(LineIntersection, SpaceAndPlanWithAndWithoutSegments) {
    const P a0(0, 0, 0), a1(2, 2, 2), b0(2, 0, 1), b1(0, 2, 1), c0(3, -1, 1), c1(2, 0, 1);
    P out;
    ASSERT_TRUE(geolib::lineIntersect3d(a0, a1, b0, b1, out, true));
    EXPECT_TRUE(vgtest::near3(out, P(1, 1, 1), kRoundTol));
    out.set(9, 9, 9);
    EXPECT_FALSE(geolib::lineIntersect3d(a0, a1, c0, c1, out, true));
    EXPECT_TRUE(vgtest::near3(out, P(1, 1, 1), kRoundTol));
    EXPECT_FALSE(geolib::lineIntersect3d(a0, a1, b0 + VoGeVector3D(0, 0, 4), b1, out, false));

    ASSERT_TRUE(geolib::lineIntersect2d(a0, a1, c0, c1, out, false));
    EXPECT_TRUE(vgtest::near3(out, P(1, 1, 0), kRoundTol));
    EXPECT_FALSE(geolib::lineIntersect2d(a0, a1, c0, c1, out, true));
    EXPECT_TRUE(geolib::lineIntersect2d(a0, a1, c0, P(1 + kBoxTol / 2, 1 - kBoxTol / 2, 0), out,
                                        true));  // short of the crossing by less than 1e-4
    out.set(9, 9, 9);
    EXPECT_FALSE(geolib::lineIntersect2d(a0, a1, b0, b0 + VoGeVector3D(1, 1, 0), out, false));
    EXPECT_FALSE(geolib::lineIntersect2d(a0, P(0, 0, 1), b0, b1, out, false));  // no plan length
    EXPECT_EQ(out.x, 9.0);
}

}  // namespace
