#include "clip_trim.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "clip_params.h"
#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"
#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::polygonOf;
using vgtest::sameIntervals;

using vgtest::kPi;
using vgtest::kTwoPi;
constexpr double kParamTol = 1e-9;  // crossings computed from exact side values
constexpr double kSideTol = 1e-4;   // the trimming's own side tolerance
constexpr double kRoundTol = 1e-12;

convex* square(double x0, double y0, double size) {
    BOX b;
    b.set(x0, x0 + size, y0, y0 + size);
    return convertBox2Convex(&b);
}

struct TrimCase {
    const char* id;
    VoGePoint3D s, e;
    Intervals visible;
};

void expectVisible(convex* polys, const TrimCase& c) {
    SCOPED_TRACE(c.id);
    line_cut* piece = polygonTrimLine(polys, c.s, c.e);
    ASSERT_NE(piece, nullptr);
    EXPECT_TRUE(sameIntervals(intervalsOf(piece->params), c.visible, kParamTol));
    freeLineCut(piece);
}

// The crossing rule of isPointInPoly on a convex record.
TEST(IsPointInPoly, ConvexRingIncludingARingThatNeverCloses) {
    const VoGePoint3D square[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    line* e[4];
    for (int i = 0; i < 4; ++i) {
        e[i] = mallocLine();
        e[i]->start = square[i];
        e[i]->end = square[(i + 1) % 4];
        e[i]->next = nullptr;
    }
    for (int i = 0; i < 3; ++i)
        e[i]->next = e[i + 1];
    convex poly{nullptr, e[0]};
    EXPECT_TRUE(isPointInPoly(&poly, VoGePoint3D(0.5, 0.5, 0)));  // open list: walked to its end
    e[3]->next = e[0];
    EXPECT_TRUE(isPointInPoly(&poly, VoGePoint3D(0.5, 0.5, 0)));
    EXPECT_FALSE(isPointInPoly(&poly, VoGePoint3D(1.5, 0.5, 0)));
    e[3]->next = e[1];  // a loop that skips the first edge: the walk still ends
    isPointInPoly(&poly, VoGePoint3D(0.5, 0.5, 0));
    EXPECT_FALSE(isPointInPoly(static_cast<const convex*>(nullptr), VoGePoint3D()));
    e[3]->next = nullptr;
    freeLine(e[0]);
}

TEST(PolygonTrimLine, SquareHidesWhatLiesInsideIt) {
    convex* sq = square(0, 0, 10);
    const TrimCase cases[] = {
        {"inside", {2, 2, 0}, {8, 3, 0}, {}},
        {"outside", {-5, -5, 0}, {-1, 20, 0}, {{0, 1}}},
        {"outside to centre", {-10, 5, 0}, {5, 5, 0}, {{0, 2.0 / 3}}},
        {"centre to outside", {5, 5, 0}, {5, 20, 0}, {{1.0 / 3, 1}}},
        {"through", {-5, 5, 0}, {15, 5, 0}, {{0, .25}, {.75, 1}}},
        {"through two corners", {-5, -5, 0}, {15, 15, 0}, {{0, .25}, {.75, 1}}},
        {"touching a corner", {-5, 5, 0}, {5, -5, 0}, {{0, 1}}},
        {"ending on an edge", {5, -5, 0}, {5, 0, 0}, {{0, 1}}},
        {"on an edge's line beyond it", {10, 0, 0}, {15, 0, 0}, {{0, 1}}},
        // A stretch along an edge runs over the outline: hidden.
        {"along part of an edge", {-5, 0, 0}, {15, 0, 0}, {{0, .25}, {.75, 1}}},
        {"along a whole edge", {0, 10, 0}, {10, 10, 0}, {}},
        {"a point in the plan", {5, 5, 0}, {5 + 0.5 * kSideTol, 5, 9}, {{0, 1}}},
        {"just over a point", {5, 5, 0}, {5 + 2 * kSideTol, 5, 0}, {}},
    };
    for (const TrimCase& c : cases)
        expectVisible(sq, c);
    freeConvex(sq);
}

TEST(PolygonTrimLine, RotatedSquareAndTriangleHideBetweenHandComputedEntryAndExit) {
    // The diamond |x| + |y| <= 5: y = 1 meets it at x = -4 and 4; x = 2 leaves it at y = 3.
    convex* diamond = polygonOf({{5, 0}, {0, 5}, {-5, 0}, {0, -5}});
    expectVisible(diamond, {"diamond across", {-10, 1, 0}, {10, 1, 0}, {{0, .3}, {.7, 1}}});
    expectVisible(diamond, {"diamond from inside", {2, 0, 0}, {2, 7, 0}, {{3.0 / 7, 1}}});
    // The triangle (0,0), (10,0), (0,10): y = 2 enters at x = 0 and leaves at x = 8; x = 2
    // leaves at y = 8.
    convex* tri = polygonOf({{0, 0}, {10, 0}, {0, 10}});
    expectVisible(tri, {"triangle across", {-2, 2, 0}, {12, 2, 0}, {{0, 1.0 / 7}, {5.0 / 7, 1}}});
    expectVisible(tri, {"triangle from inside", {2, 2, 0}, {2, 20, 0}, {{1.0 / 3, 1}}});
    expectVisible(tri, {"triangle into inside", {2, 20, 0}, {2, 2, 0}, {{0, 2.0 / 3}}});
    expectVisible(tri, {"triangle missed", {6, 6, 0}, {20, 1, 0}, {{0, 1}}});
    freeConvex(diamond);
    freeConvex(tri);
}

TEST(ConvexTrimLineSeg, PieceCrossingSeveralPolygonsKeepsTheGapsBetweenThem) {
    // Along y = 1 from x = -1 to 11: a square over 0..2, an overlapping pair over 4..7 and a
    // diamond over 8..10.
    convex* polys = square(0, 0, 2);
    polys->next = square(4, -1, 2);
    polys->next->next = square(5, -1, 2);
    polys->next->next->next = polygonOf({{10, 1}, {9, 2}, {8, 1}, {9, 0}});
    line_cut* pieces = mallocLineCut(VoGePoint3D(-1, 1, 0), VoGePoint3D(11, 1, 0));
    pieces->next = mallocLineCut(VoGePoint3D(.5, .5, 0), VoGePoint3D(1.5, 1.5, 0));
    EXPECT_TRUE(convexTrimLineSeg(polys, pieces));
    const Intervals want = {
        {0, 1.0 / 12}, {3.0 / 12, 5.0 / 12}, {8.0 / 12, 9.0 / 12}, {11.0 / 12, 1}};
    EXPECT_TRUE(sameIntervals(intervalsOf(pieces->params), want, kParamTol));
    EXPECT_EQ(pieces->next->params, nullptr);  // wholly inside the first square
    // Visible and hidden stretches make up the whole piece.
    paramt* hidden = getHideParamLine(pieces);
    double total = 0.0;
    for (const auto& i : intervalsOf(hidden))
        total += i.second - i.first;
    for (const auto& i : intervalsOf(pieces->params))
        total += i.second - i.first;
    EXPECT_NEAR(total, 1.0, kParamTol);
    freeParamt(hidden);
    // No polygons, or a polygon without edges, hide nothing.
    convex* empty = mallocConvex();
    EXPECT_TRUE(convexTrimLineSeg(nullptr, pieces));
    EXPECT_TRUE(convexTrimLineSeg(empty, pieces));
    EXPECT_TRUE(sameIntervals(intervalsOf(pieces->params), want, kParamTol));
    freeConvex(empty);
    freeLineCut(pieces);
    freeConvex(polys);
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
        {"hidden tail", {-10, 5, 0}, {5, 5, 0}, 2.0 / 3, 1},
        {"hidden head", {5, 5, 0}, {5, 20, 0}, 0, 1.0 / 3},
        {"hidden middle", {-5, 5, 0}, {15, 5, 0}, .25, .75},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.id);
        double u0 = -7, u1 = -7;
        EXPECT_TRUE(box2DTrimLine(sq, c.s, c.e, u0, u1));
        EXPECT_TRUE(std::fabs(u0 - c.u0) <= kParamTol);
        EXPECT_TRUE(std::fabs(u1 - c.u1) <= kParamTol);
    }
    vgtest::forEachAllocationFailure([&] {
        double u0 = -7, u1 = -7;
        const bool ok = box2DTrimLine(sq, cases[4].s, cases[4].e, u0, u1);
        EXPECT_EQ(u0, ok ? .25 : -7.0);  // untouched on failure
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
    // Radius, chord length, most chords, count: 32.4 truncated; the cap; at least 4; ...
    const double cases[][4] = {{10, .5, 1000, 32}, {10, .5, 20, 20},   {10, .5, 2, 4},
                               {10, 100, 1000, 4}, {nan, .5, 1000, 4}, {-10, .5, 1000, 4},
                               {inf, .5, 50, 50}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k[0]);
        const int most = static_cast<int>(k[2]);
        EXPECT_EQ(countOf(divide_arc2line(c, k[0], 0, kPi / 2, k[1], most)), k[3]);
    }
    EXPECT_EQ(countOf(divide_circle2line(c, 1, .5, 1000)), 13);  // 13.6 truncated
    EXPECT_EQ(divide_arc2line(nullptr, 1, 0, 1, .5, 10), nullptr);
}

