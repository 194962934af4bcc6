#include "hidden_line/model/hd_builders.h"

#include <cmath>
#include <cstdlib>

#include "core/angles.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

using core::clampUnit;

namespace {

// Clamps a chord count, still a double, to 8..12 before it becomes an int; NaN gives 8.
int clampCurveChords(double n) {
    if (!(n >= hd::kMinCurveChords))
        return hd::kMinCurveChords;
    if (n > hd::kMaxCurveChords)
        return hd::kMaxCurveChords;
    return static_cast<int>(n);
}

_s_hd_sect_* mallocSectChain(const _s_hd_point_* pts, int count) {
    _s_hd_sect_* head = nullptr;
    _s_hd_sect_** link = &head;
    for (int i = 0; i < count; ++i) {
        _s_hd_sect_* node = mallocHDSect();
        if (node == nullptr) {
            freeHDSectPointer(head);
            return nullptr;
        }
        node->pt = pts[i];
        *link = node;
        link = &node->next;
    }
    return head;
}

// Links item behind the last node of the list that node belongs to (nothing when node is null).
template <class T>
void linkBehindLast(T* node, T* item) {
    if (node == nullptr)
        return;
    while (node->next != nullptr)
        node = node->next;
    node->next = item;
}

}  // namespace

// ---- point and vector helpers -------------------------------------------------------------------

int quadViewSide(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, _s_hd_point_ d) {
    const _s_hd_point_ n = vecCross(vecSub(c, a), vecSub(d, b));
    const double len = std::sqrt(vecDot(n, n));
    if (!(std::fabs(n.z) > hd::kEdgeOnFaceZ * len))
        return 0;
    return n.z > 0.0 ? 1 : -1;
}

// ---- boxes --------------------------------------------------------------------------------------

void initHDBox(double* box) {
    for (int axis = 0; axis < 3; ++axis) {
        box[2 * axis] = core::kEmptyObjectBoxMax;
        box[2 * axis + 1] = core::kEmptyObjectBoxMin;
    }
}

void setHDBox(double x, double y, double z, double* box) {
    const double p[3] = {x, y, z};
    for (int axis = 0; axis < 3; ++axis) {
        box[2 * axis] = p[axis];
        box[2 * axis + 1] = p[axis];
    }
}

void extendHDBox(double x, double y, double z, double* box) {
    const double p[3] = {x, y, z};
    for (int axis = 0; axis < 3; ++axis) {
        if (p[axis] > box[2 * axis])
            box[2 * axis] = p[axis];
        else if (p[axis] < box[2 * axis + 1])
            box[2 * axis + 1] = p[axis];
    }
}

// ---- chord counts -------------------------------------------------------------------------------

int getCircleDivideNum(_s_hd_point_ /*c*/, double r) {
    // t is half the angle of a chord whose sagitta is one drawing unit.
    const double t = std::acos(clampUnit((r - 1.0) / r));
    if (std::fabs(t) < hd::kChordAngleFloor)
        return hd::kMaxCurveChords;
    return clampCurveChords(std::trunc(core::kPi / t) + 1.0);
}

int getCircleDivideNum(const double* c, double r) {
    return getCircleDivideNum(_s_hd_point_{c[0], c[1], c[2]}, r);
}

int getArcDivideNum(_s_hd_point_ /*c*/, double r, double a0, double a1) {
    const double t = 2.0 * std::acos(clampUnit((r - 1.0) / r));
    if (std::fabs(t) < hd::kChordAngleFloor)
        return hd::kMaxCurveChords;
    return clampCurveChords(std::trunc((a1 - a0) / t) + 1.0);
}

/// A piece whose part of an arc's chords comes within this of a whole number takes that number.
/// Two solids along one circle work out their breaks in frames of their own, from coordinates a
/// model gives to a hundredth of a millimetre: a handrail whose start lies 4e-6 degrees off its
/// ring plate's edge must not take four chords where the plate takes three, for a piece of a
/// quarter of a twelve-chord arc. A piece that takes one chord fewer by this has chords at most
/// 1e-4 of a chord longer.
constexpr double kChordShareTol = 1e-4;

int shareArcChords(const double* breaks, int arcs, int n, int* chords) {
    const double sweep = breaks[arcs] - breaks[0];
    int total = 0;
    for (int arc = 0; arc < arcs; ++arc) {
        const double share =
            std::ceil(n * (breaks[arc + 1] - breaks[arc]) / sweep - kChordShareTol);
        chords[arc] = share < 1.0 ? 1 : static_cast<int>(std::fmin(share, n));
        total += chords[arc];
    }
    return total;
}

