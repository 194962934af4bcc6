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

// ---- ruled solids ---------------------------------------------------------------------------
//
// A cone, eccentric cone, snout or cut cylinder is built from two rings of vertices, one round
// each end, at common angles about the end planes' normal n, so that each side face between
// generator k and generator k + 1 is a planar trapezoid. Ring vertex 0 and the ring direction
// (counter-clockwise about n, n pointing from the first end to the second):
//  - for a right circular cylinder, each ring is the disc's ring (ep_divide_cir) of its circle,
//    split at s and 2c - s: a pipe's rims coincide with a disc of the same circle chord for
//    chord, and its silhouette generators run through s and 2c - s;
//  - for any other cone or eccentric cone (not a snout) whose two circles take the disc's count
//    alike (8 chords below a radius of about 13.1, 10 up to about 20.4, 12 above; or an apex at
//    one end), each ring is likewise the disc's ring of its circle, vertex 0 at s; where the
//    side has a silhouette in the view along Z (two generators whose side normal is square to
//    Z; the side is developable, so such a generator is one whole), its two generators go in
//    between the ring's vertices, or in place of a vertex within a quarter of a chord's angle of
//    one (a vertex so near would leave a sliver face standing nearly edge-on). A pipe joined to
//    a reducer then has every rim vertex where the reducer has one but for the silhouettes' two
//    at most, and the joint is drawn as one rim instead of two that cross;
//  - for a cone or eccentric cone whose circles take different counts (a reducer across one of
//    those radii), each rim is still the disc's ring of its circle with the silhouette generators
//    put in as above, so both joints are drawn as one rim; the rims having different counts, the
//    side is not made of trapezoids but zipped up from triangles, each a chord of one rim and the
//    vertex of the other rim that comes next round the axis, from the first silhouette generator
//    (or from vertex 0, without silhouette), so each silhouette generator is an edge. Where one
//    of those triangles would lean past the view while the side does not, or both silhouettes
//    would take one vertex of a rim, the cone is built on rings of one count as below;
//  - otherwise, where the side has a silhouette (or both silhouettes would take one vertex),
//    ring vertex 0 lies on the first of them and the arcs between the two are cut in proportion
//    to their angle, each at least one chord;
//  - otherwise (no silhouette, circles of different counts) both circles are split at s and
//    2c - s, vertex 0 at s, into two halves of half the chords each.
// An end of radius below 0.01 (only one may be) is an apex: its ring is the centre repeated, its
// side faces are triangles and it has no end face and no rim.
// Faces, wound counter-clockwise seen from outside: the side faces from generator k to k + 1 for
// k = 0, 1, ... (or the zipped triangles in turn round the axis; a side face not planar within 1e-9
// of the object's size is split into two triangles), then the flat end face of the first end, then
// that of the second, each a strip across its ring over the rim vertices: quadrilaterals (P_i,
// P_i+1, P_j-1, P_j) from i = 0, j = count - 1 inwards, and a triangle where the two sides meet at
// an odd count. Lines: the first rim's chords from vertex 0 round, the second rim's, then the
// silhouette generators (none, or two, each from the first end to the second). A normal within 1e-9
// of the view axis is taken as the view axis (the rims then lie exactly in planes of constant Z,
// and an axis a hair off Z makes an oblique side with silhouette generators seen end-on). Where the
// side is nearly edge-on, a wide side face can lean past the view while the side does not; the
// chord count is then doubled, up to four times, until every side face turns to the view as the
// side does at its middle generator, so the faces' outline is the side's. A side without silhouette
// whose faces still lean past the view then is seen within a hair of edge-on along one generator:
// its rings at that last count are split there instead, vertex 0 and the count's half on that
// generator and the one opposite, where no side face can lean past the view. Each returns a new
// object owned by the caller; release it with freeHDProfObjectPointer. Each returns null on a
// non-finite argument, a negative radius, both radii below 0.01, a null axis (ends closer than
// 1e-5), an axis within 1e-6 (cosine) of the end planes, sizes so near the largest double that a
// vertex would overflow, or if an allocation fails.

