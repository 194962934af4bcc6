// Faces as the engine reads them: the vertex chain read into a face record, and the data the
// face tests ask of a face alone, worked out once.
#include <cmath>

#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/engine/hd_faces.h"

namespace geolib {

namespace {

// isPointInFace's answer where the point's place in the drawing settles it, from the face's
// outline data (FacePrep::outlineMargin, m below): 1 or 0, or -1 where it is not known. p is a
// point of the face's plane, as the hide pass works it out (a line meeting the plane; off it by
// rounding alone, below 1e-5 at coordinates within kCullCoordLimit).
//
// Beyond an edge's line by more than m in the drawing, p lies farther than m from the whole
// face (flat, within that edge's closed half-plane), in space too: projecting onto the drawing
// plane brings no two points nearer. That is farther than isPointOnSeg accepts of any edge and
// of any vertex (see kCullMarginAbs), so no edge or vertex test answers 1; and the signed angles
// of a point outside a plane polygon add up to 0. Inside every edge's line by more than m, p is
// inside the convex face, at least m from every edge: the angles add up to a full turn, and
// should an edge or vertex test answer 1 it is the same answer. Either way the angle sum decides
// unless it is off by kInFaceTurnTol, 0.09. It is off by far less: each cosine comes from
// squared distances with relative rounding below 5e-16, so it is off by at most about 9e-16
// times the ratio of p's distances from the edge's ends, at most 1 + size / m <= 1001, plus
// 6e-16; arc cosine turns that into at most 2e-6 rad, and acosBound adds 3e-8. An angle's sign
// can come out wrong only where the edge subtends less than 1e-13 rad (p stays m away from the
// edge, so the angle stays below a half turn by 0.004). A fourth vertex off the plane by
// kCullFlatRel of the size, and p off it by rounding, move an angle by at most 2e-4 rad. The
// side of each edge's line is worked out to within 6e-6 of the drawing-plane distance, far below
// m (at least kCullMarginAbs). NaN and unbounded points are left to the angles.
int outlineSideOf(_s_hd_point_ p, const HDFace& f, const FacePrep& prep) {
    const double m = prep.outlineMargin;
    const double lim = hd::kCullCoordLimit;
    if (!(m > 0.0) || !(std::fabs(p.x) <= lim && std::fabs(p.y) <= lim && std::fabs(p.z) <= lim))
        return -1;
    bool inside = true;
    for (int k = 0; k < f.count; ++k) {
        const FlatRun& run = prep.run[k];
        const double o = ((p.x - f.v[k].x) * -run.dy + (p.y - f.v[k].y) * run.dx) * prep.side[k];
        const double mLen = m * run.len;
        if (o < -mLen)
            return 0;
        inside = inside && o > mLen;
    }
    const _s_hd_point_ area = prep.area;
    return inside && !(area.x == 0.0 && area.y == 0.0 && area.z == 0.0) ? 1 : -1;
}

// The side of edge k's drawing-plane normal that the whole face lies on (see outlineOf), len
// being the edge's run length.
signed char edgeSideOf(const HDFace& f, int k, double len) {
    if (!(len > 0.0))
        return 0;
    const _s_hd_point_ a = f.v[k];
    const _s_hd_point_ b = f.v[nextVertex(k, f.count)];
    const double ex = -(b.y - a.y);
    const double ey = b.x - a.x;
    double side = 0.0;
    for (int j = 0; j < f.count; ++j) {
        const double o = (f.v[j].x - a.x) * ex + (f.v[j].y - a.y) * ey;
        if (o * side < 0.0)
            return 0;
        if (side == 0.0 && o != 0.0)
            side = o;
    }
    return side > 0.0 ? 1 : side < 0.0 ? -1 : 0;
}

}  // namespace

double outlineOf(const HDFace& f, double size, const double* lengths, signed char* sides) {
    bool usable = isFlatFace(f, size);
    for (int k = 0; k < f.count; ++k) {
        sides[k] = edgeSideOf(f, k, lengths[k]);
        usable = usable && sides[k] != 0 && boundedEnds(f.v[k], f.v[nextVertex(k, f.count)]);
    }
    return usable ? hd::kCullMarginAbs + hd::kCullMarginRel * size : 0.0;
}

int pointInFaceByOutline(_s_hd_point_ p, const HDFace& f, const FacePrep& prep) {
    return f.count < 3 ? 0 : outlineSideOf(p, f, prep);
}

int isPointInFace(_s_hd_point_ p, const HDFace& f, const FacePrep& prep) {
    const int known = pointInFaceByOutline(p, f, prep);
    return known >= 0 ? known : pointInFaceBeyondOutline(p, f, prep);
}

int pointInFaceBeyondOutline(_s_hd_point_ p, const HDFace& f, const FacePrep& prep) {
    return detail::pointInPolygon(
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
        prep.bounded = (k == 0 || prep.bounded) && boundedEnds(a, b);
        if (flatLengths == nullptr)
            prep.run[k] = flatRunOf(a, b);
        else
            prep.run[k] = {b.x - a.x, b.y - a.y, flatLengths[k]};
    }
    prep.outlineMargin = 0.0;
}

_s_hd_point_ faceAreaNormal(const HDFace& f) {
    return polygonAreaNormal(f.count, f.v);
}

void prepareFaceTests(const HDFace& f, FacePrep& prep) {
    prepareEdgeTests(f, prep);
    for (int k = 0; k < f.count; ++k)
        prep.dir[k] = unitDir(f.v[nextVertex(k, f.count)], f.v[k]);
    prep.area = faceAreaNormal(f);
}

bool isFlatFace(const HDFace& f, double size) {
    return f.count == 3 ||
           std::fabs(vecDot(f.normal, vecSub(f.v[3], f.v[0]))) <= hd::kCullFlatRel * size;
}

bool readFace(const _s_hd_sect_* chain, HDFace& face) {
    int count = 0;
    for (const _s_hd_sect_* s = chain; s != nullptr && count < kMaxFaceVertices; s = s->next)
        face.v[count++] = s->pt;
    face.count = count;
    if (count < 3)
        return false;
    face.xmax = face.xmin = face.v[0].x;
    face.ymax = face.ymin = face.v[0].y;
    face.zmax = face.zmin = face.v[0].z;
    // maxOf and minOf, inline, give what fmax and fmin give, but for the sign of a zero: the
    // extents are only compared, or summed into margins, centres and sizes that are compared.
    for (int k = 1; k < count; ++k) {
        const _s_hd_point_ p = face.v[k];
        face.xmax = maxOf(face.xmax, p.x);
        face.xmin = minOf(face.xmin, p.x);
        face.ymax = maxOf(face.ymax, p.y);
        face.ymin = minOf(face.ymin, p.y);
        face.zmax = maxOf(face.zmax, p.z);
        face.zmin = minOf(face.zmin, p.z);
    }
    face.normal = triNormal(face.v[0], face.v[1], face.v[2]);
    return true;
}

}  // namespace geolib
