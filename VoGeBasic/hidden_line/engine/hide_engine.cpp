// The hide pass as the library runs it: the same steps as the reference pass, with every face
// read once per call instead of once per line, and pairs of a line and a face that provably
// yield no hidden piece skipped before the face test.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "hd_engine.h"
#include "hidden_line/engine/box_index.h"
#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/engine/hd_pass.h"

namespace geolib {

struct BehindMemo::Entry {
    std::uint64_t x, y, z;  ///< the line end's coordinates, bit for bit
    size_t face;
    unsigned generation;  ///< 0: empty; an entry of an older generation is forgotten
    bool inside;
};

namespace {

// The memo's first table, and the load (one slot in two) at which it doubles.
constexpr size_t kMemoFirstCapacity = 1024;

std::uint64_t bitsOf(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

size_t memoSlot(size_t face, std::uint64_t x, std::uint64_t y, std::uint64_t z, size_t mask) {
    std::uint64_t h = x * 0x9E3779B97F4A7C15ULL;
    h ^= (y + (h << 6) + (h >> 2)) * 0xC2B2AE3D27D4EB4FULL;
    h ^= (z + (h << 6) + (h >> 2)) * 0x165667B19E3779F9ULL;
    h ^= static_cast<std::uint64_t>(face) * 0x27D4EB2F165667C5ULL;
    h ^= h >> 31;
    return static_cast<size_t>(h) & mask;
}

}  // namespace

BehindMemo::~BehindMemo() {
    std::free(slots_);
}

void BehindMemo::forget() {
    used_ = 0;
    if (++generation_ != 0)
        return;
    // After a wrap of the counter every slot is emptied, so no old entry can come back.
    for (size_t k = 0; k < capacity_; ++k)
        slots_[k].generation = 0;
    generation_ = 1;
}

int BehindMemo::find(size_t face, _s_hd_point_ e) const {
    if (capacity_ == 0)
        return -1;
    const std::uint64_t x = bitsOf(e.x);
    const std::uint64_t y = bitsOf(e.y);
    const std::uint64_t z = bitsOf(e.z);
    const size_t mask = capacity_ - 1;
    for (size_t k = memoSlot(face, x, y, z, mask);; k = (k + 1) & mask) {
        const Entry& s = slots_[k];
        if (s.generation != generation_)
            return -1;
        if (s.face == face && s.x == x && s.y == y && s.z == z)
            return s.inside ? 1 : 0;
    }
}

void BehindMemo::remember(size_t face, _s_hd_point_ e, bool inside) {
    if (failed_ || ((used_ + 1) * 2 > capacity_ && !grow()))
        return;
    const std::uint64_t x = bitsOf(e.x);
    const std::uint64_t y = bitsOf(e.y);
    const std::uint64_t z = bitsOf(e.z);
    const size_t mask = capacity_ - 1;
    size_t k = memoSlot(face, x, y, z, mask);
    while (slots_[k].generation == generation_)
        k = (k + 1) & mask;
    slots_[k] = {x, y, z, face, generation_, inside};
    ++used_;
}

size_t BehindMemo::bytes() const {
    return capacity_ * sizeof(Entry);
}

bool BehindMemo::grow() {
    const size_t capacity = capacity_ == 0 ? kMemoFirstCapacity : 2 * capacity_;
    if (capacity > SIZE_MAX / 2 / sizeof(Entry)) {
        failed_ = true;
        return false;
    }
    auto* slots = static_cast<Entry*>(std::malloc(capacity * sizeof(Entry)));
    if (slots == nullptr) {
        failed_ = true;
        return false;
    }
    for (size_t k = 0; k < capacity; ++k)
        slots[k].generation = 0;
    const size_t mask = capacity - 1;
    for (size_t k = 0; k < capacity_; ++k) {
        const Entry& s = slots_[k];
        if (s.generation != generation_)
            continue;
        size_t at = memoSlot(s.face, s.x, s.y, s.z, mask);
        while (slots[at].generation != 0)
            at = (at + 1) & mask;
        slots[at] = s;
    }
    std::free(slots_);
    slots_ = slots;
    capacity_ = capacity;
    return true;
}

namespace {

bool isBoundedPoint(_s_hd_point_ p) {
    return std::fabs(p.x) <= hd::kCullCoordLimit && std::fabs(p.y) <= hd::kCullCoordLimit &&
           std::fabs(p.z) <= hd::kCullCoordLimit;
}

// A face read once: the face and what its outline and face tests ask of it, the part of it that
// only the faces left after the culls read. What the culls read is kept apart (FaceCull).
struct CachedFace {
    HDFace face;
    _s_hd_point_ area;  ///< faceAreaNormal(face), made with the outline
    double
        flatLength[kMaxFaceVertices];  ///< each edge's run length in the drawing plane (flatRunOf)
    double outlineMargin;
    /// Per edge, the side of the edge's drawing-plane normal that the whole face lies on, and
    /// the margin for the inside test, as outlineOf gives them (an edge of side 0
    /// faceOutlineApartFromLine cannot use). The sides are read only for a prunable face, whose
    /// bounded coordinates give no NaN.
    signed char edgeSide[kMaxFaceVertices];
};

// An edge of a face's outline as faceOutlineApartFromLine asks it: the edge's normal in the
// drawing plane at the edge's length, pointing away from the face (for the edge a -> b,
// -(b.y - a.y), b.x - a.x where the face lies on its negative side, negated where it lies on its
// positive side), the normal's offset at the drawing plane's origin (the offset of (x, y) along
// it, from the edge's start, is x nx + y ny - origin) and the edge's flatLength.
struct ApartEdge {
    double nx, ny, origin, length;
};

// What the culls ask of a face, worked out once, apart from the face itself: a line that scans
// past a face reads this record alone, packed so that the depth cull reads one cache line, and the
// outline cull mostly that line and the next (its first edge). prunable is false when a vertex is
// not bounded (NaN included).
//
// The face is prepared in stages, each the first time a line asks for it (ready): read, what the
// depth culls ask (prepareFace); then its outline, for the outline cull (prepareOutline); then
// the face tests' data (prepareTests), kept beside it in the window. Each stage depends on the
// face alone, so it gives the same data to the bit whenever it is made (the outline cull
// reorders its edges later, which changes no answer), and nothing reads a stage's data before it
// is made: preparing later changes no result, and spares the faces that no line comes near
// enough to ask. The face tests' data (its edges' reach, length and run) is kept for the objects
// whose lines come near (NearFaces): kept for every face of a plant, it would take more room than
// the plant itself.
struct alignas(64) FaceCull {
    /// The depth culls' data. plane0, gx, gy: the plane's depth over the drawing plane is
    /// plane0 + gx x + gy y (plane0 = v[0].z - gx v[0].x - gy v[0].y), NaN unless the face is
    /// prunable and flat (gx and gy: where the face is seen edge-on or has no plane);
    /// lineInFrontOfFace's margin is frontMargin plus frontPerLength times the line's length.
    /// zBack: the nearest depth through which the face can hide (frontDepth) less kCullMarginRel
    /// times size (faceBehindLine), NaN for a face that is not prunable.
    double plane0, gx, gy, frontMargin, frontPerLength;
    double size;  ///< faceSize(face)
    double zBack;
    bool prunable;
    bool flat;  ///< a triangle, or a quadrilateral in the plane of its first three vertices
    /// The stages prepared: kRead (the depth culls' data), kOutline, kTests.
    unsigned char ready;
    /// The outline's edges of a side other than 0 (CachedFace::edgeSide), apartEdges of them, for
    /// faceOutlineApartFromLine (which reorders them).
    unsigned char apartEdges;
    LineRange extents;  ///< the face's X and Y extents
    ApartEdge apart[kMaxFaceVertices];
    CachedFace* face;
    FacePrep* prep;  ///< the face tests' data, kept beside the face in the window
    size_t id;       ///< the face's name for the memo (FaceWindow)
};
// The cache lines the culls read, as laid out above.
static_assert(offsetof(FaceCull, apartEdges) < 64 && offsetof(FaceCull, extents) == 64 &&
                  offsetof(FaceCull, apart) + sizeof(ApartEdge) <= 128,
              "a cull's data within its cache lines");
static_assert(sizeof(FaceCull) == 256, "four cache lines a face");

// FaceCull::ready.
constexpr unsigned char kRead = 0;
constexpr unsigned char kOutline = 1;
constexpr unsigned char kTests = 2;

// The smallest depth of the face's plane over the face's XY extents widened by kBehindExtentTol
// (the least of its four corners), or of a vertex off that plane: every point through which the
// face hides a piece of a line lies no nearer, to within rounding (see faceBehindLine). +inf for
// a face seen edge-on, which hides nothing; NaN when the plane has no normal.
double frontDepth(const HDFace& f) {
    const _s_hd_point_ n = f.normal;
    if (std::fabs(n.z) < hd::kEdgeOnNormalZ)
        return std::numeric_limits<double>::infinity();
    const double gx = -n.x / n.z;
    const double gy = -n.y / n.z;
    const double w = hd::kBehindExtentTol;
    const double x0 = f.xmin - w - f.v[0].x;
    const double x1 = f.xmax + w - f.v[0].x;
    const double y0 = f.ymin - w - f.v[0].y;
    const double y1 = f.ymax + w - f.v[0].y;
    const double plane = f.v[0].z + minOf(gx * x0, gx * x1) + minOf(gy * y0, gy * y1);
    return plane < f.zmin ? plane : f.zmin;  // NaN stays NaN
}

// The first stage: what the depth culls and the spread cull ask of the face.
void prepareFace(const HDFace& f, FaceCull& c) {
    c.ready = kRead;
    c.prunable = true;
    for (int k = 0; k < f.count; ++k)
        c.prunable = c.prunable && isBoundedPoint(f.v[k]);
    c.extents = {f.xmin, f.xmax, f.ymin, f.ymax};
    c.size = faceSize(f);
    c.flat = isFlatFace(f, c.size);
    const _s_hd_point_ n = f.normal;
    const bool sloped = std::fabs(n.z) >= hd::kEdgeOnNormalZ;  // false for NaN
    const double nan = std::numeric_limits<double>::quiet_NaN();
    c.gx = sloped ? -n.x / n.z : nan;
    c.gy = sloped ? -n.y / n.z : nan;
    // 1 plus the plane's slope over the drawing plane.
    const double slopeFactor =
        sloped ? 1.0 + std::sqrt(n.x * n.x + n.y * n.y) / std::fabs(n.z) : nan;
    c.zBack = c.prunable ? frontDepth(f) - hd::kCullMarginRel * c.size : nan;
    c.plane0 = c.prunable && c.flat ? f.v[0].z - c.gx * f.v[0].x - c.gy * f.v[0].y : nan;
    c.frontMargin = hd::kLevelDepthTol + hd::kCullFlatRel * c.size +
                    (hd::kCullMarginAbs + hd::kCullMarginRel * c.size) * slopeFactor;
    c.frontPerLength = hd::kCullMarginRel * slopeFactor;
}

// The second stage: the outline, for faceOutlineApartFromLine and the face tests.
void prepareOutline(FaceCull& r) {
    CachedFace& c = *r.face;
    const HDFace& f = c.face;
    c.area = faceAreaNormal(f);
    for (int k = 0; k < f.count; ++k)
        c.flatLength[k] = flatRunOf(f.v[k], f.v[nextVertex(k, f.count)]).len;
    c.outlineMargin = outlineOf(f, r.size, c.flatLength, c.edgeSide);
    r.apartEdges = 0;
    for (int k = 0; k < f.count; ++k) {
        if (c.edgeSide[k] == 0)
            continue;
        const _s_hd_point_ a = f.v[k];
        const _s_hd_point_ b = f.v[nextVertex(k, f.count)];
        const double nx = -(b.y - a.y);
        const double ny = b.x - a.x;
        ApartEdge& e = r.apart[r.apartEdges++];
        e.nx = c.edgeSide[k] > 0 ? -nx : nx;
        e.ny = c.edgeSide[k] > 0 ? -ny : ny;
        e.origin = a.x * e.nx + a.y * e.ny;
        e.length = c.flatLength[k];
    }
    r.ready = kOutline;
}

// The line p -> q (near end first) as the pruning test sees it. prunable is false for a line
// seen end-on (hidden whole by a face anywhere over its range, with no test of where) and for
// one with a coordinate that is not bounded.
struct LinePrune {
    bool prunable;
    double px, py;  ///< the near end in the drawing plane
    double qx, qy;  ///< the far end in the drawing plane
    double pz, qz;  ///< the ends' depths
    double nx, ny;  ///< unit normal of the projected line; zero when it projects to a point
    double length;  ///< 3-D length
    double zFar;    ///< the far end's depth
    /// The depth a face must lie behind to be behind the line (faceBehindLine): zFar plus
    /// kLevelDepthTol, kCullMarginAbs and kCullMarginRel times length; +inf for a line that is
    /// not prunable.
    double zLimit;
    double nOrigin;  ///< the near end's offset along the normal: px nx + py ny
};

LinePrune prepareLine(const HideLine& line) {
    const _s_hd_point_ p = line.p;
    const _s_hd_point_ q = line.q;
    LinePrune l{};
    l.prunable = isBoundedPoint(p) && isBoundedPoint(q) && !line.endOn;
    l.zLimit = std::numeric_limits<double>::infinity();
    if (!l.prunable)
        return l;
    l.px = p.x;
    l.py = p.y;
    l.qx = q.x;
    l.qy = q.y;
    l.pz = p.z;
    l.qz = q.z;
    const double dx = q.x - p.x;
    const double dy = q.y - p.y;
    const double dz = q.z - p.z;
    const double flat = std::sqrt(dx * dx + dy * dy);
    if (flat > 0.0) {
        l.nx = -dy / flat;
        l.ny = dx / flat;
    }
    l.length = std::sqrt(dx * dx + dy * dy + dz * dz);
    l.zFar = maxOf(p.z, q.z);
    l.zLimit = l.zFar + hd::kLevelDepthTol + hd::kCullMarginAbs + hd::kCullMarginRel * l.length;
    l.nOrigin = l.px * l.nx + l.py * l.ny;
    return l;
}

// True when the face provably hides no piece of the line: the projected segment stays farther
// than the margin from the face's XY extents across the line (the box's spread along the
// line's normal misses it). See kCullMarginAbs for why no hidden piece can come from such a
// face. Along X and Y there is nothing to ask: the scan tests only faces whose extents meet the
// line's range, unwidened.
bool faceTooFarFromLine(const FaceCull& c, const LinePrune& l) {
    if (!c.prunable || !l.prunable)
        return false;
    const LineRange& e = c.extents;
    const double m = hd::kCullMarginAbs + hd::kCullMarginRel * (l.length + c.size);
    // The box's centre and half sizes.
    const double cx = 0.5 * (e.xmin + e.xmax);
    const double cy = 0.5 * (e.ymin + e.ymax);
    const double hx = 0.5 * (e.xmax - e.xmin);
    const double hy = 0.5 * (e.ymax - e.ymin);
    const double offset = (cx - l.px) * l.nx + (cy - l.py) * l.ny;
    const double spread = hx * std::fabs(l.nx) + hy * std::fabs(l.ny);
    return std::fabs(offset) > spread + m;
}

// True when the projection of a flat face lies farther than the margin from the projected
// segment along an axis that separates them: the line's normal (the face's vertices all beyond
// the margin on one side) or the normal of an edge that the face lies wholly inside of (both
// ends of the segment beyond the margin outside it). The points through which the face can hide
// (see faceTooFarFromLine) lie in the face's plane within its outline or within what its
// vertex and on-edge tests accept of it (at most 1e-4 from a vertex, 2.5e-4 times an edge's
// length plus 1.2e-4 times its root from an edge), and projecting onto the drawing plane brings
// no point nearer to the outline; a quadrilateral's fourth vertex within kCullFlatRel of the
// plane moves its angle sum, at the margin's distance, by far less than its tolerance. The
// margin is faceTooFarFromLine's, which covers all of that.
bool faceOutlineApartFromLine(FaceCull& c, const LinePrune& l) {
    if (!c.prunable || !l.prunable || !c.flat)
        return false;
    const double m = hd::kCullMarginAbs + hd::kCullMarginRel * (l.length + c.size);
    // The offsets are taken from the drawing plane's origin (ApartEdge::origin, nOrigin), which at
    // coordinates within kCullCoordLimit moves them by rounding below 1e-6 times the normal's
    // length: the margin (times that length) has far more room to spare. The edges are asked
    // before the line's normal, as on a plant they settle more for what they cost; the answer,
    // true where either separates, is the same in either order.
    //
    // Only an edge the face lies wholly inside of separates (worked out once a face), when both
    // ends of the segment lie beyond the margin on its far side from the face. Its normal points
    // away from the face: turned there by negating the normal and so its origin's offset, which
    // negates each product and sum to the bit, the offsets along it are those along the normal
    // turned the other way negated, to the bit, and the comparisons with the margin the same.
    // The normal is left at the edge's length, and the margin with it, which spares two
    // divisions a face.
    //
    // An edge that separates is moved to the front, where it is asked first of the next line:
    // the lines of one object, which come in turn, mostly lie beyond the same edge of a face.
    // Which edge answers true changes nothing.
    for (int j = 0; j < c.apartEdges; ++j) {
        const ApartEdge& e = c.apart[j];
        const double mLen = m * e.length;
        if (l.px * e.nx + l.py * e.ny - e.origin > mLen &&
            l.qx * e.nx + l.qy * e.ny - e.origin > mLen) {
            if (j != 0)
                std::swap(c.apart[0], c.apart[j]);
            return true;
        }
    }
    // Every vertex beyond the margin on the side of the first (m is positive): the first vertex
    // that is not ends the look.
    const HDFace& f = c.face->face;
    auto offset = [&](int k) { return f.v[k].x * l.nx + f.v[k].y * l.ny - l.nOrigin; };
    const double o0 = offset(0);
    if (o0 > m || o0 < -m) {
        int k = 1;
        if (o0 > m) {
            while (k < f.count && offset(k) > m)
                ++k;
        } else {
            while (k < f.count && offset(k) < -m)
                ++k;
        }
        if (k == f.count)
            return true;
    }
    return false;
}

// True when the face's projection provably lies apart from the line's: for a flat face by its
// outline (faceOutlineApartFromLine), whose first step, every vertex beyond the margin on one
// side of the line, passes over every face the spread of its XY box would (the vertices lie in
// the box), and for any other face by that spread (faceTooFarFromLine).
bool faceApartFromLine(FaceCull& c, const LinePrune& l) {
    return c.flat ? faceOutlineApartFromLine(c, l) : faceTooFarFromLine(c, l);
}

// True when a flat face's plane lies behind both ends of the line, with the margin to spare:
// then no point of the line is behind the face or level with it. A face hides only through a
// point of the line (or one isPointOnSeg lets stray from it by d, at most the cull margin) that
// lies behind its plane, or level within kLevelDepthTol: a line end behind the plane's point
// straight in front of it, a piercing point on the plane, or a crossing where the edge, in the
// plane to within kCullFlatRel of the face's size, is nearer. How far the plane lies behind a
// point changes linearly along the line, so it is least at an end; a stray of d changes it by at
// most d (1 + slope), the slope being that of the plane's depth over the drawing plane.
// Rounding at coordinates within kCullCoordLimit and slopes up to 1 / kEdgeOnNormalZ stays
// below 1e-3.
// The plane's depth is taken from the drawing plane's origin (plane0) and the margin's terms of
// the face alone are gathered (frontMargin, frontPerLength): the sums are the same but for
// rounding, which at coordinates within kCullCoordLimit stays below 1e-5 times 1 plus the
// slope. The margin allows for a stray of the whole cull margin, while isPointOnSeg lets a point
// stray by 2.5e-4 times the length plus 1.2e-4 times its root, more than 0.049 less: 0.049 times
// 1 plus the slope is left to spare.
bool lineInFrontOfFace(const FaceCull& c, const LinePrune& l) {
    if (!l.prunable)
        return false;
    const double m = c.frontMargin + c.frontPerLength * l.length;
    auto behindBy = [&](double x, double y, double z) {
        return c.plane0 + c.gx * x + c.gy * y - z;
    };
    // False for a face that is not prunable or flat (NaN plane0), and for one seen edge-on or
    // without a plane: its NaN slope fails the comparisons. The far end is asked first: it is
    // the one more often not behind.
    return behindBy(l.qx, l.qy, l.qz) > m && behindBy(l.px, l.py, l.pz) > m;
}

// True when the face lies wholly behind the line: it provably hides no piece of it. A face
// hides through a point of the line that is behind, or level with, a point of the face: a line
// end behind the point of the face's plane straight in front of it (that point within the
// face's XY extents widened by kBehindExtentTol), a piercing point on the plane within
// kPierceExtentTol of the extents, or a crossing where the face's edge is nearer than the line
// or level with it (within kLevelDepthTol). Each of these points of the face is no nearer than
// zNear, and each point of the line no deeper than its far end plus what isPointOnSeg lets a
// point stray from it (2.5e-4 times its length, 1.2e-4 times the root of it); rounding of the
// depths, at coordinates within kCullCoordLimit and plane slopes below 1 / kEdgeOnNormalZ, stays
// below 1e-3. kCullMarginAbs and kCullMarginRel cover all of it.
// The test is zNear > zFar + kLevelDepthTol + kCullMarginAbs + kCullMarginRel (length + size)
// with the face's terms gathered in zBack and the line's in zLimit (zNear being frontDepth's).
// Where the two sides come within the margin's room of each other both stay within a few times
// kCullCoordLimit, and gathering them moves each by rounding below 1e-5: the room left beside the
// 1e-3 above covers it. False for a face or line that is not prunable (NaN zBack, infinite
// zLimit).
bool faceBehindLine(double zBack, double zLimit) {
    return zBack > zLimit;
}

// Replaces room with room for most items, setting capacity, and keeps its first keep items (at
// most most; none by default); false, keeping the old room, if the new cannot be had.
template <class T>
bool renewRoom(T*& room, size_t& capacity, size_t most, size_t keep = 0) {
    if (most > SIZE_MAX / sizeof(T))
        return false;
    auto* fresh = static_cast<T*>(std::malloc(most * sizeof(T)));
    if (fresh == nullptr)
        return false;
    for (size_t k = 0; k < keep && k < most; ++k)
        fresh[k] = room[k];
    std::free(room);
    room = fresh;
    capacity = most;
    return true;
}

// The last stage: what the face tests ask of a cached face, its edges' data, its area normal and
// its outline data, the same as prepareFaceTests and outlineOf give. The stages before are made
// first where they were not.
void prepareTests(FaceCull& r) {
    if (r.ready < kOutline)
        prepareOutline(r);
    const CachedFace& c = *r.face;
    FacePrep& prep = *r.prep;
    prepareEdgeTests(c.face, prep, c.flatLength);
    prep.area = c.area;
    prep.outlineMargin = c.outlineMargin;
    for (int k = 0; k < c.face.count; ++k)
        prep.side[k] = c.edgeSide[k];
    r.ready = kTests;
}

// The faces of the objects met lately, read and prepared once for the objects whose lines come
// near them. Object j's faces (those of three vertices or more, in list order) are kept in slot
// j mod the window's slots (slotsFor(n), widened where objects crowd) until another object takes
// the slot; in a generated plant nearly all the objects whose boxes touch lie within a few hundred
// places of each other, so few faces are read twice. Kept for every object at once, the faces
// took about as much room as the model, and fresh room costs the pass a page fault per page; the
// slots' room is reused from object to object. Each face keeps its place among all the scene's face
// records as its name (id), so a face read again has the same name. Reading a face again gives the
// same data to the bit (prepareFace depends on the face alone), so which faces are kept changes no
// result.
class FaceWindow {
public:
    /// The faces of one object, as faces() gives them: their cull records, each naming its face
    /// and the face's face tests' data.
    struct Span {
        FaceCull* begin;
        FaceCull* end;
    };

