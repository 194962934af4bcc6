#include "clip_trim.h"

#include <gtest/gtest.h>

#include "clip_params.h"
#include "clipping/clip_test_support.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::kTwoPi;
using P = VoGePoint3D;

// Pieces over random convex polygons (regular polygons turned and stretched, overlapping or
// apart), then over polygons where the tolerances decide: a sliver with a corner within the
// tolerance of the piece's start, a long rectangle the piece leaves from near its corner, and a
// corner beyond 1e150 (NaN side values). What stays visible is exactly what lies outside every
// polygon (an independent inside test, sampled away from the outlines), in sorted disjoint
// intervals of [0, 1]; the visible and hidden stretches make up the whole piece.
TEST(ConvexTrimLineSeg, RandomPiecesLoseExactlyWhatLiesInsideThePolygons) {
    const struct {
        std::vector<P> ring;
        P s, e;
    } awkward[] = {
        {{P(-14.207762942594581, 0.0001, 0), P(-1e-9, -1e-9, 0), P(0.0001, 0.0003, 0)},
         P(0.0001, 0.0001, 0),
         P(-9.04, -25, 0)},
        {{P(0, 0, 0), P(1, 0, 0), P(1, 16.3, 0), P(0, 16.3, 0)},
         P(0.0001, 0.0001, 0),
         P(0, -25, 0)},
        {{P(0, 0, 0), P(-1e155, -1e155, 0), P(1, 0, 0)}, P(-0.75, -1.24, 0), P(0.05, 0.11, 0)},
    };
    vgtest::Lcg next(4242);
    for (int round = 0; round < 303; ++round) {
        std::vector<std::vector<P>> rings;
        for (int k = 1 + next.below(3); k > 0; --k) {
            const int n = 3 + next.below(6);
            const double r = next(0.5, 4), turn = next(0, kTwoPi), sx = next(0.3, 1);
            const P c(next(-5, 5), next(-5, 5), 0);
            rings.emplace_back();
            for (int i = 0; i < n; ++i) {
                const double x = sx * r * std::cos(turn + kTwoPi * i / n);
                const double y = r * std::sin(turn + kTwoPi * i / n);
                rings.back().emplace_back(c.x + x * std::cos(turn) - y * std::sin(turn),
                                          c.y + x * std::sin(turn) + y * std::cos(turn), 0);
            }
        }
        P s(next(-10, 10), next(-10, 10), 0), e(next(-10, 10), next(-10, 10), 0);
        if (round >= 300) {
            const auto& a = awkward[round - 300];
            rings = {a.ring};
            s = a.s;
            e = a.e;
        }
        convex* polys = nullptr;
        for (const auto& ring : rings) {
            convex* p = transPtArray2Convex(ring);
            p->next = polys;
            polys = p;
        }
        line_cut* piece = mallocLineCut(s, e);
        ASSERT_TRUE(convexTrimLineSeg(polys, piece));
        const Intervals iv = intervalsOf(piece->params);
        EXPECT_TRUE(vgtest::ordered(iv, 0, 1)) << ::testing::PrintToString(iv);
        for (int q = 0; q <= 100; ++q) {
            const P p = s + (e - s) * (q / 100.0);
            bool in = false, near = false;
            for (const auto& ring : rings) {
                const vgtest::RingPlace at = vgtest::placeInRing(ring, p.x, p.y);
                in = in || at.inside;
                near = near || at.nearest < 1e-3;
            }
            EXPECT_TRUE(near || vgtest::holds(iv, q / 100.0) == !in) << round << " at " << q;
        }
        paramt* hidden = getHideParamLine(piece);
        double total = 0.0;
        for (const Intervals& set : {iv, intervalsOf(hidden)}) {
            for (const auto& i : set)
                total += i.second - i.first;
        }
        EXPECT_NEAR(total, 1.0, 1e-9) << "round " << round;
        freeParamt(hidden);
        freeLineCut(piece);
        freeConvex(polys);
    }
    line_cut* piece = mallocLineCut(P(-1, 1, 0), P(11, 1, 0));
    convex* empty = mallocConvex();
    EXPECT_TRUE(convexTrimLineSeg(nullptr, piece));
    EXPECT_TRUE(convexTrimLineSeg(empty, piece));
    EXPECT_EQ(intervalsOf(piece->params), (Intervals{{0, 1}})) << "nothing hides nothing";
    freeConvex(empty);
    freeLineCut(piece);
}

}  // namespace
