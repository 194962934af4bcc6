#include "VoGeLine3d.h"

#include <cmath>
#include <initializer_list>

#include "core/linear_solve.h"
#include "geometry/equation_rows.h"
#include "geometry/geometry_tolerances.h"
#include "geometry/segment_place.h"

using namespace geolib::geometry;

namespace {

// a is clearly smaller than b: smaller, and not within the tie tolerance.
bool clearlySmaller(double a, double b) {
    return a <= b && std::fabs(a - b) > kLineAxisTieTol;
}

// The two planes of `own` with one plane of `other`, the other plane of `other` if that is
// singular.
bool solveWithEither(const VoGeMatrix3D& own, const VoGeMatrix3D& other, VoGePoint3D& out) {
    return solveEquationRows(&own.m[0], &own.m[4], &other.m[0], out) ||
           solveEquationRows(&own.m[0], &own.m[4], &other.m[4], out);
}

}  // namespace

namespace geolib {
namespace geometry {

// The rows are copied, so the caller's equations survive for a retry.
bool solveEquationRows(const double* r0, const double* r1, const double* r2, VoGePoint3D& out) {
    double rows[3][3];
    double rhs[3];
    const double* src[3] = {r0, r1, r2};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            rows[i][j] = src[i][j];
        rhs[i] = src[i][3];
    }
    double* a[3] = {rows[0], rows[1], rows[2]};
    double x[3];
    if (!core::solveLinear(3, a, rhs, x))
        return false;
    out.set(x);
    return true;
}

short placeOnSegment(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p,
                     double tol) {
    // A NaN coordinate places nothing on the segment, whatever the comparisons below would say.
    for (const VoGePoint3D* q : {&p1, &p2, &p}) {
        if (std::isnan(q->x) || std::isnan(q->y) || std::isnan(q->z))
            return geolib::kSegOffLine;
    }
    int code = 0;
    if (p.distanceTo(p1) <= kSegmentEndTol)
        code |= geolib::kSegOn | geolib::kSegAtStart;
    if (p.distanceTo(p2) <= kSegmentEndTol)
        code |= geolib::kSegOn | geolib::kSegAtEnd;
    if (code != 0)
        return static_cast<short>(code);
    // Both parameters are read off the same coordinate of the line, so they compare directly.
    const VoGeLine3d line(p1, p2);
    const double tEnd = line.getParam(p2);
    if (tEnd == geolib::kNoLineParam || !line.isOn(p, tol))
        return geolib::kSegOffLine;
    const double t = line.getParam(p);
    if (t < 0.0)
        return geolib::kSegBeyondStart;
    if (t > tEnd)
        return geolib::kSegBeyondEnd;
    return geolib::kSegOn;
}

}  // namespace geometry
}  // namespace geolib

VoGeLine3d::VoGeLine3d() = default;

VoGeLine3d::VoGeLine3d(const VoGePoint3D& p, const VoGeVector3D& d) {
    set(p, d);
}

VoGeLine3d::VoGeLine3d(const VoGePoint3D& p1, const VoGePoint3D& p2) {
    set(p1, p2 - p1);
}

void VoGeLine3d::set(const VoGePoint3D& p, const VoGeVector3D& d) {
    base = p;
    direction = d;
    direction.normalize();
}

VoGePoint3D VoGeLine3d::getStartpt() const {
    return base;
}

VoGePoint3D VoGeLine3d::getEndpt() const {
    return base + direction;
}

VoGePoint3D VoGeLine3d::getParamPoint(double t) const {
    return base + direction * t;
}

// The parameter is read off one coordinate only, the one where the direction is largest.
double VoGeLine3d::getParam(const VoGePoint3D& p) const {
    const double ax = std::fabs(direction.x);
    const double ay = std::fabs(direction.y);
    const double az = std::fabs(direction.z);
    unsigned int k = 0;
    if (clearlySmaller(ax, ay) || clearlySmaller(ax, az)) {
        k = 1;
        if (clearlySmaller(ay, ax) || clearlySmaller(ay, az)) {
            k = 2;
            if (clearlySmaller(az, ay) || clearlySmaller(az, ax))
                return geolib::kNoLineParam;
        }
    }
    if (std::fabs(direction[k]) > kLineParamMinComponent)
        return (p[k] - base[k]) / direction[k];
    return geolib::kNoLineParam;
}

// The same tol serves as a distance first and as a cosine deviation then, deliberately.
bool VoGeLine3d::isOn(const VoGePoint3D& p, double tol) const {
    if (base.distanceTo(p) <= tol)
        return true;
    const VoGeVector3D w = (base - p).normalize();
    return std::fabs(std::fabs(w.dotProduct(direction)) - 1.0) <= tol;
}

void VoGeLine3d::getGeneratlEquation(VoGeMatrix3D& m) const {
    const double a = direction.x;
    const double b = direction.y;
    const double c = direction.z;
    const double x0 = base.x;
    const double y0 = base.y;
    const double z0 = base.z;
    m.setRow(0, 0.0, 0.0, 0.0, 0.0);
    m.setRow(1, 0.0, 0.0, 0.0, 0.0);
    if (std::fabs(a) <= kEquationZeroComponent) {
        m.setRow(0, 1.0, 0.0, 0.0, x0);
        if (std::fabs(b) <= kEquationZeroComponent) {
            m.setRow(1, 0.0, 1.0, 0.0, y0);
        } else if (std::fabs(c) <= kEquationZeroComponent) {
            m.setRow(1, 0.0, 0.0, 1.0, z0);
        } else {
            m.setRow(1, 0.0, c, -b, y0 * c - z0 * b);
        }
    } else {
        m.setRow(0, b, -a, 0.0, x0 * b - a * y0);
        m.setRow(1, c, 0.0, -a, x0 * c - z0 * a);
    }
}

void VoGeLine3d::getEquationSet(double* a, double* b) const {
    if (a == nullptr || b == nullptr)
        return;
    const double rows[12] = {1.0, 0.0,          0.0, -direction.x, 0.0, 1.0,
                             0.0, -direction.y, 0.0, 0.0,          1.0, -direction.z};
    for (int i = 0; i < 12; ++i)
        a[i] = rows[i];
    base.toKestPoint(b);
}

// Solved twice, once with both planes of each line: the two solutions agree only when the
// lines really meet. p keeps the first solution (a point of the other line) either way.
bool VoGeLine3d::intersectWith(const VoGeLine3d& other, VoGePoint3D& p) const {
    VoGeMatrix3D e;
    VoGeMatrix3D f;
    other.getGeneratlEquation(e);
    getGeneratlEquation(f);
    VoGePoint3D first;
    if (!solveWithEither(e, f, first))
        return false;
    p = first;
    VoGePoint3D q;
    if (!solveWithEither(f, e, q))
        return false;
    return q.isEqualTo(p, kLineMeetTol);
}
