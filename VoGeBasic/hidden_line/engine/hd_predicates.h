// Numeric tests of the hidden-line engine: a point on a segment, a point in a polygon, where a
// line meets a plane, where two projections cross. Not exported; the unit tests call them.
//
// The view is a parallel projection along Z: X and Y are the drawing plane and the smaller Z is
// nearer to the viewer.
#ifndef VOGEBASIC_HD_PREDICATES_H
#define VOGEBASIC_HD_PREDICATES_H

#include <cmath>
#include <cstring>
#include <limits>

#include "core/angles.h"
#include "hd_records.h"
#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/model/hd_points.h"

namespace geolib {

/// The most vertices a face holds (a chain of more is read as its first four): the face tests
/// keep a value per vertex in tables of this size.
constexpr int kMaxFaceVertices = 4;

/// std::fmax and std::fmin, inline: a NaN argument gives the other one. Of two equal values
/// either may come back; the callers only compare the result, so a zero's sign never matters.
inline double maxOf(double a, double b) {
    return a > b || b != b ? a : b;
}
inline double minOf(double a, double b) {
    return a < b || b != b ? a : b;
}

/// The box of the segment a-b widened by a hundredth of the segment's largest extent and a
/// thousandth of a unit. At a point outside it the angle the segment subtends is at least a
/// fiftieth of a radian short of a half turn, and the point is far from both ends, so
/// isPointOnSeg rejects it at once. NaN and infinite coordinates are never outside.
struct SegmentReach {
    double xlo, xhi, ylo, yhi, zlo, zhi;
    bool excludes(_s_hd_point_ p) const {
        return p.x < xlo || p.x > xhi || p.y < ylo || p.y > yhi || p.z < zlo || p.z > zhi;
    }
};
inline SegmentReach segmentReach(_s_hd_point_ a, _s_hd_point_ b) {
    const double margin =
        hd::kOnSegRejectRel *
            maxOf(std::fabs(b.x - a.x), maxOf(std::fabs(b.y - a.y), std::fabs(b.z - a.z))) +
        hd::kOnSegRejectAbs;
    return {minOf(a.x, b.x) - margin, maxOf(a.x, b.x) + margin, minOf(a.y, b.y) - margin,
            maxOf(a.y, b.y) + margin, minOf(a.z, b.z) - margin, maxOf(a.z, b.z) + margin};
}

/// 1 when p lies on the segment a-b: p is an end (isSamePointFine or within squared distance
/// 1e-9), or the segment subtends an angle of about pi at p (see hd_engine_tolerances.h).
int isPointOnSeg(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b);
/// 1 when p, a point of the face's plane, lies inside the planar polygon v[0..count-1] or on its
/// boundary: on an edge, near a vertex, or where the signed angles its edges subtend at p add
/// up to a full turn. Each angle is signed by the side of p its edge runs past, seen along the
/// polygon's area normal, so the angles of an outside point cancel. 0 for fewer than three
/// vertices, for more than kMaxFaceVertices and for a polygon of no area (p on its outline still
/// counts as inside).
int isPointInFace(_s_hd_point_ p, int count, const _s_hd_point_* v);
/// arccos c for c in [-1, 1] by a polynomial, within 3e-8 of the true angle (rounding included):
/// for deciding the face tests away from their tolerances' edges.
inline double acosBound(double c) {
    // arccos x = sqrt(1 - x) (a0 + a1 x + ... + a7 x^7) on [0, 1], within 2e-8 (the classic
    // eight-term fit); arccos(-x) = pi - arccos x.
    constexpr double kA[8] = {1.5707963050, -0.2145988016, 0.0889789874, -0.0501743046,
                              0.0308918810, -0.0170881256, 0.0066700901, -0.0012624911};
    const double x = std::fabs(c);
    double poly = kA[7];
    for (int k = 6; k >= 0; --k)
        poly = poly * x + kA[k];
    const double r = std::sqrt(1.0 - x) * poly;
    return c < 0.0 ? core::kPi - r : r;
}
/// 1 when the direction from a to b is not parallel to the plane of unit normal n.
int isLineCrossPlane(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ n);
/// True when the unit direction dir is not parallel to the plane of unit normal n.
inline bool crossesPlane(_s_hd_point_ dir, _s_hd_point_ n) {
    return std::fabs(vecDot(dir, n)) > hd::kPlaneParallelTol;
}
/// The point where the infinite line through a and b meets the plane through v0, v1 and v2.
/// NaN coordinates when the line is parallel to that plane or the three points span none.
_s_hd_point_ getLinePlaneInter(_s_hd_point_ v0, _s_hd_point_ v1, _s_hd_point_ v2, _s_hd_point_ a,
                               _s_hd_point_ b);
/// The same with the plane given by its normal n and one of its points v0, setting t to the
/// point's parameter along a -> b (NaN when there is no point).
inline _s_hd_point_ linePlaneInter(_s_hd_point_ n, _s_hd_point_ v0, _s_hd_point_ a, _s_hd_point_ b,
                                   double& t) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const _s_hd_point_ d = vecSub(b, a);
    const double den = vecDot(n, d);
    t = nan;
    if (den == 0.0)
        return {nan, nan, nan};
    t = vecDot(n, vecSub(v0, a)) / den;
    return linComb(1.0, a, t, d);
}
/// The same without the parameter.
inline _s_hd_point_ linePlaneInter(_s_hd_point_ n, _s_hd_point_ v0, _s_hd_point_ a,
                                   _s_hd_point_ b) {
    double t = 0.0;
    return linePlaneInter(n, v0, a, b, t);
}

