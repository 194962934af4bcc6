// The visible and hidden pieces of the drawing, and its SVG and DXF files.
#include "writers.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "hd_engine.h"

namespace vogedraw {
namespace {

using geolib::_s_hd_point_;
using geolib::_s_hd_prof_;
using geolib::_s_hd_proline_;

struct Extent {
    double xmin = 0, ymin = 0, xmax = 1, ymax = 1;
};

Extent extentOf(const Drawing& d) {
    Extent e{1e300, 1e300, -1e300, -1e300};
    for (const std::vector<Segment>* set : {&d.visible, &d.hidden}) {
        for (const Segment& s : *set) {
            e.xmin = std::fmin(e.xmin, std::fmin(s.x0, s.x1));
            e.xmax = std::fmax(e.xmax, std::fmax(s.x0, s.x1));
            e.ymin = std::fmin(e.ymin, std::fmin(s.y0, s.y1));
            e.ymax = std::fmax(e.ymax, std::fmax(s.y0, s.y1));
        }
    }
    if (!(e.xmax >= e.xmin && e.ymax >= e.ymin))
        return Extent{};
    return e;
}

_s_hd_point_ sub(_s_hd_point_ a, _s_hd_point_ b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
double dot(_s_hd_point_ a, _s_hd_point_ b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// Where q lies along the line s + t (e - s), and whether it lies on it within tol.
bool along(const _s_hd_proline_& line, _s_hd_point_ q, double tol, double& t) {
    const _s_hd_point_ d = sub(line.end, line.start);
    const double len2 = dot(d, d);
    const _s_hd_point_ r = sub(q, line.start);
    if (len2 <= tol * tol) {
        t = 0;
        return dot(r, r) <= tol * tol;
    }
    t = dot(r, d) / len2;
    const _s_hd_point_ off{r.x - t * d.x, r.y - t * d.y, r.z - t * d.z};
    const double slack = tol / std::sqrt(len2);
    return dot(off, off) <= tol * tol && t >= -slack && t <= 1 + slack;
}

Segment part(const _s_hd_proline_& line, double t0, double t1) {
    const _s_hd_point_ d = sub(line.end, line.start);
    return {line.start.x + t0 * d.x, line.start.y + t0 * d.y, line.start.x + t1 * d.x,
            line.start.y + t1 * d.y};
}

}  // namespace

Drawing splitPieces(_s_hd_prof_* const* objs, int n, const _s_hd_proline_* visible) {
    Drawing d;
    double size = 1;
    for (int i = 0; i < n; ++i) {
        if (objs[i] != nullptr) {
            for (int k = 0; k < 6; ++k)
                size = std::fmax(size, std::fabs(objs[i]->box[k]));
        }
    }
    const double tol = 1e-7 * size;
    for (const _s_hd_proline_* p = visible; p != nullptr; p = p->next)
        d.visible.push_back({p->start.x, p->start.y, p->end.x, p->end.y});

    // The pieces come line after line; a line takes the pieces that follow on from each other
    // along it, and what lies between them (and beyond the last) is hidden.
    const _s_hd_proline_* p = visible;
    for (int i = 0; i < n; ++i) {
        if (objs[i] == nullptr)
            continue;
        while (p != nullptr && p->owner < i)
            p = p->next;
        for (const _s_hd_proline_* line = objs[i]->proline; line != nullptr; line = line->next) {
            const double slack =
                tol /
                std::fmax(std::sqrt(dot(sub(line->end, line->start), sub(line->end, line->start))),
                          tol);
            double covered = 0;
            double ta = 0, tb = 0;
            while (p != nullptr && p->owner == i && along(*line, p->start, tol, ta) &&
                   along(*line, p->end, tol, tb) && std::fmin(ta, tb) >= covered - slack) {
                if (std::fmin(ta, tb) > covered + slack)
                    d.hidden.push_back(part(*line, covered, std::fmin(ta, tb)));
                covered = std::fmax(covered, std::fmax(ta, tb));
                p = p->next;
            }
            if (covered < 1 - slack)
                d.hidden.push_back(part(*line, covered, 1));
        }
    }
    return d;
}

// Two pieces lie along one line of the drawing where the ends of each lie within this share of
// the drawing's largest coordinate of the other's line: a millionth, a hundredth of a pixel
// across the sheet, where their ends were worked out along lines of different solids.
constexpr double kRepeatTol = 1e-6;
// The pieces are filed by their direction, in steps of this angle, and by their line's offset
// from the origin, in steps of this share of the drawing's largest coordinate: two pieces along
// one line fall in the same step or the next of each, unless one is shorter than about a
// thousandth of the drawing (whose direction the tolerance leaves that loose), and those keep
// what they overlap.
constexpr double kDirectionStep = 2e-3;
constexpr double kOffsetStep = 2e-3;
constexpr double kHalfTurn = 3.14159265358979323846;
// The grid that finds the pieces near a piece has about one cell a piece, and at most this many
// cells a side.
constexpr long kMostCellsAcross = 2048;

namespace {

// A piece of the drawing as the trimming files it: its direction turned to [0, pi), that
// direction's step and its line's offset's.
struct Filed {
    const Segment* s;
    double length;
    double ux, uy;  ///< unit direction, uy > 0 or uy == 0 < ux
    long angle;     ///< the direction's step; -1: not filed (no length, or not finite)
    double offset;  ///< -uy x + ux y at the piece's start
    long step;      ///< the offset's step
};

// How far (x, y) lies from the line of a, whose length is len.
double offLine(const Segment& a, double len, double x, double y) {
    return std::fabs((a.x1 - a.x0) * (y - a.y0) - (a.y1 - a.y0) * (x - a.x0)) / len;
}

// A grid of square cells over the filed pieces. Each piece is entered in the cells of points
// along it, less than half a cell apart, ends included: two pieces that share a point (to within
// a tolerance below half a cell) have points of theirs less than a cell apart, in the same cell
// or neighbouring ones. Each cell lists its pieces in the order entered.
class PieceGrid {
public:
    /// A piece as a cell lists it: its place in the list and its steps (Filed).
    struct Entry {
        std::size_t index;
        long angle, step;
    };

    PieceGrid(const std::vector<Filed>& all, double tol) {
        double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
        std::size_t filed = 0;
        for (const Filed& f : all) {
            if (f.angle < 0)
                continue;
            ++filed;
            x0 = std::fmin(x0, std::fmin(f.s->x0, f.s->x1));
            x1 = std::fmax(x1, std::fmax(f.s->x0, f.s->x1));
            y0 = std::fmin(y0, std::fmin(f.s->y0, f.s->y1));
            y1 = std::fmax(y1, std::fmax(f.s->y0, f.s->y1));
        }
        xmin_ = x0;
        ymin_ = y0;
        const double extent = std::fmax(x1 - x0, y1 - y0);
        across_ = std::min(kMostCellsAcross,
                           static_cast<long>(std::sqrt(static_cast<double>(filed))) + 1);
        cell_ = extent / static_cast<double>(across_);
        if (!(cell_ > 4 * tol)) {  // a drawing a few tolerances across: one cell
            across_ = 1;
            cell_ = HUGE_VAL;
        }
        first_.assign(static_cast<std::size_t>(across_ * across_) + 1, 0);
        for (const Filed& f : all)
            cellsOf(f, [&](long c) { ++first_[static_cast<std::size_t>(c) + 1]; });
        for (std::size_t c = 1; c < first_.size(); ++c)
            first_[c] += first_[c - 1];
        asked_.assign(first_.size() - 1, SIZE_MAX);
        std::vector<std::size_t> at(first_.begin(), first_.end() - 1);
        pieces_.resize(first_.back());
        for (std::size_t i = 0; i < all.size(); ++i)
            cellsOf(all[i], [&](long c) {
                pieces_[at[static_cast<std::size_t>(c)]++] = {i, all[i].angle, all[i].step};
            });
    }

    /// Calls visit(e) for the entries e of the pieces entered in the cells of f's points and their
    /// neighbours, each cell's in order until visit returns false, a piece once per cell it is in;
    /// f is the asker'th to ask (each cell is read once an asker).
    template <class Visit>
    void near(const Filed& f, std::size_t asker, Visit&& visit) {
        cellsOf(f, [&](long c) {
            const long cx = c / across_, cy = c % across_;
            for (long x = std::max(0L, cx - 1); x <= std::min(across_ - 1, cx + 1); ++x) {
                for (long y = std::max(0L, cy - 1); y <= std::min(across_ - 1, cy + 1); ++y) {
                    const std::size_t n = static_cast<std::size_t>(x * across_ + y);
                    if (asked_[n] == asker)
                        continue;
                    asked_[n] = asker;
                    for (std::size_t k = first_[n]; k < first_[n + 1]; ++k) {
                        if (!visit(pieces_[k]))
                            break;
                    }
                }
            }
        });
    }

private:
    // The cells of f's points (a cell once where points in turn fall in it), none for a piece
    // not filed. Filed pieces have finite coordinates, within the grid: whole cell numbers.
    template <class Visit>
    void cellsOf(const Filed& f, Visit&& visit) const {
        if (f.angle < 0)
            return;
        const double span = across_ == 1 ? 0.0 : std::ceil(2.0 * f.length / cell_);
        const long points = static_cast<long>(std::fmin(span, 4.0 * kMostCellsAcross)) + 2;
        long last = -1;
        for (long k = 0; k < points; ++k) {
            const double t = static_cast<double>(k) / static_cast<double>(points - 1);
            const double x = f.s->x0 + t * (f.s->x1 - f.s->x0);
            const double y = f.s->y0 + t * (f.s->y1 - f.s->y0);
            const long c = index((x - xmin_) / cell_) * across_ + index((y - ymin_) / cell_);
            if (c != last)
                visit(c);
            last = c;
        }
    }
    long index(double at) const {
        return at >= 0 ? std::min(across_ - 1, static_cast<long>(at)) : 0;
    }

    double xmin_ = 0, ymin_ = 0, cell_ = HUGE_VAL;
    long across_ = 1;
    std::vector<std::size_t> first_;  ///< cell c's pieces are pieces_[first_[c]] on
    std::vector<Entry> pieces_;
    std::vector<std::size_t> asked_;  ///< per cell, the last asker that read it
};

}  // namespace

std::size_t dropOverlappedParts(Drawing& d) {
    double size = 1;
    for (const std::vector<Segment>* set : {&d.visible, &d.hidden})
        for (const Segment& s : *set)
            size = std::fmax(size, std::fmax(std::fmax(std::fabs(s.x0), std::fabs(s.y0)),
                                             std::fmax(std::fabs(s.x1), std::fabs(s.y1))));
    if (!std::isfinite(size))
        return 0;
    const double tol = kRepeatTol * size;
    const double offsetStep = kOffsetStep * size;
    const long angles = static_cast<long>(std::ceil(kHalfTurn / kDirectionStep));
    // The visible pieces first: a piece gives up what the pieces before it cover, so a hidden
    // piece what a visible one does.
    std::vector<Filed> all;
    all.reserve(d.visible.size() + d.hidden.size());
    for (const std::vector<Segment>* set : {&d.visible, &d.hidden}) {
        for (const Segment& s : *set) {
            Filed f{&s, std::hypot(s.x1 - s.x0, s.y1 - s.y0), 0, 0, -1, 0, 0};
            if (std::isfinite(f.length) && f.length > tol) {
                f.ux = (s.x1 - s.x0) / f.length;
                f.uy = (s.y1 - s.y0) / f.length;
                if (f.uy < 0 || (f.uy == 0 && f.ux < 0)) {
                    f.ux = -f.ux;
                    f.uy = -f.uy;
                }
                // Finite coordinates within size: the steps are small whole numbers.
                const double angle = std::atan2(f.uy, f.ux) / kDirectionStep;
                f.angle = std::min(angles - 1, static_cast<long>(angle));
                f.offset = -f.uy * s.x0 + f.ux * s.y0;
                f.step = static_cast<long>(std::floor(f.offset / offsetStep));
            }
            all.push_back(f);
        }
    }
    // True when q is filed in p's direction step or the next either way, and in its offset step
    // or the next either way: across 0 and pi a direction turns round, and the offset with it.
    auto filedNear = [&](const PieceGrid::Entry& q, const Filed& p) {
        for (long da = -1; da <= 1; ++da) {
            const long a = p.angle + da;
            const bool round = a < 0 || a >= angles;
            if (q.angle != (a + angles) % angles)
                continue;
            const long step =
                round ? static_cast<long>(std::floor(-p.offset / offsetStep)) : p.step;
            if (q.step >= step - 1 && q.step <= step + 1)
                return true;
        }
        return false;
    };
    PieceGrid grid(all, tol);
    std::vector<std::size_t> seen(all.size(), SIZE_MAX);  // the last piece i was asked for
    Drawing kept;
    kept.visible.reserve(d.visible.size());
    kept.hidden.reserve(d.hidden.size());
    std::size_t trimmed = 0;
    std::vector<std::pair<double, double>> covered;
    std::vector<std::pair<double, double>> left;
    for (std::size_t j = 0; j < all.size(); ++j) {
        const Filed& p = all[j];
        const Segment& s = *p.s;
        std::vector<Segment>& out = j < d.visible.size() ? kept.visible : kept.hidden;
        if (p.angle < 0) {
            out.push_back(s);
            continue;
        }
        // The parts of p (0 to 1 from its start) that pieces before it along its line cover:
        // each such piece shares a point with p, so the grid finds it.
        covered.clear();
        const double dx = (s.x1 - s.x0) / (p.length * p.length);
        const double dy = (s.y1 - s.y0) / (p.length * p.length);
        grid.near(p, j, [&](const PieceGrid::Entry& e) {
            const std::size_t i = e.index;
            if (i >= j)
                return false;  // the cell's pieces after p's
            if (!filedNear(e, p) || seen[i] == j)
                return true;
            seen[i] = j;
            const Segment& q = *all[i].s;
            if (offLine(s, p.length, q.x0, q.y0) <= tol &&
                offLine(s, p.length, q.x1, q.y1) <= tol &&
                offLine(q, all[i].length, s.x0, s.y0) <= tol &&
                offLine(q, all[i].length, s.x1, s.y1) <= tol) {
                const double t0 = (q.x0 - s.x0) * dx + (q.y0 - s.y0) * dy;
                const double t1 = (q.x1 - s.x0) * dx + (q.y1 - s.y0) * dy;
                covered.push_back({std::fmin(t0, t1), std::fmax(t0, t1)});
            }
            return true;
        });
        // What is left: the parts of p between the pieces that overlap it by more than the
        // tolerance, each longer than the tolerance.
        const double slack = tol / p.length;
        std::sort(covered.begin(), covered.end());
        left.clear();
        double from = 0;
        for (const auto& c : covered) {
            if (!(c.second > slack && c.first < 1 - slack))
                continue;
            if (c.first > from + slack)
                left.push_back({from, c.first});
            from = std::fmax(from, c.second);
        }
        if (from < 1 - slack)
            left.push_back({from, 1});
        if (left.size() == 1 && left[0].first == 0 && left[0].second == 1) {
            out.push_back(s);
            continue;
        }
        ++trimmed;
        for (const auto& [t0, t1] : left)
            out.push_back({s.x0 + t0 * (s.x1 - s.x0), s.y0 + t0 * (s.y1 - s.y0),
                           s.x0 + t1 * (s.x1 - s.x0), s.y0 + t1 * (s.y1 - s.y0)});
    }
    d = std::move(kept);
    return trimmed;
}

bool writeSvg(std::FILE* f, const Drawing& d, bool hidden) {
    const Extent e = extentOf(d);
    const double width = 1600.0;
    const double margin = 20.0;
    const double scale = (width - 2 * margin) / std::fmax(e.xmax - e.xmin, 1e-9);
    const double height = std::fmin((e.ymax - e.ymin) * scale, 1e6) + 2 * margin;
    bool ok = std::fprintf(f,
                           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" "
                           "height=\"%.0f\" viewBox=\"0 0 %.0f %.0f\">\n"
                           "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
                           width, height, width, height) > 0;
    auto path = [&](const std::vector<Segment>& set, const char* style) {
        if (set.empty())
            return;
        ok = std::fprintf(f, "<path %s d=\"", style) > 0 && ok;
        for (const Segment& s : set) {
            ok = std::fprintf(f, "M%.2f %.2fL%.2f %.2f", margin + (s.x0 - e.xmin) * scale,
                              margin + (s.y0 - e.ymin) * scale, margin + (s.x1 - e.xmin) * scale,
                              margin + (s.y1 - e.ymin) * scale) > 0 &&
                 ok;
        }
        ok = std::fprintf(f, "\"/>\n") > 0 && ok;
    };
    if (hidden) {
        path(d.hidden,
             "fill=\"none\" stroke=\"#9a9a9a\" stroke-width=\"0.8\" stroke-dasharray=\"4 3\"");
    }
    path(d.visible, "fill=\"none\" stroke=\"black\" stroke-width=\"1.2\" stroke-linecap=\"round\"");
    return std::fprintf(f, "</svg>\n") > 0 && ok;
}

bool writeDxf(std::FILE* f, const Drawing& d) {
    const Extent e = extentOf(d);
    // Dashes of about a two-hundredth of the drawing's size.
    const double dash = std::fmax(std::fmax(e.xmax - e.xmin, e.ymax - e.ymin), 1e-6) / 200.0;
    bool ok = std::fprintf(f,
                           "0\nSECTION\n2\nHEADER\n"
                           "9\n$ACADVER\n1\nAC1009\n"
                           "9\n$EXTMIN\n10\n%.10g\n20\n%.10g\n30\n0.0\n"
                           "9\n$EXTMAX\n10\n%.10g\n20\n%.10g\n30\n0.0\n"
                           "0\nENDSEC\n",
                           e.xmin, -e.ymax, e.xmax, -e.ymin) > 0;
    ok = std::fprintf(f,
                      "0\nSECTION\n2\nTABLES\n"
                      "0\nTABLE\n2\nLTYPE\n70\n2\n"
                      "0\nLTYPE\n2\nCONTINUOUS\n70\n0\n3\nSolid line\n72\n65\n73\n0\n40\n0.0\n"
                      "0\nLTYPE\n2\nDASHED\n70\n0\n3\nDashed __ __ __\n72\n65\n73\n2\n"
                      "40\n%.10g\n49\n%.10g\n49\n%.10g\n"
                      "0\nENDTAB\n"
                      "0\nTABLE\n2\nLAYER\n70\n2\n"
                      "0\nLAYER\n2\nVISIBLE\n70\n0\n62\n7\n6\nCONTINUOUS\n"
                      "0\nLAYER\n2\nHIDDEN\n70\n0\n62\n8\n6\nDASHED\n"
                      "0\nENDTAB\n"
                      "0\nENDSEC\n"
                      "0\nSECTION\n2\nBLOCKS\n0\nENDSEC\n"
                      "0\nSECTION\n2\nENTITIES\n",
                      2 * dash, dash, -dash) > 0 &&
         ok;
    // Drawing Y runs down the sheet; DXF's runs up. Rounding noise near zero is written as 0.
    const double tiny = 1e-12 * std::fmax(std::fmax(std::fabs(e.xmin), std::fabs(e.xmax)),
                                          std::fmax(std::fabs(e.ymin), std::fabs(e.ymax)));
    auto clean = [tiny](double v) { return std::fabs(v) <= tiny ? 0.0 : v; };
    auto lines = [&](const std::vector<Segment>& set, const char* layer) {
        for (const Segment& s0 : set) {
            const Segment s{clean(s0.x0), clean(-s0.y0), clean(s0.x1), clean(-s0.y1)};
            ok = std::fprintf(f,
                              "0\nLINE\n8\n%s\n10\n%.10g\n20\n%.10g\n30\n0.0\n11\n%.10g\n21\n%."
                              "10g\n31\n0.0\n",
                              layer, s.x0, s.y0, s.x1, s.y1) > 0 &&
                 ok;
        }
    };
    lines(d.hidden, "HIDDEN");
    lines(d.visible, "VISIBLE");
    return std::fprintf(f, "0\nENDSEC\n0\nEOF\n") > 0 && ok;
}

bool writeAtomically(const std::string& path, const std::function<bool(std::FILE*)>& write,
                     std::string& error) {
    std::string temp = path + ".tmp-XXXXXX";
    std::vector<char> name(temp.begin(), temp.end());
    name.push_back('\0');
    const int fd = ::mkstemp(name.data());
    if (fd < 0) {
        error = path + ": cannot write: " + std::strerror(errno);
        return false;
    }
    temp = name.data();
    std::FILE* f = ::fdopen(fd, "w");
    if (f == nullptr) {
        error = path + ": cannot write: " + std::strerror(errno);
        ::close(fd);
        std::remove(temp.c_str());
        return false;
    }
    bool ok = write(f);
    ok = std::fflush(f) == 0 && ok;
    ok = std::fclose(f) == 0 && ok;
    if (!ok) {
        error = path + ": write error: " + std::strerror(errno);
        std::remove(temp.c_str());
        return false;
    }
    // mkstemp makes the file private; give it the usual mode of a new file.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(temp.c_str(), 0666 & ~mask);
    if (std::rename(temp.c_str(), path.c_str()) != 0) {
        error = path + ": cannot write: " + std::strerror(errno);
        std::remove(temp.c_str());
        return false;
    }
    return true;
}

}  // namespace vogedraw
