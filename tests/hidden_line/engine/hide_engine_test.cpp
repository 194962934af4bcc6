// The library's engine against the step-by-step reference pass, and its shortcuts one by one.
//
// What the comparison covers: the engine's own steps, which are all it adds to the reference,
// node for node and bit for bit: candidates found through the grid over the objects' boxes
// instead of the full scan, faces read and prepared once, the culls of faces that provably hide
// nothing (too far from the line, behind it, its outline apart, the line in front of its plane),
// the memo of behind tests, the stop once the first hidden piece is the whole line, and the
// merge in reused room. What it does not cover: the face test itself (hideLineByFace), the
// numeric tests under it and the merge rule, which both passes share; those have their own
// checks (hide_face_test.cpp: the face test against brute-force sampling; here: the on-segment
// and inside tests against measuring every angle; hide_pass_test.cpp: the pieces of a plant on
// their lines, from their near ends and apart, which checks the merge).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/box_index.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "hidden_line/engine/hd_pass.h"
#include "scene/plant_scene.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;

// The scene's objects, every one registered for face intersection.
std::vector<_s_hd_prof_*> registeredScene(const std::vector<vgscene::Primitive>& prims) {
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int count = 0;
    for (_s_hd_prof_* o : objs)
        kestFaceIntersect(o, registry.data(), count, static_cast<int>(objs.size()));
    return objs;
}

bool samePoint(const _s_hd_point_& a, const _s_hd_point_& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Node for node and bit for bit: the same pieces with the same owners in the same order.
void expectSameLists(const _s_hd_proline_* a, const _s_hd_proline_* b) {
    long k = 0;
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next, ++k) {
        ASSERT_TRUE(samePoint(a->start, b->start) && samePoint(a->end, b->end) &&
                    a->owner == b->owner)
            << "node " << k;
    }
    EXPECT_TRUE(a == nullptr && b == nullptr) << "lengths differ after " << k << " nodes";
}

// Runs both passes on two copies of a scene and compares the outputs and the re-oriented lines.
void expectEngineMatchesReference(std::vector<_s_hd_prof_*> forEngine,
                                  std::vector<_s_hd_prof_*> forReference) {
    const int n = static_cast<int>(forEngine.size());
    _s_hd_proline_* engine = kestHideObject(forEngine.data(), n);
    _s_hd_proline_* reference = kestHideObjectReference(forReference.data(), n);
    expectSameLists(engine, reference);
    for (int i = 0; i < n; ++i) {  // the re-oriented input lines agree too
        if (forEngine[i] != nullptr)
            expectSameLists(forEngine[i]->proline, forReference[i]->proline);
    }
    releaseProline(engine);
    releaseProline(reference);
    for (int i = 0; i < n; ++i) {
        freeHDProfObjectPointer(forEngine[i]);
        freeHDProfObjectPointer(forReference[i]);
    }
}

