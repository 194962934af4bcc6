#include "clip_records.h"

#include <gtest/gtest.h>

#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using namespace geolib;

using vgtest::kTwoPi;
constexpr double kBoxTol = 1e-6;  // BOX and Box3D hold points this far outside a side

TEST(ClipRecordsAlloc, FreshIntervalsCoverTheWholePieceAndFailuresLeakNothing) {
    paramt* a = mallocParamt(true);
    paramt* l = mallocParamt(false);
    EXPECT_EQ(a->t0, 0.0);
    EXPECT_EQ(a->t1, kTwoPi);
    EXPECT_EQ(l->t0, 0.0);
    EXPECT_EQ(l->t1, 1.0);
    EXPECT_EQ(l->next, nullptr);
    freeParamt(a);
    freeParamt(l);
    const double c[3] = {1, 2, 3};
    arc_cut* ac = mallocArcCut(c, 5.0, 0.5, 2.5);
    EXPECT_EQ(ac->params->t0, 0.5);
    EXPECT_EQ(ac->params->t1, 2.5);
    EXPECT_EQ(ac->center.z, 3.0);
    freeArcCut(ac);
    double s[3] = {0, 0, 0};
    double e[3] = {1, 0, 0};
    vgtest::forEachAllocationFailure([&] { freeLineCut(mallocLineCut(s, e)); });
    vgtest::forEachAllocationFailure([&] { freeArcCut(mallocArcCut(c, 1.0, 0.0, 1.0)); });
}

TEST(ClipRecordsRelease, FreeLineEndsOnARingAndOnAnOpenList) {
    // A four-edge ring is freed exactly once per edge (the sanitizer run catches a double free).
    line* ring[4];
    for (auto& r : ring)
        r = mallocLine();
    for (int i = 0; i < 4; ++i)
        ring[i]->next = ring[(i + 1) % 4];
    convex* poly = mallocConvex();
    poly->edges = ring[2];  // the ring may be entered anywhere
    {
        vgtest::AllocationWatch watch;
        freeConvex(poly);
        EXPECT_EQ(watch.live(), -5);  // four edges and the polygon
    }
    line* open = mallocLine();
    open->next = mallocLine();
    freeLine(open);
    freeLine(nullptr);
    freeLineCut(nullptr);
    freeConvex(nullptr);
}

TEST(BoxPlane, EmptyBoxTakesTheFirstPointAndOnlySet1Sorts) {
    BOX b;
    BOX o;
    o.set(1, 2, 3, 4);
    b.update(o);
    EXPECT_EQ(b.xmin, 1.0);
    EXPECT_EQ(b.ymax, 4.0);
    BOX e;
    e.expand(VoGePoint3D(5, -1, 9));
    EXPECT_EQ(e.xmin, 5.0);
    EXPECT_EQ(e.xmax, 5.0);
    EXPECT_EQ(e.ymin, -1.0);
    EXPECT_EQ(e.ymax, -1.0);
    b.set(VoGePoint3D(5, 6, 0), VoGePoint3D(1, 2, 0));
    EXPECT_EQ(b.xmin, 5.0);
    b.set1(VoGePoint3D(5, 6, 0), VoGePoint3D(1, 2, 0));
    EXPECT_EQ(b.xmin, 1.0);
    EXPECT_EQ(b.ymax, 6.0);
}

TEST(BoxPlane, ContainsWithinOneMillionthAndSwellShrinksForPositive) {
    BOX b;
    b.set(0, 10, 0, 10);
    EXPECT_TRUE(b.contains(VoGePoint3D(-0.5 * kBoxTol, 5, 0)));
    EXPECT_FALSE(b.contains(VoGePoint3D(-2 * kBoxTol, 5, 0)));
    EXPECT_TRUE(b.contains(VoGePoint3D(5, 10 + 0.5 * kBoxTol, 0)));
    EXPECT_FALSE(b.contains(VoGePoint3D(5, 10 + 2 * kBoxTol, 0)));
    b.swell(1.0);
    EXPECT_EQ(b.xmin, 1.0);
    EXPECT_EQ(b.ymax, 9.0);
    b.swell(-2.0);
    EXPECT_EQ(b.xmin, -1.0);
    EXPECT_EQ(b.xmax, 11.0);
}

TEST(BoxSpace, BoxesThatShareAFaceIntersect) {
    Box3D a, b;
    a.set1(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 1, 1));
    b.set1(VoGePoint3D(1, 0, 0), VoGePoint3D(2, 1, 1));
    EXPECT_TRUE(a.intersectWith(b));
    b.set1(VoGePoint3D(0, 0, 1.5), VoGePoint3D(1, 1, 2));
    EXPECT_FALSE(a.intersectWith(b));
    EXPECT_TRUE(a.contain(VoGePoint3D(1 + 0.5 * kBoxTol, 0.5, 0.5)));
    EXPECT_FALSE(a.contain(VoGePoint3D(0.5, 0.5, -2 * kBoxTol)));
}

// Each record allocator alone: a failed allocation gives null and leaves nothing.
TEST(ClipRecordsAlloc, EveryAllocatorFailsCleanly) {
    vgtest::forEachAllocationFailure([] { freeParamt(mallocParamt(true)); });
    vgtest::forEachAllocationFailure([] { freeLine(mallocLine()); });
    vgtest::forEachAllocationFailure([] { freeLineCut(mallocLineCut()); });
    vgtest::forEachAllocationFailure(
        [] { freeLineCut(mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 0, 0))); });
    vgtest::forEachAllocationFailure([] { freeArc(mallocArc()); });
    vgtest::forEachAllocationFailure([] { freeArcCut(mallocArcCut()); });
    vgtest::forEachAllocationFailure([] { freeCircle(mallocCircle()); });
    vgtest::forEachAllocationFailure([] { freePoint(mallocPoint()); });
    vgtest::forEachAllocationFailure([] { freeConvex(mallocConvex()); });
}

}  // namespace
