#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "hd_tessellators.h"
#include "hidden_line/model/analytic_edges.h"
#include "hidden_line/model/hd_walk.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using namespace hdtest;

using vgtest::kTwoPi;
using Outline = std::vector<P>;  // z ignored for a section

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

// Sections as a drawing office gives them, in millimetres about their centre.
Outline iSection(double b, double h, double tf, double tw) {
    const double x = b / 2, y = h / 2, w = tw / 2;
    return {{-x, -y, 0},     {x, -y, 0},      {x, -y + tf, 0},  {w, -y + tf, 0},
            {w, y - tf, 0},  {x, y - tf, 0},  {x, y, 0},        {-x, y, 0},
            {-x, y - tf, 0}, {-w, y - tf, 0}, {-w, -y + tf, 0}, {-x, -y + tf, 0}};
}
Outline angleSection(double a, double t) {
    return {{0, 0, 0}, {a, 0, 0}, {a, t, 0}, {t, t, 0}, {t, a, 0}, {0, a, 0}};
}
Outline channel(double b, double h, double t) {
    return {{0, 0, 0},     {b, 0, 0},     {b, t, 0}, {t, t, 0},
            {t, h - t, 0}, {b, h - t, 0}, {b, h, 0}, {0, h, 0}};
}
// A comb of teeth teeth standing on its back, counter-clockwise, with a point half way along its
// back (a straight corner).
Outline comb(int teeth, double pitch, double depth) {
    const double back = 0.3 * depth, width = (teeth - 0.4) * pitch;
    Outline o = {{0, -back, 0}, {0.5 * width, -back, 0}, {width, -back, 0}};
    for (int k = teeth - 1; k >= 0; --k) {
        o.push_back({k * pitch + 0.6 * pitch, depth, 0});
        o.push_back({k * pitch, depth, 0});
        if (k > 0) {
            o.push_back({k * pitch, 0, 0});
            o.push_back({(k - 1) * pitch + 0.6 * pitch, 0, 0});
        }
    }
    return o;
}
// A star-shaped outline about the origin: count corners at random radii.
Outline star(SizeGen& gen, int count, double r) {
    Outline o;
    for (int k = 0; k < count; ++k) {
        const double t = kTwoPi * k / count;
        const double rk = r * gen(0.3, 1.0);
        o.push_back({rk * std::cos(t), rk * std::sin(t), 0});
    }
    return o;
}

std::vector<Outline> sections(SizeGen& gen, double s) {
    return {{{0, 0, 0}, {s, 0, 0}, {s, 0.6 * s, 0}, {0, 0.6 * s, 0}},
            iSection(0.6 * s, s, 0.08 * s, 0.05 * s),
            angleSection(s, 0.1 * s),
            channel(0.4 * s, s, 0.07 * s),
            comb(4, 0.25 * s, 0.5 * s),
            star(gen, 9, s)};
}

double distToPolygon(P p, const Outline& o) {
    double best = HUGE_VAL;
    for (std::size_t i = 0; i < o.size(); ++i)
        best = std::min(best, solid::distToSegment(p, o[i], o[(i + 1) % o.size()]));
    return best;
}

Curve closedPolyline(const Outline& o) {
    Curve c = o;
    c.push_back(o[0]);
    return c;
}

// A section or outline mapped by place and swept straight by d: the two outlines and the edges
// between their corners are the true edges (every corner of the test outlines but the straight
// ones turns); every vertex lies in one of the two end planes.
void expectPrism(_s_hd_prof_* obj, const Outline& base, P d, const std::string& what) {
    Outline top;
    for (const P& p : base)
        top.push_back(add(p, d));
    std::vector<Curve> rims = {closedPolyline(base), closedPolyline(top)};
    for (std::size_t i = 0; i < base.size(); ++i) {
        const P u = solid::sub(base[i], base[(i + base.size() - 1) % base.size()]);
        const P w = solid::sub(base[(i + 1) % base.size()], base[i]);
        if (solid::norm(solid::cross(u, w)) > 1e-6 * solid::norm(u) * solid::norm(w))
            rims.push_back({base[i], top[i]});
    }
    std::vector<P> samples = base;
    samples.insert(samples.end(), top.begin(), top.end());
    P n{0, 0, 0};
    for (std::size_t i = 0; i < base.size(); ++i)
        n = add(n, solid::cross(base[i], base[(i + 1) % base.size()]));
    n = unit(n);
    auto planes = [&](P p) {
        const double h = solid::dot(solid::sub(p, base[0]), n);
        return std::min(std::fabs(h), std::fabs(h - solid::dot(d, n)));
    };
    expectTrueSolid(obj, rims, {}, samples, what.c_str(), planes);
    freeHDProfObjectPointer(obj);
}

