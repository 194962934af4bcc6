#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "clip_trim.h"
#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using vgtest::cornersOf;
using vgtest::polygonOf;

using Outline = std::vector<std::pair<double, double>>;

constexpr double kAreaTol = 1e-9;
constexpr double kTurnTol = 1e-9;  // a convex piece turns left or goes straight at every corner

// Outlines, counter-clockwise.
const Outline kL = {{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 4}, {0, 4}};
const Outline kU = {{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}};
// The L again with a repeated corner and a straight corner on its bottom edge.
const Outline kRaggedL = {{0, 0}, {2, 0}, {4, 0}, {4, 1}, {4, 1}, {1, 1}, {1, 4}, {0, 4}};
const Outline kPlus = {{1, 0}, {2, 0}, {2, 1}, {3, 1}, {3, 2}, {2, 2},
                       {2, 3}, {1, 3}, {1, 2}, {0, 2}, {0, 1}, {1, 1}};

struct Pieces {
    int count = 0;
    double area = 0.0;
    bool allConvex = true;
    bool allClosed = true;
};

// Walks the polygons the way a caller would, checking that every ring closes on its head.
Pieces piecesOf(const convex* polys) {
    Pieces out;
    for (const convex* p = polys; p != nullptr; p = p->next) {
        ++out.count;
        const std::vector<VoGePoint3D> c = cornersOf(p);
        const line* e = p->edges;
        for (std::size_t i = 0; i < c.size(); ++i)
            e = e->next;
        out.allClosed = out.allClosed && e == p->edges;
        out.area += vgtest::signedArea(p);
        for (std::size_t i = 0, n = c.size(); i < n; ++i) {
            const VoGePoint3D& a = c[i];
            const VoGePoint3D& b = c[(i + 1) % n];
            const VoGePoint3D& d = c[(i + 2) % n];
            const double turn = (b.x - a.x) * (d.y - b.y) - (b.y - a.y) * (d.x - b.x);
            out.allConvex = out.allConvex && turn >= -kTurnTol;
        }
    }
    return out;
}

