// VoGeLine3d: an infinite line with a parameter along it.
//
// Two members, direction then base point, and nothing else. The direction is normalised by
// every setter (shorter than 1e-4 becomes the zero vector); the parameter t of a point is its
// signed distance from the base along the direction. Intersections are solved as small linear
// systems of the line's implicit equations.
#ifndef VOGEBASIC_VOGELINE3D_H
#define VOGEBASIC_VOGELINE3D_H

#include <cstddef>
#include <type_traits>

#include "VoGeBasicExport.h"
#include "VoGeMatrix3D.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

namespace geolib {
/// VoGeLine3d::getParam's "no parameter": the largest single-precision value, as a double.
constexpr double kNoLineParam = 3.4028234663852886e38;

// ---- where a point lies on a segment: codes of isPointOnLineSeg
// -----------------------------------------------------------------
/// On the closed segment; a point within 1e-4 of either end counts as on it.
constexpr short kSegOn = 0x0001;
/// Within 1e-4 of the first end (kSegOn is set too).
constexpr short kSegAtStart = 0x0002;
/// Within 1e-4 of the second end (kSegOn is set too).
constexpr short kSegAtEnd = 0x0004;
/// On the line, before the first end.
constexpr short kSegBeyondStart = 0x0008;
/// On the line, past the second end.
constexpr short kSegBeyondEnd = 0x0010;
/// Not on the line (or the segment is shorter than 1e-4 and p is at neither end).
constexpr short kSegOffLine = 0x0020;
}  // namespace geolib

/// An infinite line in space: a point on it and its unit direction.
class VOGEBASIC_API VoGeLine3d {
public:
    VoGeVector3D direction;  ///< unit direction, or zero
    VoGePoint3D base;        ///< the point at parameter 0

    /// Zero direction, base at the origin.
    VoGeLine3d();
    /// set(p, d).
    VoGeLine3d(const VoGePoint3D& p, const VoGeVector3D& d);
    /// Base p1, direction p2 - p1 (normalised).
    VoGeLine3d(const VoGePoint3D& p1, const VoGePoint3D& p2);
    /// Copies bit for bit (a trivial copy, kept so for the binary interface).
    VoGeLine3d(const VoGeLine3d&) = default;
    /// Assigns bit for bit (a trivial copy, kept so for the binary interface).
    VoGeLine3d& operator=(const VoGeLine3d&) = default;

    /// Base p, direction d normalised.
    void set(const VoGePoint3D& p, const VoGeVector3D& d);
    /// The base point.
    VoGePoint3D getStartpt() const;
    /// The point at parameter 1 (one unit along), not the second point of the constructor.
    VoGePoint3D getEndpt() const;
    /// base + direction * t.
    VoGePoint3D getParamPoint(double t) const;
    /// Parameter of p measured on the coordinate in which the direction is largest (ties go to
    /// x, then y, then z); p is not projected first. Returns geolib::kNoLineParam when that
    /// component is not above 1e-6 (a zero direction, or NaN).
    double getParam(const VoGePoint3D& p) const;
    /// p within tol of the base, or the direction from p to the base within tol of the line's
    /// (tol used as a cosine deviation there).
    bool isOn(const VoGePoint3D& p, double tol) const;
    /// Rows 0 and 1 of m := two planes (A, B, C, D), A.x + B.y + C.z = D, meeting in the line.
    /// Rows 2 and 3 are not touched.
    void getGeneratlEquation(VoGeMatrix3D& m) const;
    /// a[0..11] := the 3x4 rows (1, 0, 0, -dx), (0, 1, 0, -dy), (0, 0, 1, -dz) and b[0..2] :=
    /// the base: x - dx.t = x0 and so on. Does nothing when an array is null.
    void getEquationSet(double* a, double* b) const;
    /// Solves for the meeting point of the two lines. Returns true with p set when they meet;
    /// false with p set (a point of the other line) when they are skew; false with p untouched
    /// when the systems are singular (parallel or degenerate lines).
    bool intersectWith(const VoGeLine3d& other, VoGePoint3D& p) const;
};

static_assert(sizeof(VoGeLine3d) == 6 * sizeof(double), "VoGeLine3d is a vector and a point");
static_assert(std::is_standard_layout<VoGeLine3d>::value, "VoGeLine3d is standard-layout");
static_assert(std::is_trivially_copyable<VoGeLine3d>::value, "VoGeLine3d copies bitwise");
static_assert(offsetof(VoGeLine3d, direction) == 0, "direction comes first");
static_assert(offsetof(VoGeLine3d, base) == 3 * sizeof(double), "base follows direction");

#endif  // VOGEBASIC_VOGELINE3D_H
