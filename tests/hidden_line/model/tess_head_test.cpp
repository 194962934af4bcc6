#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_walk.h"
#include "hidden_line/model/solid_checks.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using namespace hdtest;

// The analytic head: flange from c to c1 = c + f*a, dome of semi-axes r (across) and h (along a).
struct Head {
    double r, h, f;
    P c, a;
    P c1() const { return linComb(1.0, c, f, a); }
    // Seen so nearly along the axis that the flange's faces hide nothing, its top ring is outline.
    bool endOn() const { return std::hypot(a.x, a.y) < 3e-4; }
    // A unit direction normal to the axis and the one normal to both.
    P e1() const {
        return std::fabs(a.z) < 0.9 ? unit(vecCross({0, 0, 1}, a)) : unit(vecCross({1, 0, 0}, a));
    }
    P e2() const { return vecCross(a, e1()); }
    P dome(double beta, double psi) const {
        const P w = linComb(std::cos(psi), e1(), std::sin(psi), e2());
        return linComb(1.0, linComb(1.0, c1(), r * std::sin(beta), w), h * std::cos(beta), a);
    }
    double surfaceDist(P p) const {
        const P q = vecSub(p, c);
        const double z = vecDot(q, a);
        const P inPlane = linComb(1.0, q, -z, a);
        const double rho = std::sqrt(vecDot(inPlane, inPlane));
        if (z <= f)
            return rho - r;
        return (std::hypot(rho / r, (z - f) / h) - 1.0) * std::min(r, h);
    }
    // 3-D distance to the base rim, the flange's contour generators, the dome's contour (solved
    // per parallel: where the normal is normal to Z) and, seen along the axis, the flange's top.
    double trueEdgeDist(P p) const {
        double best = circleDist(p, c, a, r);
        if (endOn() && f > 0)
            best = std::min(best, circleDist(p, c1(), a, r));
        const P zxa = vecCross({0, 0, 1}, a);
        const double len = std::sqrt(vecDot(zxa, zxa));
        if (len > 0 && f > 0)
            for (double sgn : {-1.0, 1.0}) {
                const P d = vecScale(sgn * r / len, zxa);
                best = std::min(best, solid::distToSegment(p, vecAdd(c, d), vecAdd(c1(), d)));
            }
        const P zp = linComb(1.0, {0, 0, 1}, -a.z, a);
        const double rho = std::sqrt(vecDot(zp, zp));
        if (rho == 0)
            return best;
        const double psiZ = std::atan2(vecDot(zp, e2()), vecDot(zp, e1()));
        std::vector<P> branch[2];
        for (int i = 4000; i >= 1; --i) {
            const double beta = M_PI / 2 * i / 4000;
            const double q = -r * std::cos(beta) * a.z / (h * std::sin(beta) * rho);
            if (std::fabs(q) > 1)
                break;
            branch[0].push_back(dome(beta, psiZ + std::acos(q)));
            branch[1].push_back(dome(beta, psiZ - std::acos(q)));
        }
        for (const auto& b : branch)
            for (size_t i = 1; i < b.size(); ++i)
                best = std::min(best, solid::distToSegment(p, b[i - 1], b[i]));
        if (!branch[0].empty())
            best = std::min(best, solid::distToSegment(p, branch[0].back(), branch[1].back()));
        // The same contour by the angle round the axis, for a contour that hugs a parallel.
        P prev{0, 0, 0};
        bool had = false;
        for (int j = 0; j <= 8000; ++j) {
            const double psi = psiZ + 2 * M_PI * j / 8000;
            const double num = -r * a.z, den = h * rho * std::cos(psi - psiZ);
            const bool has = num * den > 0;
            const P cur = has ? dome(std::atan(num / den), psi) : prev;
            if (has && had)
                best = std::min(best, solid::distToSegment(p, prev, cur));
            prev = cur;
            had = has;
        }
        return best;
    }
    std::vector<P> samples() const {
        std::vector<P> out;
        for (int j = 0; j < 360; ++j) {
            const double psi = 2 * M_PI * j / 360;
            out.push_back(linComb(1.0, c, r, linComb(std::cos(psi), e1(), std::sin(psi), e2())));
            for (int i = 0; i <= 90; ++i)
                out.push_back(dome(M_PI / 2 * i / 90, psi));
        }
        return out;
    }
    double sagitta() const {
        int m = getCircleDivideNum(c, r);
        m += m % 2;
        return std::max(r, h) * (1 - std::cos(M_PI / m));
    }
    _s_hd_prof_* make() const { return ep_divide_ova(r, h, f, c, a); }
};

