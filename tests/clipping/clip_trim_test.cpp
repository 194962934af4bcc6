#include "clip_trim.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "clip_params.h"
#include "clipping/clip_test_support.h"
#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::kPi;
using vgtest::kTwoPi;
using vgtest::polygonOf;
using vgtest::sameIntervals;
using P = VoGePoint3D;

constexpr double kParamTol = 1e-9;  // crossings computed from exact side values
constexpr double kSideTol = 1e-4;   // the trimming's own side tolerance
constexpr double kRoundTol = 1e-12;

convex* square(double x0, double y0, double size) {
    BOX b;
    b.set(x0, x0 + size, y0, y0 + size);
    return convertBox2Convex(&b);
}

Intervals visibleOf(convex* polys, P s, P e) {
    line_cut* piece = polygonTrimLine(polys, s, e);
    EXPECT_NE(piece, nullptr);
    const Intervals out = piece != nullptr ? intervalsOf(piece->params) : Intervals{};
    freeLineCut(piece);
    return out;
}

TEST(IsPointInPoly, ConvexRingOpenClosedOrLooping) {
    convex* sq = square(0, 0, 1);
    line* last = sq->edges->next->next->next;
    EXPECT_TRUE(isPointInPoly(sq, P(0.5, 0.5, 0)));
    EXPECT_FALSE(isPointInPoly(sq, P(1.5, 0.5, 0)));
    last->next = nullptr;  // an open list is walked to its end
    EXPECT_TRUE(isPointInPoly(sq, P(0.5, 0.5, 0)));
    last->next = sq->edges->next;  // a loop that skips the first edge: the walk still ends
    isPointInPoly(sq, P(0.5, 0.5, 0));
    last->next = sq->edges;
    EXPECT_FALSE(isPointInPoly(static_cast<const convex*>(nullptr), P()));
    freeConvex(sq);
}

// The documented rules at the outline of a 10 x 10 square: corners, edges and points.
TEST(PolygonTrimLine, SquareHidesWhatLiesInsideItByTheDocumentedRules) {
    convex* sq = square(0, 0, 10);
    const struct {
        const char* id;
        P s, e;
        Intervals visible;
    } cases[] = {
        {"through two corners", {-5, -5, 0}, {15, 15, 0}, {{0, .25}, {.75, 1}}},
        {"touching a corner", {-5, 5, 0}, {5, -5, 0}, {{0, 1}}},
        {"ending on an edge", {5, -5, 0}, {5, 0, 0}, {{0, 1}}},
        {"on an edge's line beyond it", {10, 0, 0}, {15, 0, 0}, {{0, 1}}},
        {"along part of an edge", {-5, 0, 0}, {15, 0, 0}, {{0, .25}, {.75, 1}}},
        {"along a whole edge", {0, 10, 0}, {10, 10, 0}, {}},
        {"a point in the plan", {5, 5, 0}, {5 + 0.5 * kSideTol, 5, 9}, {{0, 1}}},
        {"just over a point", {5, 5, 0}, {5 + 2 * kSideTol, 5, 0}, {}},
        // Leaving over the corner at the end of the edge it starts on: cut at that corner.
        {"leaving over a corner", {0.0005, 10, 0}, {-15, 9.999, 0}, {{0.0005 / 15.0005, 1}}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(sameIntervals(visibleOf(sq, c.s, c.e), c.visible, 1e-6)) << c.id;
    }
    double s[3] = {0.0005, 10, 0}, e[3] = {-15, 9.999, 0};
    double u0 = -1, u1 = -1;
    ASSERT_TRUE(box2DTrimLine(sq, s, e, u0, u1));
    EXPECT_GT(u0, u1) << "within the side tolerance of the start: nothing to report";
    freeConvex(sq);
    // Starting within the side tolerance of a sliver's corner and leaving it: kept whole.
    convex* sliver = polygonOf({{-14.207762942594581, 0.0001}, {-1e-9, -1e-9}, {0.0001, 0.0003}});
    EXPECT_TRUE(
        sameIntervals(visibleOf(sliver, P(0.0001, 0.0001, 0), P(-9.04, -25, 0)), {{0, 1}}, 0.0));
    freeConvex(sliver);
    // A start 1e-4 (in side value) inside an edge, the end far outside: cut, not hidden whole.
    convex* tall = polygonOf({{0, 0}, {1, 0}, {1, 16.3}, {0, 16.3}});
    const Intervals leaving = visibleOf(tall, P(0.0001, 0.0001, 0), P(0, -25, 0));
    ASSERT_EQ(leaving.size(), 1u);
    EXPECT_LT(leaving[0].first, 1e-5);
    EXPECT_EQ(leaving[0].second, 1.0);
    freeConvex(tall);
    // A corner beyond 1e150 overflows the side values: the intervals stay sorted in [0, 1].
    convex* far = polygonOf({{0, 0}, {-1e155, -1e155}, {1, 0}});
    double last = 0.0;
    for (const auto& iv : visibleOf(far, P(-0.75, -1.24, 0), P(0.05, 0.11, 0))) {
        EXPECT_LE(last, iv.first);
        EXPECT_LT(iv.first, iv.second);
        last = iv.second;
    }
    EXPECT_LE(last, 1.0);
    freeConvex(far);
}

double distToOutline(const std::vector<P>& ring, P p) {
    double best = HUGE_VAL;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const P a = ring[i], b = ring[(i + 1) % ring.size()];
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double t =
            std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        best = std::min(best, std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy));
    }
    return best;
}

