#include "geolib_planar.h"

#include <algorithm>
#include <cmath>

#include "VoGeLine3d.h"
#include "core/constants.h"
#include "core/plan.h"
#include "functions/function_tolerances.h"
#include "geolib_spatial.h"

using namespace geolib::functions;

namespace {

// q, known to lie on the line ab, lies within the closed segment.
bool withinSpan(const VoGePoint3D& a, const VoGePoint3D& b, const VoGePoint3D& q) {
    return std::min(a.x, b.x) <= q.x && q.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= q.y &&
           q.y <= std::max(a.y, b.y);
}

bool oppositeSides(double s, double t) {
    return (s > 0.0 && t < 0.0) || (s < 0.0 && t > 0.0);
}

bool withinRange(double v, double lo, double hi, double tol) {
    return lo - v <= tol && v - hi <= tol;
}

// The segment p0p1 meets an edge of poly.
bool meetsAnEdge(const VoGePoint3D& p0, const VoGePoint3D& p1,
                 const std::vector<VoGePoint3D>& poly) {
    const std::size_t n = poly.size();
    for (std::size_t k = 0; k < n; ++k) {
        if (geolib::isLineIntersect(p0, p1, poly[k], poly[(k + 1) % n]))
            return true;
    }
    return false;
}

// Unit direction of a -> b in the plan; zero when the plan part is shorter than 1e-4.
VoGeVector3D planUnit(const VoGePoint3D& a, const VoGePoint3D& b) {
    return VoGeVector3D(b.x - a.x, b.y - a.y, 0.0).normalize();
}

bool hasNoDirection(const VoGeVector3D& unit) {
    return unit.x == 0.0 && unit.y == 0.0;
}

// Where the plan lines p + u.t and q + w.s meet, for unit plan directions u and w: t and s are
// the distances along them. False when the lines are parallel.
bool planCrossing(const VoGePoint3D& p, const VoGeVector3D& u, const VoGePoint3D& q,
                  const VoGeVector3D& w, double& t, double& s) {
    const double den = geolib::core::planCross(u.x, u.y, w.x, w.y);
    if (!(std::fabs(den) >= kParallelSine))
        return false;
    const double dx = q.x - p.x;
    const double dy = q.y - p.y;
    t = (dx * w.y - dy * w.x) / den;
    s = (dx * u.y - dy * u.x) / den;
    return true;
}

}  // namespace

