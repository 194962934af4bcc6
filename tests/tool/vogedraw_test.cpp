// Unit test of vogedraw: the drawing of the sample model in several views (the program's runs
// in CMakeLists.txt check its bad models and its output files).
#include <gtest/gtest.h>

#include <algorithm>
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
        // Drawn once: the library's drop (whose rule its own test holds to a plain scan) takes
        // pieces, and a visible piece goes only for a visible one that stays.
        vogedraw::Drawing once = d;
        const std::size_t gone = vogedraw::dropRepeatedPieces(once);
        EXPECT_GT(gone, 100u) << name;
        EXPECT_EQ(once.visible.size() + once.hidden.size() + gone,
                  d.visible.size() + d.hidden.size());
        const auto same = [](const vogedraw::Segment& a, const vogedraw::Segment& b) {
            const auto near = [](double s0, double s1) { return std::fabs(s0 - s1) <= 0.02; };
            return (near(a.x0, b.x0) && near(a.y0, b.y0) && near(a.x1, b.x1) && near(a.y1, b.y1)) ||
                   (near(a.x0, b.x1) && near(a.y0, b.y1) && near(a.x1, b.x0) && near(a.y1, b.y0));
        };
        for (const vogedraw::Segment& s : d.visible)
            ASSERT_TRUE(std::any_of(once.visible.begin(), once.visible.end(),
                                    [&](const vogedraw::Segment& k) { return same(s, k); }))
                << name << ": a visible piece went";
        geolib::releaseProline(visible);
        for (_s_hd_prof_*& o : objs)
            geolib::freeHDProfObjectPointer(o);
    }
}

}  // namespace
