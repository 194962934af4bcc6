// Test support: the true edges of a curved solid as dense polylines, and one call that runs the
// shared solid checks on a lone tessellated primitive against them.
#ifndef VOGEBASIC_TESTS_ANALYTIC_EDGES_H
#define VOGEBASIC_TESTS_ANALYTIC_EDGES_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/solid_checks.h"

namespace hdtest {

/// A true edge (a rim, a sharp edge or a contour generator) as a dense polyline; a closed curve
/// repeats its first point at the end, a single point is an apex.
using Curve = std::vector<P>;

/// Points of a closed curve drawn this densely are within 3e-7 of its size of the curve.
constexpr int kCurveSamples = 4096;

inline double distToCurve(P p, const Curve& c) {
    if (c.size() == 1)
        return solid::norm(solid::sub(p, c[0]));
    double best = HUGE_VAL;
    for (std::size_t i = 1; i < c.size(); ++i)
        best = std::min(best, solid::distToSegment(p, c[i - 1], c[i]));
    return best;
}

inline double distToCurves(P p, const std::vector<Curve>& cs) {
    double best = HUGE_VAL;
    for (const Curve& c : cs)
        best = std::min(best, distToCurve(p, c));
    return best;
}

/// The closed curve f(theta) for theta over a full turn.
template <class F>
Curve closedCurve(F f) {
    Curve c;
    for (int i = 0; i <= kCurveSamples; ++i)
        c.push_back(f(6.283185307179586 * i / kCurveSamples));
    return c;
}

// A ruled solid as the tests see it: the rim point at angle theta of each end; the generator at
// theta joins the two. An end of radius 0 is an apex.
struct Ruled {
    std::function<P(double)> rimA, rimB;
    bool apexA = false, apexB = false;
};

// The generators where the side's normal is square to Z, found by sampling the normal of the
// surface between the rims and refining each change of sign, over the angles from..to.
inline std::vector<Curve> contourGenerators(const Ruled& s, double from = 0.0,
                                            double to = 6.283185307179586) {
    auto normalZ = [&](double t) {
        const double h = 1e-6;
        auto mid = [&](double a) { return geolib::lerpPoint(0.5, s.rimA(a), s.rimB(a)); };
        const P along = solid::sub(s.rimB(t), s.rimA(t));
        const P round = solid::sub(mid(t + h), mid(t - h));
        return solid::cross(round, along).z / (solid::norm(round) * solid::norm(along));
    };
    std::vector<Curve> out;
    const int steps = 2000;
    for (int i = 0; i < steps; ++i) {
        double lo = from + (to - from) * i / steps, hi = from + (to - from) * (i + 1) / steps;
        if ((normalZ(lo) < 0) == (normalZ(hi) < 0))
            continue;
        for (int k = 0; k < 60; ++k) {
            const double m = 0.5 * (lo + hi);
            ((normalZ(m) < 0) == (normalZ(lo) < 0) ? lo : hi) = m;
        }
        out.push_back({s.rimA(lo), s.rimB(lo)});
    }
    return out;
}

/// Runs every shared check on obj (a lone solid): its vertices lie on the surface (surface:
/// the distance to it; when empty, the vertices must lie on the rims, apexes included, or the
/// contours) within 1e-6 of its size; each line is a chord of one rim (a sharp edge) or a
/// contour edge; drawn alone it shows the rims and contours within the largest chord sagitta
/// of its lines and outlines the hull of samples.
inline void expectTrueSolid(geolib::_s_hd_prof_* obj, const std::vector<Curve>& rims,
                            const std::vector<Curve>& contours, const std::vector<P>& samples,
                            const char* what, std::function<double(P)> surface = {}) {
    ASSERT_NE(obj, nullptr) << what;
    std::vector<Curve> all = rims;
    all.insert(all.end(), contours.begin(), contours.end());
    const double size = solid::size(obj);
    const double tol = 1e-6 * size;
    expectWellFormedFaces(obj, what);
    expectClosedOutward(obj, what);
    expectBoxHolds(obj, what);
    if (!surface)
        surface = [&](P p) { return distToCurves(p, all); };
    expectOnSurface(obj, surface, tol, what);
    expectLinesAreEdges(
        obj,
        [&](P a, P b) {
            const P mid{0.5 * (a.x + b.x), 0.5 * (a.y + b.y), 0.5 * (a.z + b.z)};
            const double chord = solid::norm(solid::sub(a, b));
            return std::any_of(rims.begin(), rims.end(), [&](const Curve& c) {
                return c.size() > 1 && distToCurve(a, c) <= tol && distToCurve(b, c) <= tol &&
                       distToCurve(mid, c) <= 0.25 * chord + tol;
            });
        },
        what);
    // A chord's sagitta is measured to the curve it was cut from (the one holding both ends).
    double sagitta = 0.0;
    for (const auto& [a, b] : solid::lines(obj->proline)) {
        const P mid{0.5 * (a.x + b.x), 0.5 * (a.y + b.y), 0.5 * (a.z + b.z)};
        double own = HUGE_VAL;
        for (const Curve& c : all)
            if (distToCurve(a, c) <= tol && distToCurve(b, c) <= tol)
                own = std::min(own, distToCurve(mid, c));
        sagitta = std::max(sagitta, own < HUGE_VAL ? own : distToCurves(mid, all));
    }
    expectDrawingTrue(
        obj, [&](P p) { return distToCurves(p, all); }, samples, sagitta + tol, what);
}

/// Log-uniform sizes from lo to hi, the same sequence for the same seed.
class SizeGen {
public:
    explicit SizeGen(unsigned seed) : s_(seed * 2654435761u + 12345u) {}
    double operator()(double lo, double hi) {
        s_ ^= s_ << 13;
        s_ ^= s_ >> 17;
        s_ ^= s_ << 5;
        return lo * std::pow(hi / lo, s_ / 4294967296.0);
    }

private:
    std::uint32_t s_;
};

}  // namespace hdtest

#endif  // VOGEBASIC_TESTS_ANALYTIC_EDGES_H
