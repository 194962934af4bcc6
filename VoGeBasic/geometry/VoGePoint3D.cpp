#include "VoGePoint3D.h"

#include <cmath>

#include "VoGeVector3D.h"
#include "geometry/geometry_tolerances.h"

VoGePoint3D::VoGePoint3D() : x(0.0), y(0.0), z(0.0) {}
VoGePoint3D::VoGePoint3D(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
VoGePoint3D::VoGePoint3D(const double* const p) : x(p[0]), y(p[1]), z(p[2]) {}
VoGePoint3D::VoGePoint3D(const VoGeVector3D& v) : x(v.x), y(v.y), z(v.z) {}

VoGePoint3D& VoGePoint3D::set(double x_, double y_, double z_) {
    x = x_;
    y = y_;
    z = z_;
    return *this;
}

VoGePoint3D& VoGePoint3D::set(const double* const p) {
    return set(p[0], p[1], p[2]);
}

double VoGePoint3D::operator[](unsigned int i) const {
    return (&x)[i];
}
double& VoGePoint3D::operator[](unsigned int i) {
    return (&x)[i];
}

const double* VoGePoint3D::toKestPoint() const {
    return &x;
}

void VoGePoint3D::toKestPoint(double* const out) const {
    out[0] = x;
    out[1] = y;
    out[2] = z;
}

VoGePoint3D VoGePoint3D::operator+(const VoGePoint3D& q) const {
    return VoGePoint3D(x + q.x, y + q.y, z + q.z);
}

VoGePoint3D& VoGePoint3D::operator+=(const VoGePoint3D& q) {
    x += q.x;
    y += q.y;
    z += q.z;
    return *this;
}

VoGeVector3D VoGePoint3D::operator-(const VoGePoint3D& q) const {
    return VoGeVector3D(x - q.x, y - q.y, z - q.z);
}

VoGePoint3D VoGePoint3D::operator+(const VoGeVector3D& v) const {
    return VoGePoint3D(x + v.x, y + v.y, z + v.z);
}

VoGePoint3D& VoGePoint3D::operator+=(const VoGeVector3D& v) {
    x += v.x;
    y += v.y;
    z += v.z;
    return *this;
}

VoGePoint3D VoGePoint3D::operator-(const VoGeVector3D& v) const {
    return VoGePoint3D(x - v.x, y - v.y, z - v.z);
}

VoGePoint3D& VoGePoint3D::operator-=(const VoGeVector3D& v) {
    x -= v.x;
    y -= v.y;
    z -= v.z;
    return *this;
}

VoGePoint3D VoGePoint3D::operator*(double s) const {
    return VoGePoint3D(x * s, y * s, z * s);
}

VoGePoint3D& VoGePoint3D::operator*=(double s) {
    x *= s;
    y *= s;
    z *= s;
    return *this;
}

VoGePoint3D VoGePoint3D::operator/(double s) const {
    return VoGePoint3D(x / s, y / s, z / s);
}

VoGePoint3D& VoGePoint3D::operator/=(double s) {
    x /= s;
    y /= s;
    z /= s;
    return *this;
}

double VoGePoint3D::distanceTo(const VoGePoint3D& q) const {
    const double dx = q.x - x;
    const double dy = q.y - y;
    const double dz = q.z - z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

double VoGePoint3D::distance2D(const VoGePoint3D& q) const {
    const double dx = q.x - x;
    const double dy = q.y - y;
    return std::sqrt(dx * dx + dy * dy);
}

// A full 3-D distance, not a per-component test; equal to tol is not equal.
bool VoGePoint3D::isEqualTo(const VoGePoint3D& q, double tol) const {
    return distanceTo(q) < tol;
}

bool VoGePoint3D::operator==(const VoGePoint3D& q) const {
    return isEqualTo(q, geolib::geometry::kPointEqualTol);
}

bool VoGePoint3D::operator!=(const VoGePoint3D& q) const {
    return !isEqualTo(q, geolib::geometry::kPointEqualTol);
}
