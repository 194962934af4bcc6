// Swept tessellators: members, plates, bends and transitions of every kind of outline over
// random frames are closed solids drawn by their edges and silhouettes; bad outlines and frames
// give null; failed allocations (the containers' too) give null and leak nothing.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

// Sections of size s: a rectangle, a comb with a straight corner half way along its back (its
// teeth the reflex corners of I, angle and channel sections), and a star at random radii.
std::vector<Outline> sections(vgtest::Lcg& gen, double s) {
    const double y = 0.5 * s;
    Outline comb = xy({0, -0.15 * s, 0.45 * s, -0.15 * s, 0.9 * s, -0.15 * s});
    for (int k = 3; k >= 0; --k) {
        comb.insert(comb.end(), {{(k + 0.6) * 0.25 * s, y, 0}, {k * 0.25 * s, y, 0}});
        if (k > 0)
            comb.insert(comb.end(), {{k * 0.25 * s, 0, 0}, {(k - 0.4) * 0.25 * s, 0, 0}});
    }
    Outline star;
    for (int k = 0; k < 9; ++k) {
        const double rk = s * gen(0.3, 1.0);
        star.push_back({rk * std::cos(kTwoPi * k / 9), rk * std::sin(kTwoPi * k / 9), 0});
    }
    return {xy({0, 0, s, 0, s, 0.6 * s, 0, 0.6 * s}), comb, star};
}

// The base outline swept straight by d: both outlines, edge by edge, and the edges at the
// corners that turn are the true edges; every vertex lies in one of the two end planes.
Solid prism(const Outline& base, P d) {
    P n{0, 0, 0};
    Solid s;
    for (std::size_t i = 0, m = base.size(); i < m; ++i) {
        const P a = base[(i + m - 1) % m], b = base[i], c = base[(i + 1) % m];
        const P u = vecSub(b, a), w = vecSub(c, b);
        if (norm(vecCross(u, w)) > 1e-6 * norm(u) * norm(w))
            s.rims.push_back({b, add(b, d)});
        s.rims.insert(s.rims.end(), {{b, c}, {add(b, d), add(c, d)}});
        n = add(n, vecCross(b, c));
    }
    n = vecNormalize(n);
    const double hd = vecDot(d, n);
    const P b0 = base[0];
    s.surface = [=](P p) {
        const double h = vecDot(vecSub(p, b0), n);
        return std::min(std::fabs(h), std::fabs(h - hd));
    };
    return s;
}

TEST(SweptSolids, MembersAndPlatesAreClosedAndDrawnByTheirEdges) {
    vgtest::Lcg gen(7);
    const auto axes = randomUnitVectors(36, 31);
    const auto ups = randomUnitVectors(36, 37);
    for (std::size_t i = 0; i < axes.size(); ++i) {
        // A member, turned about its axis by its own ydir; sizes 5 to 2000, lengths to 20000.
        const double s = logUniform(gen, 5, 2000), len = logUniform(gen, 10, 20000);
        const P a{0.2 * len, -0.3 * len, 0.1 * len}, b = add(a, axes[i], len);
        const P y0 = add(ups[i], axes[i], -vecDot(ups[i], axes[i]));
        int k = 0;
        for (Outline sec : sections(gen, s)) {
            const std::string id = std::to_string(i) + "/" + std::to_string(k++);
            if (norm(y0) > 1e-3) {
                const P y = vecNormalize(y0), x = vecCross(y, axes[i]);
                Outline base;
                for (const P& p : sec)
                    base.push_back(add(add(a, x, p.x), y, p.y));
                PointList list(sec);
                expectTrueSolid(ep_divide_str(list.head, a, b, ups[i]), prism(base, vecSub(b, a)),
                                "str " + id);
            }
            // A plate in the plane square to ups[i], the outline either way round, extruded by
            // a thickness of either sign along its own normal and by an oblique vector.
            P u, v;
            squareTo(ups[i], u, v);
            if ((i / 2 + k) % 2 == 0)
                std::reverse(sec.begin(), sec.end());
            Outline base;
            double area = 0;
            for (std::size_t j = 0; j < sec.size(); ++j) {
                base.push_back(add(add(a, u, sec[j].x), v, sec[j].y));
                area +=
                    sec[j].x * sec[(j + 1) % sec.size()].y - sec[(j + 1) % sec.size()].x * sec[j].y;
            }
            const P own = vecScale(area > 0 ? 1 : -1, ups[i]);  // the normal it runs round
            const double t = ((i + k) % 2 == 0 ? 1 : -1) * logUniform(gen, 5, 500);
            PointList list(base);
            expectTrueSolid(ep_divide_pline(list.head, t), prism(base, vecScale(t, own)),
                            "pline " + id);
            const P d = add(vecScale(std::fabs(t), own), axes[i], 0.5 * std::fabs(t));
            expectTrueSolid(ep_divide_pline(list.head, d), prism(base, d), "pline oblique " + id);
        }
    }
}

