// Test support for the hidden-line engine: faces and objects made by hand.
#ifndef VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H
#define VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H

#include <limits>
#include <utility>
#include <vector>

#include "hd_records.h"
#include "hd_tessellators.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "hidden_line/engine/hd_pass.h"
#include "hidden_line/model/hd_builders.h"

namespace enginetest {

using P = geolib::_s_hd_point_;
using Seg = std::pair<P, P>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The face as the engine reads it.
inline geolib::HDFace faceOf(const std::vector<P>& pts) {
    geolib::_s_hd_sect_* chain = pts.size() == 3
                                     ? geolib::mallocTriSect(pts[0], pts[1], pts[2])
                                     : geolib::mallocQuadSect(pts[0], pts[1], pts[2], pts[3]);
    geolib::HDFace f{};
    geolib::readFace(chain, f);
    geolib::freeHDSectPointer(chain);
    return f;
}

/// A new object with the faces (three or four vertices) and lines given, its box around all
/// their points.
inline geolib::_s_hd_prof_* makeObject(const std::vector<std::vector<P>>& faces,
                                       const std::vector<Seg>& lines) {
    geolib::HDProfDraft draft;
    std::vector<P> pts;
    for (const auto& f : faces) {
        if (f.size() == 3)
            draft.addTri(f[0], f[1], f[2]);
        else
            draft.addQuad(f[0], f[1], f[2], f[3]);
        pts.insert(pts.end(), f.begin(), f.end());
    }
    for (const Seg& l : lines) {
        draft.addLine(l.first, l.second);
        pts.insert(pts.end(), {l.first, l.second});
    }
    for (std::size_t i = 0; i < pts.size(); ++i)
        i == 0 ? draft.seedBox(pts[i]) : draft.extendBox(pts[i]);
    return draft.finish();
}

/// The lines of a list as segments, start to end.
inline std::vector<Seg> segmentsOf(const geolib::_s_hd_proline_* l) {
    std::vector<Seg> out;
    for (; l != nullptr; l = l->next)
        out.emplace_back(l->start, l->end);
    return out;
}

}  // namespace enginetest

#endif  // VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H
