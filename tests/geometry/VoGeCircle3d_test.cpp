#include "VoGeCircle3d.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/test_constants.h"

namespace {

using vgtest::kPi;

// Points round a horizontal circle give back their angle; the tilted formula as it has always
// been computed on the circle about +X; about +Y it divides by the normal's x (NaN).
TEST(VoGeCircle3d, AnglesRoundTripAndTheTiltedFormula) {
    const VoGeCircle3d c(VoGePoint3D(2, -1, 4), 3.0, VoGeVector3D(0, 0, 1));
    for (double a = 0.2; a < 2 * kPi; a += 0.3) {
        EXPECT_NEAR(c.getParam(c.getPt(a), 1e-6), a, 1e-12);
        EXPECT_TRUE(c.isOn(c.getPt(a), 1e-11));
    }
    for (double y : {-1 - 2.3e-16, -2.5})  // a hair below +X, and off the circle beside it
        EXPECT_LT(c.getParam(VoGePoint3D(5, y, 4), 1e-6), 2 * kPi) << y;
    const VoGeCircle3d x(VoGePoint3D(0, 0, 0), 1.0, VoGeVector3D(1, 0, 0));
    EXPECT_NEAR(x.getParam(VoGePoint3D(0, 0, -1), 1e-6), kPi / 2, 1e-12);
    EXPECT_NEAR(x.getParam(VoGePoint3D(0, -1, 0), 1e-6), 0.0, 1e-12);
    EXPECT_NEAR(x.getParam(VoGePoint3D(0, 0, 1), 1e-6), 3 * kPi / 2, 1e-12);
    const VoGeCircle3d y(VoGePoint3D(0, 0, 0), 1.0, VoGeVector3D(0, 1, 0));
    EXPECT_TRUE(std::isnan(y.getParam(VoGePoint3D(1, 0, 0), 1e-6)));
}

}  // namespace
