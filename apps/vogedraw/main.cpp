// vogedraw: the hidden-line drawing of a plant model file.
//
//   vogedraw MODEL -o OUT.svg|OUT.dxf [--view NAME | --azimuth A --elevation E] [--hidden]
//            [--no-intersect] [--strict]
//
// Reads the model (docs/model_format.md), rotates it into the view with VoGeMatrix3D,
// tessellates every primitive, intersects the faces of the objects with each other, runs the
// hide pass and writes the visible (and hidden) pieces. Prints one summary line.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "VoGeBasic.h"
#include "model_reader.h"
#include "view.h"
#include "writers.h"

namespace {

using geolib::_s_hd_prof_;
using geolib::_s_hd_proline_;
using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point t0) {
    return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
}

// Progress on stderr: shown only when stderr is a terminal and the run has taken over a
// second, at most ten times a second; the line is cleared at the end. A stage that is one
// library call (the hide pass) shows its elapsed seconds from a ticking thread.
class Progress {
public:
    Progress() : tty_(::isatty(2) == 1), start_(Clock::now()), last_(start_) {}
    ~Progress() { done(); }

    void show(const char* stage, long k, long total) {
        if (!tty_)
            return;
        std::lock_guard<std::mutex> lock(mutex_);
        const Clock::time_point now = Clock::now();
        if (now - start_ < std::chrono::seconds(1) ||
            (shown_ && now - last_ < std::chrono::milliseconds(100) && k != total))
            return;
        last_ = now;
        shown_ = true;
        if (total > 0)
            std::fprintf(stderr, "\r%s %ld/%ld\033[K", stage, k, total);
        else
            std::fprintf(stderr, "\r%s... %ld s\033[K", stage, k);
        std::fflush(stderr);
    }
    /// Shows stage with its elapsed seconds until stopTicking.
    void startTicking(const char* stage) {
        if (!tty_)
            return;
        ticking_ = true;
        ticker_ = std::thread([this, stage] {
            const Clock::time_point t0 = Clock::now();
            std::unique_lock<std::mutex> lock(tickMutex_);
            while (!tick_.wait_for(lock, std::chrono::milliseconds(200),
                                   [this] { return !ticking_; })) {
                show(stage, static_cast<long>(msSince(t0) / 1000.0), 0);
            }
        });
    }
    void stopTicking() {
        if (!ticker_.joinable())
            return;
        {
            std::lock_guard<std::mutex> lock(tickMutex_);
            ticking_ = false;
        }
        tick_.notify_one();
        ticker_.join();
    }
    void done() {
        stopTicking();
        std::lock_guard<std::mutex> lock(mutex_);
        if (shown_)
            std::fprintf(stderr, "\r\033[K");
        shown_ = false;
    }

private:
    bool tty_;
    bool shown_ = false;
    Clock::time_point start_, last_;
    std::mutex mutex_;
    std::mutex tickMutex_;
    std::condition_variable tick_;
    bool ticking_ = false;
    std::thread ticker_;
};

std::string lowerExtension(const std::string& path) {
    const std::size_t dot = path.find_last_of('.');
    const std::size_t slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return "";
    std::string ext = path.substr(dot);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

struct Objects {
    std::vector<_s_hd_prof_*> list;
    ~Objects() {
        for (_s_hd_prof_*& o : list)
            geolib::freeHDProfObjectPointer(o);
    }
};

}  // namespace

