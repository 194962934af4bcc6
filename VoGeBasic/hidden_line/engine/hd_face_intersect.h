// Face intersection: the segment along which two faces meet. Not exported; the unit tests call
// it.
#ifndef VOGEBASIC_HD_FACE_INTERSECT_H
#define VOGEBASIC_HD_FACE_INTERSECT_H

#include "hidden_line/engine/hd_faces.h"

namespace geolib {

/// The segment along which the faces f and g meet: the first two distinct points where an edge
/// of one pierces the other (edges of f first). Returns true and sets a -> b when there are two;
/// false for parallel faces, a face without a plane, fewer than two points, or a segment that
/// runs along an edge of both faces (faces sharing an edge meet there; that is no line). Where
/// the first two run along an edge of both but lie within a hundredth of the smaller face's size
/// of each other, the segment runs from the first to the first point, in the same order, with
/// which it runs along no edge of both: faces sharing an edge have none, but two points found
/// where an edge of each face crosses the other's (or near a vertex of one lying close to the
/// other) run along an edge of both without the faces sharing one.
bool getFaceInterLine(const HDFace& f, const HDFace& g, _s_hd_point_& a, _s_hd_point_& b);
/// The same with both faces' data prepared (prepareFaceTests).
bool getFaceInterLine(const HDFace& f, const FacePrep& fp, const HDFace& g, const FacePrep& gp,
                      _s_hd_point_& a, _s_hd_point_& b);
}  // namespace geolib

#endif  // VOGEBASIC_HD_FACE_INTERSECT_H
