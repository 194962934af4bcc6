// The hide pass: the part of a line hidden behind one face, the visible complement of a line's
// hidden pieces, the pass as a plain step-by-step reference, and the steps the reference and the
// library's engine share. Not exported; the unit tests call them.
//
// A line (p, q) handed to the per-face steps has its near end (smaller Z) first. The engine
// (hide_engine.cpp) runs the same steps as the reference (hide_pass.cpp) and skips only what
// provably changes nothing; each shortcut's proof stands beside it.
#ifndef VOGEBASIC_HD_PASS_H
#define VOGEBASIC_HD_PASS_H

#include <cstddef>
#include <cstdlib>

#include "hidden_line/engine/hd_faces.h"
#include "hidden_line/model/hd_builders.h"

namespace geolib {

/// The line p -> q with its ends swapped when q is not deeper than p (q.z - p.z <= 0), so
/// that the near end comes first.
void orientNearFirst(_s_hd_point_& p, _s_hd_point_& q);

/// True when the line p -> q is seen end-on: its unit direction q - p is within kEndOnTol of
/// the Z axis, so it projects to a point. Such a line is hidden whole by any face that hides
/// at all.
bool isSeenEndOn(_s_hd_point_ p, _s_hd_point_ q);

/// Remembers whether the point straight behind or in front of a line end lies inside a face,
/// the costly part of telling whether the end is behind the face. The answer depends only on
/// the end (to the bit) and the face, so a remembered one is exactly the one computed again;
/// line ends shared by several lines (corners, chord ends) are then tested once per face.
/// Faces are named by the caller's index. Not copyable.
class BehindMemo {
public:
    BehindMemo() = default;
    ~BehindMemo();
    BehindMemo(const BehindMemo&) = delete;
    BehindMemo& operator=(const BehindMemo&) = delete;

    /// Forgets every answer (in constant time).
    void forget();
    /// The answer remembered for the end e and the face: 1 inside, 0 outside, -1 none.
    int find(size_t face, _s_hd_point_ e) const;
    /// Remembers the answer; when the table cannot grow it remembers nothing and failed()
    /// becomes true.
    void remember(size_t face, _s_hd_point_ e, bool inside);
    bool failed() const { return failed_; }
    /// The room the table takes.
    size_t bytes() const;

private:
    struct Entry;
    bool grow();

    Entry* slots_ = nullptr;
    size_t capacity_ = 0;  ///< a power of two, or 0
    size_t used_ = 0;      ///< entries of the current generation
    unsigned generation_ = 1;
    bool failed_ = false;
};

/// What hideLineByFace may use beyond the face itself: a memo of behind tests and the face's
/// index in it, and the face's prepared data. Either may be absent.
struct FaceTestAids {
    BehindMemo* memo = nullptr;
    size_t face = 0;
    const FacePrep* prep = nullptr;
};

/// isLineCrossPlane(a, b, n) != 0 for a unit normal n, the line's direction normalised only
/// where its side of the tolerance is in doubt: the in-plane test of the face test.
bool lineCrossesPlane(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ n);

/// The X and Y range of a line.
struct LineRange {
    double xmin, xmax, ymin, ymax;
};
LineRange lineRangeOf(_s_hd_point_ a, _s_hd_point_ b);

/// A line p -> q (p the near end) with what the face tests ask of the line alone.
struct HideLine {
    _s_hd_point_ p, q;
    _s_hd_point_ dir;    ///< unitDir(q, p)
    bool endOn;          ///< isSeenEndOn(p, q)
    SegmentReach reach;  ///< segmentReach(p, q)
    FlatRun run;         ///< flatRunOf(p, q)
    LineRange range;     ///< lineRangeOf(p, q)
    double len2;         ///< pointDist2(p, q)
    bool bounded;        ///< boundedEnds(p, q)
};
HideLine hideLineOf(_s_hd_point_ p, _s_hd_point_ q);

/// The part of the line p -> q (p the near end) hidden behind one face. Returns true and sets
/// from -> to (running away from p, both on the line) when a piece is hidden; false otherwise.
/// With a memo the behind tests of the line's ends are looked up there first and kept there;
/// with prepared data the face's own part of each test is taken from it.
bool hideLineByFace(_s_hd_point_ p, _s_hd_point_ q, const HDFace& face, _s_hd_point_& from,
                    _s_hd_point_& to, FaceTestAids aids = {});
/// The same for a line prepared once for many faces.
bool hideLineByFace(const HideLine& line, const HDFace& face, _s_hd_point_& from, _s_hd_point_& to,
                    FaceTestAids aids = {});

/// True when the face's XY extents and those of the line p-q overlap or touch.
bool faceMeetsLineRange(const HDFace& face, _s_hd_point_ p, _s_hd_point_ q);
/// The same with the line's range worked out already (lineRangeOf).
bool faceMeetsLineRange(const HDFace& face, const LineRange& range);

/// When the face's XY extents touch the line p -> q (p the near end) and it hides a piece of
/// it, appends that piece to hidden. Returns false only if that allocation fails (a memo that
/// cannot grow is the caller's to check).
bool appendHiddenPiece(const HideLine& line, const HDFace& face, ProlineChain& hidden,
                       FaceTestAids aids = {});

/// Tests the line (a copy, near end first) against every face of the list in order and
/// appends the hidden pieces to hidden. Returns false, having appended what it could, if an
/// allocation fails.
bool hideLineByProf(_s_hd_point_ a, _s_hd_point_ b, const _s_hd_prosect_* faces,
                    ProlineChain& hidden);

/// A line's hidden pieces in reused working room, for merging them without retrying the pairs
/// that provably stay apart; it grows to the most pieces a line has. Not copyable.
class MergeScratch {
public:
    struct Piece {
        _s_hd_point_ start, end;
        SegmentReach reach;  ///< segmentReach(start, end), kept up to date
        /// Merges counted from the start of merging: 1 + the count when its row of a sweep last
        /// ran without a merge (0: never), and the count just after it last changed (0: never).
        size_t rowDone, changed;
        /// Where the ends lie along the line the pieces were hidden on (clearFor): (end - p).(q -
        /// p), NaN when not known.
        double alongStart, alongEnd;
        bool dropped;  ///< merged into another piece and left out of the index
    };
    MergeScratch() = default;
    ~MergeScratch();
    MergeScratch(const MergeScratch&) = delete;
    MergeScratch& operator=(const MergeScratch&) = delete;