// Curved solids in the views where their outlines degenerate, cutting through each other: a
// pipe along the view axis entering a sphere, a cone seen into, an elbow seen along its bend
// axis and one along its tube, an elbow whose tube overlaps itself, heads facing the viewer and
// seen edge-on, a ring plate round a pipe.
std::vector<vgscene::Primitive> curvedScene() {
    using K = vgscene::Primitive::Kind;
    using P = _s_hd_point_;
    auto prim = [](K kind, double a, double b, double c) {
        vgscene::Primitive p;
        p.kind = kind;
        p.a = a;
        p.b = b;
        p.c = c;
        return p;
    };
    std::vector<vgscene::Primitive> out;
    auto cone = [&](P pa, P pb, double ra, double rb) {
        out.push_back(prim(K::Cone, ra, rb, 0));
        out.back().pa = pa;
        out.back().pb = pb;
    };
    auto round = [&](K kind, P center, P normal, double a, double b, double c) {
        out.push_back(prim(kind, a, b, c));
        out.back().center = center;
        out.back().normal = normal;
    };
    round(K::Sphere, {0, 0, 0}, {}, 2.0, 0, 0);
    cone({0, 0, -5}, {0, 0, 1}, 0.5, 0.5);               // along the view axis into the sphere
    cone({1, 1, -3}, {1.5, 1.2, 3}, 1.5, 0.2);           // seen into, crossing the sphere
    cone({-3, -1, 0}, {3, 1, 0.5}, 0.4, 0.8);            // across, cutting sphere and pipes
    round(K::Elbow, {4, 0, 0}, {0, 0, 1}, 0.5, 3.0, 0);  // bend axis along the view
    out.back().pa = {6, 0, 0};
    round(K::Elbow, {4, 3, 0}, {1, 0, 0}, 0.5, 1.5707963267948966, 0);  // end on at its start
    out.back().pa = {4, 5, 0};
    round(K::Elbow, {0, 5, 1}, {0.3, 0.4, 0.866}, 0.9, 6.283185307179586, 0);  // overlapping
    out.back().pa = {0.8 * 0.866, 5, 1 - 0.8 * 0.3};
    round(K::Head, {-4, 3, 0}, {0, 0, -1}, 1.2, 0.6, 0.1);  // facing the viewer
    round(K::Head, {-4, -3, 0}, {1, 0, 0}, 1.2, 0.6, 0.0);  // seen across
    round(K::RingPlate, {0, 0, -3}, {0, 0, 1}, 0.6, 1.6, 0.2);
    out.back().a0 = 0.5;
    out.back().a1 = 5.0;
    return out;
}

// Swept solids interlocking where their outlines degenerate: a member seen end-on through a
// comb-shaped plate facing the viewer, a plate seen edge-on across them, a transition whose
// circle faces the viewer and one seen from the side, a bend whose axis is the view axis and one
// seen across it, cutting the member.
std::vector<vgscene::Primitive> sweptScene() {
    using K = vgscene::Primitive::Kind;
    using P = _s_hd_point_;
    const std::vector<P> section = {{-1, -2, 0},   {1, -2, 0},     {1, -1.7, 0},    {0.2, -1.7, 0},
                                    {0.2, 1.7, 0}, {1, 1.7, 0},    {1, 2, 0},       {-1, 2, 0},
                                    {-1, 1.7, 0},  {-0.2, 1.7, 0}, {-0.2, -1.7, 0}, {-1, -1.7, 0}};
    const std::vector<P> comb = {{-5, -5, 0}, {5, -5, 0}, {5, 5, 0},  {3, 5, 0},   {3, -2, 0},
                                 {1, -2, 0},  {1, 5, 0},  {-1, 5, 0}, {-1, -2, 0}, {-5, -2, 0}};
    std::vector<vgscene::Primitive> out(7);
    out[0].kind = K::Member;
    out[0].outline = section;
    out[0].pa = {0, 0, -6};
    out[0].pb = {0, 0, 6};
    out[0].u = {0, 1, 0};
    out[1].kind = K::Plate;
    out[1].outline = comb;
    out[1].u = {0, 0, 0.5};
    out[2].kind = K::Plate;
    out[2].outline = {{-6, 1, -4}, {6, 1, -4}, {6, 1, 4}, {-6, 1, 4}};
    out[2].u = {0, 0.3, 0};
    for (int k = 3; k < 5; ++k) {
        out[static_cast<std::size_t>(k)].kind = K::Transition;
        out[static_cast<std::size_t>(k)].a = 3;
        out[static_cast<std::size_t>(k)].b = 2;
        out[static_cast<std::size_t>(k)].c = 1.2;
    }
    out[3].p = {-3, 3, -2};
    out[3].u = {1, 0, 0};
    out[3].v = {0, 1, 0};
    out[3].center = {-3.5, 3.2, 1};
    out[4].p = {4, -4, 0};
    out[4].u = {0, 0, 1};
    out[4].v = {1, 0, 0};
    out[4].center = {4, -1, 0.3};
    for (int k = 5; k < 7; ++k) {
        out[static_cast<std::size_t>(k)].kind = K::Bend;
        out[static_cast<std::size_t>(k)].outline = {
            {-0.5, -0.3, 0}, {0.5, -0.3, 0}, {0.5, 0.3, 0}, {-0.5, 0.3, 0}};
        out[static_cast<std::size_t>(k)].center = {0, 0, 0};
        out[static_cast<std::size_t>(k)].b = 4.0;
    }
    out[5].pa = {3, 0, 0};
    out[5].normal = {0, 0, 1};
    out[5].u = {0, 0, 1};
    out[6].pa = {0, 2.5, 0};
    out[6].normal = {1, 0, 0};
    out[6].u = {1, 0, 0};
    return out;
}

