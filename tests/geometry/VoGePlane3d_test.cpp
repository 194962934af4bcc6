#include "VoGePlane3d.h"

#include <gtest/gtest.h>

#include "support/geom_expect.h"

namespace {

constexpr double kRoundTol = 1e-12;
constexpr double kEndTol = 1e-4;  // a crossing this close to an end is on the segment

TEST(VoGePlane3dIntersect, SegmentCrossingAndStoppingShort) {
    const VoGePlane3d pl(VoGePoint3D(0, 0, 1), VoGeVector3D(1, 1, 1));  // x + y + z = 1
    VoGePoint3D p;
    ASSERT_TRUE(pl.intersectWith(VoGePoint3D(0, 0, -2), VoGePoint3D(0, 0, 4), p, true));
    EXPECT_TRUE(vgtest::near3(p, VoGePoint3D(0, 0, 1), kRoundTol));
    // The segment stops short of the plane: on the line but not on the segment.
    const VoGePoint3D a(-1, -1, -1);
    const VoGePoint3D b(0, 0, 0);
    EXPECT_FALSE(pl.intersectWith(a, b, p, true));
    EXPECT_TRUE(vgtest::near3(p, VoGePoint3D(1.0 / 3, 1.0 / 3, 1.0 / 3), kRoundTol));
    EXPECT_TRUE(pl.intersectWith(a, b, p, false));
    // Stopping short by less than the end tolerance still counts.
    const VoGeVector3D u = VoGeVector3D(1, 1, 1).normalize();
    const VoGePoint3D crossing(1.0 / 3, 1.0 / 3, 1.0 / 3);
    EXPECT_TRUE(pl.intersectWith(a, crossing - u * (kEndTol / 2), p, true));
    EXPECT_FALSE(pl.intersectWith(a, crossing - u * (kEndTol * 2), p, true));
    // Parallel: false, p untouched.
    p.set(9, 9, 9);
    EXPECT_FALSE(pl.intersectWith(VoGePoint3D(0, 0, 5), VoGePoint3D(1, -1, 5), p, false));
    EXPECT_EQ(p.x, 9.0);
}

}  // namespace