    FaceWindow() = default;
    ~FaceWindow() {
        for (size_t s = 0; slots_ != nullptr && s < slotCount_; ++s)
            std::free(slots_[s].room.block);
        std::free(slots_);
        std::free(first_);
        std::free(spill_.block);
        dropExtraRooms();
        std::free(extra_);
    }
    FaceWindow(const FaceWindow&) = delete;
    FaceWindow& operator=(const FaceWindow&) = delete;

    /// Counts the scene's face records and makes the slots; false if an allocation fails.
    bool init(_s_hd_prof_* const* objs, int n) {
        slotCount_ = slotsFor(n);
        slots_ = emptySlots(slotCount_);
        if (slots_ == nullptr)
            return false;
        first_ = static_cast<size_t*>(std::malloc((static_cast<size_t>(n) + 1) * sizeof(size_t)));
        if (first_ == nullptr)
            return false;
        size_t total = 0;
        for (int i = 0; i < n; ++i) {
            first_[i] = total;
            for (const _s_hd_prosect_* f = objs[i] != nullptr ? objs[i]->prosect : nullptr;
                 f != nullptr; f = f->next)
                ++total;
        }
        first_[n] = total;
        last_ = static_cast<size_t>(n);
        return true;
    }

    /// The face records of the objects of the table's first count entries: no more faces than
    /// this are in use for one object's lines.
    size_t recordsOf(const HideCandidate* table, int count) const {
        size_t most = 0;
        for (int c = 0; c < count; ++c)
            most += first_[table[c].index + 1] - first_[table[c].index];
        return most;
    }

