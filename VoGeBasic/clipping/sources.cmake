# Clipping: records, parameter intervals, trimming against outlines and view boxes.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clip_records.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_convert.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_params.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_trim.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_convex_split.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_viewbox.cpp)
