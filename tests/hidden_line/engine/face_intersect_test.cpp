#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace enginetest;

// How many of the lines run from a to b, either way round.
int countSame(const std::vector<Piece>& lines, P a, P b, double tol) {
    int n = 0;
    for (const Piece& l : lines)
        n += sameSeg(l, a, b, tol) ? 1 : 0;
    return n;
}

// Registers the objects in turn with the registry bound max; returns the count.
int registerAll(const std::vector<_s_hd_prof_*>& objs, int max) {
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int count = 0;
    for (_s_hd_prof_* o : objs)
        kestFaceIntersect(o, registry.data(), count, max);
    return count;
}

// Box A = [0, 2]^3 and box B poking through A's right side and top, registered in turn.
void registerPokingBoxes(Owned& boxes) {
    boxes.objs = {ep_divide_box(2, 2, 2, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 1),
                  ep_divide_box(2, 1, 2, {1, 0.5, 1}, {1, 0, 0}, {0, 1, 0}, 1)};
    registerAll(boxes.objs, 2);
}

TEST(KestFaceIntersect, FacesMeetingAlongASharedEdgeAddNothingButCrossingFacesDo) {
    // Turned, a box's neighbouring faces overlap in their extents and meet along the edge they
    // share; so do the faces of two turned boxes standing edge to edge. Neither adds a line.
    const double h = std::sqrt(0.5);
    Owned boxes{{cornerCube({5, 5, 5}),
                 ep_divide_box(1, 1, 1, {0, 0, 0}, {h, h, 0}, {0, 0.6, 0.8}, 1),
                 ep_divide_box(1, 1, 1, {0, 0, 0}, {h, h, 0}, {0, -0.6, -0.8}, 1)}};
    registerAll(boxes.objs, 3);
    for (const _s_hd_prof_* box : boxes.objs)
        EXPECT_EQ(piecesOf(box->proline).size(), 12u);
    // Two faces of one object that pass through each other meet along their crossing.
    Owned cross{{makeObject({{{-1, 0, -1}, {1, 0, -1}, {1, 0, 1}, {-1, 0, 1}},
                             {{0, -1, -1}, {0, 1, -1}, {0, 1, 1}, {0, -1, 1}}},
                            {{{-1, 0, -1}, {1, 0, -1}}})}};
    registerAll(cross.objs, 1);
    const std::vector<Piece> lines = piecesOf(cross.objs[0]->proline);
    ASSERT_EQ(lines.size(), 3u);  // the line, and the crossing found from each face's side
    EXPECT_EQ(countSame(lines, {0, 0, -1}, {0, 0, 1}, 1e-12), 2);
}

TEST(KestFaceIntersect, FailedAllocationAddsNoLineAndLeaksNothing) {
    vgtest::forEachAllocationFailure([] {
        Owned boxes;
        registerPokingBoxes(boxes);
        if (boxes.objs[0] != nullptr && boxes.objs[1] != nullptr) {
            const size_t lines = piecesOf(boxes.objs[1]->proline).size();
            EXPECT_TRUE(lines == 12 || lines == 18) << lines;  // all the loop or none of it
        }
    });
}

}  // namespace
