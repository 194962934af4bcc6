// Test support for the tessellators: one driver that checks a lone tessellated solid against
// its analytic shape, and one that makes each allocation of a tessellator fail in turn.
//
// A solid is well formed (planar faces of three or four vertices with an area), closed (every
// face edge shared by exactly two faces, run along in opposite directions) and wound outward,
// its box is exactly the extent of its points, its vertices lie on the analytic surface, its
// lines are its sharp edges (chords of its rims) and its contour edges in the view along Z,
// every contour edge is drawn, and drawn alone (the hide pass on it alone) it shows its true
// edges and outline within the largest chord sagitta of its lines.
#ifndef VOGEBASIC_TESTS_SOLID_CHECKS_H
#define VOGEBASIC_TESTS_SOLID_CHECKS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "clip_records.h"
#include "hd_engine.h"
#include "hd_records.h"
#include "hd_tessellators.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_points.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace hdtest {

using namespace geolib;
using P = _s_hd_point_;
/// A true edge as a dense polyline; a single point is an apex.
using Curve = std::vector<P>;
using vgtest::kInf;
using vgtest::kNaN;
using vgtest::kPi;
using vgtest::kTwoPi;

inline P add(P a, P b, double s = 1.0) {
    return {a.x + s * b.x, a.y + s * b.y, a.z + s * b.z};
}
inline double norm(P a) {
    return std::sqrt(vecDot(a, a));
}
/// Unit vectors u, v square to the unit n, with u x v = n.
inline void squareTo(P n, P& u, P& v) {
    u = vecNormalize(vecCross(n, std::fabs(n.x) < 0.6 ? P{1, 0, 0} : P{0, 1, 0}));
    v = vecCross(n, u);
}
inline double distToSeg(P p, P a, P b) {
    const P ab = vecSub(b, a);
    const double l2 = vecDot(ab, ab);
    return norm(
        vecSub(p, add(a, ab, l2 > 0 ? std::clamp(vecDot(vecSub(p, a), ab) / l2, 0.0, 1.0) : 0.0)));
}
inline double distToCurve(P p, const Curve& c) {
    double best = c.size() == 1 ? norm(vecSub(p, c[0])) : HUGE_VAL;
    for (std::size_t i = 1; i < c.size(); ++i)
        best = std::min(best, distToSeg(p, c[i - 1], c[i]));
    return best;
}
inline double distToCurves(P p, const std::vector<Curve>& cs) {
    double best = HUGE_VAL;
    for (const Curve& c : cs)
        best = std::min(best, distToCurve(p, c));
    return best;
}
/// f(t) for t from `from` to `to` (a full turn by default), densely enough that its points lie
/// within 3e-7 of its size of the curve.
template <class F>
Curve curve(F f, double from = 0.0, double to = kTwoPi) {
    Curve c;
    for (int i = 0; i <= 4096; ++i)
        c.push_back(f(from + (to - from) * i / 4096));
    return c;
}
/// The point at angle t from u towards v on the circle of radius r about c.
inline P onCircle(P c, P u, P v, double r, double t) {
    return add(c, add(vecScale(std::cos(t), u), v, std::sin(t)), r);
}
/// The circle of radius r about c square to n, as a function of the angle.
inline std::function<P(double)> circleAt(P c, double r, P n) {
    P u, v;
    squareTo(vecNormalize(n), u, v);
    return [=](double t) { return onCircle(c, u, v, r, t); };
}

