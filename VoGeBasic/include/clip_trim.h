// Trimming straight pieces, arcs and circles of a drawing against outlines, in the plan.
//
// Outlines are lists of convex polygons (convex records) whose rings run counter-clockwise: a
// point is inside when it lies to the left of every edge. Only x and y are read; z is carried
// along. A piece's params list holds what is still visible of it; trimming removes from it
// every stretch that lies inside a polygon. Side-of-edge and parameter tests use 1e-4: a side
// value below it puts a point on an edge's line, one of at least 1e-4 on a side.
//
// Side values are products of two coordinate differences: with coordinates beyond about 1e150
// in magnitude they overflow, and what such a polygon hides is not defined. Every call still
// ends, and the interval lists stay sorted, disjoint and within [0, 1].
#ifndef VOGEBASIC_CLIP_TRIM_H
#define VOGEBASIC_CLIP_TRIM_H

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"
#include "clip_records.h"

namespace geolib {

/// Removes from the params of every piece the stretch inside each polygon of polys. A piece
/// that lies wholly inside a polygon loses its whole list (params becomes null) and is not
/// tried against the later polygons; a piece that is a point in the plan (both plan extents
/// within 1e-4) is left alone; a piece touching a polygon only at a corner, or meeting an
/// edge's line only at its own end, is not cut, while a stretch lying along an edge counts as
/// inside. A piece with one end outside the polygon is never taken as wholly inside: when it
/// starts on an edge's line and leaves over the corner at that edge's end (within 1e-4 of it),
/// crossing no edge strictly, it is cut at that corner, and when it merely touches the outline
/// with its other end it is not cut, so that what lies outside stays visible (a centre line
/// leaving equipment near a corner does not disappear). A null polygon list, and a polygon without
/// edges, hide nothing. Returns true, or false when splitting an interval needed an allocation that
/// failed (the pieces are then trimmed as far as they got).
VOGEBASIC_API bool convexTrimLineSeg(convex* polys, line_cut* pieces);
/// One new piece from s to e (three doubles each, copied) with params [0, 1], trimmed by
/// convexTrimLineSeg. Returns a new piece owned by the caller (its params the visible
/// intervals, possibly none); release it with freeLineCut. Returns null if an allocation fails.
VOGEBASIC_API line_cut* polygonTrimLine(convex* polys, double* const s, double* const e);
/// The same from two points. Returns a new piece owned by the caller; release it with
/// freeLineCut. Returns null if an allocation fails.
VOGEBASIC_API line_cut* polygonTrimLine(convex* polys, const VoGePoint3D& s, const VoGePoint3D& e);
/// The stretch of the segment s-e hidden by the polygons as one range [u0, u1] of its
/// parameter: [0, 1] when nothing stays visible; the empty range u0 = 1, u1 = 0 when nothing is
/// hidden (start above end, by design); otherwise the gap after a visible start or before the
/// first visible interval. Only one range is reported, which is all one convex polygon can
/// hide. Returns true, or false (u0, u1 untouched) if an allocation fails.
VOGEBASIC_API bool box2DTrimLine(convex* polys, double* const s, double* const e, double& u0,
                                 double& u1);
/// The arc of centre c, radius r from angle a0 counter-clockwise to a1 (an a1 below a0 runs
/// through angle 0) as a chain of chords of about the given length: sweep * r / chord + 1 of
/// them, truncated, at most maxCount and never fewer than 4 (a NaN or negative count gives 4).
/// Each chord is a piece with params [0, 1] at z = c[2]; the last one ends exactly at a1.
/// Returns a new list owned by the caller; release it with freeLineCut. Returns null if c is
/// null or an allocation fails.
VOGEBASIC_API line_cut* divide_arc2line(const double* const c, double r, double a0, double a1,
                                        double chord, int maxCount);
/// divide_arc2line(c, r, 0, 2pi, chord, maxCount). Returns a new list owned by the caller;
/// release it with freeLineCut. Returns null if c is null or an allocation fails.
VOGEBASIC_API line_cut* divide_circle2line(const double* const c, double r, double chord,
                                           int maxCount);
/// The visible angular intervals of the arc of centre c, radius r from a0 to a1: the arc is cut
/// into chords of about 0.5 (at most 1000), the chords are trimmed, and every run of wholly
/// visible chords becomes one interval from the angle of its first chord's start to that of its
/// last chord's end (a partly hidden chord counts as hidden); a run that closes the full circle
/// at angle 0 ends at 2pi. Returns a new arc owned by the caller (centre, radius, a0, a1 and
/// the intervals, null params when nothing is visible); release it with freeArcCut. Returns
/// null if c is null or an allocation fails.
VOGEBASIC_API arc_cut* polygonTrimArc(convex* polys, double* const c, double r, double a0,
                                      double a1);
/// polygonTrimArc(polys, c, r, 0, 2pi). Returns a new arc owned by the caller; release it with
/// freeArcCut. Returns null if c is null or an allocation fails.
VOGEBASIC_API arc_cut* polygonTrimCircle(convex* polys, double* const c, double r);
/// Splits every polygon of the list at its reflex corners into convex polygons, in place: the
/// edge before a reflex corner is extended to the nearest edge it meets, and the ring is cut in
/// two there; the new polygons follow the one they came from in the list and are split in turn.
/// Corners closer than 0.001 to their neighbours and straight corners (sine below 0.001) are
/// left alone. Returns true at the end of the list, when every polygon is convex.
/// Returns false, changing nothing, when a ring does not close or has a coordinate that is not
/// finite or lies beyond 1e150 in magnitude. Returns false at once when a reflex corner has no
/// edge to split against (a clockwise ring, for instance), when the splits of the call exceed the
/// number of edges the list had at the start (which no simple outline needs: a self-intersecting
/// ring may), or when an allocation fails; and at the end when a ring is still not convex (a
/// self-intersecting ring may be left so). The list is then left split as far as it got, every ring
/// closed and every edge held by exactly one polygon, so freeConvex releases it all.
VOGEBASIC_API bool ConvexIdentify(convex* polys);

/// p strictly inside the first polygon of the list by the crossing rule of the vector form of
/// isPointInPoly (geolib_planar.h), its edges walked from `edges` round the ring until it comes
/// back (or meets a null link, or repeats an edge). Null gives false.
VOGEBASIC_API bool isPointInPoly(const convex* poly, const VoGePoint3D& p);

}  // namespace geolib

#endif  // VOGEBASIC_CLIP_TRIM_H
