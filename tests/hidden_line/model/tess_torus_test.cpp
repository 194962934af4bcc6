// Elbows: generated ones and the views where the outline degenerates are closed solids on the
// torus drawn by their true outline; the inside is never seen through the open ends.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

// The analytic elbow: the tube of radius r about the arc from s about c by angle about a.
struct Elbow {
    double r, angle;
    P c, s, a;
    int n;
    double bend() const { return norm(vecSub(s, c)); }
    P radial(double phi) const {
        const P u = vecNormalize(vecSub(s, c));
        return add(vecScale(std::cos(phi), u), vecCross(a, u), std::sin(phi));
    }
    P centre(double phi) const { return add(c, radial(phi), bend()); }
    bool full() const { return angle >= kTwoPi - 1e-9; }
    _s_hd_prof_* make() const { return ep_divide_tor(r, angle, c, s, a, n); }
};

// The elbow's largest chord sagitta, along the outer equator and round the tube: how far its
// drawing may stray from the true outline, and the true outline from its visible drawing, in
// every view.
double elbowSagitta(const Elbow& e) {
    const int m = ringChords(e.c, e.r);
    const int chords = e.n > 0 ? e.n : getArcDivideNum(e.c, e.bend() + e.r, 0.0, e.angle);
    return std::max((e.bend() + e.r) * (1 - std::cos(e.angle / chords / 2)),
                    e.r * (1 - std::cos(kPi / m)));
}

Solid elbowSolid(const Elbow& e, bool drawing = true) {
    auto at = [e](double phi, double th) {
        return onCircle(e.centre(phi), e.radial(phi), e.a, e.r, th);
    };
    Solid s;
    for (double phi : e.full() ? std::vector<double>{} : std::vector<double>{0, e.angle})
        s.rims.push_back(curve([&](double th) { return at(phi, th); }));
    if (drawing)
        s.contours = surfaceContours(at, 0, e.angle, 300, 0, kTwoPi, 300);
    for (int i = 0; i <= 720; ++i) {
        for (int j = 0; j < 72; ++j)
            s.samples.push_back(at(e.angle * i / 720, kTwoPi * j / 72));
    }
    s.surface = [e](P q) {
        const P d = vecSub(q, e.c);
        const double z = vecDot(d, e.a), rho = norm(add(d, e.a, -z));
        // A tube wider than the bend passes through the axis: its far side is about -rho.
        const double near = std::hypot(rho - e.bend(), z) - e.r;
        const double far = std::hypot(rho + e.bend(), z) - e.r;
        return std::fabs(near) < std::fabs(far) ? near : far;
    };
    s.surfaceTol = 1e-12;
    s.outlineTol = elbowSagitta(e);
    // The tube draws its true silhouettes, not its faces' outline (see its header).
    s.facesOutline = false;
    s.drawing = drawing;
    return s;
}

// A random elbow about the axis a: tube radii over three decades, any sweep; a tube wider than
// its bend radius overlaps itself.
Elbow randomElbow(P a, vgtest::Lcg& next, bool overlap) {
    const double r = 0.05 * std::pow(10.0, 3 * next());
    const double bend = overlap ? r * (0.3 + 0.6 * next()) : r * (1.1 + 4 * next());
    const P any = {next() - 0.5, next() - 0.5, next() - 0.5};
    const P c = {100 * next() - 50, 100 * next() - 50, 100 * next() - 50};
    const double sweeps[] = {0.05 + 6 * next(), kPi / 2, kPi, kTwoPi};
    const double angle = sweeps[next.below(4)];
    const int n = next.below(5) == 0 ? 1 + next.below(17) : 0;
    return {r, angle, c, add(c, vecNormalize(add(any, a, -vecDot(any, a))), bend), a, n};
}