// r.in(lo, hi) uniform, r.chance(p) true with probability p.
struct Lcg : vgtest::Lcg {
    using vgtest::Lcg::Lcg;
    double unit() { return (*this)(); }
    double in(double lo, double hi) { return (*this)(lo, hi); }
    bool chance(double p) { return (*this)() < p; }
};

// Small faces and long and short lines placed where the engine's shortcuts are tight: ends
// just inside and outside the face tolerances, lines seen end-on or nearly so, lines and faces
// sharing points, faces of no area or with a NaN vertex, huge coordinates, null entries.
std::vector<_s_hd_prof_*> awkwardScene(std::uint32_t seed) {
    using enginetest::P;
    using enginetest::Seg;
    Lcg r(seed);
    std::vector<std::vector<P>> allFaces;
    std::vector<_s_hd_prof_*> objs;
    for (int o = 0; o < 40; ++o) {
        if (o % 9 == 4) {
            objs.push_back(nullptr);
            continue;
        }
        std::vector<std::vector<P>> faces;
        std::vector<Seg> lines;
        for (int k = 0; k < 4; ++k) {
            const P c = {r.in(0, 6), r.in(0, 6), r.in(-3, 3)};
            const double s = r.chance(0.5) ? r.in(0.01, 0.3) : r.in(0.3, 3);
            const P a = {c.x + s, c.y + r.in(-s, s), c.z + r.in(-s, s)};
            const P b = {c.x + r.in(-s, s), c.y + s, c.z + r.in(-s, s)};
            std::vector<P> f = {c, a, b};
            if (r.chance(0.5))  // a quadrilateral in (about) the same plane
                f.push_back({a.x + b.x - c.x, a.y + b.y - c.y, a.z + b.z - c.z});
            if (r.chance(0.08))
                f[2] = {2 * a.x - c.x, 2 * a.y - c.y, 2 * a.z - c.z};  // no area
            if (r.chance(0.04))
                f[1].z = enginetest::kNaN;
            faces.push_back(f);
            allFaces.push_back(f);
        }
        for (int k = 0; k < 12 && !allFaces.empty(); ++k) {
            const std::vector<P>& f = allFaces[static_cast<size_t>(
                r.in(0, 1) * 0.999 * static_cast<double>(allFaces.size()))];
            // One end on, near or just beyond a vertex of an earlier face (offsets straddle the
            // end-behind tolerance), the other near, far away or straight behind.
            const P v = f[static_cast<size_t>(r.in(0, 2.999))];
            const double off = r.chance(0.5) ? r.in(0.025, 0.07) : 0.0;
            P a = {v.x + (r.chance(0.5) ? off : -off), v.y + r.in(-off, off), v.z + r.in(-2, 2)};
            P b;
            const double pick = r.unit();
            if (pick < 0.25) {
                // From a point on the face's plane just off a corner, sideways and away: the
                // face's vertex and edge tolerances decide whether its start is hidden.
                const P mid = {(f[0].x + f[1].x + f[2].x) / 3, (f[0].y + f[1].y + f[2].y) / 3, 0};
                const double len = std::hypot(v.x - mid.x, v.y - mid.y);
                const double ox = (v.x - mid.x) / len;
                const double oy = (v.y - mid.y) / len;
                const double e = r.in(3e-6, 4e-5);
                const P n = geolib::triNormal(f[0], f[1], f[2]);
                a = {v.x + ox * e, v.y + oy * e, v.z - (n.x * ox + n.y * oy) * e / n.z};
                const double reach = r.chance(0.5) ? r.in(0.1, 3) : -r.in(0.1, 3);
                b = {a.x - oy * reach, a.y + ox * reach, a.z + r.in(0.01, 2)};
            } else if (pick < 0.4) {  // end-on or nearly, sometimes very long
                const double dz = r.chance(0.3) ? r.in(-600, 600) : r.in(-4, 4);
                b = {a.x + dz * r.in(-4e-4, 4e-4), a.y + dz * r.in(-2e-4, 2e-4), a.z + dz};
            } else if (pick < 0.5)
                b = {a.x + r.in(-20, 20), a.y + r.in(-20, 20), a.z + r.in(-5, 5)};  // long
            else
                b = {a.x + r.in(-1, 1), a.y + r.in(-1, 1), a.z + r.in(-1, 1)};
            if (r.chance(0.1))
                b.z = a.z;  // constant depth
            if (r.chance(0.03))
                b.x = enginetest::kNaN;
            if (r.chance(0.02))
                b.y = 1e12;
            lines.emplace_back(a, b);
        }
        objs.push_back(enginetest::makeObject(faces, lines));
    }
    return objs;
}

