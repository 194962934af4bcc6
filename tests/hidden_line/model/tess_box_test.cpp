// Flat-faced tessellators: boxes and wedges turned every way are closed solids drawn by their
// edges alone; bad input gives null; failed allocations give null and leak nothing.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

TEST(FlatFacedSolids, TurnedEveryWayAreClosedAndDrawnByTheirEdges) {
    const auto dirs = randomUnitVectors(40, 7);
    for (std::size_t i = 0; i + 1 < dirs.size(); ++i) {
        const P u = dirs[i], w = add(dirs[i + 1], dirs[i], -vecDot(dirs[i], dirs[i + 1]));
        const P v = vecNormalize(w), o{1, -2, 5};
        if (norm(w) < 0.1)
            continue;
        expectTrueSolid(ep_divide_box(3, 2, 1, o, u, v, 1), Solid{}, "box " + std::to_string(i));
        // A wedge extruded by a negative height is wound outward (a positive one inward).
        if (std::fabs(vecCross(u, v).z) > 0.1)
            expectTrueSolid(ep_divide_wed(add(o, u, 2), o, add(o, v, 1.5), -2), Solid{},
                            "wedge " + std::to_string(i));
    }
    // Prisms of whatever ring count their radius takes, up to 1e15 long: the box is the extent
    // of their points.
    for (double len : {1.0, 1e9, 1e15}) {
        for (double r : {0.1, 1.0, 2.9, 3.1, 100.0}) {
            const P a{0.3, -0.2, 0.1};
            _s_hd_prof_* pri =
                ep_divide_pri(a, add(a, {0.6, 0.48, 0.64}, len), add(a, {0.8, -0.6, 0}, r), 0);
            ASSERT_NE(pri, nullptr) << len << " " << r;
            EXPECT_TRUE(enginetest::boxHoldsPoints(pri, true)) << len << " " << r;
            freeHDProfObjectPointer(pri);
        }
    }
}

// NaN and infinite sizes and points, prism side counts out of range, polylines that are null,
// a single point, a loop or hold NaN.
TEST(FlatFacedSolids, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, bad{0, kInf, 0}, top{0, 0, 5};
    PointList loop(xy({0, 0, 3, -1, 1, 4})), nan(xy({0, 0, 3, kNaN, 1, 4})),
        list(xy({0, 0, 1, 0, 1, 1}));
    loop.head->next->next->next = loop.head->next;  // closes on itself: refused, not walked
    expectRefused({ep_divide_box(kNaN, 1, 1, o, x, y, 1), ep_divide_box(1, 1, 1, o, x, bad, 1),
                   ep_divide_wed(o, x, y, kInf), ep_divide_pri(o, {0, 0, kNaN}, x, 6),
                   ep_divide_pri(o, top, x, -1), ep_divide_pri(o, top, x, 100001),
                   ep_divide_pln(o, bad), ep_divide_plns(nullptr),
                   ep_divide_plns(nan.head->next->next), ep_divide_plns(loop.head),
                   ep_divide_plns(nan.head)});
    loop.head->next->next->next = nullptr;
    expectAllocFailuresGiveNull(
        {[&] { return ep_divide_box(1, 2, 3, o, x, y, 1); },
         [&] { return ep_divide_wed(x, o, y, 2); }, [&] { return ep_divide_pri(o, top, x, 5); },
         [&] { return ep_divide_pln(o, x); }, [&] { return ep_divide_plns(list.head); }});
}

}  // namespace
