// Building polygons and reading interval lists in the clipping tests.
#ifndef VOGEBASIC_TESTS_CLIP_TEST_SUPPORT_H
#define VOGEBASIC_TESTS_CLIP_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "clip_convert.h"
#include "clip_records.h"
#include "support/test_constants.h"

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

/// Sorted, disjoint, non-empty intervals within [lo, hi].
inline bool ordered(const Intervals& iv, double lo, double hi) {
    double last = lo;
    for (const auto& i : iv) {
        if (!(last <= i.first && i.first < i.second && i.second <= hi))
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

}  // namespace vgtest

#endif  // VOGEBASIC_TESTS_CLIP_TEST_SUPPORT_H
