#include "VoGeVector3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "VoGePoint3D.h"
#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using vgtest::near3;

using vgtest::kPi;
constexpr double kAngleTol = 1e-9;

TEST(VoGeVector3DNormalize, ShortVectorsHaveNoDirection) {
    // Below 1e-4 normalises to zero; exactly 1e-4 is divided by its length.
    EXPECT_EQ(VoGeVector3D(0.5e-4, 0, 0).normalize().x, 0.0);
    EXPECT_EQ(VoGeVector3D(1e-4, 0, 0).normalize().x, 1.0);
    EXPECT_EQ(VoGeVector3D(0, 3, 4).normalize().y, 0.6);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(near3(VoGeVector3D(nan, 1, 0).normalize(), 0, 0, 0, 0.0));
    // An infinite length gives no unit vector either.
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(near3(VoGeVector3D(4, 3, -inf).normalize(), 0, 0, 0, 0.0));
    EXPECT_TRUE(near3(VoGeVector3D(1e200, 1e200, 0).normalize(), 0, 0, 0, 0.0));
    // The const form leaves the object alone; the in-place form overwrites it.
    const VoGeVector3D c(0, 0, 5);
    EXPECT_EQ(c.normalize().z, 1.0);
    EXPECT_EQ(c.z, 5.0);
    VoGeVector3D tiny(1e-5, 0, 0);
    tiny.normalize();
    EXPECT_EQ(tiny.x, 0.0);
}

TEST(VoGeVector3DEquality, ComparesDirectionsNotValues) {
    EXPECT_TRUE(VoGeVector3D(2, 0, 0) == VoGeVector3D(1, 0, 0));
    EXPECT_FALSE(VoGeVector3D(1, 0, 0) == VoGeVector3D(-1, 0, 0));
    EXPECT_TRUE(VoGeVector3D(1, 0, 0) != VoGeVector3D(-1, 0, 0));
    // All vectors without direction are equal to each other and to zero.
    EXPECT_TRUE(VoGeVector3D(1e-5, 0, 0) == VoGeVector3D(0, -1e-5, 0));
    EXPECT_TRUE(VoGeVector3D(1e-5, 0, 0) == VoGeVector3D());
    // Per-component bound on the unit vectors: half the tolerance passes, twice fails.
    EXPECT_TRUE(VoGeVector3D(1, 0.5e-5, 0) == VoGeVector3D(1, 0, 0));
    EXPECT_FALSE(VoGeVector3D(1, 2e-5, 0) == VoGeVector3D(1, 0, 0));
}

TEST(VoGeVector3DParallel, SameOppositeAndDegenerate) {
    EXPECT_TRUE(VoGeVector3D(1, 0, 0).isParallel(VoGeVector3D(-3, 0, 0), 1e-9));
    EXPECT_TRUE(VoGeVector3D().isParallel(VoGeVector3D(1, 2, 3), 1e-9));
    EXPECT_FALSE(VoGeVector3D(1, 0, 0).isParallel(VoGeVector3D(1, 1, 0), 1e-9));
    // The cross-product fallback uses its own fixed 1e-5, whatever tol says.
    EXPECT_TRUE(VoGeVector3D(1, 0.5e-5, 0).isParallel(VoGeVector3D(1, 0, 0), 0.0));
    EXPECT_FALSE(VoGeVector3D(1, 2e-5, 0).isParallel(VoGeVector3D(1, 0, 0), 0.0));
}

TEST(VoGeVector3DAngles, RotateAngleMeasuresCounterClockwiseAboutZ) {
    const VoGeVector3D x(1, 0, 0), v(3.7, 2.9, 0.7);  // unit v dots with itself above 1
    EXPECT_EQ(v.angleTo(v), 0.0);                     // clamped, not NaN
    EXPECT_DOUBLE_EQ(x.rotateAngle(VoGeVector3D(0, 1, 0)), kPi / 2);
    EXPECT_DOUBLE_EQ(x.rotateAngle(VoGeVector3D(0, -1, 0)), 3 * kPi / 2);
    // Nearly coincident directions return the small angle without a sense test.
    const double tiny = 0.5e-4;
    EXPECT_NEAR(x.rotateAngle(VoGeVector3D(std::cos(tiny), -std::sin(tiny), 0)), tiny, kAngleTol);
    EXPECT_NEAR(x.rotateAngle(VoGeVector3D(std::cos(2e-4), -std::sin(2e-4), 0)), 2 * kPi - 2e-4,
                kAngleTol);
}

}  // namespace