// Bends of every section about random axes, from a few degrees to a closed ring, and
// transitions over random frames and offsets, the circle on either side of the rectangle.
TEST(SweptSolids, BendsAndTransitionsAreClosedAndDrawnByEdgesAndSilhouettes) {
    vgtest::Lcg gen(17);
    const auto axes = randomUnitVectors(40, 47);
    const auto others = randomUnitVectors(40, 53);
    const double angles[] = {0.1, kPi / 2, 2.5, kTwoPi};
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const P k = axes[i], e0 = add(others[i], k, -vecDot(others[i], k));
        const std::string id = std::to_string(i);
        if (i < 14 && norm(e0) > 1e-3) {
            const P e1 = vecNormalize(e0), e2 = vecCross(k, e1);
            const double R = logUniform(gen, 20, 20000);
            const P c{0.1 * R, 0.2 * R, -0.3 * R}, st = add(c, e1, R);
            const P ydirs[3] = {k, e1,
                                vecNormalize(add(k, e1, 0.7))};  // along the axis, across, leaning
            const P ydir = ydirs[i % 3], Y = vecNormalize(add(ydir, e2, -vecDot(ydir, e2))),
                    X = vecCross(Y, e2);
            int m = 0;
            for (Outline sec : sections(gen, 0.3 * R)) {
                P mid{0, 0, 0};
                for (const P& p : sec)
                    mid = add(mid, p, 1.0 / static_cast<double>(sec.size()));
                Outline meridian;  // the section in the bend's half-plane: (rho, zeta)
                for (P& p : sec) {
                    p = vecSub(p, mid);
                    const P q = add(add(vecSub(st, c), X, p.x), Y, p.y);
                    meridian.push_back({vecDot(q, e1), vecDot(q, k), 0});
                }
                const double angle = angles[(i + m++) % 4];
                PointList list(sec);
                expectTrueSolid(ep_divide_arc(list.head, c, st, k, angle, ydir),
                                revolved(meridian, c, k, e1, 0, angle), "arc " + id);
            }
        }
        // A transition: corners C0..C3 about o, the circle about c towards x x y.
        P x, y;
        squareTo(k, x, y);
        const double w = logUniform(gen, 10, 3000), h = w * gen(0.2, 2), r = w * gen(0.1, 1.2);
        const double height = (i % 2 == 0 ? 1 : -1) * w * gen(0.2, 3);
        const P o{0.3 * w, -0.2 * w, 0.5 * w},
            c = add(add(o, k, height), others[i], w * gen(0.01, 0.5));
        const P yy = height > 0 ? y : vecScale(-1, y);
        const P corner[4] = {add(add(o, x, -w / 2), yy, -h / 2), add(add(o, x, w / 2), yy, -h / 2),
                             add(add(o, x, w / 2), yy, h / 2), add(add(o, x, -w / 2), yy, h / 2)};
        auto round = [=](double t) { return onCircle(c, x, yy, r, t); };
        // The side as a ruled surface over eight pieces: the flat triangle over side q (its
        // rectangle end moving), then the fan of corner q + 1 (its circle end moving).
        auto piece = [=](double t, bool rect) {
            const double u = t / (kTwoPi / 8);
            const int q = std::min(7, static_cast<int>(u)) / 2;
            const double f = u - 2 * q, from = (q - 1) * 0.25 * kTwoPi;
            if (f < 1)
                return rect ? add(corner[q], vecSub(corner[(q + 1) % 4], corner[q]), f)
                            : round(from);
            return rect ? corner[(q + 1) % 4] : round(from + (f - 1) * 0.25 * kTwoPi);
        };
        Solid s;
        s.rims = {{corner[0], corner[1]},
                  {corner[1], corner[2]},
                  {corner[2], corner[3]},
                  {corner[3], corner[0]},
                  curve(round)};
        s.contours = contourGenerators([&](double t) { return piece(t, true); },
                                       [&](double t) { return piece(t, false); });
        expectTrueSolid(ep_divide_squcir(o, w, h, x, y, c, r), s, "squcir " + id);
        // A pipe butting the round end has its rim's vertices where the transition has its own,
        // but for those the quarter points and the two silhouettes took the place of.
        const auto end = pointsInPlane(ep_divide_squcir(o, w, h, x, y, c, r), c, k, 1e-9 * w);
        const auto tube = pointsInPlane(ep_divide_con(c, add(c, k, height), r, r), c, k, 1e-9 * w);
        EXPECT_GE(sharedPoints(tube, end, 1e-7 * r) + 6, static_cast<int>(tube.size()))
            << "squcir " << id;
    }
}

