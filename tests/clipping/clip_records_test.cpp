// Clipping records and boxes, and the allocation-failure sweep of every allocating clipping
// function.
#include "clip_records.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "clip_params.h"
#include "clip_trim.h"
#include "clip_viewbox.h"
#include "clipping/clip_test_support.h"
#include "geolib_frames.h"
#include "geolib_linear.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using P = VoGePoint3D;

// BOX and Box3D hold points up to one millionth outside a side, not twice that.
TEST(ClipBoxes, HoldPointsWithinOneMillionthOutside) {
    BOX b;
    b.set(0, 10, 0, 10);
    Box3D p;
    p.set1(P(0, 0, 0), P(1, 1, 1));
    EXPECT_TRUE(b.contains(P(-0.5e-6, 5, 0)));
    EXPECT_TRUE(p.contain(P(0.5, 1 + 0.5e-6, 0.5)));
    EXPECT_FALSE(b.contains(P(-2e-6, 5, 0)));
    EXPECT_FALSE(p.contain(P(0.5, 1 + 2e-6, 0.5)));
}

// Every allocating clipping function (and the solver), each allocation failing in turn: the
// failure value and nothing leaked (a failed split reports false and leaves the interval
// whole; a failed box trim leaves u0 alone); the ones building standard containers throw
// std::bad_alloc and leave the caller's vectors as they were.
TEST(ClippingAlloc, EveryAllocatingFunctionFailsCleanly) {
    const double c[3] = {5, 1, 0};
    double s[3] = {-1, 1, 0}, e[3] = {11, 1, 0};
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
        [] {
            double a[9] = {4, 1, 0, 1, 4, 1, 0, 1, 4}, r[3] = {1, 2, 3}, y[3];
            gaussLiner(3, a, r, y);
        },
        [] { freeParamt(mallocParamt(true)); },
        [] { freeLine(mallocLine()); },
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
        [&] { freeParamt(getHideParamt(arcs, 0, vgtest::kTwoPi, true)); },
        [&] {
            line_cut* p = mallocLineCut(P(0, 0, 0), P(1, 0, 0));
            EXPECT_TRUE(p == nullptr || cutPipeParamt(p, 0.2, 0.4) == (p->params->next != nullptr));
            freeLineCut(p);
        },
        [&] {
            arc_cut* a = mallocArcCut(c, 1.0, 0.0, vgtest::kTwoPi);
            EXPECT_TRUE(a == nullptr || cutArcParamt(a, 1, 2) == (a->params->next != nullptr));
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
            EXPECT_TRUE(box2DTrimLine(polys, s, e, u0, u1) || u0 == -7.0) << "touched on failure";
        },
        [&] { freeLineCut(divide_circle2line(c, 3, 0.5, 100)); },
        [&] { freeArcCut(polygonTrimCircle(polys, const_cast<double*>(c), 3)); },
        [&] {
            convex* u =
                vgtest::polygonOf({{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}});
            const bool refused = u != nullptr && !ConvexIdentify(u);
            double area = 0.0;
            for (const convex* q = u; refused && q != nullptr; q = q->next)
                area += vgtest::signedArea(q);
            EXPECT_TRUE(!refused || std::fabs(area - 7.0) < 1e-9) << "the rings keep the area";
            freeConvex(u);
        },
        [&] {
            double u0 = 0, u1 = 0;
            EXPECT_TRUE(!viewBoxTrimLine(&box, P(-5, 5, 0), P(15, 5, 20), u0, u1) || u1 == 0.5);
        },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SCOPED_TRACE(i);
        vgtest::forEachFailure(false, calls[i]);
    }
    using Points = std::vector<P>;
    using Keys = std::vector<std::pair<short, P>>;
    const std::vector<std::function<void(Points&, Points&, Keys&)>> containerCalls = {
        [&](Points& v, Points&, Keys&) { transConvex2PtArray(polys, v); },
        [](Points& v, Points&, Keys&) { getBoxAlongPipe(P(0, 0, 0), P(10, 0, 0), 2, v); },
        [](Points& v, Points& w, Keys&) {
            Points x(1);
            get3DBoxProject2d(P(0, 0, 0), P(1, 2, 3), v, w, x);
        },
        [](Points&, Points&, Keys& k) { setKeypointOfNo(k, 7, P(1, 2, 3)); },
        [&](Points&, Points&, Keys&) {
            double u0 = 7, u1 = 7;
            viewBoxTrimLine(&box, P(-5, 5, 5), P(15, 5, 5), u0, u1);
        },
    };
    for (const auto& call : containerCalls) {
        vgtest::forEachFailure(true, [&] {
            Points pts(2), more(3);
            Keys keys(1);
            try {
                call(pts, more, keys);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(pts.size(), 2u) << "the caller's list changed";
                EXPECT_EQ(more.size(), 3u) << "the caller's second list changed";
                EXPECT_EQ(keys.size(), 1u) << "the caller's keypoints changed";
                throw;
            }
        });
    }
    freeParamt(arcs);
    freeLineCut(lc);
    freeConvex(polys);
}

}  // namespace
