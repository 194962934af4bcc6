#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace enginetest;

using Pass = _s_hd_proline_* (*)(_s_hd_prof_**, int);
// Every behaviour of the pass holds for the engine and for the reference alike.
const Pass kPasses[] = {kestHideObject, kestHideObjectReference};

_s_hd_proline_* listOf(const std::vector<Seg>& segs) {
    ProlineChain chain;
    for (const Seg& s : segs)
        chain.append(s.first, s.second);
    return chain.head;
}

std::vector<Seg> visibleOf(const std::vector<Seg>& hidden, P p, P q) {
    _s_hd_proline_* visible = nullptr;
    EXPECT_TRUE(getVisibleProline(listOf(hidden), p, q, visible));
    std::vector<Seg> out = segsOf(visible);
    for (const _s_hd_proline_* v = visible; v != nullptr; v = v->next)
        EXPECT_EQ(v->owner, -1);
    releaseProline(visible);
    return out;
}

double length(const Seg& s) {
    return std::sqrt(pointDist2(s.first, s.second));
}

TEST(GetVisibleProline, MergesSortsAndComplements) {
    const P p = {0, 0, 0};
    const P q = {10, 0, 0};
    auto at = [](double x) { return P{x, 0, 0}; };
    const struct {
        const char* id;
        std::vector<Seg> hidden;
        std::vector<Seg> visible;
    } cases[] = {
        {"none hidden", {}, {{at(0), at(10)}}},
        {"touching pieces merge",
         {{at(2), at(4)}, {at(4), at(6)}},
         {{at(0), at(2)}, {at(6), at(10)}}},
        {"overlap, out of order",
         {{at(5), at(8)}, {at(1), at(6)}},
         {{at(0), at(1)}, {at(8), at(10)}}},
        {"second inside first",
         {{at(1), at(8)}, {at(3), at(4)}},
         {{at(0), at(1)}, {at(8), at(10)}}},
        {"first inside second",
         {{at(3), at(4)}, {at(1), at(8)}},
         {{at(0), at(1)}, {at(8), at(10)}}},
        {"chain merged from the far end",
         {{at(6), at(7)}, {at(2), at(3)}, {at(3), at(6)}},
         {{at(0), at(2)}, {at(7), at(10)}}},
        {"disjoint, gaps between",
         {{at(4), at(5)}, {at(1), at(2)}, {at(7), at(10)}},
         {{at(0), at(1)}, {at(2), at(4)}, {at(5), at(7)}}},
        {"from the near end", {{at(0), at(3)}}, {{at(3), at(10)}}},
        {"all of it", {{at(0), at(6)}, {at(5), at(10)}}, {}},
        {"gap below the fine tolerance",
         {{at(1), at(3)}, {at(3 + 4e-7), at(5)}},
         {{at(0), at(1)}, {at(5), at(10)}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        const std::vector<Seg> got = visibleOf(c.hidden, p, q);
        ASSERT_EQ(got.size(), c.visible.size());
        for (size_t i = 0; i < got.size(); ++i)
            EXPECT_TRUE(near(got[i].first, c.visible[i].first) &&
                        near(got[i].second, c.visible[i].second))
                << i;
    }
}

TEST(HideLineByProf, OrientsItsCopyAndTestsOnlyFacesWhoseExtentsTouch) {
    // An end-on line is hidden by any face it gets to (no inside test): the triangle's
    // extents reach it although the triangle itself does not.
    _s_hd_prof_* tri = makeObject({{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}}, {});
    for (double x : {1.0, 5.0}) {
        SCOPED_TRACE(x);
        ProlineChain hidden;
        const P a = {x, 3, 9};
        const P b = {x, 3, 2};
        ASSERT_TRUE(hideLineByProf(a, b, tri->prosect, hidden));
        ASSERT_EQ(hidden.head != nullptr, x < 4);
        if (hidden.head != nullptr) {
            EXPECT_TRUE(near(hidden.head->start, b) && near(hidden.head->end, a));  // near first
        }
        releaseProline(hidden.head);
    }
    freeHDProfObjectPointer(tri);
}

// The closed outline of a face as lines.
std::vector<Seg> outline(const std::vector<P>& face) {
    std::vector<Seg> out;
    for (size_t k = 0; k < face.size(); ++k)
        out.emplace_back(face[k], face[(k + 1) % face.size()]);
    return out;
}

double visibleLength(const std::vector<Piece>& pieces, int owner) {
    double total = 0;
    for (const Piece& p : pieces)
        total += p.owner == owner ? length({p.a, p.b}) : 0.0;
    return total;
}

TEST(KestHideObject, NearSquareHidesTheCornerOfAFarSquare) {
    for (Pass pass : kPasses) {
        _s_hd_prof_* nearSq = makeObject({rect(0, 0, 2, 2, 0)}, outline(rect(0, 0, 2, 2, 0)));
        _s_hd_prof_* farSq = makeObject({rect(1, 1, 3, 3, 5)}, outline(rect(1, 1, 3, 3, 5)));
        const std::vector<Piece> out = hide(pass, {nearSq, farSq});
        EXPECT_NEAR(visibleLength(out, 0), 8, kCalcTol);
        EXPECT_NEAR(visibleLength(out, 1), 6, kCalcTol);  // its corner (1..2, 1..2) is behind
        EXPECT_EQ(out.size(), 8u);  // the far bottom and left edges keep one piece each
        freeHDProfObjectPointer(nearSq);
        freeHDProfObjectPointer(farSq);
    }
}

TEST(KestHideObject, CubeSeenFromACornerHidesItsOwnBackEdges) {
    for (Pass pass : kPasses) {
        _s_hd_prof_* cube = cornerCube({1, 2, 3});
        // The far corner is C6, where the sixth line ends (u, v and w all point away from the
        // viewer).
        const P far = segsOf(cube->proline)[5].second;
        const std::vector<Piece> out = hide(pass, {cube});
        ASSERT_EQ(out.size(), 9u);
        for (const Piece& piece : out) {
            EXPECT_EQ(piece.owner, 0);
            EXPECT_FALSE(near(piece.a, far, 1e-9) || near(piece.b, far, 1e-9));
            EXPECT_NEAR(length({piece.a, piece.b}), 2, 1e-9);  // each visible edge whole
            EXPECT_LE(piece.a.z, piece.b.z);                   // from its near end
        }
        freeHDProfObjectPointer(cube);
    }
}

TEST(KestHideObject, ConstantDepthLineIsReversedAtEveryCall) {
    for (Pass pass : kPasses) {
        _s_hd_prof_* obj = makeObject({}, {{{0, 0, 1}, {1, 0, 1}}, {{0, 1, 2}, {0, 1, 1}}});
        _s_hd_proline_* flat = obj->proline;
        _s_hd_proline_* sloped = flat->next;
        for (int call = 1; call <= 3; ++call) {
            SCOPED_TRACE(call);
            hide(pass, {obj});
            EXPECT_EQ(flat->start.x, call % 2 == 1 ? 1 : 0);          // swapped, back, swapped
            EXPECT_TRUE(sloped->start.z == 1 && sloped->end.z == 2);  // near end first, kept
        }
        freeHDProfObjectPointer(obj);
    }
}

TEST(KestHideObject, OwnersAreArrayIndicesAndNullEntriesAreSkipped) {
    for (Pass pass : kPasses) {
        _s_hd_prof_* a = makeObject({}, {{{0, 0, 0}, {1, 0, 0}}});
        _s_hd_prof_* b = makeObject({}, {{{5, 0, 0}, {6, 0, 0}}, {{5, 1, 0}, {6, 1, 0}}});
        const std::vector<Piece> out = hide(pass, {nullptr, a, nullptr, b});
        ASSERT_EQ(out.size(), 3u);
        EXPECT_TRUE(out[0].owner == 1 && out[1].owner == 3 && out[2].owner == 3);
        freeHDProfObjectPointer(a);
        freeHDProfObjectPointer(b);
    }
}

TEST(KestHideObject, LineOnlyTouchingAnObjectsBoxIsNotTestedAgainstIt) {
    // End-on lines (hidden whole by any face that tests them) just inside and exactly on the
    // right side of a square's box: the pass tests a line only against boxes that overlap its
    // range strictly.
    for (Pass pass : kPasses) {
        for (double x : {1.999, 2.0}) {
            SCOPED_TRACE(x);
            _s_hd_prof_* sq = makeObject({rect(0, 0, 2, 2, 0)}, {});
            _s_hd_prof_* dot = makeObject({}, {{{x, 1, 1}, {x, 1, 2}}});
            const std::vector<Piece> out = hide(pass, {sq, dot});
            EXPECT_EQ(out.size(), x < 2 ? 0u : 1u);
            freeHDProfObjectPointer(sq);
            freeHDProfObjectPointer(dot);
        }
    }
}

TEST(KestHideObject, BadInputEndsAndHidesNothingWrongly) {
    for (Pass pass : kPasses) {
        _s_hd_prof_* sq = makeObject({rect(0, 0, 2, 2, 0)}, outline(rect(0, 0, 2, 2, 0)));
        _s_hd_prof_* objs[] = {sq};
        EXPECT_EQ(pass(objs, 0), nullptr);
        EXPECT_EQ(pass(objs, -1), nullptr);
        EXPECT_EQ(pass(objs, INT_MIN), nullptr);
        EXPECT_EQ(pass(nullptr, 5), nullptr);
        // NaN in a face hides nothing; a NaN line comes back whole; a face of no area and an
        // object with neither faces nor lines change nothing.
        _s_hd_prof_* nanFace = makeObject({{{0, 0, -1}, {9, 0, -1}, {9, 9, kNaN}}}, {});
        _s_hd_prof_* nanLine = makeObject({}, {{{1, 1, 5}, {kNaN, 1, 5}}});
        _s_hd_prof_* flat = makeObject({rect(0, 1, 2, 1, -1)}, {});
        _s_hd_prof_* empty = makeObject({}, {});
        const std::vector<Piece> out = hide(pass, {sq, nanFace, nanLine, flat, empty});
        EXPECT_NEAR(visibleLength(out, 0), 8, kCalcTol);
        ASSERT_EQ(out.size(), 5u);
        EXPECT_TRUE(out[4].owner == 2 && std::isnan(out[4].b.x + out[4].a.x));
        for (_s_hd_prof_* o : {sq, nanFace, nanLine, flat, empty})
            freeHDProfObjectPointer(o);
    }
}

TEST(KestHideObject, ReleasesAllItBuiltWhenAnAllocationFails) {
    for (Pass pass : kPasses) {
        _s_hd_prof_* nearBox = ep_divide_box(2, 2, 2, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 1);
        _s_hd_prof_* farCube = cornerCube({1, 1, 5});
        _s_hd_prof_* objs[] = {nearBox, farCube};
        const long mallocs = vgtest::forEachAllocationFailure([&] {
            _s_hd_proline_* out = pass(objs, 2);
            releaseProline(out);
        });
        EXPECT_GT(mallocs, 10);
        freeHDProfObjectPointer(nearBox);
        freeHDProfObjectPointer(farCube);
    }
}

}  // namespace