// Members of every section over random axes (the axes themselves and near them included), sizes
// from 5 to 2000 mm, lengths from 10 to 20000 mm, each turned about its axis by its own ydir.
TEST(EpDivideStr, RandomMembersAreClosedSolidsDrawnByTheirSectionEdges) {
    SizeGen gen(7);
    const auto axes = randomUnitVectors(36, 31);
    const auto ups = randomUnitVectors(36, 37);
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const double s = gen(5, 2000), len = gen(10, 20000);
        const P a{0.2 * len, -0.3 * len, 0.1 * len}, b = add(a, axes[i], len);
        P y = solid::sub(ups[i], scaled(solid::dot(ups[i], axes[i]), axes[i]));
        if (solid::norm(y) < 1e-3)
            continue;
        y = unit(y);
        const P x = solid::cross(y, axes[i]);
        int k = 0;
        for (const Outline& sec : sections(gen, s)) {
            Outline base;
            for (const P& p : sec)
                base.push_back(add(add(a, x, p.x), y, p.y));
            PointList list(sec);
            expectPrism(ep_divide_str(list.head, a, b, ups[i]), base, solid::sub(b, a),
                        "str " + std::to_string(i) + "/" + std::to_string(k++));
        }
    }
}

// Plates of every outline in random planes, extruded by oblique vectors and by thicknesses of
// either sign along their normal, the outline given either way round.
TEST(EpDividePline, RandomPlatesAreClosedSolidsDrawnByTheirOutlineEdges) {
    SizeGen gen(13);
    const auto normals = randomUnitVectors(30, 41);
    const auto leans = randomUnitVectors(30, 43);
    for (std::size_t i = 0; i < normals.size(); ++i) {
        P u, v;
        squareTo(normals[i], u, v);
        const double s = gen(50, 20000), t = gen(5, 500);
        const P o{-0.4 * s, 0.3 * s, 0.2 * s};
        int k = 0;
        for (Outline sec : sections(gen, s)) {
            if (k % 2 == 1)
                std::reverse(sec.begin(), sec.end());
            Outline base;
            for (const P& p : sec)
                base.push_back(add(add(o, u, p.x), v, p.y));
            // The outline's own normal: the one about which it runs counter-clockwise.
            double area = 0;
            for (std::size_t j = 0; j < sec.size(); ++j)
                area +=
                    sec[j].x * sec[(j + 1) % sec.size()].y - sec[(j + 1) % sec.size()].x * sec[j].y;
            const P own =
                area > 0 ? unit(solid::cross(u, v)) : scaled(-1, unit(solid::cross(u, v)));
            const double signedT = (i + k) % 2 == 0 ? t : -t;
            PointList list(base);
            const std::string what = "pline " + std::to_string(i) + "/" + std::to_string(k++);
            expectPrism(ep_divide_pline(list.head, signedT), base, scaled(signedT, own),
                        what + " along the normal");
            const P d = add(scaled(t, own), leans[i], 0.5 * t);
            expectPrism(ep_divide_pline(list.head, d), base, d, what + " along a vector");
        }
    }
}

// A bend as the tests see it: the section in the bend's half-plane (rho from the axis, zeta
// along it) and the point of it at angle phi.
struct Bend {
    P c, e1, e2, k;
    double angle;
    std::vector<double> rho, zeta;
    P at(double phi, std::size_t v) const {
        return add(add(c, add(scaled(std::cos(phi), e1), e2, std::sin(phi)), rho[v]), k, zeta[v]);
    }
};

