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
// and inside tests against measuring every angle, and on every scene compared the pieces on
// their lines, from their near ends and apart, which checks the merge).
#include <gtest/gtest.h>

#include <cstdint>

#include "hidden_line/engine/hd_engine_fixtures.h"
#include "scene/plant_scene.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;
using enginetest::P;

// Node for node and bit for bit: the same pieces with the same owners in the same order.
void expectSameLists(const _s_hd_proline_* engine, const _s_hd_proline_* reference) {
    EXPECT_EQ(enginetest::firstDifference(engine, reference), -1)
        << "the engine and the reference part at that node";
}

// Two copies of a scene, one registered for face intersection in one call, the other object by
// object: the same lines on every object; then the engine on the one and the reference on the
// other: the same output and the same re-oriented lines. Given a third copy (registered as the
// first: the pass leaves each line near end first, which turns a level one round), the engine
// counts the work it does, as the benchmark reads it: the same result as the plain call on the
// third, every line counted once, and each count within the one before it (a line looks at its
// own object at least, tests at most the faces it looks at, and hides a piece in at most the
// tests it makes, lines stopped once hidden whole included).
void expectEngineMatchesReference(std::vector<_s_hd_prof_*> forEngine,
                                  std::vector<_s_hd_prof_*> forReference,
                                  std::vector<_s_hd_prof_*> forPlain = {}) {
    const int n = static_cast<int>(forEngine.size());
    kestFaceIntersectAll(forEngine.data(), n);
    kestFaceIntersectAll(forPlain.data(), static_cast<int>(forPlain.size()));
    enginetest::registerAll(forReference);
    const double lines = enginetest::countsOf(forEngine).lines;
    for (int pass = 0; pass < 2; ++pass) {
        for (int i = 0; i < n; ++i) {
            if (forEngine[i] != nullptr)
                expectSameLists(forEngine[i]->proline, forReference[i]->proline);
        }
        if (pass == 1)
            break;
        HidePassStats stats;
        _s_hd_proline_* engine = forPlain.empty()
                                     ? kestHideObject(forEngine.data(), n)
                                     : kestHideObjectMeasured(forEngine.data(), n, &stats);
        _s_hd_proline_* reference = kestHideObjectReference(forReference.data(), n);
        expectSameLists(engine, reference);
        if (!forPlain.empty()) {
            _s_hd_proline_* plain = kestHideObject(forPlain.data(), n);
            expectSameLists(engine, plain);
            releaseProline(plain);
            EXPECT_EQ(static_cast<double>(stats.lines), lines);
            EXPECT_GE(stats.candidatesScanned, stats.lines);
            EXPECT_GE(stats.facesScanned, stats.faceTests);
            EXPECT_GE(stats.faceTests, stats.hidingTests);
            EXPECT_GT(stats.hidingTests, 0);
            EXPECT_GT(stats.workingBytes, 0u);
        }
        // What the pass promises of its pieces, and every line left near end first.
        EXPECT_EQ(enginetest::piecesProblem(forEngine, engine), nullptr);
        for (const _s_hd_prof_* o : forEngine) {
            for (const _s_hd_proline_* l = o ? o->proline : nullptr; l != nullptr; l = l->next)
                ASSERT_FALSE(l->start.z > l->end.z) << "a line is left far end first";
        }
        releaseProline(engine);
        releaseProline(reference);
    }
    vgscene::releaseAll(forEngine);
    vgscene::releaseAll(forReference);
    vgscene::releaseAll(forPlain);
}