    /// Room for n pieces; false, keeping what it had, if it cannot grow.
    bool reserve(size_t n);
    /// Appends the piece from -> to; false, changing nothing, if the room cannot grow.
    bool append(_s_hd_point_ from, _s_hd_point_ to);
    /// Plays the merge's first row over the pieces appended since it last ran: the first piece
    /// absorbs, in list order and from the start again after each merge, every piece it can,
    /// and the pieces it absorbs are marked dropped. These are the first merges the merge of the
    /// pieces makes, whatever is appended later, and the merge goes on from them. Returns true,
    /// playing no further, once the first piece runs from p to q to the bit.
    bool playFirstRow(_s_hd_point_ p, _s_hd_point_ q);
    void clear() {
        count_ = seen_ = played_ = settled_ = 0;
        lineKnown_ = false;
    }
    /// clear(), for the pieces hideLineByFace hides of the line p -> q (near end first): their
    /// ends are p, q or points worked out on the line, and where they lie along it is kept.
    void clearFor(_s_hd_point_ p, _s_hd_point_ q);
    /// isPointOnSeg of a piece end lying at along on the segment of the piece ends lying at a and
    /// b, where their places along the line settle it: 1 or 0, or -1 where they do not.
    int onByAlong(double along, double a, double b) const;
    /// What onByAlong asks of the segment alone: its least and greatest places and the share of
    /// its length an end must keep from both (alongSpan of a and b).
    struct AlongSpan {
        double lo, hi, rel;
    };
    AlongSpan alongSpan(double a, double b) const;
    /// onByAlong with the segment's span worked out already, the same answer.
    int onByAlong(double along, const AlongSpan& span) const;
    /// Keeps the first n pieces (as merged: the first row is played afresh).
    void truncate(size_t n) {
        count_ = n < count_ ? n : count_;
        seen_ = played_ = settled_ = 0;
    }
    size_t size() const { return count_; }
    /// The merges playFirstRow has made since the last clear().
    size_t firstRowMerges() const { return played_; }
    /// True when playFirstRow last ended with the first piece absorbing none of the pieces left
    /// and none has been appended since: the first piece, as it is, fails against every one.
    bool firstRowSettled() const { return count_ > 0 && settled_ == count_; }
    Piece* pieces() { return pieces_; }
    /// Room for an index of each piece, for merging without moving the pieces.
    size_t* order() { return order_; }
    /// Room for a piece's index per merge: the piece each merge changed.
    size_t* changes() { return changes_; }
    /// The room the pieces take.
    size_t bytes() const;

private:
    Piece* pieces_ = nullptr;
    size_t* order_ = nullptr;
    size_t* changes_ = nullptr;
    size_t capacity_ = 0;
    size_t count_ = 0;
    size_t seen_ = 0;         ///< the pieces the first row has been played over
    size_t played_ = 0;       ///< the merges the first row has made
    size_t settled_ = 0;      ///< the pieces there were when the first row last found nothing
    bool lineKnown_ = false;  ///< the pieces are hidden on the line below (clearFor)
    _s_hd_point_ lineP_{}, lineRun_{};  ///< the line's near end p and its run q - p
    /// onByAlong's squared distances along the line, off and well on a segment, in the places'
    /// measure: kAlongOff^2 and kAlongOn^2 times lineRun_.lineRun_.
    double alongOff2_ = 0.0, alongOn2_ = 0.0;
};

/// Merges the hidden pieces of the line p -> q (consumed) and sets visible to their complement
/// on the line, pieces in order from p to q, each with owner -1; null when nothing is visible.
/// With no hidden piece the whole line is visible. Every pair of pieces is tried again from the
/// head after each merge. The complement runs from p to each piece's nearer end and on from its
/// farther end, over pieces sorted by their starts' distance from p; where two pieces still
/// overlap after the merge (on a line a few hundredths long, the on-segment test's tolerances
/// can leave them apart), no gap runs backwards over them. Returns false, having released the
/// pieces and set visible to null, if an allocation fails.
bool getVisibleProline(_s_hd_proline_* hidden, _s_hd_point_ p, _s_hd_point_ q,
                       _s_hd_proline_*& visible);
/// The same for pieces held in working room (left merged and sorted): the same merges in the
/// same order, without retrying the pairs that provably stay apart, and the same visible list.
bool getVisibleProline(MergeScratch& hidden, _s_hd_point_ p, _s_hd_point_ q,
                       _s_hd_proline_*& visible);

/// What a hide pass did, for the benchmark.
struct HidePassStats {
    long long lines = 0;              ///< lines tested
    long long candidatesScanned = 0;  ///< candidate objects looked at for a line
    long long facesScanned = 0;       ///< faces of those objects looked at
    long long faceTests = 0;          ///< line-against-face tests that reached hideLineByFace
    long long hidingTests = 0;        ///< those of them that hid a piece
    size_t workingBytes = 0;          ///< the pass's own tables at their largest (not its result)
};
/// kestHideObject, counting into stats when it is not null.
_s_hd_proline_* kestHideObjectMeasured(_s_hd_prof_** objs, int n, HidePassStats* stats);

/// The hide pass followed step by step: the reference that kestHideObject must match node for
/// node. Same contract as kestHideObject.
_s_hd_proline_* kestHideObjectReference(_s_hd_prof_** objs, int n);

// ---- steps shared by the reference pass and the engine ------------------------------------------

/// True when the XY boxes (X max, X min, Y max, Y min, ...) of two objects overlap or touch.
bool xyBoxesTouch(const double* a, const double* b);

/// True when an object's box overlaps the line's range strictly (a mere touch does not count).
/// Inline: the engine asks it of every candidate for every line.
inline bool boxOverlapsLineRange(const double* box, const LineRange& range) {
    return box[0] > range.xmin && box[1] < range.xmax && box[2] > range.ymin && box[3] < range.ymax;
}

/// The result list of a pass, built line by line.
struct VisibleCollector {
    _s_hd_proline_* head = nullptr;
    _s_hd_proline_* tail = nullptr;

