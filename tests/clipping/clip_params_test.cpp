#include "clip_params.h"

#include <gtest/gtest.h>

#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::listOf;
using vgtest::sameIntervals;

constexpr double kTwoPi = 6.283185307179586;
constexpr double kEndTol = 1e-6;  // interval ends closer than this are the same end
constexpr double kExact = 0.0;

TEST(SubParamtLine, CutsShortenSplitAndRemoveIntervals) {
    paramt* list = mallocParamt(false);
    EXPECT_TRUE(subParamt(list, 0.25, 0.5, false));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0, 0.25}, {0.5, 1}}, kExact));
    EXPECT_TRUE(subParamt(list, 0.4, 0.6, false));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0, 0.25}, {0.6, 1}}, kExact));
    EXPECT_TRUE(subParamt(list, 0.0, 1.0, false));
    EXPECT_EQ(list, nullptr);
}

TEST(SubParamtLine, OneCutShortensRemovesAndShortensAcrossSeveralIntervals) {
    paramt* list = listOf({{0, 0.2}, {0.3, 0.4}, {0.5, 0.6}, {0.7, 1}});
    EXPECT_TRUE(subParamt(list, 0.1, 0.8, false));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0, 0.1}, {0.8, 1}}, kExact));
    freeParamt(list);
}

TEST(SubParamtLine, RangesShorterThanTheToleranceOrReversedAreRefused) {
    paramt* list = mallocParamt(false);
    EXPECT_FALSE(subParamt(list, 0.5, 0.5 + 0.5 * kEndTol, false));
    EXPECT_FALSE(subParamt(list, 0.6, 0.4, false));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0, 1}}, kExact));
    EXPECT_TRUE(subParamt(list, 0.5, 0.5 + 2 * kEndTol, false));
    EXPECT_EQ(intervalsOf(list).size(), 2u);
    freeParamt(list);
}

TEST(SubParamtLine, RangesTouchingAnEndWithinTheToleranceDoNotCut) {
    struct Case {
        const char* id;
        double a, b;
        Intervals want;
    } cases[] = {
        {"touching end", 1.0, 1.5, {{0, 1}}},
        {"half tol before end", 1.0 - 0.5 * kEndTol, 1.5, {{0, 1}}},
        {"twice tol before end", 1.0 - 2 * kEndTol, 1.5, {{0, 1.0 - 2 * kEndTol}}},
        {"touching start", -0.5, 0.0, {{0, 1}}},
        {"half tol after start", -0.5, 0.5 * kEndTol, {{0, 1}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        paramt* list = mallocParamt(false);
        EXPECT_TRUE(subParamt(list, c.a, c.b, false));
        EXPECT_TRUE(sameIntervals(intervalsOf(list), c.want, kExact));
        freeParamt(list);
    }
}

TEST(SubParamtLine, CutEqualToAnIntervalWithinTheToleranceRemovesIt) {
    paramt* list = listOf({{0.2, 0.4}, {0.6, 0.8}});
    EXPECT_TRUE(subParamt(list, 0.2 + 0.1 * kEndTol, 0.4, false));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0.6, 0.8}}, kExact));
    freeParamt(list);
}

TEST(SubParamtArc, CutThroughAngleZeroTrimsOnlyTheStartOfAPlainInterval) {
    // The part of the cut above 5.5 stays: a wrapping cut trims a plain interval at its start.
    paramt* list = mallocParamt(true);
    EXPECT_TRUE(subParamt(list, 5.5, 0.5, true));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{0.5, kTwoPi}}, kExact));
    freeParamt(list);
}

TEST(SubParamtArc, WrappingIntervalIsSplitAndStartsStay) {
    paramt* list = listOf({{4, 1}});
    EXPECT_TRUE(subParamt(list, 0.0, 0.5, true));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{4, 0}, {0.5, 1}}, kExact));
    freeParamt(list);
}

TEST(SubParamtArc, OnlyDegenerateRangesAreRefusedAndNegativeStartsAreTurnedBack) {
    paramt* list = listOf({{-1, 0.5}, {1, 2}});
    EXPECT_FALSE(subParamt(list, 3.0, 3.0 + 0.5 * kEndTol, true));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{-1, 0.5}, {1, 2}}, kExact));
    // A cut that meets nothing still runs the pass that brings starts below 0 into the turn.
    EXPECT_TRUE(subParamt(list, 3.0, 4.0, true));
    EXPECT_TRUE(sameIntervals(intervalsOf(list), {{-1 + kTwoPi, 0.5}, {1, 2}}, kExact));
    // Exact cover, and a cut over several intervals.
    EXPECT_TRUE(subParamt(list, 1.0, 2.0, true));
    EXPECT_EQ(intervalsOf(list).size(), 1u);
    freeParamt(list);
}

