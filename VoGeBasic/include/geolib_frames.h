// Conversion between arbitrary-axis frames, plan angles and numbered key points.
//
// The frames are those of VoGeMatrix3D::setZTrans: a frame at the origin whose Z axis is a
// given direction and whose X axis follows the arbitrary-axis rule. Angles are radians.
#ifndef VOGEBASIC_GEOLIB_FRAMES_H
#define VOGEBASIC_GEOLIB_FRAMES_H

#include <utility>
#include <vector>

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

namespace geolib {

/// v, given in the frame whose Z axis is fromZ, expressed in the frame whose Z axis is toZ.
/// A fromZ within 1e-5 of +Z (per normalised component) is taken as exactly +Z. Zero axes
/// give degenerate (zero) frames and hence zero components.
VOGEBASIC_API VoGeVector3D kestZxTrans(const VoGeVector3D& v, const VoGeVector3D& fromZ,
                                       const VoGeVector3D& toZ);
/// The same for a point; both frames sit at the origin, so the point turns about it.
VOGEBASIC_API VoGePoint3D kestZxTrans(const VoGePoint3D& p, const VoGeVector3D& fromZ,
                                      const VoGeVector3D& toZ);
/// Array form on three doubles each: the vector form when isVector is true, else the point
/// form; the result goes to out[0..2] (in may be out). Does nothing when an array is null.
VOGEBASIC_API void kestZxTrans(double* const in, double* fromZ, double* toZ, double* out,
                               bool isVector);

/// Plan angle of v from +X, counter-clockwise seen from +Z, in [0, 2pi); z is ignored. A
/// vector whose plan part is shorter than 1e-4 (a vertical or zero vector) gives pi/2;
/// infinite components give NaN.
VOGEBASIC_API double angleToX(const VoGeVector3D& v);
/// angleToX(b - a).
VOGEBASIC_API double angleToX(const VoGePoint3D& a, const VoGePoint3D& b);
/// angleToX(b - a) with a and b read as three doubles each. Returns NaN when an array is null.
VOGEBASIC_API double angleToX(const double* const a, const double* b);

}  // namespace geolib

/// Stores pt under number no: overwrites the first pair with that number, or appends the
/// pair (no, pt) when there is none. Throws only the container's own allocation errors.
VOGEBASIC_API void setKeypointOfNo(std::vector<std::pair<short, VoGePoint3D>>& kps, short no,
                                   const VoGePoint3D& pt);
/// Copies the point of the first pair numbered no to pt and returns true; returns false and
/// leaves pt untouched when no pair has that number.
VOGEBASIC_API bool getKeypointOfNo(const std::vector<std::pair<short, VoGePoint3D>>& kps, short no,
                                   VoGePoint3D& pt);

#endif  // VOGEBASIC_GEOLIB_FRAMES_H
