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

}  // namespace

// isPointOnSeg past its first step: p is known to lie within the segment's reach.
int detail::isPointOnSegInReach(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
    if (isSamePointFine(p, a) || isSamePointFine(p, b))
        return 1;
    if (pointDist2(p, a) <= hd::kOnSegEndDist2 || pointDist2(p, b) <= hd::kOnSegEndDist2)
        return 1;
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