/// The contour generators in the view along Z of the surface f(u, v) over [u0, u1] x [v0, v1]:
/// the points where its normal is square to Z, found by bisection on nu + 1 lines of constant u
/// sampled at nv steps and on nv + 1 lines of constant v sampled at nu steps, each point chained
/// to the curve of the line before that ends near it.
inline std::vector<Curve> surfaceContours(const std::function<P(double, double)>& f, double u0,
                                          double u1, int nu, double v0, double v1, int nv) {
    std::vector<Curve> out;
    for (int across = 0; across < 2; ++across) {
        const int lines = across == 0 ? nu : nv, steps = across == 0 ? nv : nu;
        const double s0 = across == 0 ? u0 : v0, s1 = across == 0 ? u1 : v1;
        const double t0 = across == 0 ? v0 : u0, t1 = across == 0 ? v1 : u1;
        const double hs = 1e-5 * (s1 - s0), ht = 1e-5 * (t1 - t0);
        auto g = [&](double s, double t) { return across == 0 ? f(s, t) : f(t, s); };
        auto normalZ = [&](double s, double t) {
            const P n =
                vecCross(vecSub(g(s + hs, t), g(s - hs, t)), vecSub(g(s, t + ht), g(s, t - ht)));
            return n.z / norm(n);
        };
        std::vector<Curve> open;
        for (int i = 0; i <= lines; ++i) {
            const double s = s0 + (s1 - s0) * i / lines;
            std::vector<double> nz;
            for (int j = 0; j <= steps; ++j)
                nz.push_back(normalZ(s, t0 + (t1 - t0) * j / steps));
            std::vector<Curve> next;
            for (int j = 0; j < steps; ++j) {
                const double a = nz[j], b = nz[j + 1];
                if (std::isnan(a) || std::isnan(b) || (a < 0) == (b < 0))
                    continue;
                double lo = t0 + (t1 - t0) * j / steps, hi = t0 + (t1 - t0) * (j + 1) / steps;
                for (int k = 0; k < 50; ++k)
                    ((normalZ(s, 0.5 * (lo + hi)) < 0) == (a < 0) ? lo : hi) = 0.5 * (lo + hi);
                const P p = g(s, lo);
                const double jump = i > 0 ? 4 * norm(vecSub(p, g(s - (s1 - s0) / lines, lo))) : 0;
                next.push_back({p});
                for (Curve& o : open) {
                    if (!o.empty() && norm(vecSub(o.back(), p)) <= jump) {
                        o.push_back(p);
                        next.back() = std::move(o);
                        o.clear();
                        break;
                    }
                }
            }
            for (Curve& o : open) {
                if (!o.empty())
                    out.push_back(std::move(o));
            }
            open = std::move(next);
        }
        out.insert(out.end(), open.begin(), open.end());
    }
    return out;
}

/// The generators of the ruled surface between the rims a(t) and b(t) where its normal is square
/// to Z, over the angles from..to.
inline std::vector<Curve> contourGenerators(const std::function<P(double)>& a,
                                            const std::function<P(double)>& b, double from = 0.0,
                                            double to = kTwoPi) {
    return surfaceContours([&](double t, double s) { return add(a(t), vecSub(b(t), a(t)), s); },
                           from, to, 1000, 0.0, 1.0, 4);
}

/// The unit vector a ring about the unit axis k measures its angles from: +X (+Y for an axis
/// near X) made square to k.
inline P ringStart(P k) {
    const P ref = std::fabs(k.x) < 0.5 ? P{1, 0, 0} : P{0, 1, 0};
    return vecNormalize(add(ref, k, -vecDot(ref, k)));
}

/// count unit vectors: the six axis directions, six a hair off the axes or between them, then
/// directions spread at random over the sphere (the same for the same seed everywhere).
inline std::vector<P> randomUnitVectors(int count, unsigned seed) {
    std::vector<P> out = {{1, 0, 0},    {-1, 0, 0},     {0, 1, 0},     {0, -1, 0},
                          {0, 0, 1},    {0, 0, -1},     {1, 1e-7, 0},  {0, 1, -1e-7},
                          {1e-7, 0, 1}, {-1e-7, 0, -1}, {0.6, 0, 0.8}, {0, -0.8, 0.6}};
    vgtest::Lcg r(seed);
    while (static_cast<int>(out.size()) < count) {
        const double z = r(-1, 1), phi = r(0, kTwoPi), s = std::sqrt(std::max(0.0, 1 - z * z));
        out.push_back({s * std::cos(phi), s * std::sin(phi), z});
    }
    out.resize(count);
    for (P& v : out)
        v = vecNormalize(v);
    return out;
}
/// The chords round a ring of radius r about c: the curves' count made even.
inline int ringChords(P c, double r) {
    const int m = getCircleDivideNum(c, r);
    return m + m % 2;
}
/// Log-uniform from lo to hi.
inline double logUniform(vgtest::Lcg& r, double lo, double hi) {
    return lo * std::pow(hi / lo, r());
}

/// How many of pts lie within tol of a point of others: where one solid's vertices meet another's.
inline int sharedPoints(const std::vector<P>& pts, const std::vector<P>& others, double tol) {
    int shared = 0;
    for (const P& p : pts)
        shared += std::any_of(others.begin(), others.end(),
                              [&](P q) { return norm(vecSub(p, q)) <= tol; });
    return shared;
}
/// The points of obj (which it releases; null fails the test), the ends of its lines or, with
/// faces, every vertex too, that lie within tol of the plane through c square to the unit n,
/// each once.
inline std::vector<P> pointsInPlane(_s_hd_prof_* obj, P c, P n, double tol, bool faces = false) {
    EXPECT_NE(obj, nullptr) << "refused";
    std::vector<P> pts, out;
    if (obj != nullptr && faces) {
        pts = enginetest::pointsOf(obj);
    } else {
        for (const auto& [a, b] : enginetest::segmentsOf(obj != nullptr ? obj->proline : nullptr))
            pts.insert(pts.end(), {a, b});
    }
    for (const P& p : pts) {
        if (std::fabs(vecDot(vecSub(p, c), n)) <= tol && sharedPoints({p}, out, 0.0) == 0)
            out.push_back(p);
    }
    freeHDProfObjectPointer(obj);
    return out;
}

