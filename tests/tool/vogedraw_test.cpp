// Unit tests of vogedraw's reader, view and writers: grouped tables of bad lines, invariants of
// the view rotation and of the drawing of the sample model, and the files read back.
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
        {"sphere 0 0 0 1\nwidget 1 2 3", "m.vgm:2: unknown primitive 'widget'"},
        {"box 0 0 0 1 1", "m.vgm:1: box: wrong field count 5 (expected 6)"},
        {"elbow 1 90 0 0 0 1 0 0 0 0", "m.vgm:1: elbow: wrong field count 10 (expected 11 or 12)"},
        {"\n# c\nline 0 0 0 1 1 x1", "m.vgm:3: line: field 6 (z1): not a number: 'x1'"},
        {"disc 0 0 0 1 0 0 1e", "m.vgm:1: disc: field 7 (nz): not a number"},
        {"sphere 0 0 0 -nan", "m.vgm:1: sphere: field 4 (r): not a finite number"},
        {"sphere 0 0 0 1e400", "m.vgm:1: sphere: field 4 (r): not a finite number"},
        {"sphere 0 0 2e6 1", "m.vgm:1: sphere: field 3 (cz): out of range"},
        {"prism 0 0 0 0 0 1 1 0 0 -1", "m.vgm:1: prism: field 10 (n): not an integer in 0..1000"},
        {"prism 0 0 0 0 0 1 1 0 0 2000", "field 10 (n): not an integer"},
        {"elbow 1 90 0 0 0 1 0 0 0 0 1 2.5", "field 12 ([n]): not an integer in 0..1000"},
        {"polyline 0 0 0", "m.vgm:1: polyline: wrong field count 3"},
        {"polyline 0 0 0 1 1 1 2 2 q", "m.vgm:1: polyline: field 9 (z2): not a number"},
    };
    for (const auto& c : cases) {
        std::vector<Primitive> prims;
        std::string error;
        EXPECT_FALSE(parse(c.text, prims, error)) << c.text;
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

TEST(ModelReader, ReadsEveryPrimitiveWithCommentsAndBlankLines) {
    const std::string text =
        "# every primitive\n\n"
        "box 0 0 0 1 1 1  # trailing comment\nobox 0 0 0 1 2 3 1 1 0 -1 1 0\n"
        "wedge 0 0 0 1 0 0 0 1 0 1\nprism 0 0 0 0 0 1 1 0 0 0\nline 0 0 0 1 1 1\n"
        "polyline 0 0 0 1 0 0 1 1 0\ndisc 0 0 0 1 0 0 1\ncone 0 0 0 0 0 1 1 0.5\n"
        "cylinder 0 0 0 0 0 1 1\necone 0 0 0 0.5 0 1 1 0.5 0 0 1\n"
        "snout 1 0.5 1 0 0 0 0 0 1 0 0 0 1 0 0 0 1 0.01\nscylinder 0 0 0 0 0 1 1 0 0.3 1\n"
        "sphere 0 0 0 1\nelbow 0.2 90 0 0 0 1 0 0 0 0 1\nelbow 0.2 90 0 0 0 1 0 0 0 0 1 8\n"
        "head 1 0.5 0.05 0 0 0 0 0 1\nringplate 1 2 0.1 0 0 0 0 270 0 0 1\n";
    std::vector<Primitive> prims;
    std::string error;
    ASSERT_TRUE(parse(text, prims, error)) << error;
    ASSERT_EQ(prims.size(), 17u);
    EXPECT_EQ(prims[0].line, 3);
    EXPECT_EQ(prims[5].v.size(), 9u);
    for (const Primitive& p : prims)
        EXPECT_NE(std::string(vogedraw::keywordOf(p.kind)), "?");
}

double det3(const VoGeMatrix3D& m) {
    return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) -
           m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
           m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

TEST(View, NamedViewsAreProperRotationsFacingTheirSide) {
    // name, model direction, where it lands on the sheet (X right, Y down, Z away)
    const struct {
        const char* name;
        VoGePoint3D model, drawing;
    } cases[] = {
        {"plan", {0, 1, 0}, {0, -1, 0}}, {"plan", {1, 0, 0}, {1, 0, 0}},
        {"plan", {0, 0, 1}, {0, 0, -1}}, {"south", {1, 0, 0}, {1, 0, 0}},
        {"south", {0, 1, 0}, {0, 0, 1}}, {"north", {-1, 0, 0}, {1, 0, 0}},
        {"east", {0, 1, 0}, {1, 0, 0}},  {"east", {0, 0, 1}, {0, -1, 0}},
        {"west", {0, -1, 0}, {1, 0, 0}}, {"west", {1, 0, 0}, {0, 0, 1}},
    };
    for (const auto& c : cases) {
        vogedraw::ViewAngles v{};
        ASSERT_TRUE(vogedraw::namedView(c.name, v));
        const VoGeMatrix3D m = vogedraw::viewMatrix(v);
        EXPECT_NEAR(det3(m), 1.0, 1e-12) << c.name;
        const VoGePoint3D d = m.postMult1(c.model);
        EXPECT_NEAR(d.x, c.drawing.x, 1e-12) << c.name;
        EXPECT_NEAR(d.y, c.drawing.y, 1e-12) << c.name;
        EXPECT_NEAR(d.z, c.drawing.z, 1e-12) << c.name;
    }
    vogedraw::ViewAngles v{};
    EXPECT_FALSE(vogedraw::namedView("top", v));
}

// A quarter ring plate from 0 to 90 degrees about each axis stays in its quadrant of model
// coordinates in every view: the angles are the model's, whatever the view.
TEST(View, RingPlateAnglesAreModelAngles) {
    const double axes[3][3] = {{0, 0, 1}, {1, 0, 0}, {0, -1, 0}};
    const double views[][2] = {{180, 90}, {0, 0}, {90, 0}, {225, 35.26}, {150, 20}, {40, -30}};
    for (const auto& k : axes) {
        // The model's reference and its quarter turn about k (see docs/model_format.md).
        const VoGeVector3D kv(k[0], k[1], k[2]);
        const VoGeVector3D ref =
            std::fabs(k[0]) < 0.5 ? VoGeVector3D(1, 0, 0) : VoGeVector3D(0, 1, 0);
        const VoGeVector3D x = ref;  // square to k for these axes
        const VoGeVector3D y(kv.y * x.z - kv.z * x.y, kv.z * x.x - kv.x * x.z,
                             kv.x * x.y - kv.y * x.x);
        for (const auto& angles : views) {
            const VoGeMatrix3D m = vogedraw::viewMatrix({angles[0], angles[1]});
            const VoGeMatrix3D back = m.inverse();
            Primitive p{
                vogedraw::Kind::RingPlate, 1, {1, 2, 0.1, 0, 0, 0, 0, 90, k[0], k[1], k[2]}};
            std::string why;
            _s_hd_prof_* o = vogedraw::tessellate(p, m, why);
            ASSERT_NE(o, nullptr) << why;
            for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next) {
                for (const geolib::_s_hd_point_& q : {l->start, l->end}) {
                    const VoGePoint3D w = back.postMult1(VoGePoint3D(q.x, q.y, q.z));
                    EXPECT_GE(w.x * x.x + w.y * x.y + w.z * x.z, -1e-9);
                    EXPECT_GE(w.x * y.x + w.y * y.y + w.z * y.z, -1e-9);
                }
            }
            geolib::freeHDProfObjectPointer(o);
        }
    }
}

