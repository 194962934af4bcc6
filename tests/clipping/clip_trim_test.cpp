#include "clip_trim.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "clip_params.h"
#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"
#include "support/geom_expect.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::polygonOf;
using vgtest::sameIntervals;

constexpr double kTwoPi = 6.283185307179586;
constexpr double kPi = 3.141592653589793;
constexpr double kParamTol = 1e-9;  // crossings computed from exact side values
constexpr double kSideTol = 1e-4;   // the trimming's own side tolerance

// The square 0..10 by 0..10, counter-clockwise.
convex* square(double x0, double y0, double size) {
    BOX b;
    b.set(x0, x0 + size, y0, y0 + size);
    return convertBox2Convex(&b);
}

Intervals visibleOf(convex* polys, VoGePoint3D s, VoGePoint3D e) {
    line_cut* piece = polygonTrimLine(polys, s, e);
    EXPECT_NE(piece, nullptr);
    const Intervals iv = intervalsOf(piece ? piece->params : nullptr);
    freeLineCut(piece);
    return iv;
}

TEST(PolygonTrimLine, SquareHidesWhatLiesInsideIt) {
    convex* sq = square(0, 0, 10);
    struct Case {
        const char* id;
        VoGePoint3D s, e;
        Intervals want;
    } cases[] = {
        {"wholly inside", {2, 2, 0}, {8, 3, 0}, {}},
        {"wholly outside", {-5, -5, 0}, {-1, 20, 0}, {{0, 1}}},
        {"outside to centre", {-10, 5, 0}, {5, 5, 0}, {{0, 2.0 / 3.0}}},
        {"centre to outside", {5, 5, 0}, {5, 20, 0}, {{1.0 / 3.0, 1}}},
        {"straight through", {-5, 5, 0}, {15, 5, 0}, {{0, 0.25}, {0.75, 1}}},
        {"through two corners", {-5, -5, 0}, {15, 15, 0}, {{0, 0.25}, {0.75, 1}}},
        {"touching a corner", {-5, 5, 0}, {5, -5, 0}, {{0, 1}}},
        {"touching an edge from outside", {5, -5, 0}, {5, 0, 0}, {{0, 1}}},
        {"meeting an edge's line at an end only", {10, 0, 0}, {15, 0, 0}, {{0, 1}}},
        // Lying along an edge hides the overlap (the piece runs over the outline).
        {"along part of an edge", {-5, 0, 0}, {15, 0, 0}, {{0, 0.25}, {0.75, 1}}},
        {"along a whole edge", {0, 10, 0}, {10, 10, 0}, {}},
        {"a point in the plan", {5, 5, 0}, {5 + 0.5 * kSideTol, 5, 9}, {{0, 1}}},
        {"just over a point", {5, 5, 0}, {5 + 2 * kSideTol, 5, 0}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_TRUE(sameIntervals(visibleOf(sq, c.s, c.e), c.want, kParamTol));
    }
    freeConvex(sq);
}

TEST(PolygonTrimLine, RotatedSquareAndTriangleHideBetweenHandComputedEntryAndExit) {
    // Diamond |x| + |y| <= 5 and the triangle (0,0), (10,0), (0,10), both counter-clockwise.
    convex* diamond = polygonOf({{5, 0}, {0, 5}, {-5, 0}, {0, -5}});
    convex* triangle = polygonOf({{0, 0}, {10, 0}, {0, 10}});
    struct Case {
        const char* id;
        convex* poly;
        VoGePoint3D s, e;
        Intervals want;
    } cases[] = {
        // y = 1 meets |x| + |y| = 5 at x = -4 and 4.
        {"diamond across", diamond, {-10, 1, 0}, {10, 1, 0}, {{0, 0.3}, {0.7, 1}}},
        // x = 2 leaves the diamond at y = 3.
        {"diamond from inside", diamond, {2, 0, 0}, {2, 7, 0}, {{3.0 / 7, 1}}},
        // y = 2 enters at x = 0 and leaves at x + y = 10, x = 8.
        {"triangle across", triangle, {-2, 2, 0}, {12, 2, 0}, {{0, 2.0 / 14}, {10.0 / 14, 1}}},
        // x = 2 leaves at y = 8.
        {"triangle from inside", triangle, {2, 2, 0}, {2, 20, 0}, {{6.0 / 18, 1}}},
        {"triangle into inside", triangle, {2, 20, 0}, {2, 2, 0}, {{0, 12.0 / 18}}},
        {"triangle missed", triangle, {6, 6, 0}, {20, 1, 0}, {{0, 1}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_TRUE(sameIntervals(visibleOf(c.poly, c.s, c.e), c.want, kParamTol));
    }
    freeConvex(diamond);
    freeConvex(triangle);
}

TEST(ConvexTrimLineSeg, PieceCrossingSeveralPolygonsKeepsTheGapsBetweenThem) {
    // Along y = 1 from x = -1 to 11: a square over 0..2, an overlapping pair over 4..7 and a
    // diamond over 8..10.
    convex* polys = square(0, 0, 2);
    polys->next = square(4, -1, 2);
    polys->next->next = square(5, -1, 2);
    polys->next->next->next = polygonOf({{10, 1}, {9, 2}, {8, 1}, {9, 0}});
    line_cut* pieces = mallocLineCut(VoGePoint3D(-1, 1, 0), VoGePoint3D(11, 1, 0));
    pieces->next = mallocLineCut(VoGePoint3D(0.5, 0.5, 0), VoGePoint3D(1.5, 1.5, 0));
    pieces->next->next = mallocLineCut(VoGePoint3D(20, 1, 0), VoGePoint3D(30, 1, 0));
    EXPECT_TRUE(convexTrimLineSeg(polys, pieces));
    const Intervals want = {
        {0, 1.0 / 12}, {3.0 / 12, 5.0 / 12}, {8.0 / 12, 9.0 / 12}, {11.0 / 12, 1}};
    EXPECT_TRUE(sameIntervals(intervalsOf(pieces->params), want, kParamTol));
    EXPECT_EQ(pieces->next->params, nullptr);  // wholly inside the first square
    EXPECT_TRUE(sameIntervals(intervalsOf(pieces->next->next->params), {{0, 1}}, kParamTol));
    // Visible and hidden stretches make up the whole piece.
    paramt* hidden = getHideParamLine(pieces);
    double total = 0.0;
    for (const auto& i : intervalsOf(hidden))
        total += i.second - i.first;
    for (const auto& i : intervalsOf(pieces->params))
        total += i.second - i.first;
    EXPECT_NEAR(total, 1.0, kParamTol);
    freeParamt(hidden);
    freeLineCut(pieces);
    freeConvex(polys);
}

TEST(ConvexTrimLineSeg, NoPolygonsOrPolygonsWithoutEdgesHideNothing) {
    line_cut* piece = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0));
    EXPECT_TRUE(convexTrimLineSeg(nullptr, piece));
    convex* empty = mallocConvex();
    EXPECT_TRUE(convexTrimLineSeg(empty, piece));
    EXPECT_TRUE(sameIntervals(intervalsOf(piece->params), {{0, 1}}, 0.0));
    EXPECT_TRUE(convexTrimLineSeg(empty, nullptr));
    freeConvex(empty);
    freeLineCut(piece);
}

TEST(Box2DTrimLine, ReportsTheOneHiddenRange) {
    convex* sq = square(0, 0, 10);
    struct Case {
        const char* id;
        double s[3], e[3];
        double u0, u1;
    } cases[] = {
        {"wholly hidden", {2, 2, 0}, {8, 8, 0}, 0, 1},
        {"nothing hidden: empty range", {-5, -5, 0}, {-1, 20, 0}, 1, 0},
        {"hidden tail", {-10, 5, 0}, {5, 5, 0}, 2.0 / 3.0, 1},
        {"hidden head", {5, 5, 0}, {5, 20, 0}, 0, 1.0 / 3.0},
        {"hidden middle", {-5, 5, 0}, {15, 5, 0}, 0.25, 0.75},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.id);
        double u0 = -7;
        double u1 = -7;
        EXPECT_TRUE(box2DTrimLine(sq, c.s, c.e, u0, u1));
        EXPECT_NEAR(u0, c.u0, kParamTol);
        EXPECT_NEAR(u1, c.u1, kParamTol);
    }
    double s[3] = {-5, 5, 0};
    double e[3] = {15, 5, 0};
    vgtest::forEachAllocationFailure([&] {
        double u0 = -7;
        double u1 = -7;
        if (!box2DTrimLine(sq, s, e, u0, u1)) {
            EXPECT_EQ(u0, -7.0);  // untouched on failure
        }
    });
    freeConvex(sq);
}

