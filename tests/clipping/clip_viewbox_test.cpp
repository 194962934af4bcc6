#include "clip_viewbox.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/geom_expect.h"

namespace {

using namespace geolib;
using vgtest::near3;
using P = VoGePoint3D;

constexpr double kParamTol = 1e-9;
constexpr double kViewPointTol = 0.01;  // a view shows a point below this
constexpr double kBoxTol = 1e-4;        // isLineCrossBox3d's tolerance
const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ViewBoxes, PipeRectangleAndTheThreeViewsOfABox) {
    std::vector<P> out = {P(7, 7, 7)};  // kept
    getBoxAlongPipe(P(0, 0, 5), P(10, 0, 5), 2, out);
    const std::vector<P> want = {P(7, 7, 7), P(0, 1, 0), P(0, -1, 0), P(10, -1, 0), P(10, 1, 0)};
    EXPECT_TRUE(vgtest::samePoints(out, want, 0.0)) << "appended counter-clockwise, flat";
    std::vector<P> xy, yz, xz;
    get3DBoxProject2d(P(1, 2, 3), P(4, 6, 8), xy, yz, xz);
    ASSERT_EQ(xy.size() + yz.size() + xz.size(), 12u);
    EXPECT_TRUE(near3(xy[0], P(1, 6, 0), 0.0));  // (x, y)
    EXPECT_TRUE(near3(yz[2], P(6, 3, 0), 0.0));  // (y, z)
    EXPECT_TRUE(near3(xz[3], P(4, 8, 0), 0.0));  // (x, z)
}

TEST(ViewBoxTrimLine, RangeInsideTheBoxFromTheViewsThatShowThePiece) {
    Box3D box;
    box.set(P(0, 0, 0), P(10, 10, 10));
    Box3D thin;  // each view sees the piece cross it, but the views' ranges share nothing
    thin.set(P(-20, -19.5, -14), P(-14, -13.999, -13.999));
    const struct {
        const char* id;
        const Box3D* box;
        P p0, p1;
        bool passes;
        double u0, u1;
    } cases[] = {
        {"along x", &box, {-5, 5, 5}, {15, 5, 5}, true, 0.25, 0.75},
        {"along z", &box, {5, 5, -5}, {5, 5, 15}, true, 0.25, 0.75},
        {"nearly along x", &box, {-5, 5, 5}, {15, 5 + 0.5 * kViewPointTol, 5}, true, 0.25, 0.75},
        // Enters through x = 0 at 0.25 and leaves through z = 10 at 0.5 (front view).
        {"slanting", &box, {-5, 5, 0}, {15, 5, 20}, true, 0.25, 0.5},
        {"along x, passing beside", &box, {-5, 20, 5}, {15, 20, 5}, false, 1, 0},
        {"above: seen in plan, missed beside", &box, {-5, 5, 12}, {15, 6, 12}, false, 1, 0},
        {"a point inside", &box, {5, 5, 5}, {5, 5, 5}, false, 1, 0},
        {"views with nothing in common", &thin, {-16, -13.97, 1}, {-13.999, -14, -20}, false, 1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        double u0 = -7, u1 = -7;
        EXPECT_EQ(viewBoxTrimLine(c.box, c.p0, c.p1, u0, u1), c.passes);
        EXPECT_NEAR(u0, c.u0, kParamTol);
        EXPECT_NEAR(u1, c.u1, kParamTol);
    }
    double u0 = -7, u1 = -7;
    EXPECT_FALSE(viewBoxTrimLine(nullptr, P(), P(1, 1, 1), u0, u1));
    EXPECT_EQ(u0, -7.0);
}

TEST(IsLineCrossBox3d, SegmentMeetsTheBoxGrownByTheTolerance) {
    const P lo(0, 0, 0), hi(10, 10, 10);
    const struct {
        const char* id;
        P p0, p1;
        bool meets;
    } cases[] = {
        {"through", {-5, 5, 5}, {15, 5, 5}, true},
        {"inside", {2, 2, 2}, {3, 3, 3}, true},
        {"beside", {-5, 12, 5}, {15, 12, 5}, false},
        {"skew past an edge", {-2, 5, 12}, {5, 5, 13}, false},
        {"ends half a tolerance short", {-5, 5, 5}, {-0.5 * kBoxTol, 5, 5}, true},
        {"ends twice a tolerance short", {-5, 5, 5}, {-2 * kBoxTol, 5, 5}, false},
        {"a point outside", {10 + 2 * kBoxTol, 5, 5}, {10 + 2 * kBoxTol, 5, 5}, false},
        {"NaN end", {kNaN, 5, 5}, {5, 5, 5}, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isLineCrossBox3d(c.p0, c.p1, lo, hi), c.meets) << c.id;
        EXPECT_EQ(isLineCrossBox3d(c.p1, c.p0, lo, hi), c.meets) << c.id << ", reversed";
    }
}

TEST(GetBoxBoundary, SmallestBoxOfPointsAndOfAParallelepiped) {
    Box3D box;
    box.set(P(0, 0, 0), P(10, 10, 10));
    EXPECT_FALSE(getBoxBoundary(std::vector<P>{}, box));
    EXPECT_EQ(box.max.x, 10.0) << "untouched";
    ASSERT_TRUE(getBoxBoundary(std::vector<P>{P(1, 5, -2), P(-3, 7, 4), P(2, 6, 0)}, box));
    EXPECT_TRUE(near3(box.min, -3, 5, -2, 0.0));
    EXPECT_TRUE(near3(box.max, 2, 7, 4, 0.0));
    // A unit cube turned 45 degrees about z: its plan is a diamond of half-diagonal sqrt(0.5).
    const double h = std::sqrt(0.5);
    BoxP4 p4 = {P(0, 0, 0), P(h, h, 0), P(-h, h, 0), P(0, 0, 1)};
    ASSERT_TRUE(getBoxBoundary(p4, box));
    EXPECT_TRUE(near3(box.min, -h, 0, 0, 1e-15));
    EXPECT_TRUE(near3(box.max, h, 2 * h, 1, 1e-15));
    p4.p2.y = kNaN;
    EXPECT_FALSE(getBoxBoundary(p4, box));
}

}  // namespace
