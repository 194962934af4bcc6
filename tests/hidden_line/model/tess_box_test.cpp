#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "clip_records.h"
#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_walk.h"
#include "hidden_line/model/solid_checks.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace hdtest;

void expectBox(const _s_hd_prof_* obj, std::vector<double> want) {
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(obj->box[i], want[i]) << "box value " << i;
    }
}

TEST(EpDivideBox, CornersLinesAndFacesComeInTheFixedOrder) {
    const std::vector<std::vector<int>> edges = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                                 {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    const std::vector<std::vector<int>> faces = {{1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7},
                                                 {0, 1, 5, 4}, {4, 5, 6, 7}, {3, 2, 1, 0}};
    for (int flag : {1, 0}) {
        SCOPED_TRACE(flag);
        const double h = flag != 0 ? 3 : -3;  // flag 0 builds below the base
        _s_hd_prof_* box = ep_divide_box(1, 2, 3, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, flag);
        ASSERT_NE(box, nullptr);
        expectBox(box, {1, 0, 2, 0, h > 0 ? h : 0, h > 0 ? 0 : h});
        const std::vector<P> corners = {{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {0, 2, 0},
                                        {0, 0, h}, {1, 0, h}, {1, 2, h}, {0, 2, h}};
        expectOrders(box, corners, edges, faces);
        freeHDProfObjectPointer(box);
    }
    // Unnormalised u lengthens its edge; parallel u and v give a flat but complete box.
    _s_hd_prof_* flat = ep_divide_box(1, 2, 3, {0, 0, 0}, {2, 0, 0}, {1, 0, 0}, 1);
    expectBox(flat, {4, 0, 0, 0, 0, 0});
    EXPECT_EQ(facesOf(flat).size(), 6u);
    freeHDProfObjectPointer(flat);
}

// A box turned every way is a closed solid wound outward whose lines are its twelve sharp
// edges; drawn alone it shows its outline and its front edges, nothing inside.
TEST(EpDivideBox, TurnedEveryWayItIsAClosedSolidDrawnAsADraughtsmanDrawsIt) {
    const auto dirs = randomUnitVectors(40, 7);
    for (std::size_t i = 0; i + 1 < dirs.size(); ++i) {
        const P u = dirs[i];
        // v: the next direction made square to u.
        const P w = dirs[i + 1];
        const double d = u.x * w.x + u.y * w.y + u.z * w.z;
        P v{w.x - d * u.x, w.y - d * u.y, w.z - d * u.z};
        const double l = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
        if (l < 0.1)
            continue;
        v = {v.x / l, v.y / l, v.z / l};
        _s_hd_prof_* box = ep_divide_box(3, 2, 1, {1, -2, 5}, u, v, 1);
        const std::string what = "box " + std::to_string(i);
        expectWellFormedFaces(box, what.c_str());
        expectClosedOutward(box, what.c_str());
        expectBoxHolds(box, what.c_str());
        expectLinesAreEdges(
            box, [](P, P) { return true; }, what.c_str());
        std::vector<P> corners;
        for (const auto& f : solid::faces(box))
            corners.insert(corners.end(), f.begin(), f.end());
        auto onEdge = [box](P p) {
            double best = HUGE_VAL;
            for (const auto& e : solid::lines(box->proline))
                best = std::min(best, solid::distToSegment(p, e.first, e.second));
            return best;
        };
        expectDrawingTrue(box, onEdge, corners, 1e-9, what.c_str());
        freeHDProfObjectPointer(box);
    }
}

TEST(EpDivideWed, CornersLinesAndFacesInTheFixedOrderWithTagsOneToFive) {
    _s_hd_prof_* wed = ep_divide_wed({1, 0, 0}, {0, 0, 0}, {0, 1, 0}, 2);
    ASSERT_NE(wed, nullptr);
    expectBox(wed, {1, 0, 1, 0, 2, 0});
    // Corners pa, pb, pc, then pa', pb', pc' moved along +Z.
    expectOrders(wed, {{1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {1, 0, 2}, {0, 0, 2}, {0, 1, 2}},
                 {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}},
                 {{1, 2, 5, 4}, {2, 0, 3, 5}, {0, 1, 4, 3}, {4, 5, 3}, {1, 0, 2}});
    int tag = 1;
    for (const auto& f : facesOf(wed)) {
        EXPECT_EQ(f.tag, tag++);
    }
    freeHDProfObjectPointer(wed);
}

TEST(EpDividePri, SidesFollowTheRingsAndUprightsJoinThem) {
    const struct {
        int n;
        size_t sides;
    } cases[] = {{3, 5}, {4, 5}, {6, 6}, {0, 31}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.n);
        _s_hd_prof_* pri = ep_divide_pri({0, 0, 0}, {0, 0, 5}, {2, 0, 0}, c.n);
        ASSERT_NE(pri, nullptr);
        const auto lines = linesOf(pri->proline);
        const auto faces = facesOf(pri);
        const size_t s = c.sides;
        ASSERT_EQ(faces.size(), s);
        ASSERT_EQ(lines.size(), 3 * s);
        EXPECT_TRUE(same(lines[0]->start, {2, 0, 0}));  // clockwise
        EXPECT_TRUE(lines[0]->end.y < 0);               // clockwise
        // Base chord, top chord and upright i share their start; the side face joins them.
        for (size_t i = 0; i < s; ++i) {
            const auto *k1 = lines[i], *k2 = lines[s + i], *up = lines[2 * s + i];
            EXPECT_TRUE(same(k2->start, {k1->start.x, k1->start.y, 5}, kOnCircleTol));
            EXPECT_EQ(k1->start.z, 0);
            EXPECT_TRUE(same(up->start, k1->start));
            EXPECT_TRUE(same(up->end, k2->start));
            EXPECT_TRUE(vgtest::samePoints(
                faces[i].pts, std::vector<P>{k1->start, k1->end, k2->end, k2->start}, 0.0))
                << i;
        }
        EXPECT_EQ(pri->box[0], 2);
        EXPECT_EQ(pri->box[4], 5);
        EXPECT_EQ(pri->box[5], 0);
        freeHDProfObjectPointer(pri);
    }
    for (int n : {-1, 100001, INT_MAX}) {
        EXPECT_EQ(ep_divide_pri({0, 0, 0}, {0, 0, 5}, {2, 0, 0}, n), nullptr) << n;
    }
    // A zero-length axis gives a flat prism of zero-area sides, not a failure.
    _s_hd_prof_* flat = ep_divide_pri({0, 0, 0}, {0, 0, 0}, {2, 0, 0}, 6);
    EXPECT_EQ(facesOf(flat).size(), 6u);
    freeHDProfObjectPointer(flat);
}

point* pointList(std::vector<VoGePoint3D> pts) {
    point* head = nullptr;
    for (auto p = pts.rbegin(); p != pts.rend(); ++p) {
        point* node = mallocPoint();
        node->pt = *p;
        node->next = head;
        head = node;
    }
    return head;
}

TEST(EpDividePlns, LinesRunThroughThePointsInListOrder) {
    _s_hd_prof_* pln = ep_divide_pln({1, 5, 2}, {4, 3, 9});
    expectBox(pln, {4, 1, 5, 3, 9, 2});
    expectOrders(pln, {{1, 5, 2}, {4, 3, 9}}, {{0, 1}}, {});
    freeHDProfObjectPointer(pln);

    point* pts = pointList({{0, 0, 0}, {3, -1, 2}, {1, 4, -5}});
    EXPECT_EQ(ep_divide_plns(nullptr), nullptr);
    EXPECT_EQ(ep_divide_plns(pts->next->next), nullptr);  // a single point
    _s_hd_prof_* pl = ep_divide_plns(pts);
    expectBox(pl, {3, 0, 4, -1, 2, -5});
    expectOrders(pl, {{0, 0, 0}, {3, -1, 2}, {1, 4, -5}}, {{0, 1}, {1, 2}}, {});
    freeHDProfObjectPointer(pl);
    // A list that closes on itself is refused, not walked forever; so is a NaN coordinate.
    pts->next->next->next = pts->next;
    EXPECT_EQ(ep_divide_plns(pts), nullptr);
    pts->next->next->next = nullptr;
    pts->next->pt.y = kNaN;
    EXPECT_EQ(ep_divide_plns(pts), nullptr);
    freePoint(pts);
}

TEST(EpDivideFlatFaced, NonFiniteInputGivesNullAndFailedAllocationsReleaseAll) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, bad{0, kInf, 0};
    EXPECT_EQ(ep_divide_box(kNaN, 1, 1, o, x, y, 1), nullptr);
    EXPECT_EQ(ep_divide_box(1, 1, 1, o, x, bad, 1), nullptr);
    EXPECT_EQ(ep_divide_wed(o, x, y, kInf), nullptr);
    EXPECT_EQ(ep_divide_pri(o, {0, 0, kNaN}, x, 6), nullptr);
    EXPECT_EQ(ep_divide_pln(o, bad), nullptr);
    point* list = pointList({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    const P top{0, 0, 5};
    expectNoLeaks({
        [&] { return ep_divide_box(1, 2, 3, o, x, y, 1); },
        [&] { return ep_divide_wed(x, o, y, 2); },
        [&] { return ep_divide_pri(o, top, x, 5); },
        [&] { return ep_divide_pln(o, x); },
        [&] { return ep_divide_plns(list); },
    });
    freePoint(list);
}

// Both rings of a prism whose count is chosen get the same count, and the box holds every
// line: axes far longer than the radius, radii about the limits of the chosen counts.
TEST(EpDividePri, ChosenCountIsOneForBothRingsAndTheBoxHoldsEveryLine) {
    for (double len : {1.0, 1e9, 1e15}) {
        for (double r : {0.1, 1.0, 2.9, 3.1, 100.0}) {
            const P pa{0.3, -0.2, 0.1};
            const P pb{pa.x + 0.6 * len, pa.y + 0.48 * len, pa.z + 0.64 * len};
            _s_hd_prof_* pri = ep_divide_pri(pa, pb, {pa.x + 0.8 * r, pa.y - 0.6 * r, pa.z}, 0);
            ASSERT_NE(pri, nullptr);
            const size_t faces = facesOf(pri).size();
            const std::string what = std::to_string(len) + " " + std::to_string(r);
            EXPECT_EQ(linesOf(pri->proline).size(), 3 * faces) << what;
            expectBoxHolds(pri, what.c_str());
            freeHDProfObjectPointer(pri);
        }
    }
}

}  // namespace
