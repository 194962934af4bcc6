#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "hidden_line/engine/hd_engine_tolerances.h"

namespace {

using namespace geolib;
using namespace enginetest;

// The piece of p -> q hidden behind the face, or none.
struct Hidden {
    bool found;
    P from, to;
};

Hidden hiddenBy(P p, P q, const std::vector<P>& face) {
    Hidden h{false, {}, {}};
    orientNearFirst(p, q);
    h.found = hideLineByFace(p, q, faceOf(face), h.from, h.to);
    return h;
}

TEST(IsPointOnSeg, EndsMiddleAndTheAngleBand) {
    const P a = {0, 0, 0};
    const P b = {2, 0, 0};
    // Off the middle by h the angle falls short of a half turn by 4 atan(h) in the test; the
    // band ends where that reaches 0.0005 less the 3.2e-6 by which the turn exceeds 2 pi.
    const struct {
        P p;
        int on;
    } cases[] = {
        {{0, 0, 0}, 1},      {{2 + 4e-7, 0, 0}, 1},  // ends (fine coincidence)
        {{-2e-5, 0, 0}, 1},  {{-5e-5, 0, 0}, 0},     // beyond an end: squared distance
        {{1, 0, 0}, 1},      {{0.3, 6e-5, 0}, 1},    // on it, or a hair off it
        {{1, 1.2e-4, 0}, 1}, {{1, 1.246e-4, 0}, 0},  // the band's edge, moved by the turn
        {{1, 2.5e-4, 0}, 0}, {{3, 0, 0}, 0},         // off it, beyond it
        {{1, kNaN, 0}, 0},   {{1, 0, 1e300}, 0},     // non-finite or far away
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.p.x << " " << c.p.y << " " << c.p.z);
        EXPECT_EQ(isPointOnSeg(c.p, a, b), c.on);
    }
    EXPECT_EQ(isPointOnSeg({0, 0, 0}, {1, 1, 1}, {1, 1, 1}), 0);  // a null segment
}

TEST(IsPointInFace, ConvexAndDentedFacesInEveryWindingAndStart) {
    const std::vector<P> square = rect(0, 0, 2, 2, 0);
    // A dart: its dent at (0.5, 1) leaves (0.25, 1) outside although it is within the extents.
    const std::vector<P> dart = {{0, 0, 0}, {2, 1, 0}, {0, 2, 0}, {0.5, 1, 0}};
    const struct {
        const std::vector<P>* face;
        P p;
        int in;
    } cases[] = {
        {&square, {1, 1, 0}, 1},         {&square, {3, 1, 0}, 0},    {&square, {1, 0, 0}, 1},
        {&square, {-5e-5, -5e-5, 0}, 1},  // edge, near vertex
        {&square, {-1e-4, -1e-4, 0}, 0}, {&dart, {1, 1, 0}, 1},      {&dart, {0.25, 1, 0}, 0},
        {&dart, {1.5, 1.5, 0}, 0},       {&square, {1, kNaN, 0}, 0},
    };
    for (const auto& c : cases) {
        std::vector<P> v = *c.face;
        for (int turn = 0; turn < 8; ++turn) {  // four starting vertices, both windings
            SCOPED_TRACE(testing::Message() << c.p.x << " " << c.p.y << " turn " << turn);
            EXPECT_EQ(isPointInFace(c.p, 4, v.data()), c.in);
            std::rotate(v.begin(), v.begin() + 1, v.end());
            if (turn == 3)
                std::reverse(v.begin(), v.end());
        }
    }
    // Upright faces (the face intersection meets them) work alike.
    const std::vector<P> wall = {{0, 0, 0}, {0, 2, 0}, {0, 2, 2}, {0, 0, 2}};
    EXPECT_EQ(isPointInFace({0, 1, 1}, 4, wall.data()), 1);
    EXPECT_EQ(isPointInFace({0, 3, 1}, 4, wall.data()), 0);
    // A face of no area holds only its outline; fewer than three vertices hold nothing.
    const std::vector<P> flat = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    EXPECT_EQ(isPointInFace({1, 0.5, 0}, 3, flat.data()), 0);
    EXPECT_EQ(isPointInFace({0.5, 0, 0}, 3, flat.data()), 1);
    EXPECT_EQ(isPointInFace({0.5, 0, 0}, 2, flat.data()), 0);
}

TEST(IsLineCrossPlane, ParallelWithinTheTolerance) {
    const P n = {0, 0, 1};
    EXPECT_EQ(isLineCrossPlane({0, 0, 0}, {1, 0, 1.5e-5}, n), 0);
    EXPECT_EQ(isLineCrossPlane({0, 0, 0}, {1, 0, 6e-5}, n), 1);
    EXPECT_EQ(isLineCrossPlane({0, 0, 0}, {0, 0, 0}, n), 0);  // no direction at all
}