TEST(DivideArc2Line, ChordsChainFromStartToEndThroughAngleZero) {
    const double c[3] = {1, 2, 3};
    const double r = 4;
    line_cut* chords = divide_arc2line(c, r, 3 * kPi / 2, kPi / 2, .5, 1000);
    ASSERT_NE(chords, nullptr);
    EXPECT_TRUE(vgtest::near3(chords->start, VoGePoint3D(1, -2, 3), kRoundTol));
    const line_cut* last = chords;
    for (const line_cut* p = chords; p != nullptr; last = p, p = p->next) {
        EXPECT_NEAR(p->end.distanceTo(VoGePoint3D(c)), r, kRoundTol);
        // The right half only, at the centre's height.
        EXPECT_TRUE(p->end.x > 1.0 - kRoundTol);
        EXPECT_EQ(p->end.z, 3.0);
        EXPECT_TRUE(p->next == nullptr || vgtest::near3(p->end, p->next->start, 0.0));
    }
    EXPECT_EQ(last->end.x, 1 + r * std::cos(kPi / 2));  // the end angle exactly
    freeLineCut(chords);
    vgtest::forEachAllocationFailure([&] { freeLineCut(divide_arc2line(c, 1, 0, 1, .2, 10)); });
}

TEST(PolygonTrimArc, VisibleRunsOfWholeChordsBecomeAngularIntervals) {
    double c[3] = {0, 0, 0};
    const double r = 10;
    // A square over 8..12 by -2..2 hides the circle where |10 sin a| <= 2, about angle 0. A
    // partly hidden chord counts as hidden: the run starts and ends on whole chords.
    convex* sq = square(8, -2, 4);
    const double edge = std::asin(0.2);
    const double chordAngle = kTwoPi / 126;  // 2pi * 10 / 0.5 + 1 = 126.6 chords
    arc_cut* circ = polygonTrimCircle(sq, c, r);
    ASSERT_NE(circ, nullptr);
    EXPECT_EQ(circ->endAngle, kTwoPi);
    const Intervals iv = intervalsOf(circ->params);
    ASSERT_EQ(iv.size(), 1u);
    EXPECT_TRUE(iv[0].first >= edge);
    EXPECT_TRUE(iv[0].first < edge + chordAngle);
    EXPECT_TRUE(iv[0].second <= kTwoPi - edge);
    EXPECT_TRUE(iv[0].second > kTwoPi - edge - chordAngle);
    freeArcCut(circ);
    vgtest::forEachAllocationFailure([&] { freeArcCut(polygonTrimArc(sq, c, r, 0, kTwoPi)); });

    // Clear of the polygons: the run from angle 0 closes the full circle at 2pi; an arc keeps
    // its own range; one wholly hidden has no intervals.
    sq->next = square(-20, -20, 1);
    circ = polygonTrimCircle(sq->next, c, r);
    EXPECT_TRUE(sameIntervals(intervalsOf(circ->params), {{0, kTwoPi}}, 0.0));
    freeArcCut(circ);
    arc_cut* a = polygonTrimArc(sq, c, r, kPi / 2, kPi);
    EXPECT_TRUE(sameIntervals(intervalsOf(a->params), {{kPi / 2, kPi}}, kRoundTol));
    EXPECT_EQ(a->startAngle, kPi / 2);
    freeArcCut(a);
    a = polygonTrimArc(sq, c, r, -0.1, 0.1);
    EXPECT_EQ(a->params, nullptr);
    freeArcCut(a);
    EXPECT_EQ(polygonTrimArc(sq, nullptr, r, 0, 1), nullptr);
    freeConvex(sq);
}

