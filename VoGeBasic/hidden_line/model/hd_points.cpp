// Point and vector helpers on _s_hd_point_ values.
#include "hidden_line/model/hd_points.h"

#include <cmath>

namespace geolib {

_s_hd_point_ vecScale(double s, _s_hd_point_ a) {
    return {s * a.x, s * a.y, s * a.z};
}

_s_hd_point_ vecNegate(_s_hd_point_ a) {
    return {-a.x, -a.y, -a.z};
}

_s_hd_point_ lerpPoint(double t, _s_hd_point_ a, _s_hd_point_ b) {
    return linComb(t, a, 1.0 - t, b);
}

_s_hd_point_ mirrorPoint(_s_hd_point_ a, _s_hd_point_ c) {
    return {2.0 * c.x - a.x, 2.0 * c.y - a.y, 2.0 * c.z - a.z};
}

bool vecIsParallel(_s_hd_point_ a, _s_hd_point_ b) {
    return vecLength(vecCross(a, b)) < hd::kUnitMinLength;
}

bool isSamePoint(_s_hd_point_ a, _s_hd_point_ b) {
    return std::fabs(a.x - b.x) < hd::kSamePointTol && std::fabs(a.y - b.y) < hd::kSamePointTol &&
           std::fabs(a.z - b.z) < hd::kSamePointTol;
}

bool isFinitePoint(_s_hd_point_ p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

double det3x3(double a, double b, double c, double d, double e, double f, double g, double h,
              double i) {
    return a * e * i + b * f * g + c * h * d - c * e * g - b * d * i - a * h * f;
}

}  // namespace geolib
