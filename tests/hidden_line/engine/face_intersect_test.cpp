#include <gtest/gtest.h>

#include "hidden_line/engine/hd_engine_fixtures.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;
using namespace enginetest;

// A convex face about c in the plane of e1 and e2, a triangle or a quadrilateral: its corners at
// radius r + spread u and a step's angle jittered by 0.3 u, each u uniform in [-1, 1].
std::vector<P> polygon(vgtest::Lcg& u, P c, P e1, P e2, double r, double spread, bool tri) {
    std::vector<P> pts;
    for (int k = 0; k < (tri ? 3 : 4); ++k) {
        const double a = (k + 0.3 * u(-1, 1)) * (tri ? 2.0944 : 1.5708), rk = r + spread * u(-1, 1);
        pts.push_back(linComb(1.0, linComb(1.0, c, rk * std::cos(a), e1), rk * std::sin(a), e2));
    }
    return pts;
}

// Appends to out, pair by pair in order (each face of from with each of to), the segments of the
// pairs whose extents overlap and that the plain getFaceInterLine cuts.
void pairCuts(const std::vector<std::vector<P>>& from, const std::vector<std::vector<P>>& to,
              std::vector<Seg>& out) {
    for (const auto& fv : from) {
        const HDFace f = faceOf(fv);
        for (const auto& gv : to) {
            const HDFace g = faceOf(gv);
            P a{}, b{};
            if (f.xmax > g.xmin && f.xmin < g.xmax && f.ymax > g.ymin && f.ymin < g.ymax &&
                f.zmax > g.zmin && f.zmin < g.zmax && getFaceInterLine(f, g, a, b))
                out.emplace_back(a, b);
        }
    }
}

// The lines of an object, to the bit: the first one given, then the pairs' cuts; counted.
void expectLines(const _s_hd_prof_* obj, const std::vector<Seg>& cuts, int trial,
                 std::size_t& count) {
    const std::vector<Seg> got = segmentsOf(obj->proline);
    count += got.size() - 1;
    ASSERT_EQ(got.size(), cuts.size()) << trial;
    for (std::size_t k = 0; k < got.size(); ++k) {
        EXPECT_TRUE(sameBits(got[k].first, cuts[k].first)) << trial << " " << k;
        EXPECT_TRUE(sameBits(got[k].second, cuts[k].second)) << trial << " " << k;
    }
}

// Objects of the faces g and of the faces f registered together: each object's own faces meet
// pair by pair, in face order, as getFaceInterLine finds them; a face whose plane leaves the
// other object's faces well to one side is not met with them one by one, and f's object has still
// the lines of every pair of g with f, then of its own, in order.
void expectCutAsPairs(const std::vector<std::vector<P>>& g, const std::vector<std::vector<P>>& f,
                      int trial, std::size_t& own, std::size_t& met) {
    const Seg first = {{0, 0, 0}, {1, 0, 0}};
    std::vector<_s_hd_prof_*> objs = {makeObject(g, {first}), makeObject(f, {first})};
    kestFaceIntersectAll(objs.data(), 2);
    std::vector<Seg> expected = {first};
    pairCuts(g, g, expected);
    expectLines(objs[0], expected, trial, own);
    expected = {first};
    pairCuts(g, f, expected);
    pairCuts(f, f, expected);
    expectLines(objs[1], expected, trial, met);
    vgscene::releaseAll(objs);
}

