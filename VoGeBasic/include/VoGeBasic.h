// VoGeBasic: the geometry library of the plant-design drawing system.
//
// The one header a drawing program includes (#include <VoGeBasic/VoGeBasic.h> once installed);
// it brings in the whole exported interface and the version macros.
#ifndef VOGEBASIC_H
#define VOGEBASIC_H

#include "VoGeBasicExport.h"
#include "VoGeBasicVersion.h"

// Geometry classes
#include "VoGeCircle3d.h"
#include "VoGeLine3d.h"
#include "VoGeMatrix3D.h"
#include "VoGePlane3d.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

// Geometric functions of namespace geolib
#include "geolib_frames.h"
#include "geolib_linear.h"
#include "geolib_planar.h"
#include "geolib_spatial.h"

// Clipping records, intervals and trimming
#include "clip_convert.h"
#include "clip_params.h"
#include "clip_records.h"
#include "clip_trim.h"
#include "clip_viewbox.h"

// Hidden-line model: records and tessellators
#include "hd_records.h"
#include "hd_tessellators.h"

// Hidden-line engine: face intersection and hide pass
#include "hd_engine.h"

#endif  // VOGEBASIC_H