/// Where the drawing-plane projections of the line a-b and of the edge c-d cross.
struct ProjCrossing {
    bool parallel;        ///< the projections are parallel (or one is a point): no crossing
    _s_hd_point_ onLine;  ///< the point of the infinite line a-b over (or under) the crossing
    _s_hd_point_ onEdge;  ///< the point of the infinite edge line c-d there; its z is the depth
    double lineAt;        ///< onLine is a + lineAt (b - a) (0 when parallel)
    double edgeAt;        ///< onEdge is c + edgeAt (d - c) (0 when parallel)
};
ProjCrossing crossProjections(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d);

/// A segment's run a -> b in the drawing plane and its length.
struct FlatRun {
    double dx, dy, len;
};
inline FlatRun flatRunOf(_s_hd_point_ a, _s_hd_point_ b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    return {dx, dy, std::sqrt(dx * dx + dy * dy)};
}
/// The point a + t (b - a), as crossProjections and linePlaneInter work it out.
inline _s_hd_point_ pointAlong(_s_hd_point_ a, _s_hd_point_ b, double t) {
    return linComb(1.0, a, t, vecSub(b, a));
}
/// crossProjections' parameters alone (parallel, lineAt, edgeAt), from the runs of a -> b and
/// c -> d; onLine and onEdge are left at a and c, to be worked out with pointAlong where asked.
/// edgeSide is det2(c.x - a.x, c.y - a.y, line.dx, line.dy), the side of the line c lies on and
/// edgeAt's numerator, for callers that have it already.
inline ProjCrossing crossParameters(_s_hd_point_ a, _s_hd_point_ c, const FlatRun& line,
                                    const FlatRun& edge, double edgeSide) {
    ProjCrossing x = {true, a, c, 0.0, 0.0};
    const double den = det2(line.dx, line.dy, edge.dx, edge.dy);
    if (!(line.len > 0.0) || !(edge.len > 0.0) ||
        std::fabs(den) < hd::kProjParallelTol * line.len * edge.len)
        return x;
    x.parallel = false;
    x.lineAt = det2(c.x - a.x, c.y - a.y, edge.dx, edge.dy) / den;
    x.edgeAt = edgeSide / den;
    return x;
}
inline ProjCrossing crossParameters(_s_hd_point_ a, _s_hd_point_ c, const FlatRun& line,
                                    const FlatRun& edge) {
    return crossParameters(a, c, line, edge, det2(c.x - a.x, c.y - a.y, line.dx, line.dy));
}
/// crossProjections with the runs of a -> b and c -> d already worked out.
inline ProjCrossing crossProjections(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d,
                                     const FlatRun& line, const FlatRun& edge) {
    ProjCrossing x = crossParameters(a, c, line, edge);
    if (!x.parallel) {
        x.onLine = pointAlong(a, b, x.lineAt);
        x.onEdge = pointAlong(c, d, x.edgeAt);
    }
    return x;
}

