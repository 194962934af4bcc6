// The hide pass line by line: a line against the faces of one object, the visible complement of
// a line's hidden pieces, and the whole pass as a plain reference.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "hidden_line/engine/hd_pass.h"

namespace geolib {

namespace {

// How absorbPiece folds B into A, from the on-segment answers on(k): k = 0 B's start on A, 1 B's
// end on A, 2 A's start on B, 3 A's end on B. B starting on A extends A to B's end, B ending on A
// extends A back to B's start; B inside A adds nothing, A inside B becomes B.
enum class Fold { kApart, kToBEnd, kToBStart, kWithin, kBecomesB };
template <class On>
Fold foldOf(On&& on) {
    const bool startOn = on(0);
    const bool endOn = on(1);
    if (startOn && !endOn)
        return Fold::kToBEnd;
    if (!startOn && endOn)
        return Fold::kToBStart;
    if (startOn && endOn)
        return Fold::kWithin;
    return on(2) && on(3) ? Fold::kBecomesB : Fold::kApart;
}

// Folds B into A when the two overlap or touch (foldOf). Returns true when B is to be dropped.
// aReach and bReach are the pieces' segmentReach, as isPointOnSeg works them out.
bool absorbPiece(_s_hd_point_& aStart, _s_hd_point_& aEnd, const SegmentReach& aReach,
                 _s_hd_point_ bStart, _s_hd_point_ bEnd, const SegmentReach& bReach) {
    const Fold fold = foldOf([&](int k) {
        return k == 0   ? onSegWithin(bStart, aStart, aEnd, aReach)
               : k == 1 ? onSegWithin(bEnd, aStart, aEnd, aReach)
               : k == 2 ? onSegWithin(aStart, bStart, bEnd, bReach)
                        : onSegWithin(aEnd, bStart, bEnd, bReach);
    });
    if (fold == Fold::kToBEnd || fold == Fold::kBecomesB)
        aEnd = bEnd;
    if (fold == Fold::kToBStart || fold == Fold::kBecomesB)
        aStart = bStart;
    return fold != Fold::kApart;
}
bool absorbPiece(_s_hd_proline_* a, const _s_hd_proline_* b) {
    return absorbPiece(a->start, a->end, segmentReach(a->start, a->end), b->start, b->end,
                       segmentReach(b->start, b->end));
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

MergeScratch::~MergeScratch() {
    std::free(pieces_);
    std::free(order_);
    std::free(changes_);
}

size_t MergeScratch::bytes() const {
    return capacity_ * (sizeof(Piece) + 2 * sizeof(size_t));
}

bool MergeScratch::reserve(size_t n) {
    if (n <= capacity_)
        return true;
    if (n > SIZE_MAX / 2 / sizeof(Piece))
        return false;
    const size_t capacity = n < 2 * capacity_ ? 2 * capacity_ : n;
    auto* pieces = static_cast<Piece*>(std::malloc(capacity * sizeof(Piece)));
    auto* order = static_cast<size_t*>(std::malloc(capacity * sizeof(size_t)));
    auto* changes = static_cast<size_t*>(std::malloc(capacity * sizeof(size_t)));
    if (pieces == nullptr || order == nullptr || changes == nullptr) {
        std::free(pieces);
        std::free(order);
        std::free(changes);
        return false;
    }
    for (size_t k = 0; k < count_; ++k)
        pieces[k] = pieces_[k];
    std::free(pieces_);
    std::free(order_);
    std::free(changes_);
    pieces_ = pieces;
    order_ = order;
    changes_ = changes;
    capacity_ = capacity;
    return true;
}

bool MergeScratch::append(_s_hd_point_ from, _s_hd_point_ to) {
    if (count_ == capacity_ && !reserve(count_ + 1))
        return false;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double alongFrom = lineKnown_ ? vecDot(vecSub(from, lineP_), lineRun_) : nan;
    const double alongTo = lineKnown_ ? vecDot(vecSub(to, lineP_), lineRun_) : nan;
    pieces_[count_++] = {from, to, segmentReach(from, to), 0, 0, alongFrom, alongTo, false};
    return true;
}

namespace {
constexpr double kAlongOn = 0.1;       // far above the points' 6e-6 off the line
constexpr double kAlongOnRel = 0.001;  // keeps the cosine well conditioned
constexpr double kAlongOff = 1e-3;     // far above the 3.2e-5 of isPointOnSeg's end test
}  // namespace

void MergeScratch::clearFor(_s_hd_point_ p, _s_hd_point_ q) {
    clear();
    lineKnown_ = boundedEnds(p, q);
    lineP_ = p;
    lineRun_ = vecSub(q, p);
    const double len2 = vecDot(lineRun_, lineRun_);
    alongOff2_ = kAlongOff * kAlongOff * len2;
    alongOn2_ = kAlongOn * kAlongOn * len2;
}

// Where the line's ends lie within kCullCoordLimit, every piece end X is p, q, or a point p + t
// (q - p) that hideLineByFace worked out (linePlaneInter, pointAlong) and found within the line's
// reach: each lies within 2e-6 of the exact line, and along = (X - p).(q - p), rounded by parts
// in 1e15 of |X - p| |q - p|, places it along the line (along over |q - p|) to within 6e-6. So
// where X lies between the ends A and B of a piece, at least kAlongOn from each and kAlongOnRel of
// the piece's length, it lies within 4e-6 of the line AB, which seen from X falls short of a half
// turn by at most 2 times 4e-6 over 0.1, 8e-5 rad, far inside the 2.48e-4 the test allows; the
// cosine, worked out from distances whose ratio stays below 2 / kAlongOnRel, is off by under
// 1e-11, and X lies well inside the piece's reach: isPointOnSeg answers 1 (as surelyOnSegment
// argues). Where X lies beyond the nearer end by at least kAlongOff, it is no end
// (isSamePointFine, the squared end distance of 1e-9) and the piece subtends under 1e-2 rad from
// it: the cosine, off by at most 1e-15 times the farther end's distance over the nearer's (below
// 1e13), stays far above kOnSegSureOffCos, and isPointOnSeg answers 0. NaN fails every comparison.
MergeScratch::AlongSpan MergeScratch::alongSpan(double a, double b) const {
    const double lo = minOf(a, b);
    const double hi = maxOf(a, b);
    return {lo, hi, kAlongOnRel * (hi - lo)};
}

int MergeScratch::onByAlong(double along, const AlongSpan& span) const {
    if (!lineKnown_)
        return -1;
    const double below = span.lo - along;
    const double above = along - span.hi;
    if ((below > 0.0 && below * below >= alongOff2_) ||
        (above > 0.0 && above * above >= alongOff2_))
        return 0;
    if (below < 0.0 && above < 0.0 && below * below >= alongOn2_ && above * above >= alongOn2_ &&
        -below >= span.rel && -above >= span.rel)
        return 1;
    return -1;
}

int MergeScratch::onByAlong(double along, double a, double b) const {
    return onByAlong(along, alongSpan(a, b));
}

namespace {

// True when absorbPiece(a, b) provably fails: both ends of B lie outside A's reach and an end of
// A outside B's, so every isPointOnSeg it would ask answers 0 at once.
bool piecesFarApart(const MergeScratch::Piece& a, const MergeScratch::Piece& b) {
    return a.reach.excludes(b.end) && a.reach.excludes(b.start) &&
           (b.reach.excludes(a.start) || b.reach.excludes(a.end));
}

// absorbPiece on two pieces of the scratch, with the on-segment answers their places along the
// line settle taken from there (MergeScratch::onByAlong), and A's places kept with its ends.
bool absorbPieceAlong(const MergeScratch& scratch, MergeScratch::Piece& a,
                      const MergeScratch::Piece& b) {
    auto on = [&](_s_hd_point_ x, double along, _s_hd_point_ s, _s_hd_point_ e,
                  const MergeScratch::AlongSpan& span, const SegmentReach& reach) {
        const int known = scratch.onByAlong(along, span);
        return known >= 0 ? known != 0 : onSegWithin(x, s, e, reach);
    };
    // A's span serves both ends of B, and B's both ends of A.
    const MergeScratch::AlongSpan spanA = scratch.alongSpan(a.alongStart, a.alongEnd);
    const MergeScratch::AlongSpan spanB = scratch.alongSpan(b.alongStart, b.alongEnd);
    const Fold fold = foldOf([&](int k) {
        if (k < 2)
            return on(k == 0 ? b.start : b.end, k == 0 ? b.alongStart : b.alongEnd, a.start, a.end,
                      spanA, a.reach);
        return on(k == 2 ? a.start : a.end, k == 2 ? a.alongStart : a.alongEnd, b.start, b.end,
                  spanB, b.reach);
    });
    if (fold == Fold::kToBEnd || fold == Fold::kBecomesB) {
        a.end = b.end;
        a.alongEnd = b.alongEnd;
    }
    if (fold == Fold::kToBStart || fold == Fold::kBecomesB) {
        a.start = b.start;
        a.alongStart = b.alongStart;
    }
    return fold != Fold::kApart;
}

// absorbPiece on two pieces of the scratch, keeping A's reach up to date and marking B dropped
// when it is absorbed; pieces lying far apart are not tried.
bool absorbInto(const MergeScratch& scratch, MergeScratch::Piece& a, MergeScratch::Piece& b) {
    if (piecesFarApart(a, b) || !absorbPieceAlong(scratch, a, b))
        return false;
    b.dropped = true;
    a.reach = segmentReach(a.start, a.end);
    return true;
}

}  // namespace

// Each sweep of the merge (mergePieces) starts with the first piece A, which is never dropped,
// against every later piece in list order. While A's row finds a piece to absorb, every sweep is
// A's row: the merges are those of A with the first piece it absorbs each time, in list order.
// Pieces appended later come after every piece appended now, so while A absorbs a piece
// appended now, A's row finds that piece before any later one, whatever is appended later: up
// to the point where A's row would find nothing among the pieces appended so far, the merge of
// the final list makes the same merges as the merge of the list now. Once A's row finds nothing,
// the pieces left all fail against A (absorbPiece depends only on the two pieces), so the next
// piece appended is the only one to try; if A absorbs it, the row is played again from the
// first piece left. Once A runs from p to q the play makes no more merges (A no longer changes
// while it does): the merge makes the rest.
//
// Every piece before the one A has just absorbed was dropped or failed against A as it was: the
// pieces the row passed over now, and, before them, the ones the last play left failing. A merge
// that leaves A's ends as they were to the bit (a piece lying within A, dropped) leaves A's reach
// as it was too, so played again from the first piece left, the row would pass over all of those
// once more; it goes on after the dropped piece instead, and A, still not from p to q, needs no
// second look.
bool MergeScratch::playFirstRow(_s_hd_point_ p, _s_hd_point_ q) {
    if (count_ == seen_)
        return false;
    Piece& a = pieces_[0];
    size_t k = seen_ == 0 ? 1 : seen_;
    // Where the last play found nothing more to absorb, A was found not to run from p to q after
    // it last changed, and nothing has changed it since: that is not asked again.
    bool changed = seen_ == 0 || settled_ != seen_;
    seen_ = count_;
    for (;;) {
        if (changed && sameBits(a.start, p) && sameBits(a.end, q))
            return true;
        const _s_hd_point_ start = a.start;
        const _s_hd_point_ end = a.end;
        while (k < count_ && (pieces_[k].dropped || !absorbInto(*this, a, pieces_[k])))
            ++k;
        if (k == count_) {
            settled_ = count_;
            return false;
        }
        ++played_;
        changed = !sameBits(a.start, start) || !sameBits(a.end, end);
        k = changed ? 1 : k + 1;
    }
}

namespace {

// mergePieces on the scratch's pieces with the same merges in the same order, but without trying
// the pairs that provably stay apart. absorbPiece depends only on the two pieces and changes
// nothing when it fails, so a pair that failed keeps failing until one of its pieces changes.
// Pieces are only dropped, never added or reordered, so the pieces after A now were after it
// whenever its row ran. Once A's row of a sweep (A against every later piece) has run without a
// merge, after the merge counted T, every pair of A and a later piece has failed (or was
// skipped here, failing): A.rowDone is T + 1. A merge, counted T, drops B and changes A, whose
// changed becomes T. So while A has not changed since its row last ran (A.changed < A.rowDone),
// a pair of A and a later B that has not changed since then either (B.changed < A.rowDone) keeps
// failing and is skipped; so are pairs lying far apart (piecesFarApart), which would fail.
//
// For such a settled A the pieces left to try are those changed since its row last ran: each was
// changed by one of the merges counted from A.rowDone on, and the merge log names the piece each
// merge changed (the one it changed last is counted at its changed). When those merges are few
// (kFewChanges), A is tried against just those of them still in the index and after A, in index
// order: every piece passed over would be skipped by the full row, so the first merge found is
// the full row's.
//
// The merge works through an index of the pieces, dropping a piece from the index only, and
// leaves the pieces that remain at the front in their order.
//
// It starts after the merges the first row has already made (MergeScratch::playFirstRow, the
// merge's own first merges): up to there every merge was the first piece's, in a full row (its
// changed stays at or above its rowDone of 0, so it is never settled), no row ran without a
// merge (every rowDone is 0), the first piece's changed is the count of merges and the log
// names it for each, its reach was worked out again after each, and the pieces it absorbed are
// out of the index. Where the first row was last played to its end without a merge and nothing
// was appended since (firstRowSettled), the first piece as it is fails against every piece left:
// its row of the first sweep runs without a merge after the merges counted so far, and it starts
// settled, its rowDone one above them, instead of trying every pair again.
void mergePiecesSkippingSettled(MergeScratch& scratch) {
    // A settled row since which at most this many merges were counted tries only the pieces they
    // changed; after more, its full row runs (with the same skips), which gives the same merge.
    constexpr size_t kFewChanges = 8;
    MergeScratch::Piece* pieces = scratch.pieces();
    size_t* order = scratch.order();
    size_t* changes = scratch.changes();
    size_t n = 0;
    for (size_t k = 0; k < scratch.size(); ++k) {
        pieces[k].rowDone = 0;
        pieces[k].changed = 0;
        if (!pieces[k].dropped)
            order[n++] = k;
    }
    const size_t merges0 = scratch.firstRowMerges();
    for (size_t t = 0; t < merges0; ++t)
        changes[t] = 0;
    pieces[0].changed = merges0;
    if (scratch.firstRowSettled())
        pieces[0].rowDone = merges0 + 1;
    size_t merges = merges0;
    bool changed = true;
    while (changed) {
        changed = false;
        for (size_t i = 0; i < n && !changed; ++i) {
            const size_t ai = order[i];
            MergeScratch::Piece& a = pieces[ai];
            const bool settled = a.changed < a.rowDone;
            size_t absorbed = n;  // the index position of the piece A absorbs; n: none
            if (settled && merges + 1 - a.rowDone <= kFewChanges) {
                size_t tried[kFewChanges];
                size_t count = 0;
                for (size_t t = a.rowDone; t <= merges; ++t) {
                    const size_t c = changes[t - 1];
                    if (c <= ai || pieces[c].dropped || pieces[c].changed != t)
                        continue;
                    size_t at = count++;
                    for (; at > 0 && tried[at - 1] > c; --at)
                        tried[at] = tried[at - 1];
                    tried[at] = c;
                }
                for (size_t k = 0; k < count; ++k) {
                    const MergeScratch::Piece& b = pieces[tried[k]];
                    if (piecesFarApart(a, b) || !absorbPieceAlong(scratch, a, b))
                        continue;
                    absorbed = i + 1;
                    while (order[absorbed] != tried[k])
                        ++absorbed;
                    break;
                }
            } else {
                for (size_t j = i + 1; j < n; ++j) {
                    const MergeScratch::Piece& b = pieces[order[j]];
                    if ((settled && b.changed < a.rowDone) || piecesFarApart(a, b) ||
                        !absorbPieceAlong(scratch, a, b))
                        continue;
                    absorbed = j;
                    break;
                }
            }
            if (absorbed == n) {
                a.rowDone = merges + 1;
                continue;
            }
            pieces[order[absorbed]].dropped = true;
            for (size_t k = absorbed; k + 1 < n; ++k)
                order[k] = order[k + 1];
            --n;
            a.reach = segmentReach(a.start, a.end);
            a.changed = ++merges;
            changes[merges - 1] = ai;
            changed = true;
        }
    }
    // The index stays ascending, so no piece is written over before it is moved.
    for (size_t k = 0; k < n; ++k) {
        if (order[k] != k)
            pieces[k] = pieces[order[k]];
    }
    scratch.truncate(n);
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

namespace {

// The complement of the sorted hidden pieces on the line from p, walked piece by piece. A gap
// runs from the cursor (where the hidden stretch reached so far ends) to a piece's nearer end
// when that lies beyond the cursor, farther from p, and the cursor moves on to the piece's
// farther end when that lies beyond it. Merged pieces that overlap or touch become one, so in a
// drawing the pieces are apart and each starts at its nearer end: then this is the plain walk
// from each hidden end to the next hidden start. But the merge tells overlapping pieces by the
// on-segment test, whose end distance and angle leave two pieces of a line a few hundredths
// long that overlap by less than that unmerged; a gap from the one's end back to the other's
// start would be a visible piece running backwards over hidden ones.
class GapWalk {
public:
    explicit GapWalk(_s_hd_point_ p) : p_(p), cursor_(p), reached_(0.0) {}
    /// The gap before the hidden piece a - b, if any (true, in gap); then the cursor moves on.
    bool gapBefore(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_* gap) {
        const double da = pointDist2(a, p_);
        const double db = pointDist2(b, p_);
        const bool aNear = !(db < da);
        const _s_hd_point_ nearEnd = aNear ? a : b;
        const _s_hd_point_ farEnd = aNear ? b : a;
        // Where a distance is NaN every comparison fails and the walk is the plain one.
        const bool open = !((aNear ? da : db) <= reached_) && !isSamePointFine(cursor_, nearEnd);
        if (open) {
            gap[0] = cursor_;
            gap[1] = nearEnd;
        }
        const double far = aNear ? db : da;
        if (!(far <= reached_)) {
            reached_ = far;
            cursor_ = farEnd;
        }
        return open;
    }
    /// The last gap, up to q, if any.
    bool gapTo(_s_hd_point_ q, _s_hd_point_* gap) const {
        if (pointDist2(q, p_) <= reached_ || isSamePointFine(cursor_, q))
            return false;
        gap[0] = cursor_;
        gap[1] = q;
        return true;
    }

private:
    _s_hd_point_ p_;
    _s_hd_point_ cursor_;
    double reached_;  ///< the cursor's squared distance from p
};

}  // namespace

bool getVisibleProline(_s_hd_proline_* hidden, _s_hd_point_ p, _s_hd_point_ q,
                       _s_hd_proline_*& visible) {
    visible = nullptr;
    if (hidden == nullptr) {
        visible = appendProline(p, q, nullptr);
        return visible != nullptr;
    }
    mergePieces(hidden);
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
    GapWalk walk(p);
    _s_hd_point_ gap[2];
    for (const _s_hd_proline_* h = hidden; h != nullptr; h = h->next) {
        if (walk.gapBefore(h->start, h->end, gap))
            emit(gap[0], gap[1]);
    }
    if (walk.gapTo(q, gap)) {
        if (write == nullptr) {
            // Every piece was used: the gap up to q needs one node more.
            if (appendProline(gap[0], gap[1], last) == nullptr) {
                releaseProline(hidden);
                return false;
            }
            last = last->next;
            write = nullptr;
        } else {
            emit(gap[0], gap[1]);
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

bool getVisibleProline(MergeScratch& hidden, _s_hd_point_ p, _s_hd_point_ q,
                       _s_hd_proline_*& visible) {
    visible = nullptr;
    if (hidden.size() == 0) {
        visible = appendProline(p, q, nullptr);
        return visible != nullptr;
    }
    mergePiecesSkippingSettled(hidden);
    // sortPieces on the array: the first nearest start of the pieces left comes next, and the
    // rest keep their order.
    MergeScratch::Piece* pieces = hidden.pieces();
    const size_t n = hidden.size();
    for (size_t i = 0; i < n; ++i) {
        size_t best = i;
        double bestD = pointDist2(pieces[i].start, p);
        for (size_t j = i + 1; j < n; ++j) {
            const double d = pointDist2(pieces[j].start, p);
            if (d < bestD) {
                bestD = d;
                best = j;
            }
        }
        const MergeScratch::Piece chosen = pieces[best];
        for (size_t k = best; k > i; --k)
            pieces[k] = pieces[k - 1];
        pieces[i] = chosen;
    }
    // The gaps between the pieces, as getVisibleProline on a list leaves them.
    ProlineChain gaps;
    bool ok = true;
    GapWalk walk(p);
    _s_hd_point_ gap[2];
    for (size_t k = 0; k < n && ok; ++k) {
        if (walk.gapBefore(pieces[k].start, pieces[k].end, gap))
            ok = gaps.append(gap[0], gap[1]);
    }
    if (ok && walk.gapTo(q, gap))
        ok = gaps.append(gap[0], gap[1]);
    if (!ok) {
        releaseProline(gaps.head);
        return false;
    }
    visible = gaps.head;
    return true;
}

bool xyBoxesTouch(const double* a, const double* b) {
    return !(a[1] > b[0]) && !(a[0] < b[1]) && !(a[3] > b[2]) && !(a[2] < b[3]);
}

// minOf and maxOf give what fmin and fmax give (the other value where one is NaN), but for the
// sign of a zero, which no comparison sees.
LineRange lineRangeOf(_s_hd_point_ a, _s_hd_point_ b) {
    return {minOf(a.x, b.x), maxOf(a.x, b.x), minOf(a.y, b.y), maxOf(a.y, b.y)};
}

void VisibleCollector::add(_s_hd_proline_* visible, int owner) {
    if (visible == nullptr)
        return;
    if (head == nullptr)
        head = visible;
    else
        tail->next = visible;
    for (_s_hd_proline_* v = visible; v != nullptr; v = v->next) {
        v->owner = owner;
        tail = v;
    }
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
        [&](_s_hd_proline_* line, const HideCandidate* table, int candidates,
            _s_hd_proline_*& visible) {
            const LineRange range = lineRangeOf(line->start, line->end);
            ProlineChain hidden;
            for (int c = 0; c < candidates; ++c) {
                if (boxOverlapsLineRange(objs[table[c].index]->box, range) &&
                    !hideLineByProf(line->start, line->end, table[c].faces, hidden)) {
                    releaseProline(hidden.head);
                    return false;
                }
            }
            orientNearFirst(line->start, line->end);
            return getVisibleProline(hidden.head, line->start, line->end, visible);
        });
}

}  // namespace geolib
