#include "VoGePoint3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "VoGeVector3D.h"
#include "support/geom_expect.h"

namespace {

using vgtest::near3;

TEST(VoGePoint3DLayout, ExposesItsOwnThreeDoubles) {
    VoGePoint3D p(1, 2, 3);
    EXPECT_EQ(p.toKestPoint(), &p.x);
    p[1] = 7.0;
    double out[3] = {0, 0, 0};
    p.toKestPoint(out);
    EXPECT_TRUE(near3(VoGePoint3D(out), 1, 7, 3, 0.0));
}

TEST(VoGePoint3DArithmetic, PointsAndVectorsCombineAffinely) {
    const VoGePoint3D a(1, 2, 3);
    const VoGePoint3D b(4, 6, 3);
    const VoGeVector3D ab = b - a;  // from a to b
    EXPECT_TRUE(near3(ab, 3, 4, 0, 0.0));
    EXPECT_EQ(a + ab, b);
    EXPECT_EQ(b - ab, a);
    EXPECT_EQ(((a + b) / 2.0).x, 2.5);
    VoGePoint3D c = a;
    c += ab;
    c -= ab;
    c *= 2.0;
    EXPECT_TRUE(near3(c, 2, 4, 6, 0.0));
    c /= 0.0;  // unguarded: infinities, no trap
    EXPECT_TRUE(std::isinf(c.x));
    EXPECT_EQ(VoGePoint3D(0, 0, 0).distance2D(VoGePoint3D(3, 4, 100)), 5.0);  // plan only
    EXPECT_EQ(VoGePoint3D(0, 0, 0).distanceTo(VoGePoint3D(2, 3, 6)), 7.0);
}

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
}

}  // namespace
