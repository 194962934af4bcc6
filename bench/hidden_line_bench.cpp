// Benchmarks of the hidden-line side on generated plant scenes of 100 to 100,000 primitives:
// tessellation, face intersection (one by one and in one call) and the hide pass, each timed on
// its own. Counters: primitives, faces, lines (after face intersection), visible pieces, time
// per primitive (s_per_prim), line-against-face tests per line, the pass's working memory and
// the tessellated model's own size (bytes the allocator handed out for its records).
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <vector>

#include "VoGeBasic.h"
#include "hidden_line/engine/hd_pass.h"
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

// The allocator's share of the model: every record's usable size plus its chunk header.
double modelBytes(const std::vector<_s_hd_prof_*>& objs) {
    constexpr size_t kChunkHeader = sizeof(size_t);
    size_t bytes = 0;
    auto add = [&](const void* p) {
        bytes += malloc_usable_size(const_cast<void*>(p)) + kChunkHeader;
    };
    for (const _s_hd_prof_* o : objs) {
        add(o);
        for (const geolib::_s_hd_prosect_* f = o->prosect; f != nullptr; f = f->next) {
            add(f);
            for (const geolib::_s_hd_sect_* v = f->sect; v != nullptr; v = v->next)
                add(v);
        }
        for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
            add(l);
    }
    return static_cast<double>(bytes);
}

long countList(const _s_hd_proline_* l) {
    long n = 0;
    for (; l != nullptr; l = l->next)
        ++n;
    return n;
}

void registerOneByOne(std::vector<_s_hd_prof_*>& objs) {
    const int count = static_cast<int>(objs.size());
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int registered = 0;
    for (_s_hd_prof_* o : objs)
        geolib::kestFaceIntersect(o, registry.data(), registered, count);
}

void registerAll(std::vector<_s_hd_prof_*>& objs) {
    geolib::kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
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

template <void (*Register)(std::vector<_s_hd_prof_*>&)>
void BM_FaceIntersect(benchmark::State& state) {
    const auto prims = vgscene::generatePlant(static_cast<int>(state.range(0)));
    long lines = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
        state.ResumeTiming();
        Register(objs);
        state.PauseTiming();
        lines = countLines(objs);
        vgscene::releaseAll(objs);
        state.ResumeTiming();
    }
    const double primitives = static_cast<double>(prims.size());
    state.counters["primitives"] = primitives;
    state.counters["s_per_prim"] = benchmark::Counter(
        primitives, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["lines"] = static_cast<double>(lines);
}

void BM_HidePass(benchmark::State& state) {
    const auto prims = vgscene::generatePlant(static_cast<int>(state.range(0)));
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
    registerAll(objs);
    long visible = 0;
    geolib::HidePassStats stats;
    for (auto _ : state) {
        stats = geolib::HidePassStats();
        _s_hd_proline_* out =
            geolib::kestHideObjectMeasured(objs.data(), static_cast<int>(objs.size()), &stats);
        state.PauseTiming();
        visible = countList(out);
        geolib::releaseProline(out);
        state.ResumeTiming();
    }
    const double primitives = static_cast<double>(prims.size());
    state.counters["primitives"] = primitives;
    state.counters["s_per_prim"] = benchmark::Counter(
        primitives, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["faces"] = static_cast<double>(countFaces(objs));
    state.counters["lines"] = static_cast<double>(countLines(objs));
    state.counters["visible"] = static_cast<double>(visible);
    state.counters["tests_per_line"] =
        stats.lines > 0 ? static_cast<double>(stats.faceTests) / static_cast<double>(stats.lines)
                        : 0.0;
    state.counters["objects_per_line"] =
        stats.lines > 0
            ? static_cast<double>(stats.candidatesScanned) / static_cast<double>(stats.lines)
            : 0.0;
    state.counters["scanned_per_line"] =
        stats.lines > 0 ? static_cast<double>(stats.facesScanned) / static_cast<double>(stats.lines)
                        : 0.0;
    state.counters["hiding_share"] = stats.faceTests > 0 ? static_cast<double>(stats.hidingTests) /
                                                               static_cast<double>(stats.faceTests)
                                                         : 0.0;
    state.counters["work_MiB"] = static_cast<double>(stats.workingBytes) / (1 << 20);
    state.counters["model_MiB"] = modelBytes(objs) / (1 << 20);
    vgscene::releaseAll(objs);
}

}  // namespace

BENCHMARK(BM_Tessellate)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FaceIntersect, registerOneByOne)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond);
// The plant sizes of the whole-plant figures.
static void plantSizes(benchmark::internal::Benchmark* b) {
    for (int n : {100, 1000, 10000, 30000, 100000})
        b->Arg(n);
    b->Unit(benchmark::kMillisecond);
}
BENCHMARK_TEMPLATE(BM_FaceIntersect, registerAll)->Apply(plantSizes);
BENCHMARK(BM_HidePass)->Apply(plantSizes);

BENCHMARK_MAIN();
