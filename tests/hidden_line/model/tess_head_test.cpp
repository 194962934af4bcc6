// Dished heads about random axes and about the views that degenerate are closed solids on the
// surface drawn by their true outline.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;

// The analytic head: flange from c to c1 = c + f a, dome of semi-axes r across and h along a.
Solid headSolid(double r, double h, double f, P c, P a) {
    // A flange within twice the hide pass's level depth is built as part of the dome.
    if (f > 0 && f <= 2 * 3e-4) {
        h += f;
        f = 0;
    }
    P e1, e2;
    squareTo(a, e1, e2);
    auto flange = [=](double psi, double t) { return add(onCircle(c, e1, e2, r, psi), a, t * f); };
    auto dome = [=](double psi, double beta) {
        return add(onCircle(c, e1, e2, r * std::sin(beta), psi), a, f + h * std::cos(beta));
    };
    Solid s;
    s.rims = {curve(circleAt(c, r, a))};
    // Seen so nearly along the axis that the flange's rings lie within 2% of the allowance apart
    // in the drawing, the flange's top stands for the outline.
    const double lean = std::hypot(a.x, a.y), sagitta = r * (1 - std::cos(kPi / ringChords(c, r)));
    if (f > 0 && (lean < 3e-4 || f * lean <= 0.02 * sagitta))
        s.rims.push_back(curve(circleAt(add(c, a, f), r, a)));
    s.contours = surfaceContours(dome, 0, kTwoPi, 300, 0, kPi / 2, 300);
    if (f > 0) {
        const auto side = surfaceContours(flange, 0, kTwoPi, 1000, 0, 1, 4);
        s.contours.insert(s.contours.end(), side.begin(), side.end());
    }
    for (int j = 0; j < 360; ++j) {
        s.samples.push_back(flange(kTwoPi * j / 360, 0));
        for (int i = 0; i <= 90; ++i)
            s.samples.push_back(dome(kTwoPi * j / 360, kPi / 2 * i / 90));
    }
    s.surface = [=](P p) {
        const P q = vecSub(p, c);
        const double z = vecDot(q, a), rr = norm(add(q, a, -z));
        return z <= f ? rr - r : (std::hypot(rr / r, (z - f) / h) - 1.0) * std::min(r, h);
    };
    s.surfaceTol = 1e-12;
    s.outlineTol = std::max(r, h) * (1 - std::cos(kPi / ringChords(c, r)));
    return s;
}

TEST(DishedHead, GeneratedHeadsAreClosedOnTheSurfaceAndDrawTheirOutline) {
    vgtest::Lcg next(5);
    std::vector<P> axes = randomUnitVectors(66, 17);
    axes.back() = {0, 1e-4, -1};
    // A third of the random axes leant only a little off the view, by 3e-4 to 3e-2 rad.
    for (std::size_t i = 12; i + 1 < axes.size(); i += 3) {
        const double lean = 3e-4 * std::pow(10.0, 0.5 * static_cast<double>(i / 3 % 5)),
                     across = std::hypot(axes[i].x, axes[i].y);
        axes[i] = {lean * axes[i].x / across, lean * axes[i].y / across,
                   axes[i].z < 0 ? -1.0 : 1.0};
    }
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const double r = 0.05 * std::pow(10.0, 3 * next()), h = r * (0.2 + next());
        const double f = i % 3 == 0 ? 0.0 : (i % 9 == 4 ? 3e-4 : r * 0.5) * next();
        const P c = {next(-50, 50), next(-50, 50), next(-50, 50)}, a = vecNormalize(axes[i]);
        expectTrueSolid(ep_divide_ova(r, h, f, c, a), headSolid(r, h, f, c, a),
                        "head " + std::to_string(i));
    }
}

// Radius, height, flange, centre and axis out of range or not finite.
TEST(DishedHead, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P c{0, 0, 0}, z{0, 0, 1};
    expectRefused({ep_divide_ova(kNaN, 1, 1, c, z), ep_divide_ova(0, 1, 1, c, z),
                   ep_divide_ova(0.009, 1, 1, c, z), ep_divide_ova(-1, 1, 1, c, z),
                   ep_divide_ova(1, kNaN, 1, c, z), ep_divide_ova(1, 0, 1, c, z),
                   ep_divide_ova(1, kInf, 1, c, z), ep_divide_ova(1, -1, 1, c, z),
                   ep_divide_ova(1, 1, kNaN, c, z), ep_divide_ova(1, 1, -0.1, c, z),
                   ep_divide_ova(1, 1, 1, c, {0, 0, 0}), ep_divide_ova(1, 1, 1, c, {kNaN, 0, 1}),
                   ep_divide_ova(1, 1, 1, {0, kInf, 0}, z)});
    const P at{1, 2, 3}, tilted = vecNormalize({1, 2, 2});
    expectAllocFailuresGiveNull({[&] { return ep_divide_ova(2, 1, 0.5, at, tilted); },
                                 [&] { return ep_divide_ova(2, 1, 0.5, at, z); }});
}

}  // namespace
