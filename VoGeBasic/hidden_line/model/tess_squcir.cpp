// Tessellator of the square-to-round transition: a rectangle at one end, a circle in a parallel
// plane at the other.
//
// The side is the developable surface of a sheet-metal transition: over each side of the
// rectangle a flat triangle whose apex is the circle point where the circle's tangent runs along
// that side (its plane is tangent to the circle there), and at each corner of the rectangle a fan
// of triangles to the quarter of the circle between two such points, a piece of an oblique cone
// with its apex at the corner. The flat triangles and the fans meet along tangent generators, so
// the side is smooth everywhere; its silhouettes in the view along Z are generators of the fans
// (or edges of a flat triangle seen edge-on), and a circle vertex is placed on each.
#include <algorithm>
#include <cmath>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

// The angles, inside (from, to), at which the cone with apex at corner over the circle about c
// of radius r (frame x, y, normal n) has a silhouette generator in the view along Z: there the
// cone's normal (p - corner) x p' is square to Z, with p(t) = c + r (cos t x + sin t y).
int coneSilhouettes(_s_hd_point_ corner, _s_hd_point_ c, double r, _s_hd_point_ x, _s_hd_point_ y,
                    _s_hd_point_ n, double from, double to, double out[2]) {
    const _s_hd_point_ d = vecSub(c, corner);
    const double a = vecCross(d, y).z;
    const double b = -vecCross(d, x).z;
    const double rhs = -r * n.z;
    const double h = std::hypot(a, b);
    int found = 0;
    if (!(h > std::fabs(rhs)))
        return 0;
    const double half = std::acos(rhs / h);
    if (half < hd::kSilhouetteMergeAngle || half > core::kPi - hd::kSilhouetteMergeAngle)
        return 0;
    for (const double root : {std::atan2(b, a) - half, std::atan2(b, a) + half}) {
        double t = root;
        while (t < from)
            t += core::kFullTurn;
        while (t >= from + core::kFullTurn)
            t -= core::kFullTurn;
        if (t > from + hd::kSilhouetteMergeAngle && t < to - hd::kSilhouetteMergeAngle)
            out[found++] = t;
    }
    if (found == 2 && out[1] < out[0])
        std::swap(out[0], out[1]);
    return found;
}

}  // namespace

