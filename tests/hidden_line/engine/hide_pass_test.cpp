#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <utility>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_pass.h"
#include "scene/plant_scene.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using namespace enginetest;

using Pass = _s_hd_proline_* (*)(_s_hd_prof_**, int);
// Every behaviour of the pass holds for the engine and for the reference alike.
const Pass kPasses[] = {kestHideObject, kestHideObjectReference};

TEST(GetVisibleProline, MergesSortsAndComplements) {
    // Pieces of the line (0, 0, 0) -> (10, 0, 0), given by their x.
    using Spans = std::vector<std::pair<double, double>>;
    const struct {
        const char* id;
        Spans hidden, visible;
    } cases[] = {
        {"none hidden", {}, {{0, 10}}},
        {"touching pieces merge", {{2, 4}, {4, 6}}, {{0, 2}, {6, 10}}},
        {"overlap, out of order", {{5, 8}, {1, 6}}, {{0, 1}, {8, 10}}},
        {"second inside first", {{1, 8}, {3, 4}}, {{0, 1}, {8, 10}}},
        {"first inside second", {{3, 4}, {1, 8}}, {{0, 1}, {8, 10}}},
        {"merged from the far end", {{6, 7}, {2, 3}, {3, 6}}, {{0, 2}, {7, 10}}},
        {"gaps between", {{4, 5}, {1, 2}, {7, 10}}, {{0, 1}, {2, 4}, {5, 7}}},
        {"from the near end", {{0, 3}}, {{3, 10}}},
        {"all of it", {{0, 6}, {5, 10}}, {}},
        {"gap below the fine tolerance", {{1, 3}, {3 + 4e-7, 5}}, {{0, 1}, {5, 10}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        ProlineChain hidden;
        for (const auto& s : c.hidden)
            hidden.append({s.first, 0, 0}, {s.second, 0, 0});
        _s_hd_proline_* visible = nullptr;
        ASSERT_TRUE(getVisibleProline(hidden.head, {0, 0, 0}, {10, 0, 0}, visible));
        const std::vector<Piece> got = piecesOf(visible);
        releaseProline(visible);
        ASSERT_EQ(got.size(), c.visible.size());
        for (size_t i = 0; i < got.size(); ++i) {
            EXPECT_TRUE(near(got[i].a, {c.visible[i].first, 0, 0}) &&
                        near(got[i].b, {c.visible[i].second, 0, 0}) && got[i].owner == -1)
                << i;
        }
    }
}

// The closed outline of a face as lines.
std::vector<Seg> outline(const std::vector<P>& face) {
    std::vector<Seg> out;
    for (size_t k = 0; k < face.size(); ++k)
        out.emplace_back(face[k], face[(k + 1) % face.size()]);
    return out;
}

double length(const Piece& p) {
    return std::sqrt(pointDist2(p.a, p.b));
}

double visibleLength(const std::vector<Piece>& pieces, int owner) {
    double total = 0;
    for (const Piece& p : pieces)
        total += p.owner == owner ? length(p) : 0.0;
    return total;
}

TEST(KestHideObject, NearSquareHidesTheCornerOfAFarSquare) {
    for (Pass pass : kPasses) {
        Owned sq{{makeObject({rect(0, 0, 2, 2, 0)}, outline(rect(0, 0, 2, 2, 0))),
                  makeObject({rect(1, 1, 3, 3, 5)}, outline(rect(1, 1, 3, 3, 5)))}};
        const std::vector<Piece> out = hide(pass, sq.objs);
        EXPECT_NEAR(visibleLength(out, 0), 8, kCalcTol);
        EXPECT_NEAR(visibleLength(out, 1), 6, kCalcTol);  // its corner (1..2, 1..2) is behind
        EXPECT_EQ(out.size(), 8u);  // the far bottom and left edges keep one piece each
    }
}

TEST(KestHideObject, CubeSeenFromACornerHidesItsOwnBackEdges) {
    for (Pass pass : kPasses) {
        Owned cube{{cornerCube({1, 2, 3})}};
        // The far corner is C6, where the sixth line ends (u, v and w all point away from the
        // viewer).
        const P far = piecesOf(cube.objs[0]->proline)[5].b;
        const std::vector<Piece> out = hide(pass, cube.objs);
        ASSERT_EQ(out.size(), 9u);
        for (const Piece& piece : out) {
            EXPECT_EQ(piece.owner, 0);
            EXPECT_FALSE(near(piece.a, far, 1e-9) || near(piece.b, far, 1e-9));
            EXPECT_NEAR(length(piece), 2, 1e-9);  // each visible edge whole
            EXPECT_LE(piece.a.z, piece.b.z);      // from its near end
        }
    }
}

TEST(KestHideObject, ConstantDepthLineIsReversedAtEveryCall) {
    for (Pass pass : kPasses) {
        Owned obj{{makeObject({}, {{{0, 0, 1}, {1, 0, 1}}, {{0, 1, 2}, {0, 1, 1}}})}};
        const _s_hd_proline_* flat = obj.objs[0]->proline;
        for (int call = 1; call <= 3; ++call) {
            SCOPED_TRACE(call);
            hide(pass, obj.objs);
            EXPECT_EQ(flat->start.x, call % 2 == 1 ? 1 : 0);  // swapped, back, swapped
            EXPECT_TRUE(flat->next->start.z == 1 && flat->next->end.z == 2);  // near end first
        }
    }
}

TEST(KestHideObject, EndOnLineIsTestedOnlyAgainstBoxesAndFacesItsRangeReaches) {
    // An end-on line is hidden whole by any face that tests it (no inside test). It is tested
    // against objects whose box overlaps its range strictly (a touch is not enough), and there
    // against the faces whose XY extents it reaches.
    const struct {
        double x, y;
        bool hidden;
    } cases[] = {
        {1, 3, true},   // in the triangle's extents, outside the triangle
        {5, 3, false},  // in the box, beyond both faces' extents
        {7.999, 1, true},
        {8, 1, false},  // just inside the box, on its right side
    };
    for (Pass pass : kPasses) {
        for (const auto& c : cases) {
            SCOPED_TRACE(testing::Message() << c.x << " " << c.y);
            Owned s{{makeObject({{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}, rect(6, 0, 8, 2, 0)}, {}),
                     makeObject({}, {{{c.x, c.y, 1}, {c.x, c.y, 2}}})}};
            EXPECT_EQ(hide(pass, s.objs).size(), c.hidden ? 0u : 1u);
        }
    }
}

TEST(KestHideObject, BadInputEndsAndOwnersStayArrayIndices) {
    for (Pass pass : kPasses) {
        // Null entries are skipped but keep their index. NaN in a face hides nothing; a NaN
        // line comes back whole; a face of no area and an empty object change nothing.
        Owned s{{nullptr, makeObject({rect(0, 0, 2, 2, 0)}, outline(rect(0, 0, 2, 2, 0))),
                 makeObject({{{0, 0, -1}, {9, 0, -1}, {9, 9, kNaN}}}, {}), nullptr,
                 makeObject({}, {{{1, 1, 5}, {kNaN, 1, 5}}}),
                 makeObject({rect(0, 1, 2, 1, -1)}, {}), makeObject({}, {})}};
        for (int n : {0, -1, INT_MIN})
            EXPECT_EQ(pass(s.objs.data(), n), nullptr) << n;
        EXPECT_EQ(pass(nullptr, 5), nullptr);
        const std::vector<Piece> out = hide(pass, s.objs);
        EXPECT_NEAR(visibleLength(out, 1), 8, kCalcTol);
        ASSERT_EQ(out.size(), 5u);
        EXPECT_TRUE(out[4].owner == 4 && std::isnan(out[4].b.x + out[4].a.x));
    }
}

TEST(KestHideObject, ReleasesAllItBuiltWhenAnAllocationFails) {
    for (Pass pass : kPasses) {
        Owned s{
            {ep_divide_box(2, 2, 2, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 1), cornerCube({1, 1, 5})}};
        const long mallocs = vgtest::forEachAllocationFailure([&] {
            _s_hd_proline_* out = pass(s.objs.data(), 2);
            releaseProline(out);
        });
        EXPECT_GT(mallocs, 10);
    }
}

}  // namespace

namespace {

// What the pass returns, on a plant: every visible piece lies on a line of its object (the
// object's lines in list order, each re-oriented near end first), the pieces of a line run from
// its near end in order and do not overlap, and each keeps within the line's ends.
TEST(KestHideObject, VisiblePiecesLieOnTheirLinesInOrderAndApart) {
    for (Pass pass : kPasses) {
        std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(vgscene::generatePlant(120, 4));
        kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
        _s_hd_proline_* out = pass(objs.data(), static_cast<int>(objs.size()));
        const _s_hd_proline_* v = out;
        long pieces = 0;
        for (size_t i = 0; i < objs.size(); ++i) {
            for (const _s_hd_proline_* l = objs[i]->proline; l != nullptr; l = l->next) {
                const P p = l->start;
                const P q = l->end;
                ASSERT_LE(p.z, q.z + 1e-12) << "a line is left near end first";
                const double len = pointDist(p, q);
                double reached = 0.0;  // how far along the line the pieces so far end
                // The pieces of this line: those that follow on it.
                while (v != nullptr && v->owner == static_cast<int>(i) && len > 0.0) {
                    const double s = pointDist(v->start, p);
                    const double e = pointDist(v->end, p);
                    const double offS = pointDist(v->start, linComb(1.0, p, s / len, vecSub(q, p)));
                    const double offE = pointDist(v->end, linComb(1.0, p, e / len, vecSub(q, p)));
                    if (offS > 1e-6 * (1 + len) || offE > 1e-6 * (1 + len) || s < reached - 1e-6 ||
                        e > len + 1e-6)
                        break;  // not on this line, or not after its last piece: the next line's
                    EXPECT_LE(s, e + 1e-9) << "a piece runs away from the near end";
                    reached = e;
                    v = v->next;
                    ++pieces;
                }
            }
            ASSERT_TRUE(v == nullptr || v->owner > static_cast<int>(i))
                << "a piece of object " << i << " lies on none of its lines";
        }
        EXPECT_EQ(v, nullptr);
        EXPECT_GT(pieces, 500);
        releaseProline(out);
        vgscene::releaseAll(objs);
    }
}

}  // namespace
