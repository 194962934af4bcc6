// The hide pass as the library runs it: the same steps as the reference pass, with every face
// read once per call instead of once per line.
#include <cstdlib>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_internal.h"

namespace geolib {

namespace {

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
        faces_ = static_cast<HDFace*>(std::malloc((total > 0 ? total : 1) * sizeof(HDFace)));
        if (first_ == nullptr || faces_ == nullptr)
            return false;
        size_t at = 0;
        for (int i = 0; i < n; ++i) {
            first_[i] = at;
            if (objs[i] == nullptr)
                continue;
            for (const _s_hd_prosect_* f = objs[i]->prosect; f != nullptr; f = f->next) {
                if (readFace(f->sect, faces_[at]))
                    ++at;
            }
        }
        first_[n] = at;
        return true;
    }

    const HDFace* begin(int i) const { return faces_ + first_[i]; }
    const HDFace* end(int i) const { return faces_ + first_[i + 1]; }

private:
    HDFace* faces_ = nullptr;
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
            for (int c = 0; c < candidates; ++c) {
                const int j = table[c].index;
                if (!boxOverlapsLineRange(objs[j]->box, range))
                    continue;
                for (const HDFace* f = cache.begin(j); f != cache.end(j); ++f) {
                    if (!appendHiddenPiece(p, q, *f, hidden))
                        return false;
                }
            }
            return true;
        });
}

}  // namespace geolib