void expectHead(const Head& hd, const std::string& what) {
    _s_hd_prof_* obj = hd.make();
    ASSERT_NE(obj, nullptr) << what;
    const char* w = what.c_str();
    const double size = expectSolidOnSurface(
        obj, [&](P p) { return hd.surfaceDist(p); }, w);
    auto onRim = [&](P p) {
        return circleDist(p, hd.c, hd.a, hd.r) < 1e-9 * size ||
               (hd.endOn() && hd.f > 0 && circleDist(p, hd.c1(), hd.a, hd.r) < 1e-9 * size);
    };
    expectLinesAreEdges(
        obj, [&](P a, P b) { return onRim(a) && onRim(b); }, w);
    expectDrawingTrue(
        obj, [&](P p) { return hd.trueEdgeDist(p); }, hd.samples(), hd.sagitta(), w);
    freeHDProfObjectPointer(obj);
}

// Heads about random axes and about the views that degenerate (along the axis either way, a
// hair and a little off it, square to it), with and without a flange, sizes over three decades.
TEST(EpDivideOva, GeneratedHeadsAreClosedOnTheSurfaceAndDrawTheirOutline) {
    vgtest::Lcg next(5);
    std::vector<P> axes = {{0, 0, -1},    {0, 0, 1}, {1e-7, 0, 1},
                           {0, 1e-4, -1}, {0, 1, 0}, {-1, 0, 0}};
    for (P a : randomUnitVectors(60, 17))
        axes.push_back(a);
    int count = 0;
    for (P a : axes) {
        const double r = 0.05 * std::pow(10.0, 3 * next());
        const double h = r * (0.2 + next());
        const double f = count % 3 == 0 ? 0.0 : r * 0.5 * next();
        const P c = {next(-50, 50), next(-50, 50), next(-50, 50)};
        expectHead({r, h, f, c, unit(a)}, "head " + std::to_string(count++));
    }
}

TEST(EpDivideOva, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P c{0, 0, 0}, z{0, 0, 1};
    const struct {
        const char* id;
        double r, h, f;
        P c, axis;
    } bad[] = {
        {"NaN radius", kNaN, 1, 1, c, z},      {"zero radius", 0, 1, 1, c, z},
        {"small radius", 0.009, 1, 1, c, z},   {"negative radius", -1, 1, 1, c, z},
        {"infinite height", 1, kInf, 1, c, z}, {"zero height", 1, 0, 1, c, z},
        {"negative height", 1, -1, 1, c, z},   {"NaN flange", 1, 1, kNaN, c, z},
        {"negative flange", 1, 1, -0.1, c, z}, {"infinite centre", 1, 1, 1, {0, kInf, 0}, z},
        {"null axis", 1, 1, 1, c, {0, 0, 0}},  {"NaN axis", 1, 1, 1, c, {kNaN, 0, 1}},
    };
    for (const auto& b : bad) {
        EXPECT_EQ(ep_divide_ova(b.r, b.h, b.f, b.c, b.axis), nullptr) << b.id;
    }
    vgtest::forEachAllocationFailure([] {
        _s_hd_prof_* head = ep_divide_ova(2, 1, 0.5, {1, 2, 3}, unit({1, 2, 2}));
        freeHDProfObjectPointer(head);
        head = ep_divide_ova(2, 1, 0.5, {1, 2, 3}, {0, 0, 1});
        freeHDProfObjectPointer(head);
    });
}

}  // namespace
