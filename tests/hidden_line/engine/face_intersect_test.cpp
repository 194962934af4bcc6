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

// The lines behind an object's first 12 (a box's own edges).
std::vector<Piece> addedLines(const _s_hd_prof_* obj) {
    std::vector<Piece> all = piecesOf(obj->proline);
    all.erase(all.begin(), all.begin() + std::min<long>(12, static_cast<long>(all.size())));
    return all;
}

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

TEST(GetFaceInterLine, ParallelWithinTheToleranceMeetsNothing) {
    // A square through y = 1 tilted about X by theta against the square at z = 0: the normals'
    // dot product is cos(theta), within 1e-6 of 1 below theta = 1.414e-3.
    const HDFace floor = faceOf(rect(0, 0, 2, 2, 0));
    P a{}, b{};
    for (double theta : {1e-3, 2e-3}) {
        SCOPED_TRACE(theta);
        const double c = std::cos(theta);
        const double s = std::sin(theta);
        const HDFace tilted =
            faceOf({{0.5, 1 - c, -s}, {1.5, 1 - c, -s}, {1.5, 1 + c, s}, {0.5, 1 + c, s}});
        const bool met = getFaceInterLine(floor, tilted, a, b);
        ASSERT_EQ(met, theta > 1.5e-3);
        if (met) {
            EXPECT_EQ(countSame({{a, b, -1}}, {0.5, 1, 0}, {1.5, 1, 0}, 1e-9), 1);
        }
    }
    // Faces that do not reach each other, and a face of no area, meet nothing.
    const HDFace wall = faceOf({{5, 0, -1}, {5, 2, -1}, {5, 2, 1}, {5, 0, 1}});
    EXPECT_FALSE(getFaceInterLine(floor, wall, a, b));
    EXPECT_FALSE(getFaceInterLine(floor, faceOf(rect(0, 1, 2, 1, 0)), a, b));
}

TEST(KestFaceIntersect, RegistryBoundsAreKept) {
    _s_hd_prof_* obj = makeObject({}, {{{0, 0, 0}, {1, 0, 0}}});
    _s_hd_prof_* registry[4] = {};
    const struct {
        int count, max;
        bool stored;
    } cases[] = {
        {-1, 3, false}, {4, 3, false}, {0, 3, true}, {3, 3, true}, {INT_MAX, INT_MAX, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.count << " of " << c.max);
        int count = c.count;
        kestFaceIntersect(obj, registry, count, c.max);
        EXPECT_EQ(count, c.stored ? c.count + 1 : c.count);
        if (c.stored) {
            EXPECT_EQ(registry[c.count], obj);  // with count == max, at index max
        }
    }
    int count = 0;
    kestFaceIntersect(obj, nullptr, count, 3);  // no registry at all
    EXPECT_EQ(count, 0);
    freeHDProfObjectPointer(obj);
}

TEST(KestFaceIntersect, InterpenetratingBoxesGainTheirIntersectionLoop) {
    // The loop is three segments on each of the two sides of A that B pokes through.
    Owned boxes;
    registerPokingBoxes(boxes);
    EXPECT_EQ(piecesOf(boxes.objs[0]->proline).size(), 12u);  // axis-aligned: faces only touch
    const std::vector<Piece> added = addedLines(boxes.objs[1]);
    const std::vector<Seg> loop = {
        {{2, 0.5, 1}, {2, 0.5, 2}}, {{2, 1.5, 1}, {2, 1.5, 2}}, {{2, 0.5, 1}, {2, 1.5, 1}},
        {{1, 0.5, 2}, {2, 0.5, 2}}, {{1, 1.5, 2}, {2, 1.5, 2}}, {{1, 0.5, 2}, {1, 1.5, 2}},
    };
    ASSERT_EQ(added.size(), loop.size());
    for (const Seg& want : loop) {
        EXPECT_EQ(countSame(added, want.first, want.second, 1e-12), 1)
            << want.first.x << " " << want.first.y << " " << want.first.z;
    }
    for (const Piece& l : added)
        EXPECT_EQ(l.owner, -1);
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

TEST(KestFaceIntersect, ObjectsWithoutLinesOrFacesOnlyRegister) {
    // Faces that cut through the box but no line to attach the segments to; a null entry; a
    // face with a NaN vertex.
    Owned s{{ep_divide_box(2, 2, 2, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 1),
             makeObject({{{1, -1, 1}, {1, 3, 1}, {1, 3, 3}}}, {}),
             makeObject({}, {{{0, 0, 0}, {5, 5, 5}}}), nullptr,
             makeObject({{{1, -1, 1}, {1, 3, kNaN}, {1, 3, 3}}}, {{{1, 1, 1}, {1, 2, 2}}})}};
    EXPECT_EQ(registerAll(s.objs, 4), 5);
    const size_t lines[] = {12, 0, 1, 0, 1};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(piecesOf(s.objs[i] != nullptr ? s.objs[i]->proline : nullptr).size(), lines[i]);
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
