// Tolerances and fixed constants of the hidden-line engine (hide pass and face intersection).
// Internal: not part of the exported interface. Lengths in model units, angles in radians.
#ifndef VOGEBASIC_HD_ENGINE_TOLERANCES_H
#define VOGEBASIC_HD_ENGINE_TOLERANCES_H

#include "core/constants.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {
namespace hd {

// ---- faces and lines ----------------------------------------------------------------------------

// kEdgeOnNormalZ, the edge-on limit of a face, is the model's (hd_tolerances.h): the
// tessellators ask it too.
/// A direction is parallel to a plane when its unit vector's dot product with the plane's unit
/// normal is at most this.
constexpr double kPlaneParallelTol = 0.00003;
/// A line whose unit direction is within this of the Z axis (in X, in Y and in |Z| - 1) is
/// seen end-on: it projects to a point.
constexpr double kEndOnTol = 0.0003;
/// A point where a line pierces a face's plane must lie within the face's X and Y extents
/// widened by this on each side.
constexpr double kPierceExtentTol = 0.0003;
/// A point straight behind (or in front of) a face must lie within the face's X and Y extents
/// widened by this on each side.
constexpr double kBehindExtentTol = 0.03;
// kLevelDepthTol, the depth within which a line lies level with a face, is the model's
// (hd_tolerances.h) too.
/// A second crossing of the face's outline counts only when its distance from the line's near
/// end differs from the first's by more than this.
constexpr double kCrossingSeparation = 0.0005;
/// A piece between a piercing point and a crossing is dropped when their distances from the
/// near end differ by this or less.
constexpr double kMinPieceSpan = 0.00000005;
/// The projections of a line and of a face edge are parallel when the cross product of their
/// unit directions in the drawing plane is below this (or when either projects to a point).
constexpr double kProjParallelTol = 1e-9;

// ---- point on a segment, point in a face --------------------------------------------------------

/// A point within this squared distance of a segment's end lies on the segment.
constexpr double kOnSegEndDist2 = 0.000000001;
/// A point lies on a segment when twice the angle the segment subtends at it is within this of
/// kOnSegTurn.
constexpr double kOnSegAngleTol = 0.0005;
/// The full turn that kOnSegAngleTol is measured from: deliberately the one about 3.2e-6 above
/// 2 pi that the drawings made so far were made with.
constexpr double kOnSegTurn = core::kFullTurnAsDrawn;
/// Shortcuts of the same test that change none of its answers: a point farther than this part of
/// the segment's largest extent, plus kOnSegRejectAbs, outside the segment's box is not on it ...
constexpr double kOnSegRejectRel = 0.01;
constexpr double kOnSegRejectAbs = 0.001;
/// ... nor one on the segment's line farther than this beyond an end ...
constexpr double kOffEdgeGap = 0.0001;
/// ... nor is one where the cosine of the subtended angle is above this (an angle below about 3
/// radians, far from the half turn the test looks for).
constexpr double kOnSegSureOffCos = -0.99;
/// ... nor measure the angle where the cosine lies farther than this from the cosine at which the
/// test turns (about -0.99999996915): near it the angle moves by 2,500 times the cosine's change.
constexpr double kOnSegEdgeBand = 1e-12;
/// A point within this squared distance of a face's vertex lies in the face.
constexpr double kInFaceVertexDist2 = 0.00000001;
/// A point lies in a face when the angles its edges subtend at it add up to within this of a
/// full turn (the double nearest to 2 pi).
constexpr double kInFaceTurnTol = 0.09;
constexpr double kInFaceTurn = core::kFullTurn;
/// The angle sum is first added up with a polynomial arccos good to 2e-8 an angle (acosBound,
/// 3e-8 with its rounding), so to within 1.2e-7 over four edges: where that sum lies farther
/// than this from the tolerance's edges, it gives the same answer as the measured angles.
constexpr double kInFaceRoughBand = 1e-6;

// ---- pruning in the library's hide pass (changes no result) -------------------------------------

/// A face hides a piece of a line that is not seen end-on only through a point within
/// kBehindExtentTol (times sqrt 2, the box corner) of the face's XY extents, or within
/// kPierceExtentTol of them and near the segment, or where an edge near the face crosses the
/// segment. "Near" is what isPointOnSeg accepts: within kOnSegEndDist2 of an end, or where the
/// angle falls short of a half turn by at most about 2.5e-4 rad, which is at most 2.5e-4 times
/// the segment's length away (rounding of the cosine adds at most 1.2e-4 times its square root).
/// The drawing-plane crossing of the line and an edge is computed to within 1e-6 of the two
/// lengths. So the projected segment comes within kCullMarginAbs plus kCullMarginRel times the
/// line's length and the face's size (X plus Y plus Z extent) of the face's XY extents whenever
/// the face can hide a piece of it: 0.0424 + 3.6e-4 + 3.7e-4 (length + size) stays below.
constexpr double kCullMarginAbs = 0.05;
constexpr double kCullMarginRel = 0.001;
/// Pruning is used only when every coordinate of the line and of the face is finite and within
/// this of zero, so that rounding of positions (below 3e-7) stays far below the margins.
constexpr double kCullCoordLimit = 1e9;
/// A quadrilateral whose fourth vertex lies within this part of its size (X plus Y plus Z
/// extent) of the plane of its first three is flat enough to be pruned by its outline.
constexpr double kCullFlatRel = 1e-6;

// ---- face intersection --------------------------------------------------------------------------

/// Two faces are parallel, and do not meet, when the absolute dot product of their unit normals
/// is within this of 1.
constexpr double kParallelFacesTol = 0.000001;
/// A face whose vertices all lie farther than kOffPlaneAbs plus kOffPlaneRel times the two
/// faces' size (their common box's X plus Y plus Z extent) on one side of another face's plane
/// has no edge that pierces that face: twice kOffEdgeGap, and rounding at most 6e-11 of the size.
constexpr double kOffPlaneAbs = 2.0 * kOffEdgeGap;
constexpr double kOffPlaneRel = 1e-10;
/// Two flat faces meet nowhere when one lies wholly farther than kFacesApartAbs plus
/// kFacesApartRel times their size (the common box's X plus Y plus Z extent) on one side of the
/// other's plane, or when their vertices lie that far apart along the line where their planes
/// meet: the points either keeps lie within 3e-4 of that size, plus 1e-4 and a root term, of
/// both faces (apartMargin), and half the margin clears twice that.
constexpr double kFacesApartAbs = 0.05;
constexpr double kFacesApartRel = 0.001;
/// A point worked out on an edge's line at least this far from both ends, and this part of the
/// edge's length, lies on the edge by isPointOnSeg without measuring: its rounding (below 1e-6
/// at coordinates within kCullCoordLimit) tilts the edge by under 4e-5 rad, far inside the
/// 2.5e-4 the angle test allows, and the cosine stays well conditioned.
constexpr double kSureOnEdgeEnd = 0.05;
constexpr double kSureOnEdgeRel = 0.001;

}  // namespace hd
}  // namespace geolib

#endif  // VOGEBASIC_HD_ENGINE_TOLERANCES_H
