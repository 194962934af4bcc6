// Tessellators of the solids built about the view axis: the sphere and the ring plate.
//
// Both are cut along circles about the vertical (Z) line through their centre, the axis the
// view runs along: the sphere's silhouette is then its equator, one of those circles, and the
// ring plate's walls stand edge-on to the view.
#include <cmath>
#include <initializer_list>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

const _s_hd_point_ kViewAxis = {0.0, 0.0, 1.0};

// Latitude bands from the equator to each pole: a quarter of the equator's chords, rounded up,
// so a meridian takes at least half as many chords as the equator.
int sphereBands(int equatorChords) {
    return (equatorChords + 3) / 4;
}

// The vertices of the arc about c of radius r at depth c.z from angle a0 to a1 (from +X towards
// +Y) in n chords, n + 1 points; a full turn gives n points. Made by the arc routine; returns
// false if an allocation fails or the arc does not come out in n chords.
bool plateArc(_s_hd_point_ c, double r, double a0, double a1, bool fullTurn, int n,
              _s_hd_point_* out) {
    auto at = [&](double a) {
        return _s_hd_point_{c.x + r * std::cos(a), c.y + r * std::sin(a), c.z};
    };
    _s_hd_proline_* chords = nullptr;
    // A full circle runs clockwise seen from the tip of its axis vector: -Z turns it from +X
    // towards +Y.
    const bool ok = fullTurn ? divideArc2Proline(c, at(a0), vecNegate(kViewAxis), at(a0), n, chords)
                             : divideArc2Proline(c, at(a0), at(0.5 * (a0 + a1)), at(a1), n, chords);
    int made = 0;
    for (const _s_hd_proline_* l = chords; ok && l != nullptr; l = l->next) {
        if (made < n)
            out[made] = l->start;
        if (made == n - 1 && !fullTurn)
            out[n] = l->end;
        ++made;
    }
    releaseProline(chords);
    return ok && made == n;
}

}  // namespace

_s_hd_prof_* ep_divide_sph(_s_hd_point_ c, double r) {
    ViewSplitRing equator;
    if (!viewSplitRing(c, r, kViewAxis, equator))
        return nullptr;
    const int m = equator.count;
    const int bands = sphereBands(m);
    const double size = 2.0 * r;
    HDProfDraft draft;
    draft.seedBox(equator.pts[0]);
    // The near hemisphere (towards -Z) first, then the far one; in each, the bands from the
    // equator to the pole, each ring the equator scaled towards the axis and moved along it.
    for (const double side : {-1.0, 1.0}) {
        _s_hd_point_ lower[hd::kMaxCurveChords];
        _s_hd_point_ upper[hd::kMaxCurveChords];
        for (int i = 0; i < m; ++i)
            lower[i] = equator.pts[i];
        const _s_hd_point_ pole = linComb(1.0, c, side * r, kViewAxis);
        for (int j = 1; j <= bands; ++j) {
            const double latitude = 0.5 * hd::kPi * j / bands;
            for (int i = 0; i < m; ++i) {
                const _s_hd_point_ radial = vecSub(equator.pts[i], c);
                upper[i] = j == bands ? pole
                                      : linComb(1.0, linComb(1.0, c, std::cos(latitude), radial),
                                                side * r * std::sin(latitude), kViewAxis);
                draft.extendBox(upper[i]);
            }
            for (int i = 0; i < m; ++i) {
                const int i1 = (i + 1) % m;
                if (side > 0.0)
                    draft.addPlanarQuad(lower[i], lower[i1], upper[i1], upper[i], size);
                else
                    draft.addPlanarQuad(lower[i1], lower[i], upper[i], upper[i1], size);
            }
            for (int i = 0; i < m; ++i)
                lower[i] = upper[i];
        }
    }
    for (int i = 0; i < m; ++i) {
        draft.extendBox(equator.pts[i]);
        draft.addLine(equator.pts[i], equator.pts[(i + 1) % m]);
    }
    return draft.finish();
}

