// The view of vogedraw: the matrix that takes model coordinates (X east, Y north, Z up) into
// drawing coordinates (X right, Y down the sheet, Z depth away from the viewer), and the
// tessellation of a model primitive in drawing coordinates.
#ifndef VOGEDRAW_VIEW_H
#define VOGEDRAW_VIEW_H

#include <string>

#include "VoGeBasic.h"
#include "model_reader.h"

namespace vogedraw {

/// A view direction: the viewer stands at compass azimuth az (degrees clockwise from north)
/// and elevation el (degrees above the horizon, 90 looking straight down).
struct ViewAngles {
    double azimuth;
    double elevation;
};

/// The named views: plan, north, south, east, west (elevations seen from that side) and iso.
/// False for an unknown name.
bool namedView(const std::string& name, ViewAngles& out);

/// The rotation from model to drawing coordinates for the view: a proper rotation (no mirror),
/// so solids keep their sense of turning; drawing Y runs down the sheet.
VoGeMatrix3D viewMatrix(const ViewAngles& view);

/// The primitive tessellated in drawing coordinates (m from viewMatrix). Returns a new object
/// owned by the caller (release it with freeHDProfObjectPointer), or null when the tessellator
/// refuses the primitive or an allocation fails; why then says which.
geolib::_s_hd_prof_* tessellate(const Primitive& prim, const VoGeMatrix3D& m, std::string& why);

}  // namespace vogedraw

#endif  // VOGEDRAW_VIEW_H