bool inside(const std::vector<P>& ring, P p) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const P a = ring[i], b = ring[(i + 1) % ring.size()];
        if ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) < 0)
            return false;
    }
    return true;
}

// Pieces over random convex polygons (regular polygons turned and stretched, overlapping or
// apart): what stays visible is exactly what lies outside every polygon, sampled away from the
// outlines; the visible and hidden stretches make up the whole piece.
TEST(ConvexTrimLineSeg, RandomPiecesLoseExactlyWhatLiesInsideThePolygons) {
    vgtest::Lcg next(4242);
    for (int round = 0; round < 300; ++round) {
        convex* polys = nullptr;
        std::vector<std::vector<P>> rings;
        for (int k = 1 + next.below(3); k > 0; --k) {
            const int n = 3 + next.below(6);
            const double r = next(0.5, 4), turn = next(0, kTwoPi), sx = next(0.3, 1);
            const P c(next(-5, 5), next(-5, 5), 0);
            std::vector<std::pair<double, double>> xy;
            rings.emplace_back();
            for (int i = 0; i < n; ++i) {
                const double a = turn + kTwoPi * i / n;
                const double x = sx * r * std::cos(a), y = r * std::sin(a);
                xy.emplace_back(c.x + x * std::cos(turn) - y * std::sin(turn),
                                c.y + x * std::sin(turn) + y * std::cos(turn));
                rings.back().emplace_back(xy.back().first, xy.back().second, 0);
            }
            convex* p = polygonOf(xy);
            p->next = polys;
            polys = p;
        }
        const P s(next(-10, 10), next(-10, 10), 0), e(next(-10, 10), next(-10, 10), 0);
        line_cut* piece = mallocLineCut(s, e);
        ASSERT_TRUE(convexTrimLineSeg(polys, piece));
        const Intervals iv = intervalsOf(piece->params);
        const std::string text = ::testing::PrintToString(iv);
        for (int q = 0; q <= 100; ++q) {
            const double t = q / 100.0;
            const P p(s.x + t * (e.x - s.x), s.y + t * (e.y - s.y), 0);
            bool in = false, near = false;
            for (const auto& ring : rings) {
                in = in || inside(ring, p);
                near = near || distToOutline(ring, p) < 1e-3;
            }
            if (near)
                continue;
            bool visible = false;
            for (const auto& i : iv)
                visible = visible || (i.first <= t && t <= i.second);
            EXPECT_EQ(visible, !in) << "round " << round << " at " << t << ": " << text;
        }
        paramt* hidden = getHideParamLine(piece);
        double total = 0.0;
        for (const auto& i : intervalsOf(hidden))
            total += i.second - i.first;
        for (const auto& i : iv)
            total += i.second - i.first;
        EXPECT_NEAR(total, 1.0, kParamTol) << "round " << round;
        freeParamt(hidden);
        freeLineCut(piece);
        freeConvex(polys);
    }
    line_cut* piece = mallocLineCut(P(-1, 1, 0), P(11, 1, 0));
    convex* empty = mallocConvex();
    EXPECT_TRUE(convexTrimLineSeg(nullptr, piece)) << "no polygons hide nothing";
    EXPECT_TRUE(convexTrimLineSeg(empty, piece)) << "a polygon without edges hides nothing";
    EXPECT_TRUE(sameIntervals(intervalsOf(piece->params), {{0, 1}}, 0.0));
    freeConvex(empty);
    freeLineCut(piece);
}

