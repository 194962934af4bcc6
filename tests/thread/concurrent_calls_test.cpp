// Concurrent calls on disjoint data: the hide pass, face intersection and trimming run on
// several threads at once, each on its own scene or pieces, the trimming against one polygon
// list that all threads share read-only. Every thread must get what a single thread gets. Run
// under ThreadSanitizer (the tsan preset), this also shows that no call shares hidden state.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#include "VoGeBasic.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;

constexpr int kThreads = 4;

struct Piece {
    _s_hd_point_ a, b;
    int owner;
};

// Tessellates, intersects and hides one generated plant; returns the visible pieces.
std::vector<Piece> drawPlant(unsigned seed) {
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(vgscene::generatePlant(120, seed));
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int count = 0;
    for (_s_hd_prof_* o : objs)
        kestFaceIntersect(o, registry.data(), count, static_cast<int>(objs.size()));
    _s_hd_proline_* vis = kestHideObject(objs.data(), static_cast<int>(objs.size()));
    std::vector<Piece> out;
    for (const _s_hd_proline_* l = vis; l != nullptr; l = l->next)
        out.push_back({l->start, l->end, l->owner});
    releaseProline(vis);
    vgscene::releaseAll(objs);
    return out;
}

// Bit for bit, field by field (the record has padding).
bool operator==(const Piece& x, const Piece& y) {
    return std::memcmp(&x.a, &y.a, sizeof x.a) == 0 && std::memcmp(&x.b, &y.b, sizeof x.b) == 0 &&
           x.owner == y.owner;
}

// Runs work(t) for each t alone, then on kThreads threads at once: every thread must get what
// it got alone.
template <class Work>
void expectThreadsGetWhatOneThreadGets(Work work) {
    std::vector<decltype(work(0))> alone, together(kThreads);
    for (int t = 0; t < kThreads; ++t)
        alone.push_back(work(t));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &work, &together] { together[t] = work(t); });
    for (std::thread& th : threads)
        th.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_TRUE(alone[t] == together[t]) << "thread " << t;
}

// The visible intervals of pieces across the polygons, one fan of pieces per seed.
std::vector<double> trimFan(convex* polys, int seed) {
    std::vector<double> out;
    for (int k = 0; k < 40; ++k) {
        const double t = 0.157 * (k + seed);
        const VoGePoint3D s(-12.0 * std::cos(t), -12.0 * std::sin(t), 0);
        const VoGePoint3D e(12.0 * std::cos(t + 0.3), 12.0 * std::sin(t + 0.3), 0);
        line_cut* piece = polygonTrimLine(polys, s, e);
        for (const paramt* p = piece != nullptr ? piece->params : nullptr; p != nullptr;
             p = p->next) {
            out.push_back(p->t0);
            out.push_back(p->t1);
        }
        out.push_back(-1.0);  // end of a piece
        freeLineCut(piece);
    }
    return out;
}

TEST(ConcurrentCalls, ThreadsOnDisjointScenesGetWhatOneThreadGets) {
    expectThreadsGetWhatOneThreadGets(
        [](int t) { return drawPlant(static_cast<unsigned>(t + 1)); });
}

TEST(ConcurrentCalls, ThreadsTrimAgainstOneSharedPolygonList) {
    // An L-shaped outline split once, before the threads start; then only read.
    const std::vector<VoGePoint3D> l = {{0, 0, 0}, {8, 0, 0}, {8, 2, 0},
                                        {2, 2, 0}, {2, 8, 0}, {0, 8, 0}};
    convex* polys = transPtArray2Convex(l);
    ASSERT_TRUE(ConvexIdentify(polys));
    expectThreadsGetWhatOneThreadGets([polys](int t) { return trimFan(polys, t); });
    freeConvex(polys);
}

}  // namespace
