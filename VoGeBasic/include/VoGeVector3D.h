// VoGeVector3D: a displacement or direction in model space.
//
// Same fixed layout as VoGePoint3D (three doubles, x first). Directions shorter than 1e-4
// model units are treated as having no direction: they normalise to the zero vector, and
// callers test for a zero result where it matters. Equality of vectors is equality of
// direction, not of value: (2, 0, 0) == (1, 0, 0).
#ifndef VOGEBASIC_VOGEVECTOR3D_H
#define VOGEBASIC_VOGEVECTOR3D_H

#include <cstddef>
#include <type_traits>

#include "VoGeBasicExport.h"

class VoGePoint3D;

class VOGEBASIC_API VoGeVector3D {
public:
    double x;  ///< first component
    double y;  ///< second component
    double z;  ///< third component

    /// (0, 0, 0).
    VoGeVector3D();
    VoGeVector3D(double x, double y, double z);
    /// (p[0], p[1], p[2]).
    explicit VoGeVector3D(const double* const p);
    /// to - from.
    VoGeVector3D(const VoGePoint3D& from, const VoGePoint3D& to);
    // Copying is the implicit bit-for-bit copy of the three doubles (kept trivial for the ABI).
    VoGeVector3D(const VoGeVector3D&) = default;
    VoGeVector3D& operator=(const VoGeVector3D&) = default;

    VoGeVector3D& set(double x, double y, double z);
    /// x and y as given, z set to 0.0.
    VoGeVector3D& set(double x, double y);
    VoGeVector3D& set(const double* const p);
    /// to[i] - from[i] for i = 0..2.
    VoGeVector3D& set(const double* const from, const double* const to);
    VoGeVector3D& set(const VoGePoint3D& from, const VoGePoint3D& to);

    /// Component 0, 1 or 2; the index is not checked.
    double operator[](unsigned int i) const;
    double& operator[](unsigned int i);

    const double* toKestPoint() const;
    void toKestPoint(double* const out) const;

    VoGeVector3D operator-() const;
    VoGeVector3D operator+(const VoGeVector3D& w) const;
    VoGeVector3D operator-(const VoGeVector3D& w) const;
    VoGeVector3D& operator+=(const VoGeVector3D& w);
    VoGeVector3D& operator-=(const VoGeVector3D& w);
    VoGeVector3D operator*(double s) const;
    /// Division is not guarded: s = 0 gives infinities or NaN.
    VoGeVector3D operator/(double s) const;
    VoGeVector3D& operator*=(double s);
    VoGeVector3D& operator/=(double s);

    double dotProduct(const VoGeVector3D& w) const;
    /// this x w, right-handed.
    VoGeVector3D crossProduct(const VoGeVector3D& w) const;
    double length() const;

    /// Unit copy; the zero vector when the length is below 1e-4, not a number or infinite (an
    /// infinite component, or a vector so long that its squared length overflows).
    VoGeVector3D normalize() const;
    /// Normalises in place with the same rule; returns *this.
    const VoGeVector3D& normalize();

    /// Unsigned angle in [0, pi] between the directions (both normalised first).
    double angleTo(const VoGeVector3D& w) const;
    /// Counter-clockwise angle from this to w seen from +Z, in [0, 2pi). The vectors are taken
    /// as unit vectors in the XY plane and are not normalised here.
    double rotateAngle(const VoGeVector3D& w) const;
    /// A copy turned by angle radians about axis (right-hand rule); this vector is unchanged.
    /// A zero axis gives the zero vector.
    VoGeVector3D rotateBy(double angle, const VoGeVector3D& axis);
    /// Parallel or anti-parallel within tol (as a cosine deviation); a zero vector is parallel
    /// to every vector.
    bool isParallel(const VoGeVector3D& w, double tol) const;
    /// Same direction: the normalised copies agree within 1e-5 per component (inclusive).
    bool operator==(const VoGeVector3D& w) const;
    bool operator!=(const VoGeVector3D& w) const;
    /// Exchanges the components with w.
    void swap(VoGeVector3D& w);
};

/// v * s.
VOGEBASIC_API VoGeVector3D operator*(double s, const VoGeVector3D& v);

static_assert(sizeof(VoGeVector3D) == 3 * sizeof(double), "VoGeVector3D is three doubles");
static_assert(std::is_standard_layout<VoGeVector3D>::value, "VoGeVector3D is standard-layout");
static_assert(std::is_trivially_copyable<VoGeVector3D>::value, "VoGeVector3D copies bitwise");
static_assert(offsetof(VoGeVector3D, x) == 0, "x comes first");
static_assert(offsetof(VoGeVector3D, y) == sizeof(double), "y follows x");
static_assert(offsetof(VoGeVector3D, z) == 2 * sizeof(double), "z follows y");

#endif  // VOGEBASIC_VOGEVECTOR3D_H
