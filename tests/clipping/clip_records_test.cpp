// Clipping records and boxes, and the allocation-failure sweep of every allocating clipping
// function.
#include "clip_records.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <vector>

#include "clip_params.h"
#include "clip_trim.h"
#include "clip_viewbox.h"
#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using vgtest::kTwoPi;
using P = VoGePoint3D;

constexpr double kBoxTol = 1e-6;  // BOX and Box3D hold points this far outside a side

TEST(ClipRecords, FreshIntervalsCoverThePieceAndARingIsFreedOncePerEdge) {
    paramt* a = mallocParamt(true);
    paramt* l = mallocParamt(false);
    EXPECT_EQ(a->t1, kTwoPi);
    EXPECT_EQ(l->t1, 1.0);
    freeParamt(a);
    freeParamt(l);
    line* ring[4];
    for (auto& r : ring)
        r = mallocLine();
    for (int i = 0; i < 4; ++i)
        ring[i]->next = ring[(i + 1) % 4];
    convex* poly = mallocConvex();
    poly->edges = ring[2];  // the ring may be entered anywhere
    vgtest::AllocationWatch watch;
    freeConvex(poly);
    EXPECT_EQ(watch.live(), -5);  // four edges and the polygon, each once
}

TEST(ClipBoxes, ContainWithinOneMillionthAndOnlySet1Sorts) {
    BOX b;
    b.set(0, 10, 0, 10);
    const struct {
        double x, y;
        bool in;
    } cases[] = {{-0.5 * kBoxTol, 5, true},
                 {-2 * kBoxTol, 5, false},
                 {5, 10 + 0.5 * kBoxTol, true},
                 {5, 10 + 2 * kBoxTol, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(b.contains(P(c.x, c.y, 0)), c.in) << c.x << ", " << c.y;
    }
    b.swell(1.0);  // a positive amount shrinks
    EXPECT_EQ(b.xmin, 1.0);
    b.set(P(5, 6, 0), P(1, 2, 0));
    EXPECT_EQ(b.xmin, 5.0);
    b.set1(P(5, 6, 0), P(1, 2, 0));
    EXPECT_EQ(b.xmin, 1.0);
    Box3D p, q;
    p.set1(P(0, 0, 0), P(1, 1, 1));
    q.set1(P(1, 0, 0), P(2, 1, 1));
    EXPECT_TRUE(p.intersectWith(q)) << "boxes sharing a face intersect";
    q.set1(P(0, 0, 1.5), P(1, 1, 2));
    EXPECT_FALSE(p.intersectWith(q));
    EXPECT_TRUE(p.contain(P(1 + 0.5 * kBoxTol, 0.5, 0.5)));
    EXPECT_FALSE(p.contain(P(0.5, 0.5, -2 * kBoxTol)));
}

// Every allocating clipping function, each allocation failing in turn: the failure value and
// nothing leaked; the ones building standard containers throw std::bad_alloc and leave the
// caller's vectors as they were.
TEST(ClippingAlloc, EveryAllocatingFunctionFailsCleanly) {
    const double c[3] = {5, 1, 0};
    double s[3] = {-1, 1, 0};
    double e[3] = {11, 1, 0};
    BOX unit;
    unit.set(0, 1, 0, 1);
    convex* polys = vgtest::polygonOf({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
    polys->next = vgtest::polygonOf({{10, 1}, {9, 2}, {8, 1}, {9, 0}});
    line_cut* lc = mallocLineCut(P(0, 0, 0), P(10, 0, 0));
    freeParamt(lc->params);
    lc->params = vgtest::listOf({{0, 0.2}, {0.5, 1}});
    paramt* arcs = vgtest::listOf({{4, 1}, {2, 3}});
    Box3D box;
    box.set(P(0, 0, 0), P(10, 10, 10));
    const std::vector<P> tri = {P(0, 0, 1), P(5, 0, 2), P(0, 5, 3)};
    const std::vector<std::function<void()>> calls = {
        [] { freeParamt(mallocParamt(true)); },
        [] { freeLine(mallocLine()); },
        [] { freeLineCut(mallocLineCut(P(0, 0, 0), P(1, 0, 0))); },
        [&] { freeArcCut(mallocArcCut(c, 1.0, 0.0, 1.0)); },
        [] { freeArc(mallocArc()); },
        [] { freeCircle(mallocCircle()); },
        [] { freePoint(mallocPoint()); },
        [&] { freeConvex(convertBox2Convex(&unit)); },
        [&] { freeConvex(transPtArray2Convex(tri)); },
        [&] { freeLineCut(transLine(polys->edges)); },
        [&] { freeLine(transLineCut(lc)); },
        [&] { freeParamt(copyParamt(lc->params)); },
        [&] { freeParamt(getHideParamLine(lc)); },
        [&] { freeParamt(getHideParamt(arcs, 0, kTwoPi, true)); },
        [&] {  // a failed split reports false and leaves the interval whole
            line_cut* p = mallocLineCut(P(0, 0, 0), P(1, 0, 0));
            if (p != nullptr) {
                const bool ok = cutPipeParamt(p, 0.2, 0.4);
                EXPECT_EQ(ok, p->params->next != nullptr);
            }
            freeLineCut(p);
        },
        [&] {
            arc_cut* a = mallocArcCut(c, 1.0, 0.0, kTwoPi);
            if (a != nullptr) {
                const bool ok = cutArcParamt(a, 1, 2);
                EXPECT_EQ(ok, a->params->next != nullptr);
            }
            freeArcCut(a);
        },
        [&] { freeLineCut(polygonTrimLine(polys, s, e)); },
        [&] {
            line_cut* pieces = mallocLineCut(P(-1, 1, 0), P(11, 1, 0));
            if (pieces != nullptr)
                pieces->next = mallocLineCut(P(-1, 0.5, 0), P(11, 0.7, 0));
            if (pieces != nullptr && pieces->next != nullptr)
                convexTrimLineSeg(polys, pieces);
            freeLineCut(pieces);
        },
        [&] {
            double u0 = -7, u1 = -7;
            if (!box2DTrimLine(polys, s, e, u0, u1)) {
                EXPECT_EQ(u0, -7.0) << "untouched on failure";
            }
        },
        [&] { freeLineCut(divide_circle2line(c, 3, 0.5, 100)); },
        [&] { freeArcCut(polygonTrimCircle(polys, const_cast<double*>(c), 3)); },
        [&] {
            convex* u =
                vgtest::polygonOf({{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}});
            if (u != nullptr && !ConvexIdentify(u)) {
                double area = 0.0;
                for (const convex* p = u; p != nullptr; p = p->next)
                    area += vgtest::signedArea(p);
                EXPECT_NEAR(area, 7.0, 1e-9) << "the rings keep the outline's area";
            }
            freeConvex(u);
        },
        [&] {
            double u0 = 0, u1 = 0;
            if (viewBoxTrimLine(&box, P(-5, 5, 0), P(15, 5, 20), u0, u1)) {
                EXPECT_EQ(u1, 0.5);
            }
        },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SCOPED_TRACE(i);
        vgtest::forEachAllocationFailure(calls[i]);
    }
    auto keepsOnFailure = [](std::vector<P>& v, std::size_t before,
                             const std::function<void()>& f) {
        try {
            f();
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(v.size(), before) << "the caller's points changed";
            throw;
        }
    };
    vgtest::forEachNewFailure([&] {
        std::vector<P> pts(2);
        keepsOnFailure(pts, 2, [&] { transConvex2PtArray(polys, pts); });
    });
    vgtest::forEachNewFailure([&] {
        std::vector<P> out(1);
        keepsOnFailure(out, 1, [&] { getBoxAlongPipe(P(0, 0, 0), P(10, 0, 0), 2, out); });
    });
    vgtest::forEachNewFailure([&] {
        std::vector<P> xy(1), yz(1), xz(1);
        keepsOnFailure(xy, 1, [&] { get3DBoxProject2d(P(0, 0, 0), P(1, 2, 3), xy, yz, xz); });
    });
    vgtest::forEachNewFailure([&] {
        double u0 = 7, u1 = 7;
        viewBoxTrimLine(&box, P(-5, 5, 5), P(15, 5, 5), u0, u1);
    });
    freeParamt(arcs);
    freeLineCut(lc);
    freeConvex(polys);
}

}  // namespace
