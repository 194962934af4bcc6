#include "clip_records.h"

#include <gtest/gtest.h>

#include "support/alloc_hook.h"

namespace {

using namespace geolib;

constexpr double kTwoPi = 6.283185307179586;

TEST(ClipRecordsAlloc, FreshIntervalsCoverTheWholePiece) {
    paramt* a = mallocParamt(true);
    paramt* l = mallocParamt(false);
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

    point* p = mallocPoint();
    EXPECT_EQ(p->param, 0.0);
    freePoint(p);
}

TEST(ClipRecordsAlloc, PiecesWithIntervalsGiveEverythingBackWhenAnAllocationFails) {
    double s[3] = {0, 0, 0};
    double e[3] = {1, 0, 0};
    const double c[3] = {0, 0, 0};
    vgtest::forEachAllocationFailure([&] {
        line_cut* l = mallocLineCut(s, e);
        freeLineCut(l);
    });
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

TEST(BoxPlane, EmptyBoxTakesTheFirstPointOrBox) {
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
}

TEST(BoxPlane, ContainsWithinOneMillionthOfASide) {
    BOX b;
    b.set(0, 10, 0, 10);
    EXPECT_TRUE(b.contains(VoGePoint3D(-0.5e-6, 5, 0)));
    EXPECT_FALSE(b.contains(VoGePoint3D(-2e-6, 5, 0)));
    EXPECT_TRUE(b.contains(VoGePoint3D(5, 10 + 0.5e-6, 0)));
    EXPECT_FALSE(b.contains(VoGePoint3D(5, 10 + 2e-6, 0)));
}

TEST(BoxPlane, SwellShrinksForPositiveAndGrowsForNegative) {
    BOX b;
    b.set(0, 10, 0, 10);
    b.swell(1.0);
    EXPECT_EQ(b.xmin, 1.0);
    EXPECT_EQ(b.ymax, 9.0);
    b.swell(-2.0);
    EXPECT_EQ(b.xmin, -1.0);
    EXPECT_EQ(b.xmax, 11.0);
}

TEST(BoxPlane, SettersSortOnlyInSet1) {
    BOX b;
    b.set(VoGePoint3D(5, 6, 0), VoGePoint3D(1, 2, 0));
    EXPECT_EQ(b.xmin, 5.0);
    b.set1(VoGePoint3D(5, 6, 0), VoGePoint3D(1, 2, 0));
    EXPECT_EQ(b.xmin, 1.0);
    EXPECT_EQ(b.ymax, 6.0);
    VoGePoint3D lb, rt;
    b.getLbrt(lb, rt);
    EXPECT_EQ(rt.x, 5.0);
    EXPECT_EQ(lb.z, 0.0);
}

TEST(BoxSpace, BoxesThatShareAFaceIntersect) {
    Box3D a, b;
    a.set1(VoGePoint3D(0, 0, 0), VoGePoint3D(1, 1, 1));
    b.set1(VoGePoint3D(1, 0, 0), VoGePoint3D(2, 1, 1));
    EXPECT_TRUE(a.intersectWith(b));
    b.set1(VoGePoint3D(0, 0, 1.5), VoGePoint3D(1, 1, 2));
    EXPECT_FALSE(a.intersectWith(b));
    EXPECT_TRUE(a.contain(VoGePoint3D(1 + 0.5e-6, 0.5, 0.5)));
    EXPECT_FALSE(a.contain(VoGePoint3D(0.5, 0.5, -2e-6)));
}

}  // namespace
