// Tessellator of the dished vessel head: a straight flange (a short cylinder) and half an
// ellipsoid of revolution, drawn by its outline and the rim of its base.
//
// The half ellipsoid is the image of a unit half sphere under the map A that scales the
// directions normal to the axis by r and the axis by h. A maps the sphere's normals by its
// inverse, so the ellipsoid's contour in the view along Z is the image of the sphere's great
// circle normal to w = A^-1 Z. That circle passes through the two points e0 and -e0 of the
// equator that lie along Z x axis (the flange's silhouette points), so the half sphere is cut
// like a melon from e0 to -e0: meridian half circles through e0 and -e0 at angles lambda from
// the equator's half on the side of b0 = axis x e0 (lambda = 0) over the top to its other half
// (lambda = pi), with the contour's half circle among them, and parallel circles about e0 at
// the equator's vertex angles. Parallels and meridians of a sphere bound planar faces, and A
// keeps them planar; the contour runs along the edges of one meridian. The apex is a vertex
// only when both a meridian and a parallel pass through it.
#include <cmath>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

/// Meridians of the dome: the two equator halves, at most one per ring chord angle in each of
/// the two lunes either side of the contour, and the contour.
constexpr int kMaxMeridians = hd::kMaxCurveChords + 3;

/// A contour that rises above the equator's plane by no more than this many times the hide
/// pass's level depth is drawn by the equator's half beside it (see ep_divide_ova).
constexpr double kContourLevelShare = 2.0;

/// A flange no longer than this many times the hide pass's level depth is built as part of the
/// dome (see ep_divide_ova).
constexpr double kThinFlangeShare = 2.0;

/// A flange whose two rings lie apart in the drawing, and whose dome reaches beyond its top ring,
/// by no more than this part of the rings' chord sagitta is drawn as one seen along its axis.
constexpr double kRingsApartShare = 0.02;

// Appends to lambda the meridians that cut (from, to] into pieces no wider than step; the last
// is exactly to.
void cutLune(double from, double to, double step, double* lambda, int& count) {
    const double pieces = std::ceil((to - from) / step);
    const int k = pieces >= 1.0 ? static_cast<int>(pieces) : 0;
    for (int i = 1; i <= k; ++i)
        lambda[count++] = i == k ? to : from + (to - from) * i / k;
}

}  // namespace

