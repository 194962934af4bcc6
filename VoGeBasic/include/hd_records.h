// Hidden-line records of namespace geolib.
//
// One _s_hd_prof_ object per solid primitive: a list of planar faces (each a chain of vertex
// nodes) and a list of profile lines (edges and silhouettes), with the object's bounding box.
// The tessellators (hd_tessellators.h) build these objects and the hide pass reads them.
// All records are plain structs allocated with malloc and released with free, without
// constructors or methods. Callers build and walk the lists themselves, so field order and
// field types are fixed and checked at compile time below.
//
// The model is viewed along Z: X and Y are drawing-plane coordinates, Z is depth (the smaller
// Z is nearer to the viewer).
#ifndef VOGEBASIC_HD_RECORDS_H
#define VOGEBASIC_HD_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "VoGeBasicExport.h"

namespace geolib {

/// A point (or a vector) of the hidden-line model, passed by value.
struct _s_hd_point_ {
    double x;  ///< X coordinate
    double y;  ///< Y coordinate
    double z;  ///< Z coordinate (depth)
};

/// One vertex of a face. A face is an open chain of these nodes, closed implicitly by the edge
/// from the last vertex back to the first; faces are planar and have three or four vertices.
struct _s_hd_sect_ {
    _s_hd_sect_* next;  ///< next vertex of the same face; null at the last
    _s_hd_point_ pt;    ///< the vertex
};

/// One face of an object: a node of the object's face list.
struct _s_hd_prosect_ {
    _s_hd_sect_* sect;       ///< owned: head of the face's vertex chain
    std::int32_t tag;        ///< face tag of the tessellators that tell faces apart; 0 otherwise
    std::uint32_t reserved;  ///< kept for layout compatibility; never read by the library
    _s_hd_prosect_* next;    ///< next face; null at the last
};

/// One profile line, a straight segment in model space: the node of an object's line list and
/// of every line list the hide pass returns.
struct _s_hd_proline_ {
    _s_hd_point_ start;    ///< first end point
    _s_hd_point_ end;      ///< second end point
    double reserved;       ///< kept for layout compatibility; never read by the library
    std::int32_t owner;    ///< -1 for a line of an object; the object's index in hide results
    _s_hd_proline_* next;  ///< next line; null at the last
};

/// One solid (hidden-line object).
struct _s_hd_prof_ {
    _s_hd_prosect_* prosect;  ///< owned: head of the face list; null when there are no faces
    _s_hd_proline_* proline;  ///< owned: head of the line list; null when there are no lines
    /// Bounding box of all vertices and line end points, in this order: X maximum, X minimum,
    /// Y maximum, Y minimum, Z maximum, Z minimum.
    double box[6];
};

// ---- allocation ---------------------------------------------------------------------------------

/// One new object with null face and line lists; the box is left unset (the caller seeds it).
/// Returns a new object owned by the caller; release it with freeHDProfObjectPointer. Returns
/// null if the allocation fails.
VOGEBASIC_API _s_hd_prof_* mallocHDProfObject();
/// One new vertex node with a null next; the point is left unset.
/// Returns a new node owned by the caller; release it with freeHDSectPointer. Returns null if
/// the allocation fails.
VOGEBASIC_API _s_hd_sect_* mallocHDSect();

// ---- release ------------------------------------------------------------------------------------
// Each accepts null and leaves the caller's variable null, so a second release is harmless.
// Lists are walked with loops, whatever their length.

/// Releases the object's line list, then its face list, then the object; obj becomes null.
VOGEBASIC_API void freeHDProfObjectPointer(_s_hd_prof_*& obj);
/// Frees every node of the vertex chain starting at head; head becomes null.
VOGEBASIC_API void freeHDSectPointer(_s_hd_sect_*& head);
/// Frees every node of the line list starting at head; head becomes null.
VOGEBASIC_API void releaseProline(_s_hd_proline_*& head);
/// Frees every face of the list with its vertex chain; head becomes null.
VOGEBASIC_API void releaseProsect(_s_hd_prosect_*& head);

// ---- layout checks ------------------------------------------------------------------------------
static_assert(std::is_standard_layout<_s_hd_point_>::value && sizeof(_s_hd_point_) == 24,
              "_s_hd_point_ layout");
static_assert(offsetof(_s_hd_point_, y) == 8 && offsetof(_s_hd_point_, z) == 16,
              "_s_hd_point_ fields");
static_assert(std::is_standard_layout<_s_hd_sect_>::value && sizeof(_s_hd_sect_) == 32,
              "_s_hd_sect_ layout");
static_assert(offsetof(_s_hd_sect_, pt) == 8, "_s_hd_sect_ fields");
static_assert(std::is_standard_layout<_s_hd_prosect_>::value && sizeof(_s_hd_prosect_) == 24,
              "_s_hd_prosect_ layout");
static_assert(offsetof(_s_hd_prosect_, tag) == 8 && offsetof(_s_hd_prosect_, reserved) == 12 &&
                  offsetof(_s_hd_prosect_, next) == 16,
              "_s_hd_prosect_ fields");
static_assert(std::is_standard_layout<_s_hd_proline_>::value && sizeof(_s_hd_proline_) == 72,
              "_s_hd_proline_ layout");
static_assert(offsetof(_s_hd_proline_, end) == 24 && offsetof(_s_hd_proline_, reserved) == 48 &&
                  offsetof(_s_hd_proline_, owner) == 56 && offsetof(_s_hd_proline_, next) == 64,
              "_s_hd_proline_ fields");
static_assert(std::is_standard_layout<_s_hd_prof_>::value && sizeof(_s_hd_prof_) == 64,
              "_s_hd_prof_ layout");
static_assert(offsetof(_s_hd_prof_, proline) == 8 && offsetof(_s_hd_prof_, box) == 16,
              "_s_hd_prof_ fields");

}  // namespace geolib

#endif  // VOGEBASIC_HD_RECORDS_H
