// Fuzz target: outlines of any shape split into convex pieces, and pieces, arcs and view
// boxes trimmed against them. Checks that a split that succeeds gives convex pieces, that what
// trimming removes lies inside the outlines, that interval lists stay sorted, disjoint and in
// their domain, and that the one-range reports keep their ranges.
#include <algorithm>
#include <vector>

#include "VoGeBasic.h"
#include "tests/clipping/clip_test_support.h"
#include "tests/fuzz/fuzz_support.h"

using namespace geolib;
using vgtest::kTwoPi;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    // Outlines: a box, or rings of any shape.
    convex* polys = nullptr;
    bool split = true;
    const bool boxed = in.ConsumeBool();
    if (boxed) {
        BOX b;
        const double x = vgfuzz::number(in, 20.0), y = vgfuzz::number(in, 20.0);
        b.set(x, x + std::fabs(vgfuzz::number(in, 20.0)), y,
              y + std::fabs(vgfuzz::number(in, 20.0)));
        polys = convertBox2Convex(&b);
    } else {
        const int rings = in.ConsumeIntegralInRange<int>(1, 3);
        convex** link = &polys;
        for (int r = 0; r < rings; ++r) {
            std::vector<VoGePoint3D> pts;
            const int n = in.ConsumeIntegralInRange<int>(3, 10);
            for (int k = 0; k < n; ++k)
                pts.emplace_back(vgfuzz::number(in, 20.0), vgfuzz::number(in, 20.0), 0.0);
            *link = transPtArray2Convex(pts);
            while (*link != nullptr)
                link = &(*link)->next;
        }
        split = ConvexIdentify(polys);
    }
    if (polys == nullptr || !split) {
        freeConvex(polys);
        return 0;
    }
    std::vector<std::vector<VoGePoint3D>> rings;
    bool ordinaryRings = true;
    for (const convex* p = polys; p != nullptr; p = p->next) {
        rings.emplace_back();
        transConvex2PtArray(p, rings.back());
        VG_FUZZ_CHECK(boxed || vgtest::convexRing(rings.back()),
                      "a split that succeeds gives convex pieces");
        for (const VoGePoint3D& q : rings.back())
            ordinaryRings = ordinaryRings && vgfuzz::ordinary({q.x, q.y}, 1e4);
    }

    // Straight pieces: what trimming removes lies inside an outline.
    const int pieces = in.ConsumeIntegralInRange<int>(0, 4);
    for (int k = 0; k < pieces; ++k) {
        double s[3] = {vgfuzz::number(in, 25.0), vgfuzz::number(in, 25.0), 0.0};
        double e[3] = {vgfuzz::number(in, 25.0), vgfuzz::number(in, 25.0), 0.0};
        line_cut* piece = polygonTrimLine(polys, s, e);
        VG_FUZZ_CHECK(piece != nullptr, "trimming a piece succeeds");
        VG_FUZZ_CHECK(vgtest::ordered(vgtest::intervalsOf(piece->params), 0.0, 1.0, 1e-6),
                      "visible intervals sorted, disjoint and within the piece");
        const double len = std::hypot(e[0] - s[0], e[1] - s[1]);
        if (ordinaryRings && vgfuzz::ordinary({s[0], s[1], e[0], e[1]}, 1e4)) {
            paramt* gaps = getHideParamLine(piece);
            for (const paramt* g = gaps; g != nullptr; g = g->next) {
                if ((g->t1 - g->t0) * len < 0.01)
                    continue;
                const double t = 0.5 * (g->t0 + g->t1);
                const double x = s[0] + t * (e[0] - s[0]);
                const double y = s[1] + t * (e[1] - s[1]);
                bool inside = false;
                for (const auto& c : rings) {
                    const vgtest::RingPlace at = vgtest::placeInRing(c, x, y);
                    // Trimming measures every edge's side values unscaled against 1e-4: near an
                    // edge of length L a point within 1e-4 / L of its line counts as on it (a
                    // ring of 1e-5 wide hides up to 10 units beyond its ends).
                    inside = inside || at.inside ||
                             at.nearest <= 2e-4 / std::fmax(at.shortest, 1e-12) + 1e-3 * len;
                    // So are the ring's corners against the piece's line: a corner within
                    // 1e-4 / len of it counts as on it, and the crossing at its edges may go
                    // unrecorded, so that a short piece is hidden on to the ring's next edge;
                    // what goes then still lies within the ring's box.
                    double gx0 = HUGE_VAL, gx1 = -HUGE_VAL, gy0 = HUGE_VAL, gy1 = -HUGE_VAL;
                    bool cornerOnLine = false;
                    for (const VoGePoint3D& q : c) {
                        const double off =
                            (e[0] - s[0]) * (q.y - s[1]) - (e[1] - s[1]) * (q.x - s[0]);
                        cornerOnLine = cornerOnLine || std::fabs(off) <= 2e-4;
                        gx0 = std::fmin(gx0, q.x);
                        gx1 = std::fmax(gx1, q.x);
                        gy0 = std::fmin(gy0, q.y);
                        gy1 = std::fmax(gy1, q.y);
                    }
                    inside =
                        inside || (cornerOnLine && x >= gx0 && x <= gx1 && y >= gy0 && y <= gy1);
                }
                VG_FUZZ_CHECK(inside, "what trimming removes lies inside an outline");
            }
            freeParamt(gaps);
        }
        double u0 = 0.0, u1 = 0.0;
        VG_FUZZ_CHECK(box2DTrimLine(polys, s, e, u0, u1), "box2DTrimLine succeeds");
        VG_FUZZ_CHECK((u0 == 1.0 && u1 == 0.0) || (u0 >= 0.0 && u0 <= u1 && u1 <= 1.0),
                      "the hidden range lies within the piece, or is the empty range");
        freeLineCut(piece);
    }

    // An arc: its visible intervals are angles of the turn, sorted.
    if (in.ConsumeBool()) {
        double c[3] = {vgfuzz::number(in, 20.0), vgfuzz::number(in, 20.0), 0.0};
        const double r = std::fabs(vgfuzz::number(in, 20.0));
        const double a0 = in.ConsumeFloatingPointInRange<double>(0.0, kTwoPi);
        const double a1 = in.ConsumeFloatingPointInRange<double>(0.0, kTwoPi);
        arc_cut* arc = polygonTrimArc(polys, c, r, a0, a1);
        if (arc != nullptr) {
            for (const paramt* p = arc->params; p != nullptr; p = p->next)
                VG_FUZZ_CHECK(p->t0 >= 0.0 && p->t0 <= kTwoPi && p->t1 >= 0.0 && p->t1 <= kTwoPi,
                              "arc intervals lie within the turn");
            freeArcCut(arc);
        }
    }

    // A view box: a true result carries a range within the piece.
    if (in.ConsumeBool()) {
        Box3D box;
        const auto lo = vgfuzz::triple<VoGePoint3D>(in), hi = vgfuzz::triple<VoGePoint3D>(in);
        box.set(lo, hi);
        const auto p0 = vgfuzz::triple<VoGePoint3D>(in), p1 = vgfuzz::triple<VoGePoint3D>(in);
        double u0 = 0.0, u1 = 0.0;
        if (viewBoxTrimLine(&box, p0, p1, u0, u1))
            VG_FUZZ_CHECK(u0 >= 0.0 && u0 <= u1 && u1 <= 1.0, "a view box range within the piece");
    }
    freeConvex(polys);
    return 0;
}
