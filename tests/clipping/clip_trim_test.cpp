#include "clip_trim.h"

#include <gtest/gtest.h>

#include <cmath>

#include "VoGeCircle3d.h"
#include "clip_params.h"
#include "clip_viewbox.h"
#include "clipping/clip_test_support.h"
#include "geolib_frames.h"
#include "geolib_spatial.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::kNaN;
using vgtest::kTwoPi;
using vgtest::polygonOf;
using P = VoGePoint3D;

Intervals visibleOf(convex* polys, P s, P e) {
    line_cut* piece = polygonTrimLine(polys, s, e);
    const Intervals out = piece != nullptr ? intervalsOf(piece->params) : Intervals{{-1, -1}};
    freeLineCut(piece);
    freeConvex(polys);
    return out;
}

// Pieces over random convex polygons (regular polygons turned and stretched, overlapping or
// apart): what stays visible is exactly what lies outside every polygon (an independent inside
// test, sampled away from the outlines), in sorted disjoint intervals of [0, 1]; the visible
// and hidden stretches make up the whole piece.
TEST(ConvexTrimLineSeg, RandomPiecesLoseExactlyWhatLiesInsideThePolygons) {
    vgtest::Lcg next(4242);
    for (int round = 0; round < 300; ++round) {
        convex* polys = nullptr;
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
            convex* p = transPtArray2Convex(rings.back());
            p->next = polys;
            polys = p;
        }
        const P s(next(-10, 10), next(-10, 10), 0), e(next(-10, 10), next(-10, 10), 0);
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

// Inputs that once broke the clipping, each with what it must give now.
TEST(ClippingRegressions, EachInputGivesItsPromisedResult) {
    Box3D thin;
    thin.set(P(-20, -19.5, -14), P(-14, -13.999, -13.999));
    double u0 = 0, u1 = 0, a0 = -1, a1 = -1;
    paramt* arc = vgtest::listOf({{-1, .5}, {1, 2}});
    subParamt(arc, 3, 4, true);
    paramt* through0 = vgtest::listOf({{kTwoPi, kTwoPi / 2 + 5e-7}});
    paramt* gaps = getHideParamt(through0, 0, kTwoPi, true);
    const VoGeCircle3d circle(P(0, 0, 0), 1, VoGeVector3D(0, 0, 1));
    VoGeCircle3d fromPoints;
    const double below = angleToX(VoGeVector3D(1, -1e-9, 0));
    const Intervals corner = visibleOf(polygonOf({{0, 0}, {1, 0}, {1, 16.3}, {0, 16.3}}),
                                       P(0.0001, 0.0001, 0), P(0, -25, 0));
    const struct {
        const char* id;
        bool holds;
    } rows[] = {
        {"a piece leaving a sliver from within the tolerance of its corner is kept whole",
         visibleOf(polygonOf({{-14.207762942594581, 0.0001}, {-1e-9, -1e-9}, {0.0001, 0.0003}}),
                   P(0.0001, 0.0001, 0), P(-9.04, -25, 0)) == Intervals{{0, 1}}},
        {"a piece leaving an outline near a corner is cut, not hidden whole",
         corner.size() == 1 && corner[0].first < 1e-5 && corner[0].second == 1.0},
        {"viewBoxTrimLine reports u0 > u1 for a piece the views' ranges miss",
         !viewBoxTrimLine(&thin, P(-16, -13.97, 1), P(-13.999, -14, -20), u0, u1) && u0 > u1},
        {"an arc cut keeps the intervals in [0, 2 pi]",
         intervalsOf(arc) == Intervals{{kTwoPi - 1, .5}, {1, 2}}},
        {"the gaps of an interval through angle 0 are disjoint",
         intervalsOf(gaps) == Intervals{{kTwoPi / 2 + 5e-7, kTwoPi}}},
        {"angles a hair below +X stay below the full turn",
         below < kTwoPi && below > kTwoPi - 1e-8 &&
             circle.getParam(P(1, -1e-17, 0), 1e-6) < kTwoPi &&
             getArcParamFromPoints(P(1, -1e-17, 0), P(0, 1, 0), P(-1, 0, 0), fromPoints, a0, a1) &&
             a0 >= 0 && a0 < kTwoPi},
        {"a corner beyond 1e150 (NaN side values) leaves the intervals sorted in [0, 1]",
         vgtest::ordered(visibleOf(polygonOf({{0, 0}, {-1e155, -1e155}, {1, 0}}),
                                   P(-0.75, -1.24, 0), P(0.05, 0.11, 0)),
                         0, 1)},
    };
    for (const auto& r : rows)
        EXPECT_TRUE(r.holds) << r.id;
    freeParamt(arc);
    freeParamt(gaps);
    freeParamt(through0);
}

}  // namespace