    /// Starts the use of the window for the lines of another object: the faces handed out so
    /// far need not stay. Widens the window where the objects met so far crowd it, and makes the
    /// spill room one block as large as the last object needed (see spillRoom).
    void beginUse() {
        ++objectsMet_;
        crowdedObjects_ += spilled_ >= kCrowdedReads ? 1 : 0;
        if (slotCount_ < kMostSlots && objectsMet_ >= kCrowdedEvidence &&
            crowdedObjects_ * kCrowdedShare > objectsMet_)
            widen();
        if (extraCount_ > 0) {
            dropExtraRooms();
            // The object's faces overran the block, so it needed more than the block holds. For a
            // moment the old block and the new are both held; without the new one the extra
            // blocks are made again as needed.
            const size_t had = spill_.capacity;
            if (renew(spill_, spillNeed_)) {
                spillPeak_ = had + spillNeed_ > spillPeak_ ? had + spillNeed_ : spillPeak_;
                spillHeld_ = spill_.capacity;
            }
        }
        spilled_ = 0;
        spillUsed_ = 0;
        spillNeed_ = 0;
    }

    /// Object j's faces for the lines of object user, valid until beginUse is called again:
    /// from j's slot, or read into it; when the slot holds the faces of another object in use
    /// for the same user, read into the spill room. False if an allocation fails.
    bool faces(_s_hd_prof_* const* objs, int j, int user, Span& out) {
        Slot& slot = slots_[static_cast<size_t>(j) % slotCount_];
        if (slot.object == j) {
            slot.user = user;
            out = {slot.room.culls, slot.room.culls + slot.count};
            return true;
        }
        const size_t records = first_[j + 1] - first_[j];
        if (records == 0) {
            out = {nullptr, nullptr};
            return true;
        }
        const bool inSlot = slot.user != user;
        size_t at = 0;
        const Room* room = &slot.room;
        if (!inSlot) {
            ++spilled_;
            if (!spillRoom(records, room, at))
                return false;
        } else if (records > slot.room.capacity || slot.room.capacity > kSlotSlack * records) {
            // A slot keeps at most twice the room its faces take: what it gives back the
            // allocator hands to the other slots, so the window's room follows the faces kept.
            const size_t had = slot.room.capacity;
            // The slot keeps nothing until its room is renewed.
            slot.object = -1;
            if (!renew(slot.room, records))
                return false;
            kept_ = kept_ - had + records;
            peak_ = kept_ > peak_ ? kept_ : peak_;
        }
        const size_t count = read(objs[j]->prosect, first_[j], *room, at);
        if (inSlot) {
            slot.count = count;
            slot.object = j;
            slot.user = user;
        }
        out = {room->culls + at, room->culls + at + count};
        return true;
    }

