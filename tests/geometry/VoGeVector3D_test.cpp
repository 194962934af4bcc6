#include "VoGeVector3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "VoGePoint3D.h"

namespace {

const double kPi = std::acos(-1.0);

TEST(VoGeVector3DNormalize, ShortVectorsHaveNoDirection) {
    // Below 1e-4 normalises to zero; exactly 1e-4 is divided by its length.
    EXPECT_EQ(VoGeVector3D(0.5e-4, 0, 0).normalize().x, 0.0);
    EXPECT_EQ(VoGeVector3D(1e-4, 0, 0).normalize().x, 1.0);
    EXPECT_EQ(VoGeVector3D(0, 3, 4).normalize().y, 0.6);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const VoGeVector3D n = VoGeVector3D(nan, 1, 0).normalize();
    EXPECT_EQ(n.x, 0.0);
    EXPECT_EQ(n.y, 0.0);
}

TEST(VoGeVector3DNormalize, ConstFormLeavesTheObjectInPlaceFormOverwrites) {
    const VoGeVector3D c(0, 0, 5);
    const VoGeVector3D u = c.normalize();
    EXPECT_EQ(c.z, 5.0);
    EXPECT_EQ(u.z, 1.0);
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

TEST(VoGeVector3DAngles, UnsignedAngleIsClampedAgainstRounding) {
    const VoGeVector3D v(3.7, 2.9, 0.7);  // unit copy dots with itself to 1.0000000000000002
    const double a = v.angleTo(v);
    EXPECT_FALSE(std::isnan(a));
    EXPECT_EQ(a, 0.0);
    EXPECT_DOUBLE_EQ(VoGeVector3D(1, 0, 0).angleTo(VoGeVector3D(-2, 0, 0)), kPi);
    EXPECT_DOUBLE_EQ(VoGeVector3D(1, 0, 0).angleTo(VoGeVector3D(0, 0, 7)), kPi / 2);
}

TEST(VoGeVector3DAngles, RotateAngleMeasuresCounterClockwiseAboutZ) {
    const VoGeVector3D x(1, 0, 0);
    EXPECT_DOUBLE_EQ(x.rotateAngle(VoGeVector3D(0, 1, 0)), kPi / 2);
    EXPECT_DOUBLE_EQ(x.rotateAngle(VoGeVector3D(0, -1, 0)), 3 * kPi / 2);
    // Nearly coincident directions return the small angle without a sense test.
    const double tiny = 0.5e-4;
    const VoGeVector3D below(std::cos(tiny), -std::sin(tiny), 0);
    EXPECT_NEAR(x.rotateAngle(below), tiny, 1e-9);
    const VoGeVector3D wider(std::cos(2e-4), -std::sin(2e-4), 0);
    EXPECT_NEAR(x.rotateAngle(wider), 2 * kPi - 2e-4, 1e-9);
}

TEST(VoGeVector3DRotate, RotatesACopyAboutTheAxis) {
    VoGeVector3D v(1, 0, 0);
    const VoGeVector3D r = v.rotateBy(kPi / 2, VoGeVector3D(0, 0, 5));
    EXPECT_NEAR(r.x, 0.0, 1e-15);
    EXPECT_NEAR(r.y, 1.0, 1e-15);
    EXPECT_EQ(v.x, 1.0);  // unchanged
    const VoGeVector3D none = v.rotateBy(1.0, VoGeVector3D());
    EXPECT_EQ(none.length(), 0.0);
}

TEST(VoGeVector3DProducts, CrossIsRightHanded) {
    const VoGeVector3D z = VoGeVector3D(1, 0, 0).crossProduct(VoGeVector3D(0, 1, 0));
    EXPECT_EQ(z.z, 1.0);
    EXPECT_EQ(VoGeVector3D(1, 2, 3).dotProduct(VoGeVector3D(4, -5, 6)), 12.0);
    EXPECT_EQ((2.0 * VoGeVector3D(1, 2, 3)).z, 6.0);
    EXPECT_EQ((-VoGeVector3D(1, 2, 3)).y, -2.0);
}

TEST(VoGeVector3DSetters, PlanSetClearsDepthAndPointsGiveDifferences) {
    VoGeVector3D v(9, 9, 9);
    v.set(3, 4);
    EXPECT_EQ(v.z, 0.0);
    EXPECT_EQ(v.length(), 5.0);
    const double from[3] = {1, 1, 1};
    const double to[3] = {2, 3, 4};
    v.set(from, to);
    EXPECT_EQ(v.z, 3.0);
    const VoGeVector3D w(VoGePoint3D(1, 1, 1), VoGePoint3D(0, 0, 0));
    EXPECT_EQ(w.x, -1.0);
    VoGeVector3D a(1, 2, 3);
    VoGeVector3D b(4, 5, 6);
    a.swap(b);
    EXPECT_EQ(a.x, 4.0);
    EXPECT_EQ(b.z, 3.0);
}

}  // namespace