TEST(KestFaceIntersect, FacesMeetingAlongASharedEdgeAddNothingButCrossingFacesDo) {
    // Turned, a box's neighbouring faces overlap in their extents and meet along the edge they
    // share; so do the faces of two turned boxes standing edge to edge. Neither adds a line.
    const double h = std::sqrt(0.5), a = 0.5235987755982988, b = 0.6108652381980153;
    std::vector<_s_hd_prof_*> boxes = {
        ep_divide_box(2, 2, 2, {5, 5, 5},
                      {std::cos(a), std::sin(a) * std::cos(b), std::sin(a) * std::sin(b)},
                      {-std::sin(a), std::cos(a) * std::cos(b), std::cos(a) * std::sin(b)}, 1),
        ep_divide_box(1, 1, 1, {0, 0, 0}, {h, h, 0}, {0, 0.6, 0.8}, 1),
        ep_divide_box(1, 1, 1, {0, 0, 0}, {h, h, 0}, {0, -0.6, -0.8}, 1)};
    registerAll(boxes);
    for (const _s_hd_prof_* box : boxes)
        EXPECT_EQ(segmentsOf(box->proline).size(), 12u);
    vgscene::releaseAll(boxes);
    // Two faces that pass through each other meet along their crossing, found from each face's
    // side where they are faces of one object, from the later object's where they are of two.
    // The triangle's lower edge crosses the quadrilateral's where the two meet, or a hair below
    // it: then the first two points, one from each edge, run along an edge of both.
    const std::vector<P> upright = {{-1, 0, -1}, {1, 0, -1}, {0, 0, 3}};
    std::size_t own = 0, met = 0;
    for (const double lift : {0.0, 2e-6, 1e-4}) {
        const std::vector<P> across = {{0, -1, lift - 1}, {0, 1, lift - 1}, {0, 1, 1}, {0, -1, 1}};
        expectCutAsPairs({upright, across}, {}, 0, own, met);
        expectCutAsPairs({upright}, {across}, 0, own, met);
        std::vector<Seg> cuts;
        pairCuts({upright, across}, {upright, across}, cuts);
        ASSERT_EQ(cuts.size(), 2u) << lift;
        for (const auto& [p, q] : cuts) {
            const P lo = p.z < q.z ? p : q, hi = p.z < q.z ? q : p;
            EXPECT_LT(vecLength(vecSub(lo, {0, 0, -1})), 2e-4) << lift;
            EXPECT_LT(vecLength(vecSub(hi, {0, 0, 1})), 1e-12) << lift;
        }
    }
    // Two faces of one object that share a vertex, to the bit, and pass through each other from
    // it meet along their crossing all the same, found from each face's side.
    const std::vector<P> flat = {{0, 0, 0}, {2, -1, 0.5}, {2, 1, -0.5}};
    expectCutAsPairs({flat, {{0, 0, 0}, {2, 0.5, -1}, {2, -0.5, 1}}}, {}, 0, own, met);
    EXPECT_EQ(own, 3 * 2u + 2u);
    EXPECT_EQ(met, 3u);
    // Faces whose unit normals' dot product lies within 1e-6 of one are taken as parallel and do
    // not meet, though they cross: none at 1e-3 rad apart, the crossing at 3e-3.
    for (const double tilt : {1e-3, 3e-3}) {
        const HDFace f = faceOf({{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}});
        const HDFace g = faceOf({{-1, -1, -tilt}, {1, -1, -tilt}, {1, 1, tilt}, {-1, 1, tilt}});
        P from{}, to{};
        EXPECT_EQ(getFaceInterLine(f, g, from, to), tilt > 2e-3) << tilt;
    }
}

TEST(KestFaceIntersect, FacesCutAsEachPairDoes) {
    // A larger object of flat faces (and round part of a prism of quads sharing edges) and a
    // cluster of small flat faces beside, across or inside it, none flat along an axis.
    vgtest::Lcg rng(13);
    auto faceSet = [&](P centre, double spread, double r, int count) {
        std::vector<std::vector<P>> faces;
        for (int k = 0; k < count; ++k) {
            const P c = linComb(1.0, centre, spread, {rng(-1, 1), rng(-1, 1), rng(-1, 1)});
            const P e = {rng(-1, 1), rng(-1, 1), rng(-1, 1)};
            const P n = vecNormalize(vecCross(e, {rng(-1, 1), rng(-1, 1), rng(-1, 1)}));
            const P e1 = vecNormalize(e);
            faces.push_back(polygon(rng, c, e1, vecCross(n, e1), r, 0.3 * r, k % 2 == 0));
        }
        return faces;
    };
    std::size_t own = 0, met = 0;
    for (int trial = 0; trial < 30; ++trial) {
        // Every third object has more faces than one word of the slab index's masks holds.
        auto big = faceSet({0, 0, 0}, 2.0, 1.5, trial % 3 == 0 ? 60 : 12);
        // Neighbours turned by 30 degrees, or (odd trials) by so little that their far edges
        // lie short of, about at or beyond the margin that settles a pair met only at what it
        // shares.
        const double step = trial % 2 == 0 ? 0.5236 : 0.1 + 0.05 * (trial / 2 % 3);
        for (int k = 0; k < 12; ++k) {
            const double a = step * k + 0.1, b = a + step;
            big.push_back({{3 * std::cos(a), 3 * std::sin(a), -4.3},
                           {3 * std::cos(b), 3 * std::sin(b), -4.1},
                           {3 * std::cos(b), 3 * std::sin(b), 4.2},
                           {3 * std::cos(a), 3 * std::sin(a), 4.4}});
        }
        const auto small = faceSet({3 * rng(-1, 1), 3 * rng(-1, 1), 3 * rng(-1, 1)}, 0.3, 0.3, 8);
        expectCutAsPairs(big, small, trial, own, met);
    }
    EXPECT_GT(own, 300u);
    EXPECT_GT(met, 30u);
}

