// Construction kit of the hidden-line model: builders of face chains and profile lines, the
// box helpers, the chord-count rules of curved primitives and the arc-to-chords routines (the
// point and vector helpers are hd_points.h). Internal: used by the tessellators, not exported.
//
// Memory: every builder checks each of its allocations; when one fails it releases what that
// call made and returns its failure value (null or false), leaving its inputs as they were.
#ifndef VOGEBASIC_HD_BUILDERS_H
#define VOGEBASIC_HD_BUILDERS_H

#include <cmath>
#include <cstdint>

#include "hd_records.h"
#include "hidden_line/model/hd_points.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

// ---- boxes: X max, X min, Y max, Y min, Z max, Z min --------------------------------------------

/// The empty box: maxima -90000000000.0, minima 90000000000.0.
void initHDBox(double* box);
/// Maximum and minimum of each axis set to the point's coordinate.
void setHDBox(double x, double y, double z, double* box);
/// Per axis: a coordinate above the maximum raises it, otherwise one below the minimum lowers it.
void extendHDBox(double x, double y, double z, double* box);

// ---- chord counts -------------------------------------------------------------------------------

/// Chords of a full circle of radius r (the centre is not used): 8 to 12, from the rule that a
/// chord's sagitta is one drawing unit. A NaN or infinite radius gives 8.
int getCircleDivideNum(_s_hd_point_ c, double r);
int getCircleDivideNum(const double* c, double r);
/// Chords of the arc a0..a1 (radians) of radius r: 8 to 12 whatever the arc's size, infinite
/// included; a count that comes out NaN gives 8.
int getArcDivideNum(_s_hd_point_ c, double r, double a0, double a1);
/// Shares the n chords of an arc among its pieces between breaks (arcs pieces, breaks[0] to
/// breaks[arcs] ascending): each piece takes its part of n rounded up, at least one and at most
/// n, in chords[]. Returns the chords of all pieces. Every curved solid cut at silhouettes shares
/// its chords this way, so that two whose rims run along one circle between the same breaks (a
/// handrail on a ring plate) have their vertices in the same places.
int shareArcChords(const double* breaks, int arcs, int n, int* chords);

// ---- record builders ----------------------------------------------------------------------------

/// The open vertex chain p1 -> p2 -> p3 -> p4. Returns a new chain owned by the caller; release
/// it with freeHDSectPointer. Returns null if an allocation fails.
_s_hd_sect_* mallocQuadSect(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4);
/// The open vertex chain p1 -> p2 -> p3; ownership and failure as mallocQuadSect.
_s_hd_sect_* mallocTriSect(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3);
/// A new line a -> b (owner -1, next null) linked behind the last node of the list that node
/// belongs to (node may be any node of it, or null for a new list). Returns the new node, owned
/// by that list (or by the caller when node was null; release it with releaseProline). Returns
/// null, linking nothing, if the allocation fails.
_s_hd_proline_* appendProline(_s_hd_point_ a, _s_hd_point_ b, _s_hd_proline_* node);
/// A new face holding chain (tag 0, next null) linked behind the last node of node's list (or
/// starting a list when node is null). Returns the new node, which owns chain from then on.
/// Returns null, linking nothing and leaving chain with the caller, if the allocation fails.
_s_hd_prosect_* appendProsect(_s_hd_sect_* chain, _s_hd_prosect_* node);
/// Links second behind the last node of first and returns second; when either is null, links
/// nothing and returns second.
_s_hd_proline_* concatProline(_s_hd_proline_* first, _s_hd_proline_* second);

// ---- arcs to chords -----------------------------------------------------------------------------

/// Appends to list the chords of the curve about centre c from s to e, and makes list its head
/// when it was null. When s and e coincide the curve is a full circle about the axis vector m
/// (clockwise seen from the tip of m); otherwise it is the arc from s through the point m to e.
/// The chords run head to tail, each with owner -1, and the last ends exactly at e. n is the
/// chord count (0: chosen from a sagitta of about 0.01); any count is raised until each step is
/// below 1.5 radians, so a full circle has at least 5 chords. When s and e lie diametrically
/// opposite, the chords leave s towards m.
/// Adds nothing and returns true for a degenerate curve (s, m and e all the same point, or m the
/// same as s or e). Returns false, leaving list as it was, if an allocation fails, if n is
/// negative or above 100000, or if a point, the radius or the swept angle is NaN or infinite; a
/// chosen count above 100000 is lowered to 100000.
bool divideArc2Proline(_s_hd_point_ c, _s_hd_point_ s, _s_hd_point_ m, _s_hd_point_ e, int n,
                       _s_hd_proline_*& list);
