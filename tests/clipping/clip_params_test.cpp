#include "clip_params.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::listOf;
using vgtest::sameIntervals;

using vgtest::kTwoPi;
constexpr double kEndTol = 1e-6;  // interval ends closer than this are the same end

// One cut [a, b] on a list; the expected result and return value.
struct Cut {
    const char* id;
    Intervals list;
    double a, b;
    bool ok;
    Intervals want;
};

void runCuts(const std::vector<Cut>& cuts, bool isArc) {
    for (const Cut& c : cuts) {
        SCOPED_TRACE(c.id);
        paramt* list = listOf(c.list);
        EXPECT_EQ(subParamt(list, c.a, c.b, isArc), c.ok);
        EXPECT_TRUE(sameIntervals(intervalsOf(list), c.want, 0.0));
        freeParamt(list);
    }
}

TEST(SubParamt, LineCutsShortenSplitRemoveOrRefuse) {
    const double in = 0.5 * kEndTol;   // inside the tolerance
    const double out = 2.0 * kEndTol;  // outside it
    // Plain splits and removals are covered by LineIntervals below; these are the boundaries.
    runCuts({{"split", {{0, 1}}, .25, .5, true, {{0, .25}, {.5, 1}}},
             {"exact cover", {{.2, .4}, {.6, .8}}, .2 + in, .4, true, {{.6, .8}}},
             {"too short", {{0, 1}}, .5, .5 + in, false, {{0, 1}}},
             {"just long enough", {{0, 1}}, .5, .5 + out, true, {{0, .5}, {.5 + out, 1}}},
             {"reversed", {{0, 1}}, .6, .4, false, {{0, 1}}},
             {"touching the end", {{0, 1}}, 1, 1.5, true, {{0, 1}}},
             {"within tol of the end", {{0, 1}}, 1 - in, 1.5, true, {{0, 1}}},
             {"past tol of the end", {{0, 1}}, 1 - out, 1.5, true, {{0, 1 - out}}},
             {"within tol of the start", {{0, 1}}, -.5, in, true, {{0, 1}}}},
            false);
}

TEST(SubParamt, ArcCutsWrapThroughAngleZero) {
    // A wrapping cut trims a plain interval only at its start: the part above 5.5 stays.
    runCuts({{"wrapping cut", {{0, kTwoPi}}, 5.5, .5, true, {{.5, kTwoPi}}},
             {"wrapping interval split", {{4, 1}}, 0, .5, true, {{4, 0}, {.5, 1}}},
             {"reversed is a wrap", {{1, 2}}, 1.5, 1.2, true, {{1.2, 2}}},
             {"too short", {{-1, .5}}, 3, 3 + .5 * kEndTol, false, {{-1, .5}}},
             // A cut that meets nothing still brings starts below 0 into the turn.
             {"normalisation", {{-1, .5}, {1, 2}}, 3, 4, true, {{kTwoPi - 1, .5}, {1, 2}}}},
            true);
}

TEST(SubParamt, FailedSplitLeavesTheIntervalWhole) {
    for (bool isArc : {false, true}) {
        SCOPED_TRACE(isArc);
        paramt* list = listOf({{-0.5, 1}});
        {
            vgtest::AllocationWatch watch(1);
            EXPECT_FALSE(subParamt(list, 0.25, 0.5, isArc));
        }
        // Nothing shortened, and no normalisation pass on the arc.
        EXPECT_TRUE(sameIntervals(intervalsOf(list), {{-0.5, 1}}, 0.0));
        freeParamt(list);
    }
}

TEST(CutParamt, LineFormAlwaysReportsSuccessArcFormPassesTheResultOn) {
    line_cut* lc = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0));
    EXPECT_TRUE(cutPipeParamt(lc, 0.6, 0.4));
    EXPECT_TRUE(cutPipeParamt(nullptr, 0.2, 0.4));
    EXPECT_TRUE(cutPipeParamt(lc, 0.2, 0.4));
    EXPECT_TRUE(sameIntervals(intervalsOf(lc->params), {{0, 0.2}, {0.4, 1}}, 0.0));
    freeLineCut(lc);
    const double c[3] = {0, 0, 0};
    arc_cut* ac = mallocArcCut(c, 1.0, 0.0, kTwoPi);
    EXPECT_FALSE(cutArcParamt(ac, 1.0, 1.0));
    EXPECT_TRUE(cutArcParamt(ac, 1.0, 2.0));
    EXPECT_FALSE(cutArcParamt(nullptr, 1.0, 2.0));
    freeArcCut(ac);
}

