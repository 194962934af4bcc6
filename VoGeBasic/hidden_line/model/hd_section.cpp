#include "hidden_line/model/hd_section.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "VoGePoint3D.h"
#include "clip_convert.h"
#include "clip_trim.h"

namespace geolib {
namespace hd {

namespace {

double cross2(Pt2 a, Pt2 b) {
    return a.x * b.y - a.y * b.x;
}

Pt2 minus(Pt2 a, Pt2 b) {
    return {a.x - b.x, a.y - b.y};
}

double length2(Pt2 a) {
    return std::hypot(a.x, a.y);
}

// Parameter of the foot of p on the line a -> b, and the distance of p from the segment.
double segmentParam(Pt2 p, Pt2 a, Pt2 b) {
    const Pt2 ab = minus(b, a);
    const double l2 = ab.x * ab.x + ab.y * ab.y;
    return l2 > 0.0 ? ((p.x - a.x) * ab.x + (p.y - a.y) * ab.y) / l2 : 0.0;
}

double pointSegmentDist(Pt2 p, Pt2 a, Pt2 b) {
    const double t = std::min(1.0, std::max(0.0, segmentParam(p, a, b)));
    return length2({p.x - a.x - t * (b.x - a.x), p.y - a.y - t * (b.y - a.y)});
}

// Distance between the segments a-b and c-d: 0 when they cross.
double segmentDist(Pt2 a, Pt2 b, Pt2 c, Pt2 d) {
    const double o1 = cross2(minus(b, a), minus(c, a));
    const double o2 = cross2(minus(b, a), minus(d, a));
    const double o3 = cross2(minus(d, c), minus(a, c));
    const double o4 = cross2(minus(d, c), minus(b, c));
    if (((o1 > 0.0 && o2 < 0.0) || (o1 < 0.0 && o2 > 0.0)) &&
        ((o3 > 0.0 && o4 < 0.0) || (o3 < 0.0 && o4 > 0.0)))
        return 0.0;
    return std::min(std::min(pointSegmentDist(a, c, d), pointSegmentDist(b, c, d)),
                    std::min(pointSegmentDist(c, a, b), pointSegmentDist(d, a, b)));
}

// A counter-clockwise outline is simple and not degenerate: edges of some length, no edge
// turning back on the one before, non-adjacent edges kept apart, an area.
bool simpleOutline(const std::vector<Pt2>& ol, double area2) {
    const std::size_t n = ol.size();
    if (!(area2 > 0.0))
        return false;
    for (std::size_t i = 0; i < n; ++i) {
        const Pt2 u = minus(ol[(i + 1) % n], ol[i]);
        const Pt2 w = minus(ol[(i + 2) % n], ol[(i + 1) % n]);
        const double lu = length2(u);
        if (!(lu >= kOutlineTol))
            return false;
        const double lw = length2(w);
        if (u.x * w.x + u.y * w.y < 0.0 && std::fabs(cross2(u, w)) < kOutlineTol * lu * lw)
            return false;
    }
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 2; j < n; ++j) {
            if (i == 0 && j == n - 1)
                continue;
            if (segmentDist(ol[i], ol[i + 1], ol[j], ol[(j + 1) % n]) < kOutlineTol)
                return false;
        }
    return true;
}

// The index of the vertex at p, added (inside the outline) when there is none. A point the
// splitting computed within kOutlineTol of a vertex is that vertex: the outline's own vertices lie
// further apart.
int vertexAt(Section& s, Pt2 p) {
    for (std::size_t k = 0; k < s.pts.size(); ++k)
        if (length2(minus(s.pts[k], p)) < kOutlineTol)
            return static_cast<int>(k);
    s.pts.push_back(p);
    s.edge.push_back(-1);
    s.param.push_back(0.0);
    return static_cast<int>(s.pts.size()) - 1;
}

// The vertices other than a and b that lie on the segment a-b (within kOutlineTol, away from its
// ends), in order from a.
std::vector<int> pointsOn(const Section& s, int a, int b) {
    std::vector<std::pair<double, int>> on;
    const Pt2 pa = s.pts[a], pb = s.pts[b];
    const double len = length2(minus(pb, pa));
    for (std::size_t k = 0; k < s.pts.size(); ++k) {
        if (static_cast<int>(k) == a || static_cast<int>(k) == b)
            continue;
        const double t = segmentParam(s.pts[k], pa, pb);
        if (t * len > kOutlineTol && (1.0 - t) * len > kOutlineTol &&
            pointSegmentDist(s.pts[k], pa, pb) <= kOutlineTol)
            on.emplace_back(t, static_cast<int>(k));
    }
    std::sort(on.begin(), on.end());
    std::vector<int> out;
    for (const auto& [t, k] : on)
        out.push_back(k);
    return out;
}

// True when the ring turns left at b by more than a straight corner.
bool strictCorner(const Section& s, int a, int b, int c) {
    const Pt2 u = minus(s.pts[b], s.pts[a]);
    const Pt2 w = minus(s.pts[c], s.pts[b]);
    return cross2(u, w) > kStraightCornerSine * length2(u) * length2(w);
}

// True when the ring, cut short so that it runs a -> b -> c, still turns left or runs straight
// on at b (a cut whose chord lies along a straight side would fold the ring back on itself).
bool keepsConvex(const Section& s, int a, int b, int c) {
    const Pt2 u = minus(s.pts[b], s.pts[a]);
    const Pt2 w = minus(s.pts[c], s.pts[b]);
    const double turn = cross2(u, w);
    const double tol = kStraightCornerSine * length2(u) * length2(w);
    return turn > tol || (turn > -tol && u.x * w.x + u.y * w.y > 0.0);
}

// Cuts a convex ring (which may hold points on its straight sides) into triangles and
// quadrilaterals with a true corner at every vertex: a quadrilateral off two neighbouring corners
// where it is strictly convex, otherwise a triangle off one corner.
void splitConvexRing(Section& s, std::vector<int> ring) {
    auto at = [&](std::size_t i) { return ring[i % ring.size()]; };
    while (ring.size() >= 3) {
        const std::size_t m = ring.size();
        bool cut = false;
        for (std::size_t i = 0; i < m && !cut && m >= 4; ++i) {
            const int q[4] = {at(i), at(i + 1), at(i + 2), at(i + 3)};
            if (strictCorner(s, q[3], q[0], q[1]) && strictCorner(s, q[0], q[1], q[2]) &&
                strictCorner(s, q[1], q[2], q[3]) && strictCorner(s, q[2], q[3], q[0]) &&
                (m == 4 || (keepsConvex(s, at(i + m - 1), q[0], q[3]) &&
                            keepsConvex(s, q[0], q[3], at(i + 4))))) {
                s.caps.push_back({q[0], q[1], q[2], q[3]});
                if (m == 4)
                    return;
                std::vector<int> rest;
                for (std::size_t k = 0; k < m; ++k)
                    if (k != (i + 1) % m && k != (i + 2) % m)
                        rest.push_back(ring[k]);
                ring.swap(rest);
                cut = true;
            }
        }
        for (std::size_t i = 0; i < m && !cut; ++i) {
            if (strictCorner(s, at(i + m - 1), at(i), at(i + 1)) &&
                (m == 3 || (keepsConvex(s, at(i + m - 2), at(i + m - 1), at(i + 1)) &&
                            keepsConvex(s, at(i + m - 1), at(i + 1), at(i + 2))))) {
                s.caps.push_back({at(i + m - 1), at(i), at(i + 1), -1});
                ring.erase(ring.begin() + static_cast<long>(i));
                cut = true;
            }
        }
        if (!cut)
            return;  // what is left has no area
    }
}

struct ConvexList {
    convex* head = nullptr;
    ~ConvexList() { freeConvex(head); }
};

}  // namespace

bool readOutline(const point* list, bool flat, std::vector<_s_hd_point_>& out) {
    out.clear();
    int read = 0;
    for (const point* p = list; p != nullptr; p = p->next) {
        if (++read > kMaxOutlinePoints + 1)
            return false;
        const _s_hd_point_ q = {p->pt.x, p->pt.y, flat ? 0.0 : p->pt.z};
        if (!std::isfinite(q.x) || !std::isfinite(q.y) || !std::isfinite(q.z))
            return false;
        if (!out.empty() && out.back().x == q.x && out.back().y == q.y && out.back().z == q.z)
            continue;
        out.push_back(q);
    }
    if (out.size() > 1 && out.back().x == out[0].x && out.back().y == out[0].y &&
        out.back().z == out[0].z)
        out.pop_back();
    return out.size() >= 3 && out.size() <= static_cast<std::size_t>(kMaxOutlinePoints);
}

bool makeSection(std::vector<Pt2> outline, Section& s, bool& reversed) {
    const std::size_t n = outline.size();
    double area2 = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        area2 += cross2(minus(outline[i], outline[0]), minus(outline[(i + 1) % n], outline[0]));
    reversed = area2 < 0.0;
    if (reversed) {
        std::reverse(outline.begin(), outline.end());
        area2 = -area2;
    }
    if (n < 3 || !simpleOutline(outline, area2))
        return false;
    std::vector<VoGePoint3D> corners;
    for (const Pt2 p : outline)
        corners.emplace_back(p.x, p.y, 0.0);
    ConvexList polys;
    polys.head = transPtArray2Convex(corners);
    if (polys.head == nullptr || !ConvexIdentify(polys.head))
        return false;

    s = Section();
    s.pts = outline;
    for (std::size_t i = 0; i < n; ++i) {
        s.edge.push_back(static_cast<int>(i));
        s.param.push_back(0.0);
    }
    std::vector<std::vector<int>> pieces;
    for (const convex* poly = polys.head; poly != nullptr; poly = poly->next) {
        transConvex2PtArray(poly, corners);
        pieces.emplace_back();
        for (const VoGePoint3D& c : corners) {
            const int k = vertexAt(s, {c.x, c.y});
            if (pieces.back().empty() || pieces.back().back() != k)
                pieces.back().push_back(k);
        }
        while (pieces.back().size() > 1 && pieces.back().back() == pieces.back().front())
            pieces.back().pop_back();
    }
    // Points the splitting put on the outline's edges belong to those edges.
    for (std::size_t k = n; k < s.pts.size(); ++k)
        for (std::size_t i = 0; i < n && s.edge[k] < 0; ++i) {
            const Pt2 a = outline[i], b = outline[(i + 1) % n];
            const double len = length2(minus(b, a));
            const double t = segmentParam(s.pts[k], a, b);
            if (t * len > kOutlineTol && (1.0 - t) * len > kOutlineTol &&
                pointSegmentDist(s.pts[k], a, b) <= kOutlineTol) {
                s.edge[k] = static_cast<int>(i);
                s.param[k] = t;
            }
        }
    for (std::size_t i = 0; i < n; ++i) {
        s.boundary.push_back(static_cast<int>(i));
        const Pt2 u = minus(outline[i], outline[(i + n - 1) % n]);
        const Pt2 w = minus(outline[(i + 1) % n], outline[i]);
        s.sharp.push_back(std::fabs(cross2(u, w)) > kStraightCornerSine * length2(u) * length2(w));
        for (int k : pointsOn(s, static_cast<int>(i), static_cast<int>((i + 1) % n))) {
            s.boundary.push_back(k);
            s.sharp.push_back(0);
        }
    }
    // Every edge of a piece takes the points that lie on it, so that neighbouring pieces, and
    // the pieces and the sides, meet vertex to vertex.
    for (const std::vector<int>& piece : pieces) {
        if (piece.size() < 3)
            continue;
        std::vector<int> ring;
        for (std::size_t k = 0; k < piece.size(); ++k) {
            ring.push_back(piece[k]);
            for (int on : pointsOn(s, piece[k], piece[(k + 1) % piece.size()]))
                ring.push_back(on);
        }
        splitConvexRing(s, ring);
    }
    return !s.caps.empty();
}

}  // namespace hd
}  // namespace geolib