TEST(Elbow, GeneratedAndDegenerateViewsAreClosedOnTheTorusAndDrawTheirOutline) {
    // Random elbows, then random ones overlapping themselves (their faces and vertices checked).
    vgtest::Lcg seed(7);
    const auto axes = randomUnitVectors(40, 11), overlapping = randomUnitVectors(12, 5);
    for (std::size_t i = 0; i < axes.size() + overlapping.size(); ++i) {
        const bool overlap = i >= axes.size();
        const Elbow e =
            randomElbow(overlap ? overlapping[i - axes.size()] : axes[i], seed, overlap);
        expectTrueSolid(e.make(), elbowSolid(e, !overlap), "elbow " + std::to_string(i));
    }
    // The views where the outline degenerates, about the centre o: radius, angle, start, axis.
    const P o{1, 2, 3};
    const double h = 3 / std::sqrt(2.0);
    const struct {
        const char* id;
        double v[8];
        int n = 0;  // the chord count: 0, chosen by size
    } views[] = {
        {"along the bend axis", {1, kPi / 2, 4, 2, 3, 0, 0, 1}},
        {"along the bend axis, full ring", {1, kTwoPi, 4, 2, 3, 0, 0, -1}},
        {"along the tube at the middle", {1, kPi / 2, 1, 2 + h, 3 - h, 1, 0, 0}},
        {"along the tube at the start", {1, kPi / 2, 1, 5, 3, 1, 0, 0}},
        {"along the tube at the end", {2, kPi / 2, 1, 2, 8, 1, 0, 0}},
        {"along the tube twice, full ring", {1, kTwoPi, 1, 5, 3, 1, 0, 0}},
        {"a hair off the tube", {1, kPi, 1, 5, 3, 1, 0, 1e-6}},
        {"a little off the tube", {1, kPi, 1, 5, 3, 1, 0, 1e-3}},
        // Fat, and nearly along the tube between two chosen rings close to an end.
        {"fat, end-on before the end", {1, kPi / 2, 1.0002184, 2.132553, 1.908016, 1, 0, 2e-4}},
        {"fat, end-on after the start", {1, kPi, 0.9999686, 3.044754, 2.895175, 1, 0, -3e-4}},
        // Fat, nearly along the tube beside the start rim, the tube beyond it nearer the viewer.
        {"fat, nearly along the tube beside the start",
         {1.502569083274985, kPi / 2, 1.9778475535017748, 0.85714420913082279, 3.2928931833757957,
          0.76466260928371244, 0.6429066870489224, -0.044295436685999875}},
        // Fat, seen within 3e-4 of its length at the start: the rings put in where the silhouette
        // turns would lie over the start rim in the drawing and hide its chords.
        {"fat, a hair off the tube at the start",
         {1.0960337519645691, 3.0006251811981199, 0.43256980872335371, 0.86635713711516793,
          3.0001155070006029, -0.89423498064543383, 0.44759771859536635, 0.00028582911675652614}},
        // Seen 1e-4 off its length at the far end, the tube before it nearer the viewer: the ring
        // beside the rim stands over a rim chord, and the chain from that chord's end is the
        // outline there.
        {"a hair off the tube at the far end",
         {16.085399448873972, kPi / 2, 0.9969053095351903, 1.9986639138172464, -31.544517136591139,
          -0.91322926504182111, 0.40744607631947938, 6.605328471951397e-05}},
        // Seen 7e-4 off its length at the far end, the tube before it nearer the viewer: the
        // silhouette turns round the tube between the rim and the ring beside it, and the chain
        // from the rim's vertex keeps to it rather than to the rim or the tube's straight line.
        {"a little off the tube at the far end, the silhouette turning",
         {0.50529321743414501, 2.8658202171325682, 0.57476440546195562, 2.9393178966078288,
          2.707792303197591, -0.91105832006603693, -0.41227715878683674, 0.00053083057944040791}},
        // Seen a few degrees off its length at an end, the tube beyond nearer the viewer: the rings
        // beside the rim bulge past it in the drawing, their faces hide its chords, and the
        // silhouette turns round the tube over them. Half a turn 0.05 off at the start, fat 0.033
        // off at the far end, and a thick tube 0.03 off at the start.
        {"a few degrees off the tube at the start",
         {0.44592903493079894, kPi, 0.6599544115978695, 2.8746478253933816, 3.048276445218298,
          -0.93195063878778994, -0.36255992819900079, 0.0042784725505278674}},
        {"fat, a few degrees off the tube at the far end",
         {0.23953412618534053, kPi, 1.1065065826998222, 1.7556038974627484, 2.993627820875055,
          0.91670955631821172, 0.39890268108851978, 0.02280877846922796}},
        {"thick, a few degrees off the tube at the start",
         {6.9872527532644995, 1.9528652906417847, -8.497120002733205, -7.068554679594328,
          3.278630914344788, 0.69005848469335007, -0.72338202419616993, -0.023189108921415281}},
        // A short bend seen 5.7e-3 off its length at the start, the tube beyond nearer the viewer:
        // the rings there shift sideways in the drawing, and their vertices come out between a rim
        // chord and the rim's circle, where their faces would hide the chord.
        {"a short bend a few degrees off the tube at the start",
         {25.317894474195398, 0.14343242645263671, 5.5683389351907007, -85.335896834259842,
          2.6732469814980355, 0.99862495442523702, 0.052251622773852952, -0.0042389051289671662}},
        // Fat, half a turn seen 1.4e-3 off its length at the far end, the tube before it nearer
        // the viewer: the rings beside the rim lean from it, and the edge from a ring's silhouette
        // point stands over a rim chord past the first pattern vertex after it.
        {"fat, a few degrees off the tube at the far end, the rings leaning",
         {44.162683742975609, kPi, -43.3464922915243, 11.850613461431685, 3.02041365169754,
          -0.21684353272999074, -0.97620542860995485, -0.0013577428444607467}},
        // Thin, half a turn seen 0.026 off its length at the start, the tube beyond nearer the
        // viewer: the silhouette turns round the tube between the rim and the ring beside it, and
        // the chain from the rim's vertex must keep to it, not to the tube's straight line.
        {"thin, a few degrees off the tube at the start, the silhouette turning",
         {0.23909181007026131, kPi, 1.2067828934740767, 1.0445783060066174, 2.9797878571930703,
          0.97719081768226979, 0.2118165368138013, -0.015226968498831411}},
        // A full ring of one chosen step seen along the bend axis, and of two seen across it.
        {"full ring of 1", {1, kTwoPi, 4, 2, 3, 0, 0, 1}, 1},
        {"full ring of 2", {1, kTwoPi, 4, 2, 3, 0, 1, 0}, 2},
    };
    for (const auto& view : views) {
        const double* v = view.v;
        const Elbow e{v[0], v[1], o, {v[2], v[3], v[4]}, vecNormalize({v[5], v[6], v[7]}), view.n};
        expectTrueSolid(e.make(), elbowSolid(e), view.id);
    }
}