/// A truncated cone about the axis a -> b: the end circle of radius ra about a and of radius rb
/// about b, both square to the axis (n = b - a). ra == rb is a cylinder (a straight pipe); one
/// radius 0 a pointed cone. Chords: getCircleDivideNum on the larger radius, raised to even.
VOGEBASIC_API _s_hd_prof_* ep_divide_con(_s_hd_point_ a, _s_hd_point_ b, double ra, double rb);

/// An eccentric (oblique) cone: the end circle of radius ra about a and of radius rb about b, in
/// parallel planes with normal n (any length; its sense is taken from a to b); the side joins
/// the points at the same angle about n, so b - a need not be along n (an eccentric reducer
/// has one straight side when the offset is |ra - rb|). Chords as ep_divide_con.
VOGEBASIC_API _s_hd_prof_* ep_divide_ecn(_s_hd_point_ a, _s_hd_point_ b, double ra, double rb,
                                         _s_hd_point_ n);

/// A snout in catalogue form: the bottom circle of radius rb about o in the plane of xdir and
/// ydir, the top circle of radius rt about o + h*zdir + xoff*xdir + yoff*ydir parallel to it
/// (the directions are normalised; n = xdir x ydir). sag is the largest chord sagitta allowed,
/// in model units: a circle takes the fewest chords, at least 8 and at most 360, whose sagitta
/// on the larger radius is within sag, and without a silhouette it is split at its vertex 0
/// and the opposite point. Also null when sag is not above 0 or xdir and ydir are parallel.
VOGEBASIC_API _s_hd_prof_* ep_divide_scn(double rb, double rt, double h, double xoff, double yoff,
                                         _s_hd_point_ o, _s_hd_point_ xdir, _s_hd_point_ ydir,
                                         _s_hd_point_ zdir, double sag);

/// A cylinder of radius r about the axis a -> b whose ends are cut by the planes through a and
/// through b with normal n (a sloped or mitred cut; n along the axis gives a plain cylinder).
/// The rings are those of ep_divide_con(a, b, r, r), each vertex slid along the axis onto its
/// cut plane, so the rims are chords of the two cut ellipses and the generators, silhouette
/// included, stay where the plain cylinder has them. Also null when r is below 0.01 or the cut
/// planes are within 1e-6 (cosine) of the axis.
VOGEBASIC_API _s_hd_prof_* ep_divide_scy(_s_hd_point_ a, _s_hd_point_ b, double r, _s_hd_point_ n);

/// A sphere of radius r about c. Its silhouette in the view along Z is its equator, the circle
/// in the plane z = c.z, so it is cut along circles about the vertical line through c: the
/// equator is the disc's ring of the circle with normal (0, 0, 1) (m = 8, 10 or 12 vertices,
/// from c + (r, 0, 0) counter-clockwise about +Z), and each hemisphere has (m + 3) / 4 latitude
/// bands whose rings scale the equator's vertices towards the axis, the last band closing on the
/// pole. Faces, wound counter-clockwise seen from outside: the near hemisphere (towards -Z) from
/// the equator band to the pole band, then the far one, each band in ring order (quadrilateral
/// trapezoids, the pole band triangles). Lines: the equator's chords from c + (r, 0, 0) round.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null when r is below 0.01, on non-finite input, when a vertex would overflow, or if an
/// allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_sph(_s_hd_point_ c, double r);

