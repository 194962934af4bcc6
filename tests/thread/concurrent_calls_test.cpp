// Concurrent calls on disjoint data: the hide pass, face intersection and trimming run on
// several threads at once, each on its own scene or pieces, the trimming against one polygon
// list that all threads share read-only. Every thread must get what a single thread gets. Run
// under ThreadSanitizer (the tsan preset), this also shows that no call shares hidden state.
#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

#include "VoGeBasic.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;

constexpr int kThreads = 4;

// Runs work(t) for each t alone, then on kThreads threads at once: every thread must get what
// it got alone, bit for bit.
template <class Work>
void expectThreadsGetWhatOneThreadGets(Work work) {
    std::vector<std::vector<double>> alone, together(kThreads);
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

// One generated plant per thread tessellated, intersected (registered one by one) and hidden.
TEST(ConcurrentCalls, ThreadsOnDisjointScenesGetWhatOneThreadGets) {
    expectThreadsGetWhatOneThreadGets([](int t) {
        auto objs =
            vgscene::tessellateAll(vgscene::generatePlant(120, static_cast<unsigned>(t + 1)));
        std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
        int count = 0;
        for (_s_hd_prof_* o : objs)
            kestFaceIntersect(o, registry.data(), count, static_cast<int>(objs.size()));
        _s_hd_proline_* vis = kestHideObject(objs.data(), static_cast<int>(objs.size()));
        std::vector<double> out;
        for (const _s_hd_proline_* l = vis; l != nullptr; l = l->next)
            out.insert(out.end(), {l->start.x, l->start.y, l->start.z, l->end.x, l->end.y, l->end.z,
                                   static_cast<double>(l->owner)});
        releaseProline(vis);
        vgscene::releaseAll(objs);
        return out;
    });
}

// A fan of pieces per thread trimmed against an L-shaped outline split once, before the threads
// start, and then only read.
TEST(ConcurrentCalls, ThreadsTrimAgainstOneSharedPolygonList) {
    convex* polys =
        transPtArray2Convex({{0, 0, 0}, {8, 0, 0}, {8, 2, 0}, {2, 2, 0}, {2, 8, 0}, {0, 8, 0}});
    ASSERT_TRUE(ConvexIdentify(polys));
    expectThreadsGetWhatOneThreadGets([polys](int seed) {
        std::vector<double> out;
        for (int k = 0; k < 40; ++k) {
            const double t = 0.157 * (k + seed);
            line_cut* piece =
                polygonTrimLine(polys, VoGePoint3D(-12.0 * std::cos(t), -12.0 * std::sin(t), 0),
                                VoGePoint3D(12.0 * std::cos(t + 0.3), 12.0 * std::sin(t + 0.3), 0));
            for (const paramt* p = piece != nullptr ? piece->params : nullptr; p != nullptr;
                 p = p->next)
                out.insert(out.end(), {p->t0, p->t1});
            out.push_back(-1.0);  // end of a piece
            freeLineCut(piece);
        }
        return out;
    });
    freeConvex(polys);
}

}  // namespace
