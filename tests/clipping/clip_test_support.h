// Building polygons and reading interval lists in the clipping tests, and the checks of the
// clipping's promises that the unit tests and the clipping fuzz target share.
#ifndef VOGEBASIC_TESTS_CLIP_TEST_SUPPORT_H
#define VOGEBASIC_TESTS_CLIP_TEST_SUPPORT_H

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "clip_convert.h"
#include "clip_records.h"
#include "tests/support/test_constants.h"

namespace vgtest {

using Intervals = std::vector<std::pair<double, double>>;

/// The intervals of a list, in list order.
inline Intervals intervalsOf(const geolib::paramt* list) {
    Intervals out;
    for (const geolib::paramt* p = list; p != nullptr; p = p->next)
        out.emplace_back(p->t0, p->t1);
    return out;
}

/// A list with the given intervals (for a test: allocations are not checked).
inline geolib::paramt* listOf(const Intervals& iv) {
    geolib::paramt* head = nullptr;
    for (auto i = iv.rbegin(); i != iv.rend(); ++i) {
        geolib::paramt* p = geolib::mallocParamt(false);
        p->t0 = i->first;
        p->t1 = i->second;
        p->next = head;
        head = p;
    }
    return head;
}

/// Sorted, disjoint, non-empty intervals within [lo, hi]; with a slack, an interval may be empty
/// and overlap the one before by up to that much.
inline bool ordered(const Intervals& iv, double lo, double hi, double slack = 0.0) {
    double last = lo + slack;
    for (const auto& i : iv) {
        const bool forward = i.first < i.second || (slack > 0.0 && i.first == i.second);
        if (!(last - slack <= i.first && forward && i.second <= hi))
            return false;
        last = i.second;
    }
    return true;
}

/// x lies in one of the intervals (one with t1 < t0 wraps through the end of the turn).
inline bool holds(const Intervals& iv, double x) {
    for (const auto& i : iv) {
        if (i.second < i.first ? (x >= i.first || x <= i.second) : (x >= i.first && x <= i.second))
            return true;
    }
    return false;
}

/// A polygon through the corners (x, y) at z = 0, in the given order.
inline geolib::convex* polygonOf(const std::vector<std::pair<double, double>>& xy) {
    std::vector<VoGePoint3D> pts;
    for (const auto& p : xy)
        pts.emplace_back(p.first, p.second, 0.0);
    return geolib::transPtArray2Convex(pts);
}

/// Signed plan area (positive counter-clockwise) of the first polygon of the list.
inline double signedArea(const geolib::convex* poly) {
    std::vector<VoGePoint3D> pts;
    geolib::transConvex2PtArray(poly, pts);
    double a = 0.0;
    for (std::size_t i = 0, n = pts.size(); i < n; ++i)
        a += pts[i].x * pts[(i + 1) % n].y - pts[(i + 1) % n].x * pts[i].y;
    return 0.5 * a;
}

/// Convex by the splitting's own measure: with edges shorter than 0.001 merged away, no corner
/// turns right (unit directions' cross product below -0.001) or back, and the ring turns once.
inline bool convexRing(std::vector<VoGePoint3D> c) {
    std::vector<VoGePoint3D> m;
    if (!c.empty())  // merged as the splitting merges them: from the head edge's end
        std::rotate(c.begin(), c.begin() + 1, c.end());
    for (const VoGePoint3D& p : c) {
        if (m.empty() || std::hypot(p.x - m.back().x, p.y - m.back().y) >= 0.001)
            m.push_back(p);
    }
    while (m.size() > 1 && std::hypot(m.back().x - m[0].x, m.back().y - m[0].y) < 0.001)
        m.pop_back();
    if (m.size() < 3)
        return true;
    double turned = 0.0;
    for (size_t i = 0, n = m.size(); i < n; ++i) {
        const VoGePoint3D &a = m[i], &b = m[(i + 1) % n], &d = m[(i + 2) % n];
        const double l1 = std::hypot(b.x - a.x, b.y - a.y), l2 = std::hypot(d.x - b.x, d.y - b.y);
        const double cross = ((b.x - a.x) * (d.y - b.y) - (b.y - a.y) * (d.x - b.x)) / (l1 * l2);
        const double dot = ((b.x - a.x) * (d.x - b.x) + (b.y - a.y) * (d.y - b.y)) / (l1 * l2);
        if (cross < -0.001 || (dot < 0.0 && cross < 0.001))
            return false;  // a right turn, or the ring turning back on itself
        turned += std::atan2(cross, dot);
    }
    return std::fabs(turned - kTwoPi) < 0.1;
}

/// Where a point lies against a ring, worked out apart from the clipping: inside its region (by
/// the crossing rule, not the edges' half-planes: a ring that is convex by the splitting's
/// measure may still carry a tiny notch), its distance to the nearest edge, and the length of the
/// shortest edge.
struct RingPlace {
    bool inside;
    double nearest, shortest;
};
inline RingPlace placeInRing(const std::vector<VoGePoint3D>& c, double x, double y) {
    RingPlace out{false, HUGE_VAL, HUGE_VAL};
    for (size_t i = 0, n = c.size(); i < n; ++i) {
        const VoGePoint3D &p = c[i], &q = c[(i + 1) % n];
        if ((p.y > y) != (q.y > y) && x < p.x + (y - p.y) * (q.x - p.x) / (q.y - p.y))
            out.inside = !out.inside;
        const double dx = q.x - p.x, dy = q.y - p.y, l2 = dx * dx + dy * dy;
        double t = l2 > 0.0 ? ((x - p.x) * dx + (y - p.y) * dy) / l2 : 0.0;
        t = std::fmin(1.0, std::fmax(0.0, t));
        out.nearest = std::fmin(out.nearest, std::hypot(x - p.x - t * dx, y - p.y - t * dy));
        if (l2 > 0.0)
            out.shortest = std::fmin(out.shortest, std::sqrt(l2));
    }
    return out;
}

}  // namespace vgtest

#endif  // VOGEBASIC_TESTS_CLIP_TEST_SUPPORT_H