TEST(GetHideParamt, GapsAreTheComplementUpToTheFullEnd) {
    struct Case {
        const char* id;
        Intervals visible;
        double a, b;
        bool isArc;
        Intervals want;
    } cases[] = {
        {"one visible in the middle", {{0.2, 0.4}}, 0, 1, false, {{0, 0.2}, {0.4, 1}}},
        {"all visible", {{0, 1}}, 0, 1, false, {}},
        {"nothing visible: the full line", {}, 0.3, 0.6, false, {{0, 1}}},
        {"nothing visible: the full turn", {}, 1.0, 2.0, true, {{0, kTwoPi}}},
        {"b is not used", {{0.2, 0.4}}, 0, 0.5, false, {{0, 0.2}, {0.4, 1}}},
        {"arc closes at 2pi, not at b", {{1.5, 2}}, 1, 3, true, {{1, 1.5}, {2, kTwoPi}}},
        {"no closing gap from near 0", {{0.5, 0.5 * kEndTol}}, 0.5, 1, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        paramt* list = listOf(c.visible);
        paramt* gaps = getHideParamt(list, c.a, c.b, c.isArc);
        EXPECT_TRUE(sameIntervals(intervalsOf(gaps), c.want, 0.0));
        freeParamt(gaps);
        freeParamt(list);
    }
}

TEST(GetHideParamt, WrappersReadThePieceAndGiveBackPartialListsOnFailure) {
    line_cut* lc = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0));
    lc->params->t0 = 0.2;
    lc->params->t1 = 0.4;
    paramt* gaps = getHideParamLine(lc);
    EXPECT_TRUE(sameIntervals(intervalsOf(gaps), {{0, 0.2}, {0.4, 1}}, 0.0));
    freeParamt(gaps);
    vgtest::forEachAllocationFailure([&] { freeParamt(getHideParamLine(lc)); });
    freeLineCut(lc);
    const double c[3] = {0, 0, 0};
    arc_cut* ac = mallocArcCut(c, 1.0, 1.0, 3.0);
    gaps = getHideParamArc(ac);
    EXPECT_TRUE(sameIntervals(intervalsOf(gaps), {{3, kTwoPi}}, 0.0));
    freeParamt(gaps);
    freeArcCut(ac);
    EXPECT_EQ(getHideParamLine(nullptr), nullptr);
}

TEST(FindFitParamt, FirstIntervalHoldingAnEndOrLyingWithin) {
    paramt* list = listOf({{0, 0.25}, {0.6, 1}, {1.2, 1.3}});
    paramt* second = list->next;
    EXPECT_EQ(findFitParamt(list, 0.3, 0.5), nullptr);
    EXPECT_EQ(findFitParamt(list, 0.2, 0.7), list);
    EXPECT_EQ(findFitParamt(list, 0.3, 0.65), second);                // holds b
    EXPECT_EQ(findFitParamt(list, 1.1, 1.4), second->next);           // lies within
    EXPECT_EQ(findFitParamt(list, 0.25 + 0.5 * kEndTol, 0.5), list);  // a on the end
    EXPECT_EQ(findFitParamt(list, 0.25 + 2 * kEndTol, 0.5), nullptr);
    EXPECT_EQ(findFitParamt(list, 0.5, 0.4), nullptr);
    EXPECT_EQ(findFitParamt(list, 0.1, 0.1 + 0.5 * kEndTol), nullptr);
    freeParamt(list);
}

// Arc intervals stay within [0, 2pi], and the gaps of a list holding an interval through
// angle 0 are disjoint: random cuts on a full circle, each list checked against a sampling of
// the circle.
TEST(ArcIntervals, StayInTheTurnAndTheirGapsAreTheirComplement) {
    {  // Ends that are no numbers (or, for an arc, no angles) are refused.
        paramt* list = listOf({{0, 1}});
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        EXPECT_FALSE(subParamt(list, nan, 0.5, false));
        EXPECT_FALSE(subParamt(list, 0.2, nan, true));
        EXPECT_FALSE(subParamt(list, 0.2, inf, true));
        EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0, 1}}, 0.0));
        freeParamt(list);
    }
    {  // A cut through angle 0 that shortens an interval through angle 0.
        paramt* list = listOf({{3.92699, 0}});
        EXPECT_TRUE(subParamt(list, 5.49779, 0, true));
        EXPECT_TRUE(sameIntervals(intervalsOf(list), {{3.92699, 5.49779}}, 1e-12));
        freeParamt(list);
        list = listOf({{kTwoPi, kTwoPi / 2 + 5e-7}});
        paramt* gaps = getHideParamt(list, 0, kTwoPi, true);
        EXPECT_TRUE(sameIntervals(intervalsOf(gaps), {{kTwoPi / 2 + 5e-7, kTwoPi}}, 0.0));
        freeParamt(gaps);
        freeParamt(list);
    }
    // Visible at angle x: some interval holds it (an interval through 0 holds [t0, 2pi] and
    // [0, t1]).
    auto holds = [](const Intervals& iv, double x) {
        for (const auto& i : iv) {
            if (i.second < i.first ? (x >= i.first || x <= i.second)
                                   : (x >= i.first && x <= i.second))
                return true;
        }
        return false;
    };
    std::uint32_t seed = 12345;
    auto next = [&seed]() {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) / 16777216.0;
    };
    for (int round = 0; round < 200; ++round) {
        paramt* list = listOf({{0, kTwoPi}});
        for (int k = 0; k < 4; ++k)
            subParamt(list, kTwoPi * next(), kTwoPi * next(), true);
        const Intervals iv = intervalsOf(list);
        for (const auto& i : iv) {
            EXPECT_GE(i.first, 0) << ::testing::PrintToString(iv);
            EXPECT_LE(i.first, kTwoPi) << ::testing::PrintToString(iv);
            EXPECT_GE(i.second, 0) << ::testing::PrintToString(iv);
            EXPECT_LE(i.second, kTwoPi) << ::testing::PrintToString(iv);
        }
        paramt* gaps = getHideParamt(list, 0, kTwoPi, true);
        const Intervals g = intervalsOf(gaps);
        for (std::size_t j = 0; j < g.size(); ++j) {
            EXPECT_LT(g[j].first, g[j].second) << ::testing::PrintToString(g);
            if (j > 0) {
                EXPECT_LE(g[j - 1].second, g[j].first) << ::testing::PrintToString(g);
            }
            // A gap's middle is not visible.
            EXPECT_FALSE(holds(iv, 0.5 * (g[j].first + g[j].second)))
                << ::testing::PrintToString(iv) << " gaps " << ::testing::PrintToString(g);
        }
        freeParamt(gaps);
        freeParamt(list);
    }
}

