#include "VoGeVector3D.h"

#include <cmath>

#include "VoGePoint3D.h"
#include "core/angles.h"
#include "geometry/geometry_tolerances.h"

using namespace geolib::geometry;
using geolib::core::clampUnit;
using geolib::core::kFullTurn;

VoGeVector3D::VoGeVector3D() : x(0.0), y(0.0), z(0.0) {}
VoGeVector3D::VoGeVector3D(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
VoGeVector3D::VoGeVector3D(const double* const p) : x(p[0]), y(p[1]), z(p[2]) {}
VoGeVector3D::VoGeVector3D(const VoGePoint3D& from, const VoGePoint3D& to)
    : x(to.x - from.x), y(to.y - from.y), z(to.z - from.z) {}

VoGeVector3D& VoGeVector3D::set(double x_, double y_, double z_) {
    x = x_;
    y = y_;
    z = z_;
    return *this;
}

VoGeVector3D& VoGeVector3D::set(double x_, double y_) {
    return set(x_, y_, 0.0);
}
VoGeVector3D& VoGeVector3D::set(const double* const p) {
    return set(p[0], p[1], p[2]);
}

VoGeVector3D& VoGeVector3D::set(const double* const from, const double* const to) {
    return set(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
}

VoGeVector3D& VoGeVector3D::set(const VoGePoint3D& from, const VoGePoint3D& to) {
    return set(to.x - from.x, to.y - from.y, to.z - from.z);
}

double VoGeVector3D::operator[](unsigned int i) const {
    return (&x)[i];
}
double& VoGeVector3D::operator[](unsigned int i) {
    return (&x)[i];
}

const double* VoGeVector3D::toKestPoint() const {
    return &x;
}

void VoGeVector3D::toKestPoint(double* const out) const {
    out[0] = x;
    out[1] = y;
    out[2] = z;
}

VoGeVector3D VoGeVector3D::operator-() const {
    return VoGeVector3D(-x, -y, -z);
}

VoGeVector3D VoGeVector3D::operator+(const VoGeVector3D& w) const {
    return VoGeVector3D(x + w.x, y + w.y, z + w.z);
}

VoGeVector3D VoGeVector3D::operator-(const VoGeVector3D& w) const {
    return VoGeVector3D(x - w.x, y - w.y, z - w.z);
}

VoGeVector3D& VoGeVector3D::operator+=(const VoGeVector3D& w) {
    x += w.x;
    y += w.y;
    z += w.z;
    return *this;
}

VoGeVector3D& VoGeVector3D::operator-=(const VoGeVector3D& w) {
    x -= w.x;
    y -= w.y;
    z -= w.z;
    return *this;
}

VoGeVector3D VoGeVector3D::operator*(double s) const {
    return VoGeVector3D(x * s, y * s, z * s);
}
VoGeVector3D VoGeVector3D::operator/(double s) const {
    return VoGeVector3D(x / s, y / s, z / s);
}

VoGeVector3D& VoGeVector3D::operator*=(double s) {
    x *= s;
    y *= s;
    z *= s;
    return *this;
}

VoGeVector3D& VoGeVector3D::operator/=(double s) {
    x /= s;
    y /= s;
    z /= s;
    return *this;
}

VoGeVector3D operator*(double s, const VoGeVector3D& v) {
    return v * s;
}

double VoGeVector3D::dotProduct(const VoGeVector3D& w) const {
    return x * w.x + y * w.y + z * w.z;
}

VoGeVector3D VoGeVector3D::crossProduct(const VoGeVector3D& w) const {
    return VoGeVector3D(y * w.z - z * w.y, z * w.x - x * w.z, x * w.y - y * w.x);
}

double VoGeVector3D::length() const {
    return std::sqrt(x * x + y * y + z * z);
}

// Written as "unless the length reaches the limit" so that a NaN length has no direction too.
VoGeVector3D VoGeVector3D::normalize() const {
    const double len = length();
    // An infinite length (an infinite component, or squares beyond the largest double) would
    // give NaN or zero components, no unit vector: such a vector normalises to zero like NaN.
    if (!(kNormaliseMinLength <= len) || std::isinf(len))
        return VoGeVector3D();
    return VoGeVector3D(x / len, y / len, z / len);
}

const VoGeVector3D& VoGeVector3D::normalize() {
    *this = static_cast<const VoGeVector3D&>(*this).normalize();
    return *this;
}

double VoGeVector3D::angleTo(const VoGeVector3D& w) const {
    const VoGeVector3D a = normalize();
    const VoGeVector3D b = w.normalize();
    return std::acos(clampUnit(a.dotProduct(b)));
}

// The caller passes unit vectors in the XY plane: nothing is normalised here.
double VoGeVector3D::rotateAngle(const VoGeVector3D& w) const {
    const double a = std::acos(clampUnit(dotProduct(w)));
    if (std::fabs(a) <= kRotateAngleNoSenseTol)
        return a;
    const VoGeVector3D c = crossProduct(w);
    if (c.z >= 0.0)
        return a;
    return kFullTurn - a;
}

bool VoGeVector3D::isParallel(const VoGeVector3D& w, double tol) const {
    const VoGeVector3D a = normalize();
    const VoGeVector3D b = w.normalize();
    const double d = a.dotProduct(b);
    if (std::fabs(d - 1.0) <= tol)
        return true;
    if (std::fabs(d + 1.0) <= tol)
        return true;
    // A zero vector (no direction) ends up here with a zero cross product: parallel to all.
    const VoGeVector3D c = a.crossProduct(b);
    return std::fabs(c.x) < kParallelCrossTol && std::fabs(c.y) < kParallelCrossTol &&
           std::fabs(c.z) < kParallelCrossTol;
}

// Equality of direction, not of value: any two vectors shorter than the normalisation limit
// are equal to each other and to the zero vector.
bool VoGeVector3D::operator==(const VoGeVector3D& w) const {
    const VoGeVector3D a = normalize();
    const VoGeVector3D b = w.normalize();
    return std::fabs(a.x - b.x) <= kDirectionEqualTol &&
           std::fabs(a.y - b.y) <= kDirectionEqualTol && std::fabs(a.z - b.z) <= kDirectionEqualTol;
}

bool VoGeVector3D::operator!=(const VoGeVector3D& w) const {
    return !(*this == w);
}

void VoGeVector3D::swap(VoGeVector3D& w) {
    const VoGeVector3D t = *this;
    *this = w;
    w = t;
}
