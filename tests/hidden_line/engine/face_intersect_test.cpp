#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;
using namespace enginetest;

void registerAll(std::vector<_s_hd_prof_*>& objs) {
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int count = 0;
    for (_s_hd_prof_* o : objs)
        kestFaceIntersect(o, registry.data(), count, static_cast<int>(objs.size()));
}

TEST(KestFaceIntersect, FacesMeetingAlongASharedEdgeAddNothingButCrossingFacesDo) {
    // Turned, a box's neighbouring faces overlap in their extents and meet along the edge they
    // share; so do the faces of two turned boxes standing edge to edge. Neither adds a line.
    const double h = std::sqrt(0.5), a = 0.5235987755982988, b = 0.6108652381980153;
    std::vector<_s_hd_prof_*> boxes = {
        ep_divide_box(2, 2, 2, {5, 5, 5},
                      {std::cos(a), std::sin(a) * std::cos(b), std::sin(a) * std::sin(b)},
                      {-std::sin(a), std::cos(a) * std::cos(b), std::cos(a) * std::sin(b)}, 1),
        ep_divide_box(1, 1, 1, {0, 0, 0}, {h, h, 0}, {0, 0.6, 0.8}, 1),
        ep_divide_box(1, 1, 1, {0, 0, 0}, {h, h, 0}, {0, -0.6, -0.8}, 1)};
    registerAll(boxes);
    for (const _s_hd_prof_* box : boxes)
        EXPECT_EQ(segmentsOf(box->proline).size(), 12u);
    vgscene::releaseAll(boxes);
    // Two faces of one object that pass through each other meet along their crossing, found
    // from each face's side.
    std::vector<_s_hd_prof_*> cross = {
        makeObject({{{-1, 0, -1}, {1, 0, -1}, {1, 0, 1}, {-1, 0, 1}},
                    {{0, -1, -1}, {0, 1, -1}, {0, 1, 1}, {0, -1, 1}}},
                   {{{-1, 0, -1}, {1, 0, -1}}})};
    registerAll(cross);
    auto near = [](P p, double z) {
        return std::fabs(p.x) + std::fabs(p.y) + std::fabs(p.z - z) < 1e-12;
    };
    int crossings = 0;
    for (const Seg& s : segmentsOf(cross[0]->proline))
        crossings += near(s.first, -s.second.z) && near(s.second, s.second.z > 0 ? 1 : -1);
    EXPECT_EQ(segmentsOf(cross[0]->proline).size(), 3u);
    EXPECT_EQ(crossings, 2);
    vgscene::releaseAll(cross);
}

}  // namespace
