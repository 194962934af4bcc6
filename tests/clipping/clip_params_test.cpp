#include "clip_params.h"

#include <gtest/gtest.h>

#include "clipping/clip_test_support.h"

namespace {

using namespace geolib;
using vgtest::Intervals;
using vgtest::intervalsOf;
using vgtest::kTwoPi;
using vgtest::listOf;

constexpr double kIn = 0.5e-6, kOut = 2e-6;  // inside and outside the end tolerance 1e-6

// The tolerance boundaries of one cut [a, b] on a list: the return value and the list after.
TEST(SubParamt, CutsAtTheToleranceBoundaries) {
    const struct {
        bool isArc;
        Intervals list;
        double a, b;
        bool ok;
        Intervals want;
    } cases[] = {
        {false, {{.2, .4}, {.6, .8}}, .2 + kIn, .4, true, {{.6, .8}}},  // covers exactly
        {false, {{0, 1}}, .5, .5 + kIn, false, {{0, 1}}},               // too short
        {false, {{0, 1}}, .5, .5 + kOut, true, {{0, .5}, {.5 + kOut, 1}}},
        {false, {{0, 1}}, .6, .4, false, {{0, 1}}},  // reversed
        {false, {{0, 1}}, 1 - kIn, 1.5, true, {{0, 1}}},
        {false, {{0, 1}}, 1 - kOut, 1.5, true, {{0, 1 - kOut}}},
        {false, {{0, 1}}, vgtest::kNaN, .5, false, {{0, 1}}},
        {true, {{0, 1}}, .2, HUGE_VAL, false, {{0, 1}}},
        // A wrapping cut trims a plain interval only at its start: the part above 5.5 stays.
        {true, {{0, kTwoPi}}, 5.5, .5, true, {{.5, kTwoPi}}},
        {true, {{4, 1}}, 0, .5, true, {{4, 0}, {.5, 1}}},
        {true, {{1, 2}}, 1.5, 1.2, true, {{1.2, 2}}},  // a reversed arc cut is a wrap
        {true, {{3.92699, 0}}, 5.49779, 0, true, {{3.92699, 5.49779}}},
        {true, {{-1, .5}, {1, 2}}, 3, 4, true, {{kTwoPi - 1, .5}, {1, 2}}},  // into the turn
    };
    for (const auto& c : cases) {
        paramt* list = listOf(c.list);
        EXPECT_EQ(subParamt(list, c.a, c.b, c.isArc), c.ok) << c.a << " " << c.b;
        EXPECT_EQ(intervalsOf(list), c.want) << c.a << " " << c.b;
        freeParamt(list);
    }
}

// Random cuts on lines and circles: line intervals stay sorted, disjoint and in [0, 1], and a
// cut removes exactly its own stretch (sampled away from the ends, where the tolerance decides);
// arc intervals, whole or through angle 0, stay in [0, 2pi] and their gaps are sorted, disjoint
// and hidden.
TEST(IntervalLists, RandomCutsKeepTheListsInOrderAndRemoveOnlyTheCut) {
    vgtest::Lcg next(777);
    auto nearAnEnd = [](const Intervals& iv, double x) {
        for (const auto& i : iv) {
            if (std::fabs(x - i.first) < 4e-6 || std::fabs(x - i.second) < 4e-6)
                return true;
        }
        return false;
    };
    for (int round = 0; round < 200; ++round) {
        paramt* line = listOf({{0, 1}});
        for (int k = 0; k < 6; ++k) {
            const double a = next(-0.1, 1.1), b = next(-0.1, 1.1);
            const Intervals before = intervalsOf(line);
            subParamt(line, a, b, false);
            const Intervals iv = intervalsOf(line);
            ASSERT_TRUE(vgtest::ordered(iv, 0, 1)) << ::testing::PrintToString(iv);
            for (int q = 0; q <= 200; ++q) {
                const double x = q / 200.0;
                EXPECT_TRUE(nearAnEnd(before, x) || nearAnEnd({{a, b}}, x) ||
                            vgtest::holds(iv, x) ==
                                (vgtest::holds(before, x) && !(a < b && a < x && x < b)))
                    << x << " after cutting " << a << ".." << b;
            }
        }
        freeParamt(line);
        paramt* arc = listOf(round % 2 == 0 ? Intervals{{0, kTwoPi}}
                                            : Intervals{{kTwoPi, kTwoPi / 2 + 5e-7}});
        for (int k = 0; k < round % 5; ++k)
            subParamt(arc, next(0, kTwoPi), next(0, kTwoPi), true);
        const Intervals iv = intervalsOf(arc);
        for (const auto& i : iv) {
            EXPECT_GE(std::fmin(i.first, i.second), 0.0);
            EXPECT_LE(std::fmax(i.first, i.second), kTwoPi);
        }
        paramt* gaps = getHideParamt(arc, 0, kTwoPi, true);
        const Intervals g = intervalsOf(gaps);
        EXPECT_TRUE(vgtest::ordered(g, 0, kTwoPi)) << ::testing::PrintToString(g);
        for (const auto& i : g)
            EXPECT_FALSE(vgtest::holds(iv, 0.5 * (i.first + i.second))) << "a gap is visible";
        freeParamt(gaps);
        freeParamt(arc);
    }
}

}  // namespace
