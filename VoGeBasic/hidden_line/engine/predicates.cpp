// Numeric tests of the hidden-line engine: a point on a segment, a point in a polygon, where a
// line meets a plane, where two projections cross.
#include <cmath>

#include "core/angles.h"
#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/engine/hd_predicates.h"

namespace geolib {

namespace {

using core::clampUnit;

// The angle test of isPointOnSeg on the cosine c of the angle the segment subtends.
bool onSegAngleTest(double c) {
    return std::fabs(2.0 * std::acos(c) - hd::kOnSegTurn) < hd::kOnSegAngleTol;
}

// The largest cosine in [-1, kOnSegSureOffCos] that passes onSegAngleTest, found by halving the
// interval between a passing and a failing cosine down to neighbouring doubles. The test is
// monotonic in c (acos decreases, and 2 acos(c) stays below kOnSegTurn), and acos is accurate to
// an ulp or two, so every cosine farther than kOnSegEdgeBand below it passes and every one
// farther above it fails: there the angle changes by over 1e-9, a million ulps.
double onSegEdgeCosine() {
    double pass = -1.0;
    double fail = hd::kOnSegSureOffCos;
    for (;;) {
        const double mid = pass + 0.5 * (fail - pass);
        if (mid == pass || mid == fail)
            return pass;
        (onSegAngleTest(mid) ? pass : fail) = mid;
    }
}

// The angle test below decided from the point's distance h to the segment's line, without the
// square roots and the angle, where that is sure: 1 or 0, or -1 where it is not. Of the angle
// delta by which the segment, seen from p, falls short of a half turn, the angles at its ends
// make up all: delta = alpha + beta with sin alpha = h / pa and sin beta = h / pb. So delta >=
// h (pa + pb) / (pa pb), and 1 + c = 1 - cos delta >= 2 delta^2 / pi^2, c being the cosine the
// test works out; with the foot of h inside the segment and h / pa, h / pb below 2e-4, delta <=
// (1 + 1e-7) h (pa + pb) / (pa pb) and 1 + c <= delta^2 / 2. As (pa + pb)^2 lies between
// pa^2 + pb^2 and twice that, both bounds are in terms of h^2 (pa^2 + pb^2) / (pa^2 pb^2), here
// compared as |(b - a) x (p - a)|^2 (pa^2 + pb^2) against pa^2 pb^2 |b - a|^2 (no division).
// The test turns where 1 + c is 3.085e-8 (onSegEdgeCosine, kOnSegEdgeBand beside it): above
// kSurelyOff 1 + c is at least 2e-7, below kSurelyOn at most 2.503e-8 (the cross product's
// rounding, at most 1.1e-15 pa |b - a|, moves h by parts in a million where it answers 0, and
// where it answers 1 adds a thousandth to h^2 and below 3e-18 to 1 + c). The cosine worked out
// from the distances is off by at most 10 ulp times (pa^2 + pb^2 + |b - a|^2) / (pa pb), at
// most 3.3e-9 with the ratio of the squared distances within kSureRatio, plus what snapping
// components below kComponentSnap moves the squares (9e-18 / (2 pa pb), below 5e-12 with both
// squared distances at least kSureMinDist2 for a sure answer of 1, below 4.5e-9 with them above
// kOnSegEndDist2 for one of 0). Both margins hold: 2e-7 - 7.8e-9 and 3.085e-8 - 2.503e-8 -
// 3.4e-9 clear the turning point's band of 1e-12. Squares and products stay finite
// with every squared distance within kSureMaxDist2, and far from underflow with |b - a|^2 at
// least kSureMinLen2; NaN fails every comparison and is left to the angle.
int surelyOnOrOff(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b, double pa2, double pb2) {
    // 1 + c at least 2e-7 (2 / pi^2 times this) where the test turns at 3.085e-8.
    constexpr double kSurelyOff = 1e-6;
    // 1 + c at most about this, 2.4e-9 short of where the test turns with the rounding added.
    constexpr double kSurelyOn = 2.5e-8;
    // (pa^2 + pb^2)^2 within this of pa^2 pb^2 keeps the cosine's rounding below 3.3e-9.
    constexpr double kSureRatio = 1e12;
    // Snapping's share of the cosine stays below 5e-12 for a sure 1.
    constexpr double kSureMinDist2 = 1e-6;
    // Products of three such squares stay below 1e300.
    constexpr double kSureMaxDist2 = 1e100;
    // Keeps the cross product's square far from underflow.
    constexpr double kSureMinLen2 = 1e-100;
    // An end's dot product above 1e-14 of the two lengths has its sign to spare (squares).
    constexpr double kBeyondEnd = 1e-28;
    const double ab2 = pointDist2(a, b);
    const double sum = pa2 + pb2;
    if (!(sum <= kSureMaxDist2 && ab2 <= kSureMaxDist2 && ab2 >= kSureMinLen2 &&
          sum * sum <= kSureRatio * pa2 * pb2))
        return -1;
    const _s_hd_point_ ab = vecSub(b, a);
    const _s_hd_point_ ap = vecSub(p, a);
    const _s_hd_point_ cross = vecCross(ab, ap);
    const double h2 = vecDot(cross, cross) * sum;
    const double scale = pa2 * pb2 * ab2;
    if (h2 > kSurelyOff * scale)
        return 0;
    const double atA = vecDot(ap, ab);
    const double atB = vecDot(vecSub(p, b), ab);
    if (h2 < kSurelyOn * scale && pa2 >= kSureMinDist2 && pb2 >= kSureMinDist2 && atA > 0.0 &&
        atB < 0.0)
        return 1;
    // p beyond an end, along the segment or off it: the triangle's angle at that end is obtuse
    // (its dot product, rounded by under 1e-15 of the product of the two lengths, is farther
    // from zero than that), so the angle at p is acute and the cosine above 0, less its rounding
    // (below 7.8e-9, as above): far above kOnSegSureOffCos, where the test answers 0.
    if ((atA < 0.0 && atA * atA > kBeyondEnd * pa2 * ab2) ||
        (atB > 0.0 && atB * atB > kBeyondEnd * pb2 * ab2))
        return 0;
    return -1;
}

}  // namespace

// isPointOnSeg past its first step: p is known to lie within the segment's reach.
int detail::isPointOnSegInReach(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
    if (isSamePointFine(p, a) || isSamePointFine(p, b))
        return 1;
    const double pa2 = pointDist2(p, a);
    const double pb2 = pointDist2(p, b);
    if (pa2 <= hd::kOnSegEndDist2 || pb2 <= hd::kOnSegEndDist2)
        return 1;
    const int sure = surelyOnOrOff(p, a, b, pa2, pb2);
    if (sure >= 0)
        return sure;
    const double pa = pointDist(p, a);
    const double pb = pointDist(p, b);
    const double ab = pointDist(a, b);
    const double c = clampUnit((pa * pa + pb * pb - ab * ab) / (2.0 * pa * pb));
    if (c > hd::kOnSegSureOffCos)
        return 0;  // the angle is far below a half turn: no need to measure it
    // Away from the cosine where the angle test turns, its answer is known without the angle.
    static const double edge = onSegEdgeCosine();
    if (c < edge - hd::kOnSegEdgeBand)
        return 1;
    if (c > edge + hd::kOnSegEdgeBand)
        return 0;
    return onSegAngleTest(c) ? 1 : 0;
}

// The unit area normal of the polygon (Newell's sum, about the first vertex); zero for a
// polygon of no area.
_s_hd_point_ polygonAreaNormal(int count, const _s_hd_point_* v) {
    _s_hd_point_ area = {0.0, 0.0, 0.0};
    for (int k = 1; k + 1 < count; ++k)
        area = vecAdd(area, vecCross(vecSub(v[k], v[0]), vecSub(v[k + 1], v[0])));
    return vecNormalize(area);
}

int isPointOnSeg(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
    return onSegWithin(p, a, b, segmentReach(a, b)) ? 1 : 0;
}

int isPointInFace(_s_hd_point_ p, int count, const _s_hd_point_* v) {
    if (count < 3 || count > kMaxFaceVertices)
        return 0;
    return detail::pointInPolygon(
        p, count, v, polygonAreaNormal(count, v),
        [&](int k) { return isPointOnSeg(p, v[k], v[nextVertex(k, count)]) != 0; },
        [&](int k) { return pointDist2(v[k], v[nextVertex(k, count)]); });
}

int isLineCrossPlane(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ n) {
    return crossesPlane(unitDir(b, a), n) ? 1 : 0;
}

_s_hd_point_ getLinePlaneInter(_s_hd_point_ v0, _s_hd_point_ v1, _s_hd_point_ v2, _s_hd_point_ a,
                               _s_hd_point_ b) {
    return linePlaneInter(triNormal(v0, v1, v2), v0, a, b);
}

ProjCrossing crossProjections(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d) {
    return crossProjections(a, b, c, d, flatRunOf(a, b), flatRunOf(c, d));
}

}  // namespace geolib
