# Free functions of namespace geolib: linear systems, frames and angles, planar and spatial
# queries.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/geolib_linear.cpp
  ${CMAKE_CURRENT_LIST_DIR}/geolib_frames.cpp
  ${CMAKE_CURRENT_LIST_DIR}/geolib_planar.cpp
  ${CMAKE_CURRENT_LIST_DIR}/geolib_spatial.cpp)