// ---- record builders ----------------------------------------------------------------------------

_s_hd_sect_* mallocQuadSect(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4) {
    const _s_hd_point_ pts[4] = {p1, p2, p3, p4};
    return mallocSectChain(pts, 4);
}

_s_hd_sect_* mallocTriSect(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3) {
    const _s_hd_point_ pts[3] = {p1, p2, p3};
    return mallocSectChain(pts, 3);
}

_s_hd_proline_* appendProline(_s_hd_point_ a, _s_hd_point_ b, _s_hd_proline_* node) {
    auto* line = static_cast<_s_hd_proline_*>(std::malloc(sizeof(_s_hd_proline_)));
    if (line == nullptr)
        return nullptr;
    line->start = a;
    line->end = b;
    line->reserved = 0.0;
    line->owner = -1;
    line->next = nullptr;
    linkBehindLast(node, line);
    return line;
}

_s_hd_prosect_* appendProsect(_s_hd_sect_* chain, _s_hd_prosect_* node) {
    auto* face = static_cast<_s_hd_prosect_*>(std::malloc(sizeof(_s_hd_prosect_)));
    if (face == nullptr)
        return nullptr;
    face->sect = chain;
    face->tag = 0;
    face->reserved = 0;
    face->next = nullptr;
    linkBehindLast(node, face);
    return face;
}

_s_hd_proline_* concatProline(_s_hd_proline_* first, _s_hd_proline_* second) {
    if (second != nullptr)
        linkBehindLast(first, second);
    return second;
}

bool ProlineChain::append(_s_hd_point_ a, _s_hd_point_ b) {
    _s_hd_proline_* line = appendProline(a, b, tail);
    if (line == nullptr)
        return false;
    if (head == nullptr)
        head = line;
    tail = line;
    return true;
}

// ---- arcs to chords -----------------------------------------------------------------------------

bool divideArc2Proline(_s_hd_point_ c, _s_hd_point_ s, _s_hd_point_ m, _s_hd_point_ e, int n,
                       _s_hd_proline_*& list) {
    if (n < 0 || n > hd::kMaxArcChords || !isFinitePoint(c) || !isFinitePoint(s) ||
        !isFinitePoint(m) || !isFinitePoint(e))
        return false;
    const bool fullCircle = isSamePointFine(s, e);
    double sweep = 0.0;
    _s_hd_point_ normal = {0.0, 0.0, 0.0};  // of an arc: the tangent is radial x normal
    if (fullCircle) {
        if (isSamePointFine(s, m))
            return true;
        sweep = core::kFullTurnAsDrawn;
    } else {
        if (isSamePointFine(s, m) || isSamePointFine(m, e))
            return true;
        const double r = pointDist(s, c);
        const double d = pointDist(s, e);
        const double central = std::acos(clampUnit(1.0 - d * d / (2.0 * r * r)));
        // The angle at m between the directions to s and to e tells the short arc (above pi/2)
        // from the long one (below).
        const double sm = pointDist(s, m);
        const double em = pointDist(e, m);
        const double inscribed =
            std::acos(clampUnit((sm * sm + em * em - d * d) / (2.0 * sm * em)));
        const bool longArc = inscribed < core::kHalfPi;
        sweep = longArc ? core::kFullTurn - central : central;
        const _s_hd_point_ radial = unitDir(s, c);
        const _s_hd_point_ toEnd = vecSub(e, c);
        // With s and e diametrically opposite (an inscribed angle of exactly pi/2, or e - c along
        // the radial), e cannot choose the side: m does, and the tangent must head towards it.
        const bool acrossCentre = inscribed == core::kHalfPi || vecIsParallel(radial, toEnd);
        const _s_hd_point_ n0 = unitCross(radial, acrossCentre ? vecSub(m, c) : toEnd);
        normal = longArc && !acrossCentre ? n0 : vecNegate(n0);
    }
    const double r = pointDist(s, c);
    if (!std::isfinite(r) || !std::isfinite(sweep))
        return false;

    if (n == 0) {
        const double p = clampUnit(1.0 - hd::kChordSagitta / r);
        const double count = std::trunc(sweep / (2.0 * std::acos(p)));
        if (count >= hd::kMaxArcChords)
            n = hd::kMaxArcChords;
        else if (count >= 1.0)
            n = static_cast<int>(count);
    }
    // A count of 0 (a sweep shorter than one chord) draws as one chord, like a count of 1.
    if (n < 1)
        n = 1;
    double step = sweep / n;
    while (step >= hd::kMaxTangentStep) {
        ++n;
        step = sweep / n;
    }

    // Points without sine and cosine: step along the tangent at a base point by r tan(x) and
    // project back onto the circle. The base moves on before x reaches tan's pole.
    auto tangentAt = [&](_s_hd_point_ base) {
        return fullCircle ? unitCross(vecSub(base, c), m) : unitCross(unitDir(base, c), normal);
    };
    ProlineChain chords;
    _s_hd_point_ base = s;
    _s_hd_point_ tangent = tangentAt(base);
    _s_hd_point_ prev = s;
    bool ok = true;
    for (int k = 1; ok && k < n;) {
        const double x = k * step;
        if (x >= hd::kMaxTangentStep) {
            base = prev;
            tangent = tangentAt(base);
            n = n - k + 1;
            k = 1;
            continue;
        }
        const _s_hd_point_ ahead = linComb(1.0, base, std::tan(x) * r, tangent);
        const _s_hd_point_ p = linComb(1.0, c, r, vecNormalize(vecSub(ahead, c)));
        ok = chords.append(prev, p);
        prev = p;
        ++k;
    }
    if (!ok || !chords.append(prev, e)) {
        releaseProline(chords.head);
        return false;
    }
    if (list == nullptr)
        list = chords.head;
    else
        concatProline(list, chords.head);
    return true;
}

