// Tolerances of the clipping side. Internal: not part of the exported interface.
// Lengths in model units, angles in radians, parameters in their own units. The full turn of an
// arc's range and the empty-box sentinels are the shared ones of core/constants.h.
#ifndef VOGEBASIC_CLIP_TOLERANCES_H
#define VOGEBASIC_CLIP_TOLERANCES_H

namespace geolib {
namespace clip {

/// A box accepts a point that lies beyond one of its sides by no more than this.
constexpr double kBoxContainTol = 1e-6;

// ---- interval lists ----------------------------------------------------------------------------
/// Two interval ends closer than this (strict) are the same end; a range shorter than this is
/// no range. One value for lines and arcs.
constexpr double kIntervalEndTol = 1e-6;

// ---- trimming against convex polygons ----------------------------------------------------------
/// Side-of-edge values, parameters along a piece and plan extents of a piece: below this
/// (strict, or inclusive where the code says so) they count as zero.
constexpr double kSideTol = 1e-4;
/// polygonTrimArc: an angle this close to 0 (strict) closes a run at the full turn.
constexpr double kArcAngleTol = 1e-6;
/// polygonTrimArc cuts the arc into chords of about this length ...
constexpr double kTrimChordLength = 0.5;
/// ... and at most this many of them.
constexpr int kTrimMaxChords = 1000;
/// divide_arc2line never makes fewer chords than this, whatever the caller's maximum.
constexpr int kMinChords = 4;

// ---- splitting outlines into convex polygons ---------------------------------------------------
/// ConvexIdentify: shorter edges have no direction, smaller sines are straight corners, points
/// closer than this to a line lie on it and hits closer than this to a vertex snap to it.
constexpr double kSplitTol = 0.001;
/// ConvexIdentify: the start of the search for the nearest hit, beyond any drawing.
constexpr double kSplitFar = 1e12;
/// ConvexIdentify refuses a ring with a coordinate beyond this in magnitude: its turn tests and
/// line intersections multiply two coordinate differences, which must not overflow.
constexpr double kSplitCoordLimit = 1e150;
/// ConvexIdentify: the turning angles of a closed ring add up to a whole number of turns; a sum
/// within this of one turn is one (a star turns twice).
constexpr double kOneTurnTol = 0.1;

// ---- view boxes --------------------------------------------------------------------------------
/// viewBoxTrimLine: a view shows the piece as a point when both of its coordinate differences
/// are below this (strict).
constexpr double kViewPointTol = 0.01;

}  // namespace clip
}  // namespace geolib

#endif  // VOGEBASIC_CLIP_TOLERANCES_H
