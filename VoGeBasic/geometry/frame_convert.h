// Conversion between arbitrary-axis frames, shared by the circle class and kestZxTrans.
// Internal, not exported.
#ifndef VOGEBASIC_FRAME_CONVERT_H
#define VOGEBASIC_FRAME_CONVERT_H

#include "VoGeMatrix3D.h"

namespace geolib {
namespace geometry {

/// v given in the frame whose Z axis is fromZ (VoGeMatrix3D::setZTrans), expressed in the frame
/// whose Z axis is toZ: local to world, then world to local. T is a point or a vector, which
/// decides the overloads of postMult1 and preMult1.
template <class T>
T convertFrames(const T& v, const VoGeVector3D& fromZ, const VoGeVector3D& toZ) {
    const VoGeVector3D worldZ(0.0, 0.0, 1.0);
    T w = v;
    // A fromZ within the direction tolerance of +Z is +Z, deliberately: the first frame is
    // skipped then, so that nearly vertical axes give exactly the input back.
    if (fromZ.normalize() != worldZ) {
        VoGeMatrix3D toWorld;
        toWorld.setZTrans(fromZ);
        w = toWorld.postMult1(v);
    }
    // The row-vector product with this rotation is its transpose: world to local.
    VoGeMatrix3D toLocal;
    toLocal.setZTrans(toZ);
    return toLocal.preMult1(w);
}

}  // namespace geometry
}  // namespace geolib

#endif  // VOGEBASIC_FRAME_CONVERT_H