// ---- object drafts ------------------------------------------------------------------------------

HDProfDraft::HDProfDraft() {
    initHDBox(box_);
}

HDProfDraft::~HDProfDraft() {
    releaseProline(lines_.head);
    releaseProsect(faces_);
}

void HDProfDraft::seedBox(_s_hd_point_ p) {
    setHDBox(p.x, p.y, p.z, box_);
}

void HDProfDraft::extendBox(_s_hd_point_ p) {
    extendHDBox(p.x, p.y, p.z, box_);
}

void HDProfDraft::addLine(_s_hd_point_ a, _s_hd_point_ b) {
    if (ok_ && !lines_.append(a, b))
        ok_ = false;
}

void HDProfDraft::addLines(_s_hd_proline_* list) {
    if (list == nullptr)
        return;
    if (lines_.head == nullptr)
        lines_.head = list;
    else
        concatProline(lines_.tail, list);
    lines_.tail = list;
    while (lines_.tail->next != nullptr)
        lines_.tail = lines_.tail->next;
}

void HDProfDraft::addQuad(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                          std::int32_t tag) {
    if (ok_)
        addFace(mallocQuadSect(p1, p2, p3, p4), tag);
}

void HDProfDraft::addTri(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, std::int32_t tag) {
    if (ok_)
        addFace(mallocTriSect(p1, p2, p3), tag);
}

namespace {

// True when the triangle a, b, c has no area at the given size: its third vertex lies within
// kPlanarFaceTol * size of the line of its longest side (twice its area over that side).
bool isFlatTriangle(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c, double size) {
    const double ab = pointDist2(a, b), bc = pointDist2(b, c), ca = pointDist2(c, a);
    const double longest = std::sqrt(std::fmax(ab, std::fmax(bc, ca)));
    const _s_hd_point_ n = vecCross(vecSub(b, a), vecSub(c, a));
    return std::sqrt(vecDot(n, n)) <= hd::kPlanarFaceTol * size * longest;
}

}  // namespace

PlanarQuadFaces planarQuadFaces(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                                double size) {
    PlanarQuadFaces out;
    const bool flat1 = isFlatTriangle(p1, p2, p3, size);
    const bool flat2 = isFlatTriangle(p1, p3, p4, size);
    if (!flat1 && !flat2) {
        // Six times the volume of the tetrahedron over twice the area of (p1, p2, p3) is the
        // distance of p4 from their plane.
        const _s_hd_point_ a = vecSub(p2, p1), b = vecSub(p3, p1), c = vecSub(p4, p1);
        const double volume = det3x3(a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z);
        const _s_hd_point_ n = vecCross(a, b);
        if (std::fabs(volume) <= hd::kPlanarFaceTol * size * std::sqrt(vecDot(n, n))) {
            out.faces[out.count++] = {4, {p1, p2, p3, p4}};
            return out;
        }
    }
    if (!flat1)
        out.faces[out.count++] = {3, {p1, p2, p3, p3}};
    if (!flat2)
        out.faces[out.count++] = {3, {p1, p3, p4, p4}};
    return out;
}

