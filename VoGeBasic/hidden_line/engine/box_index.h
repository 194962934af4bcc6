// A uniform grid over the XY boxes of a scene's objects, so that the objects whose boxes may
// touch one object's box are found without looking at every other object. The grid only
// narrows the search: the caller still applies its own exact box test to what it yields, and
// the grid yields every object the test could accept, so the result is the full scan's.
// Not exported; the unit tests call it directly.
#ifndef VOGEBASIC_HD_BOX_INDEX_H
#define VOGEBASIC_HD_BOX_INDEX_H

#include <cstddef>

#include "hd_records.h"

namespace geolib {

class BoxIndex {
public:
    BoxIndex() = default;
    ~BoxIndex();
    BoxIndex(const BoxIndex&) = delete;
    BoxIndex& operator=(const BoxIndex&) = delete;

    /// Files the XY boxes (X max, X min, Y max, Y min: the first four of an object's box) of
    /// the n objects; null objects are left out. Returns false if an allocation fails (the index
    /// then yields nothing; build may be called again).
    bool build(_s_hd_prof_* const* objs, int n);

    /// Sets out (room for every object of the scene) to the indices below limit of the objects
    /// whose boxes may touch box, ascending, each once, and returns how many: every object whose
    /// box touches box (inclusively, on X and Y) is among them, and so is every object whose box
    /// the grid could not file (not finite, inverted, or beyond kGridCoordLimit); a box the grid
    /// cannot place yields every object below limit.
    int near(const double* box, int limit, int* out);

    /// The room the index takes.
    size_t bytes() const;

private:
    void release();
    /// Cell columns (or rows) of a coordinate, clamped to the grid; c must be finite.
    int column(double x) const;
    int row(double y) const;
    /// True when the grid can place the box: finite, not inverted, within kGridCoordLimit.
    static bool fileable(const double* box);

    int n_ = 0;
    int* present_ = nullptr;  ///< the non-null objects' indices, ascending
    int presentCount_ = 0;
    int* wide_ = nullptr;  ///< objects not filed in cells, ascending
    int wideCount_ = 0;
    int* start_ = nullptr;  ///< cell c's objects are cellItems_[start_[c] .. start_[c + 1])
    int* cellItems_ = nullptr;
    unsigned* stamp_ = nullptr;  ///< per object: the query that last yielded it
    unsigned query_ = 0;
    size_t items_ = 0;  ///< entries of cellItems_
    int cols_ = 0, rows_ = 0;
    double x0_ = 0.0, y0_ = 0.0, cell_ = 1.0;
};

}  // namespace geolib

#endif  // VOGEBASIC_HD_BOX_INDEX_H