/// An outline (z ignored for a section).
using Outline = std::vector<P>;

// A point list holding the outline, released when it goes out of scope.
struct PointList {
    point* head = nullptr;
    explicit PointList(const Outline& pts) {
        point** link = &head;
        for (const P& p : pts) {
            *link = mallocPoint();
            (*link)->pt = VoGePoint3D(p.x, p.y, p.z);
            link = &(*link)->next;
        }
    }
    ~PointList() { freePoint(head); }
};

// The outline through the corners (x, y) given in turn.
inline Outline xy(std::initializer_list<double> v) {
    Outline out;
    for (auto i = v.begin(); i + 1 < v.end(); i += 2)
        out.push_back({i[0], i[1], 0});
    return out;
}

/// The analytic shape of a solid.
struct Solid {
    std::vector<Curve> rims;           // sharp edges: a line may be a chord of one
    std::vector<Curve> contours;       // contour generators in the view along Z
    std::vector<P> samples;            // surface points whose XY extremes are outline; none:
                                       // the rims' points (the contours' without rims)
    std::function<double(P)> surface;  // distance to the surface; none: to the rims and contours
    double surfaceTol = 1e-6;          // relative to the object's size
    double outlineTol = 0.0;           // how far the drawing may stray; 0: the largest sagitta
    bool facesOutline = true;          // lines are the faces' own outline, not the true contours
    bool drawing = true;               // false: only the faces and the vertices are checked
};

/// The solid of the polygon `meridian` (its corners (rho, zeta, 0)) turned about the unit axis k
/// through c from angle a0 to a1, measured from the unit e1 towards k x e1: its sharp edges are
/// the corners' arcs (an apex where a slanted side meets the axis) and, short of a whole turn, the
/// end outlines' edges; its sides between corners at different zeta off the axis have contour
/// generators (a flat side has none); its surface is the meridian's and the end planes'.
inline Solid revolved(std::vector<P> meridian, P c, P k, P e1, double a0, double a1) {
    const P e2 = vecCross(k, e1);
    const std::vector<double> ends =
        a1 - a0 >= kTwoPi - 1e-9 ? std::vector<double>{} : std::vector<double>{a0, a1};
    std::vector<std::function<P(double)>> arcs;  // each corner round the axis
    for (const P& m : meridian)
        arcs.push_back([=](double a) { return add(onCircle(c, e1, e2, m.x, a), k, m.y); });
    Solid s;
    for (double a : ends) {  // the end outlines, edge by edge
        for (std::size_t v = 0; v < arcs.size(); ++v)
            s.rims.push_back({arcs[v](a), arcs[(v + 1) % arcs.size()](a)});
    }
    for (std::size_t v = 0, n = arcs.size(); v < n; ++v) {
        const std::size_t w = (v + 1) % n;
        const P &before = meridian[(v + n - 1) % n], &m = meridian[v], &after = meridian[w];
        if (m.x != 0)
            s.rims.push_back(curve(arcs[v], a0, a1));
        else if ((before.x != 0 && before.y != m.y) || (after.x != 0 && after.y != m.y))
            s.rims.push_back({arcs[v](a0)});  // an apex, where a slanted side meets the axis
        const bool flat = m.y == after.y || m.x + after.x == 0;
        const auto g = flat ? std::vector<Curve>{} : contourGenerators(arcs[v], arcs[w], a0, a1);
        s.contours.insert(s.contours.end(), g.begin(), g.end());
    }
    meridian.push_back(meridian[0]);
    s.surface = [=](P p) {
        const P q = vecSub(p, c);
        const double z = vecDot(q, k);
        double best = distToCurve({norm(add(q, k, -z)), z, 0}, meridian);
        for (double a : ends) {  // an end plane, on the side of its half-plane
            const P along = onCircle({0, 0, 0}, e1, e2, 1, a);
            if (vecDot(q, along) > 0)
                best = std::min(best, std::fabs(vecDot(q, vecCross(k, along))));
        }
        return best;
    };
    return s;
}

