// Splitting outlines into convex polygons at their reflex corners.
#include <cmath>
#include <cstddef>
#include <vector>

#include "VoGeVector3D.h"
#include "clip_trim.h"
#include "clipping/clip_plan.h"
#include "clipping/clip_ring.h"
#include "clipping/clip_tolerances.h"
#include "core/constants.h"
#include "core/plan.h"
#include "geolib_planar.h"

namespace geolib {

using clip::kSplitTol;

namespace {

// Kinds of corner at b on the way a -> b -> c.
constexpr int kBothShort = -3;
constexpr int kFirstShort = -1;
constexpr int kSecondShort = -2;
constexpr int kReflex = 1;
constexpr int kOther = 0;

// The turn at b: a reflex corner (a right turn of a counter-clockwise ring) when the unit
// directions have a cross product below -kSplitTol; edges shorter than kSplitTol have no
// direction. NaN coordinates give kOther.
int cornerTurn(const VoGePoint3D& a, const VoGePoint3D& b, const VoGePoint3D& c) {
    const VoGeVector3D ab(b.x - a.x, b.y - a.y, 0.0);
    const VoGeVector3D bc(c.x - b.x, c.y - b.y, 0.0);
    const double lab = ab.length();
    const double lbc = bc.length();
    const bool shortAB = lab < kSplitTol;
    const bool shortBC = lbc < kSplitTol;
    if (shortAB && shortBC)
        return kBothShort;
    if (shortAB)
        return kFirstShort;
    if (shortBC)
        return kSecondShort;
    const VoGeVector3D u = ab / lab;
    const VoGeVector3D w = bc / lbc;
    const double cross = core::planCross(u.x, u.y, w.x, w.y);
    if (std::fabs(cross) < kSplitTol)
        return kOther;
    return cross < 0.0 ? kReflex : kOther;
}

// The nearest edge that the edge e, extended beyond its end, meets.
struct Hit {
    line* edge = nullptr;  // the hit ends at its end or crosses it at `at`
    VoGePoint3D at;
};

// p lies within kSplitTol of the line through a along the unit plan direction u.
bool onLine(const VoGePoint3D& a, const VoGeVector3D& u, const VoGePoint3D& p) {
    return std::fabs(u.x * (p.y - a.y) - u.y * (p.x - a.x)) < kSplitTol;
}

bool findHit(line* e, Hit& hit) {
    const VoGePoint3D& a = e->start;
    const VoGePoint3D& b = e->end;
    const VoGeVector3D u = VoGeVector3D(b.x - a.x, b.y - a.y, 0.0).normalize();
    double best = clip::kSplitFar;
    line* prev = e;
    for (line* o = e->next; o != e; prev = o, o = o->next) {
        VoGePoint3D at;
        double t = 1.0;
        if (onLine(a, u, o->start) && onLine(a, u, o->end)) {
            at = o->end;
        } else {
            if (!lineIntersect2d(a, b, o->start, o->end, at, false))
                continue;
            t = clip::alongLargerExtent(o->start, o->end, at);
            at.z = o->start.z + t * (o->end.z - o->start.z);
        }
        line* hitEdge = o;
        if (at.distance2D(o->end) < kSplitTol) {
            at = o->end;
        } else if (at.distance2D(o->start) < kSplitTol) {
            at = o->start;
            hitEdge = prev;  // the hit is the end of the edge before
        } else if (!(t > 0.0 && t < 1.0)) {
            continue;
        }
        const double s = clip::alongLargerExtent(a, b, at);
        if (s > 1.0 && s < best && hitEdge != e) {
            best = s;
            hit.edge = hitEdge;
            hit.at = at;
        }
    }
    return hit.edge != nullptr;
}

// Moves the end of e to the hit and cuts the ring of poly in two there: poly keeps the ring
// through e (and heads it with e), a new polygon right after poly takes the ring from e's old
// successor. False if an allocation fails; nothing is changed then.
bool splitAt(convex* poly, line* e, const Hit& hit) {
    const bool atVertex = hit.at.distance2D(hit.edge->end) < kSplitTol;
    line* first = mallocLine();
    line* second = atVertex ? nullptr : mallocLine();
    convex* rest = mallocConvex();
    if (first == nullptr || rest == nullptr || (!atVertex && second == nullptr)) {
        freeLine(first);
        freeLine(second);
        freeConvex(rest);
        return false;
    }
    line* const n = e->next;
    line* const hitNext = hit.edge->next;
    const VoGePoint3D oldEnd = e->end;
    e->end = hit.at;
    if (atVertex) {
        // first: hit -> old end of e, closing the ring that starts at n.
        first->start = hit.at;
        first->end = oldEnd;
        e->next = hitNext;
        hit.edge->next = first;
        first->next = n;
    } else {
        // first: hit -> the hit edge's end, in e's ring; second: hit -> old end of e.
        first->start = hit.at;
        first->end = hit.edge->end;
        second->start = hit.at;
        second->end = oldEnd;
        e->next = first;
        first->next = hitNext;
        hit.edge->end = hit.at;
        hit.edge->next = second;
        second->next = n;
    }
    rest->edges = n;
    rest->next = poly->next;
    poly->next = rest;
    poly->edges = e;
    return true;
}

// Every vertex of the ring is finite and within the coordinate limit.
bool ringInRange(const line* head) {
    bool ok = true;
    clip::walkRing(head, [&ok](const line* e) {
        for (double v : {e->start.x, e->start.y, e->end.x, e->end.y}) {
            if (!(std::fabs(v) <= clip::kSplitCoordLimit))
                ok = false;
        }
        return ok;
    });
    return ok;
}

// The ring turns back on itself at b: the edges into and out of b, both of a length, run in
// opposite directions (the turn test takes that for a straight corner).
bool turnsBack(const VoGePoint3D& a, const VoGePoint3D& b, const VoGePoint3D& c) {
    const double ux = b.x - a.x;
    const double uy = b.y - a.y;
    const double wx = c.x - b.x;
    const double wy = c.y - b.y;
    const double lu = std::hypot(ux, uy);
    const double lw = std::hypot(wx, wy);
    if (lu < kSplitTol || lw < kSplitTol)
        return false;
    return (ux * wx + uy * wy) / (lu * lw) < 0.0 &&
           std::fabs(ux * wy - wx * uy) / (lu * lw) < kSplitTol;
}

// No corner of the ring is reflex, the ring nowhere turns back on itself, and it turns once
// round, not twice or more like a star whose every corner turns left. Edges shorter than
// kSplitTol are merged into their neighbours first, so that a repeated vertex hides no corner.
bool ringConvex(const line* head) {
    std::vector<VoGePoint3D> corners;
    clip::walkRing(head, [&corners](const line* e) {
        if (corners.empty() || e->end.distance2D(corners.back()) >= kSplitTol)
            corners.push_back(e->end);
        return true;
    });
    while (corners.size() > 1 && corners.back().distance2D(corners.front()) < kSplitTol)
        corners.pop_back();
    if (corners.size() < 3)
        return true;  // no area: nothing to be convex about
    double turned = 0.0;
    for (std::size_t i = 0, n = corners.size(); i < n; ++i) {
        const VoGePoint3D& a = corners[i];
        const VoGePoint3D& b = corners[(i + 1) % n];
        const VoGePoint3D& c = corners[(i + 2) % n];
        if (cornerTurn(a, b, c) == kReflex || turnsBack(a, b, c))
            return false;
        const double ux = b.x - a.x;
        const double uy = b.y - a.y;
        const double wx = c.x - b.x;
        const double wy = c.y - b.y;
        turned += std::atan2(ux * wy - wx * uy, ux * wx + uy * wy);
    }
    return std::fabs(turned - core::kFullTurn) < clip::kOneTurnTol;
}

}  // namespace

bool ConvexIdentify(convex* polys) {
    // Every ring must close before anything is changed. A simple outline needs fewer splits
    // than it has edges (each split removes a reflex corner and makes none); a
    // self-intersecting ring may go on splitting for ever, so the edges bound the splits.
    std::size_t budget = 0;
    for (const convex* poly = polys; poly != nullptr; poly = poly->next) {
        if (poly->edges == nullptr)
            continue;
        const std::size_t n = clip::closedRingSize(poly->edges);
        if (n == 0 || !ringInRange(poly->edges))
            return false;
        budget += n;
    }
    for (convex* poly = polys; poly != nullptr; poly = poly->next) {
        line* head = poly->edges;
        if (head == nullptr)
            continue;
        line* e = head;
        do {
            const line* n = e->next;
            if (cornerTurn(e->start, e->end, n->end) == kReflex) {
                Hit hit;
                if (budget == 0 || !findHit(e, hit) || !splitAt(poly, e, hit))
                    return false;
                --budget;
                head = e;
            }
            e = e->next;
        } while (e != head);
    }
    // A self-intersecting ring can be split into rings that still turn the wrong way somewhere:
    // true promises convex polygons only.
    for (const convex* poly = polys; poly != nullptr; poly = poly->next) {
        if (poly->edges != nullptr && !ringConvex(poly->edges))
            return false;
    }
    return true;
}

}  // namespace geolib
