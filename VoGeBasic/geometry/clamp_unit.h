// Forcing a cosine or sine into [-1, 1] before acos or asin. Internal, not exported.
#ifndef VOGEBASIC_CLAMP_UNIT_H
#define VOGEBASIC_CLAMP_UNIT_H

namespace geolib {
namespace geometry {

/// c forced into [-1, 1]: rounding can push a cosine of unit vectors past +-1, where acos gives
/// NaN. NaN itself is passed through.
inline double clampUnit(double c) {
    if (c < -1.0)
        return -1.0;
    if (c > 1.0)
        return 1.0;
    return c;
}

}  // namespace geometry
}  // namespace geolib

#endif  // VOGEBASIC_CLAMP_UNIT_H
