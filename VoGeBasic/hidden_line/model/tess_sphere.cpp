// Tessellators of the sphere and the ring plate.
//
// The sphere is cut along circles about the vertical (Z) line through its centre, the axis the
// view runs along, so its silhouette, the equator, is one of them. The ring plate is cut along
// circles about its own axis; about the view axis its walls stand edge-on to the view, and
// otherwise its arcs break where its walls have their silhouette generators.
#include <cmath>
#include <initializer_list>
#include <utility>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

const _s_hd_point_ kViewAxis = {0.0, 0.0, 1.0};

// Ring vertices of a ring plate at most: the most chords of an arc, one more for a sector's far
// end, and one more for each of the two silhouette arcs that round its share up.
constexpr int kMaxPlateVertices = hd::kMaxCurveChords + 3;

// Latitude bands from the equator to each pole: a quarter of the equator's chords, rounded up,
// so a meridian takes at least half as many chords as the equator.
int sphereBands(int equatorChords) {
    return (equatorChords + 3) / 4;
}

// A ring plate's plane square to its axis k: angle theta lies along cos theta x + sin theta y,
// x the projection of +X (of +Y for an axis along X), y = k x x, so that about k = +Z the angles
// run from +X towards +Y.
struct PlateFrame {
    _s_hd_point_ x, y, k;
    _s_hd_point_ at(_s_hd_point_ c, double r, double theta) const {
        return linComb(1.0, c, r, linComb(std::cos(theta), x, std::sin(theta), y));
    }
};

// Where a ring plate's arcs break: a0, the angles of the walls' silhouette generators inside
// the sweep, and a1; each arc between two breaks takes its share of the chords.
struct PlateBreaks {
    static constexpr int kMax = 4;
    double angle[kMax];
    int chords[kMax - 1];
    int arcs = 0;
    int vertices = 0;  // ring vertices: all chords, plus one for a sector's far end
};

// The ring's vertices: radius r about c, arc by arc through the breaks, each made by the arc
// routine (a whole turn in one arc as a full circle, which runs clockwise seen from the tip of
// its axis vector, so -k turns it the way the angles go). Returns false if an allocation fails
// or an arc does not come out in its chords.
bool plateRing(_s_hd_point_ c, double r, const PlateFrame& f, const PlateBreaks& br, bool fullTurn,
               _s_hd_point_* out) {
    int written = 0;
    for (int arc = 0; arc < br.arcs; ++arc) {
        const double b0 = br.angle[arc];
        const double b1 = br.angle[arc + 1];
        const int n = br.chords[arc];
        const _s_hd_point_ s = f.at(c, r, b0);
        _s_hd_proline_* chords = nullptr;
        const bool ok =
            fullTurn && br.arcs == 1
                ? divideArc2Proline(c, s, vecNegate(f.k), s, n, chords)
                : divideArc2Proline(c, s, f.at(c, r, 0.5 * (b0 + b1)), f.at(c, r, b1), n, chords);
        int made = 0;
        for (const _s_hd_proline_* l = chords; ok && l != nullptr; l = l->next, ++made) {
            if (made < n)
                out[written + made] = l->start;
            if (!fullTurn && arc == br.arcs - 1 && made == n - 1)
                out[written + n] = l->end;
        }
        releaseProline(chords);
        if (!ok || made != n)
            return false;
        written += n;
    }
    return true;
}