void expectBend(_s_hd_prof_* obj, const Bend& b, const std::string& what) {
    const std::size_t n = b.rho.size();
    const bool closed = b.angle >= kTwoPi - 1e-9;
    std::vector<Curve> rims, contours;
    std::vector<P> samples;
    for (double end : {0.0, b.angle}) {
        Curve ring;
        for (std::size_t v = 0; v <= n && !closed; ++v)
            ring.push_back(b.at(end, v % n));
        if (!closed)
            rims.push_back(ring);
    }
    Outline meridian;
    for (std::size_t v = 0; v < n; ++v) {
        meridian.push_back({b.rho[v], b.zeta[v], 0});
        Curve arc;
        for (int i = 0; i <= kCurveSamples; ++i)
            arc.push_back(b.at(b.angle * i / kCurveSamples, v));
        samples.insert(samples.end(), arc.begin(), arc.end());
        rims.push_back(arc);
        // The side swept by edge v: normal -dzeta r(phi) + drho k, square to Z at its contours.
        const std::size_t w = (v + 1) % n;
        const double dz = b.zeta[w] - b.zeta[v], dr = b.rho[w] - b.rho[v];
        for (int i = 0; i < 20000; ++i) {
            auto f = [&](double phi) {
                return -dz * (std::cos(phi) * b.e1.z + std::sin(phi) * b.e2.z) + dr * b.k.z;
            };
            double lo = b.angle * i / 20000, hi = b.angle * (i + 1) / 20000;
            if ((f(lo) < 0) == (f(hi) < 0))
                continue;
            for (int it = 0; it < 60; ++it)
                ((f(0.5 * (lo + hi)) < 0) == (f(lo) < 0) ? lo : hi) = 0.5 * (lo + hi);
            contours.push_back({b.at(lo, v), b.at(lo, w)});
        }
    }
    const P tEnd = add(scaled(-std::sin(b.angle), b.e1), b.e2, std::cos(b.angle));
    const P rEnd = add(scaled(std::cos(b.angle), b.e1), b.e2, std::sin(b.angle));
    auto surface = [&](P p) {
        const P q = solid::sub(p, b.c);
        const double z = solid::dot(q, b.k);
        const double r = solid::norm(add(q, b.k, -z));
        double best = distToPolygon({r, z, 0}, meridian);
        if (!closed && solid::dot(q, b.e1) > 0)
            best = std::min(best, std::fabs(solid::dot(q, b.e2)));
        if (!closed && solid::dot(q, rEnd) > 0)
            best = std::min(best, std::fabs(solid::dot(q, tEnd)));
        return best;
    };
    expectTrueSolid(obj, rims, contours, samples, what.c_str(), surface);
    freeHDProfObjectPointer(obj);
}

// Bends of every section (centred on the arc) about random axes, from a few degrees to a closed
// ring, bend radii from 20 to 20000 mm.
TEST(EpDivideArc, RandomBendsAreClosedSolidsDrawnByEdgesAndSilhouettes) {
    SizeGen gen(17);
    const auto axes = randomUnitVectors(14, 47);
    const auto radials = randomUnitVectors(14, 53);
    const double angles[] = {0.1, 1.5707963267948966, 2.5, kTwoPi};
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const P k = axes[i];
        P e1 = solid::sub(radials[i], scaled(solid::dot(radials[i], k), k));
        if (solid::norm(e1) < 1e-3)
            continue;
        e1 = unit(e1);
        const P e2 = solid::cross(k, e1);
        const double R = gen(20, 20000);
        const P c{0.1 * R, 0.2 * R, -0.3 * R}, s = add(c, e1, R);
        // The section's y along the axis or across it, or leaning.
        const P ydirs[3] = {k, e1, unit(add(k, e1, 0.7))};
        const P ydir = ydirs[i % 3];
        const P Y = unit(solid::sub(ydir, scaled(solid::dot(ydir, e2), e2)));
        const P X = solid::cross(Y, e2);
        int m = 0;
        for (Outline sec : sections(gen, 0.3 * R)) {
            P mid{0, 0, 0};
            for (const P& p : sec)
                mid = add(mid, p, 1.0 / static_cast<double>(sec.size()));
            Bend b{c, e1, e2, k, angles[(i + m) % 4], {}, {}};
            for (P& p : sec) {
                p = solid::sub(p, mid);
                const P q = add(add(solid::sub(s, c), X, p.x), Y, p.y);
                b.rho.push_back(solid::dot(q, e1));
                b.zeta.push_back(solid::dot(q, k));
            }
            PointList list(sec);
            expectBend(ep_divide_arc(list.head, c, s, k, b.angle, ydir), b,
                       "arc " + std::to_string(i) + "/" + std::to_string(m++));
        }
    }
}

