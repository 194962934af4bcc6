// Conversions between the clipping records of namespace geolib: boxes to polygons, polygons to
// point arrays and back, edges to pieces and pieces to edges, and copies of interval lists.
//
// Every list these functions return is new and belongs to the caller. When an allocation fails
// they give back what they had built and return null.
#ifndef VOGEBASIC_CLIP_CONVERT_H
#define VOGEBASIC_CLIP_CONVERT_H

#include <vector>

#include "VoGeBasicExport.h"
#include "VoGeMatrix3D.h"
#include "VoGePoint3D.h"
#include "clip_records.h"

namespace geolib {

/// The box as one counter-clockwise polygon at z = 0: (xmin, ymin) -> (xmax, ymin) ->
/// (xmax, ymax) -> (xmin, ymax) -> back. Returns a new polygon owned by the caller; release it
/// with freeConvex. Returns null if box is null or an allocation fails.
VOGEBASIC_API convex* convertBox2Convex(BOX* box);
/// Transforms (xmin, ymin, 0) and (xmax, ymax, 0) by m (postMult) and keeps their x and y; the
/// box is not re-sorted.
VOGEBASIC_API void transformBOX(BOX& box, const VoGeMatrix3D& m);
/// Transforms the start and end of every edge of every polygon of the list in place (postMult);
/// a corner shared by two edges is transformed once in each. Does nothing for a null list.
VOGEBASIC_API void transformConvex(convex* polys, const VoGeMatrix3D& m);
/// One polygon whose edge i runs from pts[i] to pts[(i + 1) mod n], linked in index order into
/// a ring. Returns a new polygon owned by the caller; release it with freeConvex. Returns null
/// if pts is empty or an allocation fails.
VOGEBASIC_API convex* transPtArray2Convex(const std::vector<VoGePoint3D>& pts);
/// Clears pts, then appends the start of every edge of the first polygon of the list, round its
/// ring from `edges`. A null list leaves pts empty. Throws only the container's own allocation
/// errors, leaving pts as it was.
VOGEBASIC_API void transConvex2PtArray(const convex* polys, std::vector<VoGePoint3D>& pts);
/// One piece with the interval [0, 1] for each edge of the list, in list order; a ring is
/// converted once round. Returns a new list owned by the caller; release it with freeLineCut.
/// Returns null for an empty list or if an allocation fails.
VOGEBASIC_API line_cut* transLine(line* lines);
/// One edge for every interval [t0, t1] of every piece, from start + (end - start) * t0 to
/// start + (end - start) * t1, pieces and intervals in list order; a piece without intervals
/// gives nothing. Returns a new open list owned by the caller; release it with freeLine.
/// Returns null when there is no interval or an allocation fails.
VOGEBASIC_API line* transLineCut(line_cut* pieces);
/// The same intervals in the same order. Returns a new list owned by the caller; release it
/// with freeParamt. Returns null for an empty list or if an allocation fails.
VOGEBASIC_API paramt* copyParamt(const paramt* list);

}  // namespace geolib

#endif  // VOGEBASIC_CLIP_CONVERT_H