TEST(ConvexIdentify, NonConvexOutlinesSplitIntoConvexPiecesOfTheSameArea) {
    struct Case {
        const char* id;
        const Outline& outline;
        int pieces;
        double area;
    } cases[] = {
        {"L", kL, 2, 7},
        {"U", kU, 3, 7},
        {"ragged L", kRaggedL, 2, 7},
        {"plus: one bar and two arms", kPlus, 3, 5},
        {"arrow head", {{0, 0}, {4, 2}, {0, 4}, {1, 2}}, 2, 6},
        {"square stays whole", {{0, 0}, {2, 0}, {2, 2}, {0, 2}}, 1, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        convex* polys = polygonOf(c.outline);
        EXPECT_TRUE(ConvexIdentify(polys));
        const Pieces p = piecesOf(polys);
        EXPECT_EQ(p.count, c.pieces);
        EXPECT_NEAR(p.area, c.area, kAreaTol);
        EXPECT_TRUE(p.allConvex);
        EXPECT_TRUE(p.allClosed);
        freeConvex(polys);
    }
    EXPECT_TRUE(ConvexIdentify(nullptr));
}

TEST(ConvexIdentify, NewPolygonsFollowTheOneTheyCameFrom) {
    convex* polys = polygonOf(kL);
    polys->next = polygonOf(kU);
    EXPECT_TRUE(ConvexIdentify(polys));
    EXPECT_EQ(piecesOf(polys).count, 5);
    EXPECT_NEAR(vgtest::signedArea(polys) + vgtest::signedArea(polys->next), 7.0, kAreaTol);
    freeConvex(polys);
}

TEST(ConvexIdentify, RingsWithoutASplitPartnerOrNotClosedReportFalse) {
    // Clockwise: every corner is reflex and no extension meets an edge ahead.
    convex* cw = polygonOf({{0, 0}, {0, 2}, {2, 2}, {2, 0}});
    EXPECT_FALSE(ConvexIdentify(cw));
    EXPECT_TRUE(piecesOf(cw).allClosed);
    freeConvex(cw);
    // A ring whose links do not close is refused before anything changes.
    convex* open = polygonOf(kL);
    open->edges->next->next->next->next->next->next = nullptr;
    EXPECT_FALSE(ConvexIdentify(open));
    EXPECT_EQ(cornersOf(open).size(), 6u);
    freeConvex(open);
}

TEST(ConvexIdentify, HostileRingsComeBackReleasableAndTrueMeansConvexPieces) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<Outline> rings = {
        {{0, 0}, {4, 4}, {4, 0}, {0, 4}},                    // bow tie
        {{0, 0}, {4, 0}, {4, 1}, {nan, 1}, {1, 4}, {0, 4}},  // NaN corner
        {{0, 0}, {4, 0}, {4, 1}, {1, inf}, {1, 4}, {0, 4}},  // infinite corner
        {{0, 0}, {0, 0}, {0, 0}},                            // one point
        {{0, 0}, {1, 0}, {2, 0}, {3, 0}},                    // flat
        {{0, 0}},                                            // one edge onto itself
        {{0, 0}, {6, 3}, {0, 6}, {3, -2}, {3, 8}},           // star
        {{0, 0}, {5, 0}, {5, 5}, {2, -2}, {0, 5}},           // looped
    };
    // Pseudo-random self-intersecting rings of 5 to 16 corners: half on a small grid, so that
    // crossings, touching corners and collinear edges are common, half anywhere near it.
    std::uint32_t seed = 12345u;
    auto next = [&seed](bool onGrid) {
        seed = seed * 1664525u + 1013904223u;
        const std::uint32_t bits = seed >> 12;
        return onGrid ? static_cast<double>(bits % 7u) : static_cast<double>(bits % 7000u) / 1000;
    };
    for (int r = 0; r < 600; ++r) {
        Outline o;
        for (int i = 0; i < 5 + r % 12; ++i) {
            const double x = next(r % 2 == 0);
            o.emplace_back(x, next(r % 2 == 0));
        }
        rings.push_back(o);
    }
    for (std::size_t i = 0; i < rings.size(); ++i) {
        SCOPED_TRACE(i);
        convex* polys = polygonOf(rings[i]);
        // Either answer will do, but it must come back, and true promises convex pieces.
        const bool split = ConvexIdentify(polys);
        const Pieces p = piecesOf(polys);
        EXPECT_TRUE(p.allClosed);
        EXPECT_TRUE(!split || p.allConvex);
        freeConvex(polys);  // the sanitizer run catches a lost or doubly held edge
    }
}

TEST(ConvexIdentify, FailedAllocationLeavesReleasableRings) {
    vgtest::forEachAllocationFailure([&] {
        convex* polys = polygonOf(kU);
        if (polys != nullptr && !ConvexIdentify(polys)) {
            EXPECT_TRUE(piecesOf(polys).allClosed);
            EXPECT_NEAR(piecesOf(polys).area, 7.0, kAreaTol);
        }
        freeConvex(polys);
    });
}

// Rings with a NaN or a coordinate beyond 1e150 are refused untouched; rings the splitting
// cannot make convex report false.
TEST(ConvexIdentify, HugeOrNaNRingsAndRingsItCannotMakeConvexAreRefused) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Outline& ring : {Outline{{0, 0}, {4, 0}, {nan, 1}, {1, 1}, {1, 4}, {0, 4}},
                                Outline{{0, 0}, {4, 0}, {1e154, 1}, {1, 1}, {1, 4}, {0, 4}}}) {
        convex* p = polygonOf(ring);
        EXPECT_FALSE(ConvexIdentify(p));
        EXPECT_EQ(piecesOf(p).count, 1);
        freeConvex(p);
    }
    // Rings the splitting cannot make convex: every corner of a star turning left (two turns
    // round), a reflex corner behind a repeated vertex, a spike that turns back on itself.
    const Outline twoTurns = {{2.39, -12.08}, {11.28, -1},    {-18.47, 19.41},
                              {1, -2},        {15.76, -0.41}, {-1.66, -0.21}};
    const Outline hiddenReflex = {{0, 0}, {-4, 4}, {-10, -1}, {1, -4}, {9, 0}, {-1, 18}, {0, 0}};
    const Outline spike = {{0, 0}, {10, 0}, {10, 5}, {12, 5}, {0, 5}};
    for (const Outline& ring : {twoTurns, hiddenReflex, spike}) {
        convex* p = polygonOf(ring);
        EXPECT_FALSE(ConvexIdentify(p));
        freeConvex(p);
    }
}

}  // namespace
