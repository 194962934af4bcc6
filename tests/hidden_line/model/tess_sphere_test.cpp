#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "hd_engine.h"
#include "hd_tessellators.h"
#include "hidden_line/model/analytic_edges.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_walk.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using namespace hdtest;

using vgtest::kTwoPi;

// Spheres from the smallest radius up, anywhere: vertices on the sphere, the equator (the
// circle at z = c.z) the one line, drawn as its outline.
TEST(EpDivideSph, SpheresAreClosedSolidsDrawnByTheirEquator) {
    SizeGen gen(31);
    for (int i = 0; i < 40; ++i) {
        const double r = i == 0 ? 0.01 : gen(0.02, 5000);
        const P c{gen(0.1, 100) - 50, -gen(0.1, 100), gen(0.1, 1000) - 500};
        const Curve equator = closedCurve([&](double a) {
            return P{c.x + r * std::cos(a), c.y + r * std::sin(a), c.z};
        });
        _s_hd_prof_* sphere = ep_divide_sph(c, r);
        expectTrueSolid(sphere, {}, {equator}, equator, ("sphere " + std::to_string(i)).c_str(),
                        [&](P p) { return solid::norm(solid::sub(p, c)) - r; });
        freeHDProfObjectPointer(sphere);
    }
}

// Sectors, full rings and sectors of a disc at random angles, sizes and axes (the view axis
// every third case, and the axes and near them among the rest): lines on the outlines of the
// faces, the edges along the axis and the walls' silhouettes. Seen along the axis the near
// outline is all that is drawn, once: the hide pass shows all of it and nothing more.
TEST(EpDivideSad, RingPlatesAreClosedSolidsDrawnByOutlinesAndWallSilhouettes) {
    SizeGen gen(37);
    const auto axes = randomUnitVectors(60, 41);
    for (int i = 0; i < 60; ++i) {
        const P k = i % 3 == 0 ? P{0, 0, 1} : axes[static_cast<std::size_t>(i)];
        const double ro = gen(0.02, 3000), t = gen(0.01, 100);
        const double ri = i % 5 == 0 ? 0 : ro * gen(0.05, 0.99);
        const double rim = ri < 0.01 ? 0 : ri;  // a smaller inner radius makes a disc's sector
        const double a0 = gen(0.01, 20) - 10;
        const double a1 = a0 + (i % 4 == 0 ? kTwoPi + gen(0.001, 3) : gen(0.05, 6.2));
        const double end = std::fmin(a1, a0 + kTwoPi);
        const P c{gen(1, 100), gen(1, 100) - 50, gen(1, 100) - 70};
        // The documented frame: x the projection of +X (of +Y for an axis along X), y = k x x.
        const P ref = std::fabs(k.x) < 0.5 ? P{1, 0, 0} : P{0, 1, 0};
        const P x = vecNormalize(linComb(1, ref, -solid::dot(ref, k), k));
        const P y = solid::cross(k, x);
        auto at = [&](double r, double depth) {
            return [=](double a) {
                return linComb(1, linComb(1, c, depth, k), r,
                               linComb(std::cos(a), x, std::sin(a), y));
            };
        };
        auto arc = [&](double r, double depth) {
            Curve out;
            for (int s = 0; s <= kCurveSamples; ++s)
                out.push_back(at(r, depth)(a0 + (end - a0) * s / kCurveSamples));
            return out;
        };
        std::vector<Curve> rims, contours;
        for (double depth : {0.0, t}) {
            rims.push_back(arc(ro, depth));
            rims.push_back(arc(rim, depth));
            for (double a : {a0, end}) {
                rims.push_back({at(rim, depth)(a), at(ro, depth)(a)});
                for (double r : {rim, ro})
                    rims.push_back({at(r, 0)(a), at(r, t)(a)});
            }
        }
        for (double r : {ro, rim}) {
            const auto walls = contourGenerators({at(r, 0), at(r, t)}, a0, end);
            contours.insert(contours.end(), walls.begin(), walls.end());
        }
        std::vector<P> samples;
        for (const Curve& r : rims)
            samples.insert(samples.end(), r.begin(), r.end());
        _s_hd_prof_* plate = ep_divide_sad(ri, ro, t, c, a0, a1, linComb(0, k, 3, k));
        const std::string what = "plate " + std::to_string(i);
        expectTrueSolid(plate, rims, contours, samples, what.c_str());
        double drawn = 0, visible = 0;
        for (const auto& [a, b] : solid::lines(plate->proline))
            drawn += solid::norm(solid::sub(a, b));
        for (const auto& [a, b] : visibleAlone(plate))
            visible += solid::norm(solid::sub(a, b));
        if (std::fabs(std::fabs(k.z) - 1) <= 1e-9) {
            EXPECT_NEAR(visible, drawn, 1e-9 * drawn) << what;
        }
        freeHDProfObjectPointer(plate);
    }
    // Without an axis the plate is the one about +Z.
    _s_hd_prof_* plan = ep_divide_sad(1, 2, 0.5, {1, 2, 3}, 0.3, 2);
    _s_hd_prof_* along = ep_divide_sad(1, 2, 0.5, {1, 2, 3}, 0.3, 2, {0, 0, 1});
    EXPECT_EQ(linesOf(plan->proline).size(), linesOf(along->proline).size());
    EXPECT_TRUE(same(plan->proline->end, along->proline->end));
    freeHDProfObjectPointer(plan);
    freeHDProfObjectPointer(along);
}

