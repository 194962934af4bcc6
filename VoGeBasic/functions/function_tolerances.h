// Tolerances of the free functions of namespace geolib. Internal: not part of the exported
// interface. Lengths are absolute, in model units; angles in radians.
#ifndef VOGEBASIC_FUNCTION_TOLERANCES_H
#define VOGEBASIC_FUNCTION_TOLERANCES_H

#include "geometry/geometry_tolerances.h"

namespace geolib {
namespace functions {

/// gaussLiner: a pivot of smaller magnitude (strict) makes the system singular. Absolute, not
/// relative to the size of the entries.
constexpr double kPivotMin = 1e-6;

/// A segment whose ends are closer than this (strict) has no length.
constexpr double kNoLengthSegment = 1e-5;
/// A point this close (inclusive) to an end of a segment or an arc counts as lying on it.
constexpr double kSegmentEndTol = 1e-4;
/// isPointInBox: a coordinate may lie beyond a side of the box by this much (inclusive).
constexpr double kBoxTol = 1e-4;
/// Sentinels of an empty plan box: minima start here and maxima at its negation.
constexpr double kEmptyBoxMin = 1e21;
/// lineIntersect3d: the tolerance with which the crossing is tested on both segments.
constexpr double kCrossingOnSegmentTol = 1e-5;
/// vecRotate90: a vector whose plan part has a squared length up to this is nearly vertical.
constexpr double kNearlyVerticalPlanSq = 1e-4;
/// Plan lines whose unit directions have a cross product below this (strict) are parallel.
constexpr double kParallelSine = 1e-9;
/// Three points whose chords have a sine below this (strict) are collinear: no circle.
constexpr double kCollinearSine = 1e-9;

/// pi and the full turn as the doubles nearest to them.
constexpr double kPi = 3.141592653589793;
using geometry::kFullTurn;

}  // namespace functions
}  // namespace geolib

#endif  // VOGEBASIC_FUNCTION_TOLERANCES_H