_s_hd_prof_* ep_divide_sad(double ri, double ro, double t, _s_hd_point_ c, double a0, double a1) {
    const double sweep = a1 - a0;
    if (!std::isfinite(ri) || !std::isfinite(ro) || !std::isfinite(t) || !isFinitePoint(c) ||
        !std::isfinite(sweep) || !(sweep > 0.0) || !(ri >= 0.0) || !(ri < ro) || !(t > 0.0) ||
        !(ro >= hd::kMinDiscRadius))
        return nullptr;
    if (ri < hd::kMinDiscRadius)
        ri = 0.0;  // a sector of a disc: the inner rim is the centre line
    // A sweep whose ends meet on the outer rim is a full turn too.
    const _s_hd_point_ start = {c.x + ro * std::cos(a0), c.y + ro * std::sin(a0), c.z};
    const _s_hd_point_ end = {c.x + ro * std::cos(a1), c.y + ro * std::sin(a1), c.z};
    const bool fullTurn = sweep >= hd::kTwoPi || isSamePointFine(start, end);
    if (fullTurn)
        a1 = a0 + hd::kTwoPi;
    const int n = getArcDivideNum(c, ro, a0, a1);
    const int count = fullTurn ? n : n + 1;
    // Near (at depth c.z) and far (c.z + t) rings, outer and inner, at common angles.
    _s_hd_point_ outer[hd::kMaxCurveChords + 1];
    _s_hd_point_ inner[hd::kMaxCurveChords + 1];
    _s_hd_point_ outerFar[hd::kMaxCurveChords + 1];
    _s_hd_point_ innerFar[hd::kMaxCurveChords + 1];
    if (!plateArc(c, ro, a0, a1, fullTurn, n, outer))
        return nullptr;
    for (int k = 0; k < count; ++k)
        inner[k] = c;
    if (ri > 0.0 && !plateArc(c, ri, a0, a1, fullTurn, n, inner))
        return nullptr;
    for (int k = 0; k < count; ++k) {
        outerFar[k] = linComb(1.0, outer[k], t, kViewAxis);
        innerFar[k] = linComb(1.0, inner[k], t, kViewAxis);
    }
    const double size = std::fmax(2.0 * ro, t);
    if (!std::isfinite(size) || !std::isfinite(outerFar[0].z))
        return nullptr;

    HDProfDraft draft;
    draft.seedBox(outer[0]);
    for (int k = 0; k < count; ++k) {
        draft.extendBox(outer[k]);
        draft.extendBox(inner[k]);
        draft.extendBox(outerFar[k]);
        draft.extendBox(innerFar[k]);
    }
    // Faces: per chord the near face, the far face, the outer wall and the inner wall; then the
    // end faces at a0 and a1 of a sector.
    for (int k = 0; k < n; ++k) {
        const int k1 = (k + 1) % count;
        draft.addPlanarQuad(inner[k], inner[k1], outer[k1], outer[k], size);
        draft.addPlanarQuad(innerFar[k], outerFar[k], outerFar[k1], innerFar[k1], size);
        draft.addPlanarQuad(outer[k], outer[k1], outerFar[k1], outerFar[k], size);
        draft.addPlanarQuad(inner[k1], inner[k], innerFar[k], innerFar[k1], size);
    }
    if (!fullTurn) {
        draft.addPlanarQuad(inner[0], outer[0], outerFar[0], innerFar[0], size);
        draft.addPlanarQuad(inner[n], innerFar[n], outerFar[n], outer[n], size);
    }
    // Lines: the near face's outline, which the far one repeats in the view: the outer arc, the
    // inner arc, then the ends of a sector.
    for (int k = 0; k < n; ++k)
        draft.addLine(outer[k], outer[(k + 1) % count]);
    for (int k = 0; k < n && ri > 0.0; ++k)
        draft.addLine(inner[k], inner[(k + 1) % count]);
    if (!fullTurn) {
        draft.addLine(inner[0], outer[0]);
        draft.addLine(inner[n], outer[n]);
    }
    return draft.finish();
}

}  // namespace geolib
