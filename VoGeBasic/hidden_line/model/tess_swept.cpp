// Tessellators of swept solids: a straight member of any section, a plate or slab of any
// outline, and a member of any section bent along a circular arc.
//
// Each sweeps a closed plane outline (its section) through a row of stations: two for a straight
// sweep, one every chord and one at each silhouette along a bend. The section is split once into
// convex cap faces; every station holds all of its vertices, so the side between two stations is
// one planar quadrilateral per boundary edge (a parallelogram when straight, an isosceles
// trapezoid when bent about an axis in the section's plane), and the caps close the ends vertex
// to vertex.
#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_section.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

using hd::makeSection;
using hd::Pt2;
using hd::readOutline;
using hd::Section;

/// A plate's outline may leave the plane of its mean normal by this fraction of its size: points
/// computed in drawing coordinates carry rounding far below it, a warped outline far above it.
constexpr double kOutlinePlanarTol = 1e-6;
/// A bend's section holds at most this many points: the bend places a station at each of its
/// edges' silhouettes, and every station holds the whole section.
constexpr int kMaxBendSectionPoints = 256;
/// Stations of a bend closer than this angle (radians) are one: a silhouette that falls on a
/// chord's station is drawn along that station.
constexpr double kStationMergeAngle = 1e-6;

// The vertices of a section at each station of a sweep: pts[i * count + v] is vertex v at
// station i. A closed sweep joins its last station to its first and has no caps.
struct Sweep {
    const Section* section = nullptr;
    std::vector<_s_hd_point_> pts;
    int stations = 0;
    bool closed = false;
    double size = 0.0;

    _s_hd_point_ at(int station, int v) const {
        const std::size_t count = section->pts.size();
        return pts[static_cast<std::size_t>(station % stations) * count +
                   static_cast<std::size_t>(v)];
    }
};

// The object of a sweep. Faces: the first cap (unless closed), the side interval by interval,
// each round the boundary, the last cap. Lines: the first cap's outline, the last cap's, the
// edges along the sweep at the boundary's corners (and wherever two side strips turn opposite
// ways to the view) corner by corner, then the silhouettes across a strip at a station.
_s_hd_prof_* buildSweep(const Sweep& w) {
    for (const _s_hd_point_& p : w.pts)
        if (!isFinitePoint(p))
            return nullptr;
    const Section& s = *w.section;
    const int nb = static_cast<int>(s.boundary.size());
    const int last = w.stations - 1;
    const int intervals = w.closed ? w.stations : last;
    auto bv = [&](int j) { return s.boundary[static_cast<std::size_t>(j % nb)]; };
    std::vector<int> side(static_cast<std::size_t>(intervals) * static_cast<std::size_t>(nb));
    auto sideOf = [&](int i, int j) -> int& {
        return side[static_cast<std::size_t>(i) * static_cast<std::size_t>(nb) +
                    static_cast<std::size_t>((j + nb) % nb)];
    };
    for (int i = 0; i < intervals; ++i)
        for (int j = 0; j < nb; ++j)
            sideOf(i, j) = quadViewSide(w.at(i, bv(j)), w.at(i, bv(j + 1)), w.at(i + 1, bv(j + 1)),
                                        w.at(i + 1, bv(j)));

    HDProfDraft draft;
    draft.seedBox(w.at(0, bv(0)));
    for (int i = 0; i < w.stations; ++i)
        for (int j = 0; j < nb; ++j)
            draft.extendBox(w.at(i, bv(j)));
    if (!w.closed)
        for (std::size_t v = 0; v < s.pts.size(); ++v) {
            draft.extendBox(w.at(0, static_cast<int>(v)));
            draft.extendBox(w.at(last, static_cast<int>(v)));
        }
    auto addCaps = [&](int station, bool reversed) {
        for (const auto& f : s.caps) {
            const int count = f[3] < 0 ? 3 : 4;
            _s_hd_point_ p[4];
            for (int k = 0; k < count; ++k)
                p[k] =
                    w.at(station, f[static_cast<std::size_t>(reversed ? (count - k) % count : k)]);
            if (count == 3)
                draft.addTri(p[0], p[1], p[2]);
            else
                draft.addPlanarQuad(p[0], p[1], p[2], p[3], w.size);
        }
    };
    if (!w.closed)
        addCaps(0, true);
    for (int i = 0; i < intervals; ++i)
        for (int j = 0; j < nb; ++j)
            draft.addPlanarQuad(w.at(i, bv(j)), w.at(i, bv(j + 1)), w.at(i + 1, bv(j + 1)),
                                w.at(i + 1, bv(j)), w.size);
    if (!w.closed)
        addCaps(last, false);

    for (int end = 0; end < 2 && !w.closed; ++end)
        for (int j = 0; j < nb; ++j)
            draft.addLine(w.at(end * last, bv(j)), w.at(end * last, bv(j + 1)));
    for (int j = 0; j < nb; ++j)
        for (int i = 0; i < intervals; ++i)
            if (s.sharp[static_cast<std::size_t>(j)] != 0 || sideOf(i, j - 1) * sideOf(i, j) < 0)
                draft.addLine(w.at(i, bv(j)), w.at(i + 1, bv(j)));
    for (int i = w.closed ? 0 : 1; i < (w.closed ? w.stations : last); ++i)
        for (int j = 0; j < nb; ++j)
            if (sideOf((i + intervals - 1) % intervals, j) * sideOf(i, j) < 0)
                draft.addLine(w.at(i, bv(j)), w.at(i, bv(j + 1)));
    return draft.finish();
}

