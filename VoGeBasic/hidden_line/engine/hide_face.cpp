// The hide pass face by face: the part of one line hidden behind one face.
#include <cmath>

#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/engine/hd_pass.h"

namespace geolib {

namespace {

// The face tests with or without the face's prepared data.
bool inFace(_s_hd_point_ p, const HDFace& f, const FaceTestAids& aids) {
    return (aids.prep != nullptr ? isPointInFace(p, f, *aids.prep)
                                 : isPointInFace(p, f.count, f.v)) != 0;
}
bool onEdge(_s_hd_point_ p, const HDFace& f, int k, const FaceTestAids& aids) {
    const _s_hd_point_ a = f.v[k];
    const _s_hd_point_ b = f.v[nextVertex(k, f.count)];
    return aids.prep != nullptr ? onSegWithin(p, a, b, aids.prep->reach[k])
                                : isPointOnSeg(p, a, b) != 0;
}
// boundedEnds of edge k, from the face's prepared data when every edge is bounded.
inline bool edgeBounded(const HDFace& f, int k, const FaceTestAids& aids) {
    return edgeBounded(f, k, aids.prep);
}
// onEdge for the point c + t (d - c) of edge k's line (c -> d the edge), as crossProjections
// works it out: well inside the edge it is on it without measuring (surelyOnSegment).
bool onEdgeAt(_s_hd_point_ p, double t, const HDFace& f, int k, const FaceTestAids& aids) {
    const double len2 =
        aids.prep != nullptr ? aids.prep->len2[k] : pointDist2(f.v[k], f.v[nextVertex(k, f.count)]);
    return (surelyWithinSegment(t, len2) && edgeBounded(f, k, aids)) || onEdge(p, f, k, aids);
}
// The side of the line's projection that vertex k lies on, as crossParameters works it out.
double vertexSide(const HideLine& line, const HDFace& f, int k) {
    return det2(f.v[k].x - line.p.x, f.v[k].y - line.p.y, line.run.dx, line.run.dy);
}
// crossParameters of the line and edge k: where their projections cross, as crossProjections
// works it out, with the points left to pointAlong. side is vertexSide of vertex k.
ProjCrossing crossEdge(const HideLine& line, const HDFace& f, int k, const FaceTestAids& aids,
                       double side) {
    const _s_hd_point_ a = f.v[k];
    return crossParameters(
        line.p, a, line.run,
        aids.prep != nullptr ? aids.prep->run[k] : flatRunOf(a, f.v[nextVertex(k, f.count)]), side);
}
ProjCrossing crossEdge(const HideLine& line, const HDFace& f, int k, const FaceTestAids& aids) {
    return crossEdge(line, f, k, aids, vertexSide(line, f, k));
}

// True when the point straight behind or in front of e on the face's plane lies in the face
// and e is behind that point or level with it.
bool endBehindFace(_s_hd_point_ e, const HDFace& f, FaceTestAids aids) {
    // The point i below has e's X and Y (e + t (0, 0, dz) adds t times zero to them) or, where t
    // or the run is not finite, NaN in them: outside the extents when e is.
    if (!withinXYExtents(e, f, hd::kBehindExtentTol))
        return false;
    const _s_hd_point_ up = {e.x, e.y, e.z + 1.0};
    double t = 0.0;
    const _s_hd_point_ i = linePlaneInter(f.normal, f.v[0], e, up, t);
    // The cheap tests first: most faces fail them and never reach the angle sum. i lies within
    // the extents just where t is finite: a finite t leaves every coordinate of e finite (an
    // infinite or NaN one makes n.(v0 - e) or the divisor infinite or NaN), so i's X and Y are
    // e's plus t times zero, e's own to the bit but for a zero's sign, which no comparison sees.
    if (!std::isfinite(t) || !(i.z < e.z || std::fabs(i.z - e.z) < hd::kLevelDepthTol))
        return false;
    if (aids.memo == nullptr)
        return inFace(i, f, aids);
    // Where the outline settles it (most points), asking the memo would cost more than the
    // answer; it is the one inFace gives. Where it does not, inFace is the angle test.
    if (aids.prep != nullptr) {
        const int byOutline = pointInFaceByOutline(i, f, *aids.prep);
        if (byOutline >= 0)
            return byOutline != 0;
    }
    const int known = aids.memo->find(aids.face, e);
    if (known >= 0)
        return known != 0;
    const bool inside =
        aids.prep != nullptr ? pointInFaceBeyondOutline(i, f, *aids.prep) != 0 : inFace(i, f, aids);
    aids.memo->remember(aids.face, e, inside);
    return inside;
}

// True when the point pointAlong(p, q, t) lies on the extension of the line p -> q (both ends
// within kCullCoordLimit: the caller asks boundedEnds) more than kBeyondEndMin beyond an end, len2
// being pointDist2(p, q): there onSegAt answers false. t outside [0, 1] fails surelyWithinSegment,
// so onSegAt is onSegWithin. The point is p + t (q - p) rounded: off the exact point by at most
// 3.3e-16 of |t| |q - p| plus 1.1e-16 of its coordinates, below 1e-6 plus parts in 1e15 of its
// distance from the nearer end (|t| at most beyondSegmentEnd's kBeyondParamMax, |q - p|
// below 3.5e9), so it lies beyond that end, on the line to within that, at least 9.9e-4 from it
// (len2 is rounded by parts in 1e15). isPointOnSeg finds it at neither end (isSamePointFine, the
// squared end distance of 1e-9), surelyOnOrOff cannot answer 1 (the point's offset from the end
// along the segment has the wrong sign), and the segment subtends under 2e-3 rad from it: the
// cosine worked out from the distances, off by at most 2e-16 times the farther end's distance over
// the nearer's (below 1e13), stays far above kOnSegSureOffCos, and isPointOnSeg answers 0. NaN
// fails.
bool beyondLineEnds(double t, double len2) {
    constexpr double kBeyondEndMin = 1e-3;  // far above the 3.2e-5 of isPointOnSeg's end test
    return beyondSegmentEnd(t, len2, kBeyondEndMin);
}

// The crossings of the face's outline that hide the line p -> q where they cross it: the
// edge is nearer than the line there, or level with it. Returns how many (0 to 2); c1 is the
// nearer to p.
int outlineCrossings(const HideLine& line, const HDFace& f, const FaceTestAids& aids,
                     _s_hd_point_& c1, _s_hd_point_& c2) {
    const _s_hd_point_ p = line.p;
    const _s_hd_point_ q = line.q;
    // An edge whose ends both lie on one side of the line's projection, farther from it than
    // kEdgeApartAbs plus kEdgeApartRel times the face's size, gives no crossing, and is passed
    // over without working one out. With every coordinate within kCullCoordLimit, the sides
    // below (distance times the run's length) are off by at most 1.4e-6 of the run's length,
    // and the crossing's parameter along the edge, its divisor at least kProjParallelTol times
    // the product of the runs' lengths, by at most 5e-7 of itself plus 1.4e-6 of the line's run
    // over the divisor: the point crossProjections works out lies on the edge's line beyond its
    // nearer end by at least 9.9e-4 plus 9e-6 of the size (farther in space than in the drawing),
    // off the line by rounding below 1e-6. There the parameter fails surelyOnSegment, the point is
    // no end of the edge, and the edge subtends under 3e-3 rad from it (cosine far above
    // kOnSegSureOffCos, rounded by under 2e-10): onEdgeAt answers false, as it does for a crossing
    // of the edge's extension. NaN fails the comparisons and is worked out.
    constexpr double kEdgeApartAbs = 1e-3;  // far above the 3.2e-5 of isPointOnSeg's end test
    constexpr double kEdgeApartRel = 1e-5;  // covers the parameter's rounding along the edge
    const double apart = (kEdgeApartAbs + kEdgeApartRel * faceSize(f)) * line.run.len;
    double side[kMaxFaceVertices];
    for (int k = 0; k < f.count; ++k)
        side[k] = vertexSide(line, f, k);
    int found = 0;
    for (int k = 0; k < f.count; ++k) {
        const int next = nextVertex(k, f.count);
        if (((side[k] > apart && side[next] > apart) ||
             (side[k] < -apart && side[next] < -apart)) &&
            line.bounded && edgeBounded(f, k, aids))
            continue;
        const ProjCrossing x = crossEdge(line, f, k, aids, side[k]);
        if (x.parallel)
            continue;
        // A crossing far beyond an end of the line fails the last test below (beyondLineEnds),
        // whatever the tests before it answer: they only pass crossings over, so it is passed
        // over at once.
        if (line.bounded && beyondLineEnds(x.lineAt, line.len2))
            continue;
        // The depths first: most crossings of a line in front of the face end there, before
        // the points are worked out whole.
        const _s_hd_point_ b = f.v[next];
        const double lineZ = pointAlong(p, q, x.lineAt).z;
        const double edgeZ = pointAlong(f.v[k], b, x.edgeAt).z;
        if (!(edgeZ < lineZ || std::fabs(lineZ - edgeZ) < hd::kLevelDepthTol))
            continue;
        const _s_hd_point_ k3 = pointAlong(p, q, x.lineAt);
        if (isSamePointFine(k3, p) || isSamePointFine(k3, q))
            continue;
        // Only where the edge crosses the segment itself: a crossing of its extension would
        // give a piece that leaves the line.
        if (!onEdgeAt(pointAlong(f.v[k], b, x.edgeAt), x.edgeAt, f, k, aids) ||
            !onSegAt(k3, x.lineAt, line.len2, p, q, line.reach, line.bounded))
            continue;
        if (found == 0) {
            c1 = k3;
            found = 1;
        } else if (!isSamePointFine(k3, c1) &&
                   std::fabs(pointDist(k3, p) - pointDist(c1, p)) > hd::kCrossingSeparation) {
            c2 = k3;
            if (pointDist(c2, p) < pointDist(c1, p)) {
                c2 = c1;
                c1 = k3;
            }
            return 2;  // a third crossing would not be used
        }
    }
    return found;
}

}  // namespace

// lineCrossesPlane is isLineCrossPlane(a, b, n) != 0, n a unit normal, deciding from the
// unnormalised direction v = b - a wherever that is sure and normalising only near the tolerance.
// The exact test divides v by its length after snapping (vecLength), which only sets components
// below kComponentSnap to zero: its squared length is at most q2 = v.v here (each square no larger,
// the rounded sum monotone), and with q2 at least kSureCrossLen2Min it is smaller by at most 3e-18,
// parts in 1e12 (the length by half that). The dot product v.n, here and after dividing by the
// length there, is rounded by at most about 1e-15 of the length; so with q2 up to
// kSureCrossLen2Max, where |v.n| is farther than kSureCrossBand of the length from
// kPlaneParallelTol times it (squares compared, rounded by parts in 1e15), both give the same side.
// Outside that range, and for NaN, the exact test runs.
bool lineCrossesPlane(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ n) {
    // Far above the 1e-15 the two dot products can differ by, and the 1e-16 the snapping moves the
    // tolerance by, per unit of length.
    constexpr double kSureCrossBand = 1e-12;
    // A length of at least 1e-3 keeps the snapping's part tiny and the vector far above
    // kUnitMinLength; 1e200 keeps the squares finite.
    constexpr double kSureCrossLen2Min = 1e-6;
    constexpr double kSureCrossLen2Max = 1e200;
    constexpr double kCrossAbove =
        (hd::kPlaneParallelTol + kSureCrossBand) * (hd::kPlaneParallelTol + kSureCrossBand);
    constexpr double kParallelBelow =
        (hd::kPlaneParallelTol - kSureCrossBand) * (hd::kPlaneParallelTol - kSureCrossBand);
    const _s_hd_point_ v = vecSub(b, a);
    const double q2 = vecDot(v, v);
    // Ends that coincide to within the snapping (a face vertex that is the line's end, as on
    // every edge of the face the line runs along): the sum vecLength forms is at most q2, so the
    // exact test's direction is the zero vector, which crosses no plane.
    if (q2 <= hd::kNullLengthSq)
        return false;
    if (q2 >= kSureCrossLen2Min && q2 <= kSureCrossLen2Max) {
        // The two answers exclude each other (kParallelBelow is below kCrossAbove, and rounding
        // keeps the order of their products with q2), so the parallel one, which most pairs
        // answer (a line in the face's plane asks all six), is asked first.
        const double d = vecDot(v, n);
        if (d * d < kParallelBelow * q2)
            return false;
        if (d * d > kCrossAbove * q2)
            return true;
    }
    return isLineCrossPlane(a, b, n) != 0;
}

void orientNearFirst(_s_hd_point_& p, _s_hd_point_& q) {
    if (q.z - p.z <= 0.0) {
        const _s_hd_point_ t = p;
        p = q;
        q = t;
    }
}

bool faceMeetsLineRange(const HDFace& face, _s_hd_point_ p, _s_hd_point_ q) {
    return faceMeetsLineRange(face, lineRangeOf(p, q));
}

bool faceMeetsLineRange(const HDFace& face, const LineRange& range) {
    return face.xmax >= range.xmin && face.ymax >= range.ymin && face.xmin <= range.xmax &&
           face.ymin <= range.ymax;
}

namespace {

// isSeenEndOn on the line's unit direction.
bool isEndOnDir(_s_hd_point_ dir) {
    return std::fabs(dir.x) < hd::kEndOnTol && std::fabs(dir.y) < hd::kEndOnTol &&
           std::fabs(std::fabs(dir.z) - 1.0) < hd::kEndOnTol;
}

}  // namespace

bool isSeenEndOn(_s_hd_point_ p, _s_hd_point_ q) {
    return isEndOnDir(unitDir(q, p));
}

HideLine hideLineOf(_s_hd_point_ p, _s_hd_point_ q) {
    const _s_hd_point_ dir = unitDir(q, p);
    return {p,
            q,
            dir,
            isEndOnDir(dir),
            segmentReach(p, q),
            flatRunOf(p, q),
            lineRangeOf(p, q),
            pointDist2(p, q),
            boundedEnds(p, q)};
}

bool hideLineByFace(_s_hd_point_ p, _s_hd_point_ q, const HDFace& f, _s_hd_point_& from,
                    _s_hd_point_& to, FaceTestAids aids) {
    return hideLineByFace(hideLineOf(p, q), f, from, to, aids);
}

bool hideLineByFace(const HideLine& line, const HDFace& f, _s_hd_point_& from, _s_hd_point_& to,
                    FaceTestAids aids) {
    const _s_hd_point_ p = line.p;
    const _s_hd_point_ q = line.q;
    const _s_hd_point_ n = f.normal;
    if (std::fabs(n.z) < hd::kEdgeOnNormalZ)
        return false;  // seen edge-on (or no plane at all)

    // A line in the face's own plane is never hidden by it.
    const bool parallel = !crossesPlane(line.dir, n);
    if (parallel) {
        bool inPlane = true;
        for (int k = 0; k < 3 && inPlane; ++k)
            inPlane = !lineCrossesPlane(f.v[k], q, n) && !lineCrossesPlane(f.v[k], p, n);
        if (inPlane)
            return false;
    }

    // A line seen end-on is a point of the drawing: hidden whole.
    if (line.endOn) {
        from = p;
        to = q;
        return true;
    }

    // The piercing point opens a piece unless it lies on an edge the line crosses in the
    // drawing (the crossings below take care of it there) or at an end of the line.
    bool opened = false;
    _s_hd_point_ x = p;
    if (!parallel) {
        double t = 0.0;
        x = linePlaneInter(n, f.v[0], p, q, t);
        // The tests depend on nothing but their arguments, so their order changes no answer: a
        // point at an end of the line (a line ending on the face's plane) opens nothing, and
        // that is asked before the costly inside test.
        if (withinXYExtents(x, f, hd::kPierceExtentTol) && !isSamePointFine(x, p) &&
            !isSamePointFine(x, q) && onSegAt(x, t, line.len2, p, q, line.reach, line.bounded) &&
            inFace(x, f, aids)) {
            opened = true;
            for (int k = 0; k < f.count; ++k) {
                if (onEdge(x, f, k, aids)) {
                    opened = crossEdge(line, f, k, aids).parallel;
                    break;
                }
            }
        }
    }

    const bool qBehind = endBehindFace(q, f, aids);
    if (opened && qBehind) {
        from = x;
        to = q;
        return true;
    }
    // With both ends behind and no piercing point the piece is the whole line, whatever the
    // outline's crossings: they are looked for only where they can count. The near end's test
    // is made here instead of after them, and the crossings touch nothing it reads or keeps.
    if (!opened && qBehind && endBehindFace(p, f, aids)) {
        from = p;
        to = q;
        return true;
    }

    _s_hd_point_ c1 = p;
    _s_hd_point_ c2 = p;
    const int crossings = outlineCrossings(line, f, aids, c1, c2);
    if (opened) {
        if (crossings == 2) {
            from = c1;
            to = c2;
            return true;
        }
        if (crossings == 1) {
            const double dx = pointDist(x, p);
            const double d1 = pointDist(c1, p);
            if (std::fabs(dx - d1) <= hd::kMinPieceSpan)
                return false;
            from = dx < d1 ? x : c1;
            to = dx < d1 ? c1 : x;
            return true;
        }
        if (!endBehindFace(p, f, aids))
            return false;
        from = p;
        to = x;
        return true;
    }
    if (qBehind) {
        // The near end is not behind (asked above).
        if (crossings == 0)
            return false;
        from = c1;
        to = q;
        return true;
    }
    if (crossings == 0)
        return false;
    const bool pBehind = endBehindFace(p, f, aids);
    if (crossings == 2) {
        from = pBehind ? p : c1;
        to = c2;
        return true;
    }
    if (crossings == 1 && pBehind) {
        from = p;
        to = c1;
        return true;
    }
    return false;
}

}  // namespace geolib
