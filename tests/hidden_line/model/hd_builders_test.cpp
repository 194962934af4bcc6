#include "hidden_line/model/hd_builders.h"

#include <gtest/gtest.h>

#include <cmath>

#include "hidden_line/model/hd_walk.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;
using namespace hdtest;

using vgtest::kPi;

TEST(HDVector, SnapsFloorsAndStrictPointTests) {
    // A component just inside the 1e-9 snap vanishes; one just outside still counts.
    EXPECT_EQ(vecLength({2e-5, 0.5e-9, 0}), std::sqrt(2e-5 * 2e-5));
    EXPECT_NE(vecLength({2e-5, 2e-9, 0}), std::sqrt(2e-5 * 2e-5));
    // A squared length of 1e-10 is the floor: half of it is null, twice it is not.
    EXPECT_EQ(vecLength({std::sqrt(0.5e-10), 0, 0}), 0.0);
    EXPECT_GT(vecLength({std::sqrt(2e-10), 0, 0}), 0.0);
    EXPECT_TRUE(same(vecNormalize({1e-10, 0, 0}), {0, 0, 0}));
    // Same-point tests are strict per coordinate: the bound itself is outside.
    EXPECT_TRUE(isSamePoint({0, 0, 0}, {0.0025, -0.0025, 0.004}));
    EXPECT_FALSE(isSamePoint({0, 0, 0}, {0, 0, 0.005}));
    EXPECT_TRUE(isSamePointFine({0, 0, 0}, {2.5e-7, 0, -2.5e-7}));
    EXPECT_FALSE(isSamePointFine({0, 0, 0}, {0, 1e-6, 0}));
    // det3x3 sums in its fixed order: a*e*i = 1e16 takes b*f*g = 1 before c*e*g = 1e16 comes
    // off, so the 1 is rounded away.
    EXPECT_EQ(det3x3(1, 2, 3, 4, 5, 6, 7, 8, 10), -3.0);
    EXPECT_EQ(det3x3(1e8, 1, 1e8, 0, 1e8, 1, 1, 0, 1), 0.0);
}

TEST(HDChordCount, CurvesTakeEightToTwelveChords) {
    const double centre[3] = {7, 8, 9};
    const struct {
        double r;
        int n;
    } cases[] = {{0.4, 8},   {13.1, 8},  {13.2, 9}, {20, 10},  {24.6, 11},
                 {24.7, 12}, {1000, 12}, {0, 8},    {kNaN, 8}, {kInf, 8}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.r);
        EXPECT_EQ(getCircleDivideNum(P{0, 0, 0}, c.r), c.n);
        EXPECT_EQ(getCircleDivideNum(centre, c.r), c.n);
    }
    // Arcs are clamped whatever their size; NaN or huge quotients never reach an int.
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, 1000, 0, 0.1), 8);
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, 1000, 0, kPi / 2), 12);
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, 1000, 0, 1e300), 12);
    EXPECT_EQ(getArcDivideNum({0, 0, 0}, kNaN, 0, 1), 8);
}

TEST(HDListBuilders, ConcatLinksNothingWhenAListIsMissingAndReleaseGivesBackEverything) {
    _s_hd_proline_* first = appendProline({0, 0, 0}, {1, 0, 0}, nullptr);
    _s_hd_proline_* other = appendProline({5, 0, 0}, {6, 0, 0}, nullptr);
    EXPECT_EQ(concatProline(nullptr, other), other);
    EXPECT_EQ(concatProline(first, nullptr), nullptr);
    EXPECT_EQ(first->next, nullptr);
    EXPECT_EQ(concatProline(first, other), other);
    releaseProline(first);
    _s_hd_prof_* obj = mallocHDProfObject();
    const P o{0, 0, 0};
    obj->prosect = appendProsect(mallocTriSect(o, o, o), nullptr);
    appendProsect(mallocQuadSect(o, o, o, o), obj->prosect);
    obj->proline = appendProline(o, o, nullptr);
    vgtest::AllocationWatch watch;
    freeHDProfObjectPointer(obj);
    EXPECT_EQ(obj, nullptr) << "the caller's pointer is nulled";
    EXPECT_EQ(watch.live(), -11);  // 7 vertices, 2 faces, 1 line and the object
    freeHDProfObjectPointer(obj);  // a second release of the same variable does nothing
    EXPECT_EQ(watch.live(), -11);
    expectNoLeaks({[] {
        HDProfDraft draft;
        draft.addPlanarQuad({0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 1e-6}, 1.0);
        return draft.finish();
    }});
}

TEST(HDArcChords, FullCircleClosesExactlyWithEvenlySpacedPoints) {
    const struct {
        int n;
        size_t chords;
    } cases[] = {{0, 22}, {4, 5}, {6, 6}, {8, 8}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.n);
        _s_hd_proline_* ring = nullptr;
        ASSERT_TRUE(divideArc2Proline({0, 0, 0}, {1, 0, 0}, {0, 0, 1}, {1, 0, 0}, c.n, ring));
        const auto lines = linesOf(ring);
        ASSERT_EQ(lines.size(), c.chords);
        expectHeadToTail(lines);
        EXPECT_TRUE(same(lines.back()->end, {1, 0, 0}));
        // Clockwise seen from +Z, point k at k * 6.2831885307179585 / n, across base moves.
        for (size_t k = 1; k < lines.size(); ++k) {
            const double a =
                -6.2831885307179585 * static_cast<double>(k) / static_cast<double>(c.chords);
            EXPECT_TRUE(same(lines[k]->start, {std::cos(a), std::sin(a), 0}, kOnCircleTol)) << k;
        }
        releaseProline(ring);
    }
}