// Plants as big as the benchmark's, the curved and swept solids where their outlines
// degenerate, and the awkward scenes.
TEST(KestHideObject, MatchesTheReferenceNodeForNode) {
    const std::vector<vgscene::Primitive> scenes[] = {vgscene::builtinPlant(),
                                                      curvedScene(),
                                                      sweptScene(),
                                                      vgscene::generatePlant(150, 1),
                                                      vgscene::generatePlant(400, 3),
                                                      vgscene::generatePlant(400, 11),
                                                      vgscene::generatePlant(1500, 5)};
    for (const auto& s : scenes) {
        SCOPED_TRACE(s.size());
        const auto objs = registeredScene(s);
        for (const _s_hd_prof_* o : objs)
            EXPECT_NE(o, nullptr) << "a primitive gave no object";
        expectEngineMatchesReference(objs, registeredScene(s));
    }
    for (std::uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        expectEngineMatchesReference(awkwardScene(seed), awkwardScene(seed));
    }
}

// The engine's faces carry prepared edge data: the inside test, the whole face test and the
// intersection of two faces must answer with them exactly as without, on and just off vertices
// and edges (the vertex and on-edge tolerances straddled) and in between.
TEST(KestHideObject, PreparedFacesAnswerAsPlainOnes) {
    Lcg r(5);
    HDFace last{};
    FacePrep lastPrep{};
    for (int n = 0; n < 300; ++n) {
        SCOPED_TRACE(n);
        using enginetest::P;
        const P c = {r.in(-1, 1), r.in(-1, 1), r.in(-1, 1)};
        const double s = r.chance(0.3) ? r.in(1e-3, 0.05) : r.in(0.05, 3);
        const P a = {c.x + s, c.y + r.in(-s, s), c.z + r.in(-s, s)};
        const P b = {c.x + r.in(-s, s), c.y + s, c.z + r.in(-s, s)};
        P d = {a.x + b.x - c.x, a.y + b.y - c.y, a.z + b.z - c.z + r.in(-0.1, 0.1) * s};
        if (r.chance(0.1))
            d = {2 * a.x - c.x, 2 * a.y - c.y, 2 * a.z - c.z};  // no area
        _s_hd_sect_* chain = r.chance(0.5) ? mallocTriSect(c, a, b) : mallocQuadSect(c, a, b, d);
        HDFace face;
        ASSERT_TRUE(readFace(chain, face));
        freeHDSectPointer(chain);
        FacePrep prep;
        prepareFaceTests(face, prep);
        if (n > 0) {  // this face against the one before, both ways round
            for (int order = 0; order < 2; ++order) {
                const HDFace& f = order == 0 ? face : last;
                const HDFace& g = order == 0 ? last : face;
                P ends[4] = {};
                const bool plain = getFaceInterLine(f, g, ends[0], ends[1]);
                EXPECT_EQ(getFaceInterLine(f, order == 0 ? prep : lastPrep, g,
                                           order == 0 ? lastPrep : prep, ends[2], ends[3]),
                          plain);
                EXPECT_TRUE(samePoint(ends[0], ends[2]) && samePoint(ends[1], ends[3]));
            }
        }
        last = face;
        lastPrep = prep;
        for (int k = 0; k < 40; ++k) {
            const P u = face.v[k % face.count];
            const P w = face.v[(k + 1) % face.count];
            const double t = k < 8 ? 0.0 : r.in(-0.2, 1.2);
            const double off = r.chance(0.5) ? 0.0 : r.in(-3e-4, 3e-4);
            const P x = {u.x + t * (w.x - u.x) + off, u.y + t * (w.y - u.y) - off,
                         u.z + t * (w.z - u.z)};
            EXPECT_EQ(isPointInFace(x, face, prep), isPointInFace(x, face.count, face.v));
            const P y = {x.x + r.in(-2, 2), x.y + r.in(-2, 2), x.z + r.in(-2, 2)};
            P from[2] = {};
            P to[2] = {};
            const HideLine line = hideLineOf(x.z <= y.z ? x : y, x.z <= y.z ? y : x);
            const bool plain = hideLineByFace(line, face, from[0], to[0]);
            EXPECT_EQ(hideLineByFace(line, face, from[1], to[1], {nullptr, 0, &prep}), plain);
            EXPECT_TRUE(samePoint(from[0], from[1]) && samePoint(to[0], to[1]));
        }
    }
}

}  // namespace

