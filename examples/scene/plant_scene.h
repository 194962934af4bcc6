// Plant-like scenes for the example drawing, the benchmarks and the engine tests.
//
// Not part of the library: a deterministic generator of primitives (pipe racks of columns,
// beams and braces; pumps, vessels, drums, tanks and their supports; pipes on the racks)
// placed in world coordinates (X east, Y north, Z up, in metres) and turned into drawing
// coordinates (millimetres, as plant models are) by an oblique view, so that objects overlap in
// the drawing plane at many depths, hide each other and in places cut through each other.
// Pipes, elbows, reducers, vessels with dished heads, spheres and ring platforms are built from
// the curved primitives; equipment and buildings from boxes and wedges; the rack's steel as I
// and H sections, slabs and floor plates from their outlines, duct transitions from rectangle to
// round and curved beams from the swept tessellators.
#ifndef VOGEBASIC_EXAMPLES_PLANT_SCENE_H
#define VOGEBASIC_EXAMPLES_PLANT_SCENE_H

#include <cstdint>
#include <vector>

#include "VoGeBasic.h"

namespace vgscene {

using Pt = geolib::_s_hd_point_;

/// One primitive, in drawing coordinates, with the arguments of its tessellator.
struct Primitive {
    enum class Kind {
        Box,
        Wedge,
        Prism,
        Disc,
        Cone,
        Sphere,
        Elbow,
        Head,
        RingPlate,
        Member,
        Plate,
        Transition,
        Bend
    };
    Kind kind = Kind::Box;
    /// Box: edge lengths along u and v, height. Wedge: c = h. Disc, Sphere: a = radius.
    /// Cone: a, b = radii at pa and pb. Elbow: a = tube radius, b = swept angle.
    /// Head: a = radius, b = height of the dished part, c = flange length.
    /// RingPlate: a, b = inner and outer radius, c = thickness.
    double a = 0, b = 0, c = 0;
    Pt p{}, u{}, v{};       ///< Box: corner and unit edge directions.
    Pt pa{}, pb{}, pc{};    ///< Wedge: triangle. Prism: axis pa -> pb, pc = a base vertex.
                            ///< Cone: axis pa -> pb. Elbow: pa = start of the centre line.
    int n = 0;              ///< Prism: number of sides. Box: flag. Elbow: chords (0: chosen).
    Pt center{}, normal{};  ///< Disc: centre and normal. Sphere: centre. Elbow: bend centre
                            ///< and bend axis. Head: base centre and axis. RingPlate: centre
                            ///< and axis.
    double a0 = 0, a1 = 0;  ///< RingPlate: start and end angle.
    /// Member: section (x, y) from pa to pb, its y along u. Bend: section placed at pa on the
    /// arc about center, turning b radians about normal, its y along u. Plate: outline in
    /// drawing coordinates extruded by u. Transition: rectangle a x b about p along u and v,
    /// circle of radius c about center.
    std::vector<Pt> outline;
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
