// Unit test of vogedraw: the drawing of the sample model in several views (the program's runs
// in CMakeLists.txt check its bad models and its output files).
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "VoGeBasic.h"
#include "model_reader.h"
#include "view.h"
#include "writers.h"

namespace {

using geolib::_s_hd_prof_;
using geolib::_s_hd_proline_;
using vogedraw::Primitive;

// The sample in several views: every primitive the library has draws; visible and hidden
// pieces together cover each line's projection exactly once.
TEST(Drawing, VisibleAndHiddenPiecesCoverEveryLine) {
    std::vector<Primitive> prims;
    std::string error;
    ASSERT_TRUE(vogedraw::readModel(VOGEDRAW_SAMPLE, prims, error)) << error;
    ASSERT_GT(prims.size(), 100u);
    for (const char* name : {"iso", "plan", "north", "west"}) {
        vogedraw::ViewAngles v{};
        ASSERT_TRUE(vogedraw::namedView(name, v));
        const VoGeMatrix3D m = vogedraw::viewMatrix(v);
        std::vector<_s_hd_prof_*> objs;
        for (const Primitive& p : prims) {
            std::string why;
            _s_hd_prof_* o = vogedraw::tessellate(p, m, why);
            EXPECT_NE(o, nullptr) << p.line << " " << why;
            if (o != nullptr)
                objs.push_back(o);
        }
        const int n = static_cast<int>(objs.size());
        geolib::kestFaceIntersectAll(objs.data(), n);
        _s_hd_proline_* visible = geolib::kestHideObject(objs.data(), n);
        const vogedraw::Drawing d = vogedraw::splitPieces(objs.data(), n, visible);
        double lines = 0, drawn = 0;
        for (const _s_hd_prof_* o : objs) {
            for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
                lines += std::hypot(l->end.x - l->start.x, l->end.y - l->start.y);
        }
        for (const auto* set : {&d.visible, &d.hidden}) {
            for (const vogedraw::Segment& s : *set)
                drawn += std::hypot(s.x1 - s.x0, s.y1 - s.y0);
        }
        EXPECT_GT(d.visible.size(), 500u) << name;
        EXPECT_GT(d.hidden.size(), 100u) << name;
        EXPECT_NEAR(drawn, lines, 1e-6 * lines) << name;
        geolib::releaseProline(visible);
        for (_s_hd_prof_*& o : objs)
            geolib::freeHDProfObjectPointer(o);
    }
}

}  // namespace
