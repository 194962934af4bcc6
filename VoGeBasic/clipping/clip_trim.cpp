#include "clip_trim.h"

#include <algorithm>
#include <cmath>

#include "clip_params.h"
#include "clipping/clip_list.h"
#include "clipping/clip_params_internal.h"
#include "clipping/clip_plan.h"
#include "clipping/clip_ring.h"
#include "clipping/clip_tolerances.h"
#include "core/constants.h"
#include "core/plan.h"
#include "geolib_frames.h"

namespace geolib {

using clip::kSideTol;

namespace {

// Below the side tolerance, strictly.
bool nil(double v) {
    return std::fabs(v) < kSideTol;
}

// How a piece meets one polygon.
struct Crossing {
    int count = 0;  // 0 none, 1 or 2 crossings in t, 3 a collinear overlap left open
    bool sInside = true;
    bool eInside = true;
    double t[2] = {0.0, 0.0};
    // Where the piece leaves over a corner that the edge before did not record (below).
    bool cornerSeen = false;
    double corner = 0.0;
};

// Side of point q with respect to the line from p to r in the plan: positive when q lies to the
// right of it (the orientation of q, r, p, which is the same product order bit for bit).
double side(const VoGePoint3D& p, const VoGePoint3D& r, const VoGePoint3D& q) {
    return core::planTurn(q, r, p);
}

// Walks the ring of one polygon and finds where the piece s-e enters and leaves it.
Crossing crossPolygon(const line* ring, const VoGePoint3D& s, const VoGePoint3D& e) {
    Crossing c;
    double cLo = 0.0;
    double cHi = 0.0;
    auto outside = [&c]() {
        c.sInside = false;
        c.eInside = false;
        c.count = 0;
        return false;
    };
    clip::walkRing(ring, [&](const line* edge) {
        const VoGePoint3D& p = edge->start;
        const VoGePoint3D& q = edge->end;
        const double d1 = side(p, q, s);
        const double d2 = side(p, q, e);
        if (nil(d1) && nil(d2)) {
            // The piece lies on the edge's line.
            const double u = clip::alongLargerExtent(s, e, p);
            const double v = clip::alongLargerExtent(s, e, q);
            double lo = std::min(u, v);
            double hi = std::max(u, v);
            if (c.count == 3) {
                lo = std::min(lo, cLo);
                hi = std::max(hi, cHi);
            }
            if (nil(lo - 1.0) || nil(hi))
                return outside();  // the overlap touches the piece only at an end
            c.t[0] = std::max(lo, 0.0);
            c.t[1] = std::min(hi, 1.0);
            c.count = 2;
            if (std::fabs(c.t[0]) <= kSideTol && std::fabs(c.t[1] - 1.0) <= kSideTol)
                return false;
            cLo = c.t[0];
            cHi = c.t[1];
            c.count = 3;
            return true;
        }
        if (c.count == 3) {
            c.t[0] = std::max(cLo, 0.0);
            c.t[1] = std::min(cHi, 1.0);
            c.count = 2;
            return false;
        }
        if ((nil(d1) || d1 > 0.0) && (nil(d2) || d2 > 0.0))
            return outside();  // both ends on or right of the edge
        // A side value of exactly the tolerance is a side, not the line: with "strictly above"
        // here and "strictly below" for the line, an end at exactly 1e-4 would be neither, and
        // a piece running out of the polygon from there would count as wholly inside.
        if (std::fabs(d1) >= kSideTol && std::fabs(d2) >= kSideTol && (d1 > 0.0) != (d2 > 0.0)) {
            if (d1 > 0.0)
                c.sInside = false;
            if (d2 > 0.0)
                c.eInside = false;
            const double c1 = side(s, e, p);
            const double c2 = side(s, e, q);
            // With coordinates beyond about 1e150 a side value can overflow to NaN; a NaN c2
            // then counts as lying opposite a positive c1. That is no sound rule, but asking
            // |c2| >= tol of it would drop the crossing an overflow hides and hide the piece
            // whole: such coordinates are outside what the trimming promises to handle.
            const bool crosses = nil(c2) || (std::fabs(c1) >= kSideTol && (c1 > 0.0) != (c2 > 0.0));
            // A convex ring is crossed at most twice; a third crossing of a ring that is not
            // convex is not recorded.
            if (crosses && c.count < 2)
                c.t[c.count++] = d1 / (d1 - d2);
            // The piece crosses at this edge's start P, which the edge before records as its
            // end, unless one end of the piece lay on that edge's line. Kept for that case.
            if (nil(c1) && !c.cornerSeen) {
                c.cornerSeen = true;
                c.corner = d1 / (d1 - d2);
            }
        }
        return true;
    });
    return c;
}

}  // namespace

bool convexTrimLineSeg(convex* polys, line_cut* pieces) {
    for (line_cut* piece = pieces; piece != nullptr; piece = piece->next) {
        const VoGePoint3D s = piece->start;
        const VoGePoint3D e = piece->end;
        if (std::fabs(s.x - e.x) <= kSideTol && std::fabs(s.y - e.y) <= kSideTol)
            continue;  // a point in the plan
        // A null list and a polygon without edges hide nothing (the walk reads each polygon's
        // ring, so neither may reach it).
        for (convex* poly = polys; poly != nullptr; poly = poly->next) {
            if (poly->edges == nullptr)
                continue;
            Crossing c = crossPolygon(poly->edges, s, e);
            // With one end strictly outside an edge and no crossing recorded, the piece is not
            // wholly inside: its other end lies on the outline within the side tolerance. When
            // it leaves over a corner at the end of an edge on whose line it starts (or ends),
            // it is cut at that corner; otherwise it only touches the polygon and keeps all.
            if (c.count == 0 && c.sInside != c.eInside) {
                if (!c.cornerSeen)
                    continue;
                c.count = 1;
                c.t[0] = c.corner;
            }
            double a = 0.0;
            double b = 0.0;
            if (c.count == 0) {
                if (!c.sInside && !c.eInside)
                    continue;
                // Wholly inside: nothing of the piece stays visible. The whole list is given
                // back, not only its head, so that a piece cut before leaks nothing.
                freeParamt(piece->params);
                piece->params = nullptr;
                break;
            }
            if (c.count == 1) {
                if (c.sInside) {
                    b = c.t[0];
                } else if (c.eInside) {
                    a = c.t[0];
                    b = 1.0;
                } else {
                    continue;
                }
            } else if (c.count == 2) {
                a = std::min(c.t[0], c.t[1]);
                b = std::max(c.t[0], c.t[1]);
            } else {
                continue;  // the walk ended on a collinear overlap
            }
            if (clip::removeInterval(piece->params, a, b, false) == clip::CutResult::noMemory)
                return false;
        }
    }
    return true;
}

line_cut* polygonTrimLine(convex* polys, double* const s, double* const e) {
    if (s == nullptr || e == nullptr)
        return nullptr;
    line_cut* piece = mallocLineCut(s, e);
    if (piece == nullptr)
        return nullptr;
    if (!convexTrimLineSeg(polys, piece)) {
        freeLineCut(piece);
        return nullptr;
    }
    return piece;
}

line_cut* polygonTrimLine(convex* polys, const VoGePoint3D& s, const VoGePoint3D& e) {
    double sa[3];
    double ea[3];
    s.toKestPoint(sa);
    e.toKestPoint(ea);
    return polygonTrimLine(polys, sa, ea);
}

bool box2DTrimLine(convex* polys, double* const s, double* const e, double& u0, double& u1) {
    line_cut* piece = polygonTrimLine(polys, s, e);
    if (piece == nullptr)
        return false;
    const paramt* first = piece->params;
    // Whatever the cases below leave unsaid hides nothing.
    double lo = 1.0;
    double hi = 0.0;
    if (first == nullptr) {
        lo = 0.0;
        hi = 1.0;
    } else if (nil(first->t0) && nil(first->t1 - 1.0)) {
        // Nothing hidden: the empty range, start above end, by design.
    } else if (std::fabs(first->t0) <= kSideTol) {
        if (first->next != nullptr) {
            lo = first->t1;
            hi = first->next->t0;
        } else if (std::fabs(first->t1 - 1.0) > kSideTol) {
            lo = first->t1;
            hi = 1.0;
        }
    } else if (first->t0 > kSideTol) {
        lo = 0.0;
        hi = first->t0;
    }
    u0 = lo;
    u1 = hi;
    freeLineCut(piece);
    return true;
}

line_cut* divide_arc2line(const double* const c, double r, double a0, double a1, double chord,
                          int maxCount) {
    if (c == nullptr)
        return nullptr;
    if (a1 < a0)
        a0 -= core::kFullTurn;  // the arc runs through angle 0
    const double sweep = a1 - a0;
    // Guarded before the conversion: NaN, negative and small counts give the minimum, and only
    // a value below maxCount is truncated.
    const double wanted = sweep * r / chord + 1.0;
    int count = clip::kMinChords;
    if (wanted >= static_cast<double>(clip::kMinChords)) {
        if (wanted >= static_cast<double>(maxCount))
            count = std::max(maxCount, clip::kMinChords);
        else
            count = static_cast<int>(wanted);
    }
    const double step = sweep / count;
    VoGePoint3D prev(c[0] + r * std::cos(a0), c[1] + r * std::sin(a0), c[2]);
    clip::ListBuilder<line_cut> chords;
    double angle = a0;
    for (int i = 1; i <= count; ++i) {
        angle += step;
        const double at = i == count ? a1 : angle;
        const VoGePoint3D next(c[0] + r * std::cos(at), c[1] + r * std::sin(at), c[2]);
        line_cut* piece = mallocLineCut(prev, next);
        if (piece == nullptr) {
            freeLineCut(chords.head);
            return nullptr;
        }
        chords.append(piece);
        prev = next;
    }
    return chords.head;
}

line_cut* divide_circle2line(const double* const c, double r, double chord, int maxCount) {
    return divide_arc2line(c, r, 0.0, core::kFullTurn, chord, maxCount);
}

namespace {

// A chord whose first interval is [0, 1] within the side tolerance at both ends.
bool wholeChord(const line_cut* chord) {
    const paramt* p = chord->params;
    return p != nullptr && nil(p->t0) && nil(p->t1 - 1.0);
}

// The visible runs of the trimmed chords as angles about centre; false if an allocation fails.
bool visibleRuns(const line_cut* chords, const VoGePoint3D& centre, paramt*& runs) {
    clip::ListBuilder<paramt> out;
    paramt* open = nullptr;
    for (const line_cut* chord = chords; chord != nullptr; chord = chord->next) {
        if (!wholeChord(chord)) {
            open = nullptr;  // wholly or partly hidden: the run ends here
            continue;
        }
        // An interval may end at the full turn itself, which the angle of a point never is:
        // a chord ending a hair below angle 0 ends its run there.
        double phi = angleToX(centre, chord->end);
        if (phi == core::kJustBelowFullTurn)
            phi = core::kFullTurn;
        if (open == nullptr) {
            open = mallocParamt(false);
            if (open == nullptr) {
                freeParamt(out.head);
                return false;
            }
            open->t0 = angleToX(centre, chord->start);
            open->t1 = phi;
            out.append(open);
        } else if (std::fabs(phi) < clip::kArcAngleTol &&
                   std::fabs(open->t0) < clip::kArcAngleTol) {
            open->t1 = core::kFullTurn;  // a visible run closing the full circle
        } else {
            open->t1 = phi;
        }
    }
    runs = out.head;
    return true;
}

}  // namespace

arc_cut* polygonTrimArc(convex* polys, double* const c, double r, double a0, double a1) {
    line_cut* chords = divide_arc2line(c, r, a0, a1, clip::kTrimChordLength, clip::kTrimMaxChords);
    if (chords == nullptr)
        return nullptr;
    paramt* runs = nullptr;
    const bool ok = convexTrimLineSeg(polys, chords) && visibleRuns(chords, VoGePoint3D(c), runs);
    freeLineCut(chords);
    if (!ok)
        return nullptr;
    arc_cut* result = mallocArcCut();
    if (result == nullptr) {
        freeParamt(runs);
        return nullptr;
    }
    result->center = VoGePoint3D(c);
    result->radius = r;
    result->startAngle = a0;
    result->endAngle = a1;
    result->params = runs;
    return result;
}

arc_cut* polygonTrimCircle(convex* polys, double* const c, double r) {
    return polygonTrimArc(polys, c, r, 0.0, core::kFullTurn);
}

bool isPointInPoly(const convex* poly, const VoGePoint3D& p) {
    if (poly == nullptr || poly->edges == nullptr)
        return false;
    bool inside = false;
    clip::walkRing(poly->edges, [&](const line* e) {
        if (core::crossesRightOf(e->end, e->start, p))
            inside = !inside;
        return true;
    });
    return inside;
}

}  // namespace geolib
