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
/// chooses the count from the radius; any n below 5 becomes 5). Lines: the base ring's n chords
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

// ---- doubly curved primitives: pipe elbow and dished head ---------------------------------------

/// A pipe elbow: a tube of radius r whose centre line is the arc about the bend centre c that
/// starts at s and sweeps `angle` radians (0 < angle <= 2 pi) counter-clockwise about `axis`
/// seen from its tip. The bend radius is |s - c|; s - c must be normal to the axis within 1e-6
/// of its length; the axis is normalised. The tube is cut into rings of m = 8, 10 or 12
/// vertices (the disc's rule on r) at n + 1 stations along the bend at equal angles (n = 0:
/// getArcDivideNum on the outer radius |s - c| + r for the sweep, 8 to 12 chords), with further
/// rings where the tube is seen end-on and wherever its silhouette turns round the tube by more
/// than a quarter of a ring chord between two rings. Each ring starts at one of its silhouette
/// points, centre + r * unit(Z x tangent), and has the other half way round (a ring seen
/// end-on splits along the axis instead); faces between rings are quadrilaterals, or two
/// triangles (split along the shorter diagonal) where not planar. A sweep within 1e-9 of 2 pi is a
/// full ring without ends; otherwise flat ends close the tube, each a strip across its end ring. A
/// tube radius above the bend radius gives a closed face set that passes through itself near the
/// axis. Faces: the start end, the tube between consecutive rings (ring by ring, round each ring
/// from its first vertex), the far end; tag 0. Lines: the start ring's m chords, the tube's
/// outline (every edge between a face turned towards the viewer and one turned away: the two
/// silhouettes along the bend, and the whole of a ring seen end-on) ring by ring, the far ring's
/// m chords; no end rings for a full ring.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input, when r or |s - c| is below 0.01, for a null axis, for s - c off
/// the plane normal to the axis, for an angle not above 0 or above 2 pi, for n below 0 or
/// above 100000, or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_tor(double r, double angle, _s_hd_point_ c, _s_hd_point_ s,
                                         _s_hd_point_ axis, int n);

/// A dished (semi-ellipsoidal) vessel head: a straight flange, the cylinder of radius r from c to
/// c + f * axis (none when f is 0), then half an ellipsoid of revolution of base radius r and
/// height h along the axis (normalised), its apex at c + (f + h) * axis; closed at c by a flat
/// base. The flange's two rings have m = 8, 10 or 12 vertices (the disc's rule on r), split at
/// c +- r * e0, e0 = unit(Z x axis) (the disc's split (r, 0, 0) only for an axis exactly along
/// Z). The dome is cut along meridians from e0 to -e0 over the apex, one of them its contour
/// in the view along Z, and along parallels about e0 through the ring's vertices; it meets the
/// flange smoothly.
/// Faces: the base (a strip across the base ring), the flange (one per ring chord), the dome
/// meridian by meridian from the side of axis x e0; tag 0. Lines: the base ring's m chords,
/// the flange's two silhouette generators (unless f is 0 or the axis lies along Z), the dome's
/// contour from e0 over the top to -e0 (m / 2 chords), and, when f is above 0, the flange's top
/// ring. The last two are exclusive: seen so nearly along the axis that the hide pass takes the
/// flange's faces as edge-on (the axis within 0.0003 of Z), the top ring is drawn instead of
/// the dome's contour, which hugs it.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input, when r or h is below 0.01, when f is negative, for a null axis, or
/// if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_ova(double r, double h, double f, _s_hd_point_ c,
                                         _s_hd_point_ axis);

}  // namespace geolib

#endif  // VOGEBASIC_HD_TESSELLATORS_H
