// VoGeCircle3d: a full circle in space.
//
// Three members, centre, normal and radius, and nothing else. The normal is normalised by
// every setter (shorter than 1e-4 becomes the zero vector). Angles are radians, measured in
// the circle's plane from the X axis of the arbitrary-axis frame of the normal
// (VoGeMatrix3D::setZTrans), counter-clockwise about the normal.
#ifndef VOGEBASIC_VOGECIRCLE3D_H
#define VOGEBASIC_VOGECIRCLE3D_H

#include <cstddef>
#include <type_traits>

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

/// A circle in space: centre, radius and unit normal.
class VOGEBASIC_API VoGeCircle3d {
public:
    VoGePoint3D center;   ///< centre
    VoGeVector3D normal;  ///< unit normal, or zero
    double radius;        ///< radius, model units

    /// All zero.
    VoGeCircle3d();
    /// set(c, r, n).
    VoGeCircle3d(const VoGePoint3D& c, double r, const VoGeVector3D& n);
    /// The THIRD point is the centre: radius |p1 - c|, normal along (p1 - c) x (p2 - c). p1
    /// lies on the circle; p2 only fixes the plane and the sense of the normal.
    VoGeCircle3d(const VoGePoint3D& p1, const VoGePoint3D& p2, const VoGePoint3D& c);
    /// Copies bit for bit (a trivial copy, kept so for the binary interface).
    VoGeCircle3d(const VoGeCircle3d&) = default;
    /// Assigns bit for bit (a trivial copy, kept so for the binary interface).
    VoGeCircle3d& operator=(const VoGeCircle3d&) = default;

    /// Centre c, radius r, normal n normalised.
    void set(const VoGePoint3D& c, double r, const VoGeVector3D& n);
    /// p within tol of the circle's radius and within tol of its plane.
    bool isOn(const VoGePoint3D& p, double tol) const;
    /// The point of the circle at angle (radians).
    VoGePoint3D getPt(double angle) const;
    /// Angle of p in [0, 2pi), by two formulas: one for a circle in a horizontal plane (the
    /// plan part of the normal within tol of zero), one for a tilted circle. The tilted formula
    /// divides by the normal's x: a tilted circle whose normal has no x component may give NaN.
    double getParam(const VoGePoint3D& p, double tol) const;
};

static_assert(sizeof(VoGeCircle3d) == 7 * sizeof(double), "VoGeCircle3d is seven doubles");
static_assert(std::is_standard_layout<VoGeCircle3d>::value, "VoGeCircle3d is standard-layout");
static_assert(std::is_trivially_copyable<VoGeCircle3d>::value, "VoGeCircle3d copies bitwise");
static_assert(offsetof(VoGeCircle3d, center) == 0, "center comes first");
static_assert(offsetof(VoGeCircle3d, normal) == 3 * sizeof(double), "normal follows center");
static_assert(offsetof(VoGeCircle3d, radius) == 6 * sizeof(double), "radius comes last");

#endif  // VOGEBASIC_VOGECIRCLE3D_H