TEST(KestFaceIntersect, FacesNearlyTouchingCutAsThePairDoes) {
    // A flat face g of size 0.1 to 1000 and three faces meeting it. The first is turned a little or
    // much about a line of g and moved so that its vertices come within 1e-7 to 1 of g's (or
    // overlap it by that much) across g's plane or along the line where the planes meet: face
    // intersection, with its shortcuts for faces lying apart, finds the segment the plain test
    // finds, to the bit, or none where it finds none. The second crosses g's plane, one edge of
    // it piercing g within 1e-6 to 0.1 of g's size inside or outside one of g's edges, about
    // where the angles start to place the point on that edge and where the outline starts to
    // settle it. The third stands on g just clear of it, and the plain test still cuts it: the
    // margin beyond which faces lie apart must not part them.
    vgtest::Lcg rng(7);
    auto unit = [&] { return vecNormalize({rng(-1, 1), rng(-1, 1), rng(-1, 1)}); };
    // Moves pts along axis so that their least extent along it lies gap beyond the others'
    // greatest.
    auto setGap = [](std::vector<P>& pts, const std::vector<P>& others, P axis, double gap) {
        double lo = INFINITY, hi = -INFINITY;
        for (const P& p : pts)
            lo = std::fmin(lo, vecDot(axis, p));
        for (const P& p : others)
            hi = std::fmax(hi, vecDot(axis, p));
        for (P& p : pts)
            p = linComb(1.0, p, gap - (lo - hi), axis);
    };
    std::size_t none = 0, nearCut = 0, edgeCut = 0, footCut = 0;
    const int trials = 4000;
    for (int trial = 0; trial < trials; ++trial) {
        const double r = std::pow(10.0, 2.0 * rng(-1, 1) + 1.0);
        const P n = unit();
        const P e1 = vecNormalize(vecCross(n, unit()));
        const P e2 = vecCross(n, e1);
        const P o = {1000 * rng(-1, 1), 1000 * rng(-1, 1), 1000 * rng(-1, 1)};
        const std::vector<P> gv = polygon(rng, o, e1, e2, r, 0.0, trial % 2 == 0);
        const double turn = (trial % 3 == 0 ? 0.01 : 1.5) * rng(-1, 1);
        const P t2 = linComb(std::cos(turn), e2, std::sin(turn), n);
        const P c = linComb(1.0, o, r * rng(-1, 1), e1);
        std::vector<P> fv =
            polygon(rng, c, e1, t2, r * (1.0 + 0.9 * rng(-1, 1)), 0.0, trial % 4 < 2);
        const double gap = std::copysign(std::pow(10.0, 3.5 * rng(-1, 1) - 3.5), rng(-1, 1));
        setGap(fv, gv, trial % 5 < 2 ? vecNormalize(vecCross(n, vecCross(e1, t2))) : n, gap);
        expectCutAsPairs({fv}, {gv}, trial, none, nearCut);
        const P a = gv[trial % gv.size()], b = gv[(trial + 1) % gv.size()];
        const P onEdge = linComb(1.0, a, rng(0.1, 0.9), vecSub(b, a));
        P out = vecNormalize(vecCross(vecSub(b, a), n));
        if (vecDot(out, vecSub(onEdge, o)) < 0.0)
            out = vecNegate(out);
        const P q =
            linComb(1.0, onEdge, std::copysign(r * std::pow(10.0, rng(-6, -1)), rng(-1, 1)), out);
        // The crossing face: an edge through q across the plane, and one through a point well
        // inside, so that the segment runs from about q into the face.
        const P up = vecNormalize(linComb(1.0, n, 0.5 * rng(-1, 1), out));
        const P in = linComb(-0.5 * r, out, 0.3 * r * rng(-1, 1), vecSub(b, a));
        const double h = r * rng(0.2, 1.0);
        const std::vector<P> across = {linComb(1.0, q, -h, up), linComb(1.0, q, h, up),
                                       linComb(1.0, linComb(1.0, q, h, up), 1.0, in),
                                       linComb(1.0, linComb(1.0, q, -h, up), 1.0, in)};
        expectCutAsPairs({gv}, {across}, trial, none, edgeCut);
        // A wall standing on g, its foot level and 1e-7 to 2e-5 above g's plane: its upright
        // edges reach the plane within the on-segment test's end distance, and the plain test
        // cuts along the foot, though the wall lies wholly on one side.
        const P foot = linComb(1.0, o, std::pow(10.0, rng(-7.0, -4.7)), n);
        const P along = linComb(0.3 * r, e1, 0.2 * r * rng(-1, 1), e2);
        const std::vector<P> wall = {foot, linComb(1.0, foot, 1.0, along),
                                     linComb(1.0, linComb(1.0, foot, 1.0, along), 0.5 * r, n),
                                     linComb(1.0, foot, 0.5 * r, n)};
        expectCutAsPairs({gv}, {wall}, trial, none, footCut);
    }
    EXPECT_EQ(none, 0u);
    EXPECT_GT(footCut, trials / 2u);
    EXPECT_GT(nearCut, 300u);
    EXPECT_GT(edgeCut, trials / 4u);
    EXPECT_LT(edgeCut, static_cast<std::size_t>(trials));
}

}  // namespace