// A piece starting on the top edge's line near the left corner and running away from the
// square: only the stretch up to that corner is inside, the rest stays visible.
TEST(PolygonTrimLine, PieceLeavingOverACornerFromAnEdgesLineStaysVisibleOutside) {
    convex* sq = square(0, 0, 10);
    double s[3] = {0.0005, 10, 0};
    double e[3] = {-15, 9.999, 0};
    line_cut* piece = polygonTrimLine(sq, s, e);
    ASSERT_NE(piece, nullptr);
    const double corner = 0.0005 / 15.0005;  // where the piece passes x = 0
    EXPECT_TRUE(sameIntervals(intervalsOf(piece->params), {{corner, 1}}, 1e-6));
    freeLineCut(piece);
    double u0 = -1, u1 = -1;
    ASSERT_TRUE(box2DTrimLine(sq, s, e, u0, u1));
    EXPECT_GT(u0, u1);  // within the side tolerance of the start: nothing to report
    freeConvex(sq);

    // A piece starting within the side tolerance of a sliver's corner and leaving it: one end
    // outside, no crossing recorded; it only touches the sliver and keeps all.
    convex* sliver = polygonOf({{-14.207762942594581, 0.0001}, {-1e-9, -1e-9}, {0.0001, 0.0003}});
    line_cut* touching =
        polygonTrimLine(sliver, VoGePoint3D(0.0001, 0.0001, 0), VoGePoint3D(-9.04, -25, 0));
    ASSERT_NE(touching, nullptr);
    EXPECT_TRUE(sameIntervals(intervalsOf(touching->params), {{0, 1}}, 0.0));
    freeLineCut(touching);
    freeConvex(sliver);

    // A start exactly 1e-4 (in side value) inside the bottom edge, the end far below: the end
    // lies outside and the piece is cut where it leaves, not hidden whole.
    convex* tall = square(0, 0, 1);
    tall->edges->next->end.y = tall->edges->next->next->start.y = 16.3;
    tall->edges->next->next->end.y = tall->edges->next->next->next->start.y = 16.3;
    line_cut* leaving =
        polygonTrimLine(tall, VoGePoint3D(0.0001, 0.0001, 0), VoGePoint3D(0, -25, 0));
    ASSERT_NE(leaving, nullptr);
    ASSERT_NE(leaving->params, nullptr);
    EXPECT_LT(leaving->params->t0, 1e-5);
    EXPECT_EQ(leaving->params->t1, 1.0);
    freeLineCut(leaving);
    freeConvex(tall);

    // A triangle with a corner beyond 1e150 overflows the side values: the call ends and the
    // intervals stay sorted within [0, 1].
    convex* far = polygonOf({{0, 0}, {-1e155, -1e155}, {1, 0}});
    line_cut* p2 = polygonTrimLine(far, VoGePoint3D(-0.75, -1.24, 0), VoGePoint3D(0.05, 0.11, 0));
    ASSERT_NE(p2, nullptr);
    double last = 0.0;
    for (const auto& iv : intervalsOf(p2->params)) {
        EXPECT_LE(last, iv.first);
        EXPECT_LT(iv.first, iv.second);
        last = iv.second;
    }
    EXPECT_LE(last, 1.0);
    freeLineCut(p2);
    freeConvex(far);
}

