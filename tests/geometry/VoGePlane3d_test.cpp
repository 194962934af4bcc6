#include "VoGePlane3d.h"

#include <gtest/gtest.h>

namespace {

// x + y + z = 1 crossed by segments: on the segment, short of it by less or more than the end
// tolerance 1e-4, on the line only, and parallel (p untouched).
TEST(VoGePlane3d, SegmentsCrossOrStopShort) {
    const VoGePlane3d pl(VoGePoint3D(0, 0, 1), VoGeVector3D(1, 1, 1));
    const VoGePoint3D a(-1, -1, -1), crossing(1.0 / 3, 1.0 / 3, 1.0 / 3);
    const VoGeVector3D u = VoGeVector3D(1, 1, 1).normalize();
    VoGePoint3D p;
    EXPECT_TRUE(pl.intersectWith(a, crossing - u * 0.5e-4, p, true));
    EXPECT_FALSE(pl.intersectWith(a, crossing - u * 2e-4, p, true));
    EXPECT_FALSE(pl.intersectWith(a, VoGePoint3D(0, 0, 0), p, true));
    EXPECT_NEAR(p.x - crossing.x, 0.0, 1e-12);
    EXPECT_TRUE(pl.intersectWith(a, VoGePoint3D(0, 0, 0), p, false));
    p.set(9, 9, 9);
    EXPECT_FALSE(pl.intersectWith(VoGePoint3D(0, 0, 5), VoGePoint3D(1, -1, 5), p, false));
    EXPECT_EQ(p.x, 9.0);
}

}  // namespace