    /// The room the window takes at its largest.
    size_t bytes() const {
        return (peak_ + spillPeak_) * kFaceBytes + (slotCount_ + 1 + extraPeak_) * kAlign +
               slotCount_ * sizeof(Slot) + extraPeak_ * sizeof(Room) + (last_ + 1) * sizeof(size_t);
    }

private:
    // Objects kept at most: in a generated plant of 10,000 primitives a pass then reads the
    // faces of 12,700 objects for its 10,000 (twice the slots read hardly fewer).
    static constexpr size_t kMostSlots = 512;
    // Objects kept at least, and the scene's objects a slot in a smaller scene. The slots of a
    // scene of a few thousand objects would hold a good part of it, and the first touch of their
    // room costs more than reading the faces again: in a generated plant of 1,000 primitives 512
    // slots took 18 MiB, twice the model, and 3,600 page faults a pass; 125 take 7.4 MiB and
    // under 1,000 faults, and read 44,000 faces for the scene's 30,000 where 512 read 42,000.
    // The pass takes 30% less time where a page fault costs 10 us, and about as much where the
    // allocator keeps its freed memory (with the objects in random order, 300,000 reads against
    // 160,000, and still 20% less). From 4,096 objects on the scene keeps the 512.
    static constexpr size_t kLeastSlots = 64;
    static constexpr size_t kObjectsPerSlot = 8;
    static size_t slotsFor(int n) {
        const size_t share = static_cast<size_t>(n) / kObjectsPerSlot;
        return share < kLeastSlots ? kLeastSlots : share > kMostSlots ? kMostSlots : share;
    }
    // Where objects crowd together, each object's candidates are most of the others, and a window
    // of fewer slots than they are reads them again for each object: 300 cones crowded in a box
    // of twice their length took the pass 60% longer with 64 slots than with 512. An object whose
    // candidates were read into the spill room kCrowdedReads times (two of them falling in one
    // slot) crowds the window; once more than one in kCrowdedShare of the objects met, after
    // kCrowdedEvidence of them, has, the window takes kMostSlots slots. Then those cones take the
    // pass 4% longer than 512 slots from the start (100 of them, 10%), and no generated plant, in
    // its order or in random order, widens it: 2 to 3% of its objects crowd it.
    static constexpr size_t kCrowdedReads = 8;
    static constexpr size_t kCrowdedEvidence = 8;
    static constexpr size_t kCrowdedShare = 8;

