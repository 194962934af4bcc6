#include "geolib_frames.h"

#include <gtest/gtest.h>

#include "support/alloc_hook.h"

#include <new>

#include <cmath>

#include "VoGeCircle3d.h"
#include "geolib_planar.h"
#include "geolib_spatial.h"
#include "support/geom_expect.h"
#include "support/test_constants.h"

namespace {

using geolib::angleToX;
using geolib::kestZxTrans;

using vgtest::kPi;
constexpr double kRoundTol = 1e-12;
constexpr double kDirTol = 1e-5;  // a fromZ within this of +Z is +Z

TEST(KestZxTrans, FromZNearPlusZIsTakenAsPlusZ) {
    const VoGeVector3D v(0.3, -0.4, 0.5);
    const VoGeVector3D z(0, 0, 1);
    for (const VoGeVector3D& from : {z, VoGeVector3D(0, 0, 2), VoGeVector3D(kDirTol / 2, 0, 1)})
        EXPECT_TRUE(vgtest::near3(kestZxTrans(v, from, z), v, 0.0));
    const VoGeVector3D tilted = kestZxTrans(v, VoGeVector3D(kDirTol * 2, 0, 1), z);
    EXPECT_NE(tilted.z, v.z);
    EXPECT_TRUE(vgtest::near3(tilted, v, kDirTol * 4));
}

TEST(KestZxTrans, RoundTripsAndFormsAgree) {
    // World X in the frame of X (whose X axis is world Y, Y axis world Z) is that frame's Z.
    EXPECT_TRUE(vgtest::near3(
        kestZxTrans(VoGeVector3D(1, 0, 0), VoGeVector3D(0, 0, 1), VoGeVector3D(1, 0, 0)),
        VoGeVector3D(0, 0, 1), kRoundTol));
    const VoGeVector3D axes[] = {{1, 0, 0}, {1, 2, 3}, {0.001, 0, -1}, {-2, 1, 0.5}};
    const VoGeVector3D v(0.7, -1.1, 2.3);
    for (const auto& a : axes) {
        for (const auto& b : axes) {
            const VoGeVector3D w = kestZxTrans(v, a, b);
            EXPECT_TRUE(vgtest::near3(kestZxTrans(w, b, a), v, kRoundTol));
            EXPECT_NEAR(w.length(), v.length(), kRoundTol);
            const VoGePoint3D p = kestZxTrans(VoGePoint3D(v), a, b);
            EXPECT_TRUE(vgtest::near3(p, w, 0.0));
            double arr[3] = {v.x, v.y, v.z};
            double fa[3] = {a.x, a.y, a.z};
            double fb[3] = {b.x, b.y, b.z};
            kestZxTrans(arr, fa, fb, arr, true);  // in and out the same array
            EXPECT_TRUE(vgtest::near3(VoGeVector3D(arr), w, 0.0));
        }
    }
}

// A plan direction turned by t from +X measures t, in [0, 2 pi), whatever its height.
TEST(AngleToX, RotatedDirectionsMeasureTheirTurn) {
    vgtest::Lcg r(3);
    for (int k = 0; k < 1000; ++k) {
        const double t = r(0, 2 * kPi), len = r(0.01, 100);
        const VoGeVector3D v = geolib::vec2dRotateXY(VoGeVector3D(len, 0, r(-9, 9)), t);
        EXPECT_NEAR(angleToX(v), t, 1e-9 * (1 + 1 / len));
    }
    EXPECT_EQ(angleToX(VoGeVector3D(0, 0, 5)), 1.5707963267948966);  // no plan direction: acos(0)
}

TEST(Keypoints, FirstMatchingNumberIsOverwrittenAndFetched) {
    std::vector<std::pair<short, VoGePoint3D>> kps = {{3, VoGePoint3D(1, 0, 0)},
                                                      {3, VoGePoint3D(2, 0, 0)}};
    setKeypointOfNo(kps, 3, VoGePoint3D(9, 9, 9));
    setKeypointOfNo(kps, 4, VoGePoint3D(4, 4, 4));
    ASSERT_EQ(kps.size(), 3u);
    EXPECT_EQ(kps[1].second.x, 2.0);
    VoGePoint3D got(-1, -1, -1);
    EXPECT_TRUE(getKeypointOfNo(kps, 3, got));
    EXPECT_EQ(got.x, 9.0);
    EXPECT_TRUE(getKeypointOfNo(kps, 4, got));
    EXPECT_EQ(got.y, 4.0);
    EXPECT_FALSE(getKeypointOfNo(kps, 5, got));
    EXPECT_EQ(got.y, 4.0);
}

}  // namespace
