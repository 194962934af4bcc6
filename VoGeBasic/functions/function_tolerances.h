// Tolerances of the free functions of namespace geolib. Internal: not part of the exported
// interface. Lengths are absolute, in model units; angles in radians.
#ifndef VOGEBASIC_FUNCTION_TOLERANCES_H
#define VOGEBASIC_FUNCTION_TOLERANCES_H

#include "geometry/geometry_tolerances.h"

namespace geolib {
namespace functions {

/// A segment whose ends are closer than this (strict) has no length.
constexpr double kNoLengthSegment = 1e-5;
/// A point this close (inclusive) to an end of a segment or an arc counts as lying on it: the
/// rule of the geometry classes' segment test, which isPointOnLineSeg gives out.
using geometry::kSegmentEndTol;
/// lineIntersect3d: the tolerance with which the crossing is tested on both segments.
constexpr double kCrossingOnSegmentTol = 1e-5;
/// vecRotate90: a vector whose plan part has a squared length up to this is nearly vertical.
constexpr double kNearlyVerticalPlanSq = 1e-4;
/// Plan lines whose unit directions have a cross product below this (strict) are parallel.
constexpr double kParallelSine = 1e-9;
/// Three points whose chords have a sine below this (strict) are collinear: no circle.
constexpr double kCollinearSine = 1e-9;

}  // namespace functions
}  // namespace geolib

#endif  // VOGEBASIC_FUNCTION_TOLERANCES_H
