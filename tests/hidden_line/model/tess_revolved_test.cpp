#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_walk.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace hdtest;

TEST(HalfCircleChords, StepsCounterClockwiseAndEndsExactlyAtE) {
    const P c{1, 2, 3}, s{3, 2, 3}, e{-1, 2, 3}, z{0, 0, 1};
    _s_hd_proline_* half = divideHalfCircle2Proline(5, c, z, s, e, 2);
    const auto lines = linesOf(half);
    ASSERT_EQ(lines.size(), 5u);
    expectHeadToTail(lines);
    EXPECT_TRUE(same(lines.back()->end, e));
    for (size_t k = 1; k < lines.size(); ++k) {
        const double a = 3.14159265 / 5 * static_cast<double>(k);
        EXPECT_TRUE(
            same(lines[k]->start, {1 + 2 * std::cos(a), 2 + 2 * std::sin(a), 3}, kOnCircleTol))
            << k;
    }
    releaseProline(half);
    EXPECT_EQ(divideHalfCircle2Proline(4, c, z, s, e, 0.005), nullptr);
    EXPECT_EQ(divideHalfCircle2Proline(4, c, z, c, c, 2), nullptr);
    EXPECT_EQ(divideHalfCircle2Proline(0, c, z, s, e, 2), nullptr);
    vgtest::forEachAllocationFailure(
        [&] { releaseProline(half = divideHalfCircle2Proline(6, c, z, s, e, 1)); });
}

TEST(EpDivideCir, SplitsTheRimWhereItIsExtremeAndStripsTheDisc) {
    const double h = 0.5 * std::sqrt(3.0);
    const struct {
        const char* id;
        P centre;
        double r;
        P normal, s;
        P firstSide;  // a direction in the disc's plane towards the first half
        size_t chords;
    } cases[] = {
        {"facing", {5, 5, 5}, 1, {0, 0, 1}, {6, 5, 5}, {0, 1, 0}, 8},
        {"facing away", {5, 5, 5}, 1, {0, 0, -1}, {6, 5, 5}, {0, -1, 0}, 8},
        {"on edge", {0, 0, 0}, 2, {1, 0, 0}, {0, 2, 0}, {0, 0, 1}, 8},
        {"tilted", {0, 0, 0}, 20, {0, 0.5, h}, {-20, 0, 0}, {0, -h, 0.5}, 10},
        {"odd count raised", {0, 0, 0}, 14, {0, 0, 1}, {14, 0, 0}, {0, 1, 0}, 10},
        {"large", {0, 0, 0}, 1000, {0, 0, 1}, {1000, 0, 0}, {0, 1, 0}, 12},
        {"smallest", {0, 0, 0}, 0.02, {0, 0, 1}, {0.02, 0, 0}, {0, 1, 0}, 8},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        _s_hd_prof_* disc = ep_divide_cir(c.centre, c.r, c.normal);
        ASSERT_NE(disc, nullptr);
        const auto lines = linesOf(disc->proline);
        ASSERT_EQ(lines.size(), c.chords);
        const size_t half = c.chords / 2;
        const P e = mirrorPoint(c.s, c.centre);
        EXPECT_TRUE(same(lines[0]->start, c.s, kOnCircleTol * c.r));
        EXPECT_TRUE(same(lines[half]->start, c.s, kOnCircleTol * c.r));
        EXPECT_TRUE(same(lines[half - 1]->end, e));
        EXPECT_TRUE(same(lines.back()->end, e));
        for (size_t k = 0; k < lines.size(); ++k) {
            const P d = vecSub(lines[k]->start, c.centre);
            EXPECT_NEAR(std::sqrt(vecDot(d, d)), c.r, kOnCircleTol * c.r);
            EXPECT_NEAR(vecDot(d, c.normal), 0.0, kOnCircleTol * c.r);
            EXPECT_TRUE(k % half == 0 || (vecDot(d, c.firstSide) > 0) == (k < half)) << k;
        }
        // Triangle at s, quadrilaterals between the halves' chords k1, k2, triangle at e.
        const auto faces = facesOf(disc);
        ASSERT_EQ(faces.size(), half);
        for (size_t k = 0; k < half; ++k) {
            const auto *k1 = lines[k], *k2 = lines[half + k];
            std::vector<P> want = {k1->start, k1->end, k2->end, k2->start};
            if (k == 0)
                want.pop_back();
            else if (k == half - 1)
                want.erase(want.begin() + 2);
            EXPECT_TRUE(vgtest::samePoints(faces[k].pts, want, 0.0)) << k;
        }
        freeHDProfObjectPointer(disc);
    }
}

TEST(EpDivideCir, BoxHoldsTheRimAndBadInputGivesNull) {
    _s_hd_prof_* disc = ep_divide_cir({5, 5, 5}, 1, {0, 0, 1});
    const double want[6] = {6, 4, 6, 4, 5, 5};
    for (int i = 0; i < 6; ++i) {
        EXPECT_NEAR(disc->box[i], want[i], kOnCircleTol) << i;
    }
    freeHDProfObjectPointer(disc);
    const P o{0, 0, 0}, z{0, 0, 1};
    for (double r : {0.005, -1.0, kNaN, kInf}) {
        EXPECT_EQ(ep_divide_cir(o, r, z), nullptr) << r;
    }
    EXPECT_EQ(ep_divide_cir({kInf, 0, 0}, 1, z), nullptr);
    for (P n : {P{0, kNaN, 1}, P{0, 0, 0}, P{0, 0, 2}}) {
        EXPECT_EQ(ep_divide_cir(o, 1, n), nullptr);
    }
    const P c{1, 2, 3}, n{0, 0.6, 0.8};
    expectNoLeaks({[&] { return ep_divide_cir(c, 30, n); }});
}

}  // namespace