_s_hd_prof_* ep_divide_squcir(_s_hd_point_ o, double w, double h, _s_hd_point_ xdir,
                              _s_hd_point_ ydir, _s_hd_point_ c, double r) {
    if (!isFinitePoint(o) || !isFinitePoint(c) || !isFinitePoint(xdir) || !isFinitePoint(ydir) ||
        !std::isfinite(w) || !std::isfinite(h) || !std::isfinite(r) || !(w >= hd::kMinDiscRadius) ||
        !(h >= hd::kMinDiscRadius) || !(r >= hd::kMinDiscRadius))
        return nullptr;
    const _s_hd_point_ x = vecNormalize(xdir);
    _s_hd_point_ y = linComb(1.0, ydir, -vecDot(ydir, x), x);
    if (vecLength(x) == 0.0 || !(vecLength(y) >= hd::kMinAxisCutCosine * vecLength(ydir)))
        return nullptr;
    y = vecNormalize(y);
    _s_hd_point_ n = vecCross(x, y);
    const _s_hd_point_ offset = vecSub(c, o);
    const double rise = vecDot(offset, n);
    const double dist = vecLength(offset);
    if (!(dist > 0.0) || !(std::fabs(rise) >= hd::kMinAxisCutCosine * dist))
        return nullptr;
    if (rise < 0.0) {  // the circle on the side of +n, so the rectangle runs counter-clockwise
        y = vecNegate(y);
        n = vecNegate(n);
    }
    const double size = std::max(std::max(w, h), std::max(2.0 * r, dist));
    if (!std::isfinite(size))
        return nullptr;
    const _s_hd_point_ corner[4] = {linComb(1.0, linComb(1.0, o, -0.5 * w, x), -0.5 * h, y),
                                    linComb(1.0, linComb(1.0, o, 0.5 * w, x), -0.5 * h, y),
                                    linComb(1.0, linComb(1.0, o, 0.5 * w, x), 0.5 * h, y),
                                    linComb(1.0, linComb(1.0, o, -0.5 * w, x), 0.5 * h, y)};
    // Quarter q of the circle runs from the apex of the flat triangle over side q (corner q to
    // corner q + 1), at angle (q - 1) pi / 2 about c from x, to the next, and is fanned to corner
    // q + 1. The circle's vertices are the disc's split ring, the rim of a pipe butting the round
    // end, so that the joint is drawn as one rim, not as two crossing; the four quarter points
    // and the fans' silhouettes are put in, each in place of a vertex within hd::kRingSnapShare
    // of a chord of it that no other point took.
    ViewSplitRing pattern;
    if (!viewSplitRing(c, r, n, pattern))
        return nullptr;
    const int mp = pattern.count;
    constexpr int kMaxRing = hd::kMaxCurveChords + 4 * 3;  // a quarter point, two silhouettes
    // Angles about c from x, in [-pi / 2, 3 pi / 2); the points put in are tagged -1 - q for
    // quarter q's start, -5 for a silhouette.
    double at[hd::kMaxCurveChords];
    for (int k = 0; k < mp; ++k) {
        const _s_hd_point_ d = vecSub(pattern.pts[k], c);
        const double t = std::atan2(vecDot(d, y), vecDot(d, x));
        at[k] = t < -0.5 * core::kPi ? t + core::kFullTurn : t;
    }
    double put[12];
    int tags[12];
    int puts = 0;
    for (int q = 0; q < 4; ++q) {
        put[puts] = (q - 1) * 0.5 * core::kPi;
        tags[puts++] = -1 - q;
    }
    for (int q = 0; q < 4; ++q) {
        const double from = (q - 1) * 0.5 * core::kPi;
        const int found = coneSilhouettes(corner[(q + 1) % 4], c, r, x, y, n, from,
                                          from + 0.5 * core::kPi, put + puts);
        for (int s = 0; s < found; ++s)
            tags[puts++] = -5;
    }
    RingStop stops[kMaxRing];
    const int m = ringWithPoints(at, mp, put, tags, puts, false, stops);
    _s_hd_point_ ring[kMaxRing];
    int start[5] = {0, 0, 0, 0, m};
    for (int j = 0; j < m; ++j) {
        const RingStop& st = stops[j];
        ring[j] = st.k >= 0 ? pattern.pts[st.k]
                            : linComb(1.0, c, r, linComb(std::cos(st.t), x, std::sin(st.t), y));
        if (st.k < 0 && st.k > -5)
            start[-1 - st.k] = j;
    }
    for (int k = 0; k < m; ++k)
        if (!isFinitePoint(ring[k]))
            return nullptr;

    // The side, face by face round the circle: the flat triangle over side q, then the fan of
    // corner q + 1; gen[f] is the generator that face f shares with the next one.
    struct SideFace {
        _s_hd_point_ p[3];
        _s_hd_point_ gen[2];
        int side;
    };
    SideFace faces[kMaxRing + 4];
    int nf = 0;
    for (int q = 0; q < 4; ++q) {
        const _s_hd_point_ apex = corner[(q + 1) % 4];
        faces[nf++] = {{corner[q], apex, ring[start[q]]}, {apex, ring[start[q]]}, 0};
        for (int k = start[q]; k < start[q + 1]; ++k)
            faces[nf++] = {{apex, ring[(k + 1) % m], ring[k]}, {apex, ring[(k + 1) % m]}, 0};
    }
    for (int f = 0; f < nf; ++f)
        faces[f].side = quadViewSide(faces[f].p[0], faces[f].p[1], faces[f].p[2], faces[f].p[0]);

    HDProfDraft draft;
    draft.seedBox(corner[0]);
    for (const _s_hd_point_& p : corner)
        draft.extendBox(p);
    for (int k = 0; k < m; ++k)
        draft.extendBox(ring[k]);
    for (int f = 0; f < nf; ++f)
        draft.addTri(faces[f].p[0], faces[f].p[1], faces[f].p[2]);
    draft.addQuad(corner[0], corner[3], corner[2], corner[1]);
    draft.addRingStrip(ring, m, false, size);
    for (int q = 0; q < 4; ++q)
        draft.addLine(corner[q], corner[(q + 1) % 4]);
    for (int k = 0; k < m; ++k)
        draft.addLine(ring[k], ring[(k + 1) % m]);
    for (int f = 0; f < nf; ++f)
        if (faces[f].side * faces[(f + 1) % nf].side < 0)
            draft.addLine(faces[f].gen[0], faces[f].gen[1]);
    return draft.finish();
}

}  // namespace geolib
