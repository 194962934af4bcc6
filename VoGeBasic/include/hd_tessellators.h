// Tessellators of namespace geolib: each turns one primitive of a plant model into a new
// hidden-line object (hd_records.h) made of planar faces, profile lines and a bounding box.
//
// Coordinates are the drawing's model coordinates. Faces and lines come in fixed orders,
// described with each function, that callers may rely on; every line has owner -1. Degenerate
// sizes are not rejected: a zero (or negative) dimension gives coincident (or mirrored) corners
// and zero-area faces, parallel u and v a flat box.
//
// Bad input: every tessellator returns null when any coordinate, size or radius it is given is
// NaN or infinite. The prism refuses side counts below 0 or above 100000 (null); a side count
// chosen by the prism itself is at most 100000. Every tessellator returns null, having released
// all it built, when an allocation fails.
#ifndef VOGEBASIC_HD_TESSELLATORS_H
#define VOGEBASIC_HD_TESSELLATORS_H

#include "VoGeBasicExport.h"
#include "clip_records.h"
#include "hd_records.h"

namespace geolib {

/// A box with corner p, edges of a along u and b along v and height c along w, the unit normal
/// u x v (flag non-zero) or v x u (flag 0). u and v are used as given (unit vectors lengthen
/// nothing). With corners C0 = p, C1 = p + a*u, C2 = C1 + b*v, C3 = p + b*v and C4..C7 = C0..C3
/// + c*w, the twelve lines are C0-C1, C1-C2, C2-C3, C3-C0, C4-C5, C5-C6, C6-C7, C7-C4, C0-C4,
/// C1-C5, C2-C6, C3-C7 and the six faces (C1 C2 C6 C5), (C2 C3 C7 C6), (C3 C0 C4 C7),
/// (C0 C1 C5 C4), (C4 C5 C6 C7), (C3 C2 C1 C0), tag 0. With a non-zero flag and orthonormal u, v
/// every face is wound counter-clockwise seen from outside; with flag 0 the other way.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_box(double a, double b, double c, _s_hd_point_ p,
                                         _s_hd_point_ u, _s_hd_point_ v, int flag);

/// A wedge: the triangle pa, pb, pc extruded by h along w, the unit normal of
/// (pa - pb) x (pc - pb); pa', pb', pc' are the moved corners. Nine lines: pa-pb, pb-pc, pc-pa,
/// pa'-pb', pb'-pc', pc'-pa', pa-pa', pb-pb', pc-pc'. Five faces with tags 1 to 5:
/// (pb pc pc' pb'), (pc pa pa' pc'), (pa pb pb' pa'), (pb' pc' pa'), (pb pa pc). For h > 0
/// every face is wound with its right-hand normal pointing into the solid, the opposite sense
/// to the box.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_wed(_s_hd_point_ pa, _s_hd_point_ pb, _s_hd_point_ pc,
                                         double h);

/// A regular prism of n sides about the axis pa -> pb, ps a vertex of the base polygon (n = 0
/// chooses the count from the base ring's radius, and the top ring takes the same count; any n
/// below 5 becomes 5). Lines: the base ring's n chords
/// from ps, then the top ring's (moved along the axis), then the n uprights from base to top.
/// Faces: one per side, (base chord start, base chord end, top chord end, top chord start),
/// tag 0; the two end polygons are lines only, not faces, so they hide nothing.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input, for n below 0 or above 100000, when ps sits numerically on the
/// axis vector (no ring can be made), or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_pri(_s_hd_point_ pa, _s_hd_point_ pb, _s_hd_point_ ps, int n);

/// A single line p -> q: one line, no faces, the box spanned by p and q.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_pln(_s_hd_point_ p, _s_hd_point_ q);

/// An open polyline through the points of list: one line from each point to the next, in list
/// order, no faces.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null for a null or one-point list, for a list that closes on itself, for a non-finite
/// coordinate, or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_plns(point* list);

/// A flat disc of radius r about center with unit normal `normal`. The rim is split at s and
/// e = 2*center - s: s = center + r * unit((0, 0, 1) x normal) for a tilted disc, and
/// s = center + (r, 0, 0) when the disc faces the viewer (|normal.z| within 1e-9 of 1). Each
/// half is cut into m/2 chords from s to e, m = 8, 10 or 12 from the radius: the first half
/// counter-clockwise about the normal, the second about the negated normal. Lines: the first
/// half's chords, then the second's. Faces: a strip across the disc, one per chord pair k1, k2:
/// (k1.start, k1.end, k2.end) first, (k1.start, k1.end, k2.end, k2.start) between and
/// (k1.start, k1.end, k2.start) last, tag 0.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null when r is below 0.01, on non-finite input, for a normal along Z that is not of unit
/// length or a null normal, or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_cir(_s_hd_point_ center, double r, _s_hd_point_ normal);

}  // namespace geolib

#endif  // VOGEBASIC_HD_TESSELLATORS_H
