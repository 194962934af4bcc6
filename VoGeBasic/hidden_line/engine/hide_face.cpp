// The hide pass face by face: the numeric tests and the hidden part of one line behind one face.
#include <cmath>
#include <limits>

#include "core/angles.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "hidden_line/engine/hd_engine_tolerances.h"

namespace geolib {

namespace {

using core::clampUnit;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The angle test of isPointOnSeg on the cosine c of the angle the segment subtends.
bool onSegAngleTest(double c) {
    return std::fabs(2.0 * std::acos(c) - hd::kOnSegTurn) < hd::kOnSegAngleTol;
}

// The largest cosine in [-1, kOnSegSureOffCos] that passes onSegAngleTest, found by halving the
// interval between a passing and a failing cosine down to neighbouring doubles. The test is
// monotonic in c (acos decreases, and 2 acos(c) stays below kOnSegTurn), and acos is accurate to
// an ulp or two, so every cosine farther than kOnSegEdgeBand below it passes and every one
// farther above it fails: there the angle changes by over 1e-9, a million ulps.
double onSegEdgeCosine() {
    double pass = -1.0;
    double fail = hd::kOnSegSureOffCos;
    for (;;) {
        const double mid = pass + 0.5 * (fail - pass);
        if (mid == pass || mid == fail)
            return pass;
        (onSegAngleTest(mid) ? pass : fail) = mid;
    }
}

// isPointOnSeg past its first step: p is known to lie within the segment's reach.
int isPointOnSegInReach(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
    if (isSamePointFine(p, a) || isSamePointFine(p, b))
        return 1;
    if (pointDist2(p, a) <= hd::kOnSegEndDist2 || pointDist2(p, b) <= hd::kOnSegEndDist2)
        return 1;
    const double pa = pointDist(p, a);
    const double pb = pointDist(p, b);
    const double ab = pointDist(a, b);
    const double c = clampUnit((pa * pa + pb * pb - ab * ab) / (2.0 * pa * pb));
    if (c > hd::kOnSegSureOffCos)
        return 0;  // the angle is far below a half turn: no need to measure it
    // Away from the cosine where the angle test turns, its answer is known without the angle.
    static const double edge = onSegEdgeCosine();
    if (c < edge - hd::kOnSegEdgeBand)
        return 1;
    if (c > edge + hd::kOnSegEdgeBand)
        return 0;
    return onSegAngleTest(c) ? 1 : 0;
}

}  // namespace

double acosBound(double c) {
    // arccos x = sqrt(1 - x) (a0 + a1 x + ... + a7 x^7) on [0, 1], within 2e-8 (the classic
    // eight-term fit); arccos(-x) = pi - arccos x.
    constexpr double kA[8] = {1.5707963050, -0.2145988016, 0.0889789874, -0.0501743046,
                              0.0308918810, -0.0170881256, 0.0066700901, -0.0012624911};
    const double x = std::fabs(c);
    double poly = kA[7];
    for (int k = 6; k >= 0; --k)
        poly = poly * x + kA[k];
    const double r = std::sqrt(1.0 - x) * poly;
    return c < 0.0 ? core::kPi - r : r;
}

namespace {

// The unit area normal of the polygon (Newell's sum, about the first vertex); zero for a
// polygon of no area.
_s_hd_point_ areaNormal(int count, const _s_hd_point_* v) {
    _s_hd_point_ area = {0.0, 0.0, 0.0};
    for (int k = 1; k + 1 < count; ++k)
        area = vecAdd(area, vecCross(vecSub(v[k], v[0]), vecSub(v[k + 1], v[0])));
    return vecNormalize(area);
}

// isPointInFace for a polygon of at least three vertices, with its unit area normal, edge k's
// on-edge test onEdge(k) and squared length len2(k) supplied.
template <class OnEdge, class EdgeLen2>
int pointInPolygon(_s_hd_point_ p, int count, const _s_hd_point_* v, _s_hd_point_ area,
                   OnEdge&& onEdge, EdgeLen2&& len2) {
    for (int k = 0; k < count; ++k) {
        if (onEdge(k))
            return 1;
    }
    for (int k = 0; k < count; ++k) {
        if (pointDist2(p, v[k]) <= hd::kInFaceVertexDist2)
            return 1;
    }
    // The area normal gives every edge's angle its sign: it works for any simple polygon,
    // whichever way round its first three vertices turn.
    if (area.x == 0.0 && area.y == 0.0 && area.z == 0.0)
        return 0;
    // The angle sum first with acosBound in place of acos: away from the tolerance's edges it
    // gives the answer, and only near them are the angles measured with acos.
    double cosines[4];
    bool negative[4];
    double rough = 0.0;
    for (int k = 0; k < count; ++k) {
        const _s_hd_point_ a = v[k];
        const _s_hd_point_ b = v[nextVertex(k, count)];
        const double da2 = pointDist2(p, a);
        const double db2 = pointDist2(p, b);
        const double ab2 = len2(k);
        cosines[k] = clampUnit((da2 + db2 - ab2) / (2.0 * std::sqrt(da2) * std::sqrt(db2)));
        negative[k] = vecDot(vecCross(vecSub(a, p), vecSub(b, p)), area) < 0.0;
        const double angle = acosBound(cosines[k]);
        rough += negative[k] ? -angle : angle;
    }
    const double roughOff = std::fabs(std::fabs(rough) - hd::kInFaceTurn);
    if (roughOff < hd::kInFaceTurnTol - hd::kInFaceRoughBand)
        return 1;
    if (roughOff > hd::kInFaceTurnTol + hd::kInFaceRoughBand)
        return 0;
    double sum = 0.0;
    for (int k = 0; k < count; ++k) {
        const double angle = std::acos(cosines[k]);
        sum += negative[k] ? -angle : angle;
    }
    return std::fabs(std::fabs(sum) - hd::kInFaceTurn) < hd::kInFaceTurnTol ? 1 : 0;
}

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
ProjCrossing crossEdge(const HideLine& line, const HDFace& f, int k, const FaceTestAids& aids) {
    const _s_hd_point_ a = f.v[k];
    const _s_hd_point_ b = f.v[nextVertex(k, f.count)];
    return crossProjections(line.p, line.q, a, b, line.run,
                            aids.prep != nullptr ? aids.prep->run[k] : flatRunOf(a, b));
}

// True when the point straight behind or in front of e on the face's plane lies in the face
// and e is behind that point or level with it.
bool endBehindFace(_s_hd_point_ e, const HDFace& f, FaceTestAids aids) {
    const _s_hd_point_ up = {e.x, e.y, e.z + 1.0};
    const _s_hd_point_ i = linePlaneInter(f.normal, f.v[0], e, up);
    // The cheap tests first: most faces fail them and never reach the angle sum.
    if (!withinXYExtents(i, f, hd::kBehindExtentTol) ||
        !(i.z < e.z || std::fabs(i.z - e.z) < hd::kLevelDepthTol))
        return false;
    if (aids.memo == nullptr)
        return inFace(i, f, aids);
    const int known = aids.memo->find(aids.face, e);
    if (known >= 0)
        return known != 0;
    const bool inside = inFace(i, f, aids);
    aids.memo->remember(aids.face, e, inside);
    return inside;
}

// The crossings of the face's outline that hide the line p -> q where they cross it: the
// edge is nearer than the line there, or level with it. Returns how many (0 to 2); c1 is the
// nearer to p.
int outlineCrossings(const HideLine& line, const HDFace& f, const FaceTestAids& aids,
                     _s_hd_point_& c1, _s_hd_point_& c2) {
    const _s_hd_point_ p = line.p;
    const _s_hd_point_ q = line.q;
    int found = 0;
    for (int k = 0; k < f.count; ++k) {
        const ProjCrossing x = crossEdge(line, f, k, aids);
        if (x.parallel)
            continue;
        const _s_hd_point_ k3 = x.onLine;
        const double edgeZ = x.onEdge.z;
        if (!(edgeZ < k3.z || std::fabs(k3.z - edgeZ) < hd::kLevelDepthTol) ||
            isSamePointFine(k3, p) || isSamePointFine(k3, q))
            continue;
        // Only where the edge crosses the segment itself: a crossing of its extension would
        // give a piece that leaves the line.
        if (!onEdge(x.onEdge, f, k, aids) || !onSegWithin(k3, p, q, line.reach))
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

// ---- numeric tests ------------------------------------------------------------------------------

bool onSegWithin(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b, const SegmentReach& reach) {
    return !reach.excludes(p) && isPointOnSegInReach(p, a, b) != 0;
}

int isPointOnSeg(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
    return onSegWithin(p, a, b, segmentReach(a, b)) ? 1 : 0;
}

int isPointInFace(_s_hd_point_ p, int count, const _s_hd_point_* v) {
    if (count < 3)
        return 0;
    return pointInPolygon(
        p, count, v, areaNormal(count, v),
        [&](int k) { return isPointOnSeg(p, v[k], v[nextVertex(k, count)]) != 0; },
        [&](int k) { return pointDist2(v[k], v[nextVertex(k, count)]); });
}

int isPointInFace(_s_hd_point_ p, const HDFace& f, const FacePrep& prep) {
    if (f.count < 3)
        return 0;
    return pointInPolygon(
        p, f.count, f.v, prep.area,
        [&](int k) { return onSegWithin(p, f.v[k], f.v[nextVertex(k, f.count)], prep.reach[k]); },
        [&](int k) { return prep.len2[k]; });
}

void prepareEdgeTests(const HDFace& f, FacePrep& prep, const double* flatLengths) {
    for (int k = 0; k < f.count; ++k) {
        const _s_hd_point_ a = f.v[k];
        const _s_hd_point_ b = f.v[nextVertex(k, f.count)];
        prep.reach[k] = segmentReach(a, b);
        prep.len2[k] = pointDist2(a, b);
        if (flatLengths == nullptr)
            prep.run[k] = flatRunOf(a, b);
        else
            prep.run[k] = {b.x - a.x, b.y - a.y, flatLengths[k]};
    }
}

_s_hd_point_ faceAreaNormal(const HDFace& f) {
    return areaNormal(f.count, f.v);
}

void prepareFaceTests(const HDFace& f, FacePrep& prep) {
    prepareEdgeTests(f, prep);
    for (int k = 0; k < f.count; ++k)
        prep.dir[k] = unitDir(f.v[nextVertex(k, f.count)], f.v[k]);
    prep.area = faceAreaNormal(f);
}

int isLineCrossPlane(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ n) {
    return crossesPlane(unitDir(b, a), n) ? 1 : 0;
}

_s_hd_point_ linePlaneInter(_s_hd_point_ n, _s_hd_point_ v0, _s_hd_point_ a, _s_hd_point_ b) {
    double t = 0.0;
    return linePlaneInter(n, v0, a, b, t);
}

_s_hd_point_ linePlaneInter(_s_hd_point_ n, _s_hd_point_ v0, _s_hd_point_ a, _s_hd_point_ b,
                            double& t) {
    const _s_hd_point_ d = vecSub(b, a);
    const double den = vecDot(n, d);
    t = kNaN;
    if (den == 0.0)
        return {kNaN, kNaN, kNaN};
    t = vecDot(n, vecSub(v0, a)) / den;
    return linComb(1.0, a, t, d);
}

_s_hd_point_ getLinePlaneInter(_s_hd_point_ v0, _s_hd_point_ v1, _s_hd_point_ v2, _s_hd_point_ a,
                               _s_hd_point_ b) {
    return linePlaneInter(triNormal(v0, v1, v2), v0, a, b);
}

ProjCrossing crossProjections(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d) {
    return crossProjections(a, b, c, d, flatRunOf(a, b), flatRunOf(c, d));
}

ProjCrossing crossProjections(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d,
                              const FlatRun& line, const FlatRun& edge) {
    ProjCrossing x = {true, a, c};
    const double den = det2(line.dx, line.dy, edge.dx, edge.dy);
    if (!(line.len > 0.0) || !(edge.len > 0.0) ||
        std::fabs(den) < hd::kProjParallelTol * line.len * edge.len)
        return x;
    const double wx = c.x - a.x;
    const double wy = c.y - a.y;
    x.parallel = false;
    x.onLine = linComb(1.0, a, det2(wx, wy, edge.dx, edge.dy) / den, vecSub(b, a));
    x.onEdge = linComb(1.0, c, det2(wx, wy, line.dx, line.dy) / den, vecSub(d, c));
    return x;
}

// ---- faces --------------------------------------------------------------------------------------

bool withinXYExtents(_s_hd_point_ p, const HDFace& f, double tol) {
    return p.x >= f.xmin - tol && p.x <= f.xmax + tol && p.y >= f.ymin - tol && p.y <= f.ymax + tol;
}

bool readFace(const _s_hd_sect_* chain, HDFace& face) {
    int count = 0;
    for (const _s_hd_sect_* s = chain; s != nullptr && count < 4; s = s->next)
        face.v[count++] = s->pt;
    face.count = count;
    if (count < 3)
        return false;
    face.xmax = face.xmin = face.v[0].x;
    face.ymax = face.ymin = face.v[0].y;
    face.zmax = face.zmin = face.v[0].z;
    for (int k = 1; k < count; ++k) {
        const _s_hd_point_ p = face.v[k];
        face.xmax = std::fmax(face.xmax, p.x);
        face.xmin = std::fmin(face.xmin, p.x);
        face.ymax = std::fmax(face.ymax, p.y);
        face.ymin = std::fmin(face.ymin, p.y);
        face.zmax = std::fmax(face.zmax, p.z);
        face.zmin = std::fmin(face.zmin, p.z);
    }
    face.normal = triNormal(face.v[0], face.v[1], face.v[2]);
    return true;
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

bool isSeenEndOn(_s_hd_point_ p, _s_hd_point_ q) {
    const _s_hd_point_ dir = unitDir(q, p);
    return std::fabs(dir.x) < hd::kEndOnTol && std::fabs(dir.y) < hd::kEndOnTol &&
           std::fabs(std::fabs(dir.z) - 1.0) < hd::kEndOnTol;
}

HideLine hideLineOf(_s_hd_point_ p, _s_hd_point_ q) {
    return {p,
            q,
            unitDir(q, p),
            isSeenEndOn(p, q),
            segmentReach(p, q),
            flatRunOf(p, q),
            lineRangeOf(p, q)};
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
            inPlane = isLineCrossPlane(f.v[k], q, n) == 0 && isLineCrossPlane(f.v[k], p, n) == 0;
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
        x = linePlaneInter(n, f.v[0], p, q);
        if (withinXYExtents(x, f, hd::kPierceExtentTol) && onSegWithin(x, p, q, line.reach) &&
            inFace(x, f, aids)) {
            bool usable = true;
            for (int k = 0; k < f.count; ++k) {
                if (onEdge(x, f, k, aids)) {
                    usable = crossEdge(line, f, k, aids).parallel;
                    break;
                }
            }
            opened = usable && !isSamePointFine(x, p) && !isSamePointFine(x, q);
        }
    }

    const bool qBehind = endBehindFace(q, f, aids);
    if (opened && qBehind) {
        from = x;
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
    if (!qBehind && crossings == 0)
        return false;
    const bool pBehind = endBehindFace(p, f, aids);
    if (qBehind) {
        if (crossings == 0 && !pBehind)
            return false;
        from = pBehind ? p : c1;
        to = q;
        return true;
    }
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