// Transitions over random frames and offsets, wide and narrow rectangles, circles smaller and
// larger than the rectangle, the circle on either side of the rectangle's plane.
TEST(EpDivideSqucir, RandomTransitionsAreClosedSolidsDrawnByEndsAndSilhouettes) {
    SizeGen gen(19);
    const auto normals = randomUnitVectors(40, 59);
    const auto offsets = randomUnitVectors(40, 61);
    for (std::size_t i = 0; i < normals.size(); ++i) {
        P x, y;
        squareTo(normals[i], x, y);
        const double w = gen(10, 3000), h = w * gen(0.2, 2), r = w * gen(0.1, 1.2);
        const double height = (i % 2 == 0 ? 1 : -1) * w * gen(0.2, 3);
        const P o{0.3 * w, -0.2 * w, 0.5 * w};
        const P n = solid::cross(x, y);
        const P c = add(add(o, n, height), offsets[i], w * gen(0.01, 0.5));
        // The tests' own frame: y turned so that the circle lies towards x x y.
        const P yy = height > 0 ? y : scaled(-1, y);
        const P corner[4] = {add(add(o, x, -w / 2), yy, -h / 2), add(add(o, x, w / 2), yy, -h / 2),
                             add(add(o, x, w / 2), yy, h / 2), add(add(o, x, -w / 2), yy, h / 2)};
        auto circle = [&](double t) {
            return add(c, add(scaled(std::cos(t), x), yy, std::sin(t)), r);
        };
        // The side as a ruled surface over eight pieces: the flat triangle over side q (its
        // rectangle end moving), then the fan of corner q + 1 (its circle end moving).
        auto piece = [&](double t, bool rect) {
            const double u = t / (kTwoPi / 8);
            const int q = std::min(7, static_cast<int>(u)) / 2;
            const double f = u - 2 * q;
            const double from = (q - 1) * 0.25 * kTwoPi;
            if (f < 1)
                return rect ? add(corner[q], solid::sub(corner[(q + 1) % 4], corner[q]), f)
                            : circle(from);
            return rect ? corner[(q + 1) % 4] : circle(from + (f - 1) * 0.25 * kTwoPi);
        };
        const Ruled side{[&](double t) { return piece(t, true); },
                         [&](double t) { return piece(t, false); }};
        std::vector<Curve> rims = {closedPolyline({corner[0], corner[1], corner[2], corner[3]}),
                                   closedCurve(circle)};
        std::vector<P> samples = rims[1];
        samples.insert(samples.end(), corner, corner + 4);
        _s_hd_prof_* obj = ep_divide_squcir(o, w, h, x, y, c, r);
        const std::string what = "squcir " + std::to_string(i);
        expectTrueSolid(obj, rims, contourGenerators(side), samples, what.c_str());
        freeHDProfObjectPointer(obj);
    }
}

