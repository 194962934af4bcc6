#include "clip_convert.h"

#include <gtest/gtest.h>

#include "VoGeMatrix3D.h"
#include "clipping/clip_test_support.h"
#include "support/geom_expect.h"

namespace {

using namespace geolib;
using vgtest::cornersOf;
using vgtest::near3;
using vgtest::samePoints;
using P = VoGePoint3D;

TEST(ClipConvert, BoxesAndPointArraysBecomeClosedCounterClockwiseRings) {
    BOX box;
    box.set(1, 4, 2, 6);
    convex* poly = convertBox2Convex(&box);
    const std::vector<P> want = {P(1, 2, 0), P(4, 2, 0), P(4, 6, 0), P(1, 6, 0)};
    EXPECT_TRUE(samePoints(cornersOf(poly), want, 0.0));
    EXPECT_TRUE(near3(poly->edges->next->next->next->end, want[0], 0.0)) << "the ring closes";
    freeConvex(poly);
    EXPECT_EQ(convertBox2Convex(nullptr), nullptr);
    const std::vector<P> pts = {P(0, 0, 1), P(5, 0, 2), P(0, 5, 3)};
    poly = transPtArray2Convex(pts);
    std::vector<P> back = {P(9, 9, 9)};  // cleared first
    transConvex2PtArray(poly, back);
    EXPECT_TRUE(samePoints(back, pts, 0.0));
    EXPECT_TRUE(near3(poly->edges->next->next->end, pts[0], 0.0)) << "the last edge closes";
    freeConvex(poly);
    EXPECT_EQ(transPtArray2Convex({}), nullptr);
}

TEST(ClipConvert, TransformsMoveBoxCornersUnsortedAndEveryEdgeEndOnce) {
    VoGeMatrix3D m;
    m.makeIdentity();
    m(0, 0) = -1.0;  // mirror in x, then shift
    m(0, 3) = 10.0;
    m(1, 3) = 1.0;
    BOX box;
    box.set(1, 3, 0, 2);
    transformBOX(box, m);
    EXPECT_EQ(box.xmin, 9.0) << "not re-sorted";
    EXPECT_EQ(box.xmax, 7.0) << "not re-sorted";
    BOX unit;
    unit.set(0, 1, 0, 1);
    convex* poly = convertBox2Convex(&unit);
    poly->next = convertBox2Convex(&unit);
    transformConvex(poly, m);
    for (const convex* p = poly; p != nullptr; p = p->next) {
        EXPECT_TRUE(near3(p->edges->end, P(9, 1, 0), 0.0));  // both edges at (1, 0) moved it once
        EXPECT_TRUE(near3(p->edges->next->start, P(9, 1, 0), 0.0));
    }
    freeConvex(poly);
}

TEST(ClipConvert, EdgesBecomePiecesAndIntervalsBecomeEdges) {
    convex* tri = vgtest::polygonOf({{0, 0}, {1, 0}, {1, 1}});
    line_cut* pieces = transLine(tri->edges);  // a ring is converted once round
    std::vector<P> ends;
    for (const line_cut* p = pieces; p != nullptr; p = p->next) {
        ends.push_back(p->end);
        EXPECT_TRUE(vgtest::sameIntervals(vgtest::intervalsOf(p->params), {{0, 1}}, 0.0));
    }
    EXPECT_TRUE(samePoints(ends, std::vector<P>{P(1, 0, 0), P(1, 1, 0), P(0, 0, 0)}, 0.0));
    freeLineCut(pieces);
    freeConvex(tri);
    line_cut* lc = mallocLineCut(P(0, 0, 0), P(10, 0, 0));
    freeParamt(lc->params);
    lc->params = vgtest::listOf({{0, 0.2}, {0.5, 1}});
    lc->next = mallocLineCut();  // no intervals: contributes nothing
    line* out = transLineCut(lc);
    std::vector<P> got;
    for (const line* e = out; e != nullptr; e = e->next)
        got.insert(got.end(), {e->start, e->end});
    EXPECT_TRUE(
        samePoints(got, std::vector<P>{P(0, 0, 0), P(2, 0, 0), P(5, 0, 0), P(10, 0, 0)}, 0.0));
    freeLine(out);
    paramt* copy = copyParamt(lc->params);
    EXPECT_EQ(vgtest::intervalsOf(copy), vgtest::intervalsOf(lc->params));
    freeParamt(copy);
    freeLineCut(lc);
}

}  // namespace