/// n chords of radius r from s to e about centre c, running counter-clockwise about axis (seen
/// from its tip), each step 3.14159265 / n radians and the last chord ending exactly at e
/// (defined with the revolved tessellators). Returns a new list owned by the caller; release it
/// with releaseProline. Returns null when r is below 0.01 (or NaN), when s and e both coincide
/// with c, when n is below 1 or above 100000, or if an allocation fails.
_s_hd_proline_* divideHalfCircle2Proline(int n, _s_hd_point_ c, _s_hd_point_ axis, _s_hd_point_ s,
                                         _s_hd_point_ e, double r);
/// The point one chord of the half-circle builder ahead of current on the circle of radius r
/// about centre c, counter-clockwise about axis: a step of r * tanStep along the tangent line,
/// projected back onto the circle.
_s_hd_point_ halfCircleStep(_s_hd_point_ c, _s_hd_point_ axis, _s_hd_point_ current, double r,
                            double tanStep);

/// The vertices of a circle divided by the disc's rule and split where it is extreme in the
/// view along Z, so that every primitive with such a circle (a disc, a pipe's rim, an elbow's
/// end ring, a sphere's equator) draws it chord for chord alike.
struct ViewSplitRing {
    int count = 0;  ///< m: 8, 10 or 12 vertices (getCircleDivideNum raised to even)
    /// Counter-clockwise about the normal: pts[0] is s, pts[count / 2] is e = 2c - s, both
    /// halves made by divideHalfCircle2Proline's stepping (the second about the negated
    /// normal, stored here in reverse so the ring runs on round the circle).
    _s_hd_point_ pts[hd::kMaxCurveChords];
};
/// Fills ring for the circle of radius r about c with unit normal n: s = c + r * unit((0, 0, 1)
/// x n), or c + (r, 0, 0) when |n.z| is within hd::kFacingTol of 1. Allocates nothing. Returns
/// false, leaving ring empty, when r is below 0.01 (or NaN).
bool viewSplitRing(_s_hd_point_ c, double r, _s_hd_point_ n, ViewSplitRing& ring);
/// The same ring split at the given point s of the circle (e = 2c - s) instead of where the
/// circle is extreme in the view: for a ring that must follow its neighbours on a surface. Returns
/// false, leaving ring empty, when r is below 0.01 (or NaN), on non-finite input, or when s and e
/// both coincide with c.
bool splitRing(_s_hd_point_ c, double r, _s_hd_point_ n, _s_hd_point_ s, ViewSplitRing& ring);
/// Of the m vertices of a ring at the angles at[] about its circle (radians, ascending, within
/// one turn), the one a point at angle t must take the place of instead of going in beside it:
/// the nearest about the circle when within hd::kRingSnapShare of a chord's angle (2 pi / m);
/// otherwise -1.
int ringVertexToSnap(const double* at, int m, double t);
/// A vertex of a ring with points put in (ringWithPoints): pattern vertex k >= 0, or the point
/// put in with tag k < 0; t its angle about the circle.
struct RingStop {
    double t;
    int k;
};
/// The m ring vertices at the angles at[] (radians, ascending, within one turn) with the count
/// points at the angles put[], tagged tags[] (negative), put in: each in place of the vertex
/// ringVertexToSnap gives for it where no point took that vertex before, otherwise in between;
/// with onePerVertex, a point whose vertex another took fails instead. Writes the stops to out
/// (room for m + count), sorted on their angles (ties keep their order), and returns how many;
/// -1 on failure.
int ringWithPoints(const double* at, int m, const double* put, const int* tags, int count,
                   bool onePerVertex, RingStop* out);

/// The faces a quadrilateral becomes: itself, or the triangles of a split.
struct PlanarQuadFaces {
    struct Face {
        int count;            ///< 3 or 4 vertices
        _s_hd_point_ pts[4];  ///< in order; a triangle repeats its last vertex
    };
    int count = 0;  ///< 0, 1 or 2 faces
    Face faces[2];
};
/// The quadrilateral p1, p2, p3, p4 of an object of the given size (its largest extent) as one
/// face when p4 lies within hd::kPlanarFaceTol * size of the plane of p1, p2, p3, otherwise as the
/// triangles (p1, p2, p3) and (p1, p3, p4). A triangle whose third vertex lies within that
/// distance of the line of its longest side has no area and is left out, so a quadrilateral with
/// a collapsed side (p1 = p2, or p3 = p4) gives one triangle.
PlanarQuadFaces planarQuadFaces(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                                double size);
/// The faces of the quadrilateral p1, p2, p3, p4 of a band between two rings (p1, p2 on one,
/// p3, p4 on the next): itself when planar, otherwise split along its shorter diagonal.
PlanarQuadFaces bandQuadFaces(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                              double size);
/// The faces of the quadrilateral k of the band between rings a and b (see
/// HDProfDraft::addRingBand): bandQuadFaces(a[k], a[k + 1], b[k + 1 + shift], b[k + shift]).
PlanarQuadFaces ringBandFaces(const ViewSplitRing& a, const ViewSplitRing& b, int shift, int k,
                              double size);