/// A ring plate: the annular sector between the radii ri and ro about the line through c along
/// the axis k, from angle a0 to a1 (radians, about k from x, the projection of +X on the plane
/// square to k, or of +Y for an axis along X, towards y = k x x: about k = +Z, from +X towards
/// +Y, counter-clockwise on the drawing where X runs right and Y up), of thickness t from c
/// along k. A sweep a1 - a0 of a full turn or more (or whose ends meet on the outer rim) makes a
/// closed ring without end faces; ri below 0.01 makes a sector of a disc, whose inner rim is the
/// centre line. Both arcs take getArcDivideNum(c, ro, a0, a1) chords at common angles, shared in
/// proportion between the arcs into which the walls' silhouette generators (where the radial
/// direction is square to Z) break the sweep, each rounded up (a share within 1e-4 of a whole
/// number takes that number, so that a bend standing on the plate shares them alike though its
/// ends lie a rounding off the plate's); a closed ring starts at the first of them. Faces,
/// wound counter-clockwise seen from outside: for each chord the face through c, the face
/// through c + t k, the outer wall and the inner wall (triangles and no inner wall for a disc's
/// sector), then the end faces at a0 and at a1. Lines: the near face's outline (outer arc's
/// chords, inner arc's, then the radial ends at a0 and a1 from the inner rim out); seen along
/// the axis (k within 1e-9 of Z, taken as Z) the walls are edge-on and the far outline lies
/// under the near one, so that is all, each edge drawn once; otherwise the far face's outline
/// follows, then the edges along the axis at a0 and a1 (outer, inner; a disc's sector has one
/// centre line), then the silhouette generators of the outer wall and of the inner wall.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input, a null axis, a sweep a1 - a0 not above 0 (or too small to make its
/// chords), ri negative or not below ro, ro below 0.01, t not above 0, when a vertex would
/// overflow, or if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_sad(double ri, double ro, double t, _s_hd_point_ c, double a0,
                                         double a1, _s_hd_point_ k);

/// The ring plate about the view axis: ep_divide_sad(ri, ro, t, c, a0, a1, (0, 0, 1)), a
/// circular platform round a vertical vessel seen in plan, its near face at depth c.z.
VOGEBASIC_API _s_hd_prof_* ep_divide_sad(double ri, double ro, double t, _s_hd_point_ c, double a0,
                                         double a1);

// ---- doubly curved primitives: pipe elbow and dished head ---------------------------------------

