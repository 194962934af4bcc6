#include "VoGePlane3d.h"

#include "VoGeLine3d.h"
#include "geometry/equation_rows.h"
#include "geometry/geometry_tolerances.h"
#include "geometry/segment_place.h"

using namespace geolib::geometry;

VoGePlane3d::VoGePlane3d() = default;

VoGePlane3d::VoGePlane3d(const VoGePoint3D& p, const VoGeVector3D& n) {
    set(p, n);
}

void VoGePlane3d::set(const VoGePoint3D& p, const VoGeVector3D& n) {
    base = p;
    normal = n;
    normal.normalize();
}

void VoGePlane3d::set(const VoGePoint3D& p, const VoGeVector3D& u, const VoGeVector3D& v) {
    set(p, u.crossProduct(v));
}

void VoGePlane3d::set(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p3) {
    set(p1, (p2 - p1).crossProduct(p3 - p1));
}

const VoGePoint3D& VoGePlane3d::getBase() const {
    return base;
}

const VoGeVector3D& VoGePlane3d::getNormal() const {
    return normal;
}

void VoGePlane3d::getGeneralEquation(VoGeMatrix3D& m) const {
    m.setRow(0, normal.x, normal.y, normal.z,
             normal.dotProduct(VoGeVector3D(base.x, base.y, base.z)));
}

bool VoGePlane3d::intersectWith(const VoGePoint3D& p1, const VoGePoint3D& p2, VoGePoint3D& p,
                                bool onSegment) const {
    VoGeMatrix3D lineEq;
    VoGeMatrix3D planeEq;
    VoGeLine3d(p1, p2).getGeneratlEquation(lineEq);
    getGeneralEquation(planeEq);
    if (!solveEquationRows(&lineEq.m[0], &lineEq.m[4], &planeEq.m[0], p))
        return false;
    if (!onSegment)
        return true;
    return (placeOnSegment(p1, p2, p, kPlaneSegmentTol) & geolib::kSegOn) != 0;
}
