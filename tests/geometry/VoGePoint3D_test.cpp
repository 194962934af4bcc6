#include "VoGePoint3D.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(VoGePoint3DEquality, ToleranceIsStrictAndEuclidean) {
    const VoGePoint3D o(0, 0, 0);
    // Exactly 1e-5 apart is not equal; anything closer is.
    EXPECT_FALSE(o == VoGePoint3D(1e-5, 0, 0));
    EXPECT_TRUE(o != VoGePoint3D(1e-5, 0, 0));
    EXPECT_TRUE(o == VoGePoint3D(0.5e-5, 0, 0));
    // Each component within tolerance but the 3-D distance beyond it.
    EXPECT_FALSE(o == VoGePoint3D(0.8e-5, 0.8e-5, 0.8e-5));
    EXPECT_TRUE(o.isEqualTo(VoGePoint3D(0.5, 0, 0), 1.0));
    EXPECT_FALSE(o.isEqualTo(VoGePoint3D(1.0, 0, 0), 1.0));
    const VoGePoint3D nan(std::numeric_limits<double>::quiet_NaN(), 0, 0);
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);
    EXPECT_EQ(o.distance2D(VoGePoint3D(3, 4, 100)), 5.0) << "plan distance ignores z";
}

}  // namespace