/// A pipe elbow: a tube of radius r whose centre line is the arc about the bend centre c that
/// starts at s and sweeps `angle` radians (0 < angle <= 2 pi) counter-clockwise about `axis` seen
/// from its tip. The bend radius is |s - c|; s - c must be normal to the axis within 1e-6 of its
/// length; the axis is normalised. The tube is cut into rings at n + 1 stations along the bend at
/// equal angles (n = 0: getArcDivideNum on the outer radius |s - c| + r for the sweep, 8 to 12
/// chords), with further rings where the tangent comes nearest the view axis (when it comes within
/// a chosen ring step of it: the silhouette turns half round the tube about there, and the tube is
/// seen end-on where it reaches the axis; none beside a chosen ring seen end-on, and one seen
/// end-on takes the place of a chosen ring within a quarter step of it), wherever its silhouette
/// turns round the tube by more than a quarter of a ring chord between two rings, and wherever the
/// silhouette drawn between two rings would stray from the ones half way, a quarter and three
/// quarters of the way between by more than the larger of the ring chords' and the outer equator's
/// sagittas (the equator's over a step of at most an eighth of a turn, so that a coarse n still
/// gets the rings a tube needs); but no ring goes where it would lie, seen along Z, within 1e-3 (or
/// a quarter of that allowance, if less) of an end rim all round and not 1e-3 or more behind it:
/// there the hide pass cannot tell its faces from the rim's chords, which they would hide, and the
/// rim stands for it (only up to the first ring put in beside the rim: beyond it the tube seen a
/// few degrees off its length can come back over the rim in the drawing, where the faces of the
/// rings between already hide the rim's chords, and rings there carry the silhouette round the
/// tube). Every ring holds one pattern of m = 8, 10 or 12 vertices at equal angles round the tube
/// (the disc's rule on r), measured from the ring's radial direction: the end rings start at the
/// silhouette point centre + r * unit(Z x tangent), as a disc of their circle does (a ring seen
/// end-on starts on the bend axis), and the pattern turns along the bend between them by at most
/// half a chord in all, smoothly, standing still at both ends. Each other ring also holds its two
/// silhouette points, and leaves out the pattern vertices closer than half a chord to them. A ring
/// drawn whole (below) also holds the points round the tube where its neighbours' silhouette points
/// lie outside its chords seen along Z, and the middle of each chord whose sagitta exceeds the
/// allowance below (a chord beside a silhouette point, with the pattern vertices within half a
/// chord of that point left out, spans up to one and a half pattern chords: drawn, it would stray
/// from the ring's circle by up to twice and a quarter the sagitta of one). Beside an end rim, a
/// ring whose silhouette point lies nearer the viewer than the rim, under the rim's circle but
/// outside one of its chords seen along Z (or outside the circle by up to a tenth of the allowance
/// below but no more than 1e-4, and then beyond the chord by at most nine tenths of it: the rings
/// next to a rim seen nearly along the tube lie that little outside it, while farther out the rings
/// bulge past the rim and are the outline there), with the ring's pattern vertices there inside
/// that chord and the silhouette points of the rings on either side no farther outside the rim's
/// chords than the sagitta allowance below (twice it for the ring after, where the ring before
/// holds a pattern vertex there too: that ring ends the run, whose last faces would otherwise stand
/// over the end of the chord), holds in its place the pattern vertex within a chord of that point
/// nearest the end of that chord towards the ring (seen along Z; the tube hides the rim on that
/// side of the point), and that silhouette is not drawn to or from that ring (it lies along the rim
/// there). Where the silhouette turns round the tube by more than a quarter of a chord between an
/// end rim and the ring beside it (the tube seen nearly along its length there), and each chain of
/// that ring either runs through a pattern vertex (above) or runs through its silhouette point and
/// that point lies nearer the viewer than the rim, outside one of its chords seen along Z and
/// square beside it, each chain of the band between them runs from a rim vertex instead of from the
/// rim's own silhouette point: to a pattern vertex from the rim's vertex at the same place in the
/// pattern, not drawn; to the point from the end of that chord away from the ring (seen along Z),
/// drawn (also along a rim), provided it keeps within the allowance below of the rim or of the true
/// silhouette between the rim and that ring (where it turns round the tube; the tube's straight
/// line from the rim to the point lies on the tube but not on its outline there, and does not
/// count): the faces through the point hide the chord, and the band folds along
/// the chain, which is the outline there; where it would stray, to the point from the end of that
/// chord towards the ring, not drawn (the tube hides the rim on that side of the point, and the
/// band's faces keep off the rest of the chord). A ring beside an end rim whose silhouette point
/// lies so, nearer the viewer than the rim and outside one of its chords seen along Z, square
/// beside it and within the allowance below of the rim's disc, leaves out its pattern vertex next
/// round the tube towards that chord's end away from the ring where its edge from the point to that
/// vertex would stand over the chord for more than the allowance below beyond the point: the rim is
/// the outline there, and the ring's edge then runs on to the next vertex, inside the chord (where
/// the ring leans from the rim, on a fat tube seen a few degrees off its length, that edge too can
/// stand over the chord: the vertices after are left out while the edge to the next one still
/// stands over it so and the one after, less than a quarter turn from the point, brings its
/// crossing of the chord nearer the point). A
/// pattern vertex of such a ring (but those left out, beside a silhouette point or taken by a
/// chain) that lies so too, nearer the viewer than the rim, under its disc (with the ring round it
/// for nine twentieths of a chord either way) and outside one of its chords square beside it, moves
/// round the tube by at most that much to the nearest point of the ring 1e-3 (or a quarter of the
/// allowance, if less) inside that chord and inside the rim's others: seen a few degrees off the
/// tube's length there the rings shift sideways in the drawing, their vertices come out between a
/// rim chord and the rim's circle, and their faces would hide the chord, where the rim is the
/// outline and the ring's own chords are no contour edges. Faces
/// between two rings are stitched from one silhouette chain to the other and back: quadrilaterals
/// where both rings step across the same pattern chord (two triangles along the shorter diagonal
/// where not planar), triangles elsewhere. A sweep within 1e-9 of 2 pi is a full ring without ends;
/// otherwise flat ends close the tube, each a strip across its end ring. A tube radius above the
/// bend radius gives a closed face set that passes through itself near the axis. Faces: the start
/// end, the tube between consecutive rings (ring by ring, each band from the first silhouette chain
/// round to the second, then on round to the first), the far end; tag 0. Lines: the start ring's m
/// chords, then ring by ring the tube's two silhouettes (the chains of the rings' silhouette
/// points, edges of the faces on the true outline, from a rim vertex where the band beside the rim
/// takes one above, but for the stretches along a rim above, the bands beside a rim that stands for
/// the rings left out and a stretch no longer seen along Z than rounding can tell, where the tube
/// runs along the view) and the whole of any ring seen end-on (its chords through its silhouette
/// points and the points above, but for those whose faces on either side face the same way, which
/// are no contour edge), then the far ring's m chords; no end rings for a full ring. The
/// silhouettes are drawn rather than the faces' own outline, which on the side towards the bend
/// centre can run inside the true one; since the rings' vertices do not turn with the silhouette
/// and no face reaches across a chain, no face leans over the drawn outline, and the visible
/// drawing keeps to the true outline within the sagitta. A ring whose tangent leans less than about
/// 4.5e-5 from Z is taken as seen end-on and drawn whole; the true outline there leaves it by at
/// most sqrt(2 r R) times the root of that lean (R the bend radius), a hundredth of sqrt(r R).
/// Where the tube is seen nearly along its length, at an end or about a ring drawn whole, the rings
/// there nearly coincide in the drawing; the points above keep the faces of the rings beside the
/// drawn one off its chords. Shortcomings are left where the tube is seen nearly along its length
/// at an end, the tube beyond nearer the viewer. There the rings near the end lie, seen along Z,
/// close beside the rim's circle, and a face of them that comes within the hide pass's inside
/// tolerance of a rim chord hides that chord (the angle sum's tolerance takes a point up to about a
/// hundredth of a long edge's length outside it as inside, while a ring beside the rim is left out
/// only where it lies within 1e-3 of it all round). The gaps this leaves where the rim is the
/// outline were measured over 1,300 views of random elbows seen 1e-4 to 0.05 rad off the tube's
/// length at an end, beyond the hide pass's own reach (3e-4 of the elbow's size): one view in about
/// 160 shows a gap of over 1.1 sagittas, and where a whole rim chord is hidden the gap reaches
/// several sagittas (6.4 in a quarter turn of a tube of radius 30.6 seen 2.4e-3 off its length at
/// the far end; 2.6 in half a turn of radius 2 seen 0.013 off at the start). In all of them the
/// drawing keeps to the true outline within 1.02 sagittas. Such views are rare in a plant: an elbow
/// is seen exactly along its end where its pipe runs along the view, and that view is drawn true.
/// And at a ring drawn whole whose tangent leans from Z by nearly the limit above, the true outline
/// lies a little outside the ring's circle (by the figure above), which a chord whose sagitta is
/// the whole allowance does not allow for (no view was found where that shows). Returns a new
/// object owned by the caller; release it with freeHDProfObjectPointer. Returns null on non-finite
/// input, when r or |s - c| is below 0.01, for a null axis, for s - c off the plane normal to the
/// axis, for an angle not above 0 or above 2 pi, for n below 0 or above 100000, or if an allocation
/// fails.
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
/// the dome's contour, which hugs it; so too a little farther off, where the flange's rings lie
/// apart in the drawing (f sin t, t the axis's tilt from Z) and the dome reaches beyond the top
/// ring (sqrt((r cos t)^2 + (h sin t)^2) - r cos t) by no more than 2% of the rings' chord
/// sagitta, for there the dome's faces next to the top ring would hide the base ring where it is
/// the outline. Where the contour rises above the plane of the ring it meets (the top ring, or
/// the base ring without a flange) by no more than twice the hide pass's level depth, 0.0003,
/// the pass cannot tell it from that ring's faces and would hide both: the contour is left out
/// (the dome is cut as when seen along the axis) and the ring's half on its side stands for it
/// (drawn after the others; the base ring is drawn already). Seen a little off the axis, the
/// outline beside a flange can lie outside the drawn ring by up to those 2% of the sagitta. A
/// flange no longer than twice that level depth (0.0006) is built as part of the dome, which
/// then stands on the base with height h + f, its apex where it was: the pass could not tell the
/// flange's rings apart in depth, would take the base ring as level with the dome's faces beside
/// the top ring and hide it where it is the outline, and the top ring under the base face, and
/// most views of such a head would lose up to half the outline. The solid moves by no more than
/// f.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input, when r or h is below 0.01, when f is negative, for a null axis, or
/// if an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_ova(double r, double h, double f, _s_hd_point_ c,
                                         _s_hd_point_ axis);

