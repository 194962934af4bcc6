// Face intersection: the segments along which the faces of a newly registered object cut the
// faces of the objects registered before it, and its own.
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "hd_engine.h"
#include "hidden_line/engine/box_index.h"
#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "hidden_line/model/hd_builders.h"

namespace geolib {

namespace {

bool isZero(_s_hd_point_ v) {
    return v.x == 0.0 && v.y == 0.0 && v.z == 0.0;
}

// True when the 3-D boxes of two objects overlap or touch on all three axes.
bool boxesTouch(const double* a, const double* b) {
    for (int axis = 0; axis < 3; ++axis) {
        if (a[2 * axis + 1] > b[2 * axis] || a[2 * axis] < b[2 * axis + 1])
            return false;
    }
    return true;
}

// The extents of a face, or a common box of several.
struct Extents {
    double xmax, xmin, ymax, ymin, zmax, zmin;
};

// True when the extents of two faces (or boxes) overlap on all three axes (a mere touch does not
// count). All six comparisons are made, without a branch between them: which one fails, if any,
// is a toss-up from one pair to the next.
template <class F, class G>
bool extentsOverlap(const F& f, const G& g) {
    return (f.xmax > g.xmin) & (f.xmin < g.xmax) & (f.ymax > g.ymin) & (f.ymin < g.ymax) &
           (f.zmax > g.zmin) & (f.zmin < g.zmax);
}

// True when the point a + t (b - a) of an edge a -> b of squared length len2 lies on the edge's
// line beyond an end by more than kOffEdgeGap, the edge's ends lying within kCullCoordLimit
// (bounded: boundedEnds(a, b)): isPointOnSeg rejects it, being neither within kOnSegEndDist2
// (3.2e-5) nor kSamePointFineTol of an end, and seeing the edge under an angle of about 0 from it
// (rounding of the point, a few 1e-16 of the coordinates, tilts that by under a hundredth of a
// radian at coordinates within kCullCoordLimit), far from the half turn the test looks for.
bool farOffEdge(double t, double len2, bool bounded) {
    return beyondSegmentEnd(t, len2, hd::kOffEdgeGap) && bounded;
}

// True when every coordinate of the face lies within kCullCoordLimit (NaN fails): the tests
// below need that for their rounding bounds.
bool boundedFace(const HDFace& e) {
    const double lim = hd::kCullCoordLimit;
    return e.xmax <= lim && e.xmin >= -lim && e.ymax <= lim && e.ymin >= -lim && e.zmax <= lim &&
           e.zmin >= -lim;
}

// What pairSides asks of each face alone, worked out once per face rather than once per pair,
// with copies of the face's plane (its normal and first vertex), so that the first tests of a
// pair read one short record of each face.
struct FaceFacts {
    bool noPlane;         ///< zero normal: the face meets nothing
    bool bounded;         ///< boundedFace
    bool flat;            ///< isFlatFace, as apartMargin's bound asks
    bool cullable;        ///< bounded and flat, with a plane: pairSides may part it from another
    _s_hd_point_ centre;  ///< the middle of the face's extents
    double reach;         ///< half the extents' diagonal: no vertex lies farther from centre
    _s_hd_point_ normal;  ///< the face's normal
    _s_hd_point_ v0;      ///< its first vertex
};
FaceFacts faceFacts(const HDFace& e) {
    const double size = faceSize(e);
    const _s_hd_point_ centre = {0.5 * (e.xmax + e.xmin), 0.5 * (e.ymax + e.ymin),
                                 0.5 * (e.zmax + e.zmin)};
    const double dx = e.xmax - e.xmin;
    const double dy = e.ymax - e.ymin;
    const double dz = e.zmax - e.zmin;
    const bool noPlane = isZero(e.normal);
    const bool bounded = boundedFace(e);
    const bool flat = isFlatFace(e, size);
    return {noPlane,  bounded,
            flat,     bounded && flat && !noPlane,
            centre,   0.5 * std::sqrt(dx * dx + dy * dy + dz * dz),
            e.normal, e.v[0]};
}

// Covers the rounding in wellBeyond: a few 1e-6 at coordinates within kCullCoordLimit.
constexpr double kWellBeyondSlack = 1e-4;

// True when every vertex of the face e (its facts ef; both faces boundedFace) lies on one side of
// the plane of the face whose facts are plane, farther from it than m, and planeDistances and
// allBeyond would say so:
// when e's centre lies farther than its reach plus m plus kWellBeyondSlack from the plane. One
// distance in place of e.count. The extents are the least and greatest vertex coordinates, so
// each vertex v lies within the extents' half diagonal of the true centre, and the unit normal n
// (its length within 1e-15 of 1) moves n . (v - v0) from n . (centre - v0) by at most that much.
// Rounding, at coordinates within kCullCoordLimit, puts the centre, the reach, the distance worked
// out here and each one planeDistances works out within 2e-6 of the true values: every distance
// allBeyond compares lies beyond m by over 9e-5. NaN fails.
bool wellBeyond(const FaceFacts& ef, const FaceFacts& plane, double m) {
    const double d = vecDot(plane.normal, vecSub(ef.centre, plane.v0));
    const double far = ef.reach + m + kWellBeyondSlack;
    return (d > far) | (d < -far);
}

// The signed distances d[k] of e's vertices from the plane of the face whose facts are plane.
// False, leaving d unset, when e is not a boundedFace (bounded: whether it is).
bool planeDistances(const HDFace& e, bool bounded, const FaceFacts& plane, double* d) {
    if (!bounded)
        return false;
    for (int k = 0; k < e.count; ++k)
        d[k] = vecDot(plane.normal, vecSub(e.v[k], plane.v0));
    return true;
}

// True when the count distances all exceed m or all fall below -m (NaN fails). Every distance
// is compared, without a branch between them: which side a vertex lies on is a toss-up from one
// pair of faces to the next.
bool allBeyond(const double* d, int count, double m) {
    bool above = true;
    bool below = true;
    for (int k = 0; k < count; ++k) {
        above &= d[k] > m;
        below &= d[k] < -m;
    }
    return above | below;
}

// The X plus Y plus Z extent of the common box of two faces, the larger and smaller of two
// extents taken by hi and lo.
template <class E, class P, class Hi, class Lo>
double spanOf(const E& e, const P& plane, Hi hi, Lo lo) {
    return (hi(e.xmax, plane.xmax) - lo(e.xmin, plane.xmin)) +
           (hi(e.ymax, plane.ymax) - lo(e.ymin, plane.ymin)) +
           (hi(e.zmax, plane.zmax) - lo(e.zmin, plane.zmin));
}

// The X plus Y plus Z extent of the common box of two faces (or of a face and a box). bounded:
// no extent is NaN (both boundedFace), and maxOf and minOf give what a plain comparison gives;
// that one compiles to no branch (which extent is the larger is a toss-up from one pair to the
// next).
template <class E, class P>
double commonSpan(const E& e, const P& plane, bool bounded) {
    if (bounded)
        return spanOf(
            e, plane, [](double a, double b) { return a > b ? a : b; },
            [](double a, double b) { return a < b ? a : b; });
    return spanOf(e, plane, maxOf, minOf);
}

// The edges of e (bit k: edge k, from v[k] to v[k + 1]) whose two ends lie on one side of the
// face `plane`'s plane, farther from it than the margin kOffPlaneAbs + kOffPlaneRel * D (D:
// commonSpan, the X plus Y plus Z extent of the faces' common box; d: planeDistances): piercesAt
// keeps no point of such an edge, passing it over as parallel or by farOffEdge, so
// collectPiercings need not ask. For an edge a -> b with signed distances da,
// db from the plane (n the plane's normal, |n| = 1 within rounding), both beyond the margin on
// one side, the edge's line meets the plane at t = da / (da - db), outside [0, 1], and beyond the
// nearer end by min(|da|, |db|) * |b - a| / |n . (b - a)|, at least the margin. Rounding: the
// distances here and the numerator n . (v0 - a) of t are off by at most 7.8e-16 D; the edge that
// reaches farOffEdge crosses the plane (|dir . n| > kPlaneParallelTol), so n . (b - a) is at
// least 2.9e-5 |b - a| and off by at most 7.8e-16 |b - a|; together the gap farOffEdge measures
// is off by at most 6e-11 times D plus the gap, which kOffPlaneRel covers, and the gap stays
// above kOffEdgeGap. farOffEdge needs e's coordinates within kCullCoordLimit, which
// planeDistances asks; NaN fails every comparison, so such faces are never passed over here.
unsigned offPlaneEdges(const HDFace& e, const double* d, double span) {
    const double m = hd::kOffPlaneAbs + hd::kOffPlaneRel * span;
    unsigned edges = 0;
    for (int k = 0; k < e.count; ++k) {
        const double da = d[k];
        const double db = d[nextVertex(k, e.count)];
        const bool off = ((da > m) & (db > m)) | ((da < -m) & (db < -m));
        edges |= static_cast<unsigned>(off) << k;
    }
    return edges;
}

// isPointInFace(x, face.count, face.v) for the point x where the edge a -> b meets the face's
// plane, x lying on that edge, with the face's prepared data (withOutline); bounded:
// boundedEnds(a, b). Its outline data answers for x as it does for a point of the plane off it by
// rounding alone, below 1e-5 at coordinates within kCullCoordLimit (withOutline's margin):
// here x = a + t (b - a), t = n . (v0 - a) / n . (b - a) (n the unit normal, v0 a vertex), and the
// rounding of both dot products, a part in 1e16 of |v0 - a| and of |b - a| times t, moves x off the
// plane by under 1e-6 when a and b lie within kCullCoordLimit, as outlineOf asks of the face and
// the outline test of x. Past that bound the angles are measured, as the unprepared test measures
// them.
//
// x within kInFaceVertexDist2 (squared) of a vertex is in the face by isPointInFace's first test,
// and the outline test, asked first with the prepared data, never places such a point outside:
// it does so only beyond an edge's line by more than its margin (at least kInsideMarginAbs) in the
// drawing, where every vertex lies on the face's side of that line to within the rounding of the
// sides, 6e-6, so x lies farther than 1e-4 from every vertex. So the vertex test may come first,
// and does where x lies within kNearEdgeEnd of an end of its edge (t along it, its squared length
// len2): there, in a plant, lie most points found at a vertex, where two faces share one.
int insideFace(_s_hd_point_ x, double t, double len2, bool bounded, const HDFace& face,
               const FacePrep& prep) {
    constexpr double kNearEdgeEnd = 2e-4;
    if (!bounded)
        return isPointInFace(x, face.count, face.v);
    const double u = 1.0 - t;
    if (t * t * len2 <= kNearEdgeEnd * kNearEdgeEnd ||
        u * u * len2 <= kNearEdgeEnd * kNearEdgeEnd) {
        for (int k = 0; k < face.count; ++k) {
            if (pointDist2(x, face.v[k]) <= hd::kInFaceVertexDist2)
                return 1;
        }
    }
    return isPointInFace(x, face, prep);
}

// True when edge k of e pierces the face `plane`, at x, and x is not at *same (when given: the
// point kept already). With ep and pp (the faces' prepared data, both or neither) the faces'
// own parts of the tests are taken from them.
bool piercesAt(const HDFace& e, int k, const HDFace& plane, const FacePrep* ep, const FacePrep* pp,
               const _s_hd_point_* same, _s_hd_point_& x) {
    const _s_hd_point_ a = e.v[k];
    const _s_hd_point_ b = e.v[nextVertex(k, e.count)];
    // An edge parallel to the plane meets it nowhere, or everywhere along a shared edge: the
    // edges across it give that segment's ends.
    if (ep != nullptr ? !crossesPlane(ep->dir[k], plane.normal)
                      : isLineCrossPlane(a, b, plane.normal) == 0)
        return false;
    double t = 0.0;
    x = linePlaneInter(plane.normal, plane.v[0], a, b, t);
    // boundedEnds(a, b), asked by three of the tests below, once.
    const bool bounded = ep != nullptr && edgeBounded(e, k, ep);
    if (ep != nullptr && farOffEdge(t, ep->len2[k], bounded))
        return false;  // onSegWithin would say no
    // The four tests depend on nothing but their arguments, so their order changes no answer:
    // the cheap ones come first. A point at the one kept already (where the two edges at a
    // shared vertex pierce the other face) is passed over before it is looked for in the face.
    if (same != nullptr && isSamePointFine(x, *same))
        return false;
    if (!withinXYExtents(x, plane, hd::kPierceExtentTol))
        return false;
    if (ep != nullptr ? !onSegAt(x, t, ep->len2[k], a, b, ep->reach[k], bounded)
                      : isPointOnSeg(x, a, b) == 0)
        return false;
    return (pp != nullptr ? insideFace(x, t, bounded ? ep->len2[k] : 0.0, bounded, plane, *pp)
                          : isPointInFace(x, plane.count, plane.v)) != 0;
}

// Adds x to pts (kept so far: kept) unless it is at the one kept already; true once two
// distinct points are kept.
bool keepPoint(_s_hd_point_ x, _s_hd_point_* pts, int& kept) {
    if (kept == 1 && isSamePointFine(x, pts[0]))
        return false;
    pts[kept++] = x;
    return kept == 2;
}

// Adds to pts (kept so far: kept) the points where the edges of e pierce the face `plane`.
// Returns true once two distinct points are kept. With ep and pp (the faces' prepared data,
// both or neither) the faces' own parts of the tests are taken from them. offEdges marks the
// edges that lie off the plane (offPlaneEdges): they keep no point.
bool collectPiercings(const HDFace& e, const HDFace& plane, _s_hd_point_* pts, int& kept,
                      const FacePrep* ep, const FacePrep* pp, unsigned offEdges) {
    for (int k = 0; k < e.count; ++k) {
        _s_hd_point_ x;
        if ((offEdges >> k & 1u) == 0 &&
            piercesAt(e, k, plane, ep, pp, kept == 1 ? &pts[0] : nullptr, x) &&
            keepPoint(x, pts, kept))
            return true;
    }
    return false;
}

// Every point where an edge of e pierces the face `plane`, in edge order, as collectPiercings
// finds them but without passing over repeats or stopping at two; returns how many (out: room
// for four). ep and pp as for collectPiercings.
int allPiercings(const HDFace& e, const HDFace& plane, const FacePrep* ep, const FacePrep* pp,
                 unsigned offEdges, _s_hd_point_* out) {
    int n = 0;
    for (int k = 0; k < e.count; ++k) {
        if ((offEdges >> k & 1u) == 0)
            n += piercesAt(e, k, plane, ep, pp, nullptr, out[n]) ? 1 : 0;
    }
    return n;
}

// The edges' unit directions, prepareFaceTests' dir.
void edgeDirections(const HDFace& face, FacePrep& prep) {
    for (int k = 0; k < face.count; ++k)
        prep.dir[k] = unitDir(face.v[nextVertex(k, face.count)], face.v[k]);
}

// The outline margin of a face of size D (faceSize) for the points face intersection asks of
// it, kInsideMarginAbs + kInsideMarginRel * D, narrower than the hide pass's (outlineOf), whose
// absolute part covers its lines' reach behind a face. outlineSideOf's proof holds with it, its
// bounds taken again for this margin m:
// - A point beyond an edge's line by more than m in the drawing (less the sides' rounding,
//   6e-6) lies as far from the whole face, in space too. isPointInFace's vertex test accepts
//   points within 1e-4 of a vertex, and isPointOnSeg points within 3.2e-5 of an end or within
//   2.5e-4 L + 1.2e-4 sqrt L of an edge of length L <= D (see kCullMarginAbs), at most
//   0.01 + 2.504e-4 D as 1.2e-4 sqrt L <= 0.01 + 3.6e-7 L: below m - 6e-6, so neither answers 1.
// - The cosines' rounding: p's distances from an edge's ends differ by a ratio of at most
//   1 + D / m <= 4000, so each cosine is off by under 4e-12 and each angle by under 3e-6.
// - p farther than m from every edge (outside, from the whole face; inside, from every edge's
//   line) sees each edge at least 1e-3 short of a half turn (4 m / (L + 2 m) or more): an angle's
//   sign is in doubt only where its edge subtends next to nothing.
// - The fourth vertex's offset from the plane (kCullFlatRel D) and p's (rounding, below 1e-5)
//   move an angle by at most the one plus twice the other over p's distance from the nearer end
//   of its edge, at least m: by under 1e-6 D / (2.504e-4 D) + 2e-5 / 0.0101 = 6e-3, and the
//   four by 0.024: far inside kInFaceTurnTol.
// So beyond m outside an edge's line the angle sum is 0 and nothing else answers 1, and inside
// every edge's line by m the angles add up to a full turn: the outline answers as the angles do.
constexpr double kInsideMarginAbs = 0.0101;
constexpr double kInsideMarginRel = 2.504e-4;

// The rest of prepareFaceTests (prepareEdgeTests and the area normal; dir is set already:
// edgeDirections), and the outline data that lets isPointInFace settle most points without
// measuring angles (outlineOf, with the margin above where outlineOf gives one).
void withOutline(const HDFace& face, FacePrep& prep) {
    prepareEdgeTests(face, prep);
    prep.area = faceAreaNormal(face);
    double lengths[kMaxFaceVertices];
    for (int k = 0; k < face.count; ++k)
        lengths[k] = prep.run[k].len;
    const double size = faceSize(face);
    const bool usable = outlineOf(face, size, lengths, prep.side) > 0.0;
    prep.outlineMargin = usable ? kInsideMarginAbs + kInsideMarginRel * size : 0.0;
}

// A face read for intersection, with its faceFacts and its prepared data: the edges'
// directions (edgeDirections) when read, the rest once a pair of it is left open (prepOf).
struct PreparedFace {
    FaceFacts facts;  ///< first: a pair's first tests read it alone
    HDFace face;
    bool prepared;  ///< prep holds withOutline's data too
    FacePrep prep;
};

// A face read for intersection: false for a chain that readFace does not take.
bool readPreparedFace(const _s_hd_sect_* chain, PreparedFace& f) {
    if (!readFace(chain, f.face))
        return false;
    f.facts = faceFacts(f.face);
    edgeDirections(f.face, f.prep);
    f.prepared = false;
    return true;
}

// prepOf's first asking, out of line: the loops over the pairs that ask it keep only the test.
__attribute__((noinline)) void prepareRest(PreparedFace& f) {
    withOutline(f.face, f.prep);
    f.prepared = true;
}
// f's prepared data, the rest worked out on first asking: withOutline depends on the face alone,
// so when it is worked out changes none of it. In a generated plant over a quarter of the faces
// read are never left open with another and are never prepared.
inline const FacePrep* prepOf(PreparedFace& f) {
    if (!f.prepared)
        prepareRest(f);
    return &f.prep;
}

// The common box of one object's faces (the extents of those that have them), with what
// clearOfObject asks of it.
struct ObjectBox {
    Extents all;
    bool cullable;        ///< some face, and every face boundedFace and isFlatFace
    _s_hd_point_ centre;  ///< the middle of all
    _s_hd_point_ half;    ///< half of all's extent on each axis
};

// The ObjectBox of count faces, ext[k] the extents of faces[k].
ObjectBox objectBox(const PreparedFace* faces, const Extents* ext, int count) {
    // A face whose extents are NaN is left out of the common box (and makes it not cullable).
    Extents all = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    bool cullable = count > 0;
    for (int g = 0; g < count; ++g) {
        const Extents& h = ext[g];
        all.xmax = g == 0 ? h.xmax : std::fmax(all.xmax, h.xmax);
        all.xmin = g == 0 ? h.xmin : std::fmin(all.xmin, h.xmin);
        all.ymax = g == 0 ? h.ymax : std::fmax(all.ymax, h.ymax);
        all.ymin = g == 0 ? h.ymin : std::fmin(all.ymin, h.ymin);
        all.zmax = g == 0 ? h.zmax : std::fmax(all.zmax, h.zmax);
        all.zmin = g == 0 ? h.zmin : std::fmin(all.zmin, h.zmin);
        cullable = cullable && faces[g].facts.bounded && faces[g].facts.flat;
    }
    return {
        all,
        cullable,
        {0.5 * (all.xmax + all.xmin), 0.5 * (all.ymax + all.ymin), 0.5 * (all.zmax + all.zmin)},
        {0.5 * (all.xmax - all.xmin), 0.5 * (all.ymax - all.ymin), 0.5 * (all.zmax - all.zmin)}};
}

// The faces of one object, read and prepared for intersection (readFaces). ext[k] repeats the
// extents of faces[k] in one short run of memory, so that the scans that look for the faces whose
// extents overlap a given face's read a few cache lines rather than one per face; faces and ext
// share one allocation, released by freeing faces.
struct ObjectFaces {
    PreparedFace* faces;
    int count;
    Extents* ext;
    ObjectBox box;  ///< objectBox of the faces
};

// The faces of obj, read once for all the registered objects (each prepared once, when first
// asked: prepOf). faces is null if the object has no face to read or an allocation fails (ok
// false).
ObjectFaces readFaces(const _s_hd_prof_* obj, bool& ok) {
    ObjectFaces read = {nullptr, 0, nullptr, {}};
    ok = true;
    size_t total = 0;
    for (const _s_hd_prosect_* f = obj->prosect; f != nullptr; f = f->next)
        ++total;
    static_assert(alignof(Extents) <= alignof(PreparedFace), "ext follows the faces");
    auto* faces =
        static_cast<PreparedFace*>(std::malloc(total * (sizeof(PreparedFace) + sizeof(Extents))));
    if (faces == nullptr) {
        ok = false;
        return read;
    }
    auto* ext = reinterpret_cast<Extents*>(faces + total);
    int count = 0;
    for (const _s_hd_prosect_* f = obj->prosect; f != nullptr; f = f->next) {
        const HDFace& face = faces[count].face;
        if (readPreparedFace(f->sect, faces[count])) {
            ext[count] = {face.xmax, face.xmin, face.ymax, face.ymin, face.zmax, face.zmin};
            ++count;
        }
    }
    return {faces, count, ext, objectBox(faces, ext, count)};
}

// Which faces of one object lie across which of kSlabs slabs of equal width that cut its box
// along each of two axes, so that a face met visits only the faces whose runs of slabs meet the
// runs its own extents cross on both, rather than every face: in a plant three in five of the
// faces visited miss on extents. The slab of a coordinate, slabOf, never decreases as the
// coordinate grows. Where two faces' extents overlap on an axis (f.min < g.max and g.min < f.max,
// no NaN), slabOf(g.min) <= slabOf(f.max) and slabOf(f.min) <= slabOf(g.max): every face whose
// extents overlap f's is among those visited, and the faces visited are asked the full test. A
// face whose extents on an axis of the index are NaN overlaps nothing and is in no run.
struct SlabIndex {
    static constexpr int kSlabs = 64;
    int axis[2] = {0, 0};          ///< 0, 1, 2: X, Y, Z (the same twice where one alone is usable)
    double lo[2] = {0.0, 0.0};     ///< the box's least coordinate on each axis
    double scale[2] = {0.0, 0.0};  ///< slabs per unit length
    int words = 0;                 ///< mask words: one bit a face
    /// Per axis i and slab s, words each: the faces whose runs start at s or before (kSlabs
    /// masks), then those whose runs end at s or after (kSlabs more); after both axes' masks,
    /// words of room for the caller's own choice of faces (live). Null: no index.
    uint64_t* bits = nullptr;