    // Takes kMostSlots slots, moving each object kept to its slot there (its faces are kept
    // where that slot is free, and released where another object took it first). If the slots
    // cannot be had the window stays as it is, which changes no result either.
    void widen() {
        Slot* wide = emptySlots(kMostSlots);
        if (wide == nullptr)
            return;
        for (size_t s = 0; s < slotCount_; ++s) {
            Slot& slot = slots_[s];
            Slot* to =
                slot.object >= 0 ? &wide[static_cast<size_t>(slot.object) % kMostSlots] : nullptr;
            if (to != nullptr && to->object < 0) {
                *to = slot;
            } else {
                kept_ -= slot.room.capacity;
                std::free(slot.room.block);
            }
        }
        std::free(slots_);
        slots_ = wide;
        slotCount_ = kMostSlots;
    }
    // The most room a slot keeps, as a multiple of what its faces take.
    static constexpr size_t kSlotSlack = 2;
    // The cull records' alignment, a cache line, and the room a face takes.
    static constexpr size_t kAlign = alignof(FaceCull);
    static constexpr size_t kFaceBytes = sizeof(FaceCull) + sizeof(CachedFace) + sizeof(FacePrep);
    static_assert(sizeof(FaceCull) % alignof(CachedFace) == 0 &&
                      sizeof(CachedFace) % alignof(FacePrep) == 0,
                  "each part of a room aligned after the one before");

