// Spatial queries of namespace geolib: points on segments and arcs, projections, distances,
// circles through points and the parameters of arcs.
//
// Results come back by value or through reference arguments; a query that cannot be answered
// returns false or a degenerate result, as each declaration says. The 16-bit codes of the two
// on-curve tests are sets of the bits named below; bit 0 always means "on it".
#ifndef VOGEBASIC_GEOLIB_SPATIAL_H
#define VOGEBASIC_GEOLIB_SPATIAL_H

#include "VoGeBasicExport.h"
#include "VoGeCircle3d.h"
#include "VoGeLine3d.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

namespace geolib {

// ---- isPointOnLineSeg ---------------------------------------------------------------------------
// Its codes (kSegOn, kSegAtStart, kSegAtEnd, kSegBeyondStart, kSegBeyondEnd, kSegOffLine) are
// declared with the line class in VoGeLine3d.h: the segment test is the geometry classes' own.

/// Where p lies relative to the segment p1p2: kSegOn, possibly with kSegAtStart and kSegAtEnd,
/// or exactly one of kSegBeyondStart, kSegBeyondEnd and kSegOffLine. The line test is
/// VoGeLine3d::isOn(p, tol); NaN coordinates give kSegOffLine.
VOGEBASIC_API short isPointOnLineSeg(const VoGePoint3D& p1, const VoGePoint3D& p2,
                                     const VoGePoint3D& p, double tol);

// ---- codes of isPointOnArc ---------------------------------------------------------------------
/// On the arc; a point within tol of either end counts as on it.
constexpr short kArcOn = 0x0001;
/// Within tol of the start point (kArcOn is set too).
constexpr short kArcAtStart = 0x0002;
/// Within tol of the end point (kArcOn is set too).
constexpr short kArcAtEnd = 0x0004;
/// On the circle, outside the arc's angular range.
constexpr short kArcOffRange = 0x0008;
/// Not on the circle (off its radius or off its plane by more than tol).
constexpr short kArcOffCircle = 0x0010;

/// Where p lies relative to the arc of circle c from startAngle counter-clockwise to endAngle
/// (VoGeCircle3d angles; an end below the start runs through angle 0, a span of 2pi or more is
/// the full circle): kArcOn, possibly with kArcAtStart and kArcAtEnd, or kArcOffRange, or
/// kArcOffCircle. Non-finite angles give kArcOffRange for points on the circle.
VOGEBASIC_API short isPointOnArc(const VoGeCircle3d& c, double startAngle, double endAngle,
                                 const VoGePoint3D& p, double tol);

/// Foot of the perpendicular from p on the line through base along dir. A dir shorter than
/// 1e-4 has no direction: the result is base.
VOGEBASIC_API VoGePoint3D projectPointOnLine(const VoGePoint3D& p, const VoGePoint3D& base,
                                             const VoGeVector3D& dir);
/// Foot of the perpendicular from p on the plane through base with normal n. A normal shorter
/// than 1e-4 has no direction: the result is p.
VOGEBASIC_API VoGePoint3D projectPointOnPlane(const VoGePoint3D& p, const VoGePoint3D& base,
                                              const VoGeVector3D& n);
/// Distance from p to the line through base along dir; the distance to base when dir is
/// shorter than 1e-4.
VOGEBASIC_API double pointToLineDist(const VoGePoint3D& p, const VoGePoint3D& base,
                                     const VoGeVector3D& dir);
/// Shortest distance between the closed segments a0a1 and b0b1 in space; a segment shorter
/// than 1e-4 is taken as its first point. NaN coordinates give NaN.
VOGEBASIC_API double segToSegDist(const VoGePoint3D& a0, const VoGePoint3D& a1,
                                  const VoGePoint3D& b0, const VoGePoint3D& b1);

/// Centre of the circle through p1, p2 and p3. Returns false and leaves center untouched when
/// the points are collinear or two of them coincide (closer than 1e-4).
VOGEBASIC_API bool getCircleCenter(const VoGePoint3D& p1, const VoGePoint3D& p2,
                                   const VoGePoint3D& p3, VoGePoint3D& center);
/// The arc that runs from s through m to e: circle gets its centre, radius and the normal
/// about which the arc turns counter-clockwise; startAngle and endAngle the angles of s and e
/// in [0, 2pi) (VoGeCircle3d angles; an end below the start runs through angle 0). Returns
/// false and leaves the results untouched when the three points make no circle.
VOGEBASIC_API bool getArcParamFromPoints(const VoGePoint3D& s, const VoGePoint3D& m,
                                         const VoGePoint3D& e, VoGeCircle3d& circle,
                                         double& startAngle, double& endAngle);
/// The start point s, the point m halfway along and the end point e of the arc of circle c
/// from startAngle counter-clockwise to endAngle (an end below the start runs through angle
/// 0). Non-finite angles give NaN points.
VOGEBASIC_API void getArcParamFromAngles(const VoGeCircle3d& c, double startAngle, double endAngle,
                                         VoGePoint3D& s, VoGePoint3D& m, VoGePoint3D& e);

}  // namespace geolib

#endif  // VOGEBASIC_GEOLIB_SPATIAL_H
