// Tessellators of the ruled solids: the cone and cylinder, the eccentric cone, the snout and the
// cylinder with cut ends.
//
// Each is built from two rings of vertices, one round each end, with vertex k of one ring joined
// to vertex k of the other by a straight generator of the side. The vertices of both rings sit
// at common angles about the end planes' normal, so each side face between two generators is a
// planar trapezoid (a parallelogram on a cylinder). The side is developable: its normal is the
// same all along a generator, so its silhouette in the view along Z is made of whole generators,
// and a ring vertex is placed at each. The rings are closed by flat end faces that use the rim
// vertices themselves, so every edge is shared by exactly two faces.
#include <cmath>
#include <cstdlib>
#include <utility>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

const _s_hd_point_ kViewAxis = {0.0, 0.0, 1.0};

// The two rings of a ruled solid: vertex k of a and vertex k of b end one generator. Both run
// counter-clockwise about the direction from the a end to the b end. An end of radius 0 (the
// apex of a pointed cone) is a ring of one point repeated.
struct Rings {
    _s_hd_point_* a = nullptr;
    _s_hd_point_* b = nullptr;
    int count = 0;
    int silhouette[2] = {0, 0};  // ring indices of the silhouette generators ...
    int silhouettes = 0;         // ... of which there are 0 or 2
    bool apexA = false;
    bool apexB = false;

    Rings() = default;
    Rings(const Rings&) = delete;
    Rings& operator=(const Rings&) = delete;
    ~Rings() { std::free(a); }

    // Makes room for two rings of n vertices, dropping any made before.
    bool allocate(int n) {
        std::free(a);
        b = nullptr;
        count = 0;
        silhouettes = 0;
        a = static_cast<_s_hd_point_*>(std::malloc(2 * static_cast<size_t>(n) * sizeof(*a)));
        if (a == nullptr)
            return false;
        b = a + n;
        count = n;
        return true;
    }
};

// One flat end face over a ring, as a strip across it from the chord that closes the ring:
// quadrilaterals (P_i, P_i+1, P_j-1, P_j) for i = 0, 1, ... and j = count - 1, count - 2, ...,
// and a triangle where the two sides meet at an odd count. The ring runs counter-clockwise about
// the face's outward normal, or clockwise when reversed.
void addEndFace(HDProfDraft& draft, const _s_hd_point_* ring, int count, bool reversed,
                double size) {
    draft.addRingStrip(ring, count, reversed, size);
}

// The object of the rings. Faces: the side faces from generator k to k + 1 in ring order, the
// end face at a, the end face at b (an apex has none). Lines: the chords of rim a, of rim b,
// then the silhouette generators from a to b.
_s_hd_prof_* buildRuledSolid(const Rings& rings, double size) {
    const int n = rings.count;
    const _s_hd_point_* a = rings.a;
    const _s_hd_point_* b = rings.b;
    // Sizes near the largest double can overflow where the rings are made.
    for (int k = 0; k < n; ++k)
        if (!isFinitePoint(a[k]) || !isFinitePoint(b[k]))
            return nullptr;
    HDProfDraft draft;
    draft.seedBox(a[0]);
    for (int k = 0; k < n; ++k) {
        draft.extendBox(a[k]);
        draft.extendBox(b[k]);
    }
    for (int k = 0; k < n; ++k)
        draft.addPlanarQuad(a[k], a[(k + 1) % n], b[(k + 1) % n], b[k], size);
    if (!rings.apexA)
        addEndFace(draft, a, n, true, size);
    if (!rings.apexB)
        addEndFace(draft, b, n, false, size);
    for (int k = 0; k < n && !rings.apexA; ++k)
        draft.addLine(a[k], a[(k + 1) % n]);
    for (int k = 0; k < n && !rings.apexB; ++k)
        draft.addLine(b[k], b[(k + 1) % n]);
    for (int s = 0; s < rings.silhouettes; ++s)
        draft.addLine(a[rings.silhouette[s]], b[rings.silhouette[s]]);
    return draft.finish();
}