// Curved solids where their outlines degenerate, cutting through each other: a pipe along the
// view axis into a sphere, a cone seen into, elbows seen along their bend axis, end-on and
// overlapping themselves, heads facing the viewer and seen across, a ring plate round a pipe.
std::vector<vgscene::Primitive> degenerateScene() {
    using K = vgscene::Primitive::Kind;
    std::vector<vgscene::Primitive> out;
    auto put = [&](K kind, double a, double b, double c, P center, P normal, P pa = {}, P pb = {}) {
        out.push_back({kind, a, b, c, {}, {}, {}, pa, pb, {}, 0, center, normal, 0, 0, {}});
    };
    put(K::Sphere, 2.0, 0, 0, {0, 0, 0}, {});
    put(K::Cone, 0.5, 0.5, 0, {}, {}, {0, 0, -5}, {0, 0, 1});
    put(K::Cone, 1.5, 0.2, 0, {}, {}, {1, 1, -3}, {1.5, 1.2, 3});
    put(K::Cone, 0.4, 0.8, 0, {}, {}, {-3, -1, 0}, {3, 1, 0.5});
    put(K::Elbow, 0.5, 3.0, 0, {4, 0, 0}, {0, 0, 1}, {6, 0, 0});
    put(K::Elbow, 0.5, vgtest::kPi / 2, 0, {4, 3, 0}, {1, 0, 0}, {4, 5, 0});
    put(K::Elbow, 0.9, vgtest::kTwoPi, 0, {0, 5, 1}, {0.3, 0.4, 0.866},
        {0.8 * 0.866, 5, 1 - 0.8 * 0.3});
    put(K::Head, 1.2, 0.6, 0.1, {-4, 3, 0}, {0, 0, -1});
    put(K::Head, 1.2, 0.6, 0.0, {-4, -3, 0}, {1, 0, 0});
    put(K::RingPlate, 0.6, 1.6, 0.2, {0, 0, -3}, {0, 0, 1});
    out.back().a0 = 0.5;
    out.back().a1 = 5.0;
    return out;
}

// Small faces and long and short lines placed where the engine's shortcuts are tight: ends
// just inside and outside the face tolerances, lines seen end-on or nearly so, lines and faces
// sharing points, faces of no area or with a NaN vertex, huge coordinates, null entries. Of
// count objects: a hundred or more crowd the engine's window of faces, which widens.
std::vector<_s_hd_prof_*> awkwardScene(std::uint32_t seed, int count = 40) {
    vgtest::Lcg r(seed);
    auto chance = [&r](double p) { return r() < p; };
    std::vector<std::vector<P>> allFaces;
    std::vector<_s_hd_prof_*> objs;
    for (int o = 0; o < count; ++o) {
        if (o % 9 == 4) {
            objs.push_back(nullptr);
            continue;
        }
        std::vector<std::vector<P>> faces;
        std::vector<enginetest::Seg> lines;
        for (int k = 0; k < 4; ++k) {
            const P c = {r(0, 6), r(0, 6), r(-3, 3)};
            const double s = chance(0.5) ? r(0.01, 0.3) : r(0.3, 3);
            const P a = {c.x + s, c.y + r(-s, s), c.z + r(-s, s)};
            const P b = {c.x + r(-s, s), c.y + s, c.z + r(-s, s)};
            faces.push_back({c, a, b});
            if (chance(0.5))  // a quadrilateral in (about) the same plane
                faces.back().push_back({a.x + b.x - c.x, a.y + b.y - c.y, a.z + b.z - c.z});
            if (chance(0.08))
                faces.back()[2] = {2 * a.x - c.x, 2 * a.y - c.y, 2 * a.z - c.z};  // no area
            if (chance(0.04))
                faces.back()[1].z = enginetest::kNaN;
            allFaces.push_back(faces.back());
        }
        for (int k = 0; k < 12; ++k) {
            const std::vector<P>& f = allFaces[r.below(static_cast<int>(allFaces.size()))];
            // One end on, near or just beyond a vertex of an earlier face (offsets straddle the
            // end-behind tolerance), the other near, far away or straight behind.
            const P v = f[r.below(3)];
            const double off = chance(0.5) ? r(0.025, 0.07) : 0.0;
            P a = {v.x + (chance(0.5) ? off : -off), v.y + r(-off, off), v.z + r(-2, 2)}, b;
            const double pick = r();
            if (pick < 0.25) {
                // From a point on the face's plane just off a corner, sideways and away: the
                // face's vertex and edge tolerances decide whether its start is hidden.
                const P mid = {(f[0].x + f[1].x + f[2].x) / 3, (f[0].y + f[1].y + f[2].y) / 3, 0};
                const double len = std::hypot(v.x - mid.x, v.y - mid.y);
                const double ox = (v.x - mid.x) / len, oy = (v.y - mid.y) / len, e = r(3e-6, 4e-5);
                const P n = triNormal(f[0], f[1], f[2]);
                a = {v.x + ox * e, v.y + oy * e, v.z - (n.x * ox + n.y * oy) * e / n.z};
                const double reach = chance(0.5) ? r(0.1, 3) : -r(0.1, 3);
                b = {a.x - oy * reach, a.y + ox * reach, a.z + r(0.01, 2)};
            } else if (pick < 0.4) {  // end-on or nearly, sometimes very long
                const double dz = chance(0.3) ? r(-600, 600) : r(-4, 4);
                b = {a.x + dz * r(-4e-4, 4e-4), a.y + dz * r(-2e-4, 2e-4), a.z + dz};
            } else {
                const double reach = pick < 0.5 ? 20 : 1;  // long or short
                b = {a.x + r(-reach, reach), a.y + r(-reach, reach), a.z + r(-1, 1)};
            }
            if (chance(0.1))
                b.z = a.z;  // constant depth
            if (chance(0.03))
                b.x = enginetest::kNaN;
            if (chance(0.02))
                b.y = 1e12;
            lines.emplace_back(a, b);
        }
        objs.push_back(enginetest::makeObject(faces, lines));
    }
    return objs;
}