    /// Appends a line's visible pieces (taken over), with owner set to the object's index.
    void add(_s_hd_proline_* visible, int owner);
    /// Releases what was collected and returns null.
    _s_hd_proline_* abandon();
};

/// One entry of the candidate table: an object whose XY box touches the current object's.
struct HideCandidate {
    const _s_hd_prosect_* faces;  ///< the candidate's face list
    int index;                    ///< the candidate's index in the object array
};

/// Fills table with the non-null objects whose XY boxes touch object i's, j ascending (object i
/// included), and returns how many. The table has room for n entries, which is never exceeded.
int touchingObjects(_s_hd_prof_* const* objs, int n, int i, HideCandidate* table);

/// The frame of a hide pass: for each non-null object i, findCandidates(i, table) fills the
/// candidate table (room for n entries) and returns the count; then for each line,
/// lineVisible(line, table, count, visible) sets visible to the line's visible pieces (re-orienting
/// the line in place, near end first) and returns false on a failed allocation; the pieces are
/// collected in line order. Returns the visible list, or null (having released all it built) if
/// an allocation fails.
template <class FindCandidates, class LineVisible>
_s_hd_proline_* runHidePass(_s_hd_prof_** objs, int n, FindCandidates&& findCandidates,
                            LineVisible&& lineVisible) {
    auto* table =
        static_cast<HideCandidate*>(std::malloc(static_cast<size_t>(n) * sizeof(HideCandidate)));
    if (table == nullptr)
        return nullptr;
    VisibleCollector out;
    for (int i = 0; i < n; ++i) {
        if (objs[i] == nullptr)
            continue;
        const int candidates = findCandidates(i, table);
        for (_s_hd_proline_* line = objs[i]->proline; line != nullptr; line = line->next) {
            _s_hd_proline_* visible = nullptr;
            if (!lineVisible(line, table, candidates, visible)) {
                std::free(table);
                return out.abandon();
            }
            out.add(visible, i);
        }
    }
    std::free(table);
    return out.head;
}

}  // namespace geolib

#endif  // VOGEBASIC_HD_PASS_H
