// Test support for the hidden-line engine: faces and objects made by hand.
#ifndef VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H
#define VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "hd_engine.h"
#include "hd_records.h"
#include "hd_tessellators.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "hidden_line/engine/hd_pass.h"
#include "hidden_line/model/hd_builders.h"
#include "tests/support/test_constants.h"

namespace enginetest {

using P = geolib::_s_hd_point_;
using Seg = std::pair<P, P>;
using vgtest::kNaN;

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

/// The vertices of each face of obj, face by face.
inline std::vector<std::vector<P>> facesOf(const geolib::_s_hd_prof_* obj) {
    std::vector<std::vector<P>> out;
    for (const geolib::_s_hd_prosect_* f = obj->prosect; f != nullptr; f = f->next) {
        out.emplace_back();
        for (const geolib::_s_hd_sect_* v = f->sect; v != nullptr; v = v->next)
            out.back().push_back(v->pt);
    }
    return out;
}

/// Every vertex of the faces of obj, then every end of its lines.
inline std::vector<P> pointsOf(const geolib::_s_hd_prof_* obj) {
    std::vector<P> out;
    for (const auto& f : facesOf(obj))
        out.insert(out.end(), f.begin(), f.end());
    for (const Seg& l : segmentsOf(obj->proline))
        out.insert(out.end(), {l.first, l.second});
    return out;
}

/// Whether the box of obj holds each of its vertices and line ends (those with a coordinate
/// beyond 1e300 or not finite aside); with exact, whether the box is just their extent.
inline bool boxHoldsPoints(const geolib::_s_hd_prof_* obj, bool exact = false) {
    double extent[6] = {-HUGE_VAL, HUGE_VAL, -HUGE_VAL, HUGE_VAL, -HUGE_VAL, HUGE_VAL};
    bool any = false;
    for (const P& p : pointsOf(obj)) {
        const double c[3] = {p.x, p.y, p.z};
        if (!vgtest::ordinary({p.x, p.y, p.z}, 1e300))
            continue;
        any = true;
        for (int a = 0; a < 3; ++a) {
            extent[2 * a] = std::max(extent[2 * a], c[a]);
            extent[2 * a + 1] = std::min(extent[2 * a + 1], c[a]);
        }
    }
    for (int k = 0; k < 6 && any; ++k) {
        const double b = obj->box[k], e = extent[k];
        if (exact ? !(b == e) : k % 2 == 0 ? !(e <= b) : !(e >= b))
            return false;
    }
    return true;
}

/// The lines and faces of the objects (null entries hold none), counted as doubles so that their
/// product does not overflow.
struct Counts {
    double lines = 0, faces = 0;
};
inline Counts countsOf(const std::vector<geolib::_s_hd_prof_*>& objs) {
    Counts c;
    for (const geolib::_s_hd_prof_* obj : objs) {
        for (const geolib::_s_hd_proline_* l = obj ? obj->proline : nullptr; l; l = l->next)
            ++c.lines;
        for (const geolib::_s_hd_prosect_* f = obj ? obj->prosect : nullptr; f; f = f->next)
            ++c.faces;
    }
    return c;
}

/// Registers the objects for face intersection one by one, as a caller adding them in turn does.
inline void registerAll(std::vector<geolib::_s_hd_prof_*>& objs) {
    std::vector<geolib::_s_hd_prof_*> registry(objs.size() + 1, nullptr);
    int count = 0;
    for (geolib::_s_hd_prof_* o : objs)
        geolib::kestFaceIntersect(o, registry.data(), count, static_cast<int>(objs.size()));
}

/// The same point to the bit.
using geolib::sameBits;

/// The index of the first node where two lists of pieces differ (start, end or owner not the
/// same to the bit, or one list ending first); -1 when they are the same node for node.
inline long firstDifference(const geolib::_s_hd_proline_* a, const geolib::_s_hd_proline_* b) {
    for (long k = 0;; a = a->next, b = b->next, ++k) {
        if (a == nullptr || b == nullptr)
            return a == b ? -1 : k;
        if (!sameBits(a->start, b->start) || !sameBits(a->end, b->end) || a->owner != b->owner)
            return k;
    }
}

/// Where p lies against the line a-b: its distance from the infinite line, and how far along it
/// from a (negative before a).
struct Placement {
    double off, along;
};
inline Placement place(P p, P a, P b) {
    const P d = geolib::vecSub(b, a);
    const double len = std::sqrt(geolib::vecDot(d, d));
    if (!(len > 0.0))
        return {geolib::pointDist(p, a), 0.0};
    const double along = geolib::vecDot(geolib::vecSub(p, a), d) / len;
    return {geolib::pointDist(p, geolib::linComb(1.0, a, along / len, d)), along};
}

/// What the pass promises of its visible pieces, as a message when it is broken (null when
/// not): the pieces of object i come line by line in the order of its lines, each on its line,
/// ordered from the line's start (its near end after the pass) and disjoint. Checked on lines
/// of ordinary coordinates at least 0.01 long; the pieces of the others may overlap and come in
/// any order, and pieces with coordinates that are not ordinary lie anywhere.
inline const char* piecesProblem(const std::vector<geolib::_s_hd_prof_*>& objs,
                                 const geolib::_s_hd_proline_* pieces) {
    const geolib::_s_hd_proline_* piece = pieces;
    for (std::size_t i = 0; i < objs.size(); ++i) {
        const int owner = static_cast<int>(i);
        for (const geolib::_s_hd_proline_* l = objs[i] ? objs[i]->proline : nullptr; l;
             l = l->next) {
            const P a = l->start, b = l->end;
            const double len = geolib::pointDist(a, b);
            const bool checkable = vgtest::ordinary({a.x, a.y, a.z, b.x, b.y, b.z}) && len >= 0.01;
            // Off the line: rounding only. Along it: the pass places piece ends with tolerances
            // of its own (a point within 3.2e-5 of a segment's end lies on it, angles of 0.0005
            // on a segment), so an end may stand a little beyond the line's ends.
            const double tol = 1e-9 * (1.0 + std::fabs(a.x) + std::fabs(a.y) + std::fabs(a.z) +
                                       std::fabs(b.x) + std::fabs(b.y) + std::fabs(b.z));
            const double slack = 5e-5 + 1e-4 * len;
            // A piece out of order here may belong to the next line (lines of one object can
            // overlap): it moves on, and one that fits no later line is caught below.
            double reached = -HUGE_VAL;
            for (; piece != nullptr && piece->owner == owner; piece = piece->next) {
                const P s = piece->start, e = piece->end;
                const Placement ps = place(s, a, b), pe = place(e, a, b);
                const bool on = ps.off <= tol + slack * 1e-3 && pe.off <= tol + slack * 1e-3 &&
                                ps.along >= -slack && pe.along <= len + slack;
                if (!on && (checkable || vgtest::ordinary({s.x, s.y, s.z, e.x, e.y, e.z})))
                    break;
                if (checkable && (ps.along > pe.along + slack || ps.along < reached - slack))
                    break;
                reached = pe.along;
            }
        }
        // Whatever is left for this object lies on none of its lines (checked lines only).
        for (; piece != nullptr && piece->owner == owner; piece = piece->next) {
            const P s = piece->start, e = piece->end;
            if (vgtest::ordinary({s.x, s.y, s.z, e.x, e.y, e.z}))
                return "visible pieces lie on their lines, in order from the near end and disjoint";
        }
    }
    return piece == nullptr ? nullptr : "pieces come in object order, owners set";
}

}  // namespace enginetest

#endif  // VOGEBASIC_TESTS_HD_ENGINE_FIXTURES_H
