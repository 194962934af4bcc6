// Test support for the hidden-line engine: faces and objects made by hand, result lists read
// into vectors, and a cube turned to be seen from a corner.
#ifndef VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H
#define VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "hd_records.h"
#include "hd_tessellators.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "hidden_line/engine/hd_pass.h"
#include "hidden_line/model/hd_builders.h"
#include "support/geom_expect.h"

namespace enginetest {

using P = geolib::_s_hd_point_;
using Seg = std::pair<P, P>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
/// Points the engine computes (crossings, piercings) match hand values within this.
constexpr double kCalcTol = 1e-12;

inline bool near(P a, P b, double tol = kCalcTol) {
    return vgtest::near3(a, b, tol);
}

/// A line of a result or of an object's list.
struct Piece {
    P a, b;
    int owner;
};

/// The same segment, either way round.
inline bool sameSeg(const Piece& s, P a, P b, double tol = kCalcTol) {
    return (near(s.a, a, tol) && near(s.b, b, tol)) || (near(s.a, b, tol) && near(s.b, a, tol));
}

/// The rectangle [x0, x1] x [y0, y1] at depth z, counter-clockwise in the drawing plane.
inline std::vector<P> rect(double x0, double y0, double x1, double y1, double z) {
    return {{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}};
}

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
    bool seeded = false;
    auto grow = [&](P p) {
        if (seeded)
            draft.extendBox(p);
        else
            draft.seedBox(p);
        seeded = true;
    };
    for (const auto& f : faces) {
        if (f.size() == 3)
            draft.addTri(f[0], f[1], f[2]);
        else
            draft.addQuad(f[0], f[1], f[2], f[3]);
        for (P p : f)
            grow(p);
    }
    for (const Seg& l : lines) {
        draft.addLine(l.first, l.second);
        grow(l.first);
        grow(l.second);
    }
    return draft.finish();
}

/// Objects released when it goes out of scope (never copied).
struct Owned {
    std::vector<geolib::_s_hd_prof_*> objs;
    ~Owned() {
        for (geolib::_s_hd_prof_* o : objs)
            geolib::freeHDProfObjectPointer(o);
    }
};

inline std::vector<Piece> piecesOf(const geolib::_s_hd_proline_* l) {
    std::vector<Piece> out;
    for (; l != nullptr; l = l->next)
        out.push_back({l->start, l->end, l->owner});
    return out;
}

/// Runs a pass (kestHideObject or its reference) and returns its pieces, releasing the list.
template <class Pass>
std::vector<Piece> hide(Pass pass, std::vector<geolib::_s_hd_prof_*> objs) {
    geolib::_s_hd_proline_* out = pass(objs.data(), static_cast<int>(objs.size()));
    std::vector<Piece> pieces = piecesOf(out);
    geolib::releaseProline(out);
    return pieces;
}

/// A cube of edge 2 with its corner at c, turned so that it is seen from a corner: its edges
/// run along R e_x, R e_y, R e_z for a rotation R about Z by 30 degrees, then about X by 35.
inline geolib::_s_hd_prof_* cornerCube(P c) {
    const double a = 30.0 * 3.141592653589793 / 180.0;
    const double b = 35.0 * 3.141592653589793 / 180.0;
    const P u = {std::cos(a), std::sin(a) * std::cos(b), std::sin(a) * std::sin(b)};
    const P v = {-std::sin(a), std::cos(a) * std::cos(b), std::cos(a) * std::sin(b)};
    return geolib::ep_divide_box(2, 2, 2, c, u, v, 1);
}

}  // namespace enginetest

#endif  // VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H