// Several pieces over several polygons, the point form of polygonTrimLine, circles as chords
// and trimmed: each allocation failing in turn gives the failure value and leaks nothing.
TEST(Trimming, EveryFailedAllocationLeavesNothingBehind) {
    convex* polys = square(0, 0, 2);
    polys->next = square(4, -1, 2);
    polys->next->next = polygonOf({{10, 1}, {9, 2}, {8, 1}, {9, 0}});
    vgtest::forEachAllocationFailure([&] {
        line_cut* pieces = mallocLineCut(VoGePoint3D(-1, 1, 0), VoGePoint3D(11, 1, 0));
        if (pieces == nullptr)
            return;
        pieces->next = mallocLineCut(VoGePoint3D(-1, 0.5, 0), VoGePoint3D(11, 0.7, 0));
        if (pieces->next != nullptr)
            convexTrimLineSeg(polys, pieces);
        freeLineCut(pieces);
    });
    vgtest::forEachAllocationFailure(
        [&] { freeLineCut(polygonTrimLine(polys, VoGePoint3D(-1, 1, 0), VoGePoint3D(11, 1, 0))); });
    double c[3] = {5, 1, 0};
    vgtest::forEachAllocationFailure([&] { freeLineCut(divide_circle2line(c, 3, 0.5, 100)); });
    vgtest::forEachAllocationFailure([&] { freeArcCut(polygonTrimCircle(polys, c, 3)); });
    freeConvex(polys);
}

}  // namespace
