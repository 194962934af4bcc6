#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_pass.h"

namespace {

using namespace geolib;
using namespace enginetest;

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
    // Upright faces (the face intersection meets them) work alike.
    const std::vector<P> wall = {{0, 0, 0}, {0, 2, 0}, {0, 2, 2}, {0, 0, 2}};
    const struct {
        const std::vector<P>* face;
        P p;
        int in;
    } cases[] = {
        {&square, {1, 1, 0}, 1},         {&square, {3, 1, 0}, 0},    {&square, {1, 0, 0}, 1},
        {&square, {-5e-5, -5e-5, 0}, 1},  // edge, near vertex
        {&square, {-1e-4, -1e-4, 0}, 0}, {&dart, {1, 1, 0}, 1},      {&dart, {0.25, 1, 0}, 0},
        {&dart, {1.5, 1.5, 0}, 0},       {&square, {1, kNaN, 0}, 0}, {&wall, {0, 1, 1}, 1},
        {&wall, {0, 3, 1}, 0},
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

TEST(HideLineByFace, HandCheckedLinesAndTheToleranceBoundaries) {
    const std::vector<P> sq = rect(0, 0, 2, 2, 0);
    const std::vector<P> tilted = {{0, 0, 0}, {2, 0, 2}, {2, 2, 2}, {0, 2, 0}};
    // Tilted until its normal's Z is e: 10 deep and 10 e wide.
    auto steep = [](double e) {
        return std::vector<P>{{0, 0, 0}, {2, 0, 0}, {2, 10 * e, 10}, {0, 10 * e, 10}};
    };
    const double in = 1.5e-4, out = 6e-4;       // half and twice the 0.0003 tolerances
    const double yi = 5 * in, yo = 5 * out;     // halfway up steep(in), steep(out)
    const double one = 1.77e-4, two = 7.07e-4;  // crossings 2.5e-4 and 1e-3 apart
    const P none{};
    const struct {
        const char* id;
        P p, q;
        std::vector<P> face;
        bool found;
        P from, to;
    } cases[] = {
        // Constant depth: the near end is the second point; the piece runs away from it.
        {"behind", {-1, 1, 5}, {3, 1, 5}, sq, true, {2, 1, 5}, {0, 1, 5}},
        {"in front", {-1, 1, -5}, {3, 1, -5}, sq, false, none, none},
        {"beside", {-1, 3, 5}, {3, 3, 5}, sq, false, none, none},
        {"pierces, ends behind", {0.5, 1, -1}, {1.5, 1, 1}, sq, true, {1, 1, 0}, {1.5, 1, 1}},
        {"pierces, leaves behind", {0.5, 1, -0.5}, {3.5, 1, 2.5}, sq, true, {1, 1, 0}, {2, 1, 1}},
        // The extension meets x = 0 at (0, 1, 4), also behind: it must not stretch the piece.
        {"extension", {1.5, 1, 5}, {3, 1, 6}, sq, true, {1.5, 1, 5}, {2, 1, 16.0 / 3}},
        {"in its plane", {0.5, 0.5, 0}, {1.5, 1.5, 0}, sq, false, none, none},
        {"in a tilted plane", {0.5, 1, 0.5}, {1.5, 1, 1.5}, tilted, false, none, none},
        {"no area", {-1, 1, 5}, {3, 1, 5}, rect(0, 1, 2, 1, 0), false, none, none},
        // A face whose normal's Z is below 0.0003 is seen edge-on and hides nothing.
        {"edge-on", {-1, yi, 20}, {3, yi, 20}, steep(in), false, none, none},
        {"facing", {-1, yo, 20}, {3, yo, 20}, steep(out), true, {2, yo, 20}, {0, yo, 20}},
        // A line a hair in front (within 0.0003) is level with the face: hidden whole.
        {"level", {0.5, 1, -in}, {1.5, 1, -in}, sq, true, {1.5, 1, -in}, {0.5, 1, -in}},
        {"in front by a hair", {0.5, 1, -out}, {1.5, 1, -out}, sq, false, none, none},
        // Within 0.0003 of the Z axis a line projects to a point: hidden whole, even by a face
        // behind it.
        {"end-on", {1, 1, -2}, {1 + in, 1, -1}, sq, true, {1, 1, -2}, {1 + in, 1, -1}},
        {"not end-on", {1, 1, -2}, {1 + out, 1, -1}, sq, false, none, none},
        // Clipping the corner (2, 0): crossings closer than 0.0005 count as one.
        {"one", {1 - one, -1, 5}, {3, 1 + one, 5}, sq, false, none, none},
        {"two", {1 - two, -1, 5}, {3, 1 + two, 5}, sq, true, {2, two, 5}, {2 - two, 0, 5}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        P p = c.p, q = c.q, from{}, to{};
        orientNearFirst(p, q);
        const bool found = hideLineByFace(p, q, faceOf(c.face), from, to);
        EXPECT_EQ(found, c.found);
        if (found && c.found) {
            EXPECT_TRUE(near(from, c.from) && near(to, c.to));
        }
    }
}

TEST(ReadFace, ReadsAtMostFourVerticesAndRefusesFewerThanThree) {
    _s_hd_sect_* five = mallocQuadSect({0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0});
    _s_hd_sect_* last = five->next->next->next;
    last->next = mallocHDSect();
    last->next->pt = {9, 9, 9};
    HDFace f{};
    EXPECT_TRUE(readFace(five, f));
    EXPECT_TRUE(f.count == 4 && f.xmax == 1 && f.zmax == 0 && f.normal.z == 1);
    EXPECT_FALSE(readFace(last, f) || readFace(nullptr, f));  // two vertices, none
    freeHDSectPointer(five);
}

// The face test against brute force: a line sampled at many points, each called hidden when the
// face's plane lies in front of it where the face covers it in the drawing. Convex faces in
// general position and lines not seen end-on, so that the hidden part is one piece; samples
// within a small margin of the piece's ends, the face's outline or its plane are not judged.
TEST(HideLineByFace, HidesWhatBruteForceSamplingFindsBehindTheFace) {
    std::uint64_t state = 21;
    auto unit = [&] {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(state >> 11) * 0x1.0p-53;
    };
    auto in = [&](double lo, double hi) { return lo + (hi - lo) * unit(); };
    int judged = 0;
    int hiddenSamples = 0;
    for (int f = 0; f < 3000; ++f) {
        // A convex face: a triangle, or a parallelogram, tilted at most about 60 degrees.
        const P c = {in(-1, 1), in(-1, 1), in(-1, 1)};
        const P a = {c.x + in(0.5, 2), c.y + in(-0.5, 0.5), c.z + in(-1, 1)};
        const P b = {c.x + in(-0.5, 0.5), c.y + in(0.5, 2), c.z + in(-1, 1)};
        std::vector<P> pts = {c, a, b};
        if (unit() < 0.5)
            pts = {c, a, {a.x + b.x - c.x, a.y + b.y - c.y, a.z + b.z - c.z}, b};
        const geolib::HDFace face = faceOf(pts);
        if (std::fabs(face.normal.z) < 0.5)
            continue;
        P p = {in(-3, 3), in(-3, 3), in(-3, 3)};
        P q = {in(-3, 3), in(-3, 3), in(-3, 3)};
        if (std::hypot(q.x - p.x, q.y - p.y) < 0.5)
            continue;
        geolib::orientNearFirst(p, q);
        P from = p;
        P to = p;
        const bool hides = geolib::hideLineByFace(p, q, face, from, to);
        const double len = geolib::pointDist(p, q);
        const double t0 = hides ? geolib::pointDist(from, p) / len : 2.0;
        const double t1 = hides ? geolib::pointDist(to, p) / len : 2.0;
        for (int k = 1; k < 200; ++k) {
            const double t = k / 200.0;
            const P x = geolib::linComb(1.0, p, t, geolib::vecSub(q, p));
            // Where the face covers x in the drawing, and how far its plane lies in front.
            double margin = HUGE_VAL;
            bool covered = true;
            const int count = static_cast<int>(pts.size());
            for (int e = 0; e < count; ++e) {
                const P u = pts[e];
                const P w = pts[(e + 1) % count];
                const double side = ((w.x - u.x) * (x.y - u.y) - (w.y - u.y) * (x.x - u.x)) /
                                    std::hypot(w.x - u.x, w.y - u.y);
                const double inward = face.normal.z > 0 ? side : -side;
                covered = covered && inward > 0;
                margin = std::fmin(margin, std::fabs(side));
            }
            const P nz = face.normal;
            const double planeZ = c.z - (nz.x * (x.x - c.x) + nz.y * (x.y - c.y)) / nz.z;
            margin = std::fmin(margin, std::fabs(planeZ - x.z));
            margin = std::fmin(margin, std::fmin(std::fabs(t - t0), std::fabs(t - t1)) * len);
            if (margin < 0.01)
                continue;
            const bool behind = covered && planeZ < x.z;
            const bool inPiece = hides && t > std::fmin(t0, t1) && t < std::fmax(t0, t1);
            ++judged;
            hiddenSamples += behind ? 1 : 0;
            ASSERT_EQ(inPiece, behind) << "face " << f << " sample " << k;
        }
    }
    EXPECT_GT(judged, 100000);
    EXPECT_GT(hiddenSamples, 10000);
}

}  // namespace