/// Runs every check above on obj (which it releases) against the shape s.
inline void expectTrueSolid(_s_hd_prof_* obj, Solid s, const std::string& what) {
    SCOPED_TRACE(what);
    ASSERT_NE(obj, nullptr);
    const auto release = [](_s_hd_prof_* o) { freeHDProfObjectPointer(o); };
    const std::unique_ptr<_s_hd_prof_, decltype(release)> held(obj, release);
    const std::vector<std::vector<P>> faces = enginetest::facesOf(obj);
    const std::vector<std::pair<P, P>> lines = enginetest::segmentsOf(obj->proline);
    const std::vector<P> pts = enginetest::pointsOf(obj);
    const double* box = obj->box;
    const double size = std::hypot(box[0] - box[1], box[2] - box[3], box[4] - box[5]);
    const double tol = 1e-6 * size;
    // A solid given without rims or contours is flat-faced: every line is a true edge and a
    // sharp one.
    const bool flat = s.rims.empty() && s.contours.empty();
    for (std::size_t i = 0; flat && i < lines.size(); ++i)
        s.rims.push_back({lines[i].first, lines[i].second});
    std::vector<Curve> all = s.rims;
    all.insert(all.end(), s.contours.begin(), s.contours.end());
    if (s.samples.empty()) {
        for (const Curve& c : s.rims.empty() ? s.contours : s.rims)
            s.samples.insert(s.samples.end(), c.begin(), c.end());
    }
    if (!s.surface)
        s.surface = [&](P p) { return distToCurves(p, all); };
    double off = 0.0;
    for (const P p : pts)
        off = std::max(off, std::fabs(s.surface(p)));
    EXPECT_TRUE(enginetest::boxHoldsPoints(obj, true)) << "the box is not the points' extent";
    EXPECT_LE(off, s.surfaceTol * size) << "a vertex lies off the surface";
    using Key = std::array<double, 6>;
    auto key = [](P a, P b) { return Key{a.x, a.y, a.z, b.x, b.y, b.z}; };
    // Along each undirected edge, each face's direction on it and its facing: +1 towards the
    // viewer (normal towards -Z), -1 away, 0 edge-on.
    std::map<Key, std::vector<std::pair<bool, int>>> facing;
    double volume6 = 0.0;
    const P o{box[1], box[3], box[5]};
    for (const auto& f : faces) {
        ASSERT_TRUE(f.size() == 3 || f.size() == 4) << f.size() << " vertices";
        P n{0, 0, 0};
        for (std::size_t i = 1; i + 1 < f.size(); ++i) {
            n = add(n, vecCross(vecSub(f[i], f[0]), vecSub(f[i + 1], f[0])));
            volume6 += vecDot(vecSub(f[0], o), vecCross(vecSub(f[i], o), vecSub(f[i + 1], o)));
        }
        EXPECT_GT(norm(n), 1e-12 * size * size) << "a face has no area";
        if (f.size() == 4) {
            const P n3 = vecCross(vecSub(f[1], f[0]), vecSub(f[2], f[0]));
            EXPECT_LE(std::fabs(vecDot(vecSub(f[3], f[0]), n3)) / norm(n3), 1e-9 * size)
                << "not planar";
        }
        const int side = !(norm(n) > 0) || std::fabs(n.z) <= 1e-9 * norm(n) ? 0 : n.z < 0 ? 1 : -1;
        for (std::size_t i = 0; i < f.size(); ++i) {
            const P a = f[i], b = f[(i + 1) % f.size()];
            facing[std::min(key(a, b), key(b, a))].push_back({key(a, b) < key(b, a), side});
        }
    }
    int unpaired = 0;
    for (const auto& [k, along] : facing)
        unpaired += along.size() != 2 || along[0].first == along[1].first;
    EXPECT_EQ(unpaired, 0) << "edges not shared by exactly two faces";
    EXPECT_GT(volume6, 0.0) << "the faces are not wound outward";
    if (!s.drawing)
        return;
    auto contour = [](const std::vector<std::pair<bool, int>>& along) {
        return along.size() == 2 && along[0].second * along[1].second < 0;
    };
    std::map<Key, int> drawn;
    double sagitta = 0.0;
    for (const auto& [a, b] : lines) {
        const Key k = std::min(key(a, b), key(b, a));
        EXPECT_EQ(++drawn[k], 1) << "a line is drawn twice";
        const P mid = vecScale(0.5, add(a, b));
        bool sharp = flat;
        double own = HUGE_VAL;  // the sagitta to the curve the line was cut from
        for (std::size_t c = 0; c < all.size(); ++c) {
            if (distToCurve(a, all[c]) > tol || distToCurve(b, all[c]) > tol)
                continue;
            own = std::min(own, distToCurve(mid, all[c]));
            sharp = sharp || (c < s.rims.size() && all[c].size() > 1 &&
                              distToCurve(mid, all[c]) <= 0.25 * norm(vecSub(a, b)) + tol);
        }
        sagitta = std::max(sagitta, own < HUGE_VAL ? own : distToCurves(mid, all));
        const auto it = facing.find(k);
        // Drawn true contours: both ends on one contour generator (to its sampling's accuracy).
        bool onContour = false;
        for (const Curve& c : s.contours)
            onContour = onContour || (!s.facesOutline && distToCurve(a, c) <= 1e-4 * size &&
                                      distToCurve(b, c) <= 1e-4 * size);
        EXPECT_TRUE(it != facing.end() && (sharp || onContour || contour(it->second)))
            << "line (" << a.x << ", " << a.y << ", " << a.z << ") -> (" << b.x << ", " << b.y
            << ", " << b.z << ") is no sharp edge nor contour edge of the faces";
    }
    // A straight sharp edge is drawn end to end, in the drawing: a line over it may stand for an
    // edge straight behind it, and an edge seen end-on is no line.
    auto flatten = [](P p) { return P{p.x, p.y, 0}; };
    for (const Curve& c : s.rims) {
        if (c.size() != 2)
            continue;
        const P e0 = flatten(c[0]), e1 = flatten(c[1]);
        double covered = 0.0;
        for (const auto& [a, b] : lines) {
            if (distToSeg(flatten(a), e0, e1) <= tol && distToSeg(flatten(b), e0, e1) <= tol)
                covered += norm(vecSub(flatten(a), flatten(b)));
        }
        EXPECT_GE(covered, norm(vecSub(e0, e1)) - tol) << "a straight sharp edge not drawn";
    }
    int missing = 0;
    for (const auto& [k, sides] : facing)
        missing += s.facesOutline && contour(sides) && drawn.count(k) == 0;
    EXPECT_EQ(missing, 0) << "contour edges not drawn";
    // Drawn alone: every visible piece on a true edge, every corner of the outline reached. The
    // hide pass takes a line within 0.0003 of Z as end-on and hides it whole.
    const double slack =
        (s.outlineTol > 0 ? s.outlineTol : sagitta) * (1 + 1e-6) + tol + 3e-4 * size;
    _s_hd_proline_* vis = kestHideObject(&obj, 1);
    const std::vector<std::pair<P, P>> pieces = enginetest::segmentsOf(vis);
    releaseProline(vis);
    ASSERT_FALSE(pieces.empty()) << "nothing visible";
    double worst = 0.0, gap = 0.0;
    for (const auto& [a, b] : pieces) {
        for (int k = 0; k <= 4; ++k)
            worst = std::max(worst, distToCurves(add(a, vecSub(b, a), k / 4.0), all));
    }
    EXPECT_LE(worst, slack) << "a visible piece lies off the true edges";
    for (int k = 0; k < 360; ++k) {  // the outline's extreme points in 360 directions
        const double cx = std::cos(kTwoPi * k / 360), cy = std::sin(kTwoPi * k / 360);
        const P h = *std::max_element(s.samples.begin(), s.samples.end(), [&](P a, P b) {
            return a.x * cx + a.y * cy < b.x * cx + b.y * cy;
        });
        double best = HUGE_VAL;
        for (const auto& [a, b] : pieces)
            best = std::min(best, distToSeg(flatten(h), flatten(a), flatten(b)));
        gap = std::max(gap, best);
    }
    EXPECT_LE(gap, slack) << "the drawn outline leaves a gap";
}

/// Each object of the list was refused (null); names the first one that was not, and releases it.
inline void expectRefused(std::initializer_list<_s_hd_prof_*> objs) {
    int k = 0;
    for (_s_hd_prof_* obj : objs) {
        EXPECT_EQ(obj, nullptr) << "call " << k << " of the list was taken";
        freeHDProfObjectPointer(obj);
        ++k;
    }
}

/// Each call with each of its allocations failing in turn, those of malloc and then those of
/// operator new (the containers' ones): it gives null exactly when one was refused, throws
/// nothing and leaks nothing.
inline void expectAllocFailuresGiveNull(const std::vector<std::function<_s_hd_prof_*()>>& calls) {
    for (const auto& call : calls) {
        auto run = [&] {
            _s_hd_prof_* obj = call();
            EXPECT_EQ(obj == nullptr, vgtest::failing());
            freeHDProfObjectPointer(obj);
        };
        vgtest::forEachFailure(false, run, false);
        vgtest::forEachFailure(true, run, false);
    }
}

}  // namespace hdtest

#endif  // VOGEBASIC_TESTS_SOLID_CHECKS_H
