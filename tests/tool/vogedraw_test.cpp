// Unit test of vogedraw: the drawing of the sample model in several views (the program's runs
// in CMakeLists.txt check its bad models and its output files).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
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
        // Drawn once: trimmed, the pieces still cover every point they covered, a visible point
        // with a visible piece, and no two overlap along one line.
        vogedraw::Drawing once = d;
        EXPECT_GT(vogedraw::dropOverlappedParts(once), 100u) << name;
        const double tol = 0.02;  // the sheet's coordinates reach about 20,000 here
        const auto off = [](const vogedraw::Segment& a, double x, double y) {
            const double len = std::hypot(a.x1 - a.x0, a.y1 - a.y0);
            const double t = ((x - a.x0) * (a.x1 - a.x0) + (y - a.y0) * (a.y1 - a.y0)) / len / len;
            const double u = std::fmin(1.0, std::fmax(0.0, t));
            return std::hypot(a.x0 + u * (a.x1 - a.x0) - x, a.y0 + u * (a.y1 - a.y0) - y);
        };
        const auto coveredBy = [&](const std::vector<vogedraw::Segment>& set, double x, double y) {
            return std::any_of(set.begin(), set.end(),
                               [&](const vogedraw::Segment& k) { return off(k, x, y) <= tol; });
        };
        for (const auto* set : {&d.visible, &d.hidden}) {
            for (const vogedraw::Segment& s : *set) {
                for (double t : {0.0, 0.3, 0.5, 0.7, 1.0}) {
                    const double x = s.x0 + t * (s.x1 - s.x0), y = s.y0 + t * (s.y1 - s.y0);
                    ASSERT_TRUE(coveredBy(once.visible, x, y) ||
                                (set == &d.hidden && coveredBy(once.hidden, x, y)))
                        << name << ": a point of a piece went";
                }
            }
        }
        // Pieces shorter than a thousandth of the drawing aside.
        std::vector<vogedraw::Segment> all;
        for (const auto* set : {&once.visible, &once.hidden})
            std::copy_if(set->begin(), set->end(), std::back_inserter(all),
                         [](const vogedraw::Segment& k) {
                             return std::hypot(k.x1 - k.x0, k.y1 - k.y0) > 20;
                         });
        for (std::size_t i = 0; i < all.size(); ++i) {
            const vogedraw::Segment& a = all[i];
            const double len = std::hypot(a.x1 - a.x0, a.y1 - a.y0);
            const auto across = [&](double x, double y) {
                return std::fabs((a.x1 - a.x0) * (y - a.y0) - (a.y1 - a.y0) * (x - a.x0)) / len;
            };
            const auto along = [&](double x, double y) {
                return ((x - a.x0) * (a.x1 - a.x0) + (y - a.y0) * (a.y1 - a.y0)) / len;
            };
            for (std::size_t j = i + 1; j < all.size(); ++j) {
                // b along a's line (to rounding) overlaps a by no more than the tolerance.
                const vogedraw::Segment& b = all[j];
                if (across(b.x0, b.y0) > 1e-3 || across(b.x1, b.y1) > 1e-3)
                    continue;
                const double t0 = along(b.x0, b.y0), t1 = along(b.x1, b.y1);
                EXPECT_LE(std::fmin(len, std::fmax(t0, t1)) - std::fmax(0.0, std::fmin(t0, t1)),
                          2 * tol)
                    << name << ": pieces " << i << " and " << j << " overlap";
            }
        }
        geolib::releaseProline(visible);
        for (_s_hd_prof_*& o : objs)
            geolib::freeHDProfObjectPointer(o);
    }
}

}  // namespace
