#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_internal.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;

// The scene's objects, every one registered for face intersection.
std::vector<_s_hd_prof_*> registeredScene(const std::vector<vgscene::Primitive>& prims) {
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
    std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int count = 0;
    for (_s_hd_prof_* o : objs)
        kestFaceIntersect(o, registry.data(), count, static_cast<int>(objs.size()));
    return objs;
}

bool samePoint(const _s_hd_point_& a, const _s_hd_point_& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Node for node and bit for bit: the same pieces with the same owners in the same order.
void expectSameLists(const _s_hd_proline_* a, const _s_hd_proline_* b) {
    long k = 0;
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next, ++k) {
        ASSERT_TRUE(samePoint(a->start, b->start) && samePoint(a->end, b->end) &&
                    a->owner == b->owner)
            << "node " << k;
    }
    EXPECT_TRUE(a == nullptr && b == nullptr) << "lengths differ after " << k << " nodes";
}

TEST(KestHideObject, MatchesTheReferenceNodeForNode) {
    const struct {
        const char* id;
        std::vector<vgscene::Primitive> prims;
    } scenes[] = {
        {"built-in plant", vgscene::builtinPlant()},
        {"150 primitives", vgscene::generatePlant(150, 1)},
        {"250 primitives, seed 7", vgscene::generatePlant(250, 7)},
    };
    for (const auto& s : scenes) {
        SCOPED_TRACE(s.id);
        // Two copies: the passes re-orient the lines they read.
        std::vector<_s_hd_prof_*> forEngine = registeredScene(s.prims);
        std::vector<_s_hd_prof_*> forReference = registeredScene(s.prims);
        const int n = static_cast<int>(forEngine.size());
        _s_hd_proline_* engine = kestHideObject(forEngine.data(), n);
        _s_hd_proline_* reference = kestHideObjectReference(forReference.data(), n);
        ASSERT_NE(engine, nullptr);
        expectSameLists(engine, reference);
        for (int i = 0; i < n; ++i)  // the re-oriented input lines agree too
            expectSameLists(forEngine[i]->proline, forReference[i]->proline);
        releaseProline(engine);
        releaseProline(reference);
        vgscene::releaseAll(forEngine);
        vgscene::releaseAll(forReference);
    }
}

}  // namespace