namespace detail {
/// isPointOnSeg for a point known to lie within the segment's reach.
int isPointOnSegInReach(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b);
}  // namespace detail

/// isPointOnSeg(p, a, b) with the segment's reach worked out already.
inline bool onSegWithin(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b, const SegmentReach& reach) {
    return !reach.excludes(p) && detail::isPointOnSegInReach(p, a, b) != 0;
}

/// True when both ends have every coordinate within kCullCoordLimit (NaN fails).
inline bool boundedEnds(_s_hd_point_ a, _s_hd_point_ b) {
    const double lim = hd::kCullCoordLimit;
    return std::fabs(a.x) <= lim && std::fabs(a.y) <= lim && std::fabs(a.z) <= lim &&
           std::fabs(b.x) <= lim && std::fabs(b.y) <= lim && std::fabs(b.z) <= lim;
}

/// The same point to the bit (a NaN coordinate the same as itself, -0 apart from 0). The
/// coordinates are compared in turn, the first that differs ending the test: the record is its
/// three coordinates and nothing else (hd_records.h checks its size), and most points compared
/// differ in x.
inline bool sameBits(_s_hd_point_ a, _s_hd_point_ b) {
    return std::memcmp(&a.x, &b.x, sizeof a.x) == 0 && std::memcmp(&a.y, &b.y, sizeof a.y) == 0 &&
           std::memcmp(&a.z, &b.z, sizeof a.z) == 0;
}

/// surelyOnSegment's test of t alone: t leaves at least kSureOnEdgeEnd and kSureOnEdgeRel of
/// the segment (of squared length len2) on either side.
inline bool surelyWithinSegment(double t, double len2) {
    const double end2 = hd::kSureOnEdgeEnd * hd::kSureOnEdgeEnd;
    const double u = 1.0 - t;
    return t >= hd::kSureOnEdgeRel && u >= hd::kSureOnEdgeRel && t * t * len2 >= end2 &&
           u * u * len2 >= end2;
}
/// True when the point x = linComb(1, a, t, b - a), as linePlaneInter and crossProjections work
/// it out from t, lies on the segment a -> b (of squared length len2) by isPointOnSeg, t leaving
/// at least kSureOnEdgeEnd and kSureOnEdgeRel of the segment on either side. x lies within
/// 5.6e-16 of the largest coordinate (per axis; under 1e-6 in all within kCullCoordLimit) of the
/// segment's point at t, so the segment, seen from x, falls short of a half turn by at most
/// 2e-6 / kSureOnEdgeEnd, 4e-5 rad; with both ends at least kSureOnEdgeRel of the length away,
/// the cosine isPointOnSeg works out from the distances is off by at most 1e-12. It stays far
/// below the cosine where the angle test turns (a shortfall of 2.48e-4 rad), and x lies far
/// inside the segment's reach. Rounding of the squares here moves the ends' distances by parts
/// in 1e15. NaN fails.
inline bool surelyOnSegment(double t, double len2, _s_hd_point_ a, _s_hd_point_ b) {
    return surelyWithinSegment(t, len2) && boundedEnds(a, b);
}

/// True when the point a + t (b - a) of a segment of squared length len2 lies on the segment's
/// line beyond an end by more than gap, with |t| at most kBeyondParamMax (which keeps the point
/// and its rounding finite); NaN fails. The culls that pass such a point over as off the segment
/// (isPointOnSeg answers 0 there) give their own reasons beside them.
inline bool beyondSegmentEnd(double t, double len2, double gap) {
    constexpr double kBeyondParamMax = 1e6;
    if (!(std::fabs(t) <= kBeyondParamMax))
        return false;
    const double u = t < 0.0 ? t : t - 1.0;
    return (t < 0.0 || t > 1.0) && u * u * len2 > gap * gap;
}
/// onSegWithin for the point p = linComb(1, a, t, b - a) worked out from t (len2 the segment's
/// squared length): well inside the segment it is on it without measuring (surelyOnSegment).
inline bool onSegAt(_s_hd_point_ p, double t, double len2, _s_hd_point_ a, _s_hd_point_ b,
                    const SegmentReach& reach) {
    return surelyOnSegment(t, len2, a, b) || onSegWithin(p, a, b, reach);
}
/// The same with bounded = boundedEnds(a, b) known already.
inline bool onSegAt(_s_hd_point_ p, double t, double len2, _s_hd_point_ a, _s_hd_point_ b,
                    const SegmentReach& reach, bool bounded) {
    return (surelyWithinSegment(t, len2) && bounded) || onSegWithin(p, a, b, reach);
}