    /// Lower and upper extent of e on axis i of the index.
    double lowOf(const Extents& e, int i) const {
        return axis[i] == 0 ? e.xmin : axis[i] == 1 ? e.ymin : e.zmin;
    }
    double highOf(const Extents& e, int i) const {
        return axis[i] == 0 ? e.xmax : axis[i] == 1 ? e.ymax : e.zmax;
    }
    /// The slab of coordinate v on axis i, clamped to the index (NaN: 0; never converted).
    int slabOf(double v, int i) const {
        const double t = (v - lo[i]) * scale[i];
        return t >= 1.0 ? (t < kSlabs - 1 ? static_cast<int>(t) : kSlabs - 1) : 0;
    }
    uint64_t* startsBy(int i, int s) const {
        return bits + static_cast<size_t>(2 * kSlabs * i + s) * words;
    }
    uint64_t* endsFrom(int i, int s) const {
        return bits + static_cast<size_t>(2 * kSlabs * i + kSlabs + s) * words;
    }
    uint64_t* live() const { return bits + static_cast<size_t>(4 * kSlabs) * words; }
};

// The SlabIndex of count faces (ext[k] the extents of faces[k]; all their common box), along the
// two axes where the faces' runs are shortest for the box's extent. No index (bits null) when the
// box is not finite within kCullCoordLimit or is flat on every axis, or if the allocation fails:
// the faces are then all visited, with the same result.
SlabIndex slabIndex(const Extents* ext, int count, const Extents& all) {
    const double lows[3] = {all.xmin, all.ymin, all.zmin};
    const double spans[3] = {all.xmax - all.xmin, all.ymax - all.ymin, all.zmax - all.zmin};
    if (count <= 0)
        return SlabIndex{};
    // The faces' extents summed on each axis, each sum a share of the box's extent.
    double runs[3] = {0.0, 0.0, 0.0};
    for (int g = 0; g < count; ++g) {
        runs[0] += ext[g].xmax - ext[g].xmin;
        runs[1] += ext[g].ymax - ext[g].ymin;
        runs[2] += ext[g].zmax - ext[g].zmin;
    }
    // The usable axes, the one of the largest share left out.
    int first = -1;
    int second = -1;
    double firstShare = 0.0;
    double secondShare = 0.0;
    for (int k = 0; k < 3; ++k) {
        const double share = runs[k] / spans[k];
        const bool usable = spans[k] > 0.0 && spans[k] <= hd::kCullCoordLimit &&
                            std::fabs(lows[k]) <= hd::kCullCoordLimit && share >= 0.0;
        if (!usable)
            continue;
        if (first < 0 || share < firstShare) {
            second = first;
            secondShare = firstShare;
            first = k;
            firstShare = share;
        } else if (second < 0 || share < secondShare) {
            second = k;
            secondShare = share;
        }
    }
    if (first < 0)
        return SlabIndex{};
    SlabIndex index;
    index.axis[0] = first;
    index.axis[1] = second >= 0 ? second : first;
    for (int i = 0; i < 2; ++i) {
        index.lo[i] = lows[index.axis[i]];
        index.scale[i] = SlabIndex::kSlabs / spans[index.axis[i]];
    }
    index.words = count / 64 + 1;
    index.bits = static_cast<uint64_t*>(std::calloc(
        (4 * static_cast<size_t>(SlabIndex::kSlabs) + 1) * static_cast<size_t>(index.words),
        sizeof(uint64_t)));
    if (index.bits == nullptr)
        return SlabIndex{};
    for (int i = 0; i < 2; ++i) {
        for (int g = 0; g < count; ++g) {
            const double a = index.lowOf(ext[g], i);
            const double b = index.highOf(ext[g], i);
            if (!(a <= b))
                continue;
            const uint64_t bit = uint64_t{1} << (g % 64);
            index.startsBy(i, index.slabOf(a, i))[g / 64] |= bit;
            index.endsFrom(i, index.slabOf(b, i))[g / 64] |= bit;
        }
        // So far each face is marked in the slab where its run starts and where it ends only.
        for (int s = 1; s < SlabIndex::kSlabs; ++s) {
            for (int w = 0; w < index.words; ++w)
                index.startsBy(i, s)[w] |= index.startsBy(i, s - 1)[w];
        }
        for (int s = SlabIndex::kSlabs - 2; s >= 0; --s) {
            for (int w = 0; w < index.words; ++w)
                index.endsFrom(i, s)[w] |= index.endsFrom(i, s + 1)[w];
        }
    }
    return index;
}

// The faces g of an object (count of them, index their SlabIndex) from `from` on, in order, that
// may overlap the extents e: those whose runs of slabs meet e's on both axes (starting by the
// slab of e's upper extent and ending from that of its lower one) and, when given, are marked in
// the mask live (index.live()); every one without an index. next() gives each in turn, then -1.
class SlabVisit {
public:
    SlabVisit(const SlabIndex& index, const Extents& e, int from, int count,
              const uint64_t* live = nullptr)
        : live_(live), at_(from), count_(count) {
        if (index.bits == nullptr)
            return;
        words_ = index.words;
        bool overlaps = from < count;
        for (int i = 0; i < 2; ++i) {
            const double a = index.lowOf(e, i);
            const double b = index.highOf(e, i);
            overlaps = overlaps && a <= b;  // NaN on an axis: e overlaps nothing
            if (overlaps) {
                starts_[i] = index.startsBy(i, index.slabOf(b, i));
                ends_[i] = index.endsFrom(i, index.slabOf(a, i));
            }
        }
        if (!overlaps) {
            count_ = from;
            return;
        }
        indexed_ = true;
        word_ = from / 64;
        bits_ = wordAt(word_) & ~uint64_t{0} << (from % 64);
    }
    int next() {
        if (!indexed_)
            return at_ < count_ ? at_++ : -1;
        while (bits_ == 0u) {
            if (++word_ >= words_)
                return -1;
            bits_ = wordAt(word_);
        }
        const int g = word_ * 64 + __builtin_ctzll(bits_);
        bits_ &= bits_ - 1u;
        return g;
    }

private:
    uint64_t wordAt(int w) const {
        return starts_[0][w] & ends_[0][w] & starts_[1][w] & ends_[1][w] &
               (live_ != nullptr ? live_[w] : ~uint64_t{0});
    }
    const uint64_t* live_;
    bool indexed_ = false;  ///< false: every face from at_ to count_
    const uint64_t* starts_[2] = {nullptr, nullptr};
    const uint64_t* ends_[2] = {nullptr, nullptr};
    int at_;
    int count_;
    int word_ = 0;
    int words_ = 0;
    uint64_t bits_ = 0u;
};

// True when the segment a -> b runs along one edge of the face (both ends on it). With the
// face's prepared data the edges' reaches are taken from it. Both ends are held to the edge's
// reach before either is measured (onSegWithin's two tests depend on nothing but their
// arguments, so their order changes no answer).
bool runsAlongEdge(_s_hd_point_ a, _s_hd_point_ b, const HDFace& face, const FacePrep* prep) {
    for (int k = 0; k < face.count; ++k) {
        const _s_hd_point_ v = face.v[k];
        const _s_hd_point_ w = face.v[nextVertex(k, face.count)];
        const SegmentReach reach = prep != nullptr ? prep->reach[k] : segmentReach(v, w);
        if (!reach.excludes(a) && !reach.excludes(b) && detail::isPointOnSegInReach(a, v, w) != 0 &&
            detail::isPointOnSegInReach(b, v, w) != 0)
            return true;
    }
    return false;
}

// The margin M = kFacesApartAbs + kFacesApartRel * D (D: span, commonSpan) beyond which two flat
// faces f and g (isFlatFace), their coordinates within kCullCoordLimit, meet nowhere when one
// lies wholly farther than M on one side of the other's plane (df, dg: f's distances from g's plane
// and g's from f's). Say f lies beyond M from g's plane, s being the signed distance from it. The
// edges of f keep no point (offPlaneEdges, whose margin is below M). A point x that an edge
// a -> b of g keeps is on that edge by isPointOnSeg: within 3.2e-5 of an end, or within
// 2.5e-4 |b - a| plus 1.2e-4 sqrt|b - a| of the segment (kCullMarginAbs tells why); the edge
// lies in g's plane to within kCullFlatRel times g's size, so |s(x)| <= 2.6e-4 D +
// 1.2e-4 sqrt D + 3.2e-5. And x, in f's plane, is in f by isPointInFace: within 1e-4 of a
// vertex, on an edge as above, or by the angle sum. Every vertex of f has s > M, and the
// fourth lies within kCullFlatRel D of the plane of the first three; H, the convex hull of the
// first three and the fourth's foot on that plane, has s > M - 1e-6 D, and a point within r of
// H has s > M - 1e-6 D - r (s changes by at most the distance moved). Seen from a point of f's
// plane outside H and farther than M / 2 from it, the edges of that flat polygon add up to no
// turn, and the fourth vertex's offset moves the two angles at it by at most
// pi * 1e-6 D / (M / 2) < 0.007 in all, far inside kInFaceTurnTol: the angle sum rejects it.
// Hence s(x) > M / 2 - 1e-6 D or s(x) > M - 2.5e-4 D - 1.2e-4 sqrt D - 1e-4, each above
// 2.6e-4 D + 1.2e-4 sqrt D + 3.2e-5 (1.2e-4 sqrt D is at most 0.01 + 3.6e-7 D): no x is kept,
// and none from the other side either. Rounding of the distances and of x, below 1e-6 at
// coordinates within kCullCoordLimit, is covered many times over.
//
// The same holds along any direction u of length at most 1: every point kept lies within
// M / 2 + 1e-6 D of one face (H above, or an edge or vertex within 2.5e-4 D + 1.2e-4 sqrt D +
// 1e-4, less than that) and within 2.6e-4 D + 1.2e-4 sqrt D + 3.2e-5 of an edge of the other, so
// its u . x lies within those of the two faces' ranges of u . v over their vertices; the two
// together stay below M. So when those ranges lie more than M apart, the faces meet nowhere:
// apartAlongLine tries u along the line where the two planes meet, which parts faces that
// each cross the other's plane, but at different places along it.
double apartMargin(double span) {
    return hd::kFacesApartAbs + hd::kFacesApartRel * span;
}

// True when pairSides says apart for the face f (its facts ff) and every face of an object (its
// ObjectBox box), in either order: when f is flat and bounded, every face of the object is too,
// and the box lies wholly on one side of f's plane, farther from it than m' + kWellBeyondSlack,
// m' being apartMargin(commonSpan of f's extents and the box). Each face g of the object lies
// within the box, so its common span with f is at most that of f and the box (the larger of two
// extents and the smaller are taken alike in either order, and rounded differences and sums
// keep that order), and so is the margin M that pairSides uses for the pair: M <= m'. Every
// vertex v of g lies in the box, whose points x have n . (x - v0) within |nx| hx + |ny| hy +
// |nz| hz of n . (centre - v0) (n f's unit normal, v0 its first vertex, h the half extents);
// so each of g's distances from f's plane lies beyond m' + kWellBeyondSlack - 1e-15 |x|, on the
// same side. Rounding of the centre, the half extents and the distances here, and of those
// planeDistances works out, stays below 1e-5 at coordinates within kCullCoordLimit: every
// distance pairSides compares lies beyond M by over 8e-5, and as f and g are both flat and
// bounded, allBeyond of g's distances (dg for the pair (f, g), df for (g, f)), if nothing
// before it, answers apart. NaN fails.
bool clearOfObject(const PreparedFace& f, const ObjectBox& box) {
    const FaceFacts& ff = f.facts;
    if (!box.cullable || !ff.bounded || !ff.flat || ff.noPlane)
        return false;
    const HDFace& e = f.face;
    const double far = apartMargin(commonSpan(e, box.all, true)) + kWellBeyondSlack;
    const _s_hd_point_ n = e.normal;
    const double d = vecDot(n, vecSub(box.centre, e.v[0]));
    const double r =
        std::fabs(n.x) * box.half.x + std::fabs(n.y) * box.half.y + std::fabs(n.z) * box.half.z;
    return d - r > far || d + r < -far;
}

// The least and greatest of u . v over a face's vertices, each u . v kept in w.
void rangeAlong(const HDFace& e, _s_hd_point_ u, double* w, double& lo, double& hi) {
    w[0] = lo = hi = vecDot(u, e.v[0]);
    for (int k = 1; k < e.count; ++k) {
        const double o = vecDot(u, e.v[k]);
        w[k] = o;
        lo = o < lo ? o : lo;
        hi = o > hi ? o : hi;
    }
}

// An edge's slope against the other face's plane (the change of its distance from it per unit of
// its length) from which sliceApart places the edge's crossing of a level by interpolation.
constexpr double kSliceSlope = 1e-3;

// True when the points x of the hull of the face e's vertices that lie within s of the other
// face's plane (w: u . v and d: the distance from that plane, planeDistances, of each vertex v)
// all lie farther than m below lo along u, or all farther than m above hi (lo - u . x > m or
// u . x - hi > m, as computed), or there are none. The least and greatest of u . x over them lie
// at the vertices within s and the points where a segment between two vertices crosses the level
// -s or s (u . x is linear along a segment); they are held to lo and hi as they are found, and
// once they fail, more points only widen them (the rounded differences keep their order), so the
// test stops there. A segment that crosses a level at a slope (its distance's change per unit of
// its length) below kSliceSlope gives both its ends instead (the crossing lies between them).
// Above that slope the interpolated value is off by at most 4e-12 D plus 2e-6 (D the span of the
// two faces' common box; the distances off by 7.8e-16 D, the dot products by 1e-6 within
// kCullCoordLimit). The distances' rounding may move a vertex near a level in or out: either way
// a point at that level is taken. So every point of the hull within s - 1e-15 D of the plane has
// its u . x within the least and greatest, widened by that rounding.
bool sliceApart(const HDFace& e, const double* w, const double* d, double s, double lo, double hi,
                double m) {
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
    auto apart = [&] { return (lo - most > m) | (least - hi > m); };
    int level[kMaxFaceVertices];  // 0: below -s, 1: within s, 2: above s
    for (int k = 0; k < e.count; ++k) {
        level[k] = d[k] < -s ? 0 : d[k] > s ? 2 : 1;
        least = level[k] == 1 && w[k] < least ? w[k] : least;
        most = level[k] == 1 && w[k] > most ? w[k] : most;
    }
    if (!apart())
        return false;
    for (int k = 0; k < e.count; ++k) {
        for (int j = k + 1; j < e.count; ++j) {
            if (level[k] == level[j])
                continue;
            const bool crossLow = (level[k] == 0) != (level[j] == 0);
            const bool crossHigh = (level[k] == 2) != (level[j] == 2);
            const double rise = d[j] - d[k];
            double at[2] = {w[k], w[j]};
            if (rise * rise >= kSliceSlope * kSliceSlope * pointDist2(e.v[k], e.v[j])) {
                // The crossings of the levels the segment crosses (of the other, an end's value).
                const double run = (w[j] - w[k]) / rise;
                at[0] = crossLow ? w[k] + (-s - d[k]) * run : w[k] + (s - d[k]) * run;
                at[1] = crossHigh ? w[k] + (s - d[k]) * run : at[0];
            }
            least = minOf(least, minOf(at[0], at[1]));
            most = maxOf(most, maxOf(at[0], at[1]));
            if (!apart())
                return false;
        }
    }
    return true;
}

// True when the faces f and g (flat, coordinates within kCullCoordLimit; df: f's distances from
// g's plane) lie more than m, their apartMargin, apart along the line where their planes meet
// (the proof holds along any direction u of length at most 1), by their vertices' ranges along it
// (see apartMargin), or by the range of f's slice within m of g's plane (sliceApart) and g's
// vertices' range: that parts faces that each cross the other's plane, but at different places
// along the line. With t = 2.6e-4 D + 1.2e-4 sqrt D + 3.2e-5 <= 0.0101 + 2.604e-4 D (D their
// commonSpan) and r = m / 2 + 1e-6 D (see apartMargin):
// - A point x kept from an edge of f lies on g's plane (rounding: 1e-6) within t of a point p of
//   that edge, so p lies within t + 1e-6 of g's plane, in f's slice; and x is in g by
//   isPointInFace, within r of the hull of g's vertices (a vertex, an edge, or H in apartMargin's
//   proof, itself within 1e-6 D of that hull).
// - A point x kept from an edge of g lies within t of that edge, in the hull of g's vertices, and
//   within 1e-6 D + t of g's plane, g being flat; x is in f, within r of a point q of H, itself
//   within 1e-6 D of a point q' of the hull of f's vertices: q' lies within 2e-6 D + t + r of
//   g's plane, in f's slice.
// Either way u . x lies within t of the one range and r + 1e-6 D of the other, so they overlap or
// lie at most t + r + 1e-6 D <= 0.0352 + 7.63e-4 D apart. m (0.05 + 1e-3 D) exceeds both that and
// the slice's half width needed, 2e-6 D + t + r, by 0.0148 + 2.36e-4 D, far more than the
// rounding of the distances, the dot products and sliceApart's crossings. Every value here is
// finite: sidesApart asks this only of flat faces within kCullCoordLimit, whose unit normals
// pairSides has found not parallel.
bool apartAlongLine(const HDFace& f, const double* df, const HDFace& g, double m) {
    const _s_hd_point_ u = vecNormalize(vecCross(f.normal, g.normal));
    double wf[kMaxFaceVertices];
    double wg[kMaxFaceVertices];
    double flo = 0.0;
    double fhi = 0.0;
    double glo = 0.0;
    double ghi = 0.0;
    rangeAlong(f, u, wf, flo, fhi);
    rangeAlong(g, u, wg, glo, ghi);
    if (glo - fhi > m || flo - ghi > m)
        return true;
    // f's slice against g's whole range (g's slice lies within it).
    return sliceApart(f, wf, df, m, glo, ghi, m);
}

// What the faces f and g tell of their meeting before any edge is pierced: apart, they meet
// nowhere (no plane, parallel, or beyond the apartMargin); otherwise fOff and gOff mark the
// edges of each that lie off the other's plane (offPlaneEdges). With shortcuts false only the
// first two are asked.
struct PairSides {
    bool apart;
    unsigned fOff, gOff;
};
// True when two faces of unit normals n and o are parallel: pairSides' first test of two faces
// with a plane.
bool parallelNormals(_s_hd_point_ n, _s_hd_point_ o) {
    return std::fabs(std::fabs(vecDot(n, o)) - 1.0) < hd::kParallelFacesTol;
}

// pairSides past f's distances from g's plane (df, worked out where fBounded), which have not
// parted the pair, span being the faces' commonSpan and m its apartMargin. No test of g's centre
// comes before g's distances, as one does before f's: where wellBeyond would part the pair, so
// does allBeyond of g's distances (its proof), asked of the same pairs (both boundedFace and
// flat), and in a plant the centre test never does where f's distances have not.
PairSides sidesApart(const HDFace& f, const FaceFacts& ff, const HDFace& g, const FaceFacts& gf,
                     double span, double m, bool fBounded, const double* df) {
    const bool bothFlat = ff.flat && gf.flat;
    double dg[kMaxFaceVertices];
    const bool gBounded = planeDistances(g, gf.bounded, ff, dg);
    if (fBounded && gBounded && bothFlat &&
        (allBeyond(dg, g.count, m) || apartAlongLine(f, df, g, m)))
        return {true, 0u, 0u};
    return {false, fBounded ? offPlaneEdges(f, df, span) : 0u,
            gBounded ? offPlaneEdges(g, dg, span) : 0u};
}

PairSides pairSides(const HDFace& f, const FaceFacts& ff, const HDFace& g, const FaceFacts& gf,
                    bool shortcuts) {
    if (ff.noPlane || gf.noPlane || parallelNormals(ff.normal, gf.normal))
        return {true, 0u, 0u};
    if (!shortcuts)
        return {false, 0u, 0u};
    const double span = commonSpan(f, g, ff.bounded && gf.bounded);
    const double m = apartMargin(span);
    // f's distances alone settle most pairs that lie apart, and its centre's distance most of
    // those; g's are worked out only when not.
    const bool cullable = ff.bounded && gf.bounded && ff.flat && gf.flat;
    if (cullable && wellBeyond(ff, gf, m))
        return {true, 0u, 0u};
    double df[kMaxFaceVertices];
    const bool fBounded = planeDistances(f, ff.bounded, gf, df);
    if (fBounded && cullable && allBeyond(df, f.count, m))
        return {true, 0u, 0u};
    return sidesApart(f, ff, g, gf, span, m, fBounded, df);
}

bool meetOnlyAtShared(const PreparedFace& f, const PreparedFace& g);
bool sharedOnly(const PreparedFace& f, const PreparedFace& g, double span, double m,
                const double* df);

// pairSides for two faces read for intersection (fe and ge their extents), and apart without
// asking where the extents do not overlap. For two cullable faces, pairSides' tests up to that
// of f's distances from g's plane are made here, in the caller's loop over the faces g, reading
// of g its extents and facts alone: the same tests of copies of the same values (the extents;
// the plane in the facts), in the same order, as pairSides makes them.
inline PairSides openPair(const PreparedFace& f, const Extents& fe, const PreparedFace& g,
                          const Extents& ge, bool own = false) {
    if (!extentsOverlap(fe, ge))
        return {true, 0u, 0u};
    const FaceFacts& ff = f.facts;
    const FaceFacts& gf = g.facts;
    if (!ff.cullable || !gf.cullable) {
        const PairSides sides = pairSides(f.face, ff, g.face, gf, true);
        return !sides.apart && own && meetOnlyAtShared(f, g) ? PairSides{true, 0u, 0u} : sides;
    }
    if (parallelNormals(ff.normal, gf.normal))
        return {true, 0u, 0u};
    const double span = commonSpan(fe, ge, true);
    const double m = apartMargin(span);
    if (wellBeyond(ff, gf, m))
        return {true, 0u, 0u};
    double df[kMaxFaceVertices];
    planeDistances(f.face, true, gf, df);
    if (allBeyond(df, f.face.count, m))
        return {true, 0u, 0u};
    // With own (two distinct faces of one object), a pair that meets only where the two share a
    // vertex or an edge (meetOnlyAtShared) is passed over as apart (before g's distances, for two
    // cullable faces): whether the rest of pairSides parts it or not, the faces give no line, in
    // either order, and nothing is kept for the pair (g, f).
    if (own && sharedOnly(f, g, span, m, df))
        return {true, 0u, 0u};
    return sidesApart(f.face, ff, g.face, gf, span, m, true, df);
}

// cutAlong's last step, for the two distinct points pts kept from the faces f and g. Two faces
// that share an edge meet along it, and so do neighbouring faces of one smooth surface: that is
// no intersection line. The edge is drawn already where it is an edge of the solid, and a seam
// of a curved surface must not be drawn at all.
bool alongEdge(const _s_hd_point_* pts, const HDFace& f, const FacePrep* fp, const HDFace& g,
               const FacePrep* gp) {
    return runsAlongEdge(pts[0], pts[1], f, fp) && runsAlongEdge(pts[0], pts[1], g, gp);
}

// True when two points kept that run along an edge of both faces f and g may not mark a meeting
// along an edge: they lie within kRunTogetherRel of the smaller face's size (faceSize) of each
// other. Faces that share an edge meet only along the line through it, so every piercing lies on
// that edge. But the first two points can run along an edge of both without the faces sharing
// one: where an edge of one face crosses an edge of the other on the line along which they meet
// (a nozzle entering a sphere or a head about the same axis, whose edges lie in the meridian
// planes of the other's), both edges pierce the other face there, and the two points, worked out
// from different edges, differ by the rounding of the vertices; and near a vertex of one face
// lying close to the other, the points found there lie within isPointOnSeg's tolerance of an
// edge of each. Points farther apart mark a stretch along which an edge of each runs: the faces
// meet along its line, and every other piercing lies on those edges too.
bool mayLookOn(const _s_hd_point_* pts, const HDFace& f, const HDFace& g) {
    // On a generated plant the pairs lookOn finds a segment for lie within a thousandth of the
    // smaller face's size; nine in ten of those it finds none for lie farther apart than a
    // hundredth.
    constexpr double kRunTogetherRel = 0.01;
    const double close = kRunTogetherRel * minOf(faceSize(f), faceSize(g));
    return pointDist2(pts[0], pts[1]) < close * close;  // false for NaN
}

// For two points kept (pts, the first the first of the piercings s (the edges of f) and then t
// (those of g)) that run along an edge of both faces and may not mark a meeting along it
// (mayLookOn): the segment from the first to the first piercing in that order with which it runs
// along no edge of both, if there is one; the line along which the faces meet runs on from the
// first point. True with the segment in pts.
bool lookOn(const _s_hd_point_* s, int ns, const _s_hd_point_* t, int nt, _s_hd_point_* pts,
            const HDFace& f, const FacePrep* fp, const HDFace& g, const FacePrep* gp) {
    for (int k = 0; k < ns + nt; ++k) {
        pts[1] = k < ns ? s[k] : t[k - ns];
        if (!alongEdge(pts, f, fp, g, gp))
            return true;
    }
    return false;
}

// faceInterLine for a pair that pairSides leaves open: the first two distinct points where the
// edges of f and then those of g pierce the other face, unless they run along an edge of both;
// then the segment lookOn finds, if mayLookOn lets it look. The first kept point is the first of
// all the piercings.
bool cutAlong(const HDFace& f, const FacePrep* fp, const HDFace& g, const FacePrep* gp,
              const PairSides& sides, _s_hd_point_& a, _s_hd_point_& b) {
    const unsigned fOff = sides.fOff;
    const unsigned gOff = sides.gOff;
    _s_hd_point_ pts[2];
    int kept = 0;
    if (!collectPiercings(f, g, pts, kept, fp, gp, fOff) &&
        !collectPiercings(g, f, pts, kept, gp, fp, gOff))
        return false;
    if (alongEdge(pts, f, fp, g, gp)) {
        if (!mayLookOn(pts, f, g))
            return false;
        _s_hd_point_ fromF[kMaxFaceVertices];
        _s_hd_point_ fromG[kMaxFaceVertices];
        const int nf = allPiercings(f, g, fp, gp, fOff, fromF);
        const int ng = allPiercings(g, f, gp, fp, gOff, fromG);
        if (!lookOn(fromF, nf, fromG, ng, pts, f, fp, g, gp))
            return false;
    }
    a = pts[0];
    b = pts[1];
    return true;
}

bool faceInterLine(const HDFace& f, const FacePrep* fp, const HDFace& g, const FacePrep* gp,
                   _s_hd_point_& a, _s_hd_point_& b) {
    const PairSides sides = pairSides(f, faceFacts(f), g, faceFacts(g), fp != nullptr);
    return !sides.apart && cutAlong(f, fp, g, gp, sides, a, b);
}

}  // namespace

bool getFaceInterLine(const HDFace& f, const HDFace& g, _s_hd_point_& a, _s_hd_point_& b) {
    return faceInterLine(f, nullptr, g, nullptr, a, b);
}

bool getFaceInterLine(const HDFace& f, const FacePrep& fp, const HDFace& g, const FacePrep& gp,
                      _s_hd_point_& a, _s_hd_point_& b) {
    return faceInterLine(f, &fp, g, &gp, a, b);
}

namespace {

// The first two distinct points of the piercings s (ns of them) and then t (nt), kept in turn
// as collectPiercings keeps them; true when there are two.
bool firstTwo(const _s_hd_point_* s, int ns, const _s_hd_point_* t, int nt, _s_hd_point_* pts) {
    int kept = 0;
    for (int k = 0; k < ns; ++k) {
        if (keepPoint(s[k], pts, kept))
            return true;
    }
    for (int k = 0; k < nt; ++k) {
        if (keepPoint(t[k], pts, kept))
            return true;
    }
    return false;
}

// True when p and q hold the same two points, to the bit, in either order.
bool samePair(const _s_hd_point_* p, const _s_hd_point_* q) {
    return (sameBits(p[0], q[0]) && sameBits(p[1], q[1])) ||
           (sameBits(p[0], q[1]) && sameBits(p[1], q[0]));
}

// Neighbouring faces of one object share a vertex, or the two ends of an edge, to the bit; where
// every other vertex of each lies well to one side of the other's plane, the two meet only at what
// they share, and cutAlong finds no line for them in either order (meetOnlyAtShared).
//
// A shared vertex counts as on the other face's plane within this distance (linePlaneInter's
// numerator): it then moves a piercing point off the vertex by at most 2100 times as much.
constexpr double kSharedOnPlane = 1e-9;
// The faces' common span at most this keeps the rounding of a piercing's parameter, 7e-12 of the
// span, below 7e-6 of the vertex.
constexpr double kSharedSpanLimit = 1e6;

// Marks the vertices of f equal to a vertex of g, to the bit, in fShared (bit k: f.v[k]), and
// those of g equal to a vertex of f in gShared.
void sharedVertices(const HDFace& f, const HDFace& g, unsigned& fShared, unsigned& gShared) {
    fShared = 0u;
    gShared = 0u;
    for (int k = 0; k < f.count; ++k) {
        for (int j = 0; j < g.count; ++j) {
            const unsigned same = sameBits(f.v[k], g.v[j]) ? 1u : 0u;
            fShared |= same << k;
            gShared |= same << j;
        }
    }
}

// Marks in on the count vertices of a face whose distances d from another face's plane
// (planeDistances) lie within kSharedOnPlane, measured as linePlaneInter measures it for an edge
// from the vertex: its numerator for an edge from v is n . (v0 - v), and v0 - v is v - v0 negated
// (rounding to nearest is the same either way round; a zero's sign aside), as are the three
// products and their sum: its magnitude is |d| to the bit. True when every other vertex lies
// farther than m (at least kFacesApartAbs) from the plane, all on one side. The vertices are all
// looked at, without a branch: which lie on the plane is a toss-up from one pair to the next.
// NaN fails.
bool onPlaneRestBeyond(const double* d, int count, double m, unsigned& on) {
    bool above = true;
    bool below = true;
    on = 0u;
    for (int k = 0; k < count; ++k) {
        const bool at = std::fabs(d[k]) <= kSharedOnPlane;
        on |= static_cast<unsigned>(at) << k;
        above &= at | (d[k] > m);
        below &= at | (d[k] < -m);
    }
    return above | below;
}

int sharedCount(unsigned shared) {
    return static_cast<int>(shared & 1u) + static_cast<int>(shared >> 1 & 1u) +
           static_cast<int>(shared >> 2 & 1u) + static_cast<int>(shared >> 3 & 1u);
}

// True when two of e's vertices are shared (shared: sharedVertices) and are the ends of
// one edge of e, which does not cross the plane of normal n (the test piercesAt makes first).
bool sharedEdgeOffCrossing(const PreparedFace& e, unsigned shared, _s_hd_point_ n) {
    for (int k = 0; k < e.face.count; ++k) {
        if ((shared >> k & 1u) != 0 && (shared >> nextVertex(k, e.face.count) & 1u) != 0)
            return !crossesPlane(e.prep.dir[k], n);
    }
    return false;
}

// True when cutAlong finds no line for the faces f and g of one object (pairSides leaving the
// pair open), in either order: they share one vertex, or the two ends of one edge of both, to the
// bit; each shared vertex lies within kSharedOnPlane of the other face's plane; and the other
// vertices of each lie on one side of the other's plane, farther than M = apartMargin(D) (D the
// faces' commonSpan, at most kSharedSpanLimit). Proof, for the edges of f piercing g (g's
// edges piercing f alike), n being g's unit normal (its length within 1e-15 of 1) and v0 its
// first vertex:
// - An edge between two shared vertices is the shared edge, which does not cross g's plane:
//   piercesAt keeps nothing from it, asking the same test first.
// - An edge between two other vertices has both ends beyond M, above offPlaneEdges' margin, on
//   one side: piercesAt keeps nothing from it (see offPlaneEdges).
// - An edge from a shared vertex P to another R: n . (R - v0) lies beyond M - 1e-15 D, so
//   n . (R - P) beyond M - kSharedOnPlane - 3e-15 D > M / 2, and worked out to within 1e-15 D
//   (every vector here is a difference of two points of the common box, at most D long). From P,
//   t = n . (v0 - P) / n . (R - P), whose numerator is the one measured, so |t| < 2.1e-9 / M and
//   the point x = P + t (R - P) lies within 2100 kSharedOnPlane (M >= 0.001 D >= 0.001 |R - P|)
//   plus the rounding of the sum, 4e-16 of the coordinates (below 4e-7 within
//   kCullCoordLimit), of P. From R, 1 - t = n . (P - v0) / n . (P - R) within the parameter's
//   rounding, 4e-12, so x lies within 2100 kSharedOnPlane + 2e-12 D + 4e-12 D + 4e-7 of P.
//   Either way x, if kept, lies within 1e-5 of P.
// So every point kept lies within 1e-5 of a shared vertex, closer than kOnSegEndDist2 (3.2e-5)
// and far inside every edge's reach: two distinct ones, near one shared vertex or near the two
// ends of the shared edge, lie on an edge of f and of g by isPointOnSeg (the edges at that vertex;
// the shared edge), and alongEdge drops them; so does lookOn, every other point kept making such
// a pair with the first. Fewer than two give no line either.
bool meetOnlyAtShared(const PreparedFace& f, const PreparedFace& g) {
    if (!f.facts.bounded || !g.facts.bounded)
        return false;
    double df[kMaxFaceVertices];
    planeDistances(f.face, true, g.facts, df);
    const double span = commonSpan(f.face, g.face, true);
    return sharedOnly(f, g, span, apartMargin(span), df);
}

// meetOnlyAtShared for two boundedFace faces with their commonSpan span, its apartMargin m, and
// f's distances from g's plane df as planeDistances works them out. The vertices of f on g's
// plane (onPlaneRestBeyond) must be those it shares with g (sharedVertices), and those of g on
// f's plane those g shares with f: a vertex lies within kSharedOnPlane of the plane or beyond m
// (above kSharedOnPlane), not both, so that is what the shared ones lying on the plane and the
// rest beyond it come to. The plane tests come first: most pairs that fail, fail there, and the
// vertices need not be compared.
bool sharedOnly(const PreparedFace& f, const PreparedFace& g, double span, double m,
                const double* df) {
    if (!(span <= kSharedSpanLimit))
        return false;
    unsigned fOn = 0u;
    unsigned gOn = 0u;
    if (!onPlaneRestBeyond(df, f.face.count, m, fOn))
        return false;
    const int count = sharedCount(fOn);
    if (count < 1 || count > 2)
        return false;
    double dg[kMaxFaceVertices];
    planeDistances(g.face, true, f.facts, dg);
    if (!onPlaneRestBeyond(dg, g.face.count, m, gOn) || sharedCount(gOn) != count)
        return false;
    unsigned fShared = 0u;
    unsigned gShared = 0u;
    sharedVertices(f.face, g.face, fShared, gShared);
    if (fShared != fOn || gShared != gOn)
        return false;
    return count == 1 || (sharedEdgeOffCrossing(f, fShared, g.face.normal) &&
                          sharedEdgeOffCrossing(g, gShared, f.face.normal));
}

// The result for the pair (f, g) of one object's own faces, g before f, kept from when the pair
// (g, f) was met; the next one kept for f is at index next (-1: none).
struct OwnCut {
    int g;
    int next;
    bool line;
    _s_hd_point_ a, b;
};

// The pairs of one object's own faces (own; all: the common box of their extents), met as
// addCutLines meets the faces of any object: by the face f met, each face of its own that
// overlaps f's extents in turn, lines appended to found. Each pair is met as (f, g) and as
// (g, f), and pairSides gives the same for both: the same products and sums in either order
// (the normals' dot product; the common box; each face's distances from the other's plane;
// along the line where the planes meet the direction turns round exactly, so the faces' ranges
// along it change sign and swap, to the bit). So both are worked out when the first is met:
// the piercings of either face's edges, which depend on nothing but the edge and the other
// face, are found once, and kept in either order as cutAlong keeps them. A face that does not
// overlap all is not met, and its pairs are worked out when they come. False if an allocation
// fails.
bool meetOwnFaces(ObjectFaces own, const Extents& all, const SlabIndex& slabs,
                  ProlineChain& found) {
    const int n = own.count;
    if (n == 0)
        return true;
    int* head = static_cast<int*>(std::malloc(3 * static_cast<size_t>(n) * sizeof(int)));
    if (head == nullptr)
        return false;
    int* tail = head + n;
    int* outside = tail + n;  // the faces not met, in order
    int outsideCount = 0;
    for (int k = 0; k < n; ++k) {
        head[k] = tail[k] = -1;
        outside[outsideCount] = k;
        outsideCount += extentsOverlap(own.ext[k], all) ? 0 : 1;
    }
    OwnCut* cuts = nullptr;
    int used = 0;
    int room = 0;
    bool ok = true;
    for (int fi = 0; fi < n && ok; ++fi) {
        PreparedFace& f = own.faces[fi];
        const Extents& fe = own.ext[fi];
        if (!extentsOverlap(fe, all))
            continue;
        // The faces g before f, in order: the results of those met were kept when (g, f) was
        // met (none kept: the pair lies apart); the others are worked out now.
        for (int at = head[fi], out = 0; ok;) {
            const int kept = at >= 0 ? cuts[at].g : n;
            const int notMet = out < outsideCount && outside[out] < fi ? outside[out] : n;
            if (kept == n && notMet == n)
                break;
            if (kept < notMet) {
                if (cuts[at].line)
                    ok = found.append(cuts[at].a, cuts[at].b);
                at = cuts[at].next;
                continue;
            }
            ++out;
            PreparedFace& g = own.faces[notMet];
            const PairSides sides = openPair(f, fe, g, own.ext[notMet]);
            _s_hd_point_ a;
            _s_hd_point_ b;
            if (!sides.apart && cutAlong(f.face, prepOf(f), g.face, prepOf(g), sides, a, b))
                ok = found.append(a, b);
        }
        // f itself and the faces after it (those that may overlap it: the others lie apart).
        SlabVisit near(slabs, fe, fi, n);
        for (int gi = near.next(); gi >= 0 && ok; gi = near.next()) {
            PreparedFace& g = own.faces[gi];
            const PairSides sides = openPair(f, fe, g, own.ext[gi], gi != fi);
            if (sides.apart)
                continue;
            const FacePrep* fp = prepOf(f);
            const FacePrep* gp = prepOf(g);
            _s_hd_point_ a;
            _s_hd_point_ b;
            if (gi == fi) {
                if (cutAlong(f.face, fp, g.face, gp, sides, a, b))
                    ok = found.append(a, b);
                continue;
            }
            _s_hd_point_ fromF[kMaxFaceVertices];
            _s_hd_point_ fromG[kMaxFaceVertices];
            const int nf = allPiercings(f.face, g.face, fp, gp, sides.fOff, fromF);
            const int ng = allPiercings(g.face, f.face, gp, fp, sides.gOff, fromG);
            _s_hd_point_ p[2];
            _s_hd_point_ q[2];
            const bool twoP = firstTwo(fromF, nf, fromG, ng, p);
            const bool alongP = twoP && alongEdge(p, f.face, fp, g.face, gp);
            // runsAlongEdge takes its two points either way round: the same two points run
            // along an edge of both faces in either order or in neither.
            const bool twoQ = firstTwo(fromG, ng, fromF, nf, q);
            const bool alongQ =
                twoQ && (twoP && samePair(p, q) ? alongP : alongEdge(q, g.face, gp, f.face, fp));
            // As cutAlong goes on where the first two run along an edge of both.
            const bool line =
                twoP && (!alongP || (mayLookOn(p, f.face, g.face) &&
                                     lookOn(fromF, nf, fromG, ng, p, f.face, fp, g.face, gp)));
            const bool back =
                twoQ && (!alongQ || (mayLookOn(q, g.face, f.face) &&
                                     lookOn(fromG, ng, fromF, nf, q, g.face, gp, f.face, fp)));
            if (line)
                ok = found.append(p[0], p[1]);
            if (!ok || !extentsOverlap(own.ext[gi], all))
                continue;
            if (used == room) {
                const int more = room == 0 ? 64 : room < INT_MAX / 2 ? 2 * room : 0;
                auto* grown = more == 0 ? nullptr
                                        : static_cast<OwnCut*>(std::malloc(
                                              static_cast<size_t>(more) * sizeof(OwnCut)));
                if (grown == nullptr) {
                    ok = false;
                    break;
                }
                if (used > 0)
                    std::memcpy(grown, cuts, static_cast<size_t>(used) * sizeof(OwnCut));
                std::free(cuts);
                cuts = grown;
                room = more;
            }
            cuts[used] = {fi, -1, back, q[0], q[1]};
            if (tail[gi] >= 0)
                cuts[tail[gi]].next = used;
            else
                head[gi] = used;
            tail[gi] = used++;
        }
    }
    std::free(cuts);
    std::free(head);
    return ok;
}

// Appends to obj's line list the segments along which its faces (own, read by readFaces) cut the
// faces of the objects that forEachRegistered hands to its visitor, in the order it hands them,
// each with its faces when they are at hand already (faces null: they are read here). The
// visitor returns false once an allocation has failed, and the rest may be skipped. Objects
// whose 3-D boxes do not touch obj's are passed over here.
template <class ForEachRegistered>
void addCutLines(_s_hd_prof_* obj, ObjectFaces own, ForEachRegistered&& forEachRegistered) {
    // Segments are only ever linked behind an existing line.
    if (obj == nullptr || obj->prosect == nullptr || obj->proline == nullptr)
        return;
    bool ok = true;
    // The common box of obj's faces' extents: a face that does not overlap it overlaps none of
    // them, each lying within it on every axis.
    const ObjectBox& box = own.box;
    const Extents& all = box.all;
    // Per face of obj, when a neighbour's faces are kept: whether its plane leaves all of them
    // well to one side, so that it meets none (clearOfObject). Without the room the faces are
    // all compared.
    auto* clear = own.count > 0 ? static_cast<unsigned char*>(std::malloc(own.count)) : nullptr;
    // The faces of obj a face met may overlap.
    const SlabIndex slabs = slabIndex(own.ext, own.count, all);
    ProlineChain found;
    // getFaceInterLine for f and each face of obj, with the faces' prepared data (prepOf: each
    // prepared once a pair of it is left open). A face whose plane leaves all of obj well to one
    // side meets none of its faces (clearOfObject).
    auto meet = [&](PreparedFace& f, const unsigned char* passOver) {
        if (clearOfObject(f, box))
            return;
        const Extents fe = {f.face.xmax, f.face.xmin, f.face.ymax,
                            f.face.ymin, f.face.zmax, f.face.zmin};
        // With the index, the faces passed over are left out of its live mask.
        SlabVisit near(slabs, fe, 0, own.count, passOver != nullptr ? slabs.live() : nullptr);
        for (int g = near.next(); g >= 0 && ok; g = near.next()) {
            if (slabs.bits == nullptr && passOver != nullptr && passOver[g] != 0)
                continue;
            PreparedFace& h = own.faces[g];
            const PairSides sides = openPair(f, fe, h, own.ext[g]);
            if (sides.apart)
                continue;
            _s_hd_point_ a;
            _s_hd_point_ b;
            if (cutAlong(f.face, prepOf(f), h.face, prepOf(h), sides, a, b))
                ok = found.append(a, b);
        }
    };
    forEachRegistered([&](const _s_hd_prof_* other, ObjectFaces read) {
        if (other == nullptr || !boxesTouch(other->box, obj->box))
            return true;
        if (other == obj) {
            ok = meetOwnFaces(own, all, slabs, found);
            return ok;
        }
        const bool passOver = read.faces != nullptr && read.box.cullable && clear != nullptr;
        for (int g = 0; passOver && g < own.count; ++g)
            clear[g] = clearOfObject(own.faces[g], read.box) ? 1 : 0;
        for (int w = 0; passOver && slabs.bits != nullptr && w < slabs.words; ++w) {
            uint64_t live = 0u;
            for (int g = 64 * w; g < own.count && g < 64 * w + 64; ++g)
                live |= static_cast<uint64_t>(clear[g] == 0) << (g % 64);
            slabs.live()[w] = live;
        }
        for (int k = 0; k < read.count && ok; ++k) {
            if (extentsOverlap(read.faces[k].face, all))
                meet(read.faces[k], passOver ? clear : nullptr);
        }
        if (read.faces != nullptr)
            return ok;
        for (const _s_hd_prosect_* fs = other->prosect; fs != nullptr && ok; fs = fs->next) {
            PreparedFace f;
            if (readPreparedFace(fs->sect, f) && extentsOverlap(f.face, all))
                meet(f, nullptr);
        }
        return ok;
    });
    std::free(clear);
    std::free(slabs.bits);
    if (!ok) {
        releaseProline(found.head);
        return;
    }
    concatProline(obj->proline, found.head);
}

// The prepared faces of the objects met last, so that the faces of an object are read and
// prepared once for all the objects after it whose boxes touch its own rather than once for
// each (in a generated plant nearly all such objects follow within a few hundred places). An
// object is kept in slot (its index mod kRecentSlots) until a later one takes the slot, or
// sooner while the faces kept would exceed the budget set by init. Lookups give what readFaces
// gives, so keeping or dropping an object changes no result.
struct RecentFaces {
    /// Objects kept at most: in a generated plant over 97 in 100 of the pairs of objects whose
    /// boxes touch lie fewer places apart than this.
    static constexpr int kRecentSlots = 256;
    int* index = nullptr;  ///< per slot: the object kept there, or -1
    ObjectFaces* kept = nullptr;
    size_t keptFaces = 0;
    size_t budget = 0;
    int oldest = 0;  ///< no object below this index is kept

