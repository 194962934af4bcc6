// Where a point lies relative to a segment in space. Internal: the plane class tests its
// crossings with it, and isPointOnLineSeg gives its answer to callers.
#ifndef VOGEBASIC_SEGMENT_PLACE_H
#define VOGEBASIC_SEGMENT_PLACE_H

#include "VoGeLine3d.h"

namespace geolib {
namespace geometry {

/// Where p lies relative to the segment p1p2, in the codes of VoGeLine3d.h: kSegOn, with
/// kSegAtStart and kSegAtEnd when within kSegmentEndTol of an end, or exactly one of
/// kSegBeyondStart, kSegBeyondEnd and kSegOffLine. The line test is VoGeLine3d::isOn(p, tol);
/// NaN coordinates give kSegOffLine.
short placeOnSegment(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p,
                     double tol);

}  // namespace geometry
}  // namespace geolib

#endif  // VOGEBASIC_SEGMENT_PLACE_H
