#include "clip_trim.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "VoGeCircle3d.h"
#include "clip_params.h"
#include "clip_viewbox.h"
#include "clipping/clip_test_support.h"
#include "geolib_frames.h"
#include "geolib_spatial.h"
#include "hd_tessellators.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::kTwoPi;
using vgtest::polygonOf;
using P = VoGePoint3D;
constexpr double kParamTol = 1e-9;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

Intervals visibleOf(convex* polys, P s, P e) {
    line_cut* piece = polygonTrimLine(polys, s, e);
    const Intervals out = piece != nullptr ? intervalsOf(piece->params) : Intervals{{-1, -1}};
    freeLineCut(piece);
    freeConvex(polys);
    return out;
}

// Sorted, disjoint, non-empty intervals within [lo, hi].
bool ordered(const Intervals& iv, double lo, double hi) {
    double last = lo;
    for (const auto& i : iv) {
        if (!(last <= i.first && i.first < i.second && i.second <= hi))
            return false;
        last = i.second;
    }
    return true;
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
        EXPECT_TRUE(ordered(iv, 0, 1)) << text;
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
    EXPECT_EQ(intervalsOf(piece->params), (Intervals{{0, 1}}));
    freeConvex(empty);
    freeLineCut(piece);
}

// Inputs that once broke the clipping, each with what it must give now.
TEST(ClippingRegressions, EachInputGivesItsPromisedResult) {
    const struct {
        const char* id;
        std::function<bool()> holds;
    } rows[] = {
        {"a piece leaving a sliver from within the tolerance of its corner is kept whole",
         [] {
             return visibleOf(
                        polygonOf(
                            {{-14.207762942594581, 0.0001}, {-1e-9, -1e-9}, {0.0001, 0.0003}}),
                        P(0.0001, 0.0001, 0), P(-9.04, -25, 0)) == Intervals{{0, 1}};
         }},
        {"a piece leaving an outline near a corner is cut, not hidden whole",
         [] {
             const Intervals iv = visibleOf(polygonOf({{0, 0}, {1, 0}, {1, 16.3}, {0, 16.3}}),
                                            P(0.0001, 0.0001, 0), P(0, -25, 0));
             return iv.size() == 1 && iv[0].first < 1e-5 && iv[0].second == 1.0;
         }},
        {"viewBoxTrimLine reports u0 > u1 for a piece the views' ranges miss",
         [] {
             Box3D thin;
             thin.set(P(-20, -19.5, -14), P(-14, -13.999, -13.999));
             double u0 = 0, u1 = 0;
             return !viewBoxTrimLine(&thin, P(-16, -13.97, 1), P(-13.999, -14, -20), u0, u1) &&
                    u0 > u1;
         }},
        {"an arc cut keeps the intervals in [0, 2 pi]",
         [] {
             paramt* list = vgtest::listOf({{-1, .5}, {1, 2}});
             subParamt(list, 3, 4, true);
             const Intervals iv = intervalsOf(list);
             freeParamt(list);
             return iv == Intervals{{kTwoPi - 1, .5}, {1, 2}};
         }},
        {"the gaps of an interval through angle 0 are disjoint",
         [] {
             paramt* list = vgtest::listOf({{kTwoPi, kTwoPi / 2 + 5e-7}});
             paramt* gaps = getHideParamt(list, 0, kTwoPi, true);
             const Intervals iv = intervalsOf(gaps);
             freeParamt(gaps);
             freeParamt(list);
             return iv == Intervals{{kTwoPi / 2 + 5e-7, kTwoPi}};
         }},
        {"angles a hair below +X stay below the full turn",
         [] {
             VoGeCircle3d c(P(0, 0, 0), 1, VoGeVector3D(0, 0, 1)), arc;
             double a0 = -1, a1 = -1;
             const double a = angleToX(VoGeVector3D(1, -1e-9, 0));
             return a < kTwoPi && a > kTwoPi - 1e-8 && c.getParam(P(1, -1e-17, 0), 1e-6) < kTwoPi &&
                    getArcParamFromPoints(P(1, -1e-17, 0), P(0, 1, 0), P(-1, 0, 0), arc, a0, a1) &&
                    a0 >= 0 && a0 < kTwoPi;
         }},
        {"a prism's lines stay in its box whatever ring count it takes",
         [] {
             bool inside = true;
             for (double len : {1.0, 1e9, 1e15}) {
                 for (double r : {0.1, 1.0, 2.9, 3.1, 100.0}) {
                     const _s_hd_point_ pa{0.3, -0.2, 0.1};
                     _s_hd_prof_* pri =
                         ep_divide_pri(pa, {pa.x + 0.6 * len, pa.y + 0.48 * len, pa.z + 0.64 * len},
                                       {pa.x + 0.8 * r, pa.y - 0.6 * r, pa.z}, 0);
                     for (const _s_hd_proline_* l = pri->proline; l != nullptr; l = l->next) {
                         for (const _s_hd_point_& q : {l->start, l->end})
                             inside = inside && q.x <= pri->box[0] && q.x >= pri->box[1] &&
                                      q.y <= pri->box[2] && q.y >= pri->box[3] &&
                                      q.z <= pri->box[4] && q.z >= pri->box[5];
                     }
                     freeHDProfObjectPointer(pri);
                 }
             }
             return inside;
         }},
        {"a corner beyond 1e150 (NaN side values) leaves the intervals sorted in [0, 1]",
         [] {
             return ordered(visibleOf(polygonOf({{0, 0}, {-1e155, -1e155}, {1, 0}}),
                                      P(-0.75, -1.24, 0), P(0.05, 0.11, 0)),
                            0, 1);
         }},
        {"a segment with a NaN end has every point off its line",
         [] {
             const P a(0, 0, 0), n(kNaN, 0, 0);
             return isPointOnLineSeg(n, n, n, 1e-6) == kSegOffLine &&
                    isPointOnLineSeg(a, n, a, 1e-6) == kSegOffLine &&
                    isPointOnLineSeg(a, P(10, 0, 0), P(5, kNaN, 0), 1e-6) == kSegOffLine;
         }},
        {"ConvexIdentify refuses a ring with a NaN or 1e154 corner, the ring left whole",
         [] {
             bool ok = true;
             for (double bad : {kNaN, 1e154}) {
                 convex* l = polygonOf({{0, 0}, {4, 0}, {bad, 1}, {1, 1}, {1, 4}, {0, 4}});
                 ok = ok && !ConvexIdentify(l) && l->next == nullptr;
                 freeConvex(l);
             }
             return ok;
         }},
    };
    for (const auto& r : rows)
        EXPECT_TRUE(r.holds()) << r.id;
}

}  // namespace