// An oblique cone: end circles about ca (radius ra) and cb (radius rb) in planes with the unit
// normal n, which points from the a end towards the b end. A radius of 0 is an apex.
struct ObliqueCone {
    _s_hd_point_ ca, cb;
    double ra, rb;
    _s_hd_point_ n;
    _s_hd_point_ u, v;  // ring angle theta lies at c + r (cos theta u + sin theta v); u x v = n
    bool snapped;       // n was within kFacingTol of the view axis and was made the view axis
};

// Validates and completes the cone: finite input, radii not negative and not both below
// kMinDiscRadius (one below it is an apex), an axis of some length that leaves the end planes.
// A normal within kFacingTol of the view axis is taken as the view axis itself, so both rims
// lie exactly in their planes. u is where the disc's rule splits a circle of normal n.
bool setUpCone(ObliqueCone& cone, double& size) {
    if (!isFinitePoint(cone.ca) || !isFinitePoint(cone.cb) || !isFinitePoint(cone.n) ||
        !std::isfinite(cone.ra) || !std::isfinite(cone.rb) || cone.ra < 0.0 || cone.rb < 0.0)
        return false;
    if (cone.ra < hd::kMinDiscRadius && cone.rb < hd::kMinDiscRadius)
        return false;
    if (cone.ra < hd::kMinDiscRadius)
        cone.ra = 0.0;
    if (cone.rb < hd::kMinDiscRadius)
        cone.rb = 0.0;
    const _s_hd_point_ axis = vecSub(cone.cb, cone.ca);
    const double length = vecLength(axis);
    cone.n = vecNormalize(cone.n);
    if (!(length > 0.0) || vecLength(cone.n) == 0.0)
        return false;
    const double rise = vecDot(axis, cone.n);
    if (!(std::fabs(rise) >= hd::kMinAxisCutCosine * length))
        return false;
    if (rise < 0.0)
        cone.n = vecNegate(cone.n);
    if (std::fabs(std::fabs(cone.n.z) - 1.0) <= hd::kFacingTol) {
        cone.n = {0.0, 0.0, cone.n.z > 0.0 ? 1.0 : -1.0};
        cone.u = {1.0, 0.0, 0.0};
        cone.snapped = true;
    } else {
        cone.u = unitCross(kViewAxis, cone.n);
    }
    cone.v = vecCross(cone.n, cone.u);
    size = std::fmax(length, std::fmax(cone.ra, cone.rb));
    return std::isfinite(size);
}

// The silhouette generators of the side: the normal along the generator at angle theta is
// (d'(theta) x D) - (rb - ra) n, with D = cb - ca and d the unit radial direction, and it is
// square to Z where A cos theta + B sin theta = C. Returns false when there is no such pair of
// generators (the side seen along its axis or from within its half-angle, or two generators so
// close that they are one), with theta1 = phi, where the side comes nearest to edge-on or turns
// farthest from it; otherwise theta1 = phi - alpha and theta2 = phi + alpha.
bool silhouetteAngles(const ObliqueCone& cone, double& theta1, double& alpha) {
    const _s_hd_point_ axis = vecSub(cone.cb, cone.ca);
    const double a = vecCross(cone.v, axis).z;
    const double b = -vecCross(cone.u, axis).z;
    const double c = (cone.rb - cone.ra) * cone.n.z;
    const double r = std::hypot(a, b);
    theta1 = std::atan2(b, a);
    if (!(r > std::fabs(c)))
        return false;
    const double half = std::acos(c / r);
    if (half < hd::kSilhouetteMergeAngle || half > core::kPi - hd::kSilhouetteMergeAngle)
        return false;
    alpha = half;
    theta1 -= half;
    return true;
}

_s_hd_point_ ringPoint(_s_hd_point_ c, double r, const ObliqueCone& cone, double theta) {
    const _s_hd_point_ d = linComb(std::cos(theta), cone.u, std::sin(theta), cone.v);
    return linComb(1.0, c, r, d);
}