// Short chords of the centre line from just inside the start to just inside the end are never
// seen, also when looking straight into the open start.
TEST(Elbow, TheInsideIsNeverSeenThroughTheEnds) {
    vgtest::Lcg seed(21);
    for (P a : randomUnitVectors(16, 9)) {
        Elbow e = randomElbow(a, seed, false);
        e.angle = std::min(e.angle, 6.0);
        e.n = 0;  // chords of the centre line stay inside the faces
        // The hide pass's own tolerances are absolute (a few 1e-4): a tube at least a unit thick.
        const double k = std::max(1.0, 1.0 / e.r);
        e.r *= k;
        e.s = add(e.c, vecSub(e.s, e.c), k);
        for (int look = 0; look < 2; ++look) {
            if (look == 1) {  // the axis in the drawing plane, the start tangent along Z
                const double bend = e.bend();
                const P h = {e.a.x, e.a.y, 0};
                e.a = vecDot(h, h) > 1e-12 ? vecNormalize(h) : P{1, 0, 0};
                e.s = add(e.c, vecCross({0, 0, 1}, e.a), bend);
            }
            _s_hd_prof_* objs[2] = {e.make(), nullptr};
            for (int i = 0; i < 16; ++i) {
                const double t0 = 0.001 + 0.998 * i / 16, t1 = 0.001 + 0.998 * (i + 1) / 16;
                objs[1] = ep_divide_pln(e.centre(t0 * e.angle), e.centre(t1 * e.angle));
                _s_hd_proline_* vis = kestHideObject(objs, 2);
                // Specks below the hide pass's resolution may show at face seams.
                for (const _s_hd_proline_* l = vis; l != nullptr; l = l->next) {
                    EXPECT_FALSE(l->owner == 1 && norm(vecSub(l->start, l->end)) > 1e-3)
                        << "chord " << i << " seen, look " << look;
                }
                releaseProline(vis);
                freeHDProfObjectPointer(objs[1]);
            }
            freeHDProfObjectPointer(objs[0]);
        }
    }
}

// Radius, angle, centre, start (off the bend plane too, or at the centre), axis, chords.
TEST(Elbow, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P c{0, 0, 0}, s{3, 0, 0}, z{0, 0, 1};
    expectRefused(
        {ep_divide_tor(kNaN, 1, c, s, z, 0), ep_divide_tor(kInf, 1, c, s, z, 0),
         ep_divide_tor(0, 1, c, s, z, 0), ep_divide_tor(0.009, 1, c, s, z, 0),
         ep_divide_tor(-1, 1, c, s, z, 0), ep_divide_tor(1, kNaN, c, s, z, 0),
         ep_divide_tor(1, 0, c, s, z, 0), ep_divide_tor(1, -1, c, s, z, 0),
         ep_divide_tor(1, kTwoPi + 1e-6, c, s, z, 0), ep_divide_tor(1, 1, c, {3, kNaN, 0}, z, 0),
         ep_divide_tor(1, 1, c, {3, 0, 1e-5}, z, 0), ep_divide_tor(1, 1, c, c, z, 0),
         ep_divide_tor(1, 1, c, s, {0, 0, 0}, 0), ep_divide_tor(1, 1, c, s, {0, 0, kNaN}, 0),
         ep_divide_tor(1, 1, {kInf, 0, 0}, s, z, 0), ep_divide_tor(1, 1, c, s, z, -1),
         ep_divide_tor(1, 1, c, s, z, 100001)});
    _s_hd_prof_* ok = ep_divide_tor(1, 1, c, {3, 0, 1e-9}, z, 0);  // a rounding error off: taken
    EXPECT_NE(ok, nullptr);
    freeHDProfObjectPointer(ok);
    const P at{1, 2, 3}, st{1, 4, 3}, x{1, 0, 0}, tilted = vecNormalize({1, 0, 1});
    expectAllocFailuresGiveNull({[&] { return ep_divide_tor(0.5, 2, at, st, x, 3); },
                                 [&] { return ep_divide_tor(0.5, kTwoPi, at, st, tilted, 0); }});
}

}  // namespace
