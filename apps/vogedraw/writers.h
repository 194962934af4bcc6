// The drawing of vogedraw: the visible and hidden pieces of every line, in drawing coordinates
// (X right, Y down the sheet), and the SVG and DXF writers.
#ifndef VOGEDRAW_WRITERS_H
#define VOGEDRAW_WRITERS_H

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "hd_records.h"

namespace vogedraw {

/// A piece of a line projected on the drawing plane.
struct Segment {
    double x0, y0, x1, y1;
};

/// What the drawing shows.
struct Drawing {
    std::vector<Segment> visible;
    std::vector<Segment> hidden;
};

/// The drawing of the n objects after the hide pass returned visible (its pieces in object and
/// line order, each line run from its near end, as kestHideObject gives them): the visible
/// pieces, and for each line the parts of it that no visible piece covers.
Drawing splitPieces(geolib::_s_hd_prof_* const* objs, int n, const geolib::_s_hd_proline_* visible);

/// Draws every stretch of an edge once: each piece gives up the parts of it that pieces before
/// it cover along the same line (each one's ends within 1e-6 of the drawing's largest coordinate
/// of the other's line), the visible pieces coming before the hidden ones. Two solids that butt
/// (a pipe and its elbow or reducer, a head and its shell) each draw their shared rim, and each
/// solid's faces hide it in pieces of their own; face intersection adds its cut along edges that
/// are drawn already. So a rim drawn twice goes once, a hidden piece goes where a visible one
/// covers it, and a dashed line is not drawn over itself with its dashes out of step. Pieces
/// shorter than about a thousandth of the drawing may keep what they overlap. Returns how many
/// pieces were dropped or cut short.
std::size_t dropOverlappedParts(Drawing& d);

/// An SVG sheet 1600 pixels wide fitted to the drawing: visible pieces solid black, and with
/// hidden set the hidden pieces dashed grey beneath them. False on a write error.
bool writeSvg(std::FILE* f, const Drawing& d, bool hidden);

/// An ASCII DXF (R12 entities) in model units with Y up: LINE entities on layer VISIBLE and,
/// dashed, on layer HIDDEN. False on a write error.
bool writeDxf(std::FILE* f, const Drawing& d);

/// Runs write on a temporary file beside path and renames it to path when write succeeds;
/// otherwise removes it and leaves path as it was. False with error set (one line) on failure.
bool writeAtomically(const std::string& path, const std::function<bool(std::FILE*)>& write,
                     std::string& error);

}  // namespace vogedraw

#endif  // VOGEDRAW_WRITERS_H