    // Room for capacity faces in one block: their cull records (aligned to a cache line, packed
    // for the culls), then the faces, then their face tests' data, face k's at k in each.
    struct Room {
        void* block = nullptr;
        FaceCull* culls = nullptr;
        CachedFace* faces = nullptr;
        FacePrep* prep = nullptr;
        size_t capacity = 0;
    };

    // A slot's faces.
    struct Slot {
        Room room;
        size_t count;
        int object;  ///< the object whose faces are kept; -1: none
        int user;    ///< the object whose lines last used them; -1: none
    };

    // count slots keeping nothing, or null if they cannot be had.
    static Slot* emptySlots(size_t count) {
        auto* slots = static_cast<Slot*>(std::malloc(count * sizeof(Slot)));
        for (size_t s = 0; slots != nullptr && s < count; ++s)
            slots[s] = {{}, 0, -1, -1};
        return slots;
    }

    // Replaces the room (what it held is not kept) with room for most faces; false, keeping the
    // old room, if the new cannot be had.
    static bool renew(Room& room, size_t most) {
        if (most > (SIZE_MAX - kAlign) / kFaceBytes)
            return false;
        size_t space = most * kFaceBytes + kAlign;
        void* block = std::malloc(space);
        if (block == nullptr)
            return false;
        void* at = block;
        std::align(kAlign, most * kFaceBytes, at, space);  // room to spare for it: kAlign
        std::free(room.block);
        room.block = block;
        room.culls = static_cast<FaceCull*>(at);
        room.faces = reinterpret_cast<CachedFace*>(room.culls + most);
        room.prep = reinterpret_cast<FacePrep*>(room.faces + most);
        room.capacity = most;
        return true;
    }

    // Room for records faces read outside the slots for the current object's lines (room, from
    // at on): in the block being filled, or in a new one where it is full. The faces handed out
    // before stay where they are until beginUse, which then makes one block of all the room the
    // object needed: the spill room follows the most faces one object read outside the slots,
    // not all its candidates' faces, most of which its slots hold. False if a block cannot be had.
    bool spillRoom(size_t records, const Room*& room, size_t& at) {
        Room* block = extraCount_ > 0 ? &extra_[extraCount_ - 1] : &spill_;
        if (records > block->capacity - spillUsed_) {
            if (extraCount_ == extraCapacity_ &&
                !renewRoom(extra_, extraCapacity_, extraCapacity_ == 0 ? 4 : 2 * extraCapacity_,
                           extraCount_))
                return false;
            // At least as much again as the object took so far: its blocks stay few.
            Room fresh;
            if (!renew(fresh, records > spillNeed_ ? records : spillNeed_))
                return false;
            extra_[extraCount_++] = fresh;
            block = &extra_[extraCount_ - 1];
            spillUsed_ = 0;
            spillHeld_ += fresh.capacity;
            spillPeak_ = spillHeld_ > spillPeak_ ? spillHeld_ : spillPeak_;
            extraPeak_ = extraCount_ > extraPeak_ ? extraCount_ : extraPeak_;
        }
        room = block;
        at = spillUsed_;
        spillUsed_ += records;
        spillNeed_ += records;
        return true;
    }
    // Releases the extra spill blocks, keeping the array that lists them.
    void dropExtraRooms() {
        for (size_t k = 0; k < extraCount_; ++k) {
            spillHeld_ -= extra_[k].capacity;
            std::free(extra_[k].block);
        }
        extraCount_ = 0;
    }