// The vertices of the circle about c of radius r from theta1: chords1 chords over the arc to
// theta1 + 2 alpha, then chords2 chords on round to theta1 + 2 pi, made by the arc routine.
// Writes chords1 + chords2 points to out; returns false if an allocation fails.
bool arcRing(_s_hd_point_ c, double r, const ObliqueCone& cone, double theta1, double alpha,
             int chords1, int chords2, _s_hd_point_* out) {
    const double ends[3] = {theta1, theta1 + 2.0 * alpha, theta1 + core::kFullTurn};
    const int counts[2] = {chords1, chords2};
    int written = 0;
    for (int arc = 0; arc < 2; ++arc) {
        _s_hd_proline_* chords = nullptr;
        const double mid = 0.5 * (ends[arc] + ends[arc + 1]);
        const bool ok =
            divideArc2Proline(c, ringPoint(c, r, cone, ends[arc]), ringPoint(c, r, cone, mid),
                              ringPoint(c, r, cone, ends[arc + 1]), counts[arc], chords);
        int made = 0;
        for (const _s_hd_proline_* l = chords; l != nullptr; l = l->next)
            ++made;
        if (ok && made == counts[arc]) {
            for (const _s_hd_proline_* l = chords; l != nullptr; l = l->next)
                out[written++] = l->start;
        }
        releaseProline(chords);
        if (!ok || made != counts[arc])
            return false;
    }
    return true;
}

// Chords of the arc of sweep radians when the whole circle takes perTurn of them (at least 1).
int arcChords(double sweep, int perTurn) {
    const double n = std::ceil(perTurn * sweep / core::kFullTurn);
    return n < 1.0 ? 1 : static_cast<int>(std::fmin(n, perTurn));
}

// The rings of a cone on the disc's rule, when its end circles take one count: the vertices of
// the disc's split ring at each end, and where the side is seen, its two silhouette generators
// put in between (or in place of a vertex within hd::kRingSnapShare of a chord of one). A
// pipe of either radius joined to the cone, whose rim is the disc's split ring, then shares
// every rim vertex with it but the silhouettes' two, and the joint is drawn as one rim instead
// of two crossing. A right cylinder (atSplit) has its silhouette on the split points
// themselves, the ring's vertices 0 and m / 2. False in made when the counts differ or both
// silhouettes would take one vertex; false if an allocation fails.
bool viewSplitConeRings(const ObliqueCone& cone, bool atSplit, bool seen, double theta1,
                        double alpha, Rings& rings, bool& made) {
    made = false;
    ViewSplitRing ringA, ringB;
    if ((cone.ra > 0.0 && !viewSplitRing(cone.ca, cone.ra, cone.n, ringA)) ||
        (cone.rb > 0.0 && !viewSplitRing(cone.cb, cone.rb, cone.n, ringB)))
        return true;
    if (cone.ra > 0.0 && cone.rb > 0.0 && ringA.count != ringB.count)
        return true;
    const ViewSplitRing& pattern = cone.ra > 0.0 ? ringA : ringB;
    const _s_hd_point_ centre = cone.ra > 0.0 ? cone.ca : cone.cb;
    const int m = pattern.count;
    double at[hd::kMaxCurveChords];  // the pattern vertices' angles, from 0 at u
    for (int k = 0; k < m; ++k) {
        const _s_hd_point_ d = vecSub(pattern.pts[k], centre);
        const double t = std::atan2(vecDot(d, cone.v), vecDot(d, cone.u));
        at[k] = k == 0 ? 0.0 : (t < 0.0 ? t + core::kFullTurn : t);
    }
    double sil[2];
    for (int s = 0; s < 2; ++s) {
        sil[s] = std::fmod(theta1 + 2.0 * alpha * s, core::kFullTurn);
        if (sil[s] < 0.0)
            sil[s] += core::kFullTurn;
    }
    // Each ring vertex, by its angle: a pattern vertex (k >= 0) or a silhouette (-1 - s). A
    // silhouette within the snap angle of a pattern vertex (about the circle) takes its place;
    // any other goes in between.
    struct Vertex {
        double angle;
        int k;
        bool silhouette;
    };
    Vertex order[hd::kMaxCurveChords + 2];
    int count = 0;
    for (int k = 0; k < m; ++k)
        order[count++] = {at[k], k, atSplit && (k == 0 || k == m / 2)};
    for (int s = 0; seen && !atSplit && s < 2; ++s) {
        const int nearest = ringVertexToSnap(at, m, sil[s]);
        if (nearest < 0)
            order[count++] = {sil[s], -1 - s, true};
        else if (!order[nearest].silhouette)
            order[nearest] = {order[nearest].angle, -1 - s, true};
        else
            return true;  // both silhouettes by one vertex: the cone's own division
    }
    for (int i = 1; i < count; ++i)  // insertion sort: the pattern is in order already
        for (int j = i; j > 0 && order[j].angle < order[j - 1].angle; --j)
            std::swap(order[j], order[j - 1]);
    if (!rings.allocate(count))
        return false;
    for (int j = 0; j < count; ++j) {
        const Vertex& w = order[j];
        const double t = w.k < 0 ? sil[-1 - w.k] : 0.0;
        rings.a[j] = cone.ra == 0.0 ? cone.ca
                     : w.k >= 0     ? ringA.pts[w.k]
                                    : ringPoint(cone.ca, cone.ra, cone, t);
        rings.b[j] = cone.rb == 0.0 ? cone.cb
                     : w.k >= 0     ? ringB.pts[w.k]
                                    : ringPoint(cone.cb, cone.rb, cone, t);
        if (w.silhouette)
            rings.silhouette[rings.silhouettes++] = j;
    }
    made = true;
    return true;
}

