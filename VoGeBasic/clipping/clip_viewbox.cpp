#include "clip_viewbox.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include "VoGeVector3D.h"
#include "clip_convert.h"
#include "clip_trim.h"
#include "clipping/clip_tolerances.h"
#include "core/constants.h"

namespace geolib {

void getBoxAlongPipe(const VoGePoint3D& a, const VoGePoint3D& b, double width,
                     std::vector<VoGePoint3D>& out) {
    const VoGeVector3D d = b - a;
    const VoGeVector3D n = VoGeVector3D(-d.y, d.x, 0.0).normalize();
    const double h = 0.5 * width;
    const VoGePoint3D corners[4] = {a + n * h, a - n * h, b - n * h, b + n * h};
    out.reserve(out.size() + 4);  // all four corners or, if that allocation fails, none
    for (VoGePoint3D c : corners) {
        c.z = 0.0;
        out.push_back(c);
    }
}

void get3DBoxProject2d(const VoGePoint3D& p, const VoGePoint3D& q, std::vector<VoGePoint3D>& xy,
                       std::vector<VoGePoint3D>& yz, std::vector<VoGePoint3D>& xz) {
    const double midY = (p.y + q.y) / 2.0;
    const double midZ = (p.z + q.z) / 2.0;
    // Room in all three first: a failed allocation leaves all three as they were.
    xy.reserve(xy.size() + 4);
    yz.reserve(yz.size() + 4);
    xz.reserve(xz.size() + 4);
    getBoxAlongPipe(VoGePoint3D(p.x, midY, 0.0), VoGePoint3D(q.x, midY, 0.0), q.y - p.y, xy);
    getBoxAlongPipe(VoGePoint3D(p.y, midZ, 0.0), VoGePoint3D(q.y, midZ, 0.0), q.z - p.z, yz);
    getBoxAlongPipe(VoGePoint3D(p.x, midZ, 0.0), VoGePoint3D(q.x, midZ, 0.0), q.z - p.z, xz);
}

namespace {

// The three principal views; each shows two coordinates of a point.
enum class View { plan, side, front };

struct ViewAxes {
    unsigned int first;
    unsigned int second;
};

ViewAxes axesOf(View v) {
    switch (v) {
        case View::plan:
            return {0, 1};
        case View::side:
            return {1, 2};
        case View::front:
            break;
    }
    return {0, 2};
}

// The three view rectangles of a box as polygons, given back on every way out.
struct ViewPolygons {
    convex* poly[3] = {nullptr, nullptr, nullptr};