TEST(HDArcChords, ArcRunsFromStartThroughMiddleToEnd) {
    const double q = std::sqrt(0.5);
    const struct {
        const char* id;
        P m, e;
        double to;  // angle of e in the direction of travel from s = (1, 0, 0)
    } cases[] = {
        {"short quarter", {q, q, 0}, {0, 1, 0}, kPi / 2},
        {"long three quarters", {-1, 0, 0}, {0, 1, 0}, -1.5 * kPi},
        {"half over the top", {0, 1, 0}, {-1, 0, 0}, kPi},
        {"half underneath", {0, -1, 0}, {-1, 0, 0}, -kPi},
        {"half, m near e", {std::cos(2.5), std::sin(2.5), 0}, {-1, 0, 0}, kPi},
        {"half, m near s", {std::cos(0.3), -std::sin(0.3), 0}, {-1, 0, 0}, -kPi},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        _s_hd_proline_* arc = nullptr;
        ASSERT_TRUE(divideArc2Proline({0, 0, 0}, {1, 0, 0}, c.m, c.e, 0, arc));
        const auto lines = linesOf(arc);
        expectHeadToTail(lines);
        EXPECT_TRUE(same(lines.back()->end, c.e));
        // Every point lies on the circle, strictly between the ends in the direction of travel.
        for (size_t k = 1; k < lines.size(); ++k) {
            const P p = lines[k]->start;
            EXPECT_NEAR(std::hypot(p.x, p.y), 1.0, kOnCircleTol);
            double a = std::atan2(p.y, p.x);
            if (c.to < -kPi && a > 0)
                a -= 2 * kPi;
            EXPECT_TRUE(a / c.to > 0) << k << " at " << a;
            EXPECT_TRUE(a / c.to < 1) << k << " at " << a;
        }
        releaseProline(arc);
    }
}

TEST(HDArcChords, DegenerateOrBadInputLeavesTheListAsItWas) {
    _s_hd_proline_* list = appendProline({9, 9, 9}, {8, 8, 8}, nullptr);
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
    EXPECT_TRUE(divideArc2Proline(o, x, x, x, 0, list));  // nothing to draw
    EXPECT_TRUE(divideArc2Proline(o, x, x, y, 0, list));
    EXPECT_FALSE(divideArc2Proline(o, x, z, x, -1, list));
    EXPECT_FALSE(divideArc2Proline(o, x, z, x, 100001, list));
    EXPECT_FALSE(divideArc2Proline({kNaN, 0, 0}, x, z, x, 0, list));
    EXPECT_FALSE(divideArc2Proline(o, x, {0, kInf, 0}, y, 6, list));
    EXPECT_EQ(list->next, nullptr);
    vgtest::forEachAllocationFailure([&] {
        if (divideArc2Proline(o, x, z, x, 8, list))
            releaseProline(list->next);
        EXPECT_EQ(list->next, nullptr);
    });
    ASSERT_TRUE(divideArc2Proline(o, x, z, x, 6, list));  // appended behind the given head
    EXPECT_EQ(linesOf(list).size(), 7u);
    releaseProline(list);
    // A radius whose sagitta rule asks for millions of chords gets the cap.
    ASSERT_TRUE(divideArc2Proline(o, {1e9, 0, 0}, z, {1e9, 0, 0}, 0, list));
    EXPECT_EQ(linesOf(list).size(), 100000u);
    releaseProline(list);
}

TEST(HDProfDraft, PlanarQuadIsOneFaceATwistedOneTwoTrianglesAndNoFaceHasNoArea) {
    const P a{0, 0, 0};
    const struct {
        P p2, p3, p4;
        size_t faces, firstCount;
    } cases[] = {
        {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}, 1, 4},          // planar
        {{1, 0, 0}, {1, 1, 0}, {0, 1, 1e-10}, 1, 4},      // within the tolerance at size 1
        {{1, 0, 0}, {1, 1, 0}, {0, 1, 1e-6}, 2, 3},       // twisted
        {a, {1, 1, 0}, {0, 1, 0}, 1, 3},                  // p1 = p2: the triangle p1, p3, p4
        {{0.5, 0.5, 0}, {1.5, 1.5, 0}, {2, 2, 0}, 0, 0},  // all four on a line
    };
    for (const auto& k : cases) {
        HDProfDraft draft;
        draft.addPlanarQuad(a, k.p2, k.p3, k.p4, 1.0);
        _s_hd_prof_* obj = draft.finish();
        ASSERT_NE(obj, nullptr);
        const auto faces = facesOf(obj);
        ASSERT_EQ(faces.size(), k.faces) << k.p4.z;
        for (size_t f = 0; f < faces.size(); ++f) {
            EXPECT_EQ(faces[f].pts.size(), k.firstCount);
        }
        freeHDProfObjectPointer(obj);
    }
}

}  // namespace