namespace {

// Face intersection in one call against registering the objects one by one: the same lines,
// node for node, on every object.
void expectBatchMatchesOneByOne(std::vector<_s_hd_prof_*> batch,
                                std::vector<_s_hd_prof_*> oneByOne) {
    const int n = static_cast<int>(batch.size());
    kestFaceIntersectAll(batch.data(), n);
    std::vector<_s_hd_prof_*> registry(oneByOne.size() + 1, nullptr);
    int count = 0;
    for (_s_hd_prof_* o : oneByOne)
        kestFaceIntersect(o, registry.data(), count, n);
    for (int i = 0; i < n; ++i) {
        SCOPED_TRACE(i);
        if (batch[i] != nullptr)
            expectSameLists(batch[i]->proline, oneByOne[i]->proline);
        freeHDProfObjectPointer(batch[i]);
        freeHDProfObjectPointer(oneByOne[i]);
    }
}

TEST(KestFaceIntersectAll, MatchesRegisteringOneByOne) {
    const std::vector<vgscene::Primitive> scenes[] = {vgscene::builtinPlant(), curvedScene(),
                                                      vgscene::generatePlant(400, 3),
                                                      vgscene::generatePlant(3000, 5)};
    for (const auto& s : scenes) {
        SCOPED_TRACE(s.size());
        expectBatchMatchesOneByOne(vgscene::tessellateAll(s), vgscene::tessellateAll(s));
    }
    for (std::uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        expectBatchMatchesOneByOne(awkwardScene(seed), awkwardScene(seed));
    }
    kestFaceIntersectAll(nullptr, 3);  // nothing to do, nothing touched
}

// Each allocation of face intersection, of the engine (its grid, cached faces, memo and merge
// room) and of the reference failing in turn: all they built is released.
TEST(KestHideObject, ReleasesAllItBuiltWhenAnAllocationFails) {
    std::vector<vgscene::Primitive> prims = curvedScene();
    prims.resize(4);  // a sphere and three pipes through it
    for (auto pass : {kestHideObject, kestHideObjectReference}) {
        const long mallocs = vgtest::forEachAllocationFailure([&] {
            std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
            kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
            _s_hd_proline_* out = pass(objs.data(), static_cast<int>(objs.size()));
            releaseProline(out);
            vgscene::releaseAll(objs);
        });
        EXPECT_GT(mallocs, 100);
    }
}

// The grid yields, for any box, every object below the limit whose box touches it (NaN,
// infinite, inverted and huge boxes included), ascending and each once.
TEST(BoxIndex, YieldsEveryTouchingBoxAscendingAndOnce) {
    Lcg r(9);
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        const int n = 1 + static_cast<int>(r.in(0, 300));
        std::vector<_s_hd_prof_*> objs(static_cast<size_t>(n), nullptr);
        for (_s_hd_prof_*& o : objs) {
            if (r.chance(0.05))
                continue;  // a null entry
            o = mallocHDProfObject();
            ASSERT_NE(o, nullptr);
            const double x = r.in(-100, 100);
            const double y = r.in(-100, 100);
            const double w = r.chance(0.1) ? r.in(0, 150) : r.in(0, 4);
            const double h = r.chance(0.1) ? r.in(0, 150) : r.in(0, 4);
            const double box[6] = {x + w, x, y + h, y, 1, 0};
            std::copy(box, box + 6, o->box);
            const double odd = r.unit();
            if (odd < 0.03)
                o->box[static_cast<size_t>(r.in(0, 3.99))] = enginetest::kNaN;
            else if (odd < 0.06)
                o->box[0] = 1e300;
            else if (odd < 0.08)
                std::swap(o->box[0], o->box[1]);  // inverted
            else if (odd < 0.1)
                o->box[2] = std::numeric_limits<double>::infinity();
        }
        BoxIndex index;
        ASSERT_TRUE(index.build(objs.data(), n));
        std::vector<int> near(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            if (objs[i] == nullptr)
                continue;
            const int limit = r.chance(0.5) ? n : 1 + static_cast<int>(r.in(0, n - 0.01));
            const int found = index.near(objs[i]->box, limit, near.data());
            for (int k = 1; k < found; ++k)
                ASSERT_LT(near[k - 1], near[k]) << "object " << i;
            int at = 0;
            for (int j = 0; j < limit; ++j) {
                while (at < found && near[at] < j)
                    ++at;
                const bool yielded = at < found && near[at] == j;
                if (objs[j] == nullptr) {
                    EXPECT_FALSE(yielded) << "object " << i << " yields null " << j;
                } else if (xyBoxesTouch(objs[j]->box, objs[i]->box)) {
                    EXPECT_TRUE(yielded) << "object " << i << " misses " << j;
                }
            }
            if (found > 0) {
                EXPECT_LT(near[found - 1], limit);
            }
        }
        for (_s_hd_prof_* o : objs)
            freeHDProfObjectPointer(o);
    }
}

