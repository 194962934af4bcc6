// VoGePoint3D: a location in model space.
//
// Exactly three doubles x, y, z and nothing else; callers on the other side of the library
// boundary hand points around as plain arrays of three doubles, so the layout is fixed and
// checked at compile time below. A point minus a point is a vector; a point plus a vector is
// a point. Only vectors have lengths, products and directions.
#ifndef VOGEBASIC_VOGEPOINT3D_H
#define VOGEBASIC_VOGEPOINT3D_H

#include <cstddef>
#include <type_traits>

#include "VoGeBasicExport.h"

class VoGeVector3D;

/// A location in model space: exactly three doubles x, y, z.
class VOGEBASIC_API VoGePoint3D {
public:
    double x;  ///< first coordinate, model units
    double y;  ///< second coordinate, model units
    double z;  ///< third coordinate: the depth / up axis of the system

    /// (0, 0, 0): a default point is never left uninitialised.
    VoGePoint3D();
    /// The point (x, y, z).
    VoGePoint3D(double x, double y, double z);
    /// (p[0], p[1], p[2]).
    explicit VoGePoint3D(const double* const p);
    /// A vector taken as a position.
    explicit VoGePoint3D(const VoGeVector3D& v);
    /// Copying is the implicit bit-for-bit copy of the three doubles (kept trivial for the ABI).
    VoGePoint3D(const VoGePoint3D&) = default;
    /// Assigns bit for bit (a trivial copy, kept so for the binary interface).
    VoGePoint3D& operator=(const VoGePoint3D&) = default;

    /// Sets the three coordinates; returns *this.
    VoGePoint3D& set(double x, double y, double z);
    /// Sets the coordinates from p[0], p[1], p[2]; returns *this.
    VoGePoint3D& set(const double* const p);

    /// Coordinate 0, 1 or 2; the index is not checked.
    double operator[](unsigned int i) const;
    /// Coordinate 0, 1 or 2, writable; the index is not checked.
    double& operator[](unsigned int i);

    /// Pointer to this point's own x; y and z follow it.
    const double* toKestPoint() const;
    /// out[0..2] = x, y, z.
    void toKestPoint(double* const out) const;

    /// Component sum of two positions (midpoints, centroids).
    VoGePoint3D operator+(const VoGePoint3D& q) const;
    /// Adds q component by component; returns *this.
    VoGePoint3D& operator+=(const VoGePoint3D& q);
    /// The vector from q to this point.
    VoGeVector3D operator-(const VoGePoint3D& q) const;
    /// This point moved by v.
    VoGePoint3D operator+(const VoGeVector3D& v) const;
    /// Moves this point by v; returns *this.
    VoGePoint3D& operator+=(const VoGeVector3D& v);
    /// This point moved by -v.
    VoGePoint3D operator-(const VoGeVector3D& v) const;
    /// Moves this point by -v; returns *this.
    VoGePoint3D& operator-=(const VoGeVector3D& v);
    /// Each coordinate times s.
    VoGePoint3D operator*(double s) const;
    /// Multiplies each coordinate by s; returns *this.
    VoGePoint3D& operator*=(double s);
    /// Division is not guarded: s = 0 gives infinities or NaN.
    VoGePoint3D operator/(double s) const;
    /// Divides each coordinate by s (not guarded); returns *this.
    VoGePoint3D& operator/=(double s);

    /// 3-D Euclidean distance.
    double distanceTo(const VoGePoint3D& q) const;
    /// Distance in the drawing plane: z is ignored.
    double distance2D(const VoGePoint3D& q) const;
    /// True when distanceTo(q) < tol, strictly: a distance equal to tol is not equal.
    bool isEqualTo(const VoGePoint3D& q, double tol) const;
    /// isEqualTo(q, 1e-5).
    bool operator==(const VoGePoint3D& q) const;
    /// Not operator==.
    bool operator!=(const VoGePoint3D& q) const;
};

static_assert(sizeof(VoGePoint3D) == 3 * sizeof(double), "VoGePoint3D is three doubles");
static_assert(std::is_standard_layout<VoGePoint3D>::value, "VoGePoint3D is standard-layout");
static_assert(std::is_trivially_copyable<VoGePoint3D>::value, "VoGePoint3D copies bitwise");
static_assert(offsetof(VoGePoint3D, x) == 0, "x comes first");
static_assert(offsetof(VoGePoint3D, y) == sizeof(double), "y follows x");
static_assert(offsetof(VoGePoint3D, z) == 2 * sizeof(double), "z follows y");

#endif  // VOGEBASIC_VOGEPOINT3D_H