// The rings of an oblique cone whose circles take perTurn chords. With a silhouette, ring
// vertices sit on its two generators and the arcs between are divided in proportion; without
// one, the circle is split at u and -u alike, or with atTurn at phi and phi + pi (see
// silhouetteAngles). viewSplit (perTurn came from the disc's rule) takes the disc's own ring for
// a right circular cylinder, whose split points are then the silhouette's, and for any other
// cone whose circles take the same count, with its silhouette put in (viewSplitConeRings).
bool makeConeRings(const ObliqueCone& cone, int perTurn, bool viewSplit, bool atTurn,
                   Rings& rings) {
    double theta1 = 0.0;
    double alpha = 0.5 * core::kPi;
    // A right cylinder's silhouette lies on the disc's split points; once the normal was
    // snapped to the view axis, the side is oblique by up to that snap and has its own.
    const bool rightCylinder =
        cone.ra == cone.rb && !cone.snapped && vecIsParallel(unitDir(cone.cb, cone.ca), cone.n);
    const bool seen = silhouetteAngles(cone, theta1, alpha);
    bool made = false;
    if (viewSplit && !viewSplitConeRings(cone, rightCylinder, seen, theta1, alpha, rings, made))
        return false;
    if (!made) {
        if (!seen && !atTurn)
            theta1 = 0.0;
        const int chords1 = arcChords(2.0 * alpha, perTurn);
        const int chords2 = arcChords(core::kFullTurn - 2.0 * alpha, perTurn);
        if (!rings.allocate(chords1 + chords2))
            return false;
        for (int k = 0; k < rings.count; ++k) {
            rings.a[k] = cone.ca;
            rings.b[k] = cone.cb;
        }
        if ((cone.ra > 0.0 &&
             !arcRing(cone.ca, cone.ra, cone, theta1, alpha, chords1, chords2, rings.a)) ||
            (cone.rb > 0.0 &&
             !arcRing(cone.cb, cone.rb, cone, theta1, alpha, chords1, chords2, rings.b)))
            return false;
        if (seen) {
            rings.silhouettes = 2;
            rings.silhouette[1] = chords1;
        }
    }
    rings.apexA = cone.ra == 0.0;
    rings.apexB = cone.rb == 0.0;
    return true;
}

// True unless the face of normal face turns the other way to the view than the side at the
// generator through the radial direction radial. Edge-on faces agree with anything.
bool faceLooksAsSide(const ObliqueCone& cone, _s_hd_point_ face, _s_hd_point_ radial) {
    const _s_hd_point_ axis = vecSub(cone.cb, cone.ca);
    const _s_hd_point_ side =
        linComb(1.0, vecCross(vecCross(cone.n, radial), axis), cone.ra - cone.rb, cone.n);
    const double lean = hd::kPlanarFaceTol * std::sqrt(vecDot(face, face));
    return !((face.z > lean && side.z < 0.0) || (face.z < -lean && side.z > 0.0));
}

