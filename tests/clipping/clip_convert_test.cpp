#include "clip_convert.h"

#include <gtest/gtest.h>

#include "VoGeMatrix3D.h"
#include "clipping/clip_test_support.h"
#include "support/alloc_hook.h"
#include "support/geom_expect.h"

namespace {

using namespace geolib;
using vgtest::cornersOf;
using vgtest::near3;

TEST(ConvertBox2Convex, CounterClockwiseRingOfFourEdgesAtZeroHeight) {
    BOX box;
    box.set(1, 4, 2, 6);
    convex* poly = convertBox2Convex(&box);
    ASSERT_NE(poly, nullptr);
    const std::vector<VoGePoint3D> c = cornersOf(poly);
    ASSERT_EQ(c.size(), 4u);
    EXPECT_TRUE(near3(c[0], VoGePoint3D(1, 2, 0), 0.0));
    EXPECT_TRUE(near3(c[1], VoGePoint3D(4, 2, 0), 0.0));
    EXPECT_TRUE(near3(c[2], VoGePoint3D(4, 6, 0), 0.0));
    EXPECT_TRUE(near3(c[3], VoGePoint3D(1, 6, 0), 0.0));
    EXPECT_TRUE(near3(poly->edges->next->next->next->end, c[0], 0.0));  // closes
    EXPECT_EQ(convertBox2Convex(nullptr), nullptr);
    freeConvex(poly);
    vgtest::forEachAllocationFailure([&] { freeConvex(convertBox2Convex(&box)); });
}

TEST(PointArrays, PolygonAndPointArrayRoundTrip) {
    const std::vector<VoGePoint3D> pts = {VoGePoint3D(0, 0, 1), VoGePoint3D(5, 0, 2),
                                          VoGePoint3D(0, 5, 3)};
    convex* poly = transPtArray2Convex(pts);
    std::vector<VoGePoint3D> back = {VoGePoint3D(9, 9, 9)};  // cleared first
    transConvex2PtArray(poly, back);
    ASSERT_EQ(back.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(near3(back[i], pts[i], 0.0));
    EXPECT_TRUE(near3(poly->edges->next->next->end, pts[0], 0.0));  // the last edge closes
    freeConvex(poly);
    transConvex2PtArray(nullptr, back);
    EXPECT_TRUE(back.empty());
    EXPECT_EQ(transPtArray2Convex({}), nullptr);
    vgtest::forEachAllocationFailure([&] { freeConvex(transPtArray2Convex(pts)); });
}

TEST(Transforms, BoxCornersMoveUnsortedAndEveryEdgeEndMovesOnce) {
    VoGeMatrix3D m;
    m.makeIdentity();
    m(0, 0) = -1.0;  // mirror in x, then shift
    m(0, 3) = 10.0;
    m(1, 3) = 1.0;
    BOX box;
    box.set(1, 3, 0, 2);
    transformBOX(box, m);
    EXPECT_EQ(box.xmin, 9.0);  // not re-sorted: now above xmax
    EXPECT_EQ(box.xmax, 7.0);
    EXPECT_EQ(box.ymax, 3.0);
    BOX unit;
    unit.set(0, 1, 0, 1);
    convex* poly = convertBox2Convex(&unit);
    poly->next = convertBox2Convex(&unit);
    transformConvex(poly, m);
    for (const convex* p = poly; p != nullptr; p = p->next) {
        // Both edges holding the corner (1, 0) moved it, each once.
        EXPECT_TRUE(near3(p->edges->end, VoGePoint3D(9, 1, 0), 0.0));
        EXPECT_TRUE(near3(p->edges->next->start, VoGePoint3D(9, 1, 0), 0.0));
    }
    freeConvex(poly);
}

TEST(LinesAndPieces, EdgesBecomePiecesAndIntervalsBecomeEdges) {
    line* edges = mallocLine();
    edges->start = VoGePoint3D(0, 0, 0);
    edges->end = VoGePoint3D(1, 0, 0);
    edges->next = mallocLine();
    edges->next->start = VoGePoint3D(1, 0, 0);
    edges->next->end = VoGePoint3D(1, 1, 0);
    line_cut* pieces = transLine(edges);
    ASSERT_NE(pieces->next, nullptr);
    EXPECT_EQ(pieces->next->next, nullptr);
    EXPECT_TRUE(near3(pieces->next->end, VoGePoint3D(1, 1, 0), 0.0));
    EXPECT_TRUE(vgtest::sameIntervals(vgtest::intervalsOf(pieces->params), {{0, 1}}, 0.0));
    freeLineCut(pieces);
    vgtest::forEachAllocationFailure([&] { freeLineCut(transLine(edges)); });
    edges->next->next = edges;  // a ring is converted once round
    pieces = transLine(edges);
    EXPECT_EQ(pieces->next->next, nullptr);
    freeLineCut(pieces);
    freeLine(edges);

    line_cut* lc = mallocLineCut(VoGePoint3D(0, 0, 0), VoGePoint3D(10, 0, 0));
    freeParamt(lc->params);
    lc->params = vgtest::listOf({{0, 0.2}, {0.5, 1}});
    lc->next = mallocLineCut();  // no intervals: contributes nothing
    line* out = transLineCut(lc);
    ASSERT_NE(out->next, nullptr);
    EXPECT_EQ(out->next->next, nullptr);
    EXPECT_TRUE(near3(out->end, VoGePoint3D(2, 0, 0), 0.0));
    EXPECT_TRUE(near3(out->next->start, VoGePoint3D(5, 0, 0), 0.0));
    EXPECT_TRUE(near3(out->next->end, VoGePoint3D(10, 0, 0), 0.0));
    freeLine(out);
    vgtest::forEachAllocationFailure([&] { freeLine(transLineCut(lc)); });
    paramt* copy = copyParamt(lc->params);
    EXPECT_EQ(vgtest::intervalsOf(copy), vgtest::intervalsOf(lc->params));
    freeParamt(copy);
    vgtest::forEachAllocationFailure([&] { freeParamt(copyParamt(lc->params)); });
    freeLineCut(lc);
}

}  // namespace
