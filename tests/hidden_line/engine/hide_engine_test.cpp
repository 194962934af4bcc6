#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "scene/plant_scene.h"

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

TEST(KestHideObject, MatchesTheReferenceNodeForNode) {
    const struct {
        const char* id;
        std::vector<vgscene::Primitive> prims;
    } scenes[] = {
        {"built-in plant", vgscene::builtinPlant()},
        {"curved solids", curvedScene()},
        {"150 primitives, seed 1", vgscene::generatePlant(150, 1)},
        {"150 primitives, seed 7", vgscene::generatePlant(150, 7)},
        {"400 primitives, seed 3", vgscene::generatePlant(400, 3)},
        {"400 primitives, seed 11", vgscene::generatePlant(400, 11)},
    };
    for (const auto& s : scenes) {
        SCOPED_TRACE(s.id);
        expectEngineMatchesReference(registeredScene(s.prims), registeredScene(s.prims));
    }
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

TEST(KestHideObject, MatchesTheReferenceOnSweptSolids) {
    const auto prims = sweptScene();
    const auto objs = registeredScene(prims);
    EXPECT_EQ(objs.size(), prims.size()) << "a swept primitive gave no object";
    expectEngineMatchesReference(objs, registeredScene(prims));
}

// A small deterministic generator (the same on every machine).
class Lcg {
public:
    explicit Lcg(std::uint32_t seed) : state_(seed) {}
    double unit() {  // in [0, 1)
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(state_ >> 11) * 0x1.0p-53;
    }
    double in(double lo, double hi) { return lo + (hi - lo) * unit(); }
    bool chance(double p) { return unit() < p; }

private:
    std::uint64_t state_;
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

TEST(KestHideObject, MatchesTheReferenceOnAwkwardScenes) {
    for (std::uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        expectEngineMatchesReference(awkwardScene(seed), awkwardScene(seed));
    }
}

}  // namespace