PlanarQuadFaces bandQuadFaces(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                              double size) {
    // A quadrilateral that is not planar splits along its shorter diagonal: of the two pairs of
    // triangles those are the nearer to the surface between the rings, so their normals keep
    // the sides of a silhouette apart.
    if (pointDist2(p2, p4) < pointDist2(p1, p3))
        return planarQuadFaces(p2, p3, p4, p1, size);
    return planarQuadFaces(p1, p2, p3, p4, size);
}

PlanarQuadFaces ringBandFaces(const ViewSplitRing& a, const ViewSplitRing& b, int shift, int k,
                              double size) {
    const int m = a.count;
    return bandQuadFaces(a.pts[k], a.pts[(k + 1) % m], b.pts[(k + 1 + shift) % m],
                         b.pts[(k + shift) % m], size);
}

void HDProfDraft::addFaces(const PlanarQuadFaces& faces) {
    for (int i = 0; i < faces.count; ++i) {
        const PlanarQuadFaces::Face& f = faces.faces[i];
        if (f.count == 4)
            addQuad(f.pts[0], f.pts[1], f.pts[2], f.pts[3]);
        else
            addTri(f.pts[0], f.pts[1], f.pts[2]);
    }
}

void HDProfDraft::addPlanarQuad(_s_hd_point_ p1, _s_hd_point_ p2, _s_hd_point_ p3, _s_hd_point_ p4,
                                double size) {
    addFaces(planarQuadFaces(p1, p2, p3, p4, size));
}

void HDProfDraft::addRingLines(const ViewSplitRing& ring) {
    const int m = ring.count;
    for (int k = 0; k < m; ++k)
        addLine(ring.pts[k], ring.pts[(k + 1) % m]);
}

void HDProfDraft::addRingDisc(const ViewSplitRing& ring, bool reversed) {
    const _s_hd_point_* p = ring.pts;
    const int m = ring.count;
    const int half = m / 2;
    auto tri = [&](_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c) {
        if (reversed)
            addTri(c, b, a);
        else
            addTri(a, b, c);
    };
    tri(p[0], p[1], p[m - 1]);
    for (int k = 1; k < half - 1; ++k) {
        if (reversed)
            addQuad(p[m - k], p[m - k - 1], p[k + 1], p[k]);
        else
            addQuad(p[k], p[k + 1], p[m - k - 1], p[m - k]);
    }
    tri(p[half - 1], p[half], p[half + 1]);
}

void HDProfDraft::addRingStrip(const _s_hd_point_* ring, int count, bool reversed, double size) {
    auto at = [&](int i) { return reversed ? ring[(count - i) % count] : ring[i]; };
    int i = 0;
    int j = count - 1;
    for (; j - i >= 3; ++i, --j)
        addPlanarQuad(at(i), at(i + 1), at(j - 1), at(j), size);
    if (j - i == 2)
        addTri(at(i), at(i + 1), at(j));
}

void HDProfDraft::addRingBand(const ViewSplitRing& a, const ViewSplitRing& b, int shift,
                              double size) {
    for (int k = 0; k < a.count; ++k)
        addFaces(ringBandFaces(a, b, shift, k, size));
}

void HDProfDraft::addFace(_s_hd_sect_* chain, std::int32_t tag) {
    _s_hd_prosect_* face = chain != nullptr ? appendProsect(chain, faceTail_) : nullptr;
    if (face == nullptr) {
        freeHDSectPointer(chain);
        ok_ = false;
        return;
    }
    face->tag = tag;
    if (faces_ == nullptr)
        faces_ = face;
    faceTail_ = face;
}

void HDProfDraft::fail() {
    ok_ = false;
}

_s_hd_prof_* HDProfDraft::finish() {
    if (!ok_)
        return nullptr;
    _s_hd_prof_* obj = mallocHDProfObject();
    if (obj == nullptr) {
        ok_ = false;
        return nullptr;
    }
    obj->prosect = faces_;
    obj->proline = lines_.head;
    for (int i = 0; i < 6; ++i)
        obj->box[i] = box_[i];
    faces_ = nullptr;
    faceTail_ = nullptr;
    lines_ = ProlineChain{};
    return obj;
}

}  // namespace geolib