TEST(SubParamt, FailedSplitLeavesTheIntervalWhole) {
    for (bool isArc : {false, true}) {
        SCOPED_TRACE(isArc ? "arc" : "line");
        paramt* list = listOf({{-0.5, 1}});
        {
            vgtest::AllocationWatch watch(1);
            EXPECT_FALSE(subParamt(list, 0.25, 0.5, isArc));
            EXPECT_TRUE(watch.refused());
        }
        // Nothing shortened, and no normalisation pass on the arc.
        EXPECT_TRUE(sameIntervals(intervalsOf(list), {{-0.5, 1}}, kExact));
        freeParamt(list);
    }
}

TEST(CutParamt, LineFormAlwaysReportsSuccessArcFormPassesTheResultOn) {
    line_cut* lc = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0));
    EXPECT_TRUE(cutPipeParamt(lc, 0.6, 0.4));
    EXPECT_TRUE(cutPipeParamt(nullptr, 0.2, 0.4));
    EXPECT_TRUE(cutPipeParamt(lc, 0.2, 0.4));
    EXPECT_TRUE(sameIntervals(intervalsOf(lc->params), {{0, 0.2}, {0.4, 1}}, kExact));
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
        {"no closing gap from near 0", {{0.5, 0.5 * kEndTol}}, 0.5, 1, false, {}},
        {"arc closes at 2pi, not at b", {{1.5, 2}}, 1, 3, true, {{1, 1.5}, {2, kTwoPi}}},
        {"visible tail: no closing gap", {{0.5, 1}}, 0, 1, false, {{0, 0.5}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        paramt* list = listOf(c.visible);
        paramt* gaps = getHideParamt(list, c.a, c.b, c.isArc);
        EXPECT_TRUE(sameIntervals(intervalsOf(gaps), c.want, kExact));
        freeParamt(gaps);
        freeParamt(list);
    }
}

TEST(GetHideParamt, PieceAndArcWrappersAndFailedAllocations) {
    line_cut* lc = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0));
    lc->params->t0 = 0.2;
    lc->params->t1 = 0.4;
    paramt* gaps = getHideParamLine(lc);
    EXPECT_TRUE(sameIntervals(intervalsOf(gaps), {{0, 0.2}, {0.4, 1}}, kExact));
    freeParamt(gaps);
    vgtest::forEachAllocationFailure([&] { freeParamt(getHideParamLine(lc)); });
    freeLineCut(lc);

    const double c[3] = {0, 0, 0};
    arc_cut* ac = mallocArcCut(c, 1.0, 1.0, 3.0);
    ac->params->t0 = 1.5;
    ac->params->t1 = 2.0;
    gaps = getHideParamArc(ac);
    EXPECT_TRUE(sameIntervals(intervalsOf(gaps), {{1, 1.5}, {2, kTwoPi}}, kExact));
    freeParamt(gaps);
    freeArcCut(ac);
    EXPECT_EQ(getHideParamLine(nullptr), nullptr);
    EXPECT_EQ(getHideParamArc(nullptr), nullptr);
}

TEST(FindFitParamt, FirstIntervalHoldingAnEndOrLyingWithin) {
    paramt* list = listOf({{0, 0.25}, {0.6, 1}});
    paramt* second = list->next;
    EXPECT_EQ(findFitParamt(list, 0.3, 0.5), nullptr);
    EXPECT_EQ(findFitParamt(list, 0.2, 0.7), list);
    EXPECT_EQ(findFitParamt(list, 0.3, 0.65), second);                  // holds b
    EXPECT_EQ(findFitParamt(list, 0.25 + 0.5 * kEndTol, 0.5), list);    // a on the end
    EXPECT_EQ(findFitParamt(list, 0.25 + 2 * kEndTol, 0.5), nullptr);   // a just past it
    EXPECT_EQ(findFitParamt(list, 0.5, 0.4), nullptr);                  // reversed
    EXPECT_EQ(findFitParamt(list, 0.1, 0.1 + 0.5 * kEndTol), nullptr);  // degenerate
    paramt* inner = listOf({{0.3, 0.4}});
    EXPECT_EQ(findFitParamt(inner, 0.2, 0.5), inner);  // lies within
    EXPECT_EQ(findFitParamt(nullptr, 0.2, 0.5), nullptr);
    freeParamt(inner);
    freeParamt(list);
}

}  // namespace
