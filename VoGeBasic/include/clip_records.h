// Clipping records of namespace geolib.
//
// Plain records allocated one at a time with malloc by the malloc* functions below and
// released only by the matching free* functions; they have no constructors or destructors
// (BOX and Box3D excepted, which are value types). The first field of every list record links
// to the next record of the same type and a null link ends a list, except a convex polygon's
// edge ring, which closes on itself. Callers build and walk these lists themselves, so field
// order and field types are fixed and checked at compile time.
//
// Parameters: along a straight piece t runs from 0 at `start` to 1 at `end`; along an arc it is
// the angle in radians about the centre, counter-clockwise from +X.
#ifndef VOGEBASIC_CLIP_RECORDS_H
#define VOGEBASIC_CLIP_RECORDS_H

#include <cstddef>
#include <type_traits>

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"

namespace geolib {

/// One interval [t0, t1] of a piece. Lists are kept sorted by t0 and disjoint. An arc interval
/// with t1 < t0 runs through angle 0: it stands for [t0 - 2pi, t1].
struct paramt {
    paramt* next;  ///< next interval; null ends the list
    double t0;     ///< start of the interval
    double t1;     ///< end of the interval
};

/// One straight edge. As the edge list of a convex polygon it is a ring.
struct line {
    line* next;         ///< next edge (a ring link inside a convex polygon)
    VoGePoint3D start;  ///< first end
    VoGePoint3D end;    ///< second end
};

/// A straight piece with its parameter intervals (visible while it is trimmed).
struct line_cut {
    line_cut* next;     ///< next piece; null ends the list
    VoGePoint3D start;  ///< parameter 0
    VoGePoint3D end;    ///< parameter 1
    paramt* params;     ///< owned: the piece's intervals in [0, 1]
};

/// An arc of a circle in a plane parallel to XY; allocated and freed only by the library.
struct arc {
    arc* next;           ///< next arc
    VoGePoint3D center;  ///< centre
    double radius;       ///< radius, model units
    double startAngle;   ///< radians
    double endAngle;     ///< radians
};

/// An arc with its angular intervals.
struct arc_cut {
    arc_cut* next;       ///< next arc; null ends the list
    VoGePoint3D center;  ///< centre
    double radius;       ///< radius, model units
    double startAngle;   ///< radians
    double endAngle;     ///< radians
    paramt* params;      ///< owned: the arc's intervals, angles in radians
};

/// A full circle in a plane parallel to XY; allocated and freed only by the library.
struct circle {
    circle* next;        ///< next circle
    VoGePoint3D center;  ///< centre
    double radius;       ///< radius, model units
};

/// A loose point with a parameter (vertices of polylines, for instance).
struct point {
    point* next;     ///< next point; null ends the list
    VoGePoint3D pt;  ///< the point
    double param;    ///< a parameter for the caller; 0 on allocation
};

/// One convex polygon as a closed ring of edges, each edge's end equal to the next edge's
/// start, counter-clockwise. A list of convex records is a list of polygons.
struct convex {
    convex* next;  ///< next polygon; null ends the list
    line* edges;   ///< owned: the edge ring (any edge of it)
};

/// An axis-aligned box in the drawing plane (a value type).
struct VOGEBASIC_API BOX {
    double xmin;  ///< smallest x
    double xmax;  ///< largest x
    double ymin;  ///< smallest y
    double ymax;  ///< largest y

    /// The empty box: minima 1e21, maxima -1e21, so that the first expand or update sets it.
    BOX();
    /// Stores the values in field order (xmin, xmax, ymin, ymax).
    void set(double xmin, double xmax, double ymin, double ymax);
    /// xmin/ymin from a, xmax/ymax from b, unsorted.
    void set(const VoGePoint3D& a, const VoGePoint3D& b);
    /// The same from two arrays (x, y).
    void set(double* const a, double* const b);
    /// Sorted: each minimum the smaller, each maximum the larger coordinate of a and b.
    void set1(const VoGePoint3D& a, const VoGePoint3D& b);
    /// lb = (xmin, ymin, 0), rt = (xmax, ymax, 0).
    void getLbrt(VoGePoint3D& lb, VoGePoint3D& rt) const;
    /// Inside or on the box; a coordinate fails only when it lies beyond a side by more than
    /// 1e-6.
    bool contains(const VoGePoint3D& p) const;
    /// Grows the box to take in p (x and y).
    void expand(const VoGePoint3D& p);
    /// Union with o.
    void update(const BOX& o);
    /// Moves every side inward by d and returns the box itself: a positive d shrinks the box,
    /// a negative d grows it.
    BOX& swell(double d);
};

/// An axis-aligned box in space (a value type).
struct VOGEBASIC_API Box3D {
    VoGePoint3D min;  ///< minimum corner
    VoGePoint3D max;  ///< maximum corner