// A face hiding every line whole, and before it in the candidates' order a face that the lines
// after the first pierce just after their near ends, at distances straddling the on-segment
// test's end tolerance, hiding from there on: a piece from a point near the near end, then the
// whole line, which the merge may leave a sliver of the line visible before. An engine that
// settled a line by the face that hid the one before it whole, without the pieces before that
// face, would leave the sliver out.
std::vector<_s_hd_prof_*> nearEndScene() {
    std::vector<enginetest::Seg> lines = {{{-5, -5, 1}, {-4, -5, 1.5}}};
    for (double d : {2e-7, 2e-6, 1e-5, 3e-5, 5e-5})
        lines.push_back({{0.5, 0.2 + d * 1e4, -d}, {1.5, 0.2 + d * 1e4, 0.5}});
    return {enginetest::makeObject({{{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {0, 1, 0}}}, {}),
            enginetest::makeObject(
                {{{-10, -10, -10}, {10, -10, -10}, {10, 10, -10}, {-10, 10, -10}}}, {}),
            enginetest::makeObject({}, lines)};
}

// Plants as big as the benchmark's (every primitive kind) and the degenerate views, counting the
// engine's work, and the awkward scenes.
TEST(KestHideObject, MatchesTheReferenceNodeForNode) {
    const std::vector<vgscene::Primitive> scenes[] = {
        vgscene::builtinPlant(), degenerateScene(), vgscene::generatePlant(150, 1),
        vgscene::generatePlant(400, 3), vgscene::generatePlant(1500, 5)};
    for (const auto& s : scenes) {
        const auto objs = vgscene::tessellateAll(s);
        EXPECT_EQ(std::count(objs.begin(), objs.end(), nullptr), 0) << "a primitive gave none";
        expectEngineMatchesReference(objs, vgscene::tessellateAll(s), vgscene::tessellateAll(s));
    }
    for (std::uint32_t seed : {1u, 2u, 3u})
        expectEngineMatchesReference(awkwardScene(seed), awkwardScene(seed));
    expectEngineMatchesReference(awkwardScene(4, 150), awkwardScene(4, 150));
    expectEngineMatchesReference(nearEndScene(), nearEndScene());
    kestFaceIntersectAll(nullptr, 3);  // nothing to do, nothing touched
}

// Each allocation of face intersection, of the engine (its grid, cached faces, memo and merge
// room) and of the reference failing in turn: all they built is released. The sphere and the
// pipes lie 64 places apart in the array, where they share the slots of the engine's window of
// faces, so that it reads faces into its spill room too.
TEST(KestHideObject, ReleasesAllItBuiltWhenAnAllocationFails) {
    std::vector<vgscene::Primitive> prims = degenerateScene();
    prims.resize(4);  // a sphere and three pipes through it
    for (auto pass : {kestHideObject, kestHideObjectReference}) {
        const long mallocs = vgtest::forEachFailure(false, [&] {
            std::vector<_s_hd_prof_*> objs(67, nullptr);
            for (size_t k = 0; k < prims.size(); ++k)
                objs[k == 0 ? 0 : 63 + k] = vgscene::tessellate(prims[k]);
            kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
            _s_hd_proline_* out = pass(objs.data(), static_cast<int>(objs.size()));
            releaseProline(out);
            vgscene::releaseAll(objs);
        });
        EXPECT_GT(mallocs, 100);
    }
}

// The angle a-p-b measured by the cosine rule, as the library once measured it every time.
double angleAt(P p, P a, P b) {
    const double pa2 = pointDist2(p, a), pb2 = pointDist2(p, b);
    const double c = (pa2 + pb2 - pointDist2(a, b)) / (2.0 * std::sqrt(pa2) * std::sqrt(pb2));
    return std::acos(std::fmax(-1.0, std::fmin(1.0, c)));
}

// The on-segment test decides without the angle away from the cosine where it turns (and with
// a polynomial bound of acos): its answers are those of measuring the angle every time, on
// points straddling that cosine.
TEST(IsPointOnSeg, AnswersAsMeasuringTheAngleEveryTime) {
    double worst = 0.0;
    for (int k = 0; k <= 2000000; ++k) {
        const double c = -1.0 + 2.0 * k / 2000000.0;
        worst = std::fmax(worst, std::fabs(acosBound(c) - std::acos(c)));
    }
    EXPECT_LT(worst, 3e-8);
    auto measured = [](P p, P a, P b) {
        if (segmentReach(a, b).excludes(p))
            return 0;
        if (isSamePointFine(p, a) || isSamePointFine(p, b) || pointDist2(p, a) <= 1e-9 ||
            pointDist2(p, b) <= 1e-9)
            return 1;
        const double pa = pointDist(p, a), pb = pointDist(p, b), ab = pointDist(a, b);
        const double c = (pa * pa + pb * pb - ab * ab) / (2 * pa * pb);
        const double twice = 2.0 * std::acos(std::fmax(-1.0, std::fmin(1.0, c)));
        return std::fabs(twice - 6.2831885307179585) < 0.0005 ? 1 : 0;
    };
    vgtest::Lcg r(13);
    int on = 0;
    for (int k = 0; k < 200000; ++k) {
        const P a = {r(-5, 5), r(-5, 5), r(-5, 5)}, b = {r(-5, 5), r(-5, 5), r(-5, 5)};
        const double t = r(0.05, 0.95);
        // Off the segment by about the distance at which the angle test turns there, or up to
        // six times it, across where the distance alone answers 0.
        const double turn = 2.484e-4 * pointDist(a, b) * t * (1 - t);
        const double d = turn * (1 + (r() < 0.5 ? r(-1e-4, 1e-4) : r(-0.5, 5.0)));
        const P u = vecNormalize(vecCross(vecSub(b, a), {r(-1, 1), 1, 0.5}));
        const P p = linComb(1.0, linComb(1.0, a, t, vecSub(b, a)), d, u);
        const int expected = measured(p, a, b);
        on += expected;
        ASSERT_EQ(isPointOnSeg(p, a, b), expected) << k;
    }
    EXPECT_GT(on, 20000);
    EXPECT_LT(on, 180000);
    // Near the coordinate limit, on short and long segments p-q: a point worked out on the
    // segment from its parameter, taken as on it without measuring, is on it by measuring too;
    // and piece ends worked out on it (its ends, or points from their parameter), on it and past
    // its ends: where their places along the line settle the test (MergeScratch::onByAlong), it
    // is what measuring answers; so is isPointOnSeg's answer.
    // Case k's ends: by the coordinate limit (even k) or the origin, within 0.2, 50 or 1e6.
    auto around = [&r](int k) {
        const double far = k % 2 == 0 ? 9.9e8 : 0.0;
        const double size = k % 3 == 0 ? 0.2 : k % 3 == 1 ? 50.0 : 1e6;
        return P{far + r(-1, 1) * size, -far + r(-1, 1) * size, r(-1, 1) * size};
    };
    int sure = 0, settled = 0;
    MergeScratch scratch;
    for (int k = 0; k < 200000; ++k) {
        const P p = around(k), q = around(k);
        const double t = r() < 0.5 ? r(0, 1) : r(0, 0.002);
        if (surelyOnSegment(t, pointDist2(p, q), p, q)) {
            ++sure;
            ASSERT_EQ(measured(linComb(1.0, p, t, vecSub(q, p)), p, q), 1) << k;
        }
        auto at = [&]() {
            const double u = r();
            return u < 0.1 ? p : u < 0.2 ? q : linComb(1.0, p, r(-0.02, 1.02), vecSub(q, p));
        };
        scratch.clearFor(p, q);
        const P x = at();
        ASSERT_TRUE(scratch.append(at(), at()) && scratch.append(x, x));
        MergeScratch::Piece* piece = scratch.pieces();
        const int expected = measured(x, piece[0].start, piece[0].end);
        ASSERT_EQ(isPointOnSeg(x, piece[0].start, piece[0].end), expected) << k;
        const int known =
            scratch.onByAlong(piece[1].alongStart, piece[0].alongStart, piece[0].alongEnd);
        settled += known >= 0;
        ASSERT_TRUE(known < 0 || known == expected) << k;
    }
    EXPECT_GT(sure, 50000);
    EXPECT_GT(settled, 100000);
}

// The inside test decides from the rough angle sum away from its tolerance's edges: its answers
// are those of measuring every angle, on points in, on, near and off faces of every kind (off
// their plane too, where the sum sweeps through the tolerance's edge). So are those of the
// prepared face's outline data, which settle points of the plane away from the outline.
TEST(IsPointInFace, AnswersAsMeasuringEveryAngle) {
    auto measured = [](P p, int count, const P* v) {
        P area = {0, 0, 0};
        for (int k = 0; k < count; ++k) {
            if (isPointOnSeg(p, v[k], v[(k + 1) % count]) != 0 || pointDist2(p, v[k]) <= 1e-8)
                return 1;
            if (k > 0 && k + 1 < count)
                area = vecAdd(area, vecCross(vecSub(v[k], v[0]), vecSub(v[k + 1], v[0])));
        }
        area = vecNormalize(area);
        if (area.x == 0.0 && area.y == 0.0 && area.z == 0.0)
            return 0;
        double sum = 0.0;
        for (int k = 0; k < count; ++k) {
            const P a = v[k], b = v[(k + 1) % count];
            const double angle = angleAt(p, a, b);
            sum += vecDot(vecCross(vecSub(a, p), vecSub(b, p)), area) < 0.0 ? -angle : angle;
        }
        return std::fabs(std::fabs(sum) - vgtest::kTwoPi) < 0.09 ? 1 : 0;
    };
    vgtest::Lcg r(17);
    int inside = 0;
    int outlined = 0;
    for (int n = 0; n < 4000; ++n) {
        const P c = {r(-1, 1), r(-1, 1), r(-1, 1)};
        const double s = r(0.01, 3);
        const P a = {c.x + s, c.y + r(-s, s), c.z + r(-s, s)};
        const P b = {c.x + r(-s, s), c.y + s, c.z + r(-s, s)};
        const P d = {a.x + b.x - c.x + r(-s, s), a.y + b.y - c.y + r(-s, s),
                     a.z + b.z - c.z + (r() < 0.5 ? 0.0 : r(-0.2, 0.2) * s)};
        const P v[4] = {c, a, b, d}, centre = linComb(1.0 / 3, vecAdd(c, a), 1.0 / 3, b);
        const int count = r() < 0.5 ? 3 : 4;
        const P normal = vecNormalize(vecCross(vecSub(a, c), vecSub(b, c)));
        const HDFace face = enginetest::faceOf(std::vector<P>(v, v + count));
        FacePrep prep;
        prepareFaceTests(face, prep);
        const double lengths[4] = {prep.run[0].len, prep.run[1].len, prep.run[2].len,
                                   prep.run[3].len};
        prep.outlineMargin = outlineOf(face, faceSize(face), lengths, prep.side);
        outlined += prep.outlineMargin > 0.0;
        for (int k = 0; k < 20; ++k) {
            const P u = v[k % count], w = v[(k + 1) % count];
            P p = linComb(1.0, u, r(-0.3, 1.3), vecSub(w, u));
            p = linComb(1.0, p, r(-0.3, 1.0), vecSub(centre, p));
            const bool inPlane = r() < 0.5;
            p = linComb(1.0, p, inPlane ? 0.0 : r(-1, 1) * s * r() * r(), normal);
            const int expected = measured(p, count, v);
            inside += expected;
            ASSERT_EQ(isPointInFace(p, count, v), expected) << n << " " << k;
            ASSERT_TRUE(!inPlane || isPointInFace(p, face, prep) == expected) << n << " " << k;
        }
    }
    EXPECT_GT(inside, 8000);
    EXPECT_LT(inside, 72000);
    EXPECT_GT(outlined, 1000);
}

}  // namespace
