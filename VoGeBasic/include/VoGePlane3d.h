// VoGePlane3d: an infinite plane given by a base point and a unit normal.
//
// Two members, base point then normal, and nothing else. The normal is normalised by every
// setter (shorter than 1e-4 becomes the zero vector).
#ifndef VOGEBASIC_VOGEPLANE3D_H
#define VOGEBASIC_VOGEPLANE3D_H

#include <cstddef>
#include <type_traits>

#include "VoGeBasicExport.h"
#include "VoGeMatrix3D.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

/// A plane in space: a point on it and its unit normal.
class VOGEBASIC_API VoGePlane3d {
public:
    VoGePoint3D base;     ///< a point of the plane
    VoGeVector3D normal;  ///< unit normal, or zero

    /// Zero base and normal.
    VoGePlane3d();
    /// set(p, n).
    VoGePlane3d(const VoGePoint3D& p, const VoGeVector3D& n);
    /// Copies bit for bit (a trivial copy, kept so for the binary interface).
    VoGePlane3d(const VoGePlane3d&) = default;
    /// Assigns bit for bit (a trivial copy, kept so for the binary interface).
    VoGePlane3d& operator=(const VoGePlane3d&) = default;

    /// Base p, normal n normalised.
    void set(const VoGePoint3D& p, const VoGeVector3D& n);
    /// Base p, normal normalise(u x v).
    void set(const VoGePoint3D& p, const VoGeVector3D& u, const VoGeVector3D& v);
    /// Base p1, normal normalise((p2 - p1) x (p3 - p1)).
    void set(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& p3);
    /// The point the plane was set through.
    const VoGePoint3D& getBase() const;
    /// The plane's unit normal.
    const VoGeVector3D& getNormal() const;
    /// Row 0 of m := (nx, ny, nz, n . base); the other rows are not touched.
    void getGeneralEquation(VoGeMatrix3D& m) const;
    /// Meeting point of the line p1p2 with the plane. Returns false and leaves p untouched when
    /// the line is parallel to the plane (or degenerate). Otherwise p is the point, and the
    /// result is true, or with onSegment true whether p lies on the closed segment p1p2
    /// (within 1e-5, or 1e-4 of an end).
    bool intersectWith(const VoGePoint3D& p1, const VoGePoint3D& p2, VoGePoint3D& p,
                       bool onSegment) const;
};

static_assert(sizeof(VoGePlane3d) == 6 * sizeof(double), "VoGePlane3d is a point and a vector");
static_assert(std::is_standard_layout<VoGePlane3d>::value, "VoGePlane3d is standard-layout");
static_assert(std::is_trivially_copyable<VoGePlane3d>::value, "VoGePlane3d copies bitwise");
static_assert(offsetof(VoGePlane3d, base) == 0, "base comes first");
static_assert(offsetof(VoGePlane3d, normal) == 3 * sizeof(double), "normal follows base");

#endif  // VOGEBASIC_VOGEPLANE3D_H
