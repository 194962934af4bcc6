// Test support: an object's lists read into vectors, and order checks against corner tables.
#ifndef VOGEBASIC_TESTS_HD_WALK_H
#define VOGEBASIC_TESTS_HD_WALK_H

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "hd_records.h"
#include "hidden_line/model/solid_checks.h"
#include "support/alloc_hook.h"
#include "support/geom_expect.h"

namespace hdtest {

using P = geolib::_s_hd_point_;

/// Points the routines place on a circle lie on it within this (relative to the radius).
constexpr double kOnCircleTol = 1e-12;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
using Line = const geolib::_s_hd_proline_*;

struct Face {
    std::vector<P> pts;
    int tag;
};

inline std::vector<Line> linesOf(Line l) {
    std::vector<Line> out;
    for (; l != nullptr; l = l->next)
        out.push_back(l);
    return out;
}

inline std::vector<Face> facesOf(const geolib::_s_hd_prof_* obj) {
    std::vector<Face> out;
    for (const geolib::_s_hd_prosect_* f = obj->prosect; f != nullptr; f = f->next) {
        out.push_back({{}, f->tag});
        for (const geolib::_s_hd_sect_* v = f->sect; v != nullptr; v = v->next)
            out.back().pts.push_back(v->pt);
    }
    return out;
}

inline bool same(P a, P b, double tol = 0.0) {
    return vgtest::near3(a, b, tol);
}

/// Each line i runs from corner lines[i][0] to corner lines[i][1] (owner -1); each face i
/// lists the corners faces[i] in order.
inline void expectOrders(const geolib::_s_hd_prof_* obj, const std::vector<P>& corners,
                         const std::vector<std::vector<int>>& lines,
                         const std::vector<std::vector<int>>& faces) {
    const auto got = linesOf(obj->proline);
    ASSERT_EQ(got.size(), lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_TRUE(same(got[i]->start, corners[lines[i][0]])) << "start of line " << i;
        EXPECT_TRUE(same(got[i]->end, corners[lines[i][1]])) << "end of line " << i;
        EXPECT_EQ(got[i]->owner, -1) << "line " << i;
    }
    const auto gotFaces = facesOf(obj);
    ASSERT_EQ(gotFaces.size(), faces.size());
    for (size_t i = 0; i < faces.size(); ++i) {
        std::vector<P> want;
        for (int k : faces[i])
            want.push_back(corners[static_cast<size_t>(k)]);
        EXPECT_TRUE(vgtest::samePoints(gotFaces[i].pts, want, 0.0)) << "face " << i;
    }
}

/// Each call, with each of its allocations failing in turn, leaks nothing (what it gives back,
/// an object or null, is released).
inline void expectNoLeaks(const std::vector<std::function<geolib::_s_hd_prof_*()>>& calls) {
    for (const auto& call : calls) {
        vgtest::forEachAllocationFailure([&] {
            geolib::_s_hd_prof_* obj = call();
            geolib::freeHDProfObjectPointer(obj);
        });
    }
}

/// Chords run head to tail: each starts exactly where the previous one ended.
inline void expectHeadToTail(const std::vector<Line>& lines) {
    for (size_t i = 1; i < lines.size(); ++i)
        EXPECT_TRUE(same(lines[i - 1]->end, lines[i]->start)) << "chord " << i;
}

/// a + s b, s a, and a scaled to unit length (a must not be null).
inline P add(P a, P b, double s = 1.0) {
    return {a.x + s * b.x, a.y + s * b.y, a.z + s * b.z};
}
inline P scaled(double s, P a) {
    return {s * a.x, s * a.y, s * a.z};
}
inline P unit(P a) {
    return scaled(1.0 / solid::norm(a), a);
}

/// Unit vectors u, v square to the unit n, with u x v = n.
inline void squareTo(P n, P& u, P& v) {
    u = unit(solid::cross(n, std::fabs(n.x) < 0.6 ? P{1, 0, 0} : P{0, 1, 0}));
    v = solid::cross(n, u);
}

/// Distance of p from the circle of radius r about centre with unit normal n.
inline double circleDist(P p, P centre, P n, double r) {
    const P q = {p.x - centre.x, p.y - centre.y, p.z - centre.z};
    const double h = q.x * n.x + q.y * n.y + q.z * n.z;
    const P in = {q.x - h * n.x, q.y - h * n.y, q.z - h * n.z};
    return std::hypot(h, std::sqrt(in.x * in.x + in.y * in.y + in.z * in.z) - r);
}

/// A closed solid made of well-formed faces, wound outward, held by its box, whose vertices lie
/// on the analytic surface (dist, within 1e-12 of the object's size). Returns the size.
inline double expectSolidOnSurface(const geolib::_s_hd_prof_* obj,
                                   const std::function<double(P)>& dist, const char* what) {
    const double size = solid::size(obj);
    expectWellFormedFaces(obj, what);
    expectClosedOutward(obj, what);
    expectBoxHolds(obj, what);
    expectOnSurface(obj, dist, 1e-12 * size, what);
    return size;
}

}  // namespace hdtest

#endif  // VOGEBASIC_TESTS_HD_WALK_H