// The solids hide: no visible piece of a pipe entering a sphere, nor of a pipe behind it, lies
// behind the near surface of the sphere the faces hold (radius r cos^2(pi / 8) for r = 10).
TEST(EpDivideSph, HidesThePartOfAPipeThatEntersItAndWhatLiesBehindIt) {
    const double h = std::cos(3.141592653589793 / 8), held = 10 * h * h - 1e-6;
    for (const P d : randomUnitVectors(24, 43)) {
        const P c{3, -2, 1};
        _s_hd_prof_* objs[3] = {ep_divide_sph(c, 10), ep_divide_con(c, linComb(1, c, 30, d), 3, 3),
                                ep_divide_con({-50, 0, 40}, {50, 0, 40}, 2, 2)};
        _s_hd_proline_* vis = kestHideObject(objs, 3);
        for (const auto* l = vis; l != nullptr; l = l->next) {
            for (double s : {0.0, 0.5, 1.0}) {
                const P p = linComb(1 - s, l->start, s, l->end);
                const double rho = std::hypot(p.x - c.x, p.y - c.y);
                const bool behind = rho < held && p.z > c.z - std::sqrt(held * held - rho * rho);
                EXPECT_FALSE(l->owner != 0 && behind) << l->owner << " " << d.x << " " << d.y;
            }
        }
        releaseProline(vis);
        for (auto*& obj : objs)
            freeHDProfObjectPointer(obj);
    }
}

TEST(EpDivideSphSad, BadInputGivesNullAndAFailedAllocationLeaksNothing) {
    const P o{0, 0, 0};
    const _s_hd_prof_* bad[] = {
        ep_divide_sph(o, 0.005),
        ep_divide_sph(o, -1),
        ep_divide_sph({kNaN, 0, 0}, 1),
        ep_divide_sph(o, kInf),
        ep_divide_sad(2, 2, 1, o, 0, 1),  // ri = ro
        ep_divide_sad(3, 2, 1, o, 0, 1),
        ep_divide_sad(-1, 2, 1, o, 0, 1),  // ri > ro, ri < 0
        ep_divide_sad(1, 2, 0, o, 0, 1),
        ep_divide_sad(1, 2, kInf, o, 0, 1),  // thickness
        ep_divide_sad(1, 2, 1, o, 1, 1),
        ep_divide_sad(1, 2, 1, o, 1, 0),  // sweep
        ep_divide_sad(1, 2, 1, o, kNaN, 1),
        ep_divide_sad(1, 2, 1, o, 0, kInf),
        ep_divide_sad(0, 0.005, 1, o, 0, 1),  // small ro
        ep_divide_sad(1, 2, 1, o, 0, 1, o),
        ep_divide_sad(1, 2, 1, o, 0, 1, {kNaN, 0, 1}),
    };
    for (std::size_t i = 0; i < sizeof bad / sizeof bad[0]; ++i) {
        EXPECT_EQ(bad[i], nullptr) << i;
    }
    const P c{1, 2, 3};
    expectNoLeaks({
        [&] { return ep_divide_sph(c, 30); },
        [&] { return ep_divide_sad(1, 2, 0.5, c, 0.3, 2); },  // a sector
        [&] { return ep_divide_sad(1, 2, 0.5, c, 0, 7); },    // a full ring
        [&] { return ep_divide_sad(0, 2, 0.5, c, 0, 1); },    // a disc's sector
    });
}

}  // namespace
