// Tolerances of the clipping side. Internal: not part of the exported interface.
// Lengths in model units, angles in radians, parameters in their own units.
#ifndef VOGEBASIC_CLIP_TOLERANCES_H
#define VOGEBASIC_CLIP_TOLERANCES_H

namespace geolib {
namespace clip {

/// A box accepts a point that lies beyond one of its sides by no more than this.
constexpr double kBoxContainTol = 1e-6;
/// The full turn of an arc's angular range: 2pi as the double nearest to it.
constexpr double kFullTurn = 6.283185307179586;
/// Sentinels of the empty plane box: minima start here and maxima at its negation.
constexpr double kEmptyBoxMin = 1e21;

}  // namespace clip
}  // namespace geolib

#endif  // VOGEBASIC_CLIP_TOLERANCES_H
