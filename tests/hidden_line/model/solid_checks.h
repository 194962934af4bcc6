// Test support: invariants of a tessellated solid, checked on generated cases of every curved
// tessellator. A solid is well formed (planar faces of three or four vertices), closed and wound
// outward, its box holds it, its vertices lie on the analytic surface, its lines are its sharp
// edges and its contour edges in the view along Z, and drawn alone it shows its true outline.
#ifndef VOGEBASIC_TESTS_SOLID_CHECKS_H
#define VOGEBASIC_TESTS_SOLID_CHECKS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "hd_engine.h"
#include "hd_records.h"

namespace hdtest {

using P = geolib::_s_hd_point_;

/// A face whose right-hand normal has a Z component smaller than this (relative to its area)
/// is seen edge-on: it is neither front nor back, and an edge it has is no contour.
constexpr double kEdgeOnNormalZ = 1e-9;
/// The hide pass takes a line whose direction lies within 0.0003 of Z as seen end-on and hides
/// it whole, so a drawn outline may miss up to this fraction of the object's size.
constexpr double kEndOnSlack = 3e-4;
/// A four-vertex face is planar when its fourth vertex lies within this of the plane of the
/// first three, relative to the object's size.
constexpr double kPlanarRelTol = 1e-9;

namespace solid {

inline P sub(P a, P b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline P cross(P a, P b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double dot(P a, P b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double norm(P a) {
    return std::sqrt(dot(a, a));
}

using Key = std::array<double, 3>;
inline Key key(P p) {
    return {p.x, p.y, p.z};
}
using EdgeKey = std::pair<Key, Key>;

inline std::vector<std::vector<P>> faces(const geolib::_s_hd_prof_* obj) {
    std::vector<std::vector<P>> out;
    for (const geolib::_s_hd_prosect_* f = obj->prosect; f != nullptr; f = f->next) {
        out.emplace_back();
        for (const geolib::_s_hd_sect_* v = f->sect; v != nullptr; v = v->next)
            out.back().push_back(v->pt);
    }
    return out;
}

inline std::vector<std::pair<P, P>> lines(const geolib::_s_hd_proline_* l) {
    std::vector<std::pair<P, P>> out;
    for (; l != nullptr; l = l->next)
        out.emplace_back(l->start, l->end);
    return out;
}

/// Every vertex of the faces, then both ends of every line.
inline std::vector<P> points(const geolib::_s_hd_prof_* obj) {
    std::vector<P> out;
    for (const auto& f : faces(obj))
        out.insert(out.end(), f.begin(), f.end());
    for (const auto& [a, b] : lines(obj->proline))
        out.insert(out.end(), {a, b});
    return out;
}

/// The Newell normal of a face (its length is twice the area).
inline P areaNormal(const std::vector<P>& f) {
    P n{0, 0, 0};
    for (std::size_t i = 0; i < f.size(); ++i) {
        const P a = f[i];
        const P b = f[(i + 1) % f.size()];
        n.x += (a.y - b.y) * (a.z + b.z);
        n.y += (a.z - b.z) * (a.x + b.x);
        n.z += (a.x - b.x) * (a.y + b.y);
    }
    return n;
}

/// The diagonal of the object's box.
inline double size(const geolib::_s_hd_prof_* obj) {
    const double* b = obj->box;
    return std::sqrt((b[0] - b[1]) * (b[0] - b[1]) + (b[2] - b[3]) * (b[2] - b[3]) +
                     (b[4] - b[5]) * (b[4] - b[5]));
}

/// +1 front (normal towards -Z seen from outside means facing the viewer), -1 back, 0 edge-on:
/// the sign of the unit normal's Z component, zero within kEdgeOnNormalZ.
inline int facing(const std::vector<P>& f) {
    const P n = areaNormal(f);
    const double len = norm(n);
    if (!(len > 0.0) || std::fabs(n.z) <= kEdgeOnNormalZ * len)
        return 0;
    return n.z < 0.0 ? 1 : -1;
}

inline EdgeKey undirected(P a, P b) {
    Key ka = key(a);
    Key kb = key(b);
    if (kb < ka)
        std::swap(ka, kb);
    return {ka, kb};
}

inline double distToSegment(P p, P a, P b) {
    const P ab = sub(b, a);
    const double l2 = dot(ab, ab);
    double t = l2 > 0.0 ? dot(sub(p, a), ab) / l2 : 0.0;
    t = std::min(1.0, std::max(0.0, t));
    const P q{a.x + t * ab.x, a.y + t * ab.y, a.z + t * ab.z};
    return norm(sub(p, q));
}

inline double distToSegmentXY(P p, P a, P b) {
    return distToSegment({p.x, p.y, 0.0}, {a.x, a.y, 0.0}, {b.x, b.y, 0.0});
}

/// The XY convex hull of the points (monotone chain), counter-clockwise.
inline std::vector<P> hullXY(std::vector<P> pts) {
    std::sort(pts.begin(), pts.end(),
              [](P a, P b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    if (pts.size() < 3)
        return pts;
    auto turn = [](P o, P a, P b) { return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x); };
    std::vector<P> h(2 * pts.size());
    std::size_t k = 0;
    for (std::size_t i = 0; i < pts.size(); ++i) {
        while (k >= 2 && turn(h[k - 2], h[k - 1], pts[i]) <= 0)
            --k;
        h[k++] = pts[i];
    }
    for (std::size_t i = pts.size() - 1, t = k + 1; i > 0; --i) {
        while (k >= t && turn(h[k - 2], h[k - 1], pts[i - 1]) <= 0)
            --k;
        h[k++] = pts[i - 1];
    }
    h.resize(k - 1);
    return h;
}

}  // namespace solid

/// Every face has three or four vertices and an area; a four-vertex face is planar within
/// kPlanarRelTol of the object's size.
inline void expectWellFormedFaces(const geolib::_s_hd_prof_* obj, const char* what) {
    ASSERT_NE(obj, nullptr) << what;
    const double size = solid::size(obj);
    const auto faces = solid::faces(obj);
    ASSERT_FALSE(faces.empty()) << what;
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const auto& f = faces[i];
        ASSERT_TRUE(f.size() == 3 || f.size() == 4)
            << what << ": face " << i << " has " << f.size() << " vertices";
        const P n = solid::areaNormal(f);
        EXPECT_GT(solid::norm(n), 1e-12 * size * size) << what << ": face " << i << " has no area";
        if (f.size() == 4) {
            const P n3 = solid::cross(solid::sub(f[1], f[0]), solid::sub(f[2], f[0]));
            const double off = std::fabs(solid::dot(solid::sub(f[3], f[0]), n3)) / solid::norm(n3);
            EXPECT_LE(off, kPlanarRelTol * size) << what << ": face " << i << " is not planar";
        }
    }
}

/// Every face edge is shared by exactly two faces, which run along it in opposite directions,
/// and the faces enclose a positive volume (they are wound outward).
inline void expectClosedOutward(const geolib::_s_hd_prof_* obj, const char* what) {
    ASSERT_NE(obj, nullptr) << what;
    const auto faces = solid::faces(obj);
    std::map<solid::EdgeKey, int> directed;
    double volume6 = 0.0;
    const P o{obj->box[1], obj->box[3], obj->box[5]};
    for (const auto& f : faces) {
        for (std::size_t i = 0; i < f.size(); ++i)
            ++directed[{solid::key(f[i]), solid::key(f[(i + 1) % f.size()])}];
        for (std::size_t i = 1; i + 1 < f.size(); ++i)
            volume6 += solid::dot(solid::sub(f[0], o),
                                  solid::cross(solid::sub(f[i], o), solid::sub(f[i + 1], o)));
    }
    int bad = 0;
    for (const auto& [edge, count] : directed) {
        const auto back = directed.find({edge.second, edge.first});
        if (count != 1 || back == directed.end() || back->second != 1) {
            if (++bad <= 3)
                ADD_FAILURE() << what << ": edge (" << edge.first[0] << ", " << edge.first[1]
                              << ", " << edge.first[2] << ") -> (" << edge.second[0] << ", "
                              << edge.second[1] << ", " << edge.second[2] << ") used " << count
                              << " times, reversed " << (back == directed.end() ? 0 : back->second)
                              << " times";
        }
    }
    EXPECT_EQ(bad, 0) << what << ": edges not shared by exactly two faces";
    EXPECT_GT(volume6, 0.0) << what << ": faces are not wound outward";
}

/// The object's box is exactly the extent of its vertices and line ends.
inline void expectBoxHolds(const geolib::_s_hd_prof_* obj, const char* what) {
    ASSERT_NE(obj, nullptr) << what;
    double want[6] = {-HUGE_VAL, HUGE_VAL, -HUGE_VAL, HUGE_VAL, -HUGE_VAL, HUGE_VAL};
    for (const P p : solid::points(obj)) {
        const double c[3] = {p.x, p.y, p.z};
        for (int a = 0; a < 3; ++a) {
            want[2 * a] = std::max(want[2 * a], c[a]);
            want[2 * a + 1] = std::min(want[2 * a + 1], c[a]);
        }
    }
    for (int k = 0; k < 6; ++k)
        EXPECT_EQ(obj->box[k], want[k]) << what << ": box value " << k;
}

/// Every vertex and line end lies on the surface: |dist| <= tol.
inline void expectOnSurface(const geolib::_s_hd_prof_* obj, const std::function<double(P)>& dist,
                            double tol, const char* what) {
    ASSERT_NE(obj, nullptr) << what;
    double worst = 0.0;
    for (const P p : solid::points(obj))
        worst = std::max(worst, std::fabs(dist(p)));
    EXPECT_LE(worst, tol) << what << ": a vertex lies off the surface";
}

/// Every line is an edge of the faces, drawn once, and either a sharp edge (isSharpEdge of its
/// ends) or a contour edge: one of its two faces faces the viewer and the other faces away.
/// Every contour edge of the faces is drawn, unless the object draws its surface's true
/// silhouettes rather than its faces' outline (allContoursDrawn false; isSharpEdge then
/// accepts them).
inline void expectLinesAreEdges(const geolib::_s_hd_prof_* obj,
                                const std::function<bool(P, P)>& isSharpEdge, const char* what,
                                bool allContoursDrawn = true) {
    ASSERT_NE(obj, nullptr) << what;
    const auto faces = solid::faces(obj);
    std::map<solid::EdgeKey, std::vector<int>> facing;  // the facing of each face along an edge
    for (const auto& f : faces) {
        const int side = solid::facing(f);
        for (std::size_t i = 0; i < f.size(); ++i)
            facing[solid::undirected(f[i], f[(i + 1) % f.size()])].push_back(side);
    }
    auto isContour = [](const std::vector<int>& sides) {
        return sides.size() == 2 && sides[0] * sides[1] < 0;
    };
    std::map<solid::EdgeKey, int> drawn;
    for (const auto& [a, b] : solid::lines(obj->proline)) {
        const auto edge = solid::undirected(a, b);
        EXPECT_EQ(++drawn[edge], 1) << what << ": a line is drawn twice";
        const auto it = facing.find(edge);
        if (it == facing.end()) {
            ADD_FAILURE() << what << ": line (" << a.x << ", " << a.y << ", " << a.z << ") -> ("
                          << b.x << ", " << b.y << ", " << b.z << ") is no face edge";
            continue;
        }
        EXPECT_TRUE(isSharpEdge(a, b) || isContour(it->second))
            << what << ": line (" << a.x << ", " << a.y << ", " << a.z << ") -> (" << b.x << ", "
            << b.y << ", " << b.z << ") is neither a sharp edge nor a contour edge";
    }
    int missing = 0;
    for (const auto& [edge, sides] : facing)
        if (allContoursDrawn)
            if (isContour(sides) && drawn.count(edge) == 0)
                ++missing;
    EXPECT_EQ(missing, 0) << what << ": contour edges not drawn";
}

/// The visible pieces of the lone object (the hide pass on it alone), each as its two ends.
inline std::vector<std::pair<P, P>> visibleAlone(geolib::_s_hd_prof_* obj) {
    geolib::_s_hd_prof_* objs[1] = {obj};
    geolib::_s_hd_proline_* vis = geolib::kestHideObject(objs, 1);
    auto out = solid::lines(vis);
    geolib::releaseProline(vis);
    return out;
}

/// Drawn alone, the object shows its true edges and nothing else: every visible piece lies
/// within sagitta of the true edges (trueEdgeDist: the 3-D distance to the analytic rims,
/// sharp edges and contour generator), and every vertex of the XY convex hull of the analytic
/// surfaceSamples lies within sagitta (or gapAllowance, when larger) of a visible piece (the
/// outline has no gap or notch).
inline void expectDrawingTrue(geolib::_s_hd_prof_* obj,
                              const std::function<double(P)>& trueEdgeDist,
                              const std::vector<P>& surfaceSamples, double sagitta,
                              const char* what, double gapAllowance = 0.0) {
    ASSERT_NE(obj, nullptr) << what;
    const double tol = sagitta * (1.0 + 1e-6) + kEndOnSlack * solid::size(obj);
    const auto pieces = visibleAlone(obj);
    ASSERT_FALSE(pieces.empty()) << what << ": nothing visible";
    double worst = 0.0;
    for (const auto& [a, b] : pieces) {
        for (int k = 0; k <= 4; ++k) {
            const double t = k / 4.0;
            const P p{a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z + t * (b.z - a.z)};
            worst = std::max(worst, trueEdgeDist(p));
        }
    }
    EXPECT_LE(worst, tol) << what << ": a visible piece lies off the true edges";
    double gap = 0.0;
    for (P h : solid::hullXY(surfaceSamples)) {
        double best = HUGE_VAL;
        for (const auto& [a, b] : pieces)
            best = std::min(best, solid::distToSegmentXY(h, a, b));
        gap = std::max(gap, best);
    }
    EXPECT_LE(gap, std::max(tol, gapAllowance)) << what << ": the drawn outline leaves a gap";
}

/// count unit vectors: the six axis directions, six directions a hair off the axes, then
/// directions spread at random over the sphere (the same for the same seed everywhere).
inline std::vector<P> randomUnitVectors(int count, unsigned seed) {
    std::vector<P> out = {{1, 0, 0},    {-1, 0, 0},     {0, 1, 0},     {0, -1, 0},
                          {0, 0, 1},    {0, 0, -1},     {1, 1e-7, 0},  {0, 1, -1e-7},
                          {1e-7, 0, 1}, {-1e-7, 0, -1}, {0.6, 0, 0.8}, {0, -0.8, 0.6}};
    std::uint32_t s = seed * 2654435761u + 0x9E3779B9u;
    auto next = [&s]() {
        s ^= s << 13;
        s ^= s >> 17;
        s ^= s << 5;
        return s / 4294967296.0;
    };
    while (static_cast<int>(out.size()) < count) {
        const double z = 2.0 * next() - 1.0;
        const double phi = 6.283185307179586 * next();
        const double r = std::sqrt(std::max(0.0, 1.0 - z * z));
        out.push_back({r * std::cos(phi), r * std::sin(phi), z});
    }
    out.resize(static_cast<std::size_t>(std::max(count, 0)));
    for (P& v : out) {
        const double l = solid::norm(v);
        v = {v.x / l, v.y / l, v.z / l};
    }
    return out;
}

}  // namespace hdtest

#endif  // VOGEBASIC_TESTS_SOLID_CHECKS_H
