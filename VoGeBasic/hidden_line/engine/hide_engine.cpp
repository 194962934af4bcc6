// The hide pass as the library runs it: the same steps as the reference pass, with every face
// read once per call instead of once per line, and pairs of a line and a face that provably
// yield no hidden piece skipped before the face test.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "hidden_line/engine/hd_engine_tolerances.h"

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

// A face read once, with its prepared test data and what the pruning test needs: its XY box
// as centre and half sizes and its size; prunable is false when a vertex is not bounded (NaN
// included).
struct CachedFace {
    HDFace face;
    FacePrep prep;
    bool prunable;
    double cx, cy, hx, hy, size;
};

void prepareFace(CachedFace& c) {
    const HDFace& f = c.face;
    prepareFaceTests(f, c.prep);
    c.prunable = true;
    for (int k = 0; k < f.count; ++k)
        c.prunable = c.prunable && isBoundedPoint(f.v[k]);
    c.cx = 0.5 * (f.xmin + f.xmax);
    c.cy = 0.5 * (f.ymin + f.ymax);
    c.hx = 0.5 * (f.xmax - f.xmin);
    c.hy = 0.5 * (f.ymax - f.ymin);
    c.size = (f.xmax - f.xmin) + (f.ymax - f.ymin) + (f.zmax - f.zmin);
}

// The line p -> q (near end first) as the pruning test sees it. prunable is false for a line
// seen end-on (hidden whole by a face anywhere over its range, with no test of where) and for
// one with a coordinate that is not bounded.
struct LinePrune {
    bool prunable;
    double xmin, xmax, ymin, ymax;
    double px, py;  ///< the near end in the drawing plane
    double nx, ny;  ///< unit normal of the projected line; zero when it projects to a point
    double length;  ///< 3-D length
};

LinePrune prepareLine(const HideLine& line) {
    const _s_hd_point_ p = line.p;
    const _s_hd_point_ q = line.q;
    LinePrune l{};
    l.prunable = isBoundedPoint(p) && isBoundedPoint(q) && !line.endOn;
    if (!l.prunable)
        return l;
    l.xmin = p.x < q.x ? p.x : q.x;
    l.xmax = p.x < q.x ? q.x : p.x;
    l.ymin = p.y < q.y ? p.y : q.y;
    l.ymax = p.y < q.y ? q.y : p.y;
    l.px = p.x;
    l.py = p.y;
    const double dx = q.x - p.x;
    const double dy = q.y - p.y;
    const double dz = q.z - p.z;
    const double flat = std::sqrt(dx * dx + dy * dy);
    if (flat > 0.0) {
        l.nx = -dy / flat;
        l.ny = dx / flat;
    }
    l.length = std::sqrt(dx * dx + dy * dy + dz * dz);
    return l;
}

// True when the face provably hides no piece of the line: the projected segment stays farther
// than the margin from the face's XY extents, either along X or Y (the segment's range misses
// the widened box) or across the line (the box's spread along the normal misses it). See
// kCullMarginAbs for why no hidden piece can come from such a face.
bool faceTooFarFromLine(const CachedFace& c, const LinePrune& l) {
    if (!c.prunable || !l.prunable)
        return false;
    const HDFace& f = c.face;
    const double m = hd::kCullMarginAbs + hd::kCullMarginRel * (l.length + c.size);
    if (f.xmin - m > l.xmax || f.xmax + m < l.xmin || f.ymin - m > l.ymax || f.ymax + m < l.ymin)
        return true;
    const double offset = (c.cx - l.px) * l.nx + (c.cy - l.py) * l.ny;
    const double spread = c.hx * std::fabs(l.nx) + c.hy * std::fabs(l.ny);
    return std::fabs(offset) > spread + m;
}

// The faces of all objects, read once: object i's faces are faces[first[i]] up to
// faces[first[i + 1]], in list order (faces of fewer than three vertices left out).
class FaceCache {
public:
    FaceCache() = default;
    ~FaceCache() {
        std::free(faces_);
        std::free(first_);
    }
    FaceCache(const FaceCache&) = delete;
    FaceCache& operator=(const FaceCache&) = delete;

    bool build(_s_hd_prof_* const* objs, int n) {
        size_t total = 0;
        for (int i = 0; i < n; ++i) {
            if (objs[i] == nullptr)
                continue;
            for (const _s_hd_prosect_* f = objs[i]->prosect; f != nullptr; f = f->next)
                ++total;
        }
        first_ = static_cast<size_t*>(std::malloc((static_cast<size_t>(n) + 1) * sizeof(size_t)));
        faces_ =
            static_cast<CachedFace*>(std::malloc((total > 0 ? total : 1) * sizeof(CachedFace)));
        if (first_ == nullptr || faces_ == nullptr)
            return false;
        size_t at = 0;
        for (int i = 0; i < n; ++i) {
            first_[i] = at;
            if (objs[i] == nullptr)
                continue;
            for (const _s_hd_prosect_* f = objs[i]->prosect; f != nullptr; f = f->next) {
                if (readFace(f->sect, faces_[at].face)) {
                    prepareFace(faces_[at]);
                    ++at;
                }
            }
        }
        first_[n] = at;
        return true;
    }

    const CachedFace* begin(int i) const { return faces_ + first_[i]; }
    size_t indexOf(const CachedFace* f) const { return static_cast<size_t>(f - faces_); }
    const CachedFace* end(int i) const { return faces_ + first_[i + 1]; }

private:
    CachedFace* faces_ = nullptr;
    size_t* first_ = nullptr;
};

}  // namespace

_s_hd_proline_* kestHideObject(_s_hd_prof_** objs, int n) {
    if (objs == nullptr || n <= 0)
        return nullptr;
    FaceCache cache;
    if (!cache.build(objs, n))
        return nullptr;
    // Kept for one object's lines at a time: they are what share ends.
    BehindMemo memo;
    MergeScratch scratch;
    return runHidePass(
        objs, n,
        [&](int i, HideCandidate* table) {
            memo.forget();
            return touchingObjects(objs, n, i, table);
        },
        [&](const _s_hd_proline_* line, const HideCandidate* table, int candidates,
            ProlineChain& hidden) {
            const LineRange range = lineRangeOf(line->start, line->end);
            _s_hd_point_ p = line->start;
            _s_hd_point_ q = line->end;
            orientNearFirst(p, q);
            const HideLine prepared = hideLineOf(p, q);
            const LinePrune prune = prepareLine(prepared);
            for (int c = 0; c < candidates; ++c) {
                const int j = table[c].index;
                if (!boxOverlapsLineRange(objs[j]->box, range))
                    continue;
                for (const CachedFace* f = cache.begin(j); f != cache.end(j); ++f) {
                    if (faceTooFarFromLine(*f, prune))
                        continue;
                    if (!appendHiddenPiece(prepared, f->face, hidden,
                                           {&memo, cache.indexOf(f), &f->prep}) ||
                        memo.failed())
                        return false;
                }
            }
            return true;
        },
        &scratch);
}

}  // namespace geolib