/// The sign of the Z component of the normal of the planar quadrilateral a, b, c, d (a triangle
/// when d is a): 1 or -1, or 0 for a face seen edge-on (that component below hd::kEdgeOnFaceZ of
/// the normal's length). Faces of one surface whose signs are opposite meet on its silhouette.
int quadViewSide(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d);

// ---- lists and object drafts --------------------------------------------------------------------

/// A line list under construction, appended at its tail in constant time. It owns nothing:
/// whoever takes head releases it.
struct ProlineChain {
    _s_hd_proline_* head = nullptr;  ///< first line; null while the chain is empty
    _s_hd_proline_* tail = nullptr;  ///< last line

    /// Appends the line a -> b. Returns false, changing nothing, if the allocation fails.
    bool append(_s_hd_point_ a, _s_hd_point_ b);
};

/// Collects the faces, profile lines and box of one object while a tessellator builds it. Faces
/// and lines are appended in the order they are made; the box starts empty. Once an allocation
/// has failed the draft is failed: further faces and lines are not made (a list handed to
/// addLines is still taken over), and finish() returns null. Whatever the draft still holds when it
/// goes out of scope is released.
class HDProfDraft {
public:
    HDProfDraft();
    ~HDProfDraft();
    HDProfDraft(const HDProfDraft&) = delete;
    HDProfDraft& operator=(const HDProfDraft&) = delete;

    bool ok() const { return ok_; }
    /// Seeds the box with p (setHDBox).
    void seedBox(_s_hd_point_ p);
    /// Extends the box with p (extendHDBox).
    void extendBox(_s_hd_point_ p);
    /// Appends the line a -> b.
    void addLine(_s_hd_point_ a, _s_hd_point_ b);
    /// Appends a whole line list and takes it over (null adds nothing).
    void addLines(_s_hd_proline_* list);
    /// Appends the quadrilateral face p1, p2, p3, p4 with the tag.
    void addQuad(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                 std::int32_t tag = 0);
    /// Appends the triangular face p1, p2, p3 with the tag.
    void addTri(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, std::int32_t tag = 0);
    /// Appends the faces of planarQuadFaces(p1, p2, p3, p4, size).
    void addPlanarQuad(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                       double size);
    /// Appends the faces, in order.
    void addFaces(const PlanarQuadFaces& faces);
    /// Appends the m chords of a ring, pts[k] -> pts[k + 1] round the circle from s.
    void addRingLines(const ViewSplitRing& ring);
    /// Appends the flat disc spanned by a ring as a strip across it between its halves: the
    /// triangle (pts[0], pts[1], pts[m - 1]), quadrilaterals (pts[k], pts[k + 1], pts[m - k - 1],
    /// pts[m - k]) and the triangle (pts[m/2 - 1], pts[m/2], pts[m/2 + 1]), wound
    /// counter-clockwise about the ring's normal, or each in reverse when reversed.
    void addRingDisc(const ViewSplitRing& ring, bool reversed);
    /// Appends the flat face spanned by a ring of count points as a strip across it from the
    /// chord that closes the ring: quadrilaterals (P_i, P_i+1, P_j-1, P_j) for i = 0, 1, ... and
    /// j = count - 1, count - 2, ..., and a triangle where the two sides meet at an odd count
    /// (each as addPlanarQuad makes it). Wound as the ring runs, or the other way when reversed.
    void addRingStrip(const _s_hd_point_* ring, int count, bool reversed, double size);
    /// Appends the band between two rings of the same count, b further along the normal of a:
    /// (a[k], a[k + 1], b[k + 1 + shift], b[k + shift]) for each k (indices of b round the
    /// ring), each as ringBandFaces makes it with the object's size. Wound outward from the
    /// rings' axis when both run counter-clockwise about a normal that points from a to b.
    void addRingBand(const ViewSplitRing& a, const ViewSplitRing& b, int shift, double size);
    /// Marks the draft failed (a step outside the draft could not allocate).
    void fail();
    /// Returns a new object holding the faces, the lines and the box, owned by the caller;
    /// release it with freeHDProfObjectPointer. Returns null, releasing everything, if the
    /// draft failed or the object cannot be allocated.
    _s_hd_prof_* finish();

private:
    void addFace(_s_hd_sect_* chain, std::int32_t tag);

    _s_hd_prosect_* faces_ = nullptr;
    _s_hd_prosect_* faceTail_ = nullptr;
    ProlineChain lines_;
    double box_[6];
    bool ok_ = true;
};

}  // namespace geolib

#endif  // VOGEBASIC_HD_BUILDERS_H
