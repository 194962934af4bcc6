#include "VoGeVector3D.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/test_constants.h"

namespace {

// Below 1e-4 a vector has no direction, and neither has a NaN or infinite one; exactly 1e-4 is
// divided by its length. The const form leaves the object alone.
TEST(VoGeVector3D, ShortAndNonFiniteVectorsHaveNoDirection) {
    EXPECT_EQ(VoGeVector3D(0.5e-4, 0, 0).normalize().x, 0.0);
    EXPECT_EQ(VoGeVector3D(1e-4, 0, 0).normalize().x, 1.0);
    EXPECT_EQ(VoGeVector3D(0, 3, 4).normalize().y, 0.6);
    for (double bad : {vgtest::kNaN, 1e200, -vgtest::kInf})
        EXPECT_EQ(VoGeVector3D(bad, bad, 1).normalize().length(), 0.0);
    const VoGeVector3D c(0, 0, 5);
    EXPECT_EQ(c.normalize().z, 1.0);
    EXPECT_EQ(c.z, 5.0);
    // Equality compares directions per component within 1e-5; all short vectors are equal.
    EXPECT_TRUE(VoGeVector3D(2, 0, 0) == VoGeVector3D(1, 0.5e-5, 0));
    EXPECT_FALSE(VoGeVector3D(1, 2e-5, 0) == VoGeVector3D(1, 0, 0));
    EXPECT_FALSE(VoGeVector3D(1, 0, 0) == VoGeVector3D(-1, 0, 0));
    EXPECT_TRUE(VoGeVector3D(1e-5, 0, 0) == VoGeVector3D(0, -1e-5, 0));
    // The parallel test's cross-product fallback uses its own fixed 1e-5, whatever tol says.
    EXPECT_TRUE(VoGeVector3D(-3, 0.5e-5, 0).isParallel(VoGeVector3D(1, 0, 0), 0.0));
    EXPECT_FALSE(VoGeVector3D(1, 2e-5, 0).isParallel(VoGeVector3D(1, 0, 0), 0.0));
    EXPECT_TRUE(VoGeVector3D().isParallel(VoGeVector3D(1, 2, 3), 1e-9));
}

// rotateAngle turns counter-clockwise about Z into [0, 2 pi); within 1e-4 it is the small
// angle without a sense test; angleTo clamps a unit dot above 1.
TEST(VoGeVector3D, AnglesAreCounterClockwiseInTheFullTurn) {
    const VoGeVector3D x(1, 0, 0), v(3.7, 2.9, 0.7);
    EXPECT_EQ(v.angleTo(v), 0.0);
    vgtest::Lcg r(5);
    for (int k = 0; k < 1000; ++k) {
        const double t = r(2e-4, vgtest::kTwoPi - 2e-4);
        EXPECT_NEAR(x.rotateAngle(VoGeVector3D(std::cos(t), std::sin(t), r(-1, 1))), t, 1e-9);
    }
    EXPECT_NEAR(x.rotateAngle(VoGeVector3D(std::cos(5e-5), -std::sin(5e-5), 0)), 5e-5, 1e-9);
}

}  // namespace
