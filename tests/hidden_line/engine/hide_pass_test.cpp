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

// What the pass returns, on a plant: every visible piece lies on a line of its object (the
// object's lines in list order, each re-oriented near end first), the pieces of a line run from
// its near end in order and do not overlap, and each keeps within the line's ends.
TEST(KestHideObject, VisiblePiecesLieOnTheirLinesInOrderAndApart) {
    for (Pass pass : kPasses) {
        std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(vgscene::generatePlant(120, 4));
        kestFaceIntersectAll(objs.data(), static_cast<int>(objs.size()));
        _s_hd_proline_* out = pass(objs.data(), static_cast<int>(objs.size()));
        const _s_hd_proline_* v = out;
        long pieces = 0;
        for (size_t i = 0; i < objs.size(); ++i) {
            for (const _s_hd_proline_* l = objs[i]->proline; l != nullptr; l = l->next) {
                const P p = l->start, q = l->end;
                ASSERT_LE(p.z, q.z + 1e-12) << "a line is left near end first";
                const double len = pointDist(p, q);
                double reached = 0.0;  // how far along the line the pieces so far end
                // The pieces of this line: those that follow on it.
                for (; v != nullptr && v->owner == static_cast<int>(i) && len > 0.0; v = v->next) {
                    const double s = pointDist(v->start, p), e = pointDist(v->end, p);
                    const double offS = pointDist(v->start, linComb(1.0, p, s / len, vecSub(q, p)));
                    const double offE = pointDist(v->end, linComb(1.0, p, e / len, vecSub(q, p)));
                    if (offS > 1e-6 * (1 + len) || offE > 1e-6 * (1 + len) || s < reached - 1e-6 ||
                        e > len + 1e-6)
                        break;  // not on this line, or not after its last piece: the next line's
                    EXPECT_LE(s, e + 1e-9) << "a piece runs away from the near end";
                    reached = e;
                    ++pieces;
                }
            }
            ASSERT_TRUE(v == nullptr || v->owner > static_cast<int>(i))
                << "a piece of object " << i << " lies on none of its lines";
        }
        EXPECT_EQ(v, nullptr);
        EXPECT_GT(pieces, 500);
        releaseProline(out);
        vgscene::releaseAll(objs);
    }
}

}  // namespace