    /// False if an allocation fails (nothing is kept then). The budget is an eighth of the
    /// scene's faces, each of whose records in the model (the face's and at least three
    /// vertices') take more than an eighth of a PreparedFace: the faces kept stay well within
    /// the model's size.
    bool init(_s_hd_prof_* const* objs, int n) {
        static_assert(sizeof(PreparedFace) < 8 * (sizeof(_s_hd_prosect_) + 3 * sizeof(_s_hd_sect_)),
                      "the budget's bound");
        index = static_cast<int*>(std::malloc(kRecentSlots * sizeof(int)));
        kept = static_cast<ObjectFaces*>(std::malloc(kRecentSlots * sizeof(ObjectFaces)));
        if (index == nullptr || kept == nullptr) {
            std::free(index);
            std::free(kept);
            index = nullptr;
            kept = nullptr;
            return false;
        }
        for (int s = 0; s < kRecentSlots; ++s) {
            index[s] = -1;
            kept[s] = {nullptr, 0, nullptr, {}};
        }
        size_t faces = 0;
        for (int i = 0; i < n; ++i) {
            for (const _s_hd_prosect_* f = objs[i] != nullptr ? objs[i]->prosect : nullptr;
                 f != nullptr; f = f->next)
                ++faces;
        }
        budget = faces / 8;
        return true;
    }
    /// Object i's faces if kept, else {null, 0}.
    ObjectFaces find(int i) const {
        const int s = i % kRecentSlots;
        return index[s] == i ? kept[s] : ObjectFaces{nullptr, 0, nullptr, {}};
    }
    void dropSlot(int s) {
        keptFaces -= static_cast<size_t>(kept[s].count);
        std::free(kept[s].faces);
        kept[s] = {nullptr, 0, nullptr, {}};
        index[s] = -1;
    }
    /// Takes over object i's faces (i above every index kept so far), keeping them if they fit
    /// the budget and releasing them otherwise.
    void keep(int i, ObjectFaces faces) {
        const size_t count = static_cast<size_t>(faces.count);
        if (count > budget) {
            std::free(faces.faces);
            return;
        }
        const int s = i % kRecentSlots;
        dropSlot(s);
        for (; oldest < i && keptFaces + count > budget; ++oldest) {
            if (index[oldest % kRecentSlots] == oldest)
                dropSlot(oldest % kRecentSlots);
        }
        index[s] = i;
        kept[s] = faces;
        keptFaces += count;
    }
    ~RecentFaces() {
        for (int s = 0; index != nullptr && s < kRecentSlots; ++s)
            std::free(kept[s].faces);
        std::free(index);
        std::free(kept);
    }
};

// readFaces for addCutLines: {null, 0} when obj has no lines to add to (its faces are not needed
// then) or an allocation fails (ok false).
ObjectFaces readOwnFaces(const _s_hd_prof_* obj, bool needed, bool& ok) {
    ok = true;
    if (obj != nullptr && obj->prosect != nullptr && needed)
        return readFaces(obj, ok);
    return {nullptr, 0, nullptr, {}};
}

}  // namespace

void kestFaceIntersect(_s_hd_prof_* obj, _s_hd_prof_** objs, int& count, int max) {
    if (objs == nullptr || count < 0 || count > max || count == INT_MAX)
        return;
    objs[count] = obj;
    ++count;
    const int registered = count;
    bool ok = true;
    const ObjectFaces own = readOwnFaces(obj, obj != nullptr && obj->proline != nullptr, ok);
    if (!ok)
        return;
    addCutLines(obj, own, [&](auto&& visit) {
        for (int k = 0; k < registered && visit(objs[k], ObjectFaces{nullptr, 0, nullptr, {}});
             ++k) {
        }
    });
    std::free(own.faces);
}

void kestFaceIntersectAll(_s_hd_prof_** objs, int n) {
    if (objs == nullptr || n <= 0)
        return;
    BoxIndex index;
    RecentFaces recent;
    int* near = static_cast<int*>(std::malloc(static_cast<size_t>(n) * sizeof(int)));
    if (near == nullptr || !index.build(objs, n) || !recent.init(objs, n)) {
        // Without the index the objects are registered one by one, with the same result.
        std::free(near);
        int count = 0;
        for (int i = 0; i < n; ++i)
            kestFaceIntersect(objs[i], objs, count, n - 1);
        return;
    }
    for (int i = 0; i < n; ++i) {
        if (objs[i] == nullptr)
            continue;
        // Object i's faces are read even when it has no lines to add to: the objects after it
        // meet them.
        bool ok = true;
        const ObjectFaces own = readOwnFaces(objs[i], true, ok);
        if (!ok)
            continue;  // kestFaceIntersect adds nothing to it either
        // Object i meets the objects before it and itself, in array order: the objects of the
        // registry when it is registered. Those the index leaves out have boxes that do not
        // touch object i's on X and Y, so addCutLines would pass them over.
        const int found = index.near(objs[i]->box, i + 1, near);
        addCutLines(objs[i], own, [&](auto&& visit) {
            for (int k = 0; k < found && visit(objs[near[k]], recent.find(near[k])); ++k) {
            }
        });
        recent.keep(i, own);
    }
    std::free(near);
}

}  // namespace geolib
