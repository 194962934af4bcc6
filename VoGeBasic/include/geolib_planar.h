// Plan-view queries of namespace geolib on points, segments and closed polylines.
//
// A polygon is a std::vector<VoGePoint3D> of its vertices in boundary order, closed from the
// last vertex back to the first; only x and y are read unless a function says otherwise.
// Self-intersecting and degenerate outlines are accepted: the answers follow the rules below.
// The same crossing rule on a convex record (isPointInPoly(const convex*, ...)) is declared with
// the clipping records, in clip_trim.h.
#ifndef VOGEBASIC_GEOLIB_PLANAR_H
#define VOGEBASIC_GEOLIB_PLANAR_H

#include <vector>

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

namespace geolib {

/// p strictly inside poly by the crossing rule (no tolerance: a point on the boundary falls on
/// either side as the strict comparisons decide). With boxFirst, a p outside the plan box of
/// poly (isPointInBox, the box flat at z = 0) is rejected first. An empty poly gives false.
VOGEBASIC_API bool isPointInPoly(const std::vector<VoGePoint3D>& poly, const VoGePoint3D& p,
                                 bool boxFirst);
/// Plan box of the points: lo = (min x, min y, 0), hi = (max x, max y, 0). An empty vector
/// gives lo = (1e21, 1e21, 0) and hi = (-1e21, -1e21, 0).
VOGEBASIC_API void getPolylineBox(const std::vector<VoGePoint3D>& pts, VoGePoint3D& lo,
                                  VoGePoint3D& hi);
/// p within the box lo..hi on x, y and z, a coordinate failing only when it lies beyond a side
/// by more than 1e-4. NaN coordinates fail.
VOGEBASIC_API bool isPointInBox(const VoGePoint3D& p, const VoGePoint3D& lo, const VoGePoint3D& hi);
/// The closed plan segments ab and cd meet (touching and collinear overlap count; exact
/// arithmetic, no tolerance). NaN coordinates give false.
VOGEBASIC_API bool isLineIntersect(const VoGePoint3D& a, const VoGePoint3D& b, const VoGePoint3D& c,
                                   const VoGePoint3D& d);
/// The segment p0p1 has an end inside poly or crosses one of its edges. A segment shorter
/// than 1e-5 answers only whether p0 is inside.
VOGEBASIC_API bool isLineIntersectPoly(const VoGePoint3D& p0, const VoGePoint3D& p1,
                                       const std::vector<VoGePoint3D>& poly);
/// The segment p0p1 crosses or touches an edge of poly; false for a segment shorter than 1e-5.
VOGEBASIC_API bool isLineOnlyIntersectPoly(const VoGePoint3D& p0, const VoGePoint3D& p1,
                                           const std::vector<VoGePoint3D>& poly);
/// A vertex of either polygon lies inside the other, or two edges meet.
VOGEBASIC_API bool isPolyIntersectWithPoly(const std::vector<VoGePoint3D>& a,
                                           const std::vector<VoGePoint3D>& b);
/// Unit vector a quarter turn counter-clockwise from v in the plan, (-y, x, 0) normalised.
/// For a nearly vertical v (x^2 + y^2 up to 1e-4) it is (-z, 0, -x) normalised instead; the
/// zero vector when that is shorter than 1e-4.
VOGEBASIC_API VoGeVector3D vecRotate90(const VoGeVector3D& v);
/// The plan components of v turned counter-clockwise by angle (radians), z set to 0; not
/// normalised.
VOGEBASIC_API VoGeVector3D vec2dRotateXY(const VoGeVector3D& v, double angle);
/// Meeting point of the lines p1p2 and p3p4 in space (VoGeLine3d::intersectWith). Returns
/// false when they are parallel or skew (out then untouched or a point of the second line).
/// Otherwise out is the point, and the result is true, or with onSegment true whether out lies
/// on both closed segments (within 1e-5, or 1e-4 of an end).
VOGEBASIC_API bool lineIntersect3d(const VoGePoint3D& p1, const VoGePoint3D& p2,
                                   const VoGePoint3D& p3, const VoGePoint3D& p4, VoGePoint3D& out,
                                   bool onSegment);
/// Meeting point of the plan lines p1p2 and p3p4, as (x, y, 0). Returns false and leaves out
/// untouched when a line is shorter than 1e-4 in the plan or the two are parallel. Otherwise
/// out is the point, and the result is true, or with onSegment true whether it lies on both
/// closed segments (ends extended by 1e-4).
VOGEBASIC_API bool lineIntersect2d(const VoGePoint3D& p1, const VoGePoint3D& p2,
                                   const VoGePoint3D& p3, const VoGePoint3D& p4, VoGePoint3D& out,
                                   bool onSegment);
/// The first point, as (x, y, 0), where the plan ray from p along dir meets an edge of poly
/// (a ray starting on an edge meets it at p). Returns false and leaves out untouched when the
/// ray meets no edge or dir has no plan direction (shorter than 1e-4).
VOGEBASIC_API bool getInterOfPoint2Poly(const VoGePoint3D& p, const VoGeVector3D& dir,
                                        const std::vector<VoGePoint3D>& poly, VoGePoint3D& out);

}  // namespace geolib

#endif  // VOGEBASIC_GEOLIB_PLANAR_H