// The on-segment test decides without the angle away from the cosine where it turns: its
// answers are those of measuring the angle every time, on points straddling that cosine.
TEST(IsPointOnSeg, AnswersAsMeasuringTheAngleEveryTime) {
    auto measured = [](_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
        if (segmentReach(a, b).excludes(p))
            return 0;
        if (isSamePointFine(p, a) || isSamePointFine(p, b) || pointDist2(p, a) <= 1e-9 ||
            pointDist2(p, b) <= 1e-9)
            return 1;
        const double pa = pointDist(p, a);
        const double pb = pointDist(p, b);
        const double ab = pointDist(a, b);
        const double c =
            std::fmax(-1.0, std::fmin(1.0, (pa * pa + pb * pb - ab * ab) / (2.0 * pa * pb)));
        return std::fabs(2.0 * std::acos(c) - 6.2831885307179585) < 0.0005 ? 1 : 0;
    };
    Lcg r(13);
    int on = 0;
    for (int k = 0; k < 200000; ++k) {
        const _s_hd_point_ a = {r.in(-5, 5), r.in(-5, 5), r.in(-5, 5)};
        const _s_hd_point_ b = {r.in(-5, 5), r.in(-5, 5), r.in(-5, 5)};
        const double len = pointDist(a, b);
        const double t = r.in(0.05, 0.95);
        // Off the segment by about the distance at which the angle test turns there.
        const double turn = 2.484e-4 * len * t * (1 - t);
        const double d = turn * (1 + (r.chance(0.5) ? r.in(-1e-4, 1e-4) : r.in(-0.5, 0.5)));
        const _s_hd_point_ u = vecNormalize(vecCross(vecSub(b, a), {r.in(-1, 1), 1, 0.5}));
        const _s_hd_point_ p = linComb(1.0, linComb(1.0, a, t, vecSub(b, a)), d, u);
        const int expected = measured(p, a, b);
        on += expected;
        ASSERT_EQ(isPointOnSeg(p, a, b), expected) << k;
    }
    EXPECT_GT(on, 20000);
    EXPECT_LT(on, 180000);
}

}  // namespace