TEST(EpDivideSwept, FacesAndLinesComeInTheDocumentedOrder) {
    // A 100 x 60 box member along Z: caps of one quadrilateral, four walls, twelve edges.
    PointList rect({{0, 0, 0}, {100, 0, 0}, {100, 60, 0}, {0, 60, 0}});
    _s_hd_prof_* obj = ep_divide_str(rect.head, {0, 0, 0}, {0, 0, 500}, {0, 1, 0});
    ASSERT_NE(obj, nullptr);
    const std::vector<P> corners = {{0, 0, 0},   {100, 0, 0},   {100, 60, 0},   {0, 60, 0},
                                    {0, 0, 500}, {100, 0, 500}, {100, 60, 500}, {0, 60, 500}};
    expectOrders(
        obj, corners,
        {{0, 1},
         {1, 2},
         {2, 3},
         {3, 0},
         {4, 5},
         {5, 6},
         {6, 7},
         {7, 4},
         {0, 4},
         {1, 5},
         {2, 6},
         {3, 7}},
        {{0, 3, 2, 1}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}, {4, 5, 6, 7}});
    freeHDProfObjectPointer(obj);
    // A point on a side draws no edge along the member there.
    PointList onSide({{0, 0, 0}, {50, 0, 0}, {100, 0, 0}, {100, 60, 0}, {0, 60, 0}});
    obj = ep_divide_str(onSide.head, {0, 0, 0}, {0, 0, 500}, {0, 1, 0});
    ASSERT_NE(obj, nullptr);
    EXPECT_EQ(linesOf(obj->proline).size(), 5u + 5u + 4u);
    freeHDProfObjectPointer(obj);
    // The flat-on transition: 4 sides of the rectangle, 8 chords of a small circle, and seen
    // along its axis no silhouette.
    obj = ep_divide_squcir({0, 0, 0}, 20, 10, {1, 0, 0}, {0, 1, 0}, {0, 0, 30}, 4);
    ASSERT_NE(obj, nullptr);
    EXPECT_EQ(linesOf(obj->proline).size(), 12u);
    freeHDProfObjectPointer(obj);
}

