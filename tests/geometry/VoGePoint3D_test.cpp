#include "VoGePoint3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "VoGeVector3D.h"

namespace {

TEST(VoGePoint3DLayout, ExposesItsOwnThreeDoubles) {
    VoGePoint3D p(1, 2, 3);
    const double* raw = p.toKestPoint();
    EXPECT_EQ(raw, &p.x);
    EXPECT_EQ(raw[2], 3.0);
    p[1] = 7.0;
    EXPECT_EQ(p.y, 7.0);
    double out[3] = {0, 0, 0};
    p.toKestPoint(out);
    EXPECT_EQ(out[1], 7.0);
    const double arr[3] = {4, 5, 6};
    EXPECT_EQ(VoGePoint3D(arr).z, 6.0);
    EXPECT_EQ(VoGePoint3D().set(arr).x, 4.0);
}

TEST(VoGePoint3DArithmetic, PointsAndVectorsCombineAffinely) {
    const VoGePoint3D a(1, 2, 3);
    const VoGePoint3D b(4, 6, 3);
    const VoGeVector3D ab = b - a;  // from a to b
    EXPECT_EQ(ab.x, 3.0);
    EXPECT_EQ(ab.y, 4.0);
    EXPECT_EQ(ab.z, 0.0);
    EXPECT_TRUE(a + ab == b);
    EXPECT_TRUE(b - ab == a);
    const VoGePoint3D mid = (a + b) / 2.0;
    EXPECT_EQ(mid.x, 2.5);
    VoGePoint3D c = a;
    c += ab;
    c -= ab;
    c *= 2.0;
    EXPECT_EQ(c.z, 6.0);
    c /= 0.0;  // unguarded: infinities, no trap
    EXPECT_TRUE(std::isinf(c.x));
}

TEST(VoGePoint3DDistance, PlanDistanceIgnoresDepth) {
    EXPECT_EQ(VoGePoint3D(0, 0, 0).distance2D(VoGePoint3D(3, 4, 100)), 5.0);
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
}

TEST(VoGePoint3DEquality, NotANumberIsNeverEqual) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const VoGePoint3D p(nan, 0, 0);
    EXPECT_FALSE(p == p);
    EXPECT_TRUE(p != p);
}

}  // namespace