namespace {

TEST(AcosBound, StaysWithinItsBoundOfTheMeasuredAngle) {
    double worst = 0.0;
    for (int k = 0; k <= 2000000; ++k) {
        const double c = -1.0 + 2.0 * k / 2000000.0;
        worst = std::fmax(worst, std::fabs(acosBound(c) - std::acos(c)));
    }
    for (double c : {-1.0, -0.9999999999, 0.0, 1e-300, 0.9999999999, 1.0})
        worst = std::fmax(worst, std::fabs(acosBound(c) - std::acos(c)));
    EXPECT_LT(worst, 3e-8);
}

// The inside test decides from the rough angle sum away from its tolerance's edges: its answers
// are those of measuring every angle, on points in, on, near and off faces of every kind (off
// their plane too, where the sum sweeps through the tolerance's edge).
TEST(IsPointInFace, AnswersAsMeasuringEveryAngle) {
    auto measured = [](_s_hd_point_ p, int count, const _s_hd_point_* v) {
        for (int k = 0; k < count; ++k) {
            if (isPointOnSeg(p, v[k], v[(k + 1) % count]) != 0)
                return 1;
        }
        for (int k = 0; k < count; ++k) {
            if (pointDist2(p, v[k]) <= 1e-8)
                return 1;
        }
        _s_hd_point_ area = {0, 0, 0};
        for (int k = 1; k + 1 < count; ++k)
            area = vecAdd(area, vecCross(vecSub(v[k], v[0]), vecSub(v[k + 1], v[0])));
        area = vecNormalize(area);
        if (area.x == 0.0 && area.y == 0.0 && area.z == 0.0)
            return 0;
        double sum = 0.0;
        for (int k = 0; k < count; ++k) {
            const _s_hd_point_ a = v[k];
            const _s_hd_point_ b = v[(k + 1) % count];
            const double da2 = pointDist2(p, a);
            const double db2 = pointDist2(p, b);
            const double c =
                (da2 + db2 - pointDist2(a, b)) / (2.0 * std::sqrt(da2) * std::sqrt(db2));
            const double angle = std::acos(std::fmax(-1.0, std::fmin(1.0, c)));
            sum += vecDot(vecCross(vecSub(a, p), vecSub(b, p)), area) < 0.0 ? -angle : angle;
        }
        return std::fabs(std::fabs(sum) - 6.283185307179586) < 0.09 ? 1 : 0;
    };
    Lcg r(17);
    int inside = 0;
    for (int n = 0; n < 4000; ++n) {
        using P = _s_hd_point_;
        const P c = {r.in(-1, 1), r.in(-1, 1), r.in(-1, 1)};
        const double s = r.in(0.01, 3);
        const P a = {c.x + s, c.y + r.in(-s, s), c.z + r.in(-s, s)};
        const P b = {c.x + r.in(-s, s), c.y + s, c.z + r.in(-s, s)};
        const P d = {a.x + b.x - c.x + r.in(-s, s), a.y + b.y - c.y + r.in(-s, s),
                     a.z + b.z - c.z + (r.chance(0.5) ? 0.0 : r.in(-0.2, 0.2) * s)};
        const P v[4] = {c, a, b, d};
        const int count = r.chance(0.5) ? 3 : 4;
        const P normal = vecNormalize(vecCross(vecSub(a, c), vecSub(b, c)));
        for (int k = 0; k < 20; ++k) {
            const P u = v[k % count];
            const P w = v[(k + 1) % count];
            const double t = r.in(-0.3, 1.3);
            const double toward = r.in(-0.3, 1.0);
            const P centre = {(c.x + a.x + b.x) / 3, (c.y + a.y + b.y) / 3, (c.z + a.z + b.z) / 3};
            P p = linComb(1.0, u, t, vecSub(w, u));
            p = linComb(1.0, p, toward, vecSub(centre, p));
            const double lift = r.chance(0.5) ? 0.0 : r.in(-1, 1) * s * r.unit() * r.unit();
            p = linComb(1.0, p, lift, normal);
            const int expected = measured(p, count, v);
            inside += expected;
            ASSERT_EQ(isPointInFace(p, count, v), expected) << n << " " << k;
        }
    }
    EXPECT_GT(inside, 8000);
    EXPECT_LT(inside, 72000);
}

}  // namespace