TEST(EpDivideSwept, BadInputGivesNullAndAFailedAllocationLeaksNothing) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, far{0, 0, 50};
    const P nan{kNaN, 0, 0};
    PointList square({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    PointList bowTie({{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}});
    PointList backTrack({{0, 0, 0}, {10, 0, 0}, {5, 0, 0}, {5, 5, 0}});
    PointList line({{0, 0, 0}, {10, 0, 0}, {20, 0, 0}});
    PointList two({{0, 0, 0}, {10, 0, 0}, {0, 0, 0}});
    PointList shortEdge({{0, 0, 0}, {10, 0, 0}, {10, 0.0005, 0}, {0, 10, 0}});
    PointList touching({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 0.0002, 0}, {0, 10, 0}});
    PointList warped({{0, 0, 0}, {10, 0, 0}, {10, 10, 1}, {0, 10, 0}});
    PointList nanPoint({{0, 0, 0}, {10, 0, 0}, {kNaN, 10, 0}, {0, 10, 0}});
    Outline many;
    for (int k = 0; k < 5000; ++k)
        many.push_back({std::cos(kTwoPi * k / 5000), std::sin(kTwoPi * k / 5000), 0});
    PointList tooMany(many);
    PointList ring({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    ring.head->next->next->next = ring.head;  // a list that never ends
    const _s_hd_prof_* bad[] = {
        ep_divide_str(nullptr, o, far, y),
        ep_divide_str(bowTie.head, o, far, y),
        ep_divide_str(backTrack.head, o, far, y),
        ep_divide_str(line.head, o, far, y),
        ep_divide_str(two.head, o, far, y),
        ep_divide_str(shortEdge.head, o, far, y),
        ep_divide_str(touching.head, o, far, y),
        ep_divide_str(nanPoint.head, o, far, y),
        ep_divide_str(tooMany.head, o, far, y),
        ep_divide_str(ring.head, o, far, y),
        ep_divide_str(square.head, o, o, y),    // null axis
        ep_divide_str(square.head, o, far, z),  // ydir along the axis
        ep_divide_str(square.head, o, {kInf, 0, 0}, y),
        ep_divide_pline(warped.head, 5.0),
        ep_divide_pline(bowTie.head, 5.0),
        ep_divide_pline(square.head, 0.0),
        ep_divide_pline(square.head, kNaN),
        ep_divide_pline(square.head, x),  // in the plate's plane
        ep_divide_pline(square.head, o),
        ep_divide_pline(square.head, nan),
        ep_divide_pline(ring.head, z),
        ep_divide_squcir(o, 10, 10, x, y, {0, 0, 0}, 3),  // circle in the rectangle's plane
        ep_divide_squcir(o, 10, 10, x, x, far, 3),
        ep_divide_squcir(o, 0.005, 10, x, y, far, 3),
        ep_divide_squcir(o, 10, 10, x, y, far, 0.005),
        ep_divide_squcir(o, 10, kNaN, x, y, far, 3),
        ep_divide_squcir(o, 10, 10, nan, y, far, 3),
        ep_divide_arc(square.head, o, {100, 0, 0}, z, 0.0, z),
        ep_divide_arc(square.head, o, {100, 0, 0}, z, 7.0, z),
        ep_divide_arc(square.head, o, {100, 0, 0}, z, kNaN, z),
        ep_divide_arc(square.head, o, {100, 0, 1}, z, 1.0, z),  // start off the bend plane
        ep_divide_arc(square.head, o, {100, 0, 0}, o, 1.0, z),
        ep_divide_arc(square.head, o, {100, 0, 0}, z, 1.0, y),  // ydir along the bend
        ep_divide_arc(square.head, o, {5, 0, 0}, z, 1.0, z),    // section across the axis
        ep_divide_arc(square.head, o, {0.005, 0, 0}, z, 1.0, z),
        ep_divide_arc(bowTie.head, o, {100, 0, 0}, z, 1.0, z),
        ep_divide_arc(tooMany.head, o, {100, 0, 0}, z, 1.0, z),
    };
    ring.head->next->next->next = nullptr;
    for (std::size_t i = 0; i < sizeof bad / sizeof bad[0]; ++i) {
        EXPECT_EQ(bad[i], nullptr) << i;
    }

    PointList l(angleSection(100, 10));
    PointList c(comb(3, 40, 50));
    const std::vector<std::function<_s_hd_prof_*()>> calls = {
        [&] {
            return ep_divide_str(c.head, {1, 2, 3}, {400, 50, 700}, {0, 0, 1});
        },
        [&] { return ep_divide_pline(c.head, 12.0); },
        [&] {
            return ep_divide_pline(l.head, {3, 1, 20});
        },
        [&] {
            return ep_divide_squcir({1, 2, 3}, 40, 30, {1, 0.2, 0}, {0, 0.3, 1}, {5, 60, 9}, 12);
        },
        [&] {
            return ep_divide_arc(l.head, {0, 0, 0}, {300, 0, 0}, {0, 0.2, 1}, 2.0, {0, 0, 1});
        },
        [&] {
            return ep_divide_arc(l.head, {0, 0, 0}, {300, 0, 0}, {0, 1, 0.1}, kTwoPi, {1, 0, 0});
        },
    };
    expectNoLeaks(calls);
    // The containers' allocations fail too: the call gives null and leaks nothing.
    for (std::size_t i = 0; i < calls.size(); ++i) {
        long total = 0;
        {
            vgtest::NewWatch news;
            _s_hd_prof_* obj = calls[i]();
            ASSERT_NE(obj, nullptr) << i;
            freeHDProfObjectPointer(obj);
            total = news.requests();
        }
        for (long k = 1; k <= total; ++k) {
            vgtest::NewWatch news(k);
            vgtest::AllocationWatch mallocs;
            _s_hd_prof_* obj = calls[i]();
            EXPECT_EQ(obj, nullptr) << i << " with new " << k << " failing";
            freeHDProfObjectPointer(obj);
            EXPECT_EQ(news.live(), 0) << i << " with new " << k << " failing";
            EXPECT_EQ(mallocs.live(), 0) << i << " with new " << k << " failing";
        }
    }
}

}  // namespace