    /// min = a, max = b, unsorted.
    void set(const VoGePoint3D& a, const VoGePoint3D& b);
    /// Per coordinate, min the smaller and max the larger value.
    void set1(const VoGePoint3D& a, const VoGePoint3D& b);
    /// Inside or on the box, with 1e-6 on each of the six sides.
    bool contain(const VoGePoint3D& p) const;
    /// False as soon as the boxes are apart on x, y or z (strictly); boxes that only touch
    /// intersect.
    bool intersectWith(const Box3D& o) const;
};

/// A parallelepiped: p0 one corner, p1, p2, p3 the three corners sharing an edge with it.
struct BoxP4 {
    VoGePoint3D p0;  ///< the first corner
    VoGePoint3D p1;  ///< the corner along the first edge
    VoGePoint3D p2;  ///< the corner along the second edge
    VoGePoint3D p3;  ///< the corner along the third edge
};

// ---- allocation ------------------------------------------------------------------------------
// Each returns one new record owned by the caller (release it with the matching free*), or null
// if an allocation fails; a record that needed a second allocation is given back then.

/// [0, 2pi] for an arc, [0, 1] for a line; next null.
VOGEBASIC_API paramt* mallocParamt(bool isArc);
/// next null, points left unset.
VOGEBASIC_API line* mallocLine();
/// next and params null, points left unset.
VOGEBASIC_API line_cut* mallocLineCut();
/// start s, end e, params one fresh interval [0, 1].
VOGEBASIC_API line_cut* mallocLineCut(const VoGePoint3D& s, const VoGePoint3D& e);
/// The same from two arrays of three doubles.
VOGEBASIC_API line_cut* mallocLineCut(double* const s, double* const e);
/// next null, the rest unset.
VOGEBASIC_API arc* mallocArc();
/// next and params null, the rest unset.
VOGEBASIC_API arc_cut* mallocArcCut();
/// centre c[0..2], radius r, angles a0..a1, params one interval [a0, a1].
VOGEBASIC_API arc_cut* mallocArcCut(const double* const c, double r, double a0, double a1);
/// next null, the rest unset.
VOGEBASIC_API circle* mallocCircle();
/// next null, param 0.0, the point unset.
VOGEBASIC_API point* mallocPoint();
/// next and edges null.
VOGEBASIC_API convex* mallocConvex();

// ---- release -----------------------------------------------------------------------------------
// Each frees a whole list and accepts null.

VOGEBASIC_API void freeParamt(paramt* list);
/// Stops at null or when the walk comes back to its first record: frees an open list or a ring.
VOGEBASIC_API void freeLine(line* list);
/// Frees each piece's intervals, then the piece.
VOGEBASIC_API void freeLineCut(line_cut* list);
/// Frees each arc's intervals, then the arc.
VOGEBASIC_API void freeArcCut(arc_cut* list);
/// Frees each polygon's edge ring, then the polygon.
VOGEBASIC_API void freeConvex(convex* list);
VOGEBASIC_API void freeCircle(circle* list);
VOGEBASIC_API void freeArc(arc* list);
VOGEBASIC_API void freePoint(point* list);

// ---- layout checks -----------------------------------------------------------------------------
static_assert(std::is_standard_layout<paramt>::value && sizeof(paramt) == 24, "paramt layout");
static_assert(offsetof(paramt, t0) == 8 && offsetof(paramt, t1) == 16, "paramt fields");
static_assert(std::is_standard_layout<line>::value && sizeof(line) == 56, "line layout");
static_assert(offsetof(line, start) == 8 && offsetof(line, end) == 32, "line fields");
static_assert(std::is_standard_layout<line_cut>::value && sizeof(line_cut) == 64, "line_cut");
static_assert(offsetof(line_cut, end) == 32 && offsetof(line_cut, params) == 56, "line_cut");
static_assert(std::is_standard_layout<arc>::value && sizeof(arc) == 56, "arc layout");
static_assert(offsetof(arc, radius) == 32 && offsetof(arc, endAngle) == 48, "arc fields");
static_assert(std::is_standard_layout<arc_cut>::value && sizeof(arc_cut) == 64, "arc_cut");
static_assert(offsetof(arc_cut, center) == 8 && offsetof(arc_cut, radius) == 32, "arc_cut");
static_assert(offsetof(arc_cut, startAngle) == 40 && offsetof(arc_cut, params) == 56, "arc_cut");
static_assert(std::is_standard_layout<circle>::value && sizeof(circle) == 40, "circle layout");
static_assert(offsetof(circle, radius) == 32, "circle fields");
static_assert(std::is_standard_layout<point>::value && sizeof(point) == 40, "point layout");
static_assert(offsetof(point, pt) == 8 && offsetof(point, param) == 32, "point fields");
static_assert(std::is_standard_layout<convex>::value && sizeof(convex) == 16, "convex layout");
static_assert(offsetof(convex, edges) == 8, "convex fields");
static_assert(std::is_standard_layout<BOX>::value && sizeof(BOX) == 32, "BOX layout");
static_assert(offsetof(BOX, xmax) == 8 && offsetof(BOX, ymin) == 16, "BOX field order");
static_assert(std::is_standard_layout<Box3D>::value && sizeof(Box3D) == 48, "Box3D layout");
static_assert(offsetof(Box3D, max) == 24, "Box3D fields");
static_assert(std::is_standard_layout<BoxP4>::value && sizeof(BoxP4) == 96, "BoxP4 layout");
static_assert(offsetof(BoxP4, p3) == 72, "BoxP4 fields");

}  // namespace geolib

#endif  // VOGEBASIC_CLIP_RECORDS_H
