#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <utility>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace enginetest;

// An axis-aligned box [x0, x1] x [y0, y1] x [z0, z1].
_s_hd_prof_* block(P lo, P hi) {
    return ep_divide_box(hi.x - lo.x, hi.y - lo.y, hi.z - lo.z, lo, {1, 0, 0}, {0, 1, 0}, 1);
}

// The lines appended behind the object's first `skip` lines.
std::vector<Piece> linesAfter(const _s_hd_prof_* obj, size_t skip) {
    std::vector<Piece> all = piecesOf(obj->proline);
    return std::vector<Piece>(all.begin() + static_cast<long>(skip), all.end());
}

// How many of the lines run from a to b, either way round.
int countSame(const std::vector<Piece>& lines, P a, P b, double tol) {
    int n = 0;
    for (const Piece& l : lines)
        n += sameSeg(l, a, b, tol) ? 1 : 0;
    return n;
}

// Box A = [0, 2]^3 and box B poking through A's right side and top, registered in turn.
std::pair<_s_hd_prof_*, _s_hd_prof_*> registerPokingBoxes() {
    _s_hd_prof_* registry[3] = {};
    int count = 0;
    for (_s_hd_prof_* o : {block({0, 0, 0}, {2, 2, 2}), block({1, 0.5, 1}, {3, 1.5, 3})})
        kestFaceIntersect(o, registry, count, 2);
    return {registry[0], registry[1]};
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
    auto [a, b] = registerPokingBoxes();
    Owned boxes{{a, b}};
    EXPECT_EQ(piecesOf(a->proline).size(), 12u);  // axis-aligned: its faces only touch
    const std::vector<Piece> added = linesAfter(b, 12);
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

TEST(KestFaceIntersect, TurnedBoxMeetsItselfAlongItsEdges) {
    // Turned, a box's neighbouring faces overlap in their extents: each pair, taken both ways,
    // adds a segment along the edge they share.
    Owned owned{{cornerCube({0, 0, 0})}};
    _s_hd_prof_* cube = owned.objs[0];
    const std::vector<Piece> edges = piecesOf(cube->proline);
    _s_hd_prof_* registry[1] = {};
    int count = 0;
    kestFaceIntersect(cube, registry, count, 0);
    const std::vector<Piece> added = linesAfter(cube, 12);
    EXPECT_EQ(added.size(), 24u);
    for (const Piece& got : added)
        EXPECT_EQ(countSame(edges, got.a, got.b, 1e-9), 1);
}

TEST(KestFaceIntersect, ObjectsWithoutLinesOrFacesOnlyRegister) {
    // Faces that cut through the box but no line to attach the segments to.
    _s_hd_prof_* box = block({0, 0, 0}, {2, 2, 2});
    _s_hd_prof_* bare = makeObject({{{1, -1, 1}, {1, 3, 1}, {1, 3, 3}}}, {});
    _s_hd_prof_* lines = makeObject({}, {{{0, 0, 0}, {5, 5, 5}}});
    _s_hd_prof_* nanFace =
        makeObject({{{1, -1, 1}, {1, 3, kNaN}, {1, 3, 3}}}, {{{1, 1, 1}, {1, 2, 2}}});
    _s_hd_prof_* registry[5] = {};
    int count = 0;
    for (_s_hd_prof_* o : {box, bare, lines, static_cast<_s_hd_prof_*>(nullptr), nanFace})
        kestFaceIntersect(o, registry, count, 4);
    EXPECT_EQ(count, 5);
    EXPECT_TRUE(bare->proline == nullptr && piecesOf(lines->proline).size() == 1 &&
                piecesOf(nanFace->proline).size() == 1 && piecesOf(box->proline).size() == 12);
    for (_s_hd_prof_* o : {box, bare, lines, nanFace})
        freeHDProfObjectPointer(o);
}

TEST(KestFaceIntersect, FailedAllocationAddsNoLineAndLeaksNothing) {
    vgtest::forEachAllocationFailure([] {
        auto [a, b] = registerPokingBoxes();
        Owned boxes{{a, b}};
        if (a != nullptr && b != nullptr) {
            const size_t lines = piecesOf(b->proline).size();
            EXPECT_TRUE(lines == 12 || lines == 18) << lines;  // all the loop or none of it
        }
    });
}

}  // namespace
