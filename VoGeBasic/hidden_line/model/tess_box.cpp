// Tessellators of the flat-faced primitives: box, wedge, regular prism, line and polyline.
#include <cmath>
#include <initializer_list>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"

namespace geolib {

namespace {

// Corner indices of the box's twelve edges and six faces, in the order callers rely on.
constexpr int kBoxEdges[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                  {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
constexpr int kBoxFaces[6][4] = {{1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7},
                                 {0, 1, 5, 4}, {4, 5, 6, 7}, {3, 2, 1, 0}};

// Corners of the wedge: pa, pb, pc, then the same moved by h.
constexpr int kWedgeEdges[9][2] = {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5},
                                   {5, 3}, {0, 3}, {1, 4}, {2, 5}};
constexpr int kWedgeSides[3][4] = {{1, 2, 5, 4}, {2, 0, 3, 5}, {0, 1, 4, 3}};

// Seeds the draft's box with the first corner and extends it with the others in order.
void boxAround(HDProfDraft& draft, const _s_hd_point_* corners, int count) {
    draft.seedBox(corners[0]);
    for (int i = 1; i < count; ++i)
        draft.extendBox(corners[i]);
}

_s_hd_point_ toHDPoint(const VoGePoint3D& p) {
    return {p.x, p.y, p.z};
}

// True when the list ends (no node links back to an earlier one) and all its points are finite.
// The fast walker checks every node; the slow one meets it only on a list that closes.
bool isOpenFiniteList(const point* list) {
    const point* slow = list;
    for (const point* fast = list; fast != nullptr;) {
        for (int i = 0; i < 2 && fast != nullptr; ++i) {
            if (!isFinitePoint(toHDPoint(fast->pt)))
                return false;
            fast = fast->next;
        }
        slow = slow->next;
        if (fast != nullptr && slow == fast)
            return false;
    }
    return true;
}

}  // namespace

_s_hd_prof_* ep_divide_box(double a, double b, double c, _s_hd_point_ p, _s_hd_point_ u,
                           _s_hd_point_ v, int flag) {
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c) || !isFinitePoint(p) ||
        !isFinitePoint(u) || !isFinitePoint(v))
        return nullptr;
    _s_hd_point_ k[8];
    k[0] = p;
    k[1] = linComb(1.0, p, a, u);
    k[2] = linComb(1.0, k[1], b, v);
    k[3] = linComb(1.0, p, b, v);
    const _s_hd_point_ w = flag != 0 ? unitCross(u, v) : unitCross(v, u);
    for (int i = 0; i < 4; ++i)
        k[i + 4] = linComb(1.0, k[i], c, w);

    HDProfDraft draft;
    boxAround(draft, k, 8);
    for (const auto& e : kBoxEdges)
        draft.addLine(k[e[0]], k[e[1]]);
    for (const auto& f : kBoxFaces)
        draft.addQuad(k[f[0]], k[f[1]], k[f[2]], k[f[3]]);
    return draft.finish();
}

_s_hd_prof_* ep_divide_wed(_s_hd_point_ pa, _s_hd_point_ pb, _s_hd_point_ pc, double h) {
    if (!isFinitePoint(pa) || !isFinitePoint(pb) || !isFinitePoint(pc) || !std::isfinite(h))
        return nullptr;
    const _s_hd_point_ w = unitCross(unitDir(pa, pb), unitDir(pc, pb));
    const _s_hd_point_ k[6] = {
        pa, pb, pc, linComb(1.0, pa, h, w), linComb(1.0, pb, h, w), linComb(1.0, pc, h, w)};

    HDProfDraft draft;
    boxAround(draft, k, 6);
    for (const auto& e : kWedgeEdges)
        draft.addLine(k[e[0]], k[e[1]]);
    std::int32_t tag = 1;
    for (const auto& f : kWedgeSides)
        draft.addQuad(k[f[0]], k[f[1]], k[f[2]], k[f[3]], tag++);
    draft.addTri(k[4], k[5], k[3], tag++);
    draft.addTri(k[1], k[0], k[2], tag);
    return draft.finish();
}

_s_hd_prof_* ep_divide_pri(_s_hd_point_ pa, _s_hd_point_ pb, _s_hd_point_ ps, int n) {
    if (!isFinitePoint(pa) || !isFinitePoint(pb) || !isFinitePoint(ps))
        return nullptr;
    const double d = pointDist(pa, pb);
    const _s_hd_point_ t = unitDir(pb, pa);
    const _s_hd_point_ ps2 = linComb(1.0, ps, d, t);

    HDProfDraft draft;
    _s_hd_proline_* base = nullptr;
    _s_hd_proline_* top = nullptr;
    if (!divideArc2Proline(pa, ps, t, ps, n, base))
        return nullptr;
    // The top ring takes the base ring's count: chosen from each ring's own radius, the counts
    // could differ where rounding puts the two radii either side of a count's limit (or where
    // the axis is so long that the top ring's radius loses its digits).
    int count = 0;
    for (const _s_hd_proline_* k = base; k != nullptr; k = k->next)
        ++count;
    if (!divideArc2Proline(pb, ps2, t, ps2, count, top) || base == nullptr || top == nullptr)
        draft.fail();

    ProlineChain uprights;
    if (base != nullptr)
        draft.seedBox(base->start);
    for (const _s_hd_proline_ *k1 = base, *k2 = top; draft.ok() && k1 != nullptr && k2 != nullptr;
         k1 = k1->next, k2 = k2->next) {
        draft.extendBox(k2->start);
        draft.extendBox(k1->start);
        draft.addQuad(k1->start, k1->end, k2->end, k2->start);
        if (!uprights.append(k1->start, k2->start))
            draft.fail();
    }
    // Every line end lies in the box (with rings of one count they all do already).
    for (const _s_hd_proline_* ring : {base, top})
        for (const _s_hd_proline_* k = ring; draft.ok() && k != nullptr; k = k->next)
            draft.extendBox(k->end);
    draft.addLines(base);
    draft.addLines(top);
    draft.addLines(uprights.head);
    return draft.finish();
}

_s_hd_prof_* ep_divide_pln(_s_hd_point_ p, _s_hd_point_ q) {
    if (!isFinitePoint(p) || !isFinitePoint(q))
        return nullptr;
    HDProfDraft draft;
    draft.seedBox(p);
    draft.extendBox(q);
    draft.addLine(p, q);
    return draft.finish();
}

_s_hd_prof_* ep_divide_plns(point* list) {
    if (list == nullptr || list->next == nullptr || !isOpenFiniteList(list))
        return nullptr;
    HDProfDraft draft;
    draft.seedBox(toHDPoint(list->pt));
    for (const point* p = list; p->next != nullptr; p = p->next) {
        const _s_hd_point_ q = toHDPoint(p->next->pt);
        draft.extendBox(q);
        draft.addLine(toHDPoint(p->pt), q);
    }
    return draft.finish();
}

}  // namespace geolib
