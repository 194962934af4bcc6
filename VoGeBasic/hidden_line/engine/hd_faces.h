// Faces as the engine reads them: the face record a vertex chain is read into, and what the face
// tests ask of a face alone, worked out once. Not exported; the unit tests call them.
#ifndef VOGEBASIC_HD_FACES_H
#define VOGEBASIC_HD_FACES_H

#include "hidden_line/engine/hd_predicates.h"

namespace geolib {

/// A face as the engine reads it: its vertices in order (at most four), their extents and the
/// unit normal of the first three.
struct HDFace {
    _s_hd_point_ v[kMaxFaceVertices];
    int count;
    double xmax, xmin, ymax, ymin, zmax, zmin;
    _s_hd_point_ normal;  ///< triNormal(v[0], v[1], v[2])
};

/// The face's size: its X plus Y plus Z extent.
inline double faceSize(const HDFace& f) {
    return (f.xmax - f.xmin) + (f.ymax - f.ymin) + (f.zmax - f.zmin);
}
/// True for a triangle, and for a quadrilateral whose fourth vertex lies within kCullFlatRel
/// times size (the face's faceSize) of the plane of its first three. False for NaN.
bool isFlatFace(const HDFace& face, double size);

/// True when p lies within the face's X and Y extents widened by tol on each side.
inline bool withinXYExtents(_s_hd_point_ p, const HDFace& face, double tol) {
    return p.x >= face.xmin - tol && p.x <= face.xmax + tol && p.y >= face.ymin - tol &&
           p.y <= face.ymax + tol;
}

/// Reads a vertex chain into face. A chain of more than four vertices is read as its first
/// four. Returns false (a face that hides and meets nothing) for fewer than three vertices.
bool readFace(const _s_hd_sect_* chain, HDFace& face);

/// What the face tests ask of one face alone, worked out once (edge k runs from v[k] to
/// v[(k + 1) mod count]).
struct FacePrep {
    SegmentReach reach[kMaxFaceVertices];  ///< segmentReach of each edge
    double len2[kMaxFaceVertices];         ///< each edge's squared length (pointDist2)
    FlatRun run[kMaxFaceVertices];         ///< each edge's run in the drawing plane
    _s_hd_point_ dir[kMaxFaceVertices];    ///< each edge's unit direction, unitDir(v[k + 1], v[k])
    _s_hd_point_ area;  ///< the unit area normal that isPointInFace signs its angles by
    /// The outline data (outlineOf): the margin beyond which isPointInFace knows a point's side
    /// of the outline without its angles, 0 for none (prepareEdgeTests leaves it so), and each
    /// edge's side. The hide pass takes outlineOf's margin; face intersection, whose points lie
    /// on the face's plane, a narrower one of its own where outlineOf gives one (withOutline).
    double outlineMargin;
    signed char side[kMaxFaceVertices];
    bool bounded;  ///< every vertex within kCullCoordLimit: boundedEnds holds for every edge
};
/// boundedEnds of edge k, from the face's prepared data (when given) where every edge is bounded.
inline bool edgeBounded(const HDFace& f, int k, const FacePrep* prep) {
    return (prep != nullptr && prep->bounded) || boundedEnds(f.v[k], f.v[nextVertex(k, f.count)]);
}
/// Per edge k (run length lengths[k], flatRunOf), the side of the edge's drawing-plane normal
/// (-(b.y - a.y), b.x - a.x) that the whole face lies on: 1 or -1; 0 when the edge has no run,
/// or the face lies on both sides or on its line. Returns, for a flat face (isFlatFace, size its
/// faceSize) with every side known and every coordinate within kCullCoordLimit, the margin
/// kCullMarginAbs plus kCullMarginRel times size, beyond which a point of the face's plane is
/// inside or outside the face by its sides alone; 0 for any other face.
double outlineOf(const HDFace& face, double size, const double* lengths, signed char* sides);
void prepareFaceTests(const HDFace& face, FacePrep& prep);
/// The edges' part of prepareFaceTests alone (reach, len2, run, bounded), the same to the bit; dir
/// and area are left unset. flatLengths, when given, holds each edge's run length (flatRunOf).
void prepareEdgeTests(const HDFace& face, FacePrep& prep, const double* flatLengths = nullptr);
/// The face's unit area normal, as prepareFaceTests sets prep.area.
_s_hd_point_ faceAreaNormal(const HDFace& face);
/// isPointInFace(p, face, prep) where the face's outline data settles it without the angles: 1
/// or 0, or -1 where it does not.
int pointInFaceByOutline(_s_hd_point_ p, const HDFace& face, const FacePrep& prep);
/// isPointInFace(p, face.count, face.v) with the face's data prepared.
int isPointInFace(_s_hd_point_ p, const HDFace& face, const FacePrep& prep);
/// isPointInFace(p, face, prep) where pointInFaceByOutline has answered -1 already: the same
/// answer without asking the outline again.
int pointInFaceBeyondOutline(_s_hd_point_ p, const HDFace& face, const FacePrep& prep);

}  // namespace geolib

#endif  // VOGEBASIC_HD_FACES_H