// Line intervals under random cuts: always sorted, disjoint and inside [0, 1], and a cut
// removes exactly its own stretch (sampled away from the ends, where the tolerance decides).
TEST(LineIntervals, StaySortedDisjointAndInsideAndLoseOnlyTheCut) {
    auto visible = [](const Intervals& iv, double x) {
        for (const auto& i : iv) {
            if (i.first <= x && x <= i.second)
                return true;
        }
        return false;
    };
    auto nearAnEnd = [](const Intervals& iv, double x) {
        for (const auto& i : iv) {
            if (std::fabs(x - i.first) < 4 * kEndTol || std::fabs(x - i.second) < 4 * kEndTol)
                return true;
        }
        return false;
    };
    std::uint32_t seed = 777;
    auto next = [&seed]() {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) / 16777216.0;
    };
    for (int round = 0; round < 200; ++round) {
        paramt* list = listOf({{0, 1}});
        for (int k = 0; k < 6; ++k) {
            const double a = 1.2 * next() - 0.1;
            const double b = 1.2 * next() - 0.1;
            const Intervals before = intervalsOf(list);
            subParamt(list, a, b, false);
            const Intervals iv = intervalsOf(list);
            const std::string text = ::testing::PrintToString(iv);
            for (std::size_t j = 0; j < iv.size(); ++j) {
                EXPECT_GE(iv[j].first, 0.0) << text;
                EXPECT_LE(iv[j].second, 1.0) << text;
                EXPECT_LT(iv[j].first, iv[j].second) << text;
                if (j > 0) {
                    EXPECT_LE(iv[j - 1].second, iv[j].first) << text;
                }
            }
            for (int q = 0; q <= 200; ++q) {
                const double x = q / 200.0;
                if (nearAnEnd(before, x) || nearAnEnd({{a, b}}, x))
                    continue;
                const bool cut = a < b && a < x && x < b;
                EXPECT_EQ(visible(iv, x), visible(before, x) && !cut)
                    << "at " << x << " after cutting " << a << ".." << b << " from "
                    << ::testing::PrintToString(before) << ": " << text;
            }
        }
        freeParamt(list);
    }
}

// Every allocating interval function, each allocation failing in turn: the failure value
// (null, or false from the cut forms, whose list is then left whole) and nothing leaked.
TEST(IntervalFunctions, EveryFailedAllocationLeavesNothingBehind) {
    paramt* arcs = listOf({{4, 1}, {2, 3}});
    vgtest::forEachAllocationFailure([&] { freeParamt(getHideParamt(arcs, 0, kTwoPi, true)); });
    freeParamt(arcs);
    const double c[3] = {0, 0, 0};
    arc_cut* ac = mallocArcCut(c, 1.0, 0.0, kTwoPi);
    ASSERT_TRUE(cutArcParamt(ac, 1, 2));
    ASSERT_TRUE(cutArcParamt(ac, 3, 4));
    vgtest::forEachAllocationFailure([&] { freeParamt(getHideParamArc(ac)); });
    freeArcCut(ac);
    vgtest::forEachAllocationFailure([] {
        line_cut* lc = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0));
        if (lc == nullptr)
            return;
        const bool ok = cutPipeParamt(lc, 0.2, 0.4);
        EXPECT_EQ(ok, lc->params->next != nullptr);  // split, or reported and left whole
        freeLineCut(lc);
    });
    vgtest::forEachAllocationFailure([&c] {
        arc_cut* a = mallocArcCut(c, 1.0, 0.0, kTwoPi);
        if (a == nullptr)
            return;
        const bool ok = cutArcParamt(a, 1, 2);
        EXPECT_EQ(ok, a->params->next != nullptr);
        freeArcCut(a);
    });
}

}  // namespace
