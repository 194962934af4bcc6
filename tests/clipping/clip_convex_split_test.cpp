#include <gtest/gtest.h>

#include <string>

#include "clip_trim.h"
#include "clipping/clip_test_support.h"

namespace {

using namespace geolib;
using Outline = std::vector<std::pair<double, double>>;

// The pieces' total area, those not convex and the rings not closing on their head.
struct Pieces {
    int count = 0, nonConvex = 0, unclosed = 0;
    double area = 0.0;
};

Pieces piecesOf(const convex* polys) {
    Pieces out;
    for (const convex* p = polys; p != nullptr; p = p->next, ++out.count) {
        std::vector<VoGePoint3D> c;
        transConvex2PtArray(p, c);
        const line* e = p->edges;
        for (std::size_t i = 0; i < c.size(); ++i)
            e = e->next;
        out.unclosed += e != p->edges;
        out.area += vgtest::signedArea(p);
        out.nonConvex += !vgtest::convexRing(c);
    }
    return out;
}

// Outlines split into convex pieces of the same area, or are refused (pieces 0: not checked).
TEST(ConvexIdentify, OutlinesSplitIntoConvexPiecesOfTheSameAreaOrAreRefusedUntouched) {
    const Outline kL = {{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 4}, {0, 4}};
    const struct {
        Outline outline;
        bool ok;
        int pieces;
        double area;
    } cases[] = {
        {kL, true, 2, 7},
        {{{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}}, true, 3, 7},
        {{{0, 0}, {0, 2}, {2, 2}, {2, 0}}, false, 1, -4},            // clockwise
        {{{0, 0}, {10, 0}, {10, 5}, {12, 5}, {0, 5}}, false, 0, 0},  // a spike turning back
        // A NaN corner, or one beyond the coordinate limit: refused, the ring left whole.
        {{{0, 0}, {4, 0}, {vgtest::kNaN, 1}, {1, 1}, {1, 4}, {0, 4}}, false, 1, 0},
        {{{0, 0}, {4, 0}, {1e156, 1}, {1, 1}, {1, 4}, {0, 4}}, false, 1, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE("case " + std::to_string(&c - cases));
        convex* polys = vgtest::polygonOf(c.outline);
        EXPECT_EQ(ConvexIdentify(polys), c.ok);
        const Pieces p = piecesOf(polys);
        EXPECT_EQ(p.unclosed, 0);
        EXPECT_TRUE(c.pieces == 0 || p.count == c.pieces) << p.count << " pieces";
        EXPECT_TRUE(c.area == 0 || std::fabs(p.area - c.area) < 1e-9) << "area " << p.area;
        EXPECT_TRUE(!c.ok || p.nonConvex == 0) << "a piece is not convex";
        freeConvex(polys);
    }
    EXPECT_TRUE(ConvexIdentify(nullptr));
    // A ring whose links do not close is refused before anything changes.
    convex* open = vgtest::polygonOf(kL);
    open->edges->next->next->next->next->next->next = nullptr;
    EXPECT_FALSE(ConvexIdentify(open));
    EXPECT_NEAR(vgtest::signedArea(open), 7, 1e-12);
    freeConvex(open);
}

}  // namespace
