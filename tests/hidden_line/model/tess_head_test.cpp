// Dished heads about random axes and about the views that degenerate are closed solids on the
// surface drawn by their true outline.
#include <gtest/gtest.h>

#include <string>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/solid_checks.h"

namespace {

using namespace geolib;
using namespace hdtest;
using vgtest::kPi;

// The analytic head: flange from c to c1 = c + f a, dome of semi-axes r across and h along a.
Solid headSolid(double r, double h, double f, P c, P a) {
    const P c1 = add(c, a, f);
    const P e1 = unit(vecCross(std::fabs(a.z) < 0.9 ? P{0, 0, 1} : P{1, 0, 0}, a)),
            e2 = vecCross(a, e1);
    auto dome = [=](double beta, double psi) {
        const P w = add(scaled(std::cos(psi), e1), e2, std::sin(psi));
        return add(add(c1, w, r * std::sin(beta)), a, h * std::cos(beta));
    };
    // Seen so nearly along the axis that the flange's faces hide nothing, its top is outline.
    const bool endOn = std::hypot(a.x, a.y) < 3e-4;
    Solid s;
    s.rims = {curve(circleAt(c, r, a))};
    if (endOn && f > 0)
        s.rims.push_back(curve(circleAt(c1, r, a)));
    const P zxa = vecCross({0, 0, 1}, a), zp = add({0, 0, 1}, a, -a.z);
    if (norm(zxa) > 0 && f > 0) {  // the flange's contour generators
        for (double sgn : {-1.0, 1.0}) {
            const P d = scaled(sgn * r / norm(zxa), zxa);
            s.contours.push_back({add(c, d), add(c1, d)});
        }
    }
    const double rho = norm(zp), psiZ = std::atan2(vecDot(zp, e2), vecDot(zp, e1));
    if (rho > 0) {  // the dome's contour, per parallel, then per meridian where it hugs one
        Curve branch[2];
        for (int i = 4000; i >= 1; --i) {
            const double beta = kPi / 2 * i / 4000;
            const double q = -r * std::cos(beta) * a.z / (h * std::sin(beta) * rho);
            if (std::fabs(q) > 1)
                break;
            branch[0].push_back(dome(beta, psiZ + std::acos(q)));
            branch[1].push_back(dome(beta, psiZ - std::acos(q)));
        }
        s.contours.insert(s.contours.end(), {branch[0], branch[1]});
        if (!branch[0].empty())
            s.contours.push_back({branch[0].back(), branch[1].back()});
        Curve arc;
        for (int j = 0; j <= 8000; ++j) {
            const double psi = psiZ + 2 * kPi * j / 8000;
            const double num = -r * a.z, den = h * rho * std::cos(psi - psiZ);
            if (num * den > 0) {
                arc.push_back(dome(std::atan(num / den), psi));
            } else if (!arc.empty()) {
                s.contours.push_back(arc);
                arc.clear();
            }
        }
        s.contours.push_back(arc);
    }
    for (int j = 0; j < 360; ++j) {
        const double psi = 2 * kPi * j / 360;
        s.samples.push_back(add(c, add(scaled(std::cos(psi), e1), e2, std::sin(psi)), r));
        for (int i = 0; i <= 90; ++i)
            s.samples.push_back(dome(kPi / 2 * i / 90, psi));
    }
    s.surface = [=](P p) {
        const P q = vecSub(p, c);
        const double z = vecDot(q, a), rr = norm(add(q, a, -z));
        return z <= f ? rr - r : (std::hypot(rr / r, (z - f) / h) - 1.0) * std::min(r, h);
    };
    s.surfaceTol = 1e-12;
    int m = getCircleDivideNum(c, r);
    m += m % 2;
    s.outlineTol = std::max(r, h) * (1 - std::cos(kPi / m));
    return s;
}

TEST(DishedHead, GeneratedHeadsAreClosedOnTheSurfaceAndDrawTheirOutline) {
    vgtest::Lcg next(5);
    std::vector<P> axes = {{0, 0, -1},    {0, 0, 1}, {1e-7, 0, 1},
                           {0, 1e-4, -1}, {0, 1, 0}, {-1, 0, 0}};
    for (P a : randomUnitVectors(60, 17))
        axes.push_back(a);
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const double r = 0.05 * std::pow(10.0, 3 * next()), h = r * (0.2 + next());
        const double f = i % 3 == 0 ? 0.0 : r * 0.5 * next();
        const P c = {next(-50, 50), next(-50, 50), next(-50, 50)}, a = unit(axes[i]);
        expectTrueSolid(ep_divide_ova(r, h, f, c, a), headSolid(r, h, f, c, a),
                        "head " + std::to_string(i));
    }
}

TEST(DishedHead, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P c{0, 0, 0}, z{0, 0, 1};
    const struct {
        double r, h, f;
        P c, axis;
    } refused[] = {
        {kNaN, 1, 1, c, z},         {0, 1, 1, c, z},         {0.009, 1, 1, c, z},
        {-1, 1, 1, c, z},           {1, kInf, 1, c, z},      {1, 0, 1, c, z},
        {1, -1, 1, c, z},           {1, 1, kNaN, c, z},      {1, 1, -0.1, c, z},
        {1, 1, 1, {0, kInf, 0}, z}, {1, 1, 1, c, {0, 0, 0}}, {1, 1, 1, c, {kNaN, 0, 1}},
    };
    for (const auto& b : refused)
        EXPECT_EQ(ep_divide_ova(b.r, b.h, b.f, b.c, b.axis), nullptr) << b.r << " " << b.h;
    expectAllocFailuresGiveNull({
        [] {
            return ep_divide_ova(2, 1, 0.5, {1, 2, 3}, unit({1, 2, 2}));
        },
        [] {
            return ep_divide_ova(2, 1, 0.5, {1, 2, 3}, {0, 0, 1});
        },
    });
}

}  // namespace