// True when no side face of the rings turns the other way to the view than the side it stands
// for: the sign of its normal's Z is that of the side's normal at the face's middle generator.
// A face leans from its generators by an angle that grows with (rb - ra)(1 - cos h) for a face
// of half-angle h, so where the side is nearly edge-on a wide face can look away while the side
// does not, which would fold the outline. Edge-on faces agree with anything.
bool sideFacesTrue(const ObliqueCone& cone, const Rings& rings) {
    const bool useA = cone.ra > 0.0;
    for (int k = 0; k < rings.count; ++k) {
        const int k1 = (k + 1) % rings.count;
        const _s_hd_point_ face =
            vecCross(vecSub(rings.b[k1], rings.a[k]), vecSub(rings.b[k], rings.a[k1]));
        const _s_hd_point_ mid = useA ? lerpPoint(0.5, rings.a[k], rings.a[k1])
                                      : lerpPoint(0.5, rings.b[k], rings.b[k1]);
        if (!faceLooksAsSide(cone, face, unitDir(mid, useA ? cone.ca : cone.cb)))
            return false;
    }
    return true;
}

// The rings of an oblique cone with perTurn chords to a circle, doubled until no side face
// looks the other way to its side (at most kMaxSideRefinements times). A side without silhouette
// that still folds then is seen within a hair of edge-on along a generator, and its rings are
// split at that generator instead: a face from angle t - h to t + h leans from the side at t as
// if (rb - ra) n.z became (rb - ra) n.z cos h in A cos t + B sin t - C, so with vertices at phi
// and phi + pi no face can turn the other way, however many chords there are.
bool makeTrueConeRings(const ObliqueCone& cone, int perTurn, bool viewSplit, Rings& rings) {
    for (int refined = 0;; ++refined, perTurn *= 2) {
        if (!makeConeRings(cone, perTurn, viewSplit && refined == 0, false, rings))
            return false;
        if (sideFacesTrue(cone, rings))
            return true;
        if (refined == hd::kMaxSideRefinements)
            return rings.silhouettes > 0 || makeConeRings(cone, perTurn, false, true, rings);
    }
}

// A rim of a cone whose end circles take different counts: the disc's split ring of its circle,
// the silhouettes put in as viewSplitConeRings puts them in, each vertex with its angle from u.
struct ZipRim {
    _s_hd_point_ pts[hd::kMaxCurveChords + 2];
    double at[hd::kMaxCurveChords + 2];
    int count = 0;
    int silhouette[2] = {0, 0};
};

// Fills rim from the split ring of the circle about c of radius r, with the sils silhouettes at
// the angles sil put in. False when both would take the place of one vertex.
bool makeZipRim(const ObliqueCone& cone, _s_hd_point_ c, double r, const ViewSplitRing& pattern,
                const double* sil, int sils, ZipRim& rim) {
    double at[hd::kMaxCurveChords];
    for (int k = 0; k < pattern.count; ++k) {
        const _s_hd_point_ d = vecSub(pattern.pts[k], c);
        const double t = std::atan2(vecDot(d, cone.v), vecDot(d, cone.u));
        at[k] = k == 0 ? 0.0 : (t < 0.0 ? t + core::kFullTurn : t);
    }
    const int tags[2] = {-1, -2};  // silhouette s is -1 - s
    RingStop stops[hd::kMaxCurveChords + 2];
    const int count = ringWithPoints(at, pattern.count, sil, tags, sils, true, stops);
    if (count < 0)
        return false;
    for (int j = 0; j < count; ++j) {
        rim.at[j] = stops[j].t;
        rim.pts[j] = stops[j].k >= 0 ? pattern.pts[stops[j].k] : ringPoint(c, r, cone, stops[j].t);
        if (stops[j].k < 0)
            rim.silhouette[-1 - stops[j].k] = j;
    }
    rim.count = count;
    return true;
}

