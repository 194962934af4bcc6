#include "clip_viewbox.h"

#include <gtest/gtest.h>

#include <vector>

#include <new>

#include <cmath>
#include <limits>

#include "support/alloc_hook.h"
#include "support/geom_expect.h"

namespace {

using namespace geolib;
using vgtest::near3;
using P = VoGePoint3D;

constexpr double kParamTol = 1e-9;
constexpr double kViewPointTol = 0.01;  // a view shows a point below this
constexpr double kBoxTol = 1e-4;        // isPointInBox's tolerance

Box3D box10() {
    Box3D b;
    b.set(VoGePoint3D(0, 0, 0), VoGePoint3D(10, 10, 10));
    return b;
}

TEST(GetBoxAlongPipe, AppendsTheRectangleCounterClockwise) {
    std::vector<VoGePoint3D> out = {VoGePoint3D(7, 7, 7)};  // kept
    getBoxAlongPipe(VoGePoint3D(0, 0, 5), VoGePoint3D(10, 0, 5), 2, out);
    const std::vector<P> want = {P(7, 7, 7), P(0, 1, 0), P(0, -1, 0), P(10, -1, 0), P(10, 1, 0)};
    EXPECT_TRUE(vgtest::samePoints(out, want, 0.0));
}

TEST(Get3DBoxProject2d, EachViewShowsItsTwoCoordinates) {
    std::vector<VoGePoint3D> xy, yz, xz;
    get3DBoxProject2d(VoGePoint3D(1, 2, 3), VoGePoint3D(4, 6, 8), xy, yz, xz);
    ASSERT_EQ(xy.size() + yz.size() + xz.size(), 12u);
    EXPECT_TRUE(near3(xy[0], VoGePoint3D(1, 6, 0), 0.0));  // (x, y)
    EXPECT_TRUE(near3(yz[2], VoGePoint3D(6, 3, 0), 0.0));  // (y, z)
    EXPECT_TRUE(near3(xz[3], VoGePoint3D(4, 8, 0), 0.0));  // (x, z)
}

TEST(ViewBoxTrimLine, RangeInsideTheBoxFromTheViewsThatShowThePiece) {
    const Box3D box = box10();
    struct Case {
        const char* id;
        VoGePoint3D p0, p1;
        bool passes;
        double u0, u1;
    } cases[] = {
        {"along x", {-5, 5, 5}, {15, 5, 5}, true, 0.25, 0.75},
        {"along y", {5, -5, 5}, {5, 15, 5}, true, 0.25, 0.75},
        {"along z", {5, 5, -5}, {5, 5, 15}, true, 0.25, 0.75},
        {"nearly along x", {-5, 5, 5}, {15, 5 + 0.5 * kViewPointTol, 5}, true, 0.25, 0.75},
        // Enters through x = 0 at 0.25 and leaves through z = 10 at 0.5 (front view).
        {"slanting", {-5, 5, 0}, {15, 5, 20}, true, 0.25, 0.5},
        {"along x, passing beside", {-5, 20, 5}, {15, 20, 5}, false, 1, 0},
        {"along z, passing beside", {5, 20, -5}, {5, 20, 15}, false, 1, 0},
        {"above the box: seen in plan, missed beside", {-5, 5, 12}, {15, 6, 12}, false, 1, 0},
        {"a point inside", {5, 5, 5}, {5, 5, 5}, false, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        double u0 = -7, u1 = -7;
        EXPECT_EQ(viewBoxTrimLine(&box, c.p0, c.p1, u0, u1), c.passes);
        EXPECT_TRUE(std::fabs(u0 - c.u0) <= kParamTol);
        EXPECT_TRUE(std::fabs(u1 - c.u1) <= kParamTol);
    }
    double u0 = -7, u1 = -7;
    EXPECT_FALSE(viewBoxTrimLine(nullptr, VoGePoint3D(), VoGePoint3D(1, 1, 1), u0, u1));
    EXPECT_EQ(u0, -7.0);
}

TEST(ViewBoxTrimLine, FailedAllocationReportsFalseAndLeaksNothing) {
    const Box3D box = box10();
    vgtest::forEachAllocationFailure([&] {
        double u0 = 0, u1 = 0;
        const bool ok =
            viewBoxTrimLine(&box, VoGePoint3D(-5, 5, 0), VoGePoint3D(15, 5, 20), u0, u1);
        if (ok) {
            EXPECT_EQ(u0, 0.25);
            EXPECT_EQ(u1, 0.5);
        }
    });
}

TEST(IsLineCrossBox3d, SegmentMeetsTheBoxGrownByTheTolerance) {
    const VoGePoint3D lo(0, 0, 0);
    const VoGePoint3D hi(10, 10, 10);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        const char* id;
        VoGePoint3D p0, p1;
        bool meets;
    } cases[] = {
        {"through", {-5, 5, 5}, {15, 5, 5}, true},
        {"inside", {2, 2, 2}, {3, 3, 3}, true},
        {"beside", {-5, 12, 5}, {15, 12, 5}, false},
        {"stops short", {-5, 5, 5}, {-1, 5, 5}, false},
        {"skew past an edge", {-2, 5, 12}, {5, 5, 13}, false},
        {"ends half a tolerance short", {-5, 5, 5}, {-0.5 * kBoxTol, 5, 5}, true},
        {"ends twice a tolerance short", {-5, 5, 5}, {-2 * kBoxTol, 5, 5}, false},
        {"a point outside", {10 + 2 * kBoxTol, 5, 5}, {10 + 2 * kBoxTol, 5, 5}, false},
        {"NaN end", {nan, 5, 5}, {5, 5, 5}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(isLineCrossBox3d(c.p0, c.p1, lo, hi), c.meets);
        EXPECT_EQ(isLineCrossBox3d(c.p1, c.p0, lo, hi), c.meets);
    }
}

TEST(GetBoxBoundary, SmallestBoxOfPointsAndOfAParallelepiped) {
    Box3D box = box10();
    EXPECT_FALSE(getBoxBoundary(std::vector<VoGePoint3D>{}, box));
    EXPECT_EQ(box.max.x, 10.0);  // untouched
    const std::vector<VoGePoint3D> pts = {VoGePoint3D(1, 5, -2), VoGePoint3D(-3, 7, 4),
                                          VoGePoint3D(2, 6, 0)};
    ASSERT_TRUE(getBoxBoundary(pts, box));
    EXPECT_TRUE(near3(box.min, -3, 5, -2, 0.0));
    EXPECT_TRUE(near3(box.max, 2, 7, 4, 0.0));

    // A unit cube turned 45 degrees about z: its plan is a diamond of half-diagonal sqrt(0.5).
    const double h = std::sqrt(0.5);
    BoxP4 p4 = {VoGePoint3D(0, 0, 0), VoGePoint3D(h, h, 0), VoGePoint3D(-h, h, 0),
                VoGePoint3D(0, 0, 1)};
    ASSERT_TRUE(getBoxBoundary(p4, box));
    EXPECT_TRUE(near3(box.min, -h, 0, 0, 1e-15));
    EXPECT_TRUE(near3(box.max, h, 2 * h, 1, 1e-15));
    p4.p2.y = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(getBoxBoundary(p4, box));
}

// Each view sees the piece cross a box 0.001 thick that it misses: the views' ranges have
// nothing in common, so the piece does not pass through the box.
TEST(ViewBoxTrimLine, ViewsWithNothingInCommonMissTheBox) {
    Box3D box;
    box.set(P(-20, -19.5, -14), P(-14, -13.999, -13.999));
    double u0 = -1, u1 = -1;
    EXPECT_FALSE(viewBoxTrimLine(&box, P(-16, -13.97, 1), P(-13.999, -14, -20), u0, u1));
    EXPECT_EQ(u0, 1.0);
    EXPECT_EQ(u1, 0.0);
}

// The functions that build their points in standard containers: a failed allocation throws
// std::bad_alloc out of the call, leaves nothing allocated and the caller's vectors as they were.
TEST(ViewBoxes, ContainerFailuresPassThroughLeavingTheCallersVectorsAsTheyWere) {
    vgtest::forEachNewFailure([] {
        std::vector<P> out(1, P(9, 9, 9));
        try {
            getBoxAlongPipe(P(0, 0, 0), P(10, 0, 0), 2, out);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(out.size(), 1u);
            throw;
        }
        EXPECT_EQ(out.size(), 5u);
    });
    vgtest::forEachNewFailure([] {
        std::vector<P> xy(1), yz(1), xz(1);
        try {
            get3DBoxProject2d(P(0, 0, 0), P(1, 2, 3), xy, yz, xz);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(xy.size() + yz.size() + xz.size(), 3u);
            throw;
        }
    });
    Box3D box;
    box.set(P(0, 0, 0), P(10, 10, 10));
    vgtest::forEachNewFailure([&box] {
        double u0 = 7, u1 = 7;
        viewBoxTrimLine(&box, P(-5, 5, 5), P(15, 5, 5), u0, u1);
    });
}

}  // namespace
