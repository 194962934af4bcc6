#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "hd_tessellators.h"
#include "hidden_line/model/analytic_edges.h"
#include "hidden_line/model/hd_walk.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using namespace hdtest;

std::function<P(double)> circle(P c, double r, P n) {
    P u, v;
    squareTo(unit(n), u, v);
    return [=](double t) { return add(c, add(scaled(std::cos(t), u), v, std::sin(t)), r); };
}

void expectRuledSolid(_s_hd_prof_* obj, const Ruled& s, const std::string& what) {
    std::vector<Curve> rims;
    std::vector<P> samples;
    for (const auto& [rim, apex] : {std::make_pair(s.rimA, s.apexA), {s.rimB, s.apexB}}) {
        rims.push_back(apex ? Curve{rim(0)} : closedCurve(rim));
        samples.insert(samples.end(), rims.back().begin(), rims.back().end());
    }
    expectTrueSolid(obj, rims, contourGenerators(s), samples, what.c_str());
    freeHDProfObjectPointer(obj);
}

// Cones, cylinders and pointed cones over random axes (the axes themselves, and near them,
// included) and sizes from 0.05 to 2000; a wide flat cone is seen from within its half-angle
// along the axes.
TEST(EpDivideCon, RandomConesAreClosedSolidsDrawnByRimsAndSilhouettes) {
    SizeGen gen(3);
    const auto dirs = randomUnitVectors(40, 11);
    for (std::size_t i = 0; i < dirs.size(); ++i) {
        const double len = gen(0.1, 2000), r = gen(0.05, 500);
        const double shapes[5][2] = {{r, r}, {r, 0.4 * r}, {r, 0}, {0, r}, {50 * len, len}};
        for (int k = 0; k < 5; ++k) {
            const double ra = shapes[k][0], rb = shapes[k][1];
            const P a{0.3 * len, -0.7 * len, 0.2 * len}, b = add(a, dirs[i], len);
            Ruled s{circle(a, ra, dirs[i]), circle(b, rb, dirs[i]), ra == 0, rb == 0};
            expectRuledSolid(ep_divide_con(a, b, ra, rb), s,
                             "con " + std::to_string(i) + "/" + std::to_string(k) + " length " +
                                 std::to_string(len) + " radius " + std::to_string(r));
        }
    }
}

TEST(EpDivideCon, APipeRimIsTheDiscOfItsCircleAndItsSilhouetteTwoGenerators) {
    for (const P d : randomUnitVectors(20, 5)) {
        // Along Z no silhouette; a hair off it the axis is oblique to the snapped end planes.
        const bool alongZ = d.x == 0 && d.y == 0;
        const P a{1, 2, 3}, b = add(a, d, 40);
        if (!alongZ && std::fabs(std::fabs(d.z) - 1) <= 1e-9)
            continue;
        _s_hd_prof_* pipe = ep_divide_con(a, b, 7, 7);
        _s_hd_prof_* disc = ep_divide_cir(a, 7, unit(solid::sub(b, a)));
        const auto rim = linesOf(pipe->proline), discRim = linesOf(disc->proline);
        ASSERT_EQ(rim.size(), 2 * discRim.size() + (alongZ ? 0 : 2));
        for (const auto* l : discRim) {
            EXPECT_TRUE(std::any_of(rim.begin(), rim.begin() + discRim.size(),
                                    [&](Line k) { return same(k->start, l->start, 1e-12); }));
        }
        freeHDProfObjectPointer(pipe);
        freeHDProfObjectPointer(disc);
    }
}

// Eccentric cones and reducers (one straight side when the offset is |ra - rb|), snouts with a
// caller's sagitta, over random planes and offsets.
TEST(EpDivideEcnScn, RandomObliqueConesAreClosedSolidsDrawnByRimsAndSilhouettes) {
    SizeGen gen(5);
    const auto normals = randomUnitVectors(30, 17);
    const auto sides = randomUnitVectors(30, 19);
    for (std::size_t i = 0; i < normals.size(); ++i) {
        const P n = normals[i];
        P u, v;
        squareTo(n, u, v);
        const double h = gen(0.1, 1000), ra = gen(0.05, 300), rb = gen(0.05, 300);
        const P a{-0.1 * h, 0.5 * h, 0.3 * h};
        const P side = unit(add(sides[i], n, -solid::dot(sides[i], n) + 1e-3));
        const P offsets[2] = {add(scaled(h, n), side, std::fabs(ra - rb)),
                              add(scaled(h, n), sides[i], gen(0.01, 1) * h)};
        for (int k = 0; k < 2; ++k) {
            const P b = add(a, offsets[k]);
            if (solid::dot(offsets[k], n) < 0.05 * solid::norm(offsets[k]))
                continue;
            const Ruled s{circle(a, ra, n), circle(b, rb, n)};
            expectRuledSolid(ep_divide_ecn(a, b, ra, rb, scaled(3, n)), s,
                             "ecn " + std::to_string(i) + "/" + std::to_string(k) + " h " +
                                 std::to_string(h) + " ra " + std::to_string(ra) + " rb " +
                                 std::to_string(rb));
        }
        // The snout's frame: x, y in the bottom plane, z off square to it.
        const P z = unit(add(n, u, 0.3));
        const double xoff = gen(0.01, 1) * h, yoff = -gen(0.01, 1) * h;
        const P top = add(add(add(a, z, h), u, xoff), v, yoff);
        // A catalogue snout's radii differ by a factor of 5 at most.
        const double rt = ra * gen(0.2, 1);
        const Ruled s{circle(a, ra, n), circle(top, rt, n)};
        _s_hd_prof_* snout = ep_divide_scn(ra, rt, h, xoff, yoff, a, u, v, z, gen(1e-3, 1) * ra);
        expectRuledSolid(snout, s, "scn " + std::to_string(i));
    }
}

