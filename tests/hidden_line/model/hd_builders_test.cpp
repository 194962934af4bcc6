#include "hidden_line/model/hd_builders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

// A component inside the 1e-9 snap vanishes and a squared length of 1e-10 is the floor;
// same-point tests are strict per coordinate; det3x3 sums in its fixed order (a*e*i = 1e16
// takes b*f*g = 1 before c*e*g = 1e16 comes off, so the 1 is rounded away); curves take 8 to
// 12 chords by size, 8 for NaN and infinite sizes (never converted to an int).
TEST(HDBuilders, SnapsFloorsStrictPointTestsSummationOrderAndChordCounts) {
    EXPECT_EQ(vecLength({2e-5, 0.5e-9, 0}), 2e-5);
    EXPECT_NE(vecLength({2e-5, 2e-9, 0}), 2e-5);
    EXPECT_EQ(vecLength({std::sqrt(0.5e-10), 0, 0}), 0.0);
    EXPECT_GT(vecLength({std::sqrt(2e-10), 0, 0}), 0.0);
    EXPECT_TRUE(isSamePoint({0, 0, 0}, {0.0025, -0.0025, 0.004}));
    EXPECT_FALSE(isSamePoint({0, 0, 0}, {0, 0, 0.005}));
    EXPECT_TRUE(isSamePointFine({0, 0, 0}, {2.5e-7, 0, -2.5e-7}));
    EXPECT_FALSE(isSamePointFine({0, 0, 0}, {0, 1e-6, 0}));
    EXPECT_EQ(det3x3(1, 2, 3, 4, 5, 6, 7, 8, 10), -3.0);
    EXPECT_EQ(det3x3(1e8, 1, 1e8, 0, 1e8, 1, 1, 0, 1), 0.0);
    const double cases[][2] = {{0.4, 8},   {13.1, 8},  {13.2, 9}, {20, 10},  {24.6, 11},
                               {24.7, 12}, {1000, 12}, {0, 8},    {kNaN, 8}, {kInf, 8}};
    for (const auto& c : cases)
        EXPECT_EQ(getCircleDivideNum(P{7, 8, 9}, c[0]), c[1]) << c[0];
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, 1000, 0, 0.1), 8);
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, 1000, 0, 1e300), 12);
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, kNaN, 0, 1), 8);
}

// A full circle's chords close exactly, point k at k * 6.2831885307179585 / n clockwise seen
// from +Z (the full turn as it has always been written); bad input and failed allocations leave
// the list as it was; a radius whose sagitta rule asks for millions of chords gets the cap.
TEST(HDBuilders, ArcChordsCloseExactlyAndBadInputLeavesTheListAlone) {
    const P o{0, 0, 0}, x{1, 0, 0}, z{0, 0, 1};
    for (int n : {6, 8}) {
        _s_hd_proline_* ring = nullptr;
        ASSERT_TRUE(divideArc2Proline(o, x, z, x, n, ring));
        const std::vector<enginetest::Seg> chords = enginetest::segmentsOf(ring);
        ASSERT_EQ(chords.size(), static_cast<std::size_t>(n));
        for (int k = 0; k < n; ++k) {
            const double a = -6.2831885307179585 * k / n;
            EXPECT_NEAR(chords[k].first.x, std::cos(a), 1e-12) << k;
            EXPECT_NEAR(chords[k].first.y, std::sin(a), 1e-12) << k;
            const P next = k + 1 < n ? chords[k + 1].first : x;
            EXPECT_EQ(std::memcmp(&chords[k].second, &next, sizeof next), 0) << "chord " << k;
        }
        releaseProline(ring);
    }
    _s_hd_proline_* list = appendProline({9, 9, 9}, {8, 8, 8}, nullptr);
    EXPECT_FALSE(divideArc2Proline(o, x, z, x, -1, list));
    EXPECT_FALSE(divideArc2Proline(o, x, z, x, 100001, list));
    EXPECT_FALSE(divideArc2Proline({kNaN, 0, 0}, x, z, x, 0, list));
    EXPECT_FALSE(divideArc2Proline(o, x, {0, kInf, 0}, {0, 1, 0}, 6, list));
    EXPECT_EQ(list->next, nullptr);
    vgtest::forEachFailure(false, [&] {
        if (divideArc2Proline(o, x, z, x, 8, list))
            releaseProline(list->next);
        EXPECT_EQ(list->next, nullptr);
        list->next = nullptr;
    });
    releaseProline(list);
    ASSERT_TRUE(divideArc2Proline(o, {1e9, 0, 0}, z, {1e9, 0, 0}, 0, list));
    EXPECT_EQ(enginetest::segmentsOf(list).size(), 100000u);
    releaseProline(list);
}

// An arc from s through m to e, short or long, on random circles: its chords run head to tail
// from s exactly to e exactly, round the side m is on, each on the circle, together sweeping the
// arc's angle.
TEST(HDBuilders, ArcChordsRunFromStartThroughTheMiddleToTheEndExactly) {
    vgtest::Lcg gen(21);
    int half = 0;
    for (const P n : randomUnitVectors(60, 23)) {
        P u, v;
        squareTo(n, u, v);
        const double r = logUniform(gen, 0.01, 1e4), a0 = gen(-4, 4);
        const P c{gen(-50, 50), gen(-50, 50), gen(-50, 50)};
        // Every sixth a half circle, e straight across from s: there m alone tells the side.
        const double sweep = half++ % 6 == 0 ? kPi : gen(0.01, 6.2);
        auto at = [&](double a) { return onCircle(c, u, v, r, a0 + a); };
        const P s = at(0), e = sweep == kPi ? vecSub(vecScale(2, c), s) : at(sweep);
        _s_hd_proline_* arc = nullptr;
        ASSERT_TRUE(divideArc2Proline(c, s, at(sweep * gen(0.1, 0.9)), e, gen.below(21), arc));
        const std::vector<enginetest::Seg> chords = enginetest::segmentsOf(arc);
        EXPECT_EQ(std::memcmp(&chords.front().first, &s, sizeof s), 0);
        double turned = 0;
        for (std::size_t k = 0; k < chords.size(); ++k) {
            const P a = vecSub(chords[k].first, c), b = vecSub(chords[k].second, c);
            EXPECT_NEAR(norm(b), r, 1e-12 * r) << k;
            const P next = k + 1 < chords.size() ? chords[k + 1].first : e;
            EXPECT_EQ(std::memcmp(&chords[k].second, &next, sizeof next), 0) << "chord " << k;
            turned += std::atan2(vecDot(vecCross(a, b), n), vecDot(a, b));
        }
        EXPECT_NEAR(turned, sweep, 1e-9) << "sweep " << sweep;
        releaseProline(arc);
    }
}

}  // namespace