// A handrail on a ring plate: a bend of the plate's width standing on its far face, from its
// edge round the same angle, has its foot's vertices where the plate's far rims have theirs, in
// any view, also when its start lies a rounding off the plate's edge.
TEST(SweptSolids, BendOnARingPlateHasItsVerticesWhereThePlateHas) {
    vgtest::Lcg gen(59);
    const auto axes = randomUnitVectors(40, 61);
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const P k = axes[i], c{gen(-50, 50), gen(-50, 50), gen(-50, 50)};
        const double ro = logUniform(gen, 1, 3000), ri = ro * gen(0.5, 0.98), t = 0.1 * ro;
        const double a0 = gen(-3, 3), sweep = gen(0.5, 6.2);
        const P x = ringStart(k), y = vecCross(k, x);
        const double start = a0 + 1e-7 * gen(-1, 1), rm = 0.5 * (ri + ro), w = 0.5 * (ro - ri);
        const P foot = add(c, k, t);
        const P s = add(foot, add(vecScale(std::cos(start), x), y, std::sin(start)), rm);
        PointList rail(xy({-w, 0, w, 0, w, w, -w, w}));
        // The plate's points, and the bend's but the rail's top.
        const auto plate =
            pointsInPlane(ep_divide_sad(ri, ro, t, c, a0, a0 + sweep, k), foot, k, HUGE_VAL, true);
        const auto onFoot =
            pointsInPlane(ep_divide_arc(rail.head, foot, s, k, sweep, k), foot, k, 1e-9 * ro, true);
        EXPECT_EQ(sharedPoints(onFoot, plate, 1e-6 * ro), static_cast<int>(onFoot.size()))
            << "view " << i;
        EXPECT_GT(onFoot.size(), 16u) << "view " << i;
    }
}

