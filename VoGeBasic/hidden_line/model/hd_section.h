// Closed plane outlines (steel sections, plate outlines) read from point lists, checked to be
// simple, and split into the convex faces of their end caps. Internal: used by the swept
// tessellators.
#ifndef VOGEBASIC_HD_SECTION_H
#define VOGEBASIC_HD_SECTION_H

#include <array>
#include <vector>

#include "clip_records.h"
#include "hd_records.h"

namespace geolib {
namespace hd {

/// An outline with fewer points (after dropping repeats) has no area; one with more is refused,
/// so that the simplicity test and the splitting stay quadratic in a bounded count.
constexpr int kMaxOutlinePoints = 4096;
/// Edges shorter than this, and non-adjacent edges closer than this, make an outline degenerate:
/// it is the splitting's own tolerance for lengths and coincidence (model units).
constexpr double kOutlineTol = 0.001;
/// A corner whose sine of turn is below this is straight: no edge is drawn along the sweep there.
constexpr double kStraightCornerSine = 1e-9;

/// A point of an outline in its own plane frame.
struct Pt2 {
    double x;
    double y;
};

/// An outline split into convex cap faces. Vertices are numbered: first the outline's own
/// corners, then the points the splitting put on its edges or inside it.
struct Section {
    std::vector<Pt2> pts;  ///< every vertex
    /// Per vertex: the outline edge it lies on (its own corner index for a corner) and the
    /// parameter along that edge, or edge -1 for a point inside the outline.
    std::vector<int> edge;
    std::vector<double> param;
    /// The boundary counter-clockwise from corner 0, with the points on its edges; sharp[i] is
    /// true where the outline turns at boundary[i].
    std::vector<int> boundary;
    std::vector<char> sharp;
    /// The cap faces, counter-clockwise: three or four vertex indices (the fourth -1 for a
    /// triangle).
    std::vector<std::array<int, 4>> caps;
};

/// Reads the points of list (x and y only when flat is true, z set to 0), dropping a point equal
/// to the one before it and a last point equal to the first. Returns false for a list with fewer
/// than 3 or more than kMaxOutlinePoints points left, or a coordinate that is not finite. Stops
/// reading a list that does not end (a ring of records) at the limit.
bool readOutline(const point* list, bool flat, std::vector<_s_hd_point_>& out);

/// Splits the plane outline (any orientation; reversed to counter-clockwise when it runs
/// clockwise, then reversed is set) into convex cap faces with ConvexIdentify. Returns false
/// when the outline is degenerate (an edge shorter than kOutlineTol, non-adjacent edges closer
/// than that, an edge that turns back on the one before, no area) or self-intersecting, or when
/// the splitting fails. Throws std::bad_alloc from its containers.
bool makeSection(std::vector<Pt2> outline, Section& section, bool& reversed);

}  // namespace hd
}  // namespace geolib

#endif  // VOGEBASIC_HD_SECTION_H