namespace geolib {

bool isPointInPoly(const std::vector<VoGePoint3D>& poly, const VoGePoint3D& p, bool boxFirst) {
    if (boxFirst) {
        VoGePoint3D lo;
        VoGePoint3D hi;
        getPolylineBox(poly, lo, hi);
        if (!isPointInBox(p, lo, hi))
            return false;
    }
    bool inside = false;
    const std::size_t n = poly.size();
    for (std::size_t i = 0, j = n - 1; i < n; j = i++) {
        if (core::crossesRightOf(poly[i], poly[j], p))
            inside = !inside;
    }
    return inside;
}

void getPolylineBox(const std::vector<VoGePoint3D>& pts, VoGePoint3D& lo, VoGePoint3D& hi) {
    double minX = core::kEmptyPlanBoxMin;
    double minY = core::kEmptyPlanBoxMin;
    double maxX = -core::kEmptyPlanBoxMin;
    double maxY = -core::kEmptyPlanBoxMin;
    for (const VoGePoint3D& q : pts) {
        if (q.x < minX)
            minX = q.x;
        if (q.x >= maxX)
            maxX = q.x;
        if (q.y < minY)
            minY = q.y;
        if (q.y >= maxY)
            maxY = q.y;
    }
    lo.set(minX, minY, 0.0);
    hi.set(maxX, maxY, 0.0);
}

bool isPointInBox(const VoGePoint3D& p, const VoGePoint3D& lo, const VoGePoint3D& hi) {
    return withinRange(p.x, lo.x, hi.x, core::kBoxSideTol) &&
           withinRange(p.y, lo.y, hi.y, core::kBoxSideTol) &&
           withinRange(p.z, lo.z, hi.z, core::kBoxSideTol);
}

bool isLineIntersect(const VoGePoint3D& a, const VoGePoint3D& b, const VoGePoint3D& c,
                     const VoGePoint3D& d) {
    const double d1 = core::planTurn(c, d, a);
    const double d2 = core::planTurn(c, d, b);
    const double d3 = core::planTurn(a, b, c);
    const double d4 = core::planTurn(a, b, d);
    if (oppositeSides(d1, d2) && oppositeSides(d3, d4))
        return true;
    // An end on the other segment's line: touching, or collinear overlap.
    return (d1 == 0.0 && withinSpan(c, d, a)) || (d2 == 0.0 && withinSpan(c, d, b)) ||
           (d3 == 0.0 && withinSpan(a, b, c)) || (d4 == 0.0 && withinSpan(a, b, d));
}

bool isLineIntersectPoly(const VoGePoint3D& p0, const VoGePoint3D& p1,
                         const std::vector<VoGePoint3D>& poly) {
    if (isPointInPoly(poly, p0, false))
        return true;
    if (p0.isEqualTo(p1, kNoLengthSegment))
        return false;
    if (isPointInPoly(poly, p1, false))
        return true;
    return meetsAnEdge(p0, p1, poly);
}

bool isLineOnlyIntersectPoly(const VoGePoint3D& p0, const VoGePoint3D& p1,
                             const std::vector<VoGePoint3D>& poly) {
    if (p0.isEqualTo(p1, kNoLengthSegment))
        return false;
    return meetsAnEdge(p0, p1, poly);
}

bool isPolyIntersectWithPoly(const std::vector<VoGePoint3D>& a, const std::vector<VoGePoint3D>& b) {
    for (const VoGePoint3D& v : a) {
        if (isPointInPoly(b, v, false))
            return true;
    }
    for (const VoGePoint3D& v : b) {
        if (isPointInPoly(a, v, false))
            return true;
    }
    const std::size_t na = a.size();
    for (std::size_t i = 0; i < na; ++i) {
        if (meetsAnEdge(a[i], a[(i + 1) % na], b))
            return true;
    }
    return false;
}

// The nearly vertical case turns in the XZ plane instead; its z sign is kept as it has always
// been, callers rely on it.
VoGeVector3D vecRotate90(const VoGeVector3D& v) {
    const double s = v.x * v.x + v.y * v.y;
    const VoGeVector3D w =
        s > kNearlyVerticalPlanSq ? VoGeVector3D(-v.y, v.x, 0.0) : VoGeVector3D(-v.z, 0.0, -v.x);
    return w.normalize();
}

VoGeVector3D vec2dRotateXY(const VoGeVector3D& v, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return VoGeVector3D(c * v.x - s * v.y, s * v.x + c * v.y, 0.0);
}

bool lineIntersect3d(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p3,
                     const VoGePoint3D& p4, VoGePoint3D& out, bool onSegment) {
    if (!VoGeLine3d(p1, p2).intersectWith(VoGeLine3d(p3, p4), out))
        return false;
    if (!onSegment)
        return true;
    const short c1 = isPointOnLineSeg(p1, p2, out, kCrossingOnSegmentTol);
    const short c2 = isPointOnLineSeg(p3, p4, out, kCrossingOnSegmentTol);
    return (c1 & kSegOn) != 0 && (c2 & kSegOn) != 0;
}

bool lineIntersect2d(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p3,
                     const VoGePoint3D& p4, VoGePoint3D& out, bool onSegment) {
    const VoGeVector3D u = planUnit(p1, p2);
    const VoGeVector3D w = planUnit(p3, p4);
    double t = 0.0;
    double s = 0.0;
    if (hasNoDirection(u) || hasNoDirection(w) || !planCrossing(p1, u, p3, w, t, s))
        return false;
    out.set(p1.x + u.x * t, p1.y + u.y * t, 0.0);
    if (!onSegment)
        return true;
    return withinRange(t, 0.0, p1.distance2D(p2), kSegmentEndTol) &&
           withinRange(s, 0.0, p3.distance2D(p4), kSegmentEndTol);
}

bool getInterOfPoint2Poly(const VoGePoint3D& p, const VoGeVector3D& dir,
                          const std::vector<VoGePoint3D>& poly, VoGePoint3D& out) {
    const VoGeVector3D u = VoGeVector3D(dir.x, dir.y, 0.0).normalize();
    if (hasNoDirection(u))
        return false;
    bool found = false;
    double nearest = 0.0;
    const std::size_t n = poly.size();
    for (std::size_t k = 0; k < n; ++k) {
        const VoGePoint3D& a = poly[k];
        const VoGePoint3D& b = poly[(k + 1) % n];
        const VoGeVector3D w = planUnit(a, b);
        double t = 0.0;
        double s = 0.0;
        // An edge along the ray is met through its neighbours, at its ends.
        if (hasNoDirection(w) || !planCrossing(p, u, a, w, t, s))
            continue;
        if (t < -kSegmentEndTol || !withinRange(s, 0.0, a.distance2D(b), kSegmentEndTol))
            continue;
        if (!found || t < nearest) {
            nearest = t;
            found = true;
        }
    }
    if (found)
        out.set(p.x + u.x * nearest, p.y + u.y * nearest, 0.0);
    return found;
}

}  // namespace geolib