_s_hd_prof_* ep_divide_ova(double r, double h, double f, _s_hd_point_ c, _s_hd_point_ axis) {
    if (!std::isfinite(r) || !std::isfinite(h) || !std::isfinite(f) || !isFinitePoint(c) ||
        !isFinitePoint(axis))
        return nullptr;
    if (!(r >= hd::kMinDiscRadius) || !(h >= hd::kMinDiscRadius) || !(f >= 0.0))
        return nullptr;
    const _s_hd_point_ a = vecNormalize(axis);
    if (vecDot(a, a) == 0.0)
        return nullptr;
    // A flange so short that the hide pass cannot tell its rings apart in depth would cost the
    // outline the base ring draws: the dome's faces beside the top ring take that ring as level
    // with them and hide it, and the base face hides the top ring. The dome stands on the base
    // instead, its apex where it was.
    if (f > 0.0 && f <= kThinFlangeShare * hd::kLevelDepthTol) {
        h += f;
        f = 0.0;
    }
    // e0 along Z x a, normalised without the kit's snapping, so that a head a hair off the view
    // axis still splits its flange at its true contour; only exactly along Z the disc's split.
    const double zxa = std::hypot(a.x, a.y);
    // Seen so nearly along the axis that the hide pass takes every face of the flange as edge-on,
    // the flange's top ring is outline (the base rim lies within a hair of it) and the dome's
    // contour hugs that ring: the ring is drawn instead.
    bool endOn = zxa < hd::kEdgeOnNormalZ;
    const _s_hd_point_ e0 =
        zxa > 0.0 ? _s_hd_point_{-a.y / zxa, a.x / zxa, 0.0} : _s_hd_point_{1.0, 0.0, 0.0};
    const _s_hd_point_ b0 = vecCross(a, e0);

    ViewSplitRing base;
    if (!splitRing(c, r, a, linComb(1.0, c, r, e0), base))
        return nullptr;
    const int m = base.count;
    const int half = m / 2;
    // A little farther off the axis the flange's rings lie a hair apart in the drawing (f sin t,
    // t the tilt), and the dome's faces next to the top ring take the base ring as lying under
    // them where it is outline: where they lie that close, and the dome reaches beyond the top
    // ring as little (the outline's half width across the tilt, sqrt((r cos t)^2 + (h sin t)^2),
    // less the ring's, r cos t), the top ring is drawn as when seen along the axis.
    if (!endOn && f > 0.0) {
        const double across = r * std::fabs(a.z);
        const double lean = h * zxa;
        const double bulge = lean * lean / (std::hypot(across, lean) + across);
        endOn = std::fmax(bulge, f * zxa) <= kRingsApartShare * r * (1.0 - std::cos(core::kPi / m));
    }
    ViewSplitRing top = base;
    for (int k = 0; k < m; ++k)
        top.pts[k] = linComb(1.0, base.pts[k], f, a);
    const ViewSplitRing& equator = f > 0.0 ? top : base;
    const _s_hd_point_ c1 = linComb(1.0, c, f, a);
    // The base ring alone spans a box of diagonal at least 2r.
    const double size = 2.0 * r;

    // Meridians: the contour's lambda solves (cos l) w.b0 + (sin l) w.a = 0.
    const double step = core::kFullTurn / m;
    double lambda[kMaxMeridians];
    int meridians = 0;
    int contour = -1;
    // Where the contour rises above the equator's plane by less than the hide pass can tell from
    // it, the equator's half on its side (0 from e0, half from -e0) stands for it.
    int levelHalf = -1;
    lambda[meridians++] = 0.0;
    if (endOn) {
        cutLune(0.0, core::kPi, step, lambda, meridians);
    } else {
        const double za = a.z;
        const _s_hd_point_ zPerp = linComb(-za, a, 1.0, {0.0, 0.0, 1.0});
        const _s_hd_point_ w = linComb(1.0 / r, zPerp, za / h, a);
        double lc = std::atan2(-vecDot(w, b0), vecDot(w, a));
        if (lc < 0.0)
            lc += core::kPi;
        if (h * std::sin(lc) <= kContourLevelShare * hd::kLevelDepthTol) {
            levelHalf = lc < 0.5 * core::kPi ? 0 : half;
            cutLune(0.0, core::kPi, step, lambda, meridians);
        } else {
            cutLune(0.0, lc, step, lambda, meridians);
            contour = meridians - 1;
            cutLune(lc, core::kPi, step, lambda, meridians);
        }
    }

    HDProfDraft draft;
    draft.seedBox(base.pts[0]);
    for (int k = 0; k < m; ++k) {
        draft.extendBox(base.pts[k]);
        draft.extendBox(top.pts[k]);
    }
    // Lines: the base rim, the flange's silhouette generators, the dome's contour, and the top
    // of a flange seen end-on.
    draft.addRingLines(base);
    if (f > 0.0 && zxa > 0.0) {
        draft.addLine(base.pts[0], top.pts[0]);
        draft.addLine(base.pts[half], top.pts[half]);
    }
    // Faces: the base, the flange, the dome lune by lune.
    draft.addRingDisc(base, true);
    if (f > 0.0)
        draft.addRingBand(base, top, 0, size);

    _s_hd_point_ prev[hd::kMaxCurveChords / 2 + 1];
    _s_hd_point_ col[hd::kMaxCurveChords / 2 + 1];
    for (int j = 0; j <= half; ++j)
        prev[j] = equator.pts[j];
    for (int l = 1; l < meridians && draft.ok(); ++l) {
        col[0] = equator.pts[0];
        col[half] = equator.pts[half];
        for (int j = 1; j < half; ++j) {
            if (l == meridians - 1) {
                col[j] = equator.pts[m - j];
                continue;
            }
            const double mu = hd::kHalfTurnApprox * j / half;
            const double sl = std::sin(lambda[l]);
            const double cl = std::cos(lambda[l]);
            const _s_hd_point_ ring = linComb(std::cos(mu), e0, std::sin(mu) * cl, b0);
            col[j] = linComb(1.0, linComb(1.0, c1, r, ring), h * std::sin(mu) * sl, a);
            draft.extendBox(col[j]);
        }
        for (int j = 0; j < half; ++j)
            draft.addPlanarQuad(prev[j], prev[j + 1], col[j + 1], col[j], size);
        if (l == contour)
            for (int j = 0; j < half; ++j)
                draft.addLine(col[j], col[j + 1]);
        for (int j = 0; j <= half; ++j)
            prev[j] = col[j];
    }
    if (endOn && f > 0.0)
        draft.addRingLines(top);
    if (levelHalf >= 0 && f > 0.0)
        for (int j = levelHalf; j < levelHalf + half; ++j)
            draft.addLine(top.pts[j], top.pts[(j + 1) % m]);
    return draft.finish();
}

}  // namespace geolib
