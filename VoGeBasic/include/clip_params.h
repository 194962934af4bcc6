// Parameter intervals of namespace geolib: the visible parts of a straight piece or an arc.
//
// A list of paramt holds sorted, disjoint intervals: in [0, 1] along a straight piece, in
// radians up to 2pi along an arc, where an interval whose t1 is below its t0 runs through
// angle 0 (it stands for [t0 - 2pi, t1]). Two ends closer than 1e-6 are the same end
// throughout. The lists shrink as the trimming routines subtract the parts hidden behind
// outlines; the hidden parts are the gaps between what is left.
#ifndef VOGEBASIC_CLIP_PARAMS_H
#define VOGEBASIC_CLIP_PARAMS_H

#include "VoGeBasicExport.h"
#include "clip_records.h"

namespace geolib {

/// Removes [a, b] from the list in place; the head may move on or become null. With isArc a
/// range whose b is below a runs through angle 0; after the cut every interval start or end
/// below 0 gets 2pi added, so that arc intervals stay within [0, 2pi] (a cut through angle 0
/// that shortens an interval through angle 0 would otherwise leave it ending below 0).
/// Returns false and leaves the list untouched for a NaN end (and, for an arc, an infinite
/// one), for a range shorter than 1e-6,
/// for a line range with a > b, and when splitting an interval needs an allocation that fails
/// (that interval is then left whole and the walk ends there); otherwise true.
VOGEBASIC_API bool subParamt(paramt*& list, double a, double b, bool isArc);
/// subParamt(lc->params, a, b, false). Returns true even when the range was refused (kept
/// deliberately: callers of the line form never see a refusal); a null piece is left alone.
/// Returns false only when splitting an interval needed an allocation that failed.
VOGEBASIC_API bool cutPipeParamt(line_cut* lc, double a, double b);
/// subParamt(ac->params, a, b, true) and its result. Returns false for a null arc.
VOGEBASIC_API bool cutArcParamt(arc_cut* ac, double a, double b);
/// The gaps of the list from a on: [a or the previous end, next start] wherever they differ,
/// then [last end, full end] when the last end lies above 1e-6 and below the full end (1 for a
/// line, 2pi for an arc). b is not used: the closing gap always runs to the full end (kept
/// deliberately). For an arc, an interval through angle 0 counts from its t0 - 2pi, and the
/// closing gap then ends at its t0, so that the gaps stay disjoint. An empty list gives the whole
/// range, [0, 1] or [0, 2pi], whatever a and b are. Returns a new list owned by the caller; release
/// it with freeParamt. Returns null when there are no gaps or an allocation fails.
VOGEBASIC_API paramt* getHideParamt(paramt* list, double a, double b, bool isArc);
/// getHideParamt(lc->params, 0, 1, false): the hidden intervals of a piece. Returns a new list
/// owned by the caller; release it with freeParamt. Returns null when nothing is hidden, for a
/// null piece or if an allocation fails.
VOGEBASIC_API paramt* getHideParamLine(line_cut* lc);
/// getHideParamt(ac->params, ac->startAngle, ac->endAngle, true): the hidden intervals of an
/// arc. Returns a new list owned by the caller; release it with freeParamt. Returns null when
/// nothing is hidden, for a null arc or if an allocation fails.
VOGEBASIC_API paramt* getHideParamArc(arc_cut* ac);
/// The first interval, in list order, that holds a, or holds b, or lies within [a, b] (ends
/// compared within 1e-6). Returns a pointer into the list (not a copy), or null when none
/// qualifies or the range is shorter than 1e-6 or reversed.
VOGEBASIC_API paramt* findFitParamt(paramt* list, double a, double b);

}  // namespace geolib

#endif  // VOGEBASIC_CLIP_PARAMS_H