// ---- swept solids: members of any section, plates of any outline, bends ----------------------
//
// A section or outline is a `point` list read in order and closed from its last point back to
// the first (a last point equal to the first, and a point equal to the one before it, are
// dropped). It may run either way round and need not be convex (an L, U, I or H section, a comb),
// but it must be simple: 3 to 4096 points, no edge shorter than 0.001, no two edges that do not
// share a corner closer than 0.001, no edge turning straight back on the one before. Each is
// swept through a row of stations: two for a straight sweep, more along a bend. The end caps are
// the section split into convex pieces (ConvexIdentify) and those into triangles and
// quadrilaterals, so a split may put points on the section's edges: the sides then run through
// them too. Faces, wound counter-clockwise seen from outside, tag 0: the first cap, the side
// (between each pair of stations one quadrilateral per edge of the section, round the section
// from its first point), the last cap. Lines: the outline of the first cap, that of the last
// cap, then the edges along the sweep at each corner of the section (not where the section runs
// straight on through a point), corner by corner from the first point, and last the silhouettes
// of a bend. Each returns a new object owned by the caller; release it with
// freeHDProfObjectPointer. Each returns null for a section or outline that is not simple as
// above or has a coordinate that is not finite, on other non-finite input, or if an allocation
// fails.

/// A straight member (a beam, column or brace of any steel section): the section `profile`, in
/// its own plane frame (x and y of each point, z ignored; model units), swept from a to b. The
/// section's origin lies on the axis; its y axis points along ydir made square to the axis (the
/// web of an I section drawn along y stands along ydir) and its x axis along y x (b - a), so the
/// section is seen as drawn when looking back from b towards a. Two stations, at a and b.
/// Also null when a and b are closer than 1e-5 or ydir lies within 1e-6 (sine) of the axis.
VOGEBASIC_API _s_hd_prof_* ep_divide_str(point* profile, _s_hd_point_ a, _s_hd_point_ b,
                                         _s_hd_point_ ydir);

