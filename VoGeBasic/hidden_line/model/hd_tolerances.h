// Tolerances and fixed constants of the hidden-line model. Internal: not part of the exported
// interface. Lengths in model units, angles in radians. pi, the full turn (also as the
// tessellators' circles sweep it) and the empty object box are the shared ones of
// core/constants.h.
#ifndef VOGEBASIC_HD_TOLERANCES_H
#define VOGEBASIC_HD_TOLERANCES_H

#include "core/constants.h"

namespace geolib {
namespace hd {

// ---- points and vectors -------------------------------------------------------------------------

/// A vector component smaller than this in magnitude is taken as 0 before a length is measured,
/// so near-axis vectors lose their noise.
constexpr double kComponentSnap = 1e-9;
/// A squared length at or below this is a null vector: anything shorter than 1e-5 has no length.
constexpr double kNullLengthSq = 1e-10;
/// A vector shorter than this normalises to the zero vector; a cross product shorter than this
/// makes two directions parallel.
constexpr double kUnitMinLength = 1e-9;
/// Two points are the same when every coordinate differs by less than this (strict).
constexpr double kSamePointTol = 0.005;
/// The fine form of the same test, used for end points of curves.
constexpr double kSamePointFineTol = 5e-7;

// ---- chord counts -------------------------------------------------------------------------------

/// Chord half-angles below this (the double just below 0.003) take the largest chord count.
/// Kept deliberately as this exact double: counts at the limit depend on it.
constexpr double kChordAngleFloor = 0.0029999999999999996;
/// A full circle or an arc of a curved primitive is drawn with this many chords at least ...
constexpr int kMinCurveChords = 8;
/// ... and this many at most.
constexpr int kMaxCurveChords = 12;
/// No tangent step of the arc routine reaches this angle: it keeps tan() far from its pole.
constexpr double kMaxTangentStep = 1.5;
/// The arc routine chooses its chord count so that no chord lies further than this from the arc.
constexpr double kChordSagitta = 0.01;
/// The arc routine never makes more chords than this: a larger chord count asked by the caller
/// fails, a larger count chosen by the sagitta rule is lowered to it.
constexpr int kMaxArcChords = 100000;

// ---- discs --------------------------------------------------------------------------------------

/// A disc (or half circle) with a smaller radius is not drawn.
constexpr double kMinDiscRadius = 0.01;
/// Half a turn for the half-circle chord builder: deliberately this eight-decimal value, not
/// the double nearest to pi; the last chord takes up the difference.
constexpr double kHalfTurnApprox = 3.14159265;
/// A disc faces the viewer when the Z component of its normal is within this of +-1.
constexpr double kFacingTol = 1e-9;

// ---- faces --------------------------------------------------------------------------------------

/// A face whose unit normal has a Z component below this is seen edge-on: the hide pass lets it
/// hide nothing, and a tessellator that must know how the pass will see its faces asks the same.
constexpr double kEdgeOnNormalZ = 0.0003;

/// Two depths closer than this are level: the hide pass takes a line end on a face as behind
/// it, and an edge level with the line as hiding it where they cross; a tessellator whose lines
/// lie that close to its own faces asks the same.
constexpr double kLevelDepthTol = 0.0003;

/// A vertex within this fraction of the object's size of a face's plane (or of a triangle's
/// longest side) lies on it: far above the rounding of coordinates computed from the object's
/// own dimensions, far below anything a drawing can show.
constexpr double kPlanarFaceTol = 1e-9;

// ---- ruled solids -------------------------------------------------------------------------------

/// The axis of a cone or cylinder must leave its end (or cut) planes at an angle whose cosine
/// with their normal is at least this: below it the end faces stretch a million-fold over the
/// radius, and the solid is taken as flat (bad input).
constexpr double kMinAxisCutCosine = 1e-6;
/// Two silhouette generators of a side closer than this angle about the axis are taken as one
/// grazing generator, which outlines nothing: the faces between them would have no width.
constexpr double kSilhouetteMergeAngle = 1e-6;
/// A point put into a ring (a silhouette, a transition's quarter point) within this share of a
/// chord's angle of a ring vertex takes that vertex's place: put in so near, it would leave a
/// sliver face that stands nearly edge-on, too thin for the builder to keep and for the hide
/// pass to order against its neighbour.
constexpr double kRingSnapShare = 0.25;
/// The snout's caller-given sagitta never asks for more chords to a circle than this: one a
/// degree keeps the sagitta below 4e-5 of the radius, finer than any drawing shows.
constexpr int kMaxSnoutChords = 360;
/// A cone's chord count is doubled at most this many times (to 16 times the rule's count) to
/// keep its side faces from looking away where the side is nearly edge-on to the view.
constexpr int kMaxSideRefinements = 4;
// ---- elbows ------------------------------------------------------------------------------------

/// The start of an elbow's centre line may leave the plane through the bend centre normal to
/// the axis by this fraction of the bend radius: a start point computed from rotated drawing
/// coordinates carries rounding far below it, a wrong start point far above it.
constexpr double kBendPlaneTol = 1e-6;
/// An elbow's sweep within this (radians) of a full turn is a full turn (a closed ring); above a
/// full turn by more than this it is refused.
constexpr double kSweepTol = 1e-9;
/// Neighbouring tube rings of an elbow place their silhouette points at most this fraction of a
/// ring's chord angle apart round the tube; further apart, a ring is put between them, so that
/// the faces beside a silhouette chain, which reach from one ring's silhouette point to the
/// next one's, stay narrow.
constexpr double kMaxRingTwist = 0.25;
/// Tube rings put between the chosen ones lie at least this far apart along the bend (radians):
/// closer, the silhouette turns only where the tube is seen end-on, and its ring is drawn.
constexpr double kMinRingStep = 1e-7;
/// A face whose unit normal has a Z component below this is seen edge-on: it lies on neither
/// side of a silhouette (as fine as the rounding of the faces' own coordinates allows).
constexpr double kEdgeOnFaceZ = 1e-9;
/// At most this many tube rings are put between the chosen ones of one elbow.
constexpr int kMaxAddedRings = 4096;

}  // namespace hd
}  // namespace geolib

#endif  // VOGEBASIC_HD_TOLERANCES_H
