#include "clip_params.h"

#include <cmath>

#include "clipping/clip_list.h"
#include "clipping/clip_params_internal.h"
#include "clipping/clip_tolerances.h"
#include "core/constants.h"

namespace geolib {

using clip::CutResult;
using clip::kIntervalEndTol;
using core::kFullTurn;

namespace {

// The same interval end.
bool same(double x, double y) {
    return std::fabs(x - y) < kIntervalEndTol;
}

// Walks a list keeping the link that points at the current node, so that unlinking needs no
// special case for the head.
struct Walk {
    paramt** link;

    explicit Walk(paramt*& head) : link(&head) {}
    paramt* node() const { return *link; }
    void keep() { link = &(*link)->next; }
    void drop() {
        paramt* gone = *link;
        *link = gone->next;
        gone->next = nullptr;
        freeParamt(gone);
    }
    // Inserts [t0, t1] right after the current node; false if the allocation fails.
    bool insertAfter(double t0, double t1) {
        paramt* n = mallocParamt(false);
        if (n == nullptr)
            return false;
        n->t0 = t0;
        n->t1 = t1;
        n->next = (*link)->next;
        (*link)->next = n;
        return true;
    }
};

CutResult removeFromLine(paramt*& list, double a, double b) {
    // A NaN end would end up in the list; an infinite one cuts to the end of the piece.
    if (std::isnan(a) || std::isnan(b))
        return CutResult::refused;
    if (std::fabs(b - a) < kIntervalEndTol || a > b)
        return CutResult::refused;
    for (Walk w(list); w.node() != nullptr;) {
        paramt* n = w.node();
        const double t0 = n->t0;
        const double t1 = n->t1;
        // Ranges that only touch within the tolerance do not cut.
        if (same(b, t0) || b < t0 || same(a, t1) || t1 < a) {
            w.keep();
            continue;
        }
        if (same(a, t0) && same(b, t1)) {
            w.drop();
            break;  // disjoint and sorted: no later interval meets the cut
        }
        const bool startsInside = !same(a, t0) && t0 <= a;
        const bool endsInside = !same(b, t1) && b <= t1;
        if (startsInside || endsInside) {
            if (same(a, t0) || a < t0) {
                n->t0 = b;
            } else if (endsInside) {
                if (!w.insertAfter(b, t1))
                    return CutResult::noMemory;
                n->t1 = a;
                break;
            } else {
                n->t1 = a;
            }
            w.keep();
            continue;
        }
        w.drop();  // the cut covers the node
    }
    return CutResult::done;
}

CutResult removeFromArc(paramt*& list, double a, double b) {
    // Angles that are not finite are no angles: they would end up in the list.
    if (!std::isfinite(a) || !std::isfinite(b))
        return CutResult::refused;
    if (std::fabs(b - a) < kIntervalEndTol)
        return CutResult::refused;
    const double a1 = b < a ? a - kFullTurn : a;  // a cut through angle 0
    for (Walk w(list); w.node() != nullptr;) {
        paramt* n = w.node();
        const double t0 = n->t1 < n->t0 ? n->t0 - kFullTurn : n->t0;  // a node through 0
        const double t1 = n->t1;
        if (same(b, t0) || t0 > b || same(a1, t1) || t1 < a1) {
            w.keep();
            continue;
        }
        if (same(a1, t0) && same(b, t1)) {
            w.drop();
            break;
        }
        if ((same(a1, t0) || t0 > a1) && (same(b, t1) || t1 < b)) {
            w.drop();
            continue;
        }
        if (!same(a1, t0) && t0 <= a1) {
            if (!same(b, t1) && t1 >= b) {
                if (!w.insertAfter(b, t1))
                    return CutResult::noMemory;
                n->t1 = a1;
                break;
            }
            n->t1 = a1;
        } else {
            n->t0 = b;
        }
        w.keep();
    }
    // Ends left below 0 by a cut through angle 0 come back into the turn. An end can only go
    // below 0 when a cut through angle 0 shortens a node through angle 0: the node then ends
    // where the cut begins, a - 2 pi, which is the angle a itself.
    for (paramt* p = list; p != nullptr; p = p->next) {
        if (p->t0 < 0.0)
            p->t0 += kFullTurn;
        if (p->t1 < 0.0)
            p->t1 += kFullTurn;
    }
    return CutResult::done;
}

}  // namespace

namespace clip {

CutResult removeInterval(paramt*& list, double a, double b, bool isArc) {
    return isArc ? removeFromArc(list, a, b) : removeFromLine(list, a, b);
}

}  // namespace clip

bool subParamt(paramt*& list, double a, double b, bool isArc) {
    return clip::removeInterval(list, a, b, isArc) == CutResult::done;
}

bool cutPipeParamt(line_cut* lc, double a, double b) {
    // A refused range is no failure for the line form; a split without memory is.
    return lc == nullptr || clip::removeInterval(lc->params, a, b, false) != CutResult::noMemory;
}

bool cutArcParamt(arc_cut* ac, double a, double b) {
    return ac != nullptr && subParamt(ac->params, a, b, true);
}

paramt* getHideParamt(paramt* list, double a, double b, bool isArc) {
    static_cast<void>(b);  // the closing gap runs to the full end, not to b (kept deliberately)
    if (list == nullptr)
        return mallocParamt(isArc);
    clip::ListBuilder<paramt> gaps;
    auto addGap = [&gaps](double t0, double t1) {
        paramt* g = mallocParamt(false);
        if (g == nullptr) {
            freeParamt(gaps.head);
            gaps.head = nullptr;
            return false;
        }
        g->t0 = t0;
        g->t1 = t1;
        gaps.append(g);
        return true;
    };
    // An arc node through angle 0 ([t0, t1] with t1 < t0) is visible from the start of the
    // turn to t1 and again from t0 to its end: it is walked as starting at t0 - 2 pi, and the
    // closing gap stops at its t0, so that the gaps never overlap each other or the node.
    double end = isArc ? kFullTurn : 1.0;
    double cur = a;
    for (const paramt* p = list; p != nullptr; p = p->next) {
        double t0 = p->t0;
        if (isArc && p->t1 < p->t0) {
            end = std::fmin(end, p->t0);
            t0 -= kFullTurn;
        }
        if (cur < t0 && !addGap(cur, t0))
            return nullptr;
        cur = p->t1;
    }
    if (end > cur && cur > kIntervalEndTol && !addGap(cur, end))
        return nullptr;
    return gaps.head;
}

paramt* getHideParamLine(line_cut* lc) {
    return lc == nullptr ? nullptr : getHideParamt(lc->params, 0.0, 1.0, false);
}

paramt* getHideParamArc(arc_cut* ac) {
    return ac == nullptr ? nullptr : getHideParamt(ac->params, ac->startAngle, ac->endAngle, true);
}

paramt* findFitParamt(paramt* list, double a, double b) {
    if (std::fabs(b - a) < kIntervalEndTol || b < a)
        return nullptr;
    for (paramt* p = list; p != nullptr; p = p->next) {
        const double t0 = p->t0;
        const double t1 = p->t1;
        const bool holdsA = (t0 < a || same(t0, a)) && (t1 > a || same(t1, a));
        const bool holdsB = (t0 < b || same(t0, b)) && (t1 > b || same(t1, b));
        const bool within = (a < t0 || same(a, t0)) && (b > t1 || same(b, t1));
        if (holdsA || holdsB || within)
            return p;
    }
    return nullptr;
}

}  // namespace geolib