// Outlines turning straight back, of no area, with a short edge, touching themselves, with a
// NaN corner, crossing themselves, too long, never ending or warped (for a plate: a member and a
// bend read a section's x and y only); zero or non-finite axes and thicknesses, a ydir along the
// axis, a plate's extrusion in its plane, a circle in its rectangle's plane, sizes below the
// smallest, an angle out of range, a start off the bend plane, a section across the bend axis.
TEST(SweptSolids, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, far{0, 0, 50}, bx{100, 0, 0};
    Outline many;
    for (int k = 0; k < 5000; ++k)
        many.push_back({std::cos(kTwoPi * k / 5000), std::sin(kTwoPi * k / 5000), 0});
    Outline bad[] = {xy({0, 0, 10, 0, 5, 0, 5, 5}),
                     xy({0, 0, 10, 0, 20, 0}),
                     xy({0, 0, 10, 0, 10, 0.0005, 0, 10}),
                     xy({0, 0, 10, 0, 10, 10, 5, 0.0002, 0, 10}),
                     xy({0, 0, 10, 0, kNaN, 10, 0, 10}),
                     xy({0, 0, 10, 10, 10, 0, 0, 10}),
                     many,
                     xy({0, 0, 10, 0, 10, 10}),
                     xy({0, 0, 10, 0, 10, 10, 0, 10})};
    bad[8][2].z = 1;
    for (Outline& b : bad) {
        PointList l(b);
        if (&b == &bad[7])
            l.head->next->next->next = l.head;  // a list that never ends
        SCOPED_TRACE(b.size());
        expectRefused({ep_divide_pline(l.head, 5.0)});
        if (b[2].z == 0)  // the member and the bend read x and y only
            expectRefused(
                {ep_divide_arc(l.head, o, bx, z, 1.0, z), ep_divide_str(l.head, o, far, y)});
        if (&b == &bad[7])
            l.head->next->next->next = nullptr;
    }
    PointList sq(xy({0, 0, 10, 0, 10, 10, 0, 10}));
    expectRefused({ep_divide_str(nullptr, o, far, y), ep_divide_str(sq.head, o, o, y),
                   ep_divide_str(sq.head, o, far, z), ep_divide_str(sq.head, o, {kInf, 0, 0}, y),
                   ep_divide_pline(sq.head, 0.0), ep_divide_pline(sq.head, kNaN),
                   ep_divide_pline(sq.head, x), ep_divide_pline(sq.head, {kNaN, 0, 0})});
    expectRefused(
        {ep_divide_squcir(o, 10, 10, x, y, o, 3), ep_divide_squcir(o, 10, 10, x, x, far, 3),
         ep_divide_squcir(o, 0.005, 10, x, y, far, 3),
         ep_divide_squcir(o, 10, 10, x, y, far, 0.005), ep_divide_squcir(o, 10, kNaN, x, y, far, 3),
         ep_divide_arc(sq.head, o, bx, z, 0.0, z), ep_divide_arc(sq.head, o, bx, z, 7.0, z),
         ep_divide_arc(sq.head, o, bx, z, kNaN, z),
         ep_divide_arc(sq.head, o, {100, 0, 1}, z, 1.0, z),
         ep_divide_arc(sq.head, o, bx, o, 1.0, z), ep_divide_arc(sq.head, o, bx, z, 1.0, y),
         ep_divide_arc(sq.head, o, {5, 0, 0}, z, 1.0, z),
         ep_divide_arc(sq.head, o, {0.005, 0, 0}, z, 1.0, z)});
    vgtest::Lcg gen(1);
    const auto secs = sections(gen, 100);
    PointList l(secs[2]), c(secs[1]);
    const P a{1, 2, 3}, b{400, 50, 700}, d{3, 1, 20}, s{300, 0, 0}, tilt{0, 0.2, 1};
    const P side{1, 0.2, 0}, up{0, 0.3, 1}, c2{5, 60, 9}, lean{0, 1, 0.1};
    expectAllocFailuresGiveNull({[&] { return ep_divide_str(c.head, a, b, z); },
                                 [&] { return ep_divide_pline(c.head, 12.0); },
                                 [&] { return ep_divide_pline(l.head, d); },
                                 [&] { return ep_divide_squcir(a, 40, 30, side, up, c2, 12); },
                                 [&] { return ep_divide_arc(l.head, o, s, tilt, 2.0, z); },
                                 [&] { return ep_divide_arc(l.head, o, s, lean, kTwoPi, x); }});
}

}  // namespace
