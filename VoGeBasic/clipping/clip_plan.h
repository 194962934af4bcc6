// Small plan-view measures shared by the trimming and splitting routines. Internal.
#ifndef VOGEBASIC_CLIP_PLAN_H
#define VOGEBASIC_CLIP_PLAN_H

#include <cmath>

#include "VoGePoint3D.h"

namespace geolib {
namespace clip {

/// Parameter of p along the segment s-e (0 at s, 1 at e), measured on the coordinate in which
/// the segment extends further (y when the extents are equal). Not guarded: a segment that is a
/// point gives NaN or an infinity.
inline double alongLargerExtent(const VoGePoint3D& s, const VoGePoint3D& e, const VoGePoint3D& p) {
    if (std::fabs(e.x - s.x) <= std::fabs(e.y - s.y))
        return (p.y - s.y) / (e.y - s.y);
    return (p.x - s.x) / (e.x - s.x);
}

}  // namespace clip
}  // namespace geolib

#endif  // VOGEBASIC_CLIP_PLAN_H
