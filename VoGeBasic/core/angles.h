// Small helpers on cosines and angles. Internal, not exported.
#ifndef VOGEBASIC_CORE_ANGLES_H
#define VOGEBASIC_CORE_ANGLES_H

#include "core/constants.h"

namespace geolib {
namespace core {

/// c forced into [-1, 1]: rounding can push a cosine of unit vectors past +-1, where acos gives
/// NaN. NaN itself is passed through.
inline double clampUnit(double c) {
    if (c < -1.0)
        return -1.0;
    if (c > 1.0)
        return 1.0;
    return c;
}

/// An angle in [0, 2pi) as the angle functions promise it: 2pi less a tiny angle rounds to 2pi
/// itself, which is given back as the largest angle below the turn instead. NaN passes through.
inline double belowFullTurn(double a) {
    return a >= kFullTurn ? kJustBelowFullTurn : a;
}

}  // namespace core
}  // namespace geolib

#endif  // VOGEBASIC_CORE_ANGLES_H
