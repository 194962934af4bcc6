#include "geolib_frames.h"

#include <gtest/gtest.h>

#include "geolib_planar.h"
#include "support/test_constants.h"

namespace {

using geolib::kestZxTrans;
using vgtest::near;

// A frame within 1e-5 of +Z is +Z; between random frames the vector, point and array forms
// agree (the array one in place) and the way back undoes the way there.
TEST(KestZxTrans, RoundTripsAndFormsAgree) {
    const VoGeVector3D v(0.3, -0.4, 0.5), z(0, 0, 1);
    EXPECT_TRUE(near(kestZxTrans(v, VoGeVector3D(0.5e-5, 0, 1), z), v, 0.0));
    EXPECT_NE(kestZxTrans(v, VoGeVector3D(2e-5, 0, 1), z).z, v.z);
    // World X in the frame of X (whose X axis is world Y, Y axis world Z) is that frame's Z.
    EXPECT_TRUE(near(kestZxTrans(VoGeVector3D(1, 0, 0), z, VoGeVector3D(1, 0, 0)), z, 1e-12));
    vgtest::Lcg r(7);
    for (int k = 0; k < 100; ++k) {
        const VoGeVector3D a(r(-1, 1), r(-1, 1), r(-1, 1)), b(r(-1, 1), r(-1, 1), r(-1, 1));
        const VoGeVector3D w = kestZxTrans(v, a, b);
        EXPECT_TRUE(near(kestZxTrans(w, b, a), v, 1e-12));
        EXPECT_TRUE(near(kestZxTrans(VoGePoint3D(v), a, b), w, 0.0));
        double arr[3] = {v.x, v.y, v.z}, fa[3] = {a.x, a.y, a.z}, fb[3] = {b.x, b.y, b.z};
        kestZxTrans(arr, fa, fb, arr, true);
        EXPECT_TRUE(near(VoGeVector3D(arr), w, 0.0));
    }
}

// A plan direction turned by t from +X measures t, in [0, 2 pi), whatever its height; without a
// plan direction the angle is acos(0).
TEST(AngleToX, RotatedDirectionsMeasureTheirTurn) {
    vgtest::Lcg r(3);
    for (int k = 0; k < 1000; ++k) {
        // The first a hair below the full turn.
        const double t = k == 0 ? vgtest::kTwoPi - 1e-9 : r(0, vgtest::kTwoPi), len = r(0.01, 100);
        const VoGeVector3D v = geolib::vec2dRotateXY(VoGeVector3D(len, 0, r(-9, 9)), t);
        const double angle = geolib::angleToX(v);
        EXPECT_NEAR(angle, t, 1e-9 * (1 + 1 / len));
        EXPECT_LT(angle, vgtest::kTwoPi) << t;
    }
    EXPECT_EQ(geolib::angleToX(VoGeVector3D(0, 0, 5)), 1.5707963267948966);
}

// The first entry of a number is overwritten (a new number appended) and fetched.
TEST(Keypoints, FirstMatchingNumberIsOverwrittenAndFetched) {
    std::vector<std::pair<short, VoGePoint3D>> kps = {{3, {1, 0, 0}}, {3, {2, 0, 0}}};
    setKeypointOfNo(kps, 3, VoGePoint3D(9, 9, 9));
    setKeypointOfNo(kps, 4, VoGePoint3D(4, 4, 4));
    VoGePoint3D got(-1, -1, -1);
    ASSERT_EQ(kps.size(), 3u);
    EXPECT_EQ(kps[1].second.x, 2.0);
    EXPECT_TRUE(getKeypointOfNo(kps, 3, got));
    EXPECT_EQ(got.x, 9.0);
    EXPECT_FALSE(getKeypointOfNo(kps, 5, got));
    EXPECT_EQ(got.x, 9.0);
}

}  // namespace
