// Straight pieces in space against axis-aligned boxes, and the 3-D box tests of namespace
// geolib.
//
// viewBoxTrimLine looks at a piece and a box in the three principal views, plan (x, y), side
// (y, z) and front (x, z): in each view the box is a rectangle, trimmed against with
// box2DTrimLine, and the piece's range inside the box is the intersection of what the views
// find. getBoxAlongPipe and get3DBoxProject2d build those rectangles as counter-clockwise point
// rings at z = 0.
#ifndef VOGEBASIC_CLIP_VIEWBOX_H
#define VOGEBASIC_CLIP_VIEWBOX_H

#include <vector>

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"
#include "clip_records.h"

namespace geolib {

/// Appends (out is not cleared) the corners a + n*h, a - n*h, b - n*h, b + n*h of the rectangle
/// of the given width centred on the plan segment a-b, n the unit plan normal (-d.y, d.x) of
/// d = b - a and h half the width, each with z = 0. A positive width gives a counter-clockwise
/// ring, a negative one a clockwise ring; a segment shorter than 1e-4 in the plan has no normal
/// and gives four copies of a and b. Throws only the container's own allocation errors, leaving
/// out as it was.
VOGEBASIC_API void getBoxAlongPipe(const VoGePoint3D& a, const VoGePoint3D& b, double width,
                                   std::vector<VoGePoint3D>& out);
/// Appends the rectangles of the box with minimum corner p and maximum corner q in the three
/// views: to xy the plan (x, y), to yz the side view (y first, z second), to xz the front view
/// (x first, z second), each as getBoxAlongPipe builds it between the middles of two opposite
/// sides. Throws only the containers' own allocation errors, leaving all three as they were.
VOGEBASIC_API void get3DBoxProject2d(const VoGePoint3D& p, const VoGePoint3D& q,
                                     std::vector<VoGePoint3D>& xy, std::vector<VoGePoint3D>& yz,
                                     std::vector<VoGePoint3D>& xz);
/// Whether the piece p0-p1 passes through the box, and [u0, u1] its parameter range inside it
/// (0 at p0, 1 at p1). Views in which the piece is a point (both coordinate differences below
/// 0.01) are skipped: along x plan and front are used, along y plan and side, along z front and
/// side, otherwise plan, side and front. Returns true with the range; false with u0 = 1,
/// u1 = 0 when a view misses the piece (a piece that is a point in every view included, or one
/// with a coordinate that is not finite, which no view can place) or when
/// the ranges of the views have nothing in common, so that a true result always carries
/// u0 <= u1 (each view alone can see a piece cross a thin box that it misses); false
/// with u0, u1 as they were when box is null or an allocation fails. The view rectangles are
/// built in standard containers, whose allocation errors (std::bad_alloc) pass through, with
/// nothing left allocated.
VOGEBASIC_API bool viewBoxTrimLine(const Box3D* box, const VoGePoint3D& p0, const VoGePoint3D& p1,
                                   double& u0, double& u1);

/// Whether the closed segment p0-p1 meets the box lo..hi, each side moved out by 1e-4 (the
/// tolerance of isPointInBox, so a segment with an end that isPointInBox accepts meets the
/// box). A segment that is a point answers whether that point is in the box. The box is taken
/// as given, not sorted. NaN coordinates give false.
VOGEBASIC_API bool isLineCrossBox3d(const VoGePoint3D& p0, const VoGePoint3D& p1,
                                    const VoGePoint3D& lo, const VoGePoint3D& hi);
/// The smallest axis-aligned box holding the points: box.min the smallest and box.max the
/// largest coordinates. Returns false and leaves box untouched when pts is empty or a
/// coordinate is NaN.
VOGEBASIC_API bool getBoxBoundary(const std::vector<VoGePoint3D>& pts, Box3D& box);
/// The smallest axis-aligned box holding the parallelepiped: its eight corners are p0, p1, p2,
/// p3 and p1 + p2 - p0, p1 + p3 - p0, p2 + p3 - p0, p1 + p2 + p3 - 2 p0. Returns false and
/// leaves box untouched when a coordinate is NaN.
VOGEBASIC_API bool getBoxBoundary(const BoxP4& p4, Box3D& box);

}  // namespace geolib

#endif  // VOGEBASIC_CLIP_VIEWBOX_H