/// A plate, wall or slab: the plane outline `outline` (model coordinates) extruded by the vector
/// dir (its length is the thickness; it need not be square to the plate). Two stations: the
/// outline and the outline moved by dir. Also null when the outline leaves its mean plane by
/// more than 1e-6 of its size, or dir is null or lies within 1e-6 (cosine) of that plane.
VOGEBASIC_API _s_hd_prof_* ep_divide_pline(point* outline, _s_hd_point_ dir);

/// The same plate extruded by t along the outline's own unit normal: the normal about which the
/// outline runs counter-clockwise, so a negative t extrudes towards the side from which it is
/// seen clockwise. Also null when t is 0 (or too small to make the thickness 1e-5).
VOGEBASIC_API _s_hd_prof_* ep_divide_pline(point* outline, double t);

/// A square-to-round transition (a duct adapter): the rectangle of width w along xdir and
/// height h along ydir (made square to xdir) about its centre o, and the circle of radius r about
/// c in the parallel plane through c; c - o may lean off the normal (an offset transition). The
/// side is made of a flat triangle over each side of the rectangle, its apex the circle point
/// where the circle runs along that side, and a fan of triangles from each corner to the quarter
/// of the circle between two such points. The circle's vertices are those of a pipe's rim
/// there (ep_divide_con with its axis along x x y): getCircleDivideNum(r) chords raised to even
/// (8 to 12), split where the circle is extreme in the view, so that a round duct butting the
/// transition shares its rim and the joint is drawn as one rim. The four quarter points and
/// the silhouettes of the fans (where the side is square to the view) are put in, each in place
/// of a vertex within a quarter chord of it, so that a circle vertex lies on each; only those a
/// pipe's rim lacks leave a sliver, within a chord's sagitta, between its chord and the
/// transition's two. With corners C0 = o -
/// w/2 x - h/2 y, C1, C2, C3 counter-clockwise about x x y, turned towards c (y is reversed
/// when c lies on its negative side), and circle vertices P0 = c - r y, P1, ... counter-clockwise:
/// Faces: the side, round the circle from C0 - C1: (C0, C1, P0), the fan of C1 (C1, P(k+1), Pk)
/// over the first quarter, the flat triangle over C1 - C2, the fan of C2 and so on; then the
/// rectangle (C0 C3 C2 C1) and the disc, a strip across the circle. Lines: the rectangle's four
/// sides from C0 - C1, the circle's chords from P0 round, then the silhouettes: each generator
/// between two side faces of which one faces the viewer and the other faces away, in face order.
/// The side is smooth, so no other line is drawn on it.
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null on non-finite input, when w, h or r is below 0.01, for a null xdir, a ydir within 1e-6
/// (sine) of xdir, when c lies within 1e-6 (cosine) of the rectangle's plane seen from o, or if
/// an allocation fails.
VOGEBASIC_API _s_hd_prof_* ep_divide_squcir(_s_hd_point_ o, double w, double h, _s_hd_point_ xdir,
                                            _s_hd_point_ ydir, _s_hd_point_ c, double r);

