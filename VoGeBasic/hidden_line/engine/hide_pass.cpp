// The hide pass line by line: a line against the faces of one object, the visible complement of
// a line's hidden pieces, and the whole pass as a plain reference.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "hidden_line/engine/hd_engine_internal.h"

namespace geolib {

namespace {

// Folds B into A when the two overlap or touch: B starting on A extends A to B's end, B ending
// on A extends A back to B's start; B inside A adds nothing, A inside B becomes B. Returns true
// when B is to be dropped.
bool absorbPiece(_s_hd_proline_* a, const _s_hd_proline_* b) {
    const bool startOn = isPointOnSeg(b->start, a->start, a->end) != 0;
    const bool endOn = isPointOnSeg(b->end, a->start, a->end) != 0;
    if (startOn && !endOn) {
        a->end = b->end;
        return true;
    }
    if (!startOn && endOn) {
        a->start = b->start;
        return true;
    }
    if (startOn && endOn)
        return true;
    if (isPointOnSeg(a->start, b->start, b->end) != 0 &&
        isPointOnSeg(a->end, b->start, b->end) != 0) {
        a->start = b->start;
        a->end = b->end;
        return true;
    }
    return false;
}

// Merges overlapping and touching pieces: pairs are tried in list order (A before B) and the
// sweep starts again from the head after every merge, until a sweep changes nothing.
void mergePieces(_s_hd_proline_* head) {
    bool changed = true;
    while (changed) {
        changed = false;
        for (_s_hd_proline_* a = head; a != nullptr && !changed; a = a->next) {
            for (_s_hd_proline_* prev = a; prev->next != nullptr; prev = prev->next) {
                _s_hd_proline_* b = prev->next;
                if (absorbPiece(a, b)) {
                    prev->next = b->next;
                    std::free(b);
                    changed = true;
                    break;
                }
            }
        }
    }
}

}  // namespace

struct MergeScratch::Piece {
    _s_hd_proline_* node;
    SegmentReach reach;  ///< the piece's reach (segmentReach), kept up to date
    bool settled;        ///< its row of a sweep ran without a merge since it last changed
};

MergeScratch::~MergeScratch() {
    std::free(pieces_);
}

bool MergeScratch::reserve(size_t n) {
    if (n <= capacity_)
        return true;
    if (n > SIZE_MAX / 2 / sizeof(Piece))
        return false;
    const size_t capacity = n < 2 * capacity_ ? 2 * capacity_ : n;
    auto* pieces = static_cast<Piece*>(std::malloc(capacity * sizeof(Piece)));
    if (pieces == nullptr)
        return false;
    std::free(pieces_);
    pieces_ = pieces;
    capacity_ = capacity;
    return true;
}

namespace {

// True when absorbPiece(a, b) provably fails: both ends of B lie outside A's reach and an end of
// A outside B's, so every isPointOnSeg it would ask answers 0 at once.
bool piecesFarApart(const MergeScratch::Piece& a, const MergeScratch::Piece& b) {
    return a.reach.excludes(b.node->start) && a.reach.excludes(b.node->end) &&
           (b.reach.excludes(a.node->start) || b.reach.excludes(a.node->end));
}

// mergePieces with the same merges in the same order, but without trying the pairs that
// provably stay apart. absorbPiece depends only on the two pieces and changes nothing when it
// fails, so a pair that failed keeps failing until one of its pieces changes. A piece is marked
// settled once its row of a sweep (it against every later piece) has run without a merge: every
// pair of two settled pieces has then failed since either last changed (the pairs with earlier
// pieces ran earlier in the same sweep). A merge unsettles the absorbing piece and drops the
// other, so the remaining settled pairs keep failing; those pairs are skipped, and so are pairs
// lying far apart (piecesFarApart), which would fail. Returns false, changing nothing, if the
// scratch cannot hold the pieces.
bool mergePiecesSkippingSettled(_s_hd_proline_* head, MergeScratch& scratch) {
    size_t n = 0;
    for (const _s_hd_proline_* h = head; h != nullptr; h = h->next)
        ++n;
    if (!scratch.reserve(n))
        return false;
    MergeScratch::Piece* pieces = scratch.pieces();
    size_t at = 0;
    for (_s_hd_proline_* h = head; h != nullptr; h = h->next)
        pieces[at++] = {h, segmentReach(h->start, h->end), false};
    bool changed = true;
    while (changed) {
        changed = false;
        for (size_t i = 0; i < n && !changed; ++i) {
            MergeScratch::Piece& a = pieces[i];
            for (size_t j = i + 1; j < n; ++j) {
                const MergeScratch::Piece& b = pieces[j];
                if ((a.settled && b.settled) || piecesFarApart(a, b) ||
                    !absorbPiece(a.node, b.node))
                    continue;
                std::free(b.node);
                for (size_t k = j; k + 1 < n; ++k)
                    pieces[k] = pieces[k + 1];
                --n;
                a.reach = segmentReach(a.node->start, a.node->end);
                a.settled = false;
                changed = true;
                break;
            }
            if (!changed)
                a.settled = true;
        }
    }
    for (size_t k = 0; k + 1 < n; ++k)
        pieces[k].node->next = pieces[k + 1].node;
    pieces[n - 1].node->next = nullptr;  // the head is never dropped: n stays at least 1
    return true;
}

// Selection sort by the squared distance of each piece's start from p; of equal distances the
// earlier piece comes first.
_s_hd_proline_* sortPieces(_s_hd_proline_* list, _s_hd_point_ p) {
    _s_hd_proline_* head = nullptr;
    _s_hd_proline_** tail = &head;
    while (list != nullptr) {
        _s_hd_proline_** best = &list;
        double bestD = pointDist2(list->start, p);
        for (_s_hd_proline_** at = &list->next; *at != nullptr; at = &(*at)->next) {
            const double d = pointDist2((*at)->start, p);
            if (d < bestD) {
                bestD = d;
                best = at;
            }
        }
        _s_hd_proline_* node = *best;
        *best = node->next;
        node->next = nullptr;
        *tail = node;
        tail = &node->next;
    }
    return head;
}

}  // namespace

bool appendHiddenPiece(const HideLine& line, const HDFace& face, ProlineChain& hidden,
                       FaceTestAids aids) {
    _s_hd_point_ from;
    _s_hd_point_ to;
    if (!faceMeetsLineRange(face, line.range) || !hideLineByFace(line, face, from, to, aids))
        return true;
    return hidden.append(from, to);
}

bool hideLineByProf(_s_hd_point_ a, _s_hd_point_ b, const _s_hd_prosect_* faces,
                    ProlineChain& hidden) {
    orientNearFirst(a, b);
    for (const _s_hd_prosect_* f = faces; f != nullptr; f = f->next) {
        HDFace face;
        if (readFace(f->sect, face) && !appendHiddenPiece(hideLineOf(a, b), face, hidden))
            return false;
    }
    return true;
}

bool getVisibleProline(_s_hd_proline_* hidden, _s_hd_point_ p, _s_hd_point_ q,
                       _s_hd_proline_*& visible, MergeScratch* scratch) {
    visible = nullptr;
    if (hidden == nullptr) {
        visible = appendProline(p, q, nullptr);
        return visible != nullptr;
    }
    if (scratch == nullptr) {
        mergePieces(hidden);
    } else if (!mergePiecesSkippingSettled(hidden, *scratch)) {
        releaseProline(hidden);
        return false;
    }
    hidden = sortPieces(hidden, p);

    // The gaps between the hidden pieces, written over the pieces themselves: the k-th gap is
    // known once the k-th piece has been read, so it never overwrites a piece still needed.
    _s_hd_proline_* write = hidden;
    _s_hd_proline_* last = nullptr;
    auto emit = [&](_s_hd_point_ a, _s_hd_point_ b) {
        write->start = a;
        write->end = b;
        write->owner = -1;
        last = write;
        write = write->next;
    };
    _s_hd_point_ cursor = p;
    for (const _s_hd_proline_* h = hidden; h != nullptr; h = h->next) {
        const _s_hd_point_ s = h->start;
        const _s_hd_point_ e = h->end;
        if (!isSamePointFine(cursor, s))
            emit(cursor, s);
        cursor = e;
    }
    if (!isSamePointFine(cursor, q)) {
        if (write == nullptr) {
            // Every piece was used: the gap up to q needs one node more.
            if (appendProline(cursor, q, last) == nullptr) {
                releaseProline(hidden);
                return false;
            }
            last = last->next;
            write = nullptr;
        } else {
            emit(cursor, q);
        }
    }
    _s_hd_proline_* unused = last != nullptr ? last->next : hidden;
    if (last != nullptr) {
        last->next = nullptr;
        visible = hidden;
    }
    releaseProline(unused);
    return true;
}

bool xyBoxesTouch(const double* a, const double* b) {
    return !(a[1] > b[0]) && !(a[0] < b[1]) && !(a[3] > b[2]) && !(a[2] < b[3]);
}

LineRange lineRangeOf(_s_hd_point_ a, _s_hd_point_ b) {
    return {std::fmin(a.x, b.x), std::fmax(a.x, b.x), std::fmin(a.y, b.y), std::fmax(a.y, b.y)};
}

bool boxOverlapsLineRange(const double* box, const LineRange& range) {
    return box[0] > range.xmin && box[1] < range.xmax && box[2] > range.ymin && box[3] < range.ymax;
}

bool VisibleCollector::addLine(_s_hd_proline_* line, _s_hd_proline_* hidden, int owner) {
    orientNearFirst(line->start, line->end);
    _s_hd_proline_* visible = nullptr;
    if (!getVisibleProline(hidden, line->start, line->end, visible, scratch))
        return false;
    if (visible == nullptr)
        return true;
    if (head == nullptr)
        head = visible;
    else
        tail->next = visible;
    for (_s_hd_proline_* v = visible; v != nullptr; v = v->next) {
        v->owner = owner;
        tail = v;
    }
    return true;
}

_s_hd_proline_* VisibleCollector::abandon() {
    releaseProline(head);
    tail = nullptr;
    return nullptr;
}

int touchingObjects(_s_hd_prof_* const* objs, int n, int i, HideCandidate* table) {
    int count = 0;
    for (int j = 0; j < n; ++j) {
        if (objs[j] != nullptr && xyBoxesTouch(objs[j]->box, objs[i]->box))
            table[count++] = {objs[j]->prosect, j};
    }
    return count;
}

_s_hd_proline_* kestHideObjectReference(_s_hd_prof_** objs, int n) {
    if (objs == nullptr || n <= 0)
        return nullptr;
    return runHidePass(
        objs, n, [&](int i, HideCandidate* table) { return touchingObjects(objs, n, i, table); },
        [&](const _s_hd_proline_* line, const HideCandidate* table, int candidates,
            ProlineChain& hidden) {
            const LineRange range = lineRangeOf(line->start, line->end);
            for (int c = 0; c < candidates; ++c) {
                if (boxOverlapsLineRange(objs[table[c].index]->box, range) &&
                    !hideLineByProf(line->start, line->end, table[c].faces, hidden))
                    return false;
            }
            return true;
        });
}

}  // namespace geolib
