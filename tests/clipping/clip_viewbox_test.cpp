#include "clip_viewbox.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace geolib;
using P = VoGePoint3D;

// The range inside the box from the views that show the piece (u0 > u1 when none does), and the
// segment meeting the box grown by 1e-4, either way round, NaN meeting nothing.
TEST(ViewBoxTrimLine, RangeInsideTheBoxAndSegmentsMeetingIt) {
    Box3D box;
    box.set(P(0, 0, 0), P(10, 10, 10));
    const struct {
        P p0, p1;
        bool passes;
        double u0, u1;
        bool meets;
    } cases[] = {
        {{-5, 5, 5}, {15, 5, 5}, true, 0.25, 0.75, true},
        {{5, 5, -5}, {5, 5, 15}, true, 0.25, 0.75, true},
        {{-5, 5, 5}, {15, 5.005, 5}, true, 0.25, 0.75, true},  // nearly along x: a point
        {{-5, 5, 0}, {15, 5, 20}, true, 0.25, 0.5, true},      // enters x = 0, leaves z = 10
        {{-5, 20, 5}, {15, 20, 5}, false, 1, 0, false},        // beside
        {{-5, 5, 12}, {15, 6, 12}, false, 1, 0, false},        // above: seen in plan, missed beside
        {{5, 5, 5}, {5, 5, 5}, false, 1, 0, true},             // a point
        {{-5, 5, 5}, {-0.5e-4, 5, 5}, false, 1, 0, true},
        {{-5, 5, 5}, {-2e-4, 5, 5}, false, 1, 0, false},
        {{std::numeric_limits<double>::quiet_NaN(), 5, 5}, {5, 5, 5}, false, 1, 0, false},
    };
    for (const auto& c : cases) {
        double u0 = -7, u1 = -7;
        EXPECT_EQ(viewBoxTrimLine(&box, c.p0, c.p1, u0, u1), c.passes) << c.p1.x;
        EXPECT_NEAR(u0, c.u0, 1e-9) << c.p1.x;
        EXPECT_NEAR(u1, c.u1, 1e-9) << c.p1.x;
        EXPECT_EQ(isLineCrossBox3d(c.p0, c.p1, P(0, 0, 0), P(10, 10, 10)), c.meets) << c.p1.x;
        EXPECT_EQ(isLineCrossBox3d(c.p1, c.p0, P(0, 0, 0), P(10, 10, 10)), c.meets) << c.p1.x;
    }
    double u0 = 0, u1 = 0;
    box.set(P(-20, -19.5, -14), P(-14, -13.999, -13.999));  // the views' ranges miss the piece
    EXPECT_FALSE(viewBoxTrimLine(&box, P(-16, -13.97, 1), P(-13.999, -14, -20), u0, u1));
    EXPECT_GT(u0, u1);
}

// The rectangles are appended, corner by corner as documented: a + n h, a - n h, b - n h, b + n h
// (counter-clockwise for a positive width, z = 0); a box gives one per view between the middles
// of two opposite sides.
TEST(ViewRectangles, OfAPipeAndOfABoxsViewsCornerByCorner) {
    std::vector<P> out = {P(9, 9, 9)};
    getBoxAlongPipe(P(0, 0, 5), P(10, 0, 5), 2, out);
    const std::vector<P> ring = {P(9, 9, 9), P(0, 1, 0), P(0, -1, 0), P(10, -1, 0), P(10, 1, 0)};
    ASSERT_EQ(out.size(), ring.size());
    for (size_t k = 0; k < ring.size(); ++k)
        EXPECT_TRUE(out[k] == ring[k]) << k;
    std::vector<P> xy, yz, xz;
    get3DBoxProject2d(P(0, 2, 4), P(1, 5, 10), xy, yz, xz);
    ASSERT_TRUE(xy.size() == 4 && yz.size() == 4 && xz.size() == 4);
    // Plan x by y, side y by z, front x by z: the first and third corners span each rectangle.
    EXPECT_TRUE(xy[1] == P(0, 2, 0) && xy[3] == P(1, 5, 0));
    EXPECT_TRUE(yz[1] == P(2, 4, 0) && yz[3] == P(5, 10, 0));
    EXPECT_TRUE(xz[1] == P(0, 4, 0) && xz[3] == P(1, 10, 0));
}

}  // namespace