// A cone whose end circles take different counts of the disc's rule (a reducer across one of
// its steps): each rim is the split ring of its circle with the silhouettes put in, as a pipe of
// its radius has it bar those, so both joints are drawn as one rim. The side between the rims is
// zipped up from triangles, each a chord of one rim and the vertex of the other that comes next
// round the circle, starting from a silhouette generator (or from u) that both rims have, so
// the silhouettes are edges and are drawn. Null in built (made false) when a triangle would turn
// the other way to the view than the side, or a rim could not take its silhouettes; the caller
// then builds the cone on rings of one count.
bool buildZippedCone(const ObliqueCone& cone, const ViewSplitRing& ringA,
                     const ViewSplitRing& ringB, double size, _s_hd_prof_*& built) {
    built = nullptr;
    double theta1 = 0.0, alpha = 0.0, sil[2] = {0.0, 0.0};
    const int sils = silhouetteAngles(cone, theta1, alpha) ? 2 : 0;
    for (int s = 0; s < sils; ++s) {
        sil[s] = std::fmod(theta1 + 2.0 * alpha * s, core::kFullTurn);
        if (sil[s] < 0.0)
            sil[s] += core::kFullTurn;
    }
    ZipRim a, b;
    if (!makeZipRim(cone, cone.ca, cone.ra, ringA, sil, sils, a) ||
        !makeZipRim(cone, cone.cb, cone.rb, ringB, sil, sils, b))
        return true;
    for (const ZipRim* rim : {&a, &b})
        for (int k = 0; k < rim->count; ++k)
            if (!isFinitePoint(rim->pts[k]))
                return true;
    const int a0 = sils > 0 ? a.silhouette[0] : 0;
    const int b0 = sils > 0 ? b.silhouette[0] : 0;
    const double t0 = a.at[a0];
    // The angle of step i round a rim from its start, the last one a whole turn.
    const auto ahead = [t0](const ZipRim& rim, int start, int i) {
        if (i == rim.count)
            return core::kFullTurn;
        const double t = rim.at[(start + i) % rim.count] - t0;
        return t < 0.0 ? t + core::kFullTurn : t;
    };
    HDProfDraft draft;
    draft.seedBox(a.pts[0]);
    for (const ZipRim* rim : {&a, &b})
        for (int k = 0; k < rim->count; ++k)
            draft.extendBox(rim->pts[k]);
    for (int i = 0, j = 0; i < a.count || j < b.count;) {
        const _s_hd_point_ pa = a.pts[(a0 + i) % a.count];
        const _s_hd_point_ pb = b.pts[(b0 + j) % b.count];
        const bool alongA =
            j == b.count || (i < a.count && ahead(a, a0, i + 1) <= ahead(b, b0, j + 1));
        const _s_hd_point_ next =
            alongA ? a.pts[(a0 + i + 1) % a.count] : b.pts[(b0 + j + 1) % b.count];
        const _s_hd_point_ face = vecCross(vecSub(next, pa), vecSub(pb, pa));
        const _s_hd_point_ radial = alongA ? unitDir(lerpPoint(0.5, pa, next), cone.ca)
                                           : unitDir(lerpPoint(0.5, pb, next), cone.cb);
        if (!faceLooksAsSide(cone, face, radial))
            return true;
        draft.addTri(pa, next, pb);
        (alongA ? i : j) += 1;
    }
    addEndFace(draft, a.pts, a.count, true, size);
    addEndFace(draft, b.pts, b.count, false, size);
    for (const ZipRim* rim : {&a, &b})
        for (int k = 0; k < rim->count; ++k)
            draft.addLine(rim->pts[k], rim->pts[(k + 1) % rim->count]);
    for (int s = 0; s < sils; ++s)
        draft.addLine(a.pts[a.silhouette[s]], b.pts[b.silhouette[s]]);
    built = draft.finish();
    return built != nullptr;
}

// An oblique cone with the disc's chord rule on its larger radius.
_s_hd_prof_* divideObliqueCone(ObliqueCone cone) {
    double size = 0.0;
    if (!setUpCone(cone, size))
        return nullptr;
    const double rmax = std::fmax(cone.ra, cone.rb);
    int m = getCircleDivideNum(cone.ca, rmax);
    if (m % 2 != 0)
        ++m;
    ViewSplitRing ringA, ringB;
    if (cone.ra > 0.0 && cone.rb > 0.0 && viewSplitRing(cone.ca, cone.ra, cone.n, ringA) &&
        viewSplitRing(cone.cb, cone.rb, cone.n, ringB) && ringA.count != ringB.count) {
        _s_hd_prof_* built = nullptr;
        if (!buildZippedCone(cone, ringA, ringB, size, built))
            return nullptr;
        if (built != nullptr)
            return built;
    }
    Rings rings;
    if (!makeTrueConeRings(cone, m, true, rings))
        return nullptr;
    return buildRuledSolid(rings, size);
}

}  // namespace

