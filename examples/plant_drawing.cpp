// plant_drawing: the library's main job end to end.
//
// Tessellates the primitives of a plant scene, registers every object for face intersection,
// runs the hide pass and writes an SVG drawing of the visible lines (with --hidden also the
// hidden remainder, dashed and grey). Prints one summary line with the counts and the time of
// each stage.
//
//   plant_drawing [--n N] [--seed S] [--hidden] [-o FILE]
//
// Without --n it draws the built-in scene; with --n it draws a generated scene of N primitives.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "VoGeBasic.h"
#include "scene/plant_scene.h"

namespace {

using geolib::_s_hd_prof_;
using geolib::_s_hd_proline_;

struct Options {
    int n = 0;
    unsigned seed = 1;
    bool hidden = false;
    std::string output = "plant.svg";
};

bool parse(int argc, char** argv, Options& opt) {
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "--n") == 0 && hasValue) {
            opt.n = std::atoi(argv[++i]);
        } else if (std::strcmp(argv[i], "--seed") == 0 && hasValue) {
            opt.seed = static_cast<unsigned>(std::strtoul(argv[++i], nullptr, 10));
        } else if (std::strcmp(argv[i], "--hidden") == 0) {
            opt.hidden = true;
        } else if (std::strcmp(argv[i], "-o") == 0 && hasValue) {
            opt.output = argv[++i];
        } else {
            return false;
        }
    }
    return opt.n >= 0;
}

double millisecondsSince(std::chrono::steady_clock::time_point t0) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
}

struct Segment {
    double x0, y0, x1, y1;
};

std::vector<Segment> segmentsOf(const _s_hd_proline_* list) {
    std::vector<Segment> out;
    for (const _s_hd_proline_* l = list; l != nullptr; l = l->next) {
        out.push_back({l->start.x, l->start.y, l->end.x, l->end.y});
    }
    return out;
}

// Writes the drawing, scaled to a 1600-pixel-wide sheet with a margin. Hidden lines (all
// input lines, drawn first in grey dashes) show only where no visible piece covers them.
bool writeSvg(const std::string& path, const std::vector<Segment>& visible,
              const std::vector<Segment>& all) {
    double xmin = 1e300, ymin = 1e300, xmax = -1e300, ymax = -1e300;
    for (const std::vector<Segment>* set : {&visible, &all}) {
        for (const Segment& s : *set) {
            xmin = std::fmin(xmin, std::fmin(s.x0, s.x1));
            xmax = std::fmax(xmax, std::fmax(s.x0, s.x1));
            ymin = std::fmin(ymin, std::fmin(s.y0, s.y1));
            ymax = std::fmax(ymax, std::fmax(s.y0, s.y1));
        }
    }
    if (xmax < xmin)
        xmin = ymin = 0, xmax = ymax = 1;
    const double width = 1600.0;
    const double margin = 20.0;
    const double scale = (width - 2 * margin) / std::fmax(xmax - xmin, 1e-9);
    const double height = (ymax - ymin) * scale + 2 * margin;
    const double stroke = 1.2;

    std::FILE* f = std::fopen(path.c_str(), "w");
    if (f == nullptr)
        return false;
    std::fprintf(f,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" "
                 "viewBox=\"0 0 %.0f %.0f\">\n<rect width=\"100%%\" height=\"100%%\" "
                 "fill=\"white\"/>\n",
                 width, height, width, height);
    auto path_of = [&](const std::vector<Segment>& set, const char* style) {
        std::fprintf(f, "<path %s d=\"", style);
        for (const Segment& s : set) {
            std::fprintf(f, "M%.2f %.2fL%.2f %.2f", margin + (s.x0 - xmin) * scale,
                         margin + (s.y0 - ymin) * scale, margin + (s.x1 - xmin) * scale,
                         margin + (s.y1 - ymin) * scale);
        }
        std::fprintf(f, "\"/>\n");
    };
    if (!all.empty()) {
        path_of(all,
                "fill=\"none\" stroke=\"#9a9a9a\" stroke-width=\"0.8\" stroke-dasharray=\"4 3\"");
    }
    char solid[128];
    std::snprintf(solid, sizeof solid,
                  "fill=\"none\" stroke=\"black\" stroke-width=\"%.1f\" stroke-linecap=\"round\"",
                  stroke);
    path_of(visible, solid);
    std::fprintf(f, "</svg>\n");
    return std::fclose(f) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options opt;
    if (!parse(argc, argv, opt)) {
        std::fprintf(stderr, "usage: %s [--n N] [--seed S] [--hidden] [-o FILE]\n", argv[0]);
        return 2;
    }
    const std::vector<vgscene::Primitive> prims =
        opt.n > 0 ? vgscene::generatePlant(opt.n, opt.seed) : vgscene::builtinPlant();

    auto t = std::chrono::steady_clock::now();
    std::vector<_s_hd_prof_*> objs = vgscene::tessellateAll(prims);
    const double tTess = millisecondsSince(t);
    if (objs.size() != prims.size()) {
        std::fprintf(stderr, "tessellation failed for %zu primitives\n",
                     prims.size() - objs.size());
    }

    long faces = 0;
    for (const _s_hd_prof_* o : objs) {
        for (const geolib::_s_hd_prosect_* s = o->prosect; s != nullptr; s = s->next)
            ++faces;
    }

    t = std::chrono::steady_clock::now();
    const int count = static_cast<int>(objs.size());
    geolib::kestFaceIntersectAll(objs.data(), count);
    const double tInter = millisecondsSince(t);

    long linesIn = 0;
    for (const _s_hd_prof_* o : objs) {
        for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
            ++linesIn;
    }

    t = std::chrono::steady_clock::now();
    _s_hd_proline_* visible = geolib::kestHideObject(objs.data(), static_cast<int>(objs.size()));
    const double tHide = millisecondsSince(t);

    t = std::chrono::steady_clock::now();
    // Two solids that butt (a pipe and its elbow) each return the rim they share: the drawing
    // keeps one, where the ends agree to a millionth of the scene's largest coordinate.
    double size = 1.0;
    for (const _s_hd_prof_* o : objs) {
        for (const double b : o->box)
            size = std::fmax(size, std::fabs(b));
    }
    geolib::dropRepeatedProlines(visible, 1e-6 * size);
    const std::vector<Segment> vis = segmentsOf(visible);
    std::vector<Segment> all;
    if (opt.hidden) {
        for (const _s_hd_prof_* o : objs) {
            const std::vector<Segment> s = segmentsOf(o->proline);
            all.insert(all.end(), s.begin(), s.end());
        }
    }
    const bool written = writeSvg(opt.output, vis, all);
    const double tSvg = millisecondsSince(t);

    std::printf(
        "objects %d, faces %ld, lines in %ld, visible pieces out %zu; tessellation %.1f ms, "
        "face intersection %.1f ms, hide pass %.1f ms, drawing %.1f ms -> %s\n",
        count, faces, linesIn, vis.size(), tTess, tInter, tHide, tSvg, opt.output.c_str());

    geolib::releaseProline(visible);
    vgscene::releaseAll(objs);
    if (!written) {
        std::fprintf(stderr, "cannot write %s\n", opt.output.c_str());
        return 1;
    }
    return 0;
}
