// Tolerances of the geometry classes. Internal: not part of the exported interface.
// All lengths are absolute, in model units; angles in radians.
#ifndef VOGEBASIC_GEOMETRY_TOLERANCES_H
#define VOGEBASIC_GEOMETRY_TOLERANCES_H

namespace geolib {
namespace geometry {

/// Two points are the same under == when closer than this (strict).
constexpr double kPointEqualTol = 1e-5;
/// A vector shorter than this has no direction and normalises to zero. Deliberately larger
/// than kPointEqualTol: short vectors are "no direction", not errors.
constexpr double kNormaliseMinLength = 1e-4;
/// Normalised components agree within this (inclusive) for vectors of the same direction.
constexpr double kDirectionEqualTol = 1e-5;
/// Cross-product components below this (strict) make two unit vectors parallel.
constexpr double kParallelCrossTol = 1e-5;
/// rotateAngle returns angles up to this without asking for the sense of rotation.
constexpr double kRotateAngleNoSenseTol = 1e-4;
/// getZaxisUcsMatrix: z.y and z.z both within this (inclusive) means z runs along +-X.
constexpr double kUcsAlongXTol = 1e-4;
/// Line parameter: one direction component is clearly smaller than another when it is smaller
/// by more than this; closer components tie (x before y before z).
constexpr double kLineAxisTieTol = 1e-6;
/// Line parameter: the chosen direction component must exceed this (strict), or there is no
/// parameter.
constexpr double kLineParamMinComponent = 1e-6;
/// getGeneratlEquation: a direction component up to this (inclusive) counts as zero.
constexpr double kEquationZeroComponent = 1e-4;
/// Line-line intersection: the two solutions agree when closer than this (strict).
constexpr double kLineMeetTol = 1e-5;
/// Plane-segment intersection: the tolerance with which the crossing is tested on the segment.
constexpr double kPlaneSegmentTol = 1e-5;
/// A point this close (inclusive) to an end of a segment or an arc counts as lying on it.
constexpr double kSegmentEndTol = 1e-4;

}  // namespace geometry
}  // namespace geolib

#endif  // VOGEBASIC_GEOMETRY_TOLERANCES_H
