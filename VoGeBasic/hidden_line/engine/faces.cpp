// Faces as the engine reads them: the vertex chain read into a face record, and the data the
// face tests ask of a face alone, worked out once.
#include <cmath>

#include "hidden_line/engine/hd_engine_tolerances.h"
#include "hidden_line/engine/hd_faces.h"

namespace geolib {

int isPointInFace(_s_hd_point_ p, const HDFace& f, const FacePrep& prep) {
    if (f.count < 3)
        return 0;
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
        if (flatLengths == nullptr)
            prep.run[k] = flatRunOf(a, b);
        else
            prep.run[k] = {b.x - a.x, b.y - a.y, flatLengths[k]};
    }
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

}  // namespace geolib
