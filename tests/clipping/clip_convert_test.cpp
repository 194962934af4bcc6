#include "clip_convert.h"

#include <gtest/gtest.h>

#include "VoGeMatrix3D.h"
#include "clipping/clip_test_support.h"

namespace {

using namespace geolib;
using P = VoGePoint3D;

// Box -> ring -> points -> ring round trip (the output cleared first); a transform moves each
// edge end once and the rings stay closed.
TEST(ClipConvert, RingsRoundTripAndTransformsMoveEveryEdgeEndOnce) {
    BOX box;
    box.set(1, 4, 2, 6);
    convex* poly = convertBox2Convex(&box);
    std::vector<P> pts = {P(9, 9, 9)}, back;
    transConvex2PtArray(poly, pts);
    EXPECT_EQ(pts, (std::vector<P>{P(1, 2, 0), P(4, 2, 0), P(4, 6, 0), P(1, 6, 0)}));
    poly->next = transPtArray2Convex(pts);
    VoGeMatrix3D m;
    m.makeIdentity();
    m(0, 0) = -1.0;  // mirror in x, then shift
    m(0, 3) = 10.0;
    transformConvex(poly, m);
    for (const convex* p = poly; p != nullptr; p = p->next) {
        transConvex2PtArray(p, back);
        EXPECT_EQ(back, (std::vector<P>{P(9, 2, 0), P(6, 2, 0), P(6, 6, 0), P(9, 6, 0)}));
        EXPECT_TRUE(p->edges->next->next->next->next == p->edges) << "the ring closes";
    }
    freeConvex(poly);
    EXPECT_EQ(convertBox2Convex(nullptr), nullptr);
    EXPECT_EQ(transPtArray2Convex({}), nullptr);
}

}  // namespace