/// The vertex after vertex k (0 <= k < count) of a closed polygon: (k + 1) mod count, without
/// a division.
inline int nextVertex(int k, int count) {
    return k + 1 < count ? k + 1 : 0;
}

/// The unit area normal of the polygon v[0..count-1] (Newell's sum about the first vertex); zero
/// for a polygon of no area.
_s_hd_point_ polygonAreaNormal(int count, const _s_hd_point_* v);

namespace detail {

/// isPointInFace for a polygon of three to kMaxFaceVertices vertices, with its unit area normal,
/// edge k's on-edge test onEdge(k) and squared length len2(k) supplied.
template <class OnEdge, class EdgeLen2>
int pointInPolygon(_s_hd_point_ p, int count, const _s_hd_point_* v, _s_hd_point_ area,
                   OnEdge&& onEdge, EdgeLen2&& len2) {
    // Near a vertex or on an edge answers 1 whichever is asked first: the vertices, whose
    // distances the angles need anyway, come first. Each vertex's squared distance, and below
    // its distance, is worked out once for both edges at it.
    double dist2[kMaxFaceVertices];
    for (int k = 0; k < count; ++k) {
        dist2[k] = pointDist2(p, v[k]);
        if (dist2[k] <= hd::kInFaceVertexDist2)
            return 1;
    }
    for (int k = 0; k < count; ++k) {
        if (onEdge(k))
            return 1;
    }
    // The area normal gives every edge's angle its sign: it works for any simple polygon,
    // whichever way round its first three vertices turn.
    if (area.x == 0.0 && area.y == 0.0 && area.z == 0.0)
        return 0;
    // The angle sum first with acosBound in place of acos: away from the tolerance's edges it
    // gives the answer, and only near them are the angles measured with acos.
    double dist[kMaxFaceVertices];
    for (int k = 0; k < count; ++k)
        dist[k] = std::sqrt(dist2[k]);
    double cosines[kMaxFaceVertices];
    bool negative[kMaxFaceVertices];
    double rough = 0.0;
    for (int k = 0; k < count; ++k) {
        const int next = nextVertex(k, count);
        const _s_hd_point_ a = v[k];
        const _s_hd_point_ b = v[next];
        const double da2 = dist2[k];
        const double db2 = dist2[next];
        const double ab2 = len2(k);
        cosines[k] = core::clampUnit((da2 + db2 - ab2) / (2.0 * dist[k] * dist[next]));
        negative[k] = vecDot(vecCross(vecSub(a, p), vecSub(b, p)), area) < 0.0;
        const double angle = acosBound(cosines[k]);
        rough += negative[k] ? -angle : angle;
    }
    const double roughOff = std::fabs(std::fabs(rough) - hd::kInFaceTurn);
    if (roughOff < hd::kInFaceTurnTol - hd::kInFaceRoughBand)
        return 1;
    if (roughOff > hd::kInFaceTurnTol + hd::kInFaceRoughBand)
        return 0;
    double sum = 0.0;
    for (int k = 0; k < count; ++k) {
        const double angle = std::acos(cosines[k]);
        sum += negative[k] ? -angle : angle;
    }
    return std::fabs(std::fabs(sum) - hd::kInFaceTurn) < hd::kInFaceTurnTol ? 1 : 0;
}

}  // namespace detail

}  // namespace geolib

#endif  // VOGEBASIC_HD_PREDICATES_H