static int drawModel(int argc, char** argv) {
    CLI::App app{"Hidden-line drawing of a plant model file (SVG or DXF).", "vogedraw"};
    std::string model, output, viewName;
    double azimuth = 0, elevation = 0;
    bool hidden = false, noIntersect = false, strict = false;
    app.set_version_flag("--version", "vogedraw " VOGEDRAW_VERSION);
    app.add_option("model", model, "Plant model file (see docs/model_format.md)")->required();
    app.add_option("-o,--output", output, "Drawing to write: .svg or .dxf")->required();
    CLI::Option* viewOpt =
        app.add_option("--view", viewName, "Named view: plan, north, south, east, west, iso")
            ->check(CLI::IsMember({"plan", "north", "south", "east", "west", "iso"}));
    CLI::Option* azOpt = app.add_option("--azimuth", azimuth,
                                        "Viewer's compass direction in degrees (0 north, 90 east)")
                             ->check(CLI::Range(-360.0, 360.0));
    CLI::Option* elOpt =
        app.add_option("--elevation", elevation,
                       "Viewer's height above the horizon in degrees (90 looks down)")
            ->check(CLI::Range(-90.0, 90.0));
    azOpt->needs(elOpt);
    elOpt->needs(azOpt);
    viewOpt->excludes(azOpt)->excludes(elOpt);
    app.add_flag("--hidden", hidden, "SVG: also draw the hidden pieces, dashed grey");
    app.add_flag("--no-intersect", noIntersect,
                 "Skip face intersection (lines where solids cut each other are not drawn)");
    app.add_flag("--strict", strict, "Stop on a primitive the tessellator refuses");
    app.failure_message([](const CLI::App*, const CLI::Error& e) {
        return "vogedraw: " + std::string(e.what()) + " (see --help)\n";
    });
    CLI11_PARSE(app, argc, argv);

    const std::string ext = lowerExtension(output);
    if (ext != ".svg" && ext != ".dxf") {
        std::fprintf(stderr, "vogedraw: %s: unknown drawing type (use .svg or .dxf)\n",
                     output.c_str());
        return 1;
    }
    vogedraw::ViewAngles view{};
    if (azOpt->count() > 0) {
        view = {azimuth, elevation};
    } else {
        vogedraw::namedView(viewName.empty() ? "iso" : viewName, view);
    }

    Clock::time_point t = Clock::now();
    std::vector<vogedraw::Primitive> prims;
    std::string error;
    if (!vogedraw::readModel(model, prims, error)) {
        std::fprintf(stderr, "vogedraw: %s\n", error.c_str());
        return 1;
    }
    const double tRead = msSince(t);

    Progress progress;
    t = Clock::now();
    const VoGeMatrix3D m = vogedraw::viewMatrix(view);
    Objects objs;
    objs.list.reserve(prims.size());
    long skipped = 0;
    for (std::size_t i = 0; i < prims.size(); ++i) {
        progress.show("tessellation", static_cast<long>(i + 1), static_cast<long>(prims.size()));
        std::string why;
        _s_hd_prof_* o = vogedraw::tessellate(prims[i], m, why);
        if (o == nullptr) {
            std::fprintf(stderr, "vogedraw: %s:%d: %s: %s%s\n", model.c_str(), prims[i].line,
                         vogedraw::keywordOf(prims[i].kind), why.c_str(),
                         strict ? "" : "; skipped");
            if (strict)
                return 1;
            ++skipped;
            continue;
        }
        objs.list.push_back(o);
    }
    const double tTess = msSince(t);
    if (objs.list.size() > 2147483646u) {
        std::fprintf(stderr, "vogedraw: %s: too many objects\n", model.c_str());
        return 1;
    }
    const int count = static_cast<int>(objs.list.size());

    long faces = 0;
    for (const _s_hd_prof_* o : objs.list) {
        for (const geolib::_s_hd_prosect_* s = o->prosect; s != nullptr; s = s->next)
            ++faces;
    }

    t = Clock::now();
    if (!noIntersect) {
        progress.show("face intersection", 0, count);
        geolib::kestFaceIntersectAll(objs.list.data(), count);
        progress.show("face intersection", count, count);
    }
    const double tInter = msSince(t);

    long lines = 0;
    for (const _s_hd_prof_* o : objs.list) {
        for (const _s_hd_proline_* l = o->proline; l != nullptr; l = l->next)
            ++lines;
    }

    t = Clock::now();
    progress.startTicking("hide pass");
    _s_hd_proline_* visible = geolib::kestHideObject(objs.list.data(), count);
    progress.stopTicking();
    const double tHide = msSince(t);
    if (visible == nullptr && lines > 0) {
        // Null is also the answer when nothing is visible; a drawing with lines has some.
        std::fprintf(stderr, "vogedraw: %s: the hide pass returned nothing (out of memory?)\n",
                     model.c_str());
    }

    t = Clock::now();
    vogedraw::Drawing drawing = vogedraw::splitPieces(objs.list.data(), count, visible);
    geolib::releaseProline(visible);
    vogedraw::dropOverlappedParts(drawing);
    const bool written = vogedraw::writeAtomically(
        output,
        [&](std::FILE* f) {
            return ext == ".svg" ? vogedraw::writeSvg(f, drawing, hidden)
                                 : vogedraw::writeDxf(f, drawing);
        },
        error);
    const double tWrite = msSince(t);
    progress.done();
    if (!written) {
        std::fprintf(stderr, "vogedraw: %s\n", error.c_str());
        return 1;
    }
    std::printf(
        "vogedraw: %zu primitives (%ld skipped), %d objects, %ld faces, %ld lines, %zu visible "
        "and %zu hidden pieces; read %.1f ms, tessellation %.1f ms, face intersection %.1f ms, "
        "hide pass %.1f ms, writing %.1f ms -> %s\n",
        prims.size(), skipped, count, faces, lines, drawing.visible.size(), drawing.hidden.size(),
        tRead, tTess, tInter, tHide, tWrite, output.c_str());
    return 0;
}

int main(int argc, char** argv) {
    // The model and the drawing's pieces are kept in standard containers: a run out of memory
    // there ends with one line and a failure code, as a failed hide pass does, the objects
    // tessellated so far released on the way out.
    try {
        return drawModel(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "vogedraw: out of memory\n");
        return 1;
    }
}