// The breaks of a plate's arcs: its walls' silhouette generators lie where the radial direction
// is square to Z, at two opposite angles (none when k is the view axis). A closed ring starts at
// the first of them (at a0 seen along its axis); a sector breaks at those strictly inside it.
// The arcs share the n chords in proportion to their angles, each at least one.
void plateBreaks(const PlateFrame& f, double a0, double a1, bool fullTurn, bool facing, int n,
                 PlateBreaks& br) {
    double first = a0;
    if (!facing) {
        const _s_hd_point_ u = unitCross(kViewAxis, f.k);
        first = std::atan2(vecDot(u, f.y), vecDot(u, f.x));
    }
    br.arcs = 0;
    if (fullTurn) {
        br.angle[0] = first;
        if (!facing)
            br.angle[++br.arcs] = first + core::kPi;
        br.angle[++br.arcs] = first + core::kFullTurn;
    } else {
        br.angle[0] = a0;
        double inside[2];
        int count = 0;
        for (int i = 0; i < 2 && !facing; ++i) {
            double from = std::fmod(first + i * core::kPi - a0, core::kFullTurn);
            if (from < 0.0)
                from += core::kFullTurn;
            if (from > hd::kSilhouetteMergeAngle && a0 + from < a1 - hd::kSilhouetteMergeAngle)
                inside[count++] = a0 + from;
        }
        if (count == 2 && inside[1] < inside[0])
            std::swap(inside[0], inside[1]);
        for (int i = 0; i < count; ++i)
            br.angle[++br.arcs] = inside[i];
        br.angle[++br.arcs] = a1;
    }
    br.vertices = (fullTurn ? 0 : 1) + shareArcChords(br.angle, br.arcs, n, br.chords);
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
            const double latitude = 0.5 * core::kPi * j / bands;
            for (int i = 0; i < m; ++i) {
                const _s_hd_point_ radial = vecSub(equator.pts[i], c);
                upper[i] = j == bands ? pole
                                      : linComb(1.0, linComb(1.0, c, std::cos(latitude), radial),
                                                side * r * std::sin(latitude), kViewAxis);
                draft.extendBox(upper[i]);
                if (!isFinitePoint(upper[i]))
                    draft.fail();  // a radius near the largest double overflows
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

_s_hd_prof_* ep_divide_sad(double ri, double ro, double t, _s_hd_point_ c, double a0, double a1,
                           _s_hd_point_ axis) {
    const double sweep = a1 - a0;
    if (!std::isfinite(ri) || !std::isfinite(ro) || !std::isfinite(t) || !isFinitePoint(c) ||
        !isFinitePoint(axis) || !std::isfinite(sweep) || !(sweep > 0.0) || !(ri >= 0.0) ||
        !(ri < ro) || !(t > 0.0) || !(ro >= hd::kMinDiscRadius))
        return nullptr;
    if (ri < hd::kMinDiscRadius)
        ri = 0.0;  // a sector of a disc: the inner rim is the centre line
    PlateFrame f;
    f.k = vecNormalize(axis);
    if (vecLength(f.k) == 0.0)
        return nullptr;
    const bool facing = std::fabs(std::fabs(f.k.z) - 1.0) <= hd::kFacingTol;
    if (facing)
        f.k = {0.0, 0.0, f.k.z > 0.0 ? 1.0 : -1.0};
    const _s_hd_point_ ref =
        std::fabs(f.k.x) < 0.5 ? _s_hd_point_{1.0, 0.0, 0.0} : _s_hd_point_{0.0, 1.0, 0.0};
    f.x = vecNormalize(linComb(1.0, ref, -vecDot(ref, f.k), f.k));
    f.y = vecCross(f.k, f.x);
    // A sweep whose ends meet on the outer rim is a full turn too.
    const bool fullTurn =
        sweep >= core::kFullTurn || isSamePointFine(f.at(c, ro, a0), f.at(c, ro, a1));
    if (fullTurn)
        a1 = a0 + core::kFullTurn;
    PlateBreaks br;
    plateBreaks(f, a0, a1, fullTurn, facing, getArcDivideNum(c, ro, a0, a1), br);
    const int count = br.vertices;
    const int n = fullTurn ? count : count - 1;  // chords of each arc ring
    // Rings at the face through c and at the face through c + t k, outer and inner.
    _s_hd_point_ outer[kMaxPlateVertices];
    _s_hd_point_ inner[kMaxPlateVertices];
    _s_hd_point_ outerFar[kMaxPlateVertices];
    _s_hd_point_ innerFar[kMaxPlateVertices];
    if (!plateRing(c, ro, f, br, fullTurn, outer))
        return nullptr;
    for (int k = 0; k < count; ++k)
        inner[k] = c;
    if (ri > 0.0 && !plateRing(c, ri, f, br, fullTurn, inner))
        return nullptr;
    for (int k = 0; k < count; ++k) {
        outerFar[k] = linComb(1.0, outer[k], t, f.k);
        innerFar[k] = linComb(1.0, inner[k], t, f.k);
    }
    const double size = std::fmax(2.0 * ro, t);
    if (!std::isfinite(size))
        return nullptr;
    for (int k = 0; k < count; ++k)  // sizes near the largest double can overflow
        if (!isFinitePoint(outer[k]) || !isFinitePoint(inner[k]) || !isFinitePoint(outerFar[k]) ||
            !isFinitePoint(innerFar[k]))
            return nullptr;

    HDProfDraft draft;
    draft.seedBox(outer[0]);
    for (int k = 0; k < count; ++k) {
        draft.extendBox(outer[k]);
        draft.extendBox(inner[k]);
        draft.extendBox(outerFar[k]);
        draft.extendBox(innerFar[k]);
    }
    // Faces: per chord the face through c, the face through c + t k, the outer wall and the
    // inner wall; then the end faces at a0 and a1 of a sector.
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
    // Lines: each face's outline (outer arc, inner arc, the radial ends of a sector), the
    // near face first; seen along the axis the far outline lies under the near one and the
    // walls are edge-on, so only the near one is drawn. Otherwise the far outline follows, then
    // the edges along the axis at the sector's ends (the centre line of a disc's sector once),
    // and the silhouette generators of the outer wall and of the inner wall.
    const bool nearAtC = f.k.z > 0.0;
    for (int face = 0; face < (facing ? 1 : 2); ++face) {
        const bool atC = (face == 0) == nearAtC;
        const _s_hd_point_* o = atC ? outer : outerFar;
        const _s_hd_point_* in = atC ? inner : innerFar;
        for (int k = 0; k < n; ++k)
            draft.addLine(o[k], o[(k + 1) % count]);
        for (int k = 0; k < n && ri > 0.0; ++k)
            draft.addLine(in[k], in[(k + 1) % count]);
        if (!fullTurn) {
            draft.addLine(in[0], o[0]);
            draft.addLine(in[n], o[n]);
        }
    }
    if (!facing) {
        if (!fullTurn) {
            draft.addLine(outer[0], outerFar[0]);
            draft.addLine(outer[n], outerFar[n]);
            draft.addLine(inner[0], innerFar[0]);
            if (ri > 0.0)
                draft.addLine(inner[n], innerFar[n]);
        }
        for (int wall = 0; wall < (ri > 0.0 ? 2 : 1); ++wall) {
            const _s_hd_point_* ring = wall == 0 ? outer : inner;
            const _s_hd_point_* far = wall == 0 ? outerFar : innerFar;
            int k = 0;
            for (int arc = 0; arc < br.arcs; ++arc) {
                if (fullTurn || arc > 0)
                    draft.addLine(ring[k], far[k]);
                k += br.chords[arc];
            }
        }
    }
    return draft.finish();
}

_s_hd_prof_* ep_divide_sad(double ri, double ro, double t, _s_hd_point_ c, double a0, double a1) {
    return ep_divide_sad(ri, ro, t, c, a0, a1, kViewAxis);
}

}  // namespace geolib