_s_hd_prof_* ep_divide_con(_s_hd_point_ a, _s_hd_point_ b, double ra, double rb) {
    return divideObliqueCone({a, b, ra, rb, vecSub(b, a), {}, {}, false});
}

_s_hd_prof_* ep_divide_ecn(_s_hd_point_ a, _s_hd_point_ b, double ra, double rb, _s_hd_point_ n) {
    return divideObliqueCone({a, b, ra, rb, n, {}, {}, false});
}

_s_hd_prof_* ep_divide_scn(double rb, double rt, double h, double xoff, double yoff, _s_hd_point_ o,
                           _s_hd_point_ xdir, _s_hd_point_ ydir, _s_hd_point_ zdir, double sag) {
    if (!std::isfinite(h) || !std::isfinite(xoff) || !std::isfinite(yoff) || !isFinitePoint(xdir) ||
        !isFinitePoint(ydir) || !isFinitePoint(zdir) || !std::isfinite(sag) || !(sag > 0.0))
        return nullptr;
    const _s_hd_point_ x = vecNormalize(xdir);
    const _s_hd_point_ y = vecNormalize(ydir);
    const _s_hd_point_ z = vecNormalize(zdir);
    _s_hd_point_ top = linComb(1.0, o, h, z);
    top = linComb(1.0, top, xoff, x);
    top = linComb(1.0, top, yoff, y);
    ObliqueCone cone = {o, top, rb, rt, unitCross(x, y), {}, {}, false};
    double size = 0.0;
    if (!setUpCone(cone, size))
        return nullptr;
    // The fewest chords (at least 8) whose sagitta on the larger radius is within sag.
    const double rmax = std::fmax(cone.ra, cone.rb);
    const double halfAngle = std::acos(std::fmax(-1.0, 1.0 - sag / rmax));
    const double cap = hd::kMaxSnoutChords;
    double count = halfAngle > 0.0 ? std::ceil(core::kPi / halfAngle) : cap;
    count = std::fmin(std::fmax(count, hd::kMinCurveChords), cap);
    Rings rings;
    if (!makeTrueConeRings(cone, static_cast<int>(count), false, rings))
        return nullptr;
    return buildRuledSolid(rings, size);
}

_s_hd_prof_* ep_divide_scy(_s_hd_point_ a, _s_hd_point_ b, double r, _s_hd_point_ n) {
    // The rings of the plain cylinder, each vertex slid along the axis onto the cut planes
    // through a and through b: the generators, and so the silhouette, stay where they were.
    ObliqueCone cone = {a, b, r, r, vecSub(b, a), {}, {}, false};
    double size = 0.0;
    if (!(r >= hd::kMinDiscRadius) || !isFinitePoint(n) || !setUpCone(cone, size))
        return nullptr;
    const _s_hd_point_ w = unitDir(b, a);
    const _s_hd_point_ cut = vecNormalize(n);
    const double slope = vecDot(cut, w);
    if (!(std::fabs(slope) >= hd::kMinAxisCutCosine))
        return nullptr;
    int m = getCircleDivideNum(a, r);
    if (m % 2 != 0)
        ++m;
    Rings rings;
    if (!makeConeRings(cone, m, true, false, rings))
        return nullptr;
    for (int k = 0; k < rings.count; ++k) {
        rings.a[k] = linComb(1.0, rings.a[k], -vecDot(cut, vecSub(rings.a[k], a)) / slope, w);
        rings.b[k] = linComb(1.0, rings.b[k], -vecDot(cut, vecSub(rings.b[k], b)) / slope, w);
    }
    return buildRuledSolid(rings, size);
}

}  // namespace geolib
