// Face intersection: the segment along which two faces meet. Not exported; the unit tests call
// it.
#ifndef VOGEBASIC_HD_FACE_INTERSECT_H
#define VOGEBASIC_HD_FACE_INTERSECT_H

#include "hidden_line/engine/hd_faces.h"

namespace geolib {

/// The segment along which the faces f and g meet: the first two distinct points where an edge
/// of one pierces the other (edges of f first). Returns true and sets a -> b when there are two;
/// false for parallel faces, a face without a plane, fewer than two points, or a segment that
/// runs along an edge of both faces (faces sharing an edge meet there; that is no line). Two
/// points that run along an edge of both but lie within isPointOnSeg's end distance of each other
/// are one crossing of an edge of each, found twice: the segment then runs from the first to the
/// next point apart from it, unless that pair too runs along an edge of both.
bool getFaceInterLine(const HDFace& f, const HDFace& g, _s_hd_point_& a, _s_hd_point_& b);
/// The same with both faces' data prepared (prepareFaceTests).
bool getFaceInterLine(const HDFace& f, const FacePrep& fp, const HDFace& g, const FacePrep& gp,
                      _s_hd_point_& a, _s_hd_point_& b);
}  // namespace geolib

#endif  // VOGEBASIC_HD_FACE_INTERSECT_H
