#include "geolib_frames.h"

#include <cmath>
#include <limits>

#include "VoGeMatrix3D.h"
#include "functions/function_tolerances.h"

using namespace geolib::functions;

namespace {

// Local to world in the fromZ frame, then world to local in the toZ frame; T is a point or a
// vector, which decides the overloads of postMult1 and preMult1.
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

}  // namespace

namespace geolib {

VoGeVector3D kestZxTrans(const VoGeVector3D& v, const VoGeVector3D& fromZ,
                         const VoGeVector3D& toZ) {
    return convertFrames(v, fromZ, toZ);
}

VoGePoint3D kestZxTrans(const VoGePoint3D& p, const VoGeVector3D& fromZ, const VoGeVector3D& toZ) {
    return convertFrames(p, fromZ, toZ);
}

void kestZxTrans(double* const in, double* fromZ, double* toZ, double* out, bool isVector) {
    if (in == nullptr || fromZ == nullptr || toZ == nullptr || out == nullptr)
        return;
    const VoGeVector3D from(fromZ);
    const VoGeVector3D to(toZ);
    if (isVector) {
        kestZxTrans(VoGeVector3D(in), from, to).toKestPoint(out);
    } else {
        kestZxTrans(VoGePoint3D(in), from, to).toKestPoint(out);
    }
}

double angleToX(const VoGeVector3D& v) {
    VoGeVector3D w(v.x, v.y, 0.0);
    w.normalize();
    const VoGeVector3D xAxis(1.0, 0.0, 0.0);
    const double a = std::acos(xAxis.dotProduct(w));
    if (xAxis.crossProduct(w).z < 0.0)
        return geometry::belowFullTurn(kFullTurn - a);
    return a;
}

double angleToX(const VoGePoint3D& a, const VoGePoint3D& b) {
    return angleToX(b - a);
}

double angleToX(const double* const a, const double* b) {
    if (a == nullptr || b == nullptr)
        return std::numeric_limits<double>::quiet_NaN();
    return angleToX(VoGePoint3D(a), VoGePoint3D(b));
}

}  // namespace geolib

void setKeypointOfNo(std::vector<std::pair<short, VoGePoint3D>>& kps, short no,
                     const VoGePoint3D& pt) {
    for (auto& kp : kps) {
        if (kp.first == no) {
            kp.second = pt;
            return;
        }
    }
    kps.emplace_back(no, pt);
}

bool getKeypointOfNo(const std::vector<std::pair<short, VoGePoint3D>>& kps, short no,
                     VoGePoint3D& pt) {
    for (const auto& kp : kps) {
        if (kp.first == no) {
            pt = kp.second;
            return true;
        }
    }
    return false;
}