    // Reads the faces of the list, named from id on, into room from at on, and makes their
    // first stage; returns how many.
    static size_t read(const _s_hd_prosect_* list, size_t id, const Room& room, size_t at) {
        const size_t first = at;
        for (const _s_hd_prosect_* f = list; f != nullptr; f = f->next, ++id) {
            CachedFace& face = room.faces[at];
            if (readFace(f->sect, face.face)) {
                FaceCull& c = room.culls[at];
                prepareFace(face.face, c);
                c.face = &face;
                c.prep = room.prep + at;
                c.id = id;
                ++at;
            }
        }
        return at - first;
    }

    Slot* slots_ = nullptr;
    size_t slotCount_ = 0;       ///< slotsFor the scene, or kMostSlots once widened
    size_t objectsMet_ = 0;      ///< objects whose lines used the window
    size_t crowdedObjects_ = 0;  ///< those of them whose candidates crowded it
    size_t spilled_ = 0;         ///< the current object's candidates read into the spill room
    size_t* first_ = nullptr;    ///< object i's face records are named first_[i] on
    size_t last_ = 0;
    Room spill_;             ///< the spill room's first block
    Room* extra_ = nullptr;  ///< blocks made for the current object where spill_ ran out
    size_t extraCount_ = 0;
    size_t extraCapacity_ = 0;
    size_t extraPeak_ = 0;  ///< the most extra blocks at once
    size_t spillUsed_ = 0;  ///< records used in the block being filled
    size_t spillNeed_ = 0;  ///< records the current object's lines read into the spill room
    size_t spillHeld_ = 0;  ///< the spill room's blocks, in faces
    size_t spillPeak_ = 0;  ///< the most the spill room's blocks held at once, in faces
    size_t kept_ = 0;       ///< the slots' room, in faces
    size_t peak_ = 0;       ///< the most room the slots took at once
};

// The faces that the lines of one object can be tested against, gathered once for all its lines:
// of each candidate object, in the candidate table's order and each object's face order, the
// faces whose XY extents meet the lines' common range (the least and greatest X and Y of their
// ends). A face whose extents miss that range misses every line's range, where the scan asks
// first, so the faces left out are exactly ones the scan would pass over, and the ones kept come
// in the same order. A line end with a NaN coordinate gives its line a range that meets no face,
// so the common range leaves NaN out (minOf and maxOf).
class NearFaces {
public:
    struct Entry {
        LineRange extents;  ///< the face's XY extents, read by every line after zBack
        double zBack;       ///< the face's FaceCull::zBack, read first
        FaceCull* face;
    };

    /// A candidate's gathered faces, and the first four numbers of its object's box (for
    /// boxOverlapsLineRange), kept here so that a line reads them packed.
    struct Group {
        Entry* begin;
        Entry* end;
        double box[4];
    };

    NearFaces() = default;
    ~NearFaces() {
        std::free(entries_);
        std::free(groups_);
    }
    NearFaces(const NearFaces&) = delete;
    NearFaces& operator=(const NearFaces&) = delete;

    /// Room for a table of up to n candidates.
    bool init(int n) {
        groups_ = static_cast<Group*>(std::malloc(static_cast<size_t>(n) * sizeof(Group)));
        groupCapacity_ = groups_ != nullptr ? static_cast<size_t>(n) : 0;
        return groups_ != nullptr;
    }

    /// Gathers the faces of the candidates (the table's first count entries) that meet the
    /// common range of object's lines. False if the room cannot grow.
    bool gather(FaceWindow& window, _s_hd_prof_* const* objs, int user, const HideCandidate* table,
                int count, const _s_hd_proline_* lines) {
        const double inf = std::numeric_limits<double>::infinity();
        LineRange all = {inf, -inf, inf, -inf};
        for (const _s_hd_proline_* l = lines; l != nullptr; l = l->next) {
            const LineRange r = lineRangeOf(l->start, l->end);
            all = {minOf(all.xmin, r.xmin), maxOf(all.xmax, r.xmax), minOf(all.ymin, r.ymin),
                   maxOf(all.ymax, r.ymax)};
        }
        const size_t most = window.recordsOf(table, count);
        if (most > capacity_ && !renewRoom(entries_, capacity_, most))
            return false;
        window.beginUse();
        Entry* at = entries_;
        for (int c = 0; c < count; ++c) {
            const double* box = objs[table[c].index]->box;
            Group& g = groups_[c];
            g = {at, at, {box[0], box[1], box[2], box[3]}};
            FaceWindow::Span faces;
            if (!window.faces(objs, table[c].index, user, faces))
                return false;
            for (FaceCull* f = faces.begin; f != faces.end; ++f) {
                const LineRange e = f->extents;
                if (e.xmax >= all.xmin && e.ymax >= all.ymin && e.xmin <= all.xmax &&
                    e.ymin <= all.ymax)
                    *at++ = {e, f->zBack, f};
            }
            g.end = at;
        }
        return true;
    }

    const Group& group(int c) const { return groups_[c]; }

