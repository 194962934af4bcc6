// Tessellators of the revolved primitives: the flat disc, with its half-circle chord builder and
// the view-split ring that the curved primitives share with it.
#include <cmath>
#include <utility>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

_s_hd_point_ halfCircleStep(_s_hd_point_ c, _s_hd_point_ axis, _s_hd_point_ current, double r,
                            double tanStep) {
    const _s_hd_point_ radial = unitDir(current, c);
    const _s_hd_point_ tangent = unitCross(axis, radial);
    const _s_hd_point_ ahead = linComb(1.0, current, tanStep * r, tangent);
    return linComb(1.0, c, r, unitDir(ahead, c));
}

_s_hd_proline_* divideHalfCircle2Proline(int n, _s_hd_point_ c, _s_hd_point_ axis, _s_hd_point_ s,
                                         _s_hd_point_ e, double r) {
    if (!(r >= hd::kMinDiscRadius) || n < 1 || n > hd::kMaxArcChords)
        return nullptr;
    if (isSamePointFine(s, c) && isSamePointFine(e, c))
        return nullptr;
    const double tanStep = std::tan(hd::kHalfTurnApprox / n);
    ProlineChain chords;
    _s_hd_point_ current = s;
    for (int k = 1; k < n; ++k) {
        const _s_hd_point_ next = halfCircleStep(c, axis, current, r, tanStep);
        if (!chords.append(current, next)) {
            releaseProline(chords.head);
            return nullptr;
        }
        current = next;
    }
    if (!chords.append(current, e)) {
        releaseProline(chords.head);
        return nullptr;
    }
    return chords.head;
}

bool viewSplitRing(_s_hd_point_ c, double r, _s_hd_point_ n, ViewSplitRing& ring) {
    ring.count = 0;
    if (!(r >= hd::kMinDiscRadius) || !std::isfinite(r) || !isFinitePoint(c) || !isFinitePoint(n))
        return false;
    // Split the circle where it is extreme in the view along Z.
    const _s_hd_point_ view = {0.0, 0.0, 1.0};
    if (std::fabs(std::fabs(vecDot(n, view)) - 1.0) <= hd::kFacingTol)
        return splitRing(c, r, n, vecAdd(c, {r, 0.0, 0.0}), ring);
    return splitRing(c, r, n, linComb(1.0, c, r, unitCross(view, n)), ring);
}

bool splitRing(_s_hd_point_ c, double r, _s_hd_point_ n, _s_hd_point_ s, ViewSplitRing& ring) {
    ring.count = 0;
    if (!(r >= hd::kMinDiscRadius) || !std::isfinite(r) || !isFinitePoint(c) || !isFinitePoint(n) ||
        !isFinitePoint(s))
        return false;
    const _s_hd_point_ e = mirrorPoint(s, c);
    if (isSamePointFine(s, c) && isSamePointFine(e, c))
        return false;
    int m = getCircleDivideNum(c, r);
    if (m % 2 != 0)
        ++m;
    const int half = m / 2;
    const double tanStep = std::tan(hd::kHalfTurnApprox / half);
    const _s_hd_point_ back = vecNegate(n);
    ring.pts[0] = s;
    ring.pts[half] = e;
    _s_hd_point_ ahead = s;
    _s_hd_point_ behind = s;
    for (int k = 1; k < half; ++k) {
        ahead = halfCircleStep(c, n, ahead, r, tanStep);
        behind = halfCircleStep(c, back, behind, r, tanStep);
        ring.pts[k] = ahead;
        ring.pts[m - k] = behind;
    }
    ring.count = m;
    return true;
}

_s_hd_prof_* ep_divide_cir(_s_hd_point_ center, double r, _s_hd_point_ normal) {
    ViewSplitRing ring;
    if (!viewSplitRing(center, r, normal, ring))
        return nullptr;
    const _s_hd_point_* p = ring.pts;
    const int m = ring.count;
    const int half = m / 2;
    HDProfDraft draft;
    // Lines: the half from s to e counter-clockwise about the normal, then the other half
    // from s to e.
    for (int k = 0; k < half; ++k)
        draft.addLine(p[k], p[k + 1]);
    for (int k = 0; k < half; ++k)
        draft.addLine(p[(m - k) % m], p[m - k - 1]);
    // A strip across the disc between the halves: a triangle at s, quadrilaterals, a triangle
    // at e.
    draft.seedBox(p[0]);
    draft.addTri(p[0], p[1], p[m - 1]);
    for (int k = 1; k < half - 1; ++k) {
        draft.extendBox(p[k]);
        draft.extendBox(p[m - k]);
        draft.addQuad(p[k], p[k + 1], p[m - k - 1], p[m - k]);
    }
    draft.extendBox(p[half - 1]);
    draft.extendBox(p[half + 1]);
    draft.extendBox(p[half]);
    draft.addTri(p[half - 1], p[half], p[half + 1]);
    return draft.finish();
}

int ringVertexToSnap(const double* at, int m, double t) {
    int nearest = -1;
    double gap = HUGE_VAL;
    for (int k = 0; k < m; ++k) {
        const double d = std::fabs(t - at[k]);
        const double around = std::fmin(d, core::kFullTurn - d);
        if (around < gap) {
            gap = around;
            nearest = k;
        }
    }
    return gap > hd::kRingSnapShare * core::kFullTurn / m ? -1 : nearest;
}

int ringWithPoints(const double* at, int m, const double* put, const int* tags, int count,
                   bool onePerVertex, RingStop* out) {
    bool taken[hd::kMaxCurveChords] = {};
    for (int k = 0; k < m; ++k)
        out[k] = {at[k], k};
    int n = m;
    for (int i = 0; i < count; ++i) {
        const int v = ringVertexToSnap(at, m, put[i]);
        const bool snaps = v >= 0 && !taken[v];
        if (v >= 0 && !snaps && onePerVertex)
            return -1;
        if (snaps)
            taken[v] = true;
        out[snaps ? v : n++] = {put[i], tags[i]};
    }
    for (int i = 1; i < n; ++i)  // insertion sort: the pattern is in order already
        for (int j = i; j > 0 && out[j].t < out[j - 1].t; --j)
            std::swap(out[j], out[j - 1]);
    return n;
}

}  // namespace geolib
