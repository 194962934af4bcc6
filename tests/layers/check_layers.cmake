# Reads every #include "..." line of the library's sources and headers and fails on any that
# runs against the order of the layers:
#
#   core -> geometry -> functions -> clipping            (the 2-D side)
#   core -> hidden_line/model -> hidden_line/engine      (the hidden-line side)
#
# A layer may include itself and the layers listed for it below, nothing else. The model reads
# the geometry classes and the clipping records (its tessellators take point lists and
# outlines); the engine meets the rest of the library only through the model. Within the
# geometry classes the files keep an order of their own: points and vectors, then matrices,
# then lines, then planes and circles.
#
# Files are assigned by folder; the public headers of VoGeBasic/include by the table below,
# which every public header must appear in. An include that resolves to no file is an error.
# Arguments: ROOT, the folder that holds VoGeBasic/.
cmake_minimum_required(VERSION 3.20)
if(NOT DEFINED ROOT)
  message(FATAL_ERROR "ROOT not given")
endif()
set(src "${ROOT}/VoGeBasic")

set(may_core core)
set(may_geometry core geometry)
set(may_functions core geometry functions)
set(may_clipping core geometry functions clipping)
set(may_model core geometry clipping model)
set(may_engine core model engine)
set(may_umbrella core geometry functions clipping model engine umbrella)

# Public headers: name, layer and, within the geometry classes, rank.
set(public_headers
  VoGeBasic.h:umbrella:0 VoGeBasicExport.h:core:0 VoGeBasicVersion.h:core:0
  VoGePoint3D.h:geometry:1 VoGeVector3D.h:geometry:1 VoGeMatrix3D.h:geometry:2
  VoGeLine3d.h:geometry:3 VoGePlane3d.h:geometry:4 VoGeCircle3d.h:geometry:4
  geolib_linear.h:functions:0 geolib_planar.h:functions:0 geolib_spatial.h:functions:0
  geolib_frames.h:functions:0
  clip_records.h:clipping:0 clip_params.h:clipping:0 clip_convert.h:clipping:0
  clip_trim.h:clipping:0 clip_viewbox.h:clipping:0
  hd_records.h:model:0 hd_tessellators.h:model:0
  hd_engine.h:engine:0)
# Ranks of the geometry folder's own files, by name (default: the highest).
set(geometry_ranks
  VoGePoint3D:1 VoGeVector3D:1 geometry_tolerances:1
  VoGeMatrix3D:2 matrix_cofactors:2 frame_convert:2
  VoGeLine3d:3 equation_rows:3 segment_place:3
  VoGePlane3d:4 VoGeCircle3d:4)

# Sets <out>_layer and <out>_rank for the file at path (relative to ROOT/VoGeBasic).
function(classify rel out)
  set(layer "")
  set(rank 0)
  get_filename_component(name "${rel}" NAME)
  get_filename_component(stem "${rel}" NAME_WE)
  if(rel MATCHES "^include/")
    foreach(entry IN LISTS public_headers)
      string(REPLACE ":" ";" parts "${entry}")
      list(GET parts 0 n)
      if(n STREQUAL name)
        list(GET parts 1 layer)
        list(GET parts 2 rank)
      endif()
    endforeach()
  elseif(rel MATCHES "^core/")
    set(layer core)
  elseif(rel MATCHES "^geometry/")
    set(layer geometry)
    set(rank 4)
    foreach(entry IN LISTS geometry_ranks)
      string(REPLACE ":" ";" parts "${entry}")
      list(GET parts 0 n)
      if(n STREQUAL stem)
        list(GET parts 1 rank)
      endif()
    endforeach()
  elseif(rel MATCHES "^functions/")
    set(layer functions)
  elseif(rel MATCHES "^clipping/")
    set(layer clipping)
  elseif(rel MATCHES "^hidden_line/model/")
    set(layer model)
  elseif(rel MATCHES "^hidden_line/engine/")
    set(layer engine)
  endif()
  set(${out}_layer "${layer}" PARENT_SCOPE)
  set(${out}_rank "${rank}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE files RELATIVE "${src}" "${src}/*.h" "${src}/*.cpp")
list(SORT files)
set(errors "")
set(edges 0)
foreach(rel IN LISTS files)
  classify("${rel}" from)
  if(from_layer STREQUAL "")
    list(APPEND errors "${rel}: belongs to no layer (add it to the table)")
    continue()
  endif()
  get_filename_component(dir "${rel}" DIRECTORY)
  file(STRINGS "${src}/${rel}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]+)\".*$" "\\1" inc "${line}")
    # Resolved as the build resolves it: beside the file, then VoGeBasic/, then the public
    # include folder; the generated version header is known by name.
    if(EXISTS "${src}/${dir}/${inc}" AND NOT dir STREQUAL "")
      set(target "${dir}/${inc}")
    elseif(EXISTS "${src}/${inc}")
      set(target "${inc}")
    elseif(EXISTS "${src}/include/${inc}" OR inc STREQUAL "VoGeBasicVersion.h")
      set(target "include/${inc}")
    else()
      list(APPEND errors "${rel}: #include \"${inc}\" resolves to no file of the library")
      continue()
    endif()
    classify("${target}" to)
    if(to_layer STREQUAL "")
      list(APPEND errors "${rel}: #include \"${inc}\" belongs to no layer (add it to the table)")
      continue()
    endif()
    math(EXPR edges "${edges} + 1")
    if(NOT to_layer IN_LIST may_${from_layer})
      list(APPEND errors
        "${rel} (${from_layer}): #include \"${inc}\" reaches up into ${to_layer}")
    elseif(to_layer STREQUAL from_layer AND to_rank GREATER from_rank)
      list(APPEND errors
        "${rel} (${from_layer} ${from_rank}): #include \"${inc}\" reaches up to rank ${to_rank}")
    endif()
  endforeach()
endforeach()

list(LENGTH files nfiles)
if(errors)
  string(REPLACE ";" "\n  " text "${errors}")
  message(FATAL_ERROR "includes against the order of the layers:\n  ${text}")
endif()
message(STATUS "${nfiles} files, ${edges} includes, all in the order of the layers")