TEST(GetLinePlaneInter, MeetsThePlaneOrGivesNaN) {
    const P x = getLinePlaneInter({0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {2, 3, 0}, {4, 5, 4});
    EXPECT_TRUE(near(x, {2.5, 3.5, 1}));
    const P none = getLinePlaneInter({0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {2, 3, 0}, {4, 5, 0});
    EXPECT_TRUE(std::isnan(none.x) && std::isnan(none.z));
}

TEST(HideLineByFace, LineBehindASquareLosesTheCoveredMiddle) {
    const Hidden h = hiddenBy({-1, 1, 5}, {3, 1, 5}, rect(0, 0, 2, 2, 0));
    ASSERT_TRUE(h.found);
    // Constant depth: the near end is the second point; the piece runs away from it.
    EXPECT_TRUE(near(h.from, {2, 1, 5}) && near(h.to, {0, 1, 5}));
    EXPECT_FALSE(hiddenBy({-1, 1, -5}, {3, 1, -5}, rect(0, 0, 2, 2, 0)).found);  // in front
    EXPECT_FALSE(hiddenBy({-1, 3, 5}, {3, 3, 5}, rect(0, 0, 2, 2, 0)).found);    // beside
}

TEST(HideLineByFace, PiercingLineIsHiddenFromThePiercingPoint) {
    // Pierces at (1, 1, 0) and ends behind the face.
    Hidden h = hiddenBy({0.5, 1, -1}, {1.5, 1, 1}, rect(0, 0, 2, 2, 0));
    ASSERT_TRUE(h.found);
    EXPECT_TRUE(near(h.from, {1, 1, 0}) && near(h.to, {1.5, 1, 1}));
    // Pierces at (1, 1, 0) and leaves the face's outline at x = 2 behind it.
    h = hiddenBy({0.5, 1, -0.5}, {3.5, 1, 2.5}, rect(0, 0, 2, 2, 0));
    ASSERT_TRUE(h.found);
    EXPECT_TRUE(near(h.from, {1, 1, 0}) && near(h.to, {2, 1, 1}));
}

TEST(HideLineByFace, CrossingOnTheLinesExtensionDoesNotCount) {
    // From behind the face out past x = 2; the line's extension meets x = 0 at (0, 1, 4),
    // also behind the face, which must not stretch the piece off the line.
    const Hidden h = hiddenBy({1.5, 1, 5}, {3, 1, 6}, rect(0, 0, 2, 2, 0));
    ASSERT_TRUE(h.found);
    EXPECT_TRUE(near(h.from, {1.5, 1, 5}) && near(h.to, {2, 1, 16.0 / 3}));
}

TEST(HideLineByFace, LinesThatNoFaceHides) {
    const std::vector<P> square = rect(0, 0, 2, 2, 0);
    EXPECT_FALSE(hiddenBy({0.5, 0.5, 0}, {1.5, 1.5, 0}, square).found);  // in its plane
    const std::vector<P> tilted = {{0, 0, 0}, {2, 0, 2}, {2, 2, 2}, {0, 2, 0}};
    EXPECT_FALSE(hiddenBy({0.5, 1, 0.5}, {1.5, 1, 1.5}, tilted).found);  // in a tilted plane
    // A face tilted until its normal's Z is below 0.0003 is seen edge-on and hides nothing; at
    // twice that it still hides. eps is the normal's Z; the face is 10 deep and 10 * eps wide.
    for (double eps : {1.5e-4, 6e-4}) {
        SCOPED_TRACE(eps);
        const std::vector<P> steep = {{0, 0, 0}, {2, 0, 0}, {2, 10 * eps, 10}, {0, 10 * eps, 10}};
        EXPECT_EQ(hiddenBy({-1, 5 * eps, 20}, {3, 5 * eps, 20}, steep).found, eps > 3e-4);
    }
    // A face of no area.
    EXPECT_FALSE(hiddenBy({-1, 1, 5}, {3, 1, 5}, rect(0, 1, 2, 1, 0)).found);
}

TEST(HideLineByFace, LevelDepthCountsAsBehind) {
    // A line a hair in front of the face (within 0.0003) is hidden whole; clearly in front not.
    for (double d : {1.5e-4, 6e-4}) {
        SCOPED_TRACE(d);
        const Hidden h = hiddenBy({0.5, 1, -d}, {1.5, 1, -d}, rect(0, 0, 2, 2, 0));
        EXPECT_EQ(h.found, d < 3e-4);
    }
}

TEST(HideLineByFace, EndOnLineIsHiddenWholeWithoutAnyInsideTest) {
    // Within 0.0003 of the Z axis a line projects to a point: any face that gets to test it
    // hides it whole, even one behind it. At twice the tolerance it is an ordinary line in
    // front of the face.
    for (double dx : {1.5e-4, 6e-4}) {
        SCOPED_TRACE(dx);
        const Hidden h = hiddenBy({1, 1, -2}, {1 + dx, 1, -1}, rect(0, 0, 2, 2, 0));
        EXPECT_EQ(h.found, dx < 3e-4);
        if (h.found) {
            EXPECT_TRUE(near(h.from, {1, 1, -2}) && near(h.to, {1 + dx, 1, -1}));
        }
    }
}

TEST(HideLineByFace, SecondCrossingMustLieApartFromTheFirst) {
    // A line behind the square clips its corner (2, 0); the crossings with the two edges lie
    // s * sqrt(2) apart. Closer than 0.0005 they count as one and hide nothing.
    for (double s : {1.77e-4, 7.07e-4}) {
        SCOPED_TRACE(s);
        const Hidden h = hiddenBy({1 - s, -1, 5}, {3, 1 + s, 5}, rect(0, 0, 2, 2, 0));
        ASSERT_EQ(h.found, s * std::sqrt(2.0) > 5e-4);
        if (h.found) {
            EXPECT_TRUE(near(h.from, {2, s, 5}) && near(h.to, {2 - s, 0, 5}));
        }
    }
}

TEST(ReadFace, ReadsAtMostFourVerticesAndRefusesFewerThanThree) {
    HDFace f{};
    _s_hd_sect_* five = chainOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {9, 9, 9}});
    EXPECT_TRUE(readFace(five, f));
    EXPECT_TRUE(f.count == 4 && f.xmax == 1 && f.zmax == 0 && f.normal.z == 1);
    _s_hd_sect_* two = chainOf({{0, 0, 0}, {1, 0, 0}});
    EXPECT_FALSE(readFace(two, f));
    EXPECT_FALSE(readFace(nullptr, f));
    freeHDSectPointer(five);
    freeHDSectPointer(two);
}

}  // namespace
