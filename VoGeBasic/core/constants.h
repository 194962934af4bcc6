// The numbers that more than one part of the library reads: angles and the sentinels of empty
// boxes. Internal: not part of the exported interface. Tolerances are not kept here, except the
// one box slack that two parts share: each other tolerance stays next to the code whose rule it
// belongs to.
#ifndef VOGEBASIC_CORE_CONSTANTS_H
#define VOGEBASIC_CORE_CONSTANTS_H

namespace geolib {
namespace core {

// ---- angles (radians) --------------------------------------------------------------------------

/// pi as the double nearest to it.
constexpr double kPi = 3.141592653589793;
/// pi / 2 as the double nearest to it.
constexpr double kHalfPi = 1.5707963267948966;
/// The full turn, 2 pi, as the double nearest to it.
constexpr double kFullTurn = 6.283185307179586;
/// The largest angle below the full turn (the double just below kFullTurn).
constexpr double kJustBelowFullTurn = 0x1.921fb54442d17p+2;
/// The full turn as the hidden-line side has always measured it: about 3.2e-6 above 2 pi,
/// deliberately. The circles of the tessellators sweep it and the hide pass's point-on-segment
/// test is measured from it; the drawings made so far were made with it, so it stays.
constexpr double kFullTurnAsDrawn = 6.2831885307179585;

// ---- boxes -------------------------------------------------------------------------------------

/// Empty plan box of the 2-D side (getPolylineBox, BOX, the unset range of the view box trim):
/// every minimum starts here and every maximum at its negation.
constexpr double kEmptyPlanBoxMin = 1e21;
/// Empty box of a hidden-line object: every maximum starts here ...
constexpr double kEmptyObjectBoxMax = -90000000000.0;
/// ... and every minimum here.
constexpr double kEmptyObjectBoxMin = 90000000000.0;
/// The slack of a 3-D box: a coordinate may lie beyond a side by this much (inclusive) and
/// still count as inside. One value for isPointInBox and isLineCrossBox3d, which must agree.
constexpr double kBoxSideTol = 1e-4;

}  // namespace core
}  // namespace geolib

#endif  // VOGEBASIC_CORE_CONSTANTS_H
