#include "clip_params.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "clipping/clip_test_support.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::kTwoPi;
using vgtest::listOf;

constexpr double kEndTol = 1e-6;  // interval ends closer than this are the same end
constexpr double kIn = 0.5 * kEndTol;
constexpr double kOut = 2.0 * kEndTol;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// The tolerance boundaries of one cut [a, b] on a list: the return value and the list after.
TEST(SubParamt, CutsAtTheToleranceBoundaries) {
    const struct {
        const char* id;
        bool isArc;
        Intervals list;
        double a, b;
        bool ok;
        Intervals want;
    } cases[] = {
        {"exact cover", false, {{.2, .4}, {.6, .8}}, .2 + kIn, .4, true, {{.6, .8}}},
        {"too short", false, {{0, 1}}, .5, .5 + kIn, false, {{0, 1}}},
        {"just long enough", false, {{0, 1}}, .5, .5 + kOut, true, {{0, .5}, {.5 + kOut, 1}}},
        {"reversed", false, {{0, 1}}, .6, .4, false, {{0, 1}}},
        {"touching the end", false, {{0, 1}}, 1, 1.5, true, {{0, 1}}},
        {"within tol of the end", false, {{0, 1}}, 1 - kIn, 1.5, true, {{0, 1}}},
        {"past tol of the end", false, {{0, 1}}, 1 - kOut, 1.5, true, {{0, 1 - kOut}}},
        {"within tol of the start", false, {{0, 1}}, -.5, kIn, true, {{0, 1}}},
        {"NaN end", false, {{0, 1}}, kNaN, .5, false, {{0, 1}}},
        {"NaN angle", true, {{0, 1}}, .2, kNaN, false, {{0, 1}}},
        {"infinite angle", true, {{0, 1}}, .2, kInf, false, {{0, 1}}},
        // A wrapping cut trims a plain interval only at its start: the part above 5.5 stays.
        {"wrapping cut", true, {{0, kTwoPi}}, 5.5, .5, true, {{.5, kTwoPi}}},
        {"wrapping interval split", true, {{4, 1}}, 0, .5, true, {{4, 0}, {.5, 1}}},
        {"reversed arc cut is a wrap", true, {{1, 2}}, 1.5, 1.2, true, {{1.2, 2}}},
        {"too short arc cut", true, {{-1, .5}}, 3, 3 + kIn, false, {{-1, .5}}},
        // A cut that meets nothing still brings starts below 0 into the turn.
        {"normalisation", true, {{-1, .5}, {1, 2}}, 3, 4, true, {{kTwoPi - 1, .5}, {1, 2}}},
        {"through 0 on one through 0",
         true,
         {{3.92699, 0}},
         5.49779,
         0,
         true,
         {{3.92699, 5.49779}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        paramt* list = listOf(c.list);
        EXPECT_EQ(subParamt(list, c.a, c.b, c.isArc), c.ok);
        EXPECT_EQ(intervalsOf(list), c.want);
        freeParamt(list);
    }
}

bool holds(const Intervals& iv, double x) {
    for (const auto& i : iv) {
        if (i.second < i.first ? (x >= i.first || x <= i.second) : (x >= i.first && x <= i.second))
            return true;
    }
    return false;
}

bool nearAnEnd(const Intervals& iv, double x) {
    for (const auto& i : iv) {
        if (std::fabs(x - i.first) < 4 * kEndTol || std::fabs(x - i.second) < 4 * kEndTol)
            return true;
    }
    return false;
}

// Random cuts on lines and circles: line intervals stay sorted, disjoint and in [0, 1], and a
// cut removes exactly its own stretch (sampled away from the ends, where the tolerance decides);
// arc intervals stay in [0, 2pi] and their gaps are sorted, disjoint and hidden.
TEST(IntervalLists, RandomCutsKeepTheListsInOrderAndRemoveOnlyTheCut) {
    vgtest::Lcg next(777);
    for (int round = 0; round < 200; ++round) {
        paramt* line = listOf({{0, 1}});
        for (int k = 0; k < 6; ++k) {
            const double a = next(-0.1, 1.1), b = next(-0.1, 1.1);
            const Intervals before = intervalsOf(line);
            subParamt(line, a, b, false);
            const Intervals iv = intervalsOf(line);
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
                EXPECT_EQ(holds(iv, x), holds(before, x) && !cut)
                    << "at " << x << " after cutting " << a << ".." << b << " from "
                    << ::testing::PrintToString(before) << ": " << text;
            }
        }
        freeParamt(line);
        paramt* arc = listOf({{0, kTwoPi}});
        for (int k = 0; k < 4; ++k)
            subParamt(arc, next(0, kTwoPi), next(0, kTwoPi), true);
        const Intervals iv = intervalsOf(arc);
        const std::string text = ::testing::PrintToString(iv);
        for (const auto& i : iv) {
            EXPECT_GE(std::min(i.first, i.second), 0) << text;
            EXPECT_LE(std::max(i.first, i.second), kTwoPi) << text;
        }
        paramt* gaps = getHideParamt(arc, 0, kTwoPi, true);
        const Intervals g = intervalsOf(gaps);
        for (std::size_t j = 0; j < g.size(); ++j) {
            EXPECT_LT(g[j].first, g[j].second) << ::testing::PrintToString(g);
            if (j > 0) {
                EXPECT_LE(g[j - 1].second, g[j].first) << ::testing::PrintToString(g);
            }
            EXPECT_FALSE(holds(iv, 0.5 * (g[j].first + g[j].second)))
                << "a gap's middle is visible in " << text;
        }
        freeParamt(gaps);
        freeParamt(arc);
    }
}

}  // namespace
