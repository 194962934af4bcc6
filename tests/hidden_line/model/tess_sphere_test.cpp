#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "hd_tessellators.h"
#include "hidden_line/model/analytic_edges.h"
#include "hidden_line/model/hd_walk.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace hdtest;

constexpr double kTwoPi = 6.283185307179586;

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

// A polyline of the arc about the vertical through c at depth z, radius r, a0 to a1.
Curve arcCurve(P c, double r, double z, double a0, double a1) {
    Curve out;
    for (int i = 0; i <= kCurveSamples; ++i) {
        const double a = a0 + (a1 - a0) * i / kCurveSamples;
        out.push_back({c.x + r * std::cos(a), c.y + r * std::sin(a), z});
    }
    return out;
}

// Sectors, full rings and sectors of a disc at random angles and sizes: the near face's outline
// is drawn, once, and it is the plate's whole drawing (the far rims lie under it).
TEST(EpDivideSad, RingPlatesAreClosedSolidsDrawnByTheirNearOutlineOnce) {
    SizeGen gen(37);
    for (int i = 0; i < 60; ++i) {
        const double ro = gen(0.02, 3000), t = gen(0.01, 100);
        const double ri = i % 5 == 0 ? 0 : ro * gen(0.05, 0.99);
        const double rim = ri < 0.01 ? 0 : ri;  // a smaller inner radius makes a disc's sector
        const double a0 = gen(0.01, 20) - 10;
        const double a1 = a0 + (i % 4 == 0 ? kTwoPi + gen(0.001, 3) : gen(0.05, 6.2));
        const P c{gen(1, 100), gen(1, 100) - 50, gen(1, 100) - 70};
        const double end = std::fmin(a1, a0 + kTwoPi);
        std::vector<Curve> rims;
        for (double z : {c.z, c.z + t}) {
            rims.push_back(arcCurve(c, ro, z, a0, end));
            rims.push_back(arcCurve(c, rim, z, a0, end));
            for (double a : {a0, end})
                rims.push_back({{c.x + rim * std::cos(a), c.y + rim * std::sin(a), z},
                                {c.x + ro * std::cos(a), c.y + ro * std::sin(a), z}});
        }
        for (double r : {rim, ro})
            for (double a : {a0, end})
                rims.push_back({{c.x + r * std::cos(a), c.y + r * std::sin(a), c.z},
                                {c.x + r * std::cos(a), c.y + r * std::sin(a), c.z + t}});
        std::vector<P> samples = rims[0];
        samples.insert(samples.end(), rims[1].begin(), rims[1].end());
        _s_hd_prof_* plate = ep_divide_sad(ri, ro, t, c, a0, a1);
        const std::string what = "plate " + std::to_string(i);
        expectTrueSolid(plate, rims, {}, samples, what.c_str());
        double drawn = 0, visible = 0;
        for (const auto& [a, b] : solid::lines(plate->proline))
            drawn += solid::norm(solid::sub(a, b));
        for (const auto& [a, b] : visibleAlone(plate))
            visible += solid::norm(solid::sub(a, b));
        EXPECT_NEAR(visible, drawn, 1e-9 * drawn) << what;
        freeHDProfObjectPointer(plate);
    }
}

TEST(EpDivideSphSad, BadInputGivesNullAndAFailedAllocationLeaksNothing) {
    const P o{0, 0, 0};
    const std::vector<std::pair<const char*, std::function<_s_hd_prof_*()>>> bad = {
        {"sph small radius", [&] { return ep_divide_sph(o, 0.005); }},
        {"sph negative radius", [&] { return ep_divide_sph(o, -1); }},
        {"sph NaN centre",
         [&] {
             return ep_divide_sph({kNaN, 0, 0}, 1);
         }},
        {"sph infinite radius", [&] { return ep_divide_sph(o, kInf); }},
        {"sad ri = ro", [&] { return ep_divide_sad(2, 2, 1, o, 0, 1); }},
        {"sad ri > ro", [&] { return ep_divide_sad(3, 2, 1, o, 0, 1); }},
        {"sad negative ri", [&] { return ep_divide_sad(-1, 2, 1, o, 0, 1); }},
        {"sad no thickness", [&] { return ep_divide_sad(1, 2, 0, o, 0, 1); }},
        {"sad zero sweep", [&] { return ep_divide_sad(1, 2, 1, o, 1, 1); }},
        {"sad reversed sweep", [&] { return ep_divide_sad(1, 2, 1, o, 1, 0); }},
        {"sad NaN angle", [&] { return ep_divide_sad(1, 2, 1, o, kNaN, 1); }},
        {"sad infinite angle", [&] { return ep_divide_sad(1, 2, 1, o, 0, kInf); }},
        {"sad small ro", [&] { return ep_divide_sad(0, 0.005, 1, o, 0, 1); }},
        {"sad infinite thickness", [&] { return ep_divide_sad(1, 2, kInf, o, 0, 1); }},
    };
    for (const auto& [what, call] : bad) {
        _s_hd_prof_* obj = call();
        EXPECT_EQ(obj, nullptr) << what;
        freeHDProfObjectPointer(obj);
    }
    const std::vector<std::function<_s_hd_prof_*()>> calls = {
        [&] {
            return ep_divide_sph({1, 2, 3}, 30);
        },
        [&] {
            return ep_divide_sad(1, 2, 0.5, {1, 2, 3}, 0.3, 2);
        },
        [&] {
            return ep_divide_sad(1, 2, 0.5, {1, 2, 3}, 0, 7);
        },
        [&] {
            return ep_divide_sad(0, 2, 0.5, {1, 2, 3}, 0, 1);
        },
    };
    for (const auto& call : calls)
        vgtest::forEachAllocationFailure([&] {
            _s_hd_prof_* obj = call();
            freeHDProfObjectPointer(obj);
        });
}

}  // namespace
