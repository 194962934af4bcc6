// Spheres and ring plates are closed solids drawn by their true outlines, and a sphere hides
// what lies behind it and the part of a pipe that enters it.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

// Spheres from the smallest radius up, anywhere: drawn by the equator, the circle at z = c.z.
TEST(SphereAndRingPlate, AreClosedAndDrawnByTheirTrueOutline) {
    vgtest::Lcg gen(31);
    for (int i = 0; i < 40; ++i) {
        const double r = i == 0 ? 0.01 : logUniform(gen, 0.02, 5000);
        const P c{gen(-50, 50), -logUniform(gen, 0.1, 100), gen(-500, 500)};
        Solid s;
        s.contours = {curve(circleAt(c, r, {0, 0, 1}))};
        s.surface = [&](P p) { return norm(vecSub(p, c)) - r; };
        expectTrueSolid(ep_divide_sph(c, r), s, "sphere " + std::to_string(i));
    }
    // Sectors, full rings and sectors of a disc about random axes (every third the view axis).
    const auto axes = randomUnitVectors(60, 41);
    for (int i = 0; i < 60; ++i) {
        const P k = i % 3 == 0 ? P{0, 0, 1} : axes[i];
        const double ro = logUniform(gen, 0.02, 3000), t = logUniform(gen, 0.01, 100);
        const double ri = i % 5 == 0 ? 0 : ro * gen(0.05, 0.99), rim = ri < 0.01 ? 0 : ri;
        const double a0 = gen(-10, 10);
        const double a1 = a0 + (i % 4 == 0 ? kTwoPi + gen(0.001, 3) : gen(0.05, 6.2));
        const P c{gen(1, 100), gen(-50, 50), gen(-70, 30)};
        // A disc's sector when the inner radius is below the smallest.
        const Outline section = {{ro, 0, 0}, {ro, t, 0}, {rim, t, 0}, {rim, 0, 0}};
        expectTrueSolid(ep_divide_sad(ri, ro, t, c, a0, a1, vecScale(3, k)),
                        revolved(section, c, k, ringStart(k), a0, std::fmin(a1, a0 + kTwoPi)),
                        "plate " + std::to_string(i));
    }
}

// No visible piece of a pipe entering a sphere, nor of a pipe behind it, lies behind the near
// surface of the sphere the faces hold (radius r cos^2(pi / 8) for r = 10); nothing is seen
// behind a pipe of radius 2 in front of them all (within 2 cos^2(pi / 8) of its axis).
TEST(SphereAndRingPlate, SphereHidesWhatEntersItAndWhatLiesBehind) {
    const double h = std::cos(kPi / 8), held = 10 * h * h - 1e-6;
    for (const P d : randomUnitVectors(24, 43)) {
        const P c{3, -2, 1};
        _s_hd_prof_* objs[4] = {ep_divide_sph(c, 10), ep_divide_con(c, add(c, d, 30), 3, 3),
                                ep_divide_con({-50, 0, 40}, {50, 0, 40}, 2, 2),
                                ep_divide_con({-90, 1, -60}, {90, 1, -60}, 2, 2)};
        _s_hd_proline_* vis = kestHideObject(objs, 4);
        for (const auto* l = vis; l != nullptr; l = l->next) {
            for (double s : {0.0, 0.5, 1.0}) {
                const P p = add(l->start, vecSub(l->end, l->start), s);
                const double rho = std::hypot(p.x - c.x, p.y - c.y);
                const bool behind = rho < held && p.z > c.z - std::sqrt(held * held - rho * rho);
                EXPECT_FALSE(l->owner != 0 && behind) << l->owner << " " << d.x << " " << d.y;
                EXPECT_FALSE(l->owner != 3 && std::fabs(p.y - 1) < 2 * h * h - 1e-6 && p.z > -58);
            }
        }
        releaseProline(vis);
        for (auto*& obj : objs)
            freeHDProfObjectPointer(obj);
    }
}

TEST(SphereAndRingPlate, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P o{0, 0, 0}, c{1, 2, 3};
    expectRefused({ep_divide_sph(o, 0.005), ep_divide_sph(o, -1), ep_divide_sph({kNaN, 0, 0}, 1),
                   ep_divide_sph(o, kInf), ep_divide_sad(2, 2, 1, o, 0, 1),
                   ep_divide_sad(3, 2, 1, o, 0, 1), ep_divide_sad(-1, 2, 1, o, 0, 1),
                   ep_divide_sad(1, 2, 0, o, 0, 1), ep_divide_sad(1, 2, kInf, o, 0, 1),
                   ep_divide_sad(1, 2, 1, o, 1, 1), ep_divide_sad(1, 2, 1, o, 1, 0),
                   ep_divide_sad(1, 2, 1, o, kNaN, 1), ep_divide_sad(1, 2, 1, o, 0, kInf),
                   ep_divide_sad(0, 0.005, 1, o, 0, 1), ep_divide_sad(1, 2, 1, o, 0, 1, o),
                   ep_divide_sad(1, 2, 1, o, 0, 1, {kNaN, 0, 1})});
    expectAllocFailuresGiveNull({
        [&] { return ep_divide_sph(c, 30); },
        [&] { return ep_divide_sad(1, 2, 0.5, c, 0.3, 2); },  // a sector
        [&] { return ep_divide_sad(1, 2, 0.5, c, 0, 7); },    // a full ring
        [&] { return ep_divide_sad(0, 2, 0.5, c, 0, 1); },    // a disc's sector
    });
}

}  // namespace
