#include "VoGeCircle3d.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using vgtest::kPi;
constexpr double kRoundTol = 1e-12;
constexpr double kOnTol = 1e-6;

TEST(VoGeCircle3dAngles, HorizontalCircleRoundTrips) {
    const VoGeCircle3d c(VoGePoint3D(0, 0, 0), 1.0, VoGeVector3D(0, 0, 1));
    EXPECT_NEAR(c.getParam(VoGePoint3D(0, -1, 0), kOnTol), 3 * kPi / 2, kRoundTol);
    EXPECT_NEAR(c.getParam(VoGePoint3D(0, 1, 0), kOnTol), kPi / 2, kRoundTol);
    const VoGeCircle3d off(VoGePoint3D(2, -1, 4), 3.0, VoGeVector3D(0, 0, -1));
    for (double a = 0.2; a < 2 * kPi; a += 0.9) {
        SCOPED_TRACE(a);
        const VoGePoint3D p = c.getPt(a);
        EXPECT_NEAR(c.getParam(p, kOnTol), a, kRoundTol);
        EXPECT_TRUE(off.isOn(off.getPt(a), kRoundTol * 10));
    }
}

// The tilted formula as it has always been computed, at the four quarter points of the circle
// about +X, and its division by the normal's x for a circle about +Y.
TEST(VoGeCircle3dAngles, TiltedCircleFormula) {
    const VoGeCircle3d c(VoGePoint3D(0, 0, 0), 1.0, VoGeVector3D(1, 0, 0));
    const struct {
        VoGePoint3D p;
        double angle;
    } cases[] = {
        {{0, 0, -1}, kPi / 2}, {{0, -1, 0}, 0.0}, {{0, 1, 0}, kPi}, {{0, 0, 1}, 3 * kPi / 2}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k.angle);
        EXPECT_NEAR(c.getParam(k.p, kOnTol), k.angle, kRoundTol);
    }
    const VoGeCircle3d aboutY(VoGePoint3D(0, 0, 0), 1.0, VoGeVector3D(0, 1, 0));
    EXPECT_TRUE(std::isnan(aboutY.getParam(VoGePoint3D(1, 0, 0), kOnTol)));
}

}  // namespace