    /// The room the lists take at their largest.
    size_t bytes() const { return capacity_ * sizeof(Entry) + groupCapacity_ * sizeof(Group); }

private:
    Entry* entries_ = nullptr;
    size_t capacity_ = 0;
    Group* groups_ = nullptr;  ///< candidate c's is groups_[c]
    size_t groupCapacity_ = 0;
};

// The first entry from e on whose face's XY extents meet the line's range (faceMeetsLineRange)
// and which faceBehindLine does not pass over (zLimit the line's), or end. The comparisons are
// those tests' own, read from the entry alone; the depth is asked first, as on a plant it passes
// over the most faces, and the order changes no answer.
NearFaces::Entry* nextNearLine(NearFaces::Entry* e, NearFaces::Entry* end, const LineRange& r,
                               double zLimit) {
    for (; e != end; ++e) {
        if (!faceBehindLine(e->zBack, zLimit) && e->extents.xmax >= r.xmin &&
            e->extents.ymax >= r.ymin && e->extents.xmin <= r.xmax && e->extents.ymin <= r.ymax)
            return e;
    }
    return end;
}

// True when the merge provably leaves the line p -> q (its ends within kCullCoordLimit, which
// is asked first: the first row is played only for such a line) hidden whole by the pieces
// appended so far, whatever faces are tested after them, after the merge's first row has been
// played over them (MergeScratch::playFirstRow): its first piece A is then the whole line, its ends
// p and q to the bit. A's reach is then the line's. Every piece's ends lie on the line by
// isPointOnSeg with that reach (they are p, q, or points hideLineByFace accepted with the line's
// reach, the same test; p and q themselves pass as ends, so the line's ends must be finite), so A's
// row drops every piece left, those appended now and any appended later, one by one, and A is the
// only piece left. Nothing of the line is visible then: the gaps getVisibleProline leaves before
// p and after q are empty, as finite ends are the same point as themselves by isSamePointFine,
// so the merge need not run.
//
// A face hiding the whole line, p -> q to the bit, settles nothing when it comes after the first
// piece: a piece before it that ends within isPointOnSeg's end distance of p (or q) but not at it
// to the bit takes that end in as its own (p lies on it) and keeps its end where it is, and
// getVisibleProline leaves the sliver from p to that end visible where it is not the same point
// by isSamePointFine (a face the line pierces a hundred-thousandth after p hides from there on).
// So a line is stopped only once its first piece is the whole line; the pieces before a later
// whole-line piece decide, and the faces that give them are not known without testing them.
bool hiddenWhole(MergeScratch& hidden, const HideLine& line) {
    return line.bounded && hidden.playFirstRow(line.p, line.q);
}

}  // namespace

_s_hd_proline_* kestHideObject(_s_hd_prof_** objs, int n) {
    return kestHideObjectMeasured(objs, n, nullptr);
}

_s_hd_proline_* kestHideObjectMeasured(_s_hd_prof_** objs, int n, HidePassStats* stats) {
    if (objs == nullptr || n <= 0)
        return nullptr;
    FaceWindow window;
    NearFaces nearFaces;
    if (!window.init(objs, n) || !nearFaces.init(n))
        return nullptr;
    // Candidates from the grid over the objects' boxes, given the same box test in the same
    // ascending order as the full scan: the grid yields every object whose box can touch. If the
    // grid cannot be built, the full scan serves.
    BoxIndex index;
    int* near = static_cast<int*>(std::malloc(static_cast<size_t>(n) * sizeof(int)));
    const bool indexed = near != nullptr && index.build(objs, n);
    // Kept for one object's lines at a time: they are what share ends.
    BehindMemo memo;
    // The hidden pieces of one line at a time, in room reused from line to line.
    MergeScratch hidden;
    bool gathered = true;
    _s_hd_proline_* result = runHidePass(
        objs, n,
        [&](int i, HideCandidate* table) {
            memo.forget();
            int count = 0;
            if (!indexed) {
                count = touchingObjects(objs, n, i, table);
            } else {
                const int found = index.near(objs[i]->box, n, near);
                for (int k = 0; k < found; ++k) {
                    const int j = near[k];
                    if (xyBoxesTouch(objs[j]->box, objs[i]->box))
                        table[count++] = {objs[j]->prosect, j};
                }
            }
            gathered = nearFaces.gather(window, objs, i, table, count, objs[i]->proline);
            return count;
        },
        [&](_s_hd_proline_* line, const HideCandidate*, int candidates, _s_hd_proline_*& visible) {
            if (!gathered)
                return false;
            if (stats != nullptr)
                ++stats->lines;
            _s_hd_point_ p = line->start;
            _s_hd_point_ q = line->end;
            orientNearFirst(p, q);
            const HideLine prepared = hideLineOf(p, q);
            const LinePrune prune = prepareLine(prepared);
            hidden.clearFor(p, q);
            // The line stops once the merge provably leaves it hidden whole (hiddenWhole).
            bool whole = false;
            for (int c = 0; c < candidates && !whole; ++c) {
                const NearFaces::Group& g = nearFaces.group(c);
                if (stats != nullptr)
                    ++stats->candidatesScanned;
                if (!boxOverlapsLineRange(g.box, prepared.range))
                    continue;
                NearFaces::Entry* const end = g.end;
                NearFaces::Entry* e = g.begin;
                if (stats != nullptr)
                    stats->facesScanned += end - e;
                for (;; ++e) {
                    // From the entry alone, what the reference asks first (appendHiddenPiece): a
                    // face whose XY extents miss the line's range gives no piece. The extents are
                    // the face's own, to the bit, so past this test the face test is called
                    // directly. With it the cheapest cull.
                    e = nextNearLine(e, end, prepared.range, prune.zLimit);
                    if (e == end)
                        break;
                    FaceCull* f = e->face;
                    // The culls in the order of what each passes over for its cost.
                    if (lineInFrontOfFace(*f, prune))
                        continue;
                    if (f->ready < kOutline)
                        prepareOutline(*f);
                    if (faceApartFromLine(*f, prune))
                        continue;
                    if (f->ready < kTests)
                        prepareTests(*f);
                    if (stats != nullptr)
                        ++stats->faceTests;
                    _s_hd_point_ from;
                    _s_hd_point_ to;
                    const bool hides =
                        hideLineByFace(prepared, f->face->face, from, to, {&memo, f->id, f->prep});
                    if ((hides && !hidden.append(from, to)) || memo.failed())
                        return false;
                    if (hides) {
                        if (stats != nullptr)
                            ++stats->hidingTests;
                        if (hiddenWhole(hidden, prepared)) {
                            // The faces after this one were counted as scanned.
                            if (stats != nullptr)
                                stats->facesScanned -= end - e - 1;
                            whole = true;
                            break;
                        }
                    }
                }
            }
            orientNearFirst(line->start, line->end);
            if (whole) {
                visible = nullptr;
                return true;
            }
            return getVisibleProline(hidden, line->start, line->end, visible);
        });
    std::free(near);
    if (stats != nullptr) {
        stats->workingBytes = window.bytes() + index.bytes() + memo.bytes() + hidden.bytes() +
                              nearFaces.bytes() +
                              static_cast<size_t>(n) * (sizeof(int) + sizeof(HideCandidate));
    }
    return result;
}

}  // namespace geolib