/// A bend (a curved beam, a rectangular duct bend, a bent member of any section): the section
/// `profile` (at most 256 points) swept along the arc about the bend centre c that starts at s
/// and turns `angle` radians counter-clockwise about `axis` (seen from its tip). At s the section
/// is placed as ep_divide_str places it on an axis along the arc's direction (y along ydir made
/// square to that direction, x along y x direction); it turns with the bend. The bend is cut
/// into pieces where the side swept by an edge of the section has a silhouette in the view
/// along Z (such a side is a piece of a cone, cylinder or ring about the bend axis, and its
/// silhouettes are whole copies of the edge; with the axis within 1e-9 (cosine) of Z, as a ring
/// plate takes it, there are none), and the pieces share getArcDivideNum(c, R, 0, angle) chords
/// (8 to 12; R the largest distance of the section from the bend axis) as a ring plate's arcs
/// do; a closed ring starts at the first silhouette. So a handrail or a curved beam standing on
/// a ring plate of its radii has its stations where the plate has its vertices, and their edges
/// meet without notches. Each side face is a planar trapezoid. An angle within 1e-9 of 2 pi
/// makes a closed ring without caps. Lines as above; at a corner the
/// edge along the bend is its chain of chords, and the silhouettes are the edges across a side
/// between a face that faces the viewer and one that faces away, station by station.
/// Also null when s - c is shorter than 0.01 or leaves the plane square to the axis through c
/// by more than 1e-6 of its length, for a null axis, for an angle not above 0 or above 2 pi,
/// when ydir lies within 1e-6 (sine) of the arc's direction at s, or when the section comes
/// closer than 0.01 to the bend axis (or crosses it).
VOGEBASIC_API _s_hd_prof_* ep_divide_arc(point* profile, _s_hd_point_ c, _s_hd_point_ s,
                                         _s_hd_point_ axis, double angle, _s_hd_point_ ydir);

}  // namespace geolib

#endif  // VOGEBASIC_HD_TESSELLATORS_H
