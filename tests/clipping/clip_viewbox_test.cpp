#include "clip_viewbox.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace geolib;
using P = VoGePoint3D;

TEST(ViewBoxTrimLine, RangeInsideTheBoxFromTheViewsThatShowThePiece) {
    Box3D box, thin;  // each view sees the piece cross thin, but their ranges share nothing
    box.set(P(0, 0, 0), P(10, 10, 10));
    thin.set(P(-20, -19.5, -14), P(-14, -13.999, -13.999));
    const struct {
        const Box3D* box;
        P p0, p1;
        bool passes;
        double u0, u1;
    } cases[] = {
        {&box, {-5, 5, 5}, {15, 5, 5}, true, 0.25, 0.75},
        {&box, {5, 5, -5}, {5, 5, 15}, true, 0.25, 0.75},
        {&box, {-5, 5, 5}, {15, 5.005, 5}, true, 0.25, 0.75},  // nearly along x: a point
        {&box, {-5, 5, 0}, {15, 5, 20}, true, 0.25, 0.5},      // enters x = 0, leaves z = 10
        {&box, {-5, 20, 5}, {15, 20, 5}, false, 1, 0},         // beside
        {&box, {-5, 5, 12}, {15, 6, 12}, false, 1, 0},         // above: seen in plan, missed beside
        {&box, {5, 5, 5}, {5, 5, 5}, false, 1, 0},             // a point
        {&thin, {-16, -13.97, 1}, {-13.999, -14, -20}, false, 1, 0},
    };
    for (const auto& c : cases) {
        double u0 = -7, u1 = -7;
        EXPECT_EQ(viewBoxTrimLine(c.box, c.p0, c.p1, u0, u1), c.passes) << c.p1.x;
        EXPECT_NEAR(u0, c.u0, 1e-9) << c.p1.x;
        EXPECT_NEAR(u1, c.u1, 1e-9) << c.p1.x;
    }
}

// The segment meets the box grown by 1e-4, either way round; NaN meets nothing.
TEST(IsLineCrossBox3d, SegmentMeetsTheBoxGrownByTheTolerance) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        P p0, p1;
        bool meets;
    } cases[] = {
        {{-5, 5, 5}, {15, 5, 5}, true},
        {{2, 2, 2}, {3, 3, 3}, true},
        {{-5, 12, 5}, {15, 12, 5}, false},
        {{-2, 5, 12}, {5, 5, 13}, false},
        {{-5, 5, 5}, {-0.5e-4, 5, 5}, true},
        {{-5, 5, 5}, {-2e-4, 5, 5}, false},
        {{10.0002, 5, 5}, {10.0002, 5, 5}, false},
        {{nan, 5, 5}, {5, 5, 5}, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isLineCrossBox3d(c.p0, c.p1, P(0, 0, 0), P(10, 10, 10)), c.meets) << c.p1.x;
        EXPECT_EQ(isLineCrossBox3d(c.p1, c.p0, P(0, 0, 0), P(10, 10, 10)), c.meets) << c.p1.x;
    }
}

}  // namespace
