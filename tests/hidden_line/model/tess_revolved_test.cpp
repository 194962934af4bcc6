// Discs: the rim's chords run round the circle in two halves head to tail, the faces cover the
// polygon they draw and the box is their extent; bad input gives null; failed allocations leak
// nothing.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

TEST(Disc, RimChordsCloseOnTheCircleAndTheFacesCoverThem) {
    vgtest::Lcg gen(9);
    for (const P n : randomUnitVectors(30, 13)) {
        const double r = logUniform(gen, 0.01, 2000);
        const P c{gen(-100, 100), gen(-100, 100), gen(-100, 100)};
        _s_hd_prof_* disc = ep_divide_cir(c, r, n);
        ASSERT_NE(disc, nullptr);
        int chords = 0, breaks = 0;
        double rim = 0, faces = 0;  // twice the areas the rim and the faces cover
        for (const _s_hd_proline_* l = disc->proline; l != nullptr; l = l->next, ++chords) {
            const P d = vecSub(l->start, c);
            EXPECT_LE(std::fabs(norm(d) - r), 1e-12 * r) << "off the circle";
            EXPECT_LE(std::fabs(vecDot(d, n)), 1e-6 * r) << "off the plane";
            breaks += l->next != nullptr && norm(vecSub(l->end, l->next->start)) != 0;
            rim += std::fabs(vecDot(vecCross(d, vecSub(l->end, c)), n));
        }
        for (const auto& f : enginetest::facesOf(disc)) {
            for (std::size_t k = 0; k < f.size(); ++k)
                faces += vecDot(vecCross(vecSub(f[k], c), vecSub(f[(k + 1) % f.size()], c)), n);
        }
        EXPECT_TRUE(chords == 8 || chords == 10 || chords == 12) << chords;
        EXPECT_EQ(breaks, 1);
        EXPECT_NEAR(std::fabs(faces), rim, 1e-9 * r * r);
        EXPECT_TRUE(enginetest::boxHoldsPoints(disc, true)) << "the box is not the points' extent";
        freeHDProfObjectPointer(disc);
    }
    const P o{0, 0, 0}, z{0, 0, 1};
    expectRefused({ep_divide_cir(o, 0.005, z), ep_divide_cir(o, -1, z), ep_divide_cir(o, kNaN, z),
                   ep_divide_cir(o, kInf, z), ep_divide_cir(o, 1, {0, kNaN, 1}),
                   ep_divide_cir(o, 1, {0, 0, 0}), ep_divide_cir({kInf, 0, 0}, 1, z)});
    expectAllocFailuresGiveNull({[] { return ep_divide_cir({1, 2, 3}, 30, {0, 0.6, 0.8}); }});
}

}  // namespace
