// Tessellators of the revolved primitives: the flat disc, with its half-circle chord builder.
#include <cmath>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

_s_hd_proline_* divideHalfCircle2Proline(int n, _s_hd_point_ c, _s_hd_point_ axis, _s_hd_point_ s,
                                         _s_hd_point_ e, double r) {
    if (!(r >= hd::kMinDiscRadius) || n < 1 || n > hd::kMaxArcChords)
        return nullptr;
    if (isSamePointFine(s, c) && isSamePointFine(e, c))
        return nullptr;
    const double step = hd::kHalfTurnApprox / n;
    ProlineChain chords;
    _s_hd_point_ current = s;
    for (int k = 1; k < n; ++k) {
        // One step along the tangent line, projected back onto the circle of radius r.
        const _s_hd_point_ radial = unitDir(current, c);
        const _s_hd_point_ tangent = unitCross(axis, radial);
        const _s_hd_point_ ahead = linComb(1.0, current, std::tan(step) * r, tangent);
        const _s_hd_point_ next = linComb(1.0, c, r, unitDir(ahead, c));
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

_s_hd_prof_* ep_divide_cir(_s_hd_point_ center, double r, _s_hd_point_ normal) {
    if (!(r >= hd::kMinDiscRadius) || !std::isfinite(r) || !isFinitePoint(center) ||
        !isFinitePoint(normal))
        return nullptr;
    // Split the rim where it is extreme in the view along Z.
    const _s_hd_point_ view = {0.0, 0.0, 1.0};
    _s_hd_point_ s;
    _s_hd_point_ e;
    if (std::fabs(std::fabs(vecDot(normal, view)) - 1.0) <= hd::kFacingTol) {
        s = vecAdd(center, {r, 0.0, 0.0});
        e = vecSub(center, {r, 0.0, 0.0});
    } else {
        s = linComb(1.0, center, r, unitCross(view, normal));
        e = mirrorPoint(s, center);
    }
    int m = getCircleDivideNum(center, r);
    if (m % 2 != 0)
        ++m;

    _s_hd_proline_* half1 = divideHalfCircle2Proline(m / 2, center, normal, s, e, r);
    if (half1 == nullptr)
        return nullptr;
    _s_hd_proline_* half2 = divideHalfCircle2Proline(m / 2, center, vecNegate(normal), s, e, r);
    HDProfDraft draft;
    draft.addLines(half1);
    if (half2 == nullptr)
        draft.fail();
    draft.seedBox(s);
    // A strip across the disc between the halves: a triangle at s, quadrilaterals, a triangle
    // at e.
    for (const _s_hd_proline_ *k1 = half1, *k2 = half2;
         draft.ok() && k1 != nullptr && k2 != nullptr; k1 = k1->next, k2 = k2->next) {
        if (k1 == half1) {
            draft.addTri(k1->start, k1->end, k2->end);
            continue;
        }
        draft.extendBox(k1->start);
        draft.extendBox(k2->start);
        if (k2->next != nullptr) {
            draft.addQuad(k1->start, k1->end, k2->end, k2->start);
        } else {
            draft.extendBox(e);
            draft.addTri(k1->start, k1->end, k2->start);
        }
    }
    draft.addLines(half2);
    return draft.finish();
}

}  // namespace geolib
