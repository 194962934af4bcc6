#include "geolib_spatial.h"

#include <cmath>

#include "VoGeLine3d.h"
#include "core/angles.h"
#include "functions/function_tolerances.h"
#include "geolib_frames.h"
#include "geometry/segment_place.h"

using namespace geolib::functions;
using geolib::core::kFullTurn;

namespace {

const VoGeVector3D kWorldZ(0.0, 0.0, 1.0);

bool hasNoDirection(const VoGeVector3D& unit) {
    return unit.x == 0.0 && unit.y == 0.0 && unit.z == 0.0;
}

double clamp01(double s) {
    if (s < 0.0)
        return 0.0;
    if (s > 1.0)
        return 1.0;
    return s;
}

// An angle brought into [0, 2pi).
double wrapAngle(double a) {
    double r = std::fmod(a, kFullTurn);
    if (r < 0.0)
        r += kFullTurn;
    return geolib::core::belowFullTurn(r);
}

// How far an arc turns from a0 to a1: an end below the start runs through angle 0, and a span
// of a full turn or more is the whole circle.
double arcSpan(double a0, double a1) {
    const double d = a1 - a0;
    if (d >= kFullTurn)
        return kFullTurn;
    return wrapAngle(d);
}

// The angle of p on the circle, measured as getPt measures it. getPt takes a normal within the
// direction tolerance of +Z as +Z, so the way back does too.
double angleOnCircle(const VoGeCircle3d& c, const VoGePoint3D& p) {
    const VoGeVector3D z = c.normal == kWorldZ ? kWorldZ : c.normal;
    return geolib::angleToX(geolib::kestZxTrans(p - c.center, kWorldZ, z));
}

}  // namespace

namespace geolib {

short isPointOnLineSeg(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p,
                       double tol) {
    return geometry::placeOnSegment(p1, p2, p, tol);
}

short isPointOnArc(const VoGeCircle3d& c, double startAngle, double endAngle, const VoGePoint3D& p,
                   double tol) {
    if (!c.isOn(p, tol))
        return kArcOffCircle;
    int code = 0;
    if (p.distanceTo(c.getPt(startAngle)) <= tol)
        code |= kArcOn | kArcAtStart;
    if (p.distanceTo(c.getPt(endAngle)) <= tol)
        code |= kArcOn | kArcAtEnd;
    if (code != 0)
        return static_cast<short>(code);
    const double rel = wrapAngle(angleOnCircle(c, p) - startAngle);
    return rel <= arcSpan(startAngle, endAngle) ? kArcOn : kArcOffRange;
}

VoGePoint3D projectPointOnLine(const VoGePoint3D& p, const VoGePoint3D& base,
                               const VoGeVector3D& dir) {
    const VoGeVector3D u = dir.normalize();
    if (hasNoDirection(u))
        return base;
    return base + u * (p - base).dotProduct(u);
}

VoGePoint3D projectPointOnPlane(const VoGePoint3D& p, const VoGePoint3D& base,
                                const VoGeVector3D& n) {
    const VoGeVector3D u = n.normalize();
    if (hasNoDirection(u))
        return p;
    return p - u * (p - base).dotProduct(u);
}

double pointToLineDist(const VoGePoint3D& p, const VoGePoint3D& base, const VoGeVector3D& dir) {
    return p.distanceTo(projectPointOnLine(p, base, dir));
}

// Closest parameters s on a0a1 and t on b0b1: the unconstrained pair clamped to the segments,
// with each clamp followed by the best parameter on the other segment.
double segToSegDist(const VoGePoint3D& a0, const VoGePoint3D& a1, const VoGePoint3D& b0,
                    const VoGePoint3D& b1) {
    const VoGeVector3D d1 = a1 - a0;
    const VoGeVector3D d2 = b1 - b0;
    const VoGeVector3D r = a0 - b0;
    const double a = d1.dotProduct(d1);
    const double e = d2.dotProduct(d2);
    const double f = d2.dotProduct(r);
    const bool pointA = hasNoDirection(d1.normalize());
    const bool pointB = hasNoDirection(d2.normalize());
    double s = 0.0;
    double t = 0.0;
    if (pointA && !pointB) {
        t = clamp01(f / e);
    } else if (!pointA) {
        const double c = d1.dotProduct(r);
        if (pointB) {
            s = clamp01(-c / a);
        } else {
            const double b = d1.dotProduct(d2);
            const double denom = a * e - b * b;  // zero for parallel segments: any s will do
            s = denom != 0.0 ? clamp01((b * f - c * e) / denom) : 0.0;
            t = (b * s + f) / e;
            if (t < 0.0) {
                t = 0.0;
                s = clamp01(-c / a);
            } else if (t > 1.0) {
                t = 1.0;
                s = clamp01((b - c) / a);
            }
        }
    }
    return (a0 + d1 * s).distanceTo(b0 + d2 * t);
}

bool getCircleCenter(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p3,
                     VoGePoint3D& center) {
    const VoGeVector3D a = p1 - p3;
    const VoGeVector3D b = p2 - p3;
    const double la = a.length();
    const double lb = b.length();
    // Written as "unless ... reaches" so that NaN coordinates make no circle either.
    if (!(la >= kSegmentEndTol) || !(lb >= kSegmentEndTol) ||
        !(p1.distanceTo(p2) >= kSegmentEndTol))
        return false;
    const VoGeVector3D axb = a.crossProduct(b);
    if (!(axb.length() / (la * lb) >= kCollinearSine))
        return false;
    const VoGeVector3D num = (b * a.dotProduct(a) - a * b.dotProduct(b)).crossProduct(axb);
    center = p3 + num / (2.0 * axb.dotProduct(axb));
    return true;
}

bool getArcParamFromPoints(const VoGePoint3D& s, const VoGePoint3D& m, const VoGePoint3D& e,
                           VoGeCircle3d& circle, double& startAngle, double& endAngle) {
    VoGePoint3D c;
    if (!getCircleCenter(s, m, e, c))
        return false;
    // The cross product of consecutive chords of an arc points along the normal about which it
    // turns counter-clockwise. Divided by its own length: a flat arc's may be below 1e-4.
    const VoGeVector3D turn = (m - s).crossProduct(e - m);
    VoGeCircle3d arcCircle;
    arcCircle.set(c, s.distanceTo(c), turn / turn.length());
    circle = arcCircle;
    startAngle = angleOnCircle(arcCircle, s);
    endAngle = angleOnCircle(arcCircle, e);
    return true;
}

void getArcParamFromAngles(const VoGeCircle3d& c, double startAngle, double endAngle,
                           VoGePoint3D& s, VoGePoint3D& m, VoGePoint3D& e) {
    s = c.getPt(startAngle);
    m = c.getPt(startAngle + arcSpan(startAngle, endAngle) / 2.0);
    e = c.getPt(endAngle);
}

}  // namespace geolib
