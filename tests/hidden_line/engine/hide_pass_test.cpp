#include <gtest/gtest.h>

#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;
using namespace enginetest;

// What the pass returns, on a plant: every line is left near end first, and every visible piece
// lies on a line of its object, the pieces of a line in order from its near end and apart. The
// engine gives what the reference pass gives node for node (hide_engine_test.cpp), so the
// promise checked on the engine holds for both.
TEST(KestHideObject, VisiblePiecesLieOnTheirLinesInOrderAndApart) {
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(vgscene::generatePlant(120, 4));
    kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
    _s_hd_proline_* out = kestHideObject(objs.data(), static_cast<int>(objs.size()));
    for (const _s_hd_prof_* o : objs) {
        for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
            ASSERT_LE(l->start.z, l->end.z) << "a line is left far end first";
    }
    EXPECT_EQ(piecesProblem(objs, out), nullptr);
    EXPECT_GT(segmentsOf(out).size(), 500u);
    releaseProline(out);
    vgscene::releaseAll(objs);
}

}  // namespace