double length(const vogedraw::Segment& s) {
    return std::hypot(s.x1 - s.x0, s.y1 - s.y0);
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
                drawn += length(s);
        }
        EXPECT_GT(d.visible.size(), 500u) << name;
        EXPECT_GT(d.hidden.size(), 100u) << name;
        EXPECT_NEAR(drawn, lines, 1e-6 * lines) << name;
        geolib::releaseProline(visible);
        for (_s_hd_prof_*& o : objs)
            geolib::freeHDProfObjectPointer(o);
    }
}

// Writing is all or nothing, and a DXF has drawing Y flipped to run up.
TEST(Writers, FailedWriteLeavesTheOldFile) {
    const std::string path = ::testing::TempDir() + "vogedraw_kept";
    std::string error, text;
    ASSERT_TRUE(vogedraw::writeAtomically(
        path, [](std::FILE* f) { return std::fputs("old\n", f) >= 0; }, error));
    EXPECT_FALSE(vogedraw::writeAtomically(
        path, [](std::FILE* f) { return std::fputs("new\n", f) < 0; }, error));
    EXPECT_NE(error.find("vogedraw_kept"), std::string::npos);
    std::ifstream old(path);
    EXPECT_TRUE(std::getline(old, text));
    EXPECT_EQ(text, "old");

    vogedraw::Drawing d;
    d.visible = {{1, 2, 3, 4}};
    ASSERT_TRUE(vogedraw::writeAtomically(
        path, [&](std::FILE* f) { return vogedraw::writeDxf(f, d); }, error));
    std::ifstream dxf(path);
    std::vector<std::string> line10;  // the values after each group code 10, 20, 11, 21
    for (std::string code, value; std::getline(dxf, code) && std::getline(dxf, value);) {
        if (code == "10" || code == "20" || code == "11" || code == "21")
            line10.push_back(value);
    }
    // $EXTMIN, $EXTMAX, then the LINE.
    EXPECT_EQ(line10, (std::vector<std::string>{"1", "-4", "3", "-2", "1", "-2", "3", "-4"}));
    std::remove(path.c_str());
}

}  // namespace
