// Benchmarks of the hidden-line side on generated plant scenes of 100, 1,000 and 10,000
// primitives: tessellation, face intersection and the hide pass, each timed on its own.
// Counters: primitives, faces, lines (after face intersection) and visible pieces.
#include <benchmark/benchmark.h>

#include <vector>

#include "VoGeBasic.h"
#include "scene/plant_scene.h"

namespace {

using geolib::_s_hd_prof_;
using geolib::_s_hd_proline_;

long countFaces(const std::vector<_s_hd_prof_*>& objs) {
    long n = 0;
    for (const _s_hd_prof_* o : objs) {
        for (const geolib::_s_hd_prosect_* s = o->prosect; s != nullptr; s = s->next)
            ++n;
    }
    return n;
}

long countLines(const std::vector<_s_hd_prof_*>& objs) {
    long n = 0;
    for (const _s_hd_prof_* o : objs) {
        for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
            ++n;
    }
    return n;
}

long countList(const _s_hd_proline_* l) {
    long n = 0;
    for (; l != nullptr; l = l->next)
        ++n;
    return n;
}

void registerAll(std::vector<_s_hd_prof_*>& objs) {
    const int count = static_cast<int>(objs.size());
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int registered = 0;
    for (_s_hd_prof_* o : objs)
        geolib::kestFaceIntersect(o, registry.data(), registered, count);
}

void BM_Tessellate(benchmark::State& state) {
    const auto prims = vgscene::generatePlant(static_cast<int>(state.range(0)));
    long faces = 0;
    long lines = 0;
    for (auto _ : state) {
        std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
        state.PauseTiming();
        faces = countFaces(objs);
        lines = countLines(objs);
        vgscene::releaseAll(objs);
        state.ResumeTiming();
    }
    state.counters["primitives"] = static_cast<double>(prims.size());
    state.counters["faces"] = static_cast<double>(faces);
    state.counters["lines"] = static_cast<double>(lines);
}

void BM_FaceIntersect(benchmark::State& state) {
    const auto prims = vgscene::generatePlant(static_cast<int>(state.range(0)));
    long lines = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
        state.ResumeTiming();
        registerAll(objs);
        state.PauseTiming();
        lines = countLines(objs);
        vgscene::releaseAll(objs);
        state.ResumeTiming();
    }
    state.counters["primitives"] = static_cast<double>(prims.size());
    state.counters["lines"] = static_cast<double>(lines);
}

void BM_HidePass(benchmark::State& state) {
    const auto prims = vgscene::generatePlant(static_cast<int>(state.range(0)));
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
    registerAll(objs);
    long visible = 0;
    for (auto _ : state) {
        _s_hd_proline_* out = geolib::kestHideObject(objs.data(), static_cast<int>(objs.size()));
        state.PauseTiming();
        visible = countList(out);
        geolib::releaseProline(out);
        state.ResumeTiming();
    }
    state.counters["primitives"] = static_cast<double>(prims.size());
    state.counters["faces"] = static_cast<double>(countFaces(objs));
    state.counters["lines"] = static_cast<double>(countLines(objs));
    state.counters["visible"] = static_cast<double>(visible);
    vgscene::releaseAll(objs);
}

}  // namespace

BENCHMARK(BM_Tessellate)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FaceIntersect)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HidePass)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
