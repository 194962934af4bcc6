// Discs: the rim's chords run round the circle head to tail and the faces cover the polygon
// they draw; bad input gives null; failed allocations leak nothing.
#include <gtest/gtest.h>

#include <string>

#include "hd_tessellators.h"
#include "hidden_line/model/solid_checks.h"

namespace {

using namespace geolib;
using namespace hdtest;

TEST(Disc, RimChordsCloseOnTheCircleAndTheFacesCoverThem) {
    vgtest::Lcg gen(9);
    for (const P n : randomUnitVectors(30, 13)) {
        const double r = logUniform(gen, 0.01, 2000);
        const P c{gen(-100, 100), gen(-100, 100), gen(-100, 100)};
        _s_hd_prof_* disc = ep_divide_cir(c, r, n);
        ASSERT_NE(disc, nullptr);
        int chords = 0, breaks = 0;
        double rimArea = 0;  // twice the area of the polygon the two halves draw
        P faceArea{0, 0, 0};
        for (const _s_hd_proline_* l = disc->proline; l != nullptr; l = l->next, ++chords) {
            const P d = vecSub(l->start, c);
            EXPECT_NEAR(norm(d), r, 1e-12 * r);
            EXPECT_NEAR(vecDot(d, n), 0, 1e-6 * r);  // a hair off Z faces the viewer
            breaks += l->next != nullptr && norm(vecSub(l->end, l->next->start)) != 0;
            rimArea += std::fabs(vecDot(vecCross(d, vecSub(l->end, c)), n));
        }
        EXPECT_TRUE(chords == 8 || chords == 10 || chords == 12) << chords;
        EXPECT_EQ(breaks, 1) << "two halves of chords head to tail";
        for (const _s_hd_prosect_* f = disc->prosect; f != nullptr; f = f->next) {
            for (const _s_hd_sect_* v = f->sect; v != nullptr; v = v->next) {
                const P w = (v->next != nullptr ? v->next : f->sect)->pt;
                faceArea = add(faceArea, vecCross(vecSub(v->pt, c), vecSub(w, c)));
            }
        }
        EXPECT_NEAR(std::fabs(vecDot(faceArea, n)), rimArea, 1e-9 * r * r);
        freeHDProfObjectPointer(disc);
    }
}

TEST(Disc, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P o{0, 0, 0}, z{0, 0, 1};
    for (double r : {0.005, -1.0, kNaN, kInf})
        EXPECT_EQ(ep_divide_cir(o, r, z), nullptr) << r;
    for (P n : {P{0, kNaN, 1}, P{0, 0, 0}})
        EXPECT_EQ(ep_divide_cir(o, 1, n), nullptr);
    EXPECT_EQ(ep_divide_cir({kInf, 0, 0}, 1, z), nullptr);
    expectAllocFailuresGiveNull({[] { return ep_divide_cir({1, 2, 3}, 30, {0, 0.6, 0.8}); }});
}

}  // namespace