std::vector<Pt2> flatten(const std::vector<_s_hd_point_>& pts) {
    std::vector<Pt2> out;
    for (const _s_hd_point_& p : pts)
        out.push_back({p.x, p.y});
    return out;
}

double sectionExtent(const Section& s) {
    double lo[2] = {HUGE_VAL, HUGE_VAL}, hi[2] = {-HUGE_VAL, -HUGE_VAL};
    for (const Pt2 p : s.pts) {
        lo[0] = std::min(lo[0], p.x);
        hi[0] = std::max(hi[0], p.x);
        lo[1] = std::min(lo[1], p.y);
        hi[1] = std::max(hi[1], p.y);
    }
    return std::hypot(hi[0] - lo[0], hi[1] - lo[1]);
}

// The unit vector along v with its component along the unit t removed; the zero vector when v
// lies within kMinAxisCutCosine of t (or is null).
_s_hd_point_ squareTo(_s_hd_point_ v, _s_hd_point_ t) {
    const _s_hd_point_ p = linComb(1.0, v, -vecDot(v, t), t);
    if (!(vecLength(p) >= hd::kMinAxisCutCosine * vecLength(v)))
        return {0.0, 0.0, 0.0};
    return vecNormalize(p);
}

// A plate: the outline's points extruded by dir (alongNormal false) or by t along the outline's
// own unit normal (alongNormal true).
_s_hd_prof_* divideOutline(point* outline, bool alongNormal, _s_hd_point_ dir, double t) {
    std::vector<_s_hd_point_> pts;
    if (!readOutline(outline, false, pts) || !isFinitePoint(dir) || !std::isfinite(t))
        return nullptr;
    const _s_hd_point_ p0 = pts[0];
    _s_hd_point_ normal = {0.0, 0.0, 0.0};
    double lo[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, hi[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (std::size_t i = 0; i < pts.size(); ++i) {
        const _s_hd_point_ a = vecSub(pts[i], p0), b = vecSub(pts[(i + 1) % pts.size()], p0);
        normal = vecAdd(normal, vecCross(a, b));
        const double c[3] = {pts[i].x, pts[i].y, pts[i].z};
        for (int k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], c[k]);
            hi[k] = std::max(hi[k], c[k]);
        }
    }
    const double extent =
        std::sqrt((hi[0] - lo[0]) * (hi[0] - lo[0]) + (hi[1] - lo[1]) * (hi[1] - lo[1]) +
                  (hi[2] - lo[2]) * (hi[2] - lo[2]));
    const _s_hd_point_ n = vecNormalize(normal);
    if (vecLength(n) == 0.0 || !std::isfinite(extent))
        return nullptr;
    for (const _s_hd_point_& p : pts)
        if (!(std::fabs(vecDot(vecSub(p, p0), n)) <= kOutlinePlanarTol * extent))
            return nullptr;
    const _s_hd_point_ d = alongNormal ? vecScale(t, n) : dir;
    const double length = vecLength(d);
    if (!(length > 0.0) || !(std::fabs(vecDot(d, n)) >= hd::kMinAxisCutCosine * length))
        return nullptr;
    // The section's frame: u x v along the extrusion's side of the plane.
    const _s_hd_point_ up = vecDot(d, n) > 0.0 ? n : vecNegate(n);
    const _s_hd_point_ u = unitCross(
        up, std::fabs(up.x) < 0.6 ? _s_hd_point_{1.0, 0.0, 0.0} : _s_hd_point_{0.0, 1.0, 0.0});
    const _s_hd_point_ v = vecCross(up, u);
    std::vector<Pt2> flat;
    for (const _s_hd_point_& p : pts)
        flat.push_back({vecDot(vecSub(p, p0), u), vecDot(vecSub(p, p0), v)});
    Section s;
    bool reversed = false;
    if (!makeSection(flat, s, reversed))
        return nullptr;
    if (reversed)
        std::reverse(pts.begin(), pts.end());
    Sweep w;
    w.section = &s;
    w.stations = 2;
    w.size = std::max(extent, length);
    const std::size_t count = s.pts.size();
    w.pts.resize(2 * count);
    for (std::size_t k = 0; k < count; ++k) {
        const int e = s.edge[k];
        _s_hd_point_ p;
        if (e < 0) {
            p = linComb(1.0, linComb(1.0, p0, s.pts[k].x, u), s.pts[k].y, v);
        } else {
            const _s_hd_point_ a = pts[static_cast<std::size_t>(e)];
            const _s_hd_point_ b = pts[(static_cast<std::size_t>(e) + 1) % pts.size()];
            p = s.param[k] == 0.0 ? a : linComb(1.0, a, s.param[k], vecSub(b, a));
        }
        w.pts[k] = p;
        w.pts[count + k] = vecAdd(p, d);
    }
    return buildSweep(w);
}

}  // namespace

