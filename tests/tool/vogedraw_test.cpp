// Unit tests of vogedraw: bad lines the reader refuses (beyond the bad models the program runs
// on), and the drawing of the sample model in several views.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
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

bool parse(const std::string& text, std::vector<Primitive>& prims, std::string& error) {
    std::istringstream in(text);
    return vogedraw::parseModel(in, "m.vgm", prims, error);
}

TEST(ModelReader, RejectsBadLinesNamingLineAndField) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"\n# c\nline 0 0 0 1 1 x1", "m.vgm:3: line: field 6 (z1): not a number: 'x1'"},
        {"elbow 1 90 0 0 0 1 0 0 0 0", "m.vgm:1: elbow: wrong field count 10 (expected 11 or 12)"},
        {"sphere 0 0 0 1e400", "m.vgm:1: sphere: field 4 (r): not a finite number"},
        {"prism 0 0 0 0 0 1 1 0 0 2000", "m.vgm:1: prism: field 10 (n): not an integer in 0..1000"},
        {"elbow 1 90 0 0 0 1 0 0 0 0 1 2.5", "field 12 ([n]): not an integer in 0..1000"},
    };
    for (const auto& c : cases) {
        std::vector<Primitive> prims;
        std::string error;
        EXPECT_FALSE(parse(c.text, prims, error)) << c.text;
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

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
        std::vector<_s_hd_prof_*> registry(objs.size() + 1, nullptr);
        int count = 0;
        for (_s_hd_prof_* o : objs)
            geolib::kestFaceIntersect(o, registry.data(), count, n);
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