TEST(DivideArc2Line, ChordCountFollowsLengthWithinTheBounds) {
    const double c[3] = {1, 2, 3};
    auto countOf = [](line_cut* chords) {
        int n = 0;
        for (line_cut* p = chords; p != nullptr; p = p->next)
            ++n;
        freeLineCut(chords);
        return n;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    // pi/2 * 10 / 0.5 + 1 = 32.4.
    EXPECT_EQ(countOf(divide_arc2line(c, 10, 0, kPi / 2, 0.5, 1000)), 32);
    EXPECT_EQ(countOf(divide_arc2line(c, 10, 0, kPi / 2, 0.5, 20)), 20);
    EXPECT_EQ(countOf(divide_arc2line(c, 10, 0, kPi / 2, 0.5, 2)), 4);
    EXPECT_EQ(countOf(divide_arc2line(c, 10, 0, kPi / 2, 100, 1000)), 4);
    EXPECT_EQ(countOf(divide_arc2line(c, nan, 0, kPi / 2, 0.5, 1000)), 4);
    EXPECT_EQ(countOf(divide_arc2line(c, -10, 0, kPi / 2, 0.5, 1000)), 4);
    EXPECT_EQ(countOf(divide_arc2line(c, inf, 0, kPi / 2, 0.5, 50)), 50);
    EXPECT_EQ(countOf(divide_circle2line(c, 1, 0.5, 1000)), 13);  // 2pi / 0.5 + 1 = 13.6
    EXPECT_EQ(divide_arc2line(nullptr, 1, 0, 1, 0.5, 10), nullptr);
}

TEST(DivideArc2Line, ChordsChainFromStartToEndThroughAngleZero) {
    const double c[3] = {1, 2, 3};
    const double r = 4;
    // From 3pi/2 round through 0 to pi/2.
    line_cut* chords = divide_arc2line(c, r, 3 * kPi / 2, kPi / 2, 0.5, 1000);
    ASSERT_NE(chords, nullptr);
    EXPECT_TRUE(vgtest::near3(chords->start, VoGePoint3D(1, -2, 3), 1e-12));
    const line_cut* last = chords;
    for (const line_cut* p = chords; p != nullptr; p = p->next) {
        EXPECT_NEAR(p->end.distanceTo(VoGePoint3D(c)), r, 1e-12);
        EXPECT_EQ(p->end.z, 3.0);
        EXPECT_GT(p->end.x, 1.0 - 1e-12);  // the right half only
        if (p->next != nullptr) {
            EXPECT_TRUE(vgtest::near3(p->end, p->next->start, 0.0));
        }
        EXPECT_TRUE(sameIntervals(intervalsOf(p->params), {{0, 1}}, 0.0));
        last = p;
    }
    EXPECT_EQ(last->end.x, 1 + r * std::cos(kPi / 2));  // the end angle exactly
    freeLineCut(chords);
    vgtest::forEachAllocationFailure([&] { freeLineCut(divide_arc2line(c, 1, 0, 1, 0.2, 10)); });
}

TEST(PolygonTrimArc, VisibleRunsOfWholeChordsBecomeAngularIntervals) {
    double c[3] = {0, 0, 0};
    const double r = 10;
    // A square over 8..12 by -2..2 hides the circle where |10 sin a| <= 2, about angle 0.
    convex* sq = square(8, -2, 4);
    const double edge = std::asin(0.2);
    const double chordAngle = kTwoPi / 126;  // 2pi * 10 / 0.5 + 1 = 126.6 chords
    arc_cut* circ = polygonTrimCircle(sq, c, r);
    ASSERT_NE(circ, nullptr);
    EXPECT_EQ(circ->startAngle, 0.0);
    EXPECT_EQ(circ->endAngle, kTwoPi);
    const Intervals iv = intervalsOf(circ->params);
    ASSERT_EQ(iv.size(), 1u);
    // A partly hidden chord counts as hidden: the run starts and ends on whole chords.
    EXPECT_GE(iv[0].first, edge);
    EXPECT_LT(iv[0].first, edge + chordAngle);
    EXPECT_LE(iv[0].second, kTwoPi - edge);
    EXPECT_GT(iv[0].second, kTwoPi - edge - chordAngle);
    freeArcCut(circ);

    // Clear of the polygon: the run from angle 0 closes the full circle at 2pi.
    convex* far = square(100, 100, 1);
    circ = polygonTrimCircle(far, c, r);
    EXPECT_TRUE(sameIntervals(intervalsOf(circ->params), {{0, kTwoPi}}, 0.0));
    freeArcCut(circ);
    // An arc keeps its own range; one wholly hidden has no intervals.
    arc_cut* a = polygonTrimArc(far, c, r, kPi / 2, kPi);
    EXPECT_TRUE(sameIntervals(intervalsOf(a->params), {{kPi / 2, kPi}}, 1e-12));
    EXPECT_EQ(a->startAngle, kPi / 2);
    freeArcCut(a);
    convex* big = square(-20, -20, 40);
    a = polygonTrimArc(big, c, r, 1, 2);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->params, nullptr);
    freeArcCut(a);
    EXPECT_EQ(polygonTrimArc(sq, nullptr, r, 0, 1), nullptr);

    vgtest::forEachAllocationFailure([&] { freeArcCut(polygonTrimCircle(sq, c, r)); });
    freeConvex(big);
    freeConvex(far);
    freeConvex(sq);
}

}  // namespace
