#include "VoGeCircle3d.h"

#include <cmath>

#include "core/angles.h"
#include "geometry/frame_convert.h"

using namespace geolib::core;

VoGeCircle3d::VoGeCircle3d() : radius(0.0) {}

VoGeCircle3d::VoGeCircle3d(const VoGePoint3D& c, double r, const VoGeVector3D& n) : radius(0.0) {
    set(c, r, n);
}

// Not the circle through three points, deliberately: the third point is the centre and p2 only
// fixes the plane and the sense of the normal.
VoGeCircle3d::VoGeCircle3d(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& c)
    : radius(0.0) {
    const VoGeVector3D a = (p1 - c).normalize();
    const VoGeVector3D b = (p2 - c).normalize();
    set(c, p1.distanceTo(c), a.crossProduct(b));
}

void VoGeCircle3d::set(const VoGePoint3D& c, double r, const VoGeVector3D& n) {
    center = c;
    radius = r;
    normal = n;
    normal.normalize();
}

bool VoGeCircle3d::isOn(const VoGePoint3D& p, double tol) const {
    const double d = p.distanceTo(center);
    const double h = (p - center).dotProduct(normal);
    return std::fabs(d - radius) <= tol && std::fabs(h) <= tol;
}

VoGePoint3D VoGeCircle3d::getPt(double angle) const {
    const VoGeVector3D v(std::cos(angle), std::sin(angle), 0.0);
    const VoGeVector3D w =
        geolib::geometry::convertFrames(v, normal, VoGeVector3D(0.0, 0.0, 1.0)).normalize();
    return center + w * radius;
}

// Two formulas, kept exactly as they have always been computed: a plan one for horizontal
// circles and a tilted one that divides by the normal's x.
double VoGeCircle3d::getParam(const VoGePoint3D& p, double tol) const {
    const double nx = normal.x;
    const double ny = normal.y;
    const double nz = normal.z;
    const double L = std::sqrt(nx * nx + ny * ny);
    const VoGePoint3D& c = center;
    const double r = radius;
    double a = 0.0;
    double b = 0.0;
    if (std::fabs(L) <= tol) {
        a = std::acos(clampUnit((p.x - c.x) / r));
        b = std::asin(clampUnit((p.y - c.y) / r));
    } else {
        const double N = std::sqrt(nx * nx + ny * ny + nz * nz);
        b = std::asin(clampUnit(N * (c.z - p.z) / (r * L)));
        a = std::acos(clampUnit((p.z - c.z) * ny * nz / L + (c.y - p.y) * L / (r * nx)));
    }
    if (std::fabs(a - b) > tol && std::fabs(a - (kPi - b)) > tol)
        return belowFullTurn(kFullTurn - a);
    return a;
}
