// Hidden-line engine of namespace geolib: face intersection between the objects of a view and
// the hide pass that returns the visible pieces of their profile lines.
//
// The view is a parallel projection along Z: X and Y are the drawing plane, and of two points
// with the same X and Y the one with the smaller Z is nearer and hides the other. Objects are
// those of hd_tessellators.h (faces of three or four vertices; a face of more is read as its
// first four, one of fewer hides nothing).
//
// Bad input: null objects in the array are skipped; a negative or zero count does nothing.
// NaN or infinite coordinates never stop a call (nothing here converts a double to an
// integer): a line with a NaN coordinate is hidden by nothing, and a face with one, or of no
// area, hides nothing and meets nothing.
#ifndef VOGEBASIC_HD_ENGINE_H
#define VOGEBASIC_HD_ENGINE_H

#include "VoGeBasicExport.h"
#include "hd_records.h"

namespace geolib {

/// The hide pass over the n objects of objs. For each line of each object, every face of every
/// object whose XY box touches the object's box (the object itself included, so a solid hides
/// its own back edges) may hide pieces of the line; what is left is returned, one node per
/// visible piece, the pieces of a line in order from its near end (smaller Z) and lines in
/// object and list order, each node's owner set to its object's index in objs. Every line is
/// re-oriented in place to run from its near end: a line of constant depth has its ends
/// swapped at every call. Two solids that butt each return the edge they share, as their own
/// pieces; dropRepeatedProlines keeps one for the drawing.
/// Returns a new list owned by the caller; release it with releaseProline. Returns null when
/// nothing is visible, when objs is null or n is 0 or less, and if an allocation fails (having
/// released all it built).
VOGEBASIC_API _s_hd_proline_* kestHideObject(_s_hd_prof_** objs, int n);

/// Registers obj in the caller's registry objs (count entries in use, room for max + 1: with
/// count equal to max, obj is still stored at index max) and appends to obj's line list the
/// segments along which its faces cut the faces of every registered object, obj itself last.
/// Faces that share an edge, or whose edges overlap, add no segment along it: a solid's own
/// edges are not drawn again, and the seams between the faces of a curved surface not at all.
/// Faces that cut through each other, of two objects or of one, add theirs, also where an edge
/// of one crosses an edge of the other on the line along which they meet (a nozzle entering a
/// sphere or a head about the same axis): the first two points found there, one from each edge,
/// lie on an edge of both faces, but the segment runs on to the next point that does not.
/// Nothing changes when count is below 0 or above max (or is the largest int). Segments are
/// kept only when obj already has a line; an object without faces is registered only.
/// The new lines (owner -1) belong to obj. If an allocation fails, obj is registered but gets
/// no new line.
VOGEBASIC_API void kestFaceIntersect(_s_hd_prof_* obj, _s_hd_prof_** objs, int& count, int max);

/// Face intersection of a whole scene in one call: the same segments, in the same order, as
/// registering objs[0], objs[1], ... objs[n - 1] one by one with kestFaceIntersect in an empty
/// registry (each object meets the objects before it and then itself). It finds each object's
/// neighbours through an index over the objects' boxes instead of looking at every object
/// registered before it, so a scene costs about its size rather than its size squared.
/// Null entries are skipped; nothing happens when objs is null or n is 0 or less. If an
/// allocation fails, the object being cut at the time gets no new line (as with
/// kestFaceIntersect); if the index itself cannot be built, the objects are registered one by
/// one.
VOGEBASIC_API void kestFaceIntersectAll(_s_hd_prof_** objs, int n);

/// Drops from the list every piece that repeats a piece kept before it: both its ends lie
/// within tol of that piece's ends in X and Y (the drawing), either way round. Two solids that
/// butt each return their shared rim from kestHideObject, a pipe and the elbow on it, a head
/// and its shell; a drawing made from the list as it is strokes that edge twice (a plotter
/// draws it twice, a DXF holds two entities on top of each other). So the first of each set of
/// repeats in list order stays and the rest go; a piece that repeats only a piece that went is
/// kept. Pieces that only overlap stay as they are. Depth is not compared. A millionth of the
/// drawing's largest coordinate makes a good tol: the ends of a shared edge are worked out
/// along the lines of each solid and differ by roundings.
/// A piece with a coordinate that is not finite, or so large against tol that it has no place
/// on tol's grid (x / tol overflows), is kept and repeats nothing. A tol of 0 drops exact
/// repeats only; a negative or NaN tol drops nothing. The cost grows as n log n, also when
/// many pieces share one X (the vertical edges of a drawing).
/// Returns how many nodes were dropped (and freed); -1 if an allocation fails, with the list
/// as it was.
VOGEBASIC_API long dropRepeatedProlines(_s_hd_proline_*& head, double tol);

}  // namespace geolib

#endif  // VOGEBASIC_HD_ENGINE_H
