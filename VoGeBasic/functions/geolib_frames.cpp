#include "geolib_frames.h"

#include <cmath>
#include <limits>

#include "core/angles.h"
#include "geometry/frame_convert.h"

using geolib::geometry::convertFrames;

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
        return core::belowFullTurn(core::kFullTurn - a);
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