TEST(Box2DTrimLine, ReportsTheOneHiddenRange) {
    convex* sq = square(0, 0, 10);
    const struct {
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
    for (const auto& c : cases) {
        double s[3] = {c.s[0], c.s[1], c.s[2]}, e[3] = {c.e[0], c.e[1], c.e[2]};
        double u0 = -7, u1 = -7;
        EXPECT_TRUE(box2DTrimLine(sq, s, e, u0, u1)) << c.id;
        EXPECT_NEAR(u0, c.u0, kParamTol) << c.id;
        EXPECT_NEAR(u1, c.u1, kParamTol) << c.id;
    }
    freeConvex(sq);
}

TEST(DivideArc2Line, ChordCountFollowsLengthWithinTheBoundsAndChainsToTheEnd) {
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
        EXPECT_EQ(countOf(divide_arc2line(c, k[0], 0, kPi / 2, k[1], static_cast<int>(k[2]))), k[3])
            << k[0] << " " << k[1] << " " << k[2];
    }
    EXPECT_EQ(countOf(divide_circle2line(c, 1, .5, 1000)), 13);  // 13.6 truncated
    EXPECT_EQ(divide_arc2line(nullptr, 1, 0, 1, .5, 10), nullptr);
    // Through angle 0: the right half only, at the centre's height, head to tail.
    line_cut* chords = divide_arc2line(c, 4, 3 * kPi / 2, kPi / 2, .5, 1000);
    EXPECT_TRUE(vgtest::near3(chords->start, P(1, -2, 3), kRoundTol));
    const line_cut* last = chords;
    for (const line_cut* p = chords; p != nullptr; last = p, p = p->next) {
        EXPECT_NEAR(p->end.distanceTo(P(c)), 4, kRoundTol);
        EXPECT_GT(p->end.x, 1.0 - kRoundTol);
        EXPECT_EQ(p->end.z, 3.0);
        if (p->next != nullptr) {
            EXPECT_TRUE(vgtest::near3(p->end, p->next->start, 0.0));
        }
    }
    EXPECT_EQ(last->end.x, 1 + 4 * std::cos(kPi / 2)) << "the end angle exactly";
    freeLineCut(chords);
}

TEST(PolygonTrimArc, VisibleRunsOfWholeChordsBecomeAngularIntervals) {
    double c[3] = {0, 0, 0};
    // A square over 8..12 by -2..2 hides the circle of radius 10 where |10 sin a| <= 2. A
    // partly hidden chord counts as hidden: the run starts and ends on whole chords.
    convex* sq = square(8, -2, 4);
    const double edge = std::asin(0.2);
    const double chordAngle = kTwoPi / 126;  // 2pi * 10 / 0.5 + 1 = 126.6 chords
    arc_cut* circ = polygonTrimCircle(sq, c, 10);
    EXPECT_EQ(circ->endAngle, kTwoPi);
    const Intervals iv = intervalsOf(circ->params);
    ASSERT_EQ(iv.size(), 1u);
    EXPECT_GE(iv[0].first, edge);
    EXPECT_LT(iv[0].first, edge + chordAngle);
    EXPECT_LE(iv[0].second, kTwoPi - edge);
    EXPECT_GT(iv[0].second, kTwoPi - edge - chordAngle);
    freeArcCut(circ);
    // Clear of the polygons: the run from angle 0 closes the full circle at 2pi; an arc keeps
    // its own range; one wholly hidden has no intervals.
    sq->next = square(-20, -20, 1);
    circ = polygonTrimCircle(sq->next, c, 10);
    EXPECT_TRUE(sameIntervals(intervalsOf(circ->params), {{0, kTwoPi}}, 0.0));
    freeArcCut(circ);
    arc_cut* a = polygonTrimArc(sq, c, 10, kPi / 2, kPi);
    EXPECT_TRUE(sameIntervals(intervalsOf(a->params), {{kPi / 2, kPi}}, kRoundTol));
    freeArcCut(a);
    a = polygonTrimArc(sq, c, 10, -0.1, 0.1);
    EXPECT_EQ(a->params, nullptr);
    freeArcCut(a);
    EXPECT_EQ(polygonTrimArc(sq, nullptr, 10, 0, 1), nullptr);
    freeConvex(sq);
}

}  // namespace
