// Plant-like scenes for the example drawing, the benchmarks and the engine tests.
//
// Not part of the library: a deterministic generator of primitives (pipe racks of columns,
// beams and braces; pumps, vessels, drums, tanks and their supports; pipes on the racks)
// placed in world coordinates (X east, Y north, Z up) and turned into drawing coordinates by
// an oblique view, so that objects overlap in the drawing plane at many depths, hide each
// other and in places cut through each other.
#ifndef VOGEBASIC_EXAMPLES_PLANT_SCENE_H
#define VOGEBASIC_EXAMPLES_PLANT_SCENE_H

#include <cstdint>
#include <vector>

#include "VoGeBasic.h"

namespace vgscene {

using Pt = geolib::_s_hd_point_;

/// One primitive, in drawing coordinates, with the arguments of its tessellator.
struct Primitive {
    enum class Kind { Box, Wedge, Prism, Disc };
    Kind kind = Kind::Box;
    double a = 0, b = 0, c = 0;  ///< Box: edge lengths along u and v, height. Wedge: c = h.
    Pt p{}, u{}, v{};            ///< Box: corner and unit edge directions.
    Pt pa{}, pb{}, pc{};         ///< Wedge: triangle. Prism: axis pa -> pb, pc = a base vertex.
    int n = 0;                   ///< Prism: number of sides. Box: flag.
    Pt center{}, normal{};       ///< Disc: centre and normal; a = radius.
};

/// A parallel view: drawing = R . world, rows of R = screen right, screen down, depth.
struct View {
    double r[3][3];
    /// Oblique view from the given azimuth (degrees from south, turning east) and elevation.
    static View oblique(double azimuthDeg, double elevationDeg);
    Pt point(double x, double y, double z) const;
};

/// The built-in drawing: a short pipe rack with pipes, two boxes one behind the other, a box
/// seen from a corner, a vertical vessel with its heads, a horizontal drum on saddles.
std::vector<Primitive> builtinPlant();

/// About n primitives (exactly n when n > 0) of plant-like equipment, the same for the same
/// n and seed on every machine.
std::vector<Primitive> generatePlant(int n, std::uint32_t seed = 1);

/// The primitive's hidden-line object, or null when the tessellator returns null.
geolib::_s_hd_prof_* tessellate(const Primitive& prim);

/// Tessellates all primitives, keeping the non-null objects in order.
std::vector<geolib::_s_hd_prof_*> tessellateAll(const std::vector<Primitive>& prims);

/// Releases every object of the vector and clears it.
void releaseAll(std::vector<geolib::_s_hd_prof_*>& objs);

}  // namespace vgscene

#endif  // VOGEBASIC_EXAMPLES_PLANT_SCENE_H
