// Interval subtraction with the reason for a refusal. Internal.
#ifndef VOGEBASIC_CLIP_PARAMS_INTERNAL_H
#define VOGEBASIC_CLIP_PARAMS_INTERNAL_H

#include "clip_records.h"

namespace geolib {
namespace clip {

/// Outcome of removeInterval.
enum class CutResult {
    done,     ///< the range was removed (possibly nothing was in it)
    refused,  ///< degenerate or (for lines) reversed range: the list is untouched
    noMemory  ///< a split needed an allocation that failed: that interval is left whole
};

/// The subtraction of subParamt, telling a refused range from a failed allocation, so that
/// the trimming routines can report the latter while cutPipeParamt keeps ignoring both.
CutResult removeInterval(paramt*& list, double a, double b, bool isArc);

}  // namespace clip
}  // namespace geolib

#endif  // VOGEBASIC_CLIP_PARAMS_INTERNAL_H
