#include <gtest/gtest.h>

#include <vector>

#include "hd_engine.h"
#include "hidden_line/engine/hd_engine_fixtures.h"
#include "scene/plant_scene.h"

namespace {

using namespace geolib;
using namespace enginetest;

using Pass = _s_hd_proline_* (*)(_s_hd_prof_**, int);
// Every behaviour of the pass holds for the engine and for the reference alike.
const Pass kPasses[] = {kestHideObject, kestHideObjectReference};

// What the pass returns, on a plant: every line is left near end first, and every visible piece
// lies on a line of its object, the pieces of a line in order from its near end and apart.
TEST(KestHideObject, VisiblePiecesLieOnTheirLinesInOrderAndApart) {
    for (Pass pass : kPasses) {
        std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(vgscene::generatePlant(120, 4));
        kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
        _s_hd_proline_* out = pass(objs.data(), static_cast<int>(objs.size()));
        for (const _s_hd_prof_* o : objs) {
            for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
                ASSERT_LE(l->start.z, l->end.z) << "a line is left far end first";
        }
        EXPECT_EQ(piecesProblem(objs, out), nullptr);
        long pieces = 0;
        for (const _s_hd_proline_* v = out; v != nullptr; v = v->next)
            ++pieces;
        EXPECT_GT(pieces, 500);
        releaseProline(out);
        vgscene::releaseAll(objs);
    }
}

}  // namespace
