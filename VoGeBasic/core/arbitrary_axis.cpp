#include "core/arbitrary_axis.h"

#include <cmath>

namespace geolib {
namespace core {

namespace {

// out = a x b, component by component in the order the vector class computes it.
void cross(const double a[3], const double b[3], double out[3]) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

}  // namespace

void arbitraryAxes(const double zUnit[3], double x[3], double y[3]) {
    static const double kWorldY[3] = {0.0, 1.0, 0.0};
    static const double kWorldZ[3] = {0.0, 0.0, 1.0};
    const bool nearZ =
        std::fabs(zUnit[0]) < kArbitraryAxisLimit && std::fabs(zUnit[1]) < kArbitraryAxisLimit;
    cross(nearZ ? kWorldY : kWorldZ, zUnit, x);
    cross(zUnit, x, y);
}

}  // namespace core
}  // namespace geolib
