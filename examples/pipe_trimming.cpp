// pipe_trimming: the clipping half of the library end to end.
//
// A plan of a small plot: equipment outlines (a pump skid and a vessel plinth as boxes, an
// L-shaped building as a non-convex outline split into convex pieces with ConvexIdentify) and
// the centre lines of the pipes that run over them: straight runs, bends as arcs and a ring
// main as a circle. Every centre line is trimmed against the outlines, and the drawing shows
// what stays visible as solid lines and the stretches hidden by equipment as grey dashes.
//
//   pipe_trimming [-o FILE]      (default pipe_trimming.svg)
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "VoGeBasic.h"

namespace {

using namespace geolib;

constexpr double kPi = 3.141592653589793;
// The plot is laid out below in metres and handed to the library in millimetres, a plant's
// drawing unit: the arc trimming cuts arcs into chords about half a unit long and counts a
// chord that is partly hidden as hidden, so in metres a bend would be hidden up to a chord of
// 0.5 m beyond an outline, in millimetres by half a millimetre.
constexpr double kMm = 1000.0;

struct Seg {
    double x0, y0, x1, y1;
};

// The outlines: two boxes and an L split into convex pieces. Null if that fails.
convex* equipment() {
    BOX skid;
    skid.set(2 * kMm, 6 * kMm, 1 * kMm, 3 * kMm);
    BOX plinth;
    plinth.set(12 * kMm, 16 * kMm, 6 * kMm, 10 * kMm);
    convex* polys = convertBox2Convex(&skid);
    convex* second = convertBox2Convex(&plinth);
    std::vector<VoGePoint3D> building = {{4, 8, 0},    {10, 8, 0},   {10, 10, 0},
                                         {6.5, 10, 0}, {6.5, 14, 0}, {4, 14, 0}};
    for (VoGePoint3D& p : building)
        p = VoGePoint3D(p.x * kMm, p.y * kMm, 0);
    convex* third = transPtArray2Convex(building);
    if (polys == nullptr || second == nullptr || third == nullptr || !ConvexIdentify(third)) {
        freeConvex(polys);
        freeConvex(second);
        freeConvex(third);
        return nullptr;
    }
    polys->next = second;
    second->next = third;
    return polys;
}

// Appends the stretches [t0, t1] of the straight piece s-e.
void addStretch(std::vector<Seg>& out, const line_cut* piece, double t0, double t1) {
    const VoGePoint3D& s = piece->start;
    const VoGePoint3D& e = piece->end;
    out.push_back({s.x + t0 * (e.x - s.x), s.y + t0 * (e.y - s.y), s.x + t1 * (e.x - s.x),
                   s.y + t1 * (e.y - s.y)});
}

// Appends the arc of centre c and radius r from a0 to a1 as short chords.
void addArc(std::vector<Seg>& out, const VoGePoint3D& c, double r, double a0, double a1) {
    if (a1 < a0)
        a1 += 2 * kPi;  // through angle 0
    const int n = 2 + static_cast<int>((a1 - a0) * r / (0.1 * kMm));
    for (int k = 0; k < n; ++k) {
        const double u = a0 + (a1 - a0) * k / n;
        const double v = a0 + (a1 - a0) * (k + 1) / n;
        out.push_back({c.x + r * std::cos(u), c.y + r * std::sin(u), c.x + r * std::cos(v),
                       c.y + r * std::sin(v)});
    }
}

bool writeSvg(const std::string& path, const convex* polys, const std::vector<Seg>& visible,
              const std::vector<Seg>& hidden) {
    std::FILE* f = std::fopen(path.c_str(), "w");
    if (f == nullptr)
        return false;
    const double scale = 50.0 / kMm;
    const double w = 20 * kMm * scale;
    const double h = 16 * kMm * scale;
    auto X = [&](double x) { return 20 + x * scale; };      // millimetres to the sheet
    auto Y = [&](double y) { return h - 20 - y * scale; };  // y up on the sheet
    std::fprintf(f,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\">\n"
                 "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
                 w + 40, h);
    for (const convex* p = polys; p != nullptr; p = p->next) {
        std::vector<VoGePoint3D> ring;
        transConvex2PtArray(p, ring);
        std::fprintf(f,
                     "<polygon fill=\"#eef3f8\" stroke=\"#7a95b0\" stroke-width=\"1\" points=\"");
        for (const VoGePoint3D& q : ring)
            std::fprintf(f, "%.1f,%.1f ", X(q.x), Y(q.y));
        std::fprintf(f, "\"/>\n");
    }
    auto path_of = [&](const std::vector<Seg>& set, const char* style) {
        std::fprintf(f, "<path fill=\"none\" %s d=\"", style);
        for (const Seg& s : set)
            std::fprintf(f, "M%.1f %.1fL%.1f %.1f", X(s.x0), Y(s.y0), X(s.x1), Y(s.y1));
        std::fprintf(f, "\"/>\n");
    };
    path_of(hidden, "stroke=\"#a0a0a0\" stroke-width=\"1.2\" stroke-dasharray=\"6 4\"");
    path_of(visible, "stroke=\"black\" stroke-width=\"2\" stroke-linecap=\"round\"");
    std::fprintf(f, "</svg>\n");
    return std::fclose(f) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::string output = "pipe_trimming.svg";
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-o") == 0 && i + 1 < argc) {
            output = argv[++i];
        } else {
            std::fprintf(stderr, "usage: %s [-o FILE]\n", argv[0]);
            return 2;
        }
    }
    convex* polys = equipment();
    if (polys == nullptr) {
        std::fprintf(stderr, "cannot build the outlines\n");
        return 1;
    }
    std::vector<Seg> visible;
    std::vector<Seg> hidden;

    // Straight runs: trimmed all at once, each piece keeping its visible intervals.
    const double runs[][4] = {{0, 2, 19, 2},   {0, 9, 19, 9},  {8, 0, 8, 15},
                              {14, 0, 14, 15}, {1, 12, 11, 4}, {5, 15, 5, 0}};
    line_cut* pieces = nullptr;
    line_cut** link = &pieces;
    bool ok = true;
    for (const auto& r : runs) {
        *link = mallocLineCut(VoGePoint3D(r[0] * kMm, r[1] * kMm, 0),
                              VoGePoint3D(r[2] * kMm, r[3] * kMm, 0));
        if (*link == nullptr) {
            ok = false;
            break;
        }
        link = &(*link)->next;
    }
    ok = ok && convexTrimLineSeg(polys, pieces);
    for (line_cut* p = ok ? pieces : nullptr; p != nullptr; p = p->next) {
        for (const paramt* v = p->params; v != nullptr; v = v->next)
            addStretch(visible, p, v->t0, v->t1);
        paramt* gaps = getHideParamLine(p);
        for (const paramt* g = gaps; g != nullptr; g = g->next)
            addStretch(hidden, p, g->t0, g->t1);
        freeParamt(gaps);
    }
    freeLineCut(pieces);

    // Bends and a ring main: the visible angular intervals of each arc.
    struct ArcRun {
        double cx, cy, r, a0, a1;
    } arcs[] = {{10, 5, 3, 0.0, kPi}, {14, 12, 2.5, -0.5 * kPi, 0.5 * kPi}, {4, 5, 3.2, 0, 0}};
    for (const ArcRun& a : arcs) {
        double c[3] = {a.cx * kMm, a.cy * kMm, 0};
        const bool full = a.a0 == a.a1;
        const double r = a.r * kMm;
        arc_cut* cut = full ? polygonTrimCircle(polys, c, r)
                            : polygonTrimArc(polys, c, r, a.a0 < 0 ? a.a0 + 2 * kPi : a.a0, a.a1);
        if (cut == nullptr) {
            ok = false;
            continue;
        }
        // The whole arc dashed underneath, what stays visible solid over it.
        const VoGePoint3D centre(c[0], c[1], 0);
        addArc(hidden, centre, r, full ? 0.0 : cut->startAngle, full ? 2 * kPi : cut->endAngle);
        for (const paramt* v = cut->params; v != nullptr; v = v->next)
            addArc(visible, centre, r, v->t0, v->t1);
        freeArcCut(cut);
    }

    const bool written = ok && writeSvg(output, polys, visible, hidden);
    int outlines = 0;
    for (const convex* p = polys; p != nullptr; p = p->next)
        ++outlines;
    std::printf("convex outlines %d, visible stretches %zu -> %s\n", outlines, visible.size(),
                output.c_str());
    freeConvex(polys);
    if (!written) {
        std::fprintf(stderr, "cannot trim or write %s\n", output.c_str());
        return 1;
    }
    return 0;
}
