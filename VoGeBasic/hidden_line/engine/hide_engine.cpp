// The hide pass as the library runs it: the same steps as the reference pass, with every face
// read once per call instead of once per line, and pairs of a line and a face that provably
// yield no hidden piece skipped before the face test.
#include <cmath>
#include <cstdlib>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "hidden_line/engine/hd_engine_tolerances.h"

namespace geolib {

namespace {

bool isBoundedPoint(_s_hd_point_ p) {
    return std::fabs(p.x) <= hd::kCullCoordLimit && std::fabs(p.y) <= hd::kCullCoordLimit &&
           std::fabs(p.z) <= hd::kCullCoordLimit;
}

// A face read once, with what the pruning test needs: its XY box as centre and half sizes
// and its size; prunable is false when a vertex is not bounded (NaN included).
struct CachedFace {
    HDFace face;
    bool prunable;
    double cx, cy, hx, hy, size;
};

void prepareFace(CachedFace& c) {
    const HDFace& f = c.face;
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

LinePrune prepareLine(_s_hd_point_ p, _s_hd_point_ q) {
    LinePrune l{};
    l.prunable = isBoundedPoint(p) && isBoundedPoint(q) && !isSeenEndOn(p, q);
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
    return runHidePass(
        objs, n, [&](int i, HideCandidate* table) { return touchingObjects(objs, n, i, table); },
        [&](const _s_hd_proline_* line, const HideCandidate* table, int candidates,
            ProlineChain& hidden) {
            const LineRange range = lineRangeOf(line->start, line->end);
            _s_hd_point_ p = line->start;
            _s_hd_point_ q = line->end;
            orientNearFirst(p, q);
            const LinePrune prune = prepareLine(p, q);
            for (int c = 0; c < candidates; ++c) {
                const int j = table[c].index;
                if (!boxOverlapsLineRange(objs[j]->box, range))
                    continue;
                for (const CachedFace* f = cache.begin(j); f != cache.end(j); ++f) {
                    if (faceTooFarFromLine(*f, prune))
                        continue;
                    if (!appendHiddenPiece(p, q, f->face, hidden))
                        return false;
                }
            }
            return true;
        },
        MergeSchedule::SkipSettled);
}

}  // namespace geolib