_s_hd_prof_* ep_divide_str(point* profile, _s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ ydir) {
    try {
        std::vector<_s_hd_point_> pts;
        if (!readOutline(profile, true, pts) || !isFinitePoint(a) || !isFinitePoint(b) ||
            !isFinitePoint(ydir))
            return nullptr;
        const _s_hd_point_ axis = vecSub(b, a);
        const double length = vecLength(axis);
        const _s_hd_point_ z = vecNormalize(axis);
        const _s_hd_point_ y = squareTo(ydir, z);
        if (!(length > 0.0) || !std::isfinite(length) || vecLength(y) == 0.0)
            return nullptr;
        const _s_hd_point_ x = vecCross(y, z);
        Section s;
        bool reversed = false;
        if (!makeSection(flatten(pts), s, reversed))
            return nullptr;
        Sweep w;
        w.section = &s;
        w.stations = 2;
        w.size = std::max(length, sectionExtent(s));
        const std::size_t count = s.pts.size();
        w.pts.resize(2 * count);
        for (std::size_t k = 0; k < count; ++k) {
            w.pts[k] = linComb(1.0, linComb(1.0, a, s.pts[k].x, x), s.pts[k].y, y);
            w.pts[count + k] = vecAdd(w.pts[k], axis);
        }
        return buildSweep(w);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

_s_hd_prof_* ep_divide_pline(point* outline, _s_hd_point_ dir) {
    try {
        return divideOutline(outline, false, dir, 0.0);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

_s_hd_prof_* ep_divide_pline(point* outline, double t) {
    try {
        return divideOutline(outline, true, {0.0, 0.0, 0.0}, t);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

_s_hd_prof_* ep_divide_arc(point* profile, _s_hd_point_ c, _s_hd_point_ s, _s_hd_point_ axis,
                           double angle, _s_hd_point_ ydir) {
    try {
        std::vector<_s_hd_point_> pts;
        if (!readOutline(profile, true, pts) || pts.size() > kMaxBendSectionPoints ||
            !isFinitePoint(c) || !isFinitePoint(s) || !isFinitePoint(axis) ||
            !isFinitePoint(ydir) || !std::isfinite(angle) || !(angle > 0.0) ||
            angle > core::kFullTurn + hd::kSweepTol)
            return nullptr;
        const _s_hd_point_ k = vecNormalize(axis);
        const _s_hd_point_ r0 = vecSub(s, c);
        const double bend = vecLength(r0);
        if (vecLength(k) == 0.0 || !(bend >= hd::kMinDiscRadius) || !std::isfinite(bend) ||
            !(std::fabs(vecDot(r0, k)) <= hd::kBendPlaneTol * bend))
            return nullptr;
        const _s_hd_point_ e1 = vecNormalize(linComb(1.0, r0, -vecDot(r0, k), k));
        const _s_hd_point_ e2 = vecCross(k, e1);  // the bend's direction at s
        const _s_hd_point_ y = squareTo(ydir, e2);
        if (vecLength(y) == 0.0)
            return nullptr;
        const _s_hd_point_ x = vecCross(y, e2);
        Section sec;
        bool reversed = false;
        if (!makeSection(flatten(pts), sec, reversed))
            return nullptr;
        // Each vertex in the bend's half-plane: rho from the axis, zeta along it.
        const std::size_t count = sec.pts.size();
        std::vector<double> rho(count), zeta(count);
        double rmax = 0.0, zlo = HUGE_VAL, zhi = -HUGE_VAL;
        for (std::size_t v = 0; v < count; ++v) {
            const _s_hd_point_ q = linComb(1.0, linComb(1.0, r0, sec.pts[v].x, x), sec.pts[v].y, y);
            rho[v] = vecDot(q, e1);
            zeta[v] = vecDot(q, k);
            if (!(rho[v] >= hd::kMinDiscRadius))
                return nullptr;  // the section reaches the bend axis
            rmax = std::max(rmax, rho[v]);
            zlo = std::min(zlo, zeta[v]);
            zhi = std::max(zhi, zeta[v]);
        }
        const bool closed = angle >= core::kFullTurn - hd::kSweepTol;
        const double sweep = closed ? core::kFullTurn : angle;
        const int chords = getArcDivideNum(c, rmax, 0.0, sweep);
        // Seen along the axis (as a ring plate takes it: k.z within its facing tolerance of 1),
        // the walls about the axis are edge-on and their rims draw them: no silhouettes, as the
        // plate has none there.
        std::vector<double> silhouettes;
        const bool facing = std::fabs(std::fabs(k.z) - 1.0) <= hd::kFacingTol;
        const std::size_t nb = facing ? 0 : sec.boundary.size();
        // A strip swept by the section edge a-b has the normal -dzeta r(phi) + drho k, square to
        // Z where dzeta (e1.z cos phi + e2.z sin phi) = drho k.z.
        for (std::size_t j = 0; j < nb; ++j) {
            const std::size_t a = static_cast<std::size_t>(sec.boundary[j]);
            const std::size_t b = static_cast<std::size_t>(sec.boundary[(j + 1) % nb]);
            const double dz = zeta[b] - zeta[a], dr = rho[b] - rho[a];
            const double ca = dz * e1.z, cb = dz * e2.z, cc = dr * k.z;
            const double h = std::hypot(ca, cb);
            if (!(h > std::fabs(cc)))
                continue;
            const double half = std::acos(cc / h);
            if (half < hd::kSilhouetteMergeAngle || half > core::kPi - hd::kSilhouetteMergeAngle)
                continue;
            for (const double root : {std::atan2(cb, ca) - half, std::atan2(cb, ca) + half}) {
                double phi = std::fmod(root, core::kFullTurn);
                if (phi < 0.0)
                    phi += core::kFullTurn;
                silhouettes.push_back(phi);
            }
        }
        std::sort(silhouettes.begin(), silhouettes.end());
        // The bend is cut at the silhouettes strictly inside it (a closed ring runs from the
        // first round to it again), and the pieces share the chords as a ring plate's do, so
        // that a handrail on a ring plate, or a curved beam on one, has its vertices where the
        // plate has them.
        std::vector<double> breaks;
        if (!closed)
            breaks.push_back(0.0);
        for (const double phi : silhouettes) {
            const bool inside =
                closed || (phi > kStationMergeAngle && phi < sweep - kStationMergeAngle);
            if (inside && (breaks.empty() || phi - breaks.back() > kStationMergeAngle))
                breaks.push_back(phi);
        }
        if (closed) {
            if (breaks.empty())
                breaks.push_back(0.0);
            while (breaks.size() > 1 &&
                   breaks.front() + core::kFullTurn - breaks.back() <= kStationMergeAngle)
                breaks.pop_back();
            breaks.push_back(breaks.front() + core::kFullTurn);
        } else {
            breaks.push_back(sweep);
        }
        const int arcs = static_cast<int>(breaks.size()) - 1;
        std::vector<int> share(static_cast<std::size_t>(arcs));
        shareArcChords(breaks.data(), arcs, chords, share.data());
        std::vector<double> stations;
        for (int arc = 0; arc < arcs; ++arc) {
            const double b0 = breaks[static_cast<std::size_t>(arc)];
            const double b1 = breaks[static_cast<std::size_t>(arc) + 1];
            const int n = share[static_cast<std::size_t>(arc)];
            for (int i = 0; i < n; ++i)
                stations.push_back(b0 + (b1 - b0) * i / n);
        }
        if (!closed)
            stations.push_back(sweep);
        Sweep w;
        w.section = &sec;
        w.closed = closed;
        w.stations = static_cast<int>(stations.size());
        w.size = 2.0 * rmax + (zhi - zlo);
        for (const double phi : stations) {
            const _s_hd_point_ radial = linComb(std::cos(phi), e1, std::sin(phi), e2);
            for (std::size_t v = 0; v < count; ++v)
                w.pts.push_back(linComb(1.0, linComb(1.0, c, rho[v], radial), zeta[v], k));
        }
        return buildSweep(w);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace geolib