TEST(EpDivideScn, SideCountIsTheFewestWithinTheSagittaFromEightTo360) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 0, 1}, z{0, -1, 0};
    for (double sag : {100.0, 1.0, 0.1, 0.01, 1e-9}) {
        _s_hd_prof_* snout = ep_divide_scn(100, 50, 30, 0, 0, o, x, y, z, sag);
        const auto lines = linesOf(snout->proline);
        const std::size_t perRim = (lines.size() - 2) / 2;
        double worst = 0;
        for (std::size_t k = 0; k < perRim; ++k) {
            const P m = scaled(0.5, add(lines[k]->start, lines[k]->end));
            worst = std::max(worst, 100 - std::hypot(m.x, m.z));
        }
        EXPECT_LE(worst, std::max(sag, 100 * (1 - std::cos(3.141592653589793 / 360))) * (1 + 1e-9))
            << sag;
        EXPECT_GE(perRim, 8u);
        const double n = std::ceil(3.141592653589793 / std::acos(1 - std::min(sag, 100.0) / 100));
        EXPECT_LE(perRim, std::max(8.0, std::min(n, 360.0)) + 2) << sag;  // +1 per silhouette arc
        freeHDProfObjectPointer(snout);
    }
}

// Cylinders cut by sloped planes (n along the axis included) over random axes.
TEST(EpDivideScy, RandomCutCylindersAreClosedSolidsDrawnByEllipsesAndSilhouettes) {
    SizeGen gen(9);
    const auto axes = randomUnitVectors(40, 23);
    const auto cuts = randomUnitVectors(40, 29);
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const P w = axes[i];
        const P n = i % 4 == 0 ? w : unit(add(w, cuts[i], 0.9));
        const double len = gen(0.1, 2000), r = gen(0.05, 0.3 * len + 0.05);
        const P a{len, 0, -len}, b = add(a, w, len);
        P u, v;
        squareTo(w, u, v);
        auto cutRim = [=](P c) {
            return [=](double t) {
                const P p = add(c, add(scaled(std::cos(t), u), v, std::sin(t)), r);
                return add(p, w, -solid::dot(n, solid::sub(p, c)) / solid::dot(n, w));
            };
        };
        expectRuledSolid(ep_divide_scy(a, b, r, n), Ruled{cutRim(a), cutRim(b)},
                         "scy " + std::to_string(i));
    }
}

TEST(EpDivideRuled, BadInputGivesNullAndAFailedAllocationLeaksNothing) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, nan{kNaN, 0, 0}, far{0, 0, 5};
    const _s_hd_prof_* bad[] = {
        ep_divide_con(nan, far, 1, 1),
        ep_divide_con(o, far, kInf, 1),  // non-finite
        ep_divide_con(o, far, -1, 1),
        ep_divide_con(o, far, 0.009, 0.005),   // radii
        ep_divide_con(o, {0, 0, 1e-7}, 1, 1),  // null axis
        ep_divide_ecn(o, far, 1, 2, o),
        ep_divide_ecn(o, far, 1, 2, nan),                // normal
        ep_divide_ecn(o, {3, 0, 0}, 1, 2, z),            // axis in the end planes
        ep_divide_scn(2, 1, 3, 0, 0, o, x, y, z, 0),     // sagitta
        ep_divide_scn(2, 1, 3, 0, 0, o, x, y, z, kNaN),  // sagitta
        ep_divide_scn(2, 1, 3, 0, 0, o, x, x, z, 0.1),   // parallel x and y
        ep_divide_scn(2, 1, 0, 1, 1, o, x, y, z, 0.1),   // no height
        ep_divide_scn(2, 1, 3, kInf, 0, o, x, y, z, 1),  // offset
        ep_divide_scy(o, far, 1, x),
        ep_divide_scy(o, far, 1, o),  // cut plane holds the axis
        ep_divide_scy(o, far, 0.005, z),
        ep_divide_scy(o, o, 1, z),  // radius, null axis
    };
    for (std::size_t i = 0; i < sizeof bad / sizeof bad[0]; ++i) {
        EXPECT_EQ(bad[i], nullptr) << i;
    }
    const P a{1, 2, 3}, b{4, -2, 9}, n{0.2, 0.1, 1};
    expectNoLeaks({
        [&] { return ep_divide_con(a, b, 3, 3); },  // the disc's rings
        [&] { return ep_divide_con(a, b, 3, 1); },  // silhouette arcs
        [&] { return ep_divide_con(a, b, 0, 1); },  // an apex
        [&] { return ep_divide_ecn(a, b, 2, 1, n); },
        [&] { return ep_divide_scn(2, 1, 3, 0.5, 0.2, a, x, y, z, 0.05); },
        [&] { return ep_divide_scy(a, b, 2, n); },
    });
}

}  // namespace