    ViewPolygons() = default;
    ViewPolygons(const ViewPolygons&) = delete;
    ViewPolygons& operator=(const ViewPolygons&) = delete;
    ~ViewPolygons() {
        for (convex*& p : poly)
            freeConvex(p);
    }
    convex* of(View v) const { return poly[static_cast<int>(v)]; }
};

}  // namespace

bool viewBoxTrimLine(const Box3D* box, const VoGePoint3D& p0, const VoGePoint3D& p1, double& u0,
                     double& u1) {
    if (box == nullptr)
        return false;
    // A piece with a coordinate that is not finite has no place in any view: it misses.
    const double coords[6] = {p0.x, p0.y, p0.z, p1.x, p1.y, p1.z};
    for (double c : coords) {
        if (!std::isfinite(c)) {
            u0 = 1.0;
            u1 = 0.0;
            return false;
        }
    }
    std::vector<VoGePoint3D> rings[3];
    get3DBoxProject2d(box->min, box->max, rings[0], rings[1], rings[2]);
    ViewPolygons views;
    for (int i = 0; i < 3; ++i) {
        views.poly[i] = transPtArray2Convex(rings[i]);
        if (views.poly[i] == nullptr)
            return false;
    }
    // The unset range: the empty-box sentinels.
    u0 = -core::kEmptyPlanBoxMin;
    u1 = core::kEmptyPlanBoxMin;

    const double dx = std::fabs(p1.x - p0.x);
    const double dy = std::fabs(p1.y - p0.y);
    const double dz = std::fabs(p1.z - p0.z);
    const double tol = clip::kViewPointTol;
    const bool pointInPlan = dx < tol && dy < tol;
    const bool pointInSide = dy < tol && dz < tol;
    const bool pointInFront = dx < tol && dz < tol;
    View order[3] = {View::plan, View::side, View::front};
    std::size_t count = 3;
    if (pointInPlan) {  // along z
        order[0] = View::front;
        order[1] = View::side;
        count = 2;
    } else if (pointInFront) {  // along y
        count = 2;
    } else if (pointInSide) {  // along x
        order[1] = View::front;
        count = 2;
    }

    for (std::size_t i = 0; i < count; ++i) {
        const ViewAxes ax = axesOf(order[i]);
        double s[3] = {p0[ax.first], p0[ax.second], 0.0};
        double e[3] = {p1[ax.first], p1[ax.second], 0.0};
        double lo = 0.0;
        double hi = 0.0;
        if (!box2DTrimLine(views.of(order[i]), s, e, lo, hi))
            return false;
        if (hi < lo) {  // this view misses the piece
            u0 = 1.0;
            u1 = 0.0;
            return false;
        }
        if (lo > u0)
            u0 = lo;
        if (hi < u1)
            u1 = hi;
    }
    // Each view may see the piece cross the box where the others do not (a thin box, its side
    // values measured without regard to the edge's length): what the views have in common is
    // what passes through the box, and when they have nothing in common the piece misses it.
    if (u1 < u0) {
        u0 = 1.0;
        u1 = 0.0;
        return false;
    }
    return true;
}

bool isLineCrossBox3d(const VoGePoint3D& p0, const VoGePoint3D& p1, const VoGePoint3D& lo,
                      const VoGePoint3D& hi) {
    // The segment's parameter range inside each slab, narrowed axis by axis.
    double tIn = 0.0;
    double tOut = 1.0;
    for (unsigned int i = 0; i < 3; ++i) {
        const double from = p0[i];
        const double d = p1[i] - p0[i];
        const double low = lo[i] - core::kBoxSideTol;
        const double high = hi[i] + core::kBoxSideTol;
        if (std::isnan(from) || std::isnan(d) || std::isnan(low) || std::isnan(high))
            return false;
        if (d == 0.0) {
            if (from < low || from > high)
                return false;
            continue;
        }
        double ta = (low - from) / d;
        double tb = (high - from) / d;
        if (std::isnan(ta) || std::isnan(tb))
            return false;
        if (ta > tb)
            std::swap(ta, tb);
        if (ta > tIn)
            tIn = ta;
        if (tb < tOut)
            tOut = tb;
        if (tIn > tOut)
            return false;
    }
    return true;
}

namespace {

bool boundOf(const VoGePoint3D* pts, std::size_t n, Box3D& box) {
    if (n == 0)
        return false;
    Box3D b;
    b.set(pts[0], pts[0]);
    for (std::size_t k = 0; k < n; ++k) {
        for (unsigned int i = 0; i < 3; ++i) {
            const double v = pts[k][i];
            if (std::isnan(v))
                return false;
            if (v < b.min[i])
                b.min[i] = v;
            if (v > b.max[i])
                b.max[i] = v;
        }
    }
    box = b;
    return true;
}

}  // namespace

bool getBoxBoundary(const std::vector<VoGePoint3D>& pts, Box3D& box) {
    return boundOf(pts.data(), pts.size(), box);
}

bool getBoxBoundary(const BoxP4& p4, Box3D& box) {
    const VoGeVector3D e2 = p4.p2 - p4.p0;
    const VoGeVector3D e3 = p4.p3 - p4.p0;
    const VoGePoint3D corners[8] = {p4.p0,      p4.p1,      p4.p2,      p4.p3,
                                    p4.p1 + e2, p4.p1 + e3, p4.p2 + e3, p4.p1 + e2 + e3};
    return boundOf(corners, 8, box);
}

}  // namespace geolib
